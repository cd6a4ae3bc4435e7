#include "host/ProductPathHelper.h"

#include <shlobj.h>
#include <windows.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "tests/support/ComScope.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/ShellLinkFile.h"
#include "tools/fake_product/FakeProduct.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using velm_test::ScratchDirectory;
using velm_tools::FakeProduct;

std::vector<std::string> Paths(const std::vector<Cmm::ProductRecord>& list) {
  std::vector<std::string> paths;
  for (const Cmm::ProductRecord& record : list)
    paths.emplace_back(record.path);
  return paths;
}

// Folders of the test's own in place of the system's, which count what is asked of them and fail on
// demand. Each folder is the directory of its number under a scratch directory.
class OwnFolders {
 public:
  OwnFolders() { s_current = this; }
  OwnFolders(const OwnFolders&) = delete;
  OwnFolders& operator=(const OwnFolders&) = delete;
  ~OwnFolders() { s_current = nullptr; }

  const Cmm::FileSystemView& Table() const { return kTable; }
  fs::path Folder(int csidl) const { return scratch.MakeDirectory(L"folder" + std::to_wstring(csidl)); }
  fs::path Temp() const { return scratch.MakeDirectory(L"temp"); }
  fs::path Executable() const { return scratch.MakeDirectory(L"program") / "host.exe"; }

  ScratchDirectory scratch;
  std::set<int> failing;  // folder numbers, and the two below
  int calls = 0;          // for folders
  bool everyPathExists = false;
  std::vector<std::string> askedPaths;

  static constexpr int kTemp = -1;
  static constexpr int kExecutable = -2;

 private:
  static bool Give(int which, const fs::path& path, char* buffer) {
    ++s_current->calls;
    if (s_current->failing.contains(which)) return false;
    std::strcpy(buffer, path.string().c_str());
    return true;
  }
  static bool GiveWide(int which, const fs::path& path, wchar_t* buffer) {
    ++s_current->calls;
    if (s_current->failing.contains(which)) return false;
    std::wcscpy(buffer, path.c_str());
    return true;
  }

  static uint32_t Attributes(const char* path) {
    s_current->askedPaths.emplace_back(path);
    if (s_current->everyPathExists) return Cmm::FileSystemView::kDirectoryAttribute;
    return Cmm::FileSystemView::OfThisSystem().attributes(path);
  }

  static inline OwnFolders* s_current = nullptr;
  static constexpr Cmm::FileSystemView kTable{
      [](int csidl, char* path) { return Give(csidl, s_current->Folder(csidl), path); },
      [](int csidl, wchar_t* path) { return GiveWide(csidl, s_current->Folder(csidl), path); },
      [](char* path) { return Give(kTemp, s_current->Temp().string() + "\\", path); },
      [](char* path) { return Give(kExecutable, s_current->Executable(), path); },
      Attributes,
  };
};

class ProductPathHelper : public testing::Test {
 protected:
  std::string PathOf(int index, int expectedResult = Cmm::kProductPathOk) {
    char* path = const_cast<char*>("untouched");
    EXPECT_EQ(helper.GetProductPath(index, &path), expectedResult) << index;
    return path ? path : "(null)";
  }
  std::string Folder(int csidl) { return folders.Folder(csidl).string(); }

  velm_test::ComScope com;
  OwnFolders folders;
  Cmm::CProductPathHelper helper{folders.Table()};
  std::vector<Cmm::ProductRecord> list;
};

TEST_F(ProductPathHelper, TenBasesStandInTheirOrder) {
  EXPECT_EQ(PathOf(0), Folder(0x1A) + "\\Velm\\");
  EXPECT_EQ(PathOf(1), Folder(0x1C) + "\\Velm\\");
  EXPECT_EQ(PathOf(2), Folder(0x26) + "\\Velm\\");
  EXPECT_EQ(PathOf(3), folders.Temp().string() + "\\Velm\\");
  EXPECT_EQ(PathOf(4), Folder(0x20) + "\\Velm\\");
  EXPECT_EQ(PathOf(5), folders.Executable().parent_path().string() + "\\Velm\\");
  EXPECT_EQ(PathOf(6), Folder(0x2A) + "\\Velm\\");
  EXPECT_EQ(PathOf(7), Folder(0x26) + "\\VelmVDI\\");
  EXPECT_EQ(PathOf(8), Folder(0x2A) + "\\VelmVDI\\");
  EXPECT_EQ(PathOf(9), "VelmVDI\\");
}

