#include "common/client/utility/src/CmmLogging.h"

#include <atomic>
#include <set>
#include <thread>
#include <vector>

#include "common/client/utility/src/CmmFunctionLogger.h"
#include "tests/common/LogTesting.h"
#include "tests/support/DebugOutput.h"

namespace {

using logging::LogMessage;
using testing::ElementsAre;
using velm_test::Content;
using velm_test::CurrentDirectory;
using velm_test::DebugOutput;
using velm_test::Lines;
using velm_test::WriteFile;

constexpr unsigned long kNoProcess = 0xFFFFFFF0;  // process ids do not come that high

class LoggingTest : public velm_test::LogTest {
 protected:
  LoggingTest() { LeaveOutItems(); }

  static void Log(const std::string& text) { LogMessage("/a", 1).stream() << text; }
};

// ---- Settings ------------------------------------------------------------------------------------------

TEST_F(LoggingTest, MinLogLevelIsAtMost4AndTheVerbosityAtLeastMinus1) {
  struct Row {
    int level;
    int stored;
    int verbosity;
  };
  const Row rows[] = {{9, 4, -1}, {4, 4, -1}, {3, 3, -1}, {2, 2, -1}, {1, 1, 0}, {0, 0, 1}, {-3, -3, 4}};
  for (const Row& row : rows) {
    logging::SetMinLogLevel(row.level);
    EXPECT_EQ(logging::GetMinLogLevel(), row.stored);
    EXPECT_EQ(logging::GetVlogVerbosity(), row.verbosity) << row.level;
    EXPECT_EQ(logging::GetVlogLevelHelper("/a", 2), row.verbosity);
    EXPECT_EQ(logging::GetVlogLevelHelper(nullptr, 0), row.verbosity);
  }
}

TEST_F(LoggingTest, CurrentThreadIdIsTheSystems) {
  EXPECT_EQ(static_cast<DWORD>(logging::CurrentThreadId()), GetCurrentThreadId());
}

TEST_F(LoggingTest, FlagsOfTheLogServiceHaveNoEffectHere) {
  logging::SetUseLogService(true);
  logging::SetIsLogServiceProcess(true);
  ASSERT_TRUE(LogTo(File(L"a.log")));
  Log("text");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] text\n");
  logging::SetUseLogService(false);
  logging::SetIsLogServiceProcess(false);
}

TEST_F(LoggingTest, FunctionLoggerLogsNothing) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  { const logging::CmmFunctionLogger logger("function"); }
  EXPECT_EQ(Content(File(L"a.log")), "");
}

// ---- One file ------------------------------------------------------------------------------------------

TEST_F(LoggingTest, OldFileIsDeletedOrAppendedTo) {
  WriteFile(File(L"a.log"), "old\n");
  ASSERT_TRUE(LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::APPEND_TO_OLD_LOG_FILE));
  Log("one");
  EXPECT_EQ(Content(File(L"a.log")), "old\n[INFO:a(1)] one\n");
  ASSERT_TRUE(LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE));
  Log("two");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] two\n");
}

TEST_F(LoggingTest, OldFileThatCannotBeDeletedIsToldToTheDebuggerAndAppendedTo) {
  WriteFile(File(L"a.log"), "old\n");
  const HANDLE user = CreateFileW(File(L"a.log").c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(user, INVALID_HANDLE_VALUE);
  {
    const DebugOutput output;
    EXPECT_TRUE(LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE));
    EXPECT_THAT(output.Texts(), ElementsAre("DeleteFilePath failed for file:", File(L"a.log").string()));
  }
  Log("one");
  CloseHandle(user);
  EXPECT_EQ(Content(File(L"a.log")), "old\n[INFO:a(1)] one\n");
}

TEST_F(LoggingTest, OldFileThatIsNotThereCountsAsNotDeleted) {
  const DebugOutput output;
  EXPECT_TRUE(LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE));
  EXPECT_THAT(output.Texts(), ElementsAre("DeleteFilePath failed for file:", File(L"a.log").string()));
}

