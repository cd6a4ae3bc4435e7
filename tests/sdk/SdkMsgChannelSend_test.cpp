// The routes of commands. What arrives at a window of the client is compared byte for byte.

#include <windows.h>

#include "sdk/WindowRoute.h"
#include "tests/sdk/ChannelFixture.h"

namespace Velm3rdSDK {
namespace {

using velm_tools::FakeProduct;

constexpr uint32_t kNoRoute = 2;

class SendTest : public ChannelTest {
 protected:
  using Strings = std::vector<std::string>;
  using Lines = std::vector<std::wstring>;

  void OpenAudioRoute() {
    m_route = std::make_unique<FakeIpcRoute>();
    Fields().AudioIPC() = 1;
    Fields().AudioClient() = m_route->MakeAudioClient();
  }
  void OpenServiceModeRoute() {
    m_route = std::make_unique<FakeIpcRoute>();
    Fields().ServiceModeIPC() = 1;
    Fields().ServiceModeClient() = m_route->MakeServiceModeClient();
  }
  ~SendTest() override { Exit(*channel); }

  std::unique_ptr<FakeIpcRoute> m_route;
};

// With a client installed; whether it runs is the test's matter.
class SendToInstalledClient : public SendTest {
  const FakeProduct m_client{ClientOfVersion(5, 8)};
};

// ---- No client, no window

TEST_F(SendTest, WithoutAClientIs2BeforeAnyWindowLookup) {
  const RecordingWindow window(kClientWindowClass);
  LogCapture log;
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{}", kMsgToOrdinary), 2U);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(L"{}"), 2U);
  EXPECT_TRUE(window.Received().empty());
  EXPECT_EQ(log.Texts(), (Lines{L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] pData:{}",
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] HasVelmClient failed!",
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] errCode:2, enumMsgTo:0",
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClient] pData:{}"}));
}

TEST_F(SendTest, NullTextIs6EvenWithoutAClient) {
  LogCapture log;
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(nullptr, kMsgToAudio), 6U);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientByWindow(nullptr, kMsgToAudio), 6U);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(nullptr), 6U);
  EXPECT_EQ(log.Texts(), (Lines{L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] pData is NULL!",
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] errCode:6, enumMsgTo:1",
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] pData is NULL!",
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] errCode:6, enumMsgTo:1"}));
}

TEST_F(SendToInstalledClient, ThatDoesNotRunIs5) {
  LogCapture log;
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{}", kMsgToOrdinary), 5U);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(L"{}"), 5U);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] GetVelmClientIPCWindow failed!"));
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] errCode:5, enumMsgTo:0"));
}

TEST_F(SendToInstalledClient, HelperWindowAloneDoesNotCountAsRunning) {
  const RecordingWindow helper(kClientHelperWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{}", kMsgToOrdinary), 5U);
  EXPECT_TRUE(helper.Received().empty());
}

TEST_F(SendToInstalledClient, ThatVanishesBetweenTwoCallsIs5TheSecondTime) {
  {
    const RecordingWindow window(kClientWindowClass);
    EXPECT_EQ(channel->SendValueCommand(kCommandCamera, 1), 0U);
  }
  EXPECT_EQ(channel->SendValueCommand(kCommandCamera, 1), 5U);
}

// ---- The window route

TEST_F(SendToInstalledClient, TextArrivesAsUtf8WithItsTerminatorUnderId10) {
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{\"é\":\"\xD83D\xDE00\"}", kMsgToOrdinary), 0U);
  const auto received = window.Received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].id, 10U);
  EXPECT_EQ(received[0].bytes, std::string("{\"\xC3\xA9\":\"\xF0\x9F\x98\x80\"}\0", 14));
}