TEST_F(ProductPathHelper, ConnectorHasAFolderNameOfItsOwn) {
  helper.kind = Cmm::kConnector;
  for (int index = 0; index < 7; ++index)
    EXPECT_THAT(PathOf(index), testing::EndsWith("\\SuiteBridge\\")) << index;
  for (int index = 7; index < 10; ++index)
    EXPECT_THAT(PathOf(index), testing::EndsWith("VelmVDI\\")) << index;
}

TEST_F(ProductPathHelper, EveryOtherKindHasTheClientsFolderName) {
  helper.kind = Cmm::kController;
  EXPECT_EQ(PathOf(0), Folder(0x1A) + "\\Velm\\");
  helper.kind = 77;
  EXPECT_EQ(PathOf(1), Folder(0x1C) + "\\Velm\\");
}

TEST_F(ProductPathHelper, IndexOutsideTheTableGives1) {
  EXPECT_EQ(PathOf(10, Cmm::kProductPathNoSuchIndex), "(null)");
  EXPECT_EQ(PathOf(-1, Cmm::kProductPathNoSuchIndex), "(null)");
  EXPECT_EQ(helper.GetProductPath(10, nullptr), Cmm::kProductPathNoSuchIndex);
  EXPECT_EQ(folders.calls, 0);
}

TEST_F(ProductPathHelper, NullPathPointerGives3) {
  EXPECT_EQ(helper.GetProductPath(0, nullptr), Cmm::kProductPathNotFormed);
}

TEST_F(ProductPathHelper, SecondCallGivesTheSamePointerWithoutAskingTheSystem) {
  for (int index = 0; index < 10; ++index) {
    char* first = nullptr;
    char* second = nullptr;
    EXPECT_EQ(helper.GetProductPath(index, &first), 0);
    const int calls = folders.calls;
    EXPECT_EQ(helper.GetProductPath(index, &second), 0);
    EXPECT_EQ(first, second) << index;
    EXPECT_EQ(folders.calls, calls) << index;
  }
}

TEST_F(ProductPathHelper, CachedPathKeepsTheKindItWasFormedFor) {
  EXPECT_EQ(PathOf(0), Folder(0x1A) + "\\Velm\\");
  helper.kind = Cmm::kConnector;
  EXPECT_EQ(PathOf(0), Folder(0x1A) + "\\Velm\\");
}

TEST_F(ProductPathHelper, FolderThatTheSystemCannotNameGives3AndIsAskedForAgain) {
  const int sources[] = {0x1A, 0x1C, 0x26, OwnFolders::kTemp, 0x20, OwnFolders::kExecutable,
                         0x2A, 0x26, 0x2A};
  for (int index = 0; index < 9; ++index) {
    folders.failing = {sources[index]};
    EXPECT_EQ(PathOf(index, Cmm::kProductPathNotFormed), "(null)");
    folders.failing.clear();
    EXPECT_NE(PathOf(index), "(null)");
  }
}

constexpr const char* kTargetTail = "\\Microsoft\\AppV\\Client\\42\\VelmVDI\\bin\\Velm.exe";

class AppVBase : public ProductPathHelper {
 protected:
  void LinkOnDesktop(const std::string& root) {
    velm_test::WriteShellLink(folders.Folder(CSIDL_DESKTOPDIRECTORY) / "a.lnk", root + kTargetTail);
  }
  void LinkOnCommonDesktop(const std::string& root) {
    velm_test::WriteShellLink(folders.Folder(CSIDL_COMMON_DESKTOPDIRECTORY) / "a.lnk", root + kTargetTail);
  }
  static std::string BaseUnder(const std::string& root) {
    return root + "\\Microsoft\\AppV\\Client\\42\\VelmVDI\\";
  }
};

TEST_F(AppVBase, ComesFromTheLinkOnTheUsersDesktop) {
  LinkOnDesktop("C:\\user");
  LinkOnCommonDesktop("C:\\common");
  EXPECT_EQ(PathOf(9), BaseUnder("C:\\user"));
}

TEST_F(AppVBase, ComesFromTheCommonDesktopWhenTheUsersHasNone) {
  LinkOnCommonDesktop("C:\\common");
  EXPECT_EQ(PathOf(9), BaseUnder("C:\\common"));
}

