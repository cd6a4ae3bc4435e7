#include "sdk/SdkMsgChannel.h"

#include <windows.h>

#include "sdk/MessageThread.h"
#include "tests/sdk/ChannelFixture.h"
#include "tests/support/WaitUntil.h"

namespace Velm3rdSDK {
namespace {

using velm_tools::FakeProduct;

constexpr int64_t kAudio = 0x002;

class SdkMsgChannelTest : public ChannelTest {};

HWND LauncherWindow() {
  return FindWindowW(L"VelmLauncher3rdSdk_HostWindow", nullptr);
}

// ---- Construction

TEST_F(SdkMsgChannelTest, ConstructorZeroesAllFieldsAndSetsTheSingletonPointer) {
  EXPECT_EQ(g_pSdkMsgChannel, channel.get());
  EXPECT_EQ(Fields().Inited(), 0U);
  EXPECT_EQ(Fields().Features(), 0);
  EXPECT_EQ(Fields().RawSink(), nullptr);
  EXPECT_EQ(Fields().Window(), nullptr);
  EXPECT_EQ(Fields().AudioIPC(), 0U);
  EXPECT_EQ(Fields().ServiceModeIPC(), 0U);
  EXPECT_EQ(Fields().RequestServiceMode(), 0U);
  EXPECT_STREQ(Fields().Device().name, L"");
}

TEST_F(SdkMsgChannelTest, SinkBasesStandInTheirOrder) {
  const void* const object = channel.get();
  EXPECT_EQ(static_cast<IAudioSDKIPCClientSink*>(channel.get()), object);
  EXPECT_NE(static_cast<const void*>(static_cast<IClient3rdSDKIPCClientSink*>(channel.get())), object);
}

TEST_F(SdkMsgChannelTest, DestructorTakesDevicesOutOfTheTableAndClearsTheSingletonPointer) {
  CAudioDeviceTable reader;
  reader.OpenTable();
  auto other = std::make_unique<CSdkMsgChannel>();
  SdkMsgChannelTestAccess{*other}.Table().OpenTable();
  other->SetAudioDevice(L"destructor's device", nullptr, nullptr, nullptr);
  other.reset();
  EXPECT_EQ(g_pSdkMsgChannel, nullptr);
  for (const DeviceRecord& record : reader.View()->records)
    EXPECT_STRNE(record.name, L"destructor's device");
}

// ---- Init and Exit

TEST_F(SdkMsgChannelTest, InitReturns1AndTheSecondTime0AndStartsNothing) {
  LogCapture log;
  EXPECT_EQ(channel->Init(), 1U);
  const CAudioDeviceTable table = Fields().Table();
  EXPECT_EQ(channel->Init(), 0U);
  EXPECT_EQ(Fields().Table().View(), table.View());
  EXPECT_EQ(log.Texts(), (std::vector<std::wstring>{L"[CSdkMsgChannel::Init]", L"[CSdkMsgChannel::Init]",
                                                    L"[CSdkMsgChannel::Init] already inited!"}));
}

TEST_F(SdkMsgChannelTest, InitBringsUpOneHiddenWindow) {
  channel->Init();
  ASSERT_TRUE(WaitUntil([] { return LauncherWindow() != nullptr; }));
  const HWND window = LauncherWindow();
  EXPECT_EQ(GetWindowLongPtrW(window, GWL_STYLE) & static_cast<LONG_PTR>(WS_POPUP),
            static_cast<LONG_PTR>(WS_POPUP));
  EXPECT_EQ(GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_TOOLWINDOW, WS_EX_TOOLWINDOW);
  EXPECT_FALSE(IsWindowVisible(window));
  wchar_t title[8] = L"?";
  EXPECT_EQ(GetWindowTextW(window, title, 8), 0);
  EXPECT_EQ(FindWindowExW(nullptr, window, L"VelmLauncher3rdSdk_HostWindow", nullptr), nullptr);
}

TEST_F(SdkMsgChannelTest, MessageThreadKeepsItsWindowOutOfTheChannelsField) {
  channel->Init();
  ASSERT_TRUE(WaitUntil([] { return LauncherWindow() != nullptr; }));
  EXPECT_EQ(Fields().Window(), nullptr);
}

TEST_F(SdkMsgChannelTest, ExitEndsTheThreadAndWithItTheWindow) {
  channel->Init();
  ASSERT_TRUE(WaitUntil([] { return LauncherWindow() != nullptr; }));
  Exit(*channel);
  EXPECT_EQ(LauncherWindow(), nullptr);
}

TEST_F(SdkMsgChannelTest, ExitRightAfterInitEndsTheThreadToo) {
  std::vector<void*> threads;
  for (int i = 0; i < 20; ++i) {
    channel->Init();
    threads.push_back(MessageThreadHandle());
    channel->Exit();
  }
  for (void* thread : threads)
    EXPECT_EQ(WaitForSingleObject(thread, 10000), WAIT_OBJECT_0);
  EXPECT_EQ(LauncherWindow(), nullptr);
}

TEST_F(SdkMsgChannelTest, ExitThenInitMakesANewThreadAndWindow) {
  channel->Init();
  ASSERT_TRUE(WaitUntil([] { return LauncherWindow() != nullptr; }));
  const DWORD firstThread = GetWindowThreadProcessId(LauncherWindow(), nullptr);
  Exit(*channel);
  EXPECT_EQ(channel->Init(), 1U);
  ASSERT_TRUE(WaitUntil([] { return LauncherWindow() != nullptr; }));
  EXPECT_NE(GetWindowThreadProcessId(LauncherWindow(), nullptr), firstThread);
}

TEST_F(SdkMsgChannelTest, ExitDestroysAWindowInItsField) {
  const HWND window =
      CreateWindowExW(0, L"Button", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr);
  Fields().Window() = window;
  Exit(*channel);
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(Fields().Window(), nullptr);
}

struct NullSink : ISdkRawSink {
  virtual ~NullSink() = default;
  void OnRawMessage(const wchar_t*) override {}
};

TEST_F(SdkMsgChannelTest, ExitClearsTheRawSinkAndKeepsFeaturesFlagsAndCallbacks) {
  NullSink sink;
  channel->SetRawSink(&sink);
  channel->Callbacks().audio = [](const SdkAudioInfo*) {};
  Fields().Features() = 0x3ff;
  Fields().RequestServiceMode() = 1;
  Fields().AudioIPC() = 1;
  Fields().ServiceModeIPC() = 1;
  Exit(*channel);
  EXPECT_EQ(Fields().RawSink(), nullptr);
  EXPECT_NE(channel->Callbacks().audio, nullptr);
  EXPECT_EQ(Fields().Features(), 0x3ff);
  EXPECT_EQ(Fields().RequestServiceMode(), 1U);
  EXPECT_EQ(Fields().AudioIPC(), 1U);
  EXPECT_EQ(Fields().ServiceModeIPC(), 1U);
}

TEST_F(SdkMsgChannelTest, ExitReleasesThePathHelper) {
  g_sdkImplHelper.HasVelmClient();
  ASSERT_NE(g_sdkImplHelper.m_pathHelper, nullptr);
  Exit(*channel);
  EXPECT_EQ(g_sdkImplHelper.m_pathHelper, nullptr);
}

TEST_F(SdkMsgChannelTest, InitOpensTheDeviceTableUnlessInServiceMode) {
  channel->Init();
  EXPECT_NE(Fields().Table().View(), nullptr);

  FakeIpcRoute route;
  CSdkMsgChannel service;
  SdkMsgChannelTestAccess fields{service};
  fields.ServiceModeIPC() = 1;
  service.Init();
  EXPECT_EQ(fields.Table().View(), nullptr);
  EXPECT_EQ(service.SetAudioDevice(L"no table", nullptr, nullptr, nullptr), 1U);
  EXPECT_STREQ(fields.Device().name, L"no table");
  Exit(service);
}

TEST_F(SdkMsgChannelTest, InitMakesTheAudioClientAndConnectsItToTheOwnProcess) {
  FakeIpcRoute route;
  Fields().AudioIPC() = 1;
  channel->Init();
  EXPECT_EQ(route.audioCalls, (Calls{L"SetSink", L"Connect 0"}));
  EXPECT_EQ(route.audio->m_sink, channel.get());
  EXPECT_TRUE(route.serviceCalls.empty());
  Exit(*channel);
  EXPECT_EQ(route.audioCalls, (Calls{L"SetSink", L"Connect 0", L"Disconnect", L"delete"}));
}

TEST_F(SdkMsgChannelTest, InitMakesTheServiceModeClientAndConnectsItToASession) {
  FakeIpcRoute route;
  Fields().ServiceModeIPC() = 1;
  channel->Init();
  ASSERT_EQ(route.serviceCalls.size(), 2U);
  EXPECT_EQ(route.serviceCalls[0], L"SetSink");
  EXPECT_TRUE(route.serviceCalls[1].starts_with(L"Connect "));
  EXPECT_EQ(route.serviceMode->m_sink, channel.get());
  EXPECT_TRUE(route.audioCalls.empty());
  Exit(*channel);
  EXPECT_EQ(Calls(route.serviceCalls.begin() + 2, route.serviceCalls.end()),
            (Calls{L"Disconnect", L"delete"}));
}

TEST_F(SdkMsgChannelTest, InitWithoutFlagsMakesNoIpcClient) {
  FakeIpcRoute route;
  channel->Init();
  EXPECT_TRUE(route.audioCalls.empty());
  EXPECT_TRUE(route.serviceCalls.empty());
}

// ---- Features

TEST_F(SdkMsgChannelTest, AvailableFeaturesAreAllOrWithoutAudioInServiceMode) {
  LogCapture log;
  EXPECT_EQ(channel->GetAvailableFeatures(), 0x3ffU);
  Fields().RequestServiceMode() = 1;
  EXPECT_EQ(channel->GetAvailableFeatures(), 0x3fdU);
  EXPECT_EQ(log.Texts(),
            (std::vector<std::wstring>{
                L"[CSdkMsgChannel::GetAvailableFeatures] m_bRequestServiceMode:0, features:1023",
                L"[CSdkMsgChannel::GetAvailableFeatures] m_bRequestServiceMode:1, features:1021"}));
}

TEST_F(SdkMsgChannelTest, RegisteringWithoutACommonBitIsRefused) {
  LogCapture log;
  EXPECT_EQ(channel->RegisterFeature(0x400), 0U);
  EXPECT_EQ(channel->RegisterFeature(0), 0U);
  EXPECT_EQ(Fields().Features(), 0);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::RegisterFeature] features not available! features:1024"));
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::RegisterFeature] bRet:0, features:1024, m_bRequestServiceMode:0"));
}

