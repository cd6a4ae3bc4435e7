#pragma once

// The client's end of one pipe to a host application.

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "tools/client_simulator/Route.h"
#include "tools/common/Frame.h"
#include "tools/common/JsonLine.h"
#include "tools/common/PipeEnd.h"

namespace velm_sim {

// How all pipes of the client behave, as it may be changed at any time.
struct PipeBehaviour {
  std::atomic<bool> stall = false;           // hosts are not read from
  std::atomic<bool> split = false;           // each byte goes by itself
  std::atomic<bool> confirmsGoodbye = true;  // a host's goodbye is answered
};

struct HostPipeSettings {
  RouteKind kind = RouteKind::kAudio;
  uint32_t channelId = 0;
  std::string name;         // of the channel
  bool servesAgain = true;  // when a host has left
};

// Serves the pipe from construction to destruction, or to the end of its first host, on a thread of its own,
// and reports there what comes of it.
class HostPipe {
 public:
  enum class Sent { kNoHost, kTaken, kNotTaken };

  // The pipe exists when this returns. Throws std::system_error.
  HostPipe(HostPipeSettings settings, const PipeBehaviour& behaviour, CommandHandler handler);
  HostPipe(const HostPipe&) = delete;
  HostPipe& operator=(const HostPipe&) = delete;
  ~HostPipe();

  const HostPipeSettings& Settings() const { return m_settings; }
  bool HasHost() const { return m_hasHost; }
  // The pipe is served no more.
  bool IsOver() const { return m_isOver; }

  // Waits until the host's end has taken the bytes, five seconds at most; a host that takes only some of them
  // is left with a stream that is cut, so that its pipe is closed then.
  Sent Send(std::string_view bytes);
  // Closes the pipe under its host.
  void Drop();

 private:
  using Pipe = std::shared_ptr<velm_tools::PipeEnd>;

  void Run();
  bool ServeAgain();
  void Talk(velm_tools::PipeEnd& pipe);
  void AwaitReading(const velm_tools::PipeEnd& pipe) const;
  void Take(const velm_tools::StreamPiece& piece);
  void TakeFrame(const velm_tools::StreamPiece& frame);
  bool TakeCommand(const velm_tools::StreamPiece& frame);
  bool WriteAll(velm_tools::PipeEnd& pipe, std::string_view bytes);
  velm_tools::JsonLine Event(std::string_view event) const;
  void ReportState(std::string_view state) const;
  Pipe Current();

  const HostPipeSettings m_settings;
  const PipeBehaviour& m_behaviour;
  const CommandHandler m_handler;
  std::mutex m_pipeLock;
  Pipe m_pipe;  // guarded by m_pipeLock
  std::mutex m_writeLock;
  std::atomic<bool> m_hasHost = false;
  std::atomic<bool> m_isOver = false;
  std::atomic<bool> m_isStopping = false;
  uint32_t m_hostProcess = 0;  // as it announced itself; 0 before. Of m_thread
  std::thread m_thread;
};

}  // namespace velm_sim
