#include "tools/host_console/Session.h"

#include <gtest/gtest.h>

namespace velm_host {
namespace {

TEST(SessionTest, ExitCodesLeaveRoomForUsageErrors) {
  EXPECT_EQ(ToExitCode(Result::kCode, 0), 0);
  EXPECT_EQ(ToExitCode(Result::kCode, 2), 12);
  EXPECT_EQ(ToExitCode(Result::kCode, 7), 17);
  EXPECT_EQ(ToExitCode(Result::kCode, 999), 19);
  EXPECT_EQ(ToExitCode(Result::kFlag, 1), 0);
  EXPECT_EQ(ToExitCode(Result::kFlag, 0), 1);
  EXPECT_EQ(ToExitCode(Result::kMask, 0x3ff), 0);
}

}  // namespace
}  // namespace velm_host