TEST_F(AppVBase, WithoutALinkTheBaseIsRelative) {
  EXPECT_EQ(PathOf(9), "VelmVDI\\");
}

TEST_F(AppVBase, UnknownDesktopAndNoLinkGives3) {
  folders.failing = {CSIDL_DESKTOPDIRECTORY};
  EXPECT_EQ(PathOf(9, Cmm::kProductPathNotFormed), "(null)");
  folders.failing = {CSIDL_COMMON_DESKTOPDIRECTORY};
  EXPECT_EQ(PathOf(9, Cmm::kProductPathNotFormed), "(null)");
}

TEST_F(AppVBase, UnknownDesktopDoesNotHideALinkOnTheOther) {
  folders.failing = {CSIDL_DESKTOPDIRECTORY};
  LinkOnCommonDesktop("C:\\common");
  EXPECT_EQ(PathOf(9), BaseUnder("C:\\common"));
}

TEST_F(AppVBase, UnknownCommonDesktopDoesNotHideALinkOnTheUsers) {
  folders.failing = {CSIDL_COMMON_DESKTOPDIRECTORY};
  LinkOnDesktop("C:\\user");
  EXPECT_EQ(PathOf(9), BaseUnder("C:\\user"));
}

TEST_F(AppVBase, IsCutAtTheFirstFolderOfThatName) {
  LinkOnDesktop("C:\\VelmVDI\\x");
  EXPECT_EQ(PathOf(9), "C:\\VelmVDI\\");
}

TEST_F(AppVBase, IsUtf8) {
  wchar_t letter = 0;  // what the ANSI byte 0xE9 of the link stands for on this machine
  ASSERT_EQ(MultiByteToWideChar(CP_ACP, 0, "\xE9", 1, &letter, 1), 1);
  char utf8[8] = {};
  WideCharToMultiByte(CP_UTF8, 0, &letter, 1, utf8, sizeof utf8, nullptr, nullptr);
  LinkOnDesktop("C:\\\xE9");
  EXPECT_EQ(PathOf(9), BaseUnder("C:\\" + std::string(utf8)));
}

TEST_F(AppVBase, LinkIsReadOnceForTheLifeOfTheHelper) {
  LinkOnDesktop("C:\\user");
  EXPECT_EQ(PathOf(9), BaseUnder("C:\\user"));
  LinkOnDesktop("C:\\elsewhere");
  EXPECT_EQ(PathOf(9), BaseUnder("C:\\user"));
}

class BinDirectories : public ProductPathHelper {
 protected:
  std::wstring Base() const { return folders.scratch.Path().wstring() + L"\\"; }
  std::string NarrowBase() const { return folders.scratch.Narrow() + "\\"; }
};

