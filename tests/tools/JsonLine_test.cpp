#include "tools/common/JsonLine.h"

#include <gtest/gtest.h>

#include "tools/common/Text.h"

namespace velm_tools {
namespace {

TEST(JsonLineTest, KeepsTheOrderOfItsMembers) {
  EXPECT_EQ(JsonLine().Text(), "{}");
  EXPECT_EQ(JsonLine()
                .Add("z", 1)
                .Add("a", "t")
                .Add("n", Json::Value())
                .AddArray("l", {JsonLine().Add("x", true)})
                .Text(),
            R"({"z":1,"a":"t","n":null,"l":[{"x":true}]})");
  EXPECT_EQ(JsonLine().AddArray("l", {}).Text(), R"({"l":[]})");
  EXPECT_EQ(JsonLine().AddArray("l", {JsonLine(), JsonLine()}).Text(), R"({"l":[{},{}]})");
}

TEST(JsonLineTest, EveryTextComesBackByteForByte) {
  std::string text;
  for (int c = 0; c < 128; ++c)
    text += static_cast<char>(c);
  text += "\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80";
  const std::string line = JsonLine().Add("t", text).Text();
  EXPECT_EQ(line.find('\n'), std::string::npos);
  const auto parsed = ParseJson(line);
  ASSERT_TRUE(parsed);
  EXPECT_EQ((*parsed)["t"].asString(), text);
}

TEST(JsonLineTest, NonAsciiStandsAsItIs) {
  EXPECT_EQ(ToJson("\xC3\xA9\xF0\x9F\x98\x80"), "\"\xC3\xA9\xF0\x9F\x98\x80\"");
}

TEST(JsonLineTest, ParsesOnlyWholeObjectsAndArrays) {
  EXPECT_TRUE(ParseJson("{\"a\":[1]}"));
  EXPECT_TRUE(ParseJson("[]"));
  for (const char* text : {"", "1", "{", "{} x", "{'a':1}", "{\"a\":1,}", "{\"a\":1,\"a\":2}"})
    EXPECT_FALSE(ParseJson(text)) << text;
  EXPECT_FALSE(ParseJson(std::string(100000, '[')));
}

TEST(TextTest, Utf8IsToldFromWhatIsNot) {
  for (const char* text : {"", "a", "\xC3\xA9", "\xF0\x9F\x98\x80"})
    EXPECT_TRUE(IsUtf8(text)) << text;
  for (const char* text : {"\xFF", "\xC3", "a\xE4\xB8", "\x80", "\xC0\x80"})
    EXPECT_FALSE(IsUtf8(text));
}

TEST(TextTest, HexGoesBothWays) {
  const std::string bytes("\x00\x7F\xFF\n", 4);
  EXPECT_EQ(ToHex(bytes), "007fff0a");
  EXPECT_EQ(FromHex("007fff0a"), bytes);
  EXPECT_EQ(FromHex(" 00 7F fF0a "), bytes);
  EXPECT_EQ(FromHex(""), "");
  for (const char* text : {"0", "0g", "0 0", "00 1", "0x00"})
    EXPECT_EQ(FromHex(text), std::nullopt) << text;
}

TEST(TextTest, WideTextGoesBothWays) {
  EXPECT_EQ(ToUtf8(L"a\u00E9\xD83D\xDE00"), "a\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(FromUtf8("a\xC3\xA9\xF0\x9F\x98\x80"), L"a\u00E9\xD83D\xDE00");
  EXPECT_EQ(ToUtf8(L""), "");
  EXPECT_EQ(FromUtf8(""), L"");
}

}  // namespace
}  // namespace velm_tools
