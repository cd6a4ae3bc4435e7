#pragma once

// What the simulated client is told to do: one step a line, from a script file or the standard input.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace velm_sim {

// How the client and host applications reach each other.
enum class RouteKind { kWindow, kAudio, kService };

// "window", "audio", "service".
std::string_view NameOf(RouteKind kind);

// To whom: all host applications of a route, or of a pipe route the one whose channel has this id.
struct Via {
  RouteKind kind = RouteKind::kWindow;
  std::optional<uint32_t> id;

  bool operator==(const Via&) const = default;
};

// A message to host applications. By pipe a text travels in the route's notification, without its NUL.
struct SendStep {
  enum class Form {
    kText,
    kBytes,  // by pipe: as they are, in no frame
    kFrame,  // only by pipe: the payload of a frame
  };
  std::optional<std::string> data;  // none: no data at all, by a null pointer
  uintptr_t id = 10;                // only by window
  Form form = Form::kText;
  int32_t frameType = 0;
  Via via;
};
// Notifications one behind the other, as fast as they are taken; their values count from 0.
struct FloodStep {
  uint32_t count = 0;
  std::vector<std::string> words;  // of the notification, with any value
  Via via;
};
// Closes pipes that host applications have open.
struct DropStep {
  Via via;
};
// How all pipes behave from here on.
struct PipeSwitchStep {
  enum class Switch { kStall, kSplit, kGoodbye };
  Switch which = Switch::kStall;
  bool on = false;
};
struct WaitForHostStep {
  std::chrono::milliseconds limit;
  Via via;
};
// Waits for commands that no earlier step of this kind has counted.
struct WaitForCommandsStep {
  uint32_t count = 0;
  std::chrono::milliseconds limit;
};
struct SleepStep {
  std::chrono::milliseconds duration;
};
// Ends the process hard.
struct DieStep {};
struct HelpStep {};
struct QuitStep {};

using Step = std::variant<SendStep, FloodStep, DropStep, PipeSwitchStep, WaitForHostStep, WaitForCommandsStep,
                          SleepStep, DieStep, HelpStep, QuitStep>;

// None for a line that is blank or begins with '#'. Throws UsageError.
std::optional<Step> ParseStep(std::string_view line);

// Throws UsageError with the number of the first line that is wrong.
std::vector<Step> ParseScript(std::string_view text);

// What may stand on a line.
extern const std::string_view kStepHelp;

}  // namespace velm_sim
