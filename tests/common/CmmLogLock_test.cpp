#include "common/client/utility/src/CmmLogLock.h"

#include <atomic>
#include <optional>
#include <string>
#include <thread>

#include "common/client/utility/src/CmmLogPath.h"
#include "gtest/gtest.h"
#include "tests/support/WaitUntil.h"

namespace {

using logging::LOCK_BY_CRITICAL_SECTION;
using logging::LOCK_BY_NAMED_MUTEX;
using logging::internal::LogLock;

std::wstring UniquePath() {
  static int count = 0;
  return L"C:\\lock_test\\" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++count);
}

Cmm::UniqueHandle OpenMutexOf(const std::wstring& path) {
  return Cmm::UniqueHandle(OpenMutexW(SYNCHRONIZE, FALSE, logging::internal::LogMutexName(path).c_str()));
}

// Another thread that takes the lock. It must be able to before this ends.
class Contender {
 public:
  explicit Contender(LogLock& lock)
      : m_thread([this, &lock] {
          const LogLock::Scope scope(lock);
          m_got = true;
        }) {}
  ~Contender() { m_thread.join(); }

  bool GetsIt() {
    return WaitUntil([this] { return m_got.load(); });
  }
  bool IsShutOut() {
    Sleep(50);  // long enough to see one that is not
    return !m_got;
  }

 private:
  std::atomic<bool> m_got = false;
  std::thread m_thread;
};

TEST(LogLock, MutexFormMakesTheMutexOfThePath) {
  const std::wstring path = UniquePath();
  LogLock lock;
  EXPECT_FALSE(OpenMutexOf(path));
  lock.Init(LOCK_BY_NAMED_MUTEX, path.c_str());
  EXPECT_TRUE(OpenMutexOf(path));
}

TEST(LogLock, CriticalSectionFormMakesNoMutex) {
  const std::wstring path = UniquePath();
  LogLock lock;
  lock.Init(LOCK_BY_CRITICAL_SECTION, path.c_str());
  EXPECT_FALSE(OpenMutexOf(path));
  EXPECT_EQ(lock.Mode(), LOCK_BY_CRITICAL_SECTION);
}

TEST(LogLock, AnyOtherModeThan0IsACriticalSection) {
  const std::wstring path = UniquePath();
  LogLock lock;
  lock.Init(static_cast<logging::LogLockingState>(7), path.c_str());
  EXPECT_FALSE(OpenMutexOf(path));
}

TEST(LogLock, FirstInitialisationDecides) {
  const std::wstring first = UniquePath();
  const std::wstring second = UniquePath();
  LogLock lock;
  lock.Init(LOCK_BY_NAMED_MUTEX, first.c_str());
  lock.Init(LOCK_BY_NAMED_MUTEX, second.c_str());
  lock.Init(LOCK_BY_CRITICAL_SECTION, second.c_str());
  EXPECT_FALSE(OpenMutexOf(second));
  EXPECT_EQ(lock.Mode(), LOCK_BY_NAMED_MUTEX);
}

TEST(LogLock, BothFormsAreRecursiveForTheirOwnerAndShutOthersOut) {
  for (const auto mode : {LOCK_BY_NAMED_MUTEX, LOCK_BY_CRITICAL_SECTION}) {
    LogLock lock;
    lock.Init(mode, UniquePath().c_str());
    std::optional<Contender> contender;
    {
      const LogLock::Scope outer(lock);
      { const LogLock::Scope inner(lock); }
      contender.emplace(lock);
      EXPECT_TRUE(contender->IsShutOut()) << mode;
    }
    EXPECT_TRUE(contender->GetsIt()) << mode;
  }
}

TEST(LogLock, MutexThatItsOwnerAbandonedIsTaken) {
  const std::wstring path = UniquePath();
  LogLock lock;
  lock.Init(LOCK_BY_NAMED_MUTEX, path.c_str());
  const Cmm::UniqueHandle mutex = OpenMutexOf(path);
  std::thread([&] { WaitForSingleObject(mutex.get(), INFINITE); }).join();
  std::optional<Contender> contender;
  {
    const LogLock::Scope scope(lock);
    contender.emplace(lock);
    EXPECT_TRUE(contender->IsShutOut());
  }
  EXPECT_TRUE(contender->GetsIt());
}

TEST(LogLock, TriesAgainWhenTheMutexCannotBeMade) {
  const std::wstring path = UniquePath();
  // An object of another kind has the name.
  Cmm::UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, logging::internal::LogMutexName(path).c_str()));
  ASSERT_TRUE(event);

  LogLock lock;
  lock.Init(LOCK_BY_NAMED_MUTEX, path.c_str());
  {
    const LogLock::Scope scope(lock);  // holds nothing
    EXPECT_TRUE(Contender(lock).GetsIt());
    event.reset();
    lock.Init(LOCK_BY_NAMED_MUTEX, path.c_str());
    EXPECT_TRUE(Contender(lock).GetsIt());
  }
  EXPECT_TRUE(OpenMutexOf(path));
  EXPECT_TRUE(Contender(lock).GetsIt());
}

}  // namespace
