// The built DLL and the client by the pipes: audio and service mode. Notifications by pipe arrive on a
// timer's thread some time after they were sent, so that they are waited for.

#include <chrono>
#include <map>

#include "gmock/gmock.h"
#include "tests/contract/ContractFixture.h"
#include "tests/contract/RawSinkInC.h"
#include "tests/support/PipePeer.h"

namespace velm_test {
namespace {

using testing::HasSubstr;

class PipeContract : public ContractTest {
 protected:
  // The host leaves before its client does.
  ~PipeContract() override { m_sdk.reset(); }

  // Waits until this many hosts have that pipe open.
  void ExpectOpen(const std::string& route, int hosts = 1) {
    const std::string wanted =
        R"({"event":"host","via":")" + route + R"(","hosts":)" + std::to_string(hosts) + "}";
    EXPECT_TRUE(WaitUntil([&] {
      m_client->WriteLine("via " + route + " wait-host 20");
      return m_client->ReadLineWith(R"("event":"host")") == wanted;
    })) << route;
  }

  // Waits until a host's pipe has been closed, and then until one is open again.
  void ExpectOpenAgain(const std::string& route) {
    EXPECT_TRUE(m_client->ReadLineWith(R"("state":"closed")"));
    ExpectOpen(route);
  }

  void StartAudio(const std::vector<std::string>& options = {}) {
    StartClient(options);
    m_sdk->GetSDKAvailableFeatures();
    ASSERT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL), 1U);
    SetAllCallbacks();
    ExpectOpen("audio");
  }

  void StartService(const std::vector<std::string>& options = {}) {
    StartClient(options);
    StartServiceWithoutClient();
    ExpectOpen("service");
  }

  void StartServiceWithoutClient() {
    ASSERT_EQ(m_sdk->TryRunningUnderServiceMode(), 0U);
    ASSERT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_SERVICE_MODE), 1U);
    SetAllCallbacks();
  }

  void Install() const {
    ChildProcess install(ProgramBeside(L"velm_client_sim.exe"), {"install"});
    EXPECT_EQ(install.Wait(), 0U) << install.Errors();
  }

  // Sends a notification by pipe, and waits until one more has arrived.
  void TellAndAwait(const std::string& line) {
    const int before = g_taken.general;
    Tell(line);
    EXPECT_TRUE(WaitUntil([&] { return g_taken.general > before; })) << line;
  }

  // The host lives, and a good notification gets through.
  void ExpectStillAtWork(const std::string& via) {
    TellAndAwait("via " + via + " event 77 meeting=M count=5 type=6 result=0:well");
    const auto& event = Taken<SdkConfEventInfo>();
    EXPECT_TRUE(WaitUntil([&] { return event.event == 77; }));
    EXPECT_STREQ(event.resultInfo, L"well");
    EXPECT_STREQ(event.meetingId, L"M");
  }
};

std::string CommandText(int id, const std::string& data, const std::string& rest) {
  return "{\"commandId\":" + std::to_string(id) + ",\"from\":1,\"version\":\"1.0.0\",\"data\":" + data +
         rest + "}";
}

const std::string kNoDevice = ",\"deviceName\":\"\"";
const std::string kNoIdentity = kNoDevice + ",\"usbVid\":\"\",\"usbPid\":\"\",\"deviceGUID\":\"\"";

// ---- Service mode

