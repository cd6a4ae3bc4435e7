#include "common/client/utility/src/CmmLogMessage.h"

#include <iomanip>
#include <memory>
#include <regex>

#include "tests/common/LogTesting.h"
#include "tests/support/DebugOutput.h"

namespace {

using logging::LogMessage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using velm_test::Content;
using velm_test::DebugOutput;
using velm_test::Lines;

// What the handlers of a test saw.
struct Seen {
  int severity;
  std::string file;
  int line;
  size_t messageStart;
  std::string text;
};
std::vector<Seen> g_messages;
std::vector<std::string> g_reports;
std::vector<std::string> g_fileAtMessage;  // what the file held when the handler ran
std::vector<std::string> g_fileAtReport;
std::filesystem::path g_file;
bool g_handled;

bool MessageHandler(int severity, const char* file, int line, size_t messageStart, const std::string& text) {
  g_messages.push_back({severity, file, line, messageStart, text});
  g_fileAtMessage.push_back(Content(g_file));
  SetLastError(1);
  return g_handled;
}

void ReportHandler(const std::string& text) {
  g_reports.push_back(text);
  g_fileAtReport.push_back(Content(g_file));
  SetLastError(2);
}

void AssertHandler(const std::string& text) {
  ADD_FAILURE() << "called with " << text;
}

class LogMessageTest : public velm_test::LogTest {
 protected:
  LogMessageTest() {
    g_messages.clear();
    g_reports.clear();
    g_fileAtMessage.clear();
    g_fileAtReport.clear();
    g_file = File(L"a.log");
    g_handled = false;
  }

  // The bytes that the statement put into a file.
  template <typename Statement>
  std::string Logged(Statement statement) {
    EXPECT_TRUE(LogTo(g_file, logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE));
    statement();
    return Content(g_file);
  }
};

TEST_F(LogMessageTest, LineHasTheStatedForm) {
  const std::string line = Logged([] { LogMessage("C:\\src\\channel.cc", 77).stream() << "text"; });
  const std::string head =
      "[" + std::to_string(GetCurrentProcessId()) + ":" + std::to_string(GetCurrentThreadId()) + ":";
  EXPECT_EQ(line.substr(0, head.size()), head);
  EXPECT_TRUE(
      std::regex_match(line.substr(head.size()),
                       std::regex(R"(\d\d-\d\d/\d\d:\d\d:\d\d\.\d\d\d:INFO:channel\.cc\(77\)\] text\n)")))
      << line;
}

TEST_F(LogMessageTest, TimeIsTheLocalTime) {
  logging::SetLogItems(false, false, true, false);
  const auto text = [](const SYSTEMTIME& time) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "[%02d-%02d/%02d:%02d", time.wMonth, time.wDay, time.wHour,
                  time.wMinute);
    return std::string(buffer);
  };
  SYSTEMTIME before{};
  SYSTEMTIME after{};
  GetLocalTime(&before);
  const std::string line = Logged([] { LogMessage("/a", 1); });
  GetLocalTime(&after);
  EXPECT_TRUE(line.starts_with(text(before)) || line.starts_with(text(after))) << line;
}

TEST_F(LogMessageTest, ItemsAreThoseThatWereChosen) {
  LeaveOutItems();
  EXPECT_EQ(Logged([] { LogMessage("/a", 1).stream() << "text"; }), "[INFO:a(1)] text\n");
  logging::SetLogItems(true, false, false, false);
  EXPECT_EQ(Logged([] { LogMessage("/a", 1).stream() << "text"; }),
            "[" + std::to_string(GetCurrentProcessId()) + ":INFO:a(1)] text\n");
  logging::SetLogItems(false, true, false, false);
  EXPECT_EQ(Logged([] { LogMessage("/a", 1).stream() << "text"; }),
            "[" + std::to_string(logging::CurrentThreadId()) + ":INFO:a(1)] text\n");
}

TEST_F(LogMessageTest, TickCountIsTheSystems) {
  logging::SetLogItems(false, false, false, true);
  const DWORD before = GetTickCount();
  const std::string line = Logged([] { LogMessage("/a", 1); });
  const DWORD after = GetTickCount();
  ASSERT_TRUE(std::regex_match(line, std::regex(R"(\[\d+:INFO:a\(1\)\] \n)"))) << line;
  const unsigned long ticks = std::stoul(line.substr(1));
  EXPECT_LE(before, ticks);
  EXPECT_LE(ticks, after);
}

