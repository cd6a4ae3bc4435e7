"""The header and the source of a family: a class for each of its messages."""
from . import layout

def header(catalogue, family):
    classes = "\n\n".join(_class(catalogue, message) for message in catalogue.messages_of(family))
    return f"""\
#pragma once

// {family.title}.
//
{layout.comment(family.summary)}
//
// Generated from archive/catalogue/messages.tsv. Class names, wire names, ids and the order of the fields are
// what every peer goes by: what is misspelt or looks mixed up here is so on the wire, and stays.

#include <cstdint>

#include "archive/catalogue/TemplateInstances.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

{classes}
"""


def source(catalogue, family):
    definitions = "\n\n".join(_definitions(message) for message in catalogue.messages_of(family))
    return f"""\
#include "archive/catalogue/{family.file}.h"

#include "archive/catalogue/FirstConstruction.h"

using namespace Cmm::Archive;

{definitions}
"""


def _class(catalogue, message):
    lines = [f'// {message.id} "{message.wire_name}"']
    lines += [layout.comment(remark) for remark in catalogue.remarks_on(message)]
    lines.append(_class_head(message))
    lines.append(" public:")
    lines.append(f"  {message.class_name}();")
    lines.append(f"  ~{message.class_name}() override;")
    if message.fields:
        lines.append("")
    for field in message.fields:
        lines.append(f"  {field.cpp_type}& Get_{field.name}();")
        lines.append(f"  void Set_{field.name}(const {field.cpp_type}& value);")
    lines.append("};")
    return "\n".join(lines)


def _class_head(message):
    head = f"class CMM_EXPORT {message.class_name}"
    types = [field.cpp_type for field in message.fields]
    base = f": public Cmm::Archive::CmmMessageTemplate_{len(types)}"
    if not types:
        return f"{head} {base} {{"
    one_line = f"{head} {base}<{', '.join(types)}> {{"
    if len(one_line) <= layout.WIDTH:
        return one_line
    return head + "\n" + layout.bracketed(f"    {base}<", types, "> {")


def _definitions(message):
    name = message.class_name
    count = len(message.fields)
    wire_name = layout.quoted(message.wire_name)
    fields = [layout.quoted(field.name) for field in message.fields]
    base = [wire_name, str(message.id)] + fields
    head = f"{name}::{name}() : CmmMessageTemplate_{count}({', '.join(base)}) {{"
    if len(head) > layout.WIDTH:
        head = layout.qualified(name, f"{name}()") + "\n"
        head += layout.bracketed(f"    : CmmMessageTemplate_{count}(", base, ") {")
    constructor = f"""\
{head}
  static std::atomic<int> s_firsttime{{1}};
  if (TakeFirstTime(s_firsttime))
{_registration(message, [wire_name] + fields)}
}}"""
    destructor = layout.qualified(name, f"~{name}() = default;")
    accessors = [_accessors(name, number, field) for number, field in enumerate(message.fields, 1)]
    return "\n\n".join([constructor, destructor] + accessors)


def _accessors(class_name, number, field):
    return f"""\
{layout.qualified(f"{field.cpp_type}& {class_name}", f"Get_{field.name}() {{")}
  return GetItem{number}();
}}
{layout.qualified(f"void {class_name}", f"Set_{field.name}(const {field.cpp_type}& value) {{")}
  SetItem{number}(value);
}}"""


def _registration(message, arguments):
    function = f"    Service().AddPackageDefine{len(message.fields)}"
    types = [field.cpp_type for field in message.fields]
    head = f"{function}<{', '.join(types)}>(" if types else f"{function}("
    if len(head) > layout.WIDTH:
        head = layout.bracketed(f"{function}<", types, ">(")
    return layout.call(head, arguments, ");")
