#pragma once

#include <string>

#include "tools/common/UsageError.h"

namespace velm_tools {

// The message of the UsageError that `function` throws.
template <typename Function>
std::string ErrorOf(Function function) {
  try {
    function();
  } catch (const UsageError& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace velm_tools
