#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "common/client/utility/src/CmmLogMessage.h"
#include "common/client/utility/src/CmmLogging.h"
#include "gmock/gmock.h"
#include "tests/support/ScratchDirectory.h"

namespace velm_test {

// The bytes of a file; empty for one that is not there.
inline std::string Content(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The lines of a file without their line feeds. What follows the last one counts as a line, too.
inline std::vector<std::string> Lines(const std::filesystem::path& path) {
  std::istringstream in(Content(path));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

// A log that waits in memory and has no handlers before and after each test, and a directory for its files.
class LogTest : public testing::Test {
 protected:
  LogTest() { Reset(); }
  ~LogTest() override { Reset(); }

  void Reset() {
    // A set that an earlier test used would take further lines in.
    logging::BaseInitLoggingImpl_built_with_NDEBUG(
        m_scratch.Path().c_str(), L"rest", 2, std::numeric_limits<int>::max(), logging::LOG_TO_MEMORY,
        logging::LOG_NOT_ENCRYPTED, logging::LOG_FILE_WITHOUT_DATE, logging::LOCK_BY_CRITICAL_SECTION, 0);
    LogTo(File(L"rest.log"));  // takes what an earlier test left in memory
    logging::CloseLogFile();
    logging::SetLogDestination(logging::LOG_TO_MEMORY);
    logging::SetLogMessageHandler(nullptr);
    logging::SetLogAssertHandler(nullptr);
    logging::SetLogReportHandler(nullptr);
    logging::SetShowErrorDialogs(false);
    logging::SetMinLogLevel(0);
    logging::SetLogItems(true, true, true, false);
  }

  // Lines then begin "[INFO:a(1)] " or alike.
  static void LeaveOutItems() { logging::SetLogItems(false, false, false, false); }

  std::filesystem::path File(std::wstring_view name) const { return m_scratch.Path() / name; }

  bool LogTo(const std::filesystem::path& path, logging::LoggingDestination dest = logging::LOG_TO_FILE,
             logging::OldFileDeletionState oldFile = logging::APPEND_TO_OLD_LOG_FILE, unsigned long pid = 0) {
    return logging::BaseInitLoggingImpl_built_with_NDEBUG(
        path.c_str(), dest, logging::LOCK_BY_CRITICAL_SECTION, oldFile, logging::LOG_NOT_ENCRYPTED, pid);
  }

  const ScratchDirectory m_scratch;
};

// Makes a directory the current one while it lives.
class CurrentDirectory {
 public:
  explicit CurrentDirectory(const std::filesystem::path& path) : m_before(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;
  ~CurrentDirectory() { std::filesystem::current_path(m_before); }

 private:
  std::filesystem::path m_before;
};

}  // namespace velm_test
