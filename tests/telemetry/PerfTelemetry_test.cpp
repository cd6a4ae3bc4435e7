// The collector from outside: its lifecycle, its switches, its queues and its work thread.

#include "telemetry/PerfTelemetry.h"

#include <atomic>
#include <chrono>
#include <cwchar>
#include <string>
#include <thread>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/DebugOutput.h"
#include "tests/telemetry/PerfTelemetryFixture.h"

namespace {

using namespace cmm_perf_telemetry_testing;
using Cmm::CStringT;
using testing::Contains;

void EndLogin() {
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEnd(Login(LoginEvent::im_ready), {}, {}, 9000, 0), 1);
}

// Every operation that queues, once; how many said that they did.
int AddOneOfEachKind() {
  return CCmmPerfTelemetry::AddPerfTelemetryStart(Platform(1), {}, {}, 1) +
         CCmmPerfTelemetry::AddPerfTelemetryEnd(Platform(1), {}, {}, 1, 1) +
         CCmmPerfTelemetry::AddPerfTelemetryStartWithID(Platform(1), {}, {}, L"k", 1) +
         CCmmPerfTelemetry::AddPerfTelemetryEndWithID(Platform(1), {}, {}, L"k", 1, 1) +
         CCmmPerfTelemetry::AddPerfTelemetryStartWStack(Platform(1), {}, {}, L"k", 1) +
         CCmmPerfTelemetry::AddPerfTelemetryEndWStack(Platform(1), {}, {}, L"k", 1, 1) +
         CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1) +
         CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {}, {}, 1);
}

// Holds its caller up until it may end.
class GatedHelper : public Cmm::IPerfTelemetryHelper {
 public:
  void SendPerfMetrics(const Record&) override {
    begun = true;
    EXPECT_TRUE(WaitUntil([&] { return mayEnd.load(); }));
    ended = true;
  }

  std::atomic<bool> begun = false;
  std::atomic<bool> mayEnd = false;
  std::atomic<bool> ended = false;
};

// ---- Without the lifecycle --------------------------------------------------------------------------

TEST(PerfTelemetryBeforeInit, IsOffAndRefuses) {
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 0);
  EXPECT_FALSE(CCmmPerfTelemetry::IsEnableSendMetrics());
  EXPECT_EQ(AddOneOfEachKind(), 0);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetry(Platform(1), {}, {}), 0);
}

TEST(PerfTelemetryBeforeInit, EnablingStoresNothing) {
  RecordingHelper helper;
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 0);
  EXPECT_FALSE(CCmmPerfTelemetry::IsEnableSendMetrics());
}

TEST(PerfTelemetryBeforeInit, ThresholdsAreTheDefaults) {
  EXPECT_EQ(CCmmPerfTelemetry::GetHeartbeatThreshold(), 200u);
  EXPECT_EQ(CCmmPerfTelemetry::GetStackThreshold(), 20u);
}

TEST(PerfTelemetryBeforeInit, TerminatingDoesNothing) {
  CCmmPerfTelemetry::PerfTelemetryTerm();
  CCmmPerfTelemetry::PerfTelemetryTerm();
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 0);
}

// ---- Lifecycle --------------------------------------------------------------------------------------

TEST(PerfTelemetryLifecycle, InitAndTermSayTheProcessIdentifierToTheDebugger) {
  std::vector<std::string> texts;
  {
    const velm_test::DebugOutput output;
    CCmmPerfTelemetry::PerfTelemetryInit(0, "pid %s 9");
    CCmmPerfTelemetry::PerfTelemetryTerm();
    texts = output.Texts();
  }
  EXPECT_THAT(texts, Contains("CCmmPerfTelemetry::PerfTelemetryInit pID: pid %s 9"));
  EXPECT_THAT(texts, Contains("CCmmPerfTelemetry::PerfTelemetryTerm pID: pid %s 9"));
}

TEST(PerfTelemetryLifecycle, InitTurnsTheMasterSwitchOnAndNotTheSendSwitch) {
  CCmmPerfTelemetry::PerfTelemetryInit(0, "pid");
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 1);
  EXPECT_FALSE(CCmmPerfTelemetry::IsEnableSendMetrics());
  CCmmPerfTelemetry::PerfTelemetryTerm();
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 0);
}

