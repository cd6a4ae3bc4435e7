#pragma once

#include <stdexcept>

namespace velm_tools {

// Something that the user wrote is wrong; the message, in UTF-8, says what and what would be right.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace velm_tools
