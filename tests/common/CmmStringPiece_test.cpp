#include "common/client/utility/src/CmmStringPiece.h"

#include <cstdint>

#include "gmock/gmock.h"

namespace {

using Cmm::StringPiece;
using testing::IsNull;

constexpr size_t kNpos = StringPiece::npos;
constexpr size_t kCompareCap = 0x6400000;

// A piece of `length` bytes that nobody may read: only operations that leave it alone survive.
StringPiece Unreadable(size_t length) {
  return StringPiece(nullptr, length);
}

// ---- Construction
// -------------------------------------------------------------------------------------------

TEST(StringPieceConstruction, HoldsPointerAndLengthOnly) {
  EXPECT_EQ(sizeof(StringPiece), sizeof(void*) + sizeof(size_t));
}

TEST(StringPieceConstruction, TakesEverySource) {
  const StringPiece none;
  EXPECT_THAT(none.data(), IsNull());
  EXPECT_EQ(none.size(), 0u);
  const StringPiece null(static_cast<const char*>(nullptr));
  EXPECT_THAT(null.data(), IsNull());
  EXPECT_EQ(null.size(), 0u);
  const char* text = "ab\0c";
  EXPECT_EQ(StringPiece(text).data(), text);
  EXPECT_EQ(StringPiece(text).size(), 2u);
  EXPECT_EQ(StringPiece(text, 4).size(), 4u);
  const std::string standard("x\0y", 3);
  EXPECT_EQ(StringPiece(standard).data(), standard.data());
  EXPECT_EQ(StringPiece(standard).size(), 3u);
}

TEST(StringPieceConstruction, SetsFromEverySource) {
  const char* text = "abc";
  StringPiece piece;
  piece.set(text, 2);
  EXPECT_EQ(piece.as_string(), "ab");
  piece.set(text);
  EXPECT_EQ(piece.as_string(), "abc");
  piece.set(static_cast<const void*>(text), 1);
  EXPECT_EQ(piece.as_string(), "a");
  piece.set(static_cast<const char*>(nullptr));
  EXPECT_THAT(piece.data(), IsNull());
  EXPECT_EQ(piece.size(), 0u);
  piece.set(text);
  piece.clear();
  EXPECT_THAT(piece.data(), IsNull());
  EXPECT_TRUE(piece.empty());
}

// ---- Access
// -------------------------------------------------------------------------------------------------

TEST(StringPieceAccess, GivesSizesUnitsAndIterators) {
  StringPiece piece("abcdef");
  EXPECT_EQ(piece.size(), 6u);
  EXPECT_EQ(piece.length(), 6u);
  EXPECT_EQ(piece.max_size(), 6u);
  EXPECT_EQ(piece.capacity(), 6u);
  EXPECT_FALSE(piece.empty());
  EXPECT_EQ(piece[2], 'c');
  EXPECT_EQ(std::string(piece.begin(), piece.end()), "abcdef");
  EXPECT_EQ(std::string(piece.rbegin(), piece.rend()), "fedcba");
  piece.remove_prefix(2);
  EXPECT_EQ(piece.as_string(), "cdef");
  piece.remove_suffix(3);
  EXPECT_EQ(piece.as_string(), "c");
}

// ---- Comparison
// ---------------------------------------------------------------------------------------------

TEST(StringPieceCompare, OrdersByUnsignedBytesThenByLength) {
  EXPECT_EQ(StringPiece("abc").compare("abc"), 0);
  EXPECT_EQ(StringPiece("abc").compare("abd"), -1);
  EXPECT_EQ(StringPiece("b").compare("abc"), 1);
  EXPECT_EQ(StringPiece("ab").compare("abc"), -1);
  EXPECT_EQ(StringPiece("abc").compare("ab"), 1);
  EXPECT_EQ(StringPiece("\xff").compare("a"), 1);
  EXPECT_EQ(StringPiece("a\0b", 3).compare(StringPiece("a\0c", 3)), -1);
  EXPECT_EQ(StringPiece().compare(StringPiece()), 0);
  EXPECT_EQ(StringPiece().compare("a"), -1);
  EXPECT_EQ(StringPiece("a").compare(StringPiece()), 1);
}

TEST(StringPieceCompare, TheByteComparisonAnswersEqualForNullAndNothing) {
  EXPECT_LT(StringPiece::wordmemcmp("a", "b", 1), 0);
  EXPECT_GT(StringPiece::wordmemcmp("\xff", "a", 1), 0);
  EXPECT_EQ(StringPiece::wordmemcmp("ab", "ac", 1), 0);
  EXPECT_EQ(StringPiece::wordmemcmp("a", "b", 0), 0);
  EXPECT_EQ(StringPiece::wordmemcmp(nullptr, "b", 1), 0);
  EXPECT_EQ(StringPiece::wordmemcmp("a", nullptr, 1), 0);
}

TEST(StringPieceCompare, TheByteComparisonAnswersEqualAboveItsCap) {
  std::string a(kCompareCap + 1, 'x');
  std::string b = a;
  b[0] = 'y';
  EXPECT_LT(StringPiece::wordmemcmp(a.data(), b.data(), kCompareCap), 0);
  EXPECT_EQ(StringPiece::wordmemcmp(a.data(), b.data(), kCompareCap + 1), 0);
  EXPECT_EQ(StringPiece(a).compare(b), 0);
  EXPECT_TRUE(StringPiece(a).starts_with(b));
  EXPECT_TRUE(StringPiece(a).ends_with(b));
  b.pop_back();
  EXPECT_EQ(StringPiece(a).compare(b), -1);
  EXPECT_FALSE(StringPiece(a).starts_with(b));
  b.append("zz");
  EXPECT_EQ(StringPiece(a).compare(b), -1);  // equal as far as the cap lets it see, and shorter
  EXPECT_FALSE(StringPiece(a).starts_with(b));
}

TEST(StringPieceCompare, BeginningsAndEnds) {
  const StringPiece piece("abcdef");
  EXPECT_TRUE(piece.starts_with("abc"));
  EXPECT_FALSE(piece.starts_with("abd"));
  EXPECT_TRUE(piece.ends_with("def"));
  EXPECT_FALSE(piece.ends_with("dex"));
  EXPECT_TRUE(piece.starts_with("abcdef"));
  EXPECT_TRUE(piece.ends_with("abcdef"));
  EXPECT_FALSE(piece.starts_with("abcdefg"));
  EXPECT_FALSE(piece.ends_with("xabcdef"));
  EXPECT_TRUE(piece.starts_with(""));
  EXPECT_TRUE(piece.ends_with(StringPiece()));
  EXPECT_TRUE(StringPiece().starts_with(StringPiece()));
  EXPECT_FALSE(StringPiece().ends_with("a"));
}

TEST(StringPieceCompare, ANullPointerCountsAsEqualIfTheLengthsAllow) {
  EXPECT_TRUE(StringPiece("abc").starts_with(Unreadable(3)));
  EXPECT_TRUE(StringPiece("abc").ends_with(Unreadable(2)));
  EXPECT_FALSE(StringPiece("abc").starts_with(Unreadable(4)));
  EXPECT_EQ(StringPiece("abc").compare(Unreadable(3)), 0);
  EXPECT_EQ(StringPiece("abc").compare(Unreadable(4)), -1);
}

// ---- Search
// -------------------------------------------------------------------------------------------------

TEST(StringPieceFind, FindsPiecesAndBytesForward) {
  const StringPiece piece("abcabc");
  EXPECT_EQ(piece.find("bc"), 1u);
  EXPECT_EQ(piece.find("bc", 2), 4u);
  EXPECT_EQ(piece.find("bc", 5), kNpos);
  EXPECT_EQ(piece.find("bcx"), kNpos);
  EXPECT_EQ(piece.find("abcabcd"), kNpos);
  EXPECT_EQ(piece.find('c'), 2u);
  EXPECT_EQ(piece.find('c', 3), 5u);
  EXPECT_EQ(piece.find('c', 6), kNpos);
  EXPECT_EQ(piece.find('x'), kNpos);
  EXPECT_EQ(StringPiece("a\0b", 3).find(StringPiece("\0b", 2)), 1u);
}

TEST(StringPieceFind, AnEmptyNeedleIsFoundAtEveryValidPosition) {
  const StringPiece piece("abc");
  EXPECT_EQ(piece.find("", 0), 0u);
  EXPECT_EQ(piece.find("", 3), 3u);
  EXPECT_EQ(piece.find("", 4), kNpos);
  EXPECT_EQ(piece.find("a", 4), kNpos);
  EXPECT_EQ(StringPiece().find(""), 0u);
  EXPECT_EQ(StringPiece().find("", 1), kNpos);
}

TEST(StringPieceFind, FindsPiecesAndBytesBackward) {
  const StringPiece piece("abcabc");
  EXPECT_EQ(piece.rfind("bc"), 4u);
  EXPECT_EQ(piece.rfind("bc", 4), 4u);
  EXPECT_EQ(piece.rfind("bc", 3), 1u);
  EXPECT_EQ(piece.rfind("bc", 0), kNpos);
  EXPECT_EQ(piece.rfind("abcabcd"), kNpos);
  EXPECT_EQ(piece.rfind('a'), 3u);
  EXPECT_EQ(piece.rfind('a', 2), 0u);
  EXPECT_EQ(piece.rfind('x'), kNpos);
  EXPECT_EQ(StringPiece().rfind('a'), kNpos);
  EXPECT_EQ(StringPiece().rfind("a"), kNpos);
}

TEST(StringPieceFind, AnEmptyNeedleIsFoundBackwardAtTheSmallerOfPositionAndSize) {
  const StringPiece piece("abc");
  EXPECT_EQ(piece.rfind(""), 3u);
  EXPECT_EQ(piece.rfind("", 2), 2u);
  EXPECT_EQ(piece.rfind("", 9), 3u);
  EXPECT_EQ(StringPiece().rfind(""), 0u);
}

TEST(StringPieceFind, FirstOfASet) {
  const StringPiece piece(
      "ab\xff"
      "ab");
  EXPECT_EQ(piece.find_first_of("xb"), 1u);
  EXPECT_EQ(piece.find_first_of("xb", 2), 4u);
  EXPECT_EQ(piece.find_first_of("\xff\xfe"), 2u);
  EXPECT_EQ(piece.find_first_of("xyz"), kNpos);
  EXPECT_EQ(piece.find_first_of("ab", 5), kNpos);
  EXPECT_EQ(piece.find_first_of("ab", kNpos), kNpos);
  EXPECT_EQ(piece.find_first_of("b"), 1u);
  EXPECT_EQ(piece.find_first_of('b', 2), 4u);
  EXPECT_EQ(piece.find_first_of(""), kNpos);
  EXPECT_EQ(StringPiece().find_first_of("ab"), kNpos);
  EXPECT_EQ(StringPiece("a\0", 2).find_first_of(StringPiece("\0x", 2)), 1u);
}

TEST(StringPieceFind, FirstNotOfASet) {
  const StringPiece piece("abcab");
  EXPECT_EQ(piece.find_first_not_of("ab"), 2u);
  EXPECT_EQ(piece.find_first_not_of("ab", 3), kNpos);
  EXPECT_EQ(piece.find_first_not_of("ab", 9), kNpos);
  EXPECT_EQ(piece.find_first_not_of("a"), 1u);
  EXPECT_EQ(piece.find_first_not_of('a', 3), 4u);
  EXPECT_EQ(StringPiece("aaa").find_first_not_of('a'), kNpos);
  EXPECT_EQ(StringPiece().find_first_not_of("ab"), kNpos);
  EXPECT_EQ(StringPiece().find_first_not_of('a'), kNpos);
}

TEST(StringPieceFind, FirstNotOfAnEmptySetIsZeroWhateverThePosition) {
  EXPECT_EQ(StringPiece("abc").find_first_not_of("", 0), 0u);
  EXPECT_EQ(StringPiece("abc").find_first_not_of("", 2), 0u);
  EXPECT_EQ(StringPiece("abc").find_first_not_of("", 99), 0u);
  EXPECT_EQ(StringPiece().find_first_not_of("", 0), kNpos);
}

TEST(StringPieceFind, LastOfASet) {
  const StringPiece piece("abcab");
  EXPECT_EQ(piece.find_last_of("xb"), 4u);
  EXPECT_EQ(piece.find_last_of("xb", 3), 1u);
  EXPECT_EQ(piece.find_last_of("xb", 0), kNpos);
  EXPECT_EQ(piece.find_last_of("ax", 0), 0u);
  EXPECT_EQ(piece.find_last_of("c"), 2u);
  EXPECT_EQ(piece.find_last_of('c', 1), kNpos);
  EXPECT_EQ(piece.find_last_of(""), kNpos);
  EXPECT_EQ(piece.find_last_of("xyz"), kNpos);
  EXPECT_EQ(StringPiece().find_last_of("ab"), kNpos);
  EXPECT_EQ(StringPiece().find_last_of('a'), kNpos);
}

TEST(StringPieceFind, LastNotOfASet) {
  const StringPiece piece("abcab");
  EXPECT_EQ(piece.find_last_not_of("ab"), 2u);
  EXPECT_EQ(piece.find_last_not_of("ab", 1), kNpos);
  EXPECT_EQ(piece.find_last_not_of("b"), 3u);
  EXPECT_EQ(piece.find_last_not_of('b', 1), 0u);
  EXPECT_EQ(piece.find_last_not_of(""), 4u);
  EXPECT_EQ(piece.find_last_not_of("", 1), 1u);
  EXPECT_EQ(StringPiece("aaa").find_last_not_of('a'), kNpos);
  EXPECT_EQ(StringPiece().find_last_not_of("ab"), kNpos);
  EXPECT_EQ(StringPiece().find_last_not_of(""), kNpos);
}

// ---- Copies and parts
// ---------------------------------------------------------------------------------------

TEST(StringPieceCopy, SubstrClampsBothAndPointsIntoTheSource) {
  const StringPiece piece("abcdef");
  EXPECT_EQ(piece.substr(2, 3).as_string(), "cde");
  EXPECT_EQ(piece.substr(2, 3).data(), piece.data() + 2);
  EXPECT_EQ(piece.substr(4).as_string(), "ef");
  EXPECT_EQ(piece.substr(4, 99).as_string(), "ef");
  EXPECT_TRUE(piece.substr(6, 1).empty());
  EXPECT_TRUE(piece.substr(99, 1).empty());
  EXPECT_EQ(piece.substr(99).data(), piece.data() + 6);
  EXPECT_TRUE(StringPiece().substr(1, 1).empty());
}

TEST(StringPieceCopy, CopiesIntoStrings) {
  const StringPiece piece("a\0b", 3);
  EXPECT_EQ(piece.as_string(), std::string("a\0b", 3));
  std::string target("old");
  piece.AppendToString(&target);
  EXPECT_EQ(target, std::string("olda\0b", 6));
  piece.CopyToString(&target);
  EXPECT_EQ(target, std::string("a\0b", 3));
}

TEST(StringPieceCopy, AnEmptyPieceIsCopiedWithoutTouchingItsPointer) {
  const StringPiece bad(reinterpret_cast<const char*>(std::uintptr_t{1}), 0);
  std::string target("old");
  bad.AppendToString(&target);
  EXPECT_EQ(target, "old");
  bad.CopyToString(&target);
  EXPECT_EQ(target, "");
  EXPECT_EQ(bad.as_string(), "");
  char buffer[1] = {'#'};
  EXPECT_EQ(bad.copy(buffer, 1), 0u);
  EXPECT_EQ(buffer[0], '#');
}

TEST(StringPieceCopy, CopiesIntoABufferWithoutATerminator) {
  const StringPiece piece("abcdef");
  char buffer[9] = "########";
  EXPECT_EQ(piece.copy(buffer, 3), 3u);
  EXPECT_STREQ(buffer, "abc#####");
  EXPECT_EQ(piece.copy(buffer, 99, 4), 2u);
  EXPECT_STREQ(buffer, "efc#####");
  EXPECT_EQ(piece.copy(buffer, 9, 6), 0u);
  EXPECT_EQ(piece.copy(buffer, 9, 7), 0u);
  EXPECT_EQ(piece.copy(buffer, 0), 0u);
  EXPECT_STREQ(buffer, "efc#####");
}

}  // namespace