TEST_F(LoggingTest, PathIsThatOfTheLastInitialisationWithAFile) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  EXPECT_EQ(logging::GetLogFilePath(), File(L"a.log").wstring());
  for (const auto destination : {logging::LOG_TO_MEMORY, logging::LOG_TO_DEBUG_OUTPUT}) {
    EXPECT_TRUE(LogTo(File(L"b.log"), destination));
    EXPECT_EQ(logging::GetLogFilePath(), File(L"a.log").wstring());
  }
  EXPECT_FALSE(std::filesystem::exists(File(L"b.log")));
}

TEST_F(LoggingTest, OldFileOfADestinationWithoutOneStays) {
  WriteFile(File(L"a.log"), "old\n");
  EXPECT_TRUE(LogTo(File(L"a.log"), logging::LOG_TO_MEMORY, logging::DELETE_OLD_LOG_FILE));
  EXPECT_EQ(Content(File(L"a.log")), "old\n");
}

TEST_F(LoggingTest, NextLineOpensAFileThatWasClosed) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  Log("one");
  logging::CloseLogFile();
  std::filesystem::rename(File(L"a.log"), File(L"moved.log"));
  Log("two");
  EXPECT_EQ(Content(File(L"moved.log")), "[INFO:a(1)] one\n");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] two\n");
}

TEST_F(LoggingTest, ClosingTwiceIsAccepted) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  logging::CloseLogFile();
  logging::CloseLogFile();
  Log("after both");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] after both\n");
}

TEST_F(LoggingTest, InitialisingAgainClosesTheFileFirst) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  ASSERT_TRUE(LogTo(File(L"b.log"), logging::LOG_TO_MEMORY));
  EXPECT_TRUE(std::filesystem::remove(File(L"a.log")));  // nobody has it open
}

TEST_F(LoggingTest, ManyInitialisationsLeaveNoHandleBehind) {
  const auto handles = [] {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
  };
  ASSERT_TRUE(
      LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE, GetCurrentProcessId()));
  const DWORD before = handles();
  for (int i = 0; i < 50; ++i)
    ASSERT_TRUE(
        LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE, GetCurrentProcessId()));
  EXPECT_LE(handles(), before + 5);  // others in the process may open some
}

TEST_F(LoggingTest, ThreadsLoseNoLineWhileTheFileIsClosedAndInitialisedAgain) {
  constexpr int kThreads = 4;
  constexpr int kLines = 500;
  ASSERT_TRUE(LogTo(File(L"a.log")));
  std::atomic<int> running = kThreads;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([t, &running] {
      for (int i = 0; i < kLines; ++i)
        Log(std::to_string(t) + ' ' + std::to_string(i));
      --running;
    });
  while (running > 0) {
    logging::CloseLogFile();
    EXPECT_EQ(logging::GetLogFilePath(), File(L"a.log").wstring());
    EXPECT_TRUE(LogTo(File(L"a.log")));
  }
  for (std::thread& thread : threads)
    thread.join();
  std::set<std::string> expected;
  for (int t = 0; t < kThreads; ++t)
    for (int i = 0; i < kLines; ++i)
      expected.insert("[INFO:a(1)] " + std::to_string(t) + ' ' + std::to_string(i));
  const std::vector<std::string> lines = Lines(File(L"a.log"));
  EXPECT_EQ(lines.size(), expected.size());
  EXPECT_TRUE(std::set(lines.begin(), lines.end()) == expected);
}

TEST_F(LoggingTest, OthersMayReadAndWriteTheOpenFile) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  Log("one");
  std::ofstream(File(L"a.log"), std::ios::binary | std::ios::app) << "another\n";
  Log("two");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] one\nanother\n[INFO:a(1)] two\n");
}

