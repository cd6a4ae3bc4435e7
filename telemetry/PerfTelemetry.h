#pragma once

// Samples how long things take inside the process. Application code wraps a stretch of work in a scope of
// PerfTelemetryScopes.h, or calls a pair of Add...Start and Add...End:
//
//   CCmmPerfTelemetry::PerfTelemetryInit(startTicks, pID);
//   CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
//   ...
//   CCmmPerfTelemetry::PerfTelemetryTerm();
//
// Each call puts an entry into a queue of its own thread and computes nothing. A work thread drains the
// queues, pairs starts with ends, drops what was fast, merges the rest into one aggregate per event, and
// gives the records to the helper every five minutes, or at once after a login total.
//
// Nothing is reported about what is lost: a full queue refuses, an end without a start vanishes, and so does
// what finds no place among the aggregates or the finished records.

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <unordered_map>
#include <vector>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmLock.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/CmmThread.h"
#include "common/client/utility/src/CmmTimeValue.h"
#include "telemetry/PerfMetricsRecord.h"
#include "telemetry/PerfTelemetryEvents.h"

namespace Cmm {

// The work thread's body; alive from PerfTelemetryInit to PerfTelemetryTerm.
class CCmmPerfTelemetryThreadProc final : public IThread {
 public:
  constexpr CCmmPerfTelemetryThreadProc() = default;
  CCmmPerfTelemetryThreadProc(const CCmmPerfTelemetryThreadProc&) = delete;
  CCmmPerfTelemetryThreadProc& operator=(const CCmmPerfTelemetryThreadProc&) = delete;
  ~CCmmPerfTelemetryThreadProc();

  unsigned int ThreadProc() override;

  void SetRunning(bool running);  // makes the event when it is first needed
  void Wake();                    // ends the wait that the thread is in, or the next one

 private:
  std::atomic<void*> m_event = nullptr;  // set: the wait ends; the thread resets it behind each round
  std::atomic<bool> m_isWoken = false;
  std::atomic<bool> m_running = false;
};

// All operations but those of unique ids are static and may be called on any thread, with the exception of
// PerfTelemetryInit, PerfTelemetryTerm and EnablePerformanceMetrics, which are for one thread at a time.
// "The master switch" is whether anything is collected at all; it goes on with PerfTelemetryInit.
class CMM_EXPORT CCmmPerfTelemetry {
 public:
  // ---- Lifecycle ------------------------------------------------------------------------------------

  // Forgets everything collected, sets the thresholds to their defaults (200 ms for heartbeats, 20 ms for all
  // else), turns the master switch on and starts the work thread unless it runs. The calling thread's logins
  // count from `appStartTicks`, a GetTickCount value. `pID` goes into every record. Whether records are sent,
  // and to whom, stays as EnablePerformanceMetrics left it.
  static void PerfTelemetryInit(uint64_t appStartTicks, const CStringT<char>& pID);

  // Forgets everything collected, turns the master switch off and waits without limit for the work thread's
  // end, and so for a helper that is being called. Not to be called by the helper.
  static void PerfTelemetryTerm();

  // After PerfTelemetryInit: takes `helper`, which is borrowed until another takes its place and the work
  // thread has ended its round; sets the master switch to `enable`, and sends if it is not 0. Before that it
  // sets nothing. In both cases, with the master switch off what was collected is forgotten.
  static void EnablePerformanceMetrics(int enable, IPerfTelemetryHelper* helper);

  static int IsEnablePerformanceMetrics();  // the master switch as it was set
  static bool IsEnableSendMetrics();

  // ---- Thresholds: a success that cost no more is not reported; 0 reports no success at all -----------

  static void SetHeartbeatThreshold(uint32_t ms);
  static uint32_t GetHeartbeatThreshold();
  static void SetStackThreshold(uint32_t ms);  // for all events but heartbeats, and for the calls inside them
  static uint32_t GetStackThreshold();

  // ---- State that goes into records -----------------------------------------------------------------

  static int HasUrgentEvent();  // a record wants sending at the work thread's next round
  static void SetUrgentEvent(int urgent);

  // With the master switch on: the connection was made again; noted if this thread has signed on before.
  static void PerfTelemetryReconnect();
  // With the master switch on: this thread's next login measures anew.
  static void PerfTelemetryLogout();

  // A text that no other call gives: a GUID of the process, "_" and a number from 0. Result 1.
  static int GetTelemetryGUID(CStringT<wchar_t>& out);

  // Percent of the machine's memory in use, and the working set of this process in megabytes, 0 when it is
  // not known, as it is before PerfTelemetryInit. Result 1.
  static int GetMemoryUsage(int& loadPercent, int& processMB);

  // ---- Reporting: 1 when the entry was queued, 0 when the master switch is off or the queue is full -----
  //
  // `ticks` are GetTickCount values; 0 means the time at which the work thread comes to the entry. `cost` is
  // in milliseconds; 0 means the time from start to end. `extra` is kept with the entry and not read.

  // Whether the master switch is on; records nothing.
  static int AddPerfTelemetry(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags strTags,
                              PerfTelemetryIntTags intTags);

  // One event of an identity at a time on a thread: a newer start takes an older one's place. Of the tags of
  // start and end, the start's win. Login totals, which are ends of im_ready, need no start.
  static int AddPerfTelemetryStart(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags strTags,
                                   PerfTelemetryIntTags intTags, uint64_t ticks, int extra = 0);
  static int AddPerfTelemetryEnd(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags strTags,
                                 PerfTelemetryIntTags intTags, uint64_t ticks, uint64_t cost, int extra = 0);

