#include "common/client/utility/src/CmmFaultGuard.h"

#include <windows.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "gtest/gtest.h"

namespace {

using Cmm::internal::RunGuarded;

int Catch(unsigned int, EXCEPTION_POINTERS*) {
  return Cmm::internal::FAULT_CATCH;
}

template <typename Function>
bool Guarded(Function function) {
  return RunGuarded([](void* argument) { (*static_cast<Function*>(argument))(); }, &function, Catch);
}

void Fault() {
  *reinterpret_cast<volatile int*>(8) = 1;
}

TEST(RunGuarded, TellsWhetherTheBodyReturned) {
  EXPECT_TRUE(Guarded([] {}));
  EXPECT_FALSE(Guarded(Fault));
}

TEST(RunGuarded, FilterSeesTheCodeAndTheRecord) {
  static unsigned int code;
  static DWORD recordCode;
  EXPECT_FALSE(RunGuarded([](void*) { Fault(); }, nullptr,
                          [](unsigned int c, EXCEPTION_POINTERS* e) {
                            code = c;
                            recordCode = e->ExceptionRecord->ExceptionCode;
                            return 1;
                          }));
  EXPECT_EQ(code, static_cast<unsigned>(EXCEPTION_ACCESS_VIOLATION));
  EXPECT_EQ(recordCode, code);
}

TEST(RunGuarded, LeavesTheCallersStateAsItWas) {
  // Values that live in the registers which a call must keep.
  volatile int seed = 7;
  const int a = seed + 1, b = seed + 2, c = seed + 3, d = seed + 4, e = seed + 5;
  const double x = seed * 0.5, y = seed * 0.25;
  EXPECT_FALSE(Guarded(Fault));
  EXPECT_EQ(a + b + c + d + e, 50);
  EXPECT_EQ(x + y, 5.25);
}

TEST(RunGuarded, InnerGuardTakesTheFaultFirst) {
  bool innerReturned = true;
  EXPECT_TRUE(Guarded([&] { innerReturned = Guarded(Fault); }));
  EXPECT_FALSE(innerReturned);
}

TEST(RunGuarded, DestructorsRunForCppExceptions) {
  static int alive = 0;
  struct Counted {
    Counted() { ++alive; }
    ~Counted() { --alive; }
  };
  EXPECT_FALSE(Guarded([] {
    const Counted counted;
    throw 1;
  }));
  EXPECT_EQ(alive, 0);
}

TEST(RunGuarded, ExceptionCaughtWithinTheBodyIsNoneOfItsBusiness) {
  EXPECT_TRUE(Guarded([] {
    try {
      throw std::runtime_error("text");
    } catch (const std::exception&) {
    }
  }));
}

TEST(RunGuarded, HoldsThousandsOfFaultsOnSeveralThreads) {
  std::vector<std::thread> threads;
  std::atomic<int> caught = 0;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 1000; ++i) {
        caught += !Guarded(Fault);
        caught += !Guarded([] { throw 1; });
      }
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(caught, 8000);
}

}  // namespace