TEST_F(LoggingTest, SettingTheDestinationOpensTheFileWithTheNextLine) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  logging::CloseLogFile();
  logging::SetLogDestination(logging::LOG_TO_MEMORY);
  Log("waits");
  EXPECT_EQ(Content(File(L"a.log")), "");
  logging::SetLogDestination(logging::LOG_TO_FILE);
  EXPECT_EQ(Content(File(L"a.log")), "");
  Log("two");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] waits\n[INFO:a(1)] two\n");
}

TEST_F(LoggingTest, LinesInMemoryWaitWhileTheFileIsOpen) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  logging::SetLogDestination(logging::LOG_TO_MEMORY);
  Log("waits");
  logging::SetLogDestination(logging::LOG_TO_FILE);
  Log("two");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] two\n");
  logging::CloseLogFile();
  Log("three");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] two\n[INFO:a(1)] waits\n[INFO:a(1)] three\n");
}

TEST_F(LoggingTest, NonAsciiPathsAreOpened) {
  ASSERT_TRUE(LogTo(File(L"\x4F1A\x8BAE \x00FC.log")));
  Log("text");
  EXPECT_EQ(Content(File(L"\x4F1A\x8BAE \x00FC.log")), "[INFO:a(1)] text\n");
}

// ---- Files that cannot be opened or written ------------------------------------------------------------

TEST_F(LoggingTest, DebugLogInTheCurrentDirectoryStandsInForAFileThatCannotBeOpened) {
  const CurrentDirectory current(m_scratch.Path());
  const std::filesystem::path missing = File(L"missing") / L"a.log";
  EXPECT_TRUE(LogTo(missing));
  EXPECT_EQ(logging::GetLogFilePath(), missing.wstring());
  Log("text");
  EXPECT_EQ(Content(File(L"debug.log")), "[INFO:a(1)] text\n");
  logging::CloseLogFile();
}

TEST_F(LoggingTest, EachLineTriesAgainWhenNeitherFileCanBeOpened) {
  m_scratch.MakeDirectory(L"debug.log");
  const CurrentDirectory current(m_scratch.Path());
  const std::filesystem::path missing = File(L"missing") / L"a.log";
  EXPECT_FALSE(LogTo(missing));
  SetLastError(4711);
  Log("lost");
  EXPECT_EQ(GetLastError(), 4711u);
  m_scratch.MakeDirectory(L"missing");
  Log("kept");
  EXPECT_EQ(Content(missing), "[INFO:a(1)] kept\n");
}

TEST_F(LoggingTest, EmptyPathIsOneThatCannotBeOpened) {
  const CurrentDirectory current(m_scratch.Path());
  EXPECT_TRUE(LogTo(L""));
  EXPECT_EQ(logging::GetLogFilePath(), L"");
  Log("text");
  EXPECT_EQ(Content(File(L"debug.log")), "[INFO:a(1)] text\n");
  logging::CloseLogFile();
}

TEST_F(LoggingTest, DirectoryThatVanishesLeavesTheLinesToDebugLog) {
  const CurrentDirectory current(m_scratch.Path());
  const std::filesystem::path path = m_scratch.MakeDirectory(L"logs") / L"a.log";
  ASSERT_TRUE(LogTo(path));
  Log("one");
  logging::CloseLogFile();
  std::filesystem::remove_all(File(L"logs"));
  Log("two");
  EXPECT_EQ(Content(File(L"debug.log")), "[INFO:a(1)] two\n");
  logging::CloseLogFile();
}

TEST_F(LoggingTest, FullDiskLosesLinesWithoutNotice) {
  // The device of the system below Wine that is always full. Windows has none, and filling a real volume is
  // not for a test: there, and only there, this one has nothing to run on.
  const std::filesystem::path full = L"Z:\\dev\\full";
  const bool onWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
  if (!onWine) GTEST_SKIP() << "Windows has no device that is always full";
  std::ofstream probe(full, std::ios::binary);
  ASSERT_TRUE(probe.good());
  probe << "x" << std::flush;
  ASSERT_FALSE(probe.good());
  ASSERT_TRUE(LogTo(full));
  SetLastError(4711);
  Log("lost");
  Log("lost");
  EXPECT_EQ(GetLastError(), 4711u);
  ASSERT_TRUE(LogTo(File(L"a.log")));
  Log("kept");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] kept\n");
}

