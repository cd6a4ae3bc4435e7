#include "telemetry/PerfTelemetryScopes.h"

#include <windows.h>

#include <optional>
#include <string>
#include <type_traits>

#include "gtest/gtest.h"
#include "tests/telemetry/PerfTelemetryFixture.h"

namespace {

using namespace cmm_perf_telemetry_testing;
using PerfTelemetryScopes = PerfTelemetryTest;

static_assert(std::is_copy_constructible_v<CCmmPerfTelemetryEventWOStack> &&
              std::is_copy_assignable_v<CCmmPerfTelemetryEventWOStack>);
static_assert(std::is_copy_constructible_v<CCmmPerfTelemetryEventWStack> &&
              std::is_copy_assignable_v<CCmmPerfTelemetryEventWStack>);
static_assert(std::is_copy_constructible_v<CCmmPerfTelemetryStacks> &&
              std::is_copy_assignable_v<CCmmPerfTelemetryStacks>);
static_assert(std::is_copy_constructible_v<CCmmPerfTelemetryLog> &&
              std::is_copy_assignable_v<CCmmPerfTelemetryLog>);

TEST_F(PerfTelemetryScopes, APlainScopeReportsItsLifeWithItsTags) {
  {
    const CCmmPerfTelemetryEventWOStack scope(Platform(1), {{StrTag::str_1, "a"}}, {{IntTag::tag_1, 5}});
    FakeSystem::AdvanceTicks(45);
  }
  const Record record = SendOne();
  EXPECT_EQ(record.events.platform_event, PlatformEvent::open_session_action);
  EXPECT_EQ(record.cost, 45u);
  EXPECT_EQ(record.str_1, "a");
  EXPECT_EQ(record.tag_1, 5);
}

TEST_F(PerfTelemetryScopes, AFastScopeIsDropped) {
  {
    const CCmmPerfTelemetryEventWOStack scope(Platform(1), {}, {});
    FakeSystem::AdvanceTicks(20);
  }
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryScopes, ACopyReportsAnEndOfItsOwnThatFindsNoStart) {
  {
    const CCmmPerfTelemetryEventWOStack scope(Platform(1), {{StrTag::str_1, "a"}}, {});
    FakeSystem::AdvanceTicks(30);
    { const CCmmPerfTelemetryEventWOStack copy = scope; }
    FakeSystem::AdvanceTicks(30);
  }
  const Record record = SendOne();
  EXPECT_EQ(record.cost, 30u);  // the copy's, which ended first
  EXPECT_EQ(record.str_1, "a");
}

TEST_F(PerfTelemetryScopes, AScopeWithACallRecordReportsTheCallsInside) {
  {
    const CCmmPerfTelemetryEventWStack scope(Login(LoginEvent::broadcast_sync_msg_handler), {}, {}, L"key");
    {
      const CCmmPerfTelemetryStacks call("LoadModule - a", "CmmPTUtil", 0);
      FakeSystem::AdvanceTicks(35);
    }
    {
      const CCmmPerfTelemetryStacks call("fast", "CmmPTUtil", 0);
      FakeSystem::AdvanceTicks(20);
    }
  }
  const Record record = SendOne();
  EXPECT_EQ(record.events.login_event, LoginEvent::broadcast_sync_msg_handler);
  EXPECT_EQ(record.cost, 55u);
  EXPECT_EQ(record.stack_log, R"([{"m":"LoadModule - a","f":"CmmPTUtil","t":"35"}])");
}

TEST_F(PerfTelemetryScopes, AScopeWithAKeyTakesNoGuid) {
  { const CCmmPerfTelemetryEventWStack scope(Platform(1), {}, {}, L"key"); }
  Cmm::CStringT<wchar_t> guid;
  CCmmPerfTelemetry::GetTelemetryGUID(guid);
  EXPECT_TRUE(guid.EndsWith(L"_0", true));
}

TEST_F(PerfTelemetryScopes, AnEmptyKeyIsMadeUniqueSoThatEventsOfOneIdentityNest) {
  {
    const CCmmPerfTelemetryEventWStack outer(Platform(1, 1), {}, {}, L"");
    FakeSystem::AdvanceTicks(30);
    {
      const CCmmPerfTelemetryEventWStack inner(Platform(1, 2), {}, {}, L"");
      FakeSystem::AdvanceTicks(30);
    }
    FakeSystem::AdvanceTicks(30);
  }
  const auto records = Send();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].events.result, 2);
  EXPECT_EQ(records[0].cost, 30u);
  EXPECT_EQ(records[1].events.result, 1);
  EXPECT_EQ(records[1].cost, 90u);
  Cmm::CStringT<wchar_t> guid;
  CCmmPerfTelemetry::GetTelemetryGUID(guid);
  EXPECT_TRUE(guid.EndsWith(L"_2", true));
}

TEST_F(PerfTelemetryScopes, ALogScopeReportsNothing) {
  {
    const CCmmPerfTelemetryEventWStack scope(Platform(1), {}, {}, L"key");
    const CCmmPerfTelemetryLog log("CCmmDynamicModule::LoadModule", "cmmlib", 0, "detail");
    const CCmmPerfTelemetryLog copy = log;
    FakeSystem::AdvanceTicks(500);
  }
  EXPECT_EQ(SendOne().stack_log, "");
}

TEST_F(PerfTelemetryScopes, AScopeMadeWithTheMasterSwitchOffRecordsNothingLater) {
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  {
    const CCmmPerfTelemetryEventWStack outer(Platform(1, 1), {}, {}, L"key");
    const CCmmPerfTelemetryEventWOStack inner(Platform(2, 1), {}, {});
    const CCmmPerfTelemetryStacks call("call", "src", 0);
    const CCmmPerfTelemetryLog log("call", "src", 0, "detail");
    FakeSystem::AdvanceTicks(500);
    CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  }
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryScopes, AScopeThatOutlivesTheMasterSwitchRecordsNoEnd) {
  {
    const CCmmPerfTelemetryEventWOStack scope(Platform(2, 1), {}, {});
    CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  }
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryScopes, AScopeLeavesTheLastErrorOfTheThread) {
  // Enough of them to grow the queue and to wake the work thread.
  for (int i = 0; i < 1500; ++i) {
    SetLastError(4711);
    {
      const CCmmPerfTelemetryEventWStack scope(Platform(1), {{StrTag::str_1, std::string(40, 'a')}}, {}, L"");
      const CCmmPerfTelemetryStacks call("call", "src", 0);
    }
    ASSERT_EQ(GetLastError(), 4711u);
  }
}

}  // namespace
