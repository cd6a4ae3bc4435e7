#include "common/client/utility/src/CmmLogCleaner.h"

#include <windows.h>

#include <set>

#include "gmock/gmock.h"
#include "tests/common/LogTesting.h"
#include "tests/support/DirectoryLink.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using logging::CleanLogsWithFilters;
using logging::LogFilterItem_s;
using testing::UnorderedElementsAre;

LogFilterItem_s Rule(const wchar_t* prefix, const wchar_t* suffix, int64_t bytes, uint64_t count) {
  LogFilterItem_s rule;
  rule.file_prefix = prefix;
  rule.file_suffix = suffix;
  rule.max_total_bytes = bytes;
  rule.max_file_count = count;
  return rule;
}

const LogFilterItem_s kKeepAll = Rule(L"", L"", 1'000'000, 1000);

class LogCleaner : public testing::Test {
 protected:
  // A file of `size` bytes that was written `age` hours before all others.
  void Make(std::wstring_view name, size_t size, int age = 0) {
    const std::filesystem::path path = m_scratch.MakeFile(name, std::string(size, 'x'));
    std::filesystem::last_write_time(path, m_now - std::chrono::hours(age));
  }

  std::set<std::string> Left() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_scratch.Path()))
      names.insert(entry.path().filename().string());
    return names;
  }

  std::wstring Dir() const { return m_scratch.Path().wstring() + L"\\"; }

  void Clean(const std::vector<LogFilterItem_s>& rules, const LogFilterItem_s& others = kKeepAll) {
    CleanLogsWithFilters(Dir().c_str(), rules, others);
  }

  const velm_test::ScratchDirectory m_scratch;
  const std::filesystem::file_time_type m_now = std::filesystem::file_time_type::clock::now();
};

TEST_F(LogCleaner, OldestFilesGoUntilTheCountHolds) {
  Make(L"a_1.log", 10, 3);
  Make(L"a_2.log", 10, 1);
  Make(L"a_3.log", 10, 2);
  Clean({Rule(L"a_", L"", 1000, 1)});
  EXPECT_THAT(Left(), UnorderedElementsAre("a_2.log"));
}

TEST_F(LogCleaner, OldestFilesGoUntilTheBytesHold) {
  Make(L"a_1.log", 10, 3);
  Make(L"a_2.log", 10, 1);
  Make(L"a_3.log", 10, 2);
  Clean({Rule(L"a_", L"", 20, 10)});
  EXPECT_THAT(Left(), UnorderedElementsAre("a_2.log", "a_3.log"));
}

TEST_F(LogCleaner, NothingGoesAtTheLimitsExactly) {
  Make(L"a_1.log", 10, 2);
  Make(L"a_2.log", 10, 1);
  Clean({Rule(L"a_", L"", 20, 2)});
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log", "a_2.log"));
}

TEST_F(LogCleaner, EachFileCountsForTheRuleThatFitsItBest) {
  Make(L"a_1.log", 10, 4);
  Make(L"a_2.log", 10, 3);
  Make(L"a_1.txt", 10, 2);
  Make(L"a_2.txt", 10, 1);
  Clean({Rule(L"a_", L"", 1000, 2), Rule(L"a_", L".log", 1000, 1)});
  EXPECT_THAT(Left(), UnorderedElementsAre("a_2.log", "a_1.txt", "a_2.txt"));
}

TEST_F(LogCleaner, FilesWithoutARuleCountForTheDefaultRule) {
  Make(L"a_1.log", 10, 4);
  Make(L"b_1.log", 10, 3);
  Make(L"c_1.log", 10, 2);
  Clean({Rule(L"a_", L"", 1000, 5)}, Rule(L"", L"", 1000, 1));
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log", "c_1.log"));
}

TEST_F(LogCleaner, DefaultRuleWithLimitsOf0DeletesEveryFileThatNoRuleIsFor) {
  Make(L"a_1.log", 10);
  Make(L"b_1.log", 10);
  Make(L"c_1.log", 10);
  Clean({Rule(L"a_", L"", 1000, 5)}, LogFilterItem_s());
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log"));
}

TEST_F(LogCleaner, PrefixOfTheDefaultRuleDoesNotMatter) {
  Make(L"b_1.log", 10);
  Clean({}, Rule(L"z", L"z", 1000, 5));
  EXPECT_THAT(Left(), UnorderedElementsAre("b_1.log"));
}

TEST_F(LogCleaner, RuleWithAnEmptyPrefixIsDroppedThoughItsSuffixMatches) {
  Make(L"a_1.log", 10, 2);
  Make(L"a_2.log", 10, 1);
  Clean({Rule(L"", L".log", 1000, 1)});
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log", "a_2.log"));
}

TEST_F(LogCleaner, RuleWithoutALimitIsDropped) {
  Make(L"a_1.log", 10);
  Clean({Rule(L"a_", L"", 0, 1), Rule(L"a_", L"", 1000, 0), Rule(L"a_", L"", -1, 1)});
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log"));
}

