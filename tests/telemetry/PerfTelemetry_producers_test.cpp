// Many threads that report at full speed, the real work thread, and nothing lost without being refused.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

#include "gtest/gtest.h"
#include "telemetry/PerfTelemetry.h"
#include "telemetry/PerfTelemetryScopes.h"
#include "tests/support/WaitUntil.h"
#include "tests/telemetry/PerfTelemetryFixture.h"

namespace {

using namespace cmm_perf_telemetry_testing;

constexpr int kThreads = 6;

// Adds up the calls that the records stand for.
class CountingHelper : public Cmm::IPerfTelemetryHelper {
 public:
  explicit CountingHelper(std::chrono::milliseconds delay = {}) : m_delay(delay) {}

  void SendPerfMetrics(const Record& record) override {
    if (m_delay.count() > 0) std::this_thread::sleep_for(m_delay);
    if (record.events.platform_event == static_cast<PlatformEvent>(1))
      m_calls += record.count == 0 ? 1 : record.count;
  }

  uint64_t Calls() const { return m_calls; }

 private:
  const std::chrono::milliseconds m_delay;
  std::atomic<uint64_t> m_calls = 0;
};

class PerfTelemetryProducers : public testing::Test {
 protected:
  ~PerfTelemetryProducers() override { TurnOff(); }

  static void TurnOn(Cmm::IPerfTelemetryHelper* helper) {
    CCmmPerfTelemetry::PerfTelemetryInit(0, "pid");
    CCmmPerfTelemetry::EnablePerformanceMetrics(1, helper);
  }
  static void TurnOff() {
    CCmmPerfTelemetry::EnablePerformanceMetrics(0, nullptr);
    CCmmPerfTelemetry::PerfTelemetryTerm();
  }

  static void OnThreads(const std::function<void()>& body) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i)
      threads.emplace_back(body);
  }

  // A login total makes the work thread send what came before it on all threads that are silent by now.
  static void SendAll() {
    CCmmPerfTelemetry::AddPerfTelemetryEnd(Login(LoginEvent::im_ready), {}, {}, 1, 0);
    for (int i = 0; i < 256; ++i)
      CCmmPerfTelemetry::AddPerfTelemetryStacks("m", "f", 1);
  }
};

TEST_F(PerfTelemetryProducers, WhatIsQueuedIsConsumedAndTheRestWasRefused) {
  constexpr int kEvents = 40000;
  CountingHelper helper;
  TurnOn(&helper);
  std::atomic<uint64_t> queued = 0;
  std::atomic<uint64_t> refused = 0;
  OnThreads([&] {
    uint64_t accepted = 0;
    for (int i = 0; i < kEvents; ++i)
      accepted += static_cast<uint64_t>(CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {}, {}, 30));
    queued += accepted;
    refused += kEvents - accepted;
  });
  EXPECT_EQ(queued + refused, uint64_t{kThreads} * kEvents);
  EXPECT_TRUE(WaitUntil([&] {
    SendAll();
    return helper.Calls() >= queued;
  }));
  EXPECT_EQ(helper.Calls(), queued);
  EXPECT_GT(queued, uint64_t{kThreads} * 9999);
}

TEST_F(PerfTelemetryProducers, AFullQueueRefusesExactlyWhatItDoesNotTake) {
  const FakeSystem system;  // holds the work thread
  CountingHelper helper;
  TurnOn(&helper);
  std::atomic<uint64_t> queued = 0;
  OnThreads([&] {
    uint64_t accepted = 0;
    for (int i = 0; i < 12345; ++i)
      accepted += static_cast<uint64_t>(CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1), {}, {}, 30));
    queued += accepted;
  });
  EXPECT_EQ(queued, uint64_t{kThreads} * 10000);
  CCmmPerfTelemetry::DoConsumeEvents();
  CCmmPerfTelemetry::DoSendEvents();
  EXPECT_EQ(helper.Calls(), queued);
  FakeSystem::ReleaseWorkThread();
  TurnOff();
}

