#include "tools/common/Console.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <deque>
#include <mutex>
#include <thread>

#include "common/client/utility/src/UniqueHandle.h"
#include "tools/common/Text.h"

namespace velm_tools {
namespace {

std::mutex g_outputLock;

// Manual-reset and never reset: everything that waits sees it.
HANDLE InterruptEvent() {
  static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return event;
}

BOOL WINAPI OnConsoleEvent(DWORD event) {
  SetEvent(InterruptEvent());
  // The process ends when the handler of one of these returns: leave the main thread time to clean up.
  if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
    Sleep(INFINITE);
  return TRUE;
}

void Write(std::FILE* stream, std::string_view line) {
  const std::lock_guard lock(g_outputLock);
  std::string whole(line);
  whole += '\n';
  std::fwrite(whole.data(), 1, whole.size(), stream);
  std::fflush(stream);
}

// Some bytes of the standard input, in UTF-8; empty at its end.
std::string ReadSome() {
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  if (InputIsConsole()) {
    wchar_t typed[1024];
    DWORD count = 0;
    if (!ReadConsoleW(input, typed, static_cast<DWORD>(std::size(typed)), &count, nullptr)) return {};
    constexpr wchar_t kCtrlZ = 26;
    if (count > 0 && typed[0] == kCtrlZ) return {};
    return ToUtf8({typed, count});
  }
  char bytes[4096];
  DWORD count = 0;
  return ReadFile(input, bytes, sizeof(bytes), &count, nullptr) ? std::string(bytes, count) : std::string();
}

}  // namespace

std::vector<std::string> PrepareConsole() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  const Cmm::UniqueLocalMemory owner(wide);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i)
    arguments.push_back(ToUtf8(wide[i]));
  return arguments;
}

void PrintLine(std::string_view line) {
  Write(stdout, line);
}

void Remark(std::string_view line) {
  Write(stderr, line);
}

bool InputIsConsole() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != FALSE;
}

void TrapInterrupts() {
  InterruptEvent();
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

bool Interrupted() {
  return SleepUnlessInterrupted(0);
}

bool SleepUnlessInterrupted(unsigned milliseconds) {
  return WaitForSingleObject(InterruptEvent(), milliseconds) == WAIT_OBJECT_0;
}

struct InputLines::Queue {
  std::mutex lock;
  std::deque<std::string> lines;  // guarded by lock
  bool ended = false;             // guarded by lock
  Cmm::UniqueHandle changed{CreateEventW(nullptr, FALSE, FALSE, nullptr)};

  void Push(std::string line) {
    if (line.ends_with('\r')) line.pop_back();
    const std::lock_guard guard(lock);
    lines.push_back(std::move(line));
    SetEvent(changed.get());
  }

  void End() {
    const std::lock_guard guard(lock);
    ended = true;
    SetEvent(changed.get());
  }
};

InputLines::InputLines() : m_queue(std::make_shared<Queue>()) {
  std::thread([queue = m_queue] {
    std::string pending;
    for (std::string some = ReadSome(); !some.empty(); some = ReadSome()) {
      pending += some;
      size_t begin = 0;
      for (size_t end; (end = pending.find('\n', begin)) != std::string::npos; begin = end + 1)
        queue->Push(pending.substr(begin, end - begin));
      pending.erase(0, begin);
    }
    if (!pending.empty()) queue->Push(std::move(pending));
    queue->End();
  }).detach();
}

InputLines::~InputLines() = default;

std::optional<std::string> InputLines::Next() {
  for (;;) {
    {
      const std::lock_guard guard(m_queue->lock);
      if (Interrupted()) return std::nullopt;
      if (!m_queue->lines.empty()) {
        std::string line = std::move(m_queue->lines.front());
        m_queue->lines.pop_front();
        return line;
      }
      if (m_queue->ended) return std::nullopt;
    }
    const HANDLE events[] = {InterruptEvent(), m_queue->changed.get()};
    WaitForMultipleObjects(static_cast<DWORD>(std::size(events)), events, FALSE, INFINITE);
  }
}

}  // namespace velm_tools
