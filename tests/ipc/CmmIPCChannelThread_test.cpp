#include "common/client/utility/src/ipc/CmmIPCChannelThread.h"

#include <map>
#include <thread>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/ipc/ChannelTesting.h"
#include "tests/support/CountedHeap.h"
#include "tests/support/WaitUntil.h"

namespace qxb_ipc {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::Frame;
using velm_test::FrameHeader;
using velm_test::FrameOf;
using velm_test::PipePeer;

std::wstring NameFor(const wchar_t* base, unsigned id) {
  Cmm::CStringT<wchar_t> name(L"what was there before");
  CIPCChannelThread::GenChannelName(base, id, name);
  return name.c_str();
}

TEST(GenChannelName, IsTheBaseAndTheIdInDecimal) {
  EXPECT_EQ(NameFor(L"com.velm.ipc.audiosdk_", 4711), L"com.velm.ipc.audiosdk_4711");
  EXPECT_EQ(NameFor(L"", 0), L"0");
  EXPECT_EQ(NameFor(L"b", 0x7FFFFFFF), L"b2147483647");
}

TEST(GenChannelName, AnIdFrom0x80000000OnComesOutNegative) {
  EXPECT_EQ(NameFor(L"b", 0x80000000), L"b-2147483648");
  EXPECT_EQ(NameFor(L"b", 0xFFFFFFFF), L"b-1");
}

class ChannelThreadTest : public testing::Test {
 protected:
  ChannelThreadTest() : name(UniqueName()), server(PipePeer::Serve(name)) {}

  std::unique_ptr<CIPCChannelThread> Client() {
    return std::make_unique<CIPCChannelThread>(name, MODE_CLIENT, &listener, 1);
  }
  // A running client whose announcement the server has read.
  std::unique_ptr<CIPCChannelThread> StartedClient() {
    auto client = Client();
    EXPECT_TRUE(client->IsServerGood());
    EXPECT_EQ(client->Start(), 1);
    EXPECT_TRUE(server.AwaitClient());
    EXPECT_EQ(server.Read(OwnAnnouncement().size()), OwnAnnouncement());
    return client;
  }
  static std::string OwnAnnouncement() { return AnnouncementOf(GetCurrentProcessId()); }
  static DWORD Threads();

  const std::string name;
  PipePeer server;
  RecordingListener listener;
};

TEST_F(ChannelThreadTest, StartTwiceStartsOnce) {
  const auto client = StartedClient();
  EXPECT_EQ(client->Start(), 0);
  EXPECT_EQ(client->Stop(), 1);
}

TEST_F(ChannelThreadTest, StopWithoutStartGivesZero) {
  EXPECT_EQ(Client()->Stop(), 0);
}

TEST_F(ChannelThreadTest, StopTwiceStopsOnce) {
  const auto client = StartedClient();
  EXPECT_EQ(client->Stop(), 1);
  EXPECT_EQ(client->Stop(), 0);
  EXPECT_TRUE(server.IsBroken());
}

TEST_F(ChannelThreadTest, WhatRanOnceDoesNotRunAgain) {
  const auto client = StartedClient();
  client->Stop();
  EXPECT_FALSE(client->IsServerGood());
  EXPECT_EQ(client->Start(), 1);  // a thread that finds no pipe and ends
  EXPECT_TRUE(WaitUntil([&] { return client->Stop() == 0; }));
}

TEST_F(ChannelThreadTest, WithoutAPipeTheWorkerEndsAtOnce) {
  CIPCChannelThread client(name + "_nobody", MODE_CLIENT, &listener, 1);
  EXPECT_FALSE(client.IsServerGood());
  EXPECT_EQ(client.Start(), 1);
  EXPECT_TRUE(WaitUntil([&] { return client.Stop() == 0; }));
  EXPECT_EQ(listener.errors, 0);
}

TEST_F(ChannelThreadTest, WhatIsSentBeforeStartFollowsTheAnnouncementInOrder) {
  const auto client = Client();
  EXPECT_EQ(client->SendMessageW(NewMessage(10, "one")), 1);
  EXPECT_EQ(client->SendMessageW(NewMessage(11, "two")), 1);
  EXPECT_EQ(server.Read(1, 20), "");
  client->Start();
  EXPECT_EQ(server.Read(OwnAnnouncement().size()), OwnAnnouncement());
  EXPECT_EQ(server.ReadFrame(), (Frame{10, "one"}));
  EXPECT_EQ(server.ReadFrame(), (Frame{11, "two"}));
}

TEST_F(ChannelThreadTest, AHundredMessagesSentWhileAWriteIsOutKeepTheirOrder) {
  const auto client = StartedClient();
  client->SendMessageW(NewMessage(0, std::string(50000, 'b')));  // more than the pipe takes unread
  for (int i = 1; i <= 100; ++i)
    client->SendMessageW(NewMessage(i, std::to_string(i)));
  EXPECT_EQ(server.ReadFrame()->type, 0);
  for (int i = 1; i <= 100; ++i)
    ASSERT_EQ(server.ReadFrame(), (Frame{i, std::to_string(i)}));
  EXPECT_TRUE(WaitUntil([] { return CountedMessage::living == 0; }));
}

TEST_F(ChannelThreadTest, ManyThreadsSendAHundredThousandMessagesEachInItsOwnOrder) {
  constexpr int kThreads = 8;
  constexpr int kPerThread = 12500;
  const auto client = StartedClient();
  std::vector<std::thread> senders;
  for (int sender = 0; sender < kThreads; ++sender)
    senders.emplace_back([&client, sender] {
      for (int i = 0; i < kPerThread; ++i)
        client->SendMessageW(NewMessage(sender, std::to_string(i)));
    });
  std::map<int, int> next;
  for (int i = 0; i < kThreads * kPerThread; ++i) {
    const auto frame = server.ReadFrame();
    ASSERT_TRUE(frame) << i;
    ASSERT_EQ(frame->payload, std::to_string(next[frame->type]++)) << "sender " << frame->type;
  }
  for (std::thread& sender : senders)
    sender.join();
  EXPECT_EQ(server.Read(1, 20), "");
  EXPECT_TRUE(WaitUntil([] { return CountedMessage::living == 0; }));
}

TEST_F(ChannelThreadTest, AListenerMayAnswerFromItsCallback) {
  class Echo : public RecordingListener {
   public:
    void OnMessageReceived(Cmm::CmmMQ_Msg* msg, int type) override {
      RecordingListener::OnMessageReceived(msg, type);
      channel->SendMessageW(NewMessage(type + 1, "echo"));
    }
    CIPCChannelThread* channel = nullptr;
  } echo;
  CIPCChannelThread client(name, MODE_CLIENT, &echo, 1);
  echo.channel = &client;
  client.Start();
  EXPECT_EQ(server.Read(OwnAnnouncement().size()), OwnAnnouncement());
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(server.Write(FrameOf(2 * i + 10, "ask")));
    ASSERT_EQ(server.ReadFrame(), (Frame{2 * i + 11, "echo"}));
  }
}

