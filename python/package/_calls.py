"""Makes Python functions of C functions: what a declaration and its line in pictures.txt or structures.txt say becomes
the source of one function, compiled when it is first used. So a call does what its own arguments need and no more.

In the source, `_p_x` is the pointer of parameter x, `_s_x` its stride, `_a_x` the array of a result; `_w`, `_h`, `_W`,
`_H`, `_n` are sizes.
"""
import re
import textwrap
from dataclasses import dataclass, field
from pathlib import Path

import numpy as np

from . import _arrays, _errors, _structures
from ._ravik import ffi, lib

SIZES = "whnWH"
READ = ("in", "within", "pairs", "rows")
PICTURES = ("in", "within", "update", "out", "keep")
NUMBERS = {"float": np.float32, "_Bool": np.bool_}

# How a parameter's name says that it is a plane of a picture, and of which one: luma and chroma always, numbers where
# the function's name speaks of planes; src1 and src2 are two pictures otherwise. A picture has two planes at least.
LUMA_AND_CHROMA = re.compile("(?P<picture>[a-z]+)(Y|C|Cb|Cr)")
NUMBERED = re.compile(r"(?P<picture>[a-z]+)\d")
OF_PLANES = re.compile("Plane|Planar|nterleaveu8")


def element_type(ctype):
    """The NumPy type of a C type."""
    if ctype.kind == "struct":
        return np.dtype([(name, element_type(each.type)) for name, each in ctype.fields])
    if ctype.kind == "array":
        return np.dtype((element_type(ctype.item), (ctype.length,)))
    if ctype.kind == "enum":
        return np.dtype(np.uint32)
    if ctype.cname in NUMBERS:
        return np.dtype(NUMBERS[ctype.cname])
    is_signed = int(ffi.cast(ctype, -1)) < 0
    return np.dtype(f"{'i' if is_signed else 'u'}{ffi.sizeof(ctype)}")


@dataclass
class Parameter:
    """A parameter of a C function and what its word in the table says of it."""
    name: str
    ctype: object
    role: str
    sizes: list
    may_be_null: bool
    example: list
    stride: str = None  # the parameter that is the stride of this picture
    pictures: list = field(default_factory=list)  # those that this stride is of
    label: str = None  # what errors call it, if not by its name

    def __post_init__(self):
        self.label = self.label or self.name

    @property
    def element(self):
        return self.ctype.item if self.ctype.kind == "pointer" else self.ctype

    @property
    def dtype(self):
        return element_type(self.element)

    @property
    def is_flat(self):
        return len(self.sizes) == 1

    @property
    def is_input(self):
        return self.role in ("in", "within", "update")

    @property
    def is_destination(self):
        return self.role in ("out", "keep")

    @property
    def row(self):
        """The bytes of a packed row."""
        pixel = self.dtype.itemsize * int(self.sizes[2] if len(self.sizes) > 2 else 1)
        return f"({self.sizes[0]}) * {pixel}"

    @property
    def shape(self):
        """As NumPy has it: rows, columns, channels."""
        return self.sizes if self.is_flat else [self.sizes[1], self.sizes[0], *self.sizes[2:]]


@dataclass
class Planes:
    """A picture whose planes are parameters of their own in C, and one tuple in Python."""
    name: str
    planes: list

    @property
    def is_destination(self):
        return self.planes[0].is_destination

    @property
    def tuple(self):
        return "(" + ", ".join(each.name for each in self.planes) + ")"


def expression(text, names):
    """A formula of the table in terms of the source: p3 is the fourth parameter, w a size."""
    text = re.sub(r"\bp(\d+)\b", lambda m: names[int(m[1])], text)
    return re.sub(rf"(?<![\w.'])([{SIZES}])\b(?!['(])", r"_\1", text)


