#include "tools/velm_trace/Replay.h"

#include <condition_variable>
#include <thread>

namespace velm_trace {
namespace {

using velm_tools::PipeEnd;
using velm_tools::StreamPiece;

// Reads what the peer sends, on a thread of its own.
class Listener {
 public:
  Listener(PipeEnd& pipe, End peer, Tracer& tracer)
      : m_pipe(pipe), m_peer(peer), m_tracer(tracer), m_thread([this] { Run(); }) {}
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() {
    m_pipe.Stop();
    m_thread.join();
  }

  // Waits until so many frames came. False when the peer left, or the time was up, before that.
  bool Await(size_t frames, std::chrono::milliseconds limit) {
    std::unique_lock lock(m_lock);
    m_changed.wait_for(lock, limit, [&] { return m_frames >= frames || m_hasEnded; });
    return m_frames >= frames;
  }

  size_t Frames() {
    const std::lock_guard lock(m_lock);
    return m_frames;
  }

 private:
  void Run() {
    velm_tools::FrameCutter cutter;
    while (const std::optional<std::string> bytes = m_pipe.Read()) {
      cutter.Add(*bytes);
      while (std::optional<StreamPiece> piece = cutter.Next())
        Take(std::move(*piece));
    }
    if (std::optional<StreamPiece> rest = cutter.Rest()) Take(std::move(*rest));
    if (!m_pipe.IsStopped()) m_tracer.Close(m_peer);
    const std::lock_guard lock(m_lock);
    m_hasEnded = true;
    m_changed.notify_all();
  }

  void Take(StreamPiece piece) {
    const bool isFrame = piece.kind == StreamPiece::Kind::kFrame;
    m_tracer.Add(m_peer, std::move(piece));
    const std::lock_guard lock(m_lock);
    if (isFrame) ++m_frames;
    m_changed.notify_all();
  }

  PipeEnd& m_pipe;
  const End m_peer;
  Tracer& m_tracer;
  std::mutex m_lock;
  std::condition_variable m_changed;
  size_t m_frames = 0;      // guarded by m_lock
  bool m_hasEnded = false;  // guarded by m_lock
  std::thread m_thread;     // the last member: it uses the others
};

StreamPiece PieceOf(const Event& event) {
  using Kind = StreamPiece::Kind;
  const Kind kind = event.kind == Event::Kind::kFrame     ? Kind::kFrame
                    : event.kind == Event::Kind::kPartial ? Kind::kPartial
                                                          : Kind::kGarbage;
  return {kind, event.bytes};
}

}  // namespace

ReplayResult ReplayConnection(PipeEnd& pipe, End self, const std::vector<Event>& events,
                              std::chrono::milliseconds limit, Tracer& tracer) {
  ReplayResult result;
  for (const Event& event : events) {
    if (event.from == self) ++result.toSend;
    if (event.from != self && event.kind == Event::Kind::kFrame) ++result.expected;
  }
  tracer.Open();
  Listener listener(pipe, OtherOf(self), tracer);
  size_t due = 0;
  for (const Event& event : events) {
    if (event.from != self) {
      if (event.kind == Event::Kind::kFrame) ++due;
      continue;
    }
    if (!listener.Await(due, limit)) break;
    tracer.Add(self, PieceOf(event));
    if (!pipe.Write(event.bytes, limit)) break;
    ++result.sent;
  }
  if (result.sent == result.toSend) listener.Await(result.expected, limit);
  result.received = listener.Frames();
  return result;
}

}  // namespace velm_trace
