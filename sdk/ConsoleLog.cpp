#include "sdk/ConsoleLog.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>

namespace Velm3rdSDK {
namespace {

std::atomic<Output2CONSOLE::Tap> g_tap{nullptr};

// The time of day of the second that was asked for last: formatting it anew costs more than the rest of a
// line, and lines come in bursts.
class TimeOfDay {
 public:
  void AppendTo(std::wstring& line) {
    constexpr uint64_t kFileTimeUnitsPerSecond = 10'000'000;
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const uint64_t second =
        ((uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime) / kFileTimeUnitsPerSecond;
    AcquireSRWLockExclusive(&m_lock);
    if (second != m_second) {
      m_formatted =
          GetTimeFormatW(LOCALE_USER_DEFAULT, 0, nullptr, L"HH':'mm':'ss", m_text, ARRAYSIZE(m_text)) != 0;
      m_second = second;
    }
    if (m_formatted) line += m_text;
    const bool formatted = m_formatted;
    ReleaseSRWLockExclusive(&m_lock);
    if (formatted)
      AppendMilliseconds(line);
    else
      line += L"Error in NowTime()";
  }

 private:
  // The three digits are not the clock's: they count from the first line that this process logged.
  void AppendMilliseconds(std::wstring& line) {
    static const DWORD firstTick = GetTickCount();
    const DWORD milliseconds = (GetTickCount() - firstTick) % 1000;
    const wchar_t digits[] = {L'.', static_cast<wchar_t>(L'0' + milliseconds / 100),
                              static_cast<wchar_t>(L'0' + milliseconds / 10 % 10),
                              static_cast<wchar_t>(L'0' + milliseconds % 10)};
    line.append(digits, ARRAYSIZE(digits));
  }

  SRWLOCK m_lock = SRWLOCK_INIT;
  uint64_t m_second = 0;
  bool m_formatted = false;
  wchar_t m_text[64] = {};
};

TimeOfDay g_timeOfDay;

}  // namespace

void Output2CONSOLE::SetTap(Tap tap) {
  g_tap.store(tap);
}

void Output2CONSOLE::Output(const std::wstring& line) {
  if (const Tap tap = g_tap.load(std::memory_order_relaxed)) tap(line);
}

namespace console_log {

void AppendHead(std::wstring& line, int level) {
  static constexpr const wchar_t* kNames[] = {L"ERROR",  L"WARNING", L"INFO",   L"DEBUG",
                                              L"DEBUG1", L"DEBUG2",  L"DEBUG3", L"DEBUG4"};
  line += L"- ";
  g_timeOfDay.AppendTo(line);
  line += L' ';
  line += kNames[level];
  line += L": ";
  if (level > kLogDebug) line.append(static_cast<size_t>(level - kLogDebug), L'\t');
}

void AppendNarrow(std::wstring& line, const char* text) {
  const size_t length = line.size();
  line.resize(length + std::strlen(text));
  std::transform(text, text + (line.size() - length), line.begin() + static_cast<std::ptrdiff_t>(length),
                 [](char byte) { return static_cast<wchar_t>(static_cast<unsigned char>(byte)); });
}

void AppendNumber(std::wstring& line, long long value) {
  line += std::to_wstring(value);
}

void AppendNumber(std::wstring& line, unsigned long long value) {
  line += std::to_wstring(value);
}

}  // namespace console_log
}  // namespace Velm3rdSDK
