#pragma once

// A finished measurement, and whom it is given to.

#include <cstdint>

#include "common/client/utility/src/CmmString.h"
#include "telemetry/PerfTelemetryEvents.h"

namespace VelmPTPAAP {

// One event, or the aggregate of several calls of it. Costs are in milliseconds. "Tag" stands for the key of
// the tag that sets the field; fields without one are the collector's own.
struct VClientPerfMetricsInfo_s {
  PerfMetricsEvents_s events;
  Cmm::CStringT<char> stack_log;  // the calls inside an event with a call record, as JSON; empty if none
  Cmm::CStringT<char> pid;        // the process's telemetry identifier
  uint32_t count = 0;             // calls merged into an aggregate; 0 for a single event
  int32_t xmpp_reconnect = 0;     // whether a signed-on connection had been made again; integer tag 9
  int64_t tag_8 = 0;              // integer tag 8, the value of a message
  uint64_t min_cost = 0;          // of an aggregate of two calls or more
  uint64_t average_cost = 0;      // of an aggregate of two calls or more
  uint64_t cost = 0;              // of an aggregate, the maximum
  int32_t log_enabled = 0;
  Cmm::CStringT<char> str_1;  // string tag 1
  int64_t tag_4 = 0;
  int64_t tag_3 = 0;
  int32_t tag_2 = 0;
  int32_t tag_7 = 0;
  int32_t tag_6 = 0;  // of a login total, 0 for the first login and 1 for a later one
  int32_t tag_5 = 0;
  int32_t tag_1 = 0;
  int32_t tag_10 = 0;
  int32_t memory_load = 0;      // percent of the machine's memory in use; integer tag 11
  int32_t process_memory = 0;   // working set in megabytes; integer tag 12
  Cmm::CStringT<char> str_2;    // string tag 2
  uint64_t index = 0;           // sequence number, from 0, of the making or the last replacement
  Cmm::CStringT<char> version;  // of this form: "3.0"
  int64_t timestamp = 0;        // milliseconds since 1970
};

}  // namespace VelmPTPAAP

namespace Cmm {

// Takes the finished records. The host implements it and brings them out of the process.
class IPerfTelemetryHelper {
 public:
  virtual ~IPerfTelemetryHelper() = default;

  // Called on the collector's work thread, without a lock held; a slow helper holds up the drain. `record`
  // is the caller's.
  virtual void SendPerfMetrics(const VelmPTPAAP::VClientPerfMetricsInfo_s& record) = 0;
};

}  // namespace Cmm
