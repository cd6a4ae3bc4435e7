#include "common/client/utility/src/CmmLogBucket.h"

#include "gmock/gmock.h"

namespace logging::internal {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

LogFilterItem_s Rule(const wchar_t* prefix, const wchar_t* suffix, int64_t bytes = 1000,
                     uint64_t count = 10) {
  LogFilterItem_s rule;
  rule.file_prefix = prefix;
  rule.file_suffix = suffix;
  rule.max_total_bytes = bytes;
  rule.max_file_count = count;
  return rule;
}

TEST(ScoreLogFile, PrefixScores2AndASuffixAsWell3) {
  EXPECT_EQ(ScoreLogFile(Rule(L"a_", L""), L"a_1.log"), 2);
  EXPECT_EQ(ScoreLogFile(Rule(L"a_", L".log"), L"a_1.log"), 3);
  EXPECT_EQ(ScoreLogFile(Rule(L"a_", L".txt"), L"a_1.log"), 2);
  EXPECT_EQ(ScoreLogFile(Rule(L"b_", L".log"), L"a_1.log"), 0);
}

TEST(ScoreLogFile, CaseCountsInBothEnds) {
  EXPECT_EQ(ScoreLogFile(Rule(L"A_", L""), L"a_1.log"), 0);
  EXPECT_EQ(ScoreLogFile(Rule(L"a_", L".LOG"), L"a_1.log"), 2);
}

TEST(ScoreLogFile, NameMustBeLongerThanTheSuffix) {
  EXPECT_EQ(ScoreLogFile(Rule(L"a", L"a.log"), L"a.log"), 2);
  EXPECT_EQ(ScoreLogFile(Rule(L"a", L".log"), L"a.log"), 3);
}

TEST(ScoreLogFile, NameShorterThanThePrefixScores0) {
  EXPECT_EQ(ScoreLogFile(Rule(L"client", L""), L"cli"), 0);
  EXPECT_EQ(ScoreLogFile(Rule(L"client", L""), L""), 0);
}

TEST(ScoreLogFile, PrefixAndSuffixMayOverlap) {
  EXPECT_EQ(ScoreLogFile(Rule(L"ab.l", L"b.log"), L"ab.log"), 3);
}

// Which of the rules the name goes to; -1 for none.
int Chosen(const std::vector<LogFilterItem_s>& rules, const wchar_t* name) {
  std::vector<LogBucket> buckets;
  for (const LogFilterItem_s& rule : rules)
    buckets.emplace_back(rule);
  const LogBucket* chosen = ChooseLogBucket(buckets, name);
  return chosen ? static_cast<int>(chosen - buckets.data()) : -1;
}

TEST(ChooseLogBucket, BestFitWins) {
  EXPECT_EQ(Chosen({Rule(L"a", L""), Rule(L"a", L".log")}, L"a1.log"), 1);
  EXPECT_EQ(Chosen({Rule(L"a", L".log"), Rule(L"a", L"")}, L"a1.log"), 0);
}

TEST(ChooseLogBucket, FirstOfEqualFitsWinsHoweverLongItsPrefix) {
  EXPECT_EQ(Chosen({Rule(L"a", L""), Rule(L"a1", L"")}, L"a1.log"), 0);
  EXPECT_EQ(Chosen({Rule(L"a", L".log"), Rule(L"a1", L"1.log")}, L"a1.log"), 0);
}

TEST(ChooseLogBucket, NoFitIsNone) {
  EXPECT_EQ(Chosen({Rule(L"b", L""), Rule(L"c", L".log")}, L"a1.log"), -1);
  EXPECT_EQ(Chosen({}, L"a1.log"), -1);
}

std::vector<std::wstring> ExcessOf(const LogFilterItem_s& rule, const std::vector<LogFileEntry>& files) {
  LogBucket bucket(rule);
  for (const LogFileEntry& file : files)
    bucket.Add(file);
  std::vector<std::wstring> paths;
  for (const LogFileEntry& file : bucket.Excess())
    paths.push_back(file.path);
  return paths;
}

TEST(LogBucket, NothingGoesWithinTheLimits) {
  EXPECT_THAT(ExcessOf(Rule(L"a", L"", 30, 3), {{L"a", 1, 10}, {L"b", 2, 10}, {L"c", 3, 10}}), IsEmpty());
}

TEST(LogBucket, OldestGoFirstUntilTheCountHolds) {
  EXPECT_THAT(ExcessOf(Rule(L"a", L"", 1000, 1), {{L"c", 3, 10}, {L"a", 1, 10}, {L"b", 2, 10}}),
              ElementsAre(L"a", L"b"));
}

TEST(LogBucket, OldestGoFirstUntilTheSizeHolds) {
  EXPECT_THAT(ExcessOf(Rule(L"a", L"", 25, 10), {{L"c", 3, 10}, {L"a", 1, 10}, {L"b", 2, 10}}),
              ElementsAre(L"a"));
}

TEST(LogBucket, BothLimitsMustHold) {
  EXPECT_THAT(ExcessOf(Rule(L"a", L"", 9, 2), {{L"a", 1, 1}, {L"b", 2, 1}, {L"c", 3, 9}}),
              ElementsAre(L"a", L"b"));
}

TEST(LogBucket, FilesOfOneTimeKeepTheirOrder) {
  EXPECT_THAT(ExcessOf(Rule(L"a", L"", 1000, 1), {{L"x", 5, 1}, {L"b", 5, 1}, {L"k", 5, 1}}),
              ElementsAre(L"x", L"b"));
}

TEST(LogBucket, FileWithoutATimeIsTheNewestOfAll) {
  EXPECT_THAT(ExcessOf(Rule(L"a", L"", 1000, 1), {{L"open", kNewestOfAll, 1}, {L"b", kNewestOfAll - 1, 1}}),
              ElementsAre(L"b"));
}

TEST(LogBucket, LimitsOf0LetEverythingGo) {
  EXPECT_THAT(ExcessOf(LogFilterItem_s(), {{L"b", 2, 1}, {L"a", 1, 1}}), ElementsAre(L"a", L"b"));
}

TEST(LogBucket, SizesBeyond4GiBAreAdded) {
  constexpr int64_t kBig = 5'000'000'000;
  EXPECT_THAT(ExcessOf(Rule(L"a", L"", kBig, 10), {{L"a", 1, kBig}, {L"b", 2, kBig}}), ElementsAre(L"a"));
}

}  // namespace
}  // namespace logging::internal
