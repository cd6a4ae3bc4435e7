// The built DLL beside a client in another process: commands, notifications, devices, and a client that
// comes and goes.

#include <windows.h>

#include <chrono>
#include <map>
#include <mutex>
#include <vector>

#include "gmock/gmock.h"
#include "tests/contract/ContractFixture.h"
#include "tests/contract/RawSinkInC.h"

namespace velm_test {
namespace {

using testing::HasSubstr;

// ---- The DLL

TEST(ContractDll, HasThe30FunctionsUnderTheirPlainNames) {
  const Sdk sdk;
  int found = 0;
#define VELM_COUNT(name)                 \
  EXPECT_NE(sdk.name, nullptr) << #name; \
  ++found;
  VELM_CONTROL_FUNCTIONS(VELM_COUNT)
#undef VELM_COUNT
  EXPECT_EQ(found, 30);
}

TEST(ContractDll, HasAVersionResource) {
  const Sdk sdk;
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeW(Sdk::kDll, &ignored);
  ASSERT_GT(size, 0U);
  std::vector<char> block(size);
  ASSERT_TRUE(GetFileVersionInfoW(Sdk::kDll, 0, size, block.data()));
  VS_FIXEDFILEINFO* info = nullptr;
  UINT length = 0;
  ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&info), &length));
  EXPECT_EQ(info->dwFileVersionMS >> 16, 1U);
  EXPECT_EQ(info->dwFileType, static_cast<DWORD>(VFT_DLL));
}

TEST(ContractDll, UnloadsAfterADestroyedChannel) {
  for (int i = 0; i < 10; ++i) {
    {
      Sdk sdk;
      EXPECT_EQ(sdk.SetCallBackFunc(nullptr), 0U);
      EXPECT_TRUE(Sdk::AwaitWindow());
    }
    EXPECT_EQ(GetModuleHandleW(Sdk::kDll), nullptr);
    EXPECT_EQ(Sdk::Window(), nullptr);
  }
}

TEST(ContractDll, UnloadsRightAfterAStart) {
  for (int i = 0; i < 20; ++i) {
    {
      Sdk sdk;
      sdk.SetCallBackFunc(nullptr);
    }
    EXPECT_EQ(GetModuleHandleW(Sdk::kDll), nullptr);
  }
}

// ---- Commands

class CommandContract : public ContractTest {};

std::string CommandText(int id, const std::string& data, const std::string& rest) {
  return "{\"commandId\":" + std::to_string(id) + ",\"from\":1,\"version\":\"1.0.0\",\"data\":" + data +
         rest + "}";
}

