#include "tools/host_console/Records.h"

#include <gtest/gtest.h>
#include <cwchar>

namespace velm_host {
namespace {

TEST(RecordsTest, AreReadableOrJson) {
  SdkAudioInfo info{};
  info.code = -1;
  info.audioCmd = 5;
  std::wcscpy(info.deviceName, L"H \"\u00E9");
  EXPECT_EQ(
      ToReadable(Describe(info)),
      "<- SetAudioCallBack: success=false code=-1 audioCmd=5 deviceName=\"H \\\"\xC3\xA9\" deviceGUID=\"\" "
      "resultInfo=\"\"");
  EXPECT_EQ(
      ToJsonLine(Describe(info)),
      "{\"event\":\"record\",\"callback\":\"SetAudioCallBack\",\"type\":\"SdkAudioInfo\",\"success\":false,"
      "\"code\":-1,\"audioCmd\":5,\"deviceName\":\"H "
      "\\\"\xC3\xA9\",\"deviceGUID\":\"\",\"resultInfo\":\"\"}");
}

TEST(RecordsTest, FieldsStandInTheOrderOfTheRecord) {
  EXPECT_EQ(
      ToReadable(Describe(SdkPresenceInfo{})),
      R"(<- SetIMPresenceCallBack: success=false code=0 status=0 statusV2=0 resultInfo="" extraReason=0)");
  EXPECT_EQ(ToReadable(Describe(SdkStatusInfo{}, "SetCameraCallBack")),
            R"(<- SetCameraCallBack: success=false code=0 status=0 resultInfo="")");
  EXPECT_EQ(
      ToReadable(Describe(SdkConfAudioInfo{})),
      R"(<- SetConfAudioCallBack: success=false code=0 status=0 isInComputerAudio=false resultInfo="")");
  EXPECT_EQ(
      ToReadable(Describe(SdkConfEventInfo{})),
      R"(<- SetConfEventCallBack: success=false code=0 event=0 resultInfo="" meetingId="" activeMeetingsCount=0 meetingType=0)");
  EXPECT_EQ(ToReadable(Describe(SdkPTEventInfo{})),
            R"(<- SetPTEventCallBack: success=false code=0 event=0 resultInfo="")");
  EXPECT_EQ(ToReadable(Describe(SdkConfDeviceInfo{})),
            R"(<- SetConfDeviceCallBack: success=false code=0 status=0 deviceType=0 meetingId="")");
  EXPECT_EQ(ToReadable(Describe(SdkUIControlInfo{})),
            "<- SetUIControlStatusCallBack: success=false code=0 controlType=0 status=0");
  EXPECT_EQ(ToReadable(Describe(nullptr, nullptr)), "<- SetCallBackFunc: rawJson=null");
  EXPECT_EQ(ToReadable(DescribeRaw(L"{}")), R"(<- InitVelm3rdSdkChannel: rawJson="{}")");
}

}  // namespace
}  // namespace velm_host
