#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/fake_product/FakeProduct.h"

namespace velm_tools {

// "cannot write C:\...\Velm.exe: Access is denied. (error 5)"
[[noreturn]] void ThrowSystemError(std::string_view doing, std::wstring_view what, uint32_t error);

std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view text);
std::wstring FromAnsi(std::string_view text);

}  // namespace velm_tools
