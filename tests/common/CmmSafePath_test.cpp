#include "common/client/utility/src/CmmSafePath.h"

#include <windows.h>

#include "gtest/gtest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using velm_test::ScratchDirectory;

struct TextCase {
  const wchar_t* path;
  bool safe;
};

TEST(SafePath, TextIsSafeWithoutWildcardsAndWithoutParentComponents) {
  for (const auto& [path, safe] : {
           TextCase{L"a", true},
           {L"a.txt", true},
           {L"C:\\logs\\a.txt", true},
           {L"\\\\server\\share\\a", true},
           {L".", true},
           {L".\\a", true},
           {L"...", true},
           {L"..a", true},
           {L"a..", true},
           {L"a..b", true},
           {L"a\\..b", true},
           {L"a\\b..\\c", true},
           {L"a\\...\\b", true},
           {L"a?b", true},  // only the star counts as a wildcard
           {L"\x4F1A\x8BAE.txt", true},
           {L"", false},
           {L"..", false},
           {L"..\\a", false},
           {L"../a", false},
           {L"a\\..\\b", false},
           {L"a/../b", false},
           {L"a\\../b", false},
           {L"a/..\\b", false},
           {L"a\\..", false},
           {L"a/..", false},
           {L"\\..", false},
           {L"/../a", false},
           {L"a\\\\..\\\\b", false},
           {L"*", false},
           {L"a*b", false},
           {L"C:\\logs\\*.txt", false},
           {L"a.txt*", false},
       }) {
    EXPECT_EQ(Cmm::IsSafePathText(path), safe) << testing::PrintToString(std::wstring(path));
  }
}

TEST(SafePath, AnExistingFileIsSafe) {
  const ScratchDirectory scratch;
  const std::wstring file = scratch.MakeFile(L"a.txt");
  EXPECT_NE(cmm_safe_path(file.c_str()), 0);
  const std::wstring foreign = scratch.MakeFile(L"\x4F1A\x8BAE \x00E9.txt");
  EXPECT_NE(cmm_safe_path(foreign.c_str()), 0);
}

TEST(SafePath, NullEmptyAndMissingAreNotSafe) {
  const ScratchDirectory scratch;
  EXPECT_EQ(cmm_safe_path(nullptr), 0);
  EXPECT_EQ(cmm_safe_path(L""), 0);
  EXPECT_EQ(cmm_safe_path((scratch.Path() / L"missing").c_str()), 0);
}

TEST(SafePath, ADirectoryIsNotSafe) {
  const ScratchDirectory scratch;
  EXPECT_EQ(cmm_safe_path(scratch.Path().c_str()), 0);
  EXPECT_EQ(cmm_safe_path((scratch.Path().wstring() + L"\\").c_str()), 0);
}

TEST(SafePath, AWayUpIsNotSafeEvenIfTheFileExists) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"b");
  scratch.MakeDirectory(L"a");
  const std::wstring path = scratch.Path().wstring() + L"\\a\\..\\b";
  ASSERT_NE(GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(cmm_safe_path(path.c_str()), 0);
}

}  // namespace
