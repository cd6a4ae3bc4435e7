#include "telemetry/PerfTelemetry.h"

#include <windows.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"
#include "host/CmmGUID.h"
#include "telemetry/PerfTelemetrySystem.h"
#include "telemetry/PerfTelemetryThread.h"

namespace Cmm {

using internal::g_perfTelemetrySystem;

namespace {

// For the plain integers that several threads read and write without a common lock.
template <typename T>
T Load(T& value) {
  return std::atomic_ref<T>(value).load(std::memory_order_relaxed);
}
template <typename T>
void Store(T& value, T newValue) {
  std::atomic_ref<T>(value).store(newValue, std::memory_order_relaxed);
}

// A pointer per thread. Reading it leaves the thread's last error as it was: a scope ends between a failed
// call and the caller's look at its error.
class ThreadPointer {
 public:
  constexpr ThreadPointer() = default;
  ThreadPointer(const ThreadPointer&) = delete;
  ThreadPointer& operator=(const ThreadPointer&) = delete;
  ~ThreadPointer() {
    if (m_slot != TLS_OUT_OF_INDEXES) TlsFree(m_slot);
  }

  // Until it has worked, every thread reads null.
  void Allocate() {
    if (m_slot == TLS_OUT_OF_INDEXES) m_slot = TlsAlloc();
  }

  void* Get() const {
    const DWORD slot = m_slot;
    if (slot == TLS_OUT_OF_INDEXES) return nullptr;
    const DWORD lastError = GetLastError();
    void* const value = TlsGetValue(slot);
    SetLastError(lastError);
    return value;
  }

  void Set(void* value) {
    if (m_slot != TLS_OUT_OF_INDEXES) TlsSetValue(m_slot, value);
  }

