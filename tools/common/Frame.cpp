#include "tools/common/Frame.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace velm_tools {
namespace {

uint32_t ReadNumber(std::string_view bytes) {
  uint32_t number = 0;
  for (size_t i = 0; i < sizeof(number); ++i)
    number |= uint32_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
  return number;
}

void AppendNumber(std::string& bytes, uint32_t number) {
  for (size_t i = 0; i < sizeof(number); ++i)
    bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

}  // namespace

FrameHeader ReadFrameHeader(std::string_view bytes) {
  return {ReadNumber(bytes), static_cast<int32_t>(ReadNumber(bytes.substr(sizeof(uint32_t))))};
}

std::string MakeFrame(int32_t type, std::string_view payload) {
  if (payload.size() > std::numeric_limits<uint32_t>::max())
    throw std::length_error("a frame cannot hold " + std::to_string(payload.size()) + " bytes");
  std::string frame;
  frame.reserve(kFrameHeaderBytes + payload.size());
  AppendNumber(frame, static_cast<uint32_t>(payload.size()));
  AppendNumber(frame, static_cast<uint32_t>(type));
  return frame.append(payload);
}

std::optional<StreamPiece> FrameCutter::Next() {
  if (m_bytes.empty()) return std::nullopt;
  if (!m_outOfStep) {
    if (m_bytes.size() < kFrameHeaderBytes) return std::nullopt;
    const uint32_t payloadBytes = ReadFrameHeader(m_bytes).payloadBytes;
    if (payloadBytes <= kMaxPayloadBytes) {
      const size_t size = kFrameHeaderBytes + payloadBytes;
      if (m_bytes.size() < size) return std::nullopt;
      StreamPiece frame{StreamPiece::Kind::kFrame, m_bytes.substr(0, size)};
      m_bytes.erase(0, size);
      return frame;
    }
    m_outOfStep = true;
  }
  return StreamPiece{StreamPiece::Kind::kGarbage, std::exchange(m_bytes, {})};
}

std::optional<StreamPiece> FrameCutter::Rest() {
  if (m_bytes.empty()) return std::nullopt;
  const auto kind = m_outOfStep ? StreamPiece::Kind::kGarbage : StreamPiece::Kind::kPartial;
  return StreamPiece{kind, std::exchange(m_bytes, {})};
}

}  // namespace velm_tools
