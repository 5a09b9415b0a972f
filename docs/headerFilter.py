#!/usr/bin/env python3
"""Prints a public header, or a guide, as Doxygen wants to read it.

The headers' comments are plain text for people. Here each becomes Doxygen's: that of the header a group, that of a
section its heading, that of a function or constant its documentation, and that of all functions which follow it without
an empty line. Indented lines stay as they are, or become a list where they look like one. Nothing in a comment is a
command, so nothing in it can break the page.

    headerFilter.py FILE            what Doxygen calls
    headerFilter.py --check FILE... the parameters that no comment explains; status 1 when there are any

RAVIK_GALLERY names a folder with pictures: NAME.png with its caption NAME.txt comes into the documentation of NAME.
"""
import os
import re
import sys
from fnmatch import fnmatchcase
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools"))
from headers import NAMES, comment_lines, name_of, parameters, tokens

# ---- text of comments ------------------------------------------------------------------------------------------------


def escaped(text):
    """Text none of whose characters mean anything to Doxygen."""
    text = re.sub(r'[\\@<>&#%"$*]', lambda m: "\\" + m.group(), text)
    return text.replace("::", r"\::").replace("--", r"\--")


def linked(text):
    """The same with each name of the interface as a link."""
    parts = re.split(r"\b((?:rvk|RAVIK_)\w+)\b", text)
    return "".join(f'\\ref {part} "{part}"' if i % 2 and part in NAMES else escaped(part)
                   for i, part in enumerate(parts))


def prose(lines):
    parts = " ".join(line.strip() for line in lines).split("`")
    return "".join(f"<code>{linked(part)}</code>" if i % 2 else linked(part) for i, part in enumerate(parts))


def sentence(remark):
    remark = remark.strip()
    return prose([remark[:1].upper() + remark[1:] + ("" if remark.endswith(".") else ".")])


def indent_of(line):
    return len(line) - len(line.lstrip())


def definitions(lines):
    """The terms and texts of a block of lines such as `Shapes     in pixels`; None when it is something else."""
    entries, column = [], None
    for line in lines:
        term = re.match(r"( *)(\S+(?: \S+)*)( {2,})(?=[^ =])", line)
        if term and indent_of(line) == indent_of(lines[0]):
            if re.search(r"\S {2,}\S", line[term.end():]):
                return None  # a table
            entries.append((term.group(2), [line[term.end():]]))
            column = term.end() if column is None else column
            if term.end() != column:
                return None
        elif entries and indent_of(line) == column:
            entries[-1][1].append(line)
        else:
            return None
    return entries


def items(lines):
    """The items of a block of lines that begin with `- `; None when it is something else."""
    found = []
    for line in lines:
        if line.lstrip().startswith("- "):
            found.append([line.lstrip()[2:]])
        elif found and indent_of(line) == indent_of(lines[0]) + 2:
            found[-1].append(line)
        else:
            return None
    return found


def indented(lines):
    terms = definitions(lines)
    if terms:
        rows = "".join(f"<dt>{prose([term])}</dt><dd>{prose(text)}</dd>" for term, text in terms)
        return f"<dl>{rows}</dl>"
    listed = items(lines)
    if listed:
        return "<ul>" + "".join(f"<li>{prose(item)}</li>" for item in listed) + "</ul>"
    least = min(indent_of(line) for line in lines)
    return "\\verbatim\n" + "\n".join(line[least:] for line in lines) + "\n\\endverbatim"


def blocks(lines):
    """The paragraphs of a comment, those of indented lines apart from those of others."""
    block = []
    for line in lines + [""]:
        changes = block and (not line.strip() or (indent_of(line) > 1) != (indent_of(block[0]) > 1))
        if changes:
            yield block
            block = []
        if line.strip():
            block.append(line)


def documentation(comment):
    """Doxygen's text of a comment, given as its lines without decoration."""
    return "\n\n".join(indented(block) if indent_of(block[0]) > 1 else prose(block) for block in blocks(comment))


# ---- headers ---------------------------------------------------------------------------------------------------------

def picture(declaration):
    """What a function does, as a picture, and the numbers that it did it with."""
    name = name_of(declaration)
    folder = os.environ.get("RAVIK_GALLERY")
    if not folder or not (Path(folder) / f"{name}.png").exists():
        return ""
    names = parameters(declaration)
    count, *numbers = (Path(folder) / f"{name}.txt").read_text().splitlines()
    caption = "" if int(count) != len(names) else ", ".join(
        f"{names[int(i)]} = {number}" for i, number in map(str.split, numbers))
    return f'\n\n\\image html {name}.png "{escaped(caption)}"'


MEMBER = re.compile(
    r"""(?P<comment>/\*.*?\*/)
      | (?P<blank>\n[ ]*(?=\n))
      | (?P<member>\w+\ =\ \w+,?|[^\s/][^/;]*;)(?:\ */\*(?P<trailing>.*?)\*/)?
      | \s+""", re.VERBOSE | re.DOTALL)


def single_members(declaration):
    """The members of a declaration such as `int32_t x, y;`, a declaration each."""
    several = re.fullmatch(r"([\w ]+?\*?) ?(\w+(?:, \w+)+);", declaration)
    return [f"{several[1]} {name};" for name in several[2].split(", ")] if several else [declaration]


