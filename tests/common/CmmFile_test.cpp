#include "common/client/utility/src/CmmFile.h"

#include <windows.h>
#include <winioctl.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "common/client/utility/src/CmmFilePath.h"
#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"
#include "tests/support/AnsiText.h"
#include "tests/support/ScratchDirectory.h"

namespace Cmm {
namespace {

using cmm_thread_testing::IsOpen;
using cmm_thread_testing::NullOf;
using velm_test::ScratchDirectory;

static_assert(sizeof(CFile) == sizeof(void*));
static_assert(!std::has_virtual_destructor_v<CFile>);

std::string ContentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

FilePath ToFilePath(const std::filesystem::path& path) {
  return FilePath::FromWStringHack(path.wstring());
}

// Opens the file beside others that hold it with these sharing rights.
bool CanOpenBeside(const std::filesystem::path& path, DWORD access, DWORD share) {
  return static_cast<bool>(
      UniqueFileHandle(CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr)));
}

// A file of `size` bytes that take no room where the file system can do without.
void MakeSparse(const CFile& file, int64_t size) {
  DWORD returned;
  DeviceIoControl(file.GetPlatformFile(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
  FILE_END_OF_FILE_INFO end = {};
  end.EndOfFile.QuadPart = size;
  ASSERT_TRUE(SetFileInformationByHandle(file.GetPlatformFile(), FileEndOfFileInfo, &end, sizeof(end)));
}

// ---- The handle -------------------------------------------------------------------------------------------

TEST(CFile, HoldsNoFileAtFirst) {
  const CFile file;
  EXPECT_EQ(file.GetPlatformFile(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(static_cast<void*>(file), nullptr);
  EXPECT_FALSE(file.IsOpened());
}

TEST(CFile, ANullHandleCountsAsOpenedAndIsNotClosed) {
  CFile file(nullptr);
  EXPECT_TRUE(file.IsOpened());
  EXPECT_EQ(static_cast<void*>(file), nullptr);
  EXPECT_EQ(file.GetPlatformFile(), nullptr);
  SetLastError(4711);
  file.Close();
  EXPECT_EQ(GetLastError(), 4711u);
  EXPECT_FALSE(file.IsOpened());
}

TEST(CFile, TheDestructorClosesAndDetachKeepsItFromIt) {
  const ScratchDirectory scratch;
  void* handle;
  {
    CFile file;
    file.CreateNew((scratch.Path() / L"a").c_str(), CFile::kWrite);
    handle = file.GetPlatformFile();
    ASSERT_TRUE(IsOpen(handle));
    EXPECT_EQ(static_cast<void*>(file), handle);
    EXPECT_EQ(file.Detach(), handle);
    EXPECT_FALSE(file.IsOpened());
    file.Close();
  }
  EXPECT_TRUE(IsOpen(handle));
  { const CFile owner(handle); }
  EXPECT_TRUE(DeleteFileW((scratch.Path() / L"a").c_str()));
}

TEST(CFile, CloseMakesItInvalidAndMayBeRepeated) {
  const ScratchDirectory scratch;
  CFile file;
  file.CreateNew((scratch.Path() / L"a").c_str(), CFile::kWrite);
  file.Close();
  EXPECT_EQ(file.GetPlatformFile(), INVALID_HANDLE_VALUE);
  file.Close();
  EXPECT_TRUE(DeleteFileW((scratch.Path() / L"a").c_str()));
}

TEST(CFile, AttachDoesNotCloseWhatWasHeldBefore) {
  const ScratchDirectory scratch;
  CFile file;
  file.CreateNew((scratch.Path() / L"a").c_str(), CFile::kWrite);
  const CFile first(file.GetPlatformFile());
  file.Attach(INVALID_HANDLE_VALUE);
  EXPECT_TRUE(IsOpen(first.GetPlatformFile()));
}

TEST(CFile, OpeningDoesNotCloseWhatWasHeldBefore) {
  const ScratchDirectory scratch;
  CFile file;
  file.CreateNew((scratch.Path() / L"a").c_str(), CFile::kWrite);
  const CFile first(file.GetPlatformFile());
  file.OpenExisting((scratch.Path() / L"missing").c_str(), CFile::kRead, 0);
  EXPECT_FALSE(file.IsOpened());
  EXPECT_TRUE(IsOpen(first.GetPlatformFile()));
}

TEST(CFile, SwapExchangesTheHandles) {
  const ScratchDirectory scratch;
  CFile a;
  CFile b;
  a.CreateNew((scratch.Path() / L"a").c_str(), CFile::kWrite);
  void* const handle = a.GetPlatformFile();
  a.Swap(b);
  EXPECT_EQ(b.GetPlatformFile(), handle);
  EXPECT_FALSE(a.IsOpened());
}

// ---- Opening ----------------------------------------------------------------------------------------------

TEST(CFile, CreateNewRefusesAnExistingFile) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a", "abc");
  CFile file;
  file.CreateNew(path.c_str(), CFile::kWrite);
  EXPECT_FALSE(file.IsOpened());
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_EXISTS));
  file.CreateNew(ToFilePath(path), CFile::kWrite);
  EXPECT_FALSE(file.IsOpened());
  file.CreateNew(ToFilePath(scratch.Path() / L"b"), CFile::kWrite);
  EXPECT_TRUE(file.IsOpened());
}

TEST(CFile, CreateAlwaysEmptiesAnExistingFile) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"\x4F1A\x8BAE", "abc");
  CFile file;
  file.CreateAlways(path.c_str(), CFile::kWrite);
  EXPECT_TRUE(file.IsOpened());
  EXPECT_EQ(file.GetSize(), 0);
  CFile other;
  other.CreateAlways(ToFilePath(scratch.Path() / L"b"), CFile::kWrite);
  EXPECT_TRUE(other.IsOpened());
}