// ---- Under another token -------------------------------------------------------------------------------

TEST_F(LoggingTest, FilesAreOpenedUnderTheTokenOfTheProcess) {
  WriteFile(File(L"a.log"), "old\n");
  const DebugOutput output;
  ASSERT_TRUE(
      LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE, GetCurrentProcessId()));
  // One for the deletion, one for the opening.
  int reductions = 0;
  for (const std::string& text : output.Texts())
    reductions += text == "[GetMediumPrivilefeToken] success";
  EXPECT_EQ(reductions, 2);
  Log("text");
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:a(1)] text\n");
}

TEST_F(LoggingTest, NothingIsDoneUnderFullRightsWhenTheTokenCannotBeHad) {
  const CurrentDirectory current(m_scratch.Path());
  WriteFile(File(L"a.log"), "old\n");
  const DebugOutput output;
  EXPECT_FALSE(LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE, kNoProcess));
  EXPECT_THAT(output.Texts(), testing::Contains("DeleteFilePath failed for file:"));
  Log("lost");
  EXPECT_EQ(Content(File(L"a.log")), "old\n");
  EXPECT_FALSE(std::filesystem::exists(File(L"debug.log")));
}

// ---- A rotating set ------------------------------------------------------------------------------------

class LogSetTest : public LoggingTest {
 protected:
  static constexpr int kSize = 0x40000;

  bool Init(int count, int size = kSize, logging::LoggingDestination dest = logging::LOG_TO_FILE,
            logging::LogFileSuffixPolicy suffix = logging::LOG_FILE_WITHOUT_DATE, unsigned long pid = 0) {
    return logging::BaseInitLoggingImpl_built_with_NDEBUG(m_scratch.Path().c_str(), L"set", count, size, dest,
                                                          logging::LOG_NOT_ENCRYPTED, suffix,
                                                          logging::LOCK_BY_CRITICAL_SECTION, pid);
  }

  std::filesystem::path Part(int index) const { return File(L"set_" + std::to_wstring(index) + L".log"); }
  std::filesystem::path IndexFile() const { return File(L"set_last_log_file_id.txt"); }

  // Writes one line of exactly `size` bytes with its line feed.
  static void LogBytes(size_t size, char fill = 'x') {
    const std::string prefix = "[INFO:a(1)] ";
    Log(std::string(size - prefix.size() - 1, fill));
  }
};

TEST_F(LogSetTest, BeginsWithFile0AndNoIndexFile) {
  EXPECT_TRUE(Init(3));
  EXPECT_EQ(logging::GetLogFilePath(), Part(0).wstring());
  Log("text");
  EXPECT_EQ(Content(Part(0)), "[INFO:a(1)] text\n");
  EXPECT_FALSE(std::filesystem::exists(IndexFile()));
}

TEST_F(LogSetTest, NameHasTodaysLocalDateIfAskedFor) {
  const auto today = [] {
    SYSTEMTIME time{};
    GetLocalTime(&time);
    wchar_t text[16];
    _snwprintf_s(text, std::size(text), _TRUNCATE, L"%04d%02d%02d", time.wYear, time.wMonth, time.wDay);
    return std::wstring(text);
  };
  const std::wstring before = today();
  EXPECT_TRUE(Init(3, kSize, logging::LOG_TO_FILE, logging::LOG_FILE_WITH_DATE));
  const std::wstring name = std::filesystem::path(logging::GetLogFilePath()).filename().wstring();
  EXPECT_TRUE(name == L"set_" + before + L"_0.log" || name == L"set_" + today() + L"_0.log");
}

