#include "host/CmmGUID.h"

#include <array>
#include <cwchar>
#include <string>
#include <type_traits>

#include "gtest/gtest.h"

namespace Cmm {
namespace {

using Bytes = std::array<unsigned char, 16>;

constexpr wchar_t kBraced[] = L"{00112233-4455-6677-8899-AABBCCDDEEFF}";
constexpr wchar_t kNaked[] = L"00112233-4455-6677-8899-AABBCCDDEEFF";
constexpr Bytes kByteForm{0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                          0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};

CStringT<wchar_t> Text(const wchar_t* text) {
  return text;
}

// Whether the units are those of a GUID in upper case, with braces.
bool IsSystemText(const CStringT<wchar_t>& text) {
  constexpr wchar_t kShape[] = L"{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
  if (text.size() != std::wcslen(kShape)) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool isDigit = std::wcschr(L"0123456789ABCDEF", text[i]) != nullptr;
    if (kShape[i] == L'X' ? !isDigit : text[i] != kShape[i]) return false;
  }
  return true;
}

static_assert(sizeof(CmmGUID) == 8 + 2 * sizeof(CStringT<wchar_t>) + sizeof(void*));
static_assert(!std::has_virtual_destructor_v<CmmGUID>);

TEST(CmmGUID, TwoDefaultObjectsHaveDifferentTexts) {
  CmmGUID a;
  CmmGUID b;
  EXPECT_TRUE(IsSystemText(a.GetStr(0)));
  EXPECT_TRUE(IsSystemText(b.GetStr(0)));
  EXPECT_NE(a.GetStr(0), b.GetStr(0));
  EXPECT_EQ(a == b, 0);
}

TEST(CmmGUID, AnEmptyTextMakesANewOne) {
  CmmGUID guid{CStringT<wchar_t>()};
  EXPECT_TRUE(IsSystemText(guid.GetStr(0)));
}

TEST(CmmGUID, AnyTextIsKeptAndGivesBytesOnlyIfItIsAGuid) {
  CmmGUID guid(Text(L"abc"));
  EXPECT_EQ(guid.GetStr(0), L"abc");
  EXPECT_EQ(guid.GetStr(1), L"abc");
  Bytes bytes{};
  unsigned int size = 16;
  EXPECT_EQ(guid.GetByte(bytes.data(), size), 0);
  EXPECT_EQ(bytes, Bytes{});
  EXPECT_EQ(size, 16u);
}

TEST(CmmGUID, TheNakedTextHasNeitherBracesNorBlanksAround) {
  struct Case {
    const wchar_t* text;
    const wchar_t* naked;
  };
  for (const auto& [text, naked] : {
           Case{L" {ABC} ", L"ABC"},
           {L"{ ABC\t}", L"ABC"},
           {L"{A B}", L"A B"},
           {L"ABC", L"ABC"},
           {L"{ }{A}{B}", L"A"},
           {L"A{B}", L"A"},
           {L"{}", L""},
           {L" ", L""},
           {kBraced, kNaked},
       }) {
    CmmGUID guid(Text(text));
    EXPECT_EQ(guid.GetStr(1), naked);
    EXPECT_EQ(guid.GetStr(0), text);
  }
}

TEST(CmmGUID, TheNakedTextIsComputedOnce) {
  CmmGUID guid(Text(L"{ABC}"));
  CStringT<wchar_t>& naked = guid.GetStr(1);
  guid.GetStr(0) = L"{other}";
  EXPECT_EQ(&guid.GetStr(1), &naked);
  EXPECT_EQ(guid.GetStr(1), L"ABC");
}

TEST(CmmGUID, EqualityFoldsNeitherCaseNorBraces) {
  const CmmGUID braced{Text(kBraced)};
  const CmmGUID same{Text(kBraced)};
  const CmmGUID naked{Text(kNaked)};
  const CmmGUID lower{Text(L"{00112233-4455-6677-8899-aabbccddeeff}")};
  EXPECT_EQ(braced == same, 1);
  EXPECT_EQ(braced == naked, 0);
  EXPECT_EQ(braced == lower, 0);
}

TEST(CmmGUID, EqualityTakesConstAndOtherObjectsOnEitherSide) {
  CmmGUID a{Text(L"abc")};
  CmmGUID b{Text(L"abc")};
  const CmmGUID c{Text(L"abc")};
  EXPECT_EQ(a == b, 1);
  EXPECT_EQ(a == c, 1);
  EXPECT_EQ(c == a, 1);
  EXPECT_EQ(c == c, 1);
  static_assert(std::is_same_v<decltype(a == b), int>);
}

TEST(CmmGUID, TheByteFormHasEachFieldWithItsHighestByteFirst) {
  // Unequal by ==, the two give the same bytes.
  for (const wchar_t* text : {kBraced, kNaked}) {
    CmmGUID guid{Text(text)};
    Bytes bytes{};
    unsigned int size = 99;
    EXPECT_EQ(guid.GetByte(bytes.data(), size), 1);
    EXPECT_EQ(bytes, kByteForm);
    EXPECT_EQ(size, 16u);
  }
}

TEST(CmmGUID, ABufferOf15BytesIsLeftAlone) {
  CmmGUID guid{Text(kBraced)};
  Bytes bytes{};
  unsigned int size = 15;
  EXPECT_EQ(guid.GetByte(bytes.data(), size), 0);
  EXPECT_EQ(bytes, Bytes{});
  EXPECT_EQ(size, 15u);
  size = 16;
  EXPECT_EQ(guid.GetByte(nullptr, size), 0);
}

TEST(CmmGUID, BytesOfTextsThatAreNoGuid) {
  for (const wchar_t* text :
       {L"{00112233-4455-6677-8899-AABBCCDDEEFF", L"00112233-4455-6677-8899-AABBCCDDEEF",
        L"{00112233-4455-6677-8899-AABBCCDDEEFG}", L"{}", L" ", L"{", L"CLSID"}) {
    CmmGUID guid{Text(text)};
    Bytes bytes{};
    unsigned int size = 16;
    EXPECT_EQ(guid.GetByte(bytes.data(), size), 0);
    EXPECT_EQ(bytes, Bytes{});
  }
}

TEST(CmmGUID, BytesBecomeTheTextWithoutBraces) {
  CmmGUID guid;
  for (const int naked : {0, 1}) {
    Bytes bytes = kByteForm;
    CStringT<wchar_t> text = L"before";
    EXPECT_EQ(guid.ByteToString(bytes.data(), 0, text, naked), 1);
    EXPECT_EQ(text, kNaked);
  }
}

TEST(CmmGUID, ByteToStringChangesTheBufferSoThatASecondCallGivesAnotherText) {
  CmmGUID guid;
  Bytes bytes = kByteForm;
  CStringT<wchar_t> text;
  guid.ByteToString(bytes.data(), 16, text, 0);
  EXPECT_EQ(bytes, (Bytes{0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD,
                          0xEE, 0xFF}));
  EXPECT_EQ(guid.ByteToString(bytes.data(), 16, text, 0), 1);
  EXPECT_EQ(text, L"33221100-5544-7766-8899-AABBCCDDEEFF");
}

TEST(CmmGUID, NullBytesGiveZeroAndLeaveTheText) {
  CmmGUID guid;
  CStringT<wchar_t> text = L"before";
  EXPECT_EQ(guid.ByteToString(nullptr, 16, text, 0), 0);
  EXPECT_EQ(text, L"before");
}

TEST(CmmGUID, ANewOneGoesToBytesAndBack) {
  CmmGUID guid;
  Bytes bytes{};
  unsigned int size = 16;
  ASSERT_EQ(guid.GetByte(bytes.data(), size), 1);
  CStringT<wchar_t> text;
  guid.ByteToString(bytes.data(), size, text, 0);
  EXPECT_EQ(text, guid.GetStr(1));
}

TEST(CmmGUID, WithoutAGuidTheTextIsMadeFromTheClock) {
  EXPECT_EQ(internal::StandByGuid(1700000000), L"99999999-1700-0000-0011-000000000000");
  EXPECT_EQ(internal::StandByGuid(123456789012), L"99999999-1234-5678-9012-000000000000");
  EXPECT_EQ(internal::StandByGuid(1234567890123), L"99999999-1234-5678-9012-000000000000");
}

TEST(CmmGUID, AShortTimeIsFilledUp) {
  EXPECT_EQ(internal::StandByGuid(1234), L"99999999-1234-1111-2222-000000000000");
  EXPECT_EQ(internal::StandByGuid(0), L"99999999-0111-1222-2-000000000000");
}

TEST(CmmGUID, TheStandByValueStandsForAMissingText) {
  CmmGUID guid;
  guid.GetStr(0).clear();  // as it is when the system gave none
  unsigned int size = 16;
  Bytes bytes{};
  EXPECT_EQ(guid.GetByte(bytes.data(), size), 0);
  const std::wstring naked = guid.GetStr(1).GetCData();
  EXPECT_EQ(naked, guid.GetStr(0).GetCData());
  EXPECT_EQ(naked.substr(0, 9), L"99999999-");
  EXPECT_EQ(naked.substr(naked.size() - 15), L"11-000000000000");
  EXPECT_EQ(guid.GetByte(bytes.data(), size), 1);
}

}  // namespace
}  // namespace Cmm
