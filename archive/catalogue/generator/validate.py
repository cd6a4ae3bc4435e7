"""What the tables must hold. Each check reports (line, reason) for every row that breaks it."""
import re

from .model import CPP_KEYWORDS, FIELD_TYPES, IDENTIFIER, MAX_FIELDS

MAX_ID = 0x7FFFFFFF

CLASS_PREFIXES = ("CQXMBMessage_", "CQXMessage_", "QXIPCMessage_")

# A wire name is the tag of an XML element.
WIRE_NAME = re.compile(r"com(\.[A-Za-z0-9_]+)+")

# The attribute that every text has beside its fields.
VERSION_ATTRIBUTE = "version"


def is_id(text):
    return re.fullmatch(r"[1-9][0-9]*", text) is not None and int(text) <= MAX_ID


def why_no_name(name):
    """Why a text cannot name something in C++; None when it can."""
    if not IDENTIFIER.fullmatch(name):
        return f"'{name}' is no identifier"
    if name in CPP_KEYWORDS:
        return f"'{name}' is a C++ keyword"
    return None


def _report_repeated(items, key, report, what):
    """Reports every item whose key an earlier one has."""
    first_lines = {}
    for item in items:
        first = first_lines.setdefault(key(item), item.line)
        if first != item.line:
            report(item.line, f"{what} {key(item)} stands in line {first} already")


def check_family_names(catalogue, report):
    for family in catalogue.families:
        for name in (family.name, family.file):
            reason = why_no_name(name)
            if reason:
                report(family.line, reason)
    _report_repeated(catalogue.families, lambda family: family.name, report, "the family")
    _report_repeated(catalogue.families, lambda family: family.file, report, "the file")


def check_families(catalogue, report):
    check_family_names(catalogue, report)
    for family in catalogue.families:
        if not family.title or not family.summary:
            report(family.line, f"the family {family.name} lacks a title or a summary")
        if not catalogue.messages_of(family):
            report(family.line, f"the family {family.name} has no messages")


def check_messages(catalogue, report):
    families = {family.name for family in catalogue.families}
    for message in catalogue.messages:
        if message.family not in families:
            report(message.line, f"unknown family '{message.family}'")
        _check_names(message, report)
        _check_fields(message, report)
    _report_repeated(catalogue.messages, lambda message: message.class_name, report, "the class")
    _check_sharing(catalogue, report)


def _check_names(message, report):
    reason = why_no_name(message.class_name)
    if reason:
        report(message.line, f"the class name {reason}")
    elif not message.class_name.startswith(CLASS_PREFIXES):
        report(message.line, f"the class name {message.class_name} has none of the prefixes")
    if not message.wire_name:
        report(message.line, "empty wire name")
    elif not WIRE_NAME.fullmatch(message.wire_name):
        report(message.line, f"the wire name '{message.wire_name}' is no dotted path that starts with com")


def _check_fields(message, report):
    if len(message.fields) > MAX_FIELDS:
        report(message.line, f"{len(message.fields)} fields, more than {MAX_FIELDS}")
    seen = set()
    for field in message.fields:
        if field.type not in FIELD_TYPES:
            report(message.line, f"unknown type '{field.type}' of the field {field.name}")
        reason = why_no_name(field.name)
        if reason:
            report(message.line, f"the field name {reason}")
        if field.name == VERSION_ATTRIBUTE:
            report(message.line, f"the field name '{field.name}' is taken by the version of the package")
        if field.name in seen:
            report(message.line, f"the field {field.name} stands there twice")
        seen.add(field.name)


def _check_sharing(catalogue, report):
    """An id has one message, and so has a wire name, but for the pairs on the list."""
    same_id = {frozenset(reuse.classes) for reuse in catalogue.id_reuses}
    same_wire_name = {frozenset(reuse.classes) for reuse in catalogue.id_reuses if reuse.same_wire_name}
    for key, what, allowed in (
        (lambda message: message.id, "the id", same_id),
        (lambda message: message.wire_name, "the wire name", same_wire_name),
    ):
        earlier = {}
        for message in catalogue.messages:
            for other in earlier.setdefault(key(message), []):
                # A class that stands there twice is reported as that.
                if other.class_name != message.class_name:
                    if frozenset((other.class_name, message.class_name)) not in allowed:
                        report(message.line, f"{what} {key(message)} belongs to {other.class_name} in line {other.line}")
            earlier[key(message)].append(message)


def check_id_reuses(catalogue, report):
    messages = {message.class_name: message for message in catalogue.messages}
    for reuse in catalogue.id_reuses:
        pair = [messages.get(name) for name in reuse.classes]
        if None in pair or {message.id for message in pair} != {reuse.id} or pair[0] is pair[1]:
            report(reuse.line, f"{reuse.first_class} and {reuse.second_class} are no two messages of the id {reuse.id}")
        elif (pair[0].wire_name == pair[1].wire_name) != reuse.same_wire_name:
            report(reuse.line, f"the wire names of {reuse.first_class} and {reuse.second_class} are otherwise")
        if not reuse.effect:
            report(reuse.line, "the effect is not told")
    _report_repeated(catalogue.id_reuses, lambda reuse: reuse.id, report, "the id")


def check_notes(catalogue, report):
    classes = {message.class_name for message in catalogue.messages}
    for note in catalogue.notes:
        if note.class_name not in classes:
            report(note.line, f"unknown class '{note.class_name}'")
        if not note.text:
            report(note.line, "empty note")
    _report_repeated(catalogue.notes, lambda note: note.class_name, report, "the class")
