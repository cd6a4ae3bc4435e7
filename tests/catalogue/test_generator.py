#!/usr/bin/env python3
"""Tests of the generator of the message catalogue, and of the tables themselves."""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from html.parser import HTMLParser
from pathlib import Path

sys.dont_write_bytecode = True

HERE = Path(__file__).resolve().parent
CATALOGUE = HERE.parent.parent / "archive" / "catalogue"
GENERATE = CATALOGUE / "generate.py"
SAMPLE = HERE / "sample"
GOLDEN = HERE / "golden"
sys.path[:0] = [str(HERE), str(CATALOGUE)]

import wire_texts  # noqa: E402
from check_exports import INSTANTIATIONS  # noqa: E402
from generator import load, outputs  # noqa: E402


def generate(*arguments, **options):
    return subprocess.run(
        [sys.executable, str(GENERATE), *map(str, arguments)], capture_output=True, text=True, check=False, **options
    )


def files_below(directory):
    paths = (path for path in directory.rglob("*") if path.is_file() and path.name != ".clang-format")
    return {path.relative_to(directory).as_posix(): path.read_bytes() for path in paths}


class ScratchTables(unittest.TestCase):
    """Tables that begin as a copy of the sample."""

    def setUp(self):
        self._scratch = tempfile.TemporaryDirectory()
        self.addCleanup(self._scratch.cleanup)
        self.scratch = Path(self._scratch.name)
        self.tables = self.scratch / "tables"
        shutil.copytree(SAMPLE, self.tables)

    def lines(self, table):
        return (self.tables / table).read_text(encoding="utf-8").split("\n")[:-1]

    def write(self, table, lines):
        (self.tables / table).write_text("".join(f"{line}\n" for line in lines), encoding="utf-8", newline="\n")

    def set_cell(self, table, line, column, text):
        lines = self.lines(table)
        cells = lines[line - 1].split("\t")
        cells[load.HEADINGS[table].index(column)] = text
        lines[line - 1] = "\t".join(cells)
        self.write(table, lines)

    def add_line(self, table, *cells):
        """Appends a row and returns its line."""
        lines = self.lines(table) + ["\t".join(cells)]
        self.write(table, lines)
        return len(lines)

    def assert_refused(self, *problems):
        """`problems` are all that is wrong, as (table, line, reason)."""
        with self.assertRaises(load.TableError) as raised:
            load.load(self.tables)
        self.assertEqual(
            [(problem.path.name, problem.line, problem.reason) for problem in raised.exception.problems],
            list(problems),
        )

    def assert_message_refused(self, line, *reasons):
        self.assert_refused(*(("messages.tsv", line, reason) for reason in reasons))


