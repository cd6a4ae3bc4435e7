#include "common/client/utility/src/ipc/CmmIPCChannelImpl.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/ipc/ScriptedSystem.h"

namespace qxb_ipc {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::FrameHeader;
using velm_test::FrameOf;
using Access = ChannelTestAccess;

// ---- Making the pipe

TEST_F(ChannelStateTest, AServerCreatesASingleByteModePipeOfItsLogonSession) {
  const auto impl = Make(MODE_SERVER);
  EXPECT_EQ(system.path, L"\\\\.\\pipe\\Velm.name_1");
  EXPECT_EQ(system.openMode, 0x40080003u);
  EXPECT_EQ(system.pipeMode, 0u);
  EXPECT_EQ(system.instances, 1u);
  EXPECT_EQ(system.outSize, 4096u);
  EXPECT_EQ(system.inSize, 4096u);
  EXPECT_EQ(system.timeoutMs, 5000u);
  ASSERT_TRUE(system.security);
  EXPECT_EQ(system.security->nLength, 24u);
  EXPECT_FALSE(system.security->bInheritHandle);
  EXPECT_NE(system.security->lpSecurityDescriptor, nullptr);
  EXPECT_TRUE(impl->IsGood());
  EXPECT_TRUE(Access::IsWaiting(*impl));
  EXPECT_EQ(Access::Queued(*impl), 0u);
}

TEST_F(ChannelStateTest, AServerWithoutSecurityLeavesThePipeToTheSystemsDefault) {
  const auto impl = Make(MODE_SERVER, 0);
  EXPECT_FALSE(system.security);
}

TEST_F(ChannelStateTest, AClientOpensThePipeAndQueuesItsAnnouncement) {
  const auto impl = Make(MODE_CLIENT);
  EXPECT_EQ(system.path, L"\\\\.\\pipe\\Velm.name_1");
  EXPECT_EQ(system.access, GENERIC_READ | GENERIC_WRITE);
  EXPECT_EQ(system.share, 0u);
  EXPECT_FALSE(system.security);
  EXPECT_EQ(system.disposition, static_cast<DWORD>(OPEN_EXISTING));
  EXPECT_EQ(system.flags, 0x40110000u);
  EXPECT_EQ(Access::Queued(*impl), 1u);
  EXPECT_THAT(system.calls, IsEmpty());
}

TEST_F(ChannelStateTest, EveryModeButServerIsAClient) {
  const auto impl = Make(static_cast<ChannelMode>(7));
  EXPECT_EQ(system.openMode, 0u);
  EXPECT_EQ(Access::Queued(*impl), 1u);
  EXPECT_FALSE(Access::IsWaiting(*impl));
}

TEST_F(ChannelStateTest, AnIdIsWidenedFromUtf8IntoThePath) {
  const Impl impl("n\xC3\xA9", MODE_CLIENT, &listener, 1, system.Api());
  EXPECT_EQ(system.path, L"\\\\.\\pipe\\Velm.n\u00e9");
}

TEST_F(ChannelStateTest, AClientWithoutAServerIsNotGoodAndAnnouncesNothing) {
  system.pipeFails = true;
  const auto impl = Make(MODE_CLIENT);
  EXPECT_FALSE(impl->IsGood());
  EXPECT_EQ(Access::Queued(*impl), 0u);
  EXPECT_FALSE(impl->Connect());
  EXPECT_THAT(system.calls, IsEmpty());
}

TEST_F(ChannelStateTest, AnAdoptedPipeIsReadAtOnceAndAnnouncesNothing) {
  Impl impl(MODE_SERVER, &listener, CreateEventW(nullptr, TRUE, FALSE, nullptr), system.Api());
  EXPECT_FALSE(Access::IsWaiting(impl));
  EXPECT_TRUE(impl.Connect());
  EXPECT_THAT(system.calls, ElementsAre("read 4096"));
  system.CompleteRead(FrameOf(7, "x"));
  Pump(impl);
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{7, "x"}));
}

// ---- Connecting

