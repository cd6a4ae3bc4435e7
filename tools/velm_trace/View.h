#pragma once

// How an event is shown: for a person, or as one JSON object.

#include <string>
#include <vector>

#include "tools/velm_trace/Event.h"

namespace velm_trace {

std::vector<std::string> ToLines(const Event& event);

// {"event":..,"at":microseconds,"from":..}, and of a frame "bytes" with the header, "type", "class",
// "wireName", "fields", "notes" and "errors" as velm_msg decodes them; of other bytes "bytes", and "hex" of
// the first 64.
std::string ToJsonText(const Event& event);

}  // namespace velm_trace
