"""Which files come of a catalogue."""
from . import emit_family, emit_index, emit_reference, emit_templates

SOURCES = "archive/catalogue/"
DOCS = "docs/"


def file_names(families):
    names = [f"{SOURCES}{family.file}{suffix}" for family in families for suffix in (".h", ".cpp")]
    names += [f"{SOURCES}{name}" for name in ("TemplateInstances.h", "TemplateInstances.cpp", "CatalogueTable.cpp")]
    return names + [f"{DOCS}messages.html", f"{DOCS}messages.json"]


def texts(catalogue):
    """The text of each file by its name."""
    made = {}
    for family in catalogue.families:
        made[f"{SOURCES}{family.file}.h"] = emit_family.header(catalogue, family)
        made[f"{SOURCES}{family.file}.cpp"] = emit_family.source(catalogue, family)
    made[f"{SOURCES}TemplateInstances.h"] = emit_templates.header(catalogue)
    made[f"{SOURCES}TemplateInstances.cpp"] = emit_templates.source(catalogue)
    made[f"{SOURCES}CatalogueTable.cpp"] = emit_index.source(catalogue)
    made[f"{DOCS}messages.html"] = emit_reference.html(catalogue)
    made[f"{DOCS}messages.json"] = emit_reference.json_text(catalogue)
    return made
