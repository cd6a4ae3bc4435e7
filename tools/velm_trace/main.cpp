// velm_trace: shows, records and replays what a pipe carries; see Options.cpp for its help.

#include <atomic>
#include <fstream>
#include <iterator>
#include <memory>
#include <system_error>
#include <thread>

#include "tools/common/Console.h"
#include "tools/common/JsonLine.h"
#include "tools/common/Text.h"
#include "tools/common/UsageError.h"
#include "tools/velm_trace/Options.h"
#include "tools/velm_trace/Record.h"
#include "tools/velm_trace/Relay.h"
#include "tools/velm_trace/Replay.h"

namespace velm_trace {
namespace {

using velm_tools::PipeEnd;
using velm_tools::Remark;
using velm_tools::UsageError;

enum ExitCode { kDone = 0, kFailed = 1, kBadUsage = 2 };

constexpr unsigned kRetryMs = 20;
constexpr unsigned kInterruptPollMs = 20;

// Stops a pipe's end at Ctrl-C, from construction to destruction.
class StopAtInterrupt {
 public:
  explicit StopAtInterrupt(PipeEnd& pipe) : m_pipe(pipe), m_thread([this] { Run(); }) {}
  StopAtInterrupt(const StopAtInterrupt&) = delete;
  StopAtInterrupt& operator=(const StopAtInterrupt&) = delete;
  ~StopAtInterrupt() {
    m_isOver = true;
    m_thread.join();
  }

 private:
  void Run() {
    while (!m_isOver)
      if (velm_tools::SleepUnlessInterrupted(kInterruptPollMs)) return m_pipe.Stop();
  }

  PipeEnd& m_pipe;
  std::atomic<bool> m_isOver = false;
  std::thread m_thread;  // the last member: it uses the others
};

// Tries until the time is up or at an interrupt, and throws then what kept it from succeeding.
template <typename Make>
std::unique_ptr<PipeEnd> Within(std::chrono::milliseconds limit, Make make) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  for (;;) {
    try {
      return make();
    } catch (const std::system_error&) {
      if (std::chrono::steady_clock::now() >= deadline || velm_tools::SleepUnlessInterrupted(kRetryMs)) throw;
    }
  }
}

// One host application. False when the client's pipe could not be opened for it.
bool RelayOnce(const Options& options, PipeEnd& host, Tracer& tracer) {
  std::unique_ptr<PipeEnd> client;
  try {
    client = Within(options.limit, [&] { return PipeEnd::Open(options.open); });
  } catch (const std::system_error& error) {
    Remark(error.what());
    return false;
  }
  RelayConnection(host, *client, tracer);
  return true;
}

ExitCode Relay(const Options& options) {
  Tracer tracer(options.json, options.recording);
  std::chrono::milliseconds limit{0};  // a name that is taken at first will not be free soon
  while (!velm_tools::Interrupted()) {
    const std::unique_ptr<PipeEnd> host = Within(limit, [&] { return PipeEnd::Serve(options.serve); });
    limit = options.limit;
    Remark("serving " + options.serve);
    const StopAtInterrupt guard(*host);
    if (!host->AwaitPeer()) continue;
    const bool isDone = RelayOnce(options, *host, tracer);
    if (options.once) return isDone ? kDone : kFailed;
  }
  return kDone;
}

std::vector<Event> ReadFile(const std::string& path) {
  std::ifstream file(velm_tools::FromUtf8(path).c_str(), std::ios::binary);
  if (!file) throw std::runtime_error("cannot read the recording '" + path + "'");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  try {
    return FirstConnection(ReadRecording(text));
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(path + ", " + error.what());
  }
}

void Report(const ReplayResult& result, bool json) {
  const auto number = [](size_t value) { return static_cast<Json::UInt64>(value); };
  if (json)
    return velm_tools::PrintLine(velm_tools::JsonLine()
                                     .Add("event", "replayed")
                                     .Add("sent", number(result.sent))
                                     .Add("toSend", number(result.toSend))
                                     .Add("received", number(result.received))
                                     .Add("expected", number(result.expected))
                                     .Text());
  velm_tools::PrintLine("replayed: sent " + std::to_string(result.sent) + " of " +
                        std::to_string(result.toSend) + ", received " + std::to_string(result.received) +
                        " where the recording has " + std::to_string(result.expected));
}

ExitCode Replay(const Options& options) {
  const std::vector<Event> events = ReadFile(options.replay);
  Tracer tracer(options.json, options.recording);
  const bool isClient = !options.serve.empty();
  const std::unique_ptr<PipeEnd> pipe =
      isClient ? PipeEnd::Serve(options.serve)
               : Within(options.limit, [&] { return PipeEnd::Open(options.open); });
  const StopAtInterrupt guard(*pipe);
  if (isClient) {
    Remark("serving " + options.serve);
    if (!pipe->AwaitPeer()) return kFailed;
  }
  const ReplayResult result =
      ReplayConnection(*pipe, isClient ? End::kClient : End::kHost, events, options.limit, tracer);
  Report(result, options.json);
  return result.IsComplete() ? kDone : kFailed;
}

int Main(const std::vector<std::string>& arguments) {
  try {
    const Options options = ParseOptions(arguments);
    if (options.help) {
      velm_tools::PrintLine(kHelp.substr(0, kHelp.size() - 1));
      return kDone;
    }
    return options.replay.empty() ? Relay(options) : Replay(options);
  } catch (const UsageError& error) {
    Remark(std::string("velm_trace: ") + error.what());
    Remark("'velm_trace --help' says what can be written");
    return kBadUsage;
  } catch (const std::exception& error) {
    Remark(std::string("velm_trace: ") + error.what());
    return kFailed;
  }
}

}  // namespace
}  // namespace velm_trace

int main() {
  const std::vector<std::string> arguments = velm_tools::PrepareConsole();
  velm_tools::TrapInterrupts();
  return velm_trace::Main(arguments);
}
