#include "tools/fake_product/FakeProduct.h"

#include <shlobj.h>
#include <windows.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "host/FileVersion.h"
#include "host/ProductInfo.h"
#include "sdk/SdkImplHelper.h"
#include "tests/support/ComScope.h"
#include "tests/support/ScratchDirectory.h"
#include "tools/fake_product/VersionedImage.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using velm_test::ScratchDirectory;
using velm_tools::FakeProduct;
using velm_tools::FakeProductError;
using velm_tools::FakeProductOptions;

std::set<std::string> FilesOf(const fs::path& directory) {
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory))
    names.insert(entry.path().filename().string());
  return names;
}

std::optional<std::wstring> RegisteredCommand(HKEY root, const std::wstring& path) {
  wchar_t text[512] = {};
  DWORD size = sizeof text;
  if (RegGetValueW(root, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS)
    return std::nullopt;
  return text;
}

bool KeyExists(HKEY root, const wchar_t* path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

constexpr const wchar_t* kCommandPath = L"velmmtg\\shell\\open\\command";

class FakeProductTest : public testing::Test {
 protected:
  std::wstring Directory() const { return scratch.Path().wstring() + L"\\some\\where\\bin"; }
  bool IsProduct(uint32_t kind, const std::wstring& directory) {
    std::vector<Cmm::ProductRecord> list;
    Cmm::CheckVelmProductInfo(Cmm::FileSystemView::OfThisSystem(), kind, fs::path(directory).string().c_str(),
                              "", list);
    return !list.empty();
  }
  static std::string ErrorOf(const FakeProductOptions& options) {
    try {
      const FakeProduct product(options);
      return "installed";
    } catch (const FakeProductError& error) {
      return error.what();
    }
  }

  velm_test::ComScope com;
  ScratchDirectory scratch;
};

TEST_F(FakeProductTest, DirectoryOfEveryKindPassesTheProductTest) {
  for (const Cmm::ProductKind kind : {Cmm::kMeetingClient, Cmm::kConnector, Cmm::kController}) {
    const FakeProduct product({.kind = kind, .directory = Directory()});
    EXPECT_TRUE(IsProduct(kind, Directory())) << kind;
  }
}

TEST_F(FakeProductTest, VersionIsTheOneAskedFor) {
  const FakeProduct product({.version = {5, 1200, 3, 65535}, .directory = Directory()});
  const std::string file = fs::path(Directory()).string() + "\\vVideoApp.dll";
  std::array<uint16_t, 4> read{};
  EXPECT_TRUE(Cmm::GetFileVersionSafe(file.c_str(), &read[0], &read[1], &read[2], &read[3]));
  EXPECT_EQ(read, (std::array<uint16_t, 4>{5, 1200, 3, 65535}));
}

TEST_F(FakeProductTest, VersionedFileIsALibraryThatLoads) {
  const FakeProduct product({.directory = Directory()});
  const HMODULE library = LoadLibraryW((Directory() + L"\\vVideoApp.dll").c_str());
  EXPECT_NE(library, nullptr);
  FreeLibrary(library);
}

TEST_F(FakeProductTest, EndOfTheObjectRemovesFilesAndTheDirectoriesItMade) {
  { const FakeProduct product({.directory = Directory()}); }
  EXPECT_THAT(FilesOf(scratch.Path()), IsEmpty());
}

TEST_F(FakeProductTest, DirectoriesOfBeforeStay) {
  scratch.MakeDirectory(L"some\\where");
  { const FakeProduct product({.directory = Directory()}); }
  EXPECT_TRUE(fs::is_directory(scratch.Path() / "some" / "where"));
  EXPECT_FALSE(fs::exists(Directory()));
}

TEST_F(FakeProductTest, FilesOfOthersAndTheirDirectoryStay) {
  FakeProduct product({.directory = Directory()});
  velm_test::WriteFile(fs::path(Directory()) / "mine.txt", "x");
  product.Remove();
  EXPECT_THAT(FilesOf(Directory()), UnorderedElementsAre("mine.txt"));
}

TEST_F(FakeProductTest, SecondRemovalDoesNothing) {
  FakeProduct product({.directory = Directory()});
  product.Remove();
  product.Remove();
  EXPECT_THAT(FilesOf(scratch.Path()), IsEmpty());
}

TEST_F(FakeProductTest, FileThatIsGoneAlreadyIsNoError) {
  FakeProduct product({.directory = Directory()});
  fs::remove(fs::path(Directory()) / "Velm.exe");
  EXPECT_NO_THROW(product.Remove());
  EXPECT_THAT(FilesOf(scratch.Path()), IsEmpty());
}

TEST_F(FakeProductTest, KeptProductIsRemovedByALaterProcess) {
  {
    FakeProduct product({.directory = Directory(), .registerCommand = true});
    product.Keep();
  }
  EXPECT_TRUE(IsProduct(Cmm::kMeetingClient, Directory()));
  EXPECT_TRUE(FakeProduct::RemoveFrom(Directory()));
  EXPECT_THAT(FilesOf(scratch.Path()), IsEmpty());
  EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L"velmmtg"));
  EXPECT_FALSE(FakeProduct::RemoveFrom(Directory()));
}

