// What the work thread makes of the entries: pairs, records, aggregates, call records, logins.

#include "telemetry/PerfTelemetryThread.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "tests/telemetry/PerfTelemetryFixture.h"

namespace {

using namespace cmm_perf_telemetry_testing;
using Cmm::CStringT;

constexpr uint64_t kTicksWhenConsumed = 0;
constexpr uint64_t kCostByTicks = 0;

class PerfTelemetryPairs : public PerfTelemetryTest {
 protected:
  static void Start(const Events& events, uint64_t ticks, Cmm::PerfTelemetryStrTags strTags = {},
                    Cmm::PerfTelemetryIntTags intTags = {}) {
    EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStart(events, strTags, intTags, ticks), 1);
  }
  static void End(const Events& events, uint64_t ticks, uint64_t cost = kCostByTicks,
                  Cmm::PerfTelemetryStrTags strTags = {}, Cmm::PerfTelemetryIntTags intTags = {}) {
    EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEnd(events, strTags, intTags, ticks, cost), 1);
  }
  static void StartWithID(const Events& events, const wchar_t* key, uint64_t ticks) {
    EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStartWithID(events, {}, {}, key, ticks), 1);
  }
  static void EndWithID(const Events& events, const wchar_t* key, uint64_t ticks) {
    EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEndWithID(events, {}, {}, key, ticks, kCostByTicks), 1);
  }
  static void StartWStack(const Events& events, const wchar_t* key, uint64_t ticks = kStartTicks) {
    EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStartWStack(events, {}, {}, key, ticks), 1);
  }
  static void EndWStack(const Events& events, const wchar_t* key, uint64_t ticks) {
    EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEndWStack(events, {}, {}, key, ticks, kCostByTicks), 1);
  }
  static void Call(const char* method, uint64_t cost) {
    EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStacks(method, "src", cost), 1);
  }

  // The records by platform event.
  static const Record& Of(const std::vector<Record>& records, int platformEvent) {
    static const Record kNone;
    const auto found = std::find_if(records.begin(), records.end(), [&](const Record& record) {
      return record.events.platform_event == static_cast<PlatformEvent>(platformEvent);
    });
    EXPECT_NE(found, records.end()) << platformEvent;
    return found == records.end() ? kNone : *found;
  }
};

// ---- Plain events -----------------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, AnEndWithoutAStartVanishes) {
  End(Platform(1, 1), 5000);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, AStartWithoutAnEndReportsNothing) {
  Start(Platform(1), 5000);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, AnEndTakesItsStartAway) {
  Start(Platform(1), 5000);
  End(Platform(1), 5100);
  End(Platform(1), 5200);
  EXPECT_EQ(SendOne().count, 0u);
}

TEST_F(PerfTelemetryPairs, TheCostIsFromStartToEnd) {
  Start(Platform(1), 5000);
  End(Platform(1), 5123);
  EXPECT_EQ(SendOne().cost, 123u);
}

TEST_F(PerfTelemetryPairs, ACostOfTheEndsOwnCounts) {
  Start(Platform(1), 5000);
  End(Platform(1), 5123, 77);
  EXPECT_EQ(SendOne().cost, 77u);
}

TEST_F(PerfTelemetryPairs, TicksOf0AreThoseAtWhichTheEntryIsConsumed) {
  FakeSystem::SetTicks(6000);
  Start(Platform(1), kTicksWhenConsumed);
  CCmmPerfTelemetry::DoConsumeEvents();
  FakeSystem::SetTicks(6050);
  End(Platform(1), kTicksWhenConsumed);
  EXPECT_EQ(SendOne().cost, 50u);
}

TEST_F(PerfTelemetryPairs, AWrapOfTheTicksGivesOneAbsurdCostInARecordOfItsOwn) {
  Start(Platform(1), UINT32_MAX);
  End(Platform(1), 10);
  const Record record = SendOne();
  EXPECT_EQ(record.cost, uint64_t{10} - UINT32_MAX);
  EXPECT_EQ(record.count, 0u);
}

