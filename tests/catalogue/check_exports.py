#!/usr/bin/env python3
"""Checks that a DLL exports every message class of the table, with all its members, and no other.

  check_exports.py OBJDUMP DLL TABLE
"""
import re
import subprocess
import sys
from collections import Counter

sys.dont_write_bytecode = True

from wire_texts import read_table  # noqa: E402

MANGLED_TYPES = {
    "i32": "i", "u32": "j", "i64": "x", "u64": "y",
    "str": "N3Cmm8CStringTIcEE", "wstr": "N3Cmm8CStringTIwEE",
}  # fmt: skip

# How many instantiations of CmmMessageTemplate_N there are, N from 1.
INSTANTIATIONS = [6, 24, 48, 46, 41, 27, 22, 16, 8, 5, 3, 3, 2, 2, 2]

MESSAGE_SYMBOL = re.compile(r"_Z(?:N|TI|TV)\d+(?:CQXMBMessage|CQXMessage|QXIPCMessage)_")


def symbols_of(class_name, fields):
    scope = f"{len(class_name)}{class_name}"
    yield from (f"_ZN{scope}{member}Ev" for member in ("C1", "C2", "D0", "D1", "D2"))
    yield from (f"_ZTI{scope}", f"_ZTV{scope}")
    for kind, name in fields:
        length = len("Get_") + len(name)
        yield f"_ZN{scope}{length}Get_{name}Ev"
        yield f"_ZN{scope}{length}Set_{name}ERK{MANGLED_TYPES[kind]}"


def main():
    objdump, dll, table = sys.argv[1:4]
    dump = subprocess.run([objdump, "-p", dll], check=True, capture_output=True, text=True).stdout
    exports = set(re.findall(r"^\s*\[\s*\d+\]\s+(\S+)$", dump, re.MULTILINE))

    messages = list(read_table(table))
    wanted = {symbol for _, class_name, _, fields in messages for symbol in symbols_of(class_name, fields)}
    found = {symbol for symbol in exports if MESSAGE_SYMBOL.match(symbol)}
    levels = Counter(int(n) for n in re.findall(r"_ZTVN3Cmm7Archive\d+CmmMessageTemplate_(\d+)I", "\n".join(exports)))
    templates = [levels[n] for n in range(1, len(INSTANTIATIONS) + 1)]

    for title, symbols in (("missing", wanted - found), ("not of the table", found - wanted)):
        if symbols:
            print(f"{len(symbols)} exports {title}:", *sorted(symbols)[:20], sep="\n  ")
    if templates != INSTANTIATIONS:
        print(f"instantiations of the templates: {templates} instead of {INSTANTIATIONS}")
    if wanted != found or templates != INSTANTIATIONS:
        return 1
    print(f"{len(wanted)} exports of {len(messages)} message classes, {sum(templates)} templates")
    return 0


if __name__ == "__main__":
    sys.exit(main())
