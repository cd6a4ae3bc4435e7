#include "tools/host_console/Commands.h"

#include <gtest/gtest.h>

#include "tests/tools/ErrorOf.h"

namespace velm_host {
namespace {

using velm_tools::ErrorOf;
using namespace std::chrono_literals;

template <typename Expected>
Expected Line(std::string_view line) {
  return std::get<Expected>(ParseLine(line).value());
}

std::string CallOfLine(std::string_view line) {
  return CallText(Line<CallCommand>(line).call);
}

TEST(CommandsTest, CallsByShortNameByNameAndBare) {
  EXPECT_EQ(CallOfLine("audio -5"), "SetAudioCmd(-5)");
  EXPECT_EQ(CallOfLine("SetAudioCmd 0x5"), "SetAudioCmd(5)");
  EXPECT_FALSE(Line<CallCommand>("audio 5").bare);
  EXPECT_TRUE(Line<CallCommand>("call audio 5").bare);
  EXPECT_EQ(CallOfLine("call SetAudioCmd 5"), "SetAudioCmd(5)");
  EXPECT_EQ(CallOfLine("register 0x3ff"), "RegisterMsg(1023)");
  EXPECT_EQ(CallOfLine("register -1"), "RegisterMsg(-1)");
  EXPECT_EQ(CallOfLine("version"), "GetVelmClientVersion(version)");
  EXPECT_EQ(CallOfLine("version null"), "GetVelmClientVersion(null)");
  EXPECT_EQ(CallOfLine("init"), "InitVelm3rdSdkChannel(sink)");
  EXPECT_EQ(CallOfLine("init null"), "InitVelm3rdSdkChannel(null)");
  EXPECT_EQ(CallOfLine("SetCameraCallBack null"), "SetCameraCallBack(null)");
}

TEST(CommandsTest, InALineATextToSendIsAllThatFollows) {
  EXPECT_EQ(CallOfLine(R"(send {"a" : "b  c"})"), R"j(SendMsgToVelmClient("{\"a\" : \"b  c\"}"))j");
  EXPECT_EQ(CallOfLine(R"(call SendMsgToVelmClient "x)"), R"j(SendMsgToVelmClient("\"x"))j");
  EXPECT_EQ(CallOfLine("send"), R"j(SendMsgToVelmClient(""))j");
  EXPECT_EQ(CallOfLine("send null"), "SendMsgToVelmClient(null)");
}

TEST(CommandsTest, DevicesByNameInTheOrderOfTheDeclaration) {
  EXPECT_EQ(CallOfLine("SetAudioDevice N V P 1"), R"j(SetAudioDevice("N", "V", "P", 1))j");
  EXPECT_EQ(CallOfLine("SetAudioDeviceV2 \"N m\" G null P 1"),
            R"j(SetAudioDeviceV2("N m", "G", null, "P", 1))j");
}

TEST(CommandsTest, SelectDeviceChoosesTheFunctionByTheGuid) {
  EXPECT_EQ(CallOfLine("select-device N"), R"j(SetAudioDevice("N", null, null, 0))j");
  EXPECT_EQ(CallOfLine("select-device N --vid V --pid P --hot-switch 2"),
            R"j(SetAudioDevice("N", "V", "P", 2))j");
  EXPECT_EQ(CallOfLine("select-device N --guid G"), R"j(SetAudioDeviceV2("N", "G", null, null, 0))j");
  EXPECT_EQ(CallOfLine("select-device N --by SetAudioDeviceWCHAR"),
            R"j(SetAudioDeviceWCHAR("N", null, null, null, 0))j");
}

TEST(CommandsTest, Watch) {
  const auto all = Line<WatchCommand>("watch");
  EXPECT_EQ(all.features, std::nullopt);
  EXPECT_TRUE(all.general && all.family && !all.raw && !all.duration && !all.count);
  const auto some = Line<WatchCommand>("watch --features 0x80 --callbacks raw,general --seconds 3 --count 4");
  EXPECT_EQ(some.features, 0x80);
  EXPECT_TRUE(some.general && !some.family && some.raw);
  EXPECT_EQ(some.duration, 3s);
  EXPECT_EQ(some.count, 4U);
}

TEST(CommandsTest, WaitSleepHelpAndQuit) {
  EXPECT_EQ(Line<WaitCommand>("wait 3").limit, 10s);
  EXPECT_EQ(Line<WaitCommand>("wait 3 4").limit, 4s);
  EXPECT_EQ(Line<SleepCommand>("sleep 5").duration, 5ms);
  EXPECT_TRUE(std::holds_alternative<HelpCommand>(*ParseLine("help")));
  EXPECT_TRUE(std::holds_alternative<QuitCommand>(*ParseLine("quit")));
  for (const char* line : {"", "  ", "# x"})
    EXPECT_FALSE(ParseLine(line)) << line;
}

TEST(CommandsTest, ArgumentsAreWordsAlready) {
  EXPECT_TRUE(std::holds_alternative<InteractiveCommand>(ParseArguments({}).command));
  EXPECT_TRUE(std::holds_alternative<InteractiveCommand>(ParseArguments({"interactive"}).command));
  EXPECT_TRUE(ParseArguments({"version", "--json"}).json);
  EXPECT_TRUE(std::holds_alternative<HelpCommand>(ParseArguments({"nonsense", "--help"}).command));
  const auto options = ParseArguments({"send", "{\"a\": 1}"});
  EXPECT_EQ(CallText(std::get<CallCommand>(options.command).call), R"j(SendMsgToVelmClient("{\"a\": 1}"))j");
}

TEST(CommandsTest, StartOfTheChannelIsPlainUnlessARouteIsAskedFor) {
  EXPECT_EQ(ParseArguments({"version"}).start, Start::kPlain);
  EXPECT_EQ(ParseArguments({"--audio", "audio", "5"}).start, Start::kAudio);
  EXPECT_EQ(ParseArguments({"camera", "5", "--service"}).start, Start::kService);
  EXPECT_EQ(ErrorOf([] {
              ParseArguments({"--audio", "--service"});
            }),
            "--audio and --service exclude each other: service mode has no audio feature");
}

TEST(CommandsTest, WhatIsWrongIsSaid) {
  const std::pair<const char*, const char*> cases[] = {
      {"audoi 5", "unknown command 'audoi'; 'help' lists them"},
      {"camra 5", "unknown command 'camra', did you mean 'camera'?"},
      {"call", "'call' needs the name of a function"},
      {"call watch", "unknown function 'watch'; 'help' lists them"},
      {"features 1", "wrong number of arguments, it is written: GetSDKAvailableFeatures"},
      {"SetAudioDevice N V P",
       "wrong number of arguments, it is written: SetAudioDevice NAME VID PID HOTSWITCH"},
      {"SetAudioDevice N V P -1", "hot switch '-1' is out of range: 0 to 4294967295"},
      {"init 1", "'1' is not 'null', it is written: InitVelm3rdSdkChannel [null]"},
      {"register all", "feature mask 'all' is not a number"},
      {"select-device", "'select-device' needs the device's name"},
      {"select-device N --vod 1",
       "'select-device' does not take '--vod'; it takes --guid, --vid, --pid, --hot-switch and --by"},
      {"select-device N --guid G --by SetAudioDevice", "SetAudioDevice takes no GUID"},
      {"select-device N --by SetAudioCmd",
       "'--by' takes SetAudioDevice, SetAudioDeviceV2 or SetAudioDeviceWCHAR, not 'SetAudioCmd'"},
      {"watch --callbacks raw,", "'--callbacks' takes a list of general, family and raw, not ''"},
      {"watch --all",
       "'watch' does not take '--all'; it takes --features, --seconds, --count and --callbacks"},
      {"wait", "'wait' is written: wait N [SECONDS]"},
      {"sleep", "'sleep' is written: sleep MILLISECONDS"},
      {"quit now", "'quit' stands alone"},
      {"interactive", "this is interactive already"},
  };
  for (const auto& [line, message] : cases)
    EXPECT_EQ(ErrorOf([&] { ParseLine(line); }), message);
}

}  // namespace
}  // namespace velm_host
