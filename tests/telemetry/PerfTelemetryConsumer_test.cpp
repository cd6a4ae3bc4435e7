// The collector as a sibling module sees it: the public headers and the DLL.

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "telemetry/PerfTelemetry.h"
#include "telemetry/PerfTelemetryHelpers.h"
#include "telemetry/PerfTelemetryScopes.h"
#include "tests/support/WaitUntil.h"

namespace {

using Cmm::CCmmPerfTelemetry;
using LoginEvent = e_chat_perfmetrics_Perfmetrics_login_event;
using PlatformEvent = e_chat_perfmetrics_Perfmetrics_platform_event;
using StrTag = e_chat_perfmetrics_Perfmetrics_event_tag_str;
using IntTag = e_chat_perfmetrics_Perfmetrics_event_tag_int;
using Record = VelmPTPAAP::VClientPerfMetricsInfo_s;

class Helper : public Cmm::IPerfTelemetryHelper {
 public:
  void SendPerfMetrics(const Record& record) override {
    std::lock_guard guard(m_lock);
    m_records.push_back(record);
  }
  std::vector<Record> Records() {
    std::lock_guard guard(m_lock);
    return m_records;
  }

 private:
  std::mutex m_lock;
  std::vector<Record> m_records;
};

TEST(PerfTelemetryConsumer, ScopesAndHelpersReachTheHostsHelper) {
  Helper helper;
  CCmmPerfTelemetry::PerfTelemetryInit(1, "consumer");
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
  VelmPTPAAP::PerfMetricsEvents_s failed;
  failed.platform_event = PlatformEvent::notify_handler;
  failed.result = 1;
  {
    const CCmmPerfTelemetryEventWOStack plain(failed, {{StrTag::str_1, "text"}}, {{IntTag::tag_4, 4}});
    const CCmmPerfTelemetryEventWStack withStack(failed, {}, {}, L"");
    const CCmmPerfTelemetryStacks call("method", "source", 0);
    const CCmmPerfTelemetryLog log("method", "source", 0, "detail");
  }
  AddPlatformPerfMetricsStart(PlatformEvent::get_thread_data, StrTag::str_1, L"a", L"id");
  AddPlatformPerfMetricsEnd(PlatformEvent::get_thread_data, StrTag::str_1, L"a", IntTag::tag_3, 3, 1, 0,
                            L"id");
  AddMessagePerfMetricsStart(e_chat_perfmetrics_Perfmetrics_message_event::send_message, L"m", 5);
  AddMessagePerfMetricsEnd(e_chat_perfmetrics_Perfmetrics_message_event::send_message, L"m", 1, 0);
  VelmPTPAAP::PerfMetricsEvents_s ready;
  ready.login_event = LoginEvent::im_ready;
  CCmmPerfTelemetry::AddPerfTelemetryEnd(ready, {}, {}, 0, 0);
  for (int i = 0; i < 256; ++i)
    CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1);
  EXPECT_TRUE(WaitUntil([&] { return helper.Records().size() == 5; }));
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, nullptr);
  CCmmPerfTelemetry::PerfTelemetryTerm();
  for (const Record& record : helper.Records()) {
    EXPECT_EQ(record.pid, "consumer");
    EXPECT_EQ(record.version, "3.0");
  }
}

TEST(PerfTelemetryConsumer, TheRestOfTheInterfaceIsThere) {
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 0);
  EXPECT_FALSE(CCmmPerfTelemetry::IsEnableSendMetrics());
  CCmmPerfTelemetry::SetHeartbeatThreshold(CCmmPerfTelemetry::GetHeartbeatThreshold());
  CCmmPerfTelemetry::SetStackThreshold(CCmmPerfTelemetry::GetStackThreshold());
  CCmmPerfTelemetry::SetUrgentEvent(CCmmPerfTelemetry::HasUrgentEvent());
  CCmmPerfTelemetry::PerfTelemetryReconnect();
  CCmmPerfTelemetry::PerfTelemetryLogout();
  Cmm::CStringT<wchar_t> text;
  EXPECT_EQ(CCmmPerfTelemetry::GetTelemetryGUID(text), 1);
  int loadPercent = 0;
  int processMB = 0;
  EXPECT_EQ(CCmmPerfTelemetry::GetMemoryUsage(loadPercent, processMB), 1);
  CCmmPerfTelemetry telemetry;
  telemetry.PushUniqueID(L"k", L"v");
  EXPECT_EQ(telemetry.PopUniqueID(L"k", text), 0);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetry({}, {}, {}), 0);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStart({}, {}, {}, 0), 0);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStartWithID({}, {}, {}, L"k", 0), 0);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEndWithID({}, {}, {}, L"k", 0, 0), 0);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStartWStack({}, {}, {}, L"k", 0), 0);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEndWStack({}, {}, {}, L"k", 0, 0), 0);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEvent({}, {}, {}, 0), 0);
  CCmmPerfTelemetry::DoConsumeEvents();
  CCmmPerfTelemetry::DoSendEvents();
}

TEST(PerfTelemetryConsumer, TheConvertersAreThere) {
  EXPECT_EQ(MetricsLoginEventToString(LoginEvent::broadcast_sync_msg_handler), "broadcast_sync_msg_handler");
  EXPECT_EQ(MetricsFetchEventToString({}), "undefined_fetch");
  EXPECT_EQ(MetricsFetchHandlerEventToString({}), "undefined_fetch_handler");
  EXPECT_EQ(MetricsHeartBeatEventToString({}), "undefined_heartbeat");
  EXPECT_EQ(MetricsMessageEventToString({}), "undefined_msg");
  EXPECT_EQ(MetricsMessageHandlerEventToString({}), "undefined_msg_handler");
  EXPECT_EQ(MetricsPlatformEventToString({}), "undefined_platform");
  EXPECT_EQ(MetricsFileEventToString({}), "undefined_file");
}

}  // namespace