TEST(CFile, OpenAlwaysKeepsAnExistingFileAndCreatesAMissingOne) {
  const ScratchDirectory scratch;
  CFile file;
  file.OpenAlways(scratch.MakeFile(L"a", "abc").c_str(), CFile::kReadWrite);
  EXPECT_EQ(file.GetSize(), 3);
  CFile other;
  other.OpenAlways(ToFilePath(scratch.Path() / L"b"), CFile::kWrite);
  EXPECT_TRUE(other.IsOpened());
  EXPECT_EQ(other.GetSize(), 0);
}

TEST(CFile, OpenExistingNeedsTheFile) {
  const ScratchDirectory scratch;
  CFile file;
  file.OpenExisting((scratch.Path() / L"a").c_str(), CFile::kRead, 0);
  EXPECT_FALSE(file.IsOpened());
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  file.OpenExisting(ToFilePath(scratch.MakeFile(L"a", "abc")), CFile::kRead, 0);
  EXPECT_TRUE(file.IsOpened());
  EXPECT_EQ(file.GetSize(), 3);
}

TEST(CFile, TruncateExistingEmptiesAFileAndCreatesNone) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a", "abc");
  CFile file;
  file.TruncateExisting((scratch.Path() / L"missing").c_str(), CFile::kWrite);
  EXPECT_FALSE(file.IsOpened());
  file.TruncateExisting(path.c_str(), CFile::kWrite);
  EXPECT_TRUE(file.IsOpened());
  EXPECT_EQ(file.GetSize(), 0);
}

TEST(CFile, ANullPathOpensNothing) {
  CFile file;
  file.OpenExisting(static_cast<const wchar_t*>(nullptr), CFile::kRead, 0);
  EXPECT_FALSE(file.IsOpened());
}