 private:
  std::atomic<DWORD> m_slot = TLS_OUT_OF_INDEXES;
};

constexpr uint64_t kNoCost = 0;
constexpr uint64_t kTicksWhenConsumed = 0;

constinit ThreadPointer g_ownEvents;  // the thread's last ThreadEvents, perhaps no longer its own
constinit std::atomic<uint64_t> g_generation = 1;  // of threadTelemetryMap_, counted up with each cleaning up

}  // namespace

int CCmmPerfTelemetry::bMetricsInitialzed = 0;
int CCmmPerfTelemetry::bMetricsEnabled_ = 0;
std::atomic<bool> CCmmPerfTelemetry::bSendEnabled_ = false;
int CCmmPerfTelemetry::bUrgentEvent_ = 0;
int CCmmPerfTelemetry::bXMPPReconnect_ = 0;
int CCmmPerfTelemetry::bLogEnabled_ = 0;
std::atomic<uint32_t> CCmmPerfTelemetry::event_index_ = 0;
std::atomic<uint32_t> CCmmPerfTelemetry::guid_index_ = 0;
CStringT<wchar_t> CCmmPerfTelemetry::guid_ = CmmGUID().GetStr(0);
CStringT<char> CCmmPerfTelemetry::pID_;
uint32_t CCmmPerfTelemetry::heartbeat_timecost_threashold_ = internal::kDefaultHeartbeatThresholdMs;
uint32_t CCmmPerfTelemetry::stack_timecost_threashold_ = internal::kDefaultStackThresholdMs;
std::atomic<IPerfTelemetryHelper*> CCmmPerfTelemetry::pPerfTelemetryHelper_ = nullptr;
CCritical CCmmPerfTelemetry::m_cs_psapi;
void* CCmmPerfTelemetry::hPsapi_ = nullptr;
void* CCmmPerfTelemetry::pfnGetProcessMemoryInfo_ = nullptr;
CCritical CCmmPerfTelemetry::m_cs_threadmap_;
Time CCmmPerfTelemetry::m_lastReportTime;
CCmmPerfTelemetry::ThreadEventsPool CCmmPerfTelemetry::threadEventsPool_;  // outlives the map
CCmmPerfTelemetry::ThreadMap CCmmPerfTelemetry::threadTelemetryMap_;
std::unordered_map<CStringT<wchar_t>, CStringT<wchar_t>, internal::CStringHash> CCmmPerfTelemetry::unique_id_;
CCmmPerfTelemetryThreadProc CCmmPerfTelemetry::thread_proc_;
CThread CCmmPerfTelemetry::work_thread_;

// ---- Lifecycle --------------------------------------------------------------------------------------

void CCmmPerfTelemetry::PerfTelemetryInit(uint64_t appStartTicks, const CStringT<char>& pID) {
  internal::WriteDebugText((std::string("CCmmPerfTelemetry::PerfTelemetryInit pID: ") + pID.c_str()).c_str());
  g_ownEvents.Allocate();
  CleanUpData();
  const std::shared_ptr<ThreadEvents> events = GetThreadTelemetry();
  {
    CAutoLock<CCritical> guard(m_cs_threadmap_);
    if (events) {
      events->login.app_start_ticks = appStartTicks;
      events->login.login_start_ticks = 0;
    }
    Store(bXMPPReconnect_, 0);
  }
  SetProcessIdentifier(pID);
  Store(bMetricsEnabled_, 1);
  Store(bMetricsInitialzed, 1);
  m_lastReportTime = Time();
  SetStackThreshold(internal::kDefaultStackThresholdMs);
  SetHeartbeatThreshold(internal::kDefaultHeartbeatThresholdMs);
  {
    CAutoLock<CCritical> guard(m_cs_psapi);
    internal::FreePsapi(std::exchange(hPsapi_, internal::LoadPsapi()));
    pfnGetProcessMemoryInfo_ = internal::FindGetProcessMemoryInfo(hPsapi_);
  }
  guid_index_ = 0;
  event_index_ = 0;
  thread_proc_.SetRunning(true);
  if (!work_thread_.IsRunning()) work_thread_.Create(&thread_proc_);
}

void CCmmPerfTelemetry::PerfTelemetryTerm() {
  internal::WriteDebugText(
      (std::string("CCmmPerfTelemetry::PerfTelemetryTerm pID: ") + ProcessIdentifier().c_str()).c_str());
  {
    CAutoLock<CCritical> guard(m_cs_psapi);
    pfnGetProcessMemoryInfo_ = nullptr;
    internal::FreePsapi(std::exchange(hPsapi_, nullptr));
  }
  CleanUpData();
  SetProcessIdentifier({});
  Store(bMetricsInitialzed, 0);
  Store(bMetricsEnabled_, 0);
  thread_proc_.SetRunning(false);
  if (!work_thread_.IsRunning()) return;
  thread_proc_.Wake();
  work_thread_.Join();
}

void CCmmPerfTelemetry::EnablePerformanceMetrics(int enable, IPerfTelemetryHelper* helper) {
  if (Load(bMetricsInitialzed)) {
    pPerfTelemetryHelper_ = helper;
    Store(bMetricsEnabled_, enable);
    bSendEnabled_ = enable != 0;
  }
  if (!IsEnablePerformanceMetrics()) CleanUpData();
}

int CCmmPerfTelemetry::IsEnablePerformanceMetrics() {
  return Load(bMetricsEnabled_);
}

bool CCmmPerfTelemetry::IsEnableSendMetrics() {
  return bSendEnabled_;
}

// ---- Thresholds and state ---------------------------------------------------------------------------

void CCmmPerfTelemetry::SetHeartbeatThreshold(uint32_t ms) {
  Store(heartbeat_timecost_threashold_, ms);
}

uint32_t CCmmPerfTelemetry::GetHeartbeatThreshold() {
  return Load(heartbeat_timecost_threashold_);
}

void CCmmPerfTelemetry::SetStackThreshold(uint32_t ms) {
  Store(stack_timecost_threashold_, ms);
}

uint32_t CCmmPerfTelemetry::GetStackThreshold() {
  return Load(stack_timecost_threashold_);
}

int CCmmPerfTelemetry::HasUrgentEvent() {
  return Load(bUrgentEvent_);
}

void CCmmPerfTelemetry::SetUrgentEvent(int urgent) {
  Store(bUrgentEvent_, urgent);
}

void CCmmPerfTelemetry::PerfTelemetryReconnect() {
  if (!IsEnablePerformanceMetrics()) return;
  const std::shared_ptr<ThreadEvents> events = GetThreadTelemetry();
  if (!events) return;
  CAutoLock<CCritical> guard(m_cs_threadmap_);
  if (events->login.signon_seen) Store(bXMPPReconnect_, 1);
}

void CCmmPerfTelemetry::PerfTelemetryLogout() {
  if (!IsEnablePerformanceMetrics()) return;
  const std::shared_ptr<ThreadEvents> events = GetThreadTelemetry();
  if (!events) return;
  CAutoLock<CCritical> guard(m_cs_threadmap_);
  events->login.logged_out = 1;
  events->login.signon_seen = 0;
  Store(bXMPPReconnect_, 0);
}

int CCmmPerfTelemetry::GetTelemetryGUID(CStringT<wchar_t>& out) {
  out = guid_.GetCData() + L'_' + std::to_wstring(guid_index_++);
  return 1;
}

int CCmmPerfTelemetry::GetMemoryUsage(int& loadPercent, int& processMB) {
  const internal::PhysicalMemory physical = g_perfTelemetrySystem.physicalMemory();
  CAutoLock<CCritical> guard(m_cs_psapi);
  loadPercent = static_cast<int>(physical.loadPercent);
  processMB = internal::ProcessMegabytes(internal::WorkingSet(pfnGetProcessMemoryInfo_), physical.totalBytes);
  return 1;
}

// ---- Reporting --------------------------------------------------------------------------------------

template <typename... Fields>
int CCmmPerfTelemetry::AddEntry(Fields&&... fields) {
  auto append = [&](ThreadEvents& events) {
    if (events.queue.size() >= internal::kMaxQueuedEntries) return 0;
    events.queue.emplace_back(std::forward<Fields>(fields)...);
    if (events.queue.size() >= internal::kEarlyDrainEntries) thread_proc_.Wake();
    return 1;
  };

  if (auto* const own = static_cast<ThreadEvents*>(g_ownEvents.Get())) {
    CAutoLock<CCritical> guard(own->lock);
    if (own->owner == GetCurrentThreadId() && own->generation == g_generation) return append(*own);
  }
  const std::shared_ptr<ThreadEvents> events = GetThreadTelemetry();
  if (!events) return 0;
  CAutoLock<CCritical> guard(events->lock);
  return append(*events);
}

int CCmmPerfTelemetry::AddPerfTelemetry(VelmPTPAAP::PerfMetricsEvents_s events, PerfTelemetryStrTags,
                                        PerfTelemetryIntTags) {
  CheckEvent(events);
  return IsEnablePerformanceMetrics() != 0;
}

int CCmmPerfTelemetry::AddPerfTelemetryStart(VelmPTPAAP::PerfMetricsEvents_s events,
                                             PerfTelemetryStrTags strTags, PerfTelemetryIntTags intTags,
                                             uint64_t ticks, int extra) {
  if (!IsEnablePerformanceMetrics()) return 0;
  return AddEntry(PerfEventEntry::kStart, std::move(events), std::move(strTags), std::move(intTags), ticks,
                  kNoCost, CStringT<wchar_t>(), extra);
}

int CCmmPerfTelemetry::AddPerfTelemetryEnd(VelmPTPAAP::PerfMetricsEvents_s events,
                                           PerfTelemetryStrTags strTags, PerfTelemetryIntTags intTags,
                                           uint64_t ticks, uint64_t cost, int extra) {
  if (!IsEnablePerformanceMetrics()) return 0;
  return AddEntry(PerfEventEntry::kEnd, std::move(events), std::move(strTags), std::move(intTags), ticks,
                  cost, CStringT<wchar_t>(), extra);
}

int CCmmPerfTelemetry::AddPerfTelemetryStartWithID(VelmPTPAAP::PerfMetricsEvents_s events,
                                                   PerfTelemetryStrTags strTags, PerfTelemetryIntTags intTags,
                                                   const CStringT<wchar_t>& key, uint64_t ticks, int extra) {
  if (!IsEnablePerformanceMetrics()) return 0;
  return AddEntry(PerfEventEntry::kStartWithID, std::move(events), std::move(strTags), std::move(intTags),
                  ticks, kNoCost, CStringT<wchar_t>(key), extra);
}

int CCmmPerfTelemetry::AddPerfTelemetryEndWithID(VelmPTPAAP::PerfMetricsEvents_s events,
                                                 PerfTelemetryStrTags strTags, PerfTelemetryIntTags intTags,
                                                 const CStringT<wchar_t>& key, uint64_t ticks, uint64_t cost,
                                                 int extra) {
  if (!IsEnablePerformanceMetrics()) return 0;
  return AddEntry(PerfEventEntry::kEndWithID, std::move(events), std::move(strTags), std::move(intTags),
                  ticks, cost, CStringT<wchar_t>(key), extra);
}

int CCmmPerfTelemetry::AddPerfTelemetryStartWStack(VelmPTPAAP::PerfMetricsEvents_s events,
                                                   PerfTelemetryStrTags strTags, PerfTelemetryIntTags intTags,
                                                   const CStringT<wchar_t>& key, uint64_t ticks, int extra) {
  if (!IsEnablePerformanceMetrics()) return 0;
  return AddEntry(PerfEventEntry::kStartWStack, std::move(events), std::move(strTags), std::move(intTags),
                  ticks, kNoCost, CStringT<wchar_t>(key), extra);
}

int CCmmPerfTelemetry::AddPerfTelemetryEndWStack(VelmPTPAAP::PerfMetricsEvents_s events,
                                                 PerfTelemetryStrTags strTags, PerfTelemetryIntTags intTags,
                                                 const CStringT<wchar_t>& key, uint64_t ticks, uint64_t cost,
                                                 int extra) {
  if (!IsEnablePerformanceMetrics()) return 0;
  return AddEntry(PerfEventEntry::kEndWStack, std::move(events), std::move(strTags), std::move(intTags),
                  ticks, cost, CStringT<wchar_t>(key), extra);
}

int CCmmPerfTelemetry::AddPerfTelemetryStacks(const CStringT<char>& method, const CStringT<char>& source,
                                              uint64_t cost, int extra) {
  if (!IsEnablePerformanceMetrics()) return 0;
  return AddEntry(PerfEventEntry::kStacks, VelmPTPAAP::PerfMetricsEvents_s(), PerfTelemetryStrTags(),
                  PerfTelemetryIntTags(), kTicksWhenConsumed, cost, CStringT<wchar_t>(), extra,
                  CStringT<char>(method), CStringT<char>(source));
}

int CCmmPerfTelemetry::AddPerfTelemetryEvent(VelmPTPAAP::PerfMetricsEvents_s events,
                                             PerfTelemetryStrTags strTags, PerfTelemetryIntTags intTags,
                                             uint64_t cost, int extra) {
  if (!IsEnablePerformanceMetrics()) return 0;
  return AddEntry(PerfEventEntry::kEvent, std::move(events), std::move(strTags), std::move(intTags),
                  kTicksWhenConsumed, cost, CStringT<wchar_t>(), extra);
}

void CCmmPerfTelemetry::PushUniqueID(const CStringT<wchar_t>& key, const CStringT<wchar_t>& value) {
  if (IsEnablePerformanceMetrics()) unique_id_.emplace(key, value);
}

int CCmmPerfTelemetry::PopUniqueID(const CStringT<wchar_t>& key, CStringT<wchar_t>& out) {
  const auto found = unique_id_.find(key);
  if (found == unique_id_.end()) return 0;
  out = found->second;
  unique_id_.erase(found);
  return 1;
}

void CCmmPerfTelemetry::CheckEvent(const VelmPTPAAP::PerfMetricsEvents_s&) {}

// ---- The map of threads -----------------------------------------------------------------------------

auto CCmmPerfTelemetry::GetThreadTelemetry() -> std::shared_ptr<ThreadEvents> {
  const std::thread::id self = std::this_thread::get_id();
  std::shared_ptr<ThreadEvents> events;
  {
    CAutoLock<CCritical> guard(m_cs_threadmap_);
    const auto found = threadTelemetryMap_.find(self);
    if (found != threadTelemetryMap_.end()) events = found->second;
    if (events) events->owner = GetCurrentThreadId();  // an ended thread may have had the same id
  }
  if (!events) {
    events = threadEventsPool_.Take();
    if (!events) return nullptr;
    CAutoLock<CCritical> guard(m_cs_threadmap_);
    events->owner = GetCurrentThreadId();
    events->generation = g_generation.load();
    threadTelemetryMap_.emplace(self, events);
  }
  g_ownEvents.Set(events.get());
  return events;
}

void CCmmPerfTelemetry::CleanUpData() {
  event_index_ = 0;
  ThreadMap forgotten;  // ends behind the lock: its threads' own locks are taken then
  CAutoLock<CCritical> guard(m_cs_threadmap_);
  ++g_generation;
  forgotten.swap(threadTelemetryMap_);
}

std::vector<std::shared_ptr<CCmmPerfTelemetry::ThreadEvents>> CCmmPerfTelemetry::AllThreads() {
  std::vector<std::shared_ptr<ThreadEvents>> threads;
  CAutoLock<CCritical> guard(m_cs_threadmap_);
  threads.reserve(threadTelemetryMap_.size());
  for (const auto& [id, events] : threadTelemetryMap_)
    threads.push_back(events);
  return threads;
}

// ---- The work thread --------------------------------------------------------------------------------

void CCmmPerfTelemetry::DoConsumeEvents() {
  std::vector<PerfEventEntry> entries;
  for (const std::shared_ptr<ThreadEvents>& events : AllThreads()) {
    // What one thread's queue had is the next one's; a queue that grew does not hand its size on.
    entries.clear();
    if (entries.capacity() > internal::kReservedEntries) entries = {};
    entries.reserve(internal::kReservedEntries);
    {
      CAutoLock<CCritical> guard(events->lock);
      entries.swap(events->queue);
    }
    for (PerfEventEntry& entry : entries)
      events->Consume(entry);
  }
}

void CCmmPerfTelemetry::DoSendEvents() {
  for (const std::shared_ptr<ThreadEvents>& events : AllThreads()) {
    const auto records = events->TakeRecords();
    events->PurgeOldStarts(internal::PerfTicks());
    IPerfTelemetryHelper* const helper = pPerfTelemetryHelper_;
    if (helper == nullptr) continue;
    for (const VelmPTPAAP::VClientPerfMetricsInfo_s& record : records)
      helper->SendPerfMetrics(record);
  }
}

void CCmmPerfTelemetry::SetBasicMetricsInfo(VelmPTPAAP::VClientPerfMetricsInfo_s& record, uint64_t cost) {
  record.timestamp = Time::FromInternalValue(g_perfTelemetrySystem.now()).ToTimeTInMS();
  record.cost = cost;
  record.pid = ProcessIdentifier();
  record.version = "3.0";
  record.log_enabled = bLogEnabled_;
  {
    CAutoLock<CCritical> guard(m_cs_threadmap_);
    record.xmpp_reconnect = Load(bXMPPReconnect_);
  }
  GetMemoryUsage(record.memory_load, record.process_memory);
}

void CCmmPerfTelemetry::SetMetricsInfoAttribs(VelmPTPAAP::VClientPerfMetricsInfo_s& record,
                                              PerfTelemetryStartEntry& start) {
  internal::SetTagFields(record, start.strTags, start.intTags);
}

CStringT<char> CCmmPerfTelemetry::ProcessIdentifier() {
  CAutoLock<CCritical> guard(m_cs_threadmap_);
  return pID_;
}

void CCmmPerfTelemetry::SetProcessIdentifier(const CStringT<char>& pID) {
  CAutoLock<CCritical> guard(m_cs_threadmap_);
  pID_ = pID;
}

int CCmmPerfTelemetry::TakeUrgentEvent() {
  CAutoLock<CCritical> guard(m_cs_threadmap_);
  return std::atomic_ref<int>(bUrgentEvent_).exchange(0);
}

CCmmPerfTelemetryThreadProc::~CCmmPerfTelemetryThreadProc() {
  UniqueHandle closed(m_event);
}

void CCmmPerfTelemetryThreadProc::SetRunning(bool running) {
  constexpr BOOL kUntilReset = TRUE;
  if (running && m_event == nullptr) m_event = CreateEventW(nullptr, kUntilReset, FALSE, nullptr);
  m_running = running;
}

// Only the first call of a round reaches the system: a queue that stays long asks for every entry. As with
// the event itself, a call that falls into the end of a round may be lost, and the next one is not.
void CCmmPerfTelemetryThreadProc::Wake() {
  if (m_event == nullptr || m_isWoken || m_isWoken.exchange(true)) return;
  const DWORD lastError = GetLastError();
  SetEvent(m_event);
  SetLastError(lastError);
}

// Looks before each wait whether it is to end: a call to wake it may have been lost at the end of a round.
unsigned int CCmmPerfTelemetryThreadProc::ThreadProc() {
  int64_t lastSend = g_perfTelemetrySystem.now();
  while (m_running) {
    g_perfTelemetrySystem.wait(m_event, internal::kDrainPeriodMs);
    if (!m_running) break;
    CCmmPerfTelemetry::DoConsumeEvents();
    const bool urgent = CCmmPerfTelemetry::TakeUrgentEvent() != 0;
    if (internal::IsSendDue(CCmmPerfTelemetry::IsEnableSendMetrics(), urgent, g_perfTelemetrySystem.now(),
                            lastSend)) {
      CCmmPerfTelemetry::DoSendEvents();
      lastSend = g_perfTelemetrySystem.now();
    }
    ResetEvent(m_event);
    m_isWoken = false;  // behind the event: the other way round it could stay set while the event is not
  }
  return 0;
}

}  // namespace Cmm