TEST_F(SdkMsgChannelTest, RegisteringStoresTheMaskWholeAlsoBitsThatAreNotOnOffer) {
  LogCapture log;
  EXPECT_EQ(channel->RegisterFeature(0x401), 1U);
  EXPECT_EQ(Fields().Features(), 0x401);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::RegisterFeature] bRet:1, features:1025, m_bRequestServiceMode:0"));
  EXPECT_EQ(channel->RegisterFeature(-3), 1U);  // every bit but audio
  EXPECT_EQ(Fields().Features(), -3);
}

TEST_F(SdkMsgChannelTest, SecondRegistrationReplacesAndFailedOneLeavesTheMask) {
  EXPECT_EQ(channel->RegisterFeature(0x004), 1U);
  EXPECT_EQ(channel->RegisterFeature(0x010), 1U);
  EXPECT_EQ(Fields().Features(), 0x010);
  EXPECT_EQ(channel->RegisterFeature(0x400), 0U);
  EXPECT_EQ(channel->RegisterFeature(kAudio), 0U);  // no client
  EXPECT_EQ(Fields().Features(), 0x010);
}

TEST_F(SdkMsgChannelTest, AudioAfterAServiceModeRequestRefusesTheWholeMask) {
  const FakeProduct client(ClientOfVersion(6, 0));
  channel->Client3rdSDKRequestRunUnderServiceMode();
  LogCapture log;
  EXPECT_EQ(channel->RegisterFeature(0x3ff), 0U);
  EXPECT_EQ(Fields().Features(), 0);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::RegisterFeature] service mode does not support audio sdk. 1023"));
}

