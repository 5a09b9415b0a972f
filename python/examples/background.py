"""What moves before a background that flickers, by a model of code books: background.py [FOLDER]."""
import numpy as np
import ravik
from scene import Picture, disc, folder_of_results, in_colours, scene, write_png

LEARNT, SHOWN = 40, 8


def frame(background: Picture, time: int, random: np.random.Generator) -> Picture:
    """The background with a lamp that goes on and off, and the noise of a camera."""
    picture = in_colours(background)
    picture[40:80, 560:620] = (250, 240, 200) if time // 3 % 2 else (120, 115, 100)
    return (picture + random.normal(0, 2, picture.shape)).clip(0, 255).astype(np.uint8)


def main() -> None:
    folder, background, random = folder_of_results(), scene(), np.random.default_rng(5)
    height, width = background.shape
    with ravik.rvkCreateBGCodeBookModel(width, height) as model:
        bound, margin = np.full(3, 10, np.uint8), np.full(3, 8, np.uint8)
        ravik.rvkConfigBGCodeBookModel(model, bound, margin, margin, 8)
        for time in range(LEARNT):
            ravik.rvkBGCodeBookUpdateu8(model, frame(background, time, random))
        ravik.rvkBGCodeBookClearStaleu8(model, LEARNT // 2)

        for time in range(SHOWN):
            picture = frame(background, time, random)
            disc(picture, 60 + 70 * time, 200 + 20 * time, 30, (200, 60, 40))
            foreground, count = ravik.rvkBGCodeBookDiffu8(model, picture)
            ravik.rvkSegmentFGMasku8(foreground, ravik.RAVIK_MASK_CONTOURS, 20)
            picture[foreground == 0] //= 3
            write_png(folder / f"foreground{time}.png", picture)
            print(f"frame {time}: {count} pixels differ, {np.count_nonzero(foreground)} belong to something")
    print(f"{folder}/foreground0.png to foreground{SHOWN - 1}.png")


if __name__ == "__main__":
    main()
