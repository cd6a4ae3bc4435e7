// What becomes of the log when the library is unloaded.

#include "common/client/utility/src/CmmLogSettings.h"

#include "tests/common/LogTesting.h"
#include "tests/support/ChildProcess.h"

namespace {

using Init = bool (*)(const wchar_t*, int, int, int, int, unsigned long);
constexpr char kInitName[] =
    "_ZN7logging37BaseInitLoggingImpl_built_with_NDEBUGEPKwNS_18LoggingDestinationENS_15LogLockingStateE"
    "NS_20OldFileDeletionStateENS_16LogEncryptPolicyEm";

TEST(LogUnload, ClosesTheFile) {
  const velm_test::ScratchDirectory scratch;
  const std::filesystem::path file = scratch.Path() / "a.log";
  Cmm::UniqueModule library(LoadLibraryW(velm_test::ProgramBeside(L"velmsdk.dll").c_str()));
  ASSERT_TRUE(library);
  const auto init = reinterpret_cast<Init>(reinterpret_cast<void*>(GetProcAddress(library.get(), kInitName)));
  ASSERT_NE(init, nullptr);
  ASSERT_TRUE(init(file.c_str(), 1, 1, 1, 0, 0));
  EXPECT_FALSE(DeleteFileW(file.c_str()));  // it is open
  library.reset();
  EXPECT_EQ(GetModuleHandleW(L"velmsdk.dll"), nullptr);
  EXPECT_TRUE(DeleteFileW(file.c_str()));
}

TEST(LogSettings, StartAsStated) {
  const logging::internal::LogSettings settings;
  EXPECT_EQ(settings.min_log_level, 0);
  EXPECT_EQ(settings.destination, logging::LOG_TO_MEMORY);
  EXPECT_FALSE(settings.log_path || settings.log_dir || settings.log_base);
  EXPECT_EQ(settings.max_file_count, -1);
  EXPECT_EQ(settings.max_file_size, -1);
  EXPECT_EQ(settings.file_index, -1);
  EXPECT_EQ(settings.current_size, 0xFFFFFFFFu);
  EXPECT_FALSE(settings.log_handle);
  EXPECT_EQ(settings.encrypt_policy, 0);
  EXPECT_EQ(settings.suffix_policy, 0);
  EXPECT_EQ(settings.impersonate_pid, 0u);
  EXPECT_TRUE(settings.log_process_id && settings.log_thread_id && settings.log_timestamp);
  EXPECT_FALSE(settings.log_tickcount || settings.show_error_dialogs);
  EXPECT_FALSE(settings.use_log_service || settings.is_log_service_process);
  EXPECT_FALSE(settings.assert_handler || settings.report_handler || settings.message_handler);
}

TEST(LogSettings, StoreTheFlagsOfTheLogServiceAndTheAssertHandler) {
  const logging::internal::LogSettings& settings = logging::internal::Settings();
  const auto handler = [](const std::string&) {};
  logging::SetUseLogService(true);
  logging::SetIsLogServiceProcess(true);
  logging::SetLogAssertHandler(handler);
  EXPECT_TRUE(settings.use_log_service);
  EXPECT_TRUE(settings.is_log_service_process);
  EXPECT_NE(settings.assert_handler, nullptr);
  logging::SetUseLogService(false);
  logging::SetIsLogServiceProcess(false);
  logging::SetLogAssertHandler(nullptr);
  EXPECT_FALSE(settings.use_log_service || settings.is_log_service_process || settings.assert_handler);
}

}  // namespace