class RefusedMessages(ScratchTables):
    """Line 2 of the sample is CQXMBMessage_Letter, line 3 CQXMBMessage_Parcel."""

    def test_the_sample_itself_is_not_refused(self):
        self.assertEqual(len(load.load(self.tables).messages), 7)

    def test_a_class_that_stands_there_twice(self):
        line = self.add_line("messages.tsv", "post", "104", "CQXMBMessage_Letter", "com.post.other", "")
        self.assert_message_refused(line, "the class CQXMBMessage_Letter stands in line 2 already")

    def test_an_unknown_type(self):
        self.set_cell("messages.tsv", 2, "fields", "u32:Stamp u16:Text")
        self.assert_message_refused(2, "unknown type 'u16' of the field Text")

    def test_an_empty_type(self):
        self.set_cell("messages.tsv", 2, "fields", ":Stamp")
        self.assert_message_refused(2, "unknown type '' of the field Stamp")

    def test_a_field_without_a_colon(self):
        self.set_cell("messages.tsv", 2, "fields", "u32:Stamp Text")
        self.assert_message_refused(2, "the field 'Text' is not of the form type:name")

    def test_a_field_behind_two_spaces(self):
        self.set_cell("messages.tsv", 2, "fields", "u32:Stamp  wstr:Text")
        self.assert_message_refused(2, "the field '' is not of the form type:name")

    def test_fifteen_fields_are_the_most(self):
        self.set_cell("messages.tsv", 2, "fields", " ".join(f"u32:F{n}" for n in range(15)))
        self.assertEqual(len(load.load(self.tables).messages[0].fields), 15)
        self.set_cell("messages.tsv", 2, "fields", " ".join(f"u32:F{n}" for n in range(16)))
        self.assert_message_refused(2, "16 fields, more than 15")

    def test_a_field_name_that_is_no_identifier(self):
        for name in ("1st", "a-b", "é", "a.b", ""):
            with self.subTest(name):
                self.set_cell("messages.tsv", 2, "fields", f"u32:{name}")
                self.assert_message_refused(2, f"the field name '{name}' is no identifier")

    def test_a_field_name_that_is_a_keyword(self):
        for name in ("int", "class", "co_await", "xor"):
            with self.subTest(name):
                self.set_cell("messages.tsv", 2, "fields", f"u32:{name}")
                self.assert_message_refused(2, f"the field name '{name}' is a C++ keyword")

    def test_a_field_that_stands_there_twice(self):
        self.set_cell("messages.tsv", 2, "fields", "u32:Stamp wstr:Stamp")
        self.assert_message_refused(2, "the field Stamp stands there twice")

    def test_fields_that_differ_in_case_are_two(self):
        self.set_cell("messages.tsv", 2, "fields", "u32:Stamp wstr:stamp")
        load.load(self.tables)

    def test_a_field_that_would_be_the_version_attribute(self):
        self.set_cell("messages.tsv", 2, "fields", "u32:version")
        self.assert_message_refused(2, "the field name 'version' is taken by the version of the package")

    def test_a_class_name_that_is_no_identifier(self):
        self.set_cell("messages.tsv", 2, "class", "CQXMBMessage_Let-ter")
        self.assert_message_refused(2, "the class name 'CQXMBMessage_Let-ter' is no identifier")

    def test_a_class_name_that_is_a_keyword(self):
        self.set_cell("messages.tsv", 2, "class", "union")
        self.assert_message_refused(2, "the class name 'union' is a C++ keyword")

    def test_a_class_name_without_one_of_the_prefixes(self):
        self.set_cell("messages.tsv", 2, "class", "QXMessage_Letter")
        self.assert_message_refused(2, "the class name QXMessage_Letter has none of the prefixes")

    def test_an_id_that_is_not_on_the_list_of_reuses(self):
        self.set_cell("messages.tsv", 3, "id", "101")
        self.assert_message_refused(3, "the id 101 belongs to CQXMBMessage_Letter in line 2")

    def test_an_id_that_a_third_message_reuses(self):
        line = self.add_line("messages.tsv", "post", "103", "CQXMBMessage_Third", "com.post.third", "")
        self.assert_message_refused(
            line,
            "the id 103 belongs to CQXMessage_LetterReturned in line 4",
            "the id 103 belongs to CQXMBMessage_Alarm in line 6",
        )

    def test_a_wire_name_of_another_message(self):
        self.set_cell("messages.tsv", 3, "wire_name", "com.post.letter")
        self.assert_message_refused(3, "the wire name com.post.letter belongs to CQXMBMessage_Letter in line 2")

    def test_wire_names_that_differ_in_case_are_two(self):
        self.set_cell("messages.tsv", 3, "wire_name", "com.Post.letter")
        load.load(self.tables)

    def test_an_id_that_is_no_number(self):
        for text in ("", "1x", "-1", "+1", "0", "007", " 1", "1.0", "0x10", "१", "2147483648"):
            with self.subTest(text):
                self.set_cell("messages.tsv", 2, "id", text)
                self.assert_message_refused(2, f"the id '{text}' is not a number from 1 to 2147483647")

    def test_the_greatest_id_is_that_of_32_bits(self):
        self.set_cell("messages.tsv", 2, "id", "2147483647")
        self.assertEqual(load.load(self.tables).messages[0].id, 2147483647)

    def test_an_empty_wire_name(self):
        self.set_cell("messages.tsv", 2, "wire_name", "")
        self.assert_message_refused(2, "empty wire name")

    def test_a_wire_name_that_is_no_dotted_path(self):
        for name in ("letter", "com", "com.", "com..letter", "org.post.letter", "com.post letter", "com.post.<letter>"):
            with self.subTest(name):
                self.set_cell("messages.tsv", 2, "wire_name", name)
                self.assert_message_refused(2, f"the wire name '{name}' is no dotted path that starts with com")

    def test_an_unknown_family(self):
        self.set_cell("messages.tsv", 2, "family", "mail")
        self.assert_message_refused(2, "unknown family 'mail'")

    def test_a_wrong_number_of_columns(self):
        line = self.add_line("messages.tsv", "post", "104", "CQXMBMessage_Other", "com.post.other")
        self.assert_message_refused(line, "4 columns instead of 5")
        self.write("messages.tsv", self.lines("messages.tsv")[:-1])
        line = self.add_line("messages.tsv", "post", "104", "CQXMBMessage_Other", "com.post.other", "", "")
        self.assert_message_refused(line, "6 columns instead of 5")

    def test_a_blank_line(self):
        self.write("messages.tsv", self.lines("messages.tsv") + [""])
        self.assert_message_refused(9, "1 columns instead of 5")

    def test_another_heading(self):
        self.write("messages.tsv", ["family\tid\tclass"] + self.lines("messages.tsv")[1:])
        self.assert_message_refused(1, "the heading is not: family id class wire_name fields")

    def test_an_empty_file(self):
        self.write("messages.tsv", [])
        self.assert_message_refused(1, "the heading is not: family id class wire_name fields")

    def test_bytes_that_are_not_utf8(self):
        path = self.tables / "messages.tsv"
        path.write_bytes(path.read_bytes().replace(b"Weight", b"W\xffight"))
        self.assert_message_refused(3, "not UTF-8")

    def test_all_that_is_wrong_at_once(self):
        self.set_cell("messages.tsv", 2, "wire_name", "")
        self.set_cell("messages.tsv", 2, "fields", "u16:int")
        self.set_cell("messages.tsv", 4, "family", "mail")
        self.assert_refused(
            ("messages.tsv", 2, "empty wire name"),
            ("messages.tsv", 2, "unknown type 'u16' of the field int"),
            ("messages.tsv", 2, "the field name 'int' is a C++ keyword"),
            ("messages.tsv", 4, "unknown family 'mail'"),
        )


