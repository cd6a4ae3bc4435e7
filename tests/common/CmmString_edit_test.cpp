// Change in place and concatenation.

#include "tests/common/CmmStringTesting.h"

namespace {

using namespace cmm_string_testing;

template <typename T>
class CmmStringEdit : public testing::Test {
 public:
  using S = Cmm::CStringT<T>;
  static constexpr const T* kNull = nullptr;

  // Applies `change` to a string of `text` and gives what it holds then.
  template <typename Change>
  static std::basic_string<T> After(const std::basic_string<T>& text, Change change) {
    S s(text);
    change(s);
    return Text(s);
  }
};
TYPED_TEST_SUITE(CmmStringEdit, Widths, WidthNames);

// ---- Case and order
// -----------------------------------------------------------------------------------------

TYPED_TEST(CmmStringEdit, CaseChangesAsciiLettersOnly) {
  const auto upper = [](auto& s) { s.MakeUpper(); };
  const auto lower = [](auto& s) { s.MakeLower(); };
  EXPECT_EQ(this->After(TXS("azAZ09`{@["), upper), TXS("AZAZ09`{@["));
  EXPECT_EQ(this->After(TXS("azAZ09`{@["), lower), TXS("azaz09`{@["));
  EXPECT_EQ(this->After(TXS(""), upper), TXS(""));
  const std::basic_string<TypeParam> accents{TC(0xe9), TC(0xc9), TC(0xff)};
  EXPECT_EQ(this->After(accents, upper), accents);
  EXPECT_EQ(this->After(accents, lower), accents);
}

TYPED_TEST(CmmStringEdit, CaseStopsAtTheFirstNul) {
  EXPECT_EQ(this->After(TXS("ab\0cd"), [](auto& s) { s.MakeUpper(); }), TXS("AB\0cd"));
  EXPECT_EQ(this->After(TXS("AB\0CD"), [](auto& s) { s.MakeLower(); }), TXS("ab\0CD"));
}

TYPED_TEST(CmmStringEdit, ReversesTheWholeStoredText) {
  const auto reverse = [](auto& s) { s.MakeReverse(); };
  EXPECT_EQ(this->After(TXS("ab\0cd"), reverse), TXS("dc\0ba"));
  EXPECT_EQ(this->After(TXS(""), reverse), TXS(""));
}

// ---- Trim
// ---------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringEdit, TrimsExactlyFourWhitespaceUnits) {
  EXPECT_EQ(this->After(TXS("\t\n\r a b \r\n\t"), [](auto& s) { s.Trim(); }), TXS("a b"));
  EXPECT_EQ(this->After(TXS("\t\n\r a \t"), [](auto& s) { s.TrimLeft(); }), TXS("a \t"));
  EXPECT_EQ(this->After(TXS(" a \t\n\r "), [](auto& s) { s.TrimRight(); }), TXS(" a"));
}

TYPED_TEST(CmmStringEdit, VerticalTabAndFormFeedAndNulAndWideSpacesAreNotWhitespace) {
  const auto trim = [](auto& s) { s.Trim(); };
  EXPECT_EQ(this->After(TXS("\va\f"), trim), TXS("\va\f"));
  EXPECT_EQ(this->After(TXS("\0 a \0"), trim), TXS("\0 a \0"));
  const std::basic_string<TypeParam> hard{TC(0xa0), TC('a'), TC(0x85)};
  EXPECT_EQ(this->After(hard, trim), hard);
}

TYPED_TEST(CmmStringEdit, TrimEmptiesPureWhitespaceOnEitherSide) {
  EXPECT_EQ(this->After(TXS(" \t\r\n"), [](auto& s) { s.TrimLeft(); }), TXS(""));
  EXPECT_EQ(this->After(TXS(" \t\r\n"), [](auto& s) { s.TrimRight(); }), TXS(""));
  EXPECT_EQ(this->After(TXS(" \t\r\n"), [](auto& s) { s.Trim(); }), TXS(""));
  EXPECT_EQ(this->After(TXS(""), [](auto& s) { s.Trim(); }), TXS(""));
}

