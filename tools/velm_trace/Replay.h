#pragma once

#include <chrono>
#include <vector>

#include "tools/common/PipeEnd.h"
#include "tools/velm_trace/Tracer.h"

namespace velm_trace {

struct ReplayResult {
  size_t sent = 0;      // of the recording's pieces of this end
  size_t toSend = 0;    // all of them
  size_t received = 0;  // frames of the peer
  size_t expected = 0;  // frames of the peer in the recording

  bool IsComplete() const { return sent == toSend && received >= expected; }
};

// Plays one end of a recorded connection to the peer at `pipe`: sends what `self` sent, byte for byte and
// each piece once the peer has sent as many frames as it had before that piece in the recording. Ends when
// all is sent and as many frames came as the recording has, or when the peer left or is slower than `limit`
// at one of them.
ReplayResult ReplayConnection(velm_tools::PipeEnd& pipe, End self, const std::vector<Event>& events,
                              std::chrono::milliseconds limit, Tracer& tracer);

}  // namespace velm_trace
