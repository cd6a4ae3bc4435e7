// Search, parts and splitting.

#include <vector>

#include "tests/common/CmmStringTesting.h"

namespace {

using namespace cmm_string_testing;
using testing::ElementsAre;
using testing::IsNull;

template <typename T>
class CmmStringSearch : public testing::Test {
 public:
  using S = Cmm::CStringT<T>;
  static constexpr const T* kNull = nullptr;

  static std::vector<std::basic_string<T>> Split(const S& text, const S& sep, int mode) {
    std::vector<std::basic_string<T>> pieces;
    for (const S& piece : text.SplitString(sep, mode))
      pieces.push_back(Text(piece));
    return pieces;
  }
};
TYPED_TEST_SUITE(CmmStringSearch, Widths, WidthNames);

// ---- Pos --------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringSearch, PosIsTheIndexOfTheFirstOccurrence) {
  using S = typename TestFixture::S;
  const S s(TX("abcabc"));
  EXPECT_EQ(s.Pos(TX("bc")), 1);
  EXPECT_EQ(s.Pos(S(TX("ca"))), 2);
  EXPECT_EQ(s.Pos(TX("abcabc")), 0);
  EXPECT_EQ(s.Pos(TX("x")), -1);
  EXPECT_EQ(s.Pos(TX("")), 0);
  EXPECT_EQ(s.Pos(TestFixture::kNull), -1);
}

TYPED_TEST(CmmStringSearch, PosInAnEmptyStringIsMinusOneEvenForAnEmptyNeedle) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S().Pos(TX("")), -1);
  EXPECT_EQ(S().Pos(S()), -1);
}

TYPED_TEST(CmmStringSearch, PosSeesNothingBehindTheFirstNul) {
  using S = typename TestFixture::S;
  EXPECT_EQ(S(TXS("a\0b")).Pos(TX("b")), -1);
  EXPECT_EQ(S(TX("abc")).Pos(S(TXS("b\0x"))), 1);
}

// ---- Find -------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringSearch, FindGivesAPointerIntoTheText) {
  using S = typename TestFixture::S;
  const S s(TX("abcabc"));
  EXPECT_EQ(s.Find(TC('b'), 0), s.c_str() + 1);
  EXPECT_EQ(s.Find(TC('b'), 2), s.c_str() + 4);
  EXPECT_EQ(s.Find(TC('b')), s.c_str() + 1);
  EXPECT_THAT(s.Find(TC('B'), 0), IsNull());
  EXPECT_EQ(s.Find(TC('b'), S::reverse, 0), s.c_str() + 4);
  EXPECT_THAT(s.Find(TC('a'), S::reverse, 4), IsNull());
  EXPECT_EQ(s.Find(TC('B'), S::nocase, 0), s.c_str() + 1);
  EXPECT_EQ(s.Find(TC('B'), S::nocase, 2), s.c_str() + 4);
  EXPECT_EQ(s.Find(TX("ca"), 0), s.c_str() + 2);
  EXPECT_THAT(s.Find(TX("ca"), 3), IsNull());
  EXPECT_EQ(s.Find(TX("BC"), S::nocase, 0), s.c_str() + 1);
  EXPECT_EQ(s.Find(TX("BC"), S::nocase, 2), s.c_str() + 4);
  EXPECT_EQ(s.Find(TX("BC"), S::reverse_nocase, 0), s.c_str() + 4);
  EXPECT_THAT(s.Find(TX("BC"), S::reverse_nocase, 5), IsNull());
}

TYPED_TEST(CmmStringSearch, FindAcceptsTheEndAndAnswersNullBeyondIt) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  EXPECT_THAT(s.Find(TC('c'), 3), IsNull());
  EXPECT_EQ(s.Find(TX(""), 3), s.c_str() + 3);
  EXPECT_THAT(s.Find(TC('c'), 4), IsNull());
  EXPECT_THAT(s.Find(TC('c'), S::reverse, 4), IsNull());
  EXPECT_THAT(s.Find(TC('c'), S::nocase, 4), IsNull());
  EXPECT_THAT(s.Find(TX(""), 4), IsNull());
  EXPECT_THAT(s.Find(TX(""), S::nocase, 4), IsNull());
  EXPECT_THAT(s.Find(TX(""), S::reverse_nocase, S::npos), IsNull());
}

TYPED_TEST(CmmStringSearch, FindInAnEmptyStringIsNullEvenForTheTerminator) {
  using S = typename TestFixture::S;
  const S s;
  EXPECT_THAT(s.Find(TC(0), 0), IsNull());
  EXPECT_THAT(s.Find(TC(0), S::reverse, 0), IsNull());
  EXPECT_THAT(s.Find(TC('a'), S::nocase, 0), IsNull());
  EXPECT_THAT(s.Find(TX(""), 0), IsNull());
  EXPECT_THAT(s.Find(TX(""), S::nocase, 0), IsNull());
  EXPECT_THAT(s.Find(TX(""), S::reverse_nocase, 0), IsNull());
}

