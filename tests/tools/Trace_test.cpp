// velm_trace: its command line, its recordings, and how it shows what it sees.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "tests/tools/ErrorOf.h"
#include "tools/common/Frame.h"
#include "tools/velm_trace/Options.h"
#include "tools/velm_trace/Record.h"
#include "tools/velm_trace/View.h"

namespace velm_trace {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using velm_tools::ErrorOf;
using namespace std::chrono_literals;

std::string FailureOf(const std::function<void()>& function) {
  try {
    function();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no failure";
}

const std::string kHead = R"({"recording":"velm_trace","version":1})";

const std::vector<Event> kEvents = {
    {Event::Kind::kOpened, End::kHost, 0us, ""},
    {Event::Kind::kFrame, End::kHost, 1520us, std::string("\x03\0\0\0\x02\0\0\0abc", 11)},
    {Event::Kind::kFrame, End::kClient, 1600us, std::string("\0\0\0\0\x02\0\0\0", 8)},
    {Event::Kind::kPartial, End::kClient, 3000000000us, std::string("\xFF", 1)},
    {Event::Kind::kGarbage, End::kHost, 3000000001us, std::string("\n\0", 2)},
    {Event::Kind::kClosed, End::kClient, 3000000002us, ""},
};

// ---- Recordings

TEST(RecordingTest, LinesAreGolden) {
  EXPECT_EQ(RecordingHead(), kHead);
  EXPECT_EQ(RecordingLine(kEvents[0]), R"({"event":"opened","at":0,"from":"host"})");
  EXPECT_EQ(RecordingLine(kEvents[1]),
            R"({"event":"frame","at":1520,"from":"host","hex":"0300000002000000616263"})");
  EXPECT_EQ(RecordingLine(kEvents[3]), R"({"event":"partial","at":3000000000,"from":"client","hex":"ff"})");
  EXPECT_EQ(RecordingLine(kEvents[4]), R"({"event":"garbage","at":3000000001,"from":"host","hex":"0a00"})");
  EXPECT_EQ(RecordingLine(kEvents[5]), R"({"event":"closed","at":3000000002,"from":"client"})");
}

TEST(RecordingTest, WhatWasWrittenIsReadBack) {
  for (const char* lineEnd : {"\n", "\r\n"}) {
    std::string text = RecordingHead() + lineEnd;
    for (const Event& event : kEvents)
      text += RecordingLine(event) + lineEnd;
    EXPECT_EQ(ReadRecording(text), kEvents);
  }
  EXPECT_EQ(ReadRecording(kHead + '\n'), std::vector<Event>());
}

TEST(RecordingTest, LastLineThatWasCutOffIsLeftOut) {
  const std::string text = kHead + '\n' + RecordingLine(kEvents[0]) + '\n';
  for (size_t length = 1; length < RecordingLine(kEvents[1]).size(); ++length)
    EXPECT_EQ(ReadRecording(text + RecordingLine(kEvents[1]).substr(0, length)).size(), 1U) << length;
}

TEST(RecordingTest, WhatIsNoRecordingIsRefusedByItsLine) {
  for (const std::string& text :
       {std::string(), std::string("\n"), kHead, std::string("{}\n"), std::string("[1]\n"),
        std::string("{\"recording\":\"velm_trace\",\"version\":2}\n")})
    EXPECT_EQ(FailureOf([&] { ReadRecording(text); }), "line 1: this is no recording of velm_trace") << text;
  for (const char* line :
       {"", "x", "{}", "[]", R"({"event":"opened"})", R"({"event":"opened","at":"0","from":"host"})",
        R"({"event":"opened","at":0,"from":"nobody"})", R"({"event":"flown","at":0,"from":"host"})",
        R"({"event":"frame","at":0,"from":"host"})", R"({"event":"frame","at":0,"from":"host","hex":"0"})",
        R"({"event":"frame","at":0,"from":"host","hex":7})", R"({"event":7,"at":0,"from":"host"})"})
    EXPECT_EQ(FailureOf([&] { ReadRecording(kHead + '\n' + line + '\n'); }), "line 2: this is no event")
        << line;
}

TEST(RecordingTest, FirstConnectionIsWhatLiesBeforeTheFirstEnd) {
  std::vector<Event> twice = kEvents;
  twice.insert(twice.end(), kEvents.begin(), kEvents.end());
  EXPECT_EQ(FirstConnection(twice), std::vector<Event>(kEvents.begin() + 1, kEvents.end() - 1));
  EXPECT_TRUE(FirstConnection({}).empty());
}

// ---- The view

Event FrameEvent(int type, std::string_view payload) {
  return {Event::Kind::kFrame, End::kHost, 12345us, velm_tools::MakeFrame(type, payload)};
}

const std::string kRequest =
    "<com.velm.app.3rd.audiosdk.sendaudiocmd.request ChannelId=\"7\" AudioCmdRequest=\"{}\" "
    "version=\"10000\"/>\n";

TEST(TraceViewTest, FrameOfTheCatalogueIsShownWithItsFields) {
  EXPECT_THAT(ToLines(FrameEvent(40520, kRequest)),
              ElementsAre("    12.345 ms  host -> client  40520 CQXMBMessage_Audio3rdSDK_AudioCmdRequest, " +
                              std::to_string(kRequest.size() + 8) + " bytes",
                          "                   wire name com.velm.app.3rd.audiosdk.sendaudiocmd.request",
                          "                   u32 ChannelId = 7",
                          "                   wstr AudioCmdRequest = \"{}\""));
}

TEST(TraceViewTest, FrameThatNobodyCouldReadIsShownWithItsError) {
  const auto unknown = ToLines(FrameEvent(5, "<com.velm.unknown/>"));
  EXPECT_EQ(unknown.front(), "    12.345 ms  host -> client  5, 27 bytes");
  EXPECT_THAT(unknown.back(), HasSubstr("error: unknown wire name 'com.velm.unknown'"));
  EXPECT_THAT(ToLines(FrameEvent(5, "x\xFF")).back(), HasSubstr("error: no XML"));
  EXPECT_THAT(ToLines(FrameEvent(5, "")).back(), HasSubstr("error: a header without a payload"));
}

TEST(TraceViewTest, BytesThatAreNoFrameAreShownAsSuch) {
  EXPECT_THAT(ToLines(kEvents[3]),
              ElementsAre("3000000.000 ms  client -> host  a frame that was not finished, 1 byte",
                          "                   ff"));
  EXPECT_THAT(ToLines({Event::Kind::kGarbage, End::kHost, 0us, std::string(65, '\xAB')}),
              ElementsAre("     0.000 ms  host -> client  no frame, 65 bytes", HasSubstr("abab..")));
  EXPECT_THAT(ToLines({Event::Kind::kOpened, End::kHost, 0us, ""}),
              ElementsAre("     0.000 ms  host opened the pipe"));
  EXPECT_THAT(ToLines({Event::Kind::kClosed, End::kClient, 1us, ""}),
              ElementsAre("     0.001 ms  client left"));
}

TEST(TraceViewTest, JsonIsOneObjectALine) {
  EXPECT_EQ(ToJsonText(FrameEvent(40520, kRequest)),
            R"({"event":"frame","at":12345,"from":"host","bytes":)" + std::to_string(kRequest.size() + 8) +
                R"(,"type":40520,"class":"CQXMBMessage_Audio3rdSDK_AudioCmdRequest",)"
                R"("wireName":"com.velm.app.3rd.audiosdk.sendaudiocmd.request",)"
                R"("fields":{"AudioCmdRequest":"{}","ChannelId":7},"notes":[],"errors":[]})");
  EXPECT_EQ(ToJsonText(kEvents[4]),
            R"({"event":"garbage","at":3000000001,"from":"host","bytes":2,"hex":"0a00"})");
  EXPECT_EQ(ToJsonText(kEvents[5]), R"({"event":"closed","at":3000000002,"from":"client"})");
}

// ---- The command line

TEST(TraceOptionsTest, EveryOption) {
  const Options relay = ParseOptions({"--serve", "a", "--open", "b", "--record", "f", "--json", "--once"});
  EXPECT_EQ(relay.serve, "a");
  EXPECT_EQ(relay.open, "b");
  EXPECT_EQ(relay.recording, "f");
  EXPECT_TRUE(relay.json && relay.once);
  EXPECT_EQ(relay.limit, 10s);
  const Options replay = ParseOptions({"--replay", "f", "--open", "b", "--wait", "3"});
  EXPECT_EQ(replay.replay, "f");
  EXPECT_EQ(replay.limit, 3s);
  EXPECT_FALSE(replay.json || replay.once);
  EXPECT_TRUE(ParseOptions({"--help"}).help);
}

TEST(TraceOptionsTest, WhatIsWrongIsSaid) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, "both --serve and --open are needed, or --replay with one of them"},
      {{"--serve", "a"}, "both --serve and --open are needed, or --replay with one of them"},
      {{"--serve", "a", "--open", "a"}, "--serve and --open cannot name the same pipe"},
      {{"--replay", "f"},
       "--replay plays one end: it needs --serve to be the client, or --open to be the host"},
      {{"--replay", "f", "--serve", "a", "--open", "b"},
       "--replay plays one end: it needs --serve to be the client, or --open to be the host"},
      {{"--replay", "f", "--open", "b", "--once"},
       "'--once' does not go with --replay, which ends after one connection"},
      {{"--serve"}, "'--serve' needs a value"},
      {{"--sreve", "a"}, "unknown option '--sreve', did you mean '--serve'?"},
      {{"--wait", "-1"}, "number of seconds '-1' is out of range: 0 to 86400"},
  };
  for (const auto& [arguments, message] : cases)
    EXPECT_EQ(ErrorOf([&, &words = arguments] { ParseOptions(words); }), message);
}

}  // namespace
}  // namespace velm_trace
