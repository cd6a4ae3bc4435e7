"""The instantiations of the message templates that the catalogue uses, and their bases."""
from . import layout
from .model import FIELD_TYPES


def header(catalogue):
    return f"""\
#pragma once

// The instantiations of the message templates in use. The library holds them all: including code does not
// instantiate them again.

#include <cstdint>

#include "archive/MessageTemplate.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm::Archive {{

{_declarations(catalogue, "extern template class CMM_EXPORT")}

}}  // namespace Cmm::Archive
"""


def source(catalogue):
    return f"""\
#include "archive/catalogue/TemplateInstances.h"

namespace Cmm::Archive {{

{_declarations(catalogue, "template class")}

}}  // namespace Cmm::Archive
"""


def _declarations(catalogue, head):
    lines = []
    for signature in catalogue.signatures():
        types = [FIELD_TYPES[kind][0].removeprefix("Cmm::") for kind in signature]
        template = f"CmmMessageTemplate_{len(types)}<"
        lines.append(
            layout.shorter(
                layout.bracketed(f"{head} {template}", types, ">;"),
                f"{head}\n" + layout.bracketed(f"    {template}", types, ">;"),
            )
        )
    return "\n".join(lines)
