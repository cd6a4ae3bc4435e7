#include "sdk/SdkImplHelper.h"

#include <shlobj.h>
#include <windows.h>

#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "tests/sdk/LogCapture.h"
#include "tests/support/ComScope.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/ShellLinkFile.h"
#include "tools/fake_product/FakeProduct.h"
#include "tools/fake_product/VersionedImage.h"

namespace Velm3rdSDK {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Not;
using velm_test::ScratchDirectory;
using velm_tools::FakeProduct;
using Numbers = std::array<uint16_t, 4>;

constexpr const wchar_t* kOpenFailed =
    L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] RegOpenKeyEx velmmtg\\shell\\open\\command failed!";
constexpr const wchar_t* kQueryFailed = L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] RegQueryValueEx failed!";
constexpr const wchar_t* kNoMark =
    L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] posStart is Cmm::CString::npos!";
constexpr const wchar_t* kNoProgram =
    L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] posEnd is Cmm::CString::npos!";
constexpr const wchar_t* kResult0 = L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] bRet:0";
constexpr const wchar_t* kResult1 = L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] bRet:1";
constexpr const wchar_t* kServiceMode0 = L"[CSdkMsgChannel::RegGetClassRootKey] m_bServiceMode:0";
constexpr const wchar_t* kServiceMode1 = L"[CSdkMsgChannel::RegGetClassRootKey] m_bServiceMode:1";
constexpr const wchar_t* kNoToken =
    L"[CSdkMsgChannel::RegGetClassRootKey] OpenThreadToken failed! GetLastError: 1008";  // ERROR_NO_TOKEN
constexpr const wchar_t* kCannotFind = L"[CSdkImplHelper::GetVelmExeVersion] can not find velm client!";
constexpr const wchar_t* kRegisteredCheckFailed =
    L"[CSdkImplHelper::GetVelmExeVersion] CheckVelmProductInfo failed.";
constexpr const wchar_t* kScanFailed = L"[CSdkImplHelper::GetVelmExeVersion]  CheckVelmProductInfo failed.";

TEST(SdkImplHelperGlobal, IsZeroAtLoad) {
  EXPECT_EQ(g_sdkImplHelper.m_bServiceMode, 0u);
  EXPECT_EQ(g_sdkImplHelper.m_pathHelper, nullptr);
}

// ---- From a command to a directory ------------------------------------------------------------------

TEST(TextBehindQuotationMark, StartsBehindTheFirstMark) {
  EXPECT_EQ(TextBehindQuotationMark("\"C:\\a.exe\" \"%1\""), "C:\\a.exe\" \"%1\"");
  EXPECT_EQ(TextBehindQuotationMark("run \"a\""), "a\"");
  EXPECT_EQ(TextBehindQuotationMark("\""), "");
}

TEST(TextBehindQuotationMark, NoneWithoutAMark) {
  EXPECT_EQ(TextBehindQuotationMark("C:\\a.exe %1"), std::nullopt);
  EXPECT_EQ(TextBehindQuotationMark(""), std::nullopt);
}

TEST(ClientDirectory, IsWhatStandsBeforeTheProgramAndItsBackslash) {
  EXPECT_EQ(ClientDirectory("C:\\Velm\\bin\\Velm.exe\" x", L"C:\\Velm\\bin\\Velm.exe\" x"), "C:\\Velm\\bin");
  EXPECT_EQ(ClientDirectory("\\Velm.exe", L"\\Velm.exe"), "");
}

TEST(ClientDirectory, IsEmptyWhenNothingStandsBeforeTheProgram) {
  EXPECT_EQ(ClientDirectory("Velm.exe", L"Velm.exe"), "");
}

TEST(ClientDirectory, NoneWithoutTheProgramInItsOwnCase) {
  EXPECT_EQ(ClientDirectory("C:\\velm.exe", L"C:\\velm.exe"), std::nullopt);
  EXPECT_EQ(ClientDirectory("C:\\VELM.EXE", L"C:\\VELM.EXE"), std::nullopt);
  EXPECT_EQ(ClientDirectory("", L""), std::nullopt);
}