TEST_F(PerfTelemetryPairs, ANewerStartReplacesTicksAndTags) {
  Start(Platform(1), 5000, {{StrTag::str_1, "old"}}, {{IntTag::tag_1, 1}, {IntTag::tag_2, 2}});
  Start(Platform(1), 5100, {{StrTag::str_2, "new"}}, {{IntTag::tag_1, 3}});
  End(Platform(1), 5150);
  const Record record = SendOne();
  EXPECT_EQ(record.cost, 50u);
  EXPECT_EQ(record.str_1, "");
  EXPECT_EQ(record.str_2, "new");
  EXPECT_EQ(record.tag_1, 3);
  EXPECT_EQ(record.tag_2, 0);
}

TEST_F(PerfTelemetryPairs, TheTagsOfTheEndAreAddedAndThoseOfTheStartWin) {
  Start(Platform(1), 5000, {{StrTag::str_1, "start"}}, {{IntTag::tag_1, 1}});
  End(Platform(1), 5100, kCostByTicks, {{StrTag::str_1, "end"}, {StrTag::str_2, "end"}},
      {{IntTag::tag_1, 2}, {IntTag::tag_3, 3}});
  const Record record = SendOne();
  EXPECT_EQ(record.str_1, "start");
  EXPECT_EQ(record.str_2, "end");
  EXPECT_EQ(record.tag_1, 1);
  EXPECT_EQ(record.tag_3, 3);
}

TEST_F(PerfTelemetryPairs, TheIdentityOfTheRecordIsTheEnds) {
  Events start = Platform(1, 9, 9);
  start.id = L"start";
  start.value = 1;
  Events end = Platform(1, 3, 4);
  end.id = L"end";
  end.value = 2;
  Start(start, 5000);
  End(end, 5001);
  const Record record = SendOne();
  EXPECT_EQ(record.events.platform_event, PlatformEvent::open_session_action);
  EXPECT_EQ(record.events.result, 3);
  EXPECT_EQ(record.events.sub_result, 4);
  EXPECT_EQ(record.events.id, L"end");
  EXPECT_EQ(record.events.value, 2u);
}

TEST_F(PerfTelemetryPairs, EventsOfTwoIdentitiesOverlap) {
  Start(Platform(1), 5000);
  Start(Platform(2), 5010);
  End(Platform(1), 5100);
  End(Platform(2), 5200);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Of(records, 1).cost, 100u);
  EXPECT_EQ(Of(records, 2).cost, 190u);
}

TEST_F(PerfTelemetryPairs, AnEndConsumedWithTheMasterSwitchOffIsDropped) {
  Start(Platform(1), 5000);
  CCmmPerfTelemetry::DoConsumeEvents();
  End(Platform(1), 5100);
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  EXPECT_TRUE(Send().empty());
}

// ---- Thresholds -------------------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, APlainEventOf19MsIsDroppedAndWithResult1Reported) {
  Report(Platform(1), 19);
  Report(Platform(2, 1), 19);
  Report(Platform(3, 0, 1), 19);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Of(records, 2).cost, 19u);
  EXPECT_EQ(Of(records, 3).cost, 19u);
}

TEST_F(PerfTelemetryPairs, ACostAtTheThresholdIsDroppedAndOneAboveItReported) {
  Report(Platform(1), 20);
  Report(Platform(2), 21);
  EXPECT_EQ(SendOne().cost, 21u);
}

TEST_F(PerfTelemetryPairs, AHeartbeatOf150MsIsDroppedAndOneOf250MsReported) {
  Report(Heartbeat(1), 150);
  Report(Heartbeat(2), 200);
  Report(Heartbeat(3), 250);
  EXPECT_EQ(SendOne().events.heartbeat_event, HeartbeatEvent::lync_download_heartbeat);
}

TEST_F(PerfTelemetryPairs, ThresholdsCanBeSet) {
  CCmmPerfTelemetry::SetStackThreshold(100);
  CCmmPerfTelemetry::SetHeartbeatThreshold(10);
  Report(Platform(1), 100);
  Report(Heartbeat(1), 11);
  EXPECT_EQ(SendOne().cost, 11u);
}

