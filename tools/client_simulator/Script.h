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

// A message to every host application.
struct SendStep {
  std::optional<std::string> data;  // none: no data at all, by a null pointer
  uintptr_t id = 10;
};
struct WaitForHostStep {
  std::chrono::milliseconds limit;
};
// Waits for commands that no earlier step of this kind has counted.
struct WaitForCommandsStep {
  uint32_t count = 0;
  std::chrono::milliseconds limit;
};
struct SleepStep {
  std::chrono::milliseconds duration;
};
struct HelpStep {};
struct QuitStep {};

using Step = std::variant<SendStep, WaitForHostStep, WaitForCommandsStep, SleepStep, HelpStep, QuitStep>;

// None for a line that is blank or begins with '#'. Throws UsageError.
std::optional<Step> ParseStep(std::string_view line);

// Throws UsageError with the number of the first line that is wrong.
std::vector<Step> ParseScript(std::string_view text);

// What may stand on a line.
extern const std::string_view kStepHelp;

}  // namespace velm_sim
