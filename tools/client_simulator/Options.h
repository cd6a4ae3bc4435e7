#pragma once

// The command line of the simulator.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/FileVersion.h"
#include "tools/client_simulator/Simulator.h"

namespace velm_sim {

enum class Action { kRun, kInstall, kUninstall, kHelp };

struct Options {
  Action action = Action::kRun;
  bool installProduct = true;
  Cmm::FileVersion version{5, 8, 0, 0};
  bool registerCommand = true;
  std::string directory;  // empty: the default
  bool force = false;
  std::vector<std::wstring> windows;  // classes
  bool audioPipes = true;             // on request, by a helper window
  bool servicePipe = true;
  std::optional<uint32_t> serviceId;  // none: by the rule of host applications
  std::string pipeSuffix;
  std::string script;  // path; empty: the standard input
  bool stay = false;
  Misbehaviour misbehaviour;
};

// Throws UsageError.
Options ParseOptions(const std::vector<std::string>& arguments);

extern const std::string_view kOptionHelp;

}  // namespace velm_sim
