"""Reads the tables: tab-separated UTF-8 text with a heading, one row a line."""
from dataclasses import dataclass
from pathlib import Path

from . import validate
from .model import Catalogue, Family, Field, IdReuse, Message, Note

MESSAGES = "messages.tsv"
FAMILIES = "families.tsv"
ID_REUSES = "id_reuses.tsv"
NOTES = "notes.tsv"

HEADINGS = {
    MESSAGES: ("family", "id", "class", "wire_name", "fields"),
    FAMILIES: ("family", "file", "title", "summary"),
    ID_REUSES: ("id", "first_class", "second_class", "wire_names", "effect"),
    NOTES: ("class", "note"),
}


@dataclass(frozen=True)
class Problem:
    path: Path
    line: int
    reason: str

    def __str__(self):
        return f"{self.path}:{self.line}: {self.reason}"


class TableError(Exception):
    """Tables that say nothing usable; str() has one line for each problem."""

    def __init__(self, problems):
        super().__init__("\n".join(map(str, problems)))
        self.problems = problems


class _Reader:
    def __init__(self, directory):
        self._directory = directory
        self.problems = []

    def report(self, table, line, reason):
        self.problems.append(Problem(self._directory / table, line, reason))

    def rows(self, table):
        """(line, cells) of every row that has the right number of columns."""
        try:
            text = (self._directory / table).read_text(encoding="utf-8")
        except UnicodeDecodeError as error:
            line = error.object[: error.start].count(b"\n") + 1
            self.report(table, line, "not UTF-8")
            return []
        lines = text.removesuffix("\n").split("\n")
        heading = HEADINGS[table]
        if tuple(lines[0].split("\t")) != heading:
            self.report(table, 1, f"the heading is not: {' '.join(heading)}")
            return []
        rows = []
        for number, line in enumerate(lines[1:], 2):
            cells = line.split("\t")
            if len(cells) == len(heading):
                rows.append((number, cells))
            else:
                self.report(table, number, f"{len(cells)} columns instead of {len(heading)}")
        return rows

    def number(self, table, line, text):
        """An id, or None when it was reported as none."""
        if validate.is_id(text):
            return int(text)
        self.report(table, line, f"the id '{text}' is not a number from 1 to {validate.MAX_ID}")
        return None

    def fields(self, line, text):
        """The fields of a row, or None when one was reported as unreadable."""
        fields = []
        for item in text.split(" ") if text else []:
            kind, colon, name = item.partition(":")
            if not colon:
                self.report(MESSAGES, line, f"the field '{item}' is not of the form type:name")
                return None
            fields.append(Field(kind, name))
        return tuple(fields)

    def messages(self):
        for line, (family, id_text, class_name, wire_name, fields_text) in self.rows(MESSAGES):
            id_ = self.number(MESSAGES, line, id_text)
            fields = self.fields(line, fields_text)
            if id_ is not None and fields is not None:
                yield Message(line, family, id_, class_name, wire_name, fields)

    def families(self):
        return [Family(line, *cells) for line, cells in self.rows(FAMILIES)]

    def id_reuses(self):
        for line, (id_text, first, second, wire_names, effect) in self.rows(ID_REUSES):
            id_ = self.number(ID_REUSES, line, id_text)
            if wire_names not in ("same", "different"):
                self.report(ID_REUSES, line, f"wire_names is '{wire_names}' and neither 'same' nor 'different'")
            elif id_ is not None:
                yield IdReuse(line, id_, first, second, wire_names == "same", effect)

    def notes(self):
        return [Note(line, *cells) for line, cells in self.rows(NOTES)]

    def finish(self, value):
        if self.problems:
            raise TableError(sorted(self.problems, key=lambda problem: (str(problem.path), problem.line)))
        return value


def load(directory):
    """The catalogue of the tables in a directory. Raises TableError with all that is wrong with them."""
    reader = _Reader(directory)
    catalogue = Catalogue(
        families=tuple(reader.families()),
        messages=tuple(reader.messages()),
        id_reuses=tuple(reader.id_reuses()),
        notes=tuple(reader.notes()),
    )
    # What rows refer to can be told wrong from missing only when every row was readable.
    if not reader.problems:
        validate.check_families(catalogue, lambda line, reason: reader.report(FAMILIES, line, reason))
        validate.check_messages(catalogue, lambda line, reason: reader.report(MESSAGES, line, reason))
        validate.check_id_reuses(catalogue, lambda line, reason: reader.report(ID_REUSES, line, reason))
        validate.check_notes(catalogue, lambda line, reason: reader.report(NOTES, line, reason))
    return reader.finish(catalogue)


def load_families(directory):
    """The families alone, which is all that the names of the generated files depend on."""
    reader = _Reader(directory)
    catalogue = Catalogue(tuple(reader.families()), (), (), ())
    validate.check_family_names(catalogue, lambda line, reason: reader.report(FAMILIES, line, reason))
    return reader.finish(catalogue.families)
