#include "tools/velm_trace/Tracer.h"

#include <filesystem>
#include <stdexcept>

#include "tools/common/Console.h"
#include "tools/common/Text.h"
#include "tools/velm_trace/Record.h"
#include "tools/velm_trace/View.h"

namespace velm_trace {

Tracer::Tracer(bool json, const std::string& recordingPath) : m_json(json) {
  if (recordingPath.empty()) return;
  m_recording.open(std::filesystem::path(velm_tools::FromUtf8(recordingPath)),
                   std::ios::binary | std::ios::trunc);
  if (!(m_recording << RecordingHead() << '\n' << std::flush))
    throw std::runtime_error("cannot write the recording '" + recordingPath + "'");
}

void Tracer::Open() {
  {
    const std::lock_guard lock(m_lock);
    m_opened = std::chrono::steady_clock::now();
  }
  Tell(Event::Kind::kOpened, End::kHost);
}

void Tracer::Add(End from, velm_tools::StreamPiece piece) {
  using Kind = velm_tools::StreamPiece::Kind;
  const Event::Kind kind = piece.kind == Kind::kFrame     ? Event::Kind::kFrame
                           : piece.kind == Kind::kPartial ? Event::Kind::kPartial
                                                          : Event::Kind::kGarbage;
  Tell(kind, from, std::move(piece.bytes));
}

void Tracer::Close(End from) {
  Tell(Event::Kind::kClosed, from);
}

void Tracer::Tell(Event::Kind kind, End from, std::string bytes) {
  const std::lock_guard lock(m_lock);
  Event event{kind, from, {}, std::move(bytes)};
  event.at =
      std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - m_opened);
  if (m_recording.is_open()) m_recording << RecordingLine(event) << '\n' << std::flush;
  if (m_json) return velm_tools::PrintLine(ToJsonText(event));
  for (const std::string& line : ToLines(event))
    velm_tools::PrintLine(line);
}

}  // namespace velm_trace