TYPED_TEST(CmmStringSearch, FindFindsTheTerminator) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  EXPECT_EQ(s.Find(TC(0), 0), s.c_str() + 3);
  EXPECT_EQ(s.Find(TC(0), S::reverse, 0), s.c_str() + 3);
}

TYPED_TEST(CmmStringSearch, FindStopsAtTheFirstNulBehindThePosition) {
  using S = typename TestFixture::S;
  const S s(TXS("a\0bb"));
  EXPECT_THAT(s.Find(TC('b'), 0), IsNull());
  EXPECT_EQ(s.Find(TC('b'), 2), s.c_str() + 2);
  EXPECT_EQ(s.Find(TC('b'), S::reverse, 2), s.c_str() + 3);
  EXPECT_THAT(s.Find(TX("b"), S::nocase, 0), IsNull());
  EXPECT_THAT(s.Find(TX("b"), S::reverse_nocase, 0), IsNull());
}

TYPED_TEST(CmmStringSearch, FindOfANullTextIsNull) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  EXPECT_THAT(s.Find(TestFixture::kNull, 0), IsNull());
  EXPECT_THAT(s.Find(TestFixture::kNull, S::nocase, 0), IsNull());
  EXPECT_THAT(s.Find(TestFixture::kNull, S::reverse_nocase, 0), IsNull());
}

TYPED_TEST(CmmStringSearch, FindOneOfIsAnIndexOrMinusOne) {
  using S = typename TestFixture::S;
  const S s(TXS("ab\0cb"));
  EXPECT_EQ(s.FindOneOf(TX("xb"), 0), 1);
  EXPECT_EQ(s.FindOneOf(TX("xb"), 2), 4);
  EXPECT_EQ(s.FindOneOf(TX("c")), 3);
  EXPECT_EQ(s.FindOneOf(TX("xyz"), 0), -1);
  EXPECT_EQ(s.FindOneOf(TX("b"), 99), -1);
  EXPECT_EQ(s.FindOneOf(TX(""), 0), -1);
  EXPECT_EQ(s.FindOneOf(TestFixture::kNull, 0), -1);
}

// ---- Parts ------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringSearch, LeftPointsIntoTheString) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  EXPECT_EQ(s.Left(2).begin, s.c_str());
  EXPECT_EQ(Text(s.Left(2)), TXS("ab"));
  EXPECT_EQ(Text(s.Left(3)), TXS("abc"));
  EXPECT_EQ(Text(s.Left(100)), TXS("abc"));
  EXPECT_EQ(Text(s.Left(S::npos)), TXS("abc"));
  EXPECT_TRUE(s.Left(0).IsNull());
  EXPECT_TRUE(S().Left(3).IsNull());
}

TYPED_TEST(CmmStringSearch, MidRunsFromAPosition) {
  using S = typename TestFixture::S;
  const S s(TX("abcdef"));
  EXPECT_EQ(s.Mid(2).begin, s.c_str() + 2);
  EXPECT_EQ(Text(s.Mid(2)), TXS("cdef"));
  EXPECT_EQ(Text(s.Mid(0)), TXS("abcdef"));
  EXPECT_EQ(Text(s.Mid(2, 3)), TXS("cde"));
  EXPECT_EQ(Text(s.Mid(5, 1)), TXS("f"));
  EXPECT_EQ(Text(s.Mid(2, 100)), TXS("cdef"));
  EXPECT_EQ(Text(s.Mid(2, S::npos)), TXS("cdef"));
  EXPECT_TRUE(s.Mid(6).IsNull());
  EXPECT_TRUE(s.Mid(7).IsNull());
  EXPECT_TRUE(s.Mid(6, 1).IsNull());
  EXPECT_TRUE(s.Mid(2, 0).IsNull());
  EXPECT_TRUE(S().Mid(0).IsNull());
  EXPECT_TRUE(S().Mid(0, 1).IsNull());
}

TYPED_TEST(CmmStringSearch, RightRunsToTheEnd) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  EXPECT_EQ(s.Right(2).begin, s.c_str() + 1);
  EXPECT_EQ(Text(s.Right(2)), TXS("bc"));
  EXPECT_EQ(Text(s.Right(3)), TXS("abc"));
  EXPECT_EQ(Text(s.Right(100)), TXS("abc"));
  EXPECT_TRUE(s.Right(0).IsNull());
  EXPECT_TRUE(S().Right(1).IsNull());
}

