// Comparison, beginnings and ends, wildcards, operators.

#include "tests/common/CmmStringTesting.h"

namespace {

using namespace cmm_string_testing;

template <typename T>
class CmmStringCompare : public testing::Test {
 public:
  using S = Cmm::CStringT<T>;
  static constexpr const T* kNull = nullptr;
};
TYPED_TEST_SUITE(CmmStringCompare, Widths, WidthNames);

// ---- Compare ----------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCompare, CompareOrdersByUnits) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TX("abc")).Compare(TX("abc")), 0);
  EXPECT_LT(S(TX("abc")).Compare(TX("abd")), 0);
  EXPECT_GT(S(TX("abd")).Compare(TX("abc")), 0);
  EXPECT_LT(S(TX("ab")).Compare(TX("abc")), 0);
  EXPECT_GT(S(TX("abc")).Compare(TX("")), 0);
  EXPECT_GT(S(TX("abc")).Compare(TX("ABC")), 0);
  EXPECT_EQ(S(TX("abc")).Compare(S(TX("abc"))), 0);
  EXPECT_LT(S(TX("abc")).Compare(S(TX("abd"))), 0);
}

TYPED_TEST(CmmStringCompare, ComparePutsAnEmptyStringBelowAnyOther) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S().Compare(TX("x")), -1);
  EXPECT_EQ(S().Compare(S(TX("x"))), -1);
  EXPECT_EQ(S().Compare(TX("")), 0);
  EXPECT_EQ(S().Compare(S()), 0);
  EXPECT_EQ(S().Compare(TestFixture::kNull), 0);
}

TYPED_TEST(CmmStringCompare, ComparePutsTextAboveNull) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TX("x")).Compare(TestFixture::kNull), 1);
}

TYPED_TEST(CmmStringCompare, CompareStopsAtTheFirstNul) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TXS("a\0b")).Compare(TX("a")), 0);
  EXPECT_EQ(S(TXS("a\0b")).Compare(S(TXS("a\0c"))), 0);
}

// ---- CompareNoCase ----------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCompare, CompareNoCaseAnswersMinusOneZeroOrOne) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TX("ABC")).CompareNoCase(TX("abc")), 0);
  EXPECT_EQ(S(TX("ABC")).CompareNoCase(S(TX("abc"))), 0);
  EXPECT_EQ(S(TX("ABC")).CompareNoCase(TX("abd")), -1);
  EXPECT_EQ(S(TX("abd")).CompareNoCase(TX("ABC")), 1);
  EXPECT_EQ(S(TX("abd")).CompareNoCase(S(TX("ABC"))), 1);
}

TYPED_TEST(CmmStringCompare, CompareNoCaseTreatsTheEmptiesTheOppositeWayToCompare) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S().CompareNoCase(TX("x")), 1);
  EXPECT_EQ(S().CompareNoCase(S(TX("x"))), 1);
  EXPECT_EQ(S(TX("x")).CompareNoCase(TestFixture::kNull), -1);
}

TYPED_TEST(CmmStringCompare, CompareNoCaseOfTwoEmptiesIsEqual) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S().CompareNoCase(TX("")), 0);
  EXPECT_EQ(S().CompareNoCase(S()), 0);
  EXPECT_EQ(S().CompareNoCase(TestFixture::kNull), 0);
}

TYPED_TEST(CmmStringCompare, CompareNoCaseOfTextWithAnEmptyTextIsTheSystemsAnswer) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TX("x")).CompareNoCase(TX("")), 1);
  EXPECT_EQ(S(TX("x")).CompareNoCase(S()), 1);
}

TYPED_TEST(CmmStringCompare, CompareNoCaseStopsAtTheFirstNul) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TXS("a\0b")).CompareNoCase(TX("A")), 0);
}

TEST(CmmStringCompareLocale, CompareNoCaseFoldsLettersBeyondAscii) {
  EXPECT_EQ(Cmm::CStringW(L"\u00c9t\u00e9").CompareNoCase(L"\u00e9T\u00c9"), 0);
}

// ---- Beginnings and ends
// ------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCompare, StartsWithAndEndsWith) {
  using S = typename TestFixture::S;
  const S s(TX("abcdef"));
  EXPECT_TRUE(s.StartsWith(TX("abc"), true));
  EXPECT_FALSE(s.StartsWith(TX("abd"), true));
  EXPECT_FALSE(s.StartsWith(TX("ABC"), true));
  EXPECT_TRUE(s.StartsWith(TX("ABC"), false));
  EXPECT_FALSE(s.StartsWith(TX("ABD"), false));
  EXPECT_TRUE(s.EndsWith(TX("def"), true));
  EXPECT_FALSE(s.EndsWith(TX("DEF"), true));
  EXPECT_TRUE(s.EndsWith(TX("DEF"), false));
  EXPECT_FALSE(s.EndsWith(TX("abc"), false));
  EXPECT_TRUE(s.MatchWith(TX("abc"), true, true));
  EXPECT_FALSE(s.MatchWith(TX("abc"), true, false));
  EXPECT_TRUE(s.MatchWith(TX("DEF"), false, false));
}