TEST_F(CommandContract, EveryCommandArrivesByteForByte) {
  StartClient({});
  m_sdk->GetSDKAvailableFeatures();
  const std::string noDevice = ",\"deviceName\":\"\"";
  const std::string noIdentity = noDevice + ",\"usbVid\":\"\",\"usbPid\":\"\",\"deviceGUID\":\"\"";

  EXPECT_EQ(m_sdk->GetIMPresenceStatus(), 0U);
  EXPECT_EQ(NextCommand(), CommandText(1, "{}", noDevice));
  EXPECT_EQ(m_sdk->SetAudioCmd(-2147483647 - 1), 0U);
  EXPECT_EQ(NextCommand(), CommandText(2, "[{\"AudioCmd\":-2147483648}]", noIdentity));
  EXPECT_EQ(m_sdk->SetScreenShareCmd(2147483647), 0U);
  EXPECT_EQ(NextCommand(), CommandText(3, "[{\"ScreenShareCmd\":2147483647}]", noDevice));
  EXPECT_EQ(m_sdk->SetConfChatCmd(0), 0U);
  EXPECT_EQ(NextCommand(), CommandText(4, "[{\"ChatCmd\":0}]", noDevice));
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
  EXPECT_EQ(NextCommand(), CommandText(5, "[{\"CameraCmd\":1}]", noDevice));
  EXPECT_EQ(m_sdk->SetConfAudioCmd(2), 0U);
  EXPECT_EQ(NextCommand(), CommandText(6, "[{\"ConfAudioCmd\":2}]", noDevice));
  EXPECT_EQ(m_sdk->SetConfEventCmd(3), 0U);
  EXPECT_EQ(NextCommand(), CommandText(7, "[{\"ConfEventCmd\":3}]", noDevice));
  EXPECT_EQ(m_sdk->SetConfDeviceCmd(4), 0U);
  EXPECT_EQ(NextCommand(), CommandText(9, "[{\"ConfDeviceCmd\":4}]", noDevice));
  EXPECT_EQ(m_sdk->GetUIControlStatusCmd(5), 0U);
  EXPECT_EQ(NextCommand(), CommandText(10, "[{\"UIControlStatusCmd\":5}]", noDevice));
  EXPECT_EQ(m_sdk->SendMsgToVelmClient(L"{\"any\":\"t\u00E9xt \xD83D\xDE00\"}"), 0U);
  EXPECT_EQ(NextCommand(), "{\"any\":\"t\xC3\xA9xt \xF0\x9F\x98\x80\"}");

  EXPECT_EQ(m_sdk->SetAudioDeviceV2(L"Headset", L"{G}", L"0A12", L"1004", 1), 1U);
  EXPECT_EQ(NextCommand(), CommandText(2, "[{\"AudioCmd\":99}]",
                                       ",\"deviceName\":\"Headset\",\"usbVid\":\"0A12\",\"usbPid\":\"1004\","
                                       "\"deviceGUID\":\"{G}\",\"HotSwitch\":1"));
  EXPECT_EQ(NextCommand(), CommandText(11, "[{\"DeviceName\":\"Headset\"}]", ""));
}

TEST_F(CommandContract, BothWindowsOfTheClientGetACopy) {
  StartClient({"--windows", "both"});
  m_sdk->GetSDKAvailableFeatures();
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
  const std::string windows = NextCommandLine() + NextCommandLine();
  EXPECT_THAT(windows, HasSubstr("\"VelmPTApp_HostWindow\""));
  EXPECT_THAT(windows, HasSubstr("\"VelmPTApp_VVHOST_HostWindow\""));
}

TEST_F(CommandContract, CodesFollowAClientThatComesAndGoes) {
  m_sdk->GetSDKAvailableFeatures();
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 2U);
  StartClient({});
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
  m_client->Kill();
  EXPECT_TRUE(WaitUntil([&] { return m_sdk->SetCameraCmd(1) == 5; }));
  Uninstall();
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 2U);
}

TEST_F(CommandContract, ClientThatDiesInTheMiddleOfACommandDoesNotHoldTheCaller) {
  StartClient({"--die-after", "1"});
  m_sdk->GetSDKAvailableFeatures();
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
  EXPECT_TRUE(WaitUntil([&] { return m_sdk->SetCameraCmd(1) == 5; }));
}

TEST_F(CommandContract, SlowClientHoldsTheCallerUp) {
  StartClient({"--hang-ms", "300"});
  m_sdk->GetSDKAvailableFeatures();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(290));
}

TEST_F(CommandContract, VersionOfTheClientIsRead) {
  StartClient({"--version", "5.1200.3.4"});
  uint16_t version[4] = {};
  EXPECT_EQ(m_sdk->GetVelmClientVersion(version), 0U);
  EXPECT_THAT(version, testing::ElementsAre(5, 0, 1200, 3));
}

TEST_F(CommandContract, AudioNeedsClient56AndServiceMode58) {
  StartClient({"--version", "5.5.9.0"});
  m_sdk->GetSDKAvailableFeatures();
  EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL), 0U);
  EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_SERVICE_MODE), 1U);
  EXPECT_EQ(m_sdk->TryRunningUnderServiceMode(), 7U);
  EXPECT_EQ(m_sdk->GetSDKAvailableFeatures(), 0x3fdU);
}

// ---- Notifications

class NotificationContract : public ContractTest {
 protected:
  NotificationContract() {
    StartClient({});
    m_sdk->GetSDKAvailableFeatures();
    EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL), 1U);
    SetAllCallbacks();
    EXPECT_TRUE(Sdk::AwaitWindow());
  }
};

