#include "common/client/utility/src/CmmLogPath.h"

#include "gtest/gtest.h"
#include "tests/support/ChildProcess.h"

namespace logging::internal {
namespace {

TEST(LogPath, DirectoryIsWhatPrecedesTheLastBackslash) {
  EXPECT_EQ(DirectoryOf(L"C:\\velm\\bin\\host.exe"), L"C:\\velm\\bin\\");
  EXPECT_EQ(DirectoryOf(L"C:\\host.exe"), L"C:\\");
  EXPECT_EQ(DirectoryOf(L"host.exe"), L"");
  EXPECT_EQ(DirectoryOf(L"C:/velm/host.exe"), L"");
}

TEST(LogPath, DefaultLogStandsBesideTheProgram) {
  EXPECT_EQ(DefaultLogPath(), velm_test::ProgramBeside(L"debug.log").wstring());
}

TEST(LogPath, MutexIsNamedByThePathWithSlashesForBackslashes) {
  EXPECT_EQ(LogMutexName(L"C:\\logs\\client_0.log"), L"Global\\C:/logs/client_0.log");
  EXPECT_EQ(LogMutexName(L"relative.log"), L"Global\\relative.log");
  EXPECT_EQ(LogMutexName(L"C:/logs\\a"), L"Global\\C:/logs/a");
  EXPECT_EQ(LogMutexName(L""), L"Global\\");
}

}  // namespace
}  // namespace logging::internal
