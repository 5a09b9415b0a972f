"""Edges after Canny, and the straight lines that they lie on: edges.py [FOLDER]."""
import numpy as np
import ravik
from scene import folder_of_results, in_colours, scene, write_png


def main() -> None:
    folder, picture = folder_of_results(), scene()
    smooth = ravik.rvkFilterGaussian5x5u8_v2(picture, 1)
    edges, dx, dy = ravik.rvkFilterCannyu8(smooth, 3, 60, 150, ravik.RAVIK_CANNY_NORM_L1)
    segments = ravik.rvkImageDetectLineSegmentsu8(smooth, 150, 20, 1, 500)

    drawn = in_colours(picture // 2)
    for segment in segments:
        line = np.array([[segment["x1"], segment["y1"]], [segment["x2"], segment["y2"]]]).round().astype(np.int32)
        ravik.rvkDrawContourInterleavedu8(drawn, line, np.array([2], np.uint32), 2, 255, 200, 0)

    write_png(folder / "scene.png", picture)
    write_png(folder / "edges.png", edges)
    write_png(folder / "segments.png", drawn)
    print(f"{np.count_nonzero(edges)} pixels of edges, the steepest gradient is {np.abs(dx).max()} across and "
          f"{np.abs(dy).max()} down; {len(segments)} line segments: {folder}/edges.png, segments.png")


if __name__ == "__main__":
    main()
