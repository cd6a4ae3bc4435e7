#pragma once

// A program run by a test: its input is written, its output read line by line with a deadline.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"

namespace velm_test {

// The path of a program that the build puts beside the running test.
std::filesystem::path ProgramBeside(std::wstring_view name);

// The text of one argument that CommandLineToArgvW reads back as `argument`.
std::wstring QuoteArgument(std::wstring_view argument);

class ChildProcess {
 public:
  static constexpr std::chrono::milliseconds kDeadline = std::chrono::seconds(20);

  // Starts the program; arguments are UTF-8. Throws std::system_error.
  ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  // Kills the program if it still runs.
  ~ChildProcess();

  // False when the program no longer reads.
  bool Write(std::string_view bytes);
  bool WriteLine(std::string_view line) { return Write(std::string(line) + '\n'); }
  void CloseInput() { m_input.reset(); }

  // The next line of the standard output, without its line feed; none when none came in time or the
  // output has ended.
  std::optional<std::string> ReadLine(std::chrono::milliseconds limit = kDeadline);
  // Reads on until a line contains `part`, and returns that line; none when none did in time.
  std::optional<std::string> ReadLineWith(std::string_view part, std::chrono::milliseconds limit = kDeadline);
  // All lines that are left, up to the end of the output.
  std::vector<std::string> ReadRest(std::chrono::milliseconds limit = kDeadline);

  // What the program wrote to its standard error stream so far; all of it once Wait() gave a result.
  std::string Errors();

  // Closes the input and waits for the end. The exit code; none when the program still runs.
  std::optional<uint32_t> Wait(std::chrono::milliseconds limit = kDeadline);
  void Kill();

  uint32_t Id() const { return m_id; }

 private:
  void ReadOutput();
  void ReadErrors();

  uint32_t m_id = 0;
  Cmm::UniqueHandle m_process;
  Cmm::UniqueHandle m_input;
  Cmm::UniqueHandle m_output;
  Cmm::UniqueHandle m_errors;

  std::mutex m_lock;
  std::condition_variable m_changed;
  std::deque<std::string> m_lines;  // guarded by m_lock
  bool m_outputEnded = false;       // guarded by m_lock
  std::string m_errorText;          // guarded by m_lock
  std::thread m_outputReader;
  std::thread m_errorReader;
};

}  // namespace velm_test