TEST_F(BinDirectories, NullBaseGives1) {
  EXPECT_EQ(helper.ScanBinDirs(nullptr, list), 1);
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(BinDirectories, ClientInBin03OnlyGivesOneRecordWithThatDirectory) {
  const FakeProduct client({.directory = Base() + L"bin_03"});
  EXPECT_EQ(helper.ScanBinDirs(NarrowBase().c_str(), list), 1);
  EXPECT_THAT(Paths(list), ElementsAre(NarrowBase() + "bin_03"));
}

TEST_F(BinDirectories, SevenAreTestedInTheirOrderAndNoOther) {
  std::vector<std::unique_ptr<FakeProduct>> clients;
  for (const wchar_t* name :
       {L"bin_06", L"bin_05", L"bin_04", L"bin_03", L"bin_02", L"bin_01", L"bin_00", L"bin", L"Bin2", L"x"})
    clients.push_back(
        std::make_unique<FakeProduct>(velm_tools::FakeProductOptions{.directory = Base() + name}));
  EXPECT_EQ(helper.ScanBinDirs(NarrowBase().c_str(), list), 1);
  std::vector<std::string> expected;
  for (const char* name : {"bin", "bin_00", "bin_01", "bin_02", "bin_03", "bin_04", "bin_05"})
    expected.push_back(NarrowBase() + name);
  EXPECT_THAT(Paths(list), ElementsAreArray(expected));
}

TEST_F(BinDirectories, KindOfTheHelperDecidesWhichFilesAreLookedFor) {
  const FakeProduct controller({.kind = Cmm::kController, .directory = Base() + L"bin"});
  EXPECT_EQ(helper.ScanBinDirs(NarrowBase().c_str(), list), 1);
  EXPECT_THAT(list, IsEmpty());
  helper.kind = Cmm::kController;
  EXPECT_EQ(helper.ScanBinDirs(NarrowBase().c_str(), list), 1);
  EXPECT_THAT(list, testing::SizeIs(1));
}

TEST_F(BinDirectories, OneWithTooLongAPathGives0AndTheOthersAreStillInTheList) {
  folders.everyPathExists = true;
  const std::string base = "C:\\" + std::string(251, 'd') + "\\";  // "bin" makes 258 characters, "bin_00" 261
  EXPECT_EQ(helper.ScanBinDirs(base.c_str(), list), 0);
  EXPECT_THAT(Paths(list), ElementsAre(base + "bin"));
  EXPECT_THAT(folders.askedPaths, testing::Contains(base + "bin_05"));
}

class ScanProductPaths : public ProductPathHelper {
 protected:
  void Install(const std::string& directory) {
    clients.push_back(std::make_unique<FakeProduct>(
        velm_tools::FakeProductOptions{.directory = fs::path(directory).wstring()}));
  }
  std::vector<std::unique_ptr<FakeProduct>> clients;
};

TEST_F(ScanProductPaths, NothingInstalledGives1AndAnEmptyList) {
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(ScanProductPaths, EveryPlaceIsReportedInIndexOrderAndWithinItInSubdirectoryOrder) {
  const std::string appv = folders.scratch.Narrow() + "\\Microsoft\\AppV\\Client\\42\\VelmVDI";
  velm_test::WriteShellLink(folders.Folder(CSIDL_DESKTOPDIRECTORY) / "a.lnk", appv + "\\bin\\Velm.exe");
  std::vector<std::string> expected{
      Folder(0x1A) + "\\Velm\\bin",
      Folder(0x1A) + "\\Velm\\bin_05",
      Folder(0x1C) + "\\Velm\\bin_00",
      Folder(0x26) + "\\Velm\\bin",
      folders.Temp().string() + "\\Velm\\bin_01",
      Folder(0x20) + "\\Velm\\bin_02",
      folders.Executable().parent_path().string() + "\\Velm\\bin",
      Folder(0x2A) + "\\Velm\\bin_03",
      Folder(0x26) + "\\VelmVDI\\bin_04",
      Folder(0x2A) + "\\VelmVDI\\bin",
      appv + "\\bin",
      appv + "\\bin_05",
  };
  for (auto directory = expected.rbegin(); directory != expected.rend(); ++directory)
    Install(*directory);
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  EXPECT_THAT(Paths(list), ElementsAreArray(expected));
}

TEST_F(ScanProductPaths, PlaceThatCannotBeFormedGives0AndTheOthersAreStillInTheList) {
  Install(Folder(0x1A) + "\\Velm\\bin");
  Install(Folder(0x2A) + "\\Velm\\bin");
  folders.failing = {0x1C, OwnFolders::kTemp, OwnFolders::kExecutable};
  EXPECT_EQ(helper.ScanProductPaths(list), 0);
  EXPECT_THAT(Paths(list), ElementsAre(Folder(0x1A) + "\\Velm\\bin", Folder(0x2A) + "\\Velm\\bin"));
}

TEST_F(ScanProductPaths, UnknownDesktopsGive0) {
  folders.failing = {CSIDL_COMMON_DESKTOPDIRECTORY};
  EXPECT_EQ(helper.ScanProductPaths(list), 0);
}

TEST_F(ScanProductPaths, RecordsAreAppendedToWhatTheListHolds) {
  Install(Folder(0x1A) + "\\Velm\\bin");
  list.resize(1);
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  EXPECT_THAT(list, testing::SizeIs(2));
}

TEST_F(ScanProductPaths, LooksAtSevenDirectoriesOfTenBasesAndNothingElse) {
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  EXPECT_THAT(folders.askedPaths, testing::SizeIs(70));
  EXPECT_EQ(std::set<std::string>(folders.askedPaths.begin(), folders.askedPaths.end()).size(), 70u);
}

TEST_F(ScanProductPaths, SecondWalkAsksTheSystemForNoFolder) {
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  const int calls = folders.calls;
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  EXPECT_EQ(folders.calls, calls);
}

TEST_F(ScanProductPaths, ProductsThatComeAndGoAreSeen) {
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  EXPECT_THAT(list, IsEmpty());
  Install(Folder(0x1A) + "\\Velm\\bin");
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  EXPECT_THAT(list, testing::SizeIs(1));
  clients.clear();
  list.clear();
  EXPECT_EQ(helper.ScanProductPaths(list), 1);
  EXPECT_THAT(list, IsEmpty());
}

// On the folders of this system.

class SystemBases : public testing::Test {
 protected:
  static std::string SpecialFolder(int csidl) {
    char path[MAX_PATH] = {};
    EXPECT_TRUE(SHGetSpecialFolderPathA(nullptr, path, csidl, TRUE));
    return path;
  }
  std::string PathOf(int index) {
    char* path = nullptr;
    EXPECT_EQ(helper.GetProductPath(index, &path), 0) << index;
    return path ? path : "(null)";
  }

  velm_test::ComScope com;
  Cmm::CProductPathHelper helper;
};

TEST_F(SystemBases, AreTheSystemsFolders) {
  EXPECT_EQ(PathOf(0), SpecialFolder(CSIDL_APPDATA) + "\\Velm\\");
  EXPECT_EQ(PathOf(1), SpecialFolder(CSIDL_LOCAL_APPDATA) + "\\Velm\\");
  EXPECT_EQ(PathOf(2), SpecialFolder(CSIDL_PROGRAM_FILES) + "\\Velm\\");
  EXPECT_EQ(PathOf(4), SpecialFolder(CSIDL_INTERNET_CACHE) + "\\Velm\\");
  EXPECT_EQ(PathOf(6), SpecialFolder(CSIDL_PROGRAM_FILESX86) + "\\Velm\\");
  EXPECT_EQ(PathOf(7), SpecialFolder(CSIDL_PROGRAM_FILES) + "\\VelmVDI\\");
  EXPECT_EQ(PathOf(8), SpecialFolder(CSIDL_PROGRAM_FILESX86) + "\\VelmVDI\\");
  char temp[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, temp);
  EXPECT_EQ(PathOf(3), std::string(temp) + "Velm\\");
  char program[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, program, MAX_PATH);
  EXPECT_EQ(PathOf(5), fs::path(program).parent_path().string() + "\\Velm\\");
}

TEST_F(SystemBases, MissingSpecialFolderIsCreated) {
  const fs::path folder = SpecialFolder(CSIDL_INTERNET_CACHE);
  const fs::path aside = folder.wstring() + L".aside";
  fs::rename(folder, aside);
  const std::string path = PathOf(4);
  EXPECT_TRUE(fs::is_directory(folder));
  EXPECT_FALSE(fs::exists(path));  // the product's own folder is not
  fs::remove_all(folder);
  fs::rename(aside, folder);
}

class TempDirectoryBase : public SystemBases {
 protected:
  void SetUp() override {
    GetEnvironmentVariableW(L"TMP", m_tmp, MAX_PATH);
    GetEnvironmentVariableW(L"TEMP", m_temp, MAX_PATH);
  }
  void TearDown() override { Set(m_tmp, m_temp); }
  static void Set(const wchar_t* tmp, const wchar_t* temp) {
    SetEnvironmentVariableW(L"TMP", tmp);
    SetEnvironmentVariableW(L"TEMP", temp);
  }

 private:
  wchar_t m_tmp[MAX_PATH] = {};
  wchar_t m_temp[MAX_PATH] = {};
};

TEST_F(TempDirectoryBase, HasNoBackslashDoubled) {
  Set(L"C:\\windows\\", L"C:\\windows\\");
  EXPECT_EQ(PathOf(3), "C:\\windows\\Velm\\");
}

TEST_F(TempDirectoryBase, LongerThanTheLimitOf259Gives3) {
  const std::wstring longPath = L"C:\\" + std::wstring(300, L'x');
  Set(longPath.c_str(), longPath.c_str());
  char* path = nullptr;
  EXPECT_EQ(helper.GetProductPath(3, &path), Cmm::kProductPathNotFormed);
  EXPECT_EQ(path, nullptr);
}

}  // namespace
