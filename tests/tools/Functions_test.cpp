#include "tools/host_console/Functions.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "common/client/utility/src/UniqueHandle.h"

namespace velm_host {
namespace {

TEST(FunctionsTest, AreThe30ThatTheLibraryExports) {
  const Cmm::UniqueModule library(LoadLibraryW(L"velmsdk.dll"));
  ASSERT_TRUE(library);
  EXPECT_EQ(Functions().size(), 30U);
  for (const Function& function : Functions())
    EXPECT_NE(GetProcAddress(library.get(), std::string(function.name).c_str()), nullptr) << function.name;
}

TEST(FunctionsTest, EveryNameFindsItsOwnFunction) {
  for (const Function& function : Functions()) {
    EXPECT_EQ(FindFunction(function.name), &function);
    if (!function.shortName.empty()) {
      EXPECT_EQ(FindFunction(function.shortName), &function);
    }
  }
  EXPECT_EQ(FindFunction(""), nullptr);
  EXPECT_EQ(FindFunction("setaudiocmd"), nullptr);
  EXPECT_EQ(FamilySetters().size(), 10U);
}

TEST(FunctionsTest, ResultsAreWrittenByWhatTheyMean) {
  EXPECT_EQ(ResultText(Result::kCode, 0), "SDK_OK (0)");
  EXPECT_EQ(ResultText(Result::kCode, 2), "SDK_ERR_NO_CLIENT (2)");
  EXPECT_EQ(ResultText(Result::kCode, 5), "SDK_ERR_NO_CLIENT_WINDOW (5)");
  EXPECT_EQ(ResultText(Result::kCode, 6), "SDK_ERR_BAD_DATA (6)");
  EXPECT_EQ(ResultText(Result::kCode, 7), "SDK_ERR_CLIENT_TOO_OLD (7)");
  EXPECT_EQ(ResultText(Result::kCode, 999), "SDK_ERR_NO_CHANNEL (999)");
  EXPECT_EQ(ResultText(Result::kCode, 3), "3");
  EXPECT_EQ(ResultText(Result::kMask, 0x3fd), "0x3fd (1021)");
  EXPECT_EQ(ResultText(Result::kFlag, 1), "1 (yes)");
  EXPECT_EQ(ResultText(Result::kFlag, 0), "0 (no)");
}

}  // namespace
}  // namespace velm_host
