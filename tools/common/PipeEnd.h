#pragma once

// One end of a named pipe, the server's or the client's, in plain system calls: a witness that shares nothing
// with the library's own channel.

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velm_tools {

// One thread at a time may read (or wait for the peer), one may write, and any may stop both.
class PipeEnd {
 public:
  // The most that one Read() gives, and what the system is asked to buffer in each direction.
  static constexpr size_t kReadBytes = 4096;

  // Both take the channel's name, in UTF-8, which "\\.\pipe\Velm." precedes in the pipe's path, and throw
  // std::system_error: when the pipe has a server already, or when it has none or that is taken.
  static std::unique_ptr<PipeEnd> Serve(const std::string& name);
  static std::unique_ptr<PipeEnd> Open(const std::string& name);

  virtual ~PipeEnd() = default;

  // A server's end: waits until a peer has opened the pipe. False when Stop() came first.
  virtual bool AwaitPeer() = 0;
  // The next bytes, as many as there are; none when the peer is gone and all is read, and after Stop().
  virtual std::optional<std::string> Read() = 0;
  // Waits until the system has taken all bytes. False when the peer is gone, after Stop(), and when the time
  // was up, which leaves the stream cut at some byte. Zero bytes are nothing to do, and go well.
  virtual bool Write(std::string_view bytes, std::chrono::milliseconds limit) = 0;
  // Ends what is waited for, now and from now on. The peer sees the pipe break when this object goes.
  virtual void Stop() = 0;
  virtual bool IsStopped() const = 0;
};

}  // namespace velm_tools
