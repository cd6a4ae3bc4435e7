#pragma once

#include <memory>
#include <vector>

#include "tools/client_simulator/Route.h"

namespace velm_sim {

// The client's hidden windows, which take commands, and messages to the hosts' windows.
class WindowRoute : public Route {
 public:
  // Opens a window of each class. Throws std::system_error.
  WindowRoute(const std::vector<std::wstring>& windowClasses, const CommandHandler& handler);

  Delivery Send(const std::optional<std::string>& data, uintptr_t id) override;
  int CountHosts() override;

 private:
  std::vector<std::unique_ptr<ClientWindow>> m_windows;
};

}  // namespace velm_sim