TEST(CFile, OthersMayReadBesideEveryWayOfOpeningAndWriteBesideOne) {
  struct Case {
    const char* name;
    std::function<void(CFile&, const wchar_t*)> open;
    bool sharesWrite;
  };
  const Case cases[] = {
      {"CreateNew", [](CFile& f, const wchar_t* p) { f.CreateNew(p, CFile::kRead); }, false},
      {"CreateAlways", [](CFile& f, const wchar_t* p) { f.CreateAlways(p, CFile::kRead); }, false},
      {"OpenAlways", [](CFile& f, const wchar_t* p) { f.OpenAlways(p, CFile::kRead); }, false},
      {"OpenExisting", [](CFile& f, const wchar_t* p) { f.OpenExisting(p, CFile::kRead, 0); }, false},
      {"OpenExisting shared", [](CFile& f, const wchar_t* p) { f.OpenExisting(p, CFile::kRead, 2); }, true},
      {"TruncateExisting", [](CFile& f, const wchar_t* p) { f.TruncateExisting(p, CFile::kReadWrite); },
       false},
  };
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.Path() / L"a";
  for (const Case& c : cases) {
    CFile file;
    c.open(file, path.c_str());
    ASSERT_TRUE(file.IsOpened()) << c.name;
    EXPECT_TRUE(CanOpenBeside(path, GENERIC_READ, kShareAll)) << c.name;
    EXPECT_EQ(CanOpenBeside(path, GENERIC_WRITE, kShareAll), c.sharesWrite) << c.name;
    EXPECT_FALSE(CanOpenBeside(path, DELETE, kShareAll)) << c.name;
  }
}

TEST(CFile, TheAccessMaskIsHandedOnAsItStands) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a", "abc");
  CFile reader;
  reader.OpenExisting(path.c_str(), CFile::kRead, 1);
  EXPECT_EQ(reader.Write("x", 1), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  CFile appender;
  appender.OpenExisting(path.c_str(), static_cast<CFile::EAccess>(FILE_APPEND_DATA), 1);
  EXPECT_EQ(appender.Write("d", 1), 1u);
  EXPECT_EQ(ContentOf(path), "abcd");
}

// ---- Content ----------------------------------------------------------------------------------------------

TEST(CFile, ReadsAndWritesWhatTheSystemTransfers) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.Path() / L"a";
  CFile file;
  file.CreateNew(path.c_str(), CFile::kReadWrite);
  EXPECT_EQ(file.Write("ab\r\ncd", 6), 6u);
  EXPECT_EQ(file.Write("x", 0), 0u);
  EXPECT_EQ(file.SeekSet(1), 1);
  char buffer[10] = {};
  EXPECT_EQ(file.Read(buffer, 2), 2u);
  EXPECT_STREQ(buffer, "b\r");
  EXPECT_EQ(file.Read(buffer, 10), 3u);
  EXPECT_EQ(file.Read(buffer, 10), 0u);
  EXPECT_EQ(file.Read(buffer, 0), 0u);
  EXPECT_NE(file.Flush(), 0);
}

TEST(CFile, OperationsWithoutAFileGiveZero) {
  CFile file;
  char buffer[2] = {};
  EXPECT_EQ(file.Read(buffer, 1), 0u);
  EXPECT_EQ(file.Write(buffer, 1), 0u);
  EXPECT_EQ(file.ReadLine(buffer, 1), -1);
  EXPECT_EQ(file.SeekSet(1), 0);
  EXPECT_EQ(file.SeekCur(1), 0);
  EXPECT_EQ(file.SeekEnd(0), 0);
  EXPECT_EQ(file.Tell(), 0);
  EXPECT_EQ(file.GetSize(), 0);
  EXPECT_EQ(file.SetSize(1), 0);
  EXPECT_EQ(file.SetEof(), 0);
  EXPECT_EQ(file.Flush(), 0);
}

// The lines that ReadLine gives for a file of this content, each after its result; "!" marks the results
// of -1, and reading ends at the end of the file.
std::string LinesOf(const std::string& content, int size) {
  const ScratchDirectory scratch;
  CFile file;
  file.OpenExisting(scratch.MakeFile(L"a", content).c_str(), CFile::kRead, 0);
  std::string lines;
  for (int64_t before = -1; before != file.Tell();) {
    before = file.Tell();
    std::string buffer(static_cast<size_t>(size) + 2, '#');
    const int n = file.ReadLine(buffer.data(), size);
    EXPECT_EQ(buffer.back(), '#');  // behind the size + 1 bytes
    EXPECT_EQ(buffer[static_cast<size_t>(std::max(n, 0))], '\0');
    lines += n < 0 ? "!" : std::to_string(n) + buffer.c_str();
    lines += ' ';
  }
  return lines;
}

