// The pipe channel between two processes, beside a blocking pipe that carries the same bytes:
//   round_trip/SIZE          a message and its echo, answered and sent on by the channels' own threads
//   round_trip_of_caller/200 the same for a thread that sends and waits for the echo
//   one_way/200              messages in one direction, by the batch
//   reconnect                from the server's return until the client has opened the pipe again
// Run with "--echo NAME", "--echo-bare NAME", "--count NAME" or "--count-bare NAME" the program is the other
// process.

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench/RatioReporter.h"
#include "common/client/utility/src/UniqueHandle.h"
#include "common/client/utility/src/ipc/CmmIPCChannelThread.h"
#include "sdk/AudioSDKIPCClient.h"

namespace {

using qxb_ipc::CIPCChannelThread;
using velm_bench::kFloorSuffix;
using velm_bench::Register;

constexpr int kWork = 40520;
constexpr size_t kHeadLen = 8;
constexpr int kBatch = 5000;
constexpr size_t kOneWaySize = 200;

Cmm::CmmMQ_Msg* Message(int type, size_t size) {
  static const std::vector<unsigned char> bytes(65536, 'm');
  return Cmm::CmmMQ_Msg::MakeMessage(bytes.data(), static_cast<unsigned>(size), type);
}

// A signal that stays until one waiter has taken it.
class Signal {
 public:
  void Set() { SetEvent(m_event.get()); }
  void Await() { WaitForSingleObject(m_event.get(), INFINITE); }

 private:
  const Cmm::UniqueHandle m_event{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
};

// ---- The other process

std::wstring PipePath(const std::string& name) {
  return L"\\\\.\\pipe\\Velm." + std::wstring(name.begin(), name.end());
}

class Server : public qxb_ipc::Channel::Listener {
 public:
  Server(const std::string& name, bool echoes)
      : m_echoes(echoes), m_channel(name, qxb_ipc::MODE_SERVER, this, 1) {
    m_channel.Start();
  }
  void OnMessageReceived(Cmm::CmmMQ_Msg* msg, int) override {
    if (m_echoes || ++m_count % kBatch == 0)
      m_channel.SendMessageW(msg);
    else
      delete msg;
  }
  void OnChannelError() override { m_end.Set(); }
  void AwaitEnd() { m_end.Await(); }

 private:
  const bool m_echoes;
  int m_count = 0;
  Signal m_end;
  CIPCChannelThread m_channel;
};

Cmm::UniqueFileHandle ServeBare(const std::string& name) {
  return Cmm::UniqueFileHandle(CreateNamedPipeW(PipePath(name).c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1,
                                                4096, 4096, 5000, nullptr));
}

bool ReadExactly(HANDLE pipe, char* buffer, size_t size) {
  for (DWORD moved = 0; size > 0; buffer += moved, size -= moved)
    if (!ReadFile(pipe, buffer, static_cast<DWORD>(size), &moved, nullptr) || moved == 0) return false;
  return true;
}

void WriteAll(HANDLE pipe, const char* data, size_t size) {
  DWORD moved = 0;
  WriteFile(pipe, data, static_cast<DWORD>(size), &moved, nullptr);
}

// Frames are read by header and payload, as a program with a blocking pipe would.
bool ReadFrame(HANDLE pipe, std::vector<char>& frame) {
  frame.resize(kHeadLen);
  if (!ReadExactly(pipe, frame.data(), kHeadLen)) return false;
  uint32_t size;
  std::memcpy(&size, frame.data(), sizeof(size));
  frame.resize(kHeadLen + size);
  return ReadExactly(pipe, frame.data() + kHeadLen, size);
}

void EchoBare(HANDLE pipe) {
  ConnectNamedPipe(pipe, nullptr);
  std::vector<char> buffer(65536);
  DWORD moved = 0;
  while (ReadFile(pipe, buffer.data(), static_cast<DWORD>(buffer.size()), &moved, nullptr) && moved > 0)
    WriteAll(pipe, buffer.data(), moved);
}

void CountBare(HANDLE pipe) {
  ConnectNamedPipe(pipe, nullptr);
  std::vector<char> buffer(4096);
  constexpr size_t kBatchBytes = kBatch * (kHeadLen + kOneWaySize);
  size_t received = 0;
  DWORD moved = 0;
  while (ReadFile(pipe, buffer.data(), static_cast<DWORD>(buffer.size()), &moved, nullptr) && moved > 0) {
    received += moved;
    if (received >= kBatchBytes) {
      received -= kBatchBytes;
      WriteAll(pipe, buffer.data(), 1);
    }
  }
}

int Serve(const std::string& role, const std::string& name) {
  if (role == "--echo" || role == "--count")
    Server(name, role == "--echo").AwaitEnd();
  else if (role == "--echo-bare")
    EchoBare(ServeBare(name).get());
  else
    CountBare(ServeBare(name).get());
  return 0;
}

// The other process in one of its roles; it ends when its client closes the pipe.
class Peer {
 public:
  explicit Peer(const char* role) {
    static int count = 0;
    m_name = "bench_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count);
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) + L"\" " +
                           std::wstring(role, role + std::strlen(role)) + L" " +
                           std::wstring(m_name.begin(), m_name.end());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    CreateProcessW(program, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process);
    const Cmm::UniqueHandle thread(process.hThread);
    m_process.reset(process.hProcess);
  }
  ~Peer() { WaitForSingleObject(m_process.get(), 5000); }
  const std::string& Name() const { return m_name; }

