"""Computer vision on NumPy arrays: the functions of the library ravik under their own names.

    edges = ravik.rvkFilterCannyu8(picture, 3, 50, 100, ravik.RAVIK_CANNY_NORM_L1)

Widths, heights and strides come from the arrays: pictures are arrays of rows and columns, and of channels where they
have more than one; those of several planes are tuples of arrays. Rows must be contiguous, and nothing is copied. What
a function writes it returns, in the order of its parameters; a destination may be given, is made where it is left out,
and False stands for one that is not wanted. Lists have as many rows as were found. Bad arguments raise TypeError or
ValueError, statuses their own exceptions. Other threads run during calls. help() of a function shows its arrays, and
what its header says.

Functions run on the vector code of this processor; rvkSetOperationMode chooses other implementations, and no other call
may be under way while it does.
"""
import json as _json
from inspect import cleandoc as _cleandoc
from pathlib import Path as _Path

from . import _structures
from ._errors import (BadParam, Error, Fail, HwGpu, HwNdsp, InvalState, NoResources, UnalignParam,  # noqa: F401
                      Unsupported)
from ._calls import Function as _Function, compiled as _compiled, documentation as _documentation, read_table
from ._ravik import lib as _lib
from ._structures import (HOG, CodeBookModel, ContourWorkspace, Handle, KDTree, MserHandle,  # noqa: F401
                          Pyramid)

_declared = _json.loads(_Path(__file__).with_name("declarations.json").read_text())
_words = {name: words for name, words in read_table().items() if name in _declared["functions"]}

globals().update({_name: getattr(_lib, _name) for _name in dir(_lib) if _name.startswith("RAVIK_")})


def _made(name):
    declaration = _declared["functions"][name]
    head = _declared["headers"][declaration["header"]]
    by_hand = getattr(_structures, name, None)
    if by_hand is None:
        return _compiled(_Function(name, declaration, _words[name]), head)
    by_hand.__doc__ = (_cleandoc(by_hand.__doc__ or "") + "\n\n" + _documentation(declaration, head)).lstrip()
    by_hand.__module__ = "ravik"
    return by_hand


def __getattr__(name):
    if name not in _declared["functions"]:
        raise AttributeError(f"module 'ravik' has no attribute {name!r}")
    function = globals()[name] = _made(name)
    return function


def __dir__():
    return sorted({*globals(), *_declared["functions"]})


__version__ = _structures.rvkGetVersion()
_lib.rvkSetOperationMode(_lib.RAVIK_OP_CPU_PERFORMANCE)
