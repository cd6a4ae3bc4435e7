#pragma once

#include <string>

#include "common/client/utility/src/CmmDefine.h"

namespace logging {

// Holds the name of a function. It logs nothing, at its end neither.
class CMM_EXPORT CmmFunctionLogger {
 public:
  explicit CmmFunctionLogger(const std::string& name);
  CmmFunctionLogger(const CmmFunctionLogger&) = delete;
  CmmFunctionLogger& operator=(const CmmFunctionLogger&) = delete;
  ~CmmFunctionLogger();

 private:
  std::string m_name;
};

}  // namespace logging