TEST(ClientDirectory, ComesOutShortByOneByteForEachCharacterOfTwoBytes) {
  // Two bytes of a double-byte code page, one unit in UTF-16.
  EXPECT_EQ(ClientDirectory("C:\\\x83\x41\\bin\\Velm.exe", L"C:\\\u30A2\\bin\\Velm.exe"), "C:\\\x83\x41\\bi");
  EXPECT_EQ(ClientDirectory("\x83\x41\x83\x41\\Velm.exe", L"\u30A2\u30A2\\Velm.exe"), "\x83\x41");
}

TEST(ClientDirectory, PositionBeyondTheNarrowTextGivesAllOfIt) {
  EXPECT_EQ(ClientDirectory("ab", L"abcdefgh\\Velm.exe"), "ab");
}

// ---- The registry -----------------------------------------------------------------------------------

// The default value of the command key, of any type and content, for as long as it lives.
class CommandValue {
 public:
  CommandValue() {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CLASSES_ROOT, "velmmtg", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND)
        << "a client is registered on this machine";
    EXPECT_EQ(RegCreateKeyA(HKEY_CLASSES_ROOT, "velmmtg\\shell\\open\\command", &m_key), ERROR_SUCCESS);
  }
  CommandValue(DWORD type, const std::string& bytes) : CommandValue() { Set(type, bytes); }
  explicit CommandValue(const std::string& text) : CommandValue() { Set(REG_SZ, text + '\0'); }
  CommandValue(const CommandValue&) = delete;
  CommandValue& operator=(const CommandValue&) = delete;
  ~CommandValue() {
    RegCloseKey(m_key);
    RegDeleteTreeA(HKEY_CLASSES_ROOT, "velmmtg");
  }

  void Set(DWORD type, const std::string& bytes) {
    EXPECT_EQ(RegSetValueExA(m_key, nullptr, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                             static_cast<DWORD>(bytes.size())),
              ERROR_SUCCESS);
  }
  // The registry adds a terminator that stands behind the counted units, so another unit stands there.
  void SetUnterminated(const std::wstring& text) {
    const std::wstring data = text + L'X';
    EXPECT_EQ(RegSetValueExW(m_key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(data.data()),
                             static_cast<DWORD>(text.size() * sizeof(wchar_t))),
              ERROR_SUCCESS);
  }

 private:
  HKEY m_key = nullptr;
};

class InstallPath : public testing::Test {
 protected:
  int Get() { return helper.GetInstallPathViaVelmMtg(nullptr, buffer); }
  int GetFor(const std::string& command) {
    const CommandValue value(command);
    return Get();
  }

  CSdkImplHelper helper;
  char buffer[CSdkImplHelper::kInstallPathLimit] = "untouched";
  LogCapture log;
};

TEST_F(InstallPath, QuotedCommandWithArgumentsGivesTheDirectoryWithoutABackslash) {
  EXPECT_EQ(GetFor("\"C:\\Program Files\\Velm\\bin\\Velm.exe\" \"--url=%1\""), 1);
  EXPECT_STREQ(buffer, "C:\\Program Files\\Velm\\bin");
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kResult1));
}

TEST_F(InstallPath, AllLinesAreOfTheInfoLevel) {
  GetFor("x");
  for (const std::wstring& line : log.Lines())
    EXPECT_THAT(line, testing::HasSubstr(L" INFO: "));
}

TEST_F(InstallPath, MissingKeyGives0) {
  EXPECT_EQ(Get(), 0);
  EXPECT_STREQ(buffer, "untouched");
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kOpenFailed, kResult0));
}

TEST_F(InstallPath, MissingValueGives0) {
  const CommandValue noValue;
  EXPECT_EQ(Get(), 0);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kQueryFailed, kResult0));
}

TEST_F(InstallPath, ValueWithoutAQuotationMarkGives0) {
  EXPECT_EQ(GetFor("C:\\Velm\\bin\\Velm.exe %1"), 0);
  EXPECT_STREQ(buffer, "untouched");
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kNoMark, kResult0));
}

TEST_F(InstallPath, EmptyValueGives0) {
  EXPECT_EQ(GetFor(""), 0);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kNoMark, kResult0));
}

TEST_F(InstallPath, ProgramInAnotherCaseGives0) {
  EXPECT_EQ(GetFor("\"C:\\Velm\\bin\\velm.exe\" %1"), 0);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kNoProgram, kResult0));
}

