#pragma once

// A library file that holds nothing but a version resource of any wanted version.

#include <span>
#include <vector>

#include "host/FileVersion.h"

namespace velm_tools {

// The bytes of such a library of version 0.0.0.0.
std::span<const unsigned char> EmbeddedImage();

// Writes a version over the fixed part of the version resource in `image`; false when it has none.
bool PatchFileVersion(std::span<unsigned char> image, const Cmm::FileVersion& version);

// The bytes of a library of the wanted version.
std::vector<unsigned char> ImageOfVersion(const Cmm::FileVersion& version);

}  // namespace velm_tools
