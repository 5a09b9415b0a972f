"""Makes what the package needs of the headers: the C module, the declarations for the Python functions, the stubs."""
import json
import re
import sys
from pathlib import Path

import cffi

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
sys.path.insert(0, str(ROOT / "tools"))
import headers  # noqa: E402

EXPORT = "RVK_API "
SUPPORT = """
int ravikHasLogged(void);
void ravikTakeLog(char* text, size_t size);
int ravikOverlap(const void* a, size_t sizeOfA, const void* b, size_t sizeOfB);
int ravikOverlapsAny(const void* a, size_t sizeOfA, const void* b, size_t sizeOfB, const void* c, size_t sizeOfC,
                     const void* d, size_t sizeOfD);
"""


def without_comments(text):
    return re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)


def in_order():
    """The headers, each after those that it includes; C++ left out."""
    ordered = []

    def take(path):
        for name in re.findall(r'^#include "(.*)"', path.read_text(), re.MULTILINE):
            take(path.parent / name)
        if path not in ordered:
            ordered.append(path)

    for path in headers.families():
        if path.name != "buffer.h":
            take(path)
    return ordered


def cdef():
    """The interface as cffi reads it."""
    lines = []
    for path in in_order():
        for kind, text in headers.tokens(path.read_text()):
            if kind == "define" and re.match(r"#define RAVIK_\w+ +[^ /]", text):
                lines.append(f"#define {text.split()[1]} ...")
            elif kind in ("body", "declaration"):
                lines.append(without_comments(text).replace(EXPORT, ""))
    return "\n".join(lines)


ffi = cffi.FFI()
ffi.cdef(cdef() + SUPPORT)
ffi.set_source("ravik._ravik", '#include <ravik/ravik.h>\n#include "moduleSupport.h"\n',
               sources=[str((HERE / "moduleSupport.c").relative_to(ROOT))], libraries=["stdc++", "m", "dl", "pthread"],
               include_dirs=[str(ROOT / "include"), str(HERE)])


def commented(path):
    """The functions of a header with their comments: each belongs to all functions that follow it without an empty
    line."""
    comment, was_used = "", False
    for kind, text in headers.tokens(path.read_text()):
        if kind == "comment":
            comment, was_used = "\n".join(headers.comment_lines(text)), False
        elif kind == "blank" and was_used:
            comment = ""
        elif kind == "declaration" and "(" in text:
            was_used = True
            yield headers.name_of(text), text, comment


def without_export(declaration):
    """A declaration as C programmers read it, its lines still below each other."""
    return re.sub(rf"^({EXPORT}| {{{len(EXPORT)}}})", "", declaration, flags=re.MULTILINE)


def head(path):
    kind, text = next(headers.tokens(path.read_text()))
    return "\n".join(headers.comment_lines(text))


def declarations():
    """What Python functions are made of, besides what the C module knows."""
    functions = {}
    for path in in_order():
        for name, declaration, comment in commented(path):
            if name.startswith("rvk"):
                functions[name] = {"parameters": headers.parameters(declaration), "header": path.name,
                                   "declaration": without_export(declaration), "comment": comment}
    return {"headers": {path.name: head(path) for path in in_order()}, "functions": functions}


def version():
    return re.search(r"^project\(ravik VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE).group(1)


def write_declarations(folder):
    Path(folder, "declarations.json").write_text(json.dumps(declarations()))
