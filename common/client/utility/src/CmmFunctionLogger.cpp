#include "common/client/utility/src/CmmFunctionLogger.h"

namespace logging {

CmmFunctionLogger::CmmFunctionLogger(const std::string& name) : m_name(name) {}

CmmFunctionLogger::~CmmFunctionLogger() = default;

}  // namespace logging