TYPED_TEST(CmmStringEdit, TrimsBySet) {
  EXPECT_EQ(this->After(TXS("xyaxyx"), [](auto& s) { s.TrimLeft(TX("xy")); }), TXS("axyx"));
  EXPECT_EQ(this->After(TXS("xyaxyx"), [](auto& s) { s.TrimRight(TX("xy")); }), TXS("xya"));
  EXPECT_EQ(this->After(TXS("xyaxyx"), [](auto& s) { s.Trim(TX("xy")); }), TXS("a"));
  EXPECT_EQ(this->After(TXS("abc"), [](auto& s) { s.Trim(TX("xy")); }), TXS("abc"));
}

TYPED_TEST(CmmStringEdit, TrimLeftBySetLeavesAStringOfNothingElseUnchanged) {
  EXPECT_EQ(this->After(TXS("xyx"), [](auto& s) { s.TrimLeft(TX("xy")); }), TXS("xyx"));
}

TYPED_TEST(CmmStringEdit, TrimRightAndTrimBySetEmptyAStringOfNothingElse) {
  EXPECT_EQ(this->After(TXS("xyx"), [](auto& s) { s.TrimRight(TX("xy")); }), TXS(""));
  EXPECT_EQ(this->After(TXS("xyx"), [](auto& s) { s.Trim(TX("xy")); }), TXS(""));
}

TYPED_TEST(CmmStringEdit, AnEmptyOrNullSetTrimsNothing) {
  EXPECT_EQ(this->After(TXS(" a "), [](auto& s) { s.Trim(TX("")); }), TXS(" a "));
  EXPECT_EQ(this->After(TXS(" a "), [](auto& s) { s.Trim(TestFixture::kNull); }), TXS(" a "));
  EXPECT_EQ(this->After(TXS(""), [](auto& s) { s.Trim(TX("x")); }), TXS(""));
}

// ---- Delete and Remove
// --------------------------------------------------------------------------------------

TYPED_TEST(CmmStringEdit, DeleteAnswersTheChangeOfLength) {
  using S = typename TestFixture::S;
  S s(TX("abc"));
  EXPECT_EQ(s.Delete(1, 1), -1);
  EXPECT_EQ(Text(s), TXS("ac"));
  EXPECT_EQ(s.Delete(9, 1), 0);
  EXPECT_EQ(s.Delete(2, 1), 0);
  EXPECT_EQ(s.Delete(0, 0), 0);
  EXPECT_EQ(Text(s), TXS("ac"));
  EXPECT_EQ(s.Delete(1, S::npos), -1);
  EXPECT_EQ(s.Delete(0, 100), -1);
  EXPECT_EQ(s.Delete(0, 1), 0);
}

TYPED_TEST(CmmStringEdit, RemoveAnswersHowMany) {
  typename TestFixture::S s(TXS("abac\0a"));
  EXPECT_EQ(s.Remove(TC('a')), 3);
  EXPECT_EQ(Text(s), TXS("bc\0"));
  EXPECT_EQ(s.Remove(TC('x')), 0);
  EXPECT_EQ(s.Remove(TC(0)), 1);
  EXPECT_EQ(Text(s), TXS("bc"));
}

TYPED_TEST(CmmStringEdit, RemoveBlanksTakesWhitespaceAnywhere) {
  typename TestFixture::S s(TX(" a\tb\r\nc\vd\f "));
  EXPECT_EQ(s.RemoveBlanks(), 5);
  EXPECT_EQ(Text(s), TXS("abc\vd\f"));
  EXPECT_EQ(s.RemoveBlanks(), 0);
}

// ---- Replace
// ------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringEdit, ReplaceDoesNotScanWhatItPutIn) {
  EXPECT_EQ(this->After(TXS("aaa"), [](auto& s) { s.Replace(TX("a"), TX("aa")); }), TXS("aaaaaa"));
  EXPECT_EQ(this->After(TXS("aab"), [](auto& s) { s.Replace(TX("ab"), TX("b")); }), TXS("ab"));
}

