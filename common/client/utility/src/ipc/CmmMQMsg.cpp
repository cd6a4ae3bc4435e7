#include "common/client/utility/src/ipc/CmmMQMsg.h"

#include <cstddef>
#include <cstring>

namespace Cmm {
namespace {

constexpr unsigned kHeadLen = 8;
constexpr size_t kLengthOffset = 0;
constexpr size_t kTypeOffset = 4;

template <typename T>
T Load(const void* place) {
  T value;
  std::memcpy(&value, place, sizeof(value));
  return value;
}

template <typename T>
void Store(void* place, T value) {
  std::memcpy(place, &value, sizeof(value));
}

}  // namespace

CmmMQ_Msg* CmmMQ_Msg::MakeMessage(const unsigned char* data, unsigned len, int type) {
  auto message = std::make_unique<CmmInternelMsg>(data, len, 0);
  message->SetMsgType(type);
  return message.release();
}

CmmInternelMsg::CmmInternelMsg() = default;

CmmInternelMsg::CmmInternelMsg(const unsigned char* data, unsigned len, int is_raw_frame) {
  if (!data || len == 0) return;
  const size_t frameSize = size_t{len} + kHeadLen;
  base_.reset(new unsigned char[frameSize]);
  len_ = len;
  if (is_raw_frame) {
    std::memcpy(base_.get(), data, frameSize);
    type_ = Load<int32_t>(base_.get() + kTypeOffset);
  } else {
    Store(base_.get() + kLengthOffset, len_);
    Store(base_.get() + kTypeOffset, type_);
    std::memcpy(base_.get() + kHeadLen, data, len);
  }
}

CmmInternelMsg::~CmmInternelMsg() = default;

int CmmInternelMsg::GetMsgType() const {
  return type_;
}

unsigned CmmInternelMsg::GetLen() const {
  return len_;
}

const unsigned char* CmmInternelMsg::GetData() const {
  return reinterpret_cast<const unsigned char*>(reinterpret_cast<uintptr_t>(base_.get()) + kHeadLen);
}

const unsigned char* CmmInternelMsg::GetBase() const {
  return base_.get();
}

void CmmInternelMsg::SetMsgType(int type) {
  type_ = type;
  if (base_) Store(base_.get() + kTypeOffset, type_);
}

unsigned CmmInternelMsg::GetHeadLen() {
  return kHeadLen;
}

unsigned CmmInternelMsg::ParseMsgLen(const char* header) {
  return header ? Load<uint32_t>(header + kLengthOffset) : 0;
}

unsigned CmmInternelMsg::GetToWrite() const {
  return GetLen() + kHeadLen - written_;
}

const unsigned char* CmmInternelMsg::GetWritePos() const {
  return base_.get() + written_;
}

bool CmmInternelMsg::IsWrittenComplete() const {
  return written_ >= GetLen() + kHeadLen;
}

void CmmInternelMsg::SetWritten(unsigned n) {
  written_ = n;
}

}  // namespace Cmm