TEST_F(LogMessageTest, ConstructorsGiveTheirSeverity) {
  LeaveOutItems();
  EXPECT_EQ(Logged([] { LogMessage("/a", 1); }), "[INFO:a(1)] \n");
  EXPECT_EQ(Logged([] { LogMessage("/a", 1, 2); }), "[WARNING:a(1)] \n");
  EXPECT_EQ(Logged([] { LogMessage("/a", 1, -2); }), "[VERBOSE2:a(1)] \n");
  EXPECT_EQ(Logged([] { LogMessage("/a", 1, 0, 5); }), "[DEBUG:a(1)] \n");
}

TEST_F(LogMessageTest, FailedCheckIsFatalUnlessToldOtherwise) {
  LeaveOutItems();
  testing::internal::CaptureStderr();
  const std::unique_ptr<std::string> text(logging::MakeCheckOpString(1, 2, "a == b"));
  EXPECT_EQ(*text, "a == b (1 vs. 2)");
  const logging::CheckOpString check(text.get());
  EXPECT_EQ(Logged([&] { LogMessage("/a", 1, check).stream() << " more"; }),
            "[FATAL:a(1)] Check failed: a == b (1 vs. 2) more\n");
  EXPECT_EQ(Logged([&] { LogMessage("/a", 1, 3, check); }), "[ERROR:a(1)] Check failed: a == b (1 vs. 2)\n");
  testing::internal::GetCapturedStderr();
}

TEST_F(LogMessageTest, CheckWithoutATextIsAccepted) {
  LeaveOutItems();
  EXPECT_EQ(Logged([] { LogMessage("/a", 1, 2, logging::CheckOpString(nullptr)); }),
            "[WARNING:a(1)] Check failed: \n");
}

TEST_F(LogMessageTest, NullFilePrintsAsTheUnknownFileWithoutItsFirstCharacter) {
  LeaveOutItems();
  logging::SetLogMessageHandler(MessageHandler);
  EXPECT_EQ(Logged([] { LogMessage(nullptr, 1); }), "[INFO:NKNOWN-FILE(1)] \n");
  ASSERT_EQ(g_messages.size(), 1u);
  EXPECT_EQ(g_messages[0].file, "UNKNOWN-FILE");
}

TEST_F(LogMessageTest, BooleansAreWords) {
  LeaveOutItems();
  EXPECT_EQ(Logged([] { LogMessage("/a", 1).stream() << true << ' ' << false; }), "[INFO:a(1)] true false\n");
}

TEST_F(LogMessageTest, FillCharacterOfTheStreamIs0BehindADate) {
  logging::SetLogItems(false, false, true, false);
  EXPECT_THAT(Logged([] { LogMessage("/a", 1).stream() << std::setw(4) << 7; }), HasSubstr("] 0007\n"));
}

TEST_F(LogMessageTest, TextIsWrittenAsItIs) {
  LeaveOutItems();
  EXPECT_EQ(Logged([] { LogMessage("/a", 1).stream() << std::string("x\r\n\0y\xFF", 6) << 2.5; }),
            std::string("[INFO:a(1)] x\r\n\0y\xFF"
                        "2.5\n",
                        22));
}

TEST_F(LogMessageTest, LineOfAMegabyteIsWrittenWhole) {
  LeaveOutItems();
  const std::string text(1 << 20, 'x');
  EXPECT_EQ(Logged([&] { LogMessage("/a", 1).stream() << text; }), "[INFO:a(1)] " + text + "\n");
}

TEST_F(LogMessageTest, FatalLineReturns) {
  testing::internal::CaptureStderr();
  LogMessage("/a", 1, 5).stream() << "text";
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr(":FATAL:a(1)] text\n"));
}

TEST_F(LogMessageTest, MinLogLevelHoldsNoLineBack) {
  LeaveOutItems();
  logging::SetMinLogLevel(4);
  EXPECT_EQ(Logged([] { LogMessage("/a", 1, -5); }), "[VERBOSE5:a(1)] \n");
}

// ---- Where a line goes ---------------------------------------------------------------------------------

struct Ways {
  std::string file;
  std::vector<std::string> debugger;
  std::string standardError;
};

