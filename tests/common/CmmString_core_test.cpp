// Construction, assignment, access and buffers.

#include <windows.h>

// Behind the Windows headers on purpose: their macros must not reach into the class.
#include <oleauto.h>

#include <stdexcept>
#include <type_traits>
#include <utility>

#include "tests/common/CmmStringTesting.h"

namespace {

using namespace cmm_string_testing;
using testing::IsNull;
using testing::NotNull;

template <typename T>
class CmmStringCore : public testing::Test {
 public:
  using S = Cmm::CStringT<T>;
  using Std = std::basic_string<T>;
};
TYPED_TEST_SUITE(CmmStringCore, Widths, WidthNames);

// ---- Layout -------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCore, IsATableOfVirtualsAndAStandardStringAndNothingElse) {
  using S = typename TestFixture::S;
  using Std = typename TestFixture::Std;
  EXPECT_EQ(sizeof(S), sizeof(void*) + sizeof(Std));
  EXPECT_TRUE(std::has_virtual_destructor_v<S>);
  const S s(TX("abc"));
  EXPECT_EQ(reinterpret_cast<const char*>(&s.GetCData()), reinterpret_cast<const char*>(&s) + sizeof(void*));
}

TYPED_TEST(CmmStringCore, DestroysAnHeirThroughABasePointer) {
  static bool destroyed;
  struct Heir : TestFixture::S {
    ~Heir() override { destroyed = true; }
  };
  destroyed = false;
  typename TestFixture::S* s = new Heir;
  delete s;
  EXPECT_TRUE(destroyed);
}

// ---- Construction -------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCore, IsEmptyByDefault) {
  const typename TestFixture::S s;
  EXPECT_EQ(s.GetLength(), 0u);
  EXPECT_EQ(s.IsEmpty(), 1);
  EXPECT_EQ(*s.c_str(), TC(0));
}

TYPED_TEST(CmmStringCore, TakesANullPointerAsEmpty) {
  const typename TestFixture::S s(static_cast<const TypeParam*>(nullptr));
  EXPECT_EQ(s.IsEmpty(), 1);
}

TYPED_TEST(CmmStringCore, TakesATextUpToItsNul) {
  const typename TestFixture::S s(TX("ab\0c"));
  EXPECT_EQ(Text(s), TXS("ab"));
  EXPECT_EQ(s.IsEmpty(), 0);
}

TYPED_TEST(CmmStringCore, TakesExactlyTheCountedUnitsNulsIncluded) {
  using S = typename TestFixture::S;
  EXPECT_EQ(Text(S(TX("ab\0c"), 4)), TXS("ab\0c"));
  EXPECT_EQ(Text(S(TX("abc"), 2)), TXS("ab"));
  EXPECT_EQ(Text(S(TX("abc"), 0)), TXS(""));
}

TYPED_TEST(CmmStringCore, TakesTheFirstUnitsOfAnotherAndNotThoseFromAnOffset) {
  using S = typename TestFixture::S;
  const S other(TX("abcdef"));
  EXPECT_EQ(Text(S(other, 2)), TXS("ab"));
  EXPECT_EQ(Text(S(other, 0)), TXS(""));
  EXPECT_EQ(Text(S(other, 6)), TXS("abcdef"));
}

// The unit behind the text is its terminator, so one too many is still a legal read.
TYPED_TEST(CmmStringCore, DoesNotClampTheCountToTheLengthOfTheOther) {
  using S = typename TestFixture::S;
  const S other(TX("abc"));
  EXPECT_EQ(Text(S(other, 4)), TXS("abc\0"));
}

TYPED_TEST(CmmStringCore, TakesAStandardStringWithItsNuls) {
  using S = typename TestFixture::S;
  EXPECT_EQ(Text(S(TXS("a\0b"))), TXS("a\0b"));
}

TYPED_TEST(CmmStringCore, TakesARangeAndTheNullRange) {
  using S = typename TestFixture::S;
  const S source(TX("abcdef"));
  EXPECT_EQ(Text(S(source.Mid(1, 3))), TXS("bcd"));
  EXPECT_EQ(Text(S(source.Mid(9))), TXS(""));
}

TYPED_TEST(CmmStringCore, CopiesAreIndependent) {
  using S = typename TestFixture::S;
  S a(TX("a text that is too long for the buffer inside the object"));
  S b(a);
  b.SetAt(0, TC('X'));
  EXPECT_EQ(a.GetAt(0), TC('a'));
  EXPECT_NE(a.c_str(), b.c_str());
}

