#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "tools/client_simulator/HostPipe.h"
#include "tools/client_simulator/Route.h"

namespace velm_sim {

// The id of the service-mode channel, by the rule of host applications: the first active session's, and
// without one the number of sessions.
uint32_t ServiceChannelId();

// The client's ends of one kind of pipe: one for service mode, one for each host application that asked for
// audio.
class PipeRoute : public Route {
 public:
  // `suffix` stands behind the names of all its pipes. `behaviour` outlives this object.
  PipeRoute(RouteKind kind, std::string suffix, const PipeBehaviour& behaviour, CommandHandler handler);

  // Serves the pipe of this id unless it is served. Any thread. Throws std::system_error.
  void Serve(uint32_t channelId);

  RouteKind Kind() const override { return m_kind; }
  Delivery Send(const SendStep& step) override;
  int CountHosts(const Via& via) override;
  int Drop(const Via& via) override;

 private:
  template <typename Action>
  void ForEachHost(const Via& via, Action action);

  const RouteKind m_kind;
  const std::string m_suffix;
  const PipeBehaviour& m_behaviour;
  const CommandHandler m_handler;
  std::mutex m_lock;
  std::map<uint32_t, std::shared_ptr<HostPipe>> m_pipes;  // by channel id; guarded by m_lock
};

}  // namespace velm_sim
