"""What Python functions refuse, and how they behave among others."""
import gc
import resource
import sys
import threading
import timeit

import numpy as np
import pytest
import ravik
from ravik import _errors

PICTURE = np.arange(40 * 48, dtype=np.uint8).reshape(40, 48)


def absdiff(a=PICTURE, b=PICTURE, dst=None):
    return ravik.rvkAbsDiffu8(a, b, dst)


class Odd:
    dtype, shape, ndim, flags = np.dtype(np.uint8), (40, 48), 2, PICTURE.flags


@pytest.mark.parametrize("value", [None, [[1, 2]], 3, "text", b"bytes", Odd(), PICTURE.astype(bool),
                                   PICTURE.astype(object), PICTURE.astype(np.int8), PICTURE.astype(">u2")])
def test_what_is_no_array_of_the_type(value):
    for call in (lambda: absdiff(a=value), lambda: absdiff(b=value)):
        with pytest.raises(TypeError, match="src[12]: "):
            call()
    if value is not None:
        with pytest.raises(TypeError, match="dst: "):
            absdiff(dst=value)


@pytest.mark.parametrize("value", [PICTURE[::-1], PICTURE[:, ::-1], PICTURE[:, ::2], np.asfortranarray(PICTURE),
                                   PICTURE.ravel(), PICTURE[None], np.broadcast_to(PICTURE[0], (40, 48))])
def test_arrays_that_are_no_pictures(value):
    with pytest.raises(ValueError, match="src1: "):
        absdiff(a=value)


def test_sizes_that_do_not_go_together():
    with pytest.raises(ValueError, match=r"src2: an array of 40 x 48, not 39 x 48"):
        absdiff(b=PICTURE[:39])
    with pytest.raises(ValueError, match="dst: "):
        absdiff(dst=np.empty((40, 47), np.uint8))
    with pytest.raises(ValueError, match="matrix: 9 elements, not 8"):
        ravik.rvkWarpPerspectiveu8(PICTURE, np.zeros(8, np.float32), np.empty_like(PICTURE))
    with pytest.raises(ValueError, match="dstWidth, dstHeight"):
        ravik.rvkWarpPerspectiveu8(PICTURE, np.eye(3, dtype=np.float32), np.empty_like(PICTURE), dstWidth=7)
    with pytest.raises(TypeError, match="dstWidth"):
        ravik.rvkWarpPerspectiveu8(PICTURE, np.eye(3, dtype=np.float32))
    with pytest.raises(ValueError, match="src: 48 x 40 pixels do not hold"):
        ravik.rvkIntegratePatchu8(PICTURE, 40, 0, 9, 40)


def test_no_pixels_and_too_many():
    for shape in ((0, 48), (40, 0), (0, 0)):
        empty = np.zeros(shape, np.uint8)
        with pytest.raises(ValueError, match="rvkAbsDiffu8"):
            absdiff(empty, empty)
    huge = np.lib.stride_tricks.as_strided(PICTURE, (1, 1 << 33))
    with pytest.raises((ValueError, MemoryError)):
        ravik.rvkAverageu8(huge)
    with pytest.raises((ValueError, MemoryError)):
        ravik.rvkScaleu8(PICTURE, 0, dstWidth=0xFFFFFFFF, dstHeight=0xFFFFFFFF)


def test_destinations():
    read_only = np.empty_like(PICTURE)
    read_only.flags.writeable = False
    with pytest.raises(ValueError, match="dst: read-only"):
        absdiff(dst=read_only)
    room = np.zeros((41, 48), np.uint8)
    room[:40] = PICTURE
    with pytest.raises(ValueError, match="dst: overlaps src1"):
        absdiff(a=room[:40], dst=room[1:])
    with pytest.raises(ValueError, match="dst: overlaps src"):
        ravik.rvkFilterSobel3x3u8(room, room)  # not in place
    with pytest.raises(ValueError, match="dy: overlaps dx"):
        both = np.empty((40, 48), np.int16)
        ravik.rvkFilterSobel3x3u8s16(PICTURE, 0, 0, both, both)
    points = np.zeros((50, 2), np.float32)
    with pytest.raises(ValueError, match="homography: overlaps pairs"):
        ravik.rvkGeomHomographyFitf32((points, points), points.ravel()[:9])
    assert ravik.rvkAddu8(room, room, 1, room) is room  # in place
    np.testing.assert_array_equal(room[:40], np.minimum(2 * PICTURE.astype(int), 255))


