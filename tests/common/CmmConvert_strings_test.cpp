#include <windows.h>

#include <oleauto.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmConvertDetail.h"
#include "gtest/gtest.h"

namespace {

constexpr size_t kUpToNul = static_cast<size_t>(-1);

// ---- The string-filling forms -------------------------------------------------------------------------

using Cmm::CStringT;

template <typename To, typename From>
CStringT<To> SetBehind(CStringT<To> target, size_t offset, const From* src, size_t len) {
  Cmm::_cstring_set(target, offset, src, len);
  return target;
}

TEST(CstringSet, PutsTextOfEitherWidthBehindTheFirstUnits) {
  const CStringT<char> narrow("12345");
  const CStringT<wchar_t> wide(L"12345");
  EXPECT_EQ("12ab\xE4", SetBehind(narrow, 2, "ab\xE4", 3).GetCData());
  EXPECT_EQ("12ab\xE4", SetBehind(narrow, 2, L"ab\x00E4", 3).GetCData());
  EXPECT_EQ(L"12ab\x00E4", SetBehind(wide, 2, "ab\xE4", 3).GetCData());
  EXPECT_EQ(L"12ab\x00E4", SetBehind(wide, 2, L"ab\x00E4", 3).GetCData());
}

TEST(CstringSet, CanReplaceAppendAndReachBeyondTheEnd) {
  EXPECT_EQ("ab", SetBehind(CStringT<char>("123"), 0, "ab", 2).GetCData());
  EXPECT_EQ("123ab", SetBehind(CStringT<char>("123"), 3, "ab", 2).GetCData());
  EXPECT_EQ(std::string("1\0\0ab", 5), SetBehind(CStringT<char>("1"), 3, "ab", 2).GetCData());
  EXPECT_EQ(std::wstring(L"1\0\0ab", 5), SetBehind(CStringT<wchar_t>(L"1"), 3, "ab", 2).GetCData());
}

TEST(CstringSet, TakesTheLengthUpToTheNulForAllOnes) {
  EXPECT_EQ("1ab", SetBehind(CStringT<char>("123"), 1, "ab\0x", kUpToNul).GetCData());
  EXPECT_EQ("1ab", SetBehind(CStringT<char>("123"), 1, L"ab\0x", kUpToNul).GetCData());
  EXPECT_EQ(L"1ab", SetBehind(CStringT<wchar_t>(L"123"), 1, "ab\0x", kUpToNul).GetCData());
  EXPECT_EQ(L"1ab", SetBehind(CStringT<wchar_t>(L"123"), 1, L"ab\0x", kUpToNul).GetCData());
}

template <typename To, typename From>
void ExpectLeftAlone(const CStringT<To>& target, const From* empty) {
  EXPECT_EQ(target, SetBehind(target, 1, static_cast<const From*>(nullptr), 3));
  EXPECT_EQ(target, SetBehind(target, 1, static_cast<const From*>(nullptr), kUpToNul));
  EXPECT_EQ(target, SetBehind(target, 1, empty, 0));
  EXPECT_EQ(target, SetBehind(target, 1, empty, kUpToNul));
}

TEST(CstringSet, LeavesTheTargetAsItIsForANullOrEmptySource) {
  ExpectLeftAlone(CStringT<char>("123"), "");
  ExpectLeftAlone(CStringT<char>("123"), L"");
  ExpectLeftAlone(CStringT<wchar_t>(L"123"), "");
  ExpectLeftAlone(CStringT<wchar_t>(L"123"), L"");
}

TEST(CstringSet, KeepsInnerNulsAndLosesAFinalOneOnlyAcrossWidths) {
  EXPECT_EQ(std::string("a\0b\0", 4), SetBehind(CStringT<char>(), 0, "a\0b\0", 4).GetCData());
  EXPECT_EQ(std::wstring(L"a\0b\0", 4), SetBehind(CStringT<wchar_t>(), 0, L"a\0b\0", 4).GetCData());
  EXPECT_EQ(std::string("a\0b", 3), SetBehind(CStringT<char>(), 0, L"a\0b\0", 4).GetCData());
  EXPECT_EQ(std::wstring(L"a\0b", 3), SetBehind(CStringT<wchar_t>(), 0, "a\0b\0", 4).GetCData());
}

TEST(CstringSet, RefusesAnOffsetThatNoStringCanHave) {
  CStringT<char> target("123");
  EXPECT_THROW(Cmm::_cstring_set(target, kUpToNul, "ab", 2), std::length_error);
  EXPECT_THROW(Cmm::_cstring_set(target, kUpToNul - 2, "ab", 2), std::length_error);
  EXPECT_EQ("123", target.GetCData());
}

TEST(CstringSet, NarrowTextThatMakesFewerWideUnitsIsDroppedInsteadOfCopied) {
  // One character of two bytes in a double-byte ANSI code page: one wide unit is the whole room.
  const std::string hiraganaA = "\x82\xA0";
  CStringT<char> target("123");
  Cmm::detail::PutBehind(target, 2, 1, [&](char* dst, size_t cap) {
    return Cmm::detail::CheckedCopy(dst, cap, hiraganaA.data(), hiraganaA.size());
  });
  EXPECT_EQ("12", target.GetCData());
}

TEST(CheckedCopy, CopiesAllOrClearsTheDestination) {
  char dst[] = "####";
  EXPECT_EQ(3u, Cmm::detail::CheckedCopy(dst, 3, "abc", 3));
  EXPECT_STREQ("abc#", dst);
  EXPECT_EQ(0u, Cmm::detail::CheckedCopy(dst, 3, "wxyz", 4));
  EXPECT_EQ(0, std::memcmp("\0\0\0#", dst, 4));
}

class Variant {
 public:
  Variant() { VariantInit(&m_value); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&m_value); }