TYPED_TEST(CmmStringSearch, RightCountsIn32BitsSignedSoAllOnesGivesTheNullRange) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  EXPECT_TRUE(s.Right(S::npos).IsNull());
  EXPECT_TRUE(s.Right(0xFFFFFFFFu).IsNull());
  EXPECT_TRUE(s.Right(size_t{1} << 32).IsNull());
  EXPECT_EQ(Text(s.Right(0x7FFFFFFFu)), TXS("abc"));
}

TYPED_TEST(CmmStringSearch, SpansCountTheLeadingUnits) {
  using S = typename TestFixture::S;
  const S s(TX("aabbcc"));
  EXPECT_EQ(Text(s.SpanIncluding(TX("ab"))), TXS("aabb"));
  EXPECT_EQ(s.SpanIncluding(TX("ab")).begin, s.c_str());
  EXPECT_TRUE(s.SpanIncluding(TX("x")).IsNull());
  EXPECT_EQ(Text(s.SpanExcluding(TX("c"))), TXS("aabb"));
  EXPECT_EQ(Text(s.SpanExcluding(TX("x"))), TXS("aabbcc"));
  EXPECT_TRUE(s.SpanExcluding(TX("a")).IsNull());
  EXPECT_TRUE(S().SpanIncluding(TX("a")).IsNull());
  EXPECT_TRUE(S().SpanExcluding(TX("a")).IsNull());
}

TYPED_TEST(CmmStringSearch, SpansTakeANullSetAsEmptyAndStopAtTheFirstNul) {
  using S = typename TestFixture::S;
  const S s(TXS("ab\0ab"));
  EXPECT_TRUE(s.SpanIncluding(TestFixture::kNull).IsNull());
  EXPECT_EQ(Text(s.SpanExcluding(TestFixture::kNull)), TXS("ab"));
  EXPECT_EQ(Text(s.SpanIncluding(TX("ab"))), TXS("ab"));
}

// ---- SplitString ------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringSearch, SplitKeepsEmptyPieces) {
  EXPECT_THAT(TestFixture::Split(TX("a,,b,"), TX(","), 0), ElementsAre(TXS("a"), TXS(""), TXS("b"), TXS("")));
  EXPECT_THAT(TestFixture::Split(TX(",a"), TX(","), 0), ElementsAre(TXS(""), TXS("a")));
  EXPECT_THAT(TestFixture::Split(TX(","), TX(","), 0), ElementsAre(TXS(""), TXS("")));
}

TYPED_TEST(CmmStringSearch, SplitOfAnEmptyStringIsOneEmptyPiece) {
  EXPECT_THAT(TestFixture::Split(TX(""), TX(","), 0), ElementsAre(TXS("")));
  EXPECT_THAT(TestFixture::Split(TX(""), TX(","), 1), ElementsAre(TXS("")));
}

TYPED_TEST(CmmStringSearch, SplitWithoutASeparatorIsTheWholeText) {
  EXPECT_THAT(TestFixture::Split(TX("abc"), TX(","), 0), ElementsAre(TXS("abc")));
  EXPECT_THAT(TestFixture::Split(TX("abc"), TX(",;"), 1), ElementsAre(TXS("abc")));
}

TYPED_TEST(CmmStringSearch, SplitByStringTakesTheSeparatorWhole) {
  EXPECT_THAT(TestFixture::Split(TX("a--b-c--"), TX("--"), 0), ElementsAre(TXS("a"), TXS("b-c"), TXS("")));
}

TYPED_TEST(CmmStringSearch, SplitBySetTakesEachUnitForItself) {
  EXPECT_THAT(TestFixture::Split(TX("a,b;c,;"), TX(",;"), 1),
              ElementsAre(TXS("a"), TXS("b"), TXS("c"), TXS(""), TXS("")));
  EXPECT_THAT(TestFixture::Split(TX("a,b"), TX(","), -7), ElementsAre(TXS("a"), TXS("b")));
}

TYPED_TEST(CmmStringSearch, SplitByAnEmptySetIsTheWholeText) {
  EXPECT_THAT(TestFixture::Split(TX("abc"), TX(""), 1), ElementsAre(TXS("abc")));
}

TYPED_TEST(CmmStringSearch, SplitSeesEmbeddedNuls) {
  EXPECT_THAT(TestFixture::Split(TXS("a\0b,c\0"), TX(","), 0), ElementsAre(TXS("a\0b"), TXS("c\0")));
  EXPECT_THAT(TestFixture::Split(TXS("a\0b"), TXS("\0"), 0), ElementsAre(TXS("a"), TXS("b")));
}

}  // namespace
