#include "common/client/utility/src/CmmLogFilter.h"

#include <cstddef>
#include <utility>

#include "gtest/gtest.h"

namespace {

using logging::LogFilterItem_s;

LogFilterItem_s Rule() {
  LogFilterItem_s rule;
  rule.file_prefix = L"client_";
  rule.file_suffix = L".log";
  rule.max_total_bytes = 1000;
  rule.max_file_count = 3;
  return rule;
}

void ExpectIsRule(const LogFilterItem_s& rule) {
  EXPECT_STREQ(rule.file_prefix.c_str(), L"client_");
  EXPECT_STREQ(rule.file_suffix.c_str(), L".log");
  EXPECT_EQ(rule.max_total_bytes, 1000);
  EXPECT_EQ(rule.max_file_count, 3u);
}

TEST(LogFilterItem, StartsEmptyAndInvalid) {
  const LogFilterItem_s rule;
  EXPECT_TRUE(rule.file_prefix.empty());
  EXPECT_TRUE(rule.file_suffix.empty());
  EXPECT_EQ(rule.max_total_bytes, 0);
  EXPECT_EQ(rule.max_file_count, 0u);
  EXPECT_FALSE(rule.IsValid());
}

TEST(LogFilterItem, NeedsAPrefixAndBothLimitsToBeValid) {
  EXPECT_TRUE(Rule().IsValid());
  LogFilterItem_s rule = Rule();
  rule.file_suffix.clear();
  EXPECT_TRUE(rule.IsValid());
  rule.file_prefix.clear();
  EXPECT_FALSE(rule.IsValid());
  rule = Rule();
  rule.max_total_bytes = 0;
  EXPECT_FALSE(rule.IsValid());
  rule.max_total_bytes = -1;
  EXPECT_FALSE(rule.IsValid());
  rule = Rule();
  rule.max_file_count = 0;
  EXPECT_FALSE(rule.IsValid());
}

TEST(LogFilterItem, ResetEmptiesIt) {
  LogFilterItem_s rule = Rule();
  rule.Reset();
  EXPECT_TRUE(rule.file_prefix.empty());
  EXPECT_TRUE(rule.file_suffix.empty());
  EXPECT_EQ(rule.max_total_bytes, 0);
  EXPECT_EQ(rule.max_file_count, 0u);
}

TEST(LogFilterItem, IsCopiedAndMoved) {
  LogFilterItem_s rule = Rule();
  LogFilterItem_s copy(rule);
  ExpectIsRule(copy);
  ExpectIsRule(rule);
  LogFilterItem_s moved(std::move(copy));
  ExpectIsRule(moved);
  LogFilterItem_s assigned;
  assigned = rule;
  ExpectIsRule(assigned);
  LogFilterItem_s moveAssigned;
  moveAssigned = std::move(moved);
  ExpectIsRule(moveAssigned);
}

}  // namespace