TEST_F(PerfTelemetryPairs, AThresholdOf0DropsAllSuccesses) {
  CCmmPerfTelemetry::SetStackThreshold(0);
  Report(Platform(1), 60000);
  Report(Platform(2), 600000);
  Report(Heartbeat(1), 201);
  Report(Platform(3, 1), 0);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Of(records, 3).events.result, 1);
  CCmmPerfTelemetry::SetHeartbeatThreshold(0);
  Report(Heartbeat(1), 600000);
  EXPECT_TRUE(Send().empty());
}

// ---- The record -------------------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, ARecordHoldsWhatAllRecordsHave) {
  Report(Platform(1), 30);
  const Record record = SendOne();
  EXPECT_EQ(record.pid, "pid-7");
  EXPECT_EQ(record.version, "3.0");
  EXPECT_EQ(record.timestamp, 1700000000123);
  EXPECT_EQ(record.log_enabled, 0);
  EXPECT_EQ(record.xmpp_reconnect, 0);
  EXPECT_EQ(record.memory_load, 42);
  EXPECT_GT(record.process_memory, 0);
  EXPECT_EQ(record.count, 0u);
  EXPECT_EQ(record.min_cost, 0u);
  EXPECT_EQ(record.average_cost, 0u);
  EXPECT_EQ(record.stack_log, "");
}

TEST_F(PerfTelemetryPairs, TagsOverrideReconnectionAndMemory) {
  Report(Platform(1), 30, {},
         {{IntTag::xmpp_reconnect, 5}, {IntTag::memory_load, 6}, {IntTag::process_memory, 7}});
  const Record record = SendOne();
  EXPECT_EQ(record.xmpp_reconnect, 5);
  EXPECT_EQ(record.memory_load, 6);
  EXPECT_EQ(record.process_memory, 7);
}

TEST_F(PerfTelemetryPairs, RecordsAreNumberedFrom0) {
  Report(Platform(1), 30);
  Report(Platform(2, 1), 30);
  Report(Platform(3), 10);  // dropped, and takes no number
  Report(Platform(4), 70000);
  const auto records = Send();
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(Of(records, 1).index, 0u);
  EXPECT_EQ(Of(records, 2).index, 1u);
  EXPECT_EQ(Of(records, 4).index, 2u);
}

// ---- Aggregates -------------------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, SuccessesOfAnIdentityAreMerged) {
  for (const uint64_t cost : {50, 30, 40})
    Report(Platform(1), cost);
  const Record record = SendOne();
  EXPECT_EQ(record.count, 3u);
  EXPECT_EQ(record.cost, 50u);
  EXPECT_EQ(record.min_cost, 30u);
  EXPECT_EQ(record.average_cost, 40u);
}

TEST_F(PerfTelemetryPairs, TheIdAndTheValueDoNotKeepCallsApart) {
  Events a = Platform(1);
  a.id = L"a";
  a.value = 1;
  Events b = Platform(1);
  b.id = L"b";
  b.value = 2;
  Report(a, 30);
  Report(b, 40);
  EXPECT_EQ(SendOne().count, 2u);
}

TEST_F(PerfTelemetryPairs, ASlowestCallTakesTheRecordOver) {
  Events first = Platform(1);
  first.id = L"first";
  Events second = Platform(1);
  second.id = L"second";
  Report(first, 30, {{StrTag::str_1, "a"}}, {{IntTag::tag_1, 1}});
  CCmmPerfTelemetry::DoConsumeEvents();
  FakeSystem::AdvanceNow(Cmm::TimeDelta::FromMilliseconds(500));
  FakeSystem::SetPhysicalMemory({77, FakeSystem::kTotalBytes});
  Report(second, 41, {{StrTag::str_1, "b"}}, {{IntTag::tag_1, 2}});
  const Record record = SendOne();
  EXPECT_EQ(record.cost, 41u);
  EXPECT_EQ(record.count, 2u);
  EXPECT_EQ(record.average_cost, 35u);
  EXPECT_EQ(record.min_cost, 30u);
  EXPECT_EQ(record.timestamp, 1700000000623);
  EXPECT_EQ(record.index, 1u);
  EXPECT_EQ(record.str_1, "b");
  EXPECT_EQ(record.tag_1, 2);
  EXPECT_EQ(record.events.id, L"second");
  EXPECT_EQ(record.memory_load, 77);
}

