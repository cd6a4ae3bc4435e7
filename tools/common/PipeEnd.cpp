#include "tools/common/PipeEnd.h"

#include <windows.h>

#include <system_error>

#include "common/client/utility/src/UniqueHandle.h"
#include "tools/common/Text.h"

namespace velm_tools {
namespace {

constexpr DWORD kInstances = 1;
constexpr DWORD kDefaultTimeoutMs = 5000;
constexpr auto kForever = std::chrono::milliseconds(INFINITE);

std::wstring PathOf(const std::string& name) {
  return L"\\\\.\\pipe\\Velm." + FromUtf8(name);
}

[[noreturn]] void ThrowLastError(const std::string& problem) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), problem);
}

Cmm::UniqueHandle MakeEvent() {
  Cmm::UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  if (!event) ThrowLastError("cannot make an event");
  return event;
}

class OverlappedPipe : public PipeEnd {
 public:
  explicit OverlappedPipe(Cmm::UniqueFileHandle pipe) : m_pipe(std::move(pipe)) {}

  bool AwaitPeer() override {
    OVERLAPPED operation = Begin(m_readDone);
    if (ConnectNamedPipe(m_pipe.get(), &operation)) return true;
    if (GetLastError() == ERROR_PIPE_CONNECTED) return !IsStopped();
    return Finish(FALSE, operation, kForever).has_value();
  }

  std::optional<std::string> Read() override {
    std::string bytes(kReadBytes, '\0');
    OVERLAPPED operation = Begin(m_readDone);
    const BOOL begun = ReadFile(m_pipe.get(), bytes.data(), kReadBytes, nullptr, &operation);
    const std::optional<DWORD> count = Finish(begun, operation, kForever);
    if (!count || *count == 0) return std::nullopt;
    bytes.resize(*count);
    return bytes;
  }

  bool Write(std::string_view bytes, std::chrono::milliseconds limit) override {
    if (bytes.empty()) return !IsStopped();
    OVERLAPPED operation = Begin(m_writeDone);
    const BOOL begun =
        WriteFile(m_pipe.get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
    return Finish(begun, operation, limit) == bytes.size();
  }

  void Stop() override { SetEvent(m_stopped.get()); }
  bool IsStopped() const override { return WaitForSingleObject(m_stopped.get(), 0) == WAIT_OBJECT_0; }

 private:
  static OVERLAPPED Begin(const Cmm::UniqueHandle& done) {
    OVERLAPPED operation = {};
    operation.hEvent = done.get();
    return operation;
  }

  // Waits for the operation that was just begun, and takes it back when it does not end: its memory is the
  // caller's. How many bytes were moved; none when it failed.
  std::optional<DWORD> Finish(BOOL begun, OVERLAPPED& operation, std::chrono::milliseconds limit) {
    if (!begun && GetLastError() != ERROR_IO_PENDING) return std::nullopt;
    const HANDLE events[] = {m_stopped.get(), operation.hEvent};
    const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(std::size(events)), events, FALSE,
                                                static_cast<DWORD>(limit.count()));
    if (result != WAIT_OBJECT_0 + 1) CancelIoEx(m_pipe.get(), &operation);
    DWORD moved = 0;
    if (!GetOverlappedResult(m_pipe.get(), &operation, &moved, TRUE)) return std::nullopt;
    return moved;
  }

  const Cmm::UniqueHandle m_stopped = MakeEvent();
  const Cmm::UniqueHandle m_readDone = MakeEvent();
  const Cmm::UniqueHandle m_writeDone = MakeEvent();
  const Cmm::UniqueFileHandle m_pipe;
};

}  // namespace

std::unique_ptr<PipeEnd> PipeEnd::Serve(const std::string& name) {
  Cmm::UniqueFileHandle pipe(CreateNamedPipeW(
      PathOf(name).c_str(), FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE | PIPE_ACCESS_DUPLEX,
      PIPE_TYPE_BYTE, kInstances, kReadBytes, kReadBytes, kDefaultTimeoutMs, nullptr));
  if (!pipe) ThrowLastError("cannot serve the pipe '" + name + "'");
  return std::make_unique<OverlappedPipe>(std::move(pipe));
}

std::unique_ptr<PipeEnd> PipeEnd::Open(const std::string& name) {
  Cmm::UniqueFileHandle pipe(
      CreateFileW(PathOf(name).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                  FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
  if (!pipe) ThrowLastError("cannot open the pipe '" + name + "'");
  return std::make_unique<OverlappedPipe>(std::move(pipe));
}

}  // namespace velm_tools
