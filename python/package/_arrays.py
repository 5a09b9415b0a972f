"""What Python functions check of their arguments before C sees them, where the short way through a generated function
did not accept an array at once."""
import operator
from numbers import Real

import numpy as np

from ._ravik import ffi

ndarray = np.ndarray


def whole(value, name):
    """A number that sizes follow from."""
    try:
        number = operator.index(value)
    except TypeError:
        raise TypeError(f"{name}: a whole number, not {type(value).__name__}") from None
    if not 0 <= number < 1 << 32:
        raise ValueError(f"{name}: {number} is not between 0 and 2**32 - 1")
    return number


def real(value, name):
    """A number that goes to a float."""
    if not isinstance(value, Real):
        raise TypeError(f"{name}: a number, not {type(value).__name__}")
    return value


def unmade(error, name):
    """The exception for an array that cannot be made: it would be too large."""
    kind = MemoryError if isinstance(error, MemoryError) else ValueError
    return kind(f"{name}: {error}")


def array(value, name, dtype):
    """Refuses what is no array of these elements."""
    if not isinstance(value, ndarray):
        raise TypeError(f"{name}: a NumPy array of {dtype}, not {type(value).__name__}")
    if value.dtype != dtype:
        raise TypeError(f"{name}: elements of {dtype}, not {value.dtype}")
    if not value.flags.aligned:
        raise ValueError(f"{name}: its elements are not aligned")


def address(value, ctype):
    """A pointer to the first element of any array, which must stay alive."""
    return ffi.cast(ctype, value.__array_interface__["data"][0])


def shown(shape):
    return " x ".join("any" if size is None else str(size) for size in shape) or "a single element"


def picture(value, name, dtype, ctype, shape, is_packed, is_written=False):
    """A picture whose size is `shape`, in which None takes any number: the pointer, the stride and the size."""
    array(value, name, dtype)
    if value.ndim != len(shape) or any(wanted not in (None, size) for wanted, size in zip(shape, value.shape)):
        raise ValueError(f"{name}: an array of {shown(shape)}, not {shown(value.shape)}")
    if is_written and not value.flags.writeable:
        raise ValueError(f"{name}: read-only")
    row = value.itemsize
    for size, step in zip(value.shape[:0:-1], value.strides[:0:-1]):
        if size > 1 and step != row and value.size:
            raise ValueError(f"{name}: its rows are not contiguous; numpy.ascontiguousarray copies them")
        row *= size
    stride = value.strides[0] if value.shape[0] > 1 and value.size else row
    if stride < row or (is_packed and stride != row):
        raise ValueError(f"{name}: its rows must follow each other" + (" without a gap" if is_packed else ""))
    if max(stride, *value.shape) >> 32:
        raise ValueError(f"{name}: {shown(value.shape)} is more than 32 bits count")
    return address(value, ctype), stride, value.shape


def vector(value, name, dtype, ctype, length, is_written=False):
    """An array of any shape, packed, of so many elements or, for None, any number."""
    array(value, name, dtype)
    if length not in (None, value.size):
        raise ValueError(f"{name}: {length} elements, not {value.size}")
    if not value.flags.c_contiguous:
        raise ValueError(f"{name}: its elements are not contiguous; numpy.ascontiguousarray copies them")
    if is_written and not value.flags.writeable:
        raise ValueError(f"{name}: read-only")
    return address(value, ctype), value.size


def reaches(name, shape, columns, rows):
    """Refuses a picture that ends before a rectangle in it does."""
    if shape[1] < columns or shape[0] < rows:
        raise ValueError(f"{name}: {shape[1]} x {shape[0]} pixels do not hold a rectangle that ends at {columns}, "
                         f"{rows}")


def square(value, name):
    if value.shape[0] != value.shape[1]:
        raise ValueError(f"{name}: a square matrix, not {shown(value.shape)}")


def second_size(destination, width, height, width_name, height_name):
    """The size of a destination, or that of which it shall be made."""
    if isinstance(destination, ndarray) and destination.ndim > 1:
        size = destination.shape[1], destination.shape[0]
        if (width is not None and width != size[0]) or (height is not None and height != size[1]):
            raise ValueError(f"{width_name}, {height_name}: {width} x {height}, but the destination has "
                             f"{size[0]} x {size[1]}")
        return size
    return whole(width, width_name), whole(height, height_name)


def one_stride(name, stride, other_name, other_stride):
    """Refuses pictures that have one stride parameter and different strides."""
    if stride != other_stride:
        raise ValueError(f"{other_name}: its rows are {other_stride} bytes apart, those of {name} {stride}; they must "
                         "be the same")


def overlap(name, value, other_name, other):
    """Refuses a destination that shares memory with another array, or one of several."""
    for each in other if isinstance(other, tuple) else (other,):
        if each is not None and np.shares_memory(value, each):
            raise ValueError(f"{name}: overlaps {other_name}")


def record(value, name, dtype):
    """A structure, from one or from its fields in their order."""
    try:
        if len(value) == len(dtype.names):
            return np.array([tuple(value)], dtype)
    except (TypeError, ValueError, OverflowError):
        pass
    raise TypeError(f"{name}: {len(dtype.names)} numbers, {', '.join(dtype.names)}")


def rows_of(value, name, dtype, ctype, columns):
    """A list of pointers to the rows of an array, and how many there are."""
    pointer, stride, shape = picture(value, name, dtype, ctype, (None, columns), False)
    first = ffi.cast("char*", pointer)
    pointers = ffi.new(f"{ctype.cname}[]", [ffi.cast(ctype, first + stride * i) for i in range(shape[0])])
    return pointers, shape[0]


def planes(value, name, count):
    """The planes of a picture that has several."""
    if not isinstance(value, tuple):
        raise TypeError(f"{name}: a tuple of {count} planes, not {type(value).__name__}")
    if len(value) != count:
        raise ValueError(f"{name}: {count} planes, not {len(value)}")
    return value


def pairs(value, name, coordinates):
    """The structure of correspondences: of points, points and, perhaps, a mask."""
    if not isinstance(value, tuple) or len(value) not in (2, 3):
        raise TypeError(f"{name}: a tuple of points, points and, perhaps, a mask")
    single = np.dtype(np.float32)
    src, src_stride, shape = picture(value[0], f"{name}[0]", single, "float*", (None, coordinates), False)
    dst, dst_stride, shape = picture(value[1], f"{name}[1]", single, "float*", (shape[0], 2), False)
    mask = ffi.NULL
    if len(value) == 3 and value[2] is not None:
        mask, _ = vector(value[2], f"{name}[2]", np.dtype(np.uint8), "uint8_t*", shape[0])
    if shape[0] >= 1 << 32:
        raise ValueError(f"{name}: too many points")
    structure = ffi.new("rvkaCorrespondences*", [src, src_stride, dst, dst_stride, shape[0], mask])
    return structure, shape[0]
