// A process that logs, for tests of what several processes, or the first lines of one, do to the log.
//
//   logging_writer file PATH MODE THREADS LINES TAG     appends to one file
//   logging_writer set DIR BASE COUNT SIZE MODE THREADS LINES TAG    ... to a rotating set
//   logging_writer memory PATH LINES                    logs LINES lines, initialises the file, logs one more
//   logging_writer early PATH                           logs before it initialises
//   logging_writer default                              initialises without a path
//   logging_writer dialog TEXT                          logs a line that is shown in a dialog
//
// MODE is a LogLockingState. "file" and "set" print "ready" and wait for a line; each thread then logs the
// lines "TAG THREAD NUMBER " and a filling. All print "done" at the end.

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "common/client/utility/src/CmmLogMessage.h"
#include "common/client/utility/src/CmmLogging.h"

namespace {

using logging::LogMessage;

using Arguments = std::vector<std::wstring>;

int Number(const std::wstring& text) {
  return std::stoi(text);
}

std::string Narrow(const std::wstring& text) {
  return std::filesystem::path(text).string();
}

void WaitForStart() {
  std::cout << "ready" << std::endl;
  std::string line;
  std::getline(std::cin, line);
}

void LogFromThreads(int threadCount, int lines, const std::string& tag) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread)
    threads.emplace_back([=] {
      for (int number = 0; number < lines; ++number) {
        const std::string filling(static_cast<size_t>((number * 37 + thread * 11) % 200), '.');
        LogMessage("/w", 1).stream() << tag << ' ' << thread << ' ' << number << ' ' << filling << '|';
      }
    });
  for (std::thread& thread : threads)
    thread.join();
}

bool LogTo(const wchar_t* path, logging::LogLockingState mode) {
  return logging::BaseInitLoggingImpl_built_with_NDEBUG(
      path, logging::LOG_TO_FILE, mode, logging::APPEND_TO_OLD_LOG_FILE, logging::LOG_NOT_ENCRYPTED, 0);
}

bool AppendToFile(const Arguments& arguments) {
  if (!LogTo(arguments[0].c_str(), static_cast<logging::LogLockingState>(Number(arguments[1])))) return false;
  WaitForStart();
  LogFromThreads(Number(arguments[2]), Number(arguments[3]), Narrow(arguments[4]));
  return true;
}

bool AppendToSet(const Arguments& arguments) {
  if (!logging::BaseInitLoggingImpl_built_with_NDEBUG(
          arguments[0].c_str(), arguments[1].c_str(), Number(arguments[2]), Number(arguments[3]),
          logging::LOG_TO_FILE, logging::LOG_NOT_ENCRYPTED, logging::LOG_FILE_WITHOUT_DATE,
          static_cast<logging::LogLockingState>(Number(arguments[4])), 0))
    return false;
  WaitForStart();
  LogFromThreads(Number(arguments[5]), Number(arguments[6]), Narrow(arguments[7]));
  return true;
}

bool LogBeforeInitialising(const Arguments& arguments) {
  for (int number = 0; number < Number(arguments[1]); ++number)
    LogMessage("/w", 1).stream() << number;
  if (!LogTo(arguments[0].c_str(), logging::LOCK_BY_NAMED_MUTEX)) return false;
  LogMessage("/w", 1).stream() << "after";
  return true;
}

// Says which mutexes there are after the first line, and after an initialisation that asks for none.
bool LogEarly(const Arguments& arguments) {
  const std::wstring programs = std::filesystem::path(_wpgmptr).parent_path().wstring() + L"\\debug.log";
  const auto exists = [](std::wstring path) {
    for (wchar_t& unit : path)
      if (unit == L'\\') unit = L'/';
    const HANDLE mutex = OpenMutexW(SYNCHRONIZE, FALSE, (L"Global\\" + path).c_str());
    if (mutex) CloseHandle(mutex);
    return mutex != nullptr;
  };
  std::cout << "default mutex before " << exists(programs) << std::endl;
  LogMessage("/w", 1).stream() << "early";
  std::cout << "default mutex after " << exists(programs) << std::endl;
  LogTo(arguments[0].c_str(), logging::LOCK_BY_NAMED_MUTEX);
  std::cout << "own mutex " << exists(arguments[0]) << std::endl;
  return true;
}

bool LogToDefault(const Arguments&) {
  if (!LogTo(nullptr, logging::LOCK_BY_NAMED_MUTEX)) return false;
  LogMessage("/w", 1).stream() << "text";
  std::cout << Narrow(logging::GetLogFilePath()) << std::endl;
  return true;
}

bool ShowDialog(const Arguments& arguments) {
  logging::SetShowErrorDialogs(true);
  LogMessage("/w", 1, logging::LOG_ERROR_REPORT).stream() << Narrow(arguments[0]);
  return true;
}

bool Run(const std::wstring& command, const Arguments& arguments) {
  logging::SetLogItems(false, false, false, false);
  if (command == L"file") return AppendToFile(arguments);
  if (command == L"set") return AppendToSet(arguments);
  if (command == L"memory") return LogBeforeInitialising(arguments);
  if (command == L"early") return LogEarly(arguments);
  if (command == L"default") return LogToDefault(arguments);
  if (command == L"dialog") return ShowDialog(arguments);
  return false;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  _setmode(_fileno(stdout), _O_BINARY);
  if (argc < 2 || !Run(argv[1], Arguments(argv + 2, argv + argc))) return 1;
  std::cout << "done" << std::endl;
  return 0;
}
