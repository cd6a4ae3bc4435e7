// A program that uses both widths of the string and what stands around it from outside: it links the DLL
// and nothing else of the library. What these operations compute is tested elsewhere; here they must be
// there, and a string must survive the way between program and DLL in both directions.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/client/utility/src/CmmObject.h"
#include "common/client/utility/src/CmmRange.h"
#include "common/client/utility/src/CmmStrUtil.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/CmmStringPiece.h"
#include "tests/common/CmmStringTesting.h"

#if defined(VELMSDK_STATIC) || defined(VELMSDK_BUILD)
#error "This program must import the library."
#endif

namespace {

using namespace cmm_string_testing;

template <typename T>
class StringConsumer : public testing::Test {
 public:
  using String = Cmm::CStringT<T>;
  using Standard = std::basic_string<T>;
};
TYPED_TEST_SUITE(StringConsumer, Widths, WidthNames);

TYPED_TEST(StringConsumer, ConstructsAssignsAndDestroys) {
  using S = typename TestFixture::String;
  const auto standard = TXS("a text that is too long for the buffer inside the object");
  S a, b(TX("b")), c(TX("abc"), 2), d(standard), e(d), f(d, 6), g(d.Mid(2, 4));
  S h(std::move(d));
  EXPECT_EQ(Text(h), standard);
  a = b;
  a = S(TX("moved"));
  a = standard;
  a = TX("pointer");
  a = TC('u');
  a = e.Left(1);
  a.Assign(e).Assign(S(TX("moved"))).Assign(standard).Assign(TX("p")).Assign(TX("pq"), 1).Assign(TC('u'));
  a.Assign(e.Right(3));
  EXPECT_EQ(Text(a), TXS("ect"));
  EXPECT_EQ(Text(c) + Text(f) + Text(g), TXS("ab") + TXS("a text") + TXS("text"));
  a.AssignOther(Pick<typename S::OtherChar>("other", L"other"));
  EXPECT_EQ(Text(a), TXS("other"));
  const Cmm::CStringT<typename S::OtherChar> other(Pick<typename S::OtherChar>("string", L"string"));
  EXPECT_EQ(Text(a.AssignOther(other)), TXS("string"));
  EXPECT_EQ(Text(a.AssignOther(other.GetCData())), TXS("string"));
  const std::unique_ptr<S> heap(new S(standard));
  EXPECT_EQ(heap->size(), standard.size());
}

TYPED_TEST(StringConsumer, AnHeirOverridesTheDestructorOfTheDll) {
  static bool destroyed;
  struct Heir : TestFixture::String {
    using TestFixture::String::CStringT;
    ~Heir() override { destroyed = true; }
  };
  destroyed = false;
  typename TestFixture::String* s = new Heir(TX("heir"));
  EXPECT_NE(dynamic_cast<Heir*>(s), nullptr);
  delete s;
  EXPECT_TRUE(destroyed);
}

TYPED_TEST(StringConsumer, TextsChangeHandsBetweenProgramAndDll) {
  using S = typename TestFixture::String;
  typename TestFixture::Standard standard(5000, TC('x'));
  S s;
  s.Swap(standard);  // the DLL now owns what the program allocated
  s.Replace(TX("x"), TX("yy"));
  s.swap(standard);  // and the program what the DLL allocated
  EXPECT_EQ(standard.size(), 10000u);
  std::vector<S> pieces = S(TX("a,b,c")).SplitString(TX(","), 0);
  pieces.push_back(TX("d"));
  EXPECT_EQ(pieces.size(), 4u);
  std::map<S, int> map{{TX("b"), 2}, {TX("a"), 1}};
  EXPECT_EQ(map.begin()->second, 1);
}

TYPED_TEST(StringConsumer, ReachesTheInspectingOperations) {
  using S = typename TestFixture::String;
  const S s(TX("Hello hello"));
  EXPECT_EQ(s.GetLength(), 11u);
  EXPECT_EQ(s.IsEmpty(), 0);
  EXPECT_EQ(s.GetAt(1), TC('e'));
  EXPECT_EQ(s[1], TC('e'));
  EXPECT_EQ(s.c_str() + 1, s.c_str(1));
  EXPECT_EQ(s.GetCData(), static_cast<const typename TestFixture::Standard&>(s));
  EXPECT_EQ(s.Pos(TX("lo")), 3);
  EXPECT_EQ(s.Pos(S(TX("lo"))), 3);
  EXPECT_EQ(s.Find(TC('l'), 0), s.c_str(2));
  EXPECT_EQ(s.Find(TC('l'), S::reverse), s.c_str(9));
  EXPECT_EQ(s.Find(TC('L'), S::nocase), s.c_str(2));
  EXPECT_EQ(s.Find(TX("lo")), s.c_str(3));
  EXPECT_EQ(s.Find(TX("LO"), S::nocase), s.c_str(3));
  EXPECT_EQ(s.Find(TX("LO"), S::reverse_nocase), s.c_str(9));
  EXPECT_EQ(s.FindOneOf(TX("ol")), 2);
  EXPECT_EQ(Text(s.Left(2)) + Text(s.Mid(9)) + Text(s.Mid(4, 1)) + Text(s.Right(1)), TXS("Helooo"));
  EXPECT_EQ(Text(s.SpanIncluding(TX("He"))), TXS("He"));
  EXPECT_EQ(Text(s.SpanExcluding(TX(" "))), TXS("Hello"));
  EXPECT_EQ(s.Match(TX("x;H*o"), TC(';'), 1), 1);
  EXPECT_TRUE(s.MatchWith(TX("Hello"), true, true));
  EXPECT_TRUE(s.StartsWith(TX("HELLO"), false));
  EXPECT_TRUE(s.EndsWith(TX("hello"), true));
  EXPECT_GT(s.Compare(TX("Hallo")), 0);
  EXPECT_EQ(s.Compare(s), 0);
  EXPECT_EQ(s.CompareNoCase(TX("HELLO HELLO")), 0);
  EXPECT_EQ(s.CompareNoCase(s), 0);
  EXPECT_TRUE(s == s);
  EXPECT_TRUE(s == s.GetCData());
  EXPECT_TRUE(s == TX("Hello hello"));
  EXPECT_FALSE(s != s);
  EXPECT_FALSE(s != s.GetCData());
  EXPECT_FALSE(s != TX("Hello hello"));
  EXPECT_FALSE(s < s);
  EXPECT_FALSE(s > s);
  EXPECT_EQ(S(TX("17")).ToLong(0, 10), 17);
  EXPECT_EQ(S(TX("17")).ToULong(0, 10), 17);
  EXPECT_EQ(S(TX("1.5")).ToDouble(0), 1.5);
}

TYPED_TEST(StringConsumer, ReachesTheChangingOperations) {
  using S = typename TestFixture::String;
  S s(TX("  abc  "));
  s.TrimLeft();
  s.TrimRight();
  s.Trim();
  s.MakeUpper();
  s.MakeLower();
  s.MakeReverse();
  s.SetAt(0, TC('x'));
  EXPECT_EQ(Text(s), TXS("xba"));
  s.TrimLeft(TX("x"));
  s.TrimRight(TX("a"));
  s.Trim(TX("q"));
  EXPECT_EQ(Text(s), TXS("b"));
  s += TX("1");
  s += S(TX("2"));
  s += TXS("3");
  s += TC('4');
  s += s.Left(1);
  EXPECT_EQ(Text(s + TX("1") + S(TX("2")) + TC('3') + s.Left(1)), TXS("b1234b123b"));
  EXPECT_EQ(s.Delete(0, 1), -1);
  EXPECT_EQ(s.Remove(TC('b')), 1);
  EXPECT_EQ(s.RemoveBlanks(), 0);
  s.Replace(TX("1"), TX("<"));
  s.Replace(S(TX("2")), S(TX(">")));
  s.Replace(TC('3'), TC('&'));
  s.XMLEncode();
  EXPECT_EQ(Text(s), TXS("&lt;&gt;&amp;4"));
  s.XMLDecode();
  s.SetLength(3);
  s.GetBuffer(2)[1] = 0;
  s.ReleaseBuffer();
  EXPECT_EQ(s.GetBufferSetLength(1), s.GetBuffer());
  EXPECT_EQ(Text(s), TXS("<"));
  s.GetData().clear();
  s.Format(TX("%d"), 5);
  EXPECT_EQ(Text(s), TXS("5"));
  EXPECT_EQ(s.FormatMessageW(TX("%1."), TX("hey")), 4u);
  EXPECT_EQ(s.LoadStringW(nullptr, 4711), 0);
}

TYPED_TEST(StringConsumer, ReachesTheStandardVocabulary) {
  using S = typename TestFixture::String;
  S s;
  const S other(TX("other"));
  const auto standard = TXS("standard");
  s.reserve(10);
  EXPECT_TRUE(s.empty());
  EXPECT_GE(s.capacity(), 10u);
  s.append(other).append(TX("x"));
  s.append(standard, 0, 2).append(TX("yz"), 1);
  s.append(2, TC('w'));
  s.append({TC('v')});
  s.append(standard.begin(), standard.begin() + 1);
  EXPECT_EQ(Text(s), TXS("otherxstywwvs"));
  s.assign(other);
  s.assign(standard);
  s.assign(TX("abc"));
  s.insert(0, other);
  s.insert(0, standard);
  s.insert(0, TX("x"));
  s.insert(s.cbegin(), TC('y'));
  s.erase(s.cbegin());
  s.erase(0, 1);
  s.replace(0, 8, TX(""));
  s.replace(0, 5, other);
  EXPECT_EQ(Text(s), TXS("otherabc"));
  s.push_back(TC('d'));
  s.resize(8);
  s.resize(9, TC('d'));
  EXPECT_EQ(s.substr(5), TXS("abcd"));
  EXPECT_EQ(s.at(0), TC('o'));
  EXPECT_EQ(s.data()[8], TC('d'));
  EXPECT_EQ(s.size() + s.length(), 18u);
  EXPECT_LT(s.compare(TX("p")), 0);
  EXPECT_EQ(s.compare(0, 5, other), 0);
  EXPECT_EQ(s.find(other), 0u);
  EXPECT_EQ(s.rfind(TX("d")), 8u);
  EXPECT_EQ(s.find_first_of(TX("ab")), 5u);
  EXPECT_EQ(s.find_last_of(TC('e')), 3u);
  EXPECT_EQ(s.find_first_not_of(other), 5u);
  EXPECT_EQ(s.find_last_not_of(TX("dcba")), 4u);
  const size_t& notFound = S::npos;
  EXPECT_EQ(s.find(standard), notFound);
  EXPECT_THROW(s.at(99), std::out_of_range);  // raised in the DLL, caught here
  size_t units = 0;
  for (TypeParam unit : s)
    units += unit != 0;
  EXPECT_EQ(units, 9u);
  EXPECT_EQ(typename TestFixture::Standard(s.crbegin(), s.crend()).size(), 9u);
  s.clear();
}

TEST(StringPieceConsumer, ReachesItsOperations) {
  const Cmm::StringPiece piece("abcdef");
  std::string text;
  piece.CopyToString(&text);
  piece.AppendToString(&text);
  EXPECT_EQ(text, "abcdefabcdef");
  EXPECT_EQ(piece.substr(1, 2).as_string(), "bc");
  EXPECT_EQ(piece.find("cd") + piece.rfind('f') + piece.find_first_of("f"), 12u);
  EXPECT_EQ(piece.find_first_not_of("ab") + piece.find_last_of("ab") + piece.find_last_not_of("f"), 7u);
  EXPECT_TRUE(piece.starts_with("ab") && piece.ends_with(std::string("ef")));
  EXPECT_EQ(piece.compare("abc"), 1);
  EXPECT_EQ(std::string(piece.rbegin(), piece.rend()), "fedcba");
}

TEST(FreeHelperConsumer, ReachesBothFamilies) {
  const char* narrow = "aBcB";
  const wchar_t* wide = L"aBcB";
  EXPECT_EQ(cmm_astr_chri(narrow, nullptr, 'b'), narrow + 1);
  EXPECT_EQ(cmm_wstr_chri(wide, nullptr, L'b'), wide + 1);
  EXPECT_EQ(cmm_astr_rchri(narrow, nullptr, 'b'), narrow + 3);
  EXPECT_EQ(cmm_wstr_rchri(wide, nullptr, L'b'), wide + 3);
  EXPECT_EQ(cmm_astr_stri(narrow, nullptr, "bC"), narrow + 1);
  EXPECT_EQ(cmm_wstr_stri(wide, nullptr, L"bC"), wide + 1);
  EXPECT_EQ(cmm_astr_rstri(narrow, nullptr, "b"), narrow + 3);
  EXPECT_EQ(cmm_wstr_rstri(wide, nullptr, L"b"), wide + 3);
  char a[8];
  wchar_t w[8];
  EXPECT_EQ(cmm_astr_ncpy(a, 8, narrow, 2) + cmm_astr_ncat(a, 8, narrow, 1), 5u);
  EXPECT_EQ(cmm_wstr_ncpy(w, 8, wide, 2) + cmm_wstr_ncat(w, 8, wide, 1), 5u);
  cmm_astr_upr(a, nullptr);
  cmm_astr_lwr(a, a + 1);
  cmm_wstr_upr(w, nullptr);
  cmm_wstr_lwr(w, w + 1);
  EXPECT_STREQ(a, "aBA");
  EXPECT_STREQ(w, L"aBA");
  EXPECT_EQ(cmm_astr_match("a.txt", "*.txt", ';', 1), 1);
  EXPECT_EQ(cmm_wstr_match(L"a.txt", L"*.txt", L';', 1), 1);
}

struct Heir : Cmm::CObject {
  int value = 7;
};

TEST(ObjectConsumer, AllocatesThroughTheDll) {
  const std::unique_ptr<Heir> heir(new Heir);
  EXPECT_EQ(heir->value, 7);
}

}  // namespace
