#!/usr/bin/env python3
"""Checks that the records of the host header have the same layout for MSVC as for this build's compiler.

  check_layout.py CLANG SOURCE_ROOT

Compiles the header for both targets, where its own assertions on sizes and offsets must hold, and compares
clang's dumps of the record layouts.
"""
import re
import subprocess
import sys
import tempfile

RECORDS = ("SdkNotifyInfo", "SdkPresenceInfo", "SdkAudioInfo", "SdkStatusInfo", "SdkConfAudioInfo",
           "SdkConfEventInfo", "SdkPTEventInfo", "SdkConfDeviceInfo", "SdkUIControlInfo")
TARGETS = {
    "MSVC": ["-triple", "x86_64-pc-windows-msvc", "-fms-extensions"],
    "GNU": ["-triple", "x86_64-w64-windows-gnu", "-mms-bitfields"],
}


def layouts(clang, root, target, source):
    resources = subprocess.run([clang, "-print-resource-dir"], check=True, capture_output=True,
                               text=True).stdout.strip()
    command = [clang, "-cc1", *target, "-std=c++20", "-x", "c++", "-ffreestanding", "-internal-isystem",
               resources + "/include", "-I", root, "-fdump-record-layouts", "-emit-llvm-only", source]
    dump = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    found = {}
    for block in dump.split("*** Dumping AST Record Layout")[1:]:
        lines = [line for line in block.splitlines() if re.match(r"\s*\d*\s+\| ", line)]
        name = re.search(r"struct (\w+)", lines[0])
        if name and name.group(1) in RECORDS:
            # Without the data size, which only one of the two ABIs has.
            found[name.group(1)] = "\n".join(re.sub(r" dsize=\d+,", "", line) for line in lines)
    return found


def main():
    clang, root = sys.argv[1:3]
    with tempfile.NamedTemporaryFile("w", suffix=".cpp") as source:
        source.write('#include "sdk/VelmSdk.h"\n')
        source.writelines(f"static_assert(sizeof({record}) > 0);\n{record} use{record};\n" for record in RECORDS)
        source.flush()
        dumps = {name: layouts(clang, root, target, source.name) for name, target in TARGETS.items()}

    differing = [record for record in RECORDS
                 if not dumps["MSVC"].get(record) or dumps["MSVC"].get(record) != dumps["GNU"].get(record)]
    for record in differing:
        for name, dump in dumps.items():
            print(f"--- {record} for {name}\n{dump.get(record, 'no layout was dumped')}")
    if not differing:
        print(f"{len(RECORDS)} records have one layout for {' and '.join(TARGETS)}")
    return int(bool(differing))


if __name__ == "__main__":
    sys.exit(main())
