#!/usr/bin/env python3
"""Makes the message catalogue from the tables beside this file.

  generate.py files              prints the names of the files that `write` makes
  generate.py write DIRECTORY    writes them; a file that would not change keeps its date
  generate.py check              only reads the tables

  --tables DIRECTORY             other tables than those beside this file

A bad table is refused with file, line and reason, and nothing is written.
"""
import argparse
import sys
from pathlib import Path

sys.dont_write_bytecode = True  # the checkout stays as it is

from generator import load, outputs  # noqa: E402


def write_if_changed(path, text):
    content = text.encode("utf-8")
    if path.exists() and path.read_bytes() == content:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def main():
    parser = argparse.ArgumentParser(description="Makes the message catalogue from its tables.")
    parser.add_argument("--tables", type=Path, default=Path(__file__).resolve().parent, metavar="DIRECTORY")
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("files", help="print the names of the files that `write` makes")
    write = commands.add_parser("write", help="write them below a directory")
    write.add_argument("directory", type=Path)
    commands.add_parser("check", help="only read the tables")
    arguments = parser.parse_args()

    try:
        if arguments.command == "files":
            print(*outputs.file_names(load.load_families(arguments.tables)), sep="\n")
            return 0
        catalogue = load.load(arguments.tables)
    except (load.TableError, OSError) as error:
        print(error, file=sys.stderr)
        return 1
    if arguments.command == "write":
        for name, text in outputs.texts(catalogue).items():
            write_if_changed(arguments.directory / name, text)
    else:
        print(f"{len(catalogue.messages)} messages in {len(catalogue.families)} families")
    return 0


if __name__ == "__main__":
    sys.exit(main())