TEST(CFile, ReadLineOfTwoLettersCrLfLfGivesTwoThenMinusOne) {
  EXPECT_EQ(LinesOf("ab\r\n\n", 80), "2ab ! ! ");
}

TEST(CFile, ReadLineEndsAtLineFeedsAndAtTheEndOfTheFile) {
  EXPECT_EQ(LinesOf("", 80), "! ");
  EXPECT_EQ(LinesOf("ab", 80), "2ab ! ");
  EXPECT_EQ(LinesOf("ab\ncd\n", 80), "2ab 2cd ! ");
  EXPECT_EQ(LinesOf("ab\r", 80), "2ab ! ");
  EXPECT_EQ(LinesOf("a\rb\r\r\n", 80), "4a\rb\r ! ");
}

TEST(CFile, ReadLineGivesAnEmptyLineLikeTheEndOfTheFile) {
  EXPECT_EQ(LinesOf("\nab\n", 80), "! 2ab ! ");
}

TEST(CFile, ReadLineGivesZeroForAnEmptyLineThatEndsInCrLf) {
  EXPECT_EQ(LinesOf("\r\nab", 80), "0 2ab ! ");
}

TEST(CFile, ReadLineTakesALineOfExactlyItsSizeWithTheLineFeed) {
  EXPECT_EQ(LinesOf("abc\nd\n", 3), "3abc 1d ! ");
  EXPECT_EQ(LinesOf("a\nb\n", 1), "1a 1b ! ");
}

TEST(CFile, ReadLineCutsALongerLineAndLosesTheByteBehind) {
  EXPECT_EQ(LinesOf("abcdef\n", 3), "3abc 2ef ! ");
  EXPECT_EQ(LinesOf("abc\r\n", 3), "3abc ! ! ");
}

TEST(CFile, ReadLineRefusesNullAndSizesBelowOne) {
  const ScratchDirectory scratch;
  CFile file;
  file.OpenExisting(scratch.MakeFile(L"a", "ab").c_str(), CFile::kRead, 0);
  char buffer[4] = "#";
  EXPECT_EQ(file.ReadLine(nullptr, 3), -1);
  EXPECT_EQ(file.ReadLine(buffer, 0), -1);
  EXPECT_EQ(file.ReadLine(buffer, -1), -1);
  EXPECT_EQ(NullOf<CFile>()->ReadLine(buffer, 3), -1);
  EXPECT_STREQ(buffer, "#");
  EXPECT_EQ(file.Tell(), 0);
}

// ---- Position and size ------------------------------------------------------------------------------------

TEST(CFile, SeeksFromTheStartTheCurrentPositionAndTheEnd) {
  const ScratchDirectory scratch;
  CFile file;
  file.OpenExisting(scratch.MakeFile(L"a", "0123456789").c_str(), CFile::kRead, 0);
  EXPECT_EQ(file.SeekSet(4), 4);
  EXPECT_EQ(file.SeekCur(3), 7);
  EXPECT_EQ(file.SeekCur(-2), 5);
  EXPECT_EQ(file.Tell(), 5);
  EXPECT_EQ(file.SeekEnd(-1), 9);
  EXPECT_EQ(file.SeekEnd(5), 15);
  EXPECT_EQ(file.Seek(2, static_cast<CFile::ESeekType>(0)), 2);
  EXPECT_EQ(file.Seek(2, static_cast<CFile::ESeekType>(1)), 4);
  EXPECT_EQ(file.Seek(0, static_cast<CFile::ESeekType>(2)), 10);
  EXPECT_EQ(file.SeekSet(-1), 0);  // refused
  EXPECT_EQ(file.Tell(), 10);
}

