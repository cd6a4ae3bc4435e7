#include "tools/client_simulator/Simulator.h"

#include <windows.h>

#include "tools/common/Console.h"
#include "tools/common/JsonLine.h"
#include "tools/common/Overloaded.h"
#include "tools/common/Text.h"

namespace velm_sim {
namespace {

std::string Hosts(int count) {
  if (count == 0) return "no host application";
  return count == 1 ? "1 host application" : std::to_string(count) + " host applications";
}

std::string Seconds(std::chrono::milliseconds limit) {
  return std::to_string(limit.count() / 1000) + " s";
}

}  // namespace

CommandHandler Simulator::Handler() {
  return [this](const Command& command) { OnCommand(command); };
}

void Simulator::OnCommand(const Command& command) {
  {
    const std::lock_guard lock(m_reportLock);
    velm_tools::PrintLine(CommandReport(command, m_commands + 1));
    if (++m_commands == m_misbehaviour.dieAfter) TerminateProcess(GetCurrentProcess(), kDiedExitCode);
  }
  Sleep(static_cast<DWORD>(m_misbehaviour.hang.count()));
}

bool Simulator::Run(const Step& step) {
  return std::visit(velm_tools::Overloaded{
                        [this](const SendStep& send) {
                          Send(send);
                          return true;
                        },
                        [this](const WaitForHostStep& wait) {
                          WaitForHost(wait);
                          return true;
                        },
                        [this](const WaitForCommandsStep& wait) {
                          WaitForCommands(wait);
                          return true;
                        },
                        [](const SleepStep& sleep) {
                          velm_tools::SleepUnlessInterrupted(static_cast<unsigned>(sleep.duration.count()));
                          return true;
                        },
                        [](const HelpStep&) {
                          velm_tools::Remark(kStepHelp);
                          return true;
                        },
                        [](const QuitStep&) { return false; },
                    },
                    step);
}

void Simulator::Send(const SendStep& step) {
  Delivery delivery;
  for (const auto& route : m_routes) {
    const Delivery part = route->Send(step.data, step.id);
    delivery.hosts += part.hosts;
    delivery.unanswered += part.unanswered;
  }
  velm_tools::JsonLine report;
  report.Add("event", "sent").Add("hosts", delivery.hosts).Add("unanswered", delivery.unanswered);
  report.Add("dwData", static_cast<Json::UInt64>(step.id));
  report.Add("bytes", static_cast<Json::UInt64>(step.data ? step.data->size() : 0));
  const std::string text = step.data ? step.data->substr(0, step.data->find('\0')) : std::string();
  if (step.data && velm_tools::IsUtf8(text)) report.Add("text", text);
  velm_tools::PrintLine(report.Text());

  std::string remark = "sent to " + Hosts(delivery.hosts);
  if (delivery.unanswered > 0)
    remark += ", " + std::to_string(delivery.unanswered) + " of which did not answer";
  velm_tools::Remark(remark);
}

int Simulator::CountHosts() {
  int hosts = 0;
  for (const auto& route : m_routes)
    hosts += route->CountHosts();
  return hosts;
}

void Simulator::WaitForHost(const WaitForHostStep& step) {
  if (!velm_tools::WaitUntilTrue([this] { return CountHosts() > 0; }, step.limit) &&
      !velm_tools::Interrupted())
    throw StepFailed("wait-host: no host application within " + Seconds(step.limit));
  velm_tools::PrintLine(velm_tools::JsonLine().Add("event", "host").Add("hosts", CountHosts()).Text());
}

void Simulator::WaitForCommands(const WaitForCommandsStep& step) {
  const uint64_t wanted = m_waitedFor + step.count;
  if (!velm_tools::WaitUntilTrue([&] { return m_commands >= wanted; }, step.limit) &&
      !velm_tools::Interrupted())
    throw StepFailed("wait-command: " + std::to_string(m_commands - m_waitedFor) + " of " +
                     std::to_string(step.count) + " commands within " + Seconds(step.limit));
  m_waitedFor = wanted;
}

}  // namespace velm_sim
