"""The public headers, split into comments and declarations."""
import re
from pathlib import Path

HEADERS = Path(__file__).resolve().parent.parent / "include" / "ravik"


def names_of_interface():
    """Every function, type and constant that a header declares."""
    names = set()
    for header in HEADERS.glob("*.h"):
        text = re.sub(r"/\*.*?\*/", "", header.read_text(), flags=re.DOTALL)
        names.update(re.findall(r"\b(rvk\w+)\s*\(", text))
        names.update(re.findall(r"^}\s*(\w+);", text, re.MULTILINE))
        names.update(re.findall(r"^(?:#define | +)(RAVIK_\w+) ", text, re.MULTILINE))
    return names


NAMES = names_of_interface()


def comment_lines(comment):
    """The lines of a C comment without /*, * and */."""
    lines = comment.strip()[2:-2].rstrip().split("\n")
    return [lines[0].strip()] + [re.sub(r"^\s*\* ?", "", line).rstrip() for line in lines[1:]]


TOKEN = re.compile(
    r"""(?P<comment>/\*.*?\*/)
      | (?P<blank>\n[ ]*(?=\n))
      | (?P<define>\#define\ RAVIK_[^\n]*)
      | (?P<directive>\#[^\n]*)
      | (?P<body>(?:typedef\ (?:struct|enum)|class\ RVK_API)\ \w+\s*\{.*?\n\}\s*\w*;)
      | (?P<declaration>(?:RVK_API|typedef)\b[^;{]*;)
      | (?P<other>[^\n]+)
      | \n""", re.VERBOSE | re.DOTALL)


def tokens(text):
    for match in TOKEN.finditer(text):
        if match.lastgroup:
            yield match.lastgroup, match.group()


def name_of(declaration):
    match = re.search(r"(\w+)\s*\(", declaration) or re.search(r"(\w+);$", declaration)
    return match.group(1)


def parameters(declaration):
    arguments = declaration[declaration.index("(") + 1:declaration.rindex(")")]
    return [] if arguments == "void" else [re.search(r"(\w+)(?:\[\w*\])?$", a.strip()).group(1)
                                           for a in arguments.split(",")]


def families():
    """The headers, in the order in which ravik.h includes them."""
    return [HEADERS / name for name in re.findall(r'^#include "(.*)"', (HEADERS / "ravik.h").read_text(), re.MULTILINE)]