def read_table():
    """The words of each function."""
    words = {}
    for name in ("pictures.txt", "structures.txt"):
        for line in Path(__file__).with_name(name).read_text().splitlines():
            if line and not line.startswith("#"):
                function, *rest = line.split()
                words[function] = rest
    return words


class Function:
    """A C function, its parameters and what is special about it."""

    def __init__(self, name, declaration, words):
        self.name, self.declaration = name, declaration
        ctype = ffi.typeof(getattr(lib, name))
        self.result = ctype.result
        self.flags = {word for word in words if word.startswith("+")}
        words = [word for word in words if not word.startswith("+")]
        names = declaration["parameters"]
        if len(words) != len(names):
            raise SystemError(f"{name}: {len(names)} parameters, {len(words)} words")
        self.parameters = [self._parameter(*each, names) for each in zip(words, names, ctype.args)]
        self._connect_strides()
        self.planar = self._planar()

    @staticmethod
    def _parameter(word, name, ctype, names):
        word, _, example = word.partition("@")
        role, *sizes = word.removesuffix("?").split(":")
        if role != "handle":
            sizes = [expression(size, names) for size in sizes]
        return Parameter(name, ctype, role, sizes, word.endswith("?"),
                         [float(number) for number in example.split(",")] if example else [])

    def _connect_strides(self):
        since = []
        for each in self.parameters:
            if each.role in PICTURES and not each.is_flat:
                since.append(each)
            elif each.role == "stride":
                each.pictures = [p for p in self.parameters if p.name in each.sizes] if each.sizes else since
                since = []
                for picture in each.pictures:
                    picture.stride = each.name

    def _planar(self):
        """The pictures of several planes."""
        found = {}
        for each in self.parameters:
            match = LUMA_AND_CHROMA.fullmatch(each.name) or \
                (OF_PLANES.search(self.name) and NUMBERED.fullmatch(each.name))
            if match and each.role in PICTURES and not each.is_flat:
                found.setdefault((match["picture"], each.role), []).append(each)
        pictures = [Planes(name, planes) for (name, _), planes in found.items() if len(planes) > 1]
        for picture in pictures:
            for i, plane in enumerate(picture.planes):
                plane.label = f"{picture.name}[{i}]"
        return pictures

    def together(self, parameters):
        """The same with each picture of several planes in the place of its first one."""
        picture_of = {plane.name: picture for picture in self.planar for plane in picture.planes}
        found = [picture_of.get(each.name, each) for each in parameters]
        return list({each.name: each for each in found}.values())

    def of_role(self, *roles):
        return [each for each in self.parameters if each.role in roles]

    @property
    def destinations(self):
        return self.of_role("out", "keep")

    @property
    def size_sources(self):
        """The inputs, each after those that its size follows from."""
        waiting = [each for each in self.parameters if each.is_input or each.role in ("rows", "pairs")]
        known, ordered = set(), []
        while waiting:
            arrays = {each.name for each in waiting}
            ready = [each for each in waiting if not self.missing(each, known, arrays)]
            if not ready:
                raise SystemError(f"{self.name}: nothing gives the size of {waiting[0].name}")
            chosen = next((each for each in ready if set(self.unknown(each)) - known), ready[0])
            known.update(self.unknown(chosen))
            ordered.append(chosen)
            waiting.remove(chosen)
        return ordered

    def missing(self, parameter, known, arrays):
        """What is not there yet of what a parameter's size follows from: sizes, of which the second may be parameters,
        and arrays that were not looked at."""
        needed = set(re.findall(r"\w+", " ".join(parameter.sizes)))
        sizes = {size for size in needed if re.fullmatch("_[whn]", size)}
        return (sizes - known - set(self.unknown(parameter))) | (needed & arrays)

    @staticmethod
    def unknown(parameter):
        """The sizes that a parameter's array gives when they are not known yet."""
        if parameter.may_be_null:
            return []
        if parameter.role in ("pairs", "rows"):
            return ["_n"]
        return [size for size in parameter.sizes if re.fullmatch(f"_[{SIZES}]", size)]

    @property
    def given_by_inputs(self):
        return {size for each in self.size_sources for size in self.unknown(each)}

    def second_size(self):
        """How a second size is known: by an input, by the destination or its parameters, or by these alone."""
        sizes = self.of_role("W", "H")
        if {f"_{each.role}" for each in sizes} <= self.given_by_inputs:
            return "input"
        return "destination" if self.second_destination() else "parameters"

    def second_destination(self):
        return next((each for each in self.destinations if each.sizes[:2] == ["_W", "_H"]), None)

    def arguments(self):
        """The parameters of the Python function: those that must be given, then the others."""
        required, optional = [], []
        second = self.second_size()
        for each in self.parameters:
            if each.role in ("W", "H"):
                if second != "input":
                    (required if second == "parameters" else optional).append(each)
            elif each.role in ("out", "keep") or (each.may_be_null and each.role in ("in", "handle")):
                optional.append(each)
            elif each.role in ("in", "within", "update", "number", "struct", "rows", "pairs", "handle"):
                required.append(each)
        return self.together(required), self.together(optional)

    def results(self):
        return self.together(self.of_role("out", "keep", "update", "value", "struct", "list"))

    @property
    def meaning(self):
        """What the number that the C function returns means."""
        for flag in ("+number", "+result", "+zerofails"):
            if flag in self.flags:
                return flag[1:]
        if self.result.cname == "void":
            return "nothing"
        is_status = self.result.kind == "enum" or self.result.cname in ("int", "int32_t")
        return "status" if is_status else "number"


