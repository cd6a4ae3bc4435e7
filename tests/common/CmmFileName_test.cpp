#include "common/client/utility/src/CmmFileName.h"

#include <windows.h>

#include <filesystem>
#include <string>
#include <type_traits>

#include "gtest/gtest.h"
#include "tests/support/ScratchDirectory.h"

namespace Cmm {
namespace {

using velm_test::ScratchDirectory;

static_assert(std::has_virtual_destructor_v<CFileName>);
static_assert(sizeof(CFileName) == sizeof(CStringT<wchar_t>));

std::wstring Text(CFnRangeT<wchar_t> range) {
  return std::wstring(range.begin, range.GetLength());
}

std::wstring ModulePath(HMODULE module) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(module, path, MAX_PATH);
  return path;
}

// Puts the current directory of the process back.
class DirectoryGuard {
 public:
  DirectoryGuard() : m_before(std::filesystem::current_path()) {}
  DirectoryGuard(const DirectoryGuard&) = delete;
  DirectoryGuard& operator=(const DirectoryGuard&) = delete;
  ~DirectoryGuard() { std::filesystem::current_path(m_before); }

 private:
  std::filesystem::path m_before;
};

TEST(CFileName, SplitsAPathIntoItsParts) {
  struct Case {
    const wchar_t* path;
    const wchar_t* directoryWithSlash;
    const wchar_t* directory;
    const wchar_t* name;
    const wchar_t* extWithDot;
    const wchar_t* ext;
    const wchar_t* bodyPathWithDot;
    const wchar_t* bodyPath;
    const wchar_t* body;
  };
  for (const Case& c : {
           Case{L"", L"", L"", L"", L"", L"", L"", L"", L""},
           {L"a", L"", L"", L"a", L"", L"", L"a", L"a", L"a"},
           {L"a.b", L"", L"", L"a.b", L".b", L"b", L"a.", L"a", L"a"},
           {L"a.b.c", L"", L"", L"a.b.c", L".c", L"c", L"a.b.", L"a.b", L"a"},
           {L"a.", L"", L"", L"a.", L".", L"", L"a.", L"a", L"a"},
           {L".a", L"", L"", L".a", L".a", L"a", L".", L"", L""},
           {L".", L"", L"", L".", L".", L"", L".", L"", L""},
           {L"x\\a.b", L"x\\", L"x", L"a.b", L".b", L"b", L"x\\a.", L"x\\a", L"a"},
           {L"x/a.b.c", L"x/", L"x", L"a.b.c", L".c", L"c", L"x/a.b.", L"x/a.b", L"a"},
           {L"x.y\\a", L"x.y\\", L"x.y", L"a", L"", L"", L"x.y\\a", L"x.y\\a", L"a"},
           {L"x.y/", L"x.y/", L"x.y", L"", L"", L"", L"x.y/", L"x.y/", L""},
           {L"\\a", L"\\", L"", L"a", L"", L"", L"\\a", L"\\a", L"a"},
           {L"C:\\x/a.b", L"C:\\x/", L"C:\\x", L"a.b", L".b", L"b", L"C:\\x/a.", L"C:\\x/a", L"a"},
           {L"C:a.b", L"", L"", L"C:a.b", L".b", L"b", L"C:a.", L"C:a", L"C:a"},
           {L"\x4F1A\\\x8BAE.\x00E9", L"\x4F1A\\", L"\x4F1A", L"\x8BAE.\x00E9", L".\x00E9", L"\x00E9",
            L"\x4F1A\\\x8BAE.", L"\x4F1A\\\x8BAE", L"\x8BAE"},
       }) {
    const CFileName path(c.path);
    EXPECT_EQ(Text(path.GetPath(1)), c.directoryWithSlash) << c.path;
    EXPECT_EQ(Text(path.GetPath(0)), c.directory) << c.path;
    EXPECT_STREQ(path.GetName(), c.name);
    EXPECT_STREQ(path.GetExt(1), c.extWithDot);
    EXPECT_STREQ(path.GetExt(0), c.ext);
    EXPECT_EQ(Text(path.GetPathBody(1)), c.bodyPathWithDot) << c.path;
    EXPECT_EQ(Text(path.GetPathBody(0)), c.bodyPath) << c.path;
    EXPECT_EQ(Text(path.GetBody()), c.body) << c.path;
  }
}

TEST(CFileName, PartsPointIntoTheString) {
  const CFileName path(L"x\\a.b");
  EXPECT_EQ(path.GetName(), path.c_str() + 2);
  EXPECT_EQ(path.GetExt(1), path.c_str() + 3);
  EXPECT_EQ(CFileName(L"a").GetExt(0)[0], L'\0');
  EXPECT_EQ(path.GetPath(0).begin, path.c_str());
  const CFileName plain(L"a");
  EXPECT_EQ(plain.GetPath(1).begin, plain.c_str());
  EXPECT_EQ(plain.GetPath(1).end, plain.c_str());
}

TEST(CFileName, MakeSlashAppendsABackslashWhereNoneStands) {
  struct Case {
    const wchar_t* path;
    const wchar_t* expected;
  };
  for (const auto& [path, expected] :
       {Case{L"", L""}, {L"a", L"a\\"}, {L"a\\", L"a\\"}, {L"a/", L"a/"}, {L"C:", L"C:\\"}, {L"/", L"/"}}) {
    CFileName name(path);
    name.MakeSlash();
    EXPECT_EQ(name, expected);
  }
}

TEST(CFileName, IsAStringAndAValue) {
  CFileName name;
  EXPECT_TRUE(name.empty());
  EXPECT_TRUE(CFileName(static_cast<const wchar_t*>(nullptr)).empty());
  name = L"a";
  name = name + L".b";
  const CFileName copy = name;
  name = CFileName(CStringT<wchar_t>(L"other"));
  EXPECT_EQ(copy, L"a.b");
  EXPECT_EQ(name, L"other");
}

TEST(CFileName, TheCurrentDirectoryIsSetAndTold) {
  const DirectoryGuard guard;
  const ScratchDirectory scratch;
  const std::filesystem::path directory = scratch.MakeDirectory(L"\x4F1A\x8BAE");
  EXPECT_NE(CFileName(directory.c_str()).SetCurrentDirectoryW(), 0);
  CFileName told(L"before");
  EXPECT_NE(told.GetCurrentDirectoryW(), 0);
  EXPECT_TRUE(std::filesystem::equivalent(told.c_str(), directory));
  std::filesystem::current_path(scratch.Path().parent_path());
}

TEST(CFileName, AMissingCurrentDirectoryIsRefused) {
  const ScratchDirectory scratch;
  const std::filesystem::path before = std::filesystem::current_path();
  EXPECT_EQ(CFileName((scratch.Path() / L"missing").c_str()).SetCurrentDirectoryW(), 0);
  EXPECT_EQ(CFileName().SetCurrentDirectoryW(), 0);
  EXPECT_EQ(std::filesystem::current_path(), before);
}

TEST(CFileName, TheModulesFileNameAndDirectory) {
  const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
  CFileName name;
  EXPECT_NE(name.GetModuleFileNameW(nullptr), 0);
  EXPECT_EQ(name.GetCData(), ModulePath(nullptr));
  EXPECT_NE(name.GetModuleFileNameW(kernel), 0);
  EXPECT_EQ(name.GetCData(), ModulePath(kernel));

  const std::wstring directory = std::filesystem::path(ModulePath(nullptr)).parent_path().wstring();
  EXPECT_NE(name.GetModuleFilePath(nullptr), 0);
  EXPECT_EQ(name.GetCData(), directory);
  EXPECT_NE(name.GetModuleFilePath(kernel), 0);
  EXPECT_EQ(name.GetCData(), std::filesystem::path(ModulePath(kernel)).parent_path().wstring());
  EXPECT_NE(name.GetAppPubCertPath(), 0);
  EXPECT_EQ(name.GetCData(), directory);
}

TEST(CFileName, ASiblingStandsBesideTheModule) {
  const std::wstring directory = std::filesystem::path(ModulePath(nullptr)).parent_path().wstring();
  CFileName name(L"own.dll");
  EXPECT_NE(name.GetSiblingModuleFileName(L"x.dll", nullptr), 0);
  EXPECT_EQ(name.GetCData(), directory + L"\\x.dll");
  EXPECT_NE(name.GetSiblingModuleFileName(nullptr, nullptr), 0);
  EXPECT_EQ(name.GetCData(), directory + L"\\");
  name = L"own.dll";
  EXPECT_NE(name.GetSiblingModuleFileName(name.c_str(), nullptr), 0);  // its own text
  EXPECT_EQ(name.GetCData(), directory + L"\\own.dll");
}

TEST(CFileName, AModuleThatIsNoneLeavesTheNameEmpty) {
  const auto noModule = reinterpret_cast<HMODULE>(static_cast<uintptr_t>(0x10000) * 7);
  CFileName name(L"before");
  EXPECT_EQ(name.GetModuleFileNameW(noModule), 0);
  EXPECT_EQ(name, L"");
  name = L"before";
  EXPECT_EQ(name.GetModuleFilePath(noModule), 0);
  EXPECT_EQ(name, L"");
  name = L"before";
  EXPECT_EQ(name.GetSiblingModuleFileName(L"x.dll", noModule), 0);
  EXPECT_EQ(name, L"");
}

TEST(CFileName, TheFullPathIsMadeFromTheCurrentDirectory) {
  const DirectoryGuard guard;
  std::filesystem::current_path(L"C:\\windows");
  CFileName name;
  EXPECT_NE(name.GetFullPathNameW(L"system32\\..\\a.b"), 0);
  EXPECT_EQ(name, L"C:\\windows\\a.b");
  name = L"x\\y";
  EXPECT_NE(name.GetFullPathNameW(name.c_str()), 0);
  EXPECT_EQ(name, L"C:\\windows\\x\\y");
}

TEST(CFileName, AFullPathBeyond259UnitsIsAFailureAndNotCut) {
  CFileName name;
  const std::wstring fits = L"C:\\" + std::wstring(256, L'a');
  EXPECT_NE(name.GetFullPathNameW(fits.c_str()), 0);
  EXPECT_EQ(name.GetCData(), fits);
  EXPECT_EQ(name.GetFullPathNameW((fits + L"a").c_str()), 0);
  EXPECT_EQ(name, L"");
  name = L"before";
  EXPECT_EQ(name.GetFullPathNameW(L""), 0);
  EXPECT_EQ(name, L"");
}

}  // namespace
}  // namespace Cmm
