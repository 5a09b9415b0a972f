"""A filter chain over a folder of pictures with Dask, on all processors of this machine or on a cluster:

    folder.py [SOURCE TARGET [SCHEDULER]]

Every .pgm of SOURCE becomes its edges, a .png in TARGET; a picture that cannot be read is reported and stops nothing.
SCHEDULER is the address of a Dask scheduler whose workers see both folders; without it, this machine works. Without
folders the program draws some pictures first. Other formats: replace read_pgm by a reader of yours.
"""
import sys
import tempfile
from pathlib import Path

import ravik
from dask.bag import from_sequence  # type: ignore[attr-defined]
from dask.distributed import Client, LocalCluster, progress
from scene import read_pgm, scene, write_pgm, write_png

PICTURES_OF_A_TASK = 16


def process(source: str, target: str) -> str:
    """What is wrong with a picture; nothing when its edges are written."""
    try:
        picture = read_pgm(Path(source))
        smooth = ravik.rvkFilterMedian3x3u8(picture)
        equal = ravik.rvkImageHistogramEqualizeu8(smooth)
        edges, _, _ = ravik.rvkFilterCannyu8(equal, 3, 150, 300, ravik.RAVIK_CANNY_NORM_L1)
        write_png(Path(target, Path(source).stem + ".png"), edges)
        return ""
    except (OSError, ValueError, ravik.Error) as error:
        return f"{source}: {error}"


def drawn_pictures(folder: Path, count: int) -> None:
    for i in range(count):
        write_pgm(folder / f"scene{i:03}.pgm", scene(i))
    (folder / "broken.pgm").write_bytes(b"P2 1 1 1\n0")


def process_folder(client: Client, source: Path, target: Path) -> list[str]:
    """Returns what went wrong."""
    target.mkdir(parents=True, exist_ok=True)
    paths = sorted(str(path) for path in source.glob("*.pgm"))
    print(f"{len(paths)} pictures")
    tasks = from_sequence(paths, partition_size=PICTURES_OF_A_TASK)
    work = tasks.map(process, str(target)).persist()
    progress(work)
    print()
    return [message for message in work.compute() if message]


def main() -> None:
    cluster = sys.argv[3] if len(sys.argv) > 3 else LocalCluster(dashboard_address=None)
    with Client(cluster) as client, tempfile.TemporaryDirectory() as drawn:
        source, target = Path(drawn), Path(sys.argv[1] if len(sys.argv) > 1 else "pictures", "folder")
        if len(sys.argv) > 2:
            source, target = Path(sys.argv[1]), Path(sys.argv[2])
        else:
            drawn_pictures(source, 40)
        for message in process_folder(client, source, target):
            print(message)
        print(f"{len(list(target.glob('*.png')))} pictures in {target}")


if __name__ == "__main__":
    main()
