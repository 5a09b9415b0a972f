#!/usr/bin/env python3
"""OpenCV with the adapter beside OpenCV without: the same calls, the same results, and how much faster.

  compare.py PROGRAM PLAIN ADAPTED check [FILTER] [--rounds N] [--seed N]
  compare.py PROGRAM PLAIN ADAPTED time [FILTER] [--markdown]

PROGRAM is ravikHalCompare, PLAIN and ADAPTED are the folders of the libraries of two builds of OpenCV. FILTER is a part
of an operation's name. Times are the least of several turns in which both builds are asked one after the other.
"""
import argparse
import math
import os
import subprocess
import sys
import tempfile

import numpy

SIZES = ((640, 480), (1920, 1080))
TURNS = 3
DEPTHS = ("u1", "i1", "u2", "i2", "i4", "f4", "f8")


class Program:
    """The program on one of the builds, waiting for commands."""

    def __init__(self, path, libraries):
        environment = dict(os.environ, LD_LIBRARY_PATH=libraries)
        self.process = subprocess.Popen(
            [path], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, env=environment)

    def ask(self, *words):
        print(*words, file=self.process.stdin, flush=True)
        answer = self.process.stdout.readline()
        if not answer:
            raise SystemExit(f"The program ended with status {self.process.wait()} at: {' '.join(map(str, words))}")
        return answer.split()

    def operations(self):
        answer = self.ask("list")
        while answer != ["end"]:
            yield answer[0], float(answer[1]), float(answer[2])
            answer = self.process.stdout.readline().split()


def results(path):
    """What a call wrote: how it failed, if it did, and its matrices."""
    with open(path, "rb") as file:
        shapes = []
        while not (line := file.readline().decode()).startswith("end"):
            shapes.append(tuple(map(int, line.split())))
        matrices = []
        for rows, columns, depth in shapes:
            element = numpy.dtype(DEPTHS[depth])
            data = file.read(rows * columns * element.itemsize)
            matrices.append(numpy.frombuffer(data, element).reshape(rows, columns))
    return line, matrices


def difference(plain, adapted, within, exceptions):
    """In words how two results differ; nothing where they do not."""
    if plain[0] != adapted[0]:
        return f"{plain[0]!r} became {adapted[0]!r}"
    for index, (a, b) in enumerate(zip(plain[1], adapted[1], strict=True)):
        if a.tobytes() == b.tobytes():
            continue
        if a.shape != b.shape or a.dtype != b.dtype:
            return f"result {index} is {b.shape} {b.dtype} instead of {a.shape} {a.dtype}"
        with numpy.errstate(invalid="ignore"):
            apart = numpy.abs(a.astype("f8") - b.astype("f8"))
        beyond = ~(apart <= within) & ~((a != a) & (b != b)) & (a != b)
        if numpy.count_nonzero(beyond) > exceptions * a.size:
            y, x = numpy.argwhere(beyond)[0]
            return (f"result {index}, {a.shape} {a.dtype}: {numpy.count_nonzero(beyond)} elements differ, the first in"
                    f" row {y}, column {x}: {b[y, x]} instead of {a[y, x]}; largest difference {apart.max()}")
    return None


def check(programs, operations, options):
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        paths = [os.path.join(folder, name) for name in ("plain", "adapted")]
        for name, within, exceptions in operations:
            for seed in range(options.seed, options.seed + options.rounds):
                for program, path in zip(programs, paths):
                    program.ask("check", name, seed, path)
                wrong = difference(*map(results, paths), within, exceptions)
                if wrong:
                    print(f"{name} with seed {seed}: {wrong}")
                    failures += 1
                    break
    print(f"{len(operations)} operations, {options.rounds} random calls each: {failures} differ")
    return failures == 0


def time(programs, operations, options):
    """The table of ratios; whether no operation became slower by more than a tenth."""
    slower, gains = [], []
    separator = " | " if options.markdown else " "
    heads = [f"{width}x{height} {what}" for width, height in SIZES for what in ("memcpys", "faster")]
    print(separator.join([f"{'operation':28}"] + [f"{head:>18}" for head in heads]))
    if options.markdown:
        print("|".join(["---"] + ["---:"] * len(heads)))
    for name, _, _ in operations:
        cells = []
        for size in SIZES:
            turns = [[list(map(float, program.ask("time", name, *size))) for program in programs]
                     for _ in range(TURNS)]
            plain, adapted = (min(turn[i][0] for turn in turns) for i in (0, 1))
            memcpys = plain / min(turn[0][1] for turn in turns)
            gain = plain / adapted
            cells += [f"{memcpys:18.1f}", f"{gain:18.2f}"]
            if gain < 0.9:
                slower.append(f"{name} {size[0]}x{size[1]}")
            if memcpys > 2:
                gains.append(gain)
        print(separator.join([f"{name:28}"] + cells), flush=True)
    if gains:
        print(f"\nGeometric mean where OpenCV takes more than two memcpys: "
              f"{math.exp(sum(map(math.log, gains)) / len(gains)):.2f} times as fast ({len(gains)} rows)")
    print("Slower by more than a tenth: " + (", ".join(slower) or "none"))
    return not slower


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    for name in ("program", "plain", "adapted"):
        parser.add_argument(name)
    parser.add_argument("what", choices=("check", "time"))
    parser.add_argument("filter", nargs="?", default="")
    parser.add_argument("--rounds", type=int, default=100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--markdown", action="store_true")
    options = parser.parse_args()
    programs = [Program(options.program, libraries) for libraries in (options.plain, options.adapted)]
    operations = [row for row in programs[0].operations() if options.filter in row[0]]
    if not operations:
        raise SystemExit(f"No operation's name contains {options.filter!r}")
    sys.exit(0 if {"check": check, "time": time}[options.what](programs, operations, options) else 1)


main()
