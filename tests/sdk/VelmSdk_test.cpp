// The 30 exported functions: result codes, entry lines and the order of calls. The channel behind them is
// the process's own, so each test leaves it destroyed.

#include "sdk/VelmSdk.h"

#include <windows.h>

#include <atomic>
#include <functional>

#include "sdk/WindowRoute.h"
#include "tests/sdk/ChannelFixture.h"
#include "tests/support/WaitUntil.h"

namespace Velm3rdSDK {
namespace {

using velm_tools::FakeProduct;
using Lines = std::vector<std::wstring>;

class ExportTest : public testing::Test {
 protected:
  ExportTest() { Reset(); }
  ~ExportTest() override { Reset(); }

  SdkMsgChannelTestAccess Fields() { return {CSdkMsgChannel::Instance()}; }

  // DestroySdkChannel, and the end of the thread that it does not wait for.
  static uint32_t Destroy() {
    uint32_t code = 0;
    StopAndAwait([&] { code = DestroySdkChannel(); });
    return code;
  }

 private:
  // Back to the state at load, in which there is no channel.
  void Reset() {
    CSdkMsgChannel& instance = CSdkMsgChannel::Instance();
    StopAndAwait([&] { instance.Exit(); });
    instance.Callbacks() = SdkCallbacks();
    Fields().Features() = 0;
    Fields().RequestServiceMode() = 0;
    Fields().AudioIPC() = 0;
    Fields().ServiceModeIPC() = 0;
    g_sdkImplHelper.m_bServiceMode = 0;
    g_pSdkMsgChannel = nullptr;
  }
};

struct CountingSink : ISdkRawSink {
  virtual ~CountingSink() = default;
  void OnRawMessage(const wchar_t*) override { ++calls; }
  std::atomic<int> calls{0};
};

// ---- Without a channel

struct Command {
  const char* name;
  std::function<uint32_t()> call;
  const wchar_t* entryLine;  // null: logs none
  const wchar_t* nullLine;   // null: logs none
};

std::vector<Command> Commands() {
  return {
      {"GetIMPresenceStatus", [] { return GetIMPresenceStatus(); }, nullptr, nullptr},
      {"SetAudioCmd", [] { return SetAudioCmd(-5); }, L"[SetAudioCmd] cmd:-5",
       L"[SetAudioCmd] SDK Msg Channel is NULL!"},
      {"SetScreenShareCmd", [] { return SetScreenShareCmd(1); }, L"[SetScreenShareCmd] cmd:1",
       L"[SetScreenShareCmd] SDK Msg Channel is NULL!"},
      {"SetConfChatCmd", [] { return SetConfChatCmd(1); }, L"[SetConfChatCmd] cmd:1",
       L"[SetChatCmd] SDK Msg Channel is NULL!"},
      {"SetCameraCmd", [] { return SetCameraCmd(1); }, L"[SetCameraCmd] cmd:1",
       L"[SetCameraCmd] SDK Msg Channel is NULL!"},
      {"SetConfAudioCmd", [] { return SetConfAudioCmd(1); }, L"[SetConfAudioCmd] cmd:1",
       L"[SetConfAudioCmd] SDK Msg Channel is NULL!"},
      {"SetConfEventCmd", [] { return SetConfEventCmd(1); }, L"[SetConfEventCmd] cmd:1",
       L"[SetConfEventCmd] SDK Msg Channel is NULL!"},
      {"SetConfDeviceCmd", [] { return SetConfDeviceCmd(1); }, L"[SetConfDeviceCmd] cmd:1",
       L"[SetConfDeviceCmd] SDK Msg Channel is NULL!"},
      {"GetUIControlStatusCmd", [] { return GetUIControlStatusCmd(1); }, L"[GetUIControlStatusCmd] cmd:1",
       L"[GetUIControlStatusCmd] SDK Msg Channel is NULL!"},
      {"SendMsgToVelmClient", [] { return SendMsgToVelmClient(L"{}"); }, L"[SendMsgToVelmClient]", nullptr},
  };
}

TEST_F(ExportTest, CommandsWithoutAChannelAre999AndSaySo) {
  for (const Command& command : Commands()) {
    LogCapture log;
    EXPECT_EQ(command.call(), 999U) << command.name;
    Lines expected;
    if (command.entryLine) expected.push_back(command.entryLine);
    if (command.nullLine) expected.push_back(command.nullLine);
    EXPECT_EQ(log.Texts(), expected) << command.name;
    EXPECT_EQ(g_pSdkMsgChannel, nullptr) << command.name;
  }
}

TEST_F(ExportTest, DeviceFunctionsWithoutAChannelAre0AndSaySo) {
  LogCapture log;
  EXPECT_EQ(SetAudioDevice(L"n", L"v", L"p", 1), 0U);
  EXPECT_EQ(SetAudioDeviceV2(L"n", L"g", L"v", L"p", 1), 0U);
  EXPECT_EQ(SetAudioDeviceWCHAR(L"n", L"g", L"v", L"p", 1), 0U);
  EXPECT_EQ(log.Texts(), (Lines{L"[SetAudioDevice] SDK Msg Channel is NULL!",
                                L"[SetAudioDeviceV2] SDK Msg Channel is NULL!",
                                L"[SetAudioDeviceWCHAR] SDK Msg Channel is NULL!"}));
  EXPECT_STREQ(Fields().Device().usbVid, L"");
}

TEST_F(ExportTest, RegisterMsgAsTheVeryFirstCallIs0AndChangesNothing) {
  LogCapture log;
  EXPECT_EQ(RegisterMsg(0x3fd), 0U);
  EXPECT_EQ(log.Texts(), (Lines{L"[RegisterMsg] features:1021"}));
  EXPECT_EQ(g_pSdkMsgChannel, nullptr);
  EXPECT_EQ(Fields().Features(), 0);
}

TEST_F(ExportTest, DestroyWithoutAChannelIs999) {
  LogCapture log;
  EXPECT_EQ(DestroySdkChannel(), 999U);
  EXPECT_EQ(log.Texts(), (Lines{L"[DestroySdkChannel]"}));
}

// ---- Establishing

TEST_F(ExportTest, AvailableFeaturesEstablishTheChannelWithoutStartingIt) {
  EXPECT_EQ(GetSDKAvailableFeatures(), 0x3ffU);
  EXPECT_NE(g_pSdkMsgChannel, nullptr);
  EXPECT_EQ(Fields().Inited(), 0U);
}

TEST_F(ExportTest, VersionEstablishesTheChannelAlsoForNull) {
  LogCapture log;
  EXPECT_EQ(GetVelmClientVersion(nullptr), 999U);
  EXPECT_NE(g_pSdkMsgChannel, nullptr);
  EXPECT_EQ(Fields().Inited(), 0U);
  EXPECT_EQ(log.Texts(),
            (Lines{L"[GetVelmClientVersion]", L"[CSdkMsgChannel::GetVelmClientVersion] errCode:999"}));
}

TEST_F(ExportTest, VersionWithNoClientIs0AndKeepsTheArray) {
  uint16_t version[4] = {9, 8, 7, 6};
  EXPECT_EQ(GetVelmClientVersion(version), 0U);
  EXPECT_EQ(std::vector<uint16_t>(version, version + 4), (std::vector<uint16_t>{9, 8, 7, 6}));
}

TEST_F(ExportTest, ServiceModeEstablishesTheChannelAndTakesAudioAwayAlsoWhenItFails) {
  LogCapture log;
  EXPECT_EQ(TryRunningUnderServiceMode(), 2U);
  EXPECT_EQ(log.Texts().front(), L"[TryRunningUnderServiceMode]");
  EXPECT_EQ(GetSDKAvailableFeatures(), 0x3fdU);
  EXPECT_EQ(Fields().Inited(), 0U);
}

TEST_F(ExportTest, ServiceModeCodesFollowTheClientsVersion) {
  {
    const FakeProduct client(ClientOfVersion(5, 7, 9));
    EXPECT_EQ(TryRunningUnderServiceMode(), 7U);
  }
  const FakeProduct client(ClientOfVersion(5, 8));
  EXPECT_EQ(TryRunningUnderServiceMode(), 0U);
}

TEST_F(ExportTest, RegisterMsgBehindAnEstablishingCallRegisters) {
  GetSDKAvailableFeatures();
  EXPECT_EQ(RegisterMsg(0x3fd), 1U);
  EXPECT_EQ(Fields().Features(), 0x3fd);
  EXPECT_EQ(RegisterMsg(0x400), 0U);
}

// ---- Starting

TEST_F(ExportTest, InitAsTheFirstCallStoresTheSinkAndStarts) {
  CountingSink sink;
  LogCapture log;
  EXPECT_EQ(InitVelm3rdSdkChannel(&sink), 0U);
  EXPECT_EQ(log.Texts().front(), L"[InitVelm3rdSdkChannel]");
  EXPECT_EQ(Fields().Inited(), 1U);
  EXPECT_EQ(Fields().RawSink(), &sink);
}

TEST_F(ExportTest, InitBehindAvailableFeaturesStoresTheSinkAndDoesNotStart) {
  CountingSink sink;
  GetSDKAvailableFeatures();
  EXPECT_EQ(InitVelm3rdSdkChannel(&sink), 0U);
  EXPECT_EQ(Fields().RawSink(), &sink);
  EXPECT_EQ(Fields().Inited(), 0U);
  EXPECT_EQ(SetCallBackFunc(nullptr), 0U);
  EXPECT_EQ(Fields().Inited(), 1U);
}

TEST_F(ExportTest, InitWithNullRemovesTheSink) {
  CountingSink sink;
  InitVelm3rdSdkChannel(&sink);
  EXPECT_EQ(InitVelm3rdSdkChannel(nullptr), 0U);
  EXPECT_EQ(Fields().RawSink(), nullptr);
}

struct Setter {
  const wchar_t* entryLine;
  std::function<uint32_t(bool)> set;  // true: a callback, false: null
  std::function<bool(const SdkCallbacks&)> isSet;
};

template <typename Callback>
Setter MakeSetter(const wchar_t* entryLine, uint32_t (*function)(Callback), Callback SdkCallbacks::*slot,
                  Callback callback) {
  return {entryLine, [=](bool on) { return function(on ? callback : nullptr); },
          [=](const SdkCallbacks& callbacks) { return callbacks.*slot == callback; }};
}

std::vector<Setter> Setters() {
  const SdkStatusCallback onStatus = [](const SdkStatusInfo*) {};
  return {
      MakeSetter<SdkNotifyCallback>(L"[SetCallBackFunc]", SetCallBackFunc, &SdkCallbacks::general,
                                    [](const SdkNotifyInfo*, const wchar_t*) {}),
      MakeSetter<SdkAudioCallback>(L"[SetAudioCallBack]", SetAudioCallBack, &SdkCallbacks::audio,
                                   [](const SdkAudioInfo*) {}),
      MakeSetter<SdkPresenceCallback>(L"[SetIMPresenceCallBack]", SetIMPresenceCallBack,
                                      &SdkCallbacks::presence, [](const SdkPresenceInfo*) {}),
      MakeSetter<SdkStatusCallback>(L"[SetScreenShareCallBack]", SetScreenShareCallBack,
                                    &SdkCallbacks::screenShare, onStatus),
      MakeSetter<SdkStatusCallback>(L"[SetScreenShareCallBack]", SetConfChatCallBack, &SdkCallbacks::confChat,
                                    onStatus),
      MakeSetter<SdkStatusCallback>(L"[SetScreenShareCallBack]", SetCameraCallBack, &SdkCallbacks::camera,
                                    onStatus),
      MakeSetter<SdkConfAudioCallback>(L"[SetConfAudioCallBack]", SetConfAudioCallBack,
                                       &SdkCallbacks::confAudio, [](const SdkConfAudioInfo*) {}),
      MakeSetter<SdkConfEventCallback>(L"[SetConfEventCallBack]", SetConfEventCallBack,
                                       &SdkCallbacks::confEvent, [](const SdkConfEventInfo*) {}),
      MakeSetter<SdkPTEventCallback>(L"[SetPTEventCallBack]", SetPTEventCallBack, &SdkCallbacks::ptEvent,
                                     [](const SdkPTEventInfo*) {}),
      MakeSetter<SdkConfDeviceCallback>(L"[SetConfDeviceCallBack]", SetConfDeviceCallBack,
                                        &SdkCallbacks::confDevice, [](const SdkConfDeviceInfo*) {}),
      MakeSetter<SdkUIControlCallback>(L"[SetUIControlStatusCallBack]", SetUIControlStatusCallBack,
                                       &SdkCallbacks::uiControl, [](const SdkUIControlInfo*) {}),
  };
}

TEST_F(ExportTest, EachSetterLogsItsLineStartsTheChannelAndFillsItsSlot) {
  ASSERT_EQ(Setters().size(), 11U);
  for (const Setter& setter : Setters()) {
    Destroy();
    LogCapture log;
    EXPECT_EQ(setter.set(true), 0U);
    EXPECT_EQ(log.Texts()[0], setter.entryLine);
    EXPECT_EQ(log.Texts()[1], L"[CSdkMsgChannel::Init]");
    EXPECT_EQ(Fields().Inited(), 1U);
    EXPECT_TRUE(setter.isSet(CSdkMsgChannel::Instance().Callbacks()));
    EXPECT_EQ(setter.set(false), 0U);
    EXPECT_FALSE(setter.isSet(CSdkMsgChannel::Instance().Callbacks()));
  }
}

// ---- Commands with a channel

TEST_F(ExportTest, CommandsWithAChannelAndNoClientAre2) {
  GetSDKAvailableFeatures();
  for (const Command& command : Commands()) {
    LogCapture log;
    EXPECT_EQ(command.call(), 2U) << command.name;
    if (command.entryLine) {
      EXPECT_EQ(log.Texts().front(), command.entryLine);
    }
  }
  EXPECT_EQ(SendMsgToVelmClient(nullptr), 6U);
}

TEST_F(ExportTest, CommandsNeedNoInitAndArriveByteForByte) {
  const FakeProduct client(ClientOfVersion(5, 8));
  const RecordingWindow window(kClientWindowClass);
  GetSDKAvailableFeatures();
  for (const Command& command : Commands())
    EXPECT_EQ(command.call(), 0U) << command.name;
  EXPECT_EQ(Fields().Inited(), 0U);
  EXPECT_EQ(
      window.Texts(),
      (std::vector<std::string>{
          R"({"commandId":1,"from":1,"version":"1.0.0","data":{},"deviceName":""})",
          R"({"commandId":2,"from":1,"version":"1.0.0","data":[{"AudioCmd":-5}],"deviceName":"","usbVid":"","usbPid":"","deviceGUID":""})",
          R"({"commandId":3,"from":1,"version":"1.0.0","data":[{"ScreenShareCmd":1}],"deviceName":""})",
          R"({"commandId":4,"from":1,"version":"1.0.0","data":[{"ChatCmd":1}],"deviceName":""})",
          R"({"commandId":5,"from":1,"version":"1.0.0","data":[{"CameraCmd":1}],"deviceName":""})",
          R"({"commandId":6,"from":1,"version":"1.0.0","data":[{"ConfAudioCmd":1}],"deviceName":""})",
          R"({"commandId":7,"from":1,"version":"1.0.0","data":[{"ConfEventCmd":1}],"deviceName":""})",
          R"({"commandId":9,"from":1,"version":"1.0.0","data":[{"ConfDeviceCmd":1}],"deviceName":""})",
          R"({"commandId":10,"from":1,"version":"1.0.0","data":[{"UIControlStatusCmd":1}],"deviceName":""})",
          "{}"}));
}

TEST_F(ExportTest, SelectingADeviceSendsTheHotSwitchAndThenTheSelection) {
  const FakeProduct client(ClientOfVersion(5, 8));
  const RecordingWindow window(kClientWindowClass);
  GetSDKAvailableFeatures();
  const std::string hotSwitch =
      R"({"commandId":2,"from":1,"version":"1.0.0","data":[{"AudioCmd":99}],"deviceName":"N","usbVid":"V","usbPid":"P","deviceGUID":")";
  const std::string selected = R"({"commandId":11,"from":1,"version":"1.0.0","data":[{"DeviceName":"N"}]})";

