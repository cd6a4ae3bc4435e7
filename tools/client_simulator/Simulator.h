#pragma once

// The simulated client at work: reports what arrives and does what it is told.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "tools/client_simulator/HostPipe.h"
#include "tools/client_simulator/Route.h"
#include "tools/client_simulator/Script.h"

namespace velm_sim {

inline constexpr unsigned kDiedExitCode = 9;

// How the client misbehaves.
struct Misbehaviour {
  std::chrono::milliseconds hang{0};  // how long it takes over each command
  uint64_t dieAfter = 0;              // ends the process hard with this command; 0: never
  bool stall = false;                 // as PipeBehaviour, from the first pipe on
  bool split = false;
  bool withholdsGoodbye = false;
};

// A wait ran out.
class StepFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Simulator {
 public:
  explicit Simulator(const Misbehaviour& misbehaviour);
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  // What a route is to call for each command.
  CommandHandler Handler();
  // What pipe routes are to go by.
  const PipeBehaviour& Pipes() const { return m_pipes; }

  void AddRoute(std::unique_ptr<Route> route) { m_routes.push_back(std::move(route)); }
  // Closes all routes; commands that are being handled end first.
  void CloseRoutes() { m_routes.clear(); }

  // Does one step. False when it was the last. Throws StepFailed.
  bool Run(const Step& step);

  uint64_t CommandCount() const { return m_commands; }

 private:
  void OnCommand(const Command& command);
  // Throws StepFailed when there is no such route.
  Route& FindRoute(RouteKind kind) const;
  void Send(const SendStep& step);
  void Flood(const FloodStep& step);
  void Drop(const DropStep& step);
  void Switch(const PipeSwitchStep& step);
  void WaitForHost(const WaitForHostStep& step);
  void WaitForCommands(const WaitForCommandsStep& step);

  const Misbehaviour m_misbehaviour;
  PipeBehaviour m_pipes;
  std::mutex m_reportLock;  // keeps the numbers of reports in their order
  std::atomic<uint64_t> m_commands{0};
  uint64_t m_waitedFor = 0;
  std::vector<std::unique_ptr<Route>> m_routes;
};

}  // namespace velm_sim
