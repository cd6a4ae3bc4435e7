// Formatting, resources and numbers.

#include <windows.h>

#include <cstdarg>

#include "tests/common/CmmStringTesting.h"

namespace {

using namespace cmm_string_testing;

template <typename T>
class CmmStringFormat : public testing::Test {
 public:
  using S = Cmm::CStringT<T>;
  using Std = std::basic_string<T>;

  static void FormatV(S& s, const T* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    s.FormatV(fmt, args);
    va_end(args);
  }
};
TYPED_TEST_SUITE(CmmStringFormat, Widths, WidthNames);

// ---- Format
// -------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringFormat, ReplacesTheTextByTheFormattedOne) {
  typename TestFixture::S s(TX("old"));
  s.Format(TX("%d-%04x-%s-%.2f"), -7, 0xbeef, TX("text"), 1.5);
  EXPECT_EQ(Text(s), TXS("-7-beef-text-1.50"));
  TestFixture::FormatV(s, TX("%u %lld"), 7u, 1234567890123LL);
  EXPECT_EQ(Text(s), TXS("7 1234567890123"));
}

TYPED_TEST(CmmStringFormat, TakesTextOfTheOwnWidthForASmallS) {
  typename TestFixture::S s;
  s.Format(TX("%s|%hs|%ls"), TX("own"), "narrow", L"wide");
  EXPECT_EQ(Text(s), TXS("own|narrow|wide"));
}

TYPED_TEST(CmmStringFormat, GivesAnEmptyTextForAnEmptyOrNullFormat) {
  typename TestFixture::S s(TX("old"));
  s.Format(TX("%s"), TX(""));
  EXPECT_EQ(s.GetLength(), 0u);
  s = TX("old");
  s.Format(static_cast<const TypeParam*>(nullptr));
  EXPECT_EQ(s.GetLength(), 0u);
}

TYPED_TEST(CmmStringFormat, KeepsAPrintedNul) {
  typename TestFixture::S s;
  s.Format(TX("a%cb"), 0);
  EXPECT_EQ(Text(s), TXS("a\0b"));
}

TYPED_TEST(CmmStringFormat, GrowsPastEveryBufferItBeginsWith) {
  for (const size_t length : {1022u, 1023u, 1024u, 1025u, 2047u, 2048u, 70000u}) {
    const typename TestFixture::Std text(length, TC('x'));
    typename TestFixture::S s;
    s.Format(TX("%s"), text.c_str());
    EXPECT_EQ(Text(s), text) << length;
  }
}

TYPED_TEST(CmmStringFormat, FormatsBySomeArgumentsAgainAfterGrowing) {
  const typename TestFixture::Std text(3000, TC('x'));
  typename TestFixture::S s;
  s.Format(TX("%d%s%d"), 12, text.c_str(), 34);
  EXPECT_EQ(Text(s), TXS("12") + text + TXS("34"));
}

TYPED_TEST(CmmStringFormat, TakesItsOwnBufferAsTheFormat) {
  typename TestFixture::S s(TX("%d of %d"));
  s.Format(s.c_str(), 1, 2);
  EXPECT_EQ(Text(s), TXS("1 of 2"));
  const typename TestFixture::Std filler(2000, TC('y'));
  s = filler + TXS("%d");
  s.Format(s.c_str(), 5);
  EXPECT_EQ(Text(s), filler + TXS("5"));
}

// ---- FormatMessageW
// -----------------------------------------------------------------------------------------

TYPED_TEST(CmmStringFormat, FormatsASystemMessageWithInserts) {
  typename TestFixture::S s(TX("old"));
  EXPECT_EQ(s.FormatMessageW(TX("%2 before %1"), TX("one"), TX("two")), 14u);
  EXPECT_EQ(Text(s), TXS("two before one"));
}

TYPED_TEST(CmmStringFormat, AMessageThatTheSystemRefusesLeavesTheTextUnchanged) {
  typename TestFixture::S s(TX("old"));
  EXPECT_EQ(s.FormatMessageW(TX("")), 0u);
  EXPECT_EQ(Text(s), TXS("old"));
  EXPECT_EQ(s.FormatMessageW(nullptr), 0u);
  EXPECT_EQ(Text(s), TXS("old"));
}

// ---- LoadStringW
// --------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringFormat, LoadsAStringResource) {
  typename TestFixture::S s(TX("old"));
  EXPECT_EQ(s.LoadStringW(GetModuleHandleW(nullptr), 1), 5);
  EXPECT_EQ(Text(s), TXS("short"));
}

TYPED_TEST(CmmStringFormat, LoadsAResourceOfAnyLength) {
  const struct {
    unsigned id;
    size_t length;
  } resources[] = {{2, 510}, {3, 511}, {4, 512}, {5, 1023}, {6, 3000}};
  for (const auto& [id, length] : resources) {
    typename TestFixture::S s;
    EXPECT_EQ(s.LoadStringW(GetModuleHandleW(nullptr), id), static_cast<int>(length));
    EXPECT_EQ(Text(s), typename TestFixture::Std(length, TC('r')));
  }
}

TYPED_TEST(CmmStringFormat, AMissingResourceEmptiesTheText) {
  typename TestFixture::S s(TX("old"));
  EXPECT_EQ(s.LoadStringW(GetModuleHandleW(nullptr), 4711), 0);
  EXPECT_EQ(s.GetLength(), 0u);
}

TYPED_TEST(CmmStringFormat, TheStaticFormLoadsIntoABufferOfEitherWidth) {
  using S = typename TestFixture::S;
  char narrow[4] = {};
  wchar_t wide[16] = {};
  EXPECT_EQ(S::_LoadString(GetModuleHandleW(nullptr), 1, narrow, 4), 3);
  EXPECT_STREQ(narrow, "sho");
  EXPECT_EQ(S::_LoadString(GetModuleHandleW(nullptr), 1, wide, 16), 5);
  EXPECT_STREQ(wide, L"short");
}

// ---- Numbers
// ------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringFormat, ParsesAWholeNumberOrGivesTheFallback) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TX(" -42x")).ToLong(7, 10), -42);
  EXPECT_EQ(S(TX("0x1f")).ToLong(7, 16), 31);
  EXPECT_EQ(S(TX("0x1f")).ToLong(7, 0), 31);
  EXPECT_EQ(S(TX("abc")).ToLong(7, 10), 7);
  EXPECT_EQ(S().ToLong(7, 10), 7);
  EXPECT_EQ(S(TX("42")).ToLong(7, 1), 7);
  EXPECT_EQ(S(TXS("1\0002")).ToLong(7, 10), 1);
}

TYPED_TEST(CmmStringFormat, ToULongIsSigned) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TX("4294967295")).ToULong(7, 10), -1);
  EXPECT_EQ(S(TX("-5")).ToULong(7, 10), -5);
  EXPECT_EQ(S(TX("abc")).ToULong(-3, 10), -3);
  EXPECT_TRUE((std::is_same_v<decltype(S().ToULong(0, 10)), long>));
}

TYPED_TEST(CmmStringFormat, ParsesADoubleOrGivesTheFallback) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TX(" -2.5e1!")).ToDouble(7), -25.0);
  EXPECT_EQ(S(TX("abc")).ToDouble(7.5), 7.5);
  EXPECT_EQ(S().ToDouble(7.5), 7.5);
}

}  // namespace
