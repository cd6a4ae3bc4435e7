#include "common/client/utility/src/ipc/FrameReader.h"

#include <cstdint>

#include "common/client/utility/src/ipc/CmmMQMsg.h"

namespace Cmm {
namespace {

// Hands on the whole frames of `data`; `position` is then where the first incomplete one begins. False when
// a frame has a length that no frame can have.
bool HandOnFrames(const unsigned char* data, size_t size, size_t& position, FrameSink& sink) {
  const uint32_t headLen = CmmInternelMsg::GetHeadLen();
  while (size - position >= headLen) {
    const unsigned char* const frame = data + position;
    const uint32_t payloadLength = CmmInternelMsg::ParseMsgLen(reinterpret_cast<const char*>(frame));
    const uint32_t frameSize = payloadLength + headLen;
    if (frameSize < headLen) return false;  // the sum wrapped: such a frame has no end
    if (frameSize > size - position) break;
    sink.OnFrame(frame, payloadLength);
    position += frameSize;
  }
  return true;
}

}  // namespace

bool FrameReader::Take(const unsigned char* data, size_t size, FrameSink& sink) {
  size_t position = 0;
  if (m_carriedOver.empty()) {
    if (!HandOnFrames(data, size, position, sink)) return false;
    m_carriedOver.assign(data + position, size - position);
    return true;
  }
  const bool fits = size <= kMaxCarriedOver && m_carriedOver.size() <= kMaxCarriedOver - size;
  if (fits) m_carriedOver.append(data, size);
  if (!fits || !HandOnFrames(m_carriedOver.data(), m_carriedOver.size(), position, sink)) {
    m_carriedOver = {};
    return false;
  }
  m_carriedOver.erase(0, position);
  return true;
}

}  // namespace Cmm
