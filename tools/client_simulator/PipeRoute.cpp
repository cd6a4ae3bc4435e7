#include "tools/client_simulator/PipeRoute.h"

#include <windows.h>

#include <wtsapi32.h>

#include <vector>

#include "tools/client_simulator/PipeMessage.h"

namespace velm_sim {
namespace {

// The text without the NUL that ends it by window.
std::string PipeText(const std::string& data) {
  return data.substr(0, data.find('\0'));
}

std::string BytesFor(const SendStep& step, RouteKind kind, uint32_t channelId) {
  switch (step.form) {
    case SendStep::Form::kText:
      return NotificationFrame(kind, channelId, PipeText(step.data.value()));
    case SendStep::Form::kFrame:
      return velm_tools::MakeFrame(step.frameType, step.data.value());
    case SendStep::Form::kBytes:
      break;
  }
  return step.data.value();
}

}  // namespace

uint32_t ServiceChannelId() {
  WTS_SESSION_INFOW* sessions = nullptr;
  DWORD count = 0;
  if (!WTSEnumerateSessionsW(WTS_CURRENT_SERVER_HANDLE, 0, 1, &sessions, &count)) return 0;
  uint32_t id = count;
  for (DWORD i = count; i > 0; --i)
    if (sessions[i - 1].State == WTSActive) id = sessions[i - 1].SessionId;
  WTSFreeMemory(sessions);
  return id;
}

PipeRoute::PipeRoute(RouteKind kind, std::string suffix, const PipeBehaviour& behaviour,
                     CommandHandler handler)
    : m_kind(kind), m_suffix(std::move(suffix)), m_behaviour(behaviour), m_handler(std::move(handler)) {}

void PipeRoute::Serve(uint32_t channelId) {
  const std::lock_guard lock(m_lock);
  std::shared_ptr<HostPipe>& pipe = m_pipes[channelId];
  if (pipe && !pipe->IsOver()) return;
  std::erase_if(m_pipes,
                [&](const auto& entry) { return entry.first != channelId && entry.second->IsOver(); });
  HostPipeSettings settings;
  settings.kind = m_kind;
  settings.channelId = channelId;
  settings.name = ChannelName(m_kind, channelId) + m_suffix;
  settings.servesAgain = m_kind == RouteKind::kService;  // for audio a host asks again
  try {
    pipe = std::make_shared<HostPipe>(settings, m_behaviour, m_handler);
  } catch (...) {
    m_pipes.erase(channelId);
    throw;
  }
}

template <typename Action>
void PipeRoute::ForEachHost(const Via& via, Action action) {
  std::vector<std::shared_ptr<HostPipe>> hosts;
  {
    const std::lock_guard lock(m_lock);
    for (const auto& [id, pipe] : m_pipes)
      if ((!via.id || via.id == id) && pipe->HasHost()) hosts.push_back(pipe);
  }
  for (const auto& host : hosts)
    action(*host);
}

Delivery PipeRoute::Send(const SendStep& step) {
  Delivery delivery;
  ForEachHost(step.via, [&](HostPipe& host) {
    const HostPipe::Sent sent = host.Send(BytesFor(step, m_kind, host.Settings().channelId));
    if (sent == HostPipe::Sent::kNoHost) return;  // it has left just now
    ++delivery.hosts;
    if (sent == HostPipe::Sent::kNotTaken) ++delivery.unanswered;
  });
  return delivery;
}

int PipeRoute::CountHosts(const Via& via) {
  int hosts = 0;
  ForEachHost(via, [&](const HostPipe&) { ++hosts; });
  return hosts;
}

int PipeRoute::Drop(const Via& via) {
  int hosts = 0;
  ForEachHost(via, [&](HostPipe& host) {
    host.Drop();
    ++hosts;
  });
  return hosts;
}

}  // namespace velm_sim
