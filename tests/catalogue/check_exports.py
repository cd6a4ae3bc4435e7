#!/usr/bin/env python3
"""Checks that a DLL exports every message class of the table and every template under one, with all members.

  check_exports.py OBJDUMP DLL TABLE     complains of what is missing and of what the table does not ask for
  check_exports.py --list TABLE          prints the names, one a line
"""
import re
import subprocess
import sys

sys.dont_write_bytecode = True

from wire_texts import read_table  # noqa: E402

NUMBERS = {"i32": "i", "u32": "j", "i64": "x", "u64": "y"}
STRINGS = {"str": "c", "wstr": "w"}

# How many instantiations of CmmMessageTemplate_N there are, N from 1.
INSTANTIATIONS = [6, 24, 48, 46, 41, 27, 22, 16, 8, 5, 3, 3, 2, 2, 2]

# What this check is about. CmmMessageTemplate_0 is a class of its own.
OURS = re.compile(
    r"_Z(?:N|TI|TV)\d+(?:CQXMBMessage|CQXMessage|QXIPCMessage)_|_Z(?:N|TIN|TVN)3Cmm7Archive\d+CmmMessageTemplate_[1-9]"
)


def class_symbols(class_name, fields):
    scope = f"{len(class_name)}{class_name}"
    yield from (f"_ZN{scope}{member}Ev" for member in ("C1", "C2", "D0", "D1", "D2"))
    yield from (f"_ZTI{scope}", f"_ZTV{scope}")
    for kind, name in fields:
        value = NUMBERS.get(kind) or f"N3Cmm8CStringTI{STRINGS[kind]}EE"
        yield f"_ZN{scope}{len(name) + 4}Get_{name}Ev"
        yield f"_ZN{scope}{len(name) + 4}Set_{name}ERK{value}"


def back_reference(component):
    """What stands for a component that a mangled name had before, counted from 0."""
    return "S_" if component == 0 else f"S{'0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ'[component - 1]}_"


def template_symbols(signature):
    components = ["Cmm", "Cmm::Archive", "CmmMessageTemplate_N"]

    def mangled(kind):
        if kind in NUMBERS:
            return NUMBERS[kind]
        if kind in components:
            return back_reference(components.index(kind))
        if "CStringT" in components:
            template = back_reference(components.index("CStringT"))
        else:
            template = "S_8CStringT"
            components.append("CStringT")
        components.append(kind)
        return f"N{template}I{STRINGS[kind]}EE"

    count = len(signature)
    name = f"CmmMessageTemplate_{count}"
    scope = f"3Cmm7Archive{len(name)}{name}I{''.join(map(mangled, signature))}E"
    components += ["CmmMessageTemplate_N<...>", "char const", "char const*"]
    names = "PKci" + back_reference(len(components) - 1) * count
    yield from (f"_ZN{scope}{member}E{names}" for member in ("C1", "C2"))
    yield from (f"_ZN{scope}{member}Ev" for member in ("D0", "D1", "D2"))
    yield from (f"_ZTIN{scope}E", f"_ZTVN{scope}E")
    item = f"Item{count}"
    yield f"_ZN{scope}{len(item) + 3}Get{item}Ev"
    yield f"_ZN{scope}{len(item) + 3}Set{item}ERK{mangled(signature[-1])}"
    yield f"_ZN{scope}9WriteDataEPNS_21ICmmArchiveObjWritterE"
    yield f"_ZN{scope}8ReadDataEPNS_20ICmmArchiveObjReaderE"
    if count == 1:
        yield f"_ZN{scope}8ParseMsgEPKNS_9CmmMQ_MsgE"


def symbols_of(table):
    messages = list(read_table(table))
    signatures = {tuple(kind for kind, _ in fields[:n]) for *_, fields in messages for n in range(1, len(fields) + 1)}
    symbols = {symbol for _, class_name, _, fields in messages for symbol in class_symbols(class_name, fields)}
    return symbols | {symbol for signature in signatures for symbol in template_symbols(signature)}


def main():
    if sys.argv[1] == "--list":
        print(*sorted(symbols_of(sys.argv[2])), sep="\n")
        return 0
    objdump, dll, table = sys.argv[1:4]
    dump = subprocess.run([objdump, "-p", dll], check=True, capture_output=True, text=True).stdout
    found = {name for name in re.findall(r"^\s*\[\s*\d+\]\s+(\S+)$", dump, re.MULTILINE) if OURS.match(name)}
    wanted = symbols_of(table)
    templates = [sum(f"CmmMessageTemplate_{n}I" in name for name in found if "_ZTV" in name) for n in range(1, 16)]

    for title, symbols in (("missing", wanted - found), ("not asked for by the table", found - wanted)):
        if symbols:
            print(f"{len(symbols)} exports {title}:", *sorted(symbols)[:20], sep="\n  ")
    if templates != INSTANTIATIONS:
        print(f"instantiations of the templates: {templates} instead of {INSTANTIATIONS}")
    if wanted != found or templates != INSTANTIATIONS:
        return 1
    print(f"{len(wanted)} exports of messages and {sum(templates)} templates, as in the table")
    return 0


if __name__ == "__main__":
    sys.exit(main())
