"""Every function, called with small arrays."""
import re

import numpy as np
import pytest
import ravik
from examples import HANDLES, Example, like

REFERENCE = ravik.RAVIK_OP_EXPERT | ravik.RAVIK_UNIT_ARM
VECTOR = ravik.RAVIK_OP_EXPERT | ravik.RAVIK_UNIT_VECTA
CLOCKS = {"rvkGetTime", "rvkX6GetClk"}


@pytest.fixture(autouse=True)
def usual_mode():
    yield
    ravik.rvkSetOperationMode(ravik.RAVIK_OP_CPU_PERFORMANCE)


def flat(result):
    """All arrays and numbers of a result."""
    return [each for part in result for each in flat(part)] if isinstance(result, tuple) else [result]


def same(first, second, tolerance=0):
    first, second = flat(first), flat(second)
    assert len(first) == len(second)
    for a, b in zip(first, second):
        if np.asarray(a).dtype.kind == "f":
            np.testing.assert_allclose(a, b, rtol=1e-4, atol=1e-2)
        elif tolerance:
            np.testing.assert_allclose(np.asarray(a, float), np.asarray(b, float), atol=tolerance)
        else:
            np.testing.assert_array_equal(a, b)


def in_modes(call):
    """What the call gives as C reference and as vector code."""
    results = []
    for mode in (REFERENCE, VECTOR):
        ravik.rvkSetOperationMode(mode)
        results.append(call())
    return results


def test_every_function_of_the_headers_is_there():
    assert all(callable(getattr(ravik, name)) for name in ravik._declared["functions"])


TOLERANCES = {"rvkExtractHOGu16": 32}


@pytest.mark.parametrize("size", [(45, 37), (17, 9), (3, 64)])
@pytest.mark.parametrize("name", sorted(name for name in ravik._words if Example(name).arguments))
def test_pictures_of_other_sizes(name, size):
    def call():
        try:
            example = Example(name, 3, size)
            return getattr(ravik, name)(**{**example.copied(), **example.destinations(0)})
        except (ravik.Error, ValueError):  # too small, for instance
            return None

    reference, vector = in_modes(call)
    same(reference, vector, TOLERANCES.get(name, 0))


@pytest.mark.parametrize("name", sorted(ravik._words))
def test_reference_and_vector_code_agree(name):
    example, function = Example(name), getattr(ravik, name)
    if name in CLOCKS:
        assert function() >= 0
        return
    reference, vector = in_modes(lambda: function(**example.copied()))
    same(reference, vector, TOLERANCES.get(name, 0))
    # Destinations of the caller: what is said to be written is, all of it, and nothing beyond.
    for fill in (0, 255):
        destinations = example.destinations(fill)
        given = function(**{**example.copied(), **destinations})
        same(given, vector)
        assert all(any(each is result for result in flat(given)) for each in flat(tuple(destinations.values())))


def base(size=(40, 48), dtype=np.uint8):
    return like(np.random.default_rng(3).integers(0, 255, size), dtype)


@pytest.mark.parametrize("create, derive, dtype", [
    ("rvkPyramidCreateu8", "rvkPyramidSobelGradientCreatei8", np.uint8),
    ("rvkPyramidCreateu8_v2", "rvkPyramidSobelGradientCreatei8", np.uint8),
    ("rvkPyramidCreatef32", "rvkPyramidSobelGradientCreatef32", np.float32),
    ("rvkPyramidCreatef32_v2", "rvkPyramidSobelGradientCreatef32", np.float32)])
def test_pyramids(create, derive, dtype):
    reference, vector = in_modes(lambda: getattr(ravik, create)(base(dtype=dtype), 4))
    same(reference, vector)
    assert [level.shape for level in vector] == [(40, 48), (20, 24), (10, 12), (5, 6)]
    reference, vector = in_modes(lambda: getattr(ravik, derive)(vector[:3]))
    same(reference, vector)
    assert len(vector[0]) == len(vector[1]) == 3


