#include "tools/velm_trace/Record.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <stdexcept>

#include "tools/common/JsonLine.h"
#include "tools/common/Text.h"

namespace velm_trace {
namespace {

using velm_tools::JsonLine;

constexpr const char* kRecording = "velm_trace";
constexpr int kVersion = 1;
constexpr Event::Kind kKinds[] = {Event::Kind::kOpened, Event::Kind::kFrame, Event::Kind::kPartial,
                                  Event::Kind::kGarbage, Event::Kind::kClosed};

bool HasBytes(Event::Kind kind) {
  return kind != Event::Kind::kOpened && kind != Event::Kind::kClosed;
}

bool IsHead(const Json::Value& line) {
  return line.isObject() && line["recording"] == kRecording && line["version"] == kVersion;
}

std::optional<Event> ReadEvent(const Json::Value& line) {
  if (!line.isObject() || !line["event"].isString() || !line["from"].isString() || !line["at"].isInt64())
    return std::nullopt;
  Event event;
  const auto kind =
      std::ranges::find(kKinds, line["event"].asString(), [](Event::Kind k) { return NameOf(k); });
  if (kind == std::end(kKinds)) return std::nullopt;
  event.kind = *kind;
  const std::string from = line["from"].asString();
  if (from != NameOf(End::kHost) && from != NameOf(End::kClient)) return std::nullopt;
  event.from = from == NameOf(End::kHost) ? End::kHost : End::kClient;
  event.at = std::chrono::microseconds(line["at"].asInt64());
  if (!HasBytes(event.kind)) return event;
  const std::optional<std::string> bytes =
      line["hex"].isString() ? velm_tools::FromHex(line["hex"].asString()) : std::nullopt;
  if (!bytes) return std::nullopt;
  event.bytes = *bytes;
  return event;
}

}  // namespace

std::string_view NameOf(Event::Kind kind) {
  switch (kind) {
    case Event::Kind::kOpened:
      return "opened";
    case Event::Kind::kFrame:
      return "frame";
    case Event::Kind::kPartial:
      return "partial";
    case Event::Kind::kGarbage:
      return "garbage";
    case Event::Kind::kClosed:
      return "closed";
  }
  return {};
}

std::string RecordingHead() {
  return JsonLine().Add("recording", kRecording).Add("version", kVersion).Text();
}

std::string RecordingLine(const Event& event) {
  JsonLine line;
  line.Add("event", std::string(NameOf(event.kind)));
  line.Add("at", static_cast<Json::Int64>(event.at.count()));
  line.Add("from", std::string(NameOf(event.from)));
  if (HasBytes(event.kind)) line.Add("hex", velm_tools::ToHex(event.bytes));
  return line.Text();
}

std::vector<Event> ReadRecording(std::string_view text) {
  std::vector<Event> events;
  size_t number = 1;
  for (size_t end; (end = text.find('\n')) != std::string_view::npos; ++number) {
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    const Json::Value value = velm_tools::ParseJson(line).value_or(Json::Value());
    if (number == 1) {
      if (!IsHead(value)) throw std::runtime_error("line 1: this is no recording of velm_trace");
      continue;
    }
    const std::optional<Event> event = ReadEvent(value);
    if (!event) throw std::runtime_error("line " + std::to_string(number) + ": this is no event");
    events.push_back(*event);
  }
  if (number == 1) throw std::runtime_error("line 1: this is no recording of velm_trace");
  return events;
}

std::vector<Event> FirstConnection(const std::vector<Event>& recording) {
  std::vector<Event> events;
  for (const Event& event : recording) {
    if (event.kind == Event::Kind::kClosed) break;
    if (event.kind != Event::Kind::kOpened) events.push_back(event);
  }
  return events;
}

}  // namespace velm_trace
