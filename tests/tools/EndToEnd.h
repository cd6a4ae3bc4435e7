#pragma once

// The two programs as child processes of a test.

#include "tests/support/ChildProcess.h"

namespace velm_test {

inline ChildProcess StartSimulator(const std::vector<std::string>& arguments) {
  return ChildProcess(ProgramBeside(L"velm_client_sim.exe"), arguments);
}

inline ChildProcess StartHost(const std::vector<std::string>& arguments) {
  return ChildProcess(ProgramBeside(L"velm_host.exe"), arguments);
}

}  // namespace velm_test