TEST_F(LogCleaner, EmptyFilesGoWhateverTheLimitsAndDoNotCount) {
  Make(L"a_1.log", 0, 1);
  Make(L"a_2.log", 10, 2);
  Make(L"other", 0);
  Clean({Rule(L"a_", L"", 1000, 1)});
  EXPECT_THAT(Left(), UnorderedElementsAre("a_2.log"));
}

TEST_F(LogCleaner, FileThatSomebodyWritesToIsTheNewestOfAll) {
  Make(L"a_1.log", 10, 5);
  Make(L"a_2.log", 10, 1);
  const HANDLE user = CreateFileW((Dir() + L"a_1.log").c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(user, INVALID_HANDLE_VALUE);
  Clean({Rule(L"a_", L"", 1000, 1)});
  CloseHandle(user);
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log"));
}

TEST_F(LogCleaner, EmptyFileThatSomebodyWritesToStaysAndCounts) {
  Make(L"a_1.log", 0, 5);
  Make(L"a_2.log", 10, 1);
  const HANDLE user = CreateFileW((Dir() + L"a_1.log").c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(user, INVALID_HANDLE_VALUE);
  Clean({Rule(L"a_", L"", 1000, 1)});
  CloseHandle(user);
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log"));
}

TEST_F(LogCleaner, FileThatCannotBeDeletedCountsAsGone) {
  Make(L"a_1.log", 10, 5);
  Make(L"a_2.log", 10, 1);
  const HANDLE user = CreateFileW((Dir() + L"a_1.log").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(user, INVALID_HANDLE_VALUE);
  Clean({Rule(L"a_", L"", 1000, 1)});
  CloseHandle(user);
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log", "a_2.log"));
}

TEST_F(LogCleaner, DirectoriesAreLeftAlone) {
  m_scratch.MakeFile(L"a_dir\\a_1.log", "x");
  Clean({Rule(L"a_", L"", 1, 1)}, LogFilterItem_s());
  EXPECT_THAT(Left(), UnorderedElementsAre("a_dir"));
  EXPECT_TRUE(std::filesystem::exists(m_scratch.Path() / "a_dir" / "a_1.log"));
}

TEST_F(LogCleaner, NamesBeyondAsciiAreCleanedToo) {
  Make(L"\x65E5\x5FD7_1.log", 10, 2);
  Make(L"\x65E5\x5FD7_2.log", 10, 1);
  Clean({Rule(L"\x65E5\x5FD7_", L".log", 1000, 1)});
  EXPECT_FALSE(std::filesystem::exists(m_scratch.Path() / L"\x65E5\x5FD7_1.log"));
  EXPECT_TRUE(std::filesystem::exists(m_scratch.Path() / L"\x65E5\x5FD7_2.log"));
}

TEST_F(LogCleaner, DirectoryMustEndInASeparator) {
  Make(L"a_1.log", 10);
  CleanLogsWithFilters(m_scratch.Path().c_str(), {}, LogFilterItem_s());
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log"));
}

TEST_F(LogCleaner, UnsafePathIsNotCleaned) {
  Make(L"a_1.log", 10);
  m_scratch.MakeDirectory(L"sub");
  CleanLogsWithFilters((Dir() + L"sub\\..\\").c_str(), {}, LogFilterItem_s());
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log", "sub"));
}

TEST_F(LogCleaner, NullEmptyAndMissingDirectoriesCleanNothing) {
  // Where a wrong turn would lead to: the default rule has no limits to keep anything by.
  m_scratch.MakeFile(L"a_1.log", "x");
  const velm_test::CurrentDirectory current(m_scratch.Path());
  CleanLogsWithFilters(nullptr, {}, LogFilterItem_s());
  CleanLogsWithFilters(L"", {}, LogFilterItem_s());
  CleanLogsWithFilters((Dir() + L"missing\\").c_str(), {}, LogFilterItem_s());
  EXPECT_THAT(Left(), UnorderedElementsAre("a_1.log"));
}

TEST_F(LogCleaner, LinkedDirectoryIsNotCleaned) {
  const std::filesystem::path real = m_scratch.MakeDirectory(L"real");
  m_scratch.MakeFile(L"real\\a_1.log", "x");
  const std::filesystem::path link = m_scratch.Path() / L"link";
  const velm_test::DirectoryLink made(link, real);
  ASSERT_TRUE(GetFileAttributesW(link.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT);
  CleanLogsWithFilters((link.wstring() + L"\\").c_str(), {}, LogFilterItem_s());
  EXPECT_TRUE(std::filesystem::exists(real / L"a_1.log"));
  // Its target under its own name is.
  CleanLogsWithFilters((real.wstring() + L"\\").c_str(), {}, LogFilterItem_s());
  EXPECT_FALSE(std::filesystem::exists(real / L"a_1.log"));
}

}  // namespace
