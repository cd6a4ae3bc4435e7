#include "tools/client_simulator/Route.h"

#include "tools/common/JsonLine.h"
#include "tools/common/Text.h"

namespace velm_sim {

std::string CommandReport(const Command& command, uint64_t number) {
  velm_tools::JsonLine report;
  report.Add("event", "command").Add("number", number).Add("route", std::string(command.route));
  for (const auto& [key, value] : command.origin)
    report.Add(key, value);
  report.Add("bytes", static_cast<Json::UInt64>(command.size));
  if (!command.bytes) return report.Add("text", Json::Value()).Text();

  std::string text = *command.bytes;
  const bool terminated = text.ends_with('\0');
  if (terminated) text.pop_back();
  report.Add("terminated", terminated);
  if (velm_tools::IsUtf8(text))
    report.Add("text", text);
  else
    report.Add("text", Json::Value()).Add("hex", velm_tools::ToHex(*command.bytes));
  report.Add("command", velm_tools::ParseJson(text).value_or(Json::Value()));
  return report.Text();
}

}  // namespace velm_sim
