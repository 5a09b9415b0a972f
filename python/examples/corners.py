"""Good features to track, and where they are between the pixels: corners.py [FOLDER]."""
import numpy as np
import ravik
from scene import folder_of_results, in_colours, scene, write_png


def main() -> None:
    folder, picture = folder_of_results(), scene()
    smooth = ravik.rvkFilterGaussian5x5u8_v2(picture, 1)
    corners = ravik.rvkGoodFeatureToTracku8(smooth, 10, 8, 100, 500)
    precise = corners.astype(np.float32)
    ravik.rvkCornerRefineSubPixu8(smooth, precise, 5, 5, -1, -1, 20, 0.01)

    drawn = in_colours(picture // 2)
    for x, y in corners.astype(int):
        drawn[y, x - 4:x + 5] = drawn[y - 4:y + 5, x] = (0, 255, 120)
    write_png(folder / "corners.png", drawn)
    moved = np.hypot(*(precise - corners).T)
    print(f"{len(corners)} corners, {moved.mean():.2f} pixels from the nearest pixel on average: {folder}/corners.png")


if __name__ == "__main__":
    main()
