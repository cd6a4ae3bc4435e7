#!/usr/bin/env python3
"""What every message must look like on the wire, worked out from the table by a rule of its own.

  wire_texts.py TABLE > wire_texts.jsonl

prints one JSON object a line: a message and values for its fields, the text of a new object as `untouched`, and
the text of one that has the values as `filled`. No two fields of the catalogue have the same value.
"""
import json
import sys
from xml.sax.saxutils import quoteattr


def read_table(path):
    with open(path, encoding="utf-8") as table:
        next(table)
        for line in table:
            _, id_, class_name, wire_name, fields = line.rstrip("\n").split("\t")
            yield int(id_), class_name, wire_name, [field.split(":") for field in fields.split()]


def value(kind, name, n):
    """A value near the end of its type's range that no other n gives."""
    if kind == "i32":
        return str(-(2**31) + n)
    if kind == "u32":
        return str(2**32 - n)
    if kind == "i64":
        return str(-(2**63) + n)
    if kind == "u64":
        return str(2**64 - n)
    return f"{name} {n} <a&b> \"c\" 'd' é 中 𝄞"


def attribute(text):
    quoted = quoteattr(text, {'"': "&quot;", "'": "&apos;"})
    assert quoted[0] == quoted[-1] == '"'
    return quoted


def element(wire_name, attributes):
    text = "".join(f" {name}={attribute(content)}" for name, content in attributes)
    return f'<{wire_name}{text} version="10000"/>\n'


def wire_texts(table):
    count = 0
    for id_, class_name, wire_name, fields in read_table(table):
        values = []
        for kind, name in fields:
            count += 1
            values.append(value(kind, name, count))
        names = [name for _, name in fields]
        blank = ["" if kind.endswith("str") else "0" for kind, _ in fields]
        yield {
            "class": class_name,
            "id": id_,
            "wire_name": wire_name,
            "fields": [[kind, name, content] for (kind, name), content in zip(fields, values)],
            "untouched": element(wire_name, zip(names, blank)),
            "filled": element(wire_name, zip(names, values)),
        }


def lines(table):
    return "".join(json.dumps(message, ensure_ascii=False) + "\n" for message in wire_texts(table))


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    print(lines(sys.argv[1]), end="")