TYPED_TEST(CmmStringCore, MovesTheBufferOfALongText) {
  using S = typename TestFixture::S;
  S a(TX("a text that is too long for the buffer inside the object"));
  const TypeParam* buffer = a.c_str();
  S b(std::move(a));
  EXPECT_EQ(b.c_str(), buffer);
  S c;
  c = std::move(b);
  EXPECT_EQ(c.c_str(), buffer);
  S d;
  d.Assign(std::move(c));
  EXPECT_EQ(d.c_str(), buffer);
}

// ---- Assignment ---------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCore, AssignsFromEverySource) {
  using S = typename TestFixture::S;
  const S other(TXS("o\0r"));
  S s;
  EXPECT_EQ(&(s = other), &s);
  EXPECT_EQ(Text(s), TXS("o\0r"));
  EXPECT_EQ(&(s = S(TX("moved"))), &s);
  EXPECT_EQ(Text(s), TXS("moved"));
  EXPECT_EQ(&(s = TXS("s\0d")), &s);
  EXPECT_EQ(Text(s), TXS("s\0d"));
  EXPECT_EQ(&(s = TX("pointer")), &s);
  EXPECT_EQ(Text(s), TXS("pointer"));
  EXPECT_EQ(&(s = TC('u')), &s);
  EXPECT_EQ(Text(s), TXS("u"));
  EXPECT_EQ(&(s = other.Left(1)), &s);
  EXPECT_EQ(Text(s), TXS("o"));
}

TYPED_TEST(CmmStringCore, AssignTakesTheSameSourcesAndAPointerWithALength) {
  using S = typename TestFixture::S;
  const S other(TXS("o\0r"));
  S s;
  EXPECT_EQ(&s.Assign(other), &s);
  EXPECT_EQ(Text(s), TXS("o\0r"));
  EXPECT_EQ(Text(s.Assign(S(TX("moved")))), TXS("moved"));
  EXPECT_EQ(Text(s.Assign(TXS("s\0d"))), TXS("s\0d"));
  EXPECT_EQ(Text(s.Assign(TX("pointer"))), TXS("pointer"));
  EXPECT_EQ(Text(s.Assign(TC('u'))), TXS("u"));
  EXPECT_EQ(Text(s.Assign(other.Left(1))), TXS("o"));
  EXPECT_EQ(Text(s.Assign(TX("p\0q"), 3)), TXS("p\0q"));
}

TYPED_TEST(CmmStringCore, AssigningANullPointerClears) {
  using S = typename TestFixture::S;
  const TypeParam* null = nullptr;
  S s(TX("abc"));
  s = null;
  EXPECT_EQ(s.IsEmpty(), 1);
  s = TX("abc");
  s.Assign(null);
  EXPECT_EQ(s.IsEmpty(), 1);
  s = TX("abc");
  s = typename S::Range();
  EXPECT_EQ(s.IsEmpty(), 1);
}

TYPED_TEST(CmmStringCore, TakesAPartOfItself) {
  using S = typename TestFixture::S;
  S s(TX("abcdef"));
  s = s.Mid(2, 3);
  EXPECT_EQ(Text(s), TXS("cde"));
  s = s.c_str(1);
  EXPECT_EQ(Text(s), TXS("de"));
  s += s.Left(1);
  EXPECT_EQ(Text(s), TXS("ded"));
  s += s;
  EXPECT_EQ(Text(s), TXS("dedded"));
  const S& itself = s;
  s = itself;
  EXPECT_EQ(Text(s), TXS("dedded"));
}

// ---- Assignment from the other width --------------------------------------------------------------------

TYPED_TEST(CmmStringCore, TakesTheOtherWidthFromEverySource) {
  using S = typename TestFixture::S;
  using Other = typename S::OtherChar;
  const std::basic_string<Other> text(Pick<Other>("text", L"text"));
  S s(TX("old"));
  EXPECT_EQ(&s.AssignOther(text.c_str()), &s);
  EXPECT_EQ(Text(s), TXS("text"));
  s.clear();
  EXPECT_EQ(&s.AssignOther(text), &s);
  EXPECT_EQ(Text(s), TXS("text"));
  s.clear();
  EXPECT_EQ(&s.AssignOther(Cmm::CStringT<Other>(text)), &s);
  EXPECT_EQ(Text(s), TXS("text"));
}

