#include "telemetry/PerfTelemetryScopes.h"

#include <utility>

#include "telemetry/PerfTelemetry.h"
#include "telemetry/PerfTelemetrySystem.h"

using Cmm::CCmmPerfTelemetry;
using Cmm::CStringT;
using Cmm::internal::PerfTicks;

// Each constructor copies its arguments only when they will be reported. The end takes what is stored; the
// start has had its copy.

CCmmPerfTelemetryEventWOStack::CCmmPerfTelemetryEventWOStack(const VelmPTPAAP::PerfMetricsEvents_s& events,
                                                             const Cmm::PerfTelemetryStrTags& strTags,
                                                             const Cmm::PerfTelemetryIntTags& intTags,
                                                             int extra)
    : m_enabled(CCmmPerfTelemetry::IsEnablePerformanceMetrics() != 0), m_extra(extra) {
  if (!m_enabled) return;
  m_events = events;
  m_strTags = strTags;
  m_intTags = intTags;
  m_startTicks = PerfTicks();
  CCmmPerfTelemetry::AddPerfTelemetryStart(events, strTags, intTags, m_startTicks, extra);
}

CCmmPerfTelemetryEventWOStack::CCmmPerfTelemetryEventWOStack(const CCmmPerfTelemetryEventWOStack&) = default;

CCmmPerfTelemetryEventWOStack& CCmmPerfTelemetryEventWOStack::operator=(
    const CCmmPerfTelemetryEventWOStack&) = default;

CCmmPerfTelemetryEventWOStack::~CCmmPerfTelemetryEventWOStack() {
  if (!m_enabled) return;
  const uint64_t ticks = PerfTicks();
  CCmmPerfTelemetry::AddPerfTelemetryEnd(std::move(m_events), std::move(m_strTags), std::move(m_intTags),
                                         ticks, ticks - m_startTicks, m_extra);
}

CCmmPerfTelemetryEventWStack::CCmmPerfTelemetryEventWStack(const VelmPTPAAP::PerfMetricsEvents_s& events,
                                                           const Cmm::PerfTelemetryStrTags& strTags,
                                                           const Cmm::PerfTelemetryIntTags& intTags,
                                                           const CStringT<wchar_t>& key, int extra)
    : m_enabled(CCmmPerfTelemetry::IsEnablePerformanceMetrics() != 0), m_extra(extra) {
  if (!m_enabled) return;
  m_events = events;
  m_strTags = strTags;
  m_intTags = intTags;
  m_key = key;
  if (m_key.empty()) CCmmPerfTelemetry::GetTelemetryGUID(m_key);
  m_startTicks = PerfTicks();
  CCmmPerfTelemetry::AddPerfTelemetryStartWStack(events, strTags, intTags, m_key, m_startTicks, extra);
}

CCmmPerfTelemetryEventWStack::CCmmPerfTelemetryEventWStack(const CCmmPerfTelemetryEventWStack&) = default;

CCmmPerfTelemetryEventWStack& CCmmPerfTelemetryEventWStack::operator=(const CCmmPerfTelemetryEventWStack&) =
    default;

CCmmPerfTelemetryEventWStack::~CCmmPerfTelemetryEventWStack() {
  if (!m_enabled) return;
  const uint64_t ticks = PerfTicks();
  CCmmPerfTelemetry::AddPerfTelemetryEndWStack(std::move(m_events), std::move(m_strTags),
                                               std::move(m_intTags), m_key, ticks, ticks - m_startTicks,
                                               m_extra);
}

CCmmPerfTelemetryStacks::CCmmPerfTelemetryStacks(const CStringT<char>& method, const CStringT<char>& source,
                                                 int extra)
    : m_enabled(CCmmPerfTelemetry::IsEnablePerformanceMetrics() != 0), m_extra(extra) {
  if (!m_enabled) return;
  m_method = method;
  m_source = source;
  m_startTicks = PerfTicks();
}

CCmmPerfTelemetryStacks::CCmmPerfTelemetryStacks(const CCmmPerfTelemetryStacks&) = default;

CCmmPerfTelemetryStacks& CCmmPerfTelemetryStacks::operator=(const CCmmPerfTelemetryStacks&) = default;

CCmmPerfTelemetryStacks::~CCmmPerfTelemetryStacks() {
  if (!m_enabled) return;
  CCmmPerfTelemetry::AddPerfTelemetryStacks(m_method, m_source, PerfTicks() - m_startTicks, m_extra);
}

CCmmPerfTelemetryLog::CCmmPerfTelemetryLog(const CStringT<char>& method, const CStringT<char>& source,
                                           int extra, const CStringT<char>& detail)
    : m_enabled(CCmmPerfTelemetry::IsEnablePerformanceMetrics() != 0), m_extra(extra) {
  if (!m_enabled) return;
  m_method = method;
  m_source = source;
  m_detail = detail;
  m_startTicks = PerfTicks();
}

CCmmPerfTelemetryLog::CCmmPerfTelemetryLog(const CCmmPerfTelemetryLog&) = default;

CCmmPerfTelemetryLog& CCmmPerfTelemetryLog::operator=(const CCmmPerfTelemetryLog&) = default;

CCmmPerfTelemetryLog::~CCmmPerfTelemetryLog() {
  if (m_enabled) m_endTicks = PerfTicks();
}
