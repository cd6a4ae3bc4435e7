// A client that sends what no client should: the host application lives on, its records stay whole, and
// the next good notification arrives.

#include <random>

#include "tests/contract/ContractFixture.h"

namespace velm_test {
namespace {

class HostileContract : public ContractTest {
 protected:
  HostileContract() {
    StartClient({});
    m_sdk->GetSDKAvailableFeatures();
    EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL), 1U);
    SetAllCallbacks();
    EXPECT_TRUE(Sdk::AwaitWindow());
  }

  void ExpectStillAtWork() {
    const int before = g_taken.general;
    Tell("event 77 meeting=M count=5 type=6 result=0:well");
    EXPECT_EQ(g_taken.general, before + 1);
    const auto& event = Taken<SdkConfEventInfo>();
    EXPECT_EQ(event.event, 77);
    EXPECT_STREQ(event.resultInfo, L"well");
    EXPECT_STREQ(event.meetingId, L"M");
    EXPECT_EQ(event.activeMeetingsCount, 5);
    EXPECT_EQ(event.meetingType, 6);
  }

  void TellBytes(const std::string& bytes, const std::string& options = "") {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string line = "bytes ";
    for (const char byte : bytes) {
      line += kDigits[static_cast<unsigned char>(byte) >> 4];
      line += kDigits[static_cast<unsigned char>(byte) & 15];
    }
    Tell(line + options);
  }
};

TEST_F(HostileContract, MalformedJson) {
  for (const char* text :
       {"x", "{", "{}", "[]", "null", "\"\"", "{\"commandId\"", "{\"commandId\":", "{\"commandId\":5",
        "{\"commandId\":5,}", "{commandId:5}", "{\"commandId\":5}}", "{\"commandId\":5 \"x\":1}"}) {
    const int before = g_taken.general;
    Tell(std::string("raw ") + text);
    EXPECT_LE(g_taken.general, before + 1);
  }
  ExpectStillAtWork();
}

TEST_F(HostileContract, WrongTypesInEveryField) {
  for (const std::string value :
       {"null", "true", "-1", "1.5", "1e300", "\"\"", "\"x\"", "[]", "[[]]", "{}", "{\"a\":1}"}) {
    for (int id = 0; id <= 11; ++id) {
      Tell("raw {\"commandId\":" + std::to_string(id) + ",\"from\":" + value + ",\"data\":" + value +
           ",\"deviceName\":" + value + ",\"deviceGUID\":" + value + ",\"meetingId\":" + value +
           ",\"activeMeetingsCount\":" + value + ",\"meetingType\":" + value + ",\"result\":" + value + "}");
      Tell("raw {\"commandId\":" + std::to_string(id) + ",\"data\":[{\"PresenceStatus\":" + value +
           ",\"AudioCmd\":" + value + ",\"ConfEvent\":" + value + ",\"ConfDeviceType\":" + value +
           ",\"IsInComputerAudio\":" + value + "}]}");
    }
  }
  ExpectStillAtWork();
}

TEST_F(HostileContract, MegabyteTexts) {
  const std::string megabyte(1 << 20, 'x');
  Tell("raw {\"commandId\":7,\"meetingId\":\"" + megabyte + "\"}");
  EXPECT_EQ(g_taken.general, 1);
  EXPECT_STREQ(Taken<SdkConfEventInfo>().meetingId, L"");
  Tell("raw {\"commandId\":7,\"result\":\"0:" + megabyte + "\"}");
  EXPECT_EQ(Taken<SdkConfEventInfo>().code, -1);
  Tell("raw " + megabyte);
  EXPECT_EQ(g_taken.general, 2);
  ExpectStillAtWork();
}

TEST_F(HostileContract, DeepNesting) {
  for (const size_t depth : {size_t{1000}, size_t{10000}, size_t{100000}}) {
    Tell("raw " + std::string(depth, '['));
    Tell("raw {\"commandId\":7,\"data\":" + std::string(depth, '[') + std::string(depth, ']') + "}");
    std::string objects;
    for (size_t i = 0; i < depth; ++i)
      objects += "{\"a\":";
    Tell("raw " + objects);
  }
  EXPECT_EQ(g_taken.general, 0);
  ExpectStillAtWork();
}

