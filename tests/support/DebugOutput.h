#pragma once

#include <string>
#include <vector>

namespace velm_test {

// Sees what the process writes by OutputDebugString while it lives. One at a time; characters outside
// the ANSI code page arrive as question marks.
class DebugOutput {
 public:
  DebugOutput();
  DebugOutput(const DebugOutput&) = delete;
  DebugOutput& operator=(const DebugOutput&) = delete;
  ~DebugOutput();

  const std::vector<std::string>& Texts() const;

 private:
  void* m_handler;
};

}  // namespace velm_test
