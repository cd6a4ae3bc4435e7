#include "common/client/utility/src/CmmCodec.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"

namespace {

using Cmm::CStringT;
using Bytes = std::vector<uint8_t>;

// ---- Hexadecimal ----------------------------------------------------------------------------------------

TEST(StringToHex, GivesTwoLowerCaseDigitsPerByte) {
  CStringT<char> out("old");
  Cmm::StringToHex(std::string("\x00\x0F\xA0\xFF", 4), out);
  EXPECT_EQ("000fa0ff", out.GetCData());
  Cmm::StringToHex("Az", out);
  EXPECT_EQ("417a", out.GetCData());
}

TEST(StringToHex, GivesTheEmptyStringForTheEmptyString) {
  CStringT<char> out("old");
  Cmm::StringToHex("", out);
  EXPECT_EQ("", out.GetCData());
}

TEST(StringToHex, CanWriteOverItsInput) {
  CStringT<char> text("\x12\xEF");
  Cmm::StringToHex(text, text);
  EXPECT_EQ("12ef", text.GetCData());
}

// ---- Base64 ---------------------------------------------------------------------------------------------

struct Base64Pair {
  Bytes bytes;
  std::string text;
};

std::vector<Base64Pair> Base64Pairs() {
  return {
      {{}, ""},
      {{'f'}, "Zg=="},
      {{'f', 'o'}, "Zm8="},
      {{'f', 'o', 'o'}, "Zm9v"},
      {{'f', 'o', 'o', 'b'}, "Zm9vYg=="},
      {{'f', 'o', 'o', 'b', 'a'}, "Zm9vYmE="},
      {{'f', 'o', 'o', 'b', 'a', 'r'}, "Zm9vYmFy"},
      {{0x41}, "QQ=="},
      {{0, 0, 0}, "AAAA"},
      {{0xFF, 0xFF, 0xFF}, "////"},
      {{0xFB, 0xEF, 0xBE}, "++++"},
      {{0xFF}, "/w=="},
  };
}

std::wstring Widen(const std::string& text) {
  return std::wstring(text.begin(), text.end());
}

struct Decoded {
  std::optional<Bytes> bytes;  // none: a null buffer
  unsigned outLen;

