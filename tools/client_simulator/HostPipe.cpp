#include "tools/client_simulator/HostPipe.h"

#include <windows.h>

#include <system_error>

#include "tools/client_simulator/PipeMessage.h"
#include "tools/common/Console.h"
#include "tools/common/JsonLine.h"
#include "tools/common/Text.h"

namespace velm_sim {
namespace {

using velm_tools::JsonLine;
using velm_tools::PipeEnd;
using velm_tools::PrintLine;
using velm_tools::StreamPiece;

constexpr std::chrono::milliseconds kWriteLimit = std::chrono::seconds(5);
constexpr DWORD kPollMs = 5;
constexpr DWORD kBetweenBytesMs = 1;
constexpr size_t kShownBytes = 64;

// Bytes for a report: as text, or the first of them as digits.
void AddBytes(JsonLine& report, std::string_view bytes) {
  report.Add("bytes", static_cast<Json::UInt64>(bytes.size()));
  if (velm_tools::IsUtf8(bytes) && bytes.find('\0') == std::string_view::npos)
    report.Add("text", std::string(bytes));
  else
    report.Add("text", Json::Value()).Add("hex", velm_tools::ToHex(bytes.substr(0, kShownBytes)));
}

}  // namespace

HostPipe::HostPipe(HostPipeSettings settings, const PipeBehaviour& behaviour, CommandHandler handler)
    : m_settings(std::move(settings)),
      m_behaviour(behaviour),
      m_handler(std::move(handler)),
      m_pipe(PipeEnd::Serve(m_settings.name)) {
  if (!m_settings.servesAgain) ReportState("requested");
  m_thread = std::thread([this] { Run(); });
}

HostPipe::~HostPipe() {
  m_isStopping = true;
  Drop();
  m_thread.join();
}

HostPipe::Pipe HostPipe::Current() {
  const std::lock_guard lock(m_pipeLock);
  return m_pipe;
}

void HostPipe::Drop() {
  if (const Pipe pipe = Current()) pipe->Stop();
}

void HostPipe::Run() {
  do {
    const Pipe pipe = Current();
    if (pipe->AwaitPeer()) Talk(*pipe);
  } while (ServeAgain());
  const std::lock_guard lock(m_pipeLock);
  m_pipe.reset();
  m_isOver = true;
}

// Makes the pipe anew: its name is free when the last of the old one is gone, a sender's hold of it too.
bool HostPipe::ServeAgain() {
  {
    const std::lock_guard lock(m_pipeLock);
    m_pipe.reset();
  }
  while (m_settings.servesAgain && !m_isStopping) {
    try {
      Pipe pipe = PipeEnd::Serve(m_settings.name);
      const std::lock_guard lock(m_pipeLock);
      m_pipe = std::move(pipe);
      return !m_isStopping;
    } catch (const std::system_error&) {
      Sleep(kPollMs);
    }
  }
  return false;
}

void HostPipe::Talk(PipeEnd& pipe) {
  m_hostProcess = 0;
  m_hasHost = true;
  ReportState("open");
  velm_tools::FrameCutter cutter;
  AwaitReading(pipe);
  while (const std::optional<std::string> bytes = pipe.Read()) {
    AwaitReading(pipe);
    cutter.Add(*bytes);
    while (const std::optional<StreamPiece> piece = cutter.Next())
      Take(*piece);
  }
  if (const std::optional<StreamPiece> rest = cutter.Rest()) Take(*rest);
  m_hasHost = false;
  ReportState("closed");
}

void HostPipe::AwaitReading(const PipeEnd& pipe) const {
  while (m_behaviour.stall && !pipe.IsStopped())
    Sleep(kPollMs);
}

void HostPipe::Take(const StreamPiece& piece) {
  if (piece.kind == StreamPiece::Kind::kFrame) return TakeFrame(piece);
  JsonLine report = Event(piece.kind == StreamPiece::Kind::kPartial ? "partial" : "garbage");
  AddBytes(report, piece.bytes);
  PrintLine(report.Text());
}

void HostPipe::TakeFrame(const StreamPiece& frame) {
  const int type = frame.Header().type;
  if (type == kConnectType) {
    const std::optional<PipeMessage> message = ReadMessage(frame.Payload());
    if (const auto process = message ? message->Number("ProcessID") : std::nullopt) {
      m_hostProcess = *process;
      return ReportState("announced");
    }
  }
  if (type == VocabularyOf(m_settings.kind).requestType && TakeCommand(frame)) return;
  if (m_settings.kind == RouteKind::kAudio && type == kClientExitType) {
    const bool confirms = m_behaviour.confirmsGoodbye;
    PrintLine(Event("goodbye").Add("confirmed", confirms).Text());
    if (confirms) Send(GoodbyeFrame());
    return;
  }
  JsonLine report = Event("message");
  report.Add("type", type);
  AddBytes(report, frame.Payload());
  PrintLine(report.Text());
}

bool HostPipe::TakeCommand(const StreamPiece& frame) {
  const std::optional<PipeMessage> message = ReadMessage(frame.Payload());
  if (!message) return false;
  const std::optional<uint32_t> channelId = message->Number("ChannelId");
  const auto text = message->attributes.find(VocabularyOf(m_settings.kind).requestField);
  if (!channelId || text == message->attributes.end()) return false;
  Command command;
  command.route = NameOf(m_settings.kind);
  command.origin = {{"pipe", m_settings.name}, {"process", m_hostProcess}, {"channelId", *channelId}};
  command.size = text->second.size();
  command.bytes = text->second;
  m_handler(command);
  return true;
}

HostPipe::Sent HostPipe::Send(std::string_view bytes) {
  const Pipe pipe = Current();
  if (!pipe || !m_hasHost) return Sent::kNoHost;
  if (WriteAll(*pipe, bytes)) return Sent::kTaken;
  pipe->Stop();
  return Sent::kNotTaken;
}

bool HostPipe::WriteAll(PipeEnd& pipe, std::string_view bytes) {
  const std::lock_guard lock(m_writeLock);
  if (!m_behaviour.split) return pipe.Write(bytes, kWriteLimit);
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (!pipe.Write(bytes.substr(i, 1), kWriteLimit)) return false;
    Sleep(kBetweenBytesMs);
  }
  return true;
}

JsonLine HostPipe::Event(std::string_view event) const {
  return JsonLine()
      .Add("event", std::string(event))
      .Add("route", std::string(NameOf(m_settings.kind)))
      .Add("pipe", m_settings.name);
}

void HostPipe::ReportState(std::string_view state) const {
  JsonLine report = Event("pipe");
  report.Add("state", std::string(state));
  if (state == "announced") report.Add("process", m_hostProcess);
  PrintLine(report.Text());
}

}  // namespace velm_sim
