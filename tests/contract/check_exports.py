#!/usr/bin/env python3
"""Compares what a DLL exports with a checked-in list, and checks that it imports system DLLs only.

  check_exports.py OBJDUMP DLL LIST [--update]

The list has one exported name a line, sorted. Of the message catalogue, which comes from a table and has its
own tests through the DLL, it has the number of names only. --update rewrites it from the DLL.
"""
import re
import subprocess
import sys

SYSTEM_DLLS = {
    "advapi32.dll", "crypt32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "psapi.dll",
    "shell32.dll", "user32.dll", "version.dll", "winmm.dll", "wintrust.dll", "wtsapi32.dll",
}


CATALOGUE = re.compile(r"CQXMBMessage_|CQXMessage_|QXIPCMessage_|CmmMessageTemplate_[1-9]\d*I")


def exports_and_imports(objdump, dll):
    dump = subprocess.run([objdump, "-p", dll], check=True, capture_output=True, text=True).stdout
    imports = set(re.findall(r"DLL Name: (\S+)", dump))
    table = dump.split("[Ordinal/Name Pointer] Table", 1)[1].split("\n\n", 1)[0]
    names = re.findall(r"^\s*\[\s*\d+\]\s+(\S+)$", table, re.MULTILINE)
    listed = [name for name in names if not CATALOGUE.search(name)]
    return sorted([*listed, f"(message catalogue: {len(names) - len(listed)} names)"]), imports


def main():
    objdump, dll, list_path = sys.argv[1:4]
    exports, imports = exports_and_imports(objdump, dll)
    if "--update" in sys.argv[4:]:
        with open(list_path, "w", encoding="ascii", newline="\n") as out:
            out.write("".join(f"{name}\n" for name in exports))
        return 0

    failed = False
    with open(list_path, encoding="ascii") as lines:
        expected = lines.read().splitlines()
    for title, names in (
        ("missing from the DLL", sorted(set(expected) - set(exports))),
        ("exported and not in the list", sorted(set(exports) - set(expected))),
        ("imported and no system DLL", sorted(dll for dll in imports if dll.lower() not in SYSTEM_DLLS)),
    ):
        if names:
            failed = True
            print(f"{len(names)} {title}:", *names, sep="\n  ")
    if failed:
        print(f"If the change is meant: {' '.join(sys.argv)} --update")
    else:
        print(f"{len(exports) - 1} exports as listed, {len(imports)} system DLLs imported")
    return int(failed)


if __name__ == "__main__":
    sys.exit(main())
