// The simulator's own reading and writing of the pipe's messages, against the library's.

#include "tools/client_simulator/PipeMessage.h"

#include <gtest/gtest.h>

#include "archive/catalogue/SdkChannelMessages.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"
#include "tools/common/Frame.h"
#include "tools/common/Text.h"

namespace velm_sim {
namespace {

const wchar_t kText[] = L"{\"a\":\"<x&y> 'z' \u00E9\u4E2D \xD834\xDD1E\\n\"}";

std::string Whole(const std::unique_ptr<Cmm::CmmMQ_Msg>& message) {
  return velm_tools::MakeFrame(message->GetMsgType(), {reinterpret_cast<const char*>(message->GetData()),
                                                       static_cast<size_t>(message->GetLen())});
}

TEST(PipeMessageTest, NotificationsAreTheBytesThatTheLibraryBuilds) {
  CQXMBMessage_Audio3rdSDK_AudioCmdNotify audio;
  audio.Set_ChannelId(4711);
  audio.Set_AudioCmdNotify(kText);
  EXPECT_EQ(NotificationFrame(RouteKind::kAudio, 4711, velm_tools::ToUtf8(kText)),
            Whole(std::unique_ptr<Cmm::CmmMQ_Msg>(audio.BuildMsg(40521))));
  CQXMBMessage_Client3rdSDK_SDKCmdNotify service;
  service.Set_ChannelId(0xFFFFFFFF);
  service.Set_SDKCmdNotify(kText);
  EXPECT_EQ(NotificationFrame(RouteKind::kService, 0xFFFFFFFF, velm_tools::ToUtf8(kText)),
            Whole(std::unique_ptr<Cmm::CmmMQ_Msg>(service.BuildMsg(40526))));
  CQXMBMessage_LogService_ClientExit goodbye;
  EXPECT_EQ(GoodbyeFrame(), Whole(std::unique_ptr<Cmm::CmmMQ_Msg>(goodbye.BuildMsg(40353))));
}

TEST(PipeMessageTest, CommandsThatTheLibraryBuildsAreRead) {
  CQXMBMessage_Audio3rdSDK_AudioCmdRequest request;
  request.Set_ChannelId(0x80000000);
  request.Set_AudioCmdRequest(kText);
  const std::unique_ptr<Cmm::CmmMQ_Msg> built(request.BuildMsg(40520));
  const auto message = ReadMessage({reinterpret_cast<const char*>(built->GetData()), built->GetLen()});
  ASSERT_TRUE(message);
  EXPECT_EQ(message->name, "com.velm.app.3rd.audiosdk.sendaudiocmd.request");
  EXPECT_EQ(message->Number("ChannelId"), 0x80000000U);
  EXPECT_EQ(message->attributes.at("AudioCmdRequest"), velm_tools::ToUtf8(kText));
}

TEST(PipeMessageTest, WhatIsNoElementIsNoMessage) {
  for (const char* payload : {"", "x", "<a", "<a b=1/>", "<!-- -->"})
    EXPECT_FALSE(ReadMessage(payload)) << payload;
}

TEST(PipeMessageTest, NumberThatIsNoneIsAbsent) {
  const auto message = ReadMessage(R"(<a b="1x" c="4294967296" d="" e="-1" f="7"/>)");
  ASSERT_TRUE(message);
  for (const char* name : {"b", "c", "d", "e", "missing"})
    EXPECT_FALSE(message->Number(name)) << name;
  EXPECT_EQ(message->Number("f"), 7U);
}

TEST(PipeMessageTest, ChannelNumbersAreSigned) {
  EXPECT_EQ(ChannelName(RouteKind::kAudio, 1234), "com.velm.ipc.audiosdk_1234");
  EXPECT_EQ(ChannelName(RouteKind::kService, 0), "com.velm.ipc.client3rdsdk_0");
  EXPECT_EQ(ChannelName(RouteKind::kService, 0xFFFFFFFF), "com.velm.ipc.client3rdsdk_-1");
}

}  // namespace
}  // namespace velm_sim
