// How threads are started, and what becomes of a start that fails. The program is linked so that the
// library's calls of _beginthreadex come by here.

#include <process.h>

#include "common/client/utility/src/CmmThread.h"
#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"

using BeginThread = uintptr_t (*)(void*, unsigned, _beginthreadex_proc_type, void*, unsigned, unsigned*);

namespace {

struct Start {
  void* security;
  unsigned stackSize;
  unsigned flags;
};
Start lastStart;
bool refuse = false;

uintptr_t BeginOrRefuse(void* security, unsigned stackSize, _beginthreadex_proc_type proc, void* arg,
                        unsigned flags, unsigned* id);

}  // namespace

extern "C" {
extern const BeginThread __real___imp__beginthreadex;
extern const BeginThread __wrap___imp__beginthreadex;
const BeginThread __wrap___imp__beginthreadex = BeginOrRefuse;
}

namespace {

uintptr_t BeginOrRefuse(void* security, unsigned stackSize, _beginthreadex_proc_type proc, void* arg,
                        unsigned flags, unsigned* id) {
  lastStart = {security, stackSize, flags};
  return refuse ? 0 : __real___imp__beginthreadex(security, stackSize, proc, arg, flags, id);
}

using namespace cmm_thread_testing;

class ThreadStart : public testing::Test {
 protected:
  ThreadStart() { lastStart = {this, 1, 1}; }
  ~ThreadStart() override { refuse = false; }

  static void ExpectPlainStart() {
    EXPECT_EQ(lastStart.security, nullptr);
    EXPECT_EQ(lastStart.stackSize, 0u);
    EXPECT_EQ(lastStart.flags, 0u);
  }
};

class Unstarted : public Cmm::CRefThread {
 public:
  explicit Unstarted(bool& destroyed) : m_destroyed(destroyed) {}
  ~Unstarted() override { m_destroyed = true; }
  unsigned int ThreadProc() override { return 0; }

 private:
  bool& m_destroyed;
};

TEST_F(ThreadStart, IsWithDefaultSecurityAndStackAndNotSuspended) {
  Body body([] { return 0; });
  Cmm::CThread thread;
  thread.Create(&body);
  ExpectPlainStart();
  thread.Join();
}

TEST_F(ThreadStart, OfAReferenceCountedThreadIsThatOfAnyOther) {
  bool destroyed = false;
  auto* const thread = new Unstarted(destroyed);
  thread->Create();
  ExpectPlainStart();
  thread->Join();
  thread->Release();
}

TEST_F(ThreadStart, ThatFailsLeavesTheHandleZeroAndTheIdAsItWas) {
  Body body([] { return 0; });
  Cmm::CThread thread;
  refuse = true;
  thread.Create(&body);
  EXPECT_EQ(HandleIn(thread), nullptr);
  EXPECT_EQ(thread.IsValid(), 0);
  EXPECT_FALSE(thread.IsRunning());
  thread.Join();

  refuse = false;
  thread.Create(&body);
  const int id = thread.IsValid();
  const Cmm::UniqueHandle first = DuplicateOf(HandleIn(thread));
  refuse = true;
  thread.Create(&body);
  EXPECT_EQ(HandleIn(thread), nullptr);
  EXPECT_EQ(thread.IsValid(), id);
  ExitCodeOf(first);
}

TEST_F(ThreadStart, ThatFailsKeepsTheReferenceThatWasMeantForTheThread) {
  bool destroyed = false;
  auto* const thread = new Unstarted(destroyed);
  refuse = true;
  thread->Create();
  EXPECT_EQ(thread->Release(), 1);
  EXPECT_FALSE(destroyed);
  EXPECT_EQ(thread->Release(), 0);
  EXPECT_TRUE(destroyed);
}

}  // namespace
