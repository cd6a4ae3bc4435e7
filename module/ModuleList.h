#pragma once

// The list of modules as data: what an XML document says, without loading anything.

#include <optional>
#include <vector>

#include "common/client/utility/src/CmmString.h"

namespace Cmm::module {

// One "module" element; an attribute that is missing is empty.
struct ModuleEntry {
  CStringT<char> name;
  CStringT<char> type;
  CStringT<char> caps;
};

// The "module" elements below the root, in their order; nothing when the document cannot be read or has no
// root.
std::optional<std::vector<ModuleEntry>> ReadModuleListFile(const char* path);
std::optional<std::vector<ModuleEntry>> ParseModuleList(const char* xml);

}  // namespace Cmm::module
