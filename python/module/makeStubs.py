"""Writes the stubs of the package, __init__.pyi, from the functions that it makes: makeStubs.py FOLDER."""
import inspect
import sys
from pathlib import Path

import ravik
from ravik import _structures
from ravik._calls import Function, Planes

HEAD = '''from collections.abc import Callable, Sequence
from typing import Any, Literal
import numpy as np
from numpy.typing import NDArray

Levels = tuple[NDArray[Any], ...]
__version__: str

'''


def array(dtype):
    return "NDArray[np.void]" if dtype.names else f"NDArray[np.{dtype.name}]"


def number(dtype):
    return "float" if dtype.kind == "f" else "int"


def hint_of(each):
    """The type of what is passed, where it is."""
    if isinstance(each, Planes):
        hints = [hint_of(plane) + (" | None" if plane.is_destination else "") for plane in each.planes]
        return f"tuple[{', '.join(hints)}]"
    if each.role in ("number", "W", "H"):
        return number(each.dtype)
    if each.role == "pairs":
        return "tuple[NDArray[np.float32], NDArray[np.float32]] | " \
               "tuple[NDArray[np.float32], NDArray[np.float32], NDArray[np.uint8]]"
    if each.role == "rows":
        return "NDArray[Any]"
    if each.role == "handle":
        return each.sizes[0]
    if each.role == "struct":
        return "Sequence[float] | np.void"
    return array(each.dtype) + (" | Literal[False]" if each.is_destination and each.may_be_null else "")


def parameter(each, is_required):
    return f"{each.name}: {hint_of(each)}" + ("" if is_required else " | None = ...")


def result(each):
    if isinstance(each, Planes):
        return f"tuple[{', '.join(result(plane) for plane in each.planes)}]"
    if each.role in ("value", "struct"):
        return "np.void" if each.element.kind == "struct" else number(each.dtype)
    return array(each.dtype)


def generated(name):
    function = Function(name, ravik._declared["functions"][name], ravik._words[name])
    required, optional = function.arguments()
    parameters = [parameter(each, True) for each in required] + [parameter(each, False) for each in optional]
    results = [result(each) for each in function.results()]
    if function.meaning in ("number", "result"):
        results.insert(0, "float" if function.result.cname == "float" else "int")
    returned = "None" if not results else results[0] if len(results) == 1 else f"tuple[{', '.join(results)}]"
    return f"def {name}({', '.join(parameters)}) -> {returned}: ..."


def handmade(name):
    signature = inspect.signature(getattr(ravik, name))
    parameters = [f"{each.name}: Any" + ("" if each.default is inspect.Parameter.empty else " = ...")
                  for each in signature.parameters.values()]
    return f"def {name}({', '.join(parameters)}) -> {signature.return_annotation}: ..."


def subclasses(kind):
    return [found for each in kind.__subclasses__() for found in (each, *subclasses(each))]


def classes():
    lines = ["class Error(Exception):\n    status: int | None"]
    for each in ravik.Error.__subclasses__():
        bases = ", ".join(base.__name__ for base in each.__bases__)
        lines.append(f"class {each.__name__}({bases}): ...")
    lines.append("class Handle:\n    def close(self) -> None: ...\n    def __enter__(self) -> Any: ...\n"
                 "    def __exit__(self, *error: Any) -> None: ...")
    lines += [f"class {each.__name__}({each.__base__.__name__}): ..." for each in subclasses(_structures.Handle)]
    lines.append("class Pyramid(Sequence[Any]):\n    def close(self) -> None: ...\n"
                 "    def __enter__(self) -> Pyramid: ...\n    def __exit__(self, *error: Any) -> None: ...\n"
                 "    def __getitem__(self, index: Any) -> Any: ...\n    def __len__(self) -> int: ...")
    return lines


def main():
    constants = [f"{name}: int" for name in dir(ravik) if name.startswith("RAVIK_")]
    functions = [generated(name) if name in ravik._words else handmade(name)
                 for name in ravik._declared["functions"]]
    Path(sys.argv[1], "__init__.pyi").write_text(HEAD + "\n".join(classes() + constants + functions) + "\n")


if __name__ == "__main__":
    main()
