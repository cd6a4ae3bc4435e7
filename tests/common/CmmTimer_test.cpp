#include "common/client/utility/src/CmmTimer.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "gmock/gmock.h"
#include "tests/support/DebugOutput.h"
#include "tests/support/WaitUntil.h"

namespace Cmm {

struct TimerTestAccess {
  static void AddTimerToList(unsigned long long id, CTimerProc* proc) { CTimerID::AddTimerToList(id, proc); }
};

}  // namespace Cmm

namespace {

using Cmm::CTimerID;
using Cmm::CTimerProc;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::DebugOutput;

constexpr unsigned int kPeriod = 10;
constexpr unsigned int kNever = 100000;

struct Tick {
  HWND window;
  unsigned int message;
  unsigned long long timer;
  unsigned long time;
  DWORD thread;
};

class Recorder final : public CTimerProc {
 public:
  void OnTimer(HWND window, unsigned int message, unsigned long long timer, unsigned long time) override {
    ticks.push_back({window, message, timer, time, GetCurrentThreadId()});
  }

  std::vector<Tick> ticks;
};

template <typename Function>
class Action final : public CTimerProc {
 public:
  explicit Action(Function function) : m_function(function) {}
  void OnTimer(HWND, unsigned int, unsigned long long, unsigned long) override {
    ++calls;
    m_function();
  }

  int calls = 0;

 private:
  Function m_function;
};

// Dispatches this thread's messages until the condition holds; false when it does not in time.
template <typename Condition>
bool PumpUntil(Condition condition) {
  return WaitUntil([&] {
    MSG message{};
    while (!condition() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
      DispatchMessageW(&message);
    return condition();
  });
}

// Dispatches for a time in which several ticks of a timer that runs would come.
void PumpOn() {
  const ULONGLONG end = GetTickCount64() + 20 * kPeriod;
  PumpUntil([end] { return GetTickCount64() >= end; });
}

// A WM_TIMER of this thread, taken from the queue and not dispatched.
std::optional<MSG> TakeTimerMessage() {
  MSG message{};
  if (!WaitUntil([&] { return PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE) != 0; }))
    return std::nullopt;
  return message;
}

TEST(CTimerID, IsIdleAtFirst) {
  const CTimerID timer;
  EXPECT_EQ(timer, 0u);
}

TEST(CTimerID, TicksArriveOnItsThreadWithTheSystemsArguments) {
  Recorder recorder;
  CTimerID timer;
  const unsigned long long id = timer.SetTimer(kPeriod, &recorder);
  ASSERT_NE(id, 0u);
  EXPECT_EQ(timer, id);
  const DWORD before = GetTickCount();
  ASSERT_TRUE(PumpUntil([&] { return recorder.ticks.size() >= 3; }));
  for (const Tick& tick : recorder.ticks) {
    EXPECT_EQ(tick.window, nullptr);
    EXPECT_EQ(tick.message, static_cast<unsigned int>(WM_TIMER));
    EXPECT_EQ(tick.timer, id);
    EXPECT_LT(tick.time - before, 20000u);
    EXPECT_EQ(tick.thread, GetCurrentThreadId());
  }
}

TEST(CTimerID, ThreadThatDispatchesNothingGetsNoTicks) {
  Recorder recorder;
  CTimerID timer;
  timer.SetTimer(kPeriod, &recorder);
  Sleep(5 * kPeriod);
  EXPECT_THAT(recorder.ticks, IsEmpty());
  EXPECT_TRUE(PumpUntil([&] { return !recorder.ticks.empty(); }));
}

TEST(CTimerID, KillTimerEndsTheTicks) {
  Recorder recorder;
  CTimerID timer;
  timer.SetTimer(kPeriod, &recorder);
  ASSERT_TRUE(PumpUntil([&] { return !recorder.ticks.empty(); }));
  timer.KillTimer();
  EXPECT_EQ(timer, 0u);
  recorder.ticks.clear();
  PumpOn();
  EXPECT_THAT(recorder.ticks, IsEmpty());
  timer.KillTimer();  // once more does nothing
}

TEST(CTimerID, SettingTwiceLeavesTheSecondTimerOnly) {
  Recorder first;
  Recorder second;
  CTimerID timer;
  timer.SetTimer(kPeriod, &first);
  const unsigned long long id = timer.SetTimer(kPeriod, &second);
  ASSERT_TRUE(PumpUntil([&] { return second.ticks.size() >= 3; }));
  EXPECT_THAT(first.ticks, IsEmpty());
  EXPECT_THAT(second.ticks, Each(testing::Field(&Tick::timer, id)));
}

TEST(CTimerID, TicksWithoutAProcedureDoNothing) {
  CTimerID timer;
  ASSERT_NE(timer.SetTimer(kPeriod, nullptr), 0u);
  const std::optional<MSG> message = TakeTimerMessage();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->wParam, timer);
  DispatchMessageW(&*message);
}