TEST_F(PipeContract, OrdinaryCommandsOfServiceModeArriveByItsPipeByteForByte) {
  StartService();
  EXPECT_EQ(m_sdk->GetIMPresenceStatus(), 0U);
  const std::string presence = NextCommandLine();
  EXPECT_THAT(presence, HasSubstr(R"("route":"service","pipe":"com.velm.ipc.client3rdsdk_0","process":)" +
                                  std::to_string(GetCurrentProcessId()) + R"(,"channelId":0)"));
  EXPECT_EQ(m_sdk->SetScreenShareCmd(2147483647), 0U);
  EXPECT_EQ(NextCommand(), CommandText(3, "[{\"ScreenShareCmd\":2147483647}]", kNoDevice));
  EXPECT_EQ(m_sdk->SetConfChatCmd(-1), 0U);
  EXPECT_EQ(NextCommand(), CommandText(4, "[{\"ChatCmd\":-1}]", kNoDevice));
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
  EXPECT_EQ(NextCommand(), CommandText(5, "[{\"CameraCmd\":1}]", kNoDevice));
  EXPECT_EQ(m_sdk->SetConfAudioCmd(2), 0U);
  EXPECT_EQ(NextCommand(), CommandText(6, "[{\"ConfAudioCmd\":2}]", kNoDevice));
  EXPECT_EQ(m_sdk->SetConfEventCmd(3), 0U);
  EXPECT_EQ(NextCommand(), CommandText(7, "[{\"ConfEventCmd\":3}]", kNoDevice));
  EXPECT_EQ(m_sdk->SetConfDeviceCmd(4), 0U);
  EXPECT_EQ(NextCommand(), CommandText(9, "[{\"ConfDeviceCmd\":4}]", kNoDevice));
  EXPECT_EQ(m_sdk->GetUIControlStatusCmd(5), 0U);
  EXPECT_EQ(NextCommand(), CommandText(10, "[{\"UIControlStatusCmd\":5}]", kNoDevice));
}

TEST_F(PipeContract, AudioCommandsAndOwnTextsOfServiceModeStillGoByWindow) {
  StartService();
  EXPECT_EQ(m_sdk->SetAudioCmd(5), 0U);
  EXPECT_THAT(NextCommandLine(), HasSubstr(R"("route":"window")"));
  EXPECT_EQ(m_sdk->SendMsgToVelmClient(L"{\"x\":1}"), 0U);
  EXPECT_THAT(NextCommandLine(), HasSubstr(R"("route":"window")"));
}

TEST_F(PipeContract, ServiceModeNeedsNoWindowOfTheClient) {
  StartService({"--windows", "none", "--pipes", "service"});
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
  EXPECT_EQ(NextCommand(), CommandText(5, "[{\"CameraCmd\":1}]", kNoDevice));
  EXPECT_EQ(m_sdk->SetAudioCmd(1), 5U);
}

TEST_F(PipeContract, EveryFamilyReachesItsCallbackByThePipeOfServiceMode) {
  StartService();
  TellAndAwait("via service presence 3 v2=4 reason=5 result=0:fine");
  EXPECT_TRUE(WaitUntil([] { return Taken<SdkPresenceInfo>().status == 3; }));
  EXPECT_EQ(Taken<SdkPresenceInfo>().statusV2, 4);
  EXPECT_STREQ(Taken<SdkPresenceInfo>().resultInfo, L"fine");
  const std::map<int, std::string> status = {{3, "share 31"}, {4, "chat 41"}, {5, "camera 51"}};
  for (const auto& [family, line] : status) {
    TellAndAwait("via service " + line);
    EXPECT_TRUE(WaitUntil([wanted = family] { return g_taken.lastFamily == wanted; })) << line;
    EXPECT_EQ(Taken<SdkStatusInfo>().status, family * 10 + 1);
  }
  TellAndAwait("via service confaudio 6 computer=1");
  EXPECT_TRUE(WaitUntil([] { return Taken<SdkConfAudioInfo>().status == 6; }));
  EXPECT_TRUE(Taken<SdkConfAudioInfo>().isInComputerAudio);
  TellAndAwait("via service event 7 meeting=81234567890 count=2 type=3");
  EXPECT_TRUE(WaitUntil([] { return Taken<SdkConfEventInfo>().event == 7; }));
  EXPECT_STREQ(Taken<SdkConfEventInfo>().meetingId, L"81234567890");
  TellAndAwait("via service pt 8");
  EXPECT_TRUE(WaitUntil([] { return Taken<SdkPTEventInfo>().event == 8; }));
  TellAndAwait("via service device 9 type=2");
  EXPECT_TRUE(WaitUntil([] { return Taken<SdkConfDeviceInfo>().status == 9; }));
  TellAndAwait("via service ui 10 type=4");
  EXPECT_TRUE(WaitUntil([] { return Taken<SdkUIControlInfo>().status == 10; }));
  EXPECT_EQ(g_taken.general, 9);
}

TEST_F(PipeContract, NotificationTextsOfAnyScriptArriveByPipe) {
  StartService();
  TellAndAwait("via service event 1 meeting=\"\xC3\xA9\xE4\xB8\xAD\xF0\x9D\x84\x9E <&'\"");
  EXPECT_STREQ(g_taken.notify.meetingId, L"\u00E9\u4E2D\xD834\xDD1E <&'");
}

