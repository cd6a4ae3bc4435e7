"""Lays out C++ as the repository's .clang-format does."""
import textwrap

WIDTH = 110


def comment(text, indent=""):
    """A // comment of as many lines as it takes."""
    return "\n".join(textwrap.wrap(text, WIDTH, initial_indent=indent + "// ", subsequent_indent=indent + "// "))


def bracketed(head, items, tail):
    """`head`, which ends in an opening bracket, the items and `tail`. Further lines begin below the first item."""
    return _filled(head, items, tail, " " * len(head))


def call(head, arguments, tail):
    """As `bracketed`, but where that takes more lines all arguments go below `head`, which may have several."""
    indent = " " * (len(head) - len(head.lstrip()) + 4)
    below = f"{head}\n{_filled(indent, arguments, tail, indent)}"
    return below if "\n" in head else shorter(bracketed(head, arguments, tail), below)


def shorter(text, other):
    """The one of two texts that takes fewer lines and keeps to the width; the first when both do."""
    return min(text, other, key=lambda t: (max(map(len, t.split("\n"))) > WIDTH, t.count("\n")))


def qualified(scope, name):
    """`scope::name`, in two lines where one is too short."""
    line = f"{scope}::{name}"
    return line if len(line) <= WIDTH else f"{scope}::\n    {name}"


def _filled(first, items, tail, indent):
    lines = []
    current = first
    for item in [f"{item}," for item in items[:-1]] + [items[-1] + tail]:
        blank = current in (first, indent)
        extended = current + ("" if blank else " ") + item
        if blank or len(extended) <= WIDTH:
            current = extended
        else:
            lines.append(current)
            current = indent + item
    return "\n".join(lines + [current])


def quoted(text):
    return f'"{text}"'
