// velm_trace as a program, between two ends that the tests hold.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <system_error>

#include "tests/support/ChildProcess.h"
#include "tests/support/PipePeer.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/WaitUntil.h"

namespace velm_test {
namespace {

using testing::HasSubstr;

class TraceProgramTest : public testing::Test {
 protected:
  static ChildProcess StartTrace(const std::vector<std::string>& arguments) {
    return ChildProcess(ProgramBeside(L"velm_trace.exe"), arguments);
  }

  ChildProcess StartRelay(std::vector<std::string> more = {}) const {
    more.insert(more.end(), {"--json", "--serve", m_name, "--open", m_name + ".real"});
    return StartTrace(more);
  }

  // A client's end of a relay that runs, waiting for the host to come.
  PipePeer ServeReal() const { return PipePeer::Serve(m_name + ".real"); }

  static PipePeer OpenWhenServed(const std::string& name) {
    PipePeer peer = PipePeer::Open(name);
    EXPECT_TRUE(WaitUntil([&] {
      if (!peer.IsGood()) peer = PipePeer::Open(name);
      return peer.IsGood();
    }));
    return peer;
  }

  static std::string NextName() {
    static int count = 0;
    return "test.velm_trace_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count);
  }

  const std::string m_name = NextName();
};

TEST_F(TraceProgramTest, CarriesEveryByteBothWaysAndShowsEachFrame) {
  PipePeer client = ServeReal();
  auto trace = StartRelay({"--once"});
  PipePeer host = OpenWhenServed(m_name);
  ASSERT_TRUE(client.AwaitClient());
  EXPECT_TRUE(
      host.Write(FrameOf(40353, "<com.velm.app.log.clientexit version=\"10000\"/>\n") + FrameOf(7, "x")));
  EXPECT_EQ(client.ReadFrame(), (Frame{40353, "<com.velm.app.log.clientexit version=\"10000\"/>\n"}));
  EXPECT_EQ(client.ReadFrame(), (Frame{7, "x"}));
  EXPECT_TRUE(client.Write(FrameOf(-1, "")));
  EXPECT_EQ(host.ReadFrame(), (Frame{-1, ""}));

  EXPECT_THAT(trace.ReadLine().value_or(""), HasSubstr(R"({"event":"opened")"));
  const std::string goodbye = trace.ReadLine().value_or("");
  EXPECT_THAT(goodbye, HasSubstr(R"("from":"host","bytes":55,"type":40353)"));
  EXPECT_THAT(goodbye, HasSubstr(R"("class":"CQXMBMessage_LogService_ClientExit")"));
  EXPECT_THAT(trace.ReadLine().value_or(""), HasSubstr(R"("from":"host","bytes":9,"type":7,"class":null)"));
  EXPECT_THAT(trace.ReadLine().value_or(""), HasSubstr(R"("from":"client","bytes":8,"type":-1)"));

  host.Close();
  EXPECT_TRUE(client.IsBroken());
  EXPECT_THAT(trace.ReadLine().value_or(""), HasSubstr(R"({"event":"closed")"));
  EXPECT_EQ(trace.Wait(), 0U);
}

TEST_F(TraceProgramTest, FrameThatIsStillOnItsWayIsNotHeldBack) {
  PipePeer client = ServeReal();
  auto trace = StartRelay({"--once"});
  PipePeer host = OpenWhenServed(m_name);
  ASSERT_TRUE(client.AwaitClient());
  const std::string frame = FrameOf(7, "split");
  for (const char byte : frame) {
    EXPECT_TRUE(host.Write(std::string(1, byte)));
    EXPECT_EQ(client.Read(1), std::string(1, byte));
  }
  EXPECT_TRUE(trace.ReadLineWith(R"("bytes":13,"type":7)"));
}

TEST_F(TraceProgramTest, GarbageAndUnfinishedFramesAreCarriedAndShownAsSuch) {
  PipePeer client = ServeReal();
  auto trace = StartRelay();
  {
    PipePeer host = OpenWhenServed(m_name);
    ASSERT_TRUE(client.AwaitClient());
    const std::string garbage = FrameHeader(0x8000001, 1) + "garbage";
    EXPECT_TRUE(host.Write(garbage));
    EXPECT_EQ(client.Read(garbage.size()), garbage);
    const std::string cut = FrameHeader(100, 5) + "only this";
    EXPECT_TRUE(client.Write(cut));
    EXPECT_EQ(host.Read(cut.size()), cut);
    client.Close();
    EXPECT_TRUE(host.IsBroken());
  }
  EXPECT_TRUE(trace.ReadLineWith(R"({"event":"garbage")"));
  const auto partial = trace.ReadLineWith(R"({"event":"partial")");
  ASSERT_TRUE(partial);
  EXPECT_THAT(*partial,
              HasSubstr(R"("from":"client","bytes":17,"hex":"64000000050000006f6e6c792074686973"})"));
  EXPECT_THAT(trace.ReadLine().value_or(""), HasSubstr(R"({"event":"closed")"));
}

TEST_F(TraceProgramTest, ServesTheNextHostAfterOneThatDied) {
  PipePeer client = ServeReal();
  auto trace = StartRelay();
  for (int round = 0; round < 3; ++round) {
    PipePeer host = OpenWhenServed(m_name);
    ASSERT_TRUE(client.AwaitClient()) << round;
    EXPECT_TRUE(host.Write(FrameOf(round, "x")));
    EXPECT_EQ(client.ReadFrame(), (Frame{round, "x"}));
    host.Close();
    EXPECT_TRUE(client.IsBroken());
    client.Close();
    EXPECT_TRUE(WaitUntil([&] {
      client = ServeReal();
      return client.IsGood();
    }));
  }
}

TEST_F(TraceProgramTest, HostIsLetGoWhenTheClientIsNotThere) {
  auto trace = StartRelay({"--wait", "0"});
  PipePeer host = OpenWhenServed(m_name);
  EXPECT_TRUE(host.IsBroken());
  EXPECT_TRUE(WaitUntil([&] { return trace.Errors().find("cannot open the pipe") != std::string::npos; }));
}

TEST_F(TraceProgramTest, FloodArrivesWholeAndInOrder) {
  PipePeer client = ServeReal();
  auto trace = StartRelay({"--once"});
  PipePeer host = OpenWhenServed(m_name);
  ASSERT_TRUE(client.AwaitClient());
  constexpr int kFrames = 2000;
  std::string flood;
  for (int i = 0; i < kFrames; ++i)
    flood += FrameOf(i, std::string(static_cast<size_t>(i) % 300, 'f'));
  std::thread writer([&] { EXPECT_TRUE(host.Write(flood)); });
  EXPECT_EQ(client.Read(flood.size()), flood);
  writer.join();
  host.Close();
  int next = 0;
  for (const std::string& line : trace.ReadRest())
    if (line.find(R"("type":)" + std::to_string(next) + ",") != std::string::npos) ++next;
  EXPECT_EQ(next, kFrames);
}

TEST_F(TraceProgramTest, RecordingIsReplayedByteForByteAsEitherEnd) {
  const ScratchDirectory directory;
  const std::string file = directory.Narrow() + "\\recording";
  const std::string hello = FrameOf(1, "<hello/>");
  const std::string answer = FrameOf(2, "<answer/>") + FrameOf(3, "");
  const std::string odd = FrameHeader(0xFFFFFFFF, 0) + "odd";
  {
    PipePeer client = ServeReal();
    auto trace = StartRelay({"--once", "--record", file});
    PipePeer host = OpenWhenServed(m_name);
    ASSERT_TRUE(client.AwaitClient());
    EXPECT_TRUE(host.Write(hello));
    EXPECT_EQ(client.Read(hello.size()), hello);
    EXPECT_TRUE(client.Write(answer));
    EXPECT_EQ(host.Read(answer.size()), answer);
    EXPECT_TRUE(host.Write(odd));
    EXPECT_EQ(client.Read(odd.size()), odd);
    host.Close();
    EXPECT_EQ(trace.Wait(), 0U);
  }
  {
    auto trace = StartTrace({"--replay", file, "--serve", m_name + ".again"});
    PipePeer host = OpenWhenServed(m_name + ".again");
    EXPECT_TRUE(host.Write(hello));
    EXPECT_EQ(host.Read(answer.size()), answer);
    EXPECT_EQ(trace.Wait(), 0U) << trace.Errors();
    EXPECT_TRUE(trace.ReadLineWith("replayed: sent 2 of 2, received 1 where the recording has 1"));
  }
  {
    PipePeer client = PipePeer::Serve(m_name + ".host");
    auto trace = StartTrace({"--replay", file, "--open", m_name + ".host"});
    ASSERT_TRUE(client.AwaitClient());
    EXPECT_EQ(client.Read(hello.size()), hello);
    EXPECT_TRUE(client.Write(answer));
    EXPECT_EQ(client.Read(odd.size()), odd);
    EXPECT_EQ(trace.Wait(), 0U) << trace.Errors();
  }
}

TEST_F(TraceProgramTest, ReplayToAPeerThatDoesNotAnswerIs1) {
  const ScratchDirectory directory;
  const auto file = directory.MakeFile(L"recording",
                                       "{\"recording\":\"velm_trace\",\"version\":1}\n"
                                       "{\"event\":\"opened\",\"at\":0,\"from\":\"host\"}\n"
                                       "{\"event\":\"frame\",\"at\":0,\"from\":\"client\",\"hex\":"
                                       "\"0000000001000000\"}\n"
                                       "{\"event\":\"frame\",\"at\":0,\"from\":\"host\",\"hex\":"
                                       "\"0000000001000000\"}\n");
  PipePeer client = PipePeer::Serve(m_name);
  auto silent = StartTrace({"--replay", file.string(), "--open", m_name, "--wait", "0"});
  EXPECT_EQ(silent.Wait(), 1U);
  EXPECT_TRUE(silent.ReadLineWith("replayed: sent 0 of 1, received 0 where the recording has 1"));
}

TEST_F(TraceProgramTest, ExitCodesTellWhatWentWrong) {
  const ScratchDirectory directory;
  const std::string file = directory.MakeFile(L"no recording", "{}\n").string();
  const PipePeer taken = PipePeer::Serve(m_name);
  const struct {
    std::vector<std::string> arguments;
    uint32_t code;
    const char* message;
  } cases[] = {
      {{}, 2, "both --serve and --open are needed"},
      {{"--serve", m_name, "--open", "x"}, 1, "cannot serve the pipe"},
      {{"--replay", file, "--serve", "x"}, 1, "line 1: this is no recording of velm_trace"},
      {{"--replay", "C:\\nothing", "--serve", "x"}, 1, "cannot read the recording 'C:\\nothing'"},
      {{"--serve", "x", "--open", "y", "--record", "C:\\no\\such"}, 1, "cannot write the recording"},
  };
  for (const auto& test : cases) {
    auto trace = StartTrace(test.arguments);
    EXPECT_EQ(trace.Wait(), test.code) << test.message;
    EXPECT_THAT(trace.Errors(), HasSubstr(test.message));
  }
  auto help = StartTrace({"--help"});
  EXPECT_TRUE(help.ReadLineWith("Exit code"));
  EXPECT_EQ(help.Wait(), 0U);
}

}  // namespace
}  // namespace velm_test
