// The standard vocabulary: which overloads there are, and where it differs from the standard string. That
// it computes the same is the business of the differential test.

#include <stdexcept>
#include <type_traits>

#include "tests/common/CmmStringTesting.h"

namespace {

using namespace cmm_string_testing;

template <typename T>
class CmmStringStd : public testing::Test {
 public:
  using S = Cmm::CStringT<T>;
  using Std = std::basic_string<T>;
};
TYPED_TEST_SUITE(CmmStringStd, Widths, WidthNames);

TYPED_TEST(CmmStringStd, WhatChangesTheTextGivesTheInnerStringAndNotThisObject) {
  using S = typename TestFixture::S;
  S s(TX("abc"));
  const auto* inner = &s.GetCData();
  EXPECT_EQ(&s.append(TX("d")), inner);
  EXPECT_EQ(&s.assign(TX("abc")), inner);
  EXPECT_EQ(&s.insert(0, TX("x")), inner);
  EXPECT_EQ(&s.erase(0, 1), inner);
  EXPECT_EQ(&s.replace(0, 1, TX("y")), inner);
  EXPECT_TRUE((std::is_same_v<decltype(s.append(TX("d"))), typename TestFixture::Std&>));
}

TYPED_TEST(CmmStringStd, SubstrIsAStandardString) {
  const typename TestFixture::S s(TX("abcdef"));
  EXPECT_TRUE((std::is_same_v<decltype(s.substr(1, 2)), typename TestFixture::Std>));
  EXPECT_EQ(s.substr(1, 2), TXS("bc"));
  EXPECT_EQ(s.substr(4), TXS("ef"));
  EXPECT_EQ(s.substr(6), TXS(""));
  EXPECT_EQ(s.substr(), TXS("abcdef"));
}

TYPED_TEST(CmmStringStd, NotFoundIsAllOnes) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  EXPECT_EQ(s.find(TX("x")), ~size_t{0});
  EXPECT_EQ(S::npos, ~size_t{0});
}

TYPED_TEST(CmmStringStd, APositionBeyondTheLengthRaisesTheStandardException) {
  using S = typename TestFixture::S;
  S s(TX("abc"));
  const S& constant = s;
  EXPECT_THROW(s.at(3), std::out_of_range);
  EXPECT_THROW(constant.at(3), std::out_of_range);
  EXPECT_THROW(s.erase(4, 1), std::out_of_range);
  EXPECT_THROW(s.substr(4), std::out_of_range);
  EXPECT_THROW(s.insert(4, TX("x")), std::out_of_range);
  EXPECT_THROW(s.replace(4, 1, TX("x")), std::out_of_range);
  EXPECT_THROW(s.append(TXS("x"), 2, 1), std::out_of_range);
  EXPECT_THROW(s.compare(4, 1, TX("x")), std::out_of_range);
  EXPECT_THROW(s.compare(0, 1, S(TX("x")), 2, 1), std::out_of_range);
  EXPECT_THROW(s.reserve(s.npos), std::length_error);
  EXPECT_EQ(Text(s), TXS("abc"));
}

TYPED_TEST(CmmStringStd, TheExceptionCarriesTheStandardStringsMessage) {
  typename TestFixture::S s(TX("abc"));
  auto standard = TXS("abc");
  std::string ours, theirs;
  try {
    s.at(9);
  } catch (const std::out_of_range& e) {
    ours = e.what();
  }
  try {
    standard.at(9);
  } catch (const std::out_of_range& e) {
    theirs = e.what();
  }
  EXPECT_EQ(ours, theirs);
  EXPECT_NE(ours, "");
}

TYPED_TEST(CmmStringStd, EveryAppendAndAssign) {
  using S = typename TestFixture::S;
  const S other(TX("other"));
  const auto standard = TXS("standard");
  S s;
  s.append(other);
  s.append(other, 1, 2);
  s.append(standard);
  s.append(standard, 5);
  s.append(TX("pointer"));
  s.append(TX("counted"), 2);
  s.append(3, TC('x'));
  s.append({TC('l'), TC('i')});
  s.append(standard.begin(), standard.begin() + 2);
  EXPECT_EQ(Text(s), TXS("otherthstandardardpointercoxxxlist"));
  EXPECT_EQ(s.assign(other), TXS("other"));
  EXPECT_EQ(s.assign(other, 1, 2), TXS("th"));
  EXPECT_EQ(s.assign(standard), TXS("standard"));
  EXPECT_EQ(s.assign(standard, 5), TXS("ard"));
  EXPECT_EQ(s.assign(TX("pointer")), TXS("pointer"));
  EXPECT_EQ(s.assign(TX("counted"), 2), TXS("co"));
  EXPECT_EQ(s.assign(3, TC('x')), TXS("xxx"));
  EXPECT_EQ(s.assign({TC('l'), TC('i')}), TXS("li"));
  EXPECT_EQ(s.assign(standard.begin(), standard.begin() + 2), TXS("st"));
}

