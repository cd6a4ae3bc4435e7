// The functions in every wrong order and with null pointers: each gives one of its stated results, and
// the process lives.

#include <functional>
#include <random>

#include "gmock/gmock.h"
#include "tests/contract/ContractFixture.h"

namespace velm_test {
namespace {

struct Call {
  const char* name;
  std::function<uint32_t(Sdk&)> run;
  std::vector<uint32_t> results;  // every one that it may give on a machine without a running client
};

std::vector<Call> AllCalls() {
  const std::vector<uint32_t> command = {0, 2, 5, 999};
  const std::vector<uint32_t> flag = {0, 1};
  return {
      {"TryRunningUnderServiceMode", [](Sdk& s) { return s.TryRunningUnderServiceMode(); }, {0, 2, 7}},
      {"GetVelmClientVersion(null)", [](Sdk& s) { return s.GetVelmClientVersion(nullptr); }, {999}},
      {"GetSDKAvailableFeatures", [](Sdk& s) { return s.GetSDKAvailableFeatures(); }, {0x3ff, 0x3fd}},
      {"RegisterMsg(0)", [](Sdk& s) { return s.RegisterMsg(0); }, {0}},
      {"RegisterMsg(all)", [](Sdk& s) { return s.RegisterMsg(0x3ff); }, flag},
      {"RegisterMsg(-1)", [](Sdk& s) { return s.RegisterMsg(-1); }, flag},
      {"RegisterMsg(unknown)", [](Sdk& s) { return s.RegisterMsg(INT64_MIN); }, {0}},
      {"RegisterMsg(camera)", [](Sdk& s) { return s.RegisterMsg(SDK_FEATURE_CAMERA); }, flag},
      {"InitVelm3rdSdkChannel(null)", [](Sdk& s) { return s.InitVelm3rdSdkChannel(nullptr); }, {0}},
      {"DestroySdkChannel", [](Sdk& s) { return s.DestroySdkChannel(); }, {0, 999}},
      {"SetCallBackFunc(null)", [](Sdk& s) { return s.SetCallBackFunc(nullptr); }, {0}},
      {"SetIMPresenceCallBack(null)", [](Sdk& s) { return s.SetIMPresenceCallBack(nullptr); }, {0}},
      {"SetAudioCallBack(null)", [](Sdk& s) { return s.SetAudioCallBack(nullptr); }, {0}},
      {"SetScreenShareCallBack(null)", [](Sdk& s) { return s.SetScreenShareCallBack(nullptr); }, {0}},
      {"SetConfChatCallBack(null)", [](Sdk& s) { return s.SetConfChatCallBack(nullptr); }, {0}},
      {"SetCameraCallBack(null)", [](Sdk& s) { return s.SetCameraCallBack(nullptr); }, {0}},
      {"SetConfAudioCallBack(null)", [](Sdk& s) { return s.SetConfAudioCallBack(nullptr); }, {0}},
      {"SetConfEventCallBack(null)", [](Sdk& s) { return s.SetConfEventCallBack(nullptr); }, {0}},
      {"SetPTEventCallBack(null)", [](Sdk& s) { return s.SetPTEventCallBack(nullptr); }, {0}},
      {"SetConfDeviceCallBack(null)", [](Sdk& s) { return s.SetConfDeviceCallBack(nullptr); }, {0}},
      {"SetUIControlStatusCallBack(null)", [](Sdk& s) { return s.SetUIControlStatusCallBack(nullptr); }, {0}},
      {"GetIMPresenceStatus", [](Sdk& s) { return s.GetIMPresenceStatus(); }, command},
      {"SetAudioCmd", [](Sdk& s) { return s.SetAudioCmd(INT32_MIN); }, command},
      {"SetScreenShareCmd", [](Sdk& s) { return s.SetScreenShareCmd(INT32_MAX); }, command},
      {"SetConfChatCmd", [](Sdk& s) { return s.SetConfChatCmd(0); }, command},
      {"SetCameraCmd", [](Sdk& s) { return s.SetCameraCmd(1); }, command},
      {"SetConfAudioCmd", [](Sdk& s) { return s.SetConfAudioCmd(1); }, command},
      {"SetConfEventCmd", [](Sdk& s) { return s.SetConfEventCmd(1); }, command},
      {"SetConfDeviceCmd", [](Sdk& s) { return s.SetConfDeviceCmd(1); }, command},
      {"GetUIControlStatusCmd", [](Sdk& s) { return s.GetUIControlStatusCmd(1); }, command},
      {"SendMsgToVelmClient(null)", [](Sdk& s) { return s.SendMsgToVelmClient(nullptr); }, {6, 999}},
      {"SendMsgToVelmClient(empty)", [](Sdk& s) { return s.SendMsgToVelmClient(L""); }, {2, 5, 6, 999}},
      {"SendMsgToVelmClient", [](Sdk& s) { return s.SendMsgToVelmClient(L"{}"); }, command},
      {"SetAudioDevice(nulls)", [](Sdk& s) { return s.SetAudioDevice(nullptr, nullptr, nullptr, 0); }, {0}},
      {"SetAudioDeviceV2(nulls)",
       [](Sdk& s) { return s.SetAudioDeviceV2(nullptr, nullptr, nullptr, nullptr, 0); },
       {0}},
      {"SetAudioDeviceWCHAR(long)",
       [](Sdk& s) {
         const std::wstring text(5000, L'x');
         return s.SetAudioDeviceWCHAR(text.c_str(), text.c_str(), text.c_str(), text.c_str(), UINT32_MAX);
       },
       {0}},
  };
}

class CallOrderContract : public ContractTest {};

TEST_F(CallOrderContract, EachFunctionAloneAsTheFirstCall) {
  for (const Call& call : AllCalls()) {
    m_sdk.reset();
    m_sdk = std::make_unique<Sdk>();
    EXPECT_THAT(call.results, testing::Contains(call.run(*m_sdk))) << call.name;
  }
}

TEST_F(CallOrderContract, EachFunctionBehindEachOther) {
  const auto calls = AllCalls();
  for (const Call& first : calls)
    for (const Call& second : calls) {
      m_sdk->DestroySdkChannel();
      EXPECT_THAT(first.results, testing::Contains(first.run(*m_sdk))) << first.name;
      EXPECT_THAT(second.results, testing::Contains(second.run(*m_sdk))) << first.name << ", " << second.name;
    }
}

TEST_F(CallOrderContract, RandomOrders) {
  constexpr unsigned kSeed = 4711;
  std::mt19937 random(kSeed);
  const auto calls = AllCalls();
  for (int i = 0; i < 3000; ++i) {
    const Call& call = calls[random() % calls.size()];
    EXPECT_THAT(call.results, testing::Contains(call.run(*m_sdk)))
        << call.name << ", seed " << kSeed << ", call " << i;
  }
}

TEST_F(CallOrderContract, RepeatedStartAndStopLeavesNoWindowBehind) {
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(m_sdk->SetCallBackFunc(nullptr), 0U);
    EXPECT_EQ(m_sdk->DestroySdkChannel(), 0U);
  }
  EXPECT_TRUE(WaitUntil([] { return Sdk::Window() == nullptr; }));
}

}  // namespace
}  // namespace velm_test
