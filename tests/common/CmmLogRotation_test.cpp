#include "common/client/utility/src/CmmLogRotation.h"

#include <limits>

#include "gtest/gtest.h"

namespace logging::internal {
namespace {

constexpr int kMaxInt = std::numeric_limits<int>::max();

TEST(LogRotation, CountBelow1Becomes2) {
  EXPECT_EQ(EffectiveFileCount(0), 2);
  EXPECT_EQ(EffectiveFileCount(-5), 2);
  EXPECT_EQ(EffectiveFileCount(1), 1);
  EXPECT_EQ(EffectiveFileCount(7), 7);
}

TEST(LogRotation, SizeIsAtLeast256KiB) {
  EXPECT_EQ(EffectiveFileSize(1000), 262144);
  EXPECT_EQ(EffectiveFileSize(-1), 262144);
  EXPECT_EQ(EffectiveFileSize(262143), 262144);
  EXPECT_EQ(EffectiveFileSize(262144), 262144);
  EXPECT_EQ(EffectiveFileSize(262145), 262145);
}

TEST(LogFilePath, IsDirectoryBaseAndIndex) {
  EXPECT_EQ(LogFilePath(L"C:\\logs", L"client", std::nullopt, 0), L"C:\\logs\\client_0.log");
  EXPECT_EQ(LogFilePath(L"C:\\logs", L"client", std::nullopt, 12), L"C:\\logs\\client_12.log");
}

TEST(LogFilePath, DateHas8Digits) {
  EXPECT_EQ(LogFilePath(L"C:\\logs", L"client", LogDate{2026, 3, 7}, 1), L"C:\\logs\\client_20260307_1.log");
  EXPECT_EQ(LogFilePath(L"C:\\logs", L"client", LogDate{2026, 12, 31}, 1),
            L"C:\\logs\\client_20261231_1.log");
}

TEST(LogFilePath, NothingIsAddedToOrTakenFromTheParts) {
  EXPECT_EQ(LogFilePath(L"C:\\logs\\", L"", std::nullopt, 1), L"C:\\logs\\\\_1.log");
  EXPECT_EQ(LogFilePath(L"", L"b", std::nullopt, -5), L"\\b_-5.log");
}

TEST(LogIndexFilePath, StandsBesideTheFiles) {
  EXPECT_EQ(LogIndexFilePath(L"C:\\logs", L"client"), L"C:\\logs\\client_last_log_file_id.txt");
}

TEST(ParseLogIndex, ReadsADecimalNumber) {
  EXPECT_EQ(ParseLogIndex("0"), 0);
  EXPECT_EQ(ParseLogIndex("7"), 7);
  EXPECT_EQ(ParseLogIndex("+12"), 12);
  EXPECT_EQ(ParseLogIndex("-5"), -5);
  EXPECT_EQ(ParseLogIndex(" \t\r\n3\n"), 3);
}

TEST(ParseLogIndex, GarbageEndsTheNumberAndIs0Alone) {
  EXPECT_EQ(ParseLogIndex(""), 0);
  EXPECT_EQ(ParseLogIndex("   "), 0);
  EXPECT_EQ(ParseLogIndex("-"), 0);
  EXPECT_EQ(ParseLogIndex("abc"), 0);
  EXPECT_EQ(ParseLogIndex("4abc"), 4);
  EXPECT_EQ(ParseLogIndex(std::string_view("\0\0\0\0", 4)), 0);
  EXPECT_EQ(ParseLogIndex("\xFF\xFE"), 0);
  EXPECT_EQ(ParseLogIndex("--1"), 0);
}

TEST(ParseLogIndex, NumbersAreHeldToTheRangeOfAnInt) {
  EXPECT_EQ(ParseLogIndex("2147483647"), kMaxInt);
  EXPECT_EQ(ParseLogIndex("2147483648"), kMaxInt);
  EXPECT_EQ(ParseLogIndex("99999999999999999999999999999999"), kMaxInt);
  EXPECT_EQ(ParseLogIndex("-2147483648"), std::numeric_limits<int>::min());
  EXPECT_EQ(ParseLogIndex("-9999999999999999999999999999999"), std::numeric_limits<int>::min());
}

TEST(NextLogIndex, IsARing) {
  EXPECT_EQ(NextLogIndex(0, 3), 1);
  EXPECT_EQ(NextLogIndex(1, 3), 2);
  EXPECT_EQ(NextLogIndex(2, 3), 0);
  EXPECT_EQ(NextLogIndex(0, 1), 0);
  EXPECT_EQ(NextLogIndex(kMaxInt - 1, kMaxInt), 0);
  EXPECT_EQ(NextLogIndex(-5, 3), -4);
}

TEST(LineOverflowsFile, LineOfExactlyTheRemainingRoomFits) {
  EXPECT_FALSE(LineOverflowsFile(262044, 100, 262144));
  EXPECT_TRUE(LineOverflowsFile(262045, 100, 262144));
  EXPECT_TRUE(LineOverflowsFile(0, 262145, 262144));
}

TEST(LineOverflowsFile, NothingOverflowsWhileASizeIsUnknown) {
  EXPECT_FALSE(LineOverflowsFile(kUnknownSize, 100, 262144));
  EXPECT_FALSE(LineOverflowsFile(1000000, 100, -1));
}

TEST(LineOverflowsFile, SumIsTakenAsSigned) {
  EXPECT_FALSE(LineOverflowsFile(0x7FFFFFFF, 1, 0x7FFFFFFF));  // a negative sum
  EXPECT_TRUE(LineOverflowsFile(0x7FFFFFFE, 1, 0x7FFFFFFE));
}

}  // namespace
}  // namespace logging::internal