TEST_F(ChannelStateTest, AClientReadsBeforeItWritesItsAnnouncement) {
  const auto impl = Make(MODE_CLIENT);
  EXPECT_TRUE(impl->Connect());
  EXPECT_THAT(system.calls, ElementsAre("read 4096", "write " + std::to_string(OwnAnnouncement().size())));
  EXPECT_THAT(system.written, ElementsAre(OwnAnnouncement()));
}

TEST_F(ChannelStateTest, ConnectIsTrueAlthoughTheFirstReadFailsAtOnce) {
  system.reads.push_back({FALSE, ERROR_BROKEN_PIPE});
  const auto impl = Make(MODE_CLIENT);
  EXPECT_TRUE(impl->Connect());
  EXPECT_FALSE(impl->IsGood());
  EXPECT_EQ(listener.errors, 1);
}

TEST_F(ChannelStateTest, AWaitingServerOnlyQueues) {
  const auto impl = Make(MODE_SERVER);
  EXPECT_TRUE(impl->Connect());
  EXPECT_TRUE(impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "early"))));
  EXPECT_THAT(system.calls, ElementsAre("await"));
  EXPECT_TRUE(Access::IsWaiting(*impl));
  EXPECT_EQ(Access::Queued(*impl), 1u);
}

TEST_F(ChannelStateTest, APeerThatComesGetsWhatWasQueuedAndIsThenRead) {
  const auto impl = Make(MODE_SERVER);
  impl->Connect();
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "early")));
  system.calls.clear();
  system.awaitPeer.push_back({FALSE, ERROR_PIPE_CONNECTED});
  system.CompletePeer();
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(system.calls, ElementsAre("await", "write 13", "read 4096"));
  EXPECT_THAT(system.written, ElementsAre(FrameOf(9, "early")));
  EXPECT_FALSE(Access::IsWaiting(*impl));
  EXPECT_THAT(listener.Connected(), IsEmpty());
}

TEST_F(ChannelStateTest, AServerWhosePeerIsThereAlreadyReadsAndWritesInConnect) {
  const auto impl = Make(MODE_SERVER);
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "early")));
  system.awaitPeer.push_back({FALSE, ERROR_PIPE_CONNECTED});
  EXPECT_TRUE(impl->Connect());
  EXPECT_THAT(system.calls, ElementsAre("await", "read 4096", "write 13"));
}

TEST_F(ChannelStateTest, AServerWhosePipeFailsWhileItWaitsStaysSilent) {
  for (const Answer failure : {Answer{FALSE, ERROR_NO_DATA}, Answer{TRUE}, Answer{FALSE, ERROR_BAD_PIPE}}) {
    system.calls.clear();
    const auto impl = Make(MODE_SERVER);
    impl->Connect();
    system.awaitPeer.push_back(failure);
    system.CompletePeer();
    impl->WaitForIOCompletion(0);
    EXPECT_THAT(system.calls, ElementsAre("await", "await"));
    EXPECT_TRUE(impl->IsGood());
    EXPECT_TRUE(Access::IsWaiting(*impl));
    EXPECT_FALSE(Access::IsReading(*impl));
    EXPECT_EQ(listener.errors, 0);
  }
}

TEST_F(ChannelStateTest, AServerThatCannotWaitAtConnectTriesOnceMoreThere) {
  system.awaitPeer = {{FALSE, ERROR_BAD_PIPE}, {FALSE, ERROR_BAD_PIPE}};
  const auto impl = Make(MODE_SERVER);
  EXPECT_TRUE(impl->Connect());
  EXPECT_THAT(system.calls, ElementsAre("await", "await"));
  EXPECT_EQ(listener.errors, 0);
}

// ---- Reading

TEST_F(ChannelStateTest, FramesOfOneReadAreDeliveredInOrderBeforeTheNextRead) {
  const auto impl = ConnectedClient();
  system.CompleteRead(FrameOf(4, "four") + FrameOf(5, "five"));
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{4, "four"}, ReceivedMessage{5, "five"}));
  EXPECT_THAT(system.calls, ElementsAre("read 4096"));
}

