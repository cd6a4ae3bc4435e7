#!/usr/bin/env python3
"""Checks that the first C program of the README is the example that the build compiles, and that the
documents' links to files of the tree lead somewhere.

  check_readme.py SOURCE_ROOT
"""
import pathlib
import re
import sys


def main():
    root = pathlib.Path(sys.argv[1])
    failures = []

    readme = (root / "README.md").read_text(encoding="utf-8")
    program = re.search(r"```c\n(.*?)```", readme, re.DOTALL)
    if not program or program.group(1) != (root / "examples/hello_host.c").read_text(encoding="utf-8"):
        failures.append("README.md: its program is not examples/hello_host.c")

    for document in [root / "README.md", *sorted((root / "docs").glob("*.md"))]:
        for target in re.findall(r"\]\(([^)#]+)\)", document.read_text(encoding="utf-8")):
            if "://" not in target and not (document.parent / target).exists():
                failures.append(f"{document.relative_to(root)}: no such file: {target}")

    print("\n".join(failures) or "the README's program is the example, and every link leads to a file")
    return int(bool(failures))


if __name__ == "__main__":
    sys.exit(main())