  EXPECT_EQ(SetAudioDevice(L"N", L"V", L"P", 4), 1U);
  EXPECT_EQ(SetAudioDeviceV2(L"N", L"G", L"V", L"P", 5), 1U);
  EXPECT_EQ(SetAudioDeviceWCHAR(L"N", L"G", L"V", L"P", 6), 1U);
  EXPECT_EQ(window.Texts(), (std::vector<std::string>{hotSwitch + R"(","HotSwitch":4})", selected,
                                                      hotSwitch + R"(G","HotSwitch":5})", selected,
                                                      hotSwitch + R"(G","HotSwitch":6})", selected}));
}

TEST_F(ExportTest, SelectingADeviceWithoutAClientIs0AndKeepsTheIdentity) {
  GetSDKAvailableFeatures();
  EXPECT_EQ(SetAudioDevice(L"N", L"V", L"P", 1), 0U);
  EXPECT_STREQ(Fields().Device().name, L"N");
}

TEST_F(ExportTest, SelectingADeviceIs1AlsoWhenOnlyTheSelectionCommandFails) {
  const FakeProduct client(ClientOfVersion(5, 8));
  // A client that goes away with its first command.
  std::unique_ptr<velm_sim::ClientWindow> window;
  std::atomic<bool> commanded{false};
  window = std::make_unique<velm_sim::ClientWindow>(kClientWindowClass,
                                                    [&](const velm_sim::CopyData&) -> intptr_t {
                                                      commanded = true;
                                                      DestroyWindow(GetVelmClientIPCWindow());
                                                      return 0;
                                                    });
  GetSDKAvailableFeatures();
  EXPECT_EQ(SetAudioDevice(L"N", L"V", L"P", 1), 1U);
  EXPECT_TRUE(commanded);
  EXPECT_EQ(GetVelmClientIPCWindow(), nullptr);
}

