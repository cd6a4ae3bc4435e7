#include "telemetry/PerfTelemetryHelpers.h"

#include <windows.h>

#include <string>
#include <utility>

#include "gtest/gtest.h"
#include "tests/telemetry/PerfTelemetryFixture.h"

namespace {

using namespace cmm_perf_telemetry_testing;

TEST(MakeOutPlatformEvent, SetsTheEventAndTheTextInTheAnsiCodePage) {
  Events events;
  Cmm::PerfTelemetryStrTags strTags = {{StrTag::str_2, "old"}};
  Cmm::PerfTelemetryIntTags intTags = {{IntTag::tag_1, 1}};
  MakeOutPlatformEvent(events, PlatformEvent::notify_handler, StrTag::str_2, L"caf\u00e9", strTags, intTags);
  EXPECT_EQ(events.platform_event, PlatformEvent::notify_handler);
  char expected[16] = {};
  WideCharToMultiByte(CP_ACP, 0, L"caf\u00e9", -1, expected, sizeof(expected), nullptr, nullptr);
  EXPECT_EQ(strTags, (Cmm::PerfTelemetryStrTags{{StrTag::str_2, expected}}));
  EXPECT_EQ(intTags, (Cmm::PerfTelemetryIntTags{{IntTag::tag_1, 1}}));
}

TEST(MakeOutPlatformEvent, AnEmptyTextMakesAnEmptyTag) {
  Events events;
  Cmm::PerfTelemetryStrTags strTags = {{StrTag::str_1, "old"}};
  Cmm::PerfTelemetryIntTags intTags;
  MakeOutPlatformEvent(events, PlatformEvent::notify_handler, StrTag::str_1, L"", strTags, intTags);
  EXPECT_EQ(strTags, (Cmm::PerfTelemetryStrTags{{StrTag::str_1, ""}}));
}

TEST(MakeOutPlatformEvent, SetsAnIntegerTagUnlessItIsThere) {
  Events events;
  Cmm::PerfTelemetryStrTags strTags;
  Cmm::PerfTelemetryIntTags intTags;
  for (const int value : {-5, 6})
    MakeOutPlatformEvent(events, PlatformEvent::notify_handler, StrTag::str_1, L"a", IntTag::tag_3, value,
                         strTags, intTags);
  EXPECT_EQ(intTags, (Cmm::PerfTelemetryIntTags{{IntTag::tag_3, -5}}));
  EXPECT_EQ(strTags, (Cmm::PerfTelemetryStrTags{{StrTag::str_1, "a"}}));
}

using PerfTelemetryHelpers = PerfTelemetryTest;

TEST_F(PerfTelemetryHelpers, APlatformEventIsReportedBetweenTwoCalls) {
  EXPECT_EQ(AddPlatformPerfMetricsStart(PlatformEvent::get_thread_data, StrTag::str_1, L"start", L"id-1"), 1);
  FakeSystem::AdvanceTicks(60);
  EXPECT_EQ(AddPlatformPerfMetricsEnd(PlatformEvent::get_thread_data, StrTag::str_2, L"end", IntTag::tag_3,
                                      33, 7, 8, L"id-1"),
            1);
  const Record record = SendOne();
  EXPECT_EQ(record.events.platform_event, PlatformEvent::get_thread_data);
  EXPECT_EQ(record.events.id, L"id-1");
  EXPECT_EQ(record.events.result, 7);
  EXPECT_EQ(record.events.sub_result, 8);
  EXPECT_EQ(record.cost, 60u);
  EXPECT_EQ(record.str_1, "start");
  EXPECT_EQ(record.str_2, "end");
  EXPECT_EQ(record.tag_3, 33);
}

TEST_F(PerfTelemetryHelpers, PlatformEventsAreToldApartByTheirIds) {
  AddPlatformPerfMetricsStart(PlatformEvent::get_thread_data, StrTag::str_1, L"", L"id-1");
  AddPlatformPerfMetricsEnd(PlatformEvent::get_thread_data, StrTag::str_1, L"", IntTag::tag_3, 0, 1, 0,
                            L"id-2");
  EXPECT_TRUE(Send().empty());
}

TEST_F(PerfTelemetryHelpers, AMessageIsReportedWithItsValueInTheIdentityAndInTag8) {
  EXPECT_EQ(AddMessagePerfMetricsStart(MessageEvent::send_message, L"m", 0xFFFFFFFE), 1);
  FakeSystem::AdvanceTicks(25);
  EXPECT_EQ(AddMessagePerfMetricsEnd(MessageEvent::send_message, L"m", 3, 4), 1);
  const Record record = SendOne();
  EXPECT_EQ(record.events.message_event, MessageEvent::send_message);
  EXPECT_EQ(record.events.id, L"m");
  EXPECT_EQ(record.events.value, 0xFFFFFFFEu);
  EXPECT_EQ(record.tag_8, 0xFFFFFFFE);
  EXPECT_EQ(record.events.result, 3);
  EXPECT_EQ(record.events.sub_result, 4);
  EXPECT_EQ(record.cost, 25u);
}

TEST_F(PerfTelemetryHelpers, ReportNothingWithTheMasterSwitchOff) {
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, &m_helper);
  EXPECT_EQ(AddPlatformPerfMetricsStart(PlatformEvent::get_thread_data, StrTag::str_1, L"", L"i"), 0);
  EXPECT_EQ(AddPlatformPerfMetricsEnd(PlatformEvent::get_thread_data, StrTag::str_1, L"", IntTag::tag_3, 0, 1,
                                      0, L"i"),
            0);
  EXPECT_EQ(AddMessagePerfMetricsStart(MessageEvent::send_message, L"m", 1), 0);
  EXPECT_EQ(AddMessagePerfMetricsEnd(MessageEvent::send_message, L"m", 0, 0), 0);
}

}  // namespace
