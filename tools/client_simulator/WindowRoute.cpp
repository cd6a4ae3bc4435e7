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

WindowRoute::WindowRoute(const std::vector<std::wstring>& windowClasses, const CommandHandler& handler) {
  for (const std::wstring& windowClass : windowClasses)
    m_windows.push_back(
        std::make_unique<ClientWindow>(windowClass.c_str(), [handler](const CopyData& data) -> intptr_t {
          handler(ToCommand(data));
          return 0;
        }));
}

Delivery WindowRoute::Send(const std::optional<std::string>& data, uintptr_t id) {
  return data ? DeliverToHosts(data->data(), data->size(), id) : DeliverToHosts(nullptr, 0, id);
}

int WindowRoute::CountHosts() {
  return velm_sim::CountHosts();
}

}  // namespace velm_sim
