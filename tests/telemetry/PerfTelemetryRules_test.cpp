#include "telemetry/PerfTelemetryRules.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "gtest/gtest.h"

namespace Cmm::internal {
namespace {

using Record = VelmPTPAAP::VClientPerfMetricsInfo_s;
using StrTag = e_chat_perfmetrics_Perfmetrics_event_tag_str;
using IntTag = e_chat_perfmetrics_Perfmetrics_event_tag_int;

TEST(IsWorthReporting, IsASlowSuccessOrAnyFailure) {
  const struct {
    uint64_t cost;
    uint32_t threshold;
    int result;
    int subResult;
    bool expected;
  } kCases[] = {
      {19, 20, 0, 0, false},   {20, 20, 0, 0, false},        {21, 20, 0, 0, true},
      {150, 200, 0, 0, false}, {250, 200, 0, 0, true},       {19, 20, 1, 0, true},
      {19, 20, 0, 1, true},    {0, 20, -1, 0, true},         {100000, 0, 0, 0, false},
      {100000, 0, 1, 0, true}, {100000, 0, 0, -1, true},     {UINT64_MAX, UINT32_MAX, 0, 0, true},
      {0, 20, 0, 0, false},    {UINT64_MAX, 0, 0, 0, false},
  };
  for (const auto& c : kCases)
    EXPECT_EQ(IsWorthReporting(c.cost, c.threshold, c.result, c.subResult), c.expected)
        << c.cost << ' ' << c.threshold << ' ' << c.result << ' ' << c.subResult;
}

TEST(IsAggregated, IsASuccessBelow60001Ms) {
  EXPECT_TRUE(IsAggregated(0, 0));
  EXPECT_TRUE(IsAggregated(60000, 0));
  EXPECT_FALSE(IsAggregated(60001, 0));
  EXPECT_FALSE(IsAggregated(21, 1));
  EXPECT_FALSE(IsAggregated(21, -1));
}

TEST(IsOldStart, IsOneOfMoreThanFiveMinutes) {
  EXPECT_FALSE(IsOldStart(300000, 0));
  EXPECT_TRUE(IsOldStart(300001, 0));
  EXPECT_FALSE(IsOldStart(5, 5));
}

TEST(IsOldStart, IsOneFromBeforeAWrapOfTheTicks) {
  EXPECT_TRUE(IsOldStart(5, UINT32_MAX));
}

TEST(IsSendDue, AfterFiveMinutesOrForAnUrgentEventAndNeverWithTheSendSwitchOff) {
  EXPECT_FALSE(IsSendDue(true, false, 300000999, 1000));
  EXPECT_TRUE(IsSendDue(true, false, 300001000, 1000));
  EXPECT_TRUE(IsSendDue(true, true, 1000, 1000));
  EXPECT_FALSE(IsSendDue(false, false, 300001000, 1000));
  EXPECT_FALSE(IsSendDue(false, true, 300001000, 1000));
}

TEST(WideEventKey, IsTheCodeAnUnderscoreAndTheKey) {
  EXPECT_EQ(WideEventKey(409, L"{ab}_0"), L"409_{ab}_0");
  EXPECT_EQ(WideEventKey(0, L""), L"0_");
}

TEST(ProcessMegabytes, AreWholeAndZeroWhereNothingIsKnown) {
  EXPECT_EQ(ProcessMegabytes((5ull << 20) + 1048575, 1ull << 30), 5);
  EXPECT_EQ(ProcessMegabytes(1048575, 1ull << 30), 0);
  EXPECT_EQ(ProcessMegabytes(5ull << 20, 100), 5);
  EXPECT_EQ(ProcessMegabytes(5ull << 20, 99), 0);
  EXPECT_EQ(ProcessMegabytes(std::nullopt, 1ull << 30), 0);
}

Record OneCall(uint64_t cost) {
  Record record;
  record.cost = cost;
  return record;
}

TEST(MergeCall, TheSecondCallMakesCountAverageAndMinimum) {
  Record aggregate = OneCall(100);
  EXPECT_FALSE(MergeCall(aggregate, 51));
  EXPECT_EQ(aggregate.count, 2u);
  EXPECT_EQ(aggregate.average_cost, 75u);  // 151 / 2
  EXPECT_EQ(aggregate.min_cost, 51u);
  EXPECT_EQ(aggregate.cost, 100u);
}

TEST(MergeCall, TellsASlowestCallAndLeavesTheMaximumToTheCaller) {
  Record aggregate = OneCall(100);
  EXPECT_FALSE(MergeCall(aggregate, 100));
  EXPECT_TRUE(MergeCall(aggregate, 101));
  EXPECT_EQ(aggregate.cost, 100u);
  EXPECT_EQ(aggregate.min_cost, 100u);
  EXPECT_EQ(aggregate.count, 3u);
}

TEST(MergeCall, TheAverageIsOfTheRoundedAverageBefore) {
  Record aggregate = OneCall(21);
  MergeCall(aggregate, 22);  // 43 / 2
  EXPECT_EQ(aggregate.average_cost, 21u);
  MergeCall(aggregate, 22);  // (2 * 21 + 22) / 3
  EXPECT_EQ(aggregate.average_cost, 21u);
  MergeCall(aggregate, 25);  // (3 * 21 + 25) / 4
  EXPECT_EQ(aggregate.average_cost, 22u);
  EXPECT_EQ(aggregate.count, 4u);
}

TEST(MergeCall, AMinimumOf0IsForgottenByTheNextCall) {
  Record aggregate = OneCall(100);
  MergeCall(aggregate, 0);
  EXPECT_EQ(aggregate.min_cost, 0u);
  MergeCall(aggregate, 60);
  EXPECT_EQ(aggregate.min_cost, 60u);
}

TEST(MergeCall, AnAverageOf0IsTheMaximumAtTheNextCall) {
  Record aggregate = OneCall(1);
  MergeCall(aggregate, 0);
  EXPECT_EQ(aggregate.average_cost, 0u);
  MergeCall(aggregate, 0);  // (2 * 1 + 0) / 3
  EXPECT_EQ(aggregate.average_cost, 0u);
  aggregate.cost = 30;
  MergeCall(aggregate, 0);  // (3 * 30 + 0) / 4
  EXPECT_EQ(aggregate.average_cost, 22u);
}

TEST(MergeCall, KeepsMinimumAverageAndMaximumInOrder) {
  Record aggregate = OneCall(40);
  for (const uint64_t cost : {33u, 70u, 21u, 59999u, 25u, 40u}) {
    if (MergeCall(aggregate, cost)) aggregate.cost = cost;
    EXPECT_GT(aggregate.count, 1u);
    EXPECT_LE(aggregate.min_cost, aggregate.average_cost);
    EXPECT_LE(aggregate.average_cost, aggregate.cost);
  }
}

PerfTelemetryIntTags EveryIntTag() {
  PerfTelemetryIntTags tags;
  for (int key = -1; key <= 14; ++key)
    tags[static_cast<IntTag>(key)] = 0x700000000 + key;
  return tags;
}

TEST(SetTagFields, EachIntegerTagSetsItsField) {
  Record record;
  SetTagFields(record, {}, EveryIntTag());
  EXPECT_EQ(record.tag_1, 1);
  EXPECT_EQ(record.tag_2, 2);
  EXPECT_EQ(record.tag_3, 0x700000003);
  EXPECT_EQ(record.tag_4, 0x700000004);
  EXPECT_EQ(record.tag_5, 5);
  EXPECT_EQ(record.tag_6, 6);
  EXPECT_EQ(record.tag_7, 7);
  EXPECT_EQ(record.tag_8, 0x700000008);
  EXPECT_EQ(record.xmpp_reconnect, 9);
  EXPECT_EQ(record.tag_10, 10);
  EXPECT_EQ(record.memory_load, 11);
  EXPECT_EQ(record.process_memory, 12);
}

TEST(SetTagFields, KeysWithoutAFieldChangeNothing) {
  Record record;
  record.cost = 7;
  const PerfTelemetryIntTags intTags = {{static_cast<IntTag>(0), 1}, {static_cast<IntTag>(13), 1}};
  const PerfTelemetryStrTags strTags = {{static_cast<StrTag>(0), "a"}, {static_cast<StrTag>(3), "b"}};
  SetTagFields(record, strTags, intTags);
  EXPECT_EQ(record.tag_1 | record.tag_2 | record.tag_5 | record.tag_6 | record.tag_7 | record.tag_10, 0);
  EXPECT_EQ(record.tag_3 | record.tag_4 | record.tag_8, 0);
  EXPECT_EQ(record.xmpp_reconnect | record.memory_load | record.process_memory, 0);
  EXPECT_TRUE(record.str_1.empty());
  EXPECT_TRUE(record.str_2.empty());
  EXPECT_EQ(record.cost, 7u);
}

TEST(SetTagFields, EachTextTagSetsItsField) {
  Record record;
  SetTagFields(record, {{StrTag::str_1, "one"}, {StrTag::str_2, "two"}}, {});
  EXPECT_EQ(record.str_1, "one");
  EXPECT_EQ(record.str_2, "two");
}

TEST(SetTagFields, FieldsWithoutATagStay) {
  Record record;
  record.memory_load = 42;
  record.str_2 = "two";
  SetTagFields(record, {{StrTag::str_1, "one"}}, {{IntTag::process_memory, 5}});
  EXPECT_EQ(record.memory_load, 42);
  EXPECT_EQ(record.process_memory, 5);
  EXPECT_EQ(record.str_2, "two");
}

TEST(TakeStackText, OfOneCallHasNoCount) {
  StackTable table;
  RecordCall(table, "x", "y", 21);
  EXPECT_EQ(TakeStackText(table), R"([{"m":"x","f":"y","t":"21"}])");
}

TEST(TakeStackText, OfSeveralCallsHasTheSlowestTimeAsTextAndTheCountAsNumber) {
  StackTable table;
  RecordCall(table, "LoadModule - a", "CmmPTUtil", 30);
  RecordCall(table, "LoadModule - a", "CmmPTUtil", 35);
  EXPECT_EQ(TakeStackText(table), R"([{"m":"LoadModule - a","f":"CmmPTUtil","t":"35","c":2}])");
}

TEST(TakeStackText, SeparatesItemsByCommasInTheOrderOfTheTable) {
  StackTable table;
  std::string expected;
  for (const char* method : {"a", "b", "c", "d"})
    RecordCall(table, method, "s", 21);
  for (const auto& [key, call] : table)
    expected += (expected.empty() ? "[" : ",") + (R"({"m":")" + call.m.GetCData() + R"(","f":"s","t":"21"})");
  EXPECT_EQ(TakeStackText(table), expected + "]");
}

TEST(TakeStackText, EmptiesTheTable) {
  StackTable table;
  RecordCall(table, "x", "y", 21);
  TakeStackText(table);
  EXPECT_TRUE(table.empty());
  EXPECT_EQ(TakeStackText(table), "[]");
}

TEST(TakeStackText, DoesNotEscapeSoThatAQuoteInANameBreaksTheJson) {
  StackTable table;
  RecordCall(table, "a\"b\\", "c\n", 21);
  EXPECT_EQ(TakeStackText(table), "[{\"m\":\"a\"b\\\",\"f\":\"c\n\",\"t\":\"21\"}]");
}

TEST(RecordCall, AFasterOrEquallyFastCallOnlyCounts) {
  StackTable table;
  for (const uint64_t cost : {35, 35, 21})
    RecordCall(table, "m", "f", cost);
  EXPECT_EQ(TakeStackText(table), R"([{"m":"m","f":"f","t":"35","c":3}])");
}

TEST(RecordCall, PairsThatReadTheSameShareARecordThatBearsTheSlowestsNames) {
  StackTable table;
  RecordCall(table, "ab", "c", 30);
  RecordCall(table, "a", "bc", 29);
  ASSERT_EQ(table.size(), 1u);
  EXPECT_EQ(table.begin()->second.m, "ab");
  RecordCall(table, "a", "bc", 31);
  EXPECT_EQ(TakeStackText(table), R"([{"m":"a","f":"bc","t":"31","c":3}])");
}

TEST(PerfMetricsRecord, HasItsFieldsInTheOrderOfTheInterface) {
  const Record record;
  const auto at = [&](const auto& field) {
    return static_cast<size_t>(reinterpret_cast<const char*>(&field) -
                               reinterpret_cast<const char*>(&record));
  };
  constexpr size_t kText = sizeof(CStringT<char>);
  constexpr size_t kEvents = sizeof(VelmPTPAAP::PerfMetricsEvents_s);
  static_assert(kText == 40 && kEvents == 88);
  EXPECT_EQ(at(record.events), 0u);
  EXPECT_EQ(at(record.stack_log), kEvents);
  EXPECT_EQ(at(record.pid), kEvents + kText);
  constexpr size_t kNumbers = kEvents + 2 * kText;
  EXPECT_EQ(at(record.count), kNumbers);
  EXPECT_EQ(at(record.xmpp_reconnect), kNumbers + 4);
  EXPECT_EQ(at(record.tag_8), kNumbers + 8);
  EXPECT_EQ(at(record.min_cost), kNumbers + 16);
  EXPECT_EQ(at(record.average_cost), kNumbers + 24);
  EXPECT_EQ(at(record.cost), kNumbers + 32);
  EXPECT_EQ(at(record.log_enabled), kNumbers + 40);
  EXPECT_EQ(at(record.str_1), kNumbers + 48);
  constexpr size_t kTags = kNumbers + 48 + kText;
  EXPECT_EQ(at(record.tag_4), kTags);
  EXPECT_EQ(at(record.tag_3), kTags + 8);
  EXPECT_EQ(at(record.tag_2), kTags + 16);
  EXPECT_EQ(at(record.tag_7), kTags + 20);
  EXPECT_EQ(at(record.tag_6), kTags + 24);
  EXPECT_EQ(at(record.tag_5), kTags + 28);
  EXPECT_EQ(at(record.tag_1), kTags + 32);
  EXPECT_EQ(at(record.tag_10), kTags + 36);
  EXPECT_EQ(at(record.memory_load), kTags + 40);
  EXPECT_EQ(at(record.process_memory), kTags + 44);
  EXPECT_EQ(at(record.str_2), kTags + 48);
  EXPECT_EQ(at(record.index), kTags + 48 + kText);
  EXPECT_EQ(at(record.version), kTags + 56 + kText);
  EXPECT_EQ(at(record.timestamp), kTags + 56 + 2 * kText);
}

}  // namespace
}  // namespace Cmm::internal