  friend bool operator==(const Decoded&, const Decoded&) = default;
};

constexpr unsigned kUntouched = 4711;

template <typename Text, typename Decode>
Decoded DecodeWith(Decode decode, const Text& text) {
  unsigned outLen = kUntouched;
  uint8_t* buffer = decode(text, outLen);
  Decoded decoded{std::nullopt, outLen};
  if (buffer != nullptr) decoded.bytes = Bytes(buffer, buffer + outLen);
  Cmm::base64FreeDecodeBuffer(buffer);
  EXPECT_EQ(nullptr, buffer);
  return decoded;
}

// Both widths and the alias of the wide one must agree.
Decoded DecodeAll(const std::string& text) {
  const Decoded decoded = DecodeWith(Cmm::base64DecodeA, CStringT<char>(text));
  EXPECT_EQ(decoded, DecodeWith(Cmm::base64DecodeW, CStringT<wchar_t>(Widen(text)))) << text;
  EXPECT_EQ(decoded, DecodeWith(Cmm::base64Decode, CStringT<wchar_t>(Widen(text)))) << text;
  return decoded;
}

TEST(Base64, EncodesAndDecodesKnownTexts) {
  const uint8_t none = 0;
  for (const auto& [bytes, text] : Base64Pairs()) {
    const uint8_t* data = bytes.empty() ? &none : bytes.data();
    const auto len = static_cast<unsigned>(bytes.size());
    EXPECT_EQ(text, Cmm::base64EncodeA(data, len).GetCData());
    EXPECT_EQ(Widen(text), Cmm::base64EncodeW(data, len).GetCData());
    EXPECT_EQ(Widen(text), Cmm::base64Encode(data, len).GetCData());
    EXPECT_EQ((Decoded{bytes, len}), DecodeAll(text)) << text;
  }
}

TEST(Base64, EncodesNullDataToTheEmptyString) {
  EXPECT_EQ("", Cmm::base64EncodeA(nullptr, 3).GetCData());
  EXPECT_EQ(L"", Cmm::base64EncodeW(nullptr, 3).GetCData());
  EXPECT_EQ(L"", Cmm::base64Encode(nullptr, 0).GetCData());
}

TEST(Base64, NeverBreaksTheLine) {
  const Bytes bytes(300, 'x');
  const std::string text = Cmm::base64EncodeA(bytes.data(), 300);
  EXPECT_EQ(400u, text.size());
  EXPECT_EQ(std::string::npos, text.find_first_of("\r\n "));
}

TEST(Base64, DecodesTheEmptyTextToAValidBufferOfNoBytes) {
  unsigned outLen = kUntouched;
  uint8_t* buffer = Cmm::base64DecodeA("", outLen);
  EXPECT_NE(nullptr, buffer);
  EXPECT_EQ(0u, outLen);
  Cmm::base64FreeDecodeBuffer(buffer);
}

TEST(Base64, RefusesALengthThatIsNoMultipleOfFourAndLeavesTheLengthAlone) {
  for (const char* text : {"Q", "QQ", "QQ=", "=", "QUJDR", "QUJDRA", "QUJDRA="}) {
    EXPECT_EQ((Decoded{std::nullopt, kUntouched}), DecodeAll(text)) << text;
  }
}

TEST(Base64, RefusesMalformedTextButHasSetTheLengthByThen) {
  struct {
    const char* name;
    std::string text;
    unsigned outLen;
  } const cases[] = {
      {"a blank inside", "QU JDRA=", 5},
      {"a blank in front", " QQ=", 2},
      {"a line break", "QUJD\r\nRA", 6},
      {"a character outside the alphabet", "QU-D", 3},
      {"a NUL", std::string("QUJ\0", 4), 3},
      {"a byte above 0x7F", "QUJ\xC1", 3},
      {"padding alone", "====", 1},
      {"three characters of padding", "Q===", 1},
      {"padding at the front of the last group", "QUJD=AAA", 6},
      {"padding in a group that is not the last", "QQ==QUJD", 6},
      {"one character of padding in such a group", "QUI=QUJD", 6},
      {"padding before data at the end", "QUJDQ=A=", 5},
      {"a bad character where padding is due", "QQ-=", 2},
  };
  for (const auto& c : cases)
    EXPECT_EQ((Decoded{std::nullopt, c.outLen}), DecodeAll(c.text)) << c.name;
}

TEST(Base64, DoesNotLookAtTheUnitBehindTheFirstPaddingOfTwo) {
  EXPECT_EQ((Decoded{Bytes{0x41, 0, 0}, 3}), DecodeAll("QQ=A"));
  EXPECT_EQ((Decoded{Bytes{0x41, 0, 0}, 3}), DecodeAll("QQ= "));
}

TEST(Base64, DropsTheBitsBehindTheLastByte) {
  EXPECT_EQ((Decoded{Bytes{0x41}, 1}), DecodeAll("QR=="));
  EXPECT_EQ((Decoded{Bytes{0x41, 0x42}, 2}), DecodeAll("QUJ="));
}

TEST(Base64, RefusesWideUnitsWhoseLowByteIsInTheAlphabet) {
  unsigned outLen = 0;
  EXPECT_EQ(nullptr, Cmm::base64DecodeW(L"QUJ\x0141", outLen));
  EXPECT_EQ(nullptr, Cmm::base64DecodeW(L"QUJ\xFF21", outLen));
}

TEST(Base64, FreesNothingForANullBuffer) {
  uint8_t* none = nullptr;
  Cmm::base64FreeDecodeBuffer(none);
  EXPECT_EQ(nullptr, none);
}

TEST(Base64, RoundTripsRandomBytes) {
  std::mt19937 random(20240612);
  for (int i = 0; i < 2000; ++i) {
    Bytes bytes(1 + random() % 100);
    for (uint8_t& byte : bytes)
      byte = static_cast<uint8_t>(random());
    const auto len = static_cast<unsigned>(bytes.size());
    const std::string text = Cmm::base64EncodeA(bytes.data(), len);
    EXPECT_EQ((len + 2) / 3 * 4, text.size());
    EXPECT_EQ((Decoded{bytes, len}), DecodeAll(text));
  }
}

TEST(Base64, SurvivesRandomTextAndAcceptsOnlyWhatItsAlphabetAllows) {
  std::mt19937 random(20240613);
  const std::string units = "ABab09+/==\n \xFF-";
  int accepted = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string text(random() % 5 * 4, '=');
    for (char& unit : text)
      unit = random() % 8 ? units[random() % 8] : units[random() % units.size()];
    const Decoded decoded = DecodeAll(text);
    if (!decoded.bytes) continue;
    ++accepted;
    // All data characters come first, and at most two others follow.
    const size_t data = std::min(text.find_first_not_of("ABab09+/"), text.size());
    EXPECT_LE(text.size() - data, 2u) << text;
  }
  EXPECT_GT(accepted, 100);
}