class LogDestinations : public LogMessageTest {
 protected:
  Ways Log(logging::LoggingDestination destination, int severity) {
    LeaveOutItems();
    EXPECT_TRUE(LogTo(g_file, logging::LOG_TO_FILE, logging::APPEND_TO_OLD_LOG_FILE));
    EXPECT_TRUE(LogTo(g_file, destination, logging::APPEND_TO_OLD_LOG_FILE));
    Ways ways;
    const size_t before = Content(g_file).size();
    testing::internal::CaptureStderr();
    {
      const DebugOutput output;
      LogMessage("/a", 1, severity).stream() << "text";
      ways.debugger = output.Texts();
    }
    ways.standardError = testing::internal::GetCapturedStderr();
    ways.file = Content(g_file).substr(before);
    return ways;
  }
};

TEST_F(LogDestinations, FileOnly) {
  const Ways ways = Log(logging::LOG_TO_FILE, 2);
  EXPECT_EQ(ways.file, "[WARNING:a(1)] text\n");
  EXPECT_THAT(ways.debugger, IsEmpty());
  EXPECT_EQ(ways.standardError, "");
}

TEST_F(LogDestinations, DebugOutputBringsStderrWithIt) {
  const Ways ways = Log(logging::LOG_TO_DEBUG_OUTPUT, 2);
  EXPECT_EQ(ways.file, "");
  EXPECT_THAT(ways.debugger, ElementsAre("[WARNING:a(1)] text\n"));
  EXPECT_EQ(ways.standardError, "[WARNING:a(1)] text\n");
}

TEST_F(LogDestinations, FileAndDebugOutput) {
  const Ways ways = Log(logging::LOG_TO_FILE_AND_DEBUG_OUTPUT, 0);
  EXPECT_EQ(ways.file, "[DEBUG:a(1)] text\n");
  EXPECT_THAT(ways.debugger, ElementsAre("[DEBUG:a(1)] text\n"));
  EXPECT_EQ(ways.standardError, "[DEBUG:a(1)] text\n");
}

TEST_F(LogDestinations, MemoryKeepsTheLineForTheNextFile) {
  const Ways ways = Log(logging::LOG_TO_MEMORY, 2);
  EXPECT_EQ(ways.file, "");
  EXPECT_THAT(ways.debugger, IsEmpty());
  EXPECT_EQ(ways.standardError, "");
  ASSERT_TRUE(LogTo(File(L"b.log")));
  EXPECT_EQ(Content(File(L"b.log")), "[WARNING:a(1)] text\n");
}

TEST_F(LogDestinations, ErrorsGoToStderrWhateverTheDestination) {
  for (const int severity : {3, 5, 6}) {
    const Ways ways = Log(logging::LOG_TO_FILE, severity);
    EXPECT_EQ(ways.standardError, ways.file);
    EXPECT_NE(ways.file, "");
    EXPECT_THAT(ways.debugger, IsEmpty());
  }
  EXPECT_EQ(Log(logging::LOG_TO_MEMORY, 3).standardError, "[ERROR:a(1)] text\n");
  ASSERT_TRUE(LogTo(File(L"b.log")));
}

TEST_F(LogDestinations, UnknownDestinationGoesNowhere) {
  const Ways ways = Log(static_cast<logging::LoggingDestination>(4), 2);
  EXPECT_EQ(ways.file, "");
  EXPECT_THAT(ways.debugger, IsEmpty());
  ASSERT_TRUE(LogTo(File(L"b.log")));
  EXPECT_EQ(Content(File(L"b.log")), "");
}

// ---- Handlers ------------------------------------------------------------------------------------------

TEST_F(LogMessageTest, MessageHandlerSeesTheLineBeforeItGoesAnywhere) {
  LeaveOutItems();
  logging::SetLogMessageHandler(MessageHandler);
  EXPECT_EQ(logging::GetLogMessageHandler(), MessageHandler);
  EXPECT_EQ(Logged([] { LogMessage("C:\\src\\a", 7, 2).stream() << "text"; }), "[WARNING:a(7)] text\n");
  ASSERT_EQ(g_messages.size(), 1u);
  EXPECT_EQ(g_messages[0].severity, 2);
  EXPECT_EQ(g_messages[0].file, "C:\\src\\a");
  EXPECT_EQ(g_messages[0].line, 7);
  EXPECT_EQ(g_messages[0].text, "[WARNING:a(7)] text\n");
  EXPECT_EQ(g_messages[0].text.substr(g_messages[0].messageStart), "text\n");
  EXPECT_THAT(g_fileAtMessage, ElementsAre(""));
}

