#include "common/client/utility/src/CmmTempFile.h"

#include <windows.h>

#include <cwchar>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "common/client/utility/src/CmmString.h"
#include "gtest/gtest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using velm_test::ScratchDirectory;

constexpr size_t kUnits = 260;

std::wstring NewName(const wchar_t* dir, const wchar_t* prefix) {
  wchar_t out[kUnits];
  const int length = cmm_fs_tmpfile(out, dir, prefix, 0);
  EXPECT_EQ(static_cast<size_t>(length), std::wcslen(out));
  return out;
}

std::wstring NewFile(const wchar_t* dir, const wchar_t* prefix) {
  wchar_t out[kUnits];
  const int length = cmm_fs_tmpfile(out, dir, prefix, 1);
  EXPECT_EQ(static_cast<size_t>(length), std::wcslen(out));
  return out;
}

// The text that every name of this process has between its prefix and its counter.
std::wstring ProcessPart() {
  Cmm::CStringT<wchar_t> text;
  text.Format(L"%lx", GetCurrentProcessId());
  return text.GetCData();
}

// The counter in a name that was made with this directory part and prefix; none in any other name.
std::optional<unsigned long> FindCounter(const std::wstring& name, const std::wstring& beginning) {
  const std::wstring before = beginning + ProcessPart();
  if (!name.starts_with(before)) return std::nullopt;
  wchar_t* end = nullptr;
  const unsigned long counter = std::wcstoul(name.c_str() + before.size(), &end, 16);
  if (std::wstring_view(end) != L".tmp") return std::nullopt;
  return counter;
}

unsigned long CounterIn(const std::wstring& name, const std::wstring& beginning) {
  const auto counter = FindCounter(name, beginning);
  EXPECT_TRUE(counter) << "the name does not begin and end as it should";
  return counter.value_or(0);
}

TEST(FsTmpPath, IsTheSystemsTemporaryDirectoryWithABackslash) {
  wchar_t expected[kUnits];
  GetTempPathW(kUnits, expected);
  EXPECT_STREQ(cmm_fs_tmppath(), expected);
  EXPECT_EQ(std::wstring(cmm_fs_tmppath()).back(), L'\\');
}

TEST(FsTmpPath, IsFetchedOnceAndNeverAgain) {
  const wchar_t* const first = cmm_fs_tmppath();
  const std::wstring text = first;
  wchar_t before[kUnits];
  GetEnvironmentVariableW(L"TMP", before, kUnits);
  SetEnvironmentVariableW(L"TMP", L"C:\\elsewhere");
  EXPECT_EQ(cmm_fs_tmppath(), first);
  EXPECT_EQ(cmm_fs_tmppath(), text);
  SetEnvironmentVariableW(L"TMP", before);
}

TEST(FsTmpFile, WithoutCreateTwoNamesInARowDifferByOne) {
  const std::wstring first = NewName(L"d", L"p");
  const std::wstring second = NewName(L"d", L"p");
  EXPECT_NE(first, second);
  EXPECT_EQ(CounterIn(second, L"d\\p"), CounterIn(first, L"d\\p") + 1);
}

