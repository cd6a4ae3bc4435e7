#pragma once

// Builds and reports the identities of two families of event, those of the platform and of messages.

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"
#include "telemetry/PerfTelemetryEvents.h"

// Sets the platform event of `events`, and the string tag `strTag` to `text` in the system ANSI code page.
CMM_EXPORT void MakeOutPlatformEvent(VelmPTPAAP::PerfMetricsEvents_s& events,
                                     e_chat_perfmetrics_Perfmetrics_platform_event platformEvent,
                                     e_chat_perfmetrics_Perfmetrics_event_tag_str strTag,
                                     const Cmm::CStringT<wchar_t>& text, Cmm::PerfTelemetryStrTags& strTags,
                                     Cmm::PerfTelemetryIntTags& intTags);
// The same, and the integer tag `intTag` to `value` unless it is there already.
CMM_EXPORT void MakeOutPlatformEvent(VelmPTPAAP::PerfMetricsEvents_s& events,
                                     e_chat_perfmetrics_Perfmetrics_platform_event platformEvent,
                                     e_chat_perfmetrics_Perfmetrics_event_tag_str strTag,
                                     const Cmm::CStringT<wchar_t>& text,
                                     e_chat_perfmetrics_Perfmetrics_event_tag_int intTag, int value,
                                     Cmm::PerfTelemetryStrTags& strTags, Cmm::PerfTelemetryIntTags& intTags);

// Report an event between two calls on one thread, told apart by `id`, which is the identity's id too. The
// time of the start and the end is that at which the collector's work thread comes to them. 1 when queued, 0
// when not.
CMM_EXPORT int AddPlatformPerfMetricsStart(e_chat_perfmetrics_Perfmetrics_platform_event platformEvent,
                                           e_chat_perfmetrics_Perfmetrics_event_tag_str strTag,
                                           const Cmm::CStringT<wchar_t>& text,
                                           const Cmm::CStringT<wchar_t>& id);
CMM_EXPORT int AddPlatformPerfMetricsEnd(e_chat_perfmetrics_Perfmetrics_platform_event platformEvent,
                                         e_chat_perfmetrics_Perfmetrics_event_tag_str strTag,
                                         const Cmm::CStringT<wchar_t>& text,
                                         e_chat_perfmetrics_Perfmetrics_event_tag_int intTag, int value,
                                         int result, int subResult, const Cmm::CStringT<wchar_t>& id);
// `value` goes into the identity and into integer tag 8.
CMM_EXPORT int AddMessagePerfMetricsStart(e_chat_perfmetrics_Perfmetrics_message_event messageEvent,
                                          const Cmm::CStringT<wchar_t>& id, unsigned value);
CMM_EXPORT int AddMessagePerfMetricsEnd(e_chat_perfmetrics_Perfmetrics_message_event messageEvent,
                                        const Cmm::CStringT<wchar_t>& id, int result, int subResult);