TEST_F(ChannelStateTest, AFrameSplitAtAnyByteIsDeliveredOnce) {
  const std::string frame = FrameOf(40526, "some payload");
  for (size_t cut = 1; cut < frame.size(); ++cut) {
    RecordingListener own;
    const auto impl = ConnectedClient();
    impl->set_listener(&own);
    system.CompleteRead(frame.substr(0, cut));
    Pump(*impl);
    EXPECT_THAT(own.Messages(), IsEmpty());
    system.CompleteRead(frame.substr(cut));
    Pump(*impl);
    EXPECT_THAT(own.Messages(), ElementsAre(ReceivedMessage{40526, "some payload"})) << cut;
  }
}

TEST_F(ChannelStateTest, AFrameWithoutPayloadHasTypeMinusOneWhateverItsHeaderSays) {
  const auto impl = ConnectedClient();
  system.CompleteRead(FrameHeader(0, 40521) + FrameHeader(0, 1));
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{-1, ""}, ReceivedMessage{-1, ""}));
  EXPECT_THAT(listener.Connected(), IsEmpty());
}

TEST_F(ChannelStateTest, AnAnnouncementIsToldAndNotShown) {
  const auto impl = ConnectedClient();
  system.CompleteRead(AnnouncementOf(4711) + FrameOf(8, "next"));
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(listener.Connected(), ElementsAre(4711));
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{8, "next"}));
}

TEST_F(ChannelStateTest, AnAnnouncementThatDoesNotParseIsDroppedAndReadingGoesOn) {
  const auto impl = ConnectedClient();
  system.CompleteRead(FrameOf(1, "not xml") + FrameOf(1, "<com.Tessarn.ipc.internel.disconnect/>") +
                      FrameOf(8, "next"));
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(listener.Connected(), IsEmpty());
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{8, "next"}));
  EXPECT_TRUE(Access::IsReading(*impl));
}

TEST_F(ChannelStateTest, DisconnectAndConnectResponseAreOrdinaryMessages) {
  const auto impl = ConnectedClient();
  system.CompleteRead(FrameOf(2, "two") + FrameOf(3, "three"));
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(listener.Messages(), ElementsAre(ReceivedMessage{2, "two"}, ReceivedMessage{3, "three"}));
}

TEST_F(ChannelStateTest, AReadThatSucceedsAtOnceIsPendingAsWell) {
  const auto impl = ConnectedClient();
  system.reads.push_back({TRUE});
  system.CompleteRead(FrameOf(4, "four"));
  impl->WaitForIOCompletion(0);
  EXPECT_TRUE(Access::IsReading(*impl));
  EXPECT_EQ(listener.Messages().size(), 1u);
}

TEST_F(ChannelStateTest, AReadOfNothingMeansThatThePeerIsGone) {
  const auto impl = ConnectedClient();
  system.BreakRead();
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(listener.errors, 1);
  EXPECT_FALSE(impl->IsGood());
  EXPECT_FALSE(impl->Connect());
}

TEST_F(ChannelStateTest, AReadThatFailsAtOnceIsAChannelError) {
  const auto impl = ConnectedClient();
  system.reads.push_back({FALSE, ERROR_BROKEN_PIPE});
  system.CompleteRead(FrameOf(4, "four"));
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(listener.Messages().size(), 1u);
  EXPECT_EQ(listener.errors, 1);
  EXPECT_FALSE(impl->IsGood());
}

TEST_F(ChannelStateTest, AFrameOfAnImpossibleLengthIsAChannelError) {
  const auto impl = ConnectedClient();
  system.CompleteRead(FrameOf(4, "four") + FrameHeader(0xFFFFFFFF, 4));
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(listener.Messages().size(), 1u);
  EXPECT_EQ(listener.errors, 1);
}

TEST_F(ChannelStateTest, AnErrorIsToldOnceThoughTheWriteBreaksToo) {
  const auto impl = ConnectedClient();
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "in flight")));
  system.BreakRead();
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(listener.errors, 1);
  EXPECT_FALSE(Access::IsWriting(*impl));
  EXPECT_EQ(CountedMessage::living, 0);
  Pump(*impl);
  EXPECT_EQ(listener.errors, 1);
}