TEST_F(HostileContract, InvalidUtf8InEveryText) {
  for (const std::string& text :
       {std::string("\x80"), std::string("\xC3"), std::string("\xE4\xB8"), std::string("\xF0\x9F\x98"),
        std::string("\xC0\xAF"), std::string("\xED\xA0\x80"), std::string("\xF4\x90\x80\x80"),
        std::string(99, '\xFF'), std::string(199, '\xFE')}) {
    TellBytes("{\"commandId\":7,\"deviceName\":\"" + text + "\",\"deviceGUID\":\"" + text +
              "\",\"meetingId\":\"" + text + "\",\"result\":\"0:" + text +
              "\",\"activeMeetingsCount\":5,\"meetingType\":6}" + '\0');
    EXPECT_EQ(Taken<SdkConfEventInfo>().activeMeetingsCount, 5);
    EXPECT_EQ(Taken<SdkConfEventInfo>().meetingType, 6);
    EXPECT_LT(wcsnlen(Taken<SdkConfEventInfo>().meetingId, SDK_TEXT_CHARS),
              static_cast<size_t>(SDK_TEXT_CHARS));
    EXPECT_LT(wcsnlen(Taken<SdkConfEventInfo>().resultInfo, SDK_TEXT_CHARS),
              static_cast<size_t>(SDK_TEXT_CHARS));
  }
  ExpectStillAtWork();
}

TEST_F(HostileContract, TextsAroundTheirLimitsLeaveTheirNeighboursWhole) {
  for (const size_t length : {size_t{98}, size_t{99}, size_t{100}, size_t{101}, size_t{198}, size_t{199},
                              size_t{200}, size_t{201}, size_t{509}, size_t{510}, size_t{511}, size_t{512}}) {
    const std::string text(length, 'n');
    Tell("raw {\"commandId\":7,\"from\":1,\"data\":[{\"ConfEvent\":2}],\"deviceName\":\"" + text +
         "\",\"deviceGUID\":\"" + text + "\",\"meetingId\":\"" + text +
         "\",\"activeMeetingsCount\":3,\"meetingType\":4,\"result\":\":" + text + "\"}");
    const SdkNotifyInfo& info = g_taken.notify;
    EXPECT_EQ(std::wstring(info.deviceName).size(), length < 100 ? length : 0) << length;
    EXPECT_EQ(std::wstring(info.deviceGUID).size(), length < 100 ? length : 0) << length;
    EXPECT_EQ(std::wstring(info.meetingId).size(), length < 200 ? length : 0) << length;
    EXPECT_EQ(std::wstring(info.resultInfo).size(), length > 510 ? 0 : length < 200 ? length : 199) << length;
    EXPECT_EQ(info.code, length > 510 ? -1 : 0) << length;
    EXPECT_EQ(info.from, 1);
    EXPECT_EQ(info.value, 2);
    EXPECT_EQ(info.reserved, 0);
    EXPECT_EQ(info.commandId, 7);
    EXPECT_EQ(info.activeMeetingsCount, 3);
    const SdkConfEventInfo& event = Taken<SdkConfEventInfo>();
    EXPECT_EQ(event.event, 2);
    EXPECT_STREQ(event.meetingId, info.meetingId);
    EXPECT_STREQ(event.resultInfo, info.resultInfo);
    EXPECT_EQ(event.activeMeetingsCount, 3);
    EXPECT_EQ(event.meetingType, 4);
  }
  ExpectStillAtWork();
}

TEST_F(HostileContract, OtherIdsAndMessagesWithoutData) {
  TellBytes(std::string("{\"commandId\":7}\0", 16), " dwData=11");
  TellBytes(std::string("{\"commandId\":7}\0", 16), " dwData=0");
  Tell("nodata");
  EXPECT_EQ(g_taken.general, 0);
  EXPECT_EQ(g_taken.emptyGeneral, 0);
  ExpectStillAtWork();
}

TEST_F(HostileContract, RandomBytesAndRandomlyBrokenNotifications) {
  const std::string good =
      "{\"commandId\":7,\"from\":1,\"data\":[{\"ConfEvent\":2}],\"deviceName\":\"D\",\"meetingId\":\"M\","
      "\"result\":\"0:OK\"}";
  constexpr unsigned kSeed = 20;
  std::mt19937 random(kSeed);
  for (int i = 0; i < 300; ++i) {
    std::string text = good;
    if (i % 3 == 0) text.assign(random() % 200 + 1, ' ');
    const size_t changes = i % 3 == 0 ? text.size() : random() % 4 + 1;
    for (size_t change = 0; change < changes; ++change)
      text[random() % text.size()] = static_cast<char>(random() % 256);
    SCOPED_TRACE("seed " + std::to_string(kSeed) + ", text " + std::to_string(i));
    TellBytes(text + '\0');
  }
  ExpectStillAtWork();
}

TEST_F(HostileContract, NotificationCutAtEveryByte) {
  const std::string good =
      "{\"commandId\":7,\"data\":[{\"ConfEvent\":2}],\"deviceName\":\"\xC3\xA9\",\"result\":\"0:\\u00e9\"}";
  for (size_t length = 1; length < good.size(); ++length)
    TellBytes(good.substr(0, length) + '\0');
  EXPECT_EQ(g_taken.general, 0);
  ExpectStillAtWork();
}

}  // namespace
}  // namespace velm_test
