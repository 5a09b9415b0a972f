"""A call of each function that its line in the tables describes, on arrays that end where readable memory does."""
import ctypes
import mmap
import re

import numpy as np
import ravik
from ravik import _declared, _words
from ravik._calls import SIZES, Function, Planes, element_type

PAGE = mmap.PAGESIZE
LIBC = ctypes.CDLL(None)


def guarded(shape, dtype, fill=0):
    """An array behind whose last element there is no memory."""
    dtype = np.dtype(dtype)
    size = int(np.prod(shape)) * dtype.itemsize
    whole = (size + PAGE - 1) // PAGE * PAGE
    memory = mmap.mmap(-1, whole + PAGE)
    address = ctypes.addressof(ctypes.c_char.from_buffer(memory))
    assert LIBC.mprotect(ctypes.c_void_p(address + whole), ctypes.c_size_t(PAGE), 0) == 0
    memory[:whole] = bytes([fill]) * whole
    return np.ndarray(shape, dtype, memory, whole - size)


def like(values, dtype):
    array = guarded(np.shape(values), dtype)
    array[...] = values
    return array


def picture(shape, dtype, random):
    """Blocks with noise: edges, corners and flat places."""
    rows, columns = shape[0], shape[1] if len(shape) > 1 else 1
    blocks = random.integers(0, 5, (rows // 8 + 1, columns // 8 + 1))
    values = blocks.repeat(8, 0).repeat(8, 1)[:rows, :columns] * 50 + random.integers(0, 8, (rows, columns))
    values = values.reshape(shape) if len(shape) < 3 else values[..., None] + random.integers(0, 8, shape)
    return values % 40 if np.dtype(dtype).itemsize > 2 else values


def function(name):
    return Function(name, _declared["functions"][name], _words[name])


def evaluated(formula, known):
    return int(eval(formula, {}, known))


def tree():
    vectors = picture((100, 36), np.int8, np.random.default_rng(5)).astype(np.int8)
    return ravik.rvkKDTreeCreate36s8f32(vectors, (1 / np.linalg.norm(vectors.astype(float), axis=1)).astype(np.float32))


HANDLES = {
    "MserHandle": lambda: ravik.rvkMserNN8Init(48, 40, 5, 4, 300, 0.5, 0.25),
    "CodeBookModel": lambda: ravik.rvkCreateBGCodeBookModel(48, 40),
    "HOG": lambda: ravik.rvkHOGInit(0, 8, 2, 1, 9),
    "KDTree": tree,
}


PICTURES = {"rvkFFTu8": (64, 32), "rvkIFFTf32": (64, 32), "rvkSolvef32": (30, 40)}  # of other sizes than 48 x 40


class Example:
    """What a call of a function passes."""

    def __init__(self, name, seed=1, size=None):
        self.function, self.random = function(name), np.random.default_rng(seed)
        width, height = size or PICTURES.get(name, (48, 40))
        self.known = {"_w": width, "_h": height, "_n": 50}
        self.arguments = {}
        for each in self.function.parameters:
            if each.role in ("number", "W", "H"):
                is_float = each.dtype.kind == "f"
                number = each.example[0] if is_float else int(each.example[0])
                self.known["_" + each.role if each.role in SIZES else each.name] = number
                self.arguments[each.name] = number
        if "contourSizes" in self.function.declaration["parameters"] and not self.function.of_role("count"):
            self.known["_n"] = 3
        for each in self.function.size_sources:
            self.arguments[each.name] = self.known[each.name] = self.read(each)
        for each in self.function.of_role("handle"):
            if not each.may_be_null:
                self.arguments[each.name] = self.known[each.name] = HANDLES[each.sizes[0]]()
        if name == "rvkKDTreeQuery36s8f32":  # what it takes must be right
            self.arguments["invLenQuery"] = 1 / np.linalg.norm(self.arguments["query"].astype(float))
        for each in self.function.of_role("struct"):
            self.arguments[each.name] = tuple(each.example)

    def shape(self, each):
        return tuple(evaluated(size, self.known) for size in each.shape)

    def read(self, each):
        if each.role == "pairs":
            src = self.random.uniform(1, 9, (50, int(each.sizes[0])))
            dst = src[:, :2] / src[:, 2:] if src.shape[1] == 3 else src + 1
            return like(src, np.float32), like(dst, np.float32), like(np.ones(50), np.uint8)
        if each.role == "rows":
            return like(picture((self.known["_n"], evaluated(each.sizes[0], self.known)), np.uint8, self.random),
                        element_type(each.element.item))
        shape = self.shape(each)
        if each.example:
            return like(each.example, each.dtype)
        if each.sizes == ["_n", "_n"]:
            return like(100 * np.eye(shape[0]) + 1, each.dtype)
        if each.name == "children":  # all leaves
            return like(np.arange(shape[0] * shape[1]).reshape(shape) + (1 << 31), each.dtype)
        if each.name == "contourSizes":
            return like([4, 3, 5], each.dtype)
        if re.search("points|seeds|xy", each.name):
            return like(self.random.integers(1, 39, shape), each.dtype)
        return like(picture(shape, each.dtype, self.random), each.dtype)

    def destinations(self, fill):
        return self.together({each.name: guarded(self.shape(each), each.dtype, fill if each.role == "out" else 0)
                              for each in self.function.destinations})

    def together(self, values):
        """What of these values of C parameters a call takes, planes of a picture as a tuple."""
        taken = {}
        for each in sum(self.function.arguments(), []):
            if isinstance(each, Planes):
                planes = tuple(values[plane.name] for plane in each.planes if plane.name in values)
                taken.update({each.name: planes} if planes else {})
            elif each.name in values:
                taken[each.name] = values[each.name]
        return taken

    def copied(self):
        return self.together({name: like(value, value.dtype) if isinstance(value, np.ndarray) else value
                              for name, value in self.arguments.items()})
