#pragma once

// Turns the byte stream of a pipe back into frames. No system call is made here.

#include <cstddef>
#include <string>

namespace Cmm {

// Takes the frames of a stream, each whole: a header of 8 bytes, then `payloadLength` bytes.
class FrameSink {
 public:
  virtual void OnFrame(const unsigned char* frame, unsigned payloadLength) = 0;

 protected:
  ~FrameSink() = default;
};

// The bytes of one stream that do not yet form a whole frame. What arrives whole is handed on from where it
// lies; only an incomplete tail is copied. Not locked.
class FrameReader {
 public:
  // The most bytes that are kept together, so that a header that announces more than ever comes ends in an
  // error and not in all the memory of the process.
  static constexpr size_t kMaxCarriedOver = 0x8000000;

  // Hands the frames that the next `size` bytes at `data` complete to `sink`, in order, and keeps the rest.
  // False when the stream is broken, be it that too much would have to be kept or that a frame's length is
  // beyond what 32 bits can count with its header; then nothing is kept.
  bool Take(const unsigned char* data, size_t size, FrameSink& sink);

  size_t CarriedOver() const { return m_carriedOver.size(); }

 private:
  std::basic_string<unsigned char> m_carriedOver;
};

}  // namespace Cmm
