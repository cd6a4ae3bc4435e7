#include "sdk/ConsoleLog.h"

#include <windows.h>

#include <atomic>

namespace Velm3rdSDK {
namespace {

std::atomic<Output2CONSOLE::Tap> g_tap{nullptr};

void AppendNowTime(std::wstring& line) {
  wchar_t time[64];
  if (GetTimeFormatW(LOCALE_USER_DEFAULT, 0, nullptr, L"HH':'mm':'ss", time, ARRAYSIZE(time)) == 0) {
    line += L"Error in NowTime()";
    return;
  }
  // The three digits are not the clock's: they count from the first line that this process logged.
  static const DWORD firstTick = GetTickCount();
  const DWORD milliseconds = (GetTickCount() - firstTick) % 1000;
  line += time;
  line += L'.';
  line += static_cast<wchar_t>(L'0' + milliseconds / 100);
  line += static_cast<wchar_t>(L'0' + milliseconds / 10 % 10);
  line += static_cast<wchar_t>(L'0' + milliseconds % 10);
}

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
  AppendNowTime(line);
  line += L' ';
  line += kNames[level];
  line += L": ";
  if (level > kLogDebug) line.append(static_cast<size_t>(level - kLogDebug), L'\t');
}

void AppendNumber(std::wstring& line, long long value) {
  line += std::to_wstring(value);
}

void AppendNumber(std::wstring& line, unsigned long long value) {
  line += std::to_wstring(value);
}

}  // namespace console_log
}  // namespace Velm3rdSDK