TEST_F(SendToInstalledClient, EachOfTheTwoWindowsGetsOneCopy) {
  const RecordingWindow host(kClientWindowClass);
  const RecordingWindow helper(kClientHelperWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{}", kMsgToAudio), 0U);
  EXPECT_EQ(host.Texts(), (Strings{"{}"}));
  EXPECT_EQ(helper.Texts(), (Strings{"{}"}));
}

TEST_F(SendToInstalledClient, EveryWindowOfAClassGetsACopy) {
  const RecordingWindow first(kClientWindowClass);
  const RecordingWindow second(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{}", kMsgToOrdinary), 0U);
  EXPECT_EQ(first.Texts(), (Strings{"{}"}));
  EXPECT_EQ(second.Texts(), (Strings{"{}"}));
}

TEST(WindowRouteClass, NamesAreComparedWholeAndWithCase) {
  EXPECT_TRUE(IsClientWindowClass(L"VelmPTApp_HostWindow"));
  EXPECT_TRUE(IsClientWindowClass(L"VelmPTApp_VVHOST_HostWindow"));
  for (const wchar_t* name : {L"", L"velmPTApp_HostWindow", L"VelmPTApp_HostWindow2", L"VelmPTApp_HostWindo",
                              L"VelmLauncher3rdSdk_HostWindow"})
    EXPECT_FALSE(IsClientWindowClass(name));
}

TEST_F(SendToInstalledClient, ResultOfTheClientIsIgnored) {
  const velm_sim::ClientWindow window(kClientWindowClass,
                                      [](const velm_sim::CopyData&) -> intptr_t { return 4711; });
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{}", kMsgToOrdinary), 0U);
}

TEST_F(SendToInstalledClient, OwnTextOfNothingIs6AndSendsNothing) {
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(L""), 6U);
  EXPECT_TRUE(window.Received().empty());
}

TEST_F(SendToInstalledClient, EmptyTextByWindowIsSentAsNoDataOfSize1AndIs6) {
  const RecordingWindow window(kClientWindowClass);
  LogCapture log;
  EXPECT_EQ(channel->SdkSendMsgToVelmClientByWindow(L"", kMsgToOrdinary), 6U);
  const auto received = window.Received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].id, 10U);
  EXPECT_LE(received[0].bytes.size(), 1U);
  EXPECT_EQ(received[0].Text(), "");
  EXPECT_EQ(log.Texts(), (Lines{L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] Unicode2UTF8 failed!",
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] errCode:6, enumMsgTo:0"}));
}

TEST_F(SendToInstalledClient, TextOf65536BytesArrivesWholeAndALongerOneCutThere) {
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(std::wstring(65536, L'x').c_str()), 0U);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(std::wstring(65537, L'x').c_str()), 0U);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(std::wstring(200000, L'x').c_str()), 0U);
  const auto received = window.Received();
  ASSERT_EQ(received.size(), 3U);
  EXPECT_EQ(received[0].bytes, std::string(65536, 'x') + '\0');
  EXPECT_EQ(received[1].bytes, std::string(65537, 'x'));
  EXPECT_EQ(received[2].bytes, std::string(65537, 'x'));
}

TEST_F(SendToInstalledClient, LoneSurrogateIsReplacedAndSent) {
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(L"a\xD800z"), 0U);
  EXPECT_EQ(window.Texts(), (Strings{"a\xEF\xBF\xBDz"}));
}

TEST_F(SendTest, WindowRouteAloneAsksForAWindowAndNotForAProduct) {
  LogCapture log;
  EXPECT_EQ(channel->SdkSendMsgToVelmClientByWindow(L"{}", 7), 5U);
  EXPECT_EQ(log.Texts(),
            (Lines{L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] GetVelmClientIPCWindow failed!",
                   L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] errCode:5, enumMsgTo:7"}));
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientByWindow(L"{}", 7), 0U);
  EXPECT_EQ(window.Texts(), (Strings{"{}"}));
}

TEST_F(SendToInstalledClient, LogTellsTheWholeRoadOfACommand) {
  const RecordingWindow window(kClientWindowClass);
  LogCapture log;
  channel->SetAudioFunc(5);
  const std::wstring text =
      LR"({"commandId":2,"from":1,"version":"1.0.0","data":[{"AudioCmd":5}],"deviceName":"",)"
      LR"("usbVid":"","usbPid":"","deviceGUID":""})";
  EXPECT_EQ(log.Texts(), (Lines{L"[CSdkMsgChannel::SetAudioFunc] strTmp:" + text,
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] pData:" + text,
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] errCode:0, enumMsgTo:1",
                                L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] errCode:0, enumMsgTo:1"}));
}

TEST_F(SendTest, PresenceQueryAndHotSwitchLogTheirTextAndTheOthersDoNot) {
  LogCapture log;
  channel->GetIMPresenceStatus();
  EXPECT_TRUE(log.Lines()[0].find(L"[CSdkMsgChannel::GetIMPresenceStatus] strTmp:{\"commandId\":1,") !=
              std::wstring::npos);
  log.Clear();
  channel->SetAudioHotSwitch(3);
  EXPECT_TRUE(log.Lines()[0].find(L"[CSdkMsgChannel::SetAudioFunc] strTmp:{\"commandId\":2,") !=
              std::wstring::npos);
  log.Clear();
  channel->SendValueCommand(kCommandCamera, 1);
  channel->SendDeviceSelected();
  for (const std::wstring& line : log.Lines())
    EXPECT_EQ(line.find(L"strTmp"), std::wstring::npos);
}

// ---- The choice of the route

TEST_F(SendToInstalledClient, AnyOtherRouteSendsNothingAndIs0) {
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{}", kNoRoute), 0U);
  EXPECT_TRUE(window.Received().empty());
}