TEST_F(PipeContract, CommandsWaitForAPipeThatIsNotThereYetAndTheNewest1000ComeInOrder) {
  Install();
  StartServiceWithoutClient();
  for (int i = 0; i <= 1000; ++i)
    EXPECT_EQ(m_sdk->SetCameraCmd(i), 0U);
  // Not by StartClient, which passes over what a waiting host's pipe brings before the client is ready.
  const std::vector<std::string> options = {"--no-install"};
  m_client = std::make_unique<ChildProcess>(ProgramBeside(L"velm_client_sim.exe"), options);
  for (int i = 1; i <= 1000; ++i)
    ASSERT_EQ(NextCommand(), CommandText(5, "[{\"CameraCmd\":" + std::to_string(i) + "}]", kNoDevice));
}

TEST_F(PipeContract, ServiceModeHasNoDeviceTable) {
  StartService();
  EXPECT_EQ(m_sdk->SetAudioDevice(L"Pipe device", L"", L"", 0), 1U);
  EXPECT_FALSE(TableHas(L"Pipe device"));
}

// ---- Audio

TEST_F(PipeContract, AudioCommandsGoByTheAudioPipeAndOrdinaryOnesByWindow) {
  StartAudio();
  EXPECT_EQ(m_sdk->SetAudioCmd(-2147483647 - 1), 0U);
  const std::string line = NextCommandLine();
  const std::string id = std::to_string(GetCurrentProcessId());
  EXPECT_THAT(line, HasSubstr(R"("route":"audio","pipe":"com.velm.ipc.audiosdk_)" + id + R"(","process":)" +
                              id + R"(,"channelId":)" + id));
  EXPECT_EQ(m_sdk->SetAudioCmd(5), 0U);
  EXPECT_EQ(NextCommand(), CommandText(2, "[{\"AudioCmd\":5}]", kNoIdentity));
  EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
  EXPECT_THAT(NextCommandLine(), HasSubstr(R"("route":"window")"));
}

TEST_F(PipeContract, OwnTextsGoByTheAudioPipeWhateverTheyAre) {
  StartAudio();
  EXPECT_EQ(m_sdk->SendMsgToVelmClient(L"{\"commandId\":5,\"t\":\"\u00E9 <&>\"}"), 0U);
  EXPECT_EQ(NextCommand(), "{\"commandId\":5,\"t\":\"\xC3\xA9 <&>\"}");
}

TEST_F(PipeContract, DeviceSelectionGoesByBothRoutes) {
  StartAudio();
  EXPECT_EQ(m_sdk->SetAudioDeviceV2(L"Headset", L"{G}", L"0A12", L"1004", 1), 1U);
  std::map<std::string, std::string> lines;
  for (int i = 0; i < 2; ++i) {
    const std::string line = NextCommandLine();
    lines[line.find(R"("route":"audio")") != std::string::npos ? "audio" : "window"] = line;
  }
  EXPECT_THAT(lines["audio"], HasSubstr(R"("AudioCmd":99)"));
  EXPECT_THAT(lines["window"], HasSubstr(R"("commandId":11)"));
}

TEST_F(PipeContract, AudioNotificationsByPipeReachRawSinkGeneralAndFamilyCallback) {
  StartAudio();
  m_sdk->InitVelm3rdSdkChannel(RawSinkInC());
  const int before = RawTextCount();
  TellAndAwait("via audio audio 7 device=Headset guid={G} result=12:no");
  EXPECT_TRUE(WaitUntil([] { return Taken<SdkAudioInfo>().audioCmd == 7; }));
  EXPECT_EQ(Taken<SdkAudioInfo>().code, 12);
  EXPECT_STREQ(Taken<SdkAudioInfo>().deviceName, L"Headset");
  EXPECT_STREQ(Taken<SdkAudioInfo>().deviceGUID, L"{G}");
  EXPECT_EQ(RawTextCount(), before + 1);
  TellAndAwait("camera 3");  // and by window at the same time
  EXPECT_EQ(g_taken.notify.commandId, 5);
}

TEST_F(PipeContract, DeviceFilterHoldsBackWhatComesByPipe) {
  StartAudio();
  EXPECT_EQ(m_sdk->SetAudioDevice(L"Headset", nullptr, nullptr, 0), 1U);
  Tell("via audio audio 1 device=Other");
  TellAndAwait("via audio audio 2 device=headset");
  EXPECT_EQ(g_taken.general, 1);
  EXPECT_EQ(g_taken.notify.value, 2);
}