def test_allocated_pyramids():
    for allocate, numbers in (("rvkPyramidAllocate", ()), ("rvkPyramidAllocate_v2", (1, 3, 1))):
        allocated = getattr(ravik, allocate)(48, 40, *(numbers or (3,)))
        with allocated as pyramid:
            level = ravik.rvkPyramidCreateu8(base(), 3, pyramid)[2]
            assert pyramid[0] is None and level is pyramid[2]
            kept = level.copy()
        np.testing.assert_array_equal(level, kept)  # its memory lives as long as it does
        assert len(allocated) == 0
    strided = ravik.rvkPyramidAllocate_v3(50, 40, 4, 2, 0, 64)
    assert strided[1].strides[0] % 64 == 0 and strided[0].dtype == np.float32
    ravik.rvkPyramidDelete_v2(strided)


def test_pyramid_of_any_size_by_kernel():
    same(*in_modes(lambda: ravik.rvkPyramidCreateu8_v3(base((41, 49)), 3, 5)))


@pytest.mark.parametrize("format, shapes, channels", [
    ("RGB", [(40, 48, 3)], "RGB"), ("RGBA", [(40, 48, 4)], "RGBA"), ("NV12", [(39, 47), (20, 24, 2)], "YUV"),
    ("NV21", [(39, 47), (20, 24, 2)], "YUV"), ("UYVY", [(40, 24, 4)], "YUV"), ("YUYV", [(40, 24, 4)], "YUV")])
def test_channels(format, shapes, channels):
    planes = tuple(base(shape) for shape in shapes)
    src = planes if len(planes) > 1 else planes[0]
    for channel in channels:
        numbers = getattr(ravik, f"RAVIK_FORMAT_{format}"), getattr(ravik, f"RAVIK_CHANNEL_{channel}")
        same(*in_modes(lambda: ravik.rvkChannelExtractu8(src, *numbers)))
    if format == "RGBA":
        np.testing.assert_array_equal(ravik.rvkChannelExtractu8(src, *numbers), src[..., 3])


@pytest.mark.skipif(not hasattr(ravik, "rvkTrackLKOpticalFlowu8"), reason="without Lucas and Kanade")
def test_tracking_in_pyramids():
    random = np.random.default_rng(7)
    picture = ravik.rvkFilterGaussian5x5u8_v2(random.integers(0, 256, (96, 128), dtype=np.uint8), 1)
    moved = np.roll(picture, (1, 2), (0, 1))
    points = np.array([[40, 50], [60, 30], [-5, 3]], np.float32)
    for create, names in (("rvkPyramidCreateu8", ("", "_v2", "_v3")), ("rvkPyramidCreatef32", ("f32",))):
        dtype = np.float32 if "f32" in create else np.uint8
        first, second = (getattr(ravik, create)(each.astype(dtype), 2) for each in (picture, moved))
        for name in names:
            function = getattr(ravik, "rvkTrackLKOpticalFlow" + (name if name == "f32" else "u8" + name))
            more = () if name == "" else (0.1,)
            points2, status, *_ = function(first, second, points, 9, 9, 20, 0.01, *more)
            np.testing.assert_allclose(points2[:2], points[:2] + (2, 1), atol=0.05)
            assert status.tolist() == [1, 1, 0]
    with pytest.raises(ValueError, match="points2: overlaps points1"):
        ravik.rvkTrackLKOpticalFlowu8_v2(first_u8(picture), first_u8(moved), points, 9, 9, 20, 0.01, 0.1, points)


def first_u8(picture):
    return ravik.rvkPyramidCreateu8(picture, 2)


@pytest.mark.skipif(not hasattr(ravik, "rvkCreateBGCodeBookModel"), reason="without code books")
def test_code_books():
    still = np.full((40, 48, 3), 100, np.uint8)
    with ravik.rvkCreateBGCodeBookModel(48, 40) as model:
        ravik.rvkConfigBGCodeBookModel(model, *(np.full(3, n, np.uint8) for n in (10, 5, 5)), 4)
        for _ in range(3):
            ravik.rvkBGCodeBookUpdateu8(model, still)
        ravik.rvkBGCodeBookClearStaleu8(model, 1)
        seen = still.copy()
        seen[10:20, 12:22] = 200
        foreground, count = ravik.rvkBGCodeBookDiffu8(model, seen)
        assert count == 100 and foreground[10:20, 12:22].all()
        with pytest.raises(ValueError):
            ravik.rvkBGCodeBookClearStaleu8(model, 1, foreground[1:])
    with pytest.raises(ValueError, match="released"):
        ravik.rvkBGCodeBookUpdateu8(model, still)


