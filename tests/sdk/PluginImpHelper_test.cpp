#include "sdk/PluginImpHelper.h"

#include <windows.h>

#include <array>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "tests/sdk/LogCapture.h"
#include "tests/support/DebugOutput.h"
#include "tests/support/ScratchDirectory.h"
#include "tools/fake_product/VersionedImage.h"

namespace Velm3rdSDK {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Numbers = std::array<uint16_t, 4>;

TEST(FromThreePartScheme, MinorAbove1000MovesTheLaterPartsOn) {
  const auto convert = [](Cmm::FileVersion version) {
    return CPluginImpHelper::FromThreePartScheme(version);
  };
  EXPECT_EQ(convert({5, 1200, 3, 4}), (Cmm::FileVersion{5, 0, 1200, 3}));
  EXPECT_EQ(convert({5, 1001, 3, 4}), (Cmm::FileVersion{5, 0, 1001, 3}));
  EXPECT_EQ(convert({5, 65535, 65535, 4}), (Cmm::FileVersion{5, 0, 65535, 65535}));
}

TEST(FromThreePartScheme, MinorUpTo1000StaysAsItIs) {
  const auto convert = [](Cmm::FileVersion version) {
    return CPluginImpHelper::FromThreePartScheme(version);
  };
  EXPECT_EQ(convert({5, 1000, 3, 4}), (Cmm::FileVersion{5, 1000, 3, 4}));
  EXPECT_EQ(convert({5, 8, 2000, 3000}), (Cmm::FileVersion{5, 8, 2000, 3000}));
  EXPECT_EQ(convert({0, 0, 0, 0}), (Cmm::FileVersion{0, 0, 0, 0}));
}

class GetFileVersion : public testing::Test {
 protected:
  std::string MakeVersioned(std::wstring_view name, const Cmm::FileVersion& version) {
    const std::vector<unsigned char> image = velm_tools::ImageOfVersion(version);
    scratch.MakeFile(name, {reinterpret_cast<const char*>(image.data()), image.size()});
    return scratch.Narrow() + "\\";
  }
  void Read(const std::string& path) {
    CPluginImpHelper::GetFileVersion(path.c_str(), &read[0], &read[1], &read[2], &read[3]);
  }

  velm_test::ScratchDirectory scratch;
  Numbers read{91, 92, 93, 94};
  const Numbers untouched = read;
  LogCapture log;
  velm_test::DebugOutput debug;
};

TEST_F(GetFileVersion, ReadsTheFourNumbersWithoutAWord) {
  Read(MakeVersioned(L"a.dll", {5, 8, 6, 1271}) + "a.dll");
  EXPECT_EQ(read, (Numbers{5, 8, 6, 1271}));
  EXPECT_THAT(log.Lines(), IsEmpty());
  EXPECT_THAT(debug.Texts(), IsEmpty());
}

TEST_F(GetFileVersion, ThreePartVersionIsReportedInFour) {
  Read(MakeVersioned(L"a.dll", {5, 1200, 3, 4}) + "a.dll");
  EXPECT_EQ(read, (Numbers{5, 0, 1200, 3}));
}

TEST_F(GetFileVersion, PathIsInTheAnsiCodePage) {
  wchar_t letter = 0;
  ASSERT_EQ(MultiByteToWideChar(CP_ACP, 0, "\xE9", 1, &letter, 1), 1);
  Read(MakeVersioned(std::wstring(1, letter) + L".dll", {1, 2, 3, 4}) + "\xE9.dll");
  EXPECT_EQ(read, (Numbers{1, 2, 3, 4}));
}

TEST_F(GetFileVersion, MissingFileLeavesTheValuesAndIsReported) {
  Read(scratch.Narrow() + "\\absent.dll");
  EXPECT_EQ(read, untouched);
  EXPECT_THAT(debug.Texts(), ElementsAre("File size is 0", "GetFileVersionInfoSizeA error 2"));
  EXPECT_THAT(log.Texts(), ElementsAre(L"GetFileVersionInfoSizeA error 2"));
  EXPECT_THAT(log.Lines(), ElementsAre(testing::HasSubstr(L" ERROR: GetFileVersionInfoSizeA")));
}

TEST_F(GetFileVersion, FileWithoutAVersionLeavesTheValuesAndIsReported) {
  Read(scratch.MakeFile(L"text.dll", "not a library").string());
  EXPECT_EQ(read, untouched);
  EXPECT_THAT(log.Texts(), ElementsAre(L"GetFileVersionInfoSizeA error 1812"));  // no resources in it
}

TEST_F(GetFileVersion, NullPointersReadNothingAndSayNothing) {
  const std::string path = MakeVersioned(L"a.dll", {1, 2, 3, 4}) + "a.dll";
  CPluginImpHelper::GetFileVersion(nullptr, &read[0], &read[1], &read[2], &read[3]);
  CPluginImpHelper::GetFileVersion(path.c_str(), nullptr, &read[1], &read[2], &read[3]);
  CPluginImpHelper::GetFileVersion(path.c_str(), &read[0], nullptr, &read[2], &read[3]);
  CPluginImpHelper::GetFileVersion(path.c_str(), &read[0], &read[1], nullptr, &read[3]);
  CPluginImpHelper::GetFileVersion(path.c_str(), &read[0], &read[1], &read[2], nullptr);
  EXPECT_EQ(read, untouched);
  EXPECT_THAT(log.Lines(), IsEmpty());
  EXPECT_THAT(debug.Texts(), IsEmpty());
}

}  // namespace
}  // namespace Velm3rdSDK
