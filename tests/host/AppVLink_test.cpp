#include "host/AppVLink.h"

#include <shlobj.h>
#include <windows.h>
#include <wrl/client.h>

#include <string>

#include "gmock/gmock.h"
#include "tests/support/ComScope.h"
#include "tests/support/DebugOutput.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/ShellLinkFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::ComScope;
using velm_test::DebugOutput;
using velm_test::ScratchDirectory;
using velm_test::WriteShellLink;

constexpr const char* kClientTarget =
    "C:\\ProgramData\\Microsoft\\AppV\\Client\\Integration\\42\\Root\\VelmVDI\\bin\\Velm.exe";
constexpr const char* kOtherTarget =
    "C:\\ProgramData\\Microsoft\\AppV\\Client\\Integration\\42\\Root\\Other\\bin\\Other.exe";
constexpr const char* kProfileTarget =
    "%LOCALAPPDATA%\\Microsoft\\AppV\\Client\\Integration\\42\\Root\\VelmVDI\\bin\\Velm.exe";

std::wstring Wide(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

std::wstring CurrentDirectory() {
  wchar_t path[1024] = {};
  GetCurrentDirectoryW(1024, path);
  return path;
}

std::wstring LocalAppData() {
  wchar_t path[MAX_PATH] = {};
  SHGetSpecialFolderPathW(nullptr, path, CSIDL_LOCAL_APPDATA, TRUE);
  return path;
}

TEST(AppVClientTarget, NeedsThePackageFolderAndTheClientsProgram) {
  EXPECT_TRUE(Cmm::IsAppVClientTarget(L"x\\Microsoft\\AppV\\Client\\y\\VelmVDI\\bin\\Velm.exe"));
  EXPECT_TRUE(Cmm::IsAppVClientTarget(L"\\VelmVDI\\bin\\Velm.exe\\Microsoft\\AppV\\Client\\"));
  EXPECT_TRUE(Cmm::IsAppVClientTarget(L"x\\Microsoft\\AppV\\Client\\VelmVDI\\bin\\Velm.exe"));
  EXPECT_FALSE(Cmm::IsAppVClientTarget(L"x\\Microsoft\\AppV\\Client\\y\\Velm\\bin\\Velm.exe"));
  EXPECT_FALSE(Cmm::IsAppVClientTarget(L"C:\\Program Files\\VelmVDI\\bin\\Velm.exe"));
  EXPECT_FALSE(Cmm::IsAppVClientTarget(L""));
}

TEST(AppVClientTarget, CaseCounts) {
  EXPECT_FALSE(Cmm::IsAppVClientTarget(L"x\\microsoft\\AppV\\Client\\y\\VelmVDI\\bin\\Velm.exe"));
  EXPECT_FALSE(Cmm::IsAppVClientTarget(L"x\\Microsoft\\AppV\\Client\\y\\VelmVDI\\bin\\velm.exe"));
}

TEST(ExpandLocalAppData, ReplacesTheVariableWhereverItStands) {
  EXPECT_EQ(Cmm::ExpandLocalAppData(L"%LOCALAPPDATA%\\x", L"C:\\Local"), L"C:\\Local\\x");
  EXPECT_EQ(Cmm::ExpandLocalAppData(L"a%LOCALAPPDATA%b%LOCALAPPDATA%", L"-"), L"a-b-");
  EXPECT_EQ(Cmm::ExpandLocalAppData(L"C:\\x", L"C:\\Local"), L"C:\\x");
  EXPECT_EQ(Cmm::ExpandLocalAppData(L"%localappdata%\\x", L"C:\\Local"), L"%localappdata%\\x");
  EXPECT_EQ(Cmm::ExpandLocalAppData(L"", L"C:\\Local"), L"");
}

TEST(ExpandLocalAppData, DoesNotExpandWhatItPutIn) {
  EXPECT_EQ(Cmm::ExpandLocalAppData(L"%LOCALAPPDATA%", L"%LOCALAPPDATA%\\x"), L"%LOCALAPPDATA%\\x");
}

TEST(CutBehindVdiParent, KeepsTheBackslash) {
  EXPECT_EQ(Cmm::CutBehindVdiParent("C:\\Root\\VelmVDI\\bin\\Velm.exe"), "C:\\Root\\");
  EXPECT_EQ(Cmm::CutBehindVdiParent("C:\\VelmVDI\\Root\\VelmVDI\\bin"), "C:\\");
  EXPECT_EQ(Cmm::CutBehindVdiParent("\\VelmVDI"), "\\");
}

TEST(CutBehindVdiParent, WithoutTheFolderEverythingStays) {
  EXPECT_EQ(Cmm::CutBehindVdiParent("C:\\Root\\velmvdi\\bin"), "C:\\Root\\velmvdi\\bin");
  EXPECT_EQ(Cmm::CutBehindVdiParent("VelmVDI\\bin"), "VelmVDI\\bin");
  EXPECT_EQ(Cmm::CutBehindVdiParent(""), "");
}

class ResolveAppVLink : public testing::Test {
 protected:
  bool Resolve(const std::filesystem::path& link) { return Cmm::ResolveAppVLink(link.c_str(), target); }
  bool ResolveLinkTo(std::string_view to) {
    WriteShellLink(scratch.Path() / "a.lnk", to);
    return Resolve(scratch.Path() / "a.lnk");
  }

  ComScope com;
  ScratchDirectory scratch;
  wchar_t target[Cmm::kAppVTargetLimit] = L"untouched";
};

TEST_F(ResolveAppVLink, LinkToTheClientOfAPackageGivesItsTarget) {
  EXPECT_TRUE(ResolveLinkTo(kClientTarget));
  EXPECT_EQ(target, Wide(kClientTarget));
}

TEST_F(ResolveAppVLink, LinkThatTheShellItselfSavedIsRead) {
  const std::filesystem::path program =
      scratch.MakeFile(L"Microsoft\\AppV\\Client\\42\\VelmVDI\\bin\\Velm.exe");
  const std::filesystem::path file = scratch.Path() / "saved.lnk";
  Microsoft::WRL::ComPtr<IShellLinkW> link;
  Microsoft::WRL::ComPtr<IPersistFile> persist;
  ASSERT_EQ(
      CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(link.GetAddressOf())),
      S_OK);
  ASSERT_EQ(link->SetPath(program.c_str()), S_OK);
  ASSERT_EQ(link.As(&persist), S_OK);
  ASSERT_EQ(persist->Save(file.c_str(), TRUE), S_OK);

  EXPECT_TRUE(Resolve(file));
  EXPECT_EQ(target, program.wstring());
}

