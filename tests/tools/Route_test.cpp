#include "tools/client_simulator/Route.h"

#include <gtest/gtest.h>

namespace velm_sim {
namespace {

Command CommandOf(std::optional<std::string> bytes) {
  const size_t size = bytes ? bytes->size() : 1;
  return {"window", {{"window", "W"}, {"dwData", 10}}, size, std::move(bytes)};
}

TEST(CommandReportTest, TextAndTerminatorGiveTheBytesBack) {
  constexpr const char* kHead = R"({"event":"command","number":1,"route":"window","window":"W","dwData":10,)";
  EXPECT_EQ(CommandReport(CommandOf(std::string("{\"a\":1}\0", 8)), 1),
            std::string(kHead) + R"("bytes":8,"terminated":true,"text":"{\"a\":1}","command":{"a":1}})");
  EXPECT_EQ(CommandReport(CommandOf("{\"a\":"), 1),
            std::string(kHead) + R"("bytes":5,"terminated":false,"text":"{\"a\":","command":null})");
  EXPECT_EQ(CommandReport(CommandOf(std::string("a\0b\0\0", 5)), 1),
            std::string(kHead) + R"("bytes":5,"terminated":true,"text":"a\u0000b\u0000","command":null})");
  EXPECT_EQ(CommandReport(CommandOf(""), 1),
            std::string(kHead) + R"("bytes":0,"terminated":false,"text":"","command":null})");
}

TEST(CommandReportTest, BytesThatAreNotUtf8ComeAsHex) {
  EXPECT_EQ(
      CommandReport(CommandOf(std::string("a\xFF\0", 3)), 7),
      R"({"event":"command","number":7,"route":"window","window":"W","dwData":10,"bytes":3,"terminated":true,"text":null,"hex":"61ff00","command":null})");
}

TEST(CommandReportTest, NoDataIsANullText) {
  EXPECT_EQ(
      CommandReport(CommandOf(std::nullopt), 1),
      R"({"event":"command","number":1,"route":"window","window":"W","dwData":10,"bytes":1,"text":null})");
}

}  // namespace
}  // namespace velm_sim