TEST_F(LogSetTest, AnyOtherPolicyThan1LeavesTheDateOut) {
  EXPECT_TRUE(Init(3, kSize, logging::LOG_TO_FILE, static_cast<logging::LogFileSuffixPolicy>(2)));
  EXPECT_EQ(logging::GetLogFilePath(), Part(0).wstring());
}

TEST_F(LogSetTest, LineOfExactlyTheRemainingRoomStays) {
  ASSERT_TRUE(Init(3));
  LogBytes(kSize - 100);
  LogBytes(100);
  EXPECT_EQ(std::filesystem::file_size(Part(0)), static_cast<uintmax_t>(kSize));
  EXPECT_FALSE(std::filesystem::exists(Part(1)));
  Log("next");
  EXPECT_EQ(Content(Part(1)), "[INFO:a(1)] next\n");
  EXPECT_EQ(Content(IndexFile()), "1");
}

TEST_F(LogSetTest, LineThatExceedsTheRoomByAByteGoesFirstIntoTheNextFile) {
  ASSERT_TRUE(Init(3));
  LogBytes(kSize - 100);
  LogBytes(101, 'y');
  EXPECT_EQ(std::filesystem::file_size(Part(0)), static_cast<uintmax_t>(kSize - 100));
  EXPECT_EQ(std::filesystem::file_size(Part(1)), 101u);
  EXPECT_EQ(logging::GetLogFilePath(), Part(1).wstring());
}

TEST_F(LogSetTest, RingEmptiesEachFileAsItIsReached) {
  ASSERT_TRUE(Init(3));
  for (const char fill : {'a', 'b', 'c', 'd', 'e'})
    LogBytes(kSize, fill);
  EXPECT_EQ(Content(Part(0))[20], 'd');
  EXPECT_EQ(Content(Part(1))[20], 'e');
  EXPECT_EQ(Content(Part(2))[20], 'c');
  for (const int part : {0, 1, 2})
    EXPECT_EQ(std::filesystem::file_size(Part(part)), static_cast<uintmax_t>(kSize));
  EXPECT_EQ(Content(IndexFile()), "1");
  EXPECT_FALSE(std::filesystem::exists(Part(3)));
}

TEST_F(LogSetTest, SetOfOneFileIsEmptiedAgainAndAgain) {
  ASSERT_TRUE(Init(1));
  LogBytes(kSize, 'a');
  Log("next");
  EXPECT_EQ(Content(Part(0)), "[INFO:a(1)] next\n");
  EXPECT_EQ(Content(IndexFile()), "0");
}

TEST_F(LogSetTest, CountOf0MakesASetOf2) {
  ASSERT_TRUE(Init(0));
  for (const char fill : {'a', 'b', 'c'})
    LogBytes(kSize, fill);
  EXPECT_EQ(Content(Part(0))[20], 'c');
  EXPECT_FALSE(std::filesystem::exists(Part(2)));
}

TEST_F(LogSetTest, SizeOf1000Makes262144) {
  ASSERT_TRUE(Init(2, 1000));
  LogBytes(262144);
  EXPECT_EQ(std::filesystem::file_size(Part(0)), 262144u);
  Log("next");
  EXPECT_TRUE(std::filesystem::exists(Part(1)));
}

TEST_F(LogSetTest, LineThatAloneExceedsTheSizeHasAFileOfItsOwn) {
  ASSERT_TRUE(Init(3));
  Log("one");
  LogBytes(kSize + 1);
  EXPECT_EQ(std::filesystem::file_size(Part(1)), static_cast<uintmax_t>(kSize + 1));
  Log("next");
  EXPECT_EQ(Content(Part(2)), "[INFO:a(1)] next\n");
}

