#pragma once

#include <cstdint>
#include <string_view>

#include "tools/fake_product/FakeProduct.h"

namespace velm_tools {

// "cannot write C:\...\Velm.exe: Access is denied. (error 5)"
[[noreturn]] void ThrowSystemError(std::string_view doing, std::wstring_view what, uint32_t error);

}  // namespace velm_tools
