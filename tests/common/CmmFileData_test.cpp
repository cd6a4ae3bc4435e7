#include "common/client/utility/src/CmmFileData.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "common/client/utility/src/UniqueHandle.h"
#include "gtest/gtest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using Cmm::UniqueFileHandle;
using velm_test::ScratchDirectory;

std::string ContentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

UniqueFileHandle OpenWith(const std::wstring& path, DWORD access, DWORD share) {
  return UniqueFileHandle(CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
}

TEST(FsRead, GivesTheWholeContent) {
  const ScratchDirectory scratch;
  const std::string bytes("a\0b\r\n\x1A\xFF", 7);
  std::string out = "before";
  EXPECT_EQ(cmm_fs_read(scratch.MakeFile(L"\x4F1A\x8BAE", bytes).c_str(), out), 1);
  EXPECT_EQ(out, bytes);
}

TEST(FsRead, AnEmptyFileGivesOneAndAnEmptyString) {
  const ScratchDirectory scratch;
  std::string out = "before";
  EXPECT_EQ(cmm_fs_read(scratch.MakeFile(L"a", "").c_str(), out), 1);
  EXPECT_EQ(out, "");
}

TEST(FsRead, WhatDoesNotOpenGivesZeroAndLeavesTheString) {
  const ScratchDirectory scratch;
  std::string out = "before";
  EXPECT_EQ(cmm_fs_read((scratch.Path() / L"missing").c_str(), out), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(cmm_fs_read(scratch.Path().c_str(), out), 0);
  EXPECT_EQ(cmm_fs_read(L"", out), 0);
  EXPECT_EQ(cmm_fs_read(nullptr, out), 0);
  EXPECT_EQ(out, "before");
}

TEST(FsRead, AFileOpenForWritingDoesNotOpen) {
  const ScratchDirectory scratch;
  const std::wstring path = scratch.MakeFile(L"a", "content");
  const UniqueFileHandle writer = OpenWith(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
  ASSERT_TRUE(writer);
  std::string out = "before";
  EXPECT_EQ(cmm_fs_read(path.c_str(), out), 0);
  EXPECT_EQ(out, "before");
}

TEST(FsRead, LetsOthersReadMeanwhile) {
  const ScratchDirectory scratch;
  const std::wstring path = scratch.MakeFile(L"a", "content");
  const UniqueFileHandle reader = OpenWith(path, GENERIC_READ, FILE_SHARE_READ);
  std::string out;
  EXPECT_EQ(cmm_fs_read(path.c_str(), out), 1);
  EXPECT_EQ(out, "content");
}

TEST(FsReadV2, GivesTheWholeContent) {
  const ScratchDirectory scratch;
  const std::string bytes("a\0b\r\n\x1A\xFF", 7);
  std::string out = "before";
  EXPECT_EQ(cmm_fs_read_v2(scratch.MakeFile(L"a", bytes).c_str(), out), 1);
  EXPECT_EQ(out, bytes);
}

TEST(FsReadV2, AnEmptyFileGivesZeroAndAnEmptyString) {
  const ScratchDirectory scratch;
  std::string out = "before";
  EXPECT_EQ(cmm_fs_read_v2(scratch.MakeFile(L"a", "").c_str(), out), 0);
  EXPECT_EQ(out, "");
}

TEST(FsReadV2, ReadsAFileThatIsOpenForWriting) {
  const ScratchDirectory scratch;
  const std::string bytes("a\0b\r\n\x1A\xFF", 7);
  const std::wstring path = scratch.MakeFile(L"\x4F1A\x8BAE", bytes);
  const UniqueFileHandle writer = OpenWith(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
  ASSERT_TRUE(writer);
  std::string out = "before";
  EXPECT_EQ(cmm_fs_read_v2(path.c_str(), out), 1);
  EXPECT_EQ(out, bytes);
}

TEST(FsReadV2, WhatDoesNotOpenGivesZeroAndLeavesTheString) {
  const ScratchDirectory scratch;
  std::string out = "before";
  EXPECT_EQ(cmm_fs_read_v2((scratch.Path() / L"missing").c_str(), out), 0);
  EXPECT_EQ(cmm_fs_read_v2(scratch.Path().c_str(), out), 0);
  EXPECT_EQ(cmm_fs_read_v2(L"", out), 0);
  EXPECT_EQ(cmm_fs_read_v2(nullptr, out), 0);
  const std::wstring path = scratch.MakeFile(L"a", "content");
  const UniqueFileHandle alone = OpenWith(path, GENERIC_READ, 0);
  EXPECT_EQ(cmm_fs_read_v2(path.c_str(), out), 0);
  EXPECT_EQ(out, "before");
}

TEST(FsWrite, CreatesAMissingFileEitherWay) {
  const ScratchDirectory scratch;
  EXPECT_EQ(cmm_fs_write((scratch.Path() / L"a").c_str(), "ab\r\n", 4, true), 4u);
  EXPECT_EQ(cmm_fs_write((scratch.Path() / L"b").c_str(), "ab\n", 3, false), 3u);
  EXPECT_EQ(ContentOf(scratch.Path() / L"a"), "ab\r\n");
  EXPECT_EQ(ContentOf(scratch.Path() / L"b"), "ab\n");
}

TEST(FsWrite, OneByteWithoutTruncateOntoThreeLeavesThree) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a", "abc");
  EXPECT_EQ(cmm_fs_write(path.c_str(), "X", 1, false), 1u);
  EXPECT_EQ(ContentOf(path), "Xbc");
}

TEST(FsWrite, WithTruncateTheBytesAreTheWholeContent) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a", "abc");
  EXPECT_EQ(cmm_fs_write(path.c_str(), "X", 1, true), 1u);
  EXPECT_EQ(ContentOf(path), "X");
}

TEST(FsWrite, ALengthOfZeroWritesNothing) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a", "abc");
  EXPECT_EQ(cmm_fs_write(path.c_str(), "X", 0, false), 0u);
  EXPECT_EQ(ContentOf(path), "abc");
  EXPECT_EQ(cmm_fs_write(path.c_str(), nullptr, 0, true), 0u);
  EXPECT_EQ(ContentOf(path), "");
}

TEST(FsWrite, NullDataIsNotRead) {
  const ScratchDirectory scratch;
  EXPECT_EQ(cmm_fs_write((scratch.Path() / L"a").c_str(), nullptr, 5, true), 0u);
}

TEST(FsWrite, WhatDoesNotOpenGivesZero) {
  const ScratchDirectory scratch;
  EXPECT_EQ(cmm_fs_write((scratch.Path() / L"missing\\a").c_str(), "X", 1, true), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
  EXPECT_EQ(cmm_fs_write(L"", "X", 1, true), 0u);
  EXPECT_EQ(cmm_fs_write(nullptr, "X", 1, true), 0u);
  const std::wstring path = scratch.MakeFile(L"a", "abc");
  const UniqueFileHandle alone = OpenWith(path, GENERIC_READ, 0);
  EXPECT_EQ(cmm_fs_write(path.c_str(), "X", 1, true), 0u);
}

TEST(FsWrite, ClosesTheFile) {
  const ScratchDirectory scratch;
  const std::wstring path = (scratch.Path() / L"a").wstring();
  cmm_fs_write(path.c_str(), "X", 1, true);
  EXPECT_TRUE(OpenWith(path, GENERIC_READ | GENERIC_WRITE, 0));
}

}  // namespace
