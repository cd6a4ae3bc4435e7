#include "telemetry/PerfTelemetryThread.h"

#include <iterator>
#include <new>
#include <utility>

#include "telemetry/PerfTelemetrySystem.h"

namespace Cmm {

using internal::PerfTicks;

namespace {

using LoginEvent = e_chat_perfmetrics_Perfmetrics_login_event;

CStringT<wchar_t> WideKeyOf(const VelmPTPAAP::PerfMetricsEvents_s& events, const CStringT<wchar_t>& key) {
  return internal::WideEventKey(internal::PerfEventCode(events), key);
}

}  // namespace

// ---- Pairing ----------------------------------------------------------------------------------------

void CCmmPerfTelemetry::ThreadEvents::Consume(PerfEventEntry& entry) {
  switch (entry.kind) {
    case PerfEventEntry::kStart:
      return ConsumeStart(entry);
    case PerfEventEntry::kEnd:
      return ConsumeEnd(entry);
    case PerfEventEntry::kStartWithID:
      return ConsumeStartWithID(entry);
    case PerfEventEntry::kEndWithID:
      return ConsumeEndWithID(entry);
    case PerfEventEntry::kStartWStack:
      return ConsumeStartWStack(entry);
    case PerfEventEntry::kEndWStack:
      return ConsumeEndWStack(entry);
    case PerfEventEntry::kStacks:
      return ConsumeStacks(entry);
    case PerfEventEntry::kEvent:
      return ConsumeEvent(entry);
  }
}

// A newer start brings its ticks and tags, but the identity stays the older one's, its value too.
template <typename Starts>
void CCmmPerfTelemetry::ThreadEvents::KeepStart(Starts& starts, const typename Starts::key_type& key,
                                                PerfEventEntry& entry) {
  if (entry.ticks == 0) entry.ticks = PerfTicks();
  const auto [found, isNew] = starts.try_emplace(key);
  PerfEventItem& item = found->second;
  item.strTags = std::move(entry.strTags);
  item.intTags = std::move(entry.intTags);
  item.startTicks = entry.ticks;
  if (!isNew) return;
  item.events = std::move(entry.events);
  item.key = std::move(entry.key);
}

template <typename Starts>
auto CCmmPerfTelemetry::ThreadEvents::TakeStart(Starts& starts, const typename Starts::key_type& key,
                                                PerfEventEntry& entry)
    -> std::optional<PerfTelemetryStartEntry> {
  const auto found = starts.find(key);
  if (found == starts.end()) return std::nullopt;
  PerfEventItem item = std::move(found->second);
  starts.erase(found);
  item.strTags.merge(entry.strTags);
  item.intTags.merge(entry.intTags);
  return PerfTelemetryStartEntry{std::move(item.strTags), std::move(item.intTags), item.startTicks,
                                 std::move(item)};
}

void CCmmPerfTelemetry::ThreadEvents::ConsumeStart(PerfEventEntry& entry) {
  NoteLoginStart(entry.events);
  KeepStart(collected.plainStarts, entry.events, entry);
}

void CCmmPerfTelemetry::ThreadEvents::ConsumeEnd(PerfEventEntry& entry) {
  if (!IsEnablePerformanceMetrics()) return;
  if (entry.ticks == 0) entry.ticks = PerfTicks();
  if (entry.events.login_event == LoginEvent::im_ready) return FinishLogin(entry);
  if (auto start = TakeStart(collected.plainStarts, entry.events, entry)) Finish(*start, entry, nullptr);
}

void CCmmPerfTelemetry::ThreadEvents::ConsumeStartWithID(PerfEventEntry& entry) {
  KeepStart(collected.idStarts, WideKeyOf(entry.events, entry.key), entry);
}

void CCmmPerfTelemetry::ThreadEvents::ConsumeEndWithID(PerfEventEntry& entry) {
  if (!IsEnablePerformanceMetrics()) return;
  if (entry.ticks == 0) entry.ticks = PerfTicks();
  auto start = TakeStart(collected.idStarts, WideKeyOf(entry.events, entry.key), entry);
  if (!start) return;
  entry.events.value = start->item.events.value;
  Finish(*start, entry, nullptr);
}

void CCmmPerfTelemetry::ThreadEvents::ConsumeStartWStack(PerfEventEntry& entry) {
  const CStringT<wchar_t> key = WideKeyOf(entry.events, entry.key);
  KeepStart(collected.stackStarts, key, entry);
  collected.stacks[key].clear();
  collected.enclosingStackKeys[key] = std::exchange(collected.currentStackKey, key);
}

void CCmmPerfTelemetry::ThreadEvents::ConsumeEndWStack(PerfEventEntry& entry) {
  if (!IsEnablePerformanceMetrics()) return;
  if (entry.ticks == 0) entry.ticks = PerfTicks();
  const CStringT<wchar_t> key = WideKeyOf(entry.events, entry.key);
  if (auto start = TakeStart(collected.stackStarts, key, entry)) {
    entry.events.value = start->item.events.value;
    const auto table = collected.stacks.find(key);
    const bool hasTable = table != collected.stacks.end();
    Finish(*start, entry, hasTable ? &table->second : nullptr);
    if (hasTable) collected.stacks.erase(table);
  }
  const auto enclosing = collected.enclosingStackKeys.find(key);
  if (enclosing == collected.enclosingStackKeys.end()) return;
  collected.currentStackKey = std::move(enclosing->second);
  collected.enclosingStackKeys.erase(enclosing);
}

void CCmmPerfTelemetry::ThreadEvents::ConsumeStacks(const PerfEventEntry& entry) {
  if (!internal::IsWorthReporting(entry.cost, GetStackThreshold(), 0, 0)) return;
  const auto table = collected.stacks.find(collected.currentStackKey);
  if (table == collected.stacks.end()) return;
  internal::RecordCall(table->second, entry.method, entry.source, entry.cost);
}

void CCmmPerfTelemetry::ThreadEvents::ConsumeEvent(PerfEventEntry& entry) {
  if (entry.ticks == 0) entry.ticks = PerfTicks();
  PerfTelemetryStartEntry start{std::move(entry.strTags), std::move(entry.intTags), entry.ticks, {}};
  Finish(start, entry, nullptr);
}

// ---- Logins -----------------------------------------------------------------------------------------

void CCmmPerfTelemetry::ThreadEvents::NoteLoginStart(const VelmPTPAAP::PerfMetricsEvents_s& events) {
  if (events.login_event == LoginEvent::app_login) {
    CAutoLock<CCritical> guard(m_cs_threadmap_);
    if (!login.logged_out) return;
    login.logged_out = 0;
    login.app_start_ticks = PerfTicks();
    login.first_login = 1;
    login.login_start_ticks = 0;
  }
  if (events.login_event == LoginEvent::xmpp_signon) {
    CAutoLock<CCritical> guard(m_cs_threadmap_);
    login.signon_seen = 1;
    if (login.login_start_ticks == 0) login.login_start_ticks = PerfTicks();
  }
}

// The login total: from the start of the application for the first login, else from the sign-on. Neither the
// threshold nor the bound of the list holds for it, and the tags of the end are not looked at.
void CCmmPerfTelemetry::ThreadEvents::FinishLogin(const PerfEventEntry& entry) {
  uint64_t startTicks = 0;
  int firstLogin = 0;
  {
    CAutoLock<CCritical> guard(m_cs_threadmap_);
    firstLogin = std::exchange(login.first_login, 0);
    startTicks = firstLogin ? login.app_start_ticks : login.login_start_ticks;
    login.login_start_ticks = 0;
  }
  Record record;
  record.tag_6 = firstLogin ? 0 : 1;
  SetBasicMetricsInfo(record, entry.ticks - startTicks);
  record.index = event_index_++;
  record.events = entry.events;
  collected.finished.push_back(std::move(record));

  CAutoLock<CCritical> guard(lock);
  SetUrgentEvent(1);
  thread_proc_.Wake();
}

// ---- Finishing --------------------------------------------------------------------------------------

void CCmmPerfTelemetry::ThreadEvents::Finish(PerfTelemetryStartEntry& start, const PerfEventEntry& end,
                                             internal::StackTable* stacks) {
  const uint64_t cost = end.cost != 0 ? end.cost : end.ticks - start.ticks;
  const bool isHeartbeat = end.events.heartbeat_event != e_chat_perfmetrics_Perfmetrics_heartbeat_event{};
  const uint32_t threshold = isHeartbeat ? GetHeartbeatThreshold() : GetStackThreshold();
  if (!internal::IsWorthReporting(cost, threshold, end.events.result, end.events.sub_result)) return;
  if (internal::IsAggregated(cost, end.events.result))
    Aggregate(start, end.events, cost, stacks);
  else if (collected.finished.size() < internal::kMaxFinishedRecords)
    collected.finished.push_back(MakeRecord(start, end.events, cost, stacks));
}

void CCmmPerfTelemetry::ThreadEvents::Aggregate(PerfTelemetryStartEntry& start,
                                                const VelmPTPAAP::PerfMetricsEvents_s& events, uint64_t cost,
                                                internal::StackTable* stacks) {
  const auto found = collected.aggregates.find(events);
  if (found == collected.aggregates.end()) {
    if (collected.aggregates.size() < internal::kMaxAggregates)
      collected.aggregates.emplace(events, MakeRecord(start, events, cost, stacks));
    return;
  }
  Record& aggregate = found->second;
  if (!internal::MergeCall(aggregate, cost)) {
    ++event_index_;  // a number is used up although no record bears it
    return;
  }
  Record slowest = MakeRecord(start, events, cost, stacks);
  slowest.count = aggregate.count;
  slowest.average_cost = aggregate.average_cost;
  slowest.min_cost = aggregate.min_cost;
  aggregate = std::move(slowest);
}

// Asks the system for the memory in use, so it is called only for a record that will be kept.
auto CCmmPerfTelemetry::ThreadEvents::MakeRecord(PerfTelemetryStartEntry& start,
                                                 const VelmPTPAAP::PerfMetricsEvents_s& events, uint64_t cost,
                                                 internal::StackTable* stacks) -> Record {
  Record record;
  SetBasicMetricsInfo(record, cost);
  if (stacks != nullptr && IsEnablePerformanceMetrics()) {
    constexpr size_t kEmptyList = 2;
    std::string text = internal::TakeStackText(*stacks);
    if (text.size() > kEmptyList) record.stack_log = std::move(text);
  }
  record.index = event_index_++;
  record.events = events;
  SetMetricsInfoAttribs(record, start);
  return record;
}

// ---- Sending ----------------------------------------------------------------------------------------

auto CCmmPerfTelemetry::ThreadEvents::TakeRecords() -> std::vector<Record> {
  std::vector<Record> records = std::exchange(collected.finished, {});
  records.reserve(records.size() + collected.aggregates.size());
  for (auto& [identity, record] : collected.aggregates)
    records.push_back(std::move(record));
  collected.aggregates.clear();
  return records;
}

void CCmmPerfTelemetry::ThreadEvents::PurgeOldStarts(uint64_t now) {
  const auto isOld = [now](const auto& start) { return internal::IsOldStart(now, start.second.startTicks); };
  std::erase_if(collected.idStarts, isOld);
  std::erase_if(collected.plainStarts, isOld);
  std::erase_if(collected.stackStarts, [&](const auto& start) {
    if (!isOld(start)) return false;
    collected.enclosingStackKeys.erase(start.first);
    collected.stacks.erase(start.first);
    return true;
  });
}

// ---- Pool -------------------------------------------------------------------------------------------

CCmmPerfTelemetry::ThreadEventsPool::~ThreadEventsPool() = default;

auto CCmmPerfTelemetry::ThreadEventsPool::Take() -> std::shared_ptr<ThreadEvents> {
  std::unique_ptr<ThreadEvents> events;
  {
    CAutoLock<CCritical> guard(m_lock);
    if (!m_free.empty()) {
      events = std::move(m_free.back());
      m_free.pop_back();
    }
  }
  try {
    if (!events) events = std::make_unique<ThreadEvents>();
    events->queue.reserve(internal::kReservedEntries);
    return {events.release(), [this](ThreadEvents* unused) { PutBack(unused); }};
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// What it holds ends outside of its lock. A thread that still finds it sees that it is nobody's.
void CCmmPerfTelemetry::ThreadEventsPool::PutBack(ThreadEvents* events) {
  std::vector<PerfEventEntry> queue;
  {
    CAutoLock<CCritical> guard(events->lock);
    events->owner = 0;
    queue.swap(events->queue);
  }
  events->collected = {};
  events->login = {};
  CAutoLock<CCritical> guard(m_lock);
  m_free.emplace_back(events);
}

}  // namespace Cmm
