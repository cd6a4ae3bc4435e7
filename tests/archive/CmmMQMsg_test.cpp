#include "common/client/utility/src/ipc/CmmMQMsg.h"

#include <memory>
#include <string>

#include "gmock/gmock.h"

namespace {

using Cmm::CmmInternelMsg;
using Cmm::CmmMQ_Msg;
using testing::IsNull;

const unsigned char* Bytes(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

std::string Payload(const CmmMQ_Msg& message) {
  return {reinterpret_cast<const char*>(message.GetData()), message.GetLen()};
}

std::string Frame(const CmmInternelMsg& message) {
  return {reinterpret_cast<const char*>(message.GetBase()), message.GetLen() + 8};
}

void ExpectEmpty(const CmmInternelMsg& message) {
  EXPECT_THAT(message.GetBase(), IsNull());
  EXPECT_EQ(message.GetLen(), 0u);
}

TEST(CmmMQMsg, ANewRecordIsEmptyAndOfTypeMinusOne) {
  const CmmInternelMsg message;
  ExpectEmpty(message);
  EXPECT_EQ(message.GetMsgType(), -1);
  EXPECT_EQ(message.GetToWrite(), 8u);
  EXPECT_FALSE(message.IsWrittenComplete());
}

TEST(CmmMQMsg, TheDataOfAnEmptyRecordIsTheAddressEightAndNotNull) {
  const CmmInternelMsg message;
  EXPECT_EQ(reinterpret_cast<uintptr_t>(message.GetData()), 8u);
}

TEST(CmmMQMsg, ARecordOfABarePayloadHoldsTheFrameWithTypeMinusOneUntilOneIsSet) {
  CmmInternelMsg message(Bytes("abc"), 3, 0);
  EXPECT_EQ(Frame(message), std::string("\x03\0\0\0\xFF\xFF\xFF\xFF"
                                        "abc",
                                        11));
  EXPECT_EQ(message.GetMsgType(), -1);
  EXPECT_EQ(Payload(message), "abc");
  EXPECT_EQ(message.GetData(), message.GetBase() + 8);
}

TEST(CmmMQMsg, SetMsgTypeChangesTheFramesHeaderToo) {
  CmmInternelMsg message(Bytes("abc"), 3, 0);
  message.SetMsgType(0x01020304);
  EXPECT_EQ(message.GetMsgType(), 0x01020304);
  EXPECT_EQ(Frame(message), std::string("\x03\0\0\0\x04\x03\x02\x01"
                                        "abc",
                                        11));
  message.SetMsgType(-2);
  EXPECT_EQ(Frame(message), std::string("\x03\0\0\0\xFE\xFF\xFF\xFF"
                                        "abc",
                                        11));
}

TEST(CmmMQMsg, SetMsgTypeOfAnEmptyRecordIsKept) {
  CmmInternelMsg message;
  message.SetMsgType(7);
  EXPECT_EQ(message.GetMsgType(), 7);
  ExpectEmpty(message);
}

TEST(CmmMQMsg, ARawFrameGivesItsTypeAndIsCopiedAsItIs) {
  const std::string frame(
      "\x03\0\0\0\x48\x9E\0\0"
      "abc",
      11);
  const CmmInternelMsg message(Bytes(frame.data()), 3, 1);
  EXPECT_EQ(message.GetMsgType(), 40520);
  EXPECT_EQ(message.GetLen(), 3u);
  EXPECT_EQ(Frame(message), frame);
  EXPECT_NE(message.GetBase(), Bytes(frame.data()));
  EXPECT_EQ(CmmInternelMsg(Bytes(frame.data()), 3, -5).GetMsgType(), 40520);
}

TEST(CmmMQMsg, WithoutDataOrWithLengthZeroTheRecordStaysEmptyAndAFramesHeaderIsIgnored) {
  const std::string frame("\0\0\0\0\x48\x9E\0\0", 8);
  for (int isRawFrame : {0, 1}) {
    const CmmInternelMsg null(nullptr, 3, isRawFrame);
    ExpectEmpty(null);
    EXPECT_EQ(null.GetMsgType(), -1);
    const CmmInternelMsg none(Bytes(frame.data()), 0, isRawFrame);
    ExpectEmpty(none);
    EXPECT_EQ(none.GetMsgType(), -1);
  }
}

TEST(CmmMQMsg, MakeMessageCopiesThePayloadAndSetsTheType) {
  std::string payload("a\0c", 3);
  const std::unique_ptr<CmmMQ_Msg> message(CmmMQ_Msg::MakeMessage(Bytes(payload.data()), 3, 40521));
  payload = "xyz";
  EXPECT_EQ(message->GetMsgType(), 40521);
  EXPECT_EQ(Payload(*message), std::string("a\0c", 3));
  EXPECT_EQ(Frame(static_cast<CmmInternelMsg&>(*message)), std::string("\x03\0\0\0\x49\x9E\0\0"
                                                                       "a\0c",
                                                                       11));
}

TEST(CmmMQMsg, MakeMessageWithoutBytesIsAnEmptyRecordOfTheType) {
  for (const unsigned char* data : {static_cast<const unsigned char*>(nullptr), Bytes("abc")}) {
    const std::unique_ptr<CmmMQ_Msg> message(CmmMQ_Msg::MakeMessage(data, data ? 0 : 3, 5));
    ExpectEmpty(static_cast<CmmInternelMsg&>(*message));
    EXPECT_EQ(message->GetMsgType(), 5);
  }
}

TEST(CmmMQMsg, ParseMsgLenReadsTheFirstWordAndNothingElse) {
  EXPECT_EQ(CmmInternelMsg::ParseMsgLen("\x04\x03\x02\x01"), 0x01020304u);
  EXPECT_EQ(CmmInternelMsg::ParseMsgLen("\xFF\xFF\xFF\xFF"), 0xFFFFFFFFu);
  EXPECT_EQ(CmmInternelMsg::ParseMsgLen(nullptr), 0u);
  EXPECT_EQ(CmmInternelMsg::GetHeadLen(), 8u);
}

TEST(CmmMQMsg, WritingIsCountedFromTheFramesFirstByte) {
  CmmInternelMsg message(Bytes("abc"), 3, 0);
  EXPECT_EQ(message.GetToWrite(), 11u);
  EXPECT_EQ(message.GetWritePos(), message.GetBase());
  EXPECT_FALSE(message.IsWrittenComplete());
  message.SetWritten(10);
  EXPECT_EQ(message.GetToWrite(), 1u);
  EXPECT_EQ(message.GetWritePos(), message.GetBase() + 10);
  EXPECT_FALSE(message.IsWrittenComplete());
  message.SetWritten(message.GetLen() + 8);
  EXPECT_EQ(message.GetToWrite(), 0u);
  EXPECT_TRUE(message.IsWrittenComplete());
}

TEST(CmmMQMsg, WhatIsToWriteGoesByTheVirtualLength) {
  struct LongMsg : CmmInternelMsg {
    unsigned GetLen() const override { return 100; }
  } message;
  EXPECT_EQ(message.GetToWrite(), 108u);
  message.SetWritten(107);
  EXPECT_FALSE(message.IsWrittenComplete());
  message.SetWritten(108);
  EXPECT_TRUE(message.IsWrittenComplete());
}

}  // namespace