TYPED_TEST(CmmStringCompare, TheWholeStringIsItsOwnBeginningAndEnd) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  EXPECT_TRUE(s.StartsWith(s, true));
  EXPECT_TRUE(s.EndsWith(s, true));
  EXPECT_FALSE(s.StartsWith(TX("abcd"), true));
  EXPECT_FALSE(s.EndsWith(TX("xabc"), false));
}

TYPED_TEST(CmmStringCompare, AnEmptyTextMatchesEverywhere) {
  using S = typename TestFixture::S;
  EXPECT_TRUE(S(TX("abc")).StartsWith(S(), true));
  EXPECT_TRUE(S(TX("abc")).EndsWith(S(), false));
  EXPECT_TRUE(S().MatchWith(S(), true, true));
  EXPECT_FALSE(S().StartsWith(TX("a"), true));
}

TYPED_TEST(CmmStringCompare, BeginningsAreComparedUpToTheFirstNulOnly) {
  using S = typename TestFixture::S;
  EXPECT_TRUE(S(TXS("a\0b")).StartsWith(TXS("a\0X"), true));
  EXPECT_TRUE(S(TXS("a\0b")).EndsWith(TXS("A\0X"), false));
}

// ---- Wildcards
// ----------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCompare, MatchesBySecondAlternative) {
  EXPECT_EQ(typename TestFixture::S(TX("abc")).Match(TX("*.txt;a?c"), TC(';'), 1), 1);
  EXPECT_EQ(typename TestFixture::S(TX("abd")).Match(TX("*.txt;a?c"), TC(';'), 1), 0);
}

TYPED_TEST(CmmStringCompare, MatchIgnoresCaseOnDemand) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TX("Readme.TXT")).Match(TX("*.txt"), TC(';'), 0), 1);
  EXPECT_EQ(S(TX("Readme.TXT")).Match(TX("*.txt"), TC(';'), 1), 0);
}

TYPED_TEST(CmmStringCompare, NothingMatchesAnEmptyStringOrAnEmptyPattern) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S().Match(TX("*"), TC(';'), 1), 0);
  EXPECT_EQ(S(TX("abc")).Match(TX(""), TC(';'), 1), 0);
  EXPECT_EQ(S(TX("abc")).Match(TestFixture::kNull, TC(';'), 1), 0);
}

// ---- Operators
// ----------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCompare, EqualityOfStringsCountsEmbeddedNuls) {
  using S = typename TestFixture::S;
  EXPECT_TRUE(S(TXS("a\0b")) == S(TXS("a\0b")));
  EXPECT_FALSE(S(TXS("a\0b")) == S(TXS("a\0c")));
  EXPECT_TRUE(S(TXS("a\0b")) != S(TXS("a")));
  EXPECT_TRUE(S(TXS("a\0b")) == TXS("a\0b"));
  EXPECT_TRUE(S(TXS("a\0b")) != TXS("a\0c"));
  EXPECT_FALSE(S(TXS("a\0b")) != TXS("a\0b"));
  EXPECT_FALSE(S(TX("abc")) != S(TX("abc")));
  EXPECT_FALSE(S(TX("abc")) == S(TX("ABC")));
}

TYPED_TEST(CmmStringCompare, EqualityWithAPointerStopsAtTheFirstNul) {
  using S = typename TestFixture::S;
  EXPECT_TRUE(S(TXS("a\0b")) == TX("a"));
  EXPECT_FALSE(S(TXS("a\0b")) != TX("a"));
  EXPECT_TRUE(S(TX("a")) != TX("b"));
}

TYPED_TEST(CmmStringCompare, OnlyAnEmptyStringEqualsNull) {
  using S = typename TestFixture::S;
  EXPECT_TRUE(S() == TestFixture::kNull);
  EXPECT_TRUE(S() == TX(""));
  EXPECT_FALSE(S() == TX("a"));
  EXPECT_FALSE(S(TX("a")) == TestFixture::kNull);
  EXPECT_TRUE(S(TX("a")) != TestFixture::kNull);
  // Not empty, although nothing stands before the NUL.
  EXPECT_FALSE(S(TXS("\0a")) == TestFixture::kNull);
  EXPECT_TRUE(S(TXS("\0a")) == TX(""));
}

TYPED_TEST(CmmStringCompare, OrderPutsAnEmptyStringBeforeAnyOther) {
  using S = typename TestFixture::S;
  EXPECT_TRUE(S() < S(TX("a")));
  EXPECT_FALSE(S(TX("a")) < S());
  EXPECT_FALSE(S() < S());
  EXPECT_TRUE(S(TX("a")) > S());
  EXPECT_FALSE(S() > S());
  // Up to the NUL both are empty, yet only one of them is.
  EXPECT_TRUE(S() < S(TXS("\0")));
}

TYPED_TEST(CmmStringCompare, OrderStopsAtTheFirstNul) {
  using S = typename TestFixture::S;
  EXPECT_TRUE(S(TX("a")) < S(TX("b")));
  EXPECT_TRUE(S(TX("b")) > S(TX("a")));
  EXPECT_FALSE(S(TX("a")) < S(TX("a")));
  EXPECT_FALSE(S(TXS("a\0b")) < S(TXS("a\0c")));
  EXPECT_FALSE(S(TXS("a\0c")) > S(TXS("a\0b")));
}

}  // namespace
