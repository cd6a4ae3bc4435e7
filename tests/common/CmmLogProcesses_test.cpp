// Several processes, and several threads, on the files of one log.

#include <algorithm>
#include <map>
#include <memory>
#include <regex>

#include "tests/common/LogTesting.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;
using velm_test::ChildProcess;
using velm_test::Content;
using velm_test::Lines;

constexpr std::chrono::minutes kLimit{2};
constexpr int kSize = 0x40000;
const std::string kMutex = "0";
const std::string kCriticalSection = "1";

class LogProcesses : public testing::Test {
 protected:
  std::filesystem::path File(std::wstring_view name) const { return m_scratch.Path() / name; }

  static std::unique_ptr<ChildProcess> Start(const std::vector<std::string>& arguments) {
    return std::make_unique<ChildProcess>(velm_test::ProgramBeside(L"logging_writer.exe"), arguments);
  }

  // Lets processes that wait for their start run to their end.
  static void RunToTheEnd(const std::vector<std::unique_ptr<ChildProcess>>& processes) {
    for (const auto& process : processes)
      ASSERT_EQ(process->ReadLine(), "ready");
    for (const auto& process : processes)
      process->WriteLine("go");
    for (const auto& process : processes) {
      EXPECT_EQ(process->ReadLine(kLimit), "done");
      EXPECT_EQ(process->Wait(kLimit), 0u);
    }
  }

  // The lines of the writers, as "TAG THREAD NUMBER" with how often each is there. Anything else is a
  // failure of the test.
  static std::map<std::string, int> WrittenLines(const std::vector<std::filesystem::path>& files) {
    static const std::regex whole(R"(\[INFO:w\(1\)\] (\w+ (\d+) (\d+)) (\.*)\|)");
    std::map<std::string, int> lines;
    for (const auto& file : files) {
      for (const std::string& line : Lines(file)) {
        std::smatch match;
        if (!std::regex_match(line, match, whole)) {
          ADD_FAILURE() << "not whole: " << line;
          continue;
        }
        EXPECT_EQ(match[4].length(), (std::stoi(match[3]) * 37 + std::stoi(match[2]) * 11) % 200) << line;
        ++lines[match[1]];
      }
    }
    return lines;
  }

  static void ExpectEachOnce(const std::map<std::string, int>& lines, const std::vector<std::string>& tags,
                             int threads, int count) {
    for (const auto& [line, times] : lines)
      EXPECT_EQ(times, 1) << line;
    std::vector<std::string> missing;
    for (const std::string& tag : tags)
      for (int thread = 0; thread < threads; ++thread)
        for (int number = 0; number < count; ++number) {
          const std::string line = tag + ' ' + std::to_string(thread) + ' ' + std::to_string(number);
          if (!lines.contains(line)) missing.push_back(line);
        }
    EXPECT_EQ(missing.size(), 0u) << "such as " << missing.front();
    EXPECT_EQ(lines.size(), tags.size() * static_cast<size_t>(threads * count));
  }

  std::vector<std::filesystem::path> SetFiles(int count) const {
    std::vector<std::filesystem::path> files;
    for (int index = 0; index < count; ++index)
      files.push_back(File(L"set_" + std::to_wstring(index) + L".log"));
    return files;
  }

  const velm_test::ScratchDirectory m_scratch;
};

TEST_F(LogProcesses, ThreadsOfSeveralProcessesAppendToOneFileUnderTheNamedMutex) {
  const std::vector<std::string> tags = {"a", "b", "c"};
  std::vector<std::unique_ptr<ChildProcess>> processes;
  for (const std::string& tag : tags)
    processes.push_back(Start({"file", File(L"a.log").string(), kMutex, "4", "300", tag}));
  ASSERT_NO_FATAL_FAILURE(RunToTheEnd(processes));
  ExpectEachOnce(WrittenLines({File(L"a.log")}), tags, 4, 300);
}

TEST_F(LogProcesses, ThreadsOfOneProcessKeepLinesApartByTheCriticalSection) {
  std::vector<std::unique_ptr<ChildProcess>> processes;
  processes.push_back(Start({"file", File(L"a.log").string(), kCriticalSection, "4", "1000", "a"}));
  ASSERT_NO_FATAL_FAILURE(RunToTheEnd(processes));
  ExpectEachOnce(WrittenLines({File(L"a.log")}), {"a"}, 4, 1000);
}

TEST_F(LogProcesses, ThreadsOfOneProcessFillARotatingSetWithoutLossOrExcess) {
  constexpr int kFiles = 8;
  for (const std::string& mode : {kCriticalSection, kMutex}) {
    const std::string base = "set";
    std::vector<std::unique_ptr<ChildProcess>> processes;
    // 1.6 MB: the ring is not filled
    processes.push_back(
        Start({"set", m_scratch.Narrow(), base, std::to_string(kFiles), "1", mode, "4", "3000", "a"}));
    ASSERT_NO_FATAL_FAILURE(RunToTheEnd(processes));
    ExpectEachOnce(WrittenLines(SetFiles(kFiles)), {"a"}, 4, 3000);
    EXPECT_FALSE(std::filesystem::exists(SetFiles(kFiles)[kFiles - 1]));
    for (const auto& file : SetFiles(kFiles)) {
      if (!std::filesystem::exists(file)) continue;
      EXPECT_LE(std::filesystem::file_size(file), static_cast<uintmax_t>(kSize));
      std::filesystem::remove(file);
    }
    std::filesystem::remove(File(L"set_last_log_file_id.txt"));
  }
}