// ---- UTF-8 ----------------------------------------------------------------------------------------------

TEST(IsValidateUTF8, AcceptsEveryFormAtItsLimits) {
  for (const char* text : {"",
                           "abc",
                           "\x01\x7F",
                           "\xC2\x80",
                           "\xDF\xBF",
                           "\xE0\xA0\x80",
                           "\xE0\xBF\xBF",
                           "\xE1\x80\x80",
                           "\xEC\xBF\xBF",
                           "\xED\x80\x80",
                           "\xED\x9F\xBF",
                           "\xEE\x80\x80",
                           "\xEF\xBF\xBF",
                           "\xF0\x90\x80\x80",
                           "\xF0\xBF\xBF\xBF",
                           "\xF1\x80\x80\x80",
                           "\xF3\xBF\xBF\xBF",
                           "\xF4\x80\x80\x80",
                           "\xF4\x8F\xBF\xBF",
                           "a\xC3\xA4z"}) {
    EXPECT_TRUE(Cmm::IsValidateUTF8(text)) << text;
  }
}

TEST(IsValidateUTF8, TakesAnInnerNulForAscii) {
  EXPECT_TRUE(Cmm::IsValidateUTF8(std::string("a\0b", 3)));
  EXPECT_FALSE(Cmm::IsValidateUTF8(std::string("a\0\xFF", 3)));
}

TEST(IsValidateUTF8, RefusesWhatRfc3629Forbids) {
  struct {
    const char* name;
    const char* text;
  } const cases[] = {
      {"a lone continuation byte", "\x80"},
      {"the last continuation byte alone", "\xBF"},
      {"a long form of NUL", "\xC0\x80"},
      {"a long form of ASCII", "\xC1\xBF"},
      {"a long form of two bytes", "\xE0\x9F\xBF"},
      {"a long form of three bytes", "\xF0\x8F\xBF\xBF"},
      {"the first surrogate", "\xED\xA0\x80"},
      {"the last surrogate", "\xED\xBF\xBF"},
      {"above U+10FFFF", "\xF4\x90\x80\x80"},
      {"a lead byte of the future", "\xF5\x80\x80\x80"},
      {"0xFE", "\xFE"},
      {"0xFF", "\xFF"},
      {"two bytes cut short", "a\xC3"},
      {"three bytes cut short", "\xE4\xB8"},
      {"four bytes cut short", "\xF0\x9F\x98"},
      {"a lead byte alone", "\xF0"},
      {"a second byte that is none", "\xC3z"},
      {"a third byte that is none", "\xE4\xB8z"},
      {"a fourth byte that is none", "\xF0\x9F\x98z"},
      {"a continuation byte too many", "\xC3\xA4\x80"},
  };
  for (const auto& c : cases)
    EXPECT_FALSE(Cmm::IsValidateUTF8(c.text)) << c.name;
}

TEST(IsValidateUTF8, AgreesWithTheSystemsStrictConversion) {
  std::mt19937 random(20240614);
  const uint8_t leads[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1,
                           0xC2, 0xDF, 0xE0, 0xE1, 0xED, 0xEF, 0xF0, 0xF1, 0xF4, 0xF5, 0xFF};
  int valid = 0;
  for (int i = 0; i < 50000; ++i) {
    std::string text(1 + random() % 4, '\0');
    for (char& byte : text) {
      byte = static_cast<char>(random() % 2 ? leads[random() % std::size(leads)] : 0x80 + random() % 0x40);
    }
    const bool expected = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                              static_cast<int>(text.size()), nullptr, 0) > 0;
    valid += expected;
    ASSERT_EQ(expected, Cmm::IsValidateUTF8(text)) << testing::PrintToString(text);
  }
  EXPECT_GT(valid, 500);
}

size_t Extent(const std::string& bytes, size_t avail) {
  const std::string owned = bytes + "\x01\x01\x01\x01";  // no zero byte near the end of what is given
  return cmm_str_u8extent(owned.data(), avail);
}

TEST(CmmStrU8Extent, GivesTheLengthThatTheFirstByteAsksFor) {
  EXPECT_EQ(1u, Extent("a", 1));
  EXPECT_EQ(1u, Extent("\x7F", 9));
  EXPECT_EQ(2u, Extent("\xC0\x80", 2));
  EXPECT_EQ(2u, Extent("\xDF\xBF", 9));
  EXPECT_EQ(3u, Extent("\xE0\x80\x80", 3));
  EXPECT_EQ(3u, Extent("\xEF\x80\x80", 9));
  EXPECT_EQ(4u, Extent("\xF0\x80\x80\x80", 4));
  EXPECT_EQ(4u, Extent("\xF7\x80\x80\x80", 9));
}