class RefusedSideTables(ScratchTables):
    def test_a_reuse_of_messages_that_have_no_common_id(self):
        for first, second in (
            ("CQXMBMessage_Letter", "CQXMBMessage_Parcel"),
            ("CQXMBMessage_Letter", "CQXMBMessage_Letter"),
            ("CQXMBMessage_Letter", "CQXMBMessage_Gone"),
        ):
            with self.subTest(second):
                line = self.add_line("id_reuses.tsv", "101", first, second, "different", "None.")
                self.assert_refused(("id_reuses.tsv", line, f"{first} and {second} are no two messages of the id 101"))
                self.write("id_reuses.tsv", self.lines("id_reuses.tsv")[:-1])

    def test_a_reuse_that_is_wrong_about_the_wire_names(self):
        self.set_cell("id_reuses.tsv", 2, "wire_names", "same")
        self.assert_refused(
            ("id_reuses.tsv", 2, "the wire names of CQXMessage_LetterReturned and CQXMBMessage_Alarm are otherwise")
        )
        self.set_cell("id_reuses.tsv", 2, "wire_names", "equal")
        self.assert_refused(("id_reuses.tsv", 2, "wire_names is 'equal' and neither 'same' nor 'different'"))

    def test_a_reuse_that_stands_there_twice(self):
        line = self.add_line("id_reuses.tsv", *self.lines("id_reuses.tsv")[1].split("\t"))
        self.assert_refused(("id_reuses.tsv", line, "the id 103 stands in line 2 already"))

    def test_a_reuse_without_its_effect(self):
        self.set_cell("id_reuses.tsv", 2, "effect", "")
        self.assert_refused(("id_reuses.tsv", 2, "the effect is not told"))

    def test_a_reuse_whose_id_is_no_number(self):
        self.set_cell("id_reuses.tsv", 2, "id", "x")
        self.assert_refused(("id_reuses.tsv", 2, "the id 'x' is not a number from 1 to 2147483647"))

    def test_a_note_on_no_class_an_empty_one_and_a_second_one(self):
        self.add_line("notes.tsv", "CQXMBMessage_Gone", "Gone.")
        self.add_line("notes.tsv", "CQXMBMessage_Alarm", "")
        self.add_line("notes.tsv", "CQXMBMessage_Parcel", "Again.")
        self.assert_refused(
            ("notes.tsv", 3, "unknown class 'CQXMBMessage_Gone'"),
            ("notes.tsv", 4, "empty note"),
            ("notes.tsv", 5, "the class CQXMBMessage_Parcel stands in line 2 already"),
        )

    def test_a_family_without_messages(self):
        line = self.add_line("families.tsv", "empty", "EmptyMessages", "Empty", "Nothing.")
        self.assert_refused(("families.tsv", line, "the family empty has no messages"))

    def test_a_family_without_title_or_summary(self):
        self.set_cell("families.tsv", 2, "title", "")
        self.set_cell("families.tsv", 3, "summary", "")
        self.assert_refused(
            ("families.tsv", 2, "the family post lacks a title or a summary"),
            ("families.tsv", 3, "the family clock lacks a title or a summary"),
        )

    def test_a_family_whose_file_is_no_name_or_taken(self):
        self.set_cell("families.tsv", 2, "file", "../Post")
        self.assert_refused(("families.tsv", 2, "'../Post' is no identifier"))
        self.set_cell("families.tsv", 2, "file", "ClockMessages")
        self.assert_refused(("families.tsv", 3, "the file ClockMessages stands in line 2 already"))


