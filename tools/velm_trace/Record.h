#pragma once

// A recording: a text file with a JSON object a line, which tells every byte of a connection and when it
// came.
//
//   {"recording":"velm_trace","version":1}
//   {"event":"opened","at":0,"from":"host"}
//   {"event":"frame","at":1520,"from":"host","hex":"0300000002000000616263"}
//
// Times are microseconds since the connection was opened.

#include <string>
#include <string_view>
#include <vector>

#include "tools/velm_trace/Event.h"

namespace velm_trace {

// "opened", "frame", "partial", "garbage", "closed".
std::string_view NameOf(Event::Kind kind);

std::string RecordingHead();
std::string RecordingLine(const Event& event);  // both without a line end

// All events of a recording. Throws std::runtime_error that tells the line which is wrong. A last line that
// was cut off while it was written, and so has no line end, is left out.
std::vector<Event> ReadRecording(std::string_view text);

// The events of its first connection, without its opening and its end.
std::vector<Event> FirstConnection(const std::vector<Event>& recording);

}  // namespace velm_trace
