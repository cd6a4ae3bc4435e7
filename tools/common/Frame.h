#pragma once

// Frames as they travel through a pipe: the payload's length and a type, 32 bits each and little-endian, then
// the payload. This is the tools' own reading of the wire, apart from the library's, so that each can witness
// against the other.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velm_tools {

inline constexpr size_t kFrameHeaderBytes = 8;
// A header that announces more than this does not begin a frame: no channel keeps so much together.
inline constexpr uint32_t kMaxPayloadBytes = 0x8000000;

struct FrameHeader {
  uint32_t payloadBytes = 0;
  int32_t type = 0;
};

// `bytes` begin with a header, whole.
FrameHeader ReadFrameHeader(std::string_view bytes);

// A whole frame; a payload longer than 32 bits can count throws std::length_error.
std::string MakeFrame(int32_t type, std::string_view payload);

// What has been cut off the front of a stream.
struct StreamPiece {
  enum class Kind {
    kFrame,    // one whole frame, header included
    kPartial,  // the beginning of a frame, of which no more will come
    kGarbage,  // bytes behind which no frame can be found any more
  };
  Kind kind = Kind::kFrame;
  std::string bytes;

  FrameHeader Header() const { return ReadFrameHeader(bytes); }
  std::string_view Payload() const { return std::string_view(bytes).substr(kFrameHeaderBytes); }
};

// Cuts one direction of a pipe into frames. A frame cannot be found again in a stream that has lost its step:
// from a header that cannot be one on, all is garbage.
class FrameCutter {
 public:
  void Add(std::string_view bytes) { m_bytes += bytes; }
  // The next piece that is whole; none while more bytes are needed.
  std::optional<StreamPiece> Next();
  // The stream has ended: what is left of it, if anything is.
  std::optional<StreamPiece> Rest();

 private:
  std::string m_bytes;
  bool m_outOfStep = false;
};

}  // namespace velm_tools