TEST_F(PerfTelemetryPairs, AFasterOrEquallyFastCallLeavesTheRecordButTakesANumber) {
  Report(Platform(1), 50, {{StrTag::str_1, "a"}});
  CCmmPerfTelemetry::DoConsumeEvents();
  FakeSystem::AdvanceNow(Cmm::TimeDelta::FromMilliseconds(500));
  Report(Platform(1), 50, {{StrTag::str_1, "b"}});
  Report(Platform(1), 30, {{StrTag::str_1, "c"}});
  Report(Platform(2), 30);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Of(records, 1).index, 0u);
  EXPECT_EQ(Of(records, 1).timestamp, 1700000000123);
  EXPECT_EQ(Of(records, 1).str_1, "a");
  EXPECT_EQ(Of(records, 1).count, 3u);
  EXPECT_EQ(Of(records, 2).index, 3u);
}

TEST_F(PerfTelemetryPairs, AnEventOf60000MsIsMergedAndOneOf60001MsStandsAlone) {
  Report(Platform(1), 60000);
  Report(Platform(1), 60000);
  Report(Platform(2), 60001);
  Report(Platform(2), 60001);
  const auto records = Send();
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(records[0].events.platform_event, static_cast<PlatformEvent>(2));
  EXPECT_EQ(records[0].count, 0u);
  EXPECT_EQ(records[1].events.platform_event, static_cast<PlatformEvent>(2));
  EXPECT_EQ(records[1].count, 0u);
  EXPECT_EQ(records[2].count, 2u);
}

TEST_F(PerfTelemetryPairs, FailuresStandAloneAndThoseOfTheSubResultAreMerged) {
  Report(Platform(1, 1), 30);
  Report(Platform(1, 1), 30);
  Report(Platform(2, 0, 1), 30);
  Report(Platform(2, 0, 2), 40);
  const auto records = Send();
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(records[0].count, 0u);
  EXPECT_EQ(records[1].count, 0u);
  EXPECT_EQ(Of(records, 2).count, 2u);
  EXPECT_EQ(Of(records, 2).events.sub_result, 2);
}

TEST_F(PerfTelemetryPairs, The401stDistinctAggregateIsDroppedAndTheEleventhCallOfAnExistingOneIsNot) {
  for (int event = 1; event <= 401; ++event)
    Report(Platform(event), 30);
  for (int call = 2; call <= 11; ++call)
    Report(Platform(400), 30);
  const auto records = Send();
  EXPECT_EQ(records.size(), 400u);
  EXPECT_EQ(Of(records, 400).count, 11u);
  for (const Record& record : records)
    EXPECT_NE(record.events.platform_event, static_cast<PlatformEvent>(401));
}

TEST_F(PerfTelemetryPairs, The401stRecordOfTheListIsDropped) {
  for (int i = 0; i < 401; ++i)
    Report(Platform(1, i + 1), 30);
  Report(Platform(2), 30);
  const auto records = Send();
  ASSERT_EQ(records.size(), 401u);
  EXPECT_EQ(records[399].events.result, 400);
  EXPECT_EQ(records[400].events.platform_event, static_cast<PlatformEvent>(2));
  EXPECT_EQ(records[400].index, 400u);  // what is dropped takes no number
}

TEST_F(PerfTelemetryPairs, TheBoundsHoldBetweenTwoSends) {
  for (int round = 0; round < 2; ++round) {
    for (int event = 1; event <= 400; ++event)
      Report(Platform(event), 30);
    EXPECT_EQ(Send().size(), 400u);
  }
}