TEST(PerfTelemetryLifecycle, TermLeavesTheSendSwitchAndTheHelperAsTheyWere) {
  const FakeSystem system;
  RecordingHelper helper;
  CCmmPerfTelemetry::PerfTelemetryInit(0, "pid");
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
  FakeSystem::ReleaseWorkThread();
  CCmmPerfTelemetry::PerfTelemetryTerm();
  EXPECT_TRUE(CCmmPerfTelemetry::IsEnableSendMetrics());

  CCmmPerfTelemetry::PerfTelemetryInit(0, "pid");
  EndLogin();
  CCmmPerfTelemetry::DoConsumeEvents();
  EXPECT_TRUE(WaitUntil([&] { return helper.Count() == 1; }));
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, nullptr);
  CCmmPerfTelemetry::PerfTelemetryTerm();
}

TEST(PerfTelemetryLifecycle, TermWaitsForTheWorkThreadAndItsHelper) {
  GatedHelper helper;
  CCmmPerfTelemetry::PerfTelemetryInit(0, "pid");
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
  EndLogin();
  for (int i = 0; i < 300; ++i)  // wakes the work thread
    CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {}, {}, 1);
  ASSERT_TRUE(WaitUntil([&] { return helper.begun.load(); }));
  EXPECT_EQ(AddOneOfEachKind(), 8);  // producers do not notice
  std::jthread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    helper.mayEnd = true;
  });
  CCmmPerfTelemetry::PerfTelemetryTerm();
  EXPECT_TRUE(helper.ended);
  CCmmPerfTelemetry::PerfTelemetryInit(0, "pid");
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, nullptr);
  CCmmPerfTelemetry::PerfTelemetryTerm();
}

using PerfTelemetry = PerfTelemetryTest;

TEST_F(PerfTelemetry, InitForgetsWhatWasCollectedAndBeginsAnew) {
  Report(Platform(1), 30);
  CCmmPerfTelemetry::DoConsumeEvents();
  Report(Platform(2), 30);
  CCmmPerfTelemetry::SetHeartbeatThreshold(1);
  CCmmPerfTelemetry::SetStackThreshold(2);
  CStringT<wchar_t> guid;
  CCmmPerfTelemetry::GetTelemetryGUID(guid);
  CCmmPerfTelemetry::PerfTelemetryInit(2000, "pid-8");
  EXPECT_TRUE(Send().empty());
  EXPECT_EQ(CCmmPerfTelemetry::GetHeartbeatThreshold(), 200u);
  EXPECT_EQ(CCmmPerfTelemetry::GetStackThreshold(), 20u);
  CCmmPerfTelemetry::GetTelemetryGUID(guid);
  EXPECT_TRUE(guid.EndsWith(L"_0", true));
  EndLogin();
  const Record record = SendOne();
  EXPECT_EQ(record.index, 0u);
  EXPECT_EQ(record.pid, "pid-8");
  EXPECT_EQ(record.cost, 7000u);
}

TEST_F(PerfTelemetry, OnlyTheThreadOfInitMeasuresLoginsFromTheStartOfTheApplication) {
  std::thread(EndLogin).join();
  EXPECT_EQ(SendOne().cost, 9000u);
}

TEST_F(PerfTelemetry, InitEndsTheReconnection) {
  CCmmPerfTelemetry::AddPerfTelemetryStart(Login(LoginEvent::xmpp_signon), {}, {}, 1);
  CCmmPerfTelemetry::DoConsumeEvents();
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  CCmmPerfTelemetry::PerfTelemetryInit(2000, "pid");
  Report(Platform(1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 0);
}

// ---- Switches ---------------------------------------------------------------------------------------

TEST_F(PerfTelemetry, EnablingSetsTheMasterSwitchToTheValueAndTheSendSwitchToItsTruth) {
  CCmmPerfTelemetry::EnablePerformanceMetrics(5, &m_helper);
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 5);
  EXPECT_TRUE(CCmmPerfTelemetry::IsEnableSendMetrics());
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetry(Platform(1), {}, {}), 1);
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 0);
  EXPECT_FALSE(CCmmPerfTelemetry::IsEnableSendMetrics());
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetry(Platform(1), {}, {}), 0);
}

TEST_F(PerfTelemetry, DisablingDropsAllData) {
  Report(Platform(1), 30);
  CCmmPerfTelemetry::DoConsumeEvents();
  Report(Platform(2), 30);
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  EXPECT_TRUE(Send().empty());
  Report(Platform(3), 30);
  EXPECT_EQ(SendOne().index, 0u);
}

