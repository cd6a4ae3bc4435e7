#pragma once

// What every message class stands on: a wire name, a numeric id and up to fifteen typed fields, which build
// themselves into a queue message and fill themselves from one. CmmMessageTemplate_N carries N fields and
// derives from CmmMessageTemplate_(N-1) over its first N-1 types.

#include <cstdint>

#include "archive/ArchiveObjHelper.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"

namespace Cmm::Archive {

// A message without fields. Not locked: an object is used on one thread.
class CMM_EXPORT CmmMessageTemplate_0 {
 public:
  CmmMessageTemplate_0(const char* packageName, int messageId);  // a null name is the empty one
  virtual ~CmmMessageTemplate_0();

  // The message as a queue message of type `messageId`, -1 for the object's own id; the caller's. Null when
  // the name is empty, when the message has no definition, or when a field does not fit it. May be called
  // any number of times.
  virtual CmmMQ_Msg* BuildMsg(int messageId);
  // Fills the fields from a queue message: 1 when all were filled, else 0. A text that does not match the
  // definition leaves them as they were. Without fields the text is not looked at, and only null gives 0.
  virtual int ParseMsg(const CmmMQ_Msg* message);

  int GetMessageId() const;

 protected:
  // Every field in order, up to the first that fails; 0 then, and for null.
  virtual int WriteData(ICmmArchiveObjWritter* writter);
  virtual int ReadData(ICmmArchiveObjReader* reader);

  // The body of ParseMsg of every message that has fields.
  int ParseFields(const CmmMQ_Msg* message);

 private:
  CStringT<char> m_packageName;
  int m_messageId;
};

// A field: its name on the wire, and its value, 0 or empty at first.
template <typename T>
struct MessageItem {
  CStringT<char> name;
  T value{};
};

inline int WriteItem(ICmmArchiveObjWritter& writter, const MessageItem<int>& item) {
  return writter.WriteInt32(item.name.c_str(), item.value);
}
inline int WriteItem(ICmmArchiveObjWritter& writter, const MessageItem<unsigned>& item) {
  return writter.WriteUInt32(item.name.c_str(), item.value);
}
inline int WriteItem(ICmmArchiveObjWritter& writter, const MessageItem<int64_t>& item) {
  return writter.WriteInt64(item.name.c_str(), item.value);
}
inline int WriteItem(ICmmArchiveObjWritter& writter, const MessageItem<uint64_t>& item) {
  return writter.WriteUInt64(item.name.c_str(), item.value);
}
inline int WriteItem(ICmmArchiveObjWritter& writter, const MessageItem<CStringT<char>>& item) {
  return writter.WriteStringA(item.name.c_str(), item.value);
}
inline int WriteItem(ICmmArchiveObjWritter& writter, const MessageItem<CStringT<wchar_t>>& item) {
  return writter.WriteStringW(item.name.c_str(), item.value);
}

inline int ReadItem(ICmmArchiveObjReader& reader, MessageItem<int>& item) {
  return reader.ReadInt32(item.name.c_str(), item.value);
}
inline int ReadItem(ICmmArchiveObjReader& reader, MessageItem<unsigned>& item) {
  return reader.ReadUInt32(item.name.c_str(), item.value);
}
inline int ReadItem(ICmmArchiveObjReader& reader, MessageItem<int64_t>& item) {
  return reader.ReadInt64(item.name.c_str(), item.value);
}
inline int ReadItem(ICmmArchiveObjReader& reader, MessageItem<uint64_t>& item) {
  return reader.ReadUInt64(item.name.c_str(), item.value);
}
inline int ReadItem(ICmmArchiveObjReader& reader, MessageItem<CStringT<char>>& item) {
  return reader.ReadStringA(item.name.c_str(), item.value);
}
inline int ReadItem(ICmmArchiveObjReader& reader, MessageItem<CStringT<wchar_t>>& item) {
  return reader.ReadStringW(item.name.c_str(), item.value);
}

// T1 to T15 are `int`, `unsigned`, `int64_t`, `uint64_t`, `CStringT<char>` (UTF-8) or `CStringT<wchar_t>`.
template <typename T1>
class CmmMessageTemplate_1 : public CmmMessageTemplate_0 {
 public:
  CMM_EXPORT_INLINE CmmMessageTemplate_1(const char* packageName, int messageId, const char* item1Name)
      : CmmMessageTemplate_0(packageName, messageId), m_item1{item1Name} {}
  CMM_EXPORT_INLINE ~CmmMessageTemplate_1() override {}

  CMM_EXPORT_INLINE int ParseMsg(const CmmMQ_Msg* message) override { return ParseFields(message); }

  CMM_EXPORT_INLINE T1& GetItem1() { return m_item1.value; }
  CMM_EXPORT_INLINE void SetItem1(const T1& value) { m_item1.value = value; }

 protected:
  CMM_EXPORT_INLINE int WriteData(ICmmArchiveObjWritter* writter) override {
    return writter && CmmMessageTemplate_0::WriteData(writter) ? WriteItem(*writter, m_item1) : 0;
  }
  CMM_EXPORT_INLINE int ReadData(ICmmArchiveObjReader* reader) override {
    return reader && CmmMessageTemplate_0::ReadData(reader) ? ReadItem(*reader, m_item1) : 0;
  }

