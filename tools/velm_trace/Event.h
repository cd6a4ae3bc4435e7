#pragma once

// What is to be seen on a pipe between a host application and the client.

#include <chrono>
#include <string>
#include <string_view>

namespace velm_trace {

// The host application opens the pipe, the client serves it.
enum class End { kHost, kClient };

constexpr std::string_view NameOf(End end) {
  return end == End::kHost ? "host" : "client";
}
constexpr End OtherOf(End end) {
  return end == End::kHost ? End::kClient : End::kHost;
}

struct Event {
  enum class Kind {
    kOpened,   // the connection stands from here on
    kFrame,    // one frame, whole
    kPartial,  // the beginning of a frame, of which no more came
    kGarbage,  // bytes that are no frame, and behind which none can be found
    kClosed,   // the end left
  };
  Kind kind = Kind::kFrame;
  End from = End::kHost;
  std::chrono::microseconds at{0};  // since the connection was opened
  std::string bytes;                // as they travelled, header included

  bool operator==(const Event&) const = default;
};

}  // namespace velm_trace