// ---- Events with a key ------------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, EventsOfOneIdentityAreToldApartByTheirKeys) {
  StartWithID(Platform(1), L"a", 5000);
  StartWithID(Platform(1), L"b", 5010);
  EndWithID(Platform(1, 1), L"b", 5020);
  EndWithID(Platform(1, 1), L"a", 5040);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].cost, 10u);
  EXPECT_EQ(records[1].cost, 40u);
}

TEST_F(PerfTelemetryPairs, EventsOfOneKeyAreToldApartByTheirCodes) {
  StartWithID(Platform(1), L"a", 5000);
  EndWithID(Platform(2, 1), L"a", 5040);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, TheValueIsThatOfTheStart) {
  Events start = Platform(1);
  start.value = 17;
  Events end = Platform(1);
  end.value = 18;
  StartWithID(start, L"a", 5000);
  EndWithID(end, L"a", 5040);
  EXPECT_EQ(SendOne().events.value, 17u);
}

TEST_F(PerfTelemetryPairs, ANewerStartOfAKeyKeepsTheOlderValue) {
  Events first = Platform(1);
  first.value = 17;
  Events second = Platform(1);
  second.value = 18;
  StartWithID(first, L"a", 5000);
  StartWithID(second, L"a", 5010);
  EndWithID(Platform(1), L"a", 5040);
  const Record record = SendOne();
  EXPECT_EQ(record.events.value, 17u);
  EXPECT_EQ(record.cost, 30u);
}

TEST_F(PerfTelemetryPairs, TheThreeKindsOfStartDoNotMeet) {
  Start(Platform(1), 5000);
  StartWithID(Platform(2), L"a", 5000);
  StartWStack(Platform(3), L"a");
  EndWithID(Platform(1, 1), L"", 5100);
  EndWStack(Platform(2, 1), L"a", 5100);
  EndWithID(Platform(3, 1), L"a", 5100);
  End(Platform(3, 1), 5100);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, NoLoginHandlingAppliesToEventsWithAKey) {
  StartWithID(Login(LoginEvent::xmpp_signon), L"a", 5000);
  EndWithID(Login(LoginEvent::im_ready), L"a", 5100);
  EXPECT_TRUE(Send().empty());
  EXPECT_EQ(CCmmPerfTelemetry::HasUrgentEvent(), 0);
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  Report(Platform(1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 0);
}

// ---- Instantaneous events ---------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, AnEventIsStartAndEndInOne) {
  EXPECT_EQ(
      CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {{StrTag::str_1, "a"}}, {{IntTag::tag_4, 4}}, 33),
      1);
  const Record record = SendOne();
  EXPECT_EQ(record.cost, 33u);
  EXPECT_EQ(record.str_1, "a");
  EXPECT_EQ(record.tag_4, 4);
}

TEST_F(PerfTelemetryPairs, AnEventWithoutACostTookNoTime) {
  CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {}, {}, 0);
  CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(2, 1), {}, {}, 0);
  EXPECT_EQ(SendOne().cost, 0u);
}

TEST_F(PerfTelemetryPairs, EventsAreMergedLikeOthers) {
  CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {}, {}, 20);  // not above the threshold
  CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {}, {}, 30);
  CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {}, {}, 40);
  EXPECT_EQ(SendOne().count, 2u);
}

// ---- Call records -----------------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, CallsInsideAnEventStandInItsRecord) {
  StartWStack(Platform(1), L"k");
  Call("load", 30);
  Call("load", 35);
  EndWStack(Platform(1), L"k", 5100);
  const Record record = SendOne();
  EXPECT_EQ(record.stack_log, R"([{"m":"load","f":"src","t":"35","c":2}])");
  EXPECT_EQ(record.cost, 100u);
}

TEST_F(PerfTelemetryPairs, AnEventWithoutCallsHasNoStackText) {
  ReportWithStack(Platform(1), L"k", 100);
  EXPECT_EQ(SendOne().stack_log, "");
}

