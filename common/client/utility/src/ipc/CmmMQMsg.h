#pragma once

// The unit that crosses the message transport: a type and a block of bytes.

#include <cstdint>
#include <memory>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// A record is on the heap, and its ownership moves with the call that it is given to. Whoever holds it last
// deletes it. Not locked.
class CMM_EXPORT CmmMQ_Msg {
 public:
  CmmMQ_Msg(const CmmMQ_Msg&) = delete;
  CmmMQ_Msg& operator=(const CmmMQ_Msg&) = delete;
  virtual ~CmmMQ_Msg() = default;

  virtual int GetMsgType() const = 0;
  virtual unsigned GetLen() const = 0;               // of the payload, in bytes
  virtual const unsigned char* GetData() const = 0;  // the payload; no valid address when GetLen is 0

  // A new record with a copy of the `len` bytes at `data`; the caller's. Empty for null or no bytes.
  static CmmMQ_Msg* MakeMessage(const unsigned char* data, unsigned len, int type);

 protected:
  CmmMQ_Msg() = default;
};

// A record whose bytes lie in memory exactly as they travel: payload length and type, 32 bits each and
// little-endian, then the payload.
class CMM_EXPORT CmmInternelMsg : public CmmMQ_Msg {
 public:
  static constexpr int kNoType = -1;

  CmmInternelMsg();  // empty, of type kNoType
  // Copies `len` bytes of payload; with `is_raw_frame` `data` is a whole frame of a header and `len` bytes,
  // and the type is the header's. Without data or with `len` 0 the record is empty, and a frame's header
  // is not looked at.
  CmmInternelMsg(const unsigned char* data, unsigned len, int is_raw_frame);
  ~CmmInternelMsg() override;

  int GetMsgType() const override;
  unsigned GetLen() const override;
  // Of an empty record the address 8, which is not null: test GetLen first.
  const unsigned char* GetData() const override;

  const unsigned char* GetBase() const;  // the frame; null when empty
  void SetMsgType(int type);             // in the frame's header too

  static unsigned GetHeadLen();
  static unsigned ParseMsgLen(const char* header);  // the payload length in a header; 0 for null

  // How far the frame has been handed to the pipe, counted from its first byte.
  unsigned GetToWrite() const;
  const unsigned char* GetWritePos() const;
  bool IsWrittenComplete() const;
  void SetWritten(unsigned n);

 private:
  std::unique_ptr<unsigned char[]> base_;
  uint32_t len_ = 0;
  int32_t type_ = kNoType;
  uint32_t written_ = 0;
};

}  // namespace Cmm