class CommandLine(ScratchTables):
    def test_a_bad_table_is_refused_with_its_path_and_line_and_nothing_is_written(self):
        self.set_cell("messages.tsv", 2, "wire_name", "")
        made = self.scratch / "made"
        result = generate("--tables", self.tables, "write", made)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr, f"{self.tables / 'messages.tsv'}:2: empty wire name\n")
        self.assertFalse(made.exists())

    def test_a_missing_table_is_refused_by_name(self):
        (self.tables / "notes.tsv").unlink()
        result = generate("--tables", self.tables, "check")
        self.assertEqual(result.returncode, 1)
        self.assertIn(str(self.tables / "notes.tsv"), result.stderr)
        self.assertNotIn("Traceback", result.stderr)

    def test_files_are_exactly_those_that_are_written(self):
        made = self.scratch / "made"
        self.assertEqual(generate("--tables", self.tables, "write", made).returncode, 0)
        listed = generate("--tables", self.tables, "files").stdout.split()
        self.assertEqual(sorted(listed), sorted(files_below(made)))

    def test_files_need_the_families_only(self):
        (self.tables / "messages.tsv").unlink()
        self.assertEqual(generate("--tables", self.tables, "files").returncode, 0)

    def test_a_file_that_would_not_change_keeps_its_date(self):
        made = self.scratch / "made"
        generate("--tables", self.tables, "write", made)
        for name in files_below(made):
            os.utime(made / name, (1000, 1000))
        self.set_cell("messages.tsv", 6, "fields", "str:Tune")  # CQXMBMessage_Alarm
        generate("--tables", self.tables, "write", made)
        changed = {name for name in files_below(made) if (made / name).stat().st_mtime != 1000}
        self.assertEqual(
            changed,
            {
                "archive/catalogue/ClockMessages.h",
                "archive/catalogue/ClockMessages.cpp",
                "archive/catalogue/TemplateInstances.h",
                "archive/catalogue/TemplateInstances.cpp",
                "docs/messages.html",
                "docs/messages.json",
            },
        )


