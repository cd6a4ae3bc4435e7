#pragma once

#include <memory>
#include <vector>

#include "tools/client_simulator/Route.h"

namespace velm_sim {

// The client's hidden windows, which take commands, and messages to the hosts' windows.
class WindowRoute : public Route {
 public:
  // Opens a window of each class, and with a request handler in any case the helper window, which answers
  // requests and without its class being named takes no commands. Throws std::system_error.
  WindowRoute(const std::vector<std::wstring>& windowClasses, const CommandHandler& handler,
              const ClientWindow::RequestHandler& requestHandler = {});

  RouteKind Kind() const override { return RouteKind::kWindow; }
  Delivery Send(const SendStep& step) override;
  int CountHosts(const Via& via) override;

 private:
  std::vector<std::unique_ptr<ClientWindow>> m_windows;
};

}  // namespace velm_sim
