#pragma once

#include <filesystem>
#include <string_view>

namespace velm_test {

// Writes a .lnk file byte by byte, with `target` as it stands: the shell's own interface would resolve
// environment variables and relative parts. The target is in the ANSI code page.
void WriteShellLink(const std::filesystem::path& link, std::string_view target);

// Writes a .lnk file that leads nowhere: it has a description and no target.
void WriteShellLinkWithoutTarget(const std::filesystem::path& link);

}  // namespace velm_test