TEST(CFile, SetSizeCutsAndExtendsAndReturnsToThePosition) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a", "0123456789");
  CFile file;
  file.OpenExisting(path.c_str(), CFile::kReadWrite, 0);
  file.SeekSet(3);
  EXPECT_NE(file.SetSize(5), 0);
  EXPECT_EQ(file.Tell(), 3);
  EXPECT_EQ(file.GetSize(), 5);
  EXPECT_NE(file.SetSize(7), 0);
  EXPECT_EQ(file.Tell(), 3);
  EXPECT_NE(file.SetSize(1), 0);
  EXPECT_EQ(file.Tell(), 3);  // behind the end
  EXPECT_EQ(file.GetSize(), 1);
}

TEST(CFile, SetEofEndsTheFileAtThePosition) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a", "0123456789");
  CFile file;
  file.OpenExisting(path.c_str(), CFile::kReadWrite, 0);
  file.SeekSet(3);
  EXPECT_NE(file.SetEof(), 0);
  file.Close();
  EXPECT_EQ(ContentOf(path), "012");
}

TEST(CFile, SizesAndPositionsBeyondFourGiBAreTold) {
  const ScratchDirectory scratch;
  CFile file;
  file.CreateNew((scratch.Path() / L"a").c_str(), CFile::kReadWrite);
  for (const int64_t size : {0xFFFFFFFELL, 0x100000000LL, 0x123456789LL}) {
    MakeSparse(file, size);
    EXPECT_EQ(file.GetSize(), size);
    EXPECT_EQ(file.SeekEnd(0), size);
    EXPECT_EQ(file.SeekEnd(-5), size - 5);
    EXPECT_EQ(file.Tell(), size - 5);
    EXPECT_EQ(file.SeekSet(size), size);
  }
  EXPECT_NE(file.SetSize(0x140000000LL), 0);
  EXPECT_EQ(file.GetSize(), 0x140000000LL);
}

TEST(CFile, ASizeOrPositionWhoseLowHalfIsAllOnesReadsAsZero) {
  const ScratchDirectory scratch;
  CFile file;
  file.CreateNew((scratch.Path() / L"a").c_str(), CFile::kReadWrite);
  MakeSparse(file, 0xFFFFFFFFLL);
  EXPECT_EQ(file.GetSize(), 0);
  EXPECT_EQ(file.SeekSet(0xFFFFFFFFLL), 0);
  EXPECT_EQ(file.Tell(), 0);
  EXPECT_EQ(file.SeekCur(1), 0x100000000LL);  // it did stand there
  MakeSparse(file, 0x1FFFFFFFFLL);
  EXPECT_EQ(file.GetSize(), 0);
}

// ---- FileExist --------------------------------------------------------------------------------------------

TEST(CFile, FileExistSeesFilesAndDirectories) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"a.txt");
  EXPECT_TRUE(CFile::FileExist(path.c_str()));
  EXPECT_TRUE(CFile::FileExist(ToFilePath(path)));
  EXPECT_TRUE(CFile::FileExist(scratch.Path().c_str()));
  EXPECT_FALSE(CFile::FileExist((scratch.Path() / L"b.txt").c_str()));
  EXPECT_FALSE(CFile::FileExist(ToFilePath(scratch.Path() / L"b.txt")));
}

TEST(CFile, FileExistTakesNullForAnEmptyPath) {
  EXPECT_FALSE(CFile::FileExist(static_cast<const wchar_t*>(nullptr)));
  EXPECT_FALSE(CFile::FileExist(L""));
  EXPECT_FALSE(CFile::FileExist(FilePath()));
}

TEST(CFile, FileExistLooksForTheUtf8NameInTheAnsiCodePage) {
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.MakeFile(L"\x00E9.txt");
  EXPECT_EQ(CFile::FileExist(path.c_str()) != 0, GetACP() == CP_UTF8);
  scratch.MakeFile(velm_test::FromAnsi("\xC3\xA9.txt").c_str());  // "\u00C3\u00A9.txt" in code page 1252
  EXPECT_TRUE(CFile::FileExist(path.c_str()));
}

}  // namespace
}  // namespace Cmm