def test_handles_give_what_calls_without_give():
    picture = Example("rvkMserExtu8").arguments["src"]
    with ravik.rvkFindContoursAllocate(48, 40) as workspace:
        same(ravik.rvkFindContoursTreeu8(picture, 0, 100, 1000, workspace),
             ravik.rvkFindContoursTreeu8(picture, 0, 100, 1000))
    handle = ravik.rvkMserNN8Init(48, 40, 5, 4, 300, 0.5, 0.25)
    same(ravik.rvkMserExtNN8u8(handle, picture, 20, 5000),
         ravik.rvkMserExtu8_v3(picture, 5, 4, 300, 0.5, 0.25, 8, 3, 20, 5000))
    ravik.rvkMemFree(handle)
    for released, call in ((workspace, lambda: ravik.rvkFindContoursTreeu8(picture, 0, 9, 9, workspace)),
                           (handle, lambda: ravik.rvkMserExtNN8u8(handle, picture, 9, 9))):
        with pytest.raises(ValueError, match="released"):
            call()


@pytest.mark.parametrize("kind, release", [
    ("CodeBookModel", ravik.rvkReleaseBGCodeBookModel), ("HOG", ravik.rvkHOGDeInit), ("MserHandle", ravik.rvkMemFree),
    ("KDTree", ravik.rvkKDTreeDestroy36s8f32)])
def test_functions_that_release(kind, release):
    handle = HANDLES[kind]()
    for _ in range(2):
        release(handle)
    release(None)
    with pytest.raises(ValueError, match="released"), handle.in_use():
        pass
    with pytest.raises(TypeError, match=r"\w+: a "):
        release(3)


def test_every_count_is_bound_to_an_array():
    """A number that says how many elements a pointer has must not be left to the caller."""
    windows = {"rvkBoxFilterNxNf32", "rvkFilterDilateNxNu8", "rvkFilterErodeNxNu8", "rvkFilterMedianMxNs16"}
    free = {("rvkHoughLineu8", "nAngles")} | {(name, size) for name in windows for size in "MN"}
    for name in ravik._words:
        function = Example(name).function
        formulas = " ".join(size for each in function.parameters for size in each.sizes)
        counts = {each.name for each in function.of_role("number")
                  if re.fullmatch(r"n[A-Z]\w*|num[A-Z]\w*|\w*[cC]ount|length|dim|size|capacity|[MN]", each.name)}
        unbound = {each for each in counts if not re.search(rf"\b{each}\b", formulas)}
        assert {(name, each) for each in unbound} <= free


def test_known_results():
    a, b = base(), base()[::-1].copy()
    np.testing.assert_array_equal(ravik.rvkAbsDiffu8(a, b), np.abs(a.astype(int) - b))
    lines = ravik.rvkHoughLineu8(np.eye(40, dtype=np.uint8), 180, 1, 30, 5)
    assert len(lines) == 1 and lines["theta"][0] == pytest.approx(3 * np.pi / 4) and lines["votes"][0] >= 30
    corners = np.zeros((40, 48), np.uint8)
    corners[10:30, 12:36] = 255
    xy = ravik.rvkCornerFast9u8(corners, 20, 3, 100)
    assert {(12, 10), (35, 10), (12, 29), (35, 29)} <= set(map(tuple, xy.tolist()))
    rectangle = ravik.rvkBoundingRectangle(np.array([[3, 4], [10, 20]], np.int32))
    assert rectangle.tolist() == (3, 4, 8, 17)
    assert ravik.rvkGetVersion() == ravik.__version__


def test_aligned_memory():
    memory = ravik.rvkMemAlloc(1000, 128)
    assert memory.nbytes == 1000 and memory.ctypes.data % 128 == 0
    memory[:] = 1
    ravik.rvkMemFree(memory)
    assert memory.sum() == 1000
    for note in (lambda ptr: ravik.rvkHeapStatsMalloc(ptr, 1000), ravik.rvkHeapStatsFree):
        note(memory)
        with pytest.raises(TypeError, match="ptr: "):
            note([memory])
