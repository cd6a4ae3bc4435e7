#include "tools/velm_trace/View.h"

#include <cstdio>

#include "tools/common/Frame.h"
#include "tools/common/JsonLine.h"
#include "tools/common/Text.h"
#include "tools/velm_msg/Decode.h"
#include "tools/velm_trace/Record.h"

namespace velm_trace {
namespace {

constexpr size_t kShownBytes = 64;
constexpr const char* kIndent = "                 ";

std::string Bytes(size_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string ShownHex(const std::string& bytes) {
  return velm_tools::ToHex(std::string_view(bytes).substr(0, kShownBytes)) +
         (bytes.size() > kShownBytes ? ".." : "");
}

// "    12.345 ms  host -> client  "
std::string Head(const Event& event) {
  char time[32];
  std::snprintf(time, sizeof(time), "%10.3f ms  ", static_cast<double>(event.at.count()) / 1000);
  std::string head = time;
  if (event.kind == Event::Kind::kOpened || event.kind == Event::Kind::kClosed)
    return head + std::string(NameOf(event.from));
  return head + std::string(NameOf(event.from)) + " -> " + std::string(NameOf(OtherOf(event.from))) + "  ";
}

// A frame is decoded by itself, so that one which is wrong does not hide the next.
velm_msg::Decoded DecodeFrame(const std::string& bytes) {
  return velm_msg::Decode(bytes, nullptr).front();
}

std::vector<std::string> FrameLines(const Event& event) {
  const velm_msg::Decoded decoded = DecodeFrame(event.bytes);
  std::string head = Head(event) + std::to_string(velm_tools::ReadFrameHeader(event.bytes).type);
  if (decoded.messageClass) head += std::string(" ") + decoded.messageClass->className;
  std::vector<std::string> lines{head + ", " + Bytes(event.bytes.size())};
  const std::vector<std::string> told = velm_msg::ToLines(decoded);
  for (size_t i = 1; i < told.size(); ++i)
    lines.push_back(kIndent + told[i]);
  return lines;
}

}  // namespace

std::vector<std::string> ToLines(const Event& event) {
  switch (event.kind) {
    case Event::Kind::kOpened:
      return {Head(event) + " opened the pipe"};
    case Event::Kind::kClosed:
      return {Head(event) + " left"};
    case Event::Kind::kFrame:
      return FrameLines(event);
    case Event::Kind::kPartial:
      return {Head(event) + "a frame that was not finished, " + Bytes(event.bytes.size()),
              std::string(kIndent) + "  " + ShownHex(event.bytes)};
    case Event::Kind::kGarbage:
      return {Head(event) + "no frame, " + Bytes(event.bytes.size()),
              std::string(kIndent) + "  " + ShownHex(event.bytes)};
  }
  return {};
}

std::string ToJsonText(const Event& event) {
  velm_tools::JsonLine line;
  line.Add("event", std::string(NameOf(event.kind)));
  line.Add("at", static_cast<Json::Int64>(event.at.count()));
  line.Add("from", std::string(NameOf(event.from)));
  if (event.bytes.empty()) return line.Text();
  line.Add("bytes", static_cast<Json::UInt64>(event.bytes.size()));
  if (event.kind != Event::Kind::kFrame)
    return line.Add("hex", velm_tools::ToHex(std::string_view(event.bytes).substr(0, kShownBytes))).Text();
  line.Add("type", velm_tools::ReadFrameHeader(event.bytes).type);
  const auto decoded = velm_tools::ParseJson(velm_msg::ToJsonText(DecodeFrame(event.bytes)));
  for (const char* key : {"class", "wireName", "fields", "notes", "errors"})
    line.Add(key, decoded ? (*decoded)[key] : Json::Value());
  return line.Text();
}

}  // namespace velm_trace