 private:
  MessageItem<T1> m_item1;
};

#define CMM_LIST_1(M) M(1)
#define CMM_LIST_2(M) CMM_LIST_1(M), M(2)
#define CMM_LIST_3(M) CMM_LIST_2(M), M(3)
#define CMM_LIST_4(M) CMM_LIST_3(M), M(4)
#define CMM_LIST_5(M) CMM_LIST_4(M), M(5)
#define CMM_LIST_6(M) CMM_LIST_5(M), M(6)
#define CMM_LIST_7(M) CMM_LIST_6(M), M(7)
#define CMM_LIST_8(M) CMM_LIST_7(M), M(8)
#define CMM_LIST_9(M) CMM_LIST_8(M), M(9)
#define CMM_LIST_10(M) CMM_LIST_9(M), M(10)
#define CMM_LIST_11(M) CMM_LIST_10(M), M(11)
#define CMM_LIST_12(M) CMM_LIST_11(M), M(12)
#define CMM_LIST_13(M) CMM_LIST_12(M), M(13)
#define CMM_LIST_14(M) CMM_LIST_13(M), M(14)
#define CMM_LIST_15(M) CMM_LIST_14(M), M(15)
#define CMM_TYPE_PARAMETER(K) typename T##K
#define CMM_TYPE(K) T##K
#define CMM_NAME_PARAMETER(K) const char* item##K##Name
#define CMM_NAME(K) item##K##Name

// Level N on top of level B, which is N - 1.
#define CMM_MESSAGE_TEMPLATE(N, B)                                                          \
  template <CMM_LIST_##N(CMM_TYPE_PARAMETER)>                                               \
  class CmmMessageTemplate_##N : public CmmMessageTemplate_##B<CMM_LIST_##B(CMM_TYPE)> {    \
    using Base = CmmMessageTemplate_##B<CMM_LIST_##B(CMM_TYPE)>;                            \
                                                                                            \
   public:                                                                                  \
    CMM_EXPORT_INLINE CmmMessageTemplate_##N(const char* packageName, int messageId,        \
                                             CMM_LIST_##N(CMM_NAME_PARAMETER))              \
        : Base(packageName, messageId, CMM_LIST_##B(CMM_NAME)), m_item##N{item##N##Name} {} \
    CMM_EXPORT_INLINE ~CmmMessageTemplate_##N() override {}                                 \
                                                                                            \
    CMM_EXPORT_INLINE T##N& GetItem##N() { return m_item##N.value; }                        \
    CMM_EXPORT_INLINE void SetItem##N(const T##N& value) { m_item##N.value = value; }       \
                                                                                            \
   protected:                                                                               \
    CMM_EXPORT_INLINE int WriteData(ICmmArchiveObjWritter* writter) override {              \
      return Base::WriteData(writter) ? WriteItem(*writter, m_item##N) : 0;                 \
    }                                                                                       \
    CMM_EXPORT_INLINE int ReadData(ICmmArchiveObjReader* reader) override {                 \
      return Base::ReadData(reader) ? ReadItem(*reader, m_item##N) : 0;                     \
    }                                                                                       \
                                                                                            \
   private:                                                                                 \
    MessageItem<T##N> m_item##N;                                                            \
  };

CMM_MESSAGE_TEMPLATE(2, 1)
CMM_MESSAGE_TEMPLATE(3, 2)
CMM_MESSAGE_TEMPLATE(4, 3)
CMM_MESSAGE_TEMPLATE(5, 4)
CMM_MESSAGE_TEMPLATE(6, 5)
CMM_MESSAGE_TEMPLATE(7, 6)
CMM_MESSAGE_TEMPLATE(8, 7)
CMM_MESSAGE_TEMPLATE(9, 8)
CMM_MESSAGE_TEMPLATE(10, 9)
CMM_MESSAGE_TEMPLATE(11, 10)
CMM_MESSAGE_TEMPLATE(12, 11)
CMM_MESSAGE_TEMPLATE(13, 12)
CMM_MESSAGE_TEMPLATE(14, 13)
CMM_MESSAGE_TEMPLATE(15, 14)

#undef CMM_MESSAGE_TEMPLATE
#undef CMM_NAME
#undef CMM_NAME_PARAMETER
#undef CMM_TYPE
#undef CMM_TYPE_PARAMETER
#undef CMM_LIST_15
#undef CMM_LIST_14
#undef CMM_LIST_13
#undef CMM_LIST_12
#undef CMM_LIST_11
#undef CMM_LIST_10
#undef CMM_LIST_9
#undef CMM_LIST_8
#undef CMM_LIST_7
#undef CMM_LIST_6
#undef CMM_LIST_5
#undef CMM_LIST_4
#undef CMM_LIST_3
#undef CMM_LIST_2
#undef CMM_LIST_1

}  // namespace Cmm::Archive
