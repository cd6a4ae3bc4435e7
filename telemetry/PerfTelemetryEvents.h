#pragma once

// What is measured: the events, the names under which they are reported, and the tags that go with them.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

// ---- Events: 0 is no event of the family; the enumerators are in PerfTelemetryEvents.inc -----------------

#define VELM_EVENT(value, name) name = (value),
enum class e_chat_perfmetrics_Perfmetrics_login_event : int32_t {
  undefined_login = 0,
#define VELM_LOGIN_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
};

enum class e_chat_perfmetrics_Perfmetrics_fetch_event : int32_t {
  undefined_fetch = 0,
#define VELM_FETCH_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
};

enum class e_chat_perfmetrics_Perfmetrics_fetch_handler_event : int32_t {
  undefined_fetch_handler = 0,
#define VELM_FETCH_HANDLER_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
};

enum class e_chat_perfmetrics_Perfmetrics_heartbeat_event : int32_t {
  undefined_heartbeat = 0,
#define VELM_HEARTBEAT_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
};

enum class e_chat_perfmetrics_Perfmetrics_message_event : int32_t {
  undefined_msg = 0,
#define VELM_MESSAGE_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
};

enum class e_chat_perfmetrics_Perfmetrics_message_handler_event : int32_t {
  undefined_msg_handler = 0,
#define VELM_MESSAGE_HANDLER_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
};

enum class e_chat_perfmetrics_Perfmetrics_platform_event : int32_t {
  undefined_platform = 0,
#define VELM_PLATFORM_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
};

enum class e_chat_perfmetrics_Perfmetrics_file_event : int32_t {
  undefined_file = 0,
#define VELM_FILE_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
};

#undef VELM_EVENT

// The report name of an event, which is its enumerator; for 0 and for any value outside the family, the name
// of the family's enumerator 0.
CMM_EXPORT std::string MetricsLoginEventToString(e_chat_perfmetrics_Perfmetrics_login_event event);
CMM_EXPORT std::string MetricsFetchEventToString(e_chat_perfmetrics_Perfmetrics_fetch_event event);
CMM_EXPORT std::string MetricsFetchHandlerEventToString(
    e_chat_perfmetrics_Perfmetrics_fetch_handler_event event);
CMM_EXPORT std::string MetricsHeartBeatEventToString(e_chat_perfmetrics_Perfmetrics_heartbeat_event event);
CMM_EXPORT std::string MetricsMessageEventToString(e_chat_perfmetrics_Perfmetrics_message_event event);
CMM_EXPORT std::string MetricsMessageHandlerEventToString(
    e_chat_perfmetrics_Perfmetrics_message_handler_event event);
CMM_EXPORT std::string MetricsPlatformEventToString(e_chat_perfmetrics_Perfmetrics_platform_event event);
CMM_EXPORT std::string MetricsFileEventToString(e_chat_perfmetrics_Perfmetrics_file_event event);

// ---- Tags: each sets one field of the record --------------------------------------------------------

enum class e_chat_perfmetrics_Perfmetrics_event_tag_str : int32_t {
  str_1 = 1,
  str_2 = 2,
};

enum class e_chat_perfmetrics_Perfmetrics_event_tag_int : int32_t {
  tag_1 = 1,
  tag_2 = 2,
  tag_3 = 3,
  tag_4 = 4,
  tag_5 = 5,
  tag_6 = 6,
  tag_7 = 7,
  tag_8 = 8,
  xmpp_reconnect = 9,
  tag_10 = 10,
  memory_load = 11,
  process_memory = 12,
};

namespace Cmm {

using PerfTelemetryStrTags = std::map<e_chat_perfmetrics_Perfmetrics_event_tag_str, CStringT<char>>;
using PerfTelemetryIntTags = std::map<e_chat_perfmetrics_Perfmetrics_event_tag_int, int64_t>;

}  // namespace Cmm

// ---- Identity ---------------------------------------------------------------------------------------

namespace VelmPTPAAP {

// Which event it is, and how it ended. At most one of the eight events is normally set.
struct PerfMetricsEvents_s {
  e_chat_perfmetrics_Perfmetrics_login_event login_event{};
  e_chat_perfmetrics_Perfmetrics_fetch_event fetch_event{};
  e_chat_perfmetrics_Perfmetrics_fetch_handler_event fetch_handler_event{};
  e_chat_perfmetrics_Perfmetrics_heartbeat_event heartbeat_event{};
  e_chat_perfmetrics_Perfmetrics_message_event message_event{};
  e_chat_perfmetrics_Perfmetrics_message_handler_event message_handler_event{};
  e_chat_perfmetrics_Perfmetrics_platform_event platform_event{};
  e_chat_perfmetrics_Perfmetrics_file_event file_event{};
  int result = 0;  // 0 is success, of sub_result too
  int sub_result = 0;
  Cmm::CStringT<wchar_t> id;  // tells instances apart, for the reader of the report
  uint32_t value = 0;
};

}  // namespace VelmPTPAAP

namespace Cmm::internal {

struct CStringHash {
  template <typename T>
  size_t operator()(const CStringT<T>& text) const {
    return std::hash<std::basic_string<T>>()(text);
  }
};

// The code of the first event set, in the order fetch 0, fetch handler 100, file 200, heartbeat 300, login
// 400, message 500, message handler 600, platform 700, which are added to it; 0 when none is set.
int PerfEventCode(const VelmPTPAAP::PerfMetricsEvents_s& events);

// Identities are one key when their eight events match; result, id and value play no part.
struct PerfEventHash {
  size_t operator()(const VelmPTPAAP::PerfMetricsEvents_s& events) const;
};
struct PerfEventEqual {
  bool operator()(const VelmPTPAAP::PerfMetricsEvents_s& a, const VelmPTPAAP::PerfMetricsEvents_s& b) const;
};

}  // namespace Cmm::internal
