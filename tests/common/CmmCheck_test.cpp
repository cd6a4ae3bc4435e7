#include "common/client/utility/src/CmmCheck.h"

#include <windows.h>

#include "common/client/utility/src/CmmLogging.h"
#include "gtest/gtest.h"

namespace {

using Cmm::internal::ReportFailedCheck;

std::string Reported(const char* file) {
  testing::internal::CaptureStderr();
  ReportFailedCheck(file, 77, "Check failed: a. ");
  return testing::internal::GetCapturedStderr();
}

TEST(ReportFailedCheck, IsOneLogMessageOfSeverityFatal) {
  static int severity;
  static std::string text;
  logging::SetLogMessageHandler([](int s, const char* file, int line, size_t start, const std::string& str) {
    severity = s;
    text = std::string(file) + ' ' + std::to_string(line) + ' ' + str.substr(start);
    return true;
  });
  EXPECT_EQ(Reported("C:\\src\\Unit.cpp"), "");
  logging::SetLogMessageHandler(nullptr);
  EXPECT_EQ(severity, 5);
  EXPECT_EQ(text, "C:\\src\\Unit.cpp 77 Check failed: a. \n");
}

TEST(ReportFailedCheck, WritesALineWithTheNameOfTheFileAndGoesOn) {
  for (const char* file : {"C:\\src\\Unit.cpp", "/src/Unit.cpp"}) {
    const std::string written = Reported(file);
    EXPECT_NE(written.find("FATAL:Unit.cpp(77)] Check failed: a. \n"), std::string::npos) << written;
  }
}

TEST(ReportFailedCheck, LeavesTheLastErrorAlone) {
  testing::internal::CaptureStderr();
  SetLastError(4711);
  ReportFailedCheck("Unit.cpp", 1, "");
  EXPECT_EQ(GetLastError(), 4711u);
  testing::internal::GetCapturedStderr();
}

TEST(CmmCheck, IsSilentWhenTheConditionHolds) {
  testing::internal::CaptureStderr();
  const int one = 1;
  CMM_CHECK(one == 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(CmmCheck, EvaluatesAndReportsAFailureInAnInvariantBuildOnly) {
  testing::internal::CaptureStderr();
  [[maybe_unused]] int evaluations = 0;
  CMM_CHECK(++evaluations == 7);
  const std::string written = testing::internal::GetCapturedStderr();
#ifdef VELM_INVARIANT_CHECKS
  EXPECT_EQ(evaluations, 1);
  EXPECT_NE(written.find("CmmCheck_test.cpp("), std::string::npos);
  EXPECT_NE(written.find("Check failed: ++evaluations == 7. "), std::string::npos);
#else
  EXPECT_EQ(evaluations, 0);
  EXPECT_EQ(written, "");
#endif
}

}  // namespace
