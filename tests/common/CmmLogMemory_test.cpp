#include "common/client/utility/src/CmmLogMemory.h"

#include <thread>
#include <vector>

#include "gtest/gtest.h"

namespace {

using logging::internal::LogMemory;

TEST(LogMemory, KeepsLinesInOrderUntilTheyAreTaken) {
  LogMemory memory;
  memory.Append("one\n");
  memory.Append("two\n");
  EXPECT_EQ(memory.Take(), "one\ntwo\n");
  EXPECT_EQ(memory.Take(), "");
}

TEST(LogMemory, The1025thLineIsDropped) {
  LogMemory memory;
  std::string expected;
  for (int i = 0; i < 1025; ++i) {
    const std::string line = std::to_string(i) + '\n';
    memory.Append(line);
    if (i < 1024) expected += line;
  }
  EXPECT_EQ(memory.Take(), expected);
}

TEST(LogMemory, LinesThatWereTakenStillCount) {
  LogMemory memory;
  for (int i = 0; i < 1023; ++i)
    memory.Append("x");
  EXPECT_EQ(memory.Take().size(), 1023u);
  memory.Append("a");
  memory.Append("b");
  EXPECT_EQ(memory.Take(), "a");
}

TEST(LogMemory, TakesLinesLongerThanItsStepOfGrowth) {
  LogMemory memory;
  const std::string line(100000, 'x');
  memory.Append(line);
  memory.Append(line);
  EXPECT_EQ(memory.Take(), line + line);
}

TEST(LogMemory, ThreadsLoseNoLine) {
  LogMemory memory;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&memory] {
      for (int i = 0; i < 256; ++i)
        memory.Append("line\n");
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(memory.Take().size(), 1024u * 5);
}

}  // namespace
