#pragma once

// The simulated client at work: reports what arrives and does what it is told.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "tools/client_simulator/Route.h"
#include "tools/client_simulator/Script.h"

namespace velm_sim {

inline constexpr unsigned kDiedExitCode = 9;

// How the client misbehaves.
struct Misbehaviour {
  std::chrono::milliseconds hang{0};  // how long it takes over each command
  uint64_t dieAfter = 0;              // ends the process hard with this command; 0: never
};

// A wait ran out.
class StepFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Simulator {
 public:
  explicit Simulator(const Misbehaviour& misbehaviour) : m_misbehaviour(misbehaviour) {}
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  // What a route is to call for each command.
  CommandHandler Handler();

  void AddRoute(std::unique_ptr<Route> route) { m_routes.push_back(std::move(route)); }
  // Closes all routes; commands that are being handled end first.
  void CloseRoutes() { m_routes.clear(); }

  // Does one step. False when it was the last. Throws StepFailed.
  bool Run(const Step& step);

  uint64_t CommandCount() const { return m_commands; }

 private:
  void OnCommand(const Command& command);
  void Send(const SendStep& step);
  void WaitForHost(const WaitForHostStep& step);
  void WaitForCommands(const WaitForCommandsStep& step);
  int CountHosts();

  const Misbehaviour m_misbehaviour;
  std::mutex m_reportLock;  // keeps the numbers of reports in their order
  std::atomic<uint64_t> m_commands{0};
  uint64_t m_waitedFor = 0;
  std::vector<std::unique_ptr<Route>> m_routes;
};

}  // namespace velm_sim