TYPED_TEST(CmmStringEdit, ReplaceTakesOccurrencesFromTheLeft) {
  EXPECT_EQ(this->After(TXS("aaaaa"), [](auto& s) { s.Replace(TX("aa"), TX("x")); }), TXS("xxa"));
  EXPECT_EQ(this->After(TXS("one two one"), [](auto& s) { s.Replace(TX("one"), TX("1")); }), TXS("1 two 1"));
  EXPECT_EQ(this->After(TXS("abc"), [](auto& s) { s.Replace(TX("B"), TX("x")); }), TXS("abc"));
}

TYPED_TEST(CmmStringEdit, ReplaceOfNothingDoesNothing) {
  EXPECT_EQ(this->After(TXS("abc"), [](auto& s) { s.Replace(TX(""), TX("x")); }), TXS("abc"));
  EXPECT_EQ(this->After(TXS("abc"), [](auto& s) { s.Replace(TestFixture::kNull, TX("x")); }), TXS("abc"));
  EXPECT_EQ(this->After(TXS(""), [](auto& s) { s.Replace(TX("a"), TX("x")); }), TXS(""));
}

TYPED_TEST(CmmStringEdit, ReplaceByNullOrNothingDeletes) {
  EXPECT_EQ(this->After(TXS("abcb"), [](auto& s) { s.Replace(TX("b"), TestFixture::kNull); }), TXS("ac"));
  EXPECT_EQ(this->After(TXS("abcb"), [](auto& s) { s.Replace(TX("b"), TX("")); }), TXS("ac"));
}

TYPED_TEST(CmmStringEdit, ReplaceByStringsCountsEmbeddedNuls) {
  using S = typename TestFixture::S;
  EXPECT_EQ(this->After(TXS("a\0b\0c"), [](auto& s) { s.Replace(S(TXS("\0")), S(TXS("-\0-"))); }),
            TXS("a-\0-b-\0-c"));
  EXPECT_EQ(this->After(TXS("abc"), [](auto& s) { s.Replace(S(), S(TX("x"))); }), TXS("abc"));
}

TYPED_TEST(CmmStringEdit, ReplaceTakesItselfOnEitherSide) {
  EXPECT_EQ(this->After(TXS("abc"), [](auto& s) { s.Replace(s, s + s); }), TXS("abcabc"));
  EXPECT_EQ(this->After(TXS("aba"), [](auto& s) { s.Replace(TX("a"), s.c_str()); }), TXS("abababa"));
}

TYPED_TEST(CmmStringEdit, ReplaceOfAUnitReachesBehindNuls) {
  EXPECT_EQ(this->After(TXS("a\0a"), [](auto& s) { s.Replace(TC('a'), TC('b')); }), TXS("b\0b"));
  EXPECT_EQ(this->After(TXS("a\0a"), [](auto& s) { s.Replace(TC(0), TC('-')); }), TXS("a-a"));
}

// ---- XML
// ----------------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringEdit, EncodesTheFiveNamedCharacters) {
  const auto encode = [](auto& s) { s.XMLEncode(); };
  EXPECT_EQ(this->After(TXS("a&b\"c'd<e>f"), encode), TXS("a&amp;b&quot;c&apos;d&lt;e&gt;f"));
  EXPECT_EQ(this->After(TXS("&amp;"), encode), TXS("&amp;amp;"));
  EXPECT_EQ(this->After(TXS("&lt;"), encode), TXS("&amp;lt;"));
  EXPECT_EQ(this->After(TXS(""), encode), TXS(""));
}

TYPED_TEST(CmmStringEdit, DecodesTheFiveNamedCharacters) {
  const auto decode = [](auto& s) { s.XMLDecode(); };
  EXPECT_EQ(this->After(TXS("a&amp;b&quot;c&apos;d&lt;e&gt;f"), decode), TXS("a&b\"c'd<e>f"));
  EXPECT_EQ(this->After(TXS("&AMP;&lt&nbsp;&"), decode), TXS("&AMP;&lt&nbsp;&"));
}