TEST_F(SendToInstalledClient, AudioCommandGoesByTheAudioClientAndTheRestByWindow) {
  OpenAudioRoute();
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{a}", kMsgToAudio), 0U);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{o}", kMsgToOrdinary), 0U);
  EXPECT_EQ(m_route->audioCalls, (Calls{L"Send {a}"}));
  EXPECT_EQ(window.Texts(), (Strings{"{o}"}));
}

TEST_F(SendToInstalledClient, AudioRouteStillNeedsTheClientsWindow) {
  OpenAudioRoute();
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{a}", kMsgToAudio), 5U);
  EXPECT_TRUE(m_route->audioCalls.empty());
}

TEST_F(SendToInstalledClient, MissingAudioClientFallsBackToTheWindow) {
  Fields().AudioIPC() = 1;
  const RecordingWindow window(kClientWindowClass);
  LogCapture log;
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{a}", kMsgToAudio), 0U);
  EXPECT_EQ(window.Texts(), (Strings{"{a}"}));
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] m_pIPCClient is NULL!"));
}

TEST_F(SendToInstalledClient, WithTheAudioRouteEveryOwnTextGoesThatWay) {
  OpenAudioRoute();
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(LR"({"commandId":5})"), 0U);
  EXPECT_EQ(m_route->audioCalls, (Calls{LR"(Send {"commandId":5})"}));
  EXPECT_TRUE(window.Received().empty());
}

TEST_F(SendToInstalledClient, OwnTextWithTheAudioFlagAndNoAudioClientIsLostAndIs0) {
  Fields().AudioIPC() = 1;
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(L"{}"), 0U);
  EXPECT_TRUE(window.Received().empty());
}

TEST_F(SendToInstalledClient, ServiceModeQueuesACommandWithNoWindowTest) {
  OpenServiceModeRoute();
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{o}", kMsgToOrdinary), 0U);
  EXPECT_EQ(m_route->serviceCalls, (Calls{L"Send {o}"}));
}

TEST_F(SendToInstalledClient, ServiceModeSendsAudioCommandsByWindow) {
  OpenServiceModeRoute();
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{a}", kMsgToAudio), 5U);
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{a}", kMsgToAudio), 0U);
  EXPECT_EQ(window.Texts(), (Strings{"{a}"}));
  EXPECT_TRUE(m_route->serviceCalls.empty());
}

TEST_F(SendToInstalledClient, OwnTextNeedsTheWindowInServiceModeToo) {
  OpenServiceModeRoute();
  EXPECT_EQ(channel->SdkSendMsgToVelmClient(L"{}"), 5U);
}

TEST_F(SendToInstalledClient, MissingServiceModeClientFallsBackToTheWindow) {
  Fields().ServiceModeIPC() = 1;
  LogCapture log;
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{o}", kMsgToOrdinary), 5U);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] m_p3rdSDKIPCClient is NULL!"));
  const RecordingWindow window(kClientWindowClass);
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{o}", kMsgToOrdinary), 0U);
  EXPECT_EQ(window.Texts(), (Strings{"{o}"}));
}

TEST_F(SendTest, ServiceModeWithoutAClientIsStill2) {
  OpenServiceModeRoute();
  EXPECT_EQ(channel->SdkSendMsgToVelmClientV(L"{o}", kMsgToOrdinary), 2U);
  EXPECT_TRUE(m_route->serviceCalls.empty());
}

TEST_F(SendToInstalledClient, BuiltCommandsTakeTheirRoutes) {
  OpenAudioRoute();
  const RecordingWindow window(kClientWindowClass);
  channel->SetAudioFunc(1);
  channel->SetAudioHotSwitch(1);
  EXPECT_EQ(m_route->audioCalls.size(), 2U);
  channel->GetIMPresenceStatus();
  channel->SendDeviceSelected();
  for (const CommandId id : {kCommandScreenShare, kCommandConfChat, kCommandCamera, kCommandConfAudio,
                             kCommandConfEvent, kCommandConfDevice, kCommandUIControl})
    channel->SendValueCommand(id, 1);
  EXPECT_EQ(window.Texts().size(), 9U);
  EXPECT_EQ(m_route->audioCalls.size(), 2U);
}

// ---- Conversion

TEST(WindowRouteUtf8, NullAndEmptyGiveNothing) {
  EXPECT_EQ(ToUtf8(nullptr), nullptr);
  EXPECT_EQ(ToUtf8(L""), nullptr);
}

TEST(WindowRouteUtf8, TextIsTerminated) {
  EXPECT_STREQ(ToUtf8(L"\u00E9\u4E2D").get(), "\xC3\xA9\xE4\xB8\xAD");
}

}  // namespace
}  // namespace Velm3rdSDK
