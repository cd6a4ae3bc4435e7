#include "telemetry/PerfTelemetryHelpers.h"

#include <utility>

#include "telemetry/PerfTelemetry.h"
#include "telemetry/PerfTelemetrySystem.h"

using Cmm::CCmmPerfTelemetry;
using Cmm::CStringT;
using Cmm::internal::PerfTicks;

namespace {

constexpr uint64_t kCostByTicks = 0;

VelmPTPAAP::PerfMetricsEvents_s MessageEvent(e_chat_perfmetrics_Perfmetrics_message_event messageEvent,
                                             const CStringT<wchar_t>& id) {
  VelmPTPAAP::PerfMetricsEvents_s events;
  events.message_event = messageEvent;
  events.id = id;
  return events;
}

}  // namespace

void MakeOutPlatformEvent(VelmPTPAAP::PerfMetricsEvents_s& events,
                          e_chat_perfmetrics_Perfmetrics_platform_event platformEvent,
                          e_chat_perfmetrics_Perfmetrics_event_tag_str strTag, const CStringT<wchar_t>& text,
                          Cmm::PerfTelemetryStrTags& strTags, Cmm::PerfTelemetryIntTags&) {
  events.platform_event = platformEvent;
  CStringT<char> narrow;
  narrow.AssignOther(text);
  strTags[strTag] = std::move(narrow);
}

void MakeOutPlatformEvent(VelmPTPAAP::PerfMetricsEvents_s& events,
                          e_chat_perfmetrics_Perfmetrics_platform_event platformEvent,
                          e_chat_perfmetrics_Perfmetrics_event_tag_str strTag, const CStringT<wchar_t>& text,
                          e_chat_perfmetrics_Perfmetrics_event_tag_int intTag, int value,
                          Cmm::PerfTelemetryStrTags& strTags, Cmm::PerfTelemetryIntTags& intTags) {
  MakeOutPlatformEvent(events, platformEvent, strTag, text, strTags, intTags);
  intTags.emplace(intTag, value);
}

int AddPlatformPerfMetricsStart(e_chat_perfmetrics_Perfmetrics_platform_event platformEvent,
                                e_chat_perfmetrics_Perfmetrics_event_tag_str strTag,
                                const CStringT<wchar_t>& text, const CStringT<wchar_t>& id) {
  VelmPTPAAP::PerfMetricsEvents_s events;
  Cmm::PerfTelemetryStrTags strTags;
  Cmm::PerfTelemetryIntTags intTags;
  MakeOutPlatformEvent(events, platformEvent, strTag, text, strTags, intTags);
  events.id = id;
  return CCmmPerfTelemetry::AddPerfTelemetryStartWithID(std::move(events), std::move(strTags),
                                                        std::move(intTags), id, PerfTicks());
}

int AddPlatformPerfMetricsEnd(e_chat_perfmetrics_Perfmetrics_platform_event platformEvent,
                              e_chat_perfmetrics_Perfmetrics_event_tag_str strTag,
                              const CStringT<wchar_t>& text,
                              e_chat_perfmetrics_Perfmetrics_event_tag_int intTag, int value, int result,
                              int subResult, const CStringT<wchar_t>& id) {
  VelmPTPAAP::PerfMetricsEvents_s events;
  Cmm::PerfTelemetryStrTags strTags;
  Cmm::PerfTelemetryIntTags intTags;
  MakeOutPlatformEvent(events, platformEvent, strTag, text, intTag, value, strTags, intTags);
  events.result = result;
  events.sub_result = subResult;
  events.id = id;
  return CCmmPerfTelemetry::AddPerfTelemetryEndWithID(std::move(events), std::move(strTags),
                                                      std::move(intTags), id, PerfTicks(), kCostByTicks);
}

int AddMessagePerfMetricsStart(e_chat_perfmetrics_Perfmetrics_message_event messageEvent,
                               const CStringT<wchar_t>& id, unsigned value) {
  VelmPTPAAP::PerfMetricsEvents_s events = MessageEvent(messageEvent, id);
  events.value = value;
  Cmm::PerfTelemetryIntTags intTags = {{e_chat_perfmetrics_Perfmetrics_event_tag_int::tag_8, value}};
  return CCmmPerfTelemetry::AddPerfTelemetryStartWithID(std::move(events), {}, std::move(intTags), id,
                                                        PerfTicks());
}

int AddMessagePerfMetricsEnd(e_chat_perfmetrics_Perfmetrics_message_event messageEvent,
                             const CStringT<wchar_t>& id, int result, int subResult) {
  VelmPTPAAP::PerfMetricsEvents_s events = MessageEvent(messageEvent, id);
  events.result = result;
  events.sub_result = subResult;
  return CCmmPerfTelemetry::AddPerfTelemetryEndWithID(std::move(events), {}, {}, id, PerfTicks(),
                                                      kCostByTicks);
}
