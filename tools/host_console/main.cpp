// velm_host: a host application for the command line; see Commands.cpp for its help.

#include "tools/common/Console.h"
#include "tools/common/Overloaded.h"
#include "tools/common/UsageError.h"
#include "tools/host_console/Commands.h"
#include "tools/host_console/Session.h"

namespace velm_host {
namespace {

using velm_tools::Overloaded;
using velm_tools::Remark;
using velm_tools::UsageError;

// One line's command; none to end.
std::optional<int> RunLine(Session& session, const Command& command) {
  return std::visit(Overloaded{
                        [&](const CallCommand& call) -> std::optional<int> {
                          session.Run(call);
                          return kSuccess;  // codes are for looking at here
                        },
                        [&](const WatchCommand& watch) -> std::optional<int> {
                          constexpr bool returnAtOnce = true;
                          return session.Run(watch, returnAtOnce);
                        },
                        [&](const WaitCommand& wait) -> std::optional<int> { return session.Run(wait); },
                        [&](const SleepCommand& sleep) -> std::optional<int> {
                          velm_tools::SleepUnlessInterrupted(static_cast<unsigned>(sleep.duration.count()));
                          return kSuccess;
                        },
                        [&](const HelpCommand&) -> std::optional<int> {
                          Remark(kHelp);
                          return kSuccess;
                        },
                        [&](const InteractiveCommand&) -> std::optional<int> { return kSuccess; },
                        [&](const QuitCommand&) -> std::optional<int> { return std::nullopt; },
                    },
                    command);
}

int RunInteractive(Session& session) {
  const bool typed = velm_tools::InputIsConsole();
  if (typed) Remark("type 'help' for the commands, 'quit' to end");
  velm_tools::InputLines input;
  for (size_t number = 1; const std::optional<std::string> line = input.Next(); ++number) {
    std::optional<int> code = kSuccess;
    try {
      if (const std::optional<Command> command = ParseLine(*line)) code = RunLine(session, *command);
    } catch (const UsageError& error) {
      Remark(typed ? error.what() : "velm_host: line " + std::to_string(number) + ": " + error.what());
      code = kBadUsage;
    }
    if (!code) break;
    if (!typed && *code != kSuccess) return *code;
  }
  return kSuccess;
}

int Run(const Options& options) {
  if (std::holds_alternative<HelpCommand>(options.command)) {
    velm_tools::PrintLine(kHelp);
    return kSuccess;
  }
  Session session(options.json, options.start);
  if (const auto* call = std::get_if<CallCommand>(&options.command)) return session.Run(*call);
  if (const auto* watch = std::get_if<WatchCommand>(&options.command)) {
    constexpr bool returnAtOnce = false;
    return session.Run(*watch, returnAtOnce);
  }
  return RunInteractive(session);
}

int Main(const std::vector<std::string>& arguments) {
  try {
    return Run(ParseArguments(arguments));
  } catch (const UsageError& error) {
    Remark(std::string("velm_host: ") + error.what());
    Remark("'velm_host --help' lists the commands");
    return kBadUsage;
  }
}

}  // namespace
}  // namespace velm_host

int main() {
  const std::vector<std::string> arguments = velm_tools::PrepareConsole();
  velm_tools::TrapInterrupts();
  return velm_host::Main(arguments);
}
