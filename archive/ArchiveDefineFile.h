#pragma once

#include <memory>

#include "archive/ArchivePackageTree.h"

namespace Cmm::Archive {

// A definition from a "CmmPdu" element of a definition file. Null when the element has no "name".
// No "dataType" names the two 64-bit types: a "Node" that asks for one, as for any unknown type, stays
// untyped, prints nothing and fails input.
std::unique_ptr<CCmmArchivePackageTree> ReadPduElement(const tinyxml2::XMLElement& element);

}  // namespace Cmm::Archive
