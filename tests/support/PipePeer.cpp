#include "tests/support/PipePeer.h"

#include <cstring>

namespace velm_test {
namespace {

std::wstring PathOf(const std::string& channelId) {
  return L"\\\\.\\pipe\\Velm." + std::wstring(channelId.begin(), channelId.end());
}

}  // namespace

std::string FrameHeader(uint32_t length, int32_t type) {
  std::string header(8, '\0');
  std::memcpy(header.data(), &length, sizeof(length));
  std::memcpy(header.data() + 4, &type, sizeof(type));
  return header;
}

std::string FrameOf(int32_t type, std::string_view payload) {
  return FrameHeader(static_cast<uint32_t>(payload.size()), type).append(payload);
}

PipePeer::PipePeer(HANDLE pipe) : m_pipe(pipe), m_event(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

PipePeer PipePeer::Serve(const std::string& channelId) {
  return PipePeer(CreateNamedPipeW(PathOf(channelId).c_str(), FILE_FLAG_OVERLAPPED | PIPE_ACCESS_DUPLEX,
                                   PIPE_TYPE_BYTE, 1, 4096, 4096, 5000, nullptr));
}

PipePeer PipePeer::Open(const std::string& channelId) {
  return PipePeer(CreateFileW(PathOf(channelId).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                              OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
}

std::optional<DWORD> PipePeer::Finish(bool begun, OVERLAPPED& operation, DWORD timeoutMs) {
  if (!begun && GetLastError() != ERROR_IO_PENDING) return std::nullopt;
  DWORD moved = 0;
  if (WaitForSingleObject(m_event.get(), timeoutMs) != WAIT_OBJECT_0) CancelIoEx(m_pipe.get(), &operation);
  if (!GetOverlappedResult(m_pipe.get(), &operation, &moved, TRUE)) return std::nullopt;
  return moved;
}

bool PipePeer::AwaitClient(DWORD timeoutMs) {
  OVERLAPPED operation = {};
  operation.hEvent = m_event.get();
  if (!ConnectNamedPipe(m_pipe.get(), &operation) && GetLastError() == ERROR_PIPE_CONNECTED) return true;
  return Finish(false, operation, timeoutMs).has_value();
}

bool PipePeer::Write(std::string_view bytes, DWORD timeoutMs) {
  OVERLAPPED operation = {};
  operation.hEvent = m_event.get();
  const bool begun =
      WriteFile(m_pipe.get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
  return Finish(begun, operation, timeoutMs) == bytes.size();
}

std::string PipePeer::Read(size_t size, DWORD timeoutMs) {
  char chunk[65536];
  while (m_readAhead.size() < size) {
    OVERLAPPED operation = {};
    operation.hEvent = m_event.get();
    const bool begun = ReadFile(m_pipe.get(), chunk, sizeof(chunk), nullptr, &operation);
    const auto moved = Finish(begun, operation, timeoutMs);
    if (!moved || *moved == 0) break;
    m_readAhead.append(chunk, *moved);
  }
  const std::string bytes = m_readAhead.substr(0, size);
  m_readAhead.erase(0, size);
  return bytes;
}

std::optional<Frame> PipePeer::ReadFrame(DWORD timeoutMs) {
  const std::string header = Read(8, timeoutMs);
  if (header.size() < 8) return std::nullopt;
  uint32_t length;
  Frame frame;
  std::memcpy(&length, header.data(), sizeof(length));
  std::memcpy(&frame.type, header.data() + 4, sizeof(frame.type));
  frame.payload = Read(length, timeoutMs);
  if (frame.payload.size() < length) return std::nullopt;
  return frame;
}

bool PipePeer::IsBroken(DWORD timeoutMs) {
  if (!Read(1, timeoutMs).empty()) return false;
  DWORD available = 0;
  return !PeekNamedPipe(m_pipe.get(), nullptr, 0, nullptr, &available, nullptr);
}

}  // namespace velm_test
