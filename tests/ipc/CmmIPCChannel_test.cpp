#include "common/client/utility/src/ipc/CmmIPCChannel.h"

#include <random>
#include <thread>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/ipc/ChannelTesting.h"
#include "tests/support/WaitUntil.h"

namespace qxb_ipc {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::Frame;
using velm_test::FrameHeader;
using velm_test::FrameOf;
using velm_test::PipePeer;

// Pumps until the condition holds; false when it did not in time.
template <typename Condition>
bool PumpUntil(Channel& channel, Condition condition) {
  constexpr int kStepMs = 10;
  constexpr int kLimitMs = 10000;
  for (int waited = 0; !condition(); waited += kStepMs) {
    if (waited >= kLimitMs) return false;
    channel.WaitForIOCompletion(kStepMs);
  }
  return true;
}

// A client under test, connected to a bare server that has read its announcement.
class ConnectedClientTest : public testing::Test {
 protected:
  ConnectedClientTest() : server(PipePeer::Serve(m_name)), channel(m_name, MODE_CLIENT, &listener, 1) {
    EXPECT_TRUE(channel.IsGood());
    EXPECT_TRUE(channel.Connect());
    EXPECT_TRUE(server.AwaitClient());
    EXPECT_EQ(server.Read(AnnouncementOf(GetCurrentProcessId()).size()),
              AnnouncementOf(GetCurrentProcessId()));
    channel.WaitForIOCompletion(100);  // the announcement's completion
  }

  bool PumpUntilMessages(size_t count) {
    return PumpUntil(channel, [&] { return listener.Messages().size() >= count; });
  }
  bool PumpUntilError() {
    return PumpUntil(channel, [&] { return listener.errors > 0; });
  }

 private:
  const std::string m_name = UniqueName();

 protected:
  RecordingListener listener;
  PipePeer server;
  Channel channel;
};

TEST(Channel, HoldsItsVirtualTableAndItsImplementation) {
  EXPECT_EQ(sizeof(Channel), 16u);
}

TEST(Channel, AClientBeforeAnyServerFailsAtOnce) {
  RecordingListener listener;
  Channel channel(UniqueName(), MODE_CLIENT, &listener, 1);
  EXPECT_FALSE(channel.IsGood());
  EXPECT_FALSE(channel.Connect());
  EXPECT_EQ(listener.errors, 0);
}

TEST(Channel, ASecondServerOfTheSameNameFails) {
  RecordingListener listener;
  const std::string name = UniqueName();
  const Channel first(name, MODE_SERVER, &listener, 1);
  const Channel second(name, MODE_SERVER, &listener, 0);
  EXPECT_TRUE(first.IsGood());
  EXPECT_FALSE(second.IsGood());
}

TEST(Channel, AServerTellsOfTheClientThatAnnouncedItself) {
  RecordingListener serverListener;
  RecordingListener clientListener;
  const std::string name = UniqueName();
  Channel server(name, MODE_SERVER, &serverListener, 1);
  ASSERT_TRUE(server.Connect());
  Channel client(name, MODE_CLIENT, &clientListener, 1);
  ASSERT_TRUE(client.Connect());
  EXPECT_TRUE(PumpUntil(server, [&] { return !serverListener.Connected().empty(); }));
  EXPECT_THAT(serverListener.Connected(), ElementsAre(static_cast<int>(GetCurrentProcessId())));
  EXPECT_THAT(serverListener.Messages(), IsEmpty());
  EXPECT_THAT(clientListener.Connected(), IsEmpty());
  EXPECT_EQ(serverListener.disconnected, 0);
}

TEST(Channel, AServerThatMeetsItsClientLateReadsItAllTheSame) {
  RecordingListener listener;
  const std::string name = UniqueName();
  Channel server(name, MODE_SERVER, &listener, 1);
  PipePeer client = PipePeer::Open(name);
  ASSERT_TRUE(client.IsGood());
  ASSERT_TRUE(client.Write(AnnouncementOf(815)));
  ASSERT_TRUE(server.Connect());
  EXPECT_TRUE(PumpUntil(server, [&] { return !listener.Connected().empty(); }));
  EXPECT_THAT(listener.Connected(), ElementsAre(815));
}

TEST(Channel, WhatAServerSendsBeforeItsClientComesArrivesInOrder) {
  RecordingListener listener;
  const std::string name = UniqueName();
  Channel server(name, MODE_SERVER, &listener, 1);
  EXPECT_TRUE(server.Send(NewMessage(1000, "before connect")));
  ASSERT_TRUE(server.Connect());
  EXPECT_TRUE(server.Send(NewMessage(1001, "before the client")));
  PipePeer client = PipePeer::Open(name);
  std::thread pump([&] { EXPECT_TRUE(PumpUntil(server, [&] { return CountedMessage::living == 0; })); });
  EXPECT_EQ(client.ReadFrame(), (Frame{1000, "before connect"}));
  EXPECT_EQ(client.ReadFrame(), (Frame{1001, "before the client"}));
  pump.join();
}

TEST(Channel, AnAdoptedPipeTalksWithoutAnnouncingItself) {
  RecordingListener listener;
  const std::string name = UniqueName();
  PipePeer server = PipePeer::Serve(name);
  PipePeer client = PipePeer::Open(name);
  ASSERT_TRUE(server.AwaitClient());
  Channel channel(MODE_CLIENT, &listener, client.Release());
  ASSERT_TRUE(channel.Connect());
  EXPECT_TRUE(channel.Send(NewMessage(7, "first of all")));
  EXPECT_EQ(server.ReadFrame(), (Frame{7, "first of all"}));
  EXPECT_TRUE(server.Write(FrameOf(8, "answer")));
  EXPECT_TRUE(PumpUntil(channel, [&] { return !listener.Messages().empty(); }));
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{8, "answer"}));
}