TEST_F(SdkMsgChannelTest, AudioAloneAfterAServiceModeRequestIsNotAvailable) {
  Fields().RequestServiceMode() = 1;
  LogCapture log;
  EXPECT_EQ(channel->RegisterFeature(kAudio), 0U);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::RegisterFeature] features not available! features:2"));
}

TEST_F(SdkMsgChannelTest, AudioWithoutAClientIsRefused) {
  LogCapture log;
  EXPECT_EQ(channel->RegisterFeature(kAudio), 0U);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::RegisterFeature] HasVelmClient failed"));
}

TEST_F(SdkMsgChannelTest, AudioWithClient559IsRefusedWithItsVersionInTheLog) {
  const FakeProduct client(ClientOfVersion(5, 5, 9, 12));
  LogCapture log;
  EXPECT_EQ(channel->RegisterFeature(kAudio | 0x004), 0U);
  EXPECT_EQ(Fields().AudioIPC(), 0U);
  EXPECT_TRUE(
      log.Has(L"[CSdkMsgChannel::RegisterFeature] Need update Velm client above 5.6.0 to support Audio IPC "
              L"Channel5.5.9.12"));
}

TEST_F(SdkMsgChannelTest, AudioWithClient560OpensTheAudioIpcChannel) {
  FakeIpcRoute route;
  const FakeProduct client(ClientOfVersion(5, 6));
  LogCapture log;
  EXPECT_EQ(channel->RegisterFeature(kAudio), 1U);
  EXPECT_EQ(Fields().AudioIPC(), 1U);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::RegisterFeature] audio features, will go new ipc!"));
}

