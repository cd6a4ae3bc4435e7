// Reading, writing and explaining typed messages.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "tests/tools/ErrorOf.h"
#include "tools/common/Text.h"
#include "tools/velm_msg/Decode.h"
#include "tools/velm_msg/Encode.h"
#include "tools/velm_msg/Lookup.h"
#include "tools/velm_msg/Options.h"

namespace velm_msg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using velm_tools::ErrorOf;

const std::string kAudioText =
    "<com.velm.app.3rd.audiosdk.sendaudiocmd.request ChannelId=\"7\" "
    "AudioCmdRequest=\"{&quot;cmd&quot;:5}\" version=\"10000\"/>\n";

// 118 bytes of text, type 40520.
const std::string kAudioHead("\x76\0\0\0\x48\x9e\0\0", 8);

std::string FailureOf(const std::function<void()>& function) {
  try {
    function();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no failure";
}

Encoded EncodeFields(std::string_view name, const std::vector<std::string>& assignments) {
  CatalogueMessage message(FindTheOne(name));
  SetFields(message, assignments);
  return Encode(message);
}

Decoded DecodeOne(const std::string& bytes, const MessageClass* as = nullptr) {
  const std::vector<Decoded> all = Decode(bytes, as);
  EXPECT_THAT(all, SizeIs(1));
  return all.front();
}

std::string HeadOf(uint32_t length, int32_t type) {
  std::string head(8, '\0');
  for (size_t i = 0; i < 4; ++i) {
    head[i] = static_cast<char>(length >> 8 * i);
    head[4 + i] = static_cast<char>(static_cast<uint32_t>(type) >> 8 * i);
  }
  return head;
}

std::string FrameOf(int32_t type, const std::string& text) {
  return HeadOf(static_cast<uint32_t>(text.size()), type) + text;
}

// ---- Encoding -------------------------------------------------------------------------------------------

TEST(VelmMsgEncode, AudioCommandHasTheseBytes) {
  const Encoded encoded = EncodeFields("40520", {"ChannelId=7", R"(AudioCmdRequest={"cmd":5})"});
  EXPECT_EQ(encoded.text, kAudioText);
  EXPECT_EQ(velm_tools::ToHex(encoded.frame), velm_tools::ToHex(kAudioHead + kAudioText));
}

TEST(VelmMsgEncode, FieldsThatAreNotSetAreZeroOrEmpty) {
  EXPECT_EQ(EncodeFields("40520", {}).text,
            "<com.velm.app.3rd.audiosdk.sendaudiocmd.request ChannelId=\"0\" AudioCmdRequest=\"\" "
            "version=\"10000\"/>\n");
}

TEST(VelmMsgEncode, MessageWithoutFieldsHasOnlyItsVersion) {
  EXPECT_EQ(EncodeFields("40353", {}).text, "<com.velm.app.log.clientexit version=\"10000\"/>\n");
}

TEST(VelmMsgEncode, WrongAssignmentsAreNamed) {
  EXPECT_EQ(ErrorOf([] { EncodeFields("40520", {"ChannelID=1"}); }),
            "CQXMBMessage_Audio3rdSDK_AudioCmdRequest has no field 'ChannelID', did you mean 'ChannelId'?");
  EXPECT_EQ(ErrorOf([] { EncodeFields("40520", {"ChannelId"}); }), "'ChannelId' is not name=value");
  EXPECT_EQ(ErrorOf([] {
              EncodeFields("40520", {"ChannelId=1", "ChannelId=1"});
            }),
            "'ChannelId' is set twice");
  for (const char* value : {"", "-1", "4294967296", "1 ", "x"})
    EXPECT_EQ(ErrorOf([=] { EncodeFields("40520", {std::string("ChannelId=") + value}); }),
              "'" + std::string(value) + "' is no u32 for the field 'ChannelId'");
  EXPECT_NE(EncodeFields("40520", {"ChannelId=4294967295"}).text.find("\"4294967295\""), std::string::npos);
}

TEST(VelmMsgEncode, ValueMayHoldEqualsSigns) {
  EXPECT_THAT(EncodeFields("40520", {"AudioCmdRequest=a=b="}).text, HasSubstr("AudioCmdRequest=\"a=b=\""));
}

TEST(VelmMsgEncode, ValueThatWouldNotArriveIsRefused) {
  const auto failureOf = [](const std::string& json) {
    return FailureOf([&] { EncodeJson(json, &FindTheOne("50001")); });
  };
  const std::string refused = "CQXMBMessage_IPCSDK_SDKCmdRequest cannot be sent: the value of 'NameSpace' ";
  EXPECT_EQ(failureOf(R"({"NameSpace":"a\u0000b"})"), refused + R"(would arrive as "a")");
  EXPECT_EQ(failureOf(R"({"NameSpace":"a\r\nb"})"), refused + R"(would arrive as "a\nb")");
  EXPECT_EQ(failureOf(R"({"NameSpace":"a\nb"})"), "no failure");
}

TEST(VelmMsgEncode, JsonIsFieldsOrWhatDecodeGives) {
  const MessageClass& audio = FindTheOne("40520");
  const std::string fields = R"({"ChannelId":7,"AudioCmdRequest":"{\"cmd\":5}"})";
  const std::string whole = R"({"class":"CQXMBMessage_Audio3rdSDK_AudioCmdRequest","fields":)" + fields + "}";
  EXPECT_EQ(EncodeJson(fields, &audio).at(0).text, kAudioText);
  EXPECT_EQ(EncodeJson(whole, nullptr).at(0).text, kAudioText);
  EXPECT_EQ(EncodeJson(whole, &audio).at(0).text, kAudioText);
  const std::vector<Encoded> two = EncodeJson(whole + "\r\n\r\n" + whole, nullptr);
  ASSERT_THAT(two, SizeIs(2));
  EXPECT_EQ(two[1].text, kAudioText);
}

