#pragma once

// A bare end of a named pipe: the peer of a channel under test, which reads and writes what it likes and
// never waits without limit.

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/client/utility/src/UniqueHandle.h"

namespace velm_test {

// A frame as it travels.
std::string FrameOf(int32_t type, std::string_view payload);
// A header alone, which may lie.
std::string FrameHeader(uint32_t length, int32_t type);

struct Frame {
  int32_t type;
  std::string payload;
  bool operator==(const Frame&) const = default;
};

class PipePeer {
 public:
  static constexpr DWORD kTimeoutMs = 10000;

  // Both take the channel's id, which "\\.\pipe\Velm." precedes in the pipe's path.
  static PipePeer Serve(const std::string& channelId);
  static PipePeer Open(const std::string& channelId);

  bool IsGood() const { return static_cast<bool>(m_pipe); }
  HANDLE Get() const { return m_pipe.get(); }
  HANDLE Release() { return m_pipe.release(); }

  // Whether a client opened the pipe in time.
  bool AwaitClient(DWORD timeoutMs = kTimeoutMs);
  // False when the peer is gone or does not read in time.
  bool Write(std::string_view bytes, DWORD timeoutMs = kTimeoutMs);
  // `size` bytes, or as many as came before the peer went or the time was up.
  std::string Read(size_t size, DWORD timeoutMs = kTimeoutMs);
  // The next frame; nothing when the peer went or the time was up before it was whole.
  std::optional<Frame> ReadFrame(DWORD timeoutMs = kTimeoutMs);
  // Whether the peer closed its end, with nothing left to read.
  bool IsBroken(DWORD timeoutMs = kTimeoutMs);
  void Close() { m_pipe.reset(); }

 private:
  explicit PipePeer(HANDLE pipe);

  // Waits for the operation that was just begun; nothing when it failed or did not end in time.
  std::optional<DWORD> Finish(bool begun, OVERLAPPED& operation, DWORD timeoutMs);

  Cmm::UniqueFileHandle m_pipe;
  Cmm::UniqueHandle m_event;
  std::string m_readAhead;
};

}  // namespace velm_test