  double CpuSeconds() const { return CpuSecondsOf(m_process.get()); }
  static double CpuSecondsOf(HANDLE process) {
    FILETIME created, ended, kernel, user;
    GetProcessTimes(process, &created, &ended, &kernel, &user);
    const auto units = [](const FILETIME& time) {
      return static_cast<double>(static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime);
    };
    return (units(kernel) + units(user)) / 1e7;
  }

 private:
  std::string m_name;
  Cmm::UniqueHandle m_process;
};

// ---- This process

class Client : public qxb_ipc::Channel::Listener {
 public:
  explicit Client(const std::string& name) {
    do {
      m_channel = std::make_unique<CIPCChannelThread>(name, qxb_ipc::MODE_CLIENT, this, 1);
    } while (!m_channel->IsServerGood() && (Sleep(10), true));
    m_channel->Start();
  }
  void OnMessageReceived(Cmm::CmmMQ_Msg* msg, int) override {
    if (m_passes-- > 1)
      m_channel->SendMessageW(msg);
    else {
      delete msg;
      m_done.Set();
    }
  }
  // Sends a message to and fro, `passes` times, on the channel's thread.
  void PingPong(size_t size, int passes) {
    m_passes = passes;
    m_channel->SendMessageW(Message(kWork, size));
    m_done.Await();
  }
  void SendBatch() {
    m_passes = 1;
    for (int i = 0; i < kBatch; ++i)
      m_channel->SendMessageW(Message(kWork, kOneWaySize));
    m_done.Await();
  }

 private:
  std::atomic<int> m_passes = 0;
  Signal m_done;
  std::unique_ptr<CIPCChannelThread> m_channel;
};

Cmm::UniqueFileHandle OpenBare(const std::string& name) {
  Cmm::UniqueFileHandle pipe;
  while (!pipe) {
    pipe.reset(CreateFileW(PipePath(name).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                           nullptr));
    if (!pipe) Sleep(10);
  }
  return pipe;
}

void RoundTrip(benchmark::State& state, size_t size) {
  const Peer peer("--echo");
  Client client(peer.Name());
  constexpr int kPasses = 100;
  while (state.KeepRunningBatch(kPasses))
    client.PingPong(size, kPasses);
}

void RoundTripOfCaller(benchmark::State& state, size_t size) {
  const Peer peer("--echo");
  Client client(peer.Name());
  for (auto _ : state)
    client.PingPong(size, 1);
}

void BareRoundTrip(benchmark::State& state, size_t size) {
  const Peer peer("--echo-bare");
  const Cmm::UniqueFileHandle pipe = OpenBare(peer.Name());
  std::vector<char> frame(kHeadLen + size, 'm');
  const uint32_t length = static_cast<uint32_t>(size);
  std::memcpy(frame.data(), &length, sizeof(length));
  for (auto _ : state) {
    WriteAll(pipe.get(), frame.data(), frame.size());
    ReadFrame(pipe.get(), frame);
  }
}

// The CPU time of both processes for a message.
class CpuCounter {
 public:
  explicit CpuCounter(const Peer& peer) : m_peer(peer), m_begin(Now()) {}
  void Report(benchmark::State& state) const {
    state.counters["cpu_us"] = (Now() - m_begin) * 1e6 / static_cast<double>(state.iterations());
  }