TYPED_TEST(CmmStringStd, EveryInsertEraseAndReplace) {
  using S = typename TestFixture::S;
  const S other(TX("other"));
  const auto standard = TXS("standard");
  S s(TX("[]"));
  EXPECT_EQ(s.insert(1, other), TXS("[other]"));
  EXPECT_EQ(s.insert(1, other, 0, 1), TXS("[oother]"));
  EXPECT_EQ(s.insert(1, standard, 6), TXS("[rdoother]"));
  EXPECT_EQ(s.insert(1, TX("ab"), 1), TXS("[ardoother]"));
  EXPECT_EQ(s.insert(1, 2, TC('-')), TXS("[--ardoother]"));
  EXPECT_EQ(*s.insert(s.cbegin(), TC('<')), TC('<'));
  EXPECT_EQ(*s.insert(s.cbegin(), 2, TC('!')), TC('!'));
  EXPECT_EQ(*s.insert(s.cend(), {TC('>'), TC('>')}), TC('>'));
  EXPECT_EQ(*s.insert(s.cbegin(), standard.begin(), standard.begin() + 1), TC('s'));
  EXPECT_EQ(Text(s), TXS("s!!<[--ardoother]>>"));
  EXPECT_EQ(*s.erase(s.cbegin()), TC('!'));
  EXPECT_EQ(*s.erase(s.cbegin(), s.cbegin() + 2), TC('<'));
  EXPECT_EQ(s.erase(2), TXS("<["));
  EXPECT_EQ(s.erase(), TXS(""));

  s = TX("0123456789");
  EXPECT_EQ(s.replace(0, 1, other), TXS("other123456789"));
  EXPECT_EQ(s.replace(0, 5, other, 4, 1), TXS("r123456789"));
  EXPECT_EQ(s.replace(0, 1, standard, 6), TXS("rd123456789"));
  EXPECT_EQ(s.replace(0, 2, TX("")), TXS("123456789"));
  EXPECT_EQ(s.replace(0, 1, TX("ab"), 1), TXS("a23456789"));
  EXPECT_EQ(s.replace(0, 1, 2, TC('-')), TXS("--23456789"));
  EXPECT_EQ(s.replace(s.cbegin(), s.cbegin() + 2, other), TXS("other23456789"));
  EXPECT_EQ(s.replace(s.cbegin(), s.cbegin() + 5, standard), TXS("standard23456789"));
  EXPECT_EQ(s.replace(s.cbegin(), s.cbegin() + 8, TX("p")), TXS("p23456789"));
  EXPECT_EQ(s.replace(s.cbegin(), s.cbegin() + 1, TX("pq"), 2), TXS("pq23456789"));
  EXPECT_EQ(s.replace(s.cbegin(), s.cbegin() + 2, 1, TC('u')), TXS("u23456789"));
}

TYPED_TEST(CmmStringStd, EveryCompare) {
  using S = typename TestFixture::S;
  const S s(TX("abc"));
  const S other(TX("xbcx"));
  const auto standard = TXS("xbcx");
  EXPECT_LT(s.compare(other), 0);
  EXPECT_EQ(s.compare(1, 2, S(TX("bc"))), 0);
  EXPECT_EQ(s.compare(1, 2, other, 1, 2), 0);
  EXPECT_LT(s.compare(1, 2, other, 1), 0);
  EXPECT_LT(s.compare(standard), 0);
  EXPECT_EQ(s.compare(1, 2, TXS("bc")), 0);
  EXPECT_EQ(s.compare(1, 2, standard, 1, 2), 0);
  EXPECT_LT(s.compare(1, 2, standard, 1), 0);
  EXPECT_EQ(s.compare(TX("abc")), 0);
  EXPECT_EQ(s.compare(1, 2, TX("bc")), 0);
  EXPECT_EQ(s.compare(1, 2, TX("bcd"), 2), 0);
  EXPECT_GT(S(TXS("a\0b")).compare(TX("a")), 0);
}

