#pragma once

// The collector's decisions and texts, which need nothing but their arguments.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "common/client/utility/src/CmmString.h"
#include "telemetry/PerfMetricsRecord.h"

namespace Cmm::internal {

// ---- Bounds -----------------------------------------------------------------------------------------

inline constexpr size_t kReservedEntries = 1024;    // of a queue, from its creation
inline constexpr size_t kMaxQueuedEntries = 10000;  // a queue that holds them refuses
inline constexpr size_t kEarlyDrainEntries = 256;   // a queue that holds them wakes the work thread
inline constexpr size_t kMaxAggregates = 400;       // of a thread, between two sends
inline constexpr size_t kMaxFinishedRecords = 400;  // of a thread, between two sends; login totals go beyond
inline constexpr uint64_t kNeverAggregatedMs = 60001;  // costs from here on stand in a record of their own
inline constexpr uint64_t kMaxStartAgeMs = 300000;
inline constexpr uint32_t kDrainPeriodMs = 300000;
inline constexpr int64_t kSendPeriodUs = 300000000;
inline constexpr uint32_t kDefaultHeartbeatThresholdMs = 200;
inline constexpr uint32_t kDefaultStackThresholdMs = 20;

// ---- Decisions --------------------------------------------------------------------------------------

// Whether an event goes into a record: it was slow, or it failed. A threshold of 0 lets no success through.
constexpr bool IsWorthReporting(uint64_t cost, uint32_t threshold, int result, int subResult) {
  const bool slow = threshold != 0 && cost > threshold;
  return slow || result != 0 || subResult != 0;
}

// Whether it is merged with others of its identity. A failure that only the sub-result tells is.
constexpr bool IsAggregated(uint64_t cost, int result) {
  return cost < kNeverAggregatedMs && result == 0;
}

// All in 64 bits: a start from before a wrap of the ticks counts as old.
constexpr bool IsOldStart(uint64_t now, uint64_t startTicks) {
  return now - startTicks > kMaxStartAgeMs;
}

constexpr bool IsSendDue(bool sendEnabled, bool urgent, int64_t now, int64_t lastSend) {
  return sendEnabled && (urgent || now - lastSend >= kSendPeriodUs);
}

// The key of an event that is told apart by `key`: code, underscore, key.
CStringT<wchar_t> WideEventKey(int eventCode, const CStringT<wchar_t>& key);

// The share of the working set in a record; 0 when it is unknown or the machine has no memory to speak of.
int ProcessMegabytes(std::optional<uint64_t> workingSet, uint64_t totalPhysical);

// ---- Records ----------------------------------------------------------------------------------------

// Counts one more call with `cost` into the average, the minimum and the count of an aggregate. Whether it is
// the slowest so far; its cost and all else of it the caller then takes over.
bool MergeCall(VelmPTPAAP::VClientPerfMetricsInfo_s& aggregate, uint64_t cost);

// Sets the fields of the tags; keys without a field are ignored, and 32-bit fields take the low half.
void SetTagFields(VelmPTPAAP::VClientPerfMetricsInfo_s& record, const PerfTelemetryStrTags& strTags,
                  const PerfTelemetryIntTags& intTags);

// ---- Call records -----------------------------------------------------------------------------------

// The calls of one method inside an event.
struct CallRecord {
  CStringT<char> m;  // method
  CStringT<char> f;  // source
  uint32_t c = 1;    // calls
  uint64_t t = 0;    // the longest, in milliseconds
};

// By method and source, one behind the other: two pairs that read the same share a record.
using StackTable = std::unordered_map<CStringT<char>, CallRecord, CStringHash>;

// Adds a call that was slow enough to be of interest. A slowest call brings its texts along.
void RecordCall(StackTable& table, const CStringT<char>& method, const CStringT<char>& source, uint64_t cost);

// The table as JSON, in its own order, with its texts not escaped. Empties it.
std::string TakeStackText(StackTable& table);

}  // namespace Cmm::internal