TEST_F(LogProcesses, RingLosesTheOldestLinesByWholeFilesOnly) {
  constexpr int kFiles = 3;
  constexpr int kLines = 8000;
  std::vector<std::unique_ptr<ChildProcess>> processes;
  processes.push_back(
      Start({"set", m_scratch.Narrow(), "set", std::to_string(kFiles), "1", kMutex, "1", "8000", "a"}));
  ASSERT_NO_FATAL_FAILURE(RunToTheEnd(processes));
  const std::map<std::string, int> lines = WrittenLines(SetFiles(kFiles));
  ASSERT_LT(lines.size(), static_cast<size_t>(kLines));
  // The lines that are left are the last ones.
  for (int number = kLines - static_cast<int>(lines.size()); number < kLines; ++number)
    EXPECT_EQ(lines.count("a 0 " + std::to_string(number)), 1u) << number;
  for (const auto& file : SetFiles(kFiles))
    EXPECT_LE(std::filesystem::file_size(file), static_cast<uintmax_t>(kSize));
}

// Processes on one rotating set take turns at the lines only if they began with the same file, which names
// the mutex. Each counts its own bytes, so a file may grow to that many times its size, and a file that
// another process has open is not deleted when it is reached, but appended to. No line is torn.
TEST_F(LogProcesses, ProcessesOnOneRotatingSetTearNoLineAndExceedTheSizeByTheirNumberAtMost) {
  constexpr int kFiles = 8;
  const std::vector<std::string> tags = {"a", "b"};
  std::vector<std::unique_ptr<ChildProcess>> processes;
  for (const std::string& tag : tags)
    processes.push_back(
        Start({"set", m_scratch.Narrow(), "set", std::to_string(kFiles), "1", kMutex, "2", "1500", tag}));
  ASSERT_NO_FATAL_FAILURE(RunToTheEnd(processes));
  const std::map<std::string, int> lines = WrittenLines(SetFiles(kFiles));
  for (const auto& [line, times] : lines)
    EXPECT_EQ(times, 1) << line;
  // The slower process deletes a file that the faster one has left; what was written last of all is there.
  EXPECT_TRUE(std::any_of(tags.begin(), tags.end(), [&](const std::string& tag) {
    return lines.contains(tag + " 0 1499") || lines.contains(tag + " 1 1499");
  }));
  for (const auto& file : SetFiles(kFiles))
    if (std::filesystem::exists(file)) {
      EXPECT_LE(std::filesystem::file_size(file), 2u * kSize);
    }
}

TEST_F(LogProcesses, ProcessThatIsKilledInTheMidstOfItsLinesShutsNobodyOut) {
  std::vector<std::unique_ptr<ChildProcess>> victims;
  victims.push_back(Start({"file", File(L"a.log").string(), kMutex, "4", "1000000", "victim"}));
  ASSERT_EQ(victims[0]->ReadLine(), "ready");
  std::vector<std::unique_ptr<ChildProcess>> others;
  others.push_back(Start({"file", File(L"a.log").string(), kMutex, "2", "500", "other"}));
  victims[0]->WriteLine("go");
  ASSERT_EQ(others[0]->ReadLine(), "ready");
  others[0]->WriteLine("go");
  ASSERT_TRUE(WaitUntil([&] { return Content(File(L"a.log")).size() > 20000; }));
  victims[0]->Kill();
  EXPECT_EQ(others[0]->ReadLine(kLimit), "done");
  int fromOthers = 0;
  for (const auto& [line, times] : WrittenLines({File(L"a.log")})) {
    EXPECT_EQ(times, 1) << line;
    fromOthers += line.starts_with("other");
  }
  EXPECT_EQ(fromOthers, 1000);
}

TEST_F(LogProcesses, FileGetsTheFirst1024LinesOf1025BeforeTheInitialisation) {
  auto process = Start({"memory", File(L"a.log").string(), "1025"});
  EXPECT_EQ(process->ReadLine(kLimit), "done");
  const std::vector<std::string> lines = Lines(File(L"a.log"));
  ASSERT_THAT(lines, SizeIs(1025));
  EXPECT_EQ(lines[0], "[INFO:w(1)] 0");
  EXPECT_EQ(lines[1023], "[INFO:w(1)] 1023");
  EXPECT_EQ(lines[1024], "[INFO:w(1)] after");
}

TEST_F(LogProcesses, FirstLineDecidesOnTheMutexOfTheDefaultPath) {
  auto process = Start({"early", File(L"a.log").string()});
  EXPECT_THAT(process->ReadRest(),
              ElementsAre("default mutex before 0", "default mutex after 1", "own mutex 0", "done"));
  EXPECT_EQ(Content(File(L"a.log")), "[INFO:w(1)] early\n");
}

TEST_F(LogProcesses, LogWithoutAPathStandsBesideTheProgram) {
  std::filesystem::copy(velm_test::ProgramBeside(L"logging_writer.exe"), File(L"host.exe"));
  ChildProcess process(File(L"host.exe"), {"default"});
  EXPECT_THAT(process.ReadRest(), ElementsAre(File(L"debug.log").string(), "done"));
  EXPECT_EQ(Content(File(L"debug.log")), "[INFO:w(1)] text\n");
}

TEST_F(LogProcesses, DialogProgramBesideTheProgramGetsTheTextAsItsCommandLine) {
  std::filesystem::copy(velm_test::ProgramBeside(L"logging_writer.exe"), File(L"host.exe"));
  std::filesystem::copy(velm_test::ProgramBeside(L"common_logging_tests_files") / "debug_message.exe",
                        File(L"debug_message.exe"));
  ChildProcess process(File(L"host.exe"), {"dialog", "it is \"broken\" & gone"});
  EXPECT_THAT(process.ReadRest(), ElementsAre("done"));
  // The program was waited for.
  EXPECT_EQ(Content(File(L"shown.txt")), "[ERROR_REPORT:w(1)] it is \"broken\" & gone\n");
}

}  // namespace