TEST(VelmMsgEncode, WrongJsonIsNamed) {
  const MessageClass& audio = FindTheOne("40520");
  EXPECT_EQ(FailureOf([&] { EncodeJson("", &audio); }), "the input holds no JSON object");
  EXPECT_EQ(FailureOf([&] { EncodeJson("{}\n{", &audio); }), "line 2: no JSON object");
  EXPECT_EQ(FailureOf([&] { EncodeJson("[]", &audio); }), "a message is a JSON object");
  EXPECT_EQ(FailureOf([] { EncodeJson("{}", nullptr); }), "\"fields\" is missing or no object");
  EXPECT_EQ(FailureOf([] { EncodeJson(R"({"fields":{}})", nullptr); }),
            "\"class\" is missing, and no message is named");
  EXPECT_EQ(FailureOf([&] { EncodeJson(R"({"class":"QXIPCMessage_Connect","fields":{}})", &audio); }),
            "a QXIPCMessage_Connect is no CQXMBMessage_Audio3rdSDK_AudioCmdRequest");
  EXPECT_THAT(FailureOf([&] { EncodeJson(R"({"ChannelId":1.5})", &audio); }), HasSubstr("not 1.5"));
  EXPECT_THAT(FailureOf([&] { EncodeJson(R"({"ChannelId":null})", &audio); }), HasSubstr("not null"));
  EXPECT_THAT(FailureOf([&] { EncodeJson(R"({"ChannelId":-1})", &audio); }), HasSubstr("'-1' is no u32"));
  EXPECT_THAT(FailureOf([&] { EncodeJson(R"({"X":1})", &audio); }), HasSubstr("has no field 'X'"));
}

// ---- Decoding -------------------------------------------------------------------------------------------

void ExpectAudio(const Decoded& decoded) {
  EXPECT_THAT(decoded.problems, IsEmpty());
  EXPECT_THAT(decoded.remarks, IsEmpty());
  ASSERT_TRUE(decoded.IsRead());
  EXPECT_EQ(decoded.messageClass->id, 40520);
  EXPECT_THAT(decoded.values, ElementsAre(Json::Value(7u), Json::Value("{\"cmd\":5}")));
}

