#pragma once

// A way between the simulated client and host applications.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <json/value.h>

#include "tools/client_simulator/ClientWindow.h"
#include "tools/client_simulator/Script.h"

namespace velm_sim {

// A command as it arrived.
struct Command {
  std::string_view route;                                   // "window", "audio" or "service"
  std::vector<std::pair<std::string, Json::Value>> origin;  // what the route knows of it, for the report
  size_t size = 0;                                          // in bytes, as the sender gave it
  std::optional<std::string> bytes;                         // none: it came without data
};

// Runs on a thread of the route, possibly on two at once, while the sender waits.
using CommandHandler = std::function<void(const Command&)>;

class Route {
 public:
  virtual ~Route() = default;

  virtual RouteKind Kind() const = 0;

  // To every host application that this route reaches and `step.via` means.
  virtual Delivery Send(const SendStep& step) = 0;

  virtual int CountHosts(const Via& via) = 0;

  // Closes the pipes that `via` means; the number of hosts that had one open.
  virtual int Drop(const Via&) { return 0; }
};

// The command's report: one JSON object. `number` counts commands from 1.
std::string CommandReport(const Command& command, uint64_t number);

}  // namespace velm_sim
