"""The table behind catalogue.h."""
from . import layout


def source(catalogue):
    includes = "\n".join(sorted(f'#include "archive/catalogue/{family.file}.h"' for family in catalogue.families))
    fields = "\n\n".join(_fields(message) for message in catalogue.messages if message.fields)
    classes = "\n".join(_class(message) for message in catalogue.messages)
    return f"""\
// Every message of the catalogue with its fields, in the order of archive/catalogue/messages.tsv, from which
// this file is generated.

#include "archive/catalogue/CatalogueTable.h"

{includes}

namespace Cmm::Archive {{
namespace {{

#define FIELD(MESSAGE, NAME) FieldOf<&MESSAGE::Get_##NAME, &MESSAGE::Set_##NAME>(#NAME)

{fields}

#undef FIELD

constexpr MessageClass kMessageClasses[] = {{
{classes}
}};

}}  // namespace

std::span<const MessageClass> MessageClasses() {{
  return kMessageClasses;
}}

}}  // namespace Cmm::Archive
"""


def _fields(message):
    lines = "\n".join(f"    FIELD({message.class_name}, {field.name})," for field in message.fields)
    return f"constexpr MessageField kFieldsOf_{message.class_name}[] = {{\n{lines}\n}};"


def _class(message):
    fields = f"kFieldsOf_{message.class_name}" if message.fields else "{}"
    items = [
        layout.quoted(message.family),
        str(message.id),
        layout.quoted(message.class_name),
        layout.quoted(message.wire_name),
        fields,
        f"New<{message.class_name}>",
    ]
    return layout.bracketed("    {", items, "},")
