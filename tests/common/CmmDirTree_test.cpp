#include "common/client/utility/src/CmmDirTree.h"

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"
#include "gtest/gtest.h"
#include "tests/support/DirectoryLink.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using velm_test::DirectoryLink;
using velm_test::ScratchDirectory;
using velm_test::SystemRemovesDirectoryLinks;

bool IsDirectory(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool Exists(const std::wstring& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

Cmm::UniqueFileHandle OpenExclusively(const std::wstring& path) {
  return Cmm::UniqueFileHandle(
      CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

// What is to be deleted at the next start of the system. The destructor puts the list back as it was.
class PendingDeletions {
 public:
  PendingDeletions() : m_before(Read()) {}
  PendingDeletions(const PendingDeletions&) = delete;
  PendingDeletions& operator=(const PendingDeletions&) = delete;
  ~PendingDeletions() {
    if (m_before.empty())
      RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kKey, kName);
    else
      RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, kName, REG_MULTI_SZ, m_before.data(),
                      static_cast<DWORD>(m_before.size() * sizeof(wchar_t)));
  }

  // Whether the end of the path is in the list; true as well where this user may not add to it.
  bool Contains(const std::wstring& path) const {
    Cmm::UniqueRegistryKey key;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, KEY_SET_VALUE, key.put()) != ERROR_SUCCESS) return true;
    return Read().find(path) != std::wstring::npos;
  }

 private:
  static constexpr wchar_t kKey[] = L"System\\CurrentControlSet\\Control\\Session Manager";
  static constexpr wchar_t kName[] = L"PendingFileRenameOperations";

  static std::wstring Read() {
    DWORD size = 0;
    RegGetValueW(HKEY_LOCAL_MACHINE, kKey, kName, RRF_RT_REG_MULTI_SZ, nullptr, nullptr, &size);
    std::wstring list(size / sizeof(wchar_t), L'\0');
    RegGetValueW(HKEY_LOCAL_MACHINE, kKey, kName, RRF_RT_REG_MULTI_SZ, nullptr, list.data(), &size);
    return list;
  }

  std::wstring m_before;
};

// Another temporary directory for this process.
class TempDirectoryGuard {
 public:
  explicit TempDirectoryGuard(const std::wstring& directory) {
    GetEnvironmentVariableW(L"TMP", m_before, MAX_PATH);
    SetEnvironmentVariableW(L"TMP", directory.c_str());
  }
  TempDirectoryGuard(const TempDirectoryGuard&) = delete;
  TempDirectoryGuard& operator=(const TempDirectoryGuard&) = delete;
  ~TempDirectoryGuard() { SetEnvironmentVariableW(L"TMP", m_before); }

 private:
  wchar_t m_before[MAX_PATH] = {};
};

TEST(FsMkdirs, CreatesEveryMissingDirectory) {
  const ScratchDirectory scratch;
  const std::wstring base = scratch.Path().wstring();
  cmm_fs_mkdirs((base + L"\\a\\b/c").c_str());
  EXPECT_TRUE(IsDirectory(base + L"\\a\\b\\c"));
  cmm_fs_mkdirs((base + L"\\a\\b\\\x4F1A\x8BAE\\").c_str());
  EXPECT_TRUE(IsDirectory(base + L"\\a\\b\\\x4F1A\x8BAE"));
  cmm_fs_mkdirs((base + L"\\\\x//y").c_str());
  EXPECT_TRUE(IsDirectory(base + L"\\x\\y"));
}

TEST(FsMkdirs, AnExistingDirectoryStays) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"a\\b\\file", "content");
  cmm_fs_mkdirs((scratch.Path() / L"a\\b").c_str());
  EXPECT_EQ(std::filesystem::file_size(scratch.Path() / L"a\\b\\file"), 7u);
}

TEST(FsMkdirs, AFileInTheWayStopsNothingAndStays) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"a");
  cmm_fs_mkdirs((scratch.Path() / L"a\\b").c_str());
  EXPECT_FALSE(IsDirectory(scratch.Path() / L"a"));
}