TEST_F(PipeContract, EmptyTextByPipeIsNoEmptyNotification) {
  StartAudio();
  Tell("via audio empty");
  ExpectStillAtWork("audio");
  EXPECT_EQ(g_taken.emptyGeneral, 0);
}

TEST_F(PipeContract, RegisteringAudioAfterTheStartIsTooLateForThePipe) {
  StartClient({});
  SetAllCallbacks();
  EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL), 1U);
  EXPECT_EQ(m_sdk->SetAudioCmd(5), 0U);
  EXPECT_THAT(NextCommandLine(), HasSubstr(R"("route":"window")"));
  Tell("via audio camera 1", 0);
}

TEST_F(PipeContract, CallbackByPipeMayCallACommand) {
  static Sdk* sdk = nullptr;
  sdk = m_sdk.get();
  StartAudio();
  m_sdk->SetAudioCallBack([](const SdkAudioInfo* info) { sdk->SetAudioCmd(info->audioCmd + 1); });
  Tell("via audio audio 6");
  EXPECT_THAT(NextCommand(), HasSubstr("\"AudioCmd\":7"));
}

TEST_F(PipeContract, CallbackByPipeMayDestroyTheChannel) {
  static Sdk* sdk = nullptr;
  static std::atomic<int> destroyed;
  sdk = m_sdk.get();
  destroyed = 0;
  StartAudio();
  m_sdk->SetAudioCallBack([](const SdkAudioInfo*) {
    sdk->DestroySdkChannel();
    ++destroyed;
  });
  Tell("via audio audio 6");
  EXPECT_TRUE(WaitUntil([] { return destroyed == 1; }));
  EXPECT_TRUE(m_client->ReadLineWith(R"("state":"closed")"));
  EXPECT_EQ(m_sdk->SetAudioCmd(1), 999U);
}

TEST_F(PipeContract, NothingArrivesAfterDestroyAndEverythingAgainAfterTheNextSetter) {
  StartAudio();
  m_sdk->DestroySdkChannel();
  EXPECT_TRUE(m_client->ReadLineWith(R"("state":"closed")"));
  Tell("via audio camera 1", 0);
  EXPECT_EQ(g_taken.general, 0);
  m_sdk->SetCallBackFunc(OnGeneral);
  ExpectOpen("audio");
  ExpectStillAtWork("audio");
}

// ---- Two hosts

TEST_F(PipeContract, TwoHostsHaveAnAudioPipeEach) {
  StartAudio();
  ChildProcess second(ProgramBeside(L"velm_host.exe"), {"--audio"});
  ASSERT_TRUE(second.WriteLine("watch --callbacks general"));
  ASSERT_TRUE(second.ReadLineWith("SetCallBackFunc(callback)"));
  ExpectOpen("audio", 2);
  Tell("via audio audio 1", 2);
  EXPECT_TRUE(second.ReadLineWith("value=1 commandId=2"));
  EXPECT_TRUE(WaitUntil([] { return g_taken.general == 1; }));

  Tell("via audio:" + std::to_string(second.Id()) + " audio 2", 1);
  EXPECT_TRUE(second.ReadLineWith("value=2 commandId=2"));
  ASSERT_TRUE(second.WriteLine("audio 8"));
  EXPECT_THAT(NextCommandLine(), HasSubstr("\"channelId\":" + std::to_string(second.Id())));
  EXPECT_EQ(m_sdk->SetAudioCmd(9), 0U);
  EXPECT_THAT(NextCommandLine(), HasSubstr("\"channelId\":" + std::to_string(GetCurrentProcessId())));
  EXPECT_EQ(g_taken.general, 1);

  second.Kill();
  EXPECT_TRUE(m_client->ReadLineWith(R"("state":"closed")"));
  ExpectStillAtWork("audio");
}