TEST_F(ChannelThreadTest, TheWorkerOutlivesABrokenChannelUntilStop) {
  auto client = StartedClient();
  server.Close();
  EXPECT_TRUE(WaitUntil([&] { return listener.errors == 1; }));
  EXPECT_EQ(client->Start(), 0);
  EXPECT_EQ(client->SendMessageW(NewMessage(1, "into the void")), 1);
  EXPECT_EQ(client->Stop(), 1);
  client.reset();
  EXPECT_EQ(CountedMessage::living, 0);
  EXPECT_EQ(listener.errors, 1);
}

TEST_F(ChannelThreadTest, MessagesAfterTheEndAreFreedWithTheObject) {
  {
    const auto client = StartedClient();
    client->Stop();
    EXPECT_EQ(client->SendMessageW(NewMessage(1, "late")), 1);
    EXPECT_EQ(CountedMessage::living, 1);
  }
  EXPECT_EQ(CountedMessage::living, 0);
}

TEST_F(ChannelThreadTest, DestroyingARunningObjectStopsItAndFreesEveryMessage) {
  {
    const auto client = StartedClient();
    for (int i = 0; i < 50; ++i)
      client->SendMessageW(NewMessage(i, std::string(100000, 'x')));
  }
  EXPECT_EQ(CountedMessage::living, 0);
  EXPECT_EQ(listener.errors, 0);
}

TEST_F(ChannelThreadTest, DestroyingAnObjectThatNeverRanFreesEveryMessage) {
  {
    const auto client = Client();
    client->SendMessageW(NewMessage(1, "a"));
  }
  EXPECT_EQ(CountedMessage::living, 0);
}

TEST_F(ChannelThreadTest, StopWaitsForACallbackThatRuns) {
  class Slow : public RecordingListener {
   public:
    void OnMessageReceived(Cmm::CmmMQ_Msg* msg, int type) override {
      entered = true;
      Sleep(200);
      RecordingListener::OnMessageReceived(msg, type);
      left = true;
    }
    std::atomic<bool> entered = false;
    std::atomic<bool> left = false;
  } slow;
  CIPCChannelThread client(name, MODE_CLIENT, &slow, 1);
  client.Start();
  ASSERT_TRUE(server.Write(FrameOf(1000, "work")));
  ASSERT_TRUE(WaitUntil([&] { return slow.entered.load(); }));
  EXPECT_EQ(client.Stop(), 1);
  EXPECT_TRUE(slow.left);
}

TEST_F(ChannelThreadTest, NullIsTakenAndSkipped) {
  const auto client = StartedClient();
  EXPECT_EQ(client->SendMessageW(nullptr), 1);
  EXPECT_EQ(client->SendMessageW(NewMessage(3, "after null")), 1);
  EXPECT_EQ(server.ReadFrame(), (Frame{3, "after null"}));
}