TEST_F(FakeProductTest, LeftoverOfAnEarlierProcessIsReplaced) {
  FakeProduct earlier({.version = {1, 1, 1, 1}, .directory = Directory(), .registerCommand = true});
  earlier.Keep();
  { const FakeProduct product({.kind = Cmm::kController, .directory = Directory()}); }
  EXPECT_THAT(FilesOf(Directory().substr(0, Directory().rfind(L"\\some"))), IsEmpty());
  EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L"velmmtg"));
}

TEST_F(FakeProductTest, ExistingFileIsNotReplacedAndEverythingElseIsTakenBack) {
  scratch.MakeFile(L"some\\where\\bin\\basekit.dll", "real");
  EXPECT_THAT(ErrorOf({.directory = Directory()}),
              AllOf(HasSubstr("cannot create "), HasSubstr("\\some\\where\\bin\\basekit.dll: "),
                    HasSubstr("(error 80)")));  // ERROR_FILE_EXISTS
  EXPECT_THAT(FilesOf(Directory()), UnorderedElementsAre("basekit.dll"));
  std::ifstream file(fs::path(Directory()) / "basekit.dll");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "real");
}

TEST_F(FakeProductTest, DirectoryThatCannotBeMadeIsAnErrorThatNamesIt) {
  scratch.MakeFile(L"some", "a file");
  EXPECT_THAT(ErrorOf({.directory = Directory()}), AllOf(HasSubstr("cannot create "), HasSubstr("\\some")));
  EXPECT_THAT(FilesOf(scratch.Path()), UnorderedElementsAre("some"));
}

TEST_F(FakeProductTest, FileInUseIsAnErrorAndTheRemovalCanBeRepeated) {
  FakeProduct product({.directory = Directory()});
  const std::wstring file = Directory() + L"\\basekit.dll";
  const HANDLE open = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(open, INVALID_HANDLE_VALUE);
  try {
    product.Remove();
    ADD_FAILURE() << "removed a file in use";
  } catch (const FakeProductError& error) {
    EXPECT_THAT(error.what(),
                AllOf(HasSubstr("cannot remove "), HasSubstr("basekit.dll: "), HasSubstr("(error 32)")));
  }
  CloseHandle(open);
  product.Remove();
  EXPECT_THAT(FilesOf(scratch.Path()), IsEmpty());
}

TEST_F(FakeProductTest, ForeignTextInPlaceOfTheJournalIsAnError) {
  scratch.MakeFile(L"some\\where\\bin\\fake_product.journal", "file important.txt\n");
  EXPECT_THAT(ErrorOf({.directory = Directory()}),
              AllOf(HasSubstr("not a journal of fake products: "), HasSubstr("fake_product.journal")));
  EXPECT_TRUE(fs::exists(fs::path(Directory()) / "fake_product.journal"));
}