TEST_F(SdkMsgChannelTest, AudioWithAClientThatIsNotRegisteredHasNoVersionAndIsRefused) {
  auto options = ClientOfVersion(6, 0);
  options.registerCommand = false;
  const FakeProduct client(options);
  LogCapture log;
  EXPECT_EQ(channel->RegisterFeature(kAudio), 0U);
  EXPECT_TRUE(
      log.Has(L"[CSdkMsgChannel::RegisterFeature] Need update Velm client above 5.6.0 to support Audio IPC "
              L"Channel0.0.0.0"));
}

// ---- Service mode

TEST_F(SdkMsgChannelTest, ServiceModeRequestWithoutAClientIs2AndTheFlagsAreSet) {
  LogCapture log;
  EXPECT_EQ(channel->Client3rdSDKRequestRunUnderServiceMode(), 2U);
  EXPECT_EQ(Fields().RequestServiceMode(), 1U);
  EXPECT_EQ(g_sdkImplHelper.m_bServiceMode, 1U);
  EXPECT_EQ(Fields().ServiceModeIPC(), 0U);
  EXPECT_TRUE(
      log.Has(L"[CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode] HasVelmClient failed, errCode:2"));
  EXPECT_EQ(log.Texts().back(), L"[CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode] errCode:2");
}

TEST_F(SdkMsgChannelTest, ServiceModeWithClient579Is7AlthoughTheTextSays576) {
  FakeIpcRoute route;
  const FakeProduct client(ClientOfVersion(5, 7, 9));
  LogCapture log;
  EXPECT_EQ(channel->Client3rdSDKRequestRunUnderServiceMode(), 7U);
  EXPECT_EQ(Fields().ServiceModeIPC(), 0U);
  EXPECT_TRUE(
      log.Has(L"[CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode] Need update Velm client to "
              L"5.7.6 or later to support service mode! Current Velm Client Version:5.7.9.0"));
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode] errCode:7"));
}

TEST_F(SdkMsgChannelTest, ServiceModeWithClient580IsInForce) {
  FakeIpcRoute route;
  const FakeProduct client(ClientOfVersion(5, 8));
  LogCapture log;
  EXPECT_EQ(channel->Client3rdSDKRequestRunUnderServiceMode(), 0U);
  EXPECT_EQ(Fields().ServiceModeIPC(), 1U);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode] errCode:0"));
}

// ---- Version

TEST_F(SdkMsgChannelTest, VersionIntoNullIs999) {
  LogCapture log;
  EXPECT_EQ(channel->GetVelmClientVersion(nullptr), 999U);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::GetVelmClientVersion] errCode:999"));
}

TEST_F(SdkMsgChannelTest, VersionWithoutAClientIsOkAndKeepsTheArray) {
  uint16_t version[4] = {1, 2, 3, 4};
  LogCapture log;
  EXPECT_EQ(channel->GetVelmClientVersion(version), 0U);
  EXPECT_EQ(std::vector<uint16_t>(version, version + 4), (std::vector<uint16_t>{1, 2, 3, 4}));
  EXPECT_EQ(log.Texts().back(), L"[CSdkMsgChannel::GetVelmClientVersion] errCode:0");
}

TEST_F(SdkMsgChannelTest, VersionOfTheRegisteredClientIsRead) {
  const FakeProduct client(ClientOfVersion(5, 8, 3, 1581));
  uint16_t version[4] = {};
  EXPECT_EQ(channel->GetVelmClientVersion(version), 0U);
  EXPECT_EQ(std::vector<uint16_t>(version, version + 4), (std::vector<uint16_t>{5, 8, 3, 1581}));
}

}  // namespace
}  // namespace Velm3rdSDK