TEST_F(PipeContract, SecondHostInServiceModeWaitsUntilTheFirstHasLeft) {
  StartService();
  ChildProcess second(ProgramBeside(L"velm_host.exe"), {"--service"});
  ASSERT_TRUE(second.WriteLine("watch --callbacks general"));
  ASSERT_TRUE(second.ReadLineWith("SetCallBackFunc(callback)"));
  Tell("via service camera 1", 1);
  m_sdk->DestroySdkChannel();
  EXPECT_TRUE(m_client->ReadLineWith("\"state\":\"announced\",\"process\":" + std::to_string(second.Id())));
  Tell("via service camera 2", 1);
  EXPECT_TRUE(second.ReadLineWith("value=2 commandId=5"));
}

// ---- A client that misbehaves

TEST_F(PipeContract, ClientThatDiesIsFoundAgainWhenItIsBack) {
  StartService();
  for (int round = 0; round < 3; ++round) {
    m_client->Kill();
    StartClient({"--no-install"});
    ExpectOpen("service");
    EXPECT_EQ(m_sdk->SetCameraCmd(round), 0U);
    EXPECT_THAT(NextCommand(), HasSubstr("\"CameraCmd\":" + std::to_string(round)));
    ExpectStillAtWork("service");
  }
}

TEST_F(PipeContract, AudioClientThatDiesInTheMiddleOfACommandIsFoundAgain) {
  StartAudio({"--die-after", "1"});
  EXPECT_EQ(m_sdk->SetAudioCmd(1), 0U);
  EXPECT_EQ(m_client->Wait(), 9U);
  StartClient({"--no-install"});
  ExpectOpen("audio");
  EXPECT_EQ(m_sdk->SetAudioCmd(2), 0U);
  EXPECT_THAT(NextCommand(), HasSubstr("\"AudioCmd\":2"));
  ExpectStillAtWork("audio");
}

TEST_F(PipeContract, PipeThatIsDroppedIsOpenedAgain) {
  StartAudio();
  for (int round = 0; round < 5; ++round) {
    EXPECT_TRUE(m_client->WriteLine("via audio drop"));
    ExpectOpenAgain("audio");
  }
  ExpectStillAtWork("audio");
}

TEST_F(PipeContract, ClientThatDoesNotReadDoesNotHoldTheCallerAndLosesNothing) {
  StartService({"--stall"});
  constexpr int kCount = 300;
  for (int i = 0; i < kCount; ++i)
    EXPECT_EQ(m_sdk->SetCameraCmd(i), 0U);
  EXPECT_TRUE(m_client->WriteLine("stall off"));
  for (int i = 0; i < kCount; ++i)
    ASSERT_EQ(NextCommand(), CommandText(5, "[{\"CameraCmd\":" + std::to_string(i) + "}]", kNoDevice));
}

TEST_F(PipeContract, ClientThatDoesNotReadDoesNotHoldTheDestructionUp) {
  StartService({"--stall"});
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(m_sdk->SetCameraCmd(i), 0U);
  EXPECT_EQ(m_sdk->DestroySdkChannel(), 0U);
}

TEST_F(PipeContract, EveryByteByItselfMakesTheSameNotifications) {
  StartAudio({"--split"});
  TellAndAwait("via audio audio 7 device=Headset");
  EXPECT_STREQ(g_taken.notify.deviceName, L"Headset");
  ExpectStillAtWork("audio");
}

TEST_F(PipeContract, GarbageMakesTheHostDeafOnThatPipeUntilItBreaks) {
  StartAudio();
  Tell("via audio garbage 100000");
  Tell("via audio camera 1");
  TellAndAwait("camera 2");  // the window is not touched by it
  EXPECT_EQ(g_taken.notify.value, 2);
  EXPECT_TRUE(m_client->WriteLine("via audio drop"));
  ExpectOpenAgain("audio");
  ExpectStillAtWork("audio");
  EXPECT_EQ(g_taken.general, 2);
}