TEST_F(FakeProductTest, JournalThatNamesAFileElsewhereIsAnError) {
  scratch.MakeFile(L"bin\\fake_product.journal", "velm fake product 1\nfile ..\\mine.txt\n");
  scratch.MakeFile(L"mine.txt");
  EXPECT_THROW(FakeProduct::RemoveFrom(scratch.Path().wstring() + L"\\bin"), FakeProductError);
  EXPECT_TRUE(fs::exists(scratch.Path() / "mine.txt"));
}

TEST_F(FakeProductTest, HalfALineAtTheEndOfTheJournalIsIgnored) {
  scratch.MakeFile(L"fake_product.journal", "velm fake product 1\nfile a.txt\nfile b.t");
  scratch.MakeFile(L"a.txt");
  scratch.MakeFile(L"b.t");
  EXPECT_TRUE(FakeProduct::RemoveFrom(scratch.Path().wstring()));
  EXPECT_THAT(FilesOf(scratch.Path()), UnorderedElementsAre("b.t"));
}

TEST_F(FakeProductTest, DirectoryNameOfAnyCharactersIsRemembered) {
  const std::wstring directory = scratch.Path().wstring() + L"\\\u4F1A\u8BAE \u00E9";
  { const FakeProduct product({.directory = directory}); }
  EXPECT_THAT(FilesOf(scratch.Path()), IsEmpty());
}

TEST_F(FakeProductTest, DefaultDirectoryIsTheFirstPlaceOfDiscovery) {
  char* base = nullptr;
  Cmm::CProductPathHelper helper;
  ASSERT_EQ(helper.GetProductPath(0, &base), 0);
  EXPECT_EQ(fs::path(FakeProduct::DefaultDirectory()).string(), std::string(base) + "bin");
  const FakeProduct product({});
  EXPECT_EQ(product.Directory(), FakeProduct::DefaultDirectory());
}

// ---- Registration -----------------------------------------------------------------------------------

TEST_F(FakeProductTest, WithoutBeingAskedNothingIsRegistered) {
  const FakeProduct product({.directory = Directory()});
  EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L"velmmtg"));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Software\\Classes\\velmmtg"));
}

TEST_F(FakeProductTest, RegistrationLeadsToTheProduct) {
  const FakeProduct product({.directory = Directory(), .registerCommand = true});
  EXPECT_EQ(RegisteredCommand(HKEY_CLASSES_ROOT, kCommandPath),
            L'"' + Directory() + L"\\Velm.exe\" \"--url=%1\"");
  char found[Velm3rdSDK::CSdkImplHelper::kInstallPathLimit] = {};
  EXPECT_EQ(Velm3rdSDK::CSdkImplHelper().GetInstallPathViaVelmMtg(nullptr, found), 1);
  EXPECT_EQ(found, fs::path(Directory()).string());
}

TEST_F(FakeProductTest, RegistrationGoesWithTheProduct) {
  { const FakeProduct product({.directory = Directory(), .registerCommand = true}); }
  EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L"velmmtg"));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Software\\Classes\\velmmtg"));
}

TEST_F(FakeProductTest, RegistrationOfAnotherIsAnErrorAndStays) {
  const std::wstring other = scratch.Path().wstring() + L"\\other";
  const FakeProduct first({.directory = other, .registerCommand = true});
  EXPECT_THAT(ErrorOf({.directory = Directory(), .registerCommand = true}),
              AllOf(HasSubstr("registered already"), HasSubstr("\\other\\Velm.exe")));
  EXPECT_THAT(FilesOf(scratch.Path()), UnorderedElementsAre("other"));
  EXPECT_EQ(RegisteredCommand(HKEY_CLASSES_ROOT, kCommandPath), L'"' + other + L"\\Velm.exe\" \"--url=%1\"");
}

TEST_F(FakeProductTest, CommandThatWasChangedSinceStays) {
  FakeProduct product({.directory = Directory(), .registerCommand = true});
  const wchar_t changed[] = L"changed";
  ASSERT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, kCommandPath, nullptr, REG_SZ, changed, sizeof changed),
            ERROR_SUCCESS);
  product.Remove();
  EXPECT_EQ(RegisteredCommand(HKEY_CLASSES_ROOT, kCommandPath), L"changed");
  RegDeleteTreeW(HKEY_CLASSES_ROOT, L"velmmtg");
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Software\\Classes\\velmmtg"));
}

