// What a build with invariant checks reports of the channel, and that any other build reports nothing.

#include "common/client/utility/src/CmmLogging.h"
#include "gmock/gmock.h"
#include "tests/ipc/ScriptedSystem.h"

namespace qxb_ipc {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::FrameOf;
using Access = ChannelTestAccess;
using Lines = std::vector<std::string>;

#ifdef VELM_INVARIANT_CHECKS
constexpr bool kHasChecks = true;
#else
constexpr bool kHasChecks = false;
#endif

class ChannelChecksTest : public ChannelStateTest {
 protected:
  ChannelChecksTest() {
    s_lines.clear();
    logging::SetLogMessageHandler([](int severity, const char*, int, size_t start, const std::string& text) {
      s_lines.push_back(std::to_string(severity) + " " + text.substr(start));
      return true;
    });
  }
  ~ChannelChecksTest() override {
    logging::SetLogMessageHandler(nullptr);
    logging::SetMinLogLevel(0);
  }

  // The lines so far, if this build has any.
  static void ExpectReported(const char* check) {
    EXPECT_EQ(s_lines, kHasChecks ? Lines{std::string("5 Check failed: ") + check + " \n"} : Lines{});
  }

  static inline Lines s_lines;
};

TEST_F(ChannelChecksTest, AnOrderlyLifeReportsNothing) {
  {
    const auto impl = ConnectedClient();
    impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a")));
    system.CompleteRead(FrameOf(4, "four"));
    system.CompleteWrite(9);
    Pump(*impl);
    system.BreakRead();
    Pump(*impl);
  }
  {
    Impl adopted(MODE_SERVER, &listener, CreateEventW(nullptr, TRUE, FALSE, nullptr), system.Api());
    adopted.Connect();
    system.CompleteRead(FrameOf(4, "four"));
    Pump(adopted);
  }
  EXPECT_THAT(s_lines, IsEmpty());
}

TEST_F(ChannelChecksTest, AListenerThatPumpsTheChannelIsReported) {
  class Pumping : public RecordingListener {
   public:
    void OnMessageReceived(Cmm::CmmMQ_Msg* msg, int type) override {
      RecordingListener::OnMessageReceived(msg, type);
      if (Impl* const pumped = std::exchange(impl, nullptr))
        pumped->OnIOCompleted(Access::InputContext(*pumped), 0, 0);
    }
    Impl* impl = nullptr;
  } pumping;
  const auto impl = ConnectedClient();
  impl->set_listener(&pumping);
  pumping.impl = impl.get();
  system.CompleteRead(FrameOf(4, "four"));
  impl->WaitForIOCompletion(0);
  ExpectReported("!processing_incoming_.");
}

TEST_F(ChannelChecksTest, AReadStepThatNobodyStartedIsReported) {
  Impl impl("name_1", MODE_CLIENT, &listener, 1, system.Api());
  system.reads.push_back({FALSE, ERROR_BROKEN_PIPE});
  impl.OnIOCompleted(Access::InputContext(impl), 1, 0);
  ExpectReported("!bytes_read && context == &input_state_.context.");
}

TEST_F(ChannelChecksTest, ACompletionOfNeitherSideIsReported) {
  const auto impl = ConnectedClient();
  IOContext foreign = {};
  impl->OnIOCompleted(&foreign, 1, 0);
  ExpectReported("context == &output_state_.context.");
}

TEST_F(ChannelChecksTest, AWriteBeforeThePeerIsThereIsReported) {
  const auto impl = Make(MODE_SERVER);
  impl->Connect();
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "early")));
  impl->OnIOCompleted(Access::OutputContext(*impl), 0, 0);
  ExpectReported("!waiting_connect_.");
}

TEST_F(ChannelChecksTest, ACancelThatFailsIsReported) {
  const auto impl = ConnectedClient();
  system.cancelFails = true;
  impl->Close();
  ExpectReported("ret.");
}

TEST_F(ChannelChecksTest, MessagesAreTracedWhenTheLogIsThatVerbose) {
  const auto impl = ConnectedClient();
  const auto address = [](const void* pointer) {
    std::ostringstream text;
    text << pointer;
    return text.str();
  };
  logging::SetMinLogLevel(-1);
  system.writes.push_back({TRUE, ERROR_SUCCESS, 9});
  std::unique_ptr<Cmm::CmmMQ_Msg> first(NewMessage(9, "a"));
  const std::string one = address(first.get());
  impl->Send(std::move(first));
  system.CompleteWrite(9);
  Pump(*impl);
  std::unique_ptr<Cmm::CmmMQ_Msg> second(NewMessage(9, "bb"));
  const std::string two = address(second.get());
  impl->Send(std::move(second));
  const std::string channel = address(impl.get());
  const Lines expected = {
      "-2 sending message @" + one + " on channel @" + channel + " with size 1 (0 in queue)\n",
      "-2 sent message @" + one + " on channel @" + channel + " with len 9\n",
      "-2 sending message @" + two + " on channel @" + channel + " with size 2 (0 in queue)\n",
      "-2 sent pending message @" + two + " on channel @" + channel + " with len 10\n",
  };
  EXPECT_EQ(s_lines, kHasChecks ? expected : Lines{});
}

TEST_F(ChannelChecksTest, MessagesAreNotTracedOtherwise) {
  const auto impl = ConnectedClient();
  impl->Send(std::unique_ptr<Cmm::CmmMQ_Msg>(NewMessage(9, "a")));
  EXPECT_THAT(s_lines, IsEmpty());
}

}  // namespace
}  // namespace qxb_ipc
