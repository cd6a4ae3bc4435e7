#pragma once

// Measure from construction to destruction. Each reads the collector's master switch when it is constructed;
// if that is off it records nothing. A copy is a scope of its own, which reports its own end.

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"
#include "telemetry/PerfTelemetryEvents.h"

// A plain event; see CCmmPerfTelemetry::AddPerfTelemetryStart.
class CMM_EXPORT CCmmPerfTelemetryEventWOStack {
 public:
  CCmmPerfTelemetryEventWOStack(const VelmPTPAAP::PerfMetricsEvents_s& events,
                                const Cmm::PerfTelemetryStrTags& strTags,
                                const Cmm::PerfTelemetryIntTags& intTags, int extra = 0);
  CCmmPerfTelemetryEventWOStack(const CCmmPerfTelemetryEventWOStack& other);
  CCmmPerfTelemetryEventWOStack& operator=(const CCmmPerfTelemetryEventWOStack& other);
  ~CCmmPerfTelemetryEventWOStack();

 private:
  bool m_enabled;
  int m_extra;
  uint64_t m_startTicks = 0;
  VelmPTPAAP::PerfMetricsEvents_s m_events;
  Cmm::PerfTelemetryStrTags m_strTags;
  Cmm::PerfTelemetryIntTags m_intTags;
};

// An event with a record of the slow calls inside it, which CCmmPerfTelemetryStacks reports.
class CMM_EXPORT CCmmPerfTelemetryEventWStack {
 public:
  // `key` tells apart the events of an identity on this thread; an empty one is made unique.
  CCmmPerfTelemetryEventWStack(const VelmPTPAAP::PerfMetricsEvents_s& events,
                               const Cmm::PerfTelemetryStrTags& strTags,
                               const Cmm::PerfTelemetryIntTags& intTags, const Cmm::CStringT<wchar_t>& key,
                               int extra = 0);
  CCmmPerfTelemetryEventWStack(const CCmmPerfTelemetryEventWStack& other);
  CCmmPerfTelemetryEventWStack& operator=(const CCmmPerfTelemetryEventWStack& other);
  ~CCmmPerfTelemetryEventWStack();

 private:
  bool m_enabled;
  int m_extra;
  uint64_t m_startTicks = 0;
  VelmPTPAAP::PerfMetricsEvents_s m_events;
  Cmm::PerfTelemetryStrTags m_strTags;
  Cmm::PerfTelemetryIntTags m_intTags;
  Cmm::CStringT<wchar_t> m_key;
};

// A call inside such an event: `method` of `source`, which go into the record as they are.
class CMM_EXPORT CCmmPerfTelemetryStacks {
 public:
  CCmmPerfTelemetryStacks(const Cmm::CStringT<char>& method, const Cmm::CStringT<char>& source, int extra);
  CCmmPerfTelemetryStacks(const CCmmPerfTelemetryStacks& other);
  CCmmPerfTelemetryStacks& operator=(const CCmmPerfTelemetryStacks& other);
  ~CCmmPerfTelemetryStacks();

 private:
  bool m_enabled;
  int m_extra;
  uint64_t m_startTicks = 0;
  Cmm::CStringT<char> m_method;
  Cmm::CStringT<char> m_source;
};

// Takes the time and reports it to nobody.
class CMM_EXPORT CCmmPerfTelemetryLog {
 public:
  CCmmPerfTelemetryLog(const Cmm::CStringT<char>& method, const Cmm::CStringT<char>& source, int extra,
                       const Cmm::CStringT<char>& detail);
  CCmmPerfTelemetryLog(const CCmmPerfTelemetryLog& other);
  CCmmPerfTelemetryLog& operator=(const CCmmPerfTelemetryLog& other);
  ~CCmmPerfTelemetryLog();

 private:
  bool m_enabled;
  int m_extra;
  uint64_t m_startTicks = 0;
  uint64_t m_endTicks = 0;
  Cmm::CStringT<char> m_method;
  Cmm::CStringT<char> m_source;
  Cmm::CStringT<char> m_detail;
};