class Source:
    """The source of the Python function of a C function."""

    def __init__(self, function):
        self.function = function
        self.lines = []
        self.values = {"lib": lib, "ffi": ffi, "ndarray": np.ndarray, "empty": np.empty, "zeros": np.zeros,
                       "from_buffer": ffi.from_buffer, "_call": getattr(lib, function.name),
                       **{f"_{name}": getattr(_arrays, name) for name in (
                           "whole", "picture", "vector", "reaches", "square", "second_size", "one_stride", "overlap",
                           "record", "rows_of", "pairs", "planes",
                           "unmade")},
                       "_used": _structures.used, "_checked": _structures.checked, "_misfit": misfit,
                       "_failed": _errors.failed, "_logged": _errors.logged}

    def add(self, line, depth=1):
        self.lines.append("    " * depth + line)

    def constants(self, each):
        """The names of a parameter's types in the source."""
        pointer = f"{each.element.cname}*"
        self.values[f"_d_{each.name}"] = each.dtype
        self.values[f"_t_{each.name}"] = ffi.typeof(f"{each.element.cname}[]")
        self.values[f"_c_{each.name}"] = ffi.typeof(pointer)

    def shape_text(self, shape):
        return "(" + ", ".join(shape) + ("," if len(shape) == 1 else "") + ")"

    def planes(self):
        """Takes tuples apart; planes of a destination may be left out one by one, too."""
        for each in self.function.planar:
            names = [plane.name for plane in each.planes]
            taken = f"{', '.join(names)} = {each.name} if type({each.name}) is tuple and len({each.name}) == " \
                    f'{len(names)} else _planes({each.name}, "{each.name}", {len(names)})'
            if each.is_destination:
                self.add(f"if {each.name} is None:")
                self.add(f"{' = '.join(names)} = None", 2)
                self.add("else:")
                self.add(taken, 2)
            else:
                self.add(taken)

    def numbers(self):
        """Numbers that sizes follow from are checked first."""
        formulas = " ".join(size for each in self.function.parameters for size in each.sizes)
        for each in self.function.of_role("number"):
            if re.search(rf"\b{each.name}\b", formulas):
                self.add(f'{each.name} = _whole({each.name}, "{each.name}")')
        for each in self.function.of_role("handle"):
            self.values[f"_h_{each.name}"] = getattr(_structures, each.sizes[0])
            if re.search(rf"\b{each.name}\.", formulas):
                self.add(f'_checked({each.name}, "{each.name}", _h_{each.name})')
        if self.function.second_size() == "parameters":
            for each in self.function.of_role("W", "H"):
                self.add(f'_{each.role} = _whole({each.name}, "{each.name}")')
        elif self.function.second_size() == "destination":
            width, height = self.function.of_role("W")[0].name, self.function.of_role("H")[0].name
            destination = self.function.second_destination().name
            self.add(f'_W, _H = _second_size({destination}, {width}, {height}, "{width}", "{height}")')

    def read(self, each, known, is_written, depth=1):
        """Takes an array whose size is partly known."""
        name, flags = each.name, f"{each.name}.flags"
        usable = f"{flags}.carray" if is_written else f"{flags}.c_contiguous"
        if not is_written and each.dtype.alignment > 1:
            usable += f" and {flags}.aligned"
        quick = f"type({name}) is ndarray and {name}.dtype is _d_{name} and {usable}"
        written = ", True" if is_written else ""
        if each.is_flat:
            length = each.sizes[0]
            is_new = length not in known and re.fullmatch(f"_[{SIZES}]", length)
            self.add(f"if {quick}" + ("" if is_new else f" and {name}.size == {length}") + ":", depth)
            self.add(f"_p_{name} = from_buffer(_t_{name}, {name})", depth + 1)
            if is_new:
                self.add(f"{length} = {name}.size", depth + 1)
            self.add("else:", depth)
            self.add(f'_p_{name}, {length if is_new else "_"} = _vector({name}, "{each.label}", _d_{name}, _c_{name}, '
                     f'{"None" if is_new else length}{written})', depth + 1)
            return
        packed = each.stride is None
        if each.role == "within":
            self.slow_picture(each, ["None", "None"], packed, written, depth, f"_z_{name}")
            self.add(f"_w = _z_{name}[1]", depth)
            self.add(f'_reaches("{each.label}", _z_{name}, {each.sizes[0]}, {each.sizes[1]})', depth)
            return
        is_known = [size in known or not re.fullmatch(f"_[{SIZES}]", size) for size in each.shape]
        shape = [size if here else "None" for size, here in zip(each.shape, is_known)]
        targets = ["_" if here else size for size, here in zip(each.shape, is_known)]
        if "None" not in shape:
            self.add(f"if {quick} and {name}.shape == {self.shape_text(shape)}:", depth)
        else:
            last = each.sizes[2:]
            self.add(f"if {quick} and {name}.ndim == {len(shape)}" +
                     (f" and {name}.shape[2] == {last[0]}" if last else "") +
                     "".join(f" and {name}.shape[{i}] == {size}" for i, size in enumerate(shape[:2]) if size != "None")
                     + ":", depth)
            self.add(f"{', '.join(targets)} = {name}.shape", depth + 1)
        self.add(f"_p_{name} = from_buffer(_t_{name}, {name})", depth + 1)
        self.add(f"_s_{name} = {each.row}", depth + 1)
        self.add("else:", depth)
        self.slow_picture(each, shape, packed, written, depth + 1, ", ".join(targets))
        if targets[0] == targets[1] != "_":
            self.add(f'_square({name}, "{each.label}")', depth)

    def slow_picture(self, each, shape, packed, written, depth, target):
        name = each.name
        target = f"({target})" if "," in target else target
        self.add(f'_p_{name}, _s_{name}, {target} = _picture({name}, "{each.label}", _d_{name}, _c_{name}, '
                 f"{self.shape_text(shape)}, {packed}{written})", depth)

    def inputs(self):
        known = set() if self.function.second_size() == "input" else {"_W", "_H"}
        for each in self.function.size_sources:
            name = each.name
            if each.role not in ("pairs", "rows"):
                self.constants(each)
            if each.role == "pairs":
                self.add(f'_p_{name}, _n = _pairs({name}, "{name}", {each.sizes[0]})')
            elif each.role == "rows":
                item = each.element.item
                self.values[f"_d_{name}"], self.values[f"_c_{name}"] = element_type(item), ffi.typeof(f"{item.cname}*")
                self.add(f'_p_{name}, _n = _rows_of({name}, "{name}", _d_{name}, _c_{name}, {each.sizes[0]})')
            elif each.may_be_null:
                self.add(f"if {name} is None:")
                self.add(f"_p_{name}, _s_{name} = ffi.NULL, 0", 2)
                self.add("else:")
                self.read(each, known, False, 2)
            else:
                self.read(each, known, each.role == "update")
            known.update(self.function.unknown(each))

    def make(self, target, maker, shape, each, depth=1):
        """An array of a parameter's type."""
        self.add("try:", depth)
        self.add(f"{target} = {maker}({shape}, _d_{each.name})", depth + 1)
        self.add("except (ValueError, MemoryError) as error:", depth)
        self.add(f'raise _unmade(error, "{each.label}") from None', depth + 1)

    def made(self, each, depth):
        name = each.name
        self.make(name, "zeros" if each.role == "keep" else "empty", self.shape_text(each.shape), each, depth)
        self.add(f"_p_{name} = from_buffer(_t_{name}, {name})", depth)
        if not each.is_flat:
            self.add(f"_s_{name} = {each.row}", depth)

    def destinations(self):
        for each in self.function.destinations:
            self.constants(each)
            name = each.name
            self.add(f"if {name} is None:")
            self.made(each, 2)
            if each.may_be_null:
                self.add(f"elif {name} is False:")
                self.add(f"_p_{name}, _s_{name} = ffi.NULL, 0", 2)
            self.add("else:")
            self.read(each, {"_w", "_h", "_n", "_W", "_H"}, True, 2)
            self.apart(each, self.function.of_role(*READ, "update") + self.before(each, "out", "keep"), 2)

    def extent(self, each):
        """How many bytes an array reaches over."""
        if each.is_flat:
            return f"{each.name}.nbytes"
        rows = f"_z_{each.name}[0]" if each.role == "within" else each.sizes[1]
        return f"_s_{each.name} * ({rows})"

    def before(self, each, *roles):
        """The parameters of these roles that stand before another one."""
        parameters = self.function.parameters
        return [other for other in parameters[:parameters.index(each)] if other.role in roles]

    def apart(self, each, others, depth):
        """Refuses what is written where it overlaps others, but for a destination that may be the source. Of many,
        three are looked at in one go: calls with many planes would spend half their time here."""
        is_plain = all(other.role in PICTURES and not other.may_be_null for other in others)
        if len(others) < 3 or not is_plain or "+inplace" in self.function.flags:
            self.each_apart(each, others, depth)
            return
        for three in (others[i:i + 3] for i in range(0, len(others), 3)):
            places = [f"_p_{other.name}, {self.extent(other)}" for other in [each, *three]]
            places += ["ffi.NULL, 0"] * (4 - len(places))
            self.add(f"if lib.ravikOverlapsAny({', '.join(places)}):", depth)
            self.each_apart(each, three, depth + 1)

    def each_apart(self, each, others, depth):
        for other in others:
            refusal = f'_overlap("{each.label}", {each.name}, "{other.label}", {other.name})'
            if other.role in ("pairs", "rows"):
                self.add(refusal, depth)
                continue
            may_be_same = "+inplace" in self.function.flags and other.role == "in" and other.dtype == each.dtype \
                and other.sizes == each.sizes
            absent = "False" if other.is_destination else "None"
            guard = f"{other.name} is not {absent} and " if other.may_be_null else ""
            self.add(f"if {guard}lib.ravikOverlap(_p_{each.name}, {self.extent(each)}, _p_{other.name}, "
                     f"{self.extent(other)}){' > 1' if may_be_same else ''}:", depth)
            self.add(refusal, depth + 1)

    def updates_apart(self):
        for each in self.function.of_role("update"):
            self.apart(each, self.function.of_role(*READ) + self.before(each, "update"), 1)

    def strides(self):
        for each in self.function.of_role("stride"):
            if not each.pictures:
                raise SystemError(f"{self.function.name}: {each.name} is the stride of nothing")
            first, *others = each.pictures
            for other in others:
                conditions = [f"_s_{first.name} != _s_{other.name}"]
                conditions += [f"_p_{p.name} != ffi.NULL" for p in (first, other) if p.may_be_null]
                self.add(f"if {' and '.join(conditions)}:")
                self.add(f'_one_stride("{first.label}", _s_{first.name}, "{other.label}", _s_{other.name})', 2)

    def other_results(self):
        for each in self.function.parameters:
            name = each.name
            if each.role in ("value", "count") and each.element.kind == "struct":
                self.constants(each)
                self.add(f"_a_{name} = zeros(1, _d_{name})")
                self.add(f"_p_{name} = from_buffer(_t_{name}, _a_{name})")
            elif each.role in ("value", "count"):
                self.values[f"_c_{name}"] = ffi.typeof(f"{each.element.cname}*")
                self.add(f"_p_{name} = ffi.new(_c_{name})")
            elif each.role == "struct":
                self.constants(each)
                self.add(f'_a_{name} = _record({name}, "{name}", _d_{name})')
                self.add(f"_p_{name} = from_buffer(_t_{name}, _a_{name})")
            elif each.role == "list":
                self.constants(each)
                columns, capacity, _ = each.sizes
                shape = f"max({capacity}, 1)" if columns == "1" else f"(max({capacity}, 1), {columns})"
                self.make(f"_a_{name}", "zeros", shape, each)
                self.add(f"_p_{name} = from_buffer(_t_{name}, _a_{name})")
            elif each.role == "scratch":
                self.constants(each)
                self.make(f"_a_{name}", "empty", each.sizes[0], each)
                self.add(f"_p_{name} = from_buffer(_t_{name}, _a_{name})")

    def passed(self, each):
        if each.role in SIZES:
            return f"_{each.role}"
        if each.role == "number":
            return each.name
        if each.role == "stride":
            first, *others = each.pictures
            text = f"_s_{first.name}"
            for other in others:
                text = f"max({text}, _s_{other.name})" if other.may_be_null or first.may_be_null else text
            return text
        if each.role == "null":
            return "ffi.NULL"
        return f"_p_{each.name}"

    def call(self):
        depth = 1
        for each in self.function.of_role("handle"):
            self.add(f'with _used({each.name}, "{each.name}", _h_{each.name}, {each.may_be_null}) as _p_{each.name}:')
            depth += 1
        passed = ", ".join(self.passed(each) for each in self.function.parameters)
        self.add("try:", depth)
        self.add(f"_r = _call({passed})", depth + 1)
        self.add("except (TypeError, ValueError, OverflowError) as error:", depth)
        numbers = ", ".join(f'("{each.name}", {self.passed(each)}, "{each.ctype.cname}")'
                            for each in self.function.parameters if each.ctype.kind in ("primitive", "enum"))
        self.add(f"raise _misfit(error, [{numbers}]) from None", depth + 1)

    def check_result(self):
        name, meaning = self.function.name, self.function.meaning
        refusals = {"status": "_r", "zerofails": "not _r", "result": "_r < 0"}
        self.add(f"if {refusals.get(meaning, 'lib.ravikHasLogged()')}:")
        status = "_r" if meaning == "status" else "-1"
        self.add(f'raise _failed("{name}", {status})' if meaning in refusals else f'raise _logged("{name}")', 2)

    def give(self):
        """What the call found, and what it returns."""
        for each in self.function.of_role("count"):
            self.add(f"{each.name} = _p_{each.name}[0]")
        results = ["_r"] if self.function.meaning in ("number", "result") else []
        for each in self.function.results():
            name = each.name
            if isinstance(each, Planes):
                results.append(each.tuple)
            elif each.role == "value":
                results.append(f"_a_{name}[0]" if each.element.kind == "struct" else f"_p_{name}[0]")
            elif each.role == "struct":
                results.append(f"_a_{name}[0]")
            elif each.role == "list":
                self.add(f"{name} = _a_{name}[:min({each.sizes[2]}, {each.sizes[1]})].copy()")
                results.append(name)
            else:
                results.append(name)
        if results:
            self.add(f"return {', '.join(results)}")

    def text(self):
        required, optional = self.function.arguments()
        signature = [each.name for each in required] + [f"{each.name}=None" for each in optional]
        self.lines = [f"def {self.function.name}({', '.join(signature)}):"]
        self.planes()
        self.numbers()
        self.inputs()
        self.updates_apart()
        self.destinations()
        self.strides()
        self.other_results()
        self.call()
        self.check_result()
        self.give()
        return "\n".join(self.lines) + "\n"


