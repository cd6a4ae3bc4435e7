#include "tools/client_simulator/WindowRoute.h"

#include "tools/common/Text.h"

namespace velm_sim {
namespace {

Command ToCommand(const CopyData& data) {
  Command command;
  command.route = "window";
  command.origin = {{"window", velm_tools::ToUtf8(data.windowClass)},
                    {"dwData", static_cast<Json::UInt64>(data.id)}};
  command.size = data.size;
  if (data.hasData) command.bytes = data.bytes;
  return command;
}

}  // namespace

WindowRoute::WindowRoute(const std::vector<std::wstring>& windowClasses, const CommandHandler& handler,
                         const ClientWindow::RequestHandler& requestHandler) {
  bool hasHelper = false;
  for (const std::wstring& windowClass : windowClasses) {
    const bool isHelper = windowClass == kHelperWindow;
    hasHelper = hasHelper || isHelper;
    m_windows.push_back(std::make_unique<ClientWindow>(
        windowClass.c_str(),
        [handler](const CopyData& data) -> intptr_t {
          handler(ToCommand(data));
          return 0;
        },
        isHelper ? requestHandler : ClientWindow::RequestHandler()));
  }
  if (requestHandler && !hasHelper)
    m_windows.push_back(std::make_unique<ClientWindow>(kHelperWindow, nullptr, requestHandler));
}

Delivery WindowRoute::Send(const SendStep& step) {
  return step.data ? DeliverToHosts(step.data->data(), step.data->size(), step.id)
                   : DeliverToHosts(nullptr, 0, step.id);
}

int WindowRoute::CountHosts(const Via&) {
  return velm_sim::CountHosts();
}

}  // namespace velm_sim
