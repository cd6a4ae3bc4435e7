#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace velm_trace {

struct Options {
  bool help = false;
  std::string serve;      // name of the channel to serve; empty: none
  std::string open;       // name of the channel to open; empty: none
  std::string recording;  // path; empty: nothing is recorded
  std::string replay;     // path of a recording; empty: relay
  bool json = false;
  bool once = false;
  std::chrono::milliseconds limit = std::chrono::seconds(10);
};

// Throws UsageError.
Options ParseOptions(const std::vector<std::string>& arguments);

extern const std::string_view kHelp;

}  // namespace velm_trace
