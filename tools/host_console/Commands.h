#pragma once

// What the user of the console writes: on its command line, or a line at a time.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/host_console/Functions.h"

namespace velm_host {

struct CallCommand {
  Call call;
  bool bare = false;  // call it and nothing else; otherwise a channel is made first if there is none
};
struct WatchCommand {
  std::optional<int64_t> features;  // none: all there are
  bool general = true;
  bool family = true;
  bool raw = false;
  std::optional<std::chrono::milliseconds> duration;
  std::optional<uint32_t> count;
};
// Waits for records that no earlier command of this kind has counted.
struct WaitCommand {
  uint32_t count = 0;
  std::chrono::milliseconds limit;
};
struct SleepCommand {
  std::chrono::milliseconds duration;
};
struct InteractiveCommand {};
struct HelpCommand {};
struct QuitCommand {};

using Command = std::variant<CallCommand, WatchCommand, WaitCommand, SleepCommand, InteractiveCommand,
                             HelpCommand, QuitCommand>;

// How a channel is made where a command needs one and there is none.
enum class Start {
  kPlain,    // GetSDKAvailableFeatures: it is made, and not started
  kAudio,    // RegisterMsg with the audio feature, then started: audio goes by its pipe
  kService,  // service mode is asked for, then registered without audio and started
};

struct Options {
  bool json = false;
  Start start = Start::kPlain;
  Command command = InteractiveCommand{};
};

// Both throw UsageError.
Options ParseArguments(const std::vector<std::string>& arguments);
// None for a line that is blank or begins with '#'. In a line the text to send is not quoted: it is all
// that follows.
std::optional<Command> ParseLine(std::string_view line);

extern const std::string_view kHelp;

}  // namespace velm_host