TEST_F(PerfTelemetryPairs, CallsAtOrBelowTheStackThresholdAreNotRecorded) {
  StartWStack(Platform(1), L"k");
  Call("fast", 20);
  Call("slow", 21);
  EndWStack(Platform(1), L"k", 5100);
  EXPECT_EQ(SendOne().stack_log, R"([{"m":"slow","f":"src","t":"21"}])");
}

TEST_F(PerfTelemetryPairs, WithAThresholdOf0NoCallIsRecorded) {
  CCmmPerfTelemetry::SetStackThreshold(0);
  StartWStack(Platform(1), L"k");
  Call("slow", 5000);
  EndWStack(Platform(1, 1), L"k", 5100);
  EXPECT_EQ(SendOne().stack_log, "");
}

TEST_F(PerfTelemetryPairs, CallsOutsideOfAnEventVanish) {
  Call("before", 30);
  StartWStack(Platform(1), L"k");
  EndWStack(Platform(1), L"k", 5100);
  Call("after", 30);
  EXPECT_EQ(SendOne().stack_log, "");
}

TEST_F(PerfTelemetryPairs, EventsWithACallRecordNest) {
  StartWStack(Platform(1), L"outer");
  Call("outer before", 30);
  StartWStack(Platform(2), L"inner");
  Call("inner", 31);
  EndWStack(Platform(2), L"inner", 5100);
  Call("outer before", 32);
  EndWStack(Platform(1), L"outer", 5200);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Of(records, 2).stack_log, R"([{"m":"inner","f":"src","t":"31"}])");
  EXPECT_EQ(Of(records, 1).stack_log, R"([{"m":"outer before","f":"src","t":"32","c":2}])");
}

TEST_F(PerfTelemetryPairs, TheCallsOfADroppedEventAreDroppedWithIt) {
  StartWStack(Platform(1), L"k");
  Call("slow", 30);
  EndWStack(Platform(1), L"k", 5010);
  EndWStack(Platform(1), L"k", 5100);  // its start is gone, and so is the table
  Call("late", 30);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, AStartBeginsWithAnEmptyCallRecord) {
  StartWStack(Platform(1), L"k");
  Call("first", 30);
  StartWStack(Platform(1), L"k");
  Call("second", 30);
  EndWStack(Platform(1), L"k", 5100);
  EXPECT_EQ(SendOne().stack_log, R"([{"m":"second","f":"src","t":"30"}])");
}

TEST_F(PerfTelemetryPairs, AnEventThatNestsInItselfEndsWithItsFirstEnd) {
  StartWStack(Platform(1), L"k", 5000);
  StartWStack(Platform(1), L"k", 5010);
  EndWStack(Platform(1), L"k", 5100);
  Call("call", 30);
  EndWStack(Platform(1), L"k", 5200);
  const Record record = SendOne();
  EXPECT_EQ(record.cost, 90u);
  EXPECT_EQ(record.stack_log, "");
}

TEST_F(PerfTelemetryPairs, TheSlowestCallOfAnAggregateBringsItsCallRecord) {
  StartWStack(Platform(1), L"a");
  Call("first", 30);
  EndWStack(Platform(1), L"a", 5100);
  StartWStack(Platform(1), L"b");
  Call("second", 31);
  EndWStack(Platform(1), L"b", 5200);
  StartWStack(Platform(1), L"c");
  Call("third", 32);
  EndWStack(Platform(1), L"c", 5150);
  EXPECT_EQ(SendOne().stack_log, R"([{"m":"second","f":"src","t":"31"}])");
}

TEST_F(PerfTelemetryPairs, TheValueOfAnEventWithACallRecordIsThatOfTheStart) {
  Events start = Platform(1);
  start.value = 17;
  StartWStack(start, L"a");
  EndWStack(Platform(1), L"a", 5100);
  EXPECT_EQ(SendOne().events.value, 17u);
}

// ---- Logins -----------------------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, ALoginTotalNeedsNoStart) {
  End(Login(LoginEvent::im_ready), 9000);
  const Record record = SendOne();
  EXPECT_EQ(record.events.login_event, LoginEvent::im_ready);
  EXPECT_EQ(record.cost, 9000u - kAppStartTicks);
  EXPECT_EQ(record.tag_6, 0);
  EXPECT_EQ(record.index, 0u);
  EXPECT_EQ(record.pid, "pid-7");
  EXPECT_EQ(record.version, "3.0");
}

