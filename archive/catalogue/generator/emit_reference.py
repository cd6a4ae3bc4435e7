"""The reference of all messages: a page to read and search, and the same as JSON for scripts."""
import json
from html import escape
from pathlib import Path
from string import Template

from .model import FIELD_TYPES

_PAGE = Template((Path(__file__).parent / "reference.html").read_text(encoding="utf-8"))


def html(catalogue):
    return _PAGE.substitute(
        count=len(catalogue.messages),
        types="\n".join(f"    <dt><code>{kind}</code><dd>{_type_text(kind)}" for kind in FIELD_TYPES),
        contents="\n".join(_contents_line(catalogue, family) for family in catalogue.families),
        families="\n".join(_family(catalogue, family) for family in catalogue.families),
    )


def json_text(catalogue):
    """One message a line."""
    families = ",\n".join(_family_json(catalogue, family) for family in catalogue.families)
    return f'{{"families": [\n{families}\n]}}\n'


def _family_json(catalogue, family):
    head = {
        "name": family.name,
        "title": family.title,
        "summary": family.summary,
        "header": f"archive/catalogue/{family.file}.h",
    }
    messages = ",\n".join("  " + _json(_message_value(catalogue, m)) for m in catalogue.messages_of(family))
    return f' {_json(head)[:-1]}, "messages": [\n{messages}\n ]}}'


def _json(value):
    return json.dumps(value, ensure_ascii=False)


def _message_value(catalogue, message):
    return {
        "id": message.id,
        "class": message.class_name,
        "wire_name": message.wire_name,
        "fields": [{"name": field.name, "type": field.type} for field in message.fields],
        "remarks": list(catalogue.remarks_on(message)),
    }


def _type_text(kind):
    cpp_type, meaning = FIELD_TYPES[kind]
    return f"<code>{escape(cpp_type)}</code>, {meaning}"


def _contents_line(catalogue, family):
    count = len(catalogue.messages_of(family))
    return f'    <li><a href="#{family.name}">{escape(family.title)}</a> ({count})'


def _family(catalogue, family):
    rows = "\n".join(_row(catalogue, message) for message in catalogue.messages_of(family))
    return f"""\
<section id="{family.name}">
<h2>{escape(family.title)}</h2>
<p>{escape(family.summary)} <code>#include "archive/catalogue/{family.file}.h"</code></p>
<table>
<thead><tr><th>Id<th>Class and wire name<th>Fields, in order</thead>
<tbody>
{rows}
</tbody>
</table>
</section>"""


def _row(catalogue, message):
    fields = "".join(
        f"<li><b>{escape(field.name)}</b> <i>{field.type}</i>" for field in message.fields
    )
    remarks = "".join(f"<p>{escape(remark)}</p>" for remark in catalogue.remarks_on(message))
    return (
        f'<tr id="{message.class_name}"><td>{message.id}'
        f'<td><a href="#{message.class_name}">{message.class_name}</a><code>{escape(message.wire_name)}</code>{remarks}'
        f"<td>{f'<ol>{fields}</ol>' if fields else 'none'}"
    )
