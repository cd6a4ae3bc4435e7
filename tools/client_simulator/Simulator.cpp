#include "tools/client_simulator/Simulator.h"

#include <windows.h>

#include <algorithm>

#include "tools/client_simulator/Notification.h"
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

void Report(const SendStep& step, const Delivery& delivery) {
  const bool byWindow = step.via.kind == RouteKind::kWindow;
  velm_tools::JsonLine report;
  report.Add("event", "sent");
  if (!byWindow) report.Add("via", std::string(NameOf(step.via.kind)));
  report.Add("hosts", delivery.hosts).Add("unanswered", delivery.unanswered);
  if (byWindow) report.Add("dwData", static_cast<Json::UInt64>(step.id));
  report.Add("bytes", static_cast<Json::UInt64>(step.data ? step.data->size() : 0));
  const std::string text = step.data ? step.data->substr(0, step.data->find('\0')) : std::string();
  if (step.data && velm_tools::IsUtf8(text)) report.Add("text", text);
  velm_tools::PrintLine(report.Text());
}

void Remark(const Delivery& delivery) {
  std::string remark = "sent to " + Hosts(delivery.hosts);
  if (delivery.unanswered > 0)
    remark += ", " + std::to_string(delivery.unanswered) + " of which did not answer";
  velm_tools::Remark(remark);
}

}  // namespace

Simulator::Simulator(const Misbehaviour& misbehaviour) : m_misbehaviour(misbehaviour) {
  m_pipes.stall = misbehaviour.stall;
  m_pipes.split = misbehaviour.split;
  m_pipes.confirmsGoodbye = !misbehaviour.withholdsGoodbye;
}

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
  const auto goOn = [](auto&& action) {
    action();
    return true;
  };
  return std::visit(
      velm_tools::Overloaded{
          [&](const SendStep& send) { return goOn([&] { Send(send); }); },
          [&](const FloodStep& flood) { return goOn([&] { Flood(flood); }); },
          [&](const DropStep& drop) { return goOn([&] { Drop(drop); }); },
          [&](const PipeSwitchStep& which) { return goOn([&] { Switch(which); }); },
          [&](const WaitForHostStep& wait) { return goOn([&] { WaitForHost(wait); }); },
          [&](const WaitForCommandsStep& wait) { return goOn([&] { WaitForCommands(wait); }); },
          [&](const SleepStep& sleep) {
            return goOn(
                [&] { velm_tools::SleepUnlessInterrupted(static_cast<unsigned>(sleep.duration.count())); });
          },
          [&](const DieStep&) { return TerminateProcess(GetCurrentProcess(), kDiedExitCode) != FALSE; },
          [&](const HelpStep&) { return goOn([&] { velm_tools::Remark(kStepHelp); }); },
          [](const QuitStep&) { return false; },
      },
      step);
}

Route& Simulator::FindRoute(RouteKind kind) const {
  const auto found = std::ranges::find(m_routes, kind, [](const auto& route) { return route->Kind(); });
  if (found == m_routes.end())
    throw StepFailed("no pipe for " + std::string(NameOf(kind)) + " is served: see --pipes");
  return **found;
}

void Simulator::Send(const SendStep& step) {
  const Delivery delivery = FindRoute(step.via.kind).Send(step);
  Report(step, delivery);
  Remark(delivery);
}

void Simulator::Flood(const FloodStep& step) {
  Route& route = FindRoute(step.via.kind);
  SendStep send;
  send.via = step.via;
  std::vector<std::string> words = step.words;
  Delivery delivery;
  uint32_t sent = 0;
  while (sent < step.count && delivery.unanswered == 0 && !velm_tools::Interrupted()) {
    words[1] = std::to_string(sent);
    send.data = NotificationText(words) + '\0';
    delivery = route.Send(send);
    ++sent;
  }
  velm_tools::PrintLine(velm_tools::JsonLine()
                            .Add("event", "flooded")
                            .Add("via", std::string(NameOf(step.via.kind)))
                            .Add("hosts", delivery.hosts)
                            .Add("unanswered", delivery.unanswered)
                            .Add("count", sent)
                            .Text());
}

void Simulator::Drop(const DropStep& step) {
  velm_tools::PrintLine(velm_tools::JsonLine()
                            .Add("event", "dropped")
                            .Add("via", std::string(NameOf(step.via.kind)))
                            .Add("hosts", FindRoute(step.via.kind).Drop(step.via))
                            .Text());
}

void Simulator::Switch(const PipeSwitchStep& step) {
  switch (step.which) {
    case PipeSwitchStep::Switch::kStall:
      m_pipes.stall = step.on;
      break;
    case PipeSwitchStep::Switch::kSplit:
      m_pipes.split = step.on;
      break;
    case PipeSwitchStep::Switch::kGoodbye:
      m_pipes.confirmsGoodbye = step.on;
      break;
  }
}

void Simulator::WaitForHost(const WaitForHostStep& step) {
  Route& route = FindRoute(step.via.kind);
  if (!velm_tools::WaitUntilTrue([&] { return route.CountHosts(step.via) > 0; }, step.limit) &&
      !velm_tools::Interrupted())
    throw StepFailed("wait-host: no host application within " + Seconds(step.limit));
  velm_tools::JsonLine report;
  report.Add("event", "host");
  if (step.via.kind != RouteKind::kWindow) report.Add("via", std::string(NameOf(step.via.kind)));
  velm_tools::PrintLine(report.Add("hosts", route.CountHosts(step.via)).Text());
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