TEST_F(PerfTelemetryPairs, TicksOf0OfALoginTotalAreThoseAtWhichItIsConsumed) {
  FakeSystem::SetTicks(7000);
  End(Login(LoginEvent::im_ready), kTicksWhenConsumed);
  EXPECT_EQ(SendOne().cost, 7000u - kAppStartTicks);
}

TEST_F(PerfTelemetryPairs, ALaterLoginCountsFromTheSignOn) {
  End(Login(LoginEvent::im_ready), 9000);
  EXPECT_EQ(Send().size(), 1u);
  FakeSystem::SetTicks(20000);
  Start(Login(LoginEvent::xmpp_signon), 19990);
  End(Login(LoginEvent::im_ready), 20300);
  const Record record = SendOne();
  EXPECT_EQ(record.cost, 300u);  // from the time at which the sign-on was consumed
  EXPECT_EQ(record.tag_6, 1);
}

TEST_F(PerfTelemetryPairs, ASecondSignOnDoesNotMoveTheStartOfTheLogin) {
  End(Login(LoginEvent::im_ready), 9000);
  Start(Login(LoginEvent::xmpp_signon), 1);
  EXPECT_EQ(Send().size(), 1u);
  FakeSystem::SetTicks(6000);
  Start(Login(LoginEvent::xmpp_signon), 1);
  End(Login(LoginEvent::im_ready), 6000);
  EXPECT_EQ(SendOne().cost, 6000u - kStartTicks);
}

TEST_F(PerfTelemetryPairs, EachLoginTotalClearsTheStartOfTheLogin) {
  Start(Login(LoginEvent::xmpp_signon), 1);
  End(Login(LoginEvent::im_ready), 9000);
  End(Login(LoginEvent::im_ready), 9000);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[1].cost, 9000u);  // from 0: no sign-on since
  EXPECT_EQ(records[1].tag_6, 1);
}

TEST_F(PerfTelemetryPairs, AfterALogoutTheNextLoginIsAFirstOneFromItsOwnStart) {
  End(Login(LoginEvent::im_ready), 9000);
  Start(Login(LoginEvent::xmpp_signon), 1);
  EXPECT_EQ(Send().size(), 1u);
  CCmmPerfTelemetry::PerfTelemetryLogout();
  FakeSystem::SetTicks(30000);
  Start(Login(LoginEvent::app_login), 29000);
  End(Login(LoginEvent::im_ready), 30400);
  End(Login(LoginEvent::im_ready), 30500);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].cost, 400u);
  EXPECT_EQ(records[0].tag_6, 0);
  EXPECT_EQ(records[1].cost, 30500u);  // the sign-on before the logout is forgotten
  EXPECT_EQ(records[1].tag_6, 1);
}

TEST_F(PerfTelemetryPairs, WithoutALogoutTheStartOfALoginChangesNothing) {
  FakeSystem::SetTicks(8000);
  Start(Login(LoginEvent::app_login), 1);
  End(Login(LoginEvent::im_ready), 9000);
  EXPECT_EQ(SendOne().cost, 9000u - kAppStartTicks);
}

TEST_F(PerfTelemetryPairs, TheEventsOfALoginAreMeasuredLikeOthersToo) {
  Start(Login(LoginEvent::xmpp_signon), 5000);
  End(Login(LoginEvent::xmpp_signon), 5100);
  EXPECT_EQ(SendOne().cost, 100u);
}

TEST_F(PerfTelemetryPairs, ALoginTotalIsReportedHoweverFastItWas) {
  End(Login(LoginEvent::im_ready), kAppStartTicks);
  EXPECT_EQ(SendOne().cost, 0u);
}