TEST_F(PerfTelemetry, EveryKindIsQueuedWithTheMasterSwitchOnAndNoneWithItOff) {
  EXPECT_EQ(AddOneOfEachKind(), 8);
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  EXPECT_EQ(AddOneOfEachKind(), 0);
}

TEST_F(PerfTelemetry, AddPerfTelemetryRecordsNothing) {
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetry(Platform(1, 1), {}, {}), 1);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetry, ThresholdsAndTheUrgentFlagReadAsWritten) {
  CCmmPerfTelemetry::SetHeartbeatThreshold(0xFFFFFFFF);
  CCmmPerfTelemetry::SetStackThreshold(7);
  EXPECT_EQ(CCmmPerfTelemetry::GetHeartbeatThreshold(), 0xFFFFFFFF);
  EXPECT_EQ(CCmmPerfTelemetry::GetStackThreshold(), 7u);
  CCmmPerfTelemetry::SetUrgentEvent(3);
  EXPECT_EQ(CCmmPerfTelemetry::HasUrgentEvent(), 3);
  CCmmPerfTelemetry::SetUrgentEvent(0);
  EXPECT_EQ(CCmmPerfTelemetry::HasUrgentEvent(), 0);
}

// ---- Reconnection -----------------------------------------------------------------------------------

void SignOn() {
  CCmmPerfTelemetry::AddPerfTelemetryStart(Login(LoginEvent::xmpp_signon), {}, {}, 1);
  CCmmPerfTelemetry::DoConsumeEvents();
}

TEST_F(PerfTelemetry, AReconnectionCountsAfterASignOnOfTheSameThread) {
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  Report(Platform(1, 1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 0);

  std::thread(SignOn).join();
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  Report(Platform(1, 1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 0);

  SignOn();
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  Report(Platform(1, 1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 1);
}

TEST_F(PerfTelemetry, AReconnectionOfAThreadThatDidNotSignOnLeavesTheFlag) {
  SignOn();
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  std::thread(CCmmPerfTelemetry::PerfTelemetryReconnect).join();
  Report(Platform(1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 1);
}

TEST_F(PerfTelemetry, ALogoutEndsReconnectionAndSignOn) {
  SignOn();
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  CCmmPerfTelemetry::PerfTelemetryLogout();
  Report(Platform(1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 0);
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  Report(Platform(1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 0);
}

TEST_F(PerfTelemetry, ReconnectionAndLogoutDoNothingWithTheMasterSwitchOff) {
  SignOn();
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  CCmmPerfTelemetry::PerfTelemetryLogout();
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  Report(Platform(1), 30);
  EXPECT_EQ(SendOne().xmpp_reconnect, 1);
}

// ---- GUIDs and unique ids ---------------------------------------------------------------------------

TEST_F(PerfTelemetry, GuidsAreTheGuidOfTheProcessAndANumberFrom0) {
  CStringT<wchar_t> first = L"old";
  CStringT<wchar_t> second;
  EXPECT_EQ(CCmmPerfTelemetry::GetTelemetryGUID(first), 1);
  EXPECT_EQ(CCmmPerfTelemetry::GetTelemetryGUID(second), 1);
  ASSERT_EQ(first.size(), std::wcslen(L"{00112233-4455-6677-8899-AABBCCDDEEFF}_0"));
  EXPECT_EQ(first[0], L'{');
  EXPECT_EQ(first.substr(37), L"}_0");
  EXPECT_EQ(second.substr(37), L"}_1");
  EXPECT_EQ(first.substr(0, 38), second.substr(0, 38));
}

TEST_F(PerfTelemetry, GuidsAreGivenWithTheMasterSwitchOffToo) {
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  CStringT<wchar_t> guid;
  EXPECT_EQ(CCmmPerfTelemetry::GetTelemetryGUID(guid), 1);
  EXPECT_FALSE(guid.empty());
}

TEST_F(PerfTelemetry, AUniqueIdIsTakenOnce) {
  CCmmPerfTelemetry telemetry;
  telemetry.PushUniqueID(L"key", L"value");
  CStringT<wchar_t> value = L"old";
  EXPECT_EQ(telemetry.PopUniqueID(L"other", value), 0);
  EXPECT_EQ(value, L"old");
  EXPECT_EQ(CCmmPerfTelemetry().PopUniqueID(L"key", value), 1);  // the table is the process's
  EXPECT_EQ(value, L"value");
  EXPECT_EQ(telemetry.PopUniqueID(L"key", value), 0);
}

TEST_F(PerfTelemetry, TheFirstValueOfAUniqueIdStays) {
  CCmmPerfTelemetry telemetry;
  telemetry.PushUniqueID(L"key", L"first");
  telemetry.PushUniqueID(L"key", L"second");
  CStringT<wchar_t> value;
  EXPECT_EQ(telemetry.PopUniqueID(L"key", value), 1);
  EXPECT_EQ(value, L"first");
}

TEST_F(PerfTelemetry, UniqueIdsAreKeptOnlyWithTheMasterSwitchOn) {
  CCmmPerfTelemetry telemetry;
  telemetry.PushUniqueID(L"before", L"value");
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  telemetry.PushUniqueID(L"key", L"value");
  CStringT<wchar_t> value;
  EXPECT_EQ(telemetry.PopUniqueID(L"key", value), 0);
  EXPECT_EQ(telemetry.PopUniqueID(L"before", value), 1);
}

// ---- Queues -----------------------------------------------------------------------------------------

TEST_F(PerfTelemetry, The256thEntryWakesTheWorkThread) {
  for (int i = 0; i < 255; ++i)
    CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1);
  EXPECT_FALSE(FakeSystem::IsWoken());
  CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1);
  EXPECT_TRUE(FakeSystem::IsWoken());
}

TEST_F(PerfTelemetry, TheEntriesOfSeveralThreadsDoNotAddUp) {
  for (int thread = 0; thread < 3; ++thread)
    std::thread([] {
      for (int i = 0; i < 255; ++i)
        CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1);
    }).join();
  EXPECT_FALSE(FakeSystem::IsWoken());
}

TEST_F(PerfTelemetry, AQueueOf10000EntriesRefusesUntilItIsDrained) {
  for (int i = 0; i < 10000; ++i)
    ASSERT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1), 1);
  EXPECT_EQ(AddOneOfEachKind(), 0);
  int onAnotherThread = 0;
  std::thread([&] { onAnotherThread = AddOneOfEachKind(); }).join();
  EXPECT_EQ(onAnotherThread, 8);
  CCmmPerfTelemetry::DoConsumeEvents();
  EXPECT_EQ(AddOneOfEachKind(), 8);
}

TEST_F(PerfTelemetry, TheEventsOfTwoThreadsDoNotMeet) {
  CCmmPerfTelemetry::AddPerfTelemetryStart(Platform(1), {}, {}, 5000);
  std::thread([] { CCmmPerfTelemetry::AddPerfTelemetryEnd(Platform(1, 1), {}, {}, 5100, 0); }).join();
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetry, EachThreadHasAggregatesOfItsOwn) {
  Report(Platform(1), 30);
  std::thread([] { Report(Platform(1), 40); }).join();
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].count + records[1].count, 0u);
  EXPECT_EQ(records[0].index + records[1].index, 1u);
}