TEST_F(ResolveAppVLink, LocalAppDataVariableIsExpanded) {
  EXPECT_TRUE(ResolveLinkTo(kProfileTarget));
  EXPECT_EQ(target,
            LocalAppData() + L"\\Microsoft\\AppV\\Client\\Integration\\42\\Root\\VelmVDI\\bin\\Velm.exe");
}

TEST_F(ResolveAppVLink, LinkToAnotherProgramOfAPackageIsRefusedAndTheTargetLeftAlone) {
  EXPECT_FALSE(ResolveLinkTo(kOtherTarget));
  EXPECT_STREQ(target, L"untouched");
}

TEST_F(ResolveAppVLink, LinkToTheClientOutsideAPackageIsRefused) {
  EXPECT_FALSE(ResolveLinkTo("C:\\Program Files\\VelmVDI\\bin\\Velm.exe"));
}

TEST_F(ResolveAppVLink, LinkWithoutATargetIsRefused) {
  velm_test::WriteShellLinkWithoutTarget(scratch.Path() / "a.lnk");
  EXPECT_FALSE(Resolve(scratch.Path() / "a.lnk"));
}

TEST_F(ResolveAppVLink, MissingEmptyAndBrokenFilesAreRefused) {
  EXPECT_FALSE(Resolve(scratch.Path() / "absent.lnk"));
  EXPECT_FALSE(Resolve(scratch.MakeFile(L"empty.lnk", "")));
  EXPECT_FALSE(Resolve(scratch.MakeFile(L"text.lnk", "this is no shell link at all")));
  EXPECT_FALSE(Resolve(scratch.MakeDirectory(L"directory.lnk")));
  EXPECT_STREQ(target, L"untouched");
}

TEST_F(ResolveAppVLink, NullPointersAreRefusedWithoutAWord) {
  const DebugOutput debug;
  EXPECT_FALSE(Cmm::ResolveAppVLink(nullptr, target));
  EXPECT_FALSE(Cmm::ResolveAppVLink(L"C:\\a.lnk", nullptr));
  EXPECT_THAT(debug.Texts(), IsEmpty());
}

TEST_F(ResolveAppVLink, TellsTheDebuggerTheLinkAndWhereItLeads) {
  const DebugOutput debug;
  ResolveLinkTo(kProfileTarget);
  EXPECT_THAT(debug.Texts(),
              ElementsAre((scratch.Path() / "a.lnk").string(), "real path " + std::string(kProfileTarget)));
}

TEST(ResolveAppVLinkWithoutCom, IsRefused) {
  const ScratchDirectory scratch;
  WriteShellLink(scratch.Path() / "a.lnk", kClientTarget);
  wchar_t target[Cmm::kAppVTargetLimit] = {};
  EXPECT_FALSE(Cmm::ResolveAppVLink((scratch.Path() / "a.lnk").c_str(), target));
}

class FindAppVLink : public testing::Test {
 protected:
  unsigned Find(const std::filesystem::path& directory) {
    return Cmm::FindAppVLink(directory.c_str(), link, target);
  }
  void Link(std::string_view name, std::string_view to) { WriteShellLink(scratch.Path() / name, to); }

