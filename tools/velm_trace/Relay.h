#pragma once

#include "tools/common/PipeEnd.h"
#include "tools/velm_trace/Tracer.h"

namespace velm_trace {

// Carries the bytes between a host application and the client, both ways and each as it comes, until one of
// them leaves or is stopped; the other is stopped then. `host` is the pipe that the host has open, `client`
// the one that the client serves.
void RelayConnection(velm_tools::PipeEnd& host, velm_tools::PipeEnd& client, Tracer& tracer);

}  // namespace velm_trace