TEST_F(LogSetTest, FirstLineAfterClosingIsNotCheckedForItsRoom) {
  ASSERT_TRUE(Init(3));
  LogBytes(kSize);
  logging::CloseLogFile();
  LogBytes(100);
  EXPECT_EQ(std::filesystem::file_size(Part(0)), static_cast<uintmax_t>(kSize + 100));
  Log("next");
  EXPECT_EQ(Content(Part(1)), "[INFO:a(1)] next\n");
}

TEST_F(LogSetTest, GoesOnInTheFileOfTheIndexWhileThereIsRoom) {
  WriteFile(IndexFile(), "1");
  WriteFile(Part(1), std::string(kSize - 50, 'o'));
  ASSERT_TRUE(Init(3));
  EXPECT_EQ(logging::GetLogFilePath(), Part(1).wstring());
  LogBytes(50);
  EXPECT_EQ(std::filesystem::file_size(Part(1)), static_cast<uintmax_t>(kSize));
  EXPECT_EQ(Content(IndexFile()), "1");
  Log("next");
  EXPECT_EQ(Content(Part(2)), "[INFO:a(1)] next\n");
  EXPECT_EQ(Content(IndexFile()), "2");
}

TEST_F(LogSetTest, AdvancesAtOnceWhenTheFileOfTheIndexIsFull) {
  WriteFile(IndexFile(), "2");
  WriteFile(Part(2), std::string(kSize, 'o'));
  WriteFile(Part(0), "old");
  ASSERT_TRUE(Init(3));
  EXPECT_EQ(Content(IndexFile()), "0");
  EXPECT_EQ(Content(Part(0)), "");
  LogBytes(kSize);
  EXPECT_EQ(std::filesystem::file_size(Part(0)), static_cast<uintmax_t>(kSize));
}

TEST_F(LogSetTest, IndexOf7WithASetOf3RestartsAt0AndIsRewritten) {
  WriteFile(IndexFile(), "7");
  ASSERT_TRUE(Init(3));
  EXPECT_EQ(logging::GetLogFilePath(), Part(0).wstring());
  EXPECT_EQ(Content(IndexFile()), "0");
}

TEST_F(LogSetTest, IndexFileThatIsEmptyOrGarbageRestartsAt0) {
  for (const std::string& content :
       {std::string(), std::string("garbage"), std::string(100000, '\xFF'), std::string(64, '\0')}) {
    WriteFile(IndexFile(), content);
    EXPECT_TRUE(Init(3));
    EXPECT_EQ(logging::GetLogFilePath(), Part(0).wstring());
    EXPECT_EQ(Content(IndexFile()), content);
  }
}

TEST_F(LogSetTest, IndexBeyondAnyIntCountsAsTooLarge) {
  WriteFile(IndexFile(), std::string(100000, '9'));
  EXPECT_TRUE(Init(3));
  EXPECT_EQ(logging::GetLogFilePath(), Part(0).wstring());
  EXPECT_EQ(Content(IndexFile()), "0");
}

TEST_F(LogSetTest, NegativeIndexIsTakenAsItStands) {
  WriteFile(IndexFile(), "-1");
  EXPECT_TRUE(Init(3));
  EXPECT_EQ(logging::GetLogFilePath(), Part(-1).wstring());
  LogBytes(kSize);
  Log("next");
  EXPECT_EQ(Content(Part(0)), "[INFO:a(1)] next\n");
}

TEST_F(LogSetTest, IndexFileThatIsADirectoryCountsAsUnreadable) {
  std::filesystem::create_directory(IndexFile());
  EXPECT_TRUE(Init(3));
  EXPECT_EQ(logging::GetLogFilePath(), Part(0).wstring());
}

TEST_F(LogSetTest, LinesInMemoryCountForTheRoom) {
  LogBytes(100);
  ASSERT_TRUE(Init(3));
  EXPECT_EQ(std::filesystem::file_size(Part(0)), 100u);
  LogBytes(kSize - 99);
  EXPECT_EQ(std::filesystem::file_size(Part(0)), 100u);
  EXPECT_EQ(std::filesystem::file_size(Part(1)), static_cast<uintmax_t>(kSize - 99));
}