TEST(FsMkdirs, NullAndEmptyDoNothing) {
  SetLastError(4711);
  cmm_fs_mkdirs(nullptr);
  cmm_fs_mkdirs(L"");
  EXPECT_EQ(GetLastError(), 4711u);
}

TEST(FsMkdirs, ALoneSeparatorIsSafe) {
  cmm_fs_mkdirs(L"\\");
  cmm_fs_mkdirs(L"C:\\");
  EXPECT_TRUE(IsDirectory(L"C:\\"));
}

TEST(FsRmdirs, RemovesTheTree) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"t\\a\\b\\c.txt");
  scratch.MakeFile(L"t\\a\\\x4F1A\x8BAE.txt");
  scratch.MakeFile(L"t\\..a");
  scratch.MakeDirectory(L"t\\...b");
  scratch.MakeDirectory(L"t\\empty");
  const std::wstring path = (scratch.Path() / L"t").wstring();
  EXPECT_NE(cmm_fs_rmdirs(path.c_str()), 0);
  EXPECT_FALSE(Exists(path));
  EXPECT_TRUE(Exists(scratch.Path()));
}

TEST(FsRmdirs, ASeparatorAtTheEndMakesNoDifference) {
  const ScratchDirectory scratch;
  for (const wchar_t* end : {L"\\", L"/"}) {
    scratch.MakeFile(L"t\\a");
    EXPECT_NE(cmm_fs_rmdirs((scratch.Path().wstring() + L"\\t" + end).c_str()), 0);
    EXPECT_FALSE(Exists(scratch.Path() / L"t"));
  }
}

TEST(FsRmdirs, WhatDoesNotExistCountsAsRemoved) {
  const ScratchDirectory scratch;
  EXPECT_EQ(cmm_fs_rmdirs((scratch.Path() / L"missing").c_str()), 1);
  EXPECT_EQ(cmm_fs_rmdirs((scratch.Path() / L"missing\\below").c_str()), 1);
}

TEST(FsRmdirs, NullAndEmptyGiveZeroAndError87) {
  SetLastError(0);
  EXPECT_EQ(cmm_fs_rmdirs(nullptr), 0);
  EXPECT_EQ(GetLastError(), 87u);
  SetLastError(0);
  EXPECT_EQ(cmm_fs_rmdirs(L""), 0);
  EXPECT_EQ(GetLastError(), 87u);
}

TEST(FsRmdirs, AFileIsNotRemoved) {
  const ScratchDirectory scratch;
  const std::wstring path = scratch.MakeFile(L"a");
  EXPECT_EQ(cmm_fs_rmdirs(path.c_str()), 0);
  EXPECT_TRUE(Exists(path));
}

TEST(FsRmdirs, RemovesATreeUpToTheLimitOfDirectoryPaths) {
  const ScratchDirectory scratch;
  const std::filesystem::path top = scratch.MakeDirectory(L"t");
  constexpr size_t kLongestDirectory = 247;
  velm_test::MakeDirectoryOfLength(top, kLongestDirectory);
  EXPECT_NE(cmm_fs_rmdirs(top.c_str()), 0);
  EXPECT_FALSE(Exists(top));
}

TEST(FsRmdirs, ALinkToADirectoryIsNotEntered) {
  const ScratchDirectory scratch;
  const std::wstring kept = scratch.MakeFile(L"target\\kept");
  const DirectoryLink link(scratch.Path() / L"link", scratch.Path() / L"target");
  ASSERT_TRUE(link.Exists());
  cmm_fs_rmdirs(link.Path().c_str());
  EXPECT_TRUE(Exists(kept));
}

TEST(FsRmdirs, ALinkWithinTheTreeIsNotEntered) {
  const ScratchDirectory scratch;
  const std::wstring kept = scratch.MakeFile(L"target\\kept");
  scratch.MakeFile(L"tree\\a\\gone");
  const DirectoryLink link(scratch.Path() / L"tree\\a\\link", scratch.Path() / L"target");
  ASSERT_TRUE(link.Exists());
  cmm_fs_rmdirs((scratch.Path() / L"tree").c_str());
  EXPECT_TRUE(Exists(kept));
  EXPECT_FALSE(Exists(scratch.Path() / L"tree\\a\\gone"));
}

