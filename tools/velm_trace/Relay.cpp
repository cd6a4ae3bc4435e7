#include "tools/velm_trace/Relay.h"

#include <thread>

namespace velm_trace {
namespace {

using velm_tools::PipeEnd;
using velm_tools::StreamPiece;

constexpr std::chrono::milliseconds kNoLimit{0xFFFFFFFF};

void Pump(End from, PipeEnd& source, PipeEnd& target, Tracer& tracer) {
  velm_tools::FrameCutter cutter;
  while (const std::optional<std::string> bytes = source.Read()) {
    cutter.Add(*bytes);
    while (std::optional<StreamPiece> piece = cutter.Next())
      tracer.Add(from, std::move(*piece));
    if (!target.Write(*bytes, kNoLimit)) break;
  }
  const bool hasLeft = !source.IsStopped();
  if (std::optional<StreamPiece> rest = cutter.Rest()) tracer.Add(from, std::move(*rest));
  source.Stop();
  target.Stop();
  if (hasLeft) tracer.Close(from);
}

}  // namespace

void RelayConnection(PipeEnd& host, PipeEnd& client, Tracer& tracer) {
  tracer.Open();
  std::thread fromClient([&] { Pump(End::kClient, client, host, tracer); });
  Pump(End::kHost, host, client, tracer);
  fromClient.join();
}

}  // namespace velm_trace
