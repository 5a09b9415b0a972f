"""What the examples share: pictures drawn with NumPy, and how they come to and from files."""
import struct
import sys
import zlib
from pathlib import Path
from typing import Any

import numpy as np
from numpy.typing import NDArray

Picture = NDArray[np.uint8]


def disc(picture: Picture, x: float, y: float, radius: float, value: int | tuple[int, int, int]) -> None:
    rows, columns = np.ogrid[:picture.shape[0], :picture.shape[1]]
    picture[(columns - x) ** 2 + (rows - y) ** 2 <= radius ** 2] = value


def scene(seed: int = 1, width: int = 640, height: int = 480) -> Picture:
    """Grey: a shaded wall, a chequered box, discs, and the noise of a camera."""
    random = np.random.default_rng(seed)
    rows, columns = np.mgrid[:height, :width]
    picture = (90 + 60 * columns / width + 30 * np.sin(rows / 70)).astype(np.uint8)
    box = picture[height // 4:height * 3 // 4, width // 8:width // 2]
    chequers = (np.add.outer(np.arange(box.shape[0]) // 30, np.arange(box.shape[1]) // 30) % 2).astype(np.uint8)
    box[:] = 40 + 170 * chequers
    for _ in range(6):
        disc(picture, random.uniform(0.55, 0.95) * width, random.uniform(0.1, 0.9) * height,
             random.uniform(15, 45), int(random.integers(0, 256)))
    seen: Picture = (picture + random.normal(0, 3, picture.shape)).clip(0, 255).astype(np.uint8)
    return seen


def write_png(path: Path, picture: Picture) -> None:
    """Grey pictures of rows and columns, colours of rows, columns and red, green, blue."""
    def chunk(kind: bytes, content: bytes) -> bytes:
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    height, width = picture.shape[:2]
    rows = b"".join(b"\0" + row.tobytes() for row in picture)
    header = struct.pack(">IIBBBBB", width, height, 8, 0 if picture.ndim == 2 else 2, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) +
                     chunk(b"IEND", b""))


def write_pgm(path: Path, picture: Picture) -> None:
    path.write_bytes(b"P5 %d %d 255\n" % picture.shape[::-1] + picture.tobytes())


def read_pgm(path: Path) -> Picture:
    head, content = path.read_bytes().split(b"\n", 1)
    kind, width, height, most = head.split()
    if (kind, most) != (b"P5", b"255"):
        raise ValueError(f"{path}: not a binary PGM of bytes with its head in one line")
    return np.frombuffer(content, np.uint8, int(width) * int(height)).reshape(int(height), int(width))


def in_colours(grey: NDArray[Any]) -> Picture:
    return np.repeat(grey[..., None].astype(np.uint8), 3, axis=2)


def folder_of_results() -> Path:
    """The folder that the command line names, or pictures/ here."""
    folder = Path(sys.argv[1] if len(sys.argv) > 1 else "pictures")
    folder.mkdir(parents=True, exist_ok=True)
    return folder