TEST_F(NotificationContract, EveryFamilyReachesItsCallback) {
  Tell("presence 3 v2=4 reason=5 result=0:fine");
  const auto presence = Taken<SdkPresenceInfo>();
  EXPECT_TRUE(presence.success);
  EXPECT_EQ(presence.status, 3);
  EXPECT_EQ(presence.statusV2, 4);
  EXPECT_STREQ(presence.resultInfo, L"fine");
  EXPECT_EQ(presence.extraReason, 5);

  Tell("audio 7 device=Headset guid={G} result=12:no");
  const auto audio = Taken<SdkAudioInfo>();
  EXPECT_FALSE(audio.success);
  EXPECT_EQ(audio.code, 12);
  EXPECT_EQ(audio.audioCmd, 7);
  EXPECT_STREQ(audio.deviceName, L"Headset");
  EXPECT_STREQ(audio.deviceGUID, L"{G}");
  EXPECT_STREQ(audio.resultInfo, L"no");

  Tell("share 31");
  EXPECT_EQ(Taken<SdkStatusInfo>().status, 31);
  EXPECT_EQ(g_taken.lastFamily, 3);
  Tell("chat 41");
  EXPECT_EQ(Taken<SdkStatusInfo>().status, 41);
  EXPECT_EQ(g_taken.lastFamily, 4);
  Tell("camera 51");
  EXPECT_EQ(Taken<SdkStatusInfo>().status, 51);
  EXPECT_EQ(g_taken.lastFamily, 5);

  Tell("confaudio 6 computer=1");
  EXPECT_EQ(Taken<SdkConfAudioInfo>().status, 6);
  EXPECT_TRUE(Taken<SdkConfAudioInfo>().isInComputerAudio);

  Tell("event 7 meeting=81234567890 count=2 type=3");
  const auto event = Taken<SdkConfEventInfo>();
  EXPECT_EQ(event.event, 7);
  EXPECT_STREQ(event.meetingId, L"81234567890");
  EXPECT_EQ(event.activeMeetingsCount, 2);
  EXPECT_EQ(event.meetingType, 3);

  Tell("pt 8 result=0:ok");
  EXPECT_EQ(Taken<SdkPTEventInfo>().event, 8);
  EXPECT_EQ(Taken<SdkPTEventInfo>().code, 1);

  Tell("device 9 type=2 meeting=M");
  EXPECT_EQ(Taken<SdkConfDeviceInfo>().status, 9);
  EXPECT_EQ(Taken<SdkConfDeviceInfo>().deviceType, 2);
  EXPECT_STREQ(Taken<SdkConfDeviceInfo>().meetingId, L"M");

  Tell("ui 10 type=4");
  EXPECT_EQ(Taken<SdkUIControlInfo>().status, 10);
  EXPECT_EQ(Taken<SdkUIControlInfo>().controlType, 4);
  EXPECT_EQ(g_taken.general, 10);
}

TEST_F(NotificationContract, OnlyRegisteredFamiliesArrive) {
  EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURE_CAMERA), 1U);
  Tell("share 1");
  Tell("camera 1");
  EXPECT_EQ(g_taken.general, 1);
  EXPECT_EQ(g_taken.notify.commandId, 5);
}

TEST_F(NotificationContract, NotificationsAboutOtherDevicesAreHeldBack) {
  EXPECT_EQ(m_sdk->SetAudioDevice(L"Headset", L"0A12", L"1004", 0), 1U);
  Tell("audio 1 device=Other");
  EXPECT_EQ(g_taken.general, 0);
  Tell("audio 1 device=HEADSET");
  EXPECT_EQ(g_taken.general, 1);
  Tell("audio 102 device=Other");
  EXPECT_EQ(g_taken.general, 2);
  EXPECT_EQ(Taken<SdkAudioInfo>().audioCmd, 102);
}

