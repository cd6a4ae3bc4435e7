#pragma once

// A program's three streams and its arguments, the same on a console, a pipe and a file: UTF-8, with
// lines that end in a single line feed.

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velm_tools {

// Call first in main. `arguments` are without the program's own name.
std::vector<std::string> PrepareConsole();

// Write one line at once, whatever thread calls: results to the standard output, remarks to the standard
// error stream.
void PrintLine(std::string_view line);
void Remark(std::string_view line);

// Whether a person types the input.
bool InputIsConsole();

// Ctrl-C, Ctrl-Break, a closed console window, the end of the session: once TrapInterrupts() was called
// they only raise a flag, which lasts.
void TrapInterrupts();
bool Interrupted();
// Returns at an interrupt or when the time has passed; true for an interrupt.
bool SleepUnlessInterrupted(unsigned milliseconds);

// Polls `condition` until it holds, at most for the given time. False when it ran out or was interrupted.
template <typename Condition>
bool WaitUntilTrue(Condition condition, std::chrono::milliseconds limit) {
  constexpr unsigned kPollMs = 5;
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition())
    if (std::chrono::steady_clock::now() >= deadline || SleepUnlessInterrupted(kPollMs)) return false;
  return true;
}

// Lines of the standard input, read on a thread of its own so that an interrupt ends the wait for one.
class InputLines {
 public:
  InputLines();
  InputLines(const InputLines&) = delete;
  InputLines& operator=(const InputLines&) = delete;
  ~InputLines();

  // Without its line end. None at the end of the input and at an interrupt.
  std::optional<std::string> Next();

 private:
  struct Queue;
  std::shared_ptr<Queue> m_queue;  // shared with the thread, which nothing can wake from its read
};

}  // namespace velm_tools