TYPED_TEST(CmmStringEdit, DecodingUndoesTheAmpersandLastAndSoNothingTwice) {
  EXPECT_EQ(this->After(TXS("&amp;lt;"), [](auto& s) { s.XMLDecode(); }), TXS("&lt;"));
  EXPECT_EQ(this->After(TXS("&amp;amp;"), [](auto& s) { s.XMLDecode(); }), TXS("&amp;"));
}

TYPED_TEST(CmmStringEdit, DecodingUndoesEncoding) {
  const auto text = TXS("<a b=\"c\" d='&amp;'>&lt;</a>\0&");
  const auto roundTrip = [](auto& s) {
    s.XMLEncode();
    s.XMLDecode();
  };
  EXPECT_EQ(this->After(text, roundTrip), text);
}

TEST(CmmStringXml, TheWideClassEncodesFourBracketsInLowerCaseHexadecimal) {
  Cmm::CStringW s(L"\u2329\u232a\u300a\u300b<");
  s.XMLEncode();
  EXPECT_EQ(Text(s), L"&#x2329;&#x232a;&#x300a;&#x300b;&lt;");
  s.XMLDecode();
  EXPECT_EQ(Text(s), L"\u2329\u232a\u300a\u300b<");
}

TEST(CmmStringXml, TheWideClassDecodesLowerCaseDigitsOnly) {
  Cmm::CStringW s(L"&#x232A;&#X232a;&#x300A;&#9001;");
  s.XMLDecode();
  EXPECT_EQ(Text(s), L"&#x232A;&#X232a;&#x300A;&#9001;");
}

// The brackets come behind the ampersand, so what it uncovers is decoded once more.
TEST(CmmStringXml, TheWideClassDecodesAnEscapedBracketReferenceTwice) {
  Cmm::CStringW s(L"&amp;#x2329;");
  s.XMLDecode();
  EXPECT_EQ(Text(s), L"\u2329");
}

TEST(CmmStringXml, TheNarrowClassKnowsNoBrackets) {
  Cmm::CStringA s("&#x2329;&#x232a;&#x300a;&#x300b;");
  s.XMLDecode();
  EXPECT_EQ(Text(s), "&#x2329;&#x232a;&#x300a;&#x300b;");
}

// ---- Concatenation
// ------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringEdit, AppendsEverySource) {
  using S = typename TestFixture::S;
  const S other(TXS("o\0r"));
  S s(TX("s"));
  EXPECT_EQ(&(s += TX("p")), &s);
  EXPECT_EQ(&(s += other), &s);
  EXPECT_EQ(&(s += TXS("d\0")), &s);
  EXPECT_EQ(&(s += TC('u')), &s);
  EXPECT_EQ(&(s += other.Left(1)), &s);
  EXPECT_EQ(Text(s), TXS("spo\0rd\0uo"));
}

TYPED_TEST(CmmStringEdit, AddsEverySourceToACopy) {
  using S = typename TestFixture::S;
  const S other(TXS("o\0r"));
  const S s(TX("s"));
  EXPECT_EQ(Text(s + TX("p")), TXS("sp"));
  EXPECT_EQ(Text(s + other), TXS("so\0r"));
  EXPECT_EQ(Text(s + TC('u')), TXS("su"));
  EXPECT_EQ(Text(s + other.Left(1)), TXS("so"));
  EXPECT_EQ(Text(s + TXS("d\0")), TXS("sd\0"));
  EXPECT_EQ(Text(s), TXS("s"));
}

TYPED_TEST(CmmStringEdit, SkipsANullOrEmptyOperand) {
  using S = typename TestFixture::S;
  S s(TX("s"));
  s += TestFixture::kNull;
  s += TX("");
  s += typename S::Range();
  EXPECT_EQ(Text(s), TXS("s"));
  EXPECT_EQ(Text(s + TestFixture::kNull), TXS("s"));
  EXPECT_EQ(Text(s + TX("")), TXS("s"));
  EXPECT_EQ(Text(s + typename S::Range()), TXS("s"));
}

}  // namespace
