// velm_msg as a program: its streams, files and exit codes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "archive/catalogue/catalogue.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchDirectory.h"

namespace velm_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

struct Outcome {
  std::optional<uint32_t> code;
  std::vector<std::string> lines;
  std::string errors;
};

Outcome RunTool(const std::vector<std::string>& arguments, std::string_view input = {}) {
  ChildProcess program(ProgramBeside(L"velm_msg.exe"), arguments);
  if (!input.empty()) program.Write(input);
  Outcome outcome;
  outcome.code = program.Wait();
  outcome.lines = program.ReadRest();
  outcome.errors = program.Errors();
  return outcome;
}

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A stream in text mode would change line ends, and end at 0x1A.
TEST(VelmMsgProgram, FrameGoesThroughAFileAndTheInputUnchanged) {
  const ScratchDirectory directory;
  const std::string file = directory.Narrow() + "\\frame.bin";
  ASSERT_EQ(RunTool({"encode", "40521", "--frame", "--out", file, "ChannelId=10",
                     "AudioCmdNotify=a\n\n\x1a"
                     "b"})
                .code,
            0u);
  const std::string frame = BytesOf(file);
  ASSERT_GT(frame.size(), 8u);
  EXPECT_EQ(static_cast<unsigned char>(frame[0]) + 8u, frame.size());
  const std::string json =
      R"({"offset":0,"type":40521,"class":"CQXMBMessage_Audio3rdSDK_AudioCmdNotify",)"
      R"("wireName":"com.velm.app.3rd.audiosdk.sendaudiocmd.notify",)"
      R"("fields":{"AudioCmdNotify":"a\n\n\u001ab","ChannelId":10},"notes":[],"errors":[]})";
  EXPECT_THAT(RunTool({"decode", "--json", file}).lines, ElementsAre(json));
  EXPECT_THAT(RunTool({"decode", "--json"}, frame).lines, ElementsAre(json));
  const Outcome again = RunTool({"encode", "--frame", "--json", "-"}, json);
  EXPECT_EQ(again.code, 0u);
  std::string output;
  for (const std::string& line : again.lines)
    output += line + '\n';
  EXPECT_EQ(output, frame);
}

TEST(VelmMsgProgram, HexGoesRound) {
  const Outcome hex = RunTool({"encode", "QXIPCMessage_Connect", "--hex", "ProcessID=1"});
  ASSERT_THAT(hex.lines, SizeIs(1));
  const Outcome decoded = RunTool({"decode", "--hex"}, hex.lines[0] + "\r\n");
  EXPECT_EQ(decoded.code, 0u) << decoded.errors;
  EXPECT_THAT(decoded.lines,
              ElementsAre("frame at 0, type 1: QXIPCMessage_Connect",
                          "  wire name com.Tessarn.ipc.internel.connect_req", "  u32 ProcessID = 1"));
  EXPECT_EQ(RunTool({"decode", "--hex"}, "0g").code, 1u);
}

TEST(VelmMsgProgram, EachOfTwoWithOneWireNameWorksInARunOfItsOwn) {
  for (const auto* message : Cmm::Archive::FindMessagesById(40145)) {
    const Outcome text = RunTool({"encode", message->className});
    ASSERT_THAT(text.lines, SizeIs(1)) << text.errors;
    const Outcome decoded = RunTool({"decode", "--json"}, text.lines[0]);
    EXPECT_EQ(decoded.code, 0u);
    ASSERT_THAT(decoded.lines, SizeIs(1));
    EXPECT_THAT(decoded.lines[0], HasSubstr("\"class\":\"" + std::string(message->className) + "\""));
  }
}

TEST(VelmMsgProgram, ExitCodesTellDataFromUsage) {
  EXPECT_EQ(RunTool({"--help"}).code, 0u);
  EXPECT_THAT(RunTool({"list"}).lines, SizeIs(397));
  EXPECT_THAT(RunTool({"families"}).lines, SizeIs(9));
  EXPECT_THAT(RunTool({"show", "10210"}).lines, testing::Contains(IsEmpty()));
  EXPECT_EQ(RunTool({"find", "no such word"}).code, 1u);
  EXPECT_EQ(RunTool({"decode", "no such file"}).code, 1u);
  EXPECT_EQ(RunTool({"decode"}, "<x/>").code, 1u);
  EXPECT_EQ(RunTool({"encode", "40520", "--json", "-"}, "{\"X\":1}").code, 1u);
  EXPECT_EQ(RunTool({"encode", "40520", "X=1"}).code, 2u);
  EXPECT_EQ(RunTool({"encode", "10210"}).code, 2u);
  const Outcome none = RunTool({});
  EXPECT_EQ(none.code, 2u);
  EXPECT_THAT(none.lines, IsEmpty());
  EXPECT_THAT(none.errors, HasSubstr("a command is missing"));
}

}  // namespace
}  // namespace velm_test