TYPED_TEST(CmmStringCore, TheOtherWidthReplacesALongerText) {
  using S = typename TestFixture::S;
  S s(TX("a text that is longer than the new one"));
  s.AssignOther(Pick<typename S::OtherChar>("new", L"new"));
  EXPECT_EQ(Text(s), TXS("new"));
}

TYPED_TEST(CmmStringCore, AnEmptySourceOfTheOtherWidthLeavesTheTextAsItWas) {
  using S = typename TestFixture::S;
  using Other = typename S::OtherChar;
  S s(TX("kept"));
  EXPECT_EQ(&s.AssignOther(static_cast<const Other*>(nullptr)), &s);
  EXPECT_EQ(Text(s), TXS("kept"));
  s.AssignOther(Pick<Other>("", L""));
  EXPECT_EQ(Text(s), TXS("kept"));
  s.AssignOther(std::basic_string<Other>());
  EXPECT_EQ(Text(s), TXS("kept"));
  s.AssignOther(Cmm::CStringT<Other>());
  EXPECT_EQ(Text(s), TXS("kept"));
}

TEST(CmmStringOtherWidth, ConvertsThroughTheAnsiCodePage) {
  const wchar_t wide[] = L"caf\u00e9 \u4e2d";
  char expected[32] = {};
  WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide, -1, expected, sizeof expected, nullptr, nullptr);
  Cmm::CStringA narrow;
  narrow.AssignOther(wide);
  EXPECT_EQ(Text(narrow), expected);

  wchar_t back[32] = {};
  MultiByteToWideChar(CP_ACP, 0, expected, -1, back, 32);
  Cmm::CStringW again;
  again.AssignOther(narrow);
  EXPECT_EQ(Text(again), back);
}

// ---- Assignment from a variant --------------------------------------------------------------------------

class Variant {
 public:
  explicit Variant(const wchar_t* text) {
    m_value.vt = VT_BSTR;
    m_value.bstrVal = text ? SysAllocString(text) : nullptr;
  }
  explicit Variant(int number) {
    m_value.vt = VT_I4;
    m_value.lVal = number;
  }
  ~Variant() { VariantClear(&m_value); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  const VARIANT& get() const { return m_value; }

 private:
  VARIANT m_value{};
};

TYPED_TEST(CmmStringCore, TakesTheTextOfABstrVariant) {
  typename TestFixture::S s(TX("old"));
  const Variant variant(L"a text");
  EXPECT_EQ(&s.Assign(variant.get(), 0), &s);
  EXPECT_EQ(Text(s), TXS("a text"));
  s = TX("old");
  s.Assign(variant.get(), 1);
  EXPECT_EQ(Text(s), TXS("a text"));
}

TYPED_TEST(CmmStringCore, ANullBstrClears) {
  typename TestFixture::S s(TX("old"));
  s.Assign(Variant(nullptr).get(), 0);
  EXPECT_EQ(s.IsEmpty(), 1);
}

TYPED_TEST(CmmStringCore, AnyOtherVariantEndsEmptyEvenWhenAConversionIsAskedFor) {
  const Variant number(42);
  typename TestFixture::S s(TX("old"));
  s.Assign(number.get(), 0);
  EXPECT_EQ(s.IsEmpty(), 1);
  s = TX("old");
  s.Assign(number.get(), 1);
  EXPECT_EQ(s.IsEmpty(), 1);
  EXPECT_EQ(number.get().vt, VT_I4);
  EXPECT_EQ(number.get().lVal, 42);
}

// ---- Exchange -------------------------------------------------------------------------------------------

template <typename S>
concept SwapsWithItsOwnKind = requires(S& a, S& b) {
  a.swap(b);
}
|| requires(S& a, S& b) {
  a.Swap(b);
};

TYPED_TEST(CmmStringCore, SwapsWithAStandardStringOnly) {
  using S = typename TestFixture::S;
  S s(TX("inner"));
  auto outer = TXS("outer");
  s.Swap(outer);
  EXPECT_EQ(Text(s), TXS("outer"));
  EXPECT_EQ(outer, TXS("inner"));
  s.swap(outer);
  EXPECT_EQ(Text(s), TXS("inner"));
  EXPECT_FALSE(SwapsWithItsOwnKind<S>);
}

// ---- Access ---------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCore, GivesUnitsByValue) {
  using S = typename TestFixture::S;
  S s(TX("abc"));
  EXPECT_EQ(s.GetAt(1), TC('b'));
  EXPECT_EQ(s[2], TC('c'));
  EXPECT_EQ(s[3], TC(0));
  EXPECT_TRUE((std::is_same_v<decltype(s[0]), TypeParam>));
  EXPECT_TRUE((std::is_same_v<decltype(s.GetAt(0)), TypeParam>));
}