TEST_F(FakeProductTest, KeysOfBeforeAndValuesOfOthersStay) {
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyW(HKEY_CLASSES_ROOT, L"velmmtg\\shell", &key), ERROR_SUCCESS);
  RegCloseKey(key);
  { const FakeProduct product({.directory = Directory(), .registerCommand = true}); }
  EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, L"velmmtg\\shell"));
  EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L"velmmtg\\shell\\open"));
  RegDeleteTreeW(HKEY_CLASSES_ROOT, L"velmmtg");
}

// ---- Foreign products -------------------------------------------------------------------------------

TEST_F(FakeProductTest, NothingForeignOnAnEmptyMachineNorBesideAFakeProduct) {
  EXPECT_EQ(FakeProduct::FindForeignProduct(), std::nullopt);
  const FakeProduct product({.registerCommand = true});
  EXPECT_EQ(FakeProduct::FindForeignProduct(), std::nullopt);
}

TEST_F(FakeProductTest, ProductWithoutAJournalInAPlaceOfDiscoveryIsForeign) {
  FakeProduct product({});
  const fs::path journal = fs::path(product.Directory()) / "fake_product.journal";
  fs::rename(journal, scratch.Path() / "aside");
  EXPECT_EQ(FakeProduct::FindForeignProduct(), product.Directory());
  fs::rename(scratch.Path() / "aside", journal);
}

TEST_F(FakeProductTest, RegistrationThatLeadsElsewhereIsForeign) {
  const wchar_t command[] = L"\"C:\\Real\\Velm.exe\" \"%1\"";
  ASSERT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, kCommandPath, nullptr, REG_SZ, command, sizeof command),
            ERROR_SUCCESS);
  EXPECT_EQ(FakeProduct::FindForeignProduct(), L"C:\\Real");
  RegDeleteTreeW(HKEY_CLASSES_ROOT, L"velmmtg");
}

// ---- The versioned image ----------------------------------------------------------------------------

TEST(VersionedImage, OnlyTheVersionDiffersFromTheEmbeddedBytes) {
  const std::span<const unsigned char> embedded = velm_tools::EmbeddedImage();
  const std::vector<unsigned char> image = velm_tools::ImageOfVersion({0x0102, 0x0304, 0x0506, 0x0708});
  ASSERT_EQ(image.size(), embedded.size());
  size_t first = 0;
  while (first < image.size() && image[first] == embedded[first])
    ++first;
  const std::vector<unsigned char> expected{4, 3, 2, 1, 8, 7, 6, 5, 4, 3, 2, 1, 8, 7, 6, 5};
  ASSERT_LE(first + expected.size(), image.size());
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), image.begin() + static_cast<ptrdiff_t>(first)));
  EXPECT_TRUE(std::equal(image.begin() + static_cast<ptrdiff_t>(first + expected.size()), image.end(),
                         embedded.begin() + static_cast<ptrdiff_t>(first + expected.size())));
}

TEST(VersionedImage, BytesWithoutAVersionAreNotPatched) {
  std::vector<unsigned char> none(100, 0x11);
  EXPECT_FALSE(velm_tools::PatchFileVersion(none, {1, 2, 3, 4}));
  std::vector<unsigned char> empty;
  EXPECT_FALSE(velm_tools::PatchFileVersion(empty, {1, 2, 3, 4}));
}

TEST(VersionedImage, VersionThatTheEndCutsOffIsNotPatched) {
  std::vector<unsigned char> cut{0xBD, 0x04, 0xEF, 0xFE, 0, 0, 1, 0, 9, 9, 9, 9};
  const std::vector<unsigned char> before = cut;
  EXPECT_FALSE(velm_tools::PatchFileVersion(cut, {1, 2, 3, 4}));
  EXPECT_EQ(cut, before);
}

}  // namespace
