// The programs against each other by the pipes: the simulator, the host console and velm_trace. Where a host
// must do what the library never does, the test holds the host's end itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/support/PipePeer.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/WaitUntil.h"
#include "tests/tools/EndToEnd.h"
#include "tools/client_simulator/ClientWindow.h"
#include "tools/fake_product/FakeProduct.h"

namespace velm_test {
namespace {

using testing::HasSubstr;

const std::string kService = "com.velm.ipc.client3rdsdk_";
const std::string kAudio = "com.velm.ipc.audiosdk_";

class PipesTest : public testing::Test {
 protected:
  ~PipesTest() override {
    if (m_simulator) {
      m_simulator->CloseInput();
      m_simulator->Wait();
    }
    velm_tools::FakeProduct::RemoveFrom(velm_tools::FakeProduct::DefaultDirectory());
  }

  void Start(const std::vector<std::string>& options) {
    m_simulator = std::make_unique<ChildProcess>(ProgramBeside(L"velm_client_sim.exe"), options);
    m_ready = m_simulator->ReadLine().value_or("");
    ASSERT_THAT(m_ready, HasSubstr(R"("event":"ready")")) << m_simulator->Errors();
  }

  void Tell(const std::string& line) { EXPECT_TRUE(m_simulator->WriteLine(line)); }
  std::string Next(const std::string& part) {
    return m_simulator->ReadLineWith(part).value_or("nothing with " + part);
  }
  std::string Sent(const std::string& line) {
    Tell(line);
    return Next(R"("event":"sent")");
  }

  // Asks the helper window for the pipe of this id, and opens it.
  PipePeer OpenAudio(uint32_t id) {
    PostMessageW(FindWindowW(velm_sim::kHelperWindow, nullptr), velm_sim::kPipeRequest, id, 0);
    EXPECT_THAT(Next(R"("state":"requested")"), HasSubstr(kAudio + std::to_string(static_cast<int>(id))));
    return Opened(kAudio + std::to_string(static_cast<int>(id)));
  }

  PipePeer Opened(const std::string& name) {
    PipePeer host = PipePeer::Open(name);
    EXPECT_TRUE(WaitUntil([&] {
      if (!host.IsGood()) host = PipePeer::Open(name);
      return host.IsGood();
    })) << name;
    Next(R"("state":"open")");
    return host;
  }

