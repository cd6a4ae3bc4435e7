#include "common/client/utility/src/CmmStrUtil.h"

#include <limits>

#include "tests/common/CmmStringTesting.h"
#include "tests/support/CountedHeap.h"

namespace {

using namespace cmm_string_testing;
using testing::IsNull;

// The two families under one name.
#define PAIR(name)                         \
  template <typename T, typename... Args>  \
  auto name(Args... args) {                \
    if constexpr (std::is_same_v<T, char>) \
      return cmm_astr_##name(args...);     \
    else                                   \
      return cmm_wstr_##name(args...);     \
  }
PAIR(chri)
PAIR(rchri)
PAIR(stri)
PAIR(rstri)
PAIR(upr)
PAIR(lwr)
PAIR(ncpy)
PAIR(ncat)
PAIR(match)
#undef PAIR

template <typename T>
class CmmStrUtil : public testing::Test {
 public:
  static constexpr const T* kNull = nullptr;
};
TYPED_TEST_SUITE(CmmStrUtil, Widths, WidthNames);

// ---- chri, rchri
// --------------------------------------------------------------------------------------------

TYPED_TEST(CmmStrUtil, FindsTheFirstUnitIgnoringCase) {
  const TypeParam* s = TX("xaBAb");
  EXPECT_EQ(chri<TypeParam>(s, TestFixture::kNull, TC('b')), s + 2);
  EXPECT_EQ(chri<TypeParam>(s, TestFixture::kNull, TC('A')), s + 1);
  EXPECT_THAT(chri<TypeParam>(s, TestFixture::kNull, TC('q')), IsNull());
  EXPECT_THAT(chri<TypeParam>(TX(""), TestFixture::kNull, TC('q')), IsNull());
  EXPECT_THAT(chri<TypeParam>(TestFixture::kNull, TestFixture::kNull, TC('q')), IsNull());
}

TYPED_TEST(CmmStrUtil, FindsTheLastUnitIgnoringCase) {
  const TypeParam* s = TX("xaBAb");
  EXPECT_EQ(rchri<TypeParam>(s, TestFixture::kNull, TC('B')), s + 4);
  EXPECT_EQ(rchri<TypeParam>(s, TestFixture::kNull, TC('a')), s + 3);
  EXPECT_EQ(rchri<TypeParam>(s, TestFixture::kNull, TC('X')), s);
  EXPECT_THAT(rchri<TypeParam>(s, TestFixture::kNull, TC('q')), IsNull());
  EXPECT_THAT(rchri<TypeParam>(TestFixture::kNull, TestFixture::kNull, TC('q')), IsNull());
}

TYPED_TEST(CmmStrUtil, UnitsAtOrBehindTheEndAreNotFound) {
  const TypeParam* s = TX("abab");
  EXPECT_EQ(chri<TypeParam>(s, s + 2, TC('B')), s + 1);
  EXPECT_THAT(chri<TypeParam>(s, s + 1, TC('B')), IsNull());
  EXPECT_EQ(rchri<TypeParam>(s, s + 3, TC('B')), s + 1);
  EXPECT_EQ(rchri<TypeParam>(s, s + 4, TC('B')), s + 3);
  EXPECT_THAT(rchri<TypeParam>(s, s, TC('a')), IsNull());
}

TYPED_TEST(CmmStrUtil, ANulEndsTheTextBeforeItsEnd) {
  const TypeParam* s = TX("a\0b");
  EXPECT_THAT(chri<TypeParam>(s, s + 3, TC('b')), IsNull());
  EXPECT_THAT(rchri<TypeParam>(s, s + 3, TC('b')), IsNull());
  EXPECT_THAT(stri<TypeParam>(s, s + 3, TX("b")), IsNull());
  EXPECT_THAT(rstri<TypeParam>(s, s + 3, TX("b")), IsNull());
}

// ---- stri, rstri
// --------------------------------------------------------------------------------------------

TYPED_TEST(CmmStrUtil, FindsTheFirstTextIgnoringCase) {
  const TypeParam* s = TX("aaBxAAbx");
  EXPECT_EQ(stri<TypeParam>(s, TestFixture::kNull, TX("AB")), s + 1);
  EXPECT_EQ(stri<TypeParam>(s, TestFixture::kNull, TX("bX")), s + 2);
  EXPECT_EQ(stri<TypeParam>(s, TestFixture::kNull, s), s);
  EXPECT_THAT(stri<TypeParam>(s, TestFixture::kNull, TX("abc")), IsNull());
  EXPECT_THAT(stri<TypeParam>(s, TestFixture::kNull, TX("aabxaabxx")), IsNull());
}

TYPED_TEST(CmmStrUtil, AnEmptyNeedleIsFoundAtTheFrontByTheForwardSearch) {
  const TypeParam* s = TX("abc");
  EXPECT_EQ(stri<TypeParam>(s, TestFixture::kNull, TX("")), s);
  const TypeParam* empty = TX("");
  EXPECT_EQ(stri<TypeParam>(empty, TestFixture::kNull, TX("")), empty);
}

TYPED_TEST(CmmStrUtil, FindsTheLastTextIgnoringCase) {
  const TypeParam* s = TX("aBxaBx");
  EXPECT_EQ(rstri<TypeParam>(s, TestFixture::kNull, TX("Ab")), s + 3);
  EXPECT_EQ(rstri<TypeParam>(s, TestFixture::kNull, TX("X")), s + 5);
  EXPECT_EQ(rstri<TypeParam>(s, TestFixture::kNull, s), s);
  EXPECT_EQ(rstri<TypeParam>(s, TestFixture::kNull, TX("abxab")), s);
  EXPECT_THAT(rstri<TypeParam>(s, TestFixture::kNull, TX("xx")), IsNull());
  EXPECT_THAT(rstri<TypeParam>(s, TestFixture::kNull, TX("aBxaBxx")), IsNull());
}

TYPED_TEST(CmmStrUtil, AnEmptyNeedleIsFoundAtTheEndByTheBackwardSearch) {
  const TypeParam* s = TX("abc");
  EXPECT_EQ(rstri<TypeParam>(s, TestFixture::kNull, TX("")), s + 3);
  EXPECT_EQ(rstri<TypeParam>(s, s + 2, TX("")), s + 2);
}

TYPED_TEST(CmmStrUtil, ATextMustEndAtOrBeforeTheEnd) {
  const TypeParam* s = TX("abab");
  EXPECT_EQ(stri<TypeParam>(s, s + 2, TX("AB")), s);
  EXPECT_THAT(stri<TypeParam>(s, s + 2, TX("BA")), IsNull());
  EXPECT_EQ(rstri<TypeParam>(s, s + 3, TX("AB")), s);
  EXPECT_EQ(rstri<TypeParam>(s, s + 4, TX("AB")), s + 2);
  EXPECT_THAT(rstri<TypeParam>(s, s + 1, TX("AB")), IsNull());
}

TYPED_TEST(CmmStrUtil, NullTextsAreNotFound) {
  EXPECT_THAT(stri<TypeParam>(TestFixture::kNull, TestFixture::kNull, TX("a")), IsNull());
  EXPECT_THAT(stri<TypeParam>(TX("a"), TestFixture::kNull, TestFixture::kNull), IsNull());
  EXPECT_THAT(rstri<TypeParam>(TestFixture::kNull, TestFixture::kNull, TX("a")), IsNull());
  EXPECT_THAT(rstri<TypeParam>(TX("a"), TestFixture::kNull, TestFixture::kNull), IsNull());
}

TEST(CmmStrUtilLocale, TheBackwardSearchComparesUnderTheUsersLocale) {
  const wchar_t* s = L"x\u00c9x";
  EXPECT_EQ(cmm_wstr_rstri(s, nullptr, L"\u00e9X"), s + 1);
}

// ---- upr, lwr
// -----------------------------------------------------------------------------------------------

TYPED_TEST(CmmStrUtil, CaseChangesInPlaceUpToTheEndOrTheNul) {
  TypeParam s[] = {TC('a'), TC('z'), TC('{'), TC('b'), 0, TC('c'), 0};
  upr<TypeParam>(s, static_cast<const TypeParam*>(s + 3));
  EXPECT_EQ((std::basic_string<TypeParam>(s, 6)), TXS("AZ{b\0c"));
  upr<TypeParam>(s, TestFixture::kNull);
  EXPECT_EQ((std::basic_string<TypeParam>(s, 6)), TXS("AZ{B\0c"));
  lwr<TypeParam>(s, static_cast<const TypeParam*>(s + 1));
  EXPECT_EQ((std::basic_string<TypeParam>(s, 6)), TXS("aZ{B\0c"));
  lwr<TypeParam>(s, TestFixture::kNull);
  EXPECT_EQ((std::basic_string<TypeParam>(s, 6)), TXS("az{b\0c"));
}

TYPED_TEST(CmmStrUtil, CaseChangeKnowsAsciiOnlyAndNoNull) {
  TypeParam s[] = {TC('@'), TC('['), TC('`'), TC(0xe9), TC(0xc9), TC(0x131), 0};
  const std::basic_string<TypeParam> before(s);
  upr<TypeParam>(s, TestFixture::kNull);
  lwr<TypeParam>(s, TestFixture::kNull);
  EXPECT_EQ(s, before);
  upr<TypeParam>(static_cast<TypeParam*>(nullptr), TestFixture::kNull);
  lwr<TypeParam>(static_cast<TypeParam*>(nullptr), TestFixture::kNull);
}

// ---- ncpy, ncat
// ---------------------------------------------------------------------------------------------

// Eight guard units tell what was written and what was left.
template <typename T>
struct Buffer {
  T units[8];
  Buffer() { std::fill(std::begin(units), std::end(units), T('#')); }
  std::basic_string<T> All() const { return {units, 8}; }
};

TYPED_TEST(CmmStrUtil, CopiesAtMostTheSmallerOfTheTwoBounds) {
  const size_t all = std::numeric_limits<size_t>::max();
  const struct {
    size_t size, max, copied;
    std::basic_string<TypeParam> after;
  } cases[] = {
      {8, 8, 3, TXS("abc\0####")},   {8, all, 3, TXS("abc\0####")}, {4, all, 3, TXS("abc\0####")},
      {3, all, 2, TXS("ab\0#####")}, {1, all, 0, TXS("\0#######")}, {8, 2, 2, TXS("ab\0#####")},
      {8, 3, 3, TXS("abc\0####")},   {8, 0, 0, TXS("\0#######")},   {0, all, 0, TXS("########")},
  };
  for (const auto& c : cases) {
    Buffer<TypeParam> buffer;
    EXPECT_EQ(ncpy<TypeParam>(buffer.units, c.size, TX("abc"), c.max), c.copied);
    EXPECT_EQ(buffer.All(), c.after) << c.size << ' ' << c.max;
  }
}

TYPED_TEST(CmmStrUtil, CopiesANullSourceAsAnEmptyOneAndNothingToNull) {
  Buffer<TypeParam> buffer;
  EXPECT_EQ(ncpy<TypeParam>(buffer.units, size_t{8}, TestFixture::kNull, size_t{8}), 0u);
  EXPECT_EQ(buffer.All(), TXS("\0#######"));
  EXPECT_EQ(ncpy<TypeParam>(static_cast<TypeParam*>(nullptr), size_t{8}, TX("abc"), size_t{8}), 0u);
}

TYPED_TEST(CmmStrUtil, AppendsWithinTheBufferAndTheCount) {
  const size_t all = std::numeric_limits<size_t>::max();
  const struct {
    size_t size, max, total;
    std::basic_string<TypeParam> after;
  } cases[] = {
      {8, all, 5, TXS("xyabc\0##")},  {6, all, 5, TXS("xyabc\0##")},  {5, all, 4, TXS("xyab\0###")},
      {3, all, 2, TXS("xy\0#####")},  {8, 1, 3, TXS("xya\0####")},    {8, 0, 2, TXS("xy\0#####")},
      {2, all, 1, TXS("x\0\0#####")}, {1, all, 0, TXS("\0y\0#####")}, {0, all, 0, TXS("xy\0#####")},
  };
  for (const auto& c : cases) {
    Buffer<TypeParam> buffer;
    ncpy<TypeParam>(buffer.units, size_t{8}, TX("xy"), size_t{8});
    EXPECT_EQ(ncat<TypeParam>(buffer.units, c.size, TX("abc"), c.max), c.total);
    EXPECT_EQ(buffer.All(), c.after) << c.size << ' ' << c.max;
  }
}

TYPED_TEST(CmmStrUtil, AppendTerminatesABufferThatHadNoEnd) {
  Buffer<TypeParam> buffer;
  EXPECT_EQ(ncat<TypeParam>(buffer.units, size_t{4}, TX("abc"), size_t{9}), 3u);
  EXPECT_EQ(buffer.All(), TXS("###\0####"));
  EXPECT_EQ(ncat<TypeParam>(buffer.units, size_t{8}, TestFixture::kNull, size_t{9}), 3u);
  EXPECT_EQ(ncat<TypeParam>(static_cast<TypeParam*>(nullptr), size_t{8}, TX("abc"), size_t{9}), 0u);
}

// ---- match
// --------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStrUtil, MatchesWildcards) {
  const struct {
    const TypeParam* text;
    const TypeParam* patterns;
    int matches;
  } cases[] = {
      {TX("abc"), TX("abc"), 1},
      {TX("abc"), TX("ab"), 0},
      {TX("ab"), TX("abc"), 0},
      {TX("abc"), TX("a?c"), 1},
      {TX("ac"), TX("a?c"), 0},
      {TX("abc"), TX("???"), 1},
      {TX("abc"), TX("??"), 0},
      {TX("abc"), TX("*"), 1},
      {TX("abc"), TX("abc*"), 1},  // `*` takes the empty remainder
      {TX("abc"), TX("*abc"), 1},
      {TX("abc"), TX("a*c"), 1},
      {TX("abc"), TX("a**c"), 1},
      {TX("abc"), TX("*b*"), 1},
      {TX("abc"), TX("*d*"), 0},
      {TX("abc"), TX("a*?"), 1},
      {TX("a"), TX("a*?"), 0},
      {TX("aXbXc"), TX("a*Xc"), 1},
      {TX("abc"), TX("*.txt;a?c"), 1},
      {TX("a.txt"), TX("*.txt;a?c"), 1},
      {TX("abcd"), TX("*.txt;a?c"), 0},
      {TX("abc"), TX("ab;bc;abc"), 1},
      {TX("abc"), TX("ab;bc;abcd"), 0},
      {TX("ABC"), TX("abc"), 0},
      {TX("a*c"), TX("a*c"), 1},
      {TX(""), TX("*"), 1},
      {TX(""), TX("?"), 0},
      {TX(""), TX(""), 1},
      {TX("abc"), TX(""), 0},
      {TX(""), TX("abc;"), 1},  // the empty alternative at the end
      {TX("abc"), TX(";abc"), 1},
      {TX("a;b"), TX("a;b"), 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(match<TypeParam>(c.text, c.patterns, TC(';'), 1), c.matches)
        << testing::PrintToString(c.text) << ' ' << testing::PrintToString(c.patterns);
  }
}

TYPED_TEST(CmmStrUtil, MatchLowersBothSidesOnDemand) {
  EXPECT_EQ(match<TypeParam>(TX("ABC.Txt"), TX("*.PNG;abc.tXT"), TC(';'), 0), 1);
  EXPECT_EQ(match<TypeParam>(TX("ABC.Txt"), TX("*.png;*.jpg"), TC(';'), 0), 0);
}

// The pattern is lowered and the separator is not, so an upper-case letter separates nothing any more.
TYPED_TEST(CmmStrUtil, MatchWithoutCaseLosesAnUpperCaseSeparator) {
  EXPECT_EQ(match<TypeParam>(TX("b"), TX("aXb"), TC('X'), 1), 1);
  EXPECT_EQ(match<TypeParam>(TX("b"), TX("aXb"), TC('X'), 0), 0);
  EXPECT_EQ(match<TypeParam>(TX("axb"), TX("aXb"), TC('X'), 0), 1);
  EXPECT_EQ(match<TypeParam>(TX("b"), TX("aXb"), TC('x'), 0), 1);
}

TYPED_TEST(CmmStrUtil, MatchWithASeparatorOfNulHasOneAlternative) {
  EXPECT_EQ(match<TypeParam>(TX("a;b"), TX("a;?"), TC(0), 1), 1);
  EXPECT_EQ(match<TypeParam>(TX("b"), TX("a;b"), TC(0), 1), 0);
}

// A star that separates is tried as the end of the alternative first and as a wildcard then.
TYPED_TEST(CmmStrUtil, AStarAsSeparatorEndsAnAlternativeAndIsAWildcardToo) {
  EXPECT_EQ(match<TypeParam>(TX("ab"), TX("ab*zz"), TC('*'), 1), 1);
  EXPECT_EQ(match<TypeParam>(TX("abzz"), TX("ab*zz"), TC('*'), 1), 1);
  EXPECT_EQ(match<TypeParam>(TX("zz"), TX("ab*zz"), TC('*'), 1), 1);
  EXPECT_EQ(match<TypeParam>(TX("abab"), TX("*ab*zz"), TC('*'), 1), 1);
  EXPECT_EQ(match<TypeParam>(TX("abx"), TX("ab*zz"), TC('*'), 1), 0);
}

TYPED_TEST(CmmStrUtil, NothingMatchesNull) {
  EXPECT_EQ(match<TypeParam>(TestFixture::kNull, TX("*"), TC(';'), 1), 0);
  EXPECT_EQ(match<TypeParam>(TX("a"), TestFixture::kNull, TC(';'), 0), 0);
}

TYPED_TEST(CmmStrUtil, MatchHoldsTextsOfThousandsOfUnitsOnTheStack) {
  const std::basic_string<TypeParam> text(20000, TC('A'));
  const std::basic_string<TypeParam> pattern = std::basic_string<TypeParam>(19999, TC('a')) + TC('*');
  EXPECT_EQ(match<TypeParam>(text.c_str(), pattern.c_str(), TC(';'), 0), 1);
}

TYPED_TEST(CmmStrUtil, MatchTakesNothingFromTheHeap) {
  const std::basic_string<TypeParam> text(500, TC('A'));
  const long before = velm_test::CountHeapCalls().news;
  EXPECT_GT(before, 0u);
  EXPECT_EQ(match<TypeParam>(text.c_str(), TX("x;*a"), TC(';'), 0), 1);
  EXPECT_EQ(velm_test::CountHeapCalls().news, before);
}

}  // namespace