class Output(ScratchTables):
    def test_the_sample_gives_the_golden_files(self):
        made = self.scratch / "made"
        self.assertEqual(generate("--tables", self.tables, "write", made).returncode, 0)
        made_files, golden_files = files_below(made), files_below(GOLDEN)
        self.assertEqual(sorted(made_files), sorted(golden_files))
        for name, content in golden_files.items():
            with self.subTest(name):
                self.assertEqual(
                    made_files[name].decode("utf-8"),
                    content.decode("utf-8"),
                    "If the change is meant: generate.py --tables tests/catalogue/sample write tests/catalogue/golden",
                )

    def test_the_same_tables_give_the_same_bytes_anywhere_at_any_time(self):
        results = []
        for number, seed in enumerate(("0", "12345")):
            made = self.scratch / f"made{number}"
            elsewhere = self.scratch / f"from{number}"
            elsewhere.mkdir()
            environment = dict(os.environ, PYTHONHASHSEED=seed, LC_ALL="C", TZ=f"UTC{number}")
            self.assertEqual(generate("write", made, cwd=elsewhere, env=environment).returncode, 0)
            results.append(files_below(made))
        self.assertEqual(results[0], results[1])

    def test_no_path_of_the_machine_is_in_any_file(self):
        for name, text in outputs.texts(load.load(CATALOGUE)).items():
            self.assertNotIn(str(CATALOGUE.parent.parent), text, name)

    def test_lines_of_comments_and_declarations_keep_to_the_width(self):
        for name, text in outputs.texts(load.load(CATALOGUE)).items():
            if name.endswith(".h"):
                self.assertEqual([line for line in text.split("\n") if len(line) > 110], [], name)


