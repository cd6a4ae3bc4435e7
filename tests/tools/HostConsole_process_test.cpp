// The host console as a program, alone and with the simulator.

#include <gtest/gtest.h>

#include "tests/support/WaitUntil.h"
#include "tests/tools/EndToEnd.h"
#include "tools/client_simulator/ClientWindow.h"
#include "tools/fake_product/FakeProduct.h"

namespace velm_test {
namespace {

using velm_tools::FakeProduct;
using Lines = std::vector<std::string>;

class HostProgramTest : public testing::Test {
 protected:
  ~HostProgramTest() override { FakeProduct::RemoveFrom(FakeProduct::DefaultDirectory()); }
};

struct OneShot {
  Lines arguments;
  uint32_t exitCode;
  Lines output;
};

void Expect(const OneShot& test) {
  auto host = StartHost(test.arguments);
  EXPECT_EQ(host.Wait(), test.exitCode) << host.Errors();
  EXPECT_EQ(host.ReadRest(), test.output);
}

velm_tools::FakeProductOptions ClientOfVersion(uint16_t major, uint16_t minor) {
  velm_tools::FakeProductOptions options;
  options.version = {major, minor, 0, 0};
  options.registerCommand = true;
  return options;
}

const std::string kFeatures = "GetSDKAvailableFeatures() = 0x3ff (1023)";
const std::string kDestroy = "DestroySdkChannel() = SDK_OK (0)";

TEST_F(HostProgramTest, OneCommandMakesTheChannelAndDestroysIt) {
  Expect({{"audio", "5"}, 12, {kFeatures, "SetAudioCmd(5) = SDK_ERR_NO_CLIENT (2)", kDestroy}});
  Expect({{"SetAudioCmd", "0x10"}, 12, {kFeatures, "SetAudioCmd(16) = SDK_ERR_NO_CLIENT (2)", kDestroy}});
  Expect({{"features"}, 0, {kFeatures, kDestroy}});
  Expect({{"version"}, 0, {"GetVelmClientVersion(version) = SDK_OK (0): nothing was written", kDestroy}});
  Expect({{"register", "0x3fd"}, 0, {kFeatures, "RegisterMsg(1021) = 1 (yes)", kDestroy}});
  Expect({{"send", "{\"a\":1}"},
          12,
          {kFeatures, R"(SendMsgToVelmClient("{\"a\":1}") = SDK_ERR_NO_CLIENT (2))", kDestroy}});
  Expect({{"send", "null"}, 16, {kFeatures, "SendMsgToVelmClient(null) = SDK_ERR_BAD_DATA (6)", kDestroy}});
  Expect(
      {{"select-device", "N"}, 1, {kFeatures, R"(SetAudioDevice("N", null, null, 0) = 0 (no))", kDestroy}});
}

TEST_F(HostProgramTest, BareCallsMakeNoChannel) {
  Expect({{"call", "SetAudioCmd", "5"}, 19, {"SetAudioCmd(5) = SDK_ERR_NO_CHANNEL (999)"}});
  Expect({{"call", "RegisterMsg", "1023"}, 1, {"RegisterMsg(1023) = 0 (no)"}});
  Expect({{"call", "DestroySdkChannel"}, 19, {"DestroySdkChannel() = SDK_ERR_NO_CHANNEL (999)"}});
  Expect({{"call", "GetVelmClientVersion", "null"},
          19,
          {"GetVelmClientVersion(null) = SDK_ERR_NO_CHANNEL (999)", kDestroy}});
}

TEST_F(HostProgramTest, CodesFollowTheClient) {
  {
    const FakeProduct client(ClientOfVersion(5, 4));
    Expect({{"version"}, 0, {"GetVelmClientVersion(version) = SDK_OK (0): 5.4.0.0", kDestroy}});
    Expect({{"service-mode"}, 17, {"TryRunningUnderServiceMode() = SDK_ERR_CLIENT_TOO_OLD (7)", kDestroy}});
    Expect({{"register", "2"}, 1, {kFeatures, "RegisterMsg(2) = 0 (no)", kDestroy}});
  }
  const FakeProduct client(ClientOfVersion(5, 8));
  Expect({{"camera", "1"}, 15, {kFeatures, "SetCameraCmd(1) = SDK_ERR_NO_CLIENT_WINDOW (5)", kDestroy}});
}

TEST_F(HostProgramTest, JsonGivesOneObjectALine) {
  Expect(
      {{"--json", "version"},
       0,
       {R"j({"event":"call","function":"GetVelmClientVersion","call":"GetVelmClientVersion(version)","result":0,"name":"SDK_OK","version":[0,0,0,0]})j",
        R"j({"event":"call","function":"DestroySdkChannel","call":"DestroySdkChannel()","result":0,"name":"SDK_OK"})j"}});
}

TEST_F(HostProgramTest, BadUsageIs2AndSaysWhatWouldBeRight) {
  const struct {
    Lines arguments;
    const char* message;
  } cases[] = {
      {{"presense"}, "unknown command 'presense', did you mean 'presence'?"},
      {{"call", "SetAudiCmd", "1"}, "unknown function 'SetAudiCmd', did you mean 'SetAudioCmd'?"},
      {{"audio"}, "it is written: SetAudioCmd COMMAND"},
      {{"audio", "2147483648"}, "command '2147483648' is out of range: -2147483648 to 2147483647"},
      {{"audio", "five"}, "command 'five' is not a number"},
      {{"--jsn"}, "unknown option '--jsn'"},
      {{"watch", "--features"}, "'--features' needs a value"},
      {{"select-device", "--guid", "g"}, "'select-device' needs the device's name"},
      {{"wait", "1"}, "'wait' is only for interactive use"},
  };
  for (const auto& test : cases) {
    auto host = StartHost(test.arguments);
    EXPECT_EQ(host.Wait(), 2U) << test.message;
    EXPECT_NE(host.Errors().find(test.message), std::string::npos) << host.Errors();
    EXPECT_EQ(host.ReadRest(), Lines());
  }
}

TEST_F(HostProgramTest, HelpTellsOfEveryCommandAndExitCode) {
  auto host = StartHost({"--help"});
  std::string help;
  for (const std::string& line : host.ReadRest())
    help += line + '\n';
  EXPECT_EQ(host.Wait(), 0U);
  for (const char* word :
       {"--audio", "--service", "version", "features", "service-mode",  "register", "init",
        "destroy", "presence",  "audio",   "share",    "chat",          "camera",   "confaudio",
        "event",   "device",    "ui ",     "send",     "select-device", "watch",    "call",
        "wait",    "sleep",     "12 ",     "15 ",      "16 ",           "17 ",      "19 "})
    EXPECT_NE(help.find(word), std::string::npos) << word;
}

TEST_F(HostProgramTest, AWrongLineOfPipedInputIs2WithItsNumber) {
  auto host = StartHost({});
  host.Write("call DestroySdkChannel\nnonsense\n");
  EXPECT_EQ(host.Wait(), 2U);
  EXPECT_NE(host.Errors().find("line 2: unknown command 'nonsense'"), std::string::npos) << host.Errors();
}

TEST_F(HostProgramTest, InteractiveShowsAWrongOrderAsItIs) {
  auto host = StartHost({});
  host.Write(
      "call SetCallBackFunc\ncall RegisterMsg 0x3fd\ncall DestroySdkChannel\ncall SetCameraCmd 1\n"
      "call SetCameraCallBack null\nquit\n");
  EXPECT_EQ(host.Wait(), 0U);
  EXPECT_EQ(host.ReadRest(), (Lines{"SetCallBackFunc(callback) = SDK_OK (0)", "RegisterMsg(1021) = 1 (yes)",
                                    kDestroy, "SetCameraCmd(1) = SDK_ERR_NO_CHANNEL (999)",
                                    "SetCameraCallBack(null) = SDK_OK (0)", kDestroy}));
}

TEST_F(HostProgramTest, AWatchThatSeesTooLittleIs1) {
  auto host = StartHost({"watch", "--features", "0x3fd", "--seconds", "0", "--count", "1"});
  EXPECT_EQ(host.Wait(), 1U);
}

TEST_F(HostProgramTest, ARefusedWatchIs1AndSaysWhy) {
  auto host = StartHost({"watch"});
  EXPECT_EQ(host.Wait(), 1U);
  EXPECT_NE(host.Errors().find("RegisterMsg refused"), std::string::npos);
}

// ---- With the simulator

class BothProgramsTest : public HostProgramTest {
 protected:
  BothProgramsTest() : simulator(StartSimulator({})) { EXPECT_TRUE(simulator.ReadLine()); }

  std::string NextCommand() {
    const std::string line = simulator.ReadLineWith(R"("event":"command")").value_or("");
    const size_t begin = line.find(R"("text":)");
    return begin == std::string::npos ? line : line.substr(begin, line.find(R"(,"command":)") - begin);
  }

  // A host application's window appears some time after the call that starts its channel.
  static bool HostsAppear(int count) {
    return WaitUntil([count] { return velm_sim::CountHosts() == count; });
  }

  ChildProcess simulator;
};

TEST_F(BothProgramsTest, CommandsArriveAsTheyAreBuilt) {
  auto host = StartHost({});
  host.WriteLine("camera -3");
  EXPECT_EQ(
      NextCommand(),
      R"("text":"{\"commandId\":5,\"from\":1,\"version\":\"1.0.0\",\"data\":[{\"CameraCmd\":-3}],\"deviceName\":\"\"}")");
  host.WriteLine("  send  {\"x\" : \"a  \xC3\xA9\"}  ");
  EXPECT_EQ(NextCommand(), "\"text\":\"{\\\"x\\\" : \\\"a  \xC3\xA9\\\"}\"");
  host.WriteLine("select-device \"My \\\"set\" --vid 1 --hot-switch 4294967295");
  EXPECT_EQ(
      NextCommand(),
      R"("text":"{\"commandId\":2,\"from\":1,\"version\":\"1.0.0\",\"data\":[{\"AudioCmd\":99}],\"deviceName\":\"My \"set\",\"usbVid\":\"1\",\"usbPid\":\"\",\"deviceGUID\":\"\",\"HotSwitch\":-1}")");
  EXPECT_EQ(host.Wait(), 0U);
}

TEST_F(BothProgramsTest, ANotificationReachesRawSinkGeneralAndFamilyCallbackInThisOrder) {
  auto host = StartHost({"--json", "watch", "--callbacks", "raw,general,family", "--count", "3"});
  ASSERT_TRUE(host.ReadLineWith("SetUIControlStatusCallBack"));
  ASSERT_TRUE(HostsAppear(1));
  simulator.WriteLine("presence 3 v2=4 reason=1 from=2 result=7:no");
  EXPECT_EQ(
      host.ReadLine(),
      R"j({"event":"record","callback":"InitVelm3rdSdkChannel","type":"ISdkRawSink","rawJson":"{\"commandId\":1,\"data\":[{\"PresenceStatus\":3,\"PresenceStatusV2\":4,\"extraReason\":1}],\"from\":2,\"result\":\"7:no\"}"})j");
  EXPECT_EQ(
      host.ReadLine(),
      R"j({"event":"record","callback":"SetCallBackFunc","type":"SdkNotifyInfo","success":false,"code":7,"from":2,"value":3,"commandId":1,"deviceName":"","deviceGUID":"","resultInfo":"no","meetingId":"","isInComputerAudio":false,"activeMeetingsCount":0,"subType":0,"rawJson":"{\"commandId\":1,\"data\":[{\"PresenceStatus\":3,\"PresenceStatusV2\":4,\"extraReason\":1}],\"from\":2,\"result\":\"7:no\"}"})j");
  EXPECT_EQ(
      host.ReadLine(),
      R"j({"event":"record","callback":"SetIMPresenceCallBack","type":"SdkPresenceInfo","success":false,"code":7,"status":3,"statusV2":4,"resultInfo":"no","extraReason":1})j");
  EXPECT_EQ(host.Wait(), 0U);
  EXPECT_TRUE(simulator.ReadLineWith(R"({"event":"sent","hosts":1,"unanswered":0)"));
}

TEST_F(BothProgramsTest, AnEmptyMessageIsARecordWithoutFields) {
  auto host = StartHost({"watch", "--callbacks", "raw,general", "--count", "2"});
  ASSERT_TRUE(host.ReadLineWith("SetCallBackFunc"));
  ASSERT_TRUE(HostsAppear(1));
  simulator.WriteLine("nodata");
  simulator.WriteLine("bytes 7b7d00 dwData=11");
  simulator.WriteLine("empty");
  EXPECT_EQ(host.ReadLine(), "<- InitVelm3rdSdkChannel: rawJson=null");
  EXPECT_EQ(host.ReadLine(), "<- SetCallBackFunc: rawJson=null");
  EXPECT_EQ(host.Wait(), 0U);
}

TEST_F(BothProgramsTest, ARawSinkAloneIsServed) {
  auto host = StartHost({"watch", "--callbacks", "raw", "--count", "1"});
  ASSERT_TRUE(host.ReadLineWith("SetCallBackFunc(null)"));
  ASSERT_TRUE(HostsAppear(1));
  simulator.WriteLine(R"(raw {"commandId":8})");
  EXPECT_EQ(host.ReadLine(), R"(<- InitVelm3rdSdkChannel: rawJson="{\"commandId\":8}")");
  EXPECT_EQ(host.Wait(), 0U);
}

TEST_F(BothProgramsTest, TheSimulatorCountsItsHosts) {
  simulator.WriteLine("wait-host 10");
  auto first = StartHost({});
  first.WriteLine("watch --features 0x3fd");
  EXPECT_EQ(simulator.ReadLine(), R"({"event":"host","hosts":1})");
  auto second = StartHost({});
  second.WriteLine("watch --features 0x3fd");
  ASSERT_TRUE(HostsAppear(2));
  simulator.WriteLine("pt 1");
  EXPECT_TRUE(simulator.ReadLineWith(R"("hosts":2,"unanswered":0)"));
}

TEST_F(BothProgramsTest, HelloHostPrintsWhatComesUntilEnter) {
  ChildProcess hello(ProgramBeside(L"hello_host.exe"), {});
  EXPECT_NE(NextCommand().find(R"(\"commandId\":1,)"), std::string::npos);
  ASSERT_TRUE(HostsAppear(1));
  simulator.WriteLine("camera 3");
  EXPECT_TRUE(simulator.ReadLineWith(R"("hosts":1,"unanswered":0)"));
  hello.WriteLine("");
  EXPECT_EQ(hello.Wait(), 0U);
  EXPECT_EQ(hello.ReadRest(),
            (Lines{"presence query: 0\r",
                   "notification 5: value 3, {\"commandId\":5,\"data\":[{\"CameraStatus\":3}]}\r"}));
}

TEST_F(BothProgramsTest, RawSinkPrintsTheTextUntilEnter) {
  ChildProcess rawSink(ProgramBeside(L"raw_sink.exe"), {});
  simulator.WriteLine("wait-host");
  simulator.WriteLine("pt 1");
  EXPECT_TRUE(simulator.ReadLineWith(R"("hosts":1,"unanswered":0)"));
  rawSink.WriteLine("");
  EXPECT_EQ(rawSink.Wait(), 0U);
  EXPECT_EQ(rawSink.ReadRest(), (Lines{"{\"commandId\":8,\"data\":[{\"PTEvent\":1}]}\r"}));
}

}  // namespace
}  // namespace velm_test
