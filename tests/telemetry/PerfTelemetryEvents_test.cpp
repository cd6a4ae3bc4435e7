#include "telemetry/PerfTelemetryEvents.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "tests/telemetry/PerfTelemetryFixture.h"

namespace {

using namespace cmm_perf_telemetry_testing;
using Cmm::internal::PerfEventCode;
using Cmm::internal::PerfEventEqual;
using Cmm::internal::PerfEventHash;

template <typename Event>
std::function<std::string(int)> ByValue(std::string (*convert)(Event)) {
  return [convert](int value) { return convert(static_cast<Event>(value)); };
}

const std::map<std::string, std::function<std::string(int)>> kConverters = {
    {"login", ByValue(MetricsLoginEventToString)},
    {"fetch", ByValue(MetricsFetchEventToString)},
    {"fetch_handler", ByValue(MetricsFetchHandlerEventToString)},
    {"heartbeat", ByValue(MetricsHeartBeatEventToString)},
    {"message", ByValue(MetricsMessageEventToString)},
    {"message_handler", ByValue(MetricsMessageHandlerEventToString)},
    {"platform", ByValue(MetricsPlatformEventToString)},
    {"file", ByValue(MetricsFileEventToString)},
};

// The names by family and value.
std::map<std::string, std::map<int, std::string>> ReadVocabulary() {
  std::map<std::string, std::map<int, std::string>> families;
  std::ifstream lines(TELEMETRY_EVENTS);
  std::string family, value, name;
  std::getline(lines, family);  // the heading
  while (std::getline(lines, family, '\t') && std::getline(lines, value, '\t') && std::getline(lines, name))
    families[family][std::stoi(value)] = name;
  return families;
}

TEST(PerfTelemetryEvents, EveryEventHasTheNameOfTheVocabulary) {
  const auto families = ReadVocabulary();
  ASSERT_EQ(families.size(), kConverters.size());
  size_t names = 0;
  for (const auto& [family, events] : families) {
    for (const auto& [value, name] : events) {
      EXPECT_EQ(kConverters.at(family)(value), name) << family << ' ' << value;
      ++names;
    }
  }
  EXPECT_EQ(names, 128u);
}

TEST(PerfTelemetryEvents, AValueOutsideItsFamilyHasTheUndefinedName) {
  for (const auto& [family, events] : ReadVocabulary()) {
    const auto& convert = kConverters.at(family);
    const std::string& undefined = events.at(0);
    EXPECT_EQ(undefined.rfind("undefined_", 0), 0u);
    for (const int value : {0, -1, events.rbegin()->first + 1, 1000, INT32_MIN, INT32_MAX})
      EXPECT_EQ(convert(value), undefined) << family << ' ' << value;
  }
}

TEST(PerfTelemetryEvents, TheMisspeltNamesStand) {
  EXPECT_EQ(MetricsLoginEventToString(LoginEvent::singup), "singup");
  EXPECT_EQ(MetricsLoginEventToString(LoginEvent::singup_handler), "singup_handler");
}

TEST(PerfTelemetryEvents, TheSynchronousBroadcastIsLoginEvent9) {
  EXPECT_EQ(static_cast<int>(LoginEvent::broadcast_sync_msg_handler), 9);
  EXPECT_EQ(MetricsLoginEventToString(static_cast<LoginEvent>(9)), "broadcast_sync_msg_handler");
}

TEST(PerfTelemetryEvents, AnEnumeratorIsItsNameInTheReport) {
  EXPECT_EQ(static_cast<int>(LoginEvent::app_login), 2);
  EXPECT_EQ(static_cast<int>(LoginEvent::xmpp_signon), 4);
  EXPECT_EQ(static_cast<int>(LoginEvent::im_ready), 8);
  EXPECT_EQ(static_cast<int>(LoginEvent::ssl_connection), 32);
  EXPECT_EQ(static_cast<int>(FetchHandlerEvent::xmpp_parse_data_handler), 15);
  EXPECT_EQ(static_cast<int>(FileEvent::download_file_handler), 8);
}

// Each field alone, by a pointer to a setter: enums of eight types.
struct Field {
  const char* name;
  void (*set)(Events&, int);
  int addend;
  int shift;  // how often the hash is doubled behind it
};

const std::vector<Field> kFields = {
    {"fetch", [](Events& e, int v) { e.fetch_event = static_cast<FetchEvent>(v); }, 0, 0},
    {"fetch_handler", [](Events& e, int v) { e.fetch_handler_event = static_cast<FetchHandlerEvent>(v); },
     100, 1},
    {"file", [](Events& e, int v) { e.file_event = static_cast<FileEvent>(v); }, 200, 2},
    {"heartbeat", [](Events& e, int v) { e.heartbeat_event = static_cast<HeartbeatEvent>(v); }, 300, 3},
    {"login", [](Events& e, int v) { e.login_event = static_cast<LoginEvent>(v); }, 400, 4},
    {"message", [](Events& e, int v) { e.message_event = static_cast<MessageEvent>(v); }, 500, 5},
    {"message_handler",
     [](Events& e, int v) { e.message_handler_event = static_cast<MessageHandlerEvent>(v); }, 600, 6},
    {"platform", [](Events& e, int v) { e.platform_event = static_cast<PlatformEvent>(v); }, 700, 7},
};

TEST(PerfEventCode, IsTheEventAndTheAddendOfItsFamily) {
  for (const Field& field : kFields) {
    Events events;
    field.set(events, 3);
    EXPECT_EQ(PerfEventCode(events), field.addend + 3) << field.name;
  }
}

TEST(PerfEventCode, OfSeveralEventsTheFirstInTheOrderOfTheAddendsCounts) {
  Events events;
  for (auto field = kFields.rbegin(); field != kFields.rend(); ++field) {
    field->set(events, 3);
    EXPECT_EQ(PerfEventCode(events), field->addend + 3) << field->name;
  }
}

TEST(PerfEventCode, WithoutAnEventIs0) {
  Events events;
  events.result = 5;
  events.value = 6;
  EXPECT_EQ(PerfEventCode(events), 0);
}

TEST(PerfEventHash, DoublesAndXorsFromThePlatformToTheFetchEvent) {
  for (const Field& field : kFields) {
    Events events;
    field.set(events, 3);
    EXPECT_EQ(PerfEventHash()(events), size_t{3} << field.shift) << field.name;
  }
  Events all;
  int value = 0;
  size_t hash = 0;
  for (auto field = kFields.rbegin(); field != kFields.rend(); ++field) {
    field->set(all, ++value);
    hash = hash * 2 ^ static_cast<size_t>(value);
  }
  EXPECT_EQ(PerfEventHash()(all), hash);
}

TEST(PerfEventEqual, ComparesTheEightEventsAndNothingElse) {
  for (const Field& field : kFields) {
    Events a, b;
    field.set(a, 3);
    field.set(b, 3);
    b.result = 1;
    b.sub_result = 2;
    b.id = L"b";
    b.value = 4;
    EXPECT_TRUE(PerfEventEqual()(a, b)) << field.name;
    EXPECT_EQ(PerfEventHash()(a), PerfEventHash()(b)) << field.name;
    field.set(b, 4);
    EXPECT_FALSE(PerfEventEqual()(a, b)) << field.name;
  }
}

TEST(PerfMetricsEvents, BeginAsNoEventAndSuccess) {
  const Events events;
  EXPECT_TRUE(PerfEventEqual()(events, {}));
  EXPECT_EQ(events.result, 0);
  EXPECT_EQ(events.sub_result, 0);
  EXPECT_TRUE(events.id.empty());
  EXPECT_EQ(events.value, 0u);
}

TEST(PerfMetricsEvents, HaveTheirFieldsInTheOrderOfTheInterface) {
  const Events events;
  const auto at = [&](const auto& field) {
    return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&events);
  };
  EXPECT_EQ(at(events.login_event), 0);
  EXPECT_EQ(at(events.fetch_event), 4);
  EXPECT_EQ(at(events.fetch_handler_event), 8);
  EXPECT_EQ(at(events.heartbeat_event), 12);
  EXPECT_EQ(at(events.message_event), 16);
  EXPECT_EQ(at(events.message_handler_event), 20);
  EXPECT_EQ(at(events.platform_event), 24);
  EXPECT_EQ(at(events.file_event), 28);
  EXPECT_EQ(at(events.result), 32);
  EXPECT_EQ(at(events.sub_result), 36);
  EXPECT_EQ(at(events.id), 40);
  EXPECT_EQ(at(events.value), 80);
}

}  // namespace