TEST_F(PerfTelemetry, TheRecordsOfAThreadThatEndedAreSent) {
  std::thread([] { Report(Platform(1), 30); }).join();
  EXPECT_EQ(SendOne().cost, 30u);
}

TEST_F(PerfTelemetry, AThreadGoesOnReportingAfterCleaningUp) {
  for (int round = 0; round < 5; ++round) {
    CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
    CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
    Report(Platform(1), 30);
    EXPECT_EQ(SendOne().cost, 30u);
  }
}

TEST_F(PerfTelemetry, AThreadDoesNotReportIntoWhatAnotherTookOverFromIt) {
  Report(Platform(1), 30);
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  std::thread([] { Report(Platform(1), 40); }).join();
  Report(Platform(1), 50);
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].count + records[1].count, 0u);
  EXPECT_EQ(records[0].cost + records[1].cost, 90u);
}

TEST_F(PerfTelemetry, AThreadDoesNotReportIntoWhatASendStillHolds) {
  GatedHelper helper;
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
  Report(Platform(1, 1), 30);
  std::jthread sender([] {
    CCmmPerfTelemetry::DoConsumeEvents();
    CCmmPerfTelemetry::DoSendEvents();
  });
  EXPECT_TRUE(WaitUntil([&] { return helper.begun.load(); }));
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  Report(Platform(1, 1), 40);
  helper.mayEnd = true;
  sender.join();
  EXPECT_EQ(SendOne().cost, 40u);
}

// ---- The work thread --------------------------------------------------------------------------------

TEST_F(PerfTelemetry, TheWorkThreadWaitsFiveMinutesAtMost) {
  EXPECT_TRUE(FakeSystem::GoARound());
  EXPECT_EQ(FakeSystem::WaitLimit(), 300000u);
}

