#include "sdk/ConsoleLog.h"

#include <gtest/gtest.h>

#include <climits>
#include <regex>

#include "tests/sdk/LogCapture.h"

namespace Velm3rdSDK {
namespace {

std::wstring OnlyLine(const LogCapture& log) {
  const auto lines = log.Lines();
  EXPECT_EQ(lines.size(), 1U);
  return lines.empty() ? L"" : lines.front();
}

TEST(ConsoleLog, LineHasTimeLevelTextAndLineFeed) {
  LogCapture log;
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::Init]";
  EXPECT_TRUE(std::regex_match(
      OnlyLine(log),
      std::wregex(L"- [0-2]\\d:[0-5]\\d:[0-5]\\d\\.\\d{3} INFO: \\[CSdkMsgChannel::Init\\]\n")))
      << testing::PrintToString(OnlyLine(log));
}

// What a line of `level` has between its time and its text.
std::wstring LevelPart(int level) {
  LogCapture log;
  SDK_LOG(level) << L"x";
  constexpr size_t kTimeEnd = 2 + 12;  // "- " and "HH:mm:ss.mmm"
  const std::wstring line = OnlyLine(log);
  return line.substr(kTimeEnd, line.size() - kTimeEnd - 2);
}

TEST(ConsoleLog, LevelsHaveTheirNamesAndOneTabForEachLevelAboveDebug) {
  EXPECT_EQ(LevelPart(0), L" ERROR: ");
  EXPECT_EQ(LevelPart(1), L" WARNING: ");
  EXPECT_EQ(LevelPart(2), L" INFO: ");
  EXPECT_EQ(LevelPart(3), L" DEBUG: ");
  EXPECT_EQ(LevelPart(4), L" DEBUG1: \t");
  EXPECT_EQ(LevelPart(5), L" DEBUG2: \t\t");
  EXPECT_EQ(LevelPart(6), L" DEBUG3: \t\t\t");
  EXPECT_EQ(LevelPart(7), L" DEBUG4: \t\t\t\t");
}

TEST(ConsoleLog, ReportingLevelIs7) {
  EXPECT_EQ(CONSOLELog::ReportingLevel(), 7);
}

TEST(ConsoleLog, StatementAboveTheReportingLevelEvaluatesNothing) {
  LogCapture log;
  int evaluated = 0;
  SDK_LOG(8) << ++evaluated;
  EXPECT_EQ(evaluated, 0);
  EXPECT_TRUE(log.Lines().empty());
  SDK_LOG(7) << ++evaluated;
  EXPECT_EQ(evaluated, 1);
}

TEST(ConsoleLog, NumbersAreDecimalOverTheirWholeRange) {
  LogCapture log;
  SDK_LOG(kLogInfo) << INT_MIN << L" " << UINT_MAX << L" " << INT64_MIN << L" " << UINT64_MAX << L" "
                    << uint16_t{65535};
  EXPECT_EQ(log.Texts().front(), L"-2147483648 4294967295 -9223372036854775808 18446744073709551615 65535");
}

TEST(ConsoleLog, NarrowTextIsWidenedByteByByte) {
  LogCapture log;
  SDK_LOG(kLogInfo) << "abc\xC3\xA9";
  EXPECT_EQ(log.Texts().front(), L"abc\u00C3\u00A9");
}

TEST(ConsoleLog, NullTextsAddNothing) {
  LogCapture log;
  SDK_LOG(kLogInfo) << L"a" << static_cast<const char*>(nullptr) << static_cast<const wchar_t*>(nullptr)
                    << L"b";
  EXPECT_EQ(log.Texts().front(), L"ab");
}

TEST(ConsoleLog, StringsKeepEmbeddedNuls) {
  LogCapture log;
  SDK_LOG(kLogInfo) << Cmm::CStringT<wchar_t>(L"a\0b", 3);
  EXPECT_EQ(log.Texts().front(), std::wstring(L"a\0b", 3));
}

TEST(ConsoleLog, StandsAsTheOnlyStatementOfABranch) {
  LogCapture log;
  for (const bool first : {true, false})
    if (first)
      SDK_LOG(kLogInfo) << L"first";
    else
      SDK_LOG(kLogInfo) << L"second";
  EXPECT_EQ(log.Texts(), (std::vector<std::wstring>{L"first", L"second"}));
}

TEST(ConsoleLog, WithoutATapTheLineIsDropped) {
  { LogCapture log; }
  SDK_LOG(kLogInfo) << L"seen by nobody";
  LogCapture log;
  EXPECT_TRUE(log.Lines().empty());
}

}  // namespace
}  // namespace Velm3rdSDK
