#include "telemetry/PerfTelemetryRules.h"

#include <algorithm>

namespace Cmm::internal {

CStringT<wchar_t> WideEventKey(int eventCode, const CStringT<wchar_t>& key) {
  return std::to_wstring(eventCode) + L'_' + key.GetCData();
}

int ProcessMegabytes(std::optional<uint64_t> workingSet, uint64_t totalPhysical) {
  constexpr uint64_t kLeastPhysicalBytes = 100;
  if (!workingSet || totalPhysical < kLeastPhysicalBytes) return 0;
  return static_cast<int>(*workingSet >> 20);
}

// An aggregate of one call has neither count nor average nor minimum: its one cost stands for all of them.
bool MergeCall(VelmPTPAAP::VClientPerfMetricsInfo_s& aggregate, uint64_t cost) {
  const uint64_t calls = std::max(aggregate.count, 1u);
  const uint64_t average = aggregate.average_cost != 0 ? aggregate.average_cost : aggregate.cost;
  const uint64_t minimum = aggregate.min_cost != 0 ? aggregate.min_cost : aggregate.cost;
  aggregate.average_cost = (calls * average + cost) / (calls + 1);
  aggregate.min_cost = std::min(minimum, cost);
  aggregate.count = static_cast<uint32_t>(calls + 1);
  return cost > aggregate.cost;
}

namespace {

void SetIntTagField(VelmPTPAAP::VClientPerfMetricsInfo_s& record,
                    e_chat_perfmetrics_Perfmetrics_event_tag_int key, int64_t value) {
  using Key = e_chat_perfmetrics_Perfmetrics_event_tag_int;
  const auto low = static_cast<int32_t>(value);
  switch (key) {
    case Key::tag_1:
      record.tag_1 = low;
      break;
    case Key::tag_2:
      record.tag_2 = low;
      break;
    case Key::tag_3:
      record.tag_3 = value;
      break;
    case Key::tag_4:
      record.tag_4 = value;
      break;
    case Key::tag_5:
      record.tag_5 = low;
      break;
    case Key::tag_6:
      record.tag_6 = low;
      break;
    case Key::tag_7:
      record.tag_7 = low;
      break;
    case Key::tag_8:
      record.tag_8 = value;
      break;
    case Key::xmpp_reconnect:
      record.xmpp_reconnect = low;
      break;
    case Key::tag_10:
      record.tag_10 = low;
      break;
    case Key::memory_load:
      record.memory_load = low;
      break;
    case Key::process_memory:
      record.process_memory = low;
      break;
  }
}

}  // namespace

void SetTagFields(VelmPTPAAP::VClientPerfMetricsInfo_s& record, const PerfTelemetryStrTags& strTags,
                  const PerfTelemetryIntTags& intTags) {
  using StrKey = e_chat_perfmetrics_Perfmetrics_event_tag_str;
  for (const auto& [key, value] : intTags)
    SetIntTagField(record, key, value);
  for (const auto& [key, text] : strTags) {
    if (key == StrKey::str_1) record.str_1 = text;
    if (key == StrKey::str_2) record.str_2 = text;
  }
}

void RecordCall(StackTable& table, const CStringT<char>& method, const CStringT<char>& source,
                uint64_t cost) {
  const auto [found, isNew] = table.try_emplace(method + source, CallRecord{method, source, 1, cost});
  if (isNew) return;
  CallRecord& call = found->second;
  ++call.c;
  if (cost <= call.t) return;
  call.m = method;
  call.f = source;
  call.t = cost;
}

// The count is a number and the time a text: readers of the reports expect it so.
std::string TakeStackText(StackTable& table) {
  std::string text = "[";
  while (!table.empty()) {
    const auto first = table.begin();
    const CallRecord& call = first->second;
    if (text.size() > 1) text += ',';
    text += R"({"m":")" + call.m.GetCData() + R"(","f":")" + call.f.GetCData() + R"(","t":")" +
            std::to_string(call.t) + '"';
    if (call.c > 1) text += R"(,"c":)" + std::to_string(call.c);
    text += '}';
    table.erase(first);
  }
  return text + ']';
}

}  // namespace Cmm::internal