  static void MakeText(VARIANT& v, const std::wstring& text) {
    v.vt = VT_BSTR;
    v.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  }

  VARIANT& operator*() { return m_value; }

 private:
  VARIANT m_value;
};

template <typename T>
class CstringAssign : public testing::Test {
 protected:
  static std::basic_string<T> Assigned(const VARIANT& v, int change) {
    CStringT<T> target(std::basic_string<T>(3, T('#')));
    Cmm::_cstring_assign(target, v, change);
    return target.GetCData();
  }
};

using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(CstringAssign, Widths);

TYPED_TEST(CstringAssign, CopiesTheTextOfABstr) {
  const std::wstring text = L"velm\x00E4";
  Variant v;
  Variant::MakeText(*v, text);
  for (const int change : {0, 1}) {
    EXPECT_EQ((std::basic_string<TypeParam>{'v', 'e', 'l', 'm', static_cast<TypeParam>(0xE4)}),
              this->Assigned(*v, change));
  }
  EXPECT_EQ(VT_BSTR, (*v).vt);
  EXPECT_EQ(text, (*v).bstrVal) << "the source is only read";
}

TYPED_TEST(CstringAssign, ClearsForANullOrEmptyBstr) {
  Variant null;
  (*null).vt = VT_BSTR;
  (*null).bstrVal = nullptr;
  EXPECT_TRUE(this->Assigned(*null, 0).empty());
  EXPECT_TRUE(this->Assigned(*null, 1).empty());
  Variant empty;
  Variant::MakeText(*empty, L"");
  EXPECT_TRUE(this->Assigned(*empty, 0).empty());
}

TYPED_TEST(CstringAssign, ClearsForEveryOtherTypeEvenWhenAskedToConvertIt) {
  Variant v;
  for (const int change : {0, 1}) {
    EXPECT_TRUE(this->Assigned(*v, change).empty()) << "nothing in it";
    (*v).vt = VT_I4;
    (*v).lVal = 42;
    EXPECT_TRUE(this->Assigned(*v, change).empty()) << "a number";
    EXPECT_EQ(VT_I4, (*v).vt);
    EXPECT_EQ(42, (*v).lVal);
    (*v).vt = VT_BOOL;
    (*v).boolVal = VARIANT_TRUE;
    EXPECT_TRUE(this->Assigned(*v, change).empty()) << "a truth value";
    (*v).vt = VT_EMPTY;
  }
}

// ---- The converting strings ------------------------------------------------------------------------------

using WideToUtf8Text = Cmm::A2BT<65001, wchar_t, char>;
using Utf8ToWideText = Cmm::A2BT<65001, char, wchar_t>;
using Utf8ToAnsiText = Cmm::A2Cmm<65001, 0>;

static_assert(std::is_base_of_v<CStringT<char>, WideToUtf8Text>);
static_assert(std::is_base_of_v<CStringT<wchar_t>, Utf8ToWideText>);
static_assert(std::is_base_of_v<CStringT<char>, Utf8ToAnsiText>);
static_assert(std::has_virtual_destructor_v<WideToUtf8Text> && std::has_virtual_destructor_v<Utf8ToWideText>);

