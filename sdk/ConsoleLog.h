#pragma once

// The diagnostic log of the control channel. One statement composes one line:
//
//   SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::Init] already inited!";
//   "- 14:03:59.027 INFO: [CSdkMsgChannel::Init] already inited!\n"
//
// The line is composed in full when the statement ends and is then dropped: the library writes to no
// console, file or debugger here. A tap (Output2CONSOLE::SetTap) sees each line before that.

#include <concepts>
#include <string>
#include <string_view>

#include "common/client/utility/src/CmmString.h"

namespace Velm3rdSDK {

enum LogLevel : int {
  kLogError = 0,
  kLogWarning = 1,
  kLogInfo = 2,
  kLogDebug = 3,
  kLogDebug1 = 4,
  kLogDebug2 = 5,
  kLogDebug3 = 6,
  kLogDebug4 = 7,
};

// The policy that takes finished lines, and throws them away.
struct Output2CONSOLE {
  using Tap = void (*)(const std::wstring& line);

  // Runs on the logging thread, for each line until it is replaced; null removes it.
  static void SetTap(Tap tap);

  static void Output(const std::wstring& line);
};

// The parts of a line that do not depend on its text; declared for WLog.
namespace console_log {
inline constexpr int kReportingLevel = 7;
// "- ", the time of day, the level's name, and a tab for each level above kLogDebug.
void AppendHead(std::wstring& line, int level);
void AppendNarrow(std::wstring& line, const char* text);
void AppendNumber(std::wstring& line, long long value);
void AppendNumber(std::wstring& line, unsigned long long value);
}  // namespace console_log

// One line under construction. Built on the stack by SDK_LOG; its destructor completes the line and
// gives it to the output policy.
template <typename OutputPolicy>
class WLog {
 public:
  explicit WLog(int level) {
    constexpr size_t kTypicalLine = 512;
    m_line.reserve(kTypicalLine);
    console_log::AppendHead(m_line, level);
  }
  WLog(const WLog&) = delete;
  WLog& operator=(const WLog&) = delete;
  ~WLog() {
    m_line += L'\n';
    OutputPolicy::Output(m_line);
  }

  static int ReportingLevel() { return console_log::kReportingLevel; }
  static bool Reports(int level) { return ReportingLevel() >= level; }

  // A null text adds nothing.
  WLog& operator<<(const wchar_t* text) {
    if (text) m_line += text;
    return *this;
  }
  // Narrow text is widened byte by byte.
  WLog& operator<<(const char* text) {
    if (text) console_log::AppendNarrow(m_line, text);
    return *this;
  }
  WLog& operator<<(const Cmm::CStringT<wchar_t>& text) {
    m_line += text.GetCData();
    return *this;
  }
  template <std::integral Number>
  WLog& operator<<(Number value) {
    if constexpr (std::unsigned_integral<Number>)
      console_log::AppendNumber(m_line, static_cast<unsigned long long>(value));
    else
      console_log::AppendNumber(m_line, static_cast<long long>(value));
    return *this;
  }

 private:
  std::wstring m_line;
};

using CONSOLELog = WLog<Output2CONSOLE>;

namespace console_log {
// Turns a log expression into one of type void, so that it stands as a statement anywhere.
struct Statement {
  void operator&(const CONSOLELog&) const {}
};
}  // namespace console_log

}  // namespace Velm3rdSDK

// Starts a log statement; what is streamed into it is not evaluated when the level is not reported.
#define SDK_LOG(level)                      \
  !::Velm3rdSDK::CONSOLELog::Reports(level) \
      ? void()                              \
      : ::Velm3rdSDK::console_log::Statement() & ::Velm3rdSDK::CONSOLELog(level)