// The links' targets are empty: then Wine, which removes the target of a link instead of the link, shows the
// link to nobody any more. What only Windows does with it is asserted where the system does it.
TEST(FsRmdirs, ALinkToADirectoryIsRemoved) {
  const ScratchDirectory scratch;
  const std::filesystem::path target = scratch.MakeDirectory(L"target");
  const DirectoryLink link(scratch.Path() / L"link", target);
  ASSERT_TRUE(link.Exists());
  EXPECT_NE(cmm_fs_rmdirs(link.Path().c_str()), 0);
  EXPECT_FALSE(link.Exists());
  EXPECT_EQ(Exists(target), SystemRemovesDirectoryLinks(scratch.Path()));
}

TEST(FsRmdirs, ALinkWithinTheTreeIsRemoved) {
  const ScratchDirectory scratch;
  scratch.MakeDirectory(L"tree\\a");
  const std::filesystem::path target = scratch.MakeDirectory(L"target");
  const DirectoryLink link(scratch.Path() / L"tree\\a\\link", target);
  ASSERT_TRUE(link.Exists());
  const bool removed = cmm_fs_rmdirs((scratch.Path() / L"tree").c_str()) != 0;
  EXPECT_FALSE(link.Exists());
  const bool systemRemovesLinks = SystemRemovesDirectoryLinks(scratch.Path());
  EXPECT_EQ(removed, systemRemovesLinks);  // else the dangling link keeps its directory from going
  EXPECT_EQ(Exists(scratch.Path() / L"tree"), !systemRemovesLinks);
}

TEST(FsRmdirs, AFileThatIsHeldOpenStaysAndMakesItFailButTheRestGoes) {
  const ScratchDirectory scratch;
  const PendingDeletions pending;
  const std::wstring held = scratch.MakeFile(L"t\\a\\held");
  scratch.MakeFile(L"t\\a\\other");
  scratch.MakeFile(L"t\\b\\other");
  const std::wstring path = (scratch.Path() / L"t").wstring();
  {
    const Cmm::UniqueFileHandle open = OpenExclusively(held);
    ASSERT_TRUE(open);
    EXPECT_EQ(cmm_fs_rmdirs(path.c_str()), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DIR_NOT_EMPTY));
    EXPECT_TRUE(Exists(held));
    EXPECT_TRUE(pending.Contains(held));
    EXPECT_FALSE(Exists(path + L"\\a\\other"));
    EXPECT_FALSE(Exists(path + L"\\b"));
  }
  EXPECT_NE(cmm_fs_rmdirs(path.c_str()), 0);
}

TEST(FsRmdirs, AFileThatIsOnlyMovableLeavesTheTreeAndIsMarkedWhereItWent) {
  const ScratchDirectory scratch;
  const PendingDeletions pending;
  const std::filesystem::path temp = scratch.MakeDirectory(L"temp");
  const TempDirectoryGuard guard(temp.wstring());
  const std::wstring readOnly = scratch.MakeFile(L"t\\a\\b", "content");
  SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
  ASSERT_FALSE(DeleteFileW(readOnly.c_str()));

  EXPECT_NE(cmm_fs_rmdirs((scratch.Path() / L"t").c_str()), 0);
  EXPECT_FALSE(Exists(scratch.Path() / L"t"));
  std::vector<std::filesystem::path> moved(std::filesystem::directory_iterator(temp), {});
  ASSERT_EQ(moved.size(), 1u);
  EXPECT_EQ(std::filesystem::file_size(moved[0]), 7u);
  EXPECT_EQ(moved[0].extension(), L".tmp");
  EXPECT_TRUE(pending.Contains(moved[0].filename()));
  SetFileAttributesW(moved[0].c_str(), FILE_ATTRIBUTE_NORMAL);
}

}  // namespace