TEST_F(LogSetTest, NeedsADirectoryAndABaseButStoresTheDestinationBefore) {
  const auto init = [](const wchar_t* dir, const wchar_t* base) {
    return logging::BaseInitLoggingImpl_built_with_NDEBUG(
        dir, base, 3, kSize, logging::LOG_TO_DEBUG_OUTPUT, logging::LOG_NOT_ENCRYPTED,
        logging::LOG_FILE_WITHOUT_DATE, logging::LOCK_BY_CRITICAL_SECTION, 0);
  };
  for (const bool hasDir : {true, false}) {
    logging::SetLogDestination(logging::LOG_TO_MEMORY);
    EXPECT_FALSE(init(hasDir ? m_scratch.Path().c_str() : nullptr, hasDir ? nullptr : L"set"));
    testing::internal::CaptureStderr();
    const DebugOutput output;
    Log("text");
    EXPECT_THAT(output.Texts(), ElementsAre("[INFO:a(1)] text\n"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[INFO:a(1)] text\n");
  }
}

TEST_F(LogSetTest, DestinationWithoutAFileOpensNone) {
  EXPECT_TRUE(Init(3, kSize, logging::LOG_TO_MEMORY));
  EXPECT_FALSE(std::filesystem::exists(Part(0)));
}

TEST_F(LogSetTest, DirectoryThatIsNotThereLeavesTheLinesToDebugLog) {
  const CurrentDirectory current(m_scratch.Path());
  EXPECT_TRUE(logging::BaseInitLoggingImpl_built_with_NDEBUG(
      File(L"missing").c_str(), L"set", 3, kSize, logging::LOG_TO_FILE, logging::LOG_NOT_ENCRYPTED,
      logging::LOG_FILE_WITHOUT_DATE, logging::LOCK_BY_CRITICAL_SECTION, 0));
  Log("text");
  EXPECT_EQ(Content(File(L"debug.log")), "[INFO:a(1)] text\n");
  logging::CloseLogFile();
}

TEST_F(LogSetTest, NextFileThatSomebodyHasOpenIsAppendedTo) {
  WriteFile(Part(1), "old\n");
  ASSERT_TRUE(Init(3));
  LogBytes(kSize);
  const HANDLE user = CreateFileW(Part(1).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(user, INVALID_HANDLE_VALUE);
  Log("next");
  CloseHandle(user);
  EXPECT_EQ(Content(Part(1)), "old\n[INFO:a(1)] next\n");
}

TEST_F(LogSetTest, IndexFileIsWrittenUnderTheTokenOfTheProcess) {
  ASSERT_TRUE(Init(3, kSize, logging::LOG_TO_FILE, logging::LOG_FILE_WITHOUT_DATE, GetCurrentProcessId()));
  LogBytes(kSize);
  Log("next");
  EXPECT_EQ(Content(IndexFile()), "1");
}

TEST_F(LogSetTest, NothingOfTheSetIsWrittenWhenTheTokenCannotBeHad) {
  const CurrentDirectory current(m_scratch.Path());
  WriteFile(IndexFile(), "7");
  EXPECT_FALSE(Init(3, kSize, logging::LOG_TO_FILE, logging::LOG_FILE_WITHOUT_DATE, kNoProcess));
  EXPECT_EQ(Content(IndexFile()), "7");
  EXPECT_FALSE(std::filesystem::exists(Part(0)));
}

TEST_F(LogSetTest, FileOfItsOwnAfterASetStillRotatesIntoTheSet) {
  ASSERT_TRUE(Init(3));
  LogBytes(kSize);
  ASSERT_TRUE(LogTo(File(L"single.log")));
  Log("next");
  EXPECT_EQ(Content(File(L"single.log")), "");
  EXPECT_EQ(Content(Part(1)), "[INFO:a(1)] next\n");
}

}  // namespace