TEST_F(ConnectedClientTest, MessagesLeaveAsTheirFrames) {
  EXPECT_TRUE(channel.Send(NewMessage(40520, "payload")));
  EXPECT_EQ(server.Read(15), FrameOf(40520, "payload"));
}

TEST_F(ConnectedClientTest, AFrameSplitAtEveryByteArrivesOnceOverARealPipe) {
  const std::string frame = FrameOf(40521, "0123456789abcdef");
  for (size_t cut = 1; cut < frame.size(); ++cut) {
    ASSERT_TRUE(server.Write(frame.substr(0, cut)));
    channel.WaitForIOCompletion(1000);
    ASSERT_EQ(listener.Messages().size(), cut - 1);
    ASSERT_TRUE(server.Write(frame.substr(cut)));
    ASSERT_TRUE(PumpUntilMessages(cut));
  }
  for (const ReceivedMessage& message : listener.Messages())
    EXPECT_EQ(message, (ReceivedMessage{40521, "0123456789abcdef"}));
}

TEST_F(ConnectedClientTest, AMegabyteTravelsBothWays) {
  std::string large(1 << 20, '\0');
  std::mt19937 random(7);
  for (char& byte : large)
    byte = static_cast<char>(random());
  EXPECT_TRUE(channel.Send(NewMessage(5, large)));
  std::optional<Frame> received;
  std::thread reader([&] { received = server.ReadFrame(); });
  EXPECT_TRUE(PumpUntil(channel, [] { return CountedMessage::living == 0; }));
  reader.join();
  EXPECT_TRUE(received == (Frame{5, large}));
  std::thread writer([&] { EXPECT_TRUE(server.Write(FrameOf(6, large))); });
  EXPECT_TRUE(PumpUntilMessages(1));
  writer.join();
  EXPECT_TRUE(listener.Messages()[0] == (ReceivedMessage{6, large}));
}

