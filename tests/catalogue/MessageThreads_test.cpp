#include <atomic>
#include <chrono>
#include <thread>

#include "archive/catalogue/catalogue.h"
#include "tests/catalogue/GoldenMessages.h"
#include "tests/catalogue/MessageTesting.h"

namespace {

using namespace catalogue_testing;
using namespace Cmm::Archive;
using namespace std::chrono_literals;

// The two classes of one wire name: a race decides which of them works.
bool SharesItsWireName(const MessageClass& messageClass) {
  return FindMessagesByWireName(messageClass.wireName).size() > 1;
}

// Builds and reads every message once. Returns how many did not come through.
int RoundTripAll() {
  int failures = 0;
  for (const GoldenMessage& golden : GoldenMessages()) {
    const MessageClass& messageClass = *FindMessageClass(golden.className);
    if (SharesItsWireName(messageClass)) continue;
    CatalogueMessage sent(messageClass);
    Fill(sent, golden);
    const MessagePtr built(sent.Object().BuildMsg(-1));
    CatalogueMessage received(messageClass);
    failures += TextOf(built.get()) != golden.filled || received.Object().ParseMsg(built.get()) != 1 ||
                Build(received.Object()) != golden.filled;
  }
  return failures;
}

TEST(MessageThreads, TwoBuildAndReadAllMessagesAtTheSameTime) {
  ASSERT_EQ(RoundTripAll(), 0);  // registers every class
  std::atomic<int> failures{0};
  std::atomic<int> rounds{0};
  const auto run = [&, end = std::chrono::steady_clock::now() + 3s] {
    do {
      failures += RoundTripAll();
      ++rounds;
    } while (std::chrono::steady_clock::now() < end);
  };
  {
    const std::jthread first(run);
    const std::jthread second(run);
  }
  EXPECT_EQ(failures, 0);
  EXPECT_GE(rounds, 2);
  EXPECT_EQ(CCmmArchiveServiceImp::GetImp()->GetDuplicatedPackages().size(), 0u) << "instances are left";
}

// A class may then be defined twice, or be built by one thread before the other has defined it: once both
// are through, each has a definition and works.
TEST(MessageThreads, TwoThatRaceForTheFirstConstructionOfEveryClassLeaveAllOfThemWorking) {
  InFreshProcess([] {
    std::atomic<int> ready{0};
    const auto constructAll = [&] {
      ++ready;
      while (ready < 2)
        std::this_thread::yield();
      for (const MessageClass& messageClass : MessageClasses())
        messageClass.make();
    };
    {
      const std::jthread first(constructAll);
      const std::jthread second(constructAll);
    }
    for (const MessageClass& messageClass : MessageClasses()) {
      if (SharesItsWireName(messageClass)) continue;
      EXPECT_GE(DefineCount(messageClass.wireName), 1u) << messageClass.className;
      EXPECT_LE(DefineCount(messageClass.wireName), 2u) << messageClass.className;
    }
    EXPECT_EQ(RoundTripAll(), 0);
  });
}

}  // namespace
