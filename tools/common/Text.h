#pragma once

// Text between the encodings that a tool meets: UTF-8 outside, UTF-16 at the system and the library.

#include <optional>
#include <string>
#include <string_view>

namespace velm_tools {

// What cannot be converted becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view text);
// From the ANSI code page.
std::wstring FromAnsi(std::string_view text);

bool IsUtf8(std::string_view bytes);

// Two lower-case digits a byte.
std::string ToHex(std::string_view bytes);
// Takes both cases, and blanks between bytes; none for anything else.
std::optional<std::string> FromHex(std::string_view text);

}  // namespace velm_tools
