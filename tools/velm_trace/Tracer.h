#pragma once

#include <chrono>
#include <fstream>
#include <mutex>
#include <string>
#include <string_view>

#include "tools/common/Frame.h"
#include "tools/velm_trace/Event.h"

namespace velm_trace {

// Shows what happens on a connection, and records it. Any thread.
class Tracer {
 public:
  // Without a path nothing is recorded. Throws std::runtime_error when the file cannot be made.
  Tracer(bool json, const std::string& recordingPath);

  // Begins a connection, and its time.
  void Open();
  void Add(End from, velm_tools::StreamPiece piece);
  void Close(End from);

 private:
  void Tell(Event::Kind kind, End from, std::string bytes = {});

  const bool m_json;
  std::mutex m_lock;
  std::ofstream m_recording;
  std::chrono::steady_clock::time_point m_opened;
};

}  // namespace velm_trace