class Reference(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        texts = outputs.texts(load.load(CATALOGUE))
        cls.html = texts["docs/messages.html"]
        cls.json = json.loads(texts["docs/messages.json"])

    def test_the_json_has_what_the_table_has(self):
        told = [
            (
                message["id"],
                message["class"],
                message["wire_name"],
                [[field["type"], field["name"]] for field in message["fields"]],
            )
            for family in self.json["families"]
            for message in family["messages"]
        ]
        self.assertEqual(told, list(wire_texts.read_table(CATALOGUE / "messages.tsv")))

    def test_the_page_has_a_row_for_each_message_and_needs_nothing_else(self):
        ids, references = [], []

        class Parser(HTMLParser):
            def handle_starttag(self, tag, attributes):
                values = dict(attributes)
                if tag == "tr" and "id" in values:
                    ids.append(values["id"])
                references.extend(values[name] for name in ("href", "src") if name in values)

        Parser().feed(self.html)
        messages = list(wire_texts.read_table(CATALOGUE / "messages.tsv"))
        self.assertEqual(ids, [class_name for _, class_name, _, _ in messages])
        self.assertEqual([reference for reference in references if not reference.startswith("#")], [])
        self.assertNotIn("://", self.html)
        for id_, class_name, wire_name, fields in messages:
            row = self.html[self.html.index(f'<tr id="{class_name}">') :].split("\n", 1)[0]
            self.assertIn(f"<td>{id_}<td>", row)
            self.assertIn(f"<code>{wire_name}</code>", row)
            self.assertEqual(re.findall(r"<b>(\w+)</b> <i>(\w+)</i>", row), [(name, kind) for kind, name in fields])


class TheTables(unittest.TestCase):
    """The catalogue that peers go by."""

    # Where the ids of a family lie.
    RANGES = {
        "sdk_and_connection": [(1, 3), (40351, 40355), (40520, 40526), (50001, 50002)],
        "conference_1": [(10007, 10099)],
        "conference_2": [(10101, 10213)],
        "lifecycle_and_framework": [(20001, 20012), (30001, 30012)],
        "assistant_sip": [(40103, 40190), (40216, 40216), (40218, 40218), (40300, 40300)],
        "assistant_audio_device_broadcast": [
            (40001, 40002), (40031, 40032), (40152, 40173), (40200, 40226), (40240, 40246), (40400, 40475),
        ],  # fmt: skip
        "document_calendar_desktop": [(40230, 40232), (40360, 40362), (40370, 40371), (40500, 40505), (40530, 40555)],
        "contact_centre_video": [(40560, 40637)],
        "process_service": [(80003, 80024)],
    }

    # Ids of messages that this library does not know. They are not to be reused.
    FREE_IDS = {
        10012, 10013, *range(10044, 10050), 10052, 10053, 10055, 10073, 10078, 10079, 10080, 10083,
        *range(10085, 10089), *range(10090, 10094), 10100, 10103, 10105, 10120, 10122, 10127, 10131, 10137, 10140,
        10143, 10148, 10149, 10159, 10160, 10177, 10178, 10184, 10185, 10191, 10199, 10201, 10202, 10204, 40404, 40414,
        40419, *range(40425, 40451), 40452, 40454, *range(40456, 40460), 40462, *range(40468, 40473),
    }  # fmt: skip

    @classmethod
    def setUpClass(cls):
        cls.catalogue = load.load(CATALOGUE)

    def test_there_are_397_messages_in_nine_families(self):
        self.assertEqual(len(self.catalogue.messages), 397)
        self.assertEqual(len(self.catalogue.families), 9)

    def test_the_ids_of_a_family_lie_in_its_ranges(self):
        for message in self.catalogue.messages:
            ranges = self.RANGES[message.family]
            self.assertTrue(any(first <= message.id <= last for first, last in ranges), message)
        for family, ranges in self.RANGES.items():
            ids = {message.id for message in self.catalogue.messages if message.family == family}
            self.assertLessEqual({id_ for ends in ranges for id_ in ends}, ids, "a range ends with its last message")

    def test_free_ids_are_not_used(self):
        self.assertEqual({message.id for message in self.catalogue.messages} & self.FREE_IDS, set())

    def test_between_10007_and_10213_every_id_is_used_or_free(self):
        used = {message.id for message in self.catalogue.messages}
        self.assertEqual(set(range(10007, 10214)) - used, {id_ for id_ in self.FREE_IDS if id_ <= 10213})

    def test_four_ids_are_reused(self):
        self.assertEqual([reuse.id for reuse in self.catalogue.id_reuses], [10197, 10210, 40362, 40145])

    def test_the_instantiations_of_the_templates_are_as_many_as_they_were(self):
        counts = [0] * 15
        for signature in self.catalogue.signatures():
            counts[len(signature) - 1] += 1
        self.assertEqual(counts, INSTANTIATIONS)

    def test_the_golden_texts_are_those_of_the_table(self):
        golden = (HERE / "wire_texts.jsonl").read_text(encoding="utf-8")
        self.assertEqual(
            golden,
            wire_texts.lines(CATALOGUE / "messages.tsv"),
            "If the table was meant to change: wire_texts.py archive/catalogue/messages.tsv > wire_texts.jsonl",
        )

    def test_no_two_golden_values_are_equal(self):
        values = [
            text for message in wire_texts.wire_texts(CATALOGUE / "messages.tsv") for _, _, text in message["fields"]
        ]
        self.assertEqual(len(values), len(set(values)))


if __name__ == "__main__":
    unittest.main()