def test_planes():
    convert = ravik.rvkColorYCbCr420PseudoPlanarToYCbCr444Planaru8
    luma, room = PICTURE, np.ones((40, 48), np.uint8)
    chroma = room[:20].reshape(20, 24, 2)
    for src, error, message in ((luma, TypeError, "src: a tuple of 2 planes, not ndarray"),
                                ([luma, chroma], TypeError, "src: a tuple"), (None, TypeError, "src: a tuple"),
                                ((luma, chroma, chroma), ValueError, "src: 2 planes, not 3"),
                                ((luma, None), TypeError, r"src\[1\]: "),
                                ((luma, chroma[1:]), ValueError, r"src\[1\]: an array of 20 x 24 x 2")):
        with pytest.raises(error, match=message):
            convert(src)
    given, expected = np.empty_like(luma), convert((luma, chroma))
    made = convert((luma, chroma), (None, given, None))
    assert isinstance(made, tuple) and made[1] is given and all(map(np.array_equal, made, expected))
    for dst, message in (((None, given, given), r"dst\[2\]: overlaps dst\[1\]"),
                         ((given, given, None), r"dst\[1\]: overlaps dst\[0\]"),
                         ((luma, None, None), r"dst\[0\]: overlaps src\[0\]"),
                         ((None, room, None), r"dst\[1\]: overlaps src\[1\]"), ((given,), "dst: 3 planes, not 1")):
        with pytest.raises(ValueError, match=message):
            convert((luma, chroma), dst)
    with pytest.raises(ValueError, match=r"dst\[1\]: its rows are 60 bytes apart, those of dst\[0\] 48"):
        ravik.rvkDrawContourPlanaru8((given.copy(), np.zeros((40, 60), np.uint8)[:, :48], given.copy()),
                                     np.ones((1, 2), np.int32), np.ones(1, np.uint32), 1, 1, 2, 3)
    with pytest.raises(ValueError, match=r"src\[1\]: "):
        ravik.rvkChannelExtractu8((luma, chroma[1:]), ravik.RAVIK_FORMAT_NV12, ravik.RAVIK_CHANNEL_U)


def test_views_are_not_copied():
    whole = np.zeros((80, 100), np.uint8)
    left, right = whole[10:50, :48], whole[10:50, 50:98]
    left[:] = PICTURE
    assert ravik.rvkFilterThresholdu8(left, 100, right) is right
    np.testing.assert_array_equal(whole[10:50, 50:98], ravik.rvkFilterThresholdu8(PICTURE, 100))
    assert not whole[:10].any() and not whole[50:].any() and not whole[:, 98:].any()
    strides = np.zeros((40, 60), np.uint8)
    with pytest.raises(ValueError, match="src2: its rows are 48 bytes apart, those of src1 60"):
        absdiff(a=strides[:, :48])
    skipped = np.zeros(400, np.uint8)[1:].view(np.uint8)[:384].view(np.float32)
    with pytest.raises(ValueError, match="src: its elements are not aligned"):
        ravik.rvkAddScalarf32(skipped.reshape(8, 12), 1)


def test_numbers():
    for value, error in ((300, ValueError), (-1, ValueError), (1 << 70, ValueError), (1.5, TypeError),
                         (None, TypeError), ("1", TypeError)):
        with pytest.raises(error, match="value: "):
            ravik.rvkAbsDiffVu8(PICTURE, value)
    with pytest.raises(TypeError, match="windowSize|N|blockWidth"):
        ravik.rvkBlockDotProductu8(PICTURE, PICTURE, 2.5, 8)
    assert ravik.rvkAbsDiffVu8(PICTURE, np.uint8(3)).shape == (40, 48)


def test_what_no_size_or_number_can_be():
    """In functions that are written by hand, too: the parameter is named, and no memory filled."""
    huge = np.lib.stride_tricks.as_strided(PICTURE, (1 << 33, 1), (1, 1))
    points, levels = np.zeros((3, 2), np.float32), (PICTURE, PICTURE[:20, :24].copy())
    for call, error, message in (
            (lambda: ravik.rvkMeanShiftu8(PICTURE, huge, 3, 1.0), TypeError, "window: 4 numbers"),
            (lambda: ravik.rvkPyramidSobelGradientCreatei8((huge,)), ValueError, r"pyramid\[0\]: "),
            (lambda: ravik.rvkPyramidAllocate(1 << 40, 3, 3), ValueError, "baseWidth: "),
            (lambda: ravik.rvkPyramidAllocate_v2(48, -1, 1, 3, 0), ValueError, "baseHeight: "),
            (lambda: ravik.rvkPyramidAllocate_v3(48, 40, 1, 3, 0, 3.5), TypeError, "alignment: "),
            (lambda: ravik.rvkPyramidAllocate_v2(48, 40, 1, 2, 7), ravik.BadParam, "rvkPyramidAllocate_v2: "),
            (lambda: ravik.rvkMserNN8Init(48, 40, 5, 4, 300, "a", 0.5), TypeError, "maxVariation: "),
            (lambda: ravik.rvkTrackLKOpticalFlowu8(PICTURE, levels, points, 9, 9, 9, 0.1), TypeError, "pyr1: "),
            (lambda: ravik.rvkTrackLKOpticalFlowu8(levels, levels, points, 9, 9, 9, "a"), TypeError, "epsilon: "),
            (lambda: ravik.rvkChannelExtractu8(PICTURE, 77, 0), ValueError, "format: "),
            (lambda: ravik.rvkFilterThresholdu8(PICTURE, np.array("a")), TypeError, "threshold: "),
            (lambda: ravik.rvkScaleu8(PICTURE, 0, None, 0xFFFFFFFF, 0xFFFFFFFF), ValueError, "dst: ")):
        with pytest.raises(error, match=message):
            call()