  // Several events of an identity at a time on a thread, told apart by `key`. The identity's value is that
  // of the start.
  static int AddPerfTelemetryStartWithID(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags strTags,
                                         PerfTelemetryIntTags intTags, const CStringT<wchar_t>& key,
                                         uint64_t ticks, int extra = 0);
  static int AddPerfTelemetryEndWithID(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags strTags,
                                       PerfTelemetryIntTags intTags, const CStringT<wchar_t>& key,
                                       uint64_t ticks, uint64_t cost, int extra = 0);

  // The same, with a record of the slow calls that AddPerfTelemetryStacks reports in between. They nest.
  static int AddPerfTelemetryStartWStack(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags strTags,
                                         PerfTelemetryIntTags intTags, const CStringT<wchar_t>& key,
                                         uint64_t ticks, int extra = 0);
  static int AddPerfTelemetryEndWStack(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags strTags,
                                       PerfTelemetryIntTags intTags, const CStringT<wchar_t>& key,
                                       uint64_t ticks, uint64_t cost, int extra = 0);

  // A finished call inside the innermost event with a call record. Its texts are written into JSON as they
  // are.
  static int AddPerfTelemetryStacks(const CStringT<char>& method, const CStringT<char>& source, uint64_t cost,
                                    int extra = 0);

  // An event that is start and end in one.
  static int AddPerfTelemetryEvent(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags strTags,
                                   PerfTelemetryIntTags intTags, uint64_t cost, int extra = 0);

  // ---- Unique ids: one table for the process, without a lock ----------------------------------------

  // Keeps `value` under `key` while the master switch is on; a value that is there already stays.
  void PushUniqueID(const CStringT<wchar_t>& key, const CStringT<wchar_t>& value);
  // Takes the value out and answers 1; 0 with `out` as it was when there is none.
  int PopUniqueID(const CStringT<wchar_t>& key, CStringT<wchar_t>& out);

  // ---- The work thread's rounds: for the work thread, or while it waits -----------------------------

  static void DoConsumeEvents();  // works off all queues
  static void DoSendEvents();     // gives all records to the helper; without one drops them

 private:
  friend class CCmmPerfTelemetryThreadProc;

  struct PerfEventItem;            // a start that waits for its end
  struct PerfTelemetryStartEntry;  // a start whose end has come
  struct PerfEventEntry;           // an entry of a queue
  struct ThreadEvents;             // all that belongs to one thread
  class ThreadEventsPool;
  using ThreadMap = std::unordered_map<std::thread::id, std::shared_ptr<ThreadEvents>>;

  // The calling thread's, made when there is none; null when there is no memory for it.
  static std::shared_ptr<ThreadEvents> GetThreadTelemetry();
  // Forgets all threads with what they hold, and begins the record numbers anew.
  static void CleanUpData();
  // Fills what all records have, `cost` among it.
  static void SetBasicMetricsInfo(VelmPTPAAP::VClientPerfMetricsInfo_s& record, uint64_t cost);
  // Fills the fields that have a tag in `start`.
  static void SetMetricsInfoAttribs(VelmPTPAAP::VClientPerfMetricsInfo_s& record,
                                    PerfTelemetryStartEntry& start);
  static void CheckEvent(const VelmPTPAAP::PerfMetricsEvents_s& events);  // does nothing

  // Appends an entry of these fields to the calling thread's queue. 1, or 0 when the master switch is off or
  // the queue is full.
  template <typename... Fields>
  static int AddEntry(Fields&&... fields);
  static std::vector<std::shared_ptr<ThreadEvents>> AllThreads();
  static CStringT<char> ProcessIdentifier();
  static void SetProcessIdentifier(const CStringT<char>& pID);
  static int TakeUrgentEvent();  // the flag, which is 0 from then on

  static int bMetricsInitialzed;
  static int bMetricsEnabled_;  // read without a lock: a stale value loses or adds an event
  static std::atomic<bool> bSendEnabled_;
  static int bUrgentEvent_;
  static int bXMPPReconnect_;
  static int bLogEnabled_;
  static std::atomic<uint32_t> event_index_;
  static std::atomic<uint32_t> guid_index_;
  static CStringT<wchar_t> guid_;
  static CStringT<char> pID_;  // guarded by m_cs_threadmap_
  static uint32_t heartbeat_timecost_threashold_;
  static uint32_t stack_timecost_threashold_;
  static std::atomic<IPerfTelemetryHelper*> pPerfTelemetryHelper_;  // not owned
  static CCritical m_cs_psapi;
  static void* hPsapi_;                   // guarded by m_cs_psapi
  static void* pfnGetProcessMemoryInfo_;  // guarded by m_cs_psapi
  static CCritical m_cs_threadmap_;       // never taken together with the lock of a ThreadEvents
  static Time m_lastReportTime;           // cleared by PerfTelemetryInit; nothing reads it
  static ThreadEventsPool threadEventsPool_;
  static ThreadMap threadTelemetryMap_;  // guarded by m_cs_threadmap_
  static std::unordered_map<CStringT<wchar_t>, CStringT<wchar_t>, internal::CStringHash> unique_id_;
  static CCmmPerfTelemetryThreadProc thread_proc_;
  static CThread work_thread_;
};

}  // namespace Cmm
