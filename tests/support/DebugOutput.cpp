#include "tests/support/DebugOutput.h"

#include <windows.h>

namespace velm_test {
namespace {

// The exception by which the system hands narrow debugger text over; wide text is raised by its own code
// first, on systems that have one, and as this one in the end.
constexpr DWORD kPrintNarrow = 0x40010006;

std::vector<std::string> g_texts;

LONG CALLBACK Record(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  if (record.ExceptionCode == kPrintNarrow && record.NumberParameters >= 2)
    g_texts.emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]));
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

DebugOutput::DebugOutput() {
  g_texts.clear();
  m_handler = AddVectoredExceptionHandler(1, Record);
}

DebugOutput::~DebugOutput() {
  RemoveVectoredExceptionHandler(m_handler);
}

const std::vector<std::string>& DebugOutput::Texts() const {
  return g_texts;
}

}  // namespace velm_test