TEST_F(ChannelStateTest, WithoutAListenerMessagesAndErrorsAreDropped) {
  const auto impl = ConnectedClient();
  impl->set_listener(nullptr);
  system.CompleteRead(FrameOf(4, "four") + AnnouncementOf(1));
  impl->WaitForIOCompletion(0);
  system.BreakRead();
  impl->WaitForIOCompletion(0);
  EXPECT_FALSE(impl->IsGood());
}

// ---- Writing

TEST_F(ChannelStateTest, OneWriteIsOutAtATimeAndTheOthersFollowInOrder) {
  const auto impl = ConnectedClient();
  for (const char* text : {"a", "bb", "ccc"})
    EXPECT_TRUE(impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, text))));
  EXPECT_THAT(system.written, ElementsAre(FrameOf(9, "a")));
  system.CompleteWrite(9);
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(system.written, ElementsAre(FrameOf(9, "a"), FrameOf(9, "bb")));
  EXPECT_EQ(CountedMessage::living, 2);
  system.CompleteWrite(10);
  impl->WaitForIOCompletion(0);
  system.CompleteWrite(11);
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(system.written, ElementsAre(FrameOf(9, "a"), FrameOf(9, "bb"), FrameOf(9, "ccc")));
  EXPECT_EQ(CountedMessage::living, 0);
  EXPECT_FALSE(Access::IsWriting(*impl));
}

TEST_F(ChannelStateTest, AMessageWrittenAtOnceIsFreedOnlyWhenThePortSaysSo) {
  const auto impl = ConnectedClient();
  system.writes.push_back({TRUE, ERROR_SUCCESS, 9});
  EXPECT_TRUE(impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a"))));
  EXPECT_EQ(CountedMessage::living, 1);
  EXPECT_TRUE(Access::IsWriting(*impl));
  system.CompleteWrite(9);
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(CountedMessage::living, 0);
}

TEST_F(ChannelStateTest, APartThatIsWrittenAtOnceIsFollowedByTheRest) {
  const auto impl = ConnectedClient();
  const std::string frame = FrameOf(9, "0123456789");
  system.writes.push_back({TRUE, ERROR_SUCCESS, 5});
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "0123456789")));
  system.CompleteWrite(5);
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(system.written, ElementsAre(frame, frame.substr(5)));
}

TEST_F(ChannelStateTest, TheCountIsAssignedSoThatAPendingRestIsWrittenAgainFromItsLength) {
  const auto impl = ConnectedClient();
  const std::string frame = FrameOf(9, "0123456789");
  system.writes.push_back({TRUE, ERROR_SUCCESS, 5});
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "0123456789")));
  system.CompleteWrite(5);
  impl->WaitForIOCompletion(0);
  system.CompleteWrite(13);
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(system.written, ElementsAre(frame, frame.substr(5), frame.substr(13)));
}

TEST_F(ChannelStateTest, AWriteThatFailsAtOnceInSendIsToldByTheResultAlone) {
  const auto impl = ConnectedClient();
  system.writes.push_back({FALSE, ERROR_NO_DATA});
  EXPECT_FALSE(impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a"))));
  EXPECT_EQ(listener.errors, 0);
  EXPECT_TRUE(impl->IsGood());
  EXPECT_EQ(Access::Queued(*impl), 1u);
  EXPECT_FALSE(Access::IsWriting(*impl));
  system.written.clear();
  EXPECT_TRUE(impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "b"))));
  EXPECT_THAT(system.written, ElementsAre(FrameOf(9, "a")));  // the front of the queue is tried again
}

TEST_F(ChannelStateTest, AWriteThatFailsAtOnceInACompletionIsAChannelError) {
  const auto impl = ConnectedClient();
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a")));
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "b")));
  system.writes.push_back({FALSE, ERROR_NO_DATA});
  system.CompleteWrite(9);
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(listener.errors, 1);
  EXPECT_EQ(CountedMessage::living, 0);
}

TEST_F(ChannelStateTest, AWriteOfNothingMeansThatThePeerIsGone) {
  const auto impl = ConnectedClient();
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a")));
  system.CompleteWrite(0);
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(listener.errors, 1);
  EXPECT_FALSE(impl->IsGood());
}