TEST_F(NotificationContract, RawSinkWrittenInCSeesWhatTheFilterHoldsBack) {
  m_sdk->InitVelm3rdSdkChannel(RawSinkInC());
  m_sdk->SetAudioDevice(L"Headset", nullptr, nullptr, 0);
  const int before = RawTextCount();
  Tell("raw {\"commandId\":2,\"deviceName\":\"Other\"}");
  EXPECT_EQ(RawTextCount(), before + 1);
  EXPECT_STREQ(LastRawText(), L"{\"commandId\":2,\"deviceName\":\"Other\"}");
  EXPECT_EQ(g_taken.general, 0);
}

TEST_F(NotificationContract, EmptyMessageCallsTheGeneralCallbackWithNulls) {
  Tell("empty");
  EXPECT_EQ(g_taken.emptyGeneral, 1);
  EXPECT_EQ(g_taken.general, 0);
}

TEST_F(NotificationContract, ThousandsArriveInOrderAndNoneIsLost) {
  constexpr int kCount = 2000;
  for (int i = 0; i < kCount; ++i)
    EXPECT_TRUE(m_client->WriteLine("camera " + std::to_string(i)));
  EXPECT_TRUE(WaitUntil([] { return g_taken.general == kCount; }));
  EXPECT_EQ(g_taken.outOfOrder, 0);
  EXPECT_EQ(Taken<SdkStatusInfo>().status, kCount - 1);
}

TEST_F(NotificationContract, NothingArrivesAfterDestroyAndEverythingAgainAfterTheNextSetter) {
  m_sdk->DestroySdkChannel();
  ASSERT_TRUE(WaitUntil([] { return Sdk::Window() == nullptr; }));
  Tell("camera 1", 0);
  EXPECT_EQ(g_taken.general, 0);
  m_sdk->SetCallBackFunc(OnGeneral);
  ASSERT_TRUE(Sdk::AwaitWindow());
  Tell("camera 2");
  EXPECT_EQ(g_taken.general, 1);
  EXPECT_EQ(Taken<SdkStatusInfo>().status, 2);  // the callbacks and the mask were kept
}

TEST_F(NotificationContract, CallbackMayCallACommand) {
  static Sdk* sdk = nullptr;
  sdk = m_sdk.get();
  m_sdk->SetScreenShareCallBack([](const SdkStatusInfo* info) { sdk->SetCameraCmd(info->status + 1); });
  EXPECT_TRUE(m_client->WriteLine("share 6"));
  EXPECT_THAT(NextCommand(), HasSubstr("\"CameraCmd\":7"));
}

// ---- Two host applications

TEST_F(NotificationContract, SecondHostOnTheMachineGetsItsOwnCopy) {
  ChildProcess second(ProgramBeside(L"contract_second_host.exe"), {});
  ASSERT_TRUE(second.ReadLineWith("ready"));
  Tell("camera 3", 2);
  EXPECT_TRUE(second.ReadLineWith("camera 3"));
  EXPECT_EQ(Taken<SdkStatusInfo>().status, 3);

  // Both stand in the device table, and each takes its own device out again.
  m_sdk->SetAudioDevice(L"First host's device", nullptr, nullptr, 0);
  EXPECT_TRUE(TableHas(L"First host's device"));
  EXPECT_TRUE(TableHas(L"Second host's device"));
  second.CloseInput();
  EXPECT_EQ(second.Wait(), 0U);
  EXPECT_TRUE(TableHas(L"First host's device"));
  EXPECT_FALSE(TableHas(L"Second host's device"));
  m_sdk->DestroySdkChannel();
  EXPECT_FALSE(TableHas(L"First host's device"));
}

TEST_F(NotificationContract, HostThatIsKilledLeavesTheOtherWorking) {
  ChildProcess second(ProgramBeside(L"contract_second_host.exe"), {});
  ASSERT_TRUE(second.ReadLineWith("ready"));
  second.Kill();
  EXPECT_TRUE(WaitUntil([&] {
    Tell("camera 4", kAnyHosts);
    return g_taken.general >= 3;
  }));
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
}

}  // namespace
}  // namespace velm_test