 private:
  double Now() const { return m_peer.CpuSeconds() + Peer::CpuSecondsOf(GetCurrentProcess()); }

  const Peer& m_peer;
  double m_begin;
};

void OneWay(benchmark::State& state) {
  const Peer peer("--count");
  Client client(peer.Name());
  const CpuCounter cpu(peer);
  while (state.KeepRunningBatch(kBatch))
    client.SendBatch();
  state.SetItemsProcessed(state.iterations());
  cpu.Report(state);
}

void BareOneWay(benchmark::State& state) {
  const Peer peer("--count-bare");
  const Cmm::UniqueFileHandle pipe = OpenBare(peer.Name());
  const std::vector<char> frame(kHeadLen + kOneWaySize, 'm');
  const CpuCounter cpu(peer);
  while (state.KeepRunningBatch(kBatch)) {
    for (int i = 0; i < kBatch; ++i)
      WriteAll(pipe.get(), frame.data(), frame.size());
    char done;
    ReadExactly(pipe.get(), &done, 1);
  }
  state.SetItemsProcessed(state.iterations());
  cpu.Report(state);
}

// ---- Reconnection

class ReconnectSink : public Velm3rdSDK::IAudioSDKIPCClientSink {
 public:
  void OnServerConnected(uint32_t) override { connected.Set(); }
  void OnServerDisconnected(uint32_t) override { disconnected.Set(); }
  void OnClientExitConfirmed(uint32_t, int) override {}
  void OnAudioCmdNotify(uint32_t, const Cmm::CStringT<wchar_t>&) override {}

  Signal connected;
  Signal disconnected;
};

void Reconnect(benchmark::State& state) {
  ReconnectSink sink;
  const auto client = std::make_shared<Velm3rdSDK::CAudioSDKIPCClient>();
  client->SetSink(&sink);
  client->Connect(0);
  const std::string name = "com.velm.ipc.audiosdk_" + std::to_string(GetCurrentProcessId());
  std::vector<double> times;
  for (auto _ : state) {
    LARGE_INTEGER frequency, begin, end;
    QueryPerformanceFrequency(&frequency);
    Sleep(static_cast<DWORD>(times.size() * 7 % 50));  // anywhere between two ticks
    QueryPerformanceCounter(&begin);
    {
      const Cmm::UniqueFileHandle server = ServeBare(name);
      sink.connected.Await();
      QueryPerformanceCounter(&end);
    }
    const double seconds =
        static_cast<double>(end.QuadPart - begin.QuadPart) / static_cast<double>(frequency.QuadPart);
    state.SetIterationTime(seconds);
    times.push_back(seconds * 1e3);
    sink.disconnected.Await();
    Sleep(150);  // the client has given the broken pipe up
  }
  client->Disconnect();
  std::sort(times.begin(), times.end());
  state.counters["median_ms"] = times[times.size() / 2];
  state.counters["worst_ms"] = times.back();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strncmp(argv[1], "--benchmark", 11) != 0) return Serve(argv[1], argv[2]);
  for (const size_t size : {size_t{200}, size_t{4096}}) {
    const std::string name = "round_trip/" + std::to_string(size);
    Register(name, RoundTrip, size);
    Register(name + kFloorSuffix, BareRoundTrip, size);
  }
  Register("round_trip_of_caller/200", RoundTripOfCaller, size_t{200});
  Register(std::string("round_trip_of_caller/200") + kFloorSuffix, BareRoundTrip, size_t{200});
  Register("one_way/200", OneWay);
  Register(std::string("one_way/200") + kFloorSuffix, BareOneWay);
  benchmark::RegisterBenchmark("reconnect", Reconnect)->UseManualTime()->Iterations(100);
  return velm_bench::RunBenchmarks(argc, argv);
}