TEST_F(InstallPath, NothingBehindTheMarkGives0) {
  EXPECT_EQ(GetFor("Velm.exe \""), 0);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kNoProgram, kResult0));
}

TEST_F(InstallPath, ProgramWithoutADirectoryGivesAnEmptyOne) {
  EXPECT_EQ(GetFor("\"Velm.exe\" %1"), 1);
  EXPECT_STREQ(buffer, "");
}

TEST_F(InstallPath, SecondQuotationMarkDoesNotEndTheSearchForTheProgram) {
  EXPECT_EQ(GetFor("\"C:\\start.exe\" \"C:\\Velm\\bin\\Velm.exe\""), 1);
  EXPECT_STREQ(buffer, "C:\\start.exe\" \"C:\\Velm\\bin");
}

TEST_F(InstallPath, FirstPlaceThatReadsLikeTheProgramCounts) {
  EXPECT_EQ(GetFor("\"C:\\Velm.exe.old\\bin\\Velm.exe\""), 1);
  EXPECT_STREQ(buffer, "C:");
}

TEST_F(InstallPath, AnsiCharactersComeThrough) {
  EXPECT_EQ(GetFor("\"C:\\V\xE9lm\\Velm.exe\""), 1);
  EXPECT_STREQ(buffer, "C:\\V\xE9lm");
}

TEST_F(InstallPath, ExpandableValueIsNotExpanded) {
  const CommandValue value(REG_EXPAND_SZ, std::string("\"%APPDATA%\\Velm\\bin\\Velm.exe\"") + '\0');
  EXPECT_EQ(Get(), 1);
  EXPECT_STREQ(buffer, "%APPDATA%\\Velm\\bin");
}

TEST_F(InstallPath, FirstTextOfAMultipleValueCounts) {
  const std::string texts("\"C:\\one\\Velm.exe\"\0\"C:\\two\\Velm.exe\"\0\0", 37);
  const CommandValue value(REG_MULTI_SZ, texts);
  EXPECT_EQ(Get(), 1);
  EXPECT_STREQ(buffer, "C:\\one");
}

TEST_F(InstallPath, TypeOfTheValueIsNotLookedAt) {
  const CommandValue binary(REG_BINARY, std::string("\"C:\\Velm\\Velm.exe\"") + '\0');
  EXPECT_EQ(Get(), 1);
  EXPECT_STREQ(buffer, "C:\\Velm");
}

TEST_F(InstallPath, NumberReadsAsTextWithoutAMark) {
  const CommandValue number(REG_DWORD, std::string("\x01\x02\x03\x04", 4));
  EXPECT_EQ(Get(), 0);
  EXPECT_THAT(log.Texts(), Contains(kNoMark));
}

TEST_F(InstallPath, ValueWithoutATerminatorIsReadToItsEnd) {
  CommandValue value;
  value.SetUnterminated(L"\"C:\\Velm\\bin\\Velm.exe");
  EXPECT_EQ(Get(), 1);
  EXPECT_STREQ(buffer, "C:\\Velm\\bin");

  value.Set(REG_BINARY, "\"C:\\Velm\\bin\\Velm.exe");
  EXPECT_EQ(Get(), 1);
  EXPECT_STREQ(buffer, "C:\\Velm\\bin");
}

TEST_F(InstallPath, ValueOf1024BytesIsReadAndALongerOneIsNot) {
  const std::string tail = "\\Velm.exe";
  const std::string directory = "C:\\" + std::string(1024 - 1 - 3 - tail.size(), 'd');
  const std::string command = '"' + directory + tail;
  ASSERT_EQ(command.size(), 1024u);

  CommandValue value(REG_BINARY, command);  // without a terminator
  EXPECT_EQ(Get(), 1);
  EXPECT_EQ(buffer, directory);

  value.Set(REG_BINARY, command + '\0');
  log.Clear();
  EXPECT_EQ(Get(), 0);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kQueryFailed, kResult0));
}