def test_statuses_and_what_is_logged():
    with pytest.raises(ravik.BadParam, match="rvkFilterCannyu8") as caught:
        ravik.rvkFilterCannyu8(PICTURE, 4, 1, 2, 0)
    assert caught.value.status == ravik.RAVIK_EBADPARAM and isinstance(caught.value, ValueError)
    with pytest.raises(ValueError, match="Assertion failed @rvkFilterGaussian11x11u8: .*idth"):
        ravik.rvkFilterGaussian11x11u8(PICTURE[:5, :5].copy(), 1)
    with pytest.raises(ravik.BadParam):
        ravik.rvkMseru8(PICTURE, 0, 1, 2, 0.5, 0.5, 1, 1)
    with pytest.raises(ravik.BadParam):
        ravik.rvkSetOperationMode(ravik.RAVIK_OP_EXPERT | ravik.RAVIK_UNIT_FPGA)
    with pytest.raises(ValueError, match="no multiples of 4"):
        ravik.rvkPyramidCreateu8(PICTURE[:39], 3)  # in C this ends the process
    assert {ravik.NoResources, ravik.BadParam, ravik.UnalignParam} <= set(_errors.STATUSES.values())
    assert not _errors.taken_log()


def test_left_out_outputs():
    dx, dy = ravik.rvkFilterSobel3x3u8s16(PICTURE, 0, 0)
    only, nothing = ravik.rvkFilterSobel3x3u8s16(PICTURE, 0, 0, None, False)
    np.testing.assert_array_equal(only, dx)
    assert nothing is False and dy.shape == dx.shape


def test_handles_of_another_kind():
    with ravik.rvkFindContoursAllocate(9, 9) as workspace:
        for wrong in (workspace, None, 3, PICTURE):
            with pytest.raises(TypeError, match="handle: a MserHandle"):
                ravik.rvkMserNN8u8(wrong, PICTURE, 1, 1)
    with pytest.raises(ravik.NoResources):
        ravik.rvkFindContoursAllocate(0, 9)


def test_help_shows_the_comment_of_the_header():
    text = ravik.rvkFilterCannyu8.__doc__
    assert "apertureSize is 3, 5 or 7" in text and "<ravik/canny.h>" in text and "uint32_t srcWidth" in text
    assert "dx       int16 (h, w), made when left out; none with False\n" in text and "returns  dst, dx, dy\n" in text
    assert "src      the tuple (srcY, srcC)\n" in ravik.rvkColorYCrCbH2V1toRGB888u8.__doc__
    assert "rvkFilterCannyu8" in dir(ravik) and not hasattr(ravik, "rvkNoSuchFunction")


def test_threads():
    expected = ravik.rvkFilterMedian3x3u8(PICTURE)
    wrong = []

    def work(i):
        for k in range(300):
            if (i + k) % 3 == 0:
                try:
                    absdiff(PICTURE[:0], PICTURE[:0])
                except ValueError as error:
                    if "rvkAbsDiffu8" not in str(error):
                        wrong.append(error)
                else:
                    wrong.append("accepted")
            elif not np.array_equal(ravik.rvkFilterMedian3x3u8(PICTURE), expected):
                wrong.append("median")

    threads = [threading.Thread(target=work, args=(i,)) for i in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_other_threads_run_during_a_call():
    picture, ticks = np.zeros((2000, 2000), np.uint8), []
    done = threading.Event()

    def tick():
        while not done.wait(0.001):
            ticks.append(1)

    ticker = threading.Thread(target=tick)
    interval = sys.getswitchinterval()
    sys.setswitchinterval(60)  # nobody gives way but by releasing the lock
    try:
        ticker.start()
        for _ in range(5):
            ravik.rvkBilateralFilter9x9u8(picture)
    finally:
        done.set()
        ticker.join()
        sys.setswitchinterval(interval)
    assert len(ticks) > 5


def test_no_leak():
    def work(times):
        for i in range(times):
            absdiff()
            ravik.rvkCornerFast9u8(PICTURE, 10, 3, 50)
            ravik.rvkIntegratePatchu8_v3(PICTURE, 1, 2, 9, 9)
            with ravik.rvkFindContoursAllocate(48, 40), ravik.rvkPyramidAllocate(48, 40, 3):
                pass
            try:
                absdiff(b=None)
            except TypeError:
                pass

    work(500)
    gc.collect()
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    work(10000)
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 2000  # KiB; a pyramid has 2 KiB


def test_a_call_costs_little():
    """What Python adds to the C call, which is next to nothing for a small picture, does not depend on its size."""
    small, dst = np.zeros((2, 16), np.uint8), np.zeros((2, 16), np.uint8)
    least = min(timeit.repeat(lambda: ravik.rvkFilterThresholdu8(small, 3, dst), number=500, repeat=40)) / 500
    assert least < 3e-6