TEST(VelmMsgDecode, FrameAndTextGiveTheSame) {
  const Decoded frame = DecodeOne(kAudioHead + kAudioText);
  ExpectAudio(frame);
  EXPECT_EQ(frame.type, 40520);
  for (const std::string& text : {kAudioText, "\xEF\xBB\xBF \r\n" + kAudioText + "\r\n"}) {
    const Decoded decoded = DecodeOne(text);
    ExpectAudio(decoded);
    EXPECT_EQ(decoded.type, std::nullopt);
  }
}

TEST(VelmMsgDecode, JsonLineOfAFrame) {
  EXPECT_EQ(ToJsonText(DecodeOne(kAudioHead + kAudioText)),
            R"({"offset":0,"type":40520,"class":"CQXMBMessage_Audio3rdSDK_AudioCmdRequest",)"
            R"("wireName":"com.velm.app.3rd.audiosdk.sendaudiocmd.request",)"
            R"("fields":{"AudioCmdRequest":"{\"cmd\":5}","ChannelId":7},"notes":[],"errors":[]})");
}

TEST(VelmMsgDecode, ReadableLinesKeepTheOrderOfTheWire) {
  EXPECT_THAT(ToLines(DecodeOne(kAudioHead + kAudioText)),
              ElementsAre("frame at 0, type 40520: CQXMBMessage_Audio3rdSDK_AudioCmdRequest",
                          "  wire name com.velm.app.3rd.audiosdk.sendaudiocmd.request", "  u32 ChannelId = 7",
                          R"(  wstr AudioCmdRequest = "{\"cmd\":5}")"));
}

TEST(VelmMsgDecode, FramesFollowOneAnother) {
  const std::string frame = kAudioHead + kAudioText;
  const std::vector<Decoded> all = Decode(frame + EncodeFields("40353", {}).frame + frame, nullptr);
  ASSERT_THAT(all, SizeIs(3));
  ExpectAudio(all[0]);
  EXPECT_EQ(all[1].messageClass->id, 40353);
  EXPECT_EQ(all[1].offset, frame.size());
  ExpectAudio(all[2]);
}

TEST(VelmMsgDecode, ElementsOfATextAreAMessageEach) {
  EXPECT_THAT(Decode(kAudioText + "\n" + kAudioText + "\n", nullptr), SizeIs(2));
}

TEST(VelmMsgDecode, EveryPieceOfAFrameIsCutOrLeft) {
  const std::string frame = kAudioHead + kAudioText;
  for (size_t size = 1; size < frame.size(); ++size) {
    const Decoded decoded = DecodeOne(frame.substr(0, size));
    EXPECT_FALSE(decoded.IsRead());
    EXPECT_THAT(decoded.problems,
                ElementsAre(HasSubstr(size < 8 ? "where a header has 8 bytes" : "as a frame cut: ")));
  }
}

TEST(VelmMsgDecode, WhatTrailsAFrameIsTold) {
  const std::string frame = kAudioHead + kAudioText;
  const std::vector<Decoded> all = Decode(frame + "abc", nullptr);
  ASSERT_THAT(all, SizeIs(2));
  ExpectAudio(all[0]);
  EXPECT_EQ(all[1].offset, frame.size());
  EXPECT_THAT(all[1].problems, ElementsAre("3 bytes left, where a header has 8 bytes"));
}

TEST(VelmMsgDecode, SecondFrameThatIsCutIsToldAndTheFirstIsRead) {
  const std::string frame = kAudioHead + kAudioText;
  const std::vector<Decoded> all = Decode(frame + frame.substr(0, 9), nullptr);
  ASSERT_THAT(all, SizeIs(2));
  ExpectAudio(all[0]);
  EXPECT_THAT(
      ToLines(all[1]),
      ElementsAre("at 126", "  error: cut: the header tells of 118 bytes, and what is left is 1 byte"));
}

TEST(VelmMsgDecode, HeaderWithTheLargestLengthIsCut) {
  EXPECT_THAT(
      DecodeOne(HeadOf(0xFFFFFFFF, 1) + "abc").problems,
      ElementsAre(
          "no XML, and as a frame cut: the header tells of 4294967295 bytes, and what is left is 3 bytes"));
}

TEST(VelmMsgDecode, HeaderWithoutPayloadIsTold) {
  const std::vector<Decoded> all = Decode(HeadOf(0, 40353) + kAudioHead + kAudioText, nullptr);
  ASSERT_THAT(all, SizeIs(2));
  EXPECT_THAT(all[0].problems, ElementsAre(HasSubstr("without a payload")));
  ExpectAudio(all[1]);
}

TEST(VelmMsgDecode, LengthThatBeginsAsATextDoesIsALength) {
  EXPECT_FALSE(LooksLikeText(HeadOf('<', 40520)));
  EXPECT_FALSE(LooksLikeText(HeadOf(0x613C, 40520)));
  EXPECT_TRUE(LooksLikeText("<a/>"));
  EXPECT_FALSE(LooksLikeText(""));
}

struct WrongText {
  std::string text;
  std::string problem;
};

TEST(VelmMsgDecode, WhatIsWrongWithATextIsTold) {
  const std::string name = "<com.velm.app.log.startchannel ";
  const WrongText tests[] = {
      {name + "ChannelId=\"1\" version=\"10000\"/>", "the attribute 'GroupId' (u32) is missing"},
      {name + "ChannelId=\"1\" GroupId=\"x\" version=\"10000\"/>", "the attribute 'GroupId' is no u32: 'x'"},
      {name + "ChannelId=\"1\" GroupId=\"2\" version=\"10001\"/>",
       "the version is 10001, where 10000 is known"},
      {"<com.velm.app.log.startchanel/>",
       "unknown wire name 'com.velm.app.log.startchanel', did you mean 'com.velm.app.log.startchannel'?"},
      {name, "no XML: "},
      {"<!-- only -->", "no XML element"},
  };
  for (const WrongText& test : tests) {
    const Decoded decoded = DecodeOne(test.text);
    EXPECT_FALSE(decoded.IsRead()) << test.text;
    EXPECT_THAT(decoded.problems, ElementsAre(HasSubstr(test.problem)));
    EXPECT_THAT(ToJsonText(decoded), HasSubstr("\"fields\":null"));
  }
  EXPECT_THAT(DecodeOne("").problems, ElementsAre("the input is empty"));
}

TEST(VelmMsgDecode, WhatAReceiverPassesOverIsANote) {
  const Decoded decoded =
      DecodeOne("<com.velm.app.log.startchannel GroupId=\" 2\" ChannelId=\"1\" More=\"3\"/>");
  EXPECT_THAT(decoded.problems, IsEmpty());
  EXPECT_THAT(decoded.remarks, ElementsAre("no version is given", "the attribute 'More' is no field",
                                           "the attribute 'GroupId' is written ' 2' and read as 2"));
  EXPECT_THAT(decoded.values, ElementsAre(Json::Value(1u), Json::Value(2u)));
}

TEST(VelmMsgDecode, TypeThatIsNotTheNamesIsAnErrorAndTheTextIsRead) {
  const Decoded unknown = DecodeOne(FrameOf(99999, kAudioText));
  EXPECT_THAT(unknown.problems, ElementsAre("the frame's type 99999 is no message's id"));
  EXPECT_TRUE(unknown.IsRead());
  const Decoded other = DecodeOne(FrameOf(40353, kAudioText));
  EXPECT_THAT(other.problems,
              ElementsAre("the frame's type 40353 is the id of CQXMBMessage_LogService_ClientExit, which is "
                          "not called 'com.velm.app.3rd.audiosdk.sendaudiocmd.request'"));
  EXPECT_TRUE(other.IsRead());
}

TEST(VelmMsgDecode, TypeSharedByTwoMessagesIsToldApartByTheName) {
  for (const char* name :
       {"CQXMBMessage_OutlookStartMeetingRequest", "CQXMBMessage_OutlookStartMeetingResponse"}) {
    const Decoded decoded = DecodeOne(EncodeFields(name, {}).frame);
    EXPECT_THAT(decoded.problems, IsEmpty());
    EXPECT_STREQ(decoded.messageClass->className, name);
  }
}

TEST(VelmMsgDecode, ReadingAsAnotherClassIsAnError) {
  const Decoded decoded = DecodeOne(kAudioText, &FindTheOne("40353"));
  EXPECT_FALSE(decoded.IsRead());
  ASSERT_FALSE(decoded.problems.empty());
  EXPECT_THAT(decoded.problems.front(), HasSubstr("is called 'com.velm.app.log.clientexit', not "));
}

TEST(VelmMsgDecode, SharedWireNameWithoutFittingAttributesAsksForTheClass) {
  const std::string name = Cmm::Archive::FindMessagesById(40145).front()->wireName;
  EXPECT_THAT(DecodeOne("<" + name + " version=\"10000\"/>").problems,
              ElementsAre(HasSubstr("the attributes fit none of them: choose one with --as CLASS")));
}

// ---- Every message --------------------------------------------------------------------------------------

std::string SampleOf(Cmm::Archive::MessageFieldType type) {
  using enum Cmm::Archive::MessageFieldType;
  switch (type) {
    case i32:
      return "-2147483648";
    case u32:
      return "4294967295";
    case i64:
      return "-9223372036854775808";
    case u64:
      return "18446744073709551615";
    default:
      return "\xC3\xA9 <\"&'>\n\xF0\x9F\x8E\xA7";
  }
}

TEST(VelmMsgRoundTrip, EveryMessageComesBackThroughFrameTextAndJson) {
  // Of the two with one wire name a process can only use the first.
  const MessageClass* unusable = Cmm::Archive::FindMessagesById(40145).back();
  size_t count = 0;
  for (const MessageClass& message : Cmm::Archive::MessageClasses()) {
    if (&message == unusable) continue;
    SCOPED_TRACE(message.className);
    std::vector<std::string> assignments;
    for (const auto& field : message.fields)
      assignments.push_back(std::string(field.name) + '=' + SampleOf(field.type));
    const Encoded encoded = EncodeFields(message.className, assignments);
    const Decoded decoded = DecodeOne(encoded.frame);
    EXPECT_THAT(decoded.problems, IsEmpty());
    EXPECT_THAT(decoded.remarks, IsEmpty());
    EXPECT_EQ(decoded.messageClass, &message);
    EXPECT_EQ(DecodeOne(encoded.text).values, decoded.values);
    EXPECT_EQ(EncodeJson(ToJsonText(decoded), nullptr).at(0).frame, encoded.frame);
    ++count;
  }
  EXPECT_EQ(count, 396u);
  const std::string reason = "which share a wire name, a process can only use the one that it meets first";
  EXPECT_THAT(FailureOf([=] { EncodeFields(unusable->className, {}); }), HasSubstr(reason));
  std::string text = std::string("<") + unusable->wireName;
  for (const auto& field : unusable->fields)
    text += std::string(" ") + field.name + "=\"1\"";
  const Decoded decoded = DecodeOne(text + " version=\"10000\"/>");
  EXPECT_EQ(decoded.messageClass, unusable);
  EXPECT_FALSE(decoded.IsRead());
  EXPECT_THAT(decoded.problems, ElementsAre(HasSubstr(reason)));
}

// ---- The catalogue --------------------------------------------------------------------------------------

TEST(VelmMsgLookup, ClassIdAndWireNameNameTheSame) {
  const MessageClass& audio = FindTheOne("40520");
  EXPECT_EQ(&FindTheOne("0x9e48"), &audio);
  EXPECT_EQ(&FindTheOne(audio.className), &audio);
  EXPECT_EQ(&FindTheOne(audio.wireName), &audio);
}

TEST(VelmMsgLookup, UnknownAndSharedNamesAreTold) {
  EXPECT_EQ(ErrorOf([] { FindNamed("4"); }), "no message has the id 4");
  EXPECT_THAT(ErrorOf([] { FindNamed("QXIPCMessage_Conect"); }),
              HasSubstr("did you mean 'QXIPCMessage_Connect'?"));
  EXPECT_EQ(
      ErrorOf([] { FindTheOne("10210"); }),
      "'10210' is shared by CQXMBMessage_AvatarDataRequest and CQXMBMessage_NotifyRunningLate: name the "
      "class");
  EXPECT_THAT(FindNamed("10210"), SizeIs(2));
}

TEST(VelmMsgLookup, SearchFindsIdClassWireNameAndFieldInAnyCase) {
  EXPECT_THAT(Search("40520"), ElementsAre(&FindTheOne("40520")));
  EXPECT_THAT(Search("audiocmdREQUEST"), ElementsAre(&FindTheOne("40520")));
  EXPECT_THAT(Search("IPC.internel"), SizeIs(3));
  EXPECT_THAT(Search("smapleRate"), SizeIs(1));
  EXPECT_THAT(Search("no such word"), IsEmpty());
}

TEST(VelmMsgLookup, FamiliesHoldEveryMessageOnce) {
  size_t count = 0;
  for (const std::string_view family : Families())
    count += OfFamily(family).size();
  EXPECT_EQ(count, Cmm::Archive::MessageClasses().size());
  EXPECT_THAT(Families(), SizeIs(9));
  EXPECT_THAT(ErrorOf([] { OfFamily("process"); }), HasSubstr("'velm_msg families' lists them"));
}

TEST(VelmMsgLookup, AllAboutAMessage) {
  EXPECT_EQ(Line(FindTheOne("40351")),
            "40351 CQXMBMessage_LogService_StartChannel com.velm.app.log.startchannel");
  EXPECT_THAT(Lines(FindTheOne("40351")),
              ElementsAre("class      CQXMBMessage_LogService_StartChannel", "id         40351",
                          "wire name  com.velm.app.log.startchannel", "family     sdk_and_connection",
                          "field      u32 ChannelId", "field      u32 GroupId"));
}

// ---- The command line -----------------------------------------------------------------------------------

TEST(VelmMsgOptions, CommandsReadTheirArguments) {
  const Options decode = ParseOptions({"decode", "--json", "--hex", "--as", "C", "file"});
  EXPECT_EQ(decode.action, Action::kDecode);
  EXPECT_TRUE(decode.json && decode.hexInput);
  EXPECT_EQ(decode.subject, "C");
  EXPECT_EQ(decode.input, "file");
  const Options encode = ParseOptions({"encode", "C", "--frame", "--out", "o", "a=1", "b=--x"});
  EXPECT_EQ(encode.form, Form::kFrame);
  EXPECT_EQ(encode.output, "o");
  EXPECT_THAT(encode.assignments, ElementsAre("a=1", "b=--x"));
  EXPECT_EQ(ParseOptions({"encode", "--json", "-"}).subject, "");
  EXPECT_EQ(ParseOptions({"decode", "-"}).input, "-");
  EXPECT_EQ(ParseOptions({"list"}).subject, "");
  EXPECT_EQ(ParseOptions({"decode", "--help"}).action, Action::kHelp);
}

TEST(VelmMsgOptions, WrongLinesAreRefused) {
  const std::vector<std::string> lines[] = {
      {},
      {"decod"},
      {"families", "x"},
      {"list", "a", "b"},
      {"find"},
      {"find", ""},
      {"show"},
      {"show", "--x"},
      {"decode", "--as"},
      {"decode", "--jsn"},
      {"decode", "a", "b"},
      {"encode"},
      {"encode", "C", "--text", "--hex"},
      {"encode", "C", "--out"},
      {"encode", "C", "--json", "-", "a=1"},
      {"encode", "--json"},
      {"encode", "C", "--loud"},
  };
  for (const auto& line : lines)
    EXPECT_NE(ErrorOf([&] { ParseOptions(line); }), "no error") << testing::PrintToString(line);
  EXPECT_EQ(ErrorOf([] { ParseOptions({"decod"}); }), "unknown command 'decod', did you mean 'decode'?");
}

}  // namespace
}  // namespace velm_msg
