#include "common/client/utility/src/CmmMemory.h"

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "gtest/gtest.h"

namespace Cmm {
namespace {

constexpr int kUntouched = 77;

struct CompareCase {
  const char* name;
  std::string a;
  std::string b;
  size_t count;
  int expected;
};

TEST(CmmMemcmpS, OrdersByUnsignedBytesAndAnswersMinusOneZeroOrOne) {
  const CompareCase cases[] = {
      {"equal", "abc", "abc", 3, 0},
      {"less", "abc", "abz", 3, -1},
      {"greater", "abz", "abc", 3, 1},
      {"a byte above 0x7F is greater", "\x80", "\x7F", 1, 1},
      {"a byte below 0x80 is less", "\x01", "\xFF", 1, -1},
      {"the difference lies behind count", "abc", "abz", 2, 0},
      {"a zero byte ends nothing", std::string("a\0b", 3), std::string("a\0c", 3), 3, -1},
  };
  for (const CompareCase& c : cases) {
    int result = kUntouched;
    EXPECT_EQ(kMemoryDone, cmm_memcmp_s(c.a.data(), c.a.size(), c.b.data(), c.count, &result)) << c.name;
    EXPECT_EQ(c.expected, result) << c.name;
  }
}

TEST(CmmMemcmpS, AnswersTheErrorCodeAndLeavesTheResultAlone) {
  const char a[] = "abc";
  const char b[] = "abd";
  struct {
    const char* name;
    const void* a;
    size_t aSize;
    const void* b;
    size_t count;
    int expected;
  } const cases[] = {
      {"null a", nullptr, 3, b, 3, 400},
      {"null b", a, 3, nullptr, 3, 400},
      {"null pointer before zero size", nullptr, 0, b, 0, 400},
      {"size of a is zero", a, 0, b, 1, 402},
      {"count is zero", a, 3, b, 0, 402},
      {"count above the size of a", a, 3, b, 4, 402},
      {"count above the size of a and above the limit", a, 3, b, kMaxCheckedMemory + 1, 402},
      {"size of a above the limit", a, kMaxCheckedMemory + 1, b, 1, 403},
  };
  for (const auto& c : cases) {
    int result = kUntouched;
    EXPECT_EQ(c.expected, cmm_memcmp_s(c.a, c.aSize, c.b, c.count, &result)) << c.name;
    EXPECT_EQ(kUntouched, result) << c.name;
  }
  EXPECT_EQ(400, cmm_memcmp_s(a, 3, b, 3, nullptr));
}

TEST(CmmMemcmpS, AcceptsASizeOfExactlyTheLimit) {
  const char a[] = "abc";
  int result = kUntouched;
  EXPECT_EQ(0, cmm_memcmp_s(a, kMaxCheckedMemory, "abc", 3, &result));
  EXPECT_EQ(0, result);
}

TEST(CmmMemsetS, FillsCountBytesAndNoMore) {
  std::array<char, 4> bytes = {'a', 'b', 'c', 'd'};
  EXPECT_EQ(0, cmm_memset_s(bytes.data(), bytes.size(), 'x', 3));
  EXPECT_EQ((std::array<char, 4>{'x', 'x', 'x', 'd'}), bytes);
}

TEST(CmmMemsetS, TakesTheLowByteOfTheValue) {
  char byte = 'a';
  EXPECT_EQ(0, cmm_memset_s(&byte, 1, 0x1241, 1));
  EXPECT_EQ(0x41, byte);
}

TEST(CmmMemsetS, AnswersZeroForAZeroSizeEvenWithANullPointer) {
  EXPECT_EQ(0, cmm_memset_s(nullptr, 0, 0, 5));
  EXPECT_EQ(0, cmm_memset_s(nullptr, 5, 0, 0));
  EXPECT_EQ(0, cmm_memset_s(nullptr, kMaxCheckedMemory + 1, 0, 0));
}

TEST(CmmMemsetS, AnswersTheErrorCodeAndFillsNothing) {
  char bytes[] = "abc";
  EXPECT_EQ(400, cmm_memset_s(nullptr, 3, 0, 3));
  EXPECT_EQ(403, cmm_memset_s(bytes, kMaxCheckedMemory + 1, 0, 1));
  EXPECT_EQ(403, cmm_memset_s(bytes, 3, 0, kMaxCheckedMemory + 1));
  EXPECT_STREQ("abc", bytes);
}

TEST(CmmMemsetS, FillsTheWholeDestinationAndReportsACountAboveItsSize) {
  char bytes[] = "abcd";
  EXPECT_EQ(406, cmm_memset_s(bytes, 3, 'x', 4));
  EXPECT_STREQ("xxxd", bytes);
  EXPECT_EQ(406, cmm_memset_s(bytes, 3, 'y', kMaxCheckedMemory));
  EXPECT_STREQ("yyyd", bytes);
}

TEST(CmmMemsetS, FillsASizeOfExactlyTheLimit) {
  std::vector<char> bytes(kMaxCheckedMemory, 'a');
  EXPECT_EQ(0, cmm_memset_s(bytes.data(), bytes.size(), 'z', bytes.size()));
  EXPECT_EQ('z', bytes.front());
  EXPECT_EQ('z', bytes.back());
}

TEST(CmmHeap, GivesGrowsAndTakesBackMemory) {
  auto* block = static_cast<char*>(cmm_mem_alloc(4));
  ASSERT_NE(nullptr, block);
  std::memcpy(block, "abc", 4);
  block = static_cast<char*>(cmm_mem_realloc(block, 4096));
  ASSERT_NE(nullptr, block);
  EXPECT_STREQ("abc", block);
  cmm_mem_free(block);
  cmm_mem_free(nullptr);
}

}  // namespace
}  // namespace Cmm