TEST_F(PerfTelemetryProducers, ASlowHelperHoldsNoProducerUp) {
  CountingHelper helper(std::chrono::milliseconds(100));
  TurnOn(&helper);
  for (int i = 1; i <= 20; ++i)  // two seconds of the helper's time
    CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1, i), {}, {}, 30);
  SendAll();
  ASSERT_TRUE(WaitUntil([&] { return helper.Calls() > 0; }));
  int refused = 0;
  for (int i = 0; i < 9000; ++i)  // behind what is left of SendAll
    refused += CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(2), {}, {}, 30) == 0;
  EXPECT_LT(helper.Calls(), 20u) << "the producer waited for the helper";
  EXPECT_EQ(refused, 0);
  EXPECT_TRUE(WaitUntil([&] { return helper.Calls() == 20; }));
}

TEST_F(PerfTelemetryProducers, WithoutAHelperTheWorkThreadGoesOnDraining) {
  TurnOn(nullptr);
  OnThreads([&] {
    for (int i = 0; i < 30000; ++i)
      CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1, i), {}, {}, 30);
  });
  SendAll();
  CountingHelper helper;
  EXPECT_TRUE(WaitUntil([&] {
    CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
    CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1, 1), {}, {}, 30);
    SendAll();
    return helper.Calls() > 0;
  }));
}

// Scopes of all kinds, nested, until told to end.
void ReportUntil(const std::atomic<bool>& end) {
  for (int i = 0; !end; ++i) {
    const CCmmPerfTelemetryEventWOStack plain(Platform(1, 1), {{StrTag::str_1, "a"}}, {{IntTag::tag_1, 1}});
    const CCmmPerfTelemetryEventWStack withStack(Platform(2, 1), {}, {}, L"");
    const CCmmPerfTelemetryStacks call("method", "source", 0);
    CCmmPerfTelemetry::AddPerfTelemetryStacks("slow", "source", 1000);
    if (i % 1000 == 0) CCmmPerfTelemetry::AddPerfTelemetryEnd(Login(LoginEvent::im_ready), {}, {}, 1, 0);
  }
}

// Runs `control` again and again while producers report.
void ControlWhileProducing(const std::function<void()>& control) {
  std::atomic<bool> end = false;
  std::vector<std::jthread> producers;
  for (int i = 0; i < kThreads; ++i)
    producers.emplace_back([&] { ReportUntil(end); });
  for (int i = 0; i < 20; ++i)
    control();
  end = true;
}

TEST_F(PerfTelemetryProducers, InitAndTermMayComeWhileTheyReport) {
  CountingHelper helper;
  ControlWhileProducing([&] {
    TurnOn(&helper);
    std::this_thread::yield();
    CCmmPerfTelemetry::PerfTelemetryTerm();
  });
  TurnOn(&helper);
  const uint64_t before = helper.Calls();
  CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1, 1), {}, {}, 30);
  SendAll();
  EXPECT_TRUE(WaitUntil([&] { return helper.Calls() == before + 1; }));
}

TEST_F(PerfTelemetryProducers, TheMasterSwitchMayChangeWhileTheyReport) {
  CountingHelper helper;
  TurnOn(&helper);
  ControlWhileProducing([&] {
    CCmmPerfTelemetry::EnablePerformanceMetrics(0, &helper);
    CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  });
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
  const uint64_t before = helper.Calls();
  CCmmPerfTelemetry::AddPerfTelemetryEvent(Platform(1, 1), {}, {}, 30);
  EXPECT_TRUE(WaitUntil([&] {
    SendAll();
    return helper.Calls() > before;
  }));
}

TEST_F(PerfTelemetryProducers, InitMayComeAgainWhileTheyReport) {
  CountingHelper helper;
  ControlWhileProducing([&] { TurnOn(&helper); });
  EXPECT_EQ(CCmmPerfTelemetry::IsEnablePerformanceMetrics(), 1);
}

TEST_F(PerfTelemetryProducers, GuidsOfAllThreadsAreDifferent) {
  TurnOn(nullptr);
  constexpr int kGuids = 500;
  OnThreads([] {
    Cmm::CStringT<wchar_t> guid;
    for (int i = 0; i < kGuids; ++i)
      CCmmPerfTelemetry::GetTelemetryGUID(guid);
  });
  Cmm::CStringT<wchar_t> guid;
  CCmmPerfTelemetry::GetTelemetryGUID(guid);
  EXPECT_TRUE(guid.EndsWith((L"_" + std::to_wstring(kThreads * kGuids)).c_str(), true))
      << "a number was given twice";
}

}  // namespace
