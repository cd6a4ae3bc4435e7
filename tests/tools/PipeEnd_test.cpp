#include "tools/common/PipeEnd.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <future>
#include <system_error>

#include "tests/support/WaitUntil.h"

namespace velm_tools {
namespace {

using namespace std::chrono_literals;

std::string NewName() {
  static int count = 0;
  return "test.pipe_end_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count);
}

int CodeOf(const std::function<void()>& function) {
  try {
    function();
  } catch (const std::system_error& error) {
    return error.code().value();
  }
  return 0;
}

struct Pair {
  const std::string name = NewName();
  std::unique_ptr<PipeEnd> server = PipeEnd::Serve(name);
  std::unique_ptr<PipeEnd> client = PipeEnd::Open(name);
};

std::string ReadExactly(PipeEnd& pipe, size_t size) {
  std::string all;
  while (all.size() < size) {
    const auto bytes = pipe.Read();
    if (!bytes) break;
    all += *bytes;
  }
  return all;
}

TEST(PipeEndTest, BytesGoBothWays) {
  Pair pair;
  EXPECT_TRUE(pair.server->AwaitPeer());
  EXPECT_TRUE(pair.server->Write("to client", 10s));
  EXPECT_TRUE(pair.client->Write("to server", 10s));
  EXPECT_EQ(pair.client->Read(), "to client");
  EXPECT_EQ(pair.server->Read(), "to server");
  EXPECT_TRUE(pair.client->Write("", 10s));
}

TEST(PipeEndTest, PeerThatComesLaterIsWaitedFor) {
  const std::string name = NewName();
  const auto server = PipeEnd::Serve(name);
  auto peer = std::async(std::launch::async, [&] { return server->AwaitPeer(); });
  const auto client = PipeEnd::Open(name);
  EXPECT_TRUE(peer.get());
}

TEST(PipeEndTest, AMegabyteArrivesWhole) {
  Pair pair;
  const std::string megabyte(1 << 20, 'm');
  auto written = std::async(std::launch::async, [&] { return pair.client->Write(megabyte, 10s); });
  EXPECT_EQ(ReadExactly(*pair.server, megabyte.size()), megabyte);
  EXPECT_TRUE(written.get());
}

TEST(PipeEndTest, OneThreadReadsWhileAnotherWrites) {
  Pair pair;
  auto read = std::async(std::launch::async, [&] { return pair.server->Read(); });
  EXPECT_TRUE(pair.server->Write("x", 10s));
  EXPECT_EQ(pair.client->Read(), "x");
  EXPECT_TRUE(pair.client->Write("y", 10s));
  EXPECT_EQ(read.get(), "y");
}

TEST(PipeEndTest, WhatWasWrittenBeforeThePeerLeftIsReadFirst) {
  Pair pair;
  EXPECT_TRUE(pair.client->Write("last words", 10s));
  pair.client.reset();
  EXPECT_EQ(pair.server->Read(), "last words");
  EXPECT_FALSE(pair.server->Read());
  EXPECT_FALSE(pair.server->IsStopped());
  EXPECT_FALSE(pair.server->Write("x", 10s));
}

TEST(PipeEndTest, PeerThatDoesNotReadEndsAWriteByItsTime) {
  Pair pair;
  EXPECT_FALSE(pair.client->Write(std::string(1 << 20, 'm'), 50ms));
}

TEST(PipeEndTest, StopEndsEveryWait) {
  Pair pair;
  auto read = std::async(std::launch::async, [&] { return pair.server->Read(); });
  auto write = std::async(std::launch::async, [&] {
    return pair.server->Write(std::string(1 << 20, 'm'), std::chrono::hours(1));
  });
  pair.server->Stop();
  EXPECT_FALSE(read.get());
  EXPECT_FALSE(write.get());
  EXPECT_TRUE(pair.server->IsStopped());
  EXPECT_FALSE(pair.server->Read());

  const auto alone = PipeEnd::Serve(NewName());
  auto peer = std::async(std::launch::async, [&] { return alone->AwaitPeer(); });
  alone->Stop();
  EXPECT_FALSE(peer.get());
}

TEST(PipeEndTest, NameWithoutAServerIsNotFound) {
  EXPECT_EQ(CodeOf([] { PipeEnd::Open(NewName()); }), ERROR_FILE_NOT_FOUND);
}

TEST(PipeEndTest, PipeHasOneServerAndOnePeer) {
  Pair pair;
  EXPECT_NE(CodeOf([&] { PipeEnd::Serve(pair.name); }), 0);
  EXPECT_EQ(CodeOf([&] { PipeEnd::Open(pair.name); }), ERROR_PIPE_BUSY);
}

TEST(PipeEndTest, NameIsFreeAgainWhenBothEndsAreGone) {
  const std::string name = NewName();
  for (int i = 0; i < 3; ++i) {
    std::unique_ptr<PipeEnd> server;
    EXPECT_TRUE(WaitUntil([&] { return CodeOf([&] { server = PipeEnd::Serve(name); }) == 0; }));
    PipeEnd::Open(name);
    EXPECT_FALSE(server->Read());
  }
}

}  // namespace
}  // namespace velm_tools