TEST(FsTmpFile, WithoutCreateNoFileIsTouched) {
  const ScratchDirectory scratch;
  const std::wstring name = NewName(scratch.Path().c_str(), L"p");
  EXPECT_FALSE(std::filesystem::exists(name));
  EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

TEST(FsTmpFile, PutsABackslashBehindADirectoryThatNeedsOne) {
  EXPECT_TRUE(FindCounter(NewName(L"d", L"p"), L"d\\p"));
  EXPECT_TRUE(FindCounter(NewName(L"d\\", L"p"), L"d\\p"));
  EXPECT_TRUE(FindCounter(NewName(L"d/", L"p"), L"d/p"));
  EXPECT_TRUE(FindCounter(NewName(L"", L"p"), L"p"));
  EXPECT_TRUE(FindCounter(NewName(L"C:", L"p"), L"C:\\p"));
}

TEST(FsTmpFile, NullStandsForTheTemporaryDirectoryAndForNoPrefix) {
  EXPECT_TRUE(FindCounter(NewName(nullptr, nullptr), cmm_fs_tmppath()));
  EXPECT_TRUE(FindCounter(NewName(nullptr, L"p"), std::wstring(cmm_fs_tmppath()) + L"p"));
}

TEST(FsTmpFile, ThePrefixIsNotAFormat) {
  EXPECT_TRUE(FindCounter(NewName(L"%s%d", L"%n\x4F1A"), L"%s%d\\%n\x4F1A"));
}

TEST(FsTmpFile, WithCreateTheFileExistsAndIsEmptyAndClosed) {
  const ScratchDirectory scratch;
  const std::wstring name = NewFile(scratch.Path().c_str(), L"p");
  EXPECT_EQ(std::filesystem::file_size(name), 0u);
  EXPECT_TRUE(DeleteFileW(name.c_str()));
}

TEST(FsTmpFile, WithCreateTheCounterStaysUntilItsNameIsTaken) {
  const ScratchDirectory scratch;
  const std::wstring directory = scratch.Path().wstring();
  const std::wstring beginning = directory + L"\\p";
  const unsigned long before = CounterIn(NewName(directory.c_str(), L"p"), beginning);
  const std::wstring first = NewFile(directory.c_str(), L"p");
  EXPECT_EQ(CounterIn(first, beginning), before);
  EXPECT_EQ(CounterIn(NewFile(directory.c_str(), L"p"), beginning), before + 1);
  EXPECT_EQ(CounterIn(NewFile(directory.c_str(), L"other"), directory + L"\\other"), before + 1);
}

TEST(FsTmpFile, ThirtyTwoRefusalsGiveZero) {
  const ScratchDirectory scratch;
  const std::wstring missing = scratch.Path().wstring() + L"\\missing";
  const std::wstring beginning = missing + L"\\p";
  const unsigned long before = CounterIn(NewName(missing.c_str(), L"p"), beginning);
  wchar_t out[kUnits];
  EXPECT_EQ(cmm_fs_tmpfile(out, missing.c_str(), L"p", 1), 0);
  EXPECT_EQ(CounterIn(NewName(missing.c_str(), L"p"), beginning), before + 32 + 1);
}

TEST(FsTmpFile, TheThirtySecondAttemptStillCounts) {
  const ScratchDirectory scratch;
  const std::wstring directory = scratch.Path().wstring();
  const unsigned long before = CounterIn(NewName(directory.c_str(), L""), directory + L"\\");
  const auto taken = [&](unsigned long counter) {
    Cmm::CStringT<wchar_t> name;
    name.Format(L"%lx%lx.tmp", GetCurrentProcessId(), counter);
    scratch.MakeFile(name.GetCData());
  };
  for (unsigned long i = 0; i < 31; ++i)
    taken(before + i);
  EXPECT_EQ(CounterIn(NewFile(directory.c_str(), L""), directory + L"\\"), before + 31);
}

TEST(FsTmpFile, ALongNameIsCutAt259Units) {
  const std::wstring prefix(300, L'p');
  wchar_t out[kUnits + 1];
  out[kUnits] = L'!';
  EXPECT_EQ(cmm_fs_tmpfile(out, L"d", prefix.c_str(), 0), 259);
  EXPECT_EQ(std::wstring(out), (L"d\\" + prefix).substr(0, 259));
  EXPECT_EQ(out[kUnits], L'!');
}

TEST(FsTmpFile, ANullOutGivesZero) {
  EXPECT_EQ(cmm_fs_tmpfile(nullptr, nullptr, nullptr, 0), 0);
  EXPECT_EQ(cmm_fs_tmpfile(nullptr, nullptr, nullptr, 1), 0);
}

TEST(FsTmpFile, ManyThreadsNeverGetTheSameFile) {
  constexpr int kThreads = 4;
  constexpr int kFiles = 50;
  const ScratchDirectory scratch;
  const std::wstring directory = scratch.Path().wstring();
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&directory] {
        wchar_t out[kUnits];
        for (int made = 0; made < kFiles;)
          made += cmm_fs_tmpfile(out, directory.c_str(), L"", 1) != 0;
      });
    }
  }
  const auto count = std::distance(std::filesystem::directory_iterator(directory), {});
  EXPECT_EQ(count, kThreads * kFiles);
}

}  // namespace
