#include "common/client/utility/src/CmmLineSplit.h"

#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"

namespace {

using Cmm::CStrRangeT;
using Cmm::RANGE;

constexpr size_t kNoLine = static_cast<size_t>(-1);

template <typename T>
class CmmRangeSpliteline : public testing::Test {
 protected:
  using Text = std::basic_string<T>;

  static Text Make(const std::string& ascii) { return Text(ascii.begin(), ascii.end()); }

  struct Split {
    size_t next;
    size_t begin;  // index of the line, kNoLine when `line` was left alone
    size_t length;

    friend bool operator==(const Split&, const Split&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Split& s) {
      return out << "{next " << s.next << ", begin " << s.begin << ", length " << s.length << "}";
    }
  };

  // Only the first `size` units of `ascii` are in the range.
  static Split SplitAt(const std::string& ascii, size_t pos, size_t size) {
    const Text text = Make(ascii);
    CStrRangeT<T> line{nullptr, nullptr};
    const size_t next = cmm_range_spliteline(CStrRangeT<T>{text.data(), text.data() + size}, pos, line);
    if (line.begin == nullptr) return {next, kNoLine, 0};
    return {next, static_cast<size_t>(line.begin - text.data()), line.GetLength()};
  }
  static Split SplitAt(const std::string& ascii, size_t pos) { return SplitAt(ascii, pos, ascii.size()); }
};

using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(CmmRangeSpliteline, Widths);

TYPED_TEST(CmmRangeSpliteline, CutsAtEveryKindOfLineEnd) {
  EXPECT_EQ((typename TestFixture::Split{3, 0, 2}), this->SplitAt("ab\ncd", 0));
  EXPECT_EQ((typename TestFixture::Split{3, 0, 2}), this->SplitAt("ab\rcd", 0));
  EXPECT_EQ((typename TestFixture::Split{4, 0, 2}), this->SplitAt("ab\r\ncd", 0));
  EXPECT_EQ((typename TestFixture::Split{3, 0, 2}), this->SplitAt("ab\n\rcd", 0));
  EXPECT_EQ((typename TestFixture::Split{3, 0, 2}), this->SplitAt("ab\r\rcd", 0));
  EXPECT_EQ((typename TestFixture::Split{5, 3, 2}), this->SplitAt("ab\ncd", 3));
}

TYPED_TEST(CmmRangeSpliteline, GivesEmptyLines) {
  EXPECT_EQ((typename TestFixture::Split{1, 0, 0}), this->SplitAt("\nab", 0));
  EXPECT_EQ((typename TestFixture::Split{2, 0, 0}), this->SplitAt("\r\nab", 0));
  EXPECT_EQ((typename TestFixture::Split{1, 0, 0}), this->SplitAt("\r", 0));
}

TYPED_TEST(CmmRangeSpliteline, EndsTheLastLineAtTheEndOfTheRange) {
  EXPECT_EQ((typename TestFixture::Split{2, 0, 2}), this->SplitAt("ab", 0));
  EXPECT_EQ((typename TestFixture::Split{2, 1, 1}), this->SplitAt("ab", 1));
  EXPECT_EQ((typename TestFixture::Split{2, 0, 2}), this->SplitAt("ab\ncd", 0, 2));
}

TYPED_TEST(CmmRangeSpliteline, DoesNotLookForThePairBehindTheEndOfTheRange) {
  EXPECT_EQ((typename TestFixture::Split{3, 0, 2}), this->SplitAt("ab\r\n", 0, 3));
}

TYPED_TEST(CmmRangeSpliteline, LeavesTheLineAloneAtAndBehindTheEnd) {
  EXPECT_EQ((typename TestFixture::Split{0, kNoLine, 0}), this->SplitAt("ab", 2));
  EXPECT_EQ((typename TestFixture::Split{0, kNoLine, 0}), this->SplitAt("ab", 3));
  EXPECT_EQ((typename TestFixture::Split{0, kNoLine, 0}), this->SplitAt("ab", static_cast<size_t>(-1)));
  EXPECT_EQ((typename TestFixture::Split{0, kNoLine, 0}), this->SplitAt("", 0));
  CStrRangeT<TypeParam> line{nullptr, nullptr};
  EXPECT_EQ(0u, cmm_range_spliteline(CStrRangeT<TypeParam>{}, 0, line));
  EXPECT_EQ(nullptr, line.begin);
}

TYPED_TEST(CmmRangeSpliteline, TakesANulForTheEndOfTextOnlyAtTheBeginningOfALine) {
  EXPECT_EQ((typename TestFixture::Split{0, 0, 0}), this->SplitAt(std::string("\0ab\n", 4), 0));
  EXPECT_EQ((typename TestFixture::Split{2, 2, 0}), this->SplitAt(std::string("a\n\0b", 4), 2));
  EXPECT_EQ((typename TestFixture::Split{4, 0, 3}), this->SplitAt(std::string("a\0b\nc", 5), 0));
  EXPECT_EQ((typename TestFixture::Split{3, 0, 3}), this->SplitAt(std::string("ab\0", 3), 0));
}

TYPED_TEST(CmmRangeSpliteline, LinesAndTheirEndsMakeUpTheWholeText) {
  std::mt19937 random(20240611);
  for (int i = 0; i < 2000; ++i) {
    std::string text;
    for (auto length = random() % 30; length > 0; --length)
      text += "ab\r\n"[random() % 4];

    std::string joined;
    size_t pos = 0;
    while (pos < text.size()) {
      const auto split = this->SplitAt(text, pos);
      ASSERT_EQ(pos, split.begin);
      ASSERT_GT(split.next, pos);
      const std::string line = text.substr(split.begin, split.length);
      EXPECT_EQ(std::string::npos, line.find_first_of("\r\n"));
      const std::string end = text.substr(pos + split.length, split.next - pos - split.length);
      EXPECT_TRUE(end == "\r" || end == "\n" || end == "\r\n" || (end.empty() && split.next == text.size()));
      joined += line + end;
      pos = split.next;
    }
    EXPECT_EQ(text, joined);
  }
}

struct IndexCase {
  const char* name;
  std::string text;
  RANGE range;
  size_t next;
};

TYPED_TEST(CmmRangeSpliteline, IndexFormReturnsTheIndexBehindTheLineAndGivesTheRangeWhole) {
  const IndexCase cases[] = {
      {"LF", "ab\ncd", {0, 5}, 3},
      {"CR", "ab\rcd", {0, 5}, 3},
      {"CR LF", "ab\r\ncd", {0, 6}, 4},
      {"LF CR are two ends", "ab\n\rcd", {0, 6}, 3},
      {"empty line", "\nab", {0, 3}, 1},
      {"a later line", "ab\ncd\nef", {3, 8}, 6},
      {"no end of line", "abcd", {1, 4}, 4},
      {"the range ends before the line", "abcd\n", {0, 3}, 3},
      {"the pair is cut by the range", "ab\r\n", {0, 3}, 3},
      {"a NUL ends the line", std::string("ab\0cd\n", 6), {0, 6}, 2},
      {"a NUL ends the line before its end", std::string("a\0\nb", 4), {0, 4}, 1},
  };
  for (const IndexCase& c : cases) {
    const auto text = TestFixture::Make(c.text);
    RANGE line{-7, -7};
    EXPECT_EQ(c.next, cmm_range_spliteline(text.data(), c.range, line)) << c.name;
    EXPECT_EQ(c.range.begin, line.begin) << c.name;
    EXPECT_EQ(c.range.end, line.end) << c.name;
  }
}

TYPED_TEST(CmmRangeSpliteline, IndexFormLeavesTheLineAloneWhenThereIsNothing) {
  const IndexCase cases[] = {
      {"begin at the end", "ab\n", {2, 2}, 0},
      {"begin behind the end", "ab\n", {3, 2}, 0},
      {"NUL at the beginning", std::string("a\0b\n", 4), {1, 4}, 0},
  };
  for (const IndexCase& c : cases) {
    const auto text = TestFixture::Make(c.text);
    RANGE line{-7, -7};
    EXPECT_EQ(0u, cmm_range_spliteline(text.data(), c.range, line)) << c.name;
    EXPECT_EQ(-7, line.begin) << c.name;
    EXPECT_EQ(-7, line.end) << c.name;
  }
  RANGE line{-7, -7};
  EXPECT_EQ(0u, cmm_range_spliteline(static_cast<const TypeParam*>(nullptr), RANGE{0, 3}, line));
  EXPECT_EQ(-7, line.begin);
}

}  // namespace