TEST_F(LogMessageTest, HandlerThatDealsWithALineKeepsItFromEverythingElse) {
  g_handled = true;
  logging::SetLogMessageHandler(MessageHandler);
  logging::SetLogReportHandler(ReportHandler);
  logging::SetShowErrorDialogs(true);
  testing::internal::CaptureStderr();
  const DebugOutput output;
  EXPECT_TRUE(LogTo(g_file, logging::LOG_TO_FILE_AND_DEBUG_OUTPUT));
  LogMessage("/a", 1, 4).stream() << "text";
  EXPECT_EQ(Content(g_file), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(output.Texts(), IsEmpty());
  EXPECT_THAT(g_reports, IsEmpty());
  EXPECT_EQ(g_messages.size(), 1u);
}

TEST_F(LogMessageTest, ReportHandlerGetsLinesOfSeverity4AfterTheyAreWritten) {
  LeaveOutItems();
  logging::SetLogReportHandler(ReportHandler);
  testing::internal::CaptureStderr();
  Logged([] { LogMessage("/a", 1, 4).stream() << "text"; });
  testing::internal::GetCapturedStderr();
  EXPECT_THAT(g_reports, ElementsAre("[ERROR_REPORT:a(1)] text\n"));
  EXPECT_THAT(g_fileAtReport, ElementsAre("[ERROR_REPORT:a(1)] text\n"));
}

TEST_F(LogMessageTest, NoOtherSeverityIsReported) {
  logging::SetLogReportHandler(ReportHandler);
  testing::internal::CaptureStderr();
  for (const int severity : {-1, 0, 1, 2, 3, 5, 6})
    LogMessage("/a", 1, severity);
  testing::internal::GetCapturedStderr();
  EXPECT_THAT(g_reports, IsEmpty());
}

TEST_F(LogMessageTest, AssertHandlerIsNeverCalled) {
  logging::SetLogAssertHandler(AssertHandler);
  testing::internal::CaptureStderr();
  for (const int severity : {3, 4, 5})
    LogMessage("/a", 1, severity, logging::CheckOpString(nullptr));
  testing::internal::GetCapturedStderr();
}

TEST_F(LogMessageTest, HandlersMayLog) {
  static int depth;
  depth = 0;
  LeaveOutItems();
  logging::SetLogMessageHandler([](int, const char*, int, size_t, const std::string&) {
    if (depth++ == 0) LogMessage("/h", 2).stream() << "message";
    return false;
  });
  logging::SetLogReportHandler([](const std::string&) { LogMessage("/r", 3).stream() << "report"; });
  testing::internal::CaptureStderr();
  EXPECT_EQ(Logged([] { LogMessage("/a", 1, 4); }),
            "[INFO:h(2)] message\n[ERROR_REPORT:a(1)] \n[INFO:r(3)] report\n");
  testing::internal::GetCapturedStderr();
}

// ---- The last error ------------------------------------------------------------------------------------

TEST_F(LogMessageTest, LastErrorIsLeftAloneOnEveryWay) {
  logging::SetLogMessageHandler(MessageHandler);
  logging::SetLogReportHandler(ReportHandler);
  testing::internal::CaptureStderr();
  for (const auto destination : {logging::LOG_TO_MEMORY, logging::LOG_TO_FILE, logging::LOG_TO_DEBUG_OUTPUT,
                                 logging::LOG_TO_FILE_AND_DEBUG_OUTPUT}) {
    EXPECT_TRUE(LogTo(g_file, destination));
    for (const bool closed : {true, false}) {
      if (closed) logging::CloseLogFile();
      SetLastError(4711);
      LogMessage("/a", 1, 4).stream() << "text " << 1.5;
      EXPECT_EQ(GetLastError(), 4711u) << destination;
    }
  }
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(LogTo(g_file));
}

TEST_F(LogMessageTest, LastErrorIsLeftAloneByAHandlerThatDealsWithTheLine) {
  g_handled = true;
  logging::SetLogMessageHandler(MessageHandler);
  SetLastError(4711);
  LogMessage("/a", 1);
  EXPECT_EQ(GetLastError(), 4711u);
}

TEST_F(LogMessageTest, SaveLastErrorKeepsTheErrorOverAScope) {
  SetLastError(4711);
  {
    const LogMessage::SaveLastError saved;
    SetLastError(1);
    EXPECT_EQ(saved.get_error(), 4711u);
  }
  EXPECT_EQ(GetLastError(), 4711u);
}

}  // namespace