TYPED_TEST(CmmStringCore, SetAtBelowTheLengthOnly) {
  typename TestFixture::S s(TX("abc"));
  s.SetAt(2, TC('X'));
  EXPECT_EQ(Text(s), TXS("abX"));
  EXPECT_THROW(s.SetAt(3, TC('X')), std::out_of_range);
  EXPECT_THROW(s.SetAt(s.npos, TC('X')), std::out_of_range);
  EXPECT_EQ(Text(s), TXS("abX"));
}

TYPED_TEST(CmmStringCore, PointsAtTheTextAndIntoIt) {
  typename TestFixture::S s(TX("abc"));
  EXPECT_EQ(s.c_str(), s.data());
  EXPECT_EQ(s.c_str(2), s.data() + 2);
  EXPECT_EQ(*s.c_str(3), TC(0));
}

TYPED_TEST(CmmStringCore, GivesTheInnerStandardString) {
  using S = typename TestFixture::S;
  using Std = typename TestFixture::Std;
  S s(TX("abc"));
  EXPECT_EQ(&s.GetData(), &s.GetCData());
  const Std& converted = s;
  EXPECT_EQ(&converted, &s.GetCData());
  s.GetData().push_back(TC('d'));
  EXPECT_EQ(s.GetLength(), 4u);
}

// ---- Buffers --------------------------------------------------------------------------------------------

TYPED_TEST(CmmStringCore, SetLengthFillsWithNulsAndCuts) {
  typename TestFixture::S s(TX("abc"));
  s.SetLength(5);
  EXPECT_EQ(Text(s), TXS("abc\0\0"));
  s.SetLength(2);
  EXPECT_EQ(Text(s), TXS("ab"));
}

TYPED_TEST(CmmStringCore, GetBufferGivesExactlyTheUnitsAskedFor) {
  typename TestFixture::S s(TX("ab"));
  TypeParam* buffer = s.GetBuffer(4);
  ASSERT_THAT(buffer, NotNull());
  EXPECT_EQ(buffer, s.data());
  EXPECT_EQ(Text(s), TXS("ab\0\0"));
  buffer[2] = TC('c');
  s.ReleaseBuffer();
  EXPECT_EQ(Text(s), TXS("abc"));
}

TYPED_TEST(CmmStringCore, GetBufferBelowTheLengthShortensTheText) {
  typename TestFixture::S s(TX("abcdef"));
  EXPECT_THAT(s.GetBuffer(2), NotNull());
  EXPECT_EQ(Text(s), TXS("ab"));
  s = TX("abcdef");
  EXPECT_THAT(s.GetBufferSetLength(3), NotNull());
  EXPECT_EQ(Text(s), TXS("abc"));
}

TYPED_TEST(CmmStringCore, GetBufferOfNothingIsNullAndEmpties) {
  typename TestFixture::S s(TX("abc"));
  EXPECT_THAT(s.GetBuffer(0), IsNull());
  EXPECT_EQ(s.IsEmpty(), 1);
  s = TX("abc");
  EXPECT_THAT(s.GetBufferSetLength(0), IsNull());
  EXPECT_EQ(s.IsEmpty(), 1);
}

TYPED_TEST(CmmStringCore, GetBufferWithoutALengthIsNullOnlyWhenEmpty) {
  typename TestFixture::S s;
  EXPECT_THAT(s.GetBuffer(), IsNull());
  s = TX("abc");
  EXPECT_EQ(s.GetBuffer(), s.data());
  EXPECT_EQ(Text(s), TXS("abc"));
}

TYPED_TEST(CmmStringCore, ReleaseBufferCutsAtTheFirstNul) {
  typename TestFixture::S s(TXS("ab\0cd"));
  s.ReleaseBuffer();
  EXPECT_EQ(Text(s), TXS("ab"));
  s = TX("whole");
  s.ReleaseBuffer();
  EXPECT_EQ(Text(s), TXS("whole"));
}

}  // namespace