  ComScope com;
  ScratchDirectory scratch;
  wchar_t link[Cmm::kAppVLinkPathLimit] = L"untouched";
  wchar_t target[Cmm::kAppVTargetLimit] = L"untouched";
  const std::wstring directoryBefore = CurrentDirectory();
};

TEST_F(FindAppVLink, GivesLinkAndTarget) {
  Link("client.lnk", kClientTarget);
  EXPECT_EQ(Find(scratch.Path()), 1u);
  EXPECT_EQ(link, scratch.Path().wstring() + L"\\client.lnk");
  EXPECT_EQ(target, Wide(kClientTarget));
  EXPECT_EQ(CurrentDirectory(), directoryBefore);
}

TEST_F(FindAppVLink, SkipsLinksThatDoNotLeadToTheClient) {
  Link("a.lnk", kOtherTarget);
  scratch.MakeFile(L"b.lnk", "broken");
  scratch.MakeDirectory(L"c.lnk");
  Link("d.lnk", kClientTarget);
  scratch.MakeFile(L"e.txt");
  EXPECT_EQ(Find(scratch.Path()), 1u);
  EXPECT_EQ(link, scratch.Path().wstring() + L"\\d.lnk");
}

TEST_F(FindAppVLink, FirstLinkThatLeadsToTheClientEndsTheSearch) {
  Link("one.lnk", kClientTarget);
  Link("two.lnk", kClientTarget);
  const DebugOutput debug;
  EXPECT_EQ(Find(scratch.Path()), 1u);
  EXPECT_THAT(debug.Texts(), testing::SizeIs(3));  // one link looked at: its path, where it leads, found
}

TEST_F(FindAppVLink, NothingFoundLeavesEverythingAsItWas) {
  Link("a.lnk", kOtherTarget);
  EXPECT_EQ(Find(scratch.Path()), 0u);
  EXPECT_STREQ(link, L"untouched");
  EXPECT_STREQ(target, L"untouched");
  EXPECT_EQ(CurrentDirectory(), directoryBefore);
}

TEST_F(FindAppVLink, DirectoryWithoutLinksGivesNothing) {
  scratch.MakeFile(L"a.txt");
  EXPECT_EQ(Find(scratch.Path()), 0u);
  EXPECT_EQ(CurrentDirectory(), directoryBefore);
}

TEST_F(FindAppVLink, LinksOfSubdirectoriesAreNotLookedAt) {
  WriteShellLink(scratch.MakeDirectory(L"sub") / "a.lnk", kClientTarget);
  EXPECT_EQ(Find(scratch.Path()), 0u);
}

TEST_F(FindAppVLink, MissingDirectoryIsToldToTheDebugger) {
  const DebugOutput debug;
  const std::filesystem::path absent = scratch.Path() / "absent";
  EXPECT_EQ(Find(absent), 0u);
  EXPECT_THAT(debug.Texts(), ElementsAre("failed to swtich to dir" + absent.string()));
  EXPECT_EQ(CurrentDirectory(), directoryBefore);
}

TEST_F(FindAppVLink, FindIsToldToTheDebugger) {
  Link("client.lnk", kClientTarget);
  const DebugOutput debug;
  Find(scratch.Path());
  const std::string path = (scratch.Path() / "client.lnk").string();
  EXPECT_THAT(debug.Texts(),
              ElementsAre(path, "real path " + std::string(kClientTarget), "found a velm appv lnk" + path));
}

TEST_F(FindAppVLink, NullPointersGiveNothing) {
  Link("client.lnk", kClientTarget);
  EXPECT_EQ(Cmm::FindAppVLink(nullptr, link, target), 0u);
  EXPECT_EQ(Cmm::FindAppVLink(scratch.Path().c_str(), nullptr, target), 0u);
  EXPECT_EQ(Cmm::FindAppVLink(scratch.Path().c_str(), link, nullptr), 0u);
}

TEST_F(FindAppVLink, LinkPathOf259CharactersFitsAndALongerOneIsCut) {
  // The link's own path takes the directory, a backslash and "a.lnk".
  const std::filesystem::path exact = velm_test::MakeDirectoryOfLength(scratch.Path(), 253);
  WriteShellLink(exact / "a.lnk", kClientTarget);
  ASSERT_EQ(Find(exact), 1u);
  EXPECT_EQ(link, (exact / "a.lnk").wstring());

  // Windows gives a link of such a path up; where the shell reads it, the buffer still holds its limit.
  const std::filesystem::path longer = velm_test::MakeDirectoryOfLength(scratch.Path(), 260);
  WriteShellLink(L"\\\\?\\" + (longer / "a.lnk").wstring(), kClientTarget);
  if (Find(longer) == 1u) {
    EXPECT_EQ(link, (longer / "a.lnk").wstring().substr(0, 259));
  }
  EXPECT_EQ(CurrentDirectory(), directoryBefore);
}

}  // namespace
