#include "common/client/utility/src/CmmLogLine.h"

#include <limits>
#include <sstream>

#include "gtest/gtest.h"

namespace {

using logging::internal::LogPrefix;
using logging::internal::SeverityName;
using logging::internal::SourceFileName;
using logging::internal::StreamLogPrefix;

std::string Streamed(const LogPrefix& prefix) {
  std::ostringstream stream;
  StreamLogPrefix(stream, prefix);
  return stream.str();
}

LogPrefix FullPrefix() {
  LogPrefix prefix;
  prefix.processId = 1234;
  prefix.threadId = 5678;
  prefix.localTime = Cmm::Time::Exploded{2026, 3, 6, 7, 9, 5, 1, 42};
  prefix.severity = 1;
  prefix.file = "C:\\src\\channel.cc";
  prefix.line = 77;
  return prefix;
}

TEST(SeverityName, IsTheStatedWord) {
  EXPECT_EQ(SeverityName(0), "DEBUG");
  EXPECT_EQ(SeverityName(1), "INFO");
  EXPECT_EQ(SeverityName(2), "WARNING");
  EXPECT_EQ(SeverityName(3), "ERROR");
  EXPECT_EQ(SeverityName(4), "ERROR_REPORT");
  EXPECT_EQ(SeverityName(5), "FATAL");
}

TEST(SeverityName, NegativeSeverityIsVerboseAndTheValueWithoutItsSign) {
  EXPECT_EQ(SeverityName(-1), "VERBOSE1");
  EXPECT_EQ(SeverityName(-2), "VERBOSE2");
  EXPECT_EQ(SeverityName(std::numeric_limits<int>::min()), "VERBOSE2147483648");
}

TEST(SeverityName, SeverityWithoutAWordIsItsNumber) {
  EXPECT_EQ(SeverityName(6), "6");
  EXPECT_EQ(SeverityName(std::numeric_limits<int>::max()), "2147483647");
}

TEST(SourceFileName, FollowsTheLastBackslashOrElseTheLastSlash) {
  EXPECT_EQ(SourceFileName("C:\\src\\channel.cc"), "channel.cc");
  EXPECT_EQ(SourceFileName("/src/channel.cc"), "channel.cc");
  EXPECT_EQ(SourceFileName("../src/channel.cc"), "channel.cc");
  EXPECT_EQ(SourceFileName("C:\\src\\"), "");
}

TEST(SourceFileName, BackslashWinsOverALaterSlash) {
  EXPECT_EQ(SourceFileName("C:\\src/channel.cc"), "src/channel.cc");
}

TEST(SourceFileName, FirstCharacterIsLostWithoutASeparator) {
  EXPECT_EQ(SourceFileName("channel.cc"), "hannel.cc");
  EXPECT_EQ(SourceFileName("UNKNOWN-FILE"), "NKNOWN-FILE");
  EXPECT_EQ(SourceFileName("c"), "");
}

TEST(SourceFileName, OfNothingIsNothing) {
  EXPECT_EQ(SourceFileName(""), "");
}

TEST(StreamLogPrefix, DefaultItemsMakeTheStatedBytes) {
  EXPECT_EQ(Streamed(FullPrefix()), "[1234:5678:03-07/09:05:01.042:INFO:channel.cc(77)] ");
}

TEST(StreamLogPrefix, EveryItemStandsInItsPlace) {
  LogPrefix prefix = FullPrefix();
  prefix.tickCount = 987654;
  EXPECT_EQ(Streamed(prefix), "[1234:5678:03-07/09:05:01.042:987654:INFO:channel.cc(77)] ");
}

TEST(StreamLogPrefix, ItemsThatAreLeftOutLeaveNoColon) {
  LogPrefix prefix = FullPrefix();
  prefix.processId.reset();
  EXPECT_EQ(Streamed(prefix), "[5678:03-07/09:05:01.042:INFO:channel.cc(77)] ");
  prefix.localTime.reset();
  EXPECT_EQ(Streamed(prefix), "[5678:INFO:channel.cc(77)] ");
  prefix.threadId.reset();
  EXPECT_EQ(Streamed(prefix), "[INFO:channel.cc(77)] ");
  prefix.tickCount = 0;
  EXPECT_EQ(Streamed(prefix), "[0:INFO:channel.cc(77)] ");
}

TEST(StreamLogPrefix, LastMomentOfAYearIsWrittenWithoutTheYear) {
  LogPrefix prefix;
  prefix.localTime = Cmm::Time::Exploded{2026, 12, 4, 31, 23, 59, 59, 999};
  prefix.severity = -3;
  prefix.file = "/a";
  prefix.line = -1;
  EXPECT_EQ(Streamed(prefix), "[12-31/23:59:59.999:VERBOSE3:a(-1)] ");
}

TEST(StreamLogPrefix, FillCharacterStays0AfterTheDate) {
  std::ostringstream stream;
  StreamLogPrefix(stream, FullPrefix());
  EXPECT_EQ(stream.fill(), '0');
}

TEST(StreamLogPrefix, FillCharacterStaysABlankWithoutADate) {
  LogPrefix prefix = FullPrefix();
  prefix.localTime.reset();
  std::ostringstream stream;
  StreamLogPrefix(stream, prefix);
  EXPECT_EQ(stream.fill(), ' ');
}

}  // namespace