TEST_F(ChannelThreadTest, AServerThreadMeetsAClientThread) {
  RecordingListener serverListener;
  const std::string other = UniqueName();
  CIPCChannelThread serving(other, MODE_SERVER, &serverListener, 1);
  ASSERT_TRUE(serving.IsServerGood());
  serving.Start();
  serving.SendMessageW(NewMessage(20, "welcome"));
  CIPCChannelThread client(other, MODE_CLIENT, &listener, 1);
  ASSERT_TRUE(client.IsServerGood());
  client.Start();
  client.SendMessageW(NewMessage(21, "hello"));
  EXPECT_TRUE(WaitUntil([&] { return listener.Messages().size() == 1; }));
  EXPECT_TRUE(WaitUntil([&] { return serverListener.Messages().size() == 1; }));
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{20, "welcome"}));
  EXPECT_THAT(serverListener.Messages(), ElementsAre(ReceivedMessage{21, "hello"}));
  EXPECT_THAT(serverListener.Connected(), ElementsAre(static_cast<int>(GetCurrentProcessId())));
}

TEST_F(ChannelThreadTest, AnAdoptedPipeIsServedByItsThread) {
  PipePeer client = PipePeer::Open(name);
  ASSERT_TRUE(server.AwaitClient());
  CIPCChannelThread adopted(MODE_CLIENT, &listener, 4711, client.Release());
  adopted.Start();
  adopted.SendMessageW(NewMessage(9, "unannounced"));
  EXPECT_EQ(server.ReadFrame(), (Frame{9, "unannounced"}));
}

// Each lying frame in turn, followed by a peer that stays.
TEST_F(ChannelThreadTest, AFrameOfAnImpossibleLengthEndsTheChannelWithOneError) {
  const auto client = StartedClient();
  ASSERT_TRUE(server.Write(FrameHeader(0xFFFFFFFF, 40521) + "garbage"));
  EXPECT_TRUE(WaitUntil([&] { return listener.errors == 1; }));
  EXPECT_TRUE(server.IsBroken());
  EXPECT_EQ(client->Stop(), 1);
  EXPECT_EQ(listener.errors, 1);
  EXPECT_THAT(listener.Messages(), IsEmpty());
}

TEST_F(ChannelThreadTest, AnEndlessFrameEndsTheChannelAtTheLimit) {
  const auto client = StartedClient();
  const std::string piece(1 << 20, 'e');
  bool written = server.Write(FrameHeader(0x7FFFFFFF, 40521));
  int pieces = 0;
  for (; written && pieces < 200; ++pieces)
    written = server.Write(piece);
  EXPECT_TRUE(pieces == 128 || pieces == 129) << pieces;
  EXPECT_TRUE(WaitUntil([&] { return listener.errors == 1; }));
  EXPECT_THAT(listener.Messages(), IsEmpty());
}

TEST_F(ChannelThreadTest, APeerThatClosesAfterEachByteIsOneErrorEach) {
  const std::string frame = FrameOf(40521, "0123456789");
  for (size_t size = 0; size < frame.size(); ++size) {
    RecordingListener own;
    const std::string other = UniqueName();
    PipePeer peer = PipePeer::Serve(other);
    CIPCChannelThread client(other, MODE_CLIENT, &own, 1);
    client.Start();
    ASSERT_TRUE(size == 0 || peer.Write(frame.substr(0, size)));
    peer.Close();
    ASSERT_TRUE(WaitUntil([&] { return own.errors == 1; })) << size;
    client.Stop();
    EXPECT_EQ(own.errors, 1);
    EXPECT_THAT(own.Messages(), IsEmpty());
  }
}

TEST_F(ChannelThreadTest, APeerThatNeverReadsDoesNotHoldUpStop) {
  auto client = StartedClient();
  for (int i = 0; i < 20; ++i)
    client->SendMessageW(NewMessage(i, std::string(10000, 'n')));
  EXPECT_EQ(client->Stop(), 1);
  client.reset();
  EXPECT_EQ(CountedMessage::living, 0);
}

DWORD ChannelThreadTest::Threads() {
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  return handles;
}

TEST_F(ChannelThreadTest, ManyLivesLeaveNoHandleAndNoMemoryBehind) {
  const auto live = [&] {
    const std::string other = UniqueName();
    PipePeer peer = PipePeer::Serve(other);
    CIPCChannelThread client(other, MODE_CLIENT, &listener, 1);
    client.Start();
    client.SendMessageW(NewMessage(1, "x"));
    EXPECT_TRUE(peer.ReadFrame());
    EXPECT_TRUE(peer.ReadFrame());
  };
  live();  // what is made once in the process
  const DWORD handles = Threads();
  const long blocks = velm_test::CountHeapCalls().Live();
  for (int i = 0; i < 20; ++i)
    live();
  EXPECT_EQ(Threads(), handles);
  EXPECT_LE(velm_test::CountHeapCalls().Live(), blocks + 8);
}

}  // namespace
}  // namespace qxb_ipc