TEST_F(PerfTelemetryPairs, TheTagsAndTheCostOfALoginTotalAreNotLookedAt) {
  End(Login(LoginEvent::im_ready), 9000, 5, {{StrTag::str_1, "a"}}, {{IntTag::tag_6, 9}, {IntTag::tag_1, 9}});
  const Record record = SendOne();
  EXPECT_EQ(record.cost, 8000u);
  EXPECT_EQ(record.str_1, "");
  EXPECT_EQ(record.tag_1, 0);
  EXPECT_EQ(record.tag_6, 0);
}

TEST_F(PerfTelemetryPairs, TheListTakesLoginTotalsWithoutLimit) {
  for (int i = 0; i < 450; ++i)
    End(Login(LoginEvent::im_ready), 9000);
  EXPECT_EQ(Send().size(), 450u);
}

TEST_F(PerfTelemetryPairs, ALoginTotalIsUrgentAndWakesTheWorkThread) {
  EXPECT_FALSE(FakeSystem::IsWoken());
  End(Login(LoginEvent::im_ready), 9000);
  EXPECT_EQ(CCmmPerfTelemetry::HasUrgentEvent(), 0);
  CCmmPerfTelemetry::DoConsumeEvents();
  EXPECT_EQ(CCmmPerfTelemetry::HasUrgentEvent(), 1);
  EXPECT_TRUE(FakeSystem::IsWoken());
}

// ---- Sending ----------------------------------------------------------------------------------------

TEST_F(PerfTelemetryPairs, TheListIsSentBeforeTheAggregates) {
  Report(Platform(1), 30);
  Report(Platform(2, 1), 30);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].events.platform_event, static_cast<PlatformEvent>(2));
  EXPECT_EQ(records[1].events.platform_event, static_cast<PlatformEvent>(1));
}

TEST_F(PerfTelemetryPairs, WhatWasSentIsNotSentAgain) {
  Report(Platform(1), 30);
  Report(Platform(2, 1), 30);
  EXPECT_EQ(Send().size(), 2u);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, WithoutAHelperTheRecordsAreDropped) {
  Report(Platform(1), 30);
  Report(Platform(2, 1), 30);
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, nullptr);
  EXPECT_TRUE(Send().empty());
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, StartsOlderThanFiveMinutesDisappearAtTheNextSendAndTheirEndsVanish) {
  Start(Platform(1), 5000);
  StartWithID(Platform(2), L"k", 5000);
  StartWStack(Platform(3), L"k", 5000);
  FakeSystem::SetTicks(305001);
  Send();
  End(Platform(1), 305001);
  EndWithID(Platform(2), L"k", 305001);
  EndWStack(Platform(3), L"k", 305001);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, StartsOfFiveMinutesStay) {
  Start(Platform(1), 5000);
  StartWithID(Platform(2), L"k", 5000);
  StartWStack(Platform(3), L"k", 5000);
  Call("call", 30);
  FakeSystem::SetTicks(305000);
  Send();
  End(Platform(1), 305001);
  EndWithID(Platform(2), L"k", 305001);
  EndWStack(Platform(3), L"k", 305001);
  const auto records = Send();
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(Of(records, 3).stack_log, R"([{"m":"call","f":"src","t":"30"}])");
}

TEST_F(PerfTelemetryPairs, APurgedStartTakesItsCallRecordAlong) {
  StartWStack(Platform(1), L"k", 5000);
  FakeSystem::SetTicks(305001);
  Send();
  Call("call", 30);  // no table takes it
  EndWStack(Platform(1, 1), L"k", 305001);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryPairs, TheCallsOfTheOuterEventAreLostAfterAPurgeOfTheInnerOne) {
  StartWStack(Platform(1), L"outer", 300000);
  StartWStack(Platform(2), L"inner", 5000);
  FakeSystem::SetTicks(305001);
  Send();
  Call("call", 30);
  EndWStack(Platform(2), L"inner", 305001);
  Call("call", 30);
  EndWStack(Platform(1), L"outer", 305001);
  const Record record = SendOne();
  EXPECT_EQ(record.events.platform_event, static_cast<PlatformEvent>(1));
  EXPECT_EQ(record.stack_log, "");
}

}  // namespace