TEST_F(InstallPath, TerminatorOfATextCountsAgainstTheLimitOf1024) {
  const std::string command = "\"C:\\Velm\\Velm.exe\" ";
  CommandValue value(command + std::string(1023 - command.size(), 'a'));
  EXPECT_EQ(Get(), 1);
  value.Set(REG_SZ, command + std::string(1024 - command.size(), 'a') + '\0');
  EXPECT_EQ(Get(), 0);
}

TEST_F(InstallPath, NullBufferGives0) {
  const CommandValue value("\"C:\\Velm\\Velm.exe\"");
  EXPECT_EQ(helper.GetInstallPathViaVelmMtg(nullptr, nullptr), 0);
  EXPECT_THAT(log.Texts(), ElementsAre(kResult0));
}

// Handle values are used again as soon as they are free: one that was left open moves the next one on.
HANDLE NextHandle() {
  const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  CloseHandle(event);
  return event;
}

TEST_F(InstallPath, KeepsNoHandle) {
  const CommandValue value("\"C:\\Velm\\Velm.exe\"");
  helper.m_bServiceMode = 1;
  ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
  Get();
  const HANDLE before = NextHandle();
  for (int i = 0; i < 20; ++i)
    Get();
  const HANDLE after = NextHandle();
  RevertToSelf();
  EXPECT_EQ(before, after);
}

TEST_F(InstallPath, ServiceModeWithoutAThreadTokenReadsTheMachineWideRoot) {
  helper.m_bServiceMode = 1;
  EXPECT_EQ(GetFor("\"C:\\Velm\\Velm.exe\""), 1);
  EXPECT_STREQ(buffer, "C:\\Velm");
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode1, kNoToken, kResult1));
}

TEST_F(InstallPath, ServiceModeWithAThreadTokenReadsTheUsersRoot) {
  helper.m_bServiceMode = 1;
  ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
  const int result = GetFor("\"C:\\Velm\\Velm.exe\"");  // the user's root shows the machine's classes too
  RevertToSelf();
  EXPECT_EQ(result, 1);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode1, kResult1));
}

TEST(RegGetClassRootKey, IsTheMachineWideRootInOrdinaryMode) {
  const LogCapture log;
  EXPECT_EQ(CSdkImplHelper().RegGetClassRootKey(), HKEY_CLASSES_ROOT);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0));
}

TEST(RegGetClassRootKey, IsNullInServiceModeWithoutAThreadToken) {
  const LogCapture log;
  CSdkImplHelper helper;
  helper.m_bServiceMode = 1;
  EXPECT_EQ(helper.RegGetClassRootKey(), nullptr);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode1, kNoToken));
}

TEST(RegGetClassRootKey, IsTheUsersRootInServiceModeWithAThreadToken) {
  const LogCapture log;
  CSdkImplHelper helper;
  helper.m_bServiceMode = 1;
  ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
  const HKEY root = helper.RegGetClassRootKey();
  RevertToSelf();
  EXPECT_NE(root, nullptr);  // Wine gives HKEY_CLASSES_ROOT itself here, Windows a key of its own
  EXPECT_EQ(RegCloseKey(root), ERROR_SUCCESS);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode1));
}

// ---- Is there a client? -----------------------------------------------------------------------------

// The system's folders with failures: a folder that cannot be named, or every path a product.
const Cmm::FileSystemView kUnnamedFolder = [] {
  Cmm::FileSystemView view = Cmm::FileSystemView::OfThisSystem();
  view.specialFolder = [](int csidl, char* path) {
    return csidl != CSIDL_INTERNET_CACHE && Cmm::FileSystemView::OfThisSystem().specialFolder(csidl, path);
  };
  return view;
}();

bool IsBelowC(const char* path) {
  return std::strncmp(path, "C:\\ddd", 6) == 0;
}

const Cmm::FileSystemView kEverythingBelowC = [] {
  Cmm::FileSystemView view = Cmm::FileSystemView::OfThisSystem();
  view.attributes = [](const char* path) {
    return IsBelowC(path) ? Cmm::FileSystemView::kDirectoryAttribute
                          : Cmm::FileSystemView::OfThisSystem().attributes(path);
  };
  return view;
}();

