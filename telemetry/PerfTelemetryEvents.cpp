#include "telemetry/PerfTelemetryEvents.h"

#include <tuple>

#define VELM_EVENT(value, name) \
  case value:                   \
    return #name;

std::string MetricsLoginEventToString(e_chat_perfmetrics_Perfmetrics_login_event event) {
  switch (static_cast<int>(event)) {
#define VELM_LOGIN_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
  }
  return "undefined_login";
}

std::string MetricsFetchEventToString(e_chat_perfmetrics_Perfmetrics_fetch_event event) {
  switch (static_cast<int>(event)) {
#define VELM_FETCH_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
  }
  return "undefined_fetch";
}

std::string MetricsFetchHandlerEventToString(e_chat_perfmetrics_Perfmetrics_fetch_handler_event event) {
  switch (static_cast<int>(event)) {
#define VELM_FETCH_HANDLER_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
  }
  return "undefined_fetch_handler";
}

std::string MetricsHeartBeatEventToString(e_chat_perfmetrics_Perfmetrics_heartbeat_event event) {
  switch (static_cast<int>(event)) {
#define VELM_HEARTBEAT_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
  }
  return "undefined_heartbeat";
}

std::string MetricsMessageEventToString(e_chat_perfmetrics_Perfmetrics_message_event event) {
  switch (static_cast<int>(event)) {
#define VELM_MESSAGE_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
  }
  return "undefined_msg";
}

std::string MetricsMessageHandlerEventToString(e_chat_perfmetrics_Perfmetrics_message_handler_event event) {
  switch (static_cast<int>(event)) {
#define VELM_MESSAGE_HANDLER_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
  }
  return "undefined_msg_handler";
}

std::string MetricsPlatformEventToString(e_chat_perfmetrics_Perfmetrics_platform_event event) {
  switch (static_cast<int>(event)) {
#define VELM_PLATFORM_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
  }
  return "undefined_platform";
}

std::string MetricsFileEventToString(e_chat_perfmetrics_Perfmetrics_file_event event) {
  switch (static_cast<int>(event)) {
#define VELM_FILE_EVENTS
#include "telemetry/PerfTelemetryEvents.inc"
  }
  return "undefined_file";
}

#undef VELM_EVENT

namespace Cmm::internal {

int PerfEventCode(const VelmPTPAAP::PerfMetricsEvents_s& events) {
  struct Family {
    int event;
    int addend;
  };
  for (const auto& [event, addend] : {
           Family{static_cast<int>(events.fetch_event), 0},
           Family{static_cast<int>(events.fetch_handler_event), 100},
           Family{static_cast<int>(events.file_event), 200},
           Family{static_cast<int>(events.heartbeat_event), 300},
           Family{static_cast<int>(events.login_event), 400},
           Family{static_cast<int>(events.message_event), 500},
           Family{static_cast<int>(events.message_handler_event), 600},
           Family{static_cast<int>(events.platform_event), 700},
       })
    if (event != 0) return event + addend;
  return 0;
}

size_t PerfEventHash::operator()(const VelmPTPAAP::PerfMetricsEvents_s& events) const {
  auto hash = static_cast<size_t>(events.platform_event);
  for (const int event : {static_cast<int>(events.message_handler_event),
                          static_cast<int>(events.message_event), static_cast<int>(events.login_event),
                          static_cast<int>(events.heartbeat_event), static_cast<int>(events.file_event),
                          static_cast<int>(events.fetch_handler_event), static_cast<int>(events.fetch_event)})
    hash = hash * 2 ^ static_cast<size_t>(event);
  return hash;
}

bool PerfEventEqual::operator()(const VelmPTPAAP::PerfMetricsEvents_s& a,
                                const VelmPTPAAP::PerfMetricsEvents_s& b) const {
  const auto key = [](const VelmPTPAAP::PerfMetricsEvents_s& events) {
    return std::tie(events.login_event, events.fetch_event, events.fetch_handler_event,
                    events.heartbeat_event, events.message_event, events.message_handler_event,
                    events.platform_event, events.file_event);
  };
  return key(a) == key(b);
}

}  // namespace Cmm::internal