TEST_F(ConnectedClientTest, APeerThatGoesIsAnErrorToldOnce) {
  server.Close();
  EXPECT_TRUE(PumpUntilError());
  EXPECT_FALSE(channel.IsGood());
  channel.WaitForIOCompletion(20);
  EXPECT_FALSE(channel.Send(NewMessage(1, "late")));
  EXPECT_EQ(listener.errors, 1);
}

TEST_F(ConnectedClientTest, WhatCameBeforeThePeerWentIsDelivered) {
  ASSERT_TRUE(server.Write(FrameOf(4, "last words") + FrameHeader(100, 4) + "half"));
  server.Close();
  EXPECT_TRUE(PumpUntilError());
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{4, "last words"}));
}

TEST_F(ConnectedClientTest, APeerThatGoesWithoutReadingEndsTheWrite) {
  EXPECT_TRUE(channel.Send(NewMessage(4, std::string(100000, 'w'))));
  server.Close();
  EXPECT_TRUE(PumpUntilError());
  EXPECT_EQ(listener.errors, 1);
  EXPECT_EQ(CountedMessage::living, 0);
}

TEST_F(ConnectedClientTest, AMessageWithoutPayloadCannotBeWrittenAndStaysInFront) {
  EXPECT_FALSE(channel.Send(new Cmm::CmmInternelMsg));
  EXPECT_FALSE(channel.Send(NewMessage(4, "behind it")));
  EXPECT_EQ(server.Read(1, 50), "");
  EXPECT_EQ(listener.errors, 0);
}

TEST_F(ConnectedClientTest, WakeUpEndsAWaitOfAnotherThread) {
  std::thread waker([&] {
    Sleep(30);
    EXPECT_TRUE(channel.WakeUp());
  });
  channel.WaitForIOCompletion(-1);
  waker.join();
  EXPECT_TRUE(channel.IsGood());
}

TEST_F(ConnectedClientTest, AWakeUpBeforeTheWaitEndsItAtOnce) {
  EXPECT_TRUE(channel.WakeUp());
  channel.WaitForIOCompletion(-1);
  EXPECT_TRUE(channel.IsGood());
}

TEST_F(ConnectedClientTest, CloseEndsTheConnectionForThePeerToo) {
  EXPECT_TRUE(channel.Send(NewMessage(4, std::string(100000, 'w'))));
  channel.Close();
  EXPECT_EQ(CountedMessage::living, 0);
  EXPECT_LT(server.Read(100008).size(), 100008u);
  EXPECT_TRUE(server.IsBroken());
  EXPECT_EQ(listener.errors, 0);
}

TEST_F(ConnectedClientTest, AListenerCanBeReplaced) {
  RecordingListener other;
  channel.set_listener(&other);
  ASSERT_TRUE(server.Write(FrameOf(4, "for the other")));
  EXPECT_TRUE(PumpUntil(channel, [&] { return !other.Messages().empty(); }));
  EXPECT_THAT(listener.Messages(), IsEmpty());
  channel.set_listener(&listener);
}

// A channel with nothing behind it, and a copy.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class BareChannel final : public Channel {
#pragma GCC diagnostic pop
 public:
  BareChannel() = default;
  BareChannel(const BareChannel&) = default;
};

TEST(Channel, WithNothingBehindItEveryOperationFailsQuietly) {
  BareChannel channel;
  EXPECT_FALSE(channel.IsGood());
  EXPECT_FALSE(channel.Connect());
  EXPECT_FALSE(channel.WakeUp());
  EXPECT_FALSE(channel.Send(NewMessage(1, "x")));
  EXPECT_EQ(CountedMessage::living, 0);
  channel.set_listener(nullptr);
  channel.WaitForIOCompletion(0);
  channel.Close();
  const BareChannel copy(channel);
  EXPECT_FALSE(copy.IsGood());
}

}  // namespace
}  // namespace qxb_ipc
