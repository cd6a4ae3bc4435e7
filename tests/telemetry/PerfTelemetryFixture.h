#pragma once

// The collector with clocks that the test moves by hand and a work thread that goes a round when it is told.

#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "telemetry/PerfTelemetry.h"
#include "telemetry/PerfTelemetrySystem.h"
#include "tests/support/WaitUntil.h"

namespace cmm_perf_telemetry_testing {

using Cmm::CCmmPerfTelemetry;
using Events = VelmPTPAAP::PerfMetricsEvents_s;
using Record = VelmPTPAAP::VClientPerfMetricsInfo_s;
using LoginEvent = e_chat_perfmetrics_Perfmetrics_login_event;
using FetchEvent = e_chat_perfmetrics_Perfmetrics_fetch_event;
using FetchHandlerEvent = e_chat_perfmetrics_Perfmetrics_fetch_handler_event;
using HeartbeatEvent = e_chat_perfmetrics_Perfmetrics_heartbeat_event;
using MessageEvent = e_chat_perfmetrics_Perfmetrics_message_event;
using MessageHandlerEvent = e_chat_perfmetrics_Perfmetrics_message_handler_event;
using PlatformEvent = e_chat_perfmetrics_Perfmetrics_platform_event;
using FileEvent = e_chat_perfmetrics_Perfmetrics_file_event;
using StrTag = e_chat_perfmetrics_Perfmetrics_event_tag_str;
using IntTag = e_chat_perfmetrics_Perfmetrics_event_tag_int;

inline Events Platform(int event, int result = 0, int subResult = 0) {
  Events events;
  events.platform_event = static_cast<PlatformEvent>(event);
  events.result = result;
  events.sub_result = subResult;
  return events;
}

inline Events Heartbeat(int event) {
  Events events;
  events.heartbeat_event = static_cast<HeartbeatEvent>(event);
  return events;
}

inline Events Login(LoginEvent event) {
  Events events;
  events.login_event = event;
  return events;
}

class RecordingHelper : public Cmm::IPerfTelemetryHelper {
 public:
  void SendPerfMetrics(const Record& record) override {
    std::lock_guard guard(m_lock);
    m_records.push_back(record);
  }

  std::vector<Record> Take() {
    std::lock_guard guard(m_lock);
    return std::exchange(m_records, {});
  }
  size_t Count() {
    std::lock_guard guard(m_lock);
    return m_records.size();
  }

 private:
  std::mutex m_lock;
  std::vector<Record> m_records;  // guarded by m_lock
};

// The system as the collector sees it while one of these lives.
class FakeSystem {
 public:
  static constexpr uint32_t kLoadPercent = 42;
  static constexpr uint64_t kTotalBytes = 8ull << 30;

  FakeSystem();
  FakeSystem(const FakeSystem&) = delete;
  FakeSystem& operator=(const FakeSystem&) = delete;
  ~FakeSystem();

  static void SetTicks(uint32_t ms);
  static void AdvanceTicks(uint32_t ms);
  static void SetNow(Cmm::Time now);
  static void AdvanceNow(Cmm::TimeDelta span);
  static void SetPhysicalMemory(Cmm::internal::PhysicalMemory memory);

  // Ends the work thread's wait, and waits until the round behind it is over. False when that took too long.
  static bool GoARound();
  // From now on the work thread waits for its real event, without a time limit that would matter.
  static void ReleaseWorkThread();
  // Whether the event that the work thread waits for is set.
  static bool IsWoken();
  // What the work thread's last wait was limited to.
  static uint32_t WaitLimit();

 private:
  const Cmm::internal::PerfTelemetrySystem m_real = Cmm::internal::g_perfTelemetrySystem;
};

// A collector that was initialised at tick 1000 and is on, with the work thread held.
class PerfTelemetryTest : public testing::Test {
 protected:
  static constexpr uint32_t kStartTicks = 5000;
  static constexpr uint64_t kAppStartTicks = 1000;

  PerfTelemetryTest();
  ~PerfTelemetryTest() override;

  // An event from `startTicks` on that took `cost`.
  static void Report(const Events& events, uint64_t cost, Cmm::PerfTelemetryStrTags strTags = {},
                     Cmm::PerfTelemetryIntTags intTags = {});
  static void ReportWithStack(const Events& events, const Cmm::CStringT<wchar_t>& key, uint64_t cost);

  // Works off the queues and gives what is to be sent.
  std::vector<Record> Send();
  // The one record that is to be sent; fails when there is another number of them.
  Record SendOne();

  FakeSystem m_system;
  RecordingHelper m_helper;
};

}  // namespace cmm_perf_telemetry_testing
