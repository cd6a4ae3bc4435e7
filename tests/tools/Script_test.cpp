#include "tools/client_simulator/Script.h"

#include <gtest/gtest.h>

#include "tests/tools/ErrorOf.h"

namespace velm_sim {
namespace {

using velm_tools::ErrorOf;
using namespace std::chrono_literals;

template <typename Expected>
Expected Parse(std::string_view line) {
  return std::get<Expected>(ParseStep(line).value());
}

TEST(ScriptTest, NotificationsAndRawTextsEndWithANul) {
  EXPECT_EQ(Parse<SendStep>("share 1").data,
            std::string(R"({"commandId":3,"data":[{"ScreenShareStatus":1}]})") + '\0');
  EXPECT_EQ(Parse<SendStep>(" raw  {\"a\" : \"b  c\\\"\"} ").data,
            std::string("{\"a\" : \"b  c\\\"\"}") + '\0');
  EXPECT_EQ(Parse<SendStep>("raw x").id, 10U);
  EXPECT_EQ(Parse<SendStep>("empty").data, std::string(1, '\0'));
  EXPECT_EQ(Parse<SendStep>("nodata").data, std::nullopt);
}

TEST(ScriptTest, BytesGoOutAsTheyAreWritten) {
  EXPECT_EQ(Parse<SendStep>("bytes 7b 7D").data, "{}");
  EXPECT_EQ(Parse<SendStep>("bytes 7b7d").id, 10U);
  EXPECT_EQ(Parse<SendStep>("bytes ff dwData=0x10").data, "\xFF");
  EXPECT_EQ(Parse<SendStep>("bytes ff dwData=0x10").id, 16U);
}

TEST(ScriptTest, WaitsHaveTenSecondsUnlessGivenMore) {
  EXPECT_EQ(Parse<WaitForHostStep>("wait-host").limit, 10s);
  EXPECT_EQ(Parse<WaitForHostStep>("wait-host 0").limit, 0s);
  EXPECT_EQ(Parse<WaitForCommandsStep>("wait-command 3").count, 3U);
  EXPECT_EQ(Parse<WaitForCommandsStep>("wait-command 3").limit, 10s);
  EXPECT_EQ(Parse<WaitForCommandsStep>("wait-command 3 20").limit, 20s);
  EXPECT_EQ(Parse<SleepStep>("sleep 15").duration, 15ms);
  EXPECT_TRUE(std::holds_alternative<QuitStep>(*ParseStep("quit")));
  EXPECT_TRUE(std::holds_alternative<HelpStep>(*ParseStep("help")));
}

TEST(ScriptTest, BlankLinesAndCommentsAreNoSteps) {
  for (const char* line : {"", "  \t", "# audio 5", "  #"})
    EXPECT_EQ(ParseStep(line).has_value(), false) << line;
}

TEST(ScriptTest, ViaSaysByWhichRouteAndToWhom) {
  EXPECT_EQ(Parse<SendStep>("share 1").via, Via());
  EXPECT_EQ(Parse<SendStep>("via window share 1").via, Via());
  EXPECT_EQ(Parse<SendStep>("via audio audio 5").via, (Via{RouteKind::kAudio, std::nullopt}));
  EXPECT_EQ(Parse<SendStep>("via audio:7 raw x").via, (Via{RouteKind::kAudio, 7}));
  EXPECT_EQ(Parse<SendStep>("  via service:0x10 empty").via, (Via{RouteKind::kService, 16}));
  EXPECT_EQ(Parse<WaitForHostStep>("via service wait-host 3").via.kind, RouteKind::kService);
  EXPECT_EQ(Parse<WaitForHostStep>("via service wait-host 3").limit, 3s);
  EXPECT_EQ(Parse<DropStep>("via audio drop").via.kind, RouteKind::kAudio);
}

TEST(ScriptTest, WhatGoesByPipeHasAForm) {
  EXPECT_EQ(Parse<SendStep>("via audio share 1").form, SendStep::Form::kText);
  EXPECT_EQ(Parse<SendStep>("via audio bytes 00 ff").form, SendStep::Form::kBytes);
  const auto frame = Parse<SendStep>("via audio frame -5 <a b=\"c  d\"/>");
  EXPECT_EQ(frame.form, SendStep::Form::kFrame);
  EXPECT_EQ(frame.frameType, -5);
  EXPECT_EQ(frame.data, "<a b=\"c  d\"/>");
  EXPECT_EQ(Parse<SendStep>("via audio frame 3").data, "");
}

TEST(ScriptTest, GarbageIsTheSameEveryTime) {
  const auto garbage = Parse<SendStep>("via audio garbage 100");
  EXPECT_EQ(garbage.form, SendStep::Form::kBytes);
  EXPECT_EQ(garbage.data->size(), 100U);
  EXPECT_EQ(garbage.data, Parse<SendStep>("garbage 100").data);
}

TEST(ScriptTest, FloodsAndSwitches) {
  const auto flood = Parse<FloodStep>("via service flood 300 camera result=0:OK");
  EXPECT_EQ(flood.count, 300U);
  EXPECT_EQ(flood.words, (std::vector<std::string>{"camera", "0", "result=0:OK"}));
  EXPECT_EQ(flood.via.kind, RouteKind::kService);
  EXPECT_TRUE(Parse<PipeSwitchStep>("stall on").on);
  EXPECT_EQ(Parse<PipeSwitchStep>("stall on").which, PipeSwitchStep::Switch::kStall);
  EXPECT_FALSE(Parse<PipeSwitchStep>("split off").on);
  EXPECT_EQ(Parse<PipeSwitchStep>("split off").which, PipeSwitchStep::Switch::kSplit);
  EXPECT_EQ(Parse<PipeSwitchStep>("goodbye on").which, PipeSwitchStep::Switch::kGoodbye);
  EXPECT_TRUE(std::holds_alternative<DieStep>(*ParseStep("die")));
}

TEST(ScriptTest, WhatIsWrongIsSaid) {
  const std::pair<const char*, const char*> cases[] = {
      {"prsence 3", "unknown command 'prsence', did you mean 'presence'?"},
      {"frobnicate", "unknown command 'frobnicate'"},
      {"raw", "'raw' needs the text to send; an empty message is 'empty'"},
      {"bytes", "'bytes' needs at least one byte; no data at all is 'nodata'"},
      {"bytes 7", "'bytes' takes two hexadecimal digits a byte, not '7 '"},
      {"bytes 7b dwData=-1", "dwData '-1' is out of range: 0 to 4294967295"},
      {"empty 1", "'empty' is written: empty"},
      {"quit now", "'quit' is written: quit"},
      {"sleep", "'sleep' is written: sleep MILLISECONDS"},
      {"sleep 86400001", "number of milliseconds '86400001' is out of range: 0 to 86400000"},
      {"wait-command", "'wait-command' is written: wait-command N [SECONDS]"},
      {"wait-host 1 2", "'wait-host' is written: wait-host [SECONDS]"},
      {"wait-host soon", "number of seconds 'soon' is not a number"},
      {"via",
       "'via' takes window, audio or service, or of these pipes one host's by its channel id, as in "
       "audio:1234, not ''"},
      {"via window:1 share 1",
       "'via' takes window, audio or service, or of these pipes one host's by its "
       "channel id, as in audio:1234, not 'window:1'"},
      {"via audio", "'via' is written: via ROUTE LINE"},
      {"via audio:x share 1", "channel id 'x' is not a number"},
      {"via audio quit", "'via' cannot stand before 'quit'"},
      {"via audio via audio share 1", "'via' is written: via ROUTE LINE"},
      {"via audio nodata", "'nodata' only goes by window"},
      {"via audio bytes 00 dwData=1", "'dwData=' only goes by window"},
      {"frame 1 x", "a frame goes by pipe: via audio"},
      {"via audio frame", "'frame' is written: frame TYPE [PAYLOAD]"},
      {"drop", "'drop' is written: via PIPE drop"},
      {"stall", "'stall' takes on or off"},
      {"split maybe", "'split' takes on or off"},
      {"garbage 0", "number of bytes '0' is out of range: 1 to 16777216"},
      {"flood 3", "'flood' is written: flood COUNT NOTIFICATION [KEY=VALUE..]"},
      {"flood 3 camra", "'camra' is no notification"},
      {"flood 3 camera 5",
       "'camera' does not take '5'; it takes from= device= guid= meeting= count= result="},
      {"audio 1 device=\"x", "a quotation mark is not closed"},
  };
  for (const auto& [line, message] : cases)
    EXPECT_EQ(ErrorOf([&] { ParseStep(line); }), message);
}

TEST(ScriptTest, ScriptsTakeBothLineEndsAndCountTheirLines) {
  EXPECT_EQ(ParseScript("audio 1\r\n\n# x\nquit").size(), 2U);
  EXPECT_EQ(ParseScript("").size(), 0U);
  EXPECT_EQ(ErrorOf([] { ParseScript("audio 1\n\nshare\nchat\n"); }),
            "line 3: 'share' needs a number: the value of ScreenShareStatus");
}

}  // namespace
}  // namespace velm_sim