TEST(CTimerID, TwoTimersOfAThreadTickOnTheirOwn) {
  Recorder first;
  Recorder second;
  CTimerID firstTimer;
  CTimerID secondTimer;
  ASSERT_NE(firstTimer.SetTimer(kPeriod, &first), secondTimer.SetTimer(kPeriod, &second));
  EXPECT_TRUE(PumpUntil([&] { return first.ticks.size() >= 2 && second.ticks.size() >= 2; }));
  firstTimer.KillTimer();
  second.ticks.clear();
  EXPECT_TRUE(PumpUntil([&] { return second.ticks.size() >= 2; }));
}

TEST(CTimerID, DestructionStopsATimerWhoseTickIsQueued) {
  Recorder recorder;
  auto timer = std::make_unique<CTimerID>();
  timer->SetTimer(kPeriod, &recorder);
  const std::optional<MSG> message = TakeTimerMessage();
  ASSERT_TRUE(message);
  timer.reset();
  DispatchMessageW(&*message);
  PumpOn();
  EXPECT_THAT(recorder.ticks, IsEmpty());
}

TEST(CTimerID, DestructionMarksTheObject) {
  // timer_id_, owner_thread_, destroyed_
  struct Members {
    unsigned long long id;
    unsigned int thread;
    int destroyed;
  };
  static_assert(sizeof(CTimerID) == sizeof(Members));
  alignas(CTimerID) unsigned char storage[sizeof(CTimerID)];
  const auto members = [&storage] {
    Members copy{};
    std::memcpy(&copy, storage, sizeof copy);
    return copy;
  };
  auto* timer = new (storage) CTimerID;
  timer->SetTimer(kNever, nullptr);
  EXPECT_EQ(members().id, *timer);
  EXPECT_EQ(members().thread, GetCurrentThreadId());
  EXPECT_EQ(members().destroyed, 0);
  timer->~CTimerID();
  EXPECT_EQ(members().destroyed, 1);
}

// ---- Taking over ---------------------------------------------------------------------------------------

TEST(CTimerID, MovingTakesTheRunningTimerOver) {
  Recorder recorder;
  CTimerID source;
  const unsigned long long id = source.SetTimer(kPeriod, &recorder);
  CTimerID target(std::move(source));
  EXPECT_EQ(source, 0u);
  EXPECT_EQ(target, id);
  EXPECT_TRUE(PumpUntil([&] { return recorder.ticks.size() >= 2; }));
}

TEST(CTimerID, MoveAssignmentKillsTheTimerThatRan) {
  Recorder first;
  Recorder second;
  CTimerID target;
  target.SetTimer(kPeriod, &first);
  CTimerID source;
  const unsigned long long id = source.SetTimer(kPeriod, &second);
  target = std::move(source);
  EXPECT_EQ(source, 0u);
  EXPECT_EQ(target, id);
  EXPECT_TRUE(PumpUntil([&] { return second.ticks.size() >= 3; }));
  EXPECT_THAT(first.ticks, IsEmpty());
}

TEST(CTimerID, AssignmentToItselfChangesNothing) {
  Recorder recorder;
  CTimerID timer;
  const unsigned long long id = timer.SetTimer(kPeriod, &recorder);
  CTimerID& same = timer;
  timer = std::move(same);
  EXPECT_EQ(timer, id);
  EXPECT_TRUE(PumpUntil([&] { return !recorder.ticks.empty(); }));
}

TEST(CTimerID, RawIdIsOwnedForKilling) {
  const UINT_PTR raw = SetTimer(nullptr, 0, kNever, nullptr);
  ASSERT_NE(raw, 0u);
  {
    CTimerID timer;
    EXPECT_EQ(&(timer = static_cast<unsigned long long>(raw)), &timer);
    EXPECT_EQ(timer, raw);
  }
  EXPECT_FALSE(KillTimer(nullptr, raw));  // it is no more
}

TEST(CTimerID, RawIdKillsTheTimerThatRan) {
  Recorder recorder;
  CTimerID timer;
  timer.SetTimer(kPeriod, &recorder);
  timer = static_cast<unsigned long long>(SetTimer(nullptr, 0, kNever, nullptr));
  PumpOn();
  EXPECT_THAT(recorder.ticks, IsEmpty());
}

TEST(CTimerID, RawIdOfAListedTimerGoesOnTickingForItsProcedure) {
  Recorder recorder;
  CTimerID lister;
  const unsigned long long id = lister.SetTimer(kPeriod, &recorder);
  CTimerID owner;
  owner = id;
  ASSERT_TRUE(PumpUntil([&] { return recorder.ticks.size() >= 2; }));
  owner.KillTimer();
  recorder.ticks.clear();
  PumpOn();
  EXPECT_THAT(recorder.ticks, IsEmpty());
}

TEST(CTimerID, IdThatIsStillListedKeepsItsOldProcedure) {
  Recorder old;
  Recorder other;
  CTimerID timer;
  const unsigned long long id = timer.SetTimer(kPeriod, &old);
  Cmm::TimerTestAccess::AddTimerToList(id, &other);  // as when the system gives the id a second time
  EXPECT_TRUE(PumpUntil([&] { return !old.ticks.empty(); }));
  EXPECT_THAT(other.ticks, IsEmpty());
}