TEST_F(PipeContract, FramesThatSayNothingArePassedOver) {
  StartAudio();
  for (const char* line :
       {"frame 0",
        "frame 1",
        "frame -1 x",
        "frame 1 <com.Tessarn.ipc.internel.connect_req/>",
        "frame 2 <x/>",
        "frame 3 <x/>",
        "frame 40521",
        "frame 40521 x",
        "frame 40521 <a/>",
        "frame 40521 <com.velm.app.3rd.audiosdk.sendaudiocmd.notify/>",
        "frame 40521 <com.velm.app.3rd.audiosdk.sendaudiocmd.notify ChannelId=\"x\" AudioCmdNotify=\"{}\"/>",
        "frame 40521 <com.velm.app.3rd.audiosdk.sendaudiocmd.notify ChannelId=\"1\" AudioCmdNotify=\"{\"/>",
        "frame 40353 <com.velm.app.log.clientexit version=\"10000\"/>",
        "frame 40353 x",
        "frame 40354 x",
        "frame 40354 <com.velm.app.log.subchannel_add ChannelId=\"1\" version=\"10000\"/>",
        "frame 40355 x",
        "frame 40356 <x/>",
        "frame 40526 <x/>",
        "frame 2147483647 <x/>"})
    Tell(std::string("via audio ") + line);
  EXPECT_EQ(g_taken.general, 0);
  ExpectStillAtWork("audio");
}

TEST_F(PipeContract, UnfinishedFrameOfAClientThatLeavesIsForgotten) {
  StartAudio();
  Tell("via audio bytes 64 00 00 00 49 9e 00 00 3c 63");
  EXPECT_TRUE(m_client->WriteLine("via audio drop"));
  ExpectOpenAgain("audio");
  ExpectStillAtWork("audio");
}

TEST_F(PipeContract, MegabyteTextsArriveByPipe) {
  StartService();
  const std::string megabyte(1 << 20, 'x');
  TellAndAwait("via service raw {\"commandId\":7,\"data\":[{\"ConfEvent\":5}],\"meetingId\":\"" + megabyte +
               "\"}");
  EXPECT_EQ(g_taken.notify.value, 5);
  EXPECT_STREQ(g_taken.notify.meetingId, L"");
}

TEST_F(PipeContract, FloodArrivesInOrderAndNoneIsLost) {
  StartService();
  constexpr int kCount = 5000;
  EXPECT_TRUE(m_client->WriteLine("via service flood " + std::to_string(kCount) + " camera"));
  EXPECT_TRUE(WaitUntil([] { return g_taken.general == kCount; }));
  EXPECT_EQ(g_taken.outOfOrder, 0);
  EXPECT_EQ(g_taken.notify.value, kCount - 1);
}

TEST_F(PipeContract, FloodInBothDirectionsAtOnce) {
  StartService();
  constexpr int kCount = 1000;
  EXPECT_TRUE(m_client->WriteLine("via service flood " + std::to_string(kCount) + " camera"));
  for (int i = 0; i < kCount; ++i)
    EXPECT_EQ(m_sdk->SetCameraCmd(i), 0U);
  for (int i = 0; i < kCount; ++i)
    ASSERT_THAT(NextCommand(), HasSubstr("\"CameraCmd\":" + std::to_string(i) + "}"));
  EXPECT_TRUE(WaitUntil([] { return g_taken.general == kCount; }));
  EXPECT_EQ(g_taken.outOfOrder, 0);
}

TEST_F(PipeContract, DestroyInTheMiddleOfAFloodEndsIt) {
  StartService();
  EXPECT_TRUE(m_client->WriteLine("via service flood 100000 camera"));
  EXPECT_TRUE(WaitUntil([] { return g_taken.general > 10; }));
  EXPECT_EQ(m_sdk->DestroySdkChannel(), 0U);
  const int after = g_taken.general;
  EXPECT_TRUE(m_client->ReadLineWith(R"("event":"flooded")"));
  EXPECT_LE(g_taken.general, after + 1);  // one callback may still have been running
}

// The break is found by a tick, which is still on its way out of the library when the host unloads it.
TEST_F(PipeContract, TheDllMayBeUnloadedWhileABreakIsBeingHandled) {
  constexpr int kRounds = 40;
  Install();
  const std::string channel = "com.velm.ipc.audiosdk_" + std::to_string(GetCurrentProcessId());
  m_sdk.reset();
  for (int round = 0; round < kRounds; ++round) {
    PipePeer server = PipePeer::Serve(channel);
    ASSERT_TRUE(server.IsGood()) << round;
    m_sdk = std::make_unique<Sdk>();
    m_sdk->GetSDKAvailableFeatures();
    ASSERT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL), 1U);
    m_sdk->SetCallBackFunc(OnGeneral);
    ASSERT_TRUE(server.AwaitClient()) << round;
    server.Close();
    Sleep(static_cast<DWORD>(round * 4));  // before, during and after that tick
    m_sdk.reset();
  }
}

}  // namespace
}  // namespace velm_test