TEST_F(ExportTest, DeviceFunctionsTakeNulls) {
  GetSDKAvailableFeatures();
  EXPECT_EQ(SetAudioDevice(nullptr, nullptr, nullptr, 0), 0U);
  EXPECT_EQ(SetAudioDeviceV2(nullptr, nullptr, nullptr, nullptr, 0), 0U);
  EXPECT_EQ(SetAudioDeviceWCHAR(nullptr, nullptr, nullptr, nullptr, 0), 0U);
}

// ---- Destroying

TEST_F(ExportTest, SecondDestroyIs999) {
  SetCallBackFunc(nullptr);
  EXPECT_EQ(Destroy(), 0U);
  EXPECT_EQ(DestroySdkChannel(), 999U);
}

TEST_F(ExportTest, AfterDestroyCommandsAre999AndRegisterMsgIs0UntilEstablishedAgain) {
  SetCallBackFunc(nullptr);
  Destroy();
  EXPECT_EQ(SetCameraCmd(1), 999U);
  EXPECT_EQ(RegisterMsg(0x3fd), 0U);
  GetSDKAvailableFeatures();
  EXPECT_EQ(SetCameraCmd(1), 2U);
  EXPECT_EQ(RegisterMsg(0x3fd), 1U);
}

TEST_F(ExportTest, CallbacksAndFeaturesSurviveDestroyAndTheRawSinkDoesNot) {
  CountingSink sink;
  const SdkStatusCallback callback = [](const SdkStatusInfo*) {};
  InitVelm3rdSdkChannel(&sink);
  SetCameraCallBack(callback);
  RegisterMsg(0x3fd);
  Destroy();
  EXPECT_EQ(CSdkMsgChannel::Instance().Callbacks().camera, callback);
  EXPECT_EQ(Fields().Features(), 0x3fd);
  EXPECT_EQ(Fields().RawSink(), nullptr);
  LogCapture log;
  SetAudioCallBack(nullptr);
  EXPECT_EQ(log.Texts(), (Lines{L"[SetAudioCallBack]", L"[CSdkMsgChannel::Init]"}));
}

}  // namespace
}  // namespace Velm3rdSDK