class Discovery : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(FakeProduct::FindForeignProduct(), std::nullopt);
    log.Clear();
  }

  int GetVersion() { return helper.GetVelmExeVersion(&read[0], &read[1], &read[2], &read[3]); }
  void UseView(const Cmm::FileSystemView& view) {
    helper.m_pathHelper = std::make_unique<Cmm::CProductPathHelper>(view);
  }

  velm_test::ComScope com;
  CSdkImplHelper helper;
  LogCapture log;
  Numbers read{91, 92, 93, 94};
  const Numbers untouched = read;
};

TEST_F(Discovery, NoClientOnTheMachine) {
  EXPECT_FALSE(helper.HasVelmClient());
}

TEST_F(Discovery, ClientInTheUsersProfileIsFound) {
  const FakeProduct client({});
  EXPECT_TRUE(helper.HasVelmClient());
}

TEST_F(Discovery, EveryCallLooksAgain) {
  EXPECT_FALSE(helper.HasVelmClient());
  {
    const FakeProduct client({});
    EXPECT_TRUE(helper.HasVelmClient());
  }
  EXPECT_FALSE(helper.HasVelmClient());
}

TEST_F(Discovery, ClientInAnyOfTheBasesOfThisSystemIsFound) {
  Cmm::CProductPathHelper paths;
  for (int index = 0; index < 9; ++index) {
    char* base = nullptr;
    ASSERT_EQ(paths.GetProductPath(index, &base), 0);
    const std::string directory = std::string(base) + "bin";
    const FakeProduct client({.directory = std::wstring(directory.begin(), directory.end())});
    EXPECT_TRUE(helper.HasVelmClient()) << directory;
  }
  EXPECT_FALSE(helper.HasVelmClient());
}

TEST_F(Discovery, ClientOfAVirtualisedPackageIsFoundByTheLinkOnTheDesktop) {
  const ScratchDirectory scratch;
  const std::wstring directory = scratch.Path().wstring() + L"\\Microsoft\\AppV\\Client\\42\\VelmVDI\\bin";
  const FakeProduct client({.directory = directory});
  wchar_t desktop[MAX_PATH] = {};
  ASSERT_TRUE(SHGetSpecialFolderPathW(nullptr, desktop, CSIDL_DESKTOPDIRECTORY, TRUE));
  const std::wstring link = std::wstring(desktop) + L"\\velm_test_client.lnk";
  velm_test::WriteShellLink(link, std::string(directory.begin(), directory.end()) + "\\Velm.exe");
  EXPECT_TRUE(helper.HasVelmClient());
  DeleteFileW(link.c_str());
}

TEST_F(Discovery, RegistrationAloneIsNoClient) {
  const ScratchDirectory scratch;
  const FakeProduct client({.directory = scratch.Path().wstring(), .registerCommand = true});
  EXPECT_FALSE(helper.HasVelmClient());
}

TEST_F(Discovery, PlaceThatCannotBeExaminedHidesTheClientThatAnotherPlaceHolds) {
  const FakeProduct client({});
  UseView(kUnnamedFolder);
  EXPECT_FALSE(helper.HasVelmClient());
}

TEST_F(Discovery, ReleasedPathHelperIsMadeAnew) {
  EXPECT_EQ(helper.m_pathHelper, nullptr);
  helper.HasVelmClient();
  const Cmm::CProductPathHelper* made = helper.m_pathHelper.get();
  EXPECT_NE(made, nullptr);
  helper.HasVelmClient();
  EXPECT_EQ(helper.m_pathHelper.get(), made);
  helper.ReleasePathHelper();
  EXPECT_EQ(helper.m_pathHelper, nullptr);
  helper.ReleasePathHelper();
  GetVersion();
  EXPECT_NE(helper.m_pathHelper, nullptr);
}

// ---- Which version? ---------------------------------------------------------------------------------

TEST_F(Discovery, VersionOfTheRegisteredClientIsRead) {
  const FakeProduct client({.version = {5, 8, 6, 1271}, .registerCommand = true});
  EXPECT_EQ(GetVersion(), 0);
  EXPECT_EQ(read, (Numbers{5, 8, 6, 1271}));
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kResult1));
}

TEST_F(Discovery, ThreePartVersionIsReportedInFour) {
  const FakeProduct client({.version = {5, 1200, 3, 4}, .registerCommand = true});
  GetVersion();
  EXPECT_EQ(read, (Numbers{5, 0, 1200, 3}));
}

