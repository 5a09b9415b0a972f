"""The functions that make, take or release more than arrays and numbers: handles, memory, pyramids."""
from __future__ import annotations

import threading
from collections.abc import Sequence

import numpy as np

from . import _arrays
from ._errors import NoResources, failed, logged
from ._ravik import ffi, lib

BYTES, SINGLE = np.dtype(np.uint8), np.dtype(np.float32)

# ---- handles ---------------------------------------------------------------------------------------------------------


class Handle:
    """Something of the library that is released at the end of a `with` block, by its function, or when nothing refers
    to it any more; not before calls that use it have ended. It serves one call at a time; other threads wait."""

    def __init__(self, pointer, release):
        self._pointer = ffi.gc(pointer, release)
        self._lock = threading.Lock()

    def close(self):
        self._pointer = None

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.close()

    def in_use(self):
        return InUse(self)


class SharedHandle(Handle):
    """One that any number of calls may use at once."""

    def in_use(self):
        return Shared(self)


class Shared:
    """The pointer of a handle for the time of a call."""

    def __init__(self, handle):
        self._handle = handle

    def __enter__(self):
        pointer = self._handle._pointer
        if pointer is None:
            raise ValueError(f"{type(self._handle).__name__}: already released")
        return pointer

    def __exit__(self, *error):
        pass


class InUse(Shared):
    """The same for one call at a time."""

    def __enter__(self):
        self._handle._lock.acquire()
        try:
            return super().__enter__()
        except ValueError:
            self._handle._lock.release()
            raise

    def __exit__(self, *error):
        self._handle._lock.release()


class ContourWorkspace(Handle):
    """What rvkFindContoursAllocate makes."""


class MserHandle(Handle):
    """What rvkMserNN8Init makes."""


class CodeBookModel(Handle):
    """What rvkCreateBGCodeBookModel makes."""

    def __init__(self, pointer, release, width, height):
        super().__init__(pointer, release)
        self.width, self.height = width, height


class KDTree(SharedHandle):
    """What rvkKDTreeCreate36s8f32 makes."""