TEST(CmmStrU8Extent, GivesZeroForNulForNothingAndForBytesThatBeginNoSequence) {
  EXPECT_EQ(0u, cmm_str_u8extent("", 1));
  EXPECT_EQ(0u, Extent("a", 0));
  EXPECT_EQ(0u, Extent("\xC3\xA4", 0));
  EXPECT_EQ(0u, cmm_str_u8extent(nullptr, 0));
  for (const char* text : {"\x80", "\xBF", "\xF8", "\xFF"})
    EXPECT_EQ(0u, Extent(text, 9)) << text;
}

TEST(CmmStrU8Extent, GivesZeroWhenFewerBytesAreLeft) {
  EXPECT_EQ(0u, Extent("\xC3", 1));
  EXPECT_EQ(0u, Extent("\xE4\xB8", 2));
  EXPECT_EQ(0u, Extent("\xF0\x9F\x98", 3));
}

TEST(CmmStrU8Extent, DoesNotValidateTheBytesThatFollow) {
  EXPECT_EQ(2u, Extent("\xC3z", 2));
  EXPECT_EQ(3u, Extent("\xE4zz", 3));
  EXPECT_EQ(4u, Extent("\xF0zzz", 4));
}

TEST(CmmStrU8Extent, TestsOffset1ForZeroInEverySequence) {
  EXPECT_EQ(0u, Extent(std::string("\xC3\0", 2), 2));
  EXPECT_EQ(0u, Extent(std::string("\xE4\0zz", 4), 4));
  EXPECT_EQ(0u, Extent(std::string("\xF0\0zzz", 5), 5));
}

TEST(CmmStrU8Extent, SkipsOffset2AndTestsOffset3InsteadEvenBehindASequenceOfThree) {
  EXPECT_EQ(3u, Extent(std::string("\xE4z\0z", 4), 3));
  EXPECT_EQ(4u, Extent(std::string("\xF0z\0z", 4), 4));
  EXPECT_EQ(0u, Extent(std::string("\xF0zz\0", 4), 4));
  EXPECT_EQ(0u, Extent(std::string("\xE4zz\0", 4), 3));  // a good sequence at the end of its string
  EXPECT_EQ(2u, Extent(std::string("\xC3z\0\0", 4), 2));
}

// ---- URL form data --------------------------------------------------------------------------------------

std::string UrlEncoded(const std::string& text) {
  std::string dst(3 * text.size() + 1 + 4, '#');
  cmm_urlenc(text.data(), dst.data(), text.size());
  EXPECT_EQ("####", dst.substr(3 * text.size() + 1)) << "written behind the destination";
  return dst.c_str();
}

struct UrlDecoded {
  std::string text;
  int tokens;

  friend bool operator==(const UrlDecoded&, const UrlDecoded&) = default;
  friend std::ostream& operator<<(std::ostream& out, const UrlDecoded& d) {
    return out << '"' << d.text << "\" of " << d.tokens << " tokens";
  }
};

// The decoded bytes up to the terminator: the last zero byte before what was never touched.
UrlDecoded UrlDecode(const std::string& text) {
  std::string dst(text.size() + 1 + 4, '#');
  const int tokens = cmm_urldec(text.c_str(), dst.data());
  EXPECT_EQ("####", dst.substr(text.size() + 1)) << "written behind the destination";
  return {dst.substr(0, dst.rfind('\0')), tokens};
}

TEST(CmmUrlenc, KeepsLettersDigitsDashDotAndUnderline) {
  const std::string kept = "ABCXYZabcxyz0189-._";
  EXPECT_EQ(kept, UrlEncoded(kept));
}

TEST(CmmUrlenc, TurnsASpaceIntoAPlusAndAllElseIntoLowerCaseEscapes) {
  EXPECT_EQ("a+b%7e", UrlEncoded("a b~"));
  EXPECT_EQ("%2b%2a%2f%3a%3d%26%25", UrlEncoded("+*/:=&%"));
  EXPECT_EQ("%00%0a%1f%7f%80%ff", UrlEncoded(std::string("\0\n\x1F\x7F\x80\xFF", 6)));
  EXPECT_EQ("%40%5b%60%7b%2c", UrlEncoded("@[`{,"));  // the neighbours of letters and digits
}