def body(text):
    """A structure, enumeration or class whose members have Doxygen's comments, their own or that before them."""
    start, end = text.index("{") + 1, text.rindex("}")
    name = re.search(r"(\w+)\s*{", text).group(1)
    output, pending = [text[:start] + "\n"], ""
    for match in MEMBER.finditer(text[start:end]):
        kind = match.lastgroup
        if kind == "comment":
            pending = documentation(comment_lines(match.group()))
        elif kind == "blank":
            pending = ""
        elif kind:
            remark = sentence(match["trailing"]) if match["trailing"] else pending or f'Of \\ref {name} "{name}".'
            for member in single_members(match["member"]):
                output.append((f"/** {remark} */\n" if remark else "") + member + "\n")
    return "".join(output) + text[end:]


def constant(definition, common):
    """The comment of a constant, its own before what is common to its neighbours, and the constant."""
    value, _, comment = definition.partition("/*")
    parts = [sentence(comment.rstrip("*/ ")) if comment else "", common]
    return "\n\n".join(part for part in parts if part), value.rstrip()


class Page:
    """What Doxygen reads of a header: the group of all it declares, and in it a group for each section."""

    def __init__(self, name):
        self.name = name
        self.output = []
        self.heading = None  # where in the output a comment on what follows belongs
        self.in_section = False

    def open(self, title, lines):
        self.heading = len(self.output)
        self.output.append(f"/** \\defgroup {self.name} {self.name}.h: {title}\n\n{sentence(title)}\n\n"
                           f"{documentation(lines)}")
        self.output.append("\n@{ */\n")

    def section(self, title):
        self.close_section()
        self.heading = len(self.output)
        self.output.append(f"/** \\name {title[:1].upper()}{title[1:]}\n")
        self.output.append(" */\n/** @{ */\n")
        self.in_section = True

    def remark(self, text):
        self.output[self.heading] += "\n\n" + text

    def declare(self, comment, declaration):
        self.output.append((f"/** {comment} */\n" if comment else "") + declaration + "\n")

    def close_section(self):
        if self.in_section:
            self.output.append("/** @} */\n")
        self.in_section = False

    def text(self):
        self.close_section()
        return "".join(self.output) + "/** @} */\n"


def opening(lines):
    """The title of a header, the first sentence of its first comment, and the lines after it."""
    paragraph = lines[:lines.index("")] if "" in lines else lines
    title, _, rest = re.sub("^Ravik: ", "", " ".join(paragraph)).partition(". ")
    return title.rstrip("."), ([rest] if rest else []) + lines[len(paragraph):]


def header(path):
    page, pending, was_used = Page(path.stem), "", False
    for kind, text in tokens(path.read_text()):
        if kind == "comment":
            lines = comment_lines(text)
            section = re.fullmatch("-+ (.*?) -+", lines[0])
            if page.heading is None:
                page.open(*opening(lines))
            elif section:
                page.section(section.group(1))
                pending, was_used = documentation(lines[1:]), False
            else:
                pending, was_used = documentation(lines), False
        elif kind == "blank":
            if pending and not was_used:  # belongs to no declaration
                page.remark(pending)
            pending = ""
        elif kind in ("define", "body", "declaration"):
            was_used = True
            if kind == "define":
                page.declare(*constant(text, pending))
            elif kind == "body":
                page.declare(pending, body(text))
            else:
                page.declare(pending + picture(text) if pending else "", text)
        else:
            page.declare("", text)
    return page.text()


# ---- parameters ------------------------------------------------------------------------------------------------------


def conventional_names():
    """The patterns of names in the table of the guide to conventions."""
    table = re.findall(r"^\| (`.*?) \|", (ROOT / "docs" / "conventions.md").read_text(), re.MULTILINE)
    return [name for row in table for name in re.findall(r"`([^`]*)`", row)]


def unexplained(path):
    """Pairs of a function and a parameter which neither its name explains nor a comment from the header's first to the
    function's own: comments build on those before them."""
    conventional, comments = conventional_names(), ""
    for kind, text in tokens(path.read_text()):
        if kind == "comment":
            comments += text
        elif kind == "declaration" and "(" in text:
            for parameter in parameters(text):
                is_conventional = any(fnmatchcase(parameter, name) for name in conventional)
                if not is_conventional and not re.search(rf"\b{parameter}\b", comments, re.IGNORECASE):
                    yield name_of(text), parameter


# ---- guides ----------------------------------------------------------------------------------------------------------


def guide(path):
    """A page in Markdown whose links lead to pages of the reference."""
    text = re.sub(r"\]\((?:\.\./)?include/ravik/(\w+)\.h\)", r"](@ref \1)", path.read_text())
    text = re.sub(r"\[([^]]*)\]\(\S*(?:README.md|\.cpp|\.c|\.h|\.inc)\)", r"\1", text)  # none of its pages
    return re.sub(r"(?<!\[)`(\w+)`", lambda m: f"[{m[1]}](@ref {m[1]})" if m[1] in NAMES else m[0], text)


def main():
    if sys.argv[1] == "--check":
        found = [(path, *pair) for path in map(Path, sys.argv[2:]) for pair in unexplained(path)]
        for path, function, parameter in found:
            print(f"{path.name}: {function}: nothing explains {parameter}")
        return 1 if found else 0
    path = Path(sys.argv[1])
    print(header(path) if path.suffix == ".h" else guide(path))
    return 0


if __name__ == "__main__":
    sys.exit(main())
