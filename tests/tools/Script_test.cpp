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