TEST(CmmUrlenc, WritesOnlyTheTerminatorForNoBytes) {
  char dst[] = "##";
  cmm_urlenc("abc", dst, 0);
  EXPECT_EQ(0, std::memcmp("\0#", dst, 2));
  cmm_urlenc(nullptr, dst, 0);
  EXPECT_EQ('\0', dst[0]);
}

TEST(CmmUrldec, DecodesPlusAndEscapesInEitherCase) {
  EXPECT_EQ((UrlDecoded{"a b~", 4}), UrlDecode("a+b%7e"));
  EXPECT_EQ((UrlDecoded{"~\xFF\xAB", 3}), UrlDecode("%7E%fF%aB"));
  EXPECT_EQ((UrlDecoded{"~!*'()\xE4", 7}), UrlDecode("~!*'()\xE4"));
  EXPECT_EQ((UrlDecoded{"", 0}), UrlDecode(""));
}

TEST(CmmUrldec, StopsInsideAnEscapeThatTheTextCutsAndDoesNotCountIt) {
  EXPECT_EQ((UrlDecoded{"", 0}), UrlDecode("%"));
  EXPECT_EQ((UrlDecoded{"", 0}), UrlDecode("%4"));
  EXPECT_EQ((UrlDecoded{"ab", 2}), UrlDecode("ab%"));
  EXPECT_EQ((UrlDecoded{"aA", 2}), UrlDecode("a%41%4"));
}

TEST(CmmUrldec, DropsAnEscapeWithALetterBeyondFAndCountsIt) {
  EXPECT_EQ((UrlDecoded{"ab", 3}), UrlDecode("a%4gb"));
  EXPECT_EQ((UrlDecoded{"ab", 3}), UrlDecode("a%g4b"));
  EXPECT_EQ((UrlDecoded{"ab", 3}), UrlDecode("a%zzb"));
  EXPECT_EQ((UrlDecoded{"ab", 3}), UrlDecode("a%:0b"));  // ':' follows '9'
  EXPECT_EQ((UrlDecoded{"ab", 3}), UrlDecode("a%@0b"));
  EXPECT_EQ((UrlDecoded{"ab", 3}), UrlDecode("a%`0b"));
  EXPECT_EQ((UrlDecoded{"ab", 3}), UrlDecode("a%\xE4\xE4"
                                             "b"));
}

TEST(CmmUrldec, GoesOnBehindTheTwoUnitsOfADroppedEscape) {
  EXPECT_EQ((UrlDecoded{"1", 2}), UrlDecode("%g%1"));  // the '%' within is not looked at again
}

TEST(CmmUrldec, TakesAnyUnitBelow0ForADigitWithoutATest) {
  EXPECT_EQ((UrlDecoded{std::string(1, static_cast<char>(-3 * 16 + 1)), 1}), UrlDecode("%-1"));
  EXPECT_EQ((UrlDecoded{std::string(1, static_cast<char>(1 * 16 - 3)), 1}), UrlDecode("%1-"));
  EXPECT_EQ((UrlDecoded{std::string(1, static_cast<char>(-16 * 16 - 16)), 1}), UrlDecode("%  "));
  EXPECT_EQ((UrlDecoded{std::string(1, static_cast<char>(-11 * 16 + 4)), 1}), UrlDecode("%%4"));
}

TEST(CmmUrldec, DecodesNulsAndGoesOn) {
  EXPECT_EQ((UrlDecoded{std::string("a\0b", 3), 3}), UrlDecode("a%00b"));
}

TEST(CmmUrldec, CanDecodeInPlace) {
  char text[] = "a%41+%42b";
  EXPECT_EQ(5, cmm_urldec(text, text));
  EXPECT_STREQ("aA Bb", text);
}

TEST(CmmUrldec, DecodesWhatWasEncoded) {
  std::mt19937 random(20240615);
  for (int i = 0; i < 2000; ++i) {
    std::string text(random() % 50, '\0');
    for (char& byte : text)
      byte = static_cast<char>(random());
    EXPECT_EQ((UrlDecoded{text, static_cast<int>(text.size())}), UrlDecode(UrlEncoded(text)));
  }
}

TEST(CmmUrldec, StaysWithinItsDestinationForAnyText) {
  std::mt19937 random(20240616);
  for (int i = 0; i < 20000; ++i) {
    std::string text(random() % 20, 'a');
    for (char& byte : text)
      byte = "%%%%+09afgz-\xFF"[random() % 13];
    const UrlDecoded decoded = UrlDecode(text);
    EXPECT_LE(decoded.text.size(), text.size());
    EXPECT_GE(decoded.tokens, static_cast<int>(decoded.text.size()));
  }
}

}  // namespace
