#include "host/FileVersion.h"

#include <array>
#include <string>

#include "gmock/gmock.h"
#include "host/SystemLibrary.h"
#include "tests/support/ScratchDirectory.h"
#include "tools/fake_product/VersionedImage.h"

namespace {

using velm_test::ScratchDirectory;
using Numbers = std::array<uint16_t, 4>;

class GetFileVersionSafe : public testing::Test {
 protected:
  std::filesystem::path MakeVersioned(std::wstring_view name, const Cmm::FileVersion& version) {
    const std::vector<unsigned char> image = velm_tools::ImageOfVersion(version);
    return scratch.MakeFile(name, {reinterpret_cast<const char*>(image.data()), image.size()});
  }
  bool Read(const std::string& path) {
    return Cmm::GetFileVersionSafe(path.c_str(), &read[0], &read[1], &read[2], &read[3]);
  }

  ScratchDirectory scratch;
  Numbers read{91, 92, 93, 94};
  const Numbers untouched = read;
};

TEST(FileVersionFromWords, HighWordsComeFirst) {
  EXPECT_EQ(Cmm::FileVersionFromWords(0x00010002, 0x00030004), (Cmm::FileVersion{1, 2, 3, 4}));
  EXPECT_EQ(Cmm::FileVersionFromWords(0xFFFF0000, 0x0000FFFF), (Cmm::FileVersion{0xFFFF, 0, 0, 0xFFFF}));
}

TEST_F(GetFileVersionSafe, ReadsTheFourNumbers) {
  EXPECT_TRUE(Read(MakeVersioned(L"a.dll", {5, 8, 6, 1271}).string()));
  EXPECT_EQ(read, (Numbers{5, 8, 6, 1271}));
}

TEST_F(GetFileVersionSafe, MinorAbove1000StaysAsItIs) {
  EXPECT_TRUE(Read(MakeVersioned(L"a.dll", {5, 1200, 3, 4}).string()));
  EXPECT_EQ(read, (Numbers{5, 1200, 3, 4}));
}

TEST_F(GetFileVersionSafe, LargestNumbersComeThrough) {
  EXPECT_TRUE(Read(MakeVersioned(L"a.dll", {65535, 65535, 65535, 65535}).string()));
  EXPECT_EQ(read, (Numbers{65535, 65535, 65535, 65535}));
}

TEST_F(GetFileVersionSafe, PathMayBeUtf8) {
  MakeVersioned(L"\u4F1A\u8BAE.dll", {1, 2, 3, 4});
  EXPECT_TRUE(Read(scratch.Narrow() + "\\\xE4\xBC\x9A\xE8\xAE\xAE.dll"));
  EXPECT_EQ(read, (Numbers{1, 2, 3, 4}));
}

TEST_F(GetFileVersionSafe, PathThatIsNotUtf8IsAnsi) {
  // The byte 0xE9 alone is no UTF-8; which letter it is depends on the machine's code page.
  wchar_t letter = 0;
  ASSERT_EQ(MultiByteToWideChar(CP_ACP, 0, "\xE9", 1, &letter, 1), 1);
  MakeVersioned(std::wstring(1, letter) + L".dll", {1, 2, 3, 4});
  EXPECT_TRUE(Read(scratch.Narrow() + "\\\xE9.dll"));
  EXPECT_EQ(read, (Numbers{1, 2, 3, 4}));
}

TEST_F(GetFileVersionSafe, FilesWithoutAVersionGiveFalseAndLeaveTheValues) {
  EXPECT_FALSE(Read(scratch.Narrow() + "\\absent.dll"));
  EXPECT_FALSE(Read(scratch.MakeFile(L"text.dll", "not a library").string()));
  EXPECT_FALSE(Read(scratch.MakeFile(L"empty.dll", "").string()));
  EXPECT_FALSE(Read(scratch.Narrow()));
  EXPECT_FALSE(Read(""));
  EXPECT_EQ(read, untouched);
}

TEST_F(GetFileVersionSafe, NullPointersGiveFalseAndLeaveTheValues) {
  const std::string path = MakeVersioned(L"a.dll", {1, 2, 3, 4}).string();
  uint16_t* const out[] = {&read[0], &read[1], &read[2], &read[3]};
  EXPECT_FALSE(Cmm::GetFileVersionSafe(nullptr, out[0], out[1], out[2], out[3]));
  EXPECT_FALSE(Cmm::GetFileVersionSafe(path.c_str(), nullptr, out[1], out[2], out[3]));
  EXPECT_FALSE(Cmm::GetFileVersionSafe(path.c_str(), out[0], nullptr, out[2], out[3]));
  EXPECT_FALSE(Cmm::GetFileVersionSafe(path.c_str(), out[0], out[1], nullptr, out[3]));
  EXPECT_FALSE(Cmm::GetFileVersionSafe(path.c_str(), out[0], out[1], out[2], nullptr));
  EXPECT_EQ(read, untouched);
}

TEST(JoinSystemPath, AddsABackslashUnlessASeparatorIsThere) {
  EXPECT_EQ(Cmm::JoinSystemPath(L"C:\\windows\\system32", L"a.dll"), L"C:\\windows\\system32\\a.dll");
  EXPECT_EQ(Cmm::JoinSystemPath(L"C:\\", L"a.dll"), L"C:\\a.dll");
  EXPECT_EQ(Cmm::JoinSystemPath(L"C:/windows/", L"a.dll"), L"C:/windows/a.dll");
}

std::wstring LoadedFrom(const Cmm::UniqueModule& library) {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(library.get(), path, MAX_PATH);
  CharLowerW(path);
  return path;
}

TEST(LoadSystemLibrary, BothWaysLoadFromTheSystemDirectory) {
  wchar_t directory[MAX_PATH] = {};
  GetSystemDirectoryW(directory, MAX_PATH);
  std::wstring expected = Cmm::JoinSystemPath(directory, L"version.dll");
  CharLowerW(expected.data());

  EXPECT_EQ(LoadedFrom(Cmm::LoadSystemLibrary(L"version.dll")), expected);
  EXPECT_EQ(LoadedFrom(Cmm::LoadSystemLibraryBySearch(L"version.dll")), expected);
  EXPECT_EQ(LoadedFrom(Cmm::LoadSystemLibraryByPath(L"version.dll")), expected);
}

TEST(LoadSystemLibrary, NoWayLoadsALibraryThatLiesInTheCurrentDirectory) {
  const ScratchDirectory scratch;
  const std::vector<unsigned char> image = velm_tools::ImageOfVersion({});
  scratch.MakeFile(L"planted.dll", {reinterpret_cast<const char*>(image.data()), image.size()});
  wchar_t before[MAX_PATH] = {};
  GetCurrentDirectoryW(MAX_PATH, before);
  SetCurrentDirectoryW(scratch.Path().c_str());
  EXPECT_TRUE(Cmm::UniqueModule(LoadLibraryW(L"planted.dll")));  // it could be loaded
  EXPECT_FALSE(Cmm::LoadSystemLibrary(L"planted.dll"));
  EXPECT_FALSE(Cmm::LoadSystemLibraryBySearch(L"planted.dll"));
  EXPECT_FALSE(Cmm::LoadSystemLibraryByPath(L"planted.dll"));
  SetCurrentDirectoryW(before);
}

}  // namespace