TEST_F(PerfTelemetry, TheWorkThreadDrainsInEachRoundAndSendsAfterFiveMinutes) {
  Report(Platform(1), 30);
  ASSERT_TRUE(FakeSystem::GoARound());
  FakeSystem::AdvanceNow(Cmm::TimeDelta::FromMicroseconds(299999999));
  Report(Platform(1), 30);
  ASSERT_TRUE(FakeSystem::GoARound());
  EXPECT_EQ(m_helper.Count(), 0u);
  FakeSystem::AdvanceNow(Cmm::TimeDelta::FromMicroseconds(1));
  ASSERT_TRUE(FakeSystem::GoARound());
  const auto records = m_helper.Take();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].count, 2u);
}

TEST_F(PerfTelemetry, TheNextSendIsFiveMinutesBehindTheLast) {
  ASSERT_TRUE(FakeSystem::GoARound());
  FakeSystem::AdvanceNow(Cmm::TimeDelta::FromSeconds(400));
  ASSERT_TRUE(FakeSystem::GoARound());
  Report(Platform(1), 30);
  FakeSystem::AdvanceNow(Cmm::TimeDelta::FromSeconds(299));
  ASSERT_TRUE(FakeSystem::GoARound());
  EXPECT_EQ(m_helper.Count(), 0u);
  FakeSystem::AdvanceNow(Cmm::TimeDelta::FromSeconds(1));
  ASSERT_TRUE(FakeSystem::GoARound());
  EXPECT_EQ(m_helper.Count(), 1u);
}

TEST_F(PerfTelemetry, AnUrgentEventIsSentAtOnceWithAllElseAndTheFlagIsCleared) {
  Report(Platform(1), 30);
  EndLogin();
  ASSERT_TRUE(FakeSystem::GoARound());
  EXPECT_EQ(m_helper.Count(), 2u);
  EXPECT_EQ(CCmmPerfTelemetry::HasUrgentEvent(), 0);
  Report(Platform(1), 30);
  ASSERT_TRUE(FakeSystem::GoARound());
  EXPECT_EQ(m_helper.Count(), 2u);
}

TEST_F(PerfTelemetry, TheEndOfARoundTakesBackWhatWokeTheThread) {
  for (int i = 0; i < 256; ++i)
    CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1);
  EXPECT_TRUE(FakeSystem::IsWoken());
  ASSERT_TRUE(FakeSystem::GoARound());
  EXPECT_FALSE(FakeSystem::IsWoken());
}

TEST_F(PerfTelemetry, TheThreadIsWokenAgainAfterARound) {
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 300; ++i)
      CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1);
    EXPECT_TRUE(FakeSystem::IsWoken());
    ASSERT_TRUE(FakeSystem::GoARound());
    EXPECT_FALSE(FakeSystem::IsWoken());
  }
}

class PerfTelemetryWithoutSending : public testing::Test {
 protected:
  PerfTelemetryWithoutSending() { CCmmPerfTelemetry::PerfTelemetryInit(0, "pid"); }
  ~PerfTelemetryWithoutSending() override {
    CCmmPerfTelemetry::EnablePerformanceMetrics(0, nullptr);
    FakeSystem::ReleaseWorkThread();
    CCmmPerfTelemetry::PerfTelemetryTerm();
  }

  FakeSystem m_system;
  RecordingHelper m_helper;
};

TEST_F(PerfTelemetryWithoutSending, QueuesDrainAndAggregatesGrowAndNothingIsSent) {
  EXPECT_FALSE(CCmmPerfTelemetry::IsEnableSendMetrics());
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 10000; ++i)
      ASSERT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(i % 500 + 1), {}, {}, 30), 1);
    FakeSystem::AdvanceNow(Cmm::TimeDelta::FromSeconds(301));
    ASSERT_TRUE(FakeSystem::GoARound());
  }
  EndLogin();
  ASSERT_TRUE(FakeSystem::GoARound());
  EXPECT_EQ(CCmmPerfTelemetry::HasUrgentEvent(), 0);

  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  ASSERT_TRUE(FakeSystem::GoARound());
  const auto records = m_helper.Take();
  EXPECT_EQ(records.size(), 401u);
  EXPECT_EQ(records[0].events.login_event, LoginEvent::im_ready);
  for (size_t i = 1; i < records.size(); ++i)
    EXPECT_EQ(records[i].count, 60u);
}

}  // namespace
