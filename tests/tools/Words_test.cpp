#include "tools/common/Words.h"

#include <gtest/gtest.h>

#include "tests/tools/ErrorOf.h"

namespace velm_tools {
namespace {

using Words = std::vector<std::string>;

TEST(WordsTest, WordsAreSeparatedByBlanksAndQuotesKeepThem) {
  EXPECT_EQ(SplitWords(""), Words());
  EXPECT_EQ(SplitWords("  a\tb  "), (Words{"a", "b"}));
  EXPECT_EQ(SplitWords("device=\"My set\" x"), (Words{"device=My set", "x"}));
  EXPECT_EQ(SplitWords("\"\" a\"b\"c"), (Words{"", "abc"}));
  EXPECT_EQ(SplitWords(R"("a\"b\\c\d" e\f)"), (Words{R"(a"b\c\d)", R"(e\f)"}));
}

TEST(WordsTest, AnOpenQuotationMarkIsAnError) {
  EXPECT_EQ(ErrorOf([] { SplitWords("a \"b"); }), "a quotation mark is not closed");
  EXPECT_EQ(ErrorOf([] { SplitWords("\"b\\\""); }), "a quotation mark is not closed");
}

TEST(WordsTest, TheFirstWordLeavesTheRestAsItStands) {
  EXPECT_EQ(SplitFirstWord(" raw  {\"a\": 1} "),
            (std::pair<std::string_view, std::string_view>("raw", "{\"a\": 1} ")));
  EXPECT_EQ(SplitFirstWord("raw"), (std::pair<std::string_view, std::string_view>("raw", "")));
  EXPECT_EQ(SplitFirstWord(""), (std::pair<std::string_view, std::string_view>("", "")));
}

TEST(WordsTest, TrimTakesBlanksFromBothEnds) {
  EXPECT_EQ(Trim(" \ta b\t "), "a b");
  EXPECT_EQ(Trim(" \t"), "");
  EXPECT_EQ(Trim(""), "");
}

TEST(WordsTest, NumbersAreDecimalOrHexadecimal) {
  EXPECT_EQ(ParseNumber<int32_t>("-2147483648", "n"), INT32_MIN);
  EXPECT_EQ(ParseNumber<int32_t>("2147483647", "n"), INT32_MAX);
  EXPECT_EQ(ParseNumber<int32_t>("-0", "n"), 0);
  EXPECT_EQ(ParseNumber<uint32_t>("0xFFFFFFFF", "n"), UINT32_MAX);
  EXPECT_EQ(ParseNumber<int32_t>("-0x10", "n"), -16);
  EXPECT_EQ(ParseInteger("-9223372036854775808", INT64_MIN, INT64_MAX, "n"), INT64_MIN);
  EXPECT_EQ(ParseInteger("9223372036854775807", INT64_MIN, INT64_MAX, "n"), INT64_MAX);
}

TEST(WordsTest, NumbersOutOfRangeAreErrorsThatNameTheRange) {
  EXPECT_EQ(ErrorOf([] { ParseNumber<int32_t>("2147483648", "n"); }),
            "n '2147483648' is out of range: -2147483648 to 2147483647");
  EXPECT_EQ(ErrorOf([] { ParseNumber<int32_t>("-2147483649", "n"); }),
            "n '-2147483649' is out of range: -2147483648 to 2147483647");
  EXPECT_EQ(ErrorOf([] { ParseNumber<uint16_t>("-1", "n"); }), "n '-1' is out of range: 0 to 65535");
  EXPECT_EQ(ErrorOf([] { ParseInteger("9223372036854775808", INT64_MIN, INT64_MAX, "n"); }),
            "n '9223372036854775808' is out of range: -9223372036854775808 to 9223372036854775807");
  EXPECT_EQ(ErrorOf([] { ParseInteger("-9223372036854775809", INT64_MIN, INT64_MAX, "n"); }),
            "n '-9223372036854775809' is out of range: -9223372036854775808 to 9223372036854775807");
  EXPECT_EQ(ErrorOf([] { ParseNumber<uint32_t>("99999999999999999999999", "n"); }),
            "n '99999999999999999999999' is out of range: 0 to 4294967295");
}

TEST(WordsTest, WhatIsNoNumberIsAnError) {
  for (const char* text : {"", "-", "0x", "1x", " 1", "1 ", "+1", "--1", "1.0", "0x-1"})
    EXPECT_EQ(ErrorOf([&] { ParseNumber<int32_t>(text, "n"); }),
              "n '" + std::string(text) + "' is not a number");
}

TEST(WordsTest, HintsNameACloseWordAndNoOther) {
  const std::vector<std::string_view> words = {"presence", "audio", "ui"};
  EXPECT_EQ(Hint("presense", words), ", did you mean 'presence'?");
  EXPECT_EQ(Hint("audoi", words), "");
  EXPECT_EQ(Hint("adio", words), ", did you mean 'audio'?");
  EXPECT_EQ(Hint("something", words), "");
  EXPECT_EQ(Hint("", words), "");
}

}  // namespace
}  // namespace velm_tools