TYPED_TEST(CmmStringStd, EverySearch) {
  using S = typename TestFixture::S;
  const S s(TX("abcabc"));
  const S bc(TX("bc"));
  const auto standard = TXS("bc");
  EXPECT_EQ(s.find(bc), 1u);
  EXPECT_EQ(s.find(standard, 2), 4u);
  EXPECT_EQ(s.find(TX("bc"), 2), 4u);
  EXPECT_EQ(s.find(TX("bX"), 0, 1), 1u);
  EXPECT_EQ(s.find(TC('c')), 2u);
  EXPECT_EQ(s.rfind(bc), 4u);
  EXPECT_EQ(s.rfind(standard, 3), 1u);
  EXPECT_EQ(s.rfind(TX("bc")), 4u);
  EXPECT_EQ(s.rfind(TX("bX"), 3, 1), 1u);
  EXPECT_EQ(s.rfind(TC('a')), 3u);
  EXPECT_EQ(s.find_first_of(bc), 1u);
  EXPECT_EQ(s.find_first_of(standard, 3), 4u);
  EXPECT_EQ(s.find_first_of(TX("c")), 2u);
  EXPECT_EQ(s.find_first_of(TX("cb"), 0, 1), 2u);
  EXPECT_EQ(s.find_first_of(TC('b')), 1u);
  EXPECT_EQ(s.find_last_of(bc), 5u);
  EXPECT_EQ(s.find_last_of(standard, 4), 4u);
  EXPECT_EQ(s.find_last_of(TX("a")), 3u);
  EXPECT_EQ(s.find_last_of(TX("ab"), 5, 1), 3u);
  EXPECT_EQ(s.find_last_of(TC('b')), 4u);
  EXPECT_EQ(s.find_first_not_of(bc), 0u);
  EXPECT_EQ(s.find_first_not_of(standard, 1), 3u);
  EXPECT_EQ(s.find_first_not_of(TX("ab")), 2u);
  EXPECT_EQ(s.find_first_not_of(TX("ab"), 0, 1), 1u);
  EXPECT_EQ(s.find_first_not_of(TC('a')), 1u);
  EXPECT_EQ(s.find_last_not_of(bc), 3u);
  EXPECT_EQ(s.find_last_not_of(standard, 2), 0u);
  EXPECT_EQ(s.find_last_not_of(TX("c")), 4u);
  EXPECT_EQ(s.find_last_not_of(TX("cb"), 5, 1), 4u);
  EXPECT_EQ(s.find_last_not_of(TC('c')), 4u);
}

TYPED_TEST(CmmStringStd, EveryIterator) {
  using S = typename TestFixture::S;
  using Std = typename TestFixture::Std;
  S s(TX("abc"));
  const S& constant = s;
  EXPECT_EQ(Std(s.begin(), s.end()), TXS("abc"));
  EXPECT_EQ(Std(constant.begin(), constant.end()), TXS("abc"));
  EXPECT_EQ(Std(s.cbegin(), s.cend()), TXS("abc"));
  EXPECT_EQ(Std(s.rbegin(), s.rend()), TXS("cba"));
  EXPECT_EQ(Std(constant.rbegin(), constant.rend()), TXS("cba"));
  EXPECT_EQ(Std(s.crbegin(), s.crend()), TXS("cba"));
  *s.begin() = TC('X');
  *s.rbegin() = TC('Z');
  EXPECT_EQ(Text(s), TXS("XbZ"));
  for (TypeParam& unit : s)
    unit = TC('q');
  EXPECT_EQ(Text(s), TXS("qqq"));
}

TYPED_TEST(CmmStringStd, SizesAndStorage) {
  using S = typename TestFixture::S;
  S s;
  EXPECT_TRUE(s.empty());
  EXPECT_EQ(s.capacity(), typename TestFixture::Std().capacity());
  s.reserve(100);
  EXPECT_GE(s.capacity(), 100u);
  s.resize(2, TC('x'));
  s.resize(3);
  EXPECT_EQ(Text(s), TXS("xx\0"));
  EXPECT_EQ(s.size(), 3u);
  EXPECT_EQ(s.length(), 3u);
  s.push_back(TC('y'));
  EXPECT_EQ(s.at(3), TC('y'));
  s.at(3) = TC('z');
  s.data()[0] = TC('w');
  EXPECT_EQ(Text(s), TXS("wx\0z"));
  s.clear();
  EXPECT_TRUE(s.empty());
}

}  // namespace