class HOG(SharedHandle):
    """What rvkHOGInit makes; it knows the size of descriptors."""

    def __init__(self, pointer, release, method, cell, block, step, bins):
        super().__init__(pointer, release)
        is_fhog = method == lib.RAVIK_HOG_FHOG
        self._cell, self._block, self._step = cell, 1 if is_fhog else block, 1 if is_fhog else step
        self._values = 31 if is_fhog else block * block * bins

    def _blocks(self, pixels):
        return max((pixels // self._cell - self._block) // self._step + 1, 0)

    def columns(self, width):
        return self._blocks(width) * self._values

    def rows(self, height):
        return self._blocks(height)


class NoHandle:
    """Stands for a handle that was not given."""

    def __enter__(self):
        return ffi.NULL

    def __exit__(self, *error):
        pass


def checked(handle, name, kind):
    if not isinstance(handle, kind):
        raise TypeError(f"{name}: a {kind.__name__}, not {type(handle).__name__}")
    return handle


def used(handle, name, kind, may_be_none):
    """A handle of this kind, for the time of a call."""
    return NoHandle() if handle is None and may_be_none else checked(handle, name, kind).in_use()


def rvkFindContoursAllocate(maxWidth, maxHeight) -> ContourWorkspace:
    """Returns a ContourWorkspace."""
    workspace = lib.rvkFindContoursAllocate(_arrays.whole(maxWidth, "maxWidth"), _arrays.whole(maxHeight, "maxHeight"))
    if workspace == ffi.NULL:
        raise NoResources(f"rvkFindContoursAllocate: no workspace for {maxWidth} x {maxHeight}")
    return ContourWorkspace(workspace, lib.rvkFindContoursDelete)


def rvkFindContoursDelete(workspace) -> None:
    if workspace is not None:
        checked(workspace, "workspace", ContourWorkspace).close()


def rvkMserNN8Init(maxWidth, maxHeight, delta, minArea, maxArea, maxVariation, minDiversity) -> MserHandle:
    """Returns an MserHandle; rvkMemFree, or a `with` block, releases it."""
    handle = ffi.new("void**")
    numbers = [_arrays.whole(number, name) for number, name in (
        (maxWidth, "maxWidth"), (maxHeight, "maxHeight"), (delta, "delta"), (minArea, "minArea"), (maxArea, "maxArea"))]
    numbers += [_arrays.real(maxVariation, "maxVariation"), _arrays.real(minDiversity, "minDiversity")]
    if lib.rvkMserNN8Init(*numbers, handle) != 1:
        raise failed("rvkMserNN8Init", -1)
    return MserHandle(handle[0], lib.rvkMemFree)


def rvkCreateBGCodeBookModel(srcWidth, srcHeight) -> CodeBookModel:
    """Returns a CodeBookModel."""
    width, height = _arrays.whole(srcWidth, "srcWidth"), _arrays.whole(srcHeight, "srcHeight")
    model = ffi.new("rvkBGCodeBookModel**")
    status = lib.rvkCreateBGCodeBookModel(width, height, model)
    if status:
        raise failed("rvkCreateBGCodeBookModel", status)

    def release(pointer):
        lib.rvkReleaseBGCodeBookModel(ffi.new("rvkBGCodeBookModel**", pointer))

    return CodeBookModel(model[0], release, width, height)


def rvkReleaseBGCodeBookModel(model) -> None:
    if model is not None:
        checked(model, "model", CodeBookModel).close()


def rvkBGCodeBookClearStaleu8(model, staleThreshold, mask=None) -> None:
    size = checked(model, "model", CodeBookModel).height, model.width
    pointer, stride = ffi.NULL, 0
    if mask is not None:
        pointer, stride, _ = _arrays.picture(mask, "mask", BYTES, "uint8_t*", size, False)
    with model.in_use() as book:
        status = lib.rvkBGCodeBookClearStaleu8(book, _arrays.whole(staleThreshold, "staleThreshold"), pointer, size[1],
                                               size[0], stride)
    if status:
        raise failed("rvkBGCodeBookClearStaleu8", status)


def rvkHOGInit(method, cellSize, blockSize, blockStep, binCount) -> HOG:
    """Returns a HOG."""
    numbers = [_arrays.whole(number, name) for number, name in (
        (method, "method"), (cellSize, "cellSize"), (blockSize, "blockSize"), (blockStep, "blockStep"),
        (binCount, "binCount"))]
    hog = ffi.new("rvkHOG**")
    status = lib.rvkHOGInit(*numbers, hog)
    if status:
        raise failed("rvkHOGInit", status)
    return HOG(hog[0], lib.rvkHOGDeInit, *numbers)


def rvkHOGDeInit(hog) -> None:
    if hog is not None:
        checked(hog, "hog", HOG).close()


def rvkKDTreeCreate36s8f32(vectors, invLengths) -> KDTree:
    """Returns a KDTree."""
    pointer, _, (count, _) = _arrays.picture(vectors, "vectors", np.dtype(np.int8), "int8_t*", (None, 36), True)
    lengths, _ = _arrays.vector(invLengths, "invLengths", SINGLE, "float*", count)
    tree = ffi.new("rvkKDTree36s8f32**")
    status = lib.rvkKDTreeCreate36s8f32(pointer, lengths, _arrays.whole(count, "vectors"), tree)
    if status:
        raise failed("rvkKDTreeCreate36s8f32", status)
    return KDTree(tree[0], lib.rvkKDTreeDestroy36s8f32)


def rvkKDTreeDestroy36s8f32(tree) -> None:
    if tree is not None:
        checked(tree, "tree", KDTree).close()


# ---- frame -----------------------------------------------------------------------------------------------------------


def owned(pointer, size, owner):
    """Bytes of the library as a buffer, which keeps their owner alive."""
    return ffi.buffer(ffi.gc(ffi.cast("char*", pointer), lambda _, owner=owner: None), size)


def rvkMemAlloc(nBytes, byteAlignment) -> NDArray[np.uint8]:
    """Returns an array of bytes. Its memory is released when nothing refers to it any more."""
    size = _arrays.whole(nBytes, "nBytes")
    pointer = lib.rvkMemAlloc(size, _arrays.whole(byteAlignment, "byteAlignment"))
    if pointer == ffi.NULL:
        raise NoResources(f"rvkMemAlloc: no {nBytes} bytes at a multiple of {byteAlignment}")
    return np.frombuffer(owned(pointer, size, ffi.gc(pointer, lib.rvkMemFree)), np.uint8)


def rvkMemFree(ptr) -> None:
    """Releases a handle at once. Arrays of rvkMemAlloc are released when nothing refers to them any more."""
    if isinstance(ptr, Handle):
        ptr.close()
    elif ptr is not None and not isinstance(ptr, np.ndarray):
        raise TypeError(f"ptr: a handle or an array, not {type(ptr).__name__}")


def address_or_null(ptr):
    if ptr is None:
        return ffi.NULL
    if not isinstance(ptr, np.ndarray):
        raise TypeError(f"ptr: an array, not {type(ptr).__name__}")
    return _arrays.address(ptr, "void*")


def rvkHeapStatsMalloc(ptr, size) -> None:
    lib.rvkHeapStatsMalloc(address_or_null(ptr), _arrays.whole(size, "size"))


def rvkHeapStatsFree(ptr) -> None:
    lib.rvkHeapStatsFree(address_or_null(ptr))


def operation_mode(mode):
    """The signed number that C has for a mode."""
    number = _arrays.whole(mode, "mode")
    return number - (1 << 32) if number >> 31 else number


def rvkSetOperationMode(mode) -> None:
    """No other call may be under way."""
    if lib.rvkSetOperationMode(operation_mode(mode)):
        raise failed("rvkSetOperationMode", -1)


def rvkAvailableHardware(mode) -> int:
    return lib.rvkAvailableHardware(operation_mode(mode))


def rvkGetVersion() -> str:
    """Returns the version as a string."""
    version = ffi.new("char[]", 16)
    lib.rvkGetVersion(version, 16)
    return ffi.string(version).decode()


# ---- pyramids --------------------------------------------------------------------------------------------------------


class Pyramid(Sequence):
    """The levels that rvkPyramidAllocate made, as arrays; None for a base that is the caller's. Memory is released when
    the pyramid is, by rvkPyramidDelete or at the end of a `with` block, and no array refers to it any more."""

    def __init__(self, levels):
        self._levels = levels

    def __getitem__(self, index):
        return self._levels[index]

    def __len__(self):
        return len(self._levels)

    def close(self):
        self._levels = ()

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.close()


def levels_number(number):
    if not 1 <= _arrays.whole(number, "numLevels") <= 32:
        raise ValueError(f"numLevels: {number} is not between 1 and 32")
    return number


def allocated(name, structure, release, **numbers):
    """Calls a function with these numbers, which stand in its order."""
    numbers = {each: _arrays.whole(number, each) for each, number in numbers.items()}
    count = levels_number(numbers["numLevels"])
    first, pixel = numbers.get("firstLevel", 1), numbers.get("elementSize", 1)
    levels = ffi.new(f"{structure}[]", count)
    status = getattr(lib, name)(levels, *numbers.values())
    if status:
        raise failed(name, status)
    owner = ffi.gc(levels, lambda levels: release(levels, count, first))
    types = {1: BYTES, 2: np.dtype(np.uint16), 4: SINGLE, 8: np.dtype(np.uint64)}
    dtype = types.get(pixel, np.dtype(f"V{pixel}"))

    def array(level):
        stride = getattr(level, "stride", 0) or level.width * pixel
        memory = owned(level.ptr, stride * level.height, owner)
        return np.ndarray((level.height, level.width), dtype, memory, 0, (stride, pixel))

    return Pyramid(tuple(None if k < first else array(levels[k]) for k in range(count)))


def rvkPyramidAllocate(baseWidth, baseHeight, numLevels) -> Pyramid:
    """Returns a Pyramid."""
    return allocated("rvkPyramidAllocate", "rvkPyramidLevel", lib.rvkPyramidDelete, baseWidth=baseWidth,
                     baseHeight=baseHeight, numLevels=numLevels)


def rvkPyramidAllocate_v2(baseWidth, baseHeight, elementSize, numLevels, firstLevel) -> Pyramid:
    """Returns a Pyramid."""
    return allocated("rvkPyramidAllocate_v2", "rvkPyramidLevel", lib.rvkPyramidDelete, baseWidth=baseWidth,
                     baseHeight=baseHeight, elementSize=elementSize, numLevels=numLevels, firstLevel=firstLevel)


def rvkPyramidAllocate_v3(baseWidth, baseHeight, elementSize, numLevels, firstLevel, alignment) -> Pyramid:
    """Returns a Pyramid."""
    return allocated("rvkPyramidAllocate_v3", "rvkPyramidLevel_v2", lib.rvkPyramidDelete_v2, baseWidth=baseWidth,
                     baseHeight=baseHeight, elementSize=elementSize, numLevels=numLevels, firstLevel=firstLevel,
                     alignment=alignment)


def rvkPyramidDelete(pyramid) -> None:
    if pyramid is not None:
        if not isinstance(pyramid, Pyramid):
            raise TypeError(f"pyramid: a Pyramid, not {type(pyramid).__name__}")
        pyramid.close()


rvkPyramidDelete_v2 = rvkPyramidDelete


def described(levels, name, dtype, structure, is_written):
    """The structures of levels; rows are packed where the structure has no stride. `levels` must stay alive."""
    is_packed = structure == "rvkPyramidLevel"
    structures = ffi.new(f"{structure}[]", len(levels))
    for k, level in enumerate(levels):
        pointer, stride, (height, width) = _arrays.picture(level, f"{name}[{k}]", dtype, "char*", (None, None),
                                                           is_packed, is_written and k > 0)
        structures[k].ptr, structures[k].width, structures[k].height = pointer, width, height
        if not is_packed:
            structures[k].stride = stride
    return structures


def apart(written, others):
    """Refuses levels that share memory with others."""
    for i, (name, level) in enumerate(written):
        for other_name, other in others + written[:i]:
            _arrays.overlap(name, level, other_name, other)


def named(levels, name):
    return [(f"{name}[{k}]", level) for k, level in enumerate(levels)]


def level_list(levels, name, count=None):
    if not isinstance(levels, Sequence) or count not in (None, len(levels)):
        raise TypeError(f"{name}: a sequence of {count or 'several'} arrays")
    return levels


def created(name, dtype, structure, base, numLevels, pyramid, *more):
    count = levels_number(numLevels)
    ctype = "uint8_t*" if dtype is BYTES else "float*"
    pointer, stride, (height, width) = _arrays.picture(base, "base", dtype, ctype, (None, None),
                                                       structure == "rvkPyramidLevel")
    if (width | height) % (1 << count - 1) and name != "rvkPyramidCreateu8_v3":
        raise ValueError(f"base: {width} x {height} are no multiples of {1 << count - 1}")
    sizes = [(height >> k, width >> k) for k in range(1, count)]
    if pyramid is None:
        levels = [base] + [np.empty(size, dtype) for size in sizes]
    else:
        levels = [base, *level_list(pyramid, "pyramid", count)[1:]]
    structures = described(levels, "pyramid", dtype, structure, True)
    for k, size in enumerate(sizes, 1):
        if levels[k].shape != size:
            raise ValueError(f"pyramid[{k}]: {_arrays.shown(levels[k].shape)}, not {_arrays.shown(size)}")
    apart(named(levels, "pyramid")[1:], [("base", base)])
    strides = [] if structure == "rvkPyramidLevel" else [stride]
    status = getattr(lib, name)(pointer, width, height, *strides, count, structures, *more)
    if status:
        raise failed(name, status)
    return tuple(levels)


def rvkPyramidCreateu8(base, numLevels, pyramid=None) -> Levels:
    """Returns the levels, the base first; those after it are made, or those of `pyramid`."""
    return created("rvkPyramidCreateu8", BYTES, "rvkPyramidLevel", base, numLevels, pyramid)


def rvkPyramidCreateu8_v2(base, numLevels, pyramid=None) -> Levels:
    """Returns the levels, the base first; those after it are made, or those of `pyramid`."""
    return created("rvkPyramidCreateu8_v2", BYTES, "rvkPyramidLevel_v2", base, numLevels, pyramid)


def rvkPyramidCreateu8_v3(base, numLevels, kernelSize, pyramid=None) -> Levels:
    """Returns the levels, the base first; those after it are made, or those of `pyramid`."""
    return created("rvkPyramidCreateu8_v3", BYTES, "rvkPyramidLevel_v2", base, numLevels, pyramid,
                   _arrays.whole(kernelSize, "kernelSize"))


def rvkPyramidCreatef32(base, numLevels, pyramid=None) -> Levels:
    """Returns the levels, the base first; those after it are made, or those of `pyramid`."""
    return created("rvkPyramidCreatef32", SINGLE, "rvkPyramidLevel", base, numLevels, pyramid)


def rvkPyramidCreatef32_v2(base, numLevels, pyramid=None) -> Levels:
    """Returns the levels, the base first; those after it are made, or those of `pyramid`."""
    return created("rvkPyramidCreatef32_v2", SINGLE, "rvkPyramidLevel_v2", base, numLevels, pyramid)


def derived(name, dtype, derivative, pyramid, dxPyramid, dyPyramid):
    levels = tuple(level_list(pyramid, "pyramid"))
    structures = described(levels, "pyramid", dtype, "rvkPyramidLevel", False)
    outputs = []
    for output, given in (("dxPyramid", dxPyramid), ("dyPyramid", dyPyramid)):
        made = [np.zeros(level.shape, derivative) for level in levels] if given is None else \
            list(level_list(given, output, len(levels)))
        outputs.append((made, described(made, output, derivative, "rvkPyramidLevel", True)))
        for k, (level, each) in enumerate(zip(levels, made)):
            if each.shape != level.shape or not each.flags.writeable:
                raise ValueError(f"{output}[{k}]: not writeable, or not of the size of its level")
    (dx, dx_structures), (dy, dy_structures) = outputs
    apart(named(dx, "dxPyramid") + named(dy, "dyPyramid"), named(levels, "pyramid"))
    status = getattr(lib, name)(structures, dx_structures, dy_structures, len(levels))
    if status:
        raise failed(name, status)
    return tuple(dx), tuple(dy)


def rvkPyramidSobelGradientCreatei8(pyramid, dxPyramid=None, dyPyramid=None) -> tuple[Levels, Levels]:
    """Returns the levels of dx and those of dy."""
    return derived("rvkPyramidSobelGradientCreatei8", BYTES, np.dtype(np.int8), pyramid, dxPyramid, dyPyramid)


def rvkPyramidSobelGradientCreatef32(pyramid, dxPyramid=None, dyPyramid=None) -> tuple[Levels, Levels]:
    """Returns the levels of dx and those of dy."""
    return derived("rvkPyramidSobelGradientCreatef32", SINGLE, SINGLE, pyramid, dxPyramid, dyPyramid)


# ---- tracking in pyramids --------------------------------------------------------------------------------------------


def tracked(name, dtype, structure, pyr1, pyr2, points1, points2, status, errors, numbers, *more):
    """Calls a function of two pyramids; `numbers` come after the points, `more` after the errors. Returns points2,
    status and errors, those that the function has."""
    count = levels_number(len(level_list(pyr1, "pyr1")))
    first = described(pyr1, "pyr1", dtype, structure, False)
    second = described(level_list(pyr2, "pyr2", count), "pyr2", dtype, structure, False)
    pointer, _, (points, _) = _arrays.picture(points1, "points1", SINGLE, "float*", (None, 2), True)
    has_errors = errors is not False
    results = [np.zeros((points, 2), np.float32) if points2 is None else points2,
               np.zeros(points, np.uint8) if status is None else status]
    outputs = [_arrays.picture(results[0], "points2", SINGLE, "float*", (points, 2), True, True)[0],
               _arrays.vector(results[1], "status", BYTES, "uint8_t*", points, True)[0]]
    if has_errors:
        results.append(np.zeros(points, np.float32) if errors is None else errors)
        outputs.append(_arrays.vector(results[2], "errors", SINGLE, "float*", points, True)[0])
    apart(list(zip(("points2", "status", "errors"), results)),
          [("points1", points1), *named(pyr1, "pyr1"), *named(pyr2, "pyr2")])
    has_status = name != "rvkTrackLKOpticalFlowu8"
    if has_status and not has_errors:
        outputs.append(ffi.NULL)
    result = getattr(lib, name)(first, second, count, pointer, outputs[0], points, *numbers, *outputs[1:], *more)
    if result:
        raise failed(name, result)
    if not has_status and lib.ravikHasLogged():
        raise logged(name)
    return tuple(results)


def window_numbers(winWidth, winHeight, maxIterations, epsilon, *minEigenvalue):
    whole = [_arrays.whole(number, name) for number, name in (
        (winWidth, "winWidth"), (winHeight, "winHeight"), (maxIterations, "maxIterations"))]
    return whole + [_arrays.real(number, name) for number, name in (
        (epsilon, "epsilon"), *((number, "minEigenvalue") for number in minEigenvalue))]


def rvkTrackLKOpticalFlowu8(pyr1, pyr2, points1, winWidth, winHeight, maxIterations, epsilon, points2=None,
                            status=None) -> Levels:
    """Returns points2 and status."""
    return tracked("rvkTrackLKOpticalFlowu8", BYTES, "rvkPyramidLevel", pyr1, pyr2, points1, points2, status, False,
                   window_numbers(winWidth, winHeight, maxIterations, epsilon))


def rvkTrackLKOpticalFlowu8_v2(pyr1, pyr2, points1, winWidth, winHeight, maxIterations, epsilon, minEigenvalue,
                               points2=None, status=None, errors=None) -> Levels:
    """Returns points2, status and, unless that is False, errors."""
    return tracked("rvkTrackLKOpticalFlowu8_v2", BYTES, "rvkPyramidLevel", pyr1, pyr2, points1, points2, status, errors,
                   window_numbers(winWidth, winHeight, maxIterations, epsilon, minEigenvalue))


def rvkTrackLKOpticalFlowu8_v3(pyr1, pyr2, points1, winWidth, winHeight, maxIterations, epsilon, minEigenvalue,
                               points2=None, status=None, errors=None, useGuess=0) -> Levels:
    """Returns points2, status and, unless that is False, errors. With a guess, points2 has it."""
    return tracked("rvkTrackLKOpticalFlowu8_v3", BYTES, "rvkPyramidLevel_v2", pyr1, pyr2, points1, points2, status,
                   errors, window_numbers(winWidth, winHeight, maxIterations, epsilon, minEigenvalue),
                   _arrays.whole(useGuess, "useGuess"))


def rvkTrackLKOpticalFlowf32(pyr1, pyr2, points1, winWidth, winHeight, maxIterations, epsilon, minEigenvalue,
                             points2=None, status=None, errors=None) -> Levels:
    """Returns points2, status and, unless that is False, errors."""
    return tracked("rvkTrackLKOpticalFlowf32", SINGLE, "rvkPyramidLevel", pyr1, pyr2, points1, points2, status, errors,
                   window_numbers(winWidth, winHeight, maxIterations, epsilon, minEigenvalue))


# ---- pictures of several formats -------------------------------------------------------------------------------------


FORMATS = {getattr(lib, name) for name in dir(lib) if name.startswith("RAVIK_FORMAT_")}


def rvkChannelExtractu8(src, format, channel, dst=None) -> NDArray[np.uint8]:
    """Pictures are of rows, columns and bytes: (h, w, 3) of RGB, (h, w, 4) of RGBA, (h, w / 2, 4) of UYVY and YUYV,
    whose groups hold two pixels; of NV12 and NV21 a tuple of two planes, (h, w) and (h / 2, w / 2, 2)."""
    numbers = _arrays.whole(format, "format"), _arrays.whole(channel, "channel")
    if format not in FORMATS:
        raise ValueError(f"format: {format} is none of RAVIK_FORMAT_...")
    has_planes = format in (lib.RAVIK_FORMAT_NV12, lib.RAVIK_FORMAT_NV21)
    has_groups = format in (lib.RAVIK_FORMAT_UYVY, lib.RAVIK_FORMAT_YUYV)
    bytes_of_pixel = () if has_planes else (3,) if format == lib.RAVIK_FORMAT_RGB else (4,)
    luma, chroma = _arrays.planes(src, "src", 2) if has_planes else (src, None)
    label = "src[0]" if has_planes else "src"
    pointer, stride, shape = _arrays.picture(luma, label, BYTES, "uint8_t*", (None, None, *bytes_of_pixel), False)
    height, width = shape[0], shape[1] * (2 if has_groups else 1)
    chroma_pointer, chroma_stride = ffi.NULL, 0
    if has_planes:
        chroma_pointer, chroma_stride, _ = _arrays.picture(chroma, "src[1]", BYTES, "uint8_t*",
                                                           ((height + 1) // 2, (width + 1) // 2, 2), False)
    is_chroma = channel in (lib.RAVIK_CHANNEL_U, lib.RAVIK_CHANNEL_V)
    size = ((height + 1) // 2 if is_chroma and has_planes else height,
            (width + 1) // 2 if is_chroma and (has_planes or has_groups) else width)
    result = np.empty(size, np.uint8) if dst is None else dst
    out, out_stride, _ = _arrays.picture(result, "dst", BYTES, "uint8_t*", size, False, True)
    _arrays.overlap("dst", result, label, luma)
    if has_planes:
        _arrays.overlap("dst", result, "src[1]", chroma)
    status = lib.rvkChannelExtractu8(pointer, width, height, stride, chroma_pointer, chroma_stride, *numbers, out,
                                     out_stride)
    if status:
        raise failed("rvkChannelExtractu8", status)
    return result
