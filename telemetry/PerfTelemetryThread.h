#pragma once

// What the collector keeps for one thread: its queue, and what the work thread has made of it.
//
// A ThreadEvents is never given back to the heap while the library is loaded: the thread that it belongs to
// finds it by a plain pointer of its own, without the lock of the map of threads, and must be able to lock it
// and look whether it is still its own even when CleanUpData has just let it go.

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "telemetry/PerfTelemetry.h"
#include "telemetry/PerfTelemetryRules.h"

namespace Cmm {

struct CCmmPerfTelemetry::PerfEventItem {
  PerfTelemetryStrTags strTags;
  PerfTelemetryIntTags intTags;
  uint64_t startTicks = 0;
  VelmPTPAAP::PerfMetricsEvents_s events;
  CStringT<wchar_t> key;
};

struct CCmmPerfTelemetry::PerfTelemetryStartEntry {
  PerfTelemetryStrTags strTags;  // of the start and the end
  PerfTelemetryIntTags intTags;
  uint64_t ticks = 0;
  PerfEventItem item;  // without its tags
};

struct CCmmPerfTelemetry::PerfEventEntry {
  enum Kind : int32_t {
    kStart,
    kEnd,
    kStartWithID,
    kEndWithID,
    kStartWStack,
    kEndWStack,
    kStacks,
    kEvent,
  };

  Kind kind = kStart;
  VelmPTPAAP::PerfMetricsEvents_s events;
  PerfTelemetryStrTags strTags;
  PerfTelemetryIntTags intTags;
  uint64_t ticks = 0;  // 0: the time at which the entry is consumed
  uint64_t cost = 0;   // 0: from start to end
  CStringT<wchar_t> key;
  int extra = 0;
  CStringT<char> method;
  CStringT<char> source;
};

struct CCmmPerfTelemetry::ThreadEvents {
  using Record = VelmPTPAAP::VClientPerfMetricsInfo_s;
  using KeyedStarts = std::unordered_map<CStringT<wchar_t>, PerfEventItem, internal::CStringHash>;
  using PlainStarts = std::unordered_map<VelmPTPAAP::PerfMetricsEvents_s, PerfEventItem,
                                         internal::PerfEventHash, internal::PerfEventEqual>;
  using Aggregates = std::unordered_map<VelmPTPAAP::PerfMetricsEvents_s, Record, internal::PerfEventHash,
                                        internal::PerfEventEqual>;

  // Touched by the work thread alone.
  struct Collected {
    KeyedStarts stackStarts;
    PlainStarts plainStarts;
    KeyedStarts idStarts;
    std::unordered_map<CStringT<wchar_t>, internal::StackTable, internal::CStringHash> stacks;
    CStringT<wchar_t> currentStackKey;
    std::unordered_map<CStringT<wchar_t>, CStringT<wchar_t>, internal::CStringHash> enclosingStackKeys;
    Aggregates aggregates;
    std::vector<Record> finished;
  };

  // Guarded by the lock of the map of threads.
  struct Login {
    uint64_t login_start_ticks = 0;
    uint64_t app_start_ticks = 0;
    int signon_seen = 0;
    int logged_out = 0;
    int first_login = 1;
  };

  CCritical lock;  // guards the queue and nothing else
  Collected collected;
  std::vector<PerfEventEntry> queue;
  Login login;

  // ---- For the work thread --------------------------------------------------------------------------

  void Consume(PerfEventEntry& entry);  // takes what it needs out of the entry
  // Empties the aggregates and the finished records into the result, the finished ones first.
  std::vector<Record> TakeRecords();
  void PurgeOldStarts(uint64_t now);

  // Whose it is, and since which cleaning up; 0 when it is nobody's. Read under the lock, set before the
  // object can be found.
  std::atomic<uint32_t> owner = 0;
  std::atomic<uint64_t> generation = 0;

 private:
  // The start that `entry` ends, with the tags of both; nothing when there is none.
  template <typename Starts>
  static std::optional<PerfTelemetryStartEntry> TakeStart(Starts& starts,
                                                          const typename Starts::key_type& key,
                                                          PerfEventEntry& entry);
  template <typename Starts>
  static void KeepStart(Starts& starts, const typename Starts::key_type& key, PerfEventEntry& entry);

  void ConsumeStart(PerfEventEntry& entry);
  void ConsumeEnd(PerfEventEntry& entry);
  void ConsumeStartWithID(PerfEventEntry& entry);
  void ConsumeEndWithID(PerfEventEntry& entry);
  void ConsumeStartWStack(PerfEventEntry& entry);
  void ConsumeEndWStack(PerfEventEntry& entry);
  void ConsumeStacks(const PerfEventEntry& entry);
  void ConsumeEvent(PerfEventEntry& entry);

  void NoteLoginStart(const VelmPTPAAP::PerfMetricsEvents_s& events);
  void FinishLogin(const PerfEventEntry& entry);

  // `stacks` is null for an event without a call record; it is emptied when a record takes its text.
  void Finish(PerfTelemetryStartEntry& start, const PerfEventEntry& end, internal::StackTable* stacks);
  void Aggregate(PerfTelemetryStartEntry& start, const VelmPTPAAP::PerfMetricsEvents_s& events, uint64_t cost,
                 internal::StackTable* stacks);
  static Record MakeRecord(PerfTelemetryStartEntry& start, const VelmPTPAAP::PerfMetricsEvents_s& events,
                           uint64_t cost, internal::StackTable* stacks);
};

// Where each ThreadEvents comes from, and where it goes with its last user.
class CCmmPerfTelemetry::ThreadEventsPool {
 public:
  ThreadEventsPool() = default;
  ThreadEventsPool(const ThreadEventsPool&) = delete;
  ThreadEventsPool& operator=(const ThreadEventsPool&) = delete;
  ~ThreadEventsPool();

  // An empty one that belongs to nobody, with its queue reserved; null when there is no memory for it.
  std::shared_ptr<ThreadEvents> Take();

 private:
  void PutBack(ThreadEvents* events);

  CCritical m_lock;
  std::vector<std::unique_ptr<ThreadEvents>> m_free;  // guarded by m_lock
};

}  // namespace Cmm