TEST_F(Discovery, RegisteredClientOutsideTheBasesHasAVersionAllTheSame) {
  const ScratchDirectory scratch;
  const FakeProduct client(
      {.version = {6, 0, 1, 2}, .directory = scratch.Path().wstring() + L"\\app", .registerCommand = true});
  GetVersion();
  EXPECT_EQ(read, (Numbers{6, 0, 1, 2}));
}

TEST_F(Discovery, NoClientLeavesTheValuesAndIsAnErrorOfTheLog) {
  EXPECT_EQ(GetVersion(), 0);
  EXPECT_EQ(read, untouched);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kOpenFailed, kResult0, kCannotFind));
  EXPECT_THAT(log.Lines().back(), testing::HasSubstr(L" ERROR: "));
}

TEST_F(Discovery, ClientThatOnlyTheBasesHoldHasNoReadableVersion) {
  const FakeProduct client({.version = {5, 8, 0, 0}});
  EXPECT_EQ(GetVersion(), 0);
  EXPECT_EQ(read, untouched);
  EXPECT_THAT(log.Texts(), Contains(kOpenFailed));
  EXPECT_THAT(log.Texts(), Not(Contains(kCannotFind)));
  EXPECT_THAT(log.Texts().back(), testing::StartsWith(L"GetFileVersionInfoSizeA error "));
}

TEST_F(Discovery, VersionComesFromTheRegisteredDirectoryAlsoWhenAnotherHoldsTheClient) {
  // The registered directory lacks a file of the product; what is found is the client of the profile.
  const ScratchDirectory scratch;
  const std::vector<unsigned char> image = velm_tools::ImageOfVersion({4, 4, 4, 4});
  scratch.MakeFile(L"vVideoApp.dll", {reinterpret_cast<const char*>(image.data()), image.size()});
  const CommandValue registered('"' + scratch.Narrow() + "\\Velm.exe\"");
  const FakeProduct client({.version = {5, 8, 0, 0}});
  GetVersion();
  EXPECT_EQ(read, (Numbers{4, 4, 4, 4}));
}

TEST_F(Discovery, RegisteredDirectoryWithoutAClientIsNone) {
  const ScratchDirectory scratch;
  const std::vector<unsigned char> image = velm_tools::ImageOfVersion({4, 4, 4, 4});
  scratch.MakeFile(L"vVideoApp.dll", {reinterpret_cast<const char*>(image.data()), image.size()});
  const CommandValue registered('"' + scratch.Narrow() + "\\Velm.exe\"");
  GetVersion();
  EXPECT_EQ(read, untouched);
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kResult1, kCannotFind));
}

TEST_F(Discovery, RegisteredDirectoryThatIsTooLongIsToldInTheLog) {
  const CommandValue registered("\"C:\\ddd" + std::string(260, 'd') + "\\Velm.exe\"");
  UseView(kEverythingBelowC);
  GetVersion();
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kResult1, kRegisteredCheckFailed, kCannotFind));
}

TEST_F(Discovery, PlaceThatCannotBeExaminedIsToldInTheLogWithTwoBlanks) {
  UseView(kUnnamedFolder);
  GetVersion();
  EXPECT_THAT(log.Texts(), ElementsAre(kServiceMode0, kOpenFailed, kResult0, kScanFailed, kCannotFind));
}

TEST_F(Discovery, BasesAreNotWalkedWhenTheRegisteredDirectoryHoldsTheClient) {
  const FakeProduct client({.version = {5, 8, 0, 0}, .registerCommand = true});
  UseView(kUnnamedFolder);
  GetVersion();
  EXPECT_EQ(read, (Numbers{5, 8, 0, 0}));
  EXPECT_THAT(log.Texts(), Not(Contains(kScanFailed)));
}

TEST_F(Discovery, NullValuesReadNothing) {
  const FakeProduct client({.version = {5, 8, 0, 0}, .registerCommand = true});
  EXPECT_EQ(helper.GetVelmExeVersion(nullptr, &read[1], &read[2], &read[3]), 0);
  EXPECT_EQ(helper.GetVelmExeVersion(nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(read, untouched);
}

}  // namespace
}  // namespace Velm3rdSDK