TEST_F(ChannelStateTest, SendWithoutAPipeFailsAndKeepsTheMessageUntilTheEnd) {
  system.pipeFails = true;
  {
    const auto impl = Make(MODE_CLIENT);
    EXPECT_FALSE(impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a"))));
    EXPECT_EQ(CountedMessage::living, 1);
  }
  EXPECT_EQ(CountedMessage::living, 0);
}

// ---- Waiting and waking

TEST_F(ChannelStateTest, AWakeUpIsAPacketOfFourBytesWithTheMarkerInBothPlaces) {
  const auto impl = ConnectedClient();
  EXPECT_TRUE(impl->WakeUp());
  ASSERT_EQ(system.posted.size(), 1u);
  EXPECT_EQ(system.posted[0].bytes, 4u);
  EXPECT_EQ(system.posted[0].key, 0xBADFEED1u);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(system.posted[0].overlapped), 0xBADFEED1u);
  impl->WaitForIOCompletion(0);
  EXPECT_TRUE(Access::IsReading(*impl));
  EXPECT_FALSE(Access::IsWriting(*impl));
  EXPECT_THAT(system.calls, IsEmpty());
}

TEST_F(ChannelStateTest, AWaitDispatchesOneCompletionAtMost) {
  const auto impl = ConnectedClient();
  impl->WakeUp();
  system.CompleteRead(FrameOf(4, "four"));
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(listener.Messages(), IsEmpty());
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(listener.Messages().size(), 1u);
}

TEST_F(ChannelStateTest, MinusOneWaitsWithoutLimit) {
  const auto impl = ConnectedClient();
  impl->WaitForIOCompletion(-1);
  EXPECT_EQ(system.waitedMs, INFINITE);
  impl->WaitForIOCompletion(250);
  EXPECT_EQ(system.waitedMs, 250u);
}

TEST_F(ChannelStateTest, AClientWhoseWaitTimesOutPostsNothing) {
  const auto impl = Make(MODE_CLIENT);
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(system.posted, IsEmpty());
}

TEST_F(ChannelStateTest, AServerWhoseWaitTimesOutBeforeConnectPostsAPacketThatIsDropped) {
  const auto impl = Make(MODE_SERVER);
  impl->WaitForIOCompletion(0);
  ASSERT_EQ(system.posted.size(), 1u);
  EXPECT_EQ(system.posted[0].bytes, 0u);
  EXPECT_EQ(system.posted[0].key, reinterpret_cast<uintptr_t>(impl.get()));
  EXPECT_EQ(system.posted[0].overlapped, static_cast<void*>(impl.get()));
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(system.calls, IsEmpty());
  EXPECT_EQ(listener.errors, 0);
}

TEST_F(ChannelStateTest, AServerThatAwaitsItsPeerTimesOutQuietly) {
  const auto impl = Make(MODE_SERVER);
  impl->Connect();
  impl->WaitForIOCompletion(0);
  EXPECT_THAT(system.posted, IsEmpty());
}

TEST_F(ChannelStateTest, APacketWithoutAHandlerIsDropped) {
  const auto impl = ConnectedClient();
  IOContext nobodys = {};
  system.completions.push_back(
      {nullptr, 12, reinterpret_cast<ULONG_PTR>(impl.get()), &nobodys.overlapped, 0});
  system.completions.push_back({nullptr, 12, reinterpret_cast<ULONG_PTR>(impl.get()), nullptr, 0});
  Pump(*impl);
  EXPECT_THAT(system.calls, IsEmpty());
  EXPECT_TRUE(impl->IsGood());
}

TEST_F(ChannelStateTest, WithoutAPortNothingIsBegunAndTheErrorIsToldOnce) {
  system.portFails = true;
  const auto impl = Make(MODE_CLIENT);
  EXPECT_FALSE(impl->WakeUp());
  EXPECT_TRUE(impl->IsGood());
  EXPECT_TRUE(impl->Connect());
  EXPECT_THAT(system.calls, IsEmpty());
  EXPECT_EQ(listener.errors, 1);
  EXPECT_FALSE(impl->IsGood());
}

// ---- Operations that end at once

class CompletesAtOnceTest : public ChannelStateTest {
 protected:
  CompletesAtOnceTest() { system.keepsCompletedAtOnce = true; }
};

