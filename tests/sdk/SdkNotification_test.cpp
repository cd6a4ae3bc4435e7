#include "sdk/SdkNotification.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

namespace Velm3rdSDK {
namespace {

// Reads a whole notification; fails the test when it is no notification.
Notification Read(const std::string& json) {
  NotificationReader reader;
  Notification result;
  EXPECT_NE(reader.ParseCommandId(json.c_str()), 0) << json;
  reader.Read(result);
  return result;
}

int32_t CommandIdOf(const std::string& json) {
  return NotificationReader().ParseCommandId(json.c_str());
}

// ---- commandId

TEST(NotificationCommandId, OneToTenAreFamilies) {
  for (int id = 1; id <= 10; ++id)
    EXPECT_EQ(CommandIdOf("{\"commandId\":" + std::to_string(id) + "}"), id);
}

TEST(NotificationCommandId, ZeroAndElevenAndBeyondAreIgnored) {
  for (const char* id : {"0", "11", "-1", "2147483647", "-2147483648", "4294967297", "18446744073709551617"})
    EXPECT_EQ(CommandIdOf(std::string("{\"commandId\":") + id + "}"), 0) << id;
}

TEST(NotificationCommandId, RealNumberWithoutFractionIsAnInteger) {
  EXPECT_EQ(CommandIdOf(R"({"commandId":2.0})"), 2);
  EXPECT_EQ(CommandIdOf(R"({"commandId":1e1})"), 10);
  EXPECT_EQ(CommandIdOf(R"({"commandId":2.5})"), 0);
}

TEST(NotificationCommandId, OtherTypesAreNoCommandId) {
  for (const char* value : {"\"2\"", "true", "null", "[2]", "{}"})
    EXPECT_EQ(CommandIdOf(std::string("{\"commandId\":") + value + "}"), 0) << value;
  EXPECT_EQ(CommandIdOf("{}"), 0);
}

TEST(NotificationCommandId, TextThatIsNoJsonObjectIsIgnored) {
  for (const char* text :
       {"", " ", "{", "}", "[]", "[{\"commandId\":2}]", "2", "\"commandId\"", "null", "{commandId:2}",
        "{\"commandId\":2", "{\"commandId\":}", "\xEF\xBB\xBF{\"commandId\":2}", "\x80\xFF"})
    EXPECT_EQ(CommandIdOf(text), 0) << text;
}

TEST(NotificationCommandId, DeepNestingIsRefusedAndHarmsNothing) {
  for (const int depth : {1001, 10000, 200000}) {
    EXPECT_EQ(CommandIdOf("{\"commandId\":2,\"data\":" + std::string(static_cast<size_t>(depth), '[') +
                          std::string(static_cast<size_t>(depth), ']') + "}"),
              0)
        << depth;
    EXPECT_EQ(CommandIdOf(std::string(static_cast<size_t>(depth), '[')), 0);
  }
}

TEST(NotificationCommandId, NestingBelowTheLimitIsRead) {
  EXPECT_EQ(CommandIdOf("{\"commandId\":2,\"x\":" + std::string(900, '[') + std::string(900, ']') + "}"), 2);
}

TEST(NotificationCommandId, MegabyteOfTextIsRead) {
  EXPECT_EQ(CommandIdOf("{\"commandId\":2,\"padding\":\"" + std::string(1 << 20, 'x') + "\"}"), 2);
}

TEST(NotificationCommandId, ReaderMayBeUsedAgain) {
  NotificationReader reader;
  EXPECT_EQ(reader.ParseCommandId(R"({"commandId":2,"from":5})"), 2);
  EXPECT_EQ(reader.ParseCommandId("{"), 0);
  EXPECT_EQ(reader.ParseCommandId(R"({"commandId":3})"), 3);
  Notification notification;
  reader.Read(notification);
  EXPECT_EQ(notification.commandId, 3);
  EXPECT_EQ(notification.from, 0);
}

// ---- Integers

TEST(NotificationValue, EachFamilyHasItsKey) {
  const struct {
    int id;
    const char* key;
  } rows[] = {{1, "PresenceStatus"},  {2, "AudioCmd"},     {3, "ScreenShareStatus"},
              {4, "ConfChatStatus"},  {5, "CameraStatus"}, {6, "ConfAudioStatus"},
              {7, "ConfEvent"},       {8, "PTEvent"},      {9, "ConfDeviceStatus"},
              {10, "UIControlStatus"}};
  for (const auto& row : rows) {
    const Notification n =
        Read("{\"commandId\":" + std::to_string(row.id) + ",\"data\":[{\"" + row.key + "\":41}]}");
    EXPECT_EQ(n.commandId, row.id);
    EXPECT_EQ(n.value, 41) << row.key;
  }
}

TEST(NotificationValue, KeyOfAnotherFamilyIsNotRead) {
  EXPECT_EQ(Read(R"({"commandId":2,"data":[{"CameraStatus":1}]})").value, 0);
}

TEST(NotificationValue, WithoutDataIs0) {
  for (const char* data :
       {"", ",\"data\":[]", ",\"data\":{}", ",\"data\":null", ",\"data\":7", ",\"data\":\"AudioCmd\"",
        ",\"data\":{\"AudioCmd\":5}", ",\"data\":[5]", ",\"data\":[[{\"AudioCmd\":5}]]", ",\"data\":[null]"})
    EXPECT_EQ(Read(std::string("{\"commandId\":2") + data + "}").value, 0) << data;
}

TEST(NotificationValue, OnlyTheFirstElementOfDataIsUsed) {
  EXPECT_EQ(Read(R"({"commandId":2,"data":[{"AudioCmd":5},{"AudioCmd":6}]})").value, 5);
  EXPECT_EQ(Read(R"({"commandId":2,"data":[{},{"AudioCmd":6}]})").value, 0);
}

TEST(NotificationValue, IntegersAre32Bits) {
  const auto value = [](const std::string& number) {
    return Read("{\"commandId\":2,\"data\":[{\"AudioCmd\":" + number + "}]}").value;
  };
  EXPECT_EQ(value("2147483647"), INT_MAX);
  EXPECT_EQ(value("-2147483648"), INT_MIN);
  EXPECT_EQ(value("2147483648"), 0);
  EXPECT_EQ(value("-2147483649"), 0);
  EXPECT_EQ(value("7.0"), 7);
  EXPECT_EQ(value("7.25"), 0);
  EXPECT_EQ(value("\"7\""), 0);
  EXPECT_EQ(value("true"), 0);
}

TEST(NotificationValue, PresenceHasTwoFurtherIntegers) {
  const Notification n =
      Read(R"({"commandId":1,"data":[{"PresenceStatus":1,"PresenceStatusV2":2,"extraReason":3}]})");
  EXPECT_EQ(n.value, 1);
  EXPECT_EQ(n.statusV2, 2);
  EXPECT_EQ(n.extraReason, 3);
  const Notification other = Read(R"({"commandId":3,"data":[{"PresenceStatusV2":2,"extraReason":3}]})");
  EXPECT_EQ(other.statusV2, 0);
  EXPECT_EQ(other.extraReason, 0);
}

TEST(NotificationValue, InComputerAudioIsTrueFromOneOn) {
  const auto flag = [](const std::string& value) {
    return Read("{\"commandId\":6,\"data\":[{\"IsInComputerAudio\":" + value + "}]}").isInComputerAudio;
  };
  EXPECT_TRUE(flag("1"));
  EXPECT_TRUE(flag("2"));
  EXPECT_FALSE(flag("0"));
  EXPECT_FALSE(flag("-1"));
  EXPECT_FALSE(flag("true"));  // no integer
  EXPECT_FALSE(Read(R"({"commandId":7,"data":[{"IsInComputerAudio":1}]})").isInComputerAudio);
}

TEST(NotificationValue, DeviceAndControlHaveTheirType) {
  EXPECT_EQ(Read(R"({"commandId":9,"data":[{"ConfDeviceType":4}]})").subType, 4);
  EXPECT_EQ(Read(R"({"commandId":10,"data":[{"UIControlType":5}]})").subType, 5);
  EXPECT_EQ(Read(R"({"commandId":9,"data":[{"UIControlType":5}]})").subType, 0);
}

TEST(NotificationTopLevel, IntegersAreCopiedThrough) {
  const Notification n = Read(R"({"commandId":7,"from":-3,"activeMeetingsCount":4,"meetingType":5})");
  EXPECT_EQ(n.from, -3);
  EXPECT_EQ(n.activeMeetingsCount, 4);
  EXPECT_EQ(n.meetingType, 5);
}

TEST(NotificationTopLevel, AbsentAndMistypedIntegersAre0) {
  for (const char* json :
       {R"({"commandId":7})", R"({"commandId":7,"from":"1","activeMeetingsCount":[],"meetingType":1.5})"}) {
    const Notification n = Read(json);
    EXPECT_EQ(n.from, 0);
    EXPECT_EQ(n.activeMeetingsCount, 0);
    EXPECT_EQ(n.meetingType, 0);
  }
}

// ---- Texts

struct TextKey {
  const char* key;
  size_t limitBytes;
  const wchar_t* (*get)(const Notification&);
};

class NotificationText : public testing::TestWithParam<TextKey> {
 protected:
  std::wstring Value(const std::string& jsonValue) {
    const Notification n =
        Read(std::string("{\"commandId\":7,\"") + GetParam().key + "\":" + jsonValue + "}");
    return GetParam().get(n);
  }
  std::wstring ValueOf(const std::string& text) { return Value("\"" + text + "\""); }
};

TEST_P(NotificationText, OneByteBelowTheLimitIsTaken) {
  EXPECT_EQ(ValueOf(std::string(GetParam().limitBytes - 1, 'd')),
            std::wstring(GetParam().limitBytes - 1, L'd'));
}

TEST_P(NotificationText, AtTheLimitAndBeyondCountsAsAbsent) {
  EXPECT_EQ(ValueOf(std::string(GetParam().limitBytes, 'd')), L"");
  EXPECT_EQ(ValueOf(std::string(GetParam().limitBytes + 1, 'd')), L"");
  EXPECT_EQ(ValueOf(std::string(1 << 20, 'd')), L"");
}

TEST_P(NotificationText, LimitCountsBytesAndNotCharacters) {
  std::string text;
  while (text.size() + 2 < GetParam().limitBytes)
    text += "\xC3\xA9";
  EXPECT_EQ(ValueOf(text), std::wstring(text.size() / 2, L'\u00E9'));
  EXPECT_EQ(ValueOf(text + "\xC3\xA9" + "\xC3\xA9"), L"");
}

TEST_P(NotificationText, OtherTypesCountAsAbsent) {
  for (const char* value : {"5", "true", "null", "[\"x\"]", "{\"x\":\"y\"}"})
    EXPECT_EQ(Value(value), L"") << value;
}

TEST_P(NotificationText, EscapesAreResolved) {
  EXPECT_EQ(ValueOf(R"(a\"b\\c\u00e9\ud83d\ude00)"), L"a\"b\\c\u00E9\xD83D\xDE00");
}

TEST_P(NotificationText, InvalidUtf8IsReplacedAndStaysInItsField) {
  const std::wstring value = ValueOf(std::string(GetParam().limitBytes - 1, '\xFF'));
  EXPECT_LT(value.size(), GetParam().limitBytes);
  EXPECT_EQ(value.find_first_not_of(L'\uFFFD'), std::wstring::npos);
}

TEST_P(NotificationText, EndsAtAnEscapedNul) {
  EXPECT_EQ(ValueOf(R"(ab\u0000cd)"), L"ab");
}

INSTANTIATE_TEST_SUITE_P(
    Keys, NotificationText,
    testing::Values(
        TextKey{"deviceName", 100, [](const Notification& n) -> const wchar_t* { return n.deviceName; }},
        TextKey{"deviceGUID", 100, [](const Notification& n) -> const wchar_t* { return n.deviceGUID; }},
        TextKey{"meetingId", 200, [](const Notification& n) -> const wchar_t* { return n.meetingId; }}),
    [](const auto& test) { return std::string(test.param.key); });

// ---- Result

Notification WithResult(const std::string& text) {
  return Read("{\"commandId\":7,\"result\":\"" + text + "\"}");
}

TEST(NotificationResult, CodeStandsBeforeTheColonAndTextBehindIt) {
  const struct {
    const char* result;
    int32_t code;
    const wchar_t* info;
  } rows[] = {
      {"0:OK", 0, L"OK"},
      {"12:", 12, L""},
      {"-7:no", -7, L"no"},
      {"3:a:b", 3, L"a:b"},
      {":x", 0, L"x"},
      {"abc:x", 0, L"x"},
      {" 12 :x", 12, L"x"},
      {"0x1F:x", 0, L"x"},
      {"99999999999:x", INT_MAX, L"x"},
      {"-99999999999:x", INT_MIN, L"x"},
  };
  for (const auto& row : rows) {
    const Notification n = WithResult(row.result);
    EXPECT_EQ(n.code, row.code) << row.result;
    EXPECT_STREQ(n.resultInfo, row.info) << row.result;
    EXPECT_FALSE(n.resultTooLong);
  }
}

TEST(NotificationResult, WithoutColonIsCodeMinus1AndNoText) {
  const Notification n = WithResult("OK");
  EXPECT_EQ(n.code, -1);
  EXPECT_STREQ(n.resultInfo, L"");
}

TEST(NotificationResult, AbsentOrNoStringIsCodeMinus1) {
  EXPECT_EQ(Read(R"({"commandId":7})").code, -1);
  EXPECT_EQ(Read(R"({"commandId":7,"result":0})").code, -1);
  EXPECT_EQ(Read(R"({"commandId":7,"result":["0:OK"]})").code, -1);
}

TEST(NotificationResult, Of511BytesIsReadAndOf512IsNot) {
  const Notification read = WithResult("4:" + std::string(509, 'x'));
  EXPECT_EQ(read.code, 4);
  EXPECT_FALSE(read.resultTooLong);
  const Notification refused = WithResult("4:" + std::string(510, 'x'));
  EXPECT_EQ(refused.code, -1);
  EXPECT_STREQ(refused.resultInfo, L"");
  EXPECT_TRUE(refused.resultTooLong);
}

TEST(NotificationResult, LongestTextOf510CharactersIsCutTo199) {
  const Notification n = WithResult(":" + std::string(510, 'x'));
  EXPECT_EQ(n.code, 0);
  EXPECT_EQ(std::wstring(n.resultInfo), std::wstring(199, L'x'));
}

TEST(NotificationResult, TextOf199CharactersIsWhole) {
  EXPECT_EQ(std::wstring(WithResult("0:" + std::string(199, 'x')).resultInfo), std::wstring(199, L'x'));
  EXPECT_EQ(std::wstring(WithResult("0:" + std::string(198, 'x') + "yz").resultInfo),
            std::wstring(198, L'x') + L'y');
}

TEST(NotificationResult, CutDoesNotSplitASurrogatePair) {
  const std::string face = "\xF0\x9F\x98\x80";
  const Notification n = WithResult("0:" + std::string(198, 'x') + face);
  EXPECT_EQ(std::wstring(n.resultInfo), std::wstring(198, L'x'));
  const Notification fits = WithResult("0:" + std::string(197, 'x') + face + "y");
  EXPECT_EQ(std::wstring(fits.resultInfo), std::wstring(197, L'x') + L"\xD83D\xDE00");
}

}  // namespace
}  // namespace Velm3rdSDK