def misfit(error, numbers):
    """The exception for a number that its parameter does not take."""
    for name, value, ctype in numbers:
        try:
            ffi.new(f"{ctype}[1]", [value])
        except (TypeError, ValueError) as reason:
            return TypeError(f"{name}: {reason}")
        except OverflowError:
            return ValueError(f"{name}: {value} does not fit {ctype}")
    return error


def compiled(function, head):
    """The Python function of a C function."""
    source = Source(function)
    text = source.text()
    code = compile(text, f"<ravik {function.name}>", "exec")
    exec(code, source.values)
    made = source.values[function.name]
    declaration = function.declaration
    made.__doc__ = documentation(declaration, head, in_python(function))
    made.__module__ = "ravik"
    return made


def elements(each, function):
    """What an array holds, for people: sizes by their letters, or by the name of the argument that gives them."""
    kind = f"records of {', '.join(each.dtype.names)}" if each.dtype.names else str(each.dtype)
    names = {size.role: size.name for size in function.of_role("W", "H")}
    shape = [re.sub(rf"\b_([{SIZES}])\b", lambda m: names.get(m[1], m[1]), size) for size in each.shape]
    text = f"{kind}, {shape[0]} elements" if each.is_flat else f"{kind} ({', '.join(shape)})"
    if each.role == "within":
        text += " or larger"
    if each.is_destination:
        return text + ", made when left out" + ("; none with False" if each.may_be_null else "")
    return text + (", may be left out" if each.may_be_null else "")


def in_python(function):
    """The arrays that a function takes, and what it returns."""
    lines = []
    for each in sum(function.arguments(), []):
        if isinstance(each, Planes):
            lines.append((each.name, f"the tuple {each.tuple}"))
        lines += [(array.label, elements(array, function)) for array in getattr(each, "planes", [each])
                  if array.role in PICTURES]
    results = [each.name for each in function.results()]
    if function.meaning in ("number", "result"):
        results.insert(0, "what C returns")
    if results:
        lines.append(("returns", ", ".join(results)))
    width = max((len(name) for name, _ in lines), default=0)
    return "\n".join(f"    {name:{width}}  {text}" for name, text in lines)


def documentation(declaration, head, in_python=""):
    """The comment of the header, what it does not say of Python, and what holds for the whole header."""
    parts = [declaration["comment"], in_python and f"In Python:\n\n{in_python}",
             f"In C:\n\n{textwrap.indent(declaration['declaration'], '    ')}",
             f"<ravik/{declaration['header']}>:\n\n{head}"]
    return "\n\n".join(part for part in parts if part) + "\n"