// ---- From inside a tick --------------------------------------------------------------------------------

TEST(CTimerID, TickMayKillItsOwnTimer) {
  CTimerID timer;
  Action proc([&] { timer.KillTimer(); });
  timer.SetTimer(kPeriod, &proc);
  ASSERT_TRUE(PumpUntil([&] { return proc.calls > 0; }));
  PumpOn();
  EXPECT_EQ(proc.calls, 1);
}

TEST(CTimerID, TickMayDestroyItsOwnTimer) {
  auto timer = std::make_unique<CTimerID>();
  Action proc([&] { timer.reset(); });
  timer->SetTimer(kPeriod, &proc);
  ASSERT_TRUE(PumpUntil([&] { return proc.calls > 0; }));
  PumpOn();
  EXPECT_EQ(proc.calls, 1);
}

TEST(CTimerID, TickThatDispatchesMessagesIsEnteredAgain) {
  CTimerID timer;
  int depth = 0;
  int deepest = 0;
  Action proc([&] {
    deepest = std::max(deepest, ++depth);
    PumpUntil([&] { return deepest > 1; });
    --depth;
  });
  timer.SetTimer(kPeriod, &proc);
  EXPECT_TRUE(PumpUntil([&] { return depth == 0 && deepest == 2; }));
}

// ---- Other threads -------------------------------------------------------------------------------------

TEST(CTimerID, TimerKilledFromAnotherThreadStaysInTheListOfItsOwn) {
  Recorder recorder;
  CTimerID timer;
  const unsigned long long id = timer.SetTimer(kPeriod, &recorder);
  std::thread([&] { timer.KillTimer(); }).join();
  EXPECT_EQ(timer, 0u);
  EXPECT_TRUE(PumpUntil([&] { return !recorder.ticks.empty(); }));
  timer = id;  // is killed at the end
}

TEST(CTimerID, CallbackOnAThreadThatNeverStartedATimerDoesNothing) {
  Recorder recorder;
  CTimerID timer;
  timer.SetTimer(kPeriod, &recorder);
  const std::optional<MSG> message = TakeTimerMessage();
  ASSERT_TRUE(message);
  std::thread([&] { DispatchMessageW(&*message); }).join();
  EXPECT_THAT(recorder.ticks, IsEmpty());
}

TEST(CTimerID, ThreadsHaveListsOfTheirOwn) {
  std::vector<std::thread> threads;
  std::atomic<int> ticked = 0;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      Recorder recorder;
      CTimerID timer;
      timer.SetTimer(kPeriod, &recorder);
      if (PumpUntil([&] { return recorder.ticks.size() >= 3; })) ++ticked;
      for (const Tick& tick : recorder.ticks)
        EXPECT_EQ(tick.thread, GetCurrentThreadId());
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(ticked, 4);
}

// ---- Faults --------------------------------------------------------------------------------------------

const char kReport[] = "VELM:Exception happened in CTimerProc::_OnTimer.\n";

template <typename Function>
void ExpectSwallowedAndTickedAgain(Function fault) {
  CTimerID timer;
  Action proc(fault);
  const DebugOutput output;
  timer.SetTimer(kPeriod, &proc);
  EXPECT_TRUE(PumpUntil([&] { return proc.calls >= 2; }));
  timer.KillTimer();
  EXPECT_EQ(output.Texts().size(), static_cast<size_t>(proc.calls));
  EXPECT_THAT(output.Texts(), Each(std::string(kReport)));
}

TEST(CTimerProc, HardwareFaultIsSwallowedAndTheTimerRunsOn) {
  ExpectSwallowedAndTickedAgain([] { *reinterpret_cast<volatile int*>(8) = 1; });
}

TEST(CTimerProc, DivisionByZeroIsSwallowed) {
  ExpectSwallowedAndTickedAgain([] {
    volatile int zero = 0;
    volatile int result = 100 / zero;
    (void)result;
  });
}

TEST(CTimerProc, SystemExceptionIsSwallowed) {
  ExpectSwallowedAndTickedAgain([] { RaiseException(0xE0000001, EXCEPTION_NONCONTINUABLE, 0, nullptr); });
}

TEST(CTimerProc, CppExceptionIsSwallowedAndDestructorsRun) {
  static int alive = 0;
  struct Counted {
    Counted() { ++alive; }
    ~Counted() { --alive; }
  };
  ExpectSwallowedAndTickedAgain([] {
    const Counted counted;
    throw std::runtime_error("text");
  });
  EXPECT_EQ(alive, 0);
}

TEST(CTimerProc, IsCopiedAndMovedLikeAnyOther) {
  static_assert(!std::has_virtual_destructor_v<CTimerProc> && sizeof(CTimerProc) == sizeof(void*));
  Recorder recorder;
  recorder.ticks.push_back({});
  Recorder copy(recorder);
  Recorder moved(std::move(recorder));
  copy = moved;
  moved = std::move(copy);
  EXPECT_EQ(moved.ticks.size(), 1u);
}

}  // namespace
