// The guard of a tick beside a crash reporter, which the library "vCrashReport64.dll" of the tests plays.

#include <windows.h>

#include <stdexcept>

#include "common/client/utility/src/CmmFaultGuard.h"
#include "common/client/utility/src/CmmTimer.h"
#include "common/client/utility/src/UniqueHandle.h"
#include "gmock/gmock.h"
#include "tests/common/vCrashReport64.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/DebugOutput.h"

namespace {

using Cmm::internal::RunGuarded;
using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::DebugOutput;

constexpr DWORD kSoftException = 0xE0000001;
constexpr DWORD kCppException = 0x20474343;
const char kReport[] = "VELM:Exception happened in CTimerProc::_OnTimer.\n";

class Faulty final : public Cmm::CTimerProc {
 public:
  explicit Faulty(void (*fault)()) : m_fault(fault) {}
  void OnTimer(HWND, unsigned int, unsigned long long, unsigned long) override {
    m_fault();
    wentOn = true;
  }
  void Tick() { _OnTimer(nullptr, WM_TIMER, 1, 2); }

  bool wentOn = false;

 private:
  void (*m_fault)();
};

void AccessViolation() {
  *reinterpret_cast<volatile int*>(8) = 1;
}
void Raise() {
  RaiseException(kSoftException, 0, 0, nullptr);
}
void Throw() {
  throw std::runtime_error("text");
}

class CrashReporter : public testing::Test {
 protected:
  // Loads the reporter, or the library of its name that has no filter.
  void Load(const wchar_t* directory) {
    const auto path =
        velm_test::ProgramBeside(L"common_timer_tests_files") / directory / L"vCrashReport64.dll";
    m_library.reset(LoadLibraryW(path.c_str()));
    ASSERT_TRUE(m_library);
    m_state = reinterpret_cast<CrashReporterState*>(
        reinterpret_cast<void*>(GetProcAddress(m_library.get(), "crTestState")));
    if (m_state) *m_state = {};
  }

  Cmm::UniqueModule m_library;
  CrashReporterState* m_state = nullptr;
};

TEST_F(CrashReporter, SeesTheFaultFirstAndMayHaveItCaught) {
  Load(L"reporter");
  m_state->verdict = 1;
  const DebugOutput output;
  Faulty proc(AccessViolation);
  proc.Tick();
  EXPECT_EQ(m_state->calls, 1);
  EXPECT_EQ(m_state->code, static_cast<unsigned>(EXCEPTION_ACCESS_VIOLATION));
  EXPECT_EQ(m_state->recordCode, m_state->code);
  EXPECT_TRUE(m_state->hasContext);
  EXPECT_THAT(output.Texts(), ElementsAre(kReport));
}

TEST_F(CrashReporter, SeesCppExceptionsToo) {
  Load(L"reporter");
  m_state->verdict = 1;
  const DebugOutput output;
  Faulty proc(Throw);
  proc.Tick();
  EXPECT_EQ(m_state->calls, 1);
  EXPECT_EQ(m_state->code, kCppException);
  EXPECT_THAT(output.Texts(), ElementsAre(kReport));
}

TEST_F(CrashReporter, MayLetAFaultPassOn) {
  Load(L"reporter");
  m_state->verdict = 0;
  const DebugOutput output;
  Faulty proc(AccessViolation);
  const bool returned = RunGuarded([](void* argument) { static_cast<Faulty*>(argument)->Tick(); }, &proc,
                                   [](unsigned, EXCEPTION_POINTERS*) -> int { return 1; });
  EXPECT_FALSE(returned);
  EXPECT_EQ(m_state->calls, 1);
  EXPECT_THAT(output.Texts(), IsEmpty());
}

TEST_F(CrashReporter, MayLetACppExceptionPassOn) {
  Load(L"reporter");
  m_state->verdict = 0;
  const DebugOutput output;
  Faulty proc(Throw);
  EXPECT_THROW(proc.Tick(), std::runtime_error);
  EXPECT_EQ(m_state->calls, 1);
  EXPECT_THAT(output.Texts(), IsEmpty());
}

TEST_F(CrashReporter, MayHaveTheTickGoOn) {
  Load(L"reporter");
  m_state->verdict = -1;
  const DebugOutput output;
  Faulty proc(Raise);
  proc.Tick();
  EXPECT_TRUE(proc.wentOn);
  EXPECT_EQ(m_state->code, kSoftException);
  EXPECT_THAT(output.Texts(), IsEmpty());
}

TEST_F(CrashReporter, LibraryOfItsNameWithoutTheFilterIsPassedOver) {
  Load(L"plain");
  ASSERT_EQ(m_state, nullptr);
  const DebugOutput output;
  Faulty proc(AccessViolation);
  proc.Tick();
  EXPECT_THAT(output.Texts(), ElementsAre(kReport));
}

TEST_F(CrashReporter, IsNotLoadedForAFault) {
  const DebugOutput output;
  Faulty proc(AccessViolation);
  proc.Tick();
  EXPECT_EQ(GetModuleHandleW(L"vCrashReport64.dll"), nullptr);
  EXPECT_THAT(output.Texts(), ElementsAre(kReport));
}

TEST_F(CrashReporter, IsNotAskedWithoutAFault) {
  Load(L"reporter");
  const DebugOutput output;
  Faulty proc([] {});
  proc.Tick();
  EXPECT_TRUE(proc.wentOn);
  EXPECT_EQ(m_state->calls, 0);
  EXPECT_THAT(output.Texts(), IsEmpty());
}

}  // namespace