TEST(A2BT, ConvertsFromEveryKindOfSource) {
  const std::pair<std::wstring, std::string> pairs[] = {
      {L"velm", "velm"},
      {L"a\x00E4\x4E2D\xD83D\xDE00z", "a\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80z"},
      {std::wstring(L"a\0\x00E4", 3), std::string("a\0\xC3\xA4", 4)},
  };
  for (const auto& [wide, utf8] : pairs) {
    EXPECT_EQ(utf8, WideToUtf8Text(wide).GetCData());
    EXPECT_EQ(wide, Utf8ToWideText(utf8).GetCData());
    EXPECT_EQ(utf8, WideToUtf8Text(wide.data(), wide.size()).GetCData());
    EXPECT_EQ(wide, Utf8ToWideText(utf8.data(), utf8.size()).GetCData());
    EXPECT_EQ(utf8, WideToUtf8Text(CStringT<wchar_t>(wide)).GetCData());
    EXPECT_EQ(wide, Utf8ToWideText(CStringT<char>(utf8)).GetCData());
  }
  EXPECT_EQ("a\xC3\xA4", WideToUtf8Text(L"a\x00E4\0z").GetCData());
  EXPECT_EQ(L"a\x00E4", Utf8ToWideText("a\xC3\xA4\0z").GetCData());
}

TEST(A2BT, IsEmptyForNullAndForEmptySources) {
  EXPECT_EQ("", WideToUtf8Text(static_cast<const wchar_t*>(nullptr)).GetCData());
  EXPECT_EQ(L"", Utf8ToWideText(static_cast<const char*>(nullptr)).GetCData());
  EXPECT_EQ("", WideToUtf8Text(nullptr, 0).GetCData());
  EXPECT_EQ(L"", Utf8ToWideText(nullptr, 0).GetCData());
  EXPECT_EQ("", WideToUtf8Text(L"").GetCData());
  EXPECT_EQ(L"", Utf8ToWideText("").GetCData());
  EXPECT_EQ("", WideToUtf8Text(std::wstring()).GetCData());
  EXPECT_EQ(L"", Utf8ToWideText(std::string()).GetCData());
  EXPECT_EQ("", Utf8ToAnsiText(static_cast<const char*>(nullptr)).GetCData());
}

TEST(A2BT, LosesOneFinalNulThatTheCountIncludes) {
  EXPECT_EQ("ab", WideToUtf8Text(L"ab", 3).GetCData());
  EXPECT_EQ(L"ab", Utf8ToWideText("ab", 3).GetCData());
  EXPECT_EQ(std::string("ab\0", 3), WideToUtf8Text(L"ab\0", 4).GetCData());
}

TEST(A2BT, ConvertsTextOfAnyLength) {
  for (const size_t length : {1, 15, 16, 255, 256, 257, 1023, 1024, 1025, 100000}) {
    std::wstring wide;
    std::string utf8;
    for (size_t i = 0; i < length; ++i) {
      wide += L'\x4E2D';
      utf8 += "\xE4\xB8\xAD";
    }
    EXPECT_EQ(utf8, WideToUtf8Text(wide).GetCData()) << length;
    EXPECT_EQ(wide, Utf8ToWideText(utf8).GetCData()) << length;
    EXPECT_EQ(std::string(length, 'a'), WideToUtf8Text(std::wstring(length, L'a')).GetCData()) << length;
    EXPECT_EQ(std::wstring(length, L'a'), Utf8ToWideText(std::string(length, 'a')).GetCData()) << length;
  }
}

TEST(A2BT, IsAStringLikeAnyOther) {
  WideToUtf8Text text(L"\x00E4");
  text += "!";
  WideToUtf8Text copy = text;
  EXPECT_EQ("\xC3\xA4!", copy.GetCData());
  WideToUtf8Text moved = std::move(text);
  EXPECT_EQ("\xC3\xA4!", moved.GetCData());
  copy = WideToUtf8Text(L"b");
  EXPECT_EQ("b", copy.GetCData());
  const CStringT<char> plain = moved;
  EXPECT_EQ("\xC3\xA4!", plain.GetCData());
}

TEST(A2Cmm, ConvertsUtf8ToTheAnsiCodePage) {
  ASSERT_EQ(1252u, GetACP());
  EXPECT_EQ("a\xE4\x80z", Utf8ToAnsiText("a\xC3\xA4\xE2\x82\xACz").GetCData());
  EXPECT_EQ("a\xE4", Utf8ToAnsiText(std::string("a\xC3\xA4")).GetCData());
  EXPECT_EQ("a", Utf8ToAnsiText("a\xC3\xA4", 1).GetCData());
  EXPECT_EQ("?", Utf8ToAnsiText("\xC4\x80").GetCData());  // U+0100: no best fit
  EXPECT_EQ("", Utf8ToAnsiText("").GetCData());
  EXPECT_EQ(std::string(5000, '\xE4'), Utf8ToAnsiText([] {
                                         std::string utf8;
                                         for (int i = 0; i < 5000; ++i)
                                           utf8 += "\xC3\xA4";
                                         return utf8;
                                       }())
                                           .GetCData());
}

}  // namespace