  std::unique_ptr<ChildProcess> m_simulator;
  std::string m_ready;
};

std::string Announcement(uint32_t process) {
  return FrameOf(1, "<com.Tessarn.ipc.internel.connect_req ProcessID=\"" + std::to_string(process) +
                        "\" version=\"10000\"/>\n");
}

std::string AudioCommand(const std::string& text) {
  return FrameOf(40520, "<com.velm.app.3rd.audiosdk.sendaudiocmd.request ChannelId=\"5\" AudioCmdRequest=\"" +
                            text + "\" version=\"10000\"/>\n");
}

// ---- The simulator alone

TEST_F(PipesTest, ReadySaysWhatIsServed) {
  Start({"--service-id", "4294967295", "--pipe-suffix", ".x"});
  EXPECT_THAT(m_ready, HasSubstr(R"("servicePipe":"com.velm.ipc.client3rdsdk_-1.x","audioPipes":true})"));
  EXPECT_NE(FindWindowW(velm_sim::kHelperWindow, nullptr), nullptr);
}

TEST_F(PipesTest, NoneMeansNeitherPipeNorHelperWindow) {
  Start({"--pipes", "none"});
  EXPECT_THAT(m_ready, HasSubstr(R"("servicePipe":null,"audioPipes":false})"));
  EXPECT_EQ(FindWindowW(velm_sim::kHelperWindow, nullptr), nullptr);
  EXPECT_FALSE(PipePeer::Open(kService + "0").IsGood());
  Tell("via audio share 1");
  EXPECT_EQ(m_simulator->Wait(), 1U);
  EXPECT_THAT(m_simulator->Errors(), HasSubstr("no pipe for audio is served: see --pipes"));
}

TEST_F(PipesTest, PipeThatIsServedAlreadyIs1) {
  const PipePeer other = PipePeer::Serve(kService + "7");
  auto simulator = StartSimulator({"--service-id", "7"});
  EXPECT_EQ(simulator.Wait(), 1U);
  EXPECT_THAT(simulator.Errors(), HasSubstr("cannot serve the pipe 'com.velm.ipc.client3rdsdk_7'"));
}

TEST_F(PipesTest, CommandsByPipeAreReportedExactly) {
  Start({});
  PipePeer host = OpenAudio(5);
  EXPECT_TRUE(host.Write(Announcement(4711) + AudioCommand("{&quot;a&quot;:1}")));
  EXPECT_EQ(
      Next("announced"),
      R"({"event":"pipe","route":"audio","pipe":"com.velm.ipc.audiosdk_5","state":"announced","process":4711})");
  EXPECT_EQ(
      Next("command"),
      R"({"event":"command","number":1,"route":"audio","pipe":"com.velm.ipc.audiosdk_5","process":4711,"channelId":5,"bytes":7,"terminated":false,"text":"{\"a\":1}","command":{"a":1}})");
}

TEST_F(PipesTest, NotificationsAreTheBytesOfTheWire) {
  Start({"--service-id", "3"});
  PipePeer host = Opened(kService + "3");
  EXPECT_EQ(
      Sent("via service camera 5"),
      R"({"event":"sent","via":"service","hosts":1,"unanswered":0,"bytes":44,"text":"{\"commandId\":5,\"data\":[{\"CameraStatus\":5}]}"})");
  EXPECT_EQ(host.ReadFrame(),
            (Frame{40526,
                   "<com.velm.app.3rd.clientsdk.send3rdsdkcmd.notify ChannelId=\"3\" SDKCmdNotify=\""
                   "{&quot;commandId&quot;:5,&quot;data&quot;:[{&quot;CameraStatus&quot;:5}]}\" "
                   "version=\"10000\"/>\n"}));
  Sent("via service frame -2 <x/>");
  EXPECT_EQ(host.ReadFrame(), (Frame{-2, "<x/>"}));
  Sent("via service bytes 01 02");
  EXPECT_EQ(host.Read(2), "\x01\x02");
  Sent("via service garbage 300");
  EXPECT_EQ(host.Read(300).size(), 300U);
  EXPECT_THAT(Sent("via service:4 camera 1"), HasSubstr(R"("hosts":0)"));
  EXPECT_THAT(Sent("via audio camera 1"), HasSubstr(R"("hosts":0)"));
}

TEST_F(PipesTest, GoodbyeIsConfirmedOrWithheld) {
  Start({});
  PipePeer host = OpenAudio(5);
  const std::string goodbye = FrameOf(40353, "<com.velm.app.log.clientexit version=\"10000\"/>\n");
  EXPECT_TRUE(host.Write(goodbye));
  EXPECT_EQ(Next("goodbye"),
            R"({"event":"goodbye","route":"audio","pipe":"com.velm.ipc.audiosdk_5","confirmed":true})");
  EXPECT_EQ(host.Read(goodbye.size()), goodbye);
  Tell("goodbye off");
  Sent("via audio raw x");
  ASSERT_TRUE(host.ReadFrame());
  EXPECT_TRUE(host.Write(goodbye));
  EXPECT_THAT(Next("goodbye"), HasSubstr(R"("confirmed":false})"));
  EXPECT_EQ(host.Read(1, 200), "");
}

TEST_F(PipesTest, GoodbyeByThePipeOfServiceModeIsJustAMessage) {
  Start({"--service-id", "3"});
  PipePeer host = Opened(kService + "3");
  EXPECT_TRUE(host.Write(FrameOf(40353, "<com.velm.app.log.clientexit version=\"10000\"/>\n")));
  EXPECT_THAT(Next(R"("event":"message")"), HasSubstr(R"("type":40353,"bytes":47)"));
}

TEST_F(PipesTest, WhateverAHostSendsIsReported) {
  Start({"--service-id", "3"});
  {
    PipePeer host = Opened(kService + "3");
    EXPECT_TRUE(
        host.Write(FrameOf(40525, "no xml") + FrameOf(1, "<a/>") + FrameOf(9, std::string("\0\xFF", 2))));
    EXPECT_THAT(Next("message"), HasSubstr(R"("type":40525,"bytes":6,"text":"no xml"})"));
    EXPECT_THAT(Next("message"), HasSubstr(R"("type":1,"bytes":4,"text":"<a/>"})"));
    EXPECT_THAT(Next("message"), HasSubstr(R"("type":9,"bytes":2,"text":null,"hex":"00ff"})"));
    EXPECT_TRUE(host.Write("cut"));
  }
  EXPECT_THAT(Next("partial"), HasSubstr(R"("bytes":3,"text":"cut"})"));
  Next(R"("state":"closed")");
  PipePeer host = Opened(kService + "3");
  EXPECT_TRUE(host.Write(FrameHeader(0xFFFFFFFF, 1)));
  EXPECT_THAT(Next("garbage"), HasSubstr(R"("bytes":8,"text":null,"hex":"ffffffff01000000"})"));
}

TEST_F(PipesTest, StalledClientReadsLater) {
  Start({"--stall"});
  PipePeer host = OpenAudio(5);
  EXPECT_TRUE(host.Write(AudioCommand("1")));
  Sent("via audio raw still sending");
  EXPECT_TRUE(host.ReadFrame());
  EXPECT_EQ(m_simulator->ReadLine(std::chrono::milliseconds(200)), std::nullopt);
  Tell("stall off");
  EXPECT_THAT(Next("command"), HasSubstr(R"("text":"1")"));
}

TEST_F(PipesTest, SplitBytesMakeTheSameFrame) {
  Start({"--split", "--service-id", "3"});
  PipePeer host = Opened(kService + "3");
  Sent("via service raw {}");
  const auto frame = host.ReadFrame();
  ASSERT_TRUE(frame);
  EXPECT_EQ(frame->type, 40526);
}

TEST_F(PipesTest, HostThatDoesNotTakeWhatIsSentIsUnansweredAndItsPipeClosed) {
  Start({"--service-id", "3"});
  PipePeer host = Opened(kService + "3");
  EXPECT_THAT(Sent("via service garbage 16777216"), HasSubstr(R"("hosts":1,"unanswered":1)"));
  Next(R"("state":"closed")");
}

TEST_F(PipesTest, DroppedPipeIsServedAgain) {
  Start({"--service-id", "3"});
  PipePeer host = Opened(kService + "3");
  Tell("via service drop");
  EXPECT_EQ(Next("dropped"), R"({"event":"dropped","via":"service","hosts":1})");
  EXPECT_TRUE(host.IsBroken());
  host.Close();
  host = Opened(kService + "3");
  EXPECT_THAT(Sent("via service camera 1"), HasSubstr(R"("hosts":1)"));
}

TEST_F(PipesTest, FloodCountsFromZero) {
  Start({"--service-id", "3"});
  PipePeer host = Opened(kService + "3");
  Tell("via service flood 500 camera");
  for (int i = 0; i < 500; ++i) {
    const auto frame = host.ReadFrame();
    ASSERT_TRUE(frame) << i;
    EXPECT_THAT(frame->payload, HasSubstr("&quot;CameraStatus&quot;:" + std::to_string(i) + "}"));
  }
  EXPECT_EQ(Next("flooded"), R"({"event":"flooded","via":"service","hosts":1,"unanswered":0,"count":500})");
}

TEST_F(PipesTest, DieBreaksThePipe) {
  Start({"--service-id", "3"});
  PipePeer host = Opened(kService + "3");
  Tell("die");
  EXPECT_TRUE(host.IsBroken());
  EXPECT_EQ(m_simulator->Wait(), 9U);
}

TEST_F(PipesTest, DieAfterCountsCommandsByPipeToo) {
  Start({"--die-after", "1"});
  PipePeer host = OpenAudio(5);
  EXPECT_TRUE(host.Write(AudioCommand("x")));
  EXPECT_EQ(m_simulator->Wait(), 9U);
}

TEST_F(PipesTest, EveryHostThatAskedHasAnAudioPipeOfItsOwn) {
  Start({});
  PipePeer first = OpenAudio(5);
  PipePeer second = OpenAudio(0xFFFFFFFE);
  EXPECT_THAT(Sent("via audio raw both"), HasSubstr(R"("hosts":2)"));
  EXPECT_THAT(first.ReadFrame()->payload, HasSubstr("ChannelId=\"5\""));
  EXPECT_THAT(second.ReadFrame()->payload, HasSubstr("ChannelId=\"4294967294\""));
  EXPECT_THAT(Sent("via audio:5 raw one"), HasSubstr(R"("hosts":1)"));
  EXPECT_THAT(first.ReadFrame()->payload, HasSubstr("AudioCmdNotify=\"one\""));
  EXPECT_EQ(second.Read(1, 100), "");
}

// ---- With the host console

TEST_F(PipesTest, ServiceModeWalksItsOrderAndCommandsGoByItsPipe) {
  Start({});
  auto host = StartHost({"--service", "camera", "3"});
  EXPECT_EQ(host.Wait(), 0U) << host.Errors();
  EXPECT_EQ(host.ReadRest(),
            (std::vector<std::string>{"TryRunningUnderServiceMode() = SDK_OK (0)",
                                      "RegisterMsg(1021) = 1 (yes)", "SetCallBackFunc(null) = SDK_OK (0)",
                                      "SetCameraCmd(3) = SDK_OK (0)", "DestroySdkChannel() = SDK_OK (0)"}));
  const std::string command = Next(R"("event":"command")");
  EXPECT_THAT(command, HasSubstr(R"("route":"service","pipe":"com.velm.ipc.client3rdsdk_0")"));
  EXPECT_THAT(command, HasSubstr(R"("channelId":0)"));
  EXPECT_THAT(command, HasSubstr(R"("command":{"commandId":5,"data":[{"CameraCmd":3}])"));
}

TEST_F(PipesTest, AudioFeatureTakesAudioCommandsToTheAudioPipe) {
  Start({});
  auto host = StartHost({"--audio", "audio", "3"});
  EXPECT_EQ(host.Wait(), 0U) << host.Errors();
  const std::string command = Next(R"("event":"command")");
  EXPECT_THAT(command, HasSubstr(R"("route":"audio","pipe":"com.velm.ipc.audiosdk_)"));
  EXPECT_THAT(command, HasSubstr(R"("command":{"commandId":2,"data":[{"AudioCmd":3}])"));
}

TEST_F(PipesTest, ServiceModeThatIsRefusedIsTheExitCode) {
  auto none = StartHost({"--service", "camera", "3"});
  EXPECT_EQ(none.Wait(), 12U);
  EXPECT_EQ(none.ReadLine(), "TryRunningUnderServiceMode() = SDK_ERR_NO_CLIENT (2)");
  auto audio = StartHost({"--audio", "audio", "3"});
  EXPECT_EQ(audio.Wait(), 1U);
  Start({"--version", "5.7.9.0"});
  auto old = StartHost({"--service", "camera", "3"});
  EXPECT_EQ(old.Wait(), 17U);
}

TEST_F(PipesTest, WatchInServiceModeRegistersWhatItMay) {
  Start({});
  auto host = StartHost({"--service", "watch", "--callbacks", "general", "--count", "1"});
  EXPECT_THAT(Next("announced"), HasSubstr("service"));
  ASSERT_TRUE(host.ReadLineWith("SetCallBackFunc(callback)"));
  EXPECT_THAT(Sent("via service pt 4 result=0:fine"), HasSubstr(R"("hosts":1,"unanswered":0)"));
  const auto record = host.ReadLineWith("<- SetCallBackFunc:");
  ASSERT_TRUE(record);
  EXPECT_THAT(*record, HasSubstr("success=true code=0 from=0 value=4 commandId=8"));
  EXPECT_EQ(host.Wait(), 0U);
}

// ---- With velm_trace between them

TEST_F(PipesTest, TraceBetweenHostAndClientShowsCommandAndNotification) {
  const ScratchDirectory directory;
  const std::string file = directory.Narrow() + "\\recording";
  Start({"--pipe-suffix", ".real"});
  ChildProcess trace(ProgramBeside(L"velm_trace.exe"), {"--json", "--once", "--record", file, "--serve",
                                                        kService + "0", "--open", kService + "0.real"});
  auto host = StartHost({"--service"});
  EXPECT_TRUE(host.WriteLine("watch --callbacks general"));
  EXPECT_THAT(trace.ReadLineWith(R"("event":"frame")").value_or(""), HasSubstr("QXIPCMessage_Connect"));
  EXPECT_TRUE(host.WriteLine("camera 6"));
  EXPECT_THAT(trace.ReadLineWith(R"("event":"frame")").value_or(""),
              HasSubstr(R"("class":"CQXMBMessage_Client3rdSDK_SDKCmdRequest")"));
  EXPECT_THAT(Next(R"("event":"command")"), HasSubstr(R"("CameraCmd":6)"));
  Sent("via service camera 9");
  EXPECT_THAT(trace.ReadLineWith(R"("from":"client")").value_or(""),
              HasSubstr(R"("class":"CQXMBMessage_Client3rdSDK_SDKCmdNotify")"));
  EXPECT_TRUE(host.ReadLineWith("value=9 commandId=5"));
  EXPECT_EQ(host.Wait(), 0U);
  EXPECT_EQ(trace.Wait(), 0U);

  // The recording takes the client's place.
  ChildProcess replay(ProgramBeside(L"velm_trace.exe"), {"--replay", file, "--serve", kService + "0"});
  auto again = StartHost({"--service"});
  EXPECT_TRUE(again.WriteLine("watch --callbacks general"));
  ASSERT_TRUE(replay.ReadLineWith("QXIPCMessage_Connect"));
  EXPECT_TRUE(again.WriteLine("camera 6"));
  EXPECT_TRUE(again.ReadLineWith("value=9 commandId=5"));
  EXPECT_EQ(replay.Wait(), 0U) << replay.Errors();
}

}  // namespace
}  // namespace velm_test