TEST_F(CompletesAtOnceTest, AWriteThatEndsAtOnceIsCompletedByTheNextWaitAndNotBefore) {
  const auto impl = ConnectedClient();
  system.writes.push_back({TRUE, ERROR_SUCCESS, 9});
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a")));
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "b")));
  EXPECT_EQ(CountedMessage::living, 2);
  EXPECT_THAT(system.written, ElementsAre(FrameOf(9, "a")));
  impl->WaitForIOCompletion(-1);
  EXPECT_EQ(CountedMessage::living, 1);
  EXPECT_THAT(system.written, ElementsAre(FrameOf(9, "a"), FrameOf(9, "b")));
}

TEST_F(CompletesAtOnceTest, AReadThatEndsAtOnceIsDispatchedByTheNextWait) {
  const auto impl = ConnectedClient();
  system.CompleteRead(FrameOf(4, "first"));
  system.reads.push_back({TRUE, ERROR_SUCCESS, static_cast<DWORD>(FrameOf(5, "second").size())});
  system.dataOfReads.push_back(FrameOf(5, "second"));
  impl->WaitForIOCompletion(0);
  EXPECT_EQ(listener.Messages().size(), 1u);
  impl->WaitForIOCompletion(-1);
  EXPECT_EQ(listener.Messages().back(), (ReceivedMessage{5, "second"}));
}

TEST_F(CompletesAtOnceTest, AReadIsDispatchedThoughEveryWriteEndsAtOnce) {
  const auto impl = ConnectedClient();
  constexpr int kMessages = 100;
  for (int i = 0; i < kMessages; ++i) {
    system.writes.push_back({TRUE, ERROR_SUCCESS, 9});
    impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "w")));
  }
  system.CompleteRead(FrameOf(4, "answer"));
  int waits = 0;
  while (listener.Messages().empty() && waits < kMessages) {
    impl->WaitForIOCompletion(-1);
    ++waits;
  }
  EXPECT_LT(waits, 20);
  while (CountedMessage::living > 0 && waits < 2 * kMessages) {
    impl->WaitForIOCompletion(-1);
    ++waits;
  }
  EXPECT_EQ(waits, kMessages + 1);
}

TEST_F(CompletesAtOnceTest, CloseTakesWhatEndedAtOnceToo) {
  const auto impl = ConnectedClient();
  system.writes.push_back({TRUE, ERROR_SUCCESS, 9});
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a")));
  impl->Close();
  EXPECT_FALSE(Access::IsWriting(*impl));
  EXPECT_EQ(CountedMessage::living, 0);
}

// ---- Closing

TEST_F(ChannelStateTest, CloseCancelsWhatIsPendingAndDropsTheQueueWithoutAWord) {
  const auto impl = ConnectedClient();
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "half written")));
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "queued")));
  system.calls.clear();
  impl->Close();
  EXPECT_THAT(system.calls, ElementsAre("cancel"));
  EXPECT_EQ(CountedMessage::living, 0);
  EXPECT_FALSE(Access::IsReading(*impl));
  EXPECT_FALSE(Access::IsWriting(*impl));
  EXPECT_FALSE(impl->IsGood());
  EXPECT_EQ(listener.errors, 0);
}

TEST_F(ChannelStateTest, CloseTwiceIsCloseOnce) {
  const auto impl = ConnectedClient();
  impl->Close();
  system.calls.clear();
  impl->Close();
  EXPECT_THAT(system.calls, IsEmpty());
}

TEST_F(ChannelStateTest, AServerThatWaitsClosesWithoutAWord) {
  const auto impl = Make(MODE_SERVER);
  impl->Connect();
  impl->Close();
  EXPECT_FALSE(Access::IsReading(*impl));
  EXPECT_EQ(listener.errors, 0);
}

TEST_F(ChannelStateTest, DestructionClosesAndFreesTheQueue) {
  {
    const auto impl = ConnectedClient();
    impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a")));
  }
  EXPECT_THAT(system.calls, ElementsAre("write 9", "cancel"));
  EXPECT_EQ(CountedMessage::living, 0);
}

}  // namespace
}  // namespace qxb_ipc
