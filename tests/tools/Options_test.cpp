#include "tools/client_simulator/Options.h"

#include <gtest/gtest.h>

#include "tests/tools/ErrorOf.h"

namespace velm_sim {
namespace {

using velm_tools::ErrorOf;
using namespace std::chrono_literals;

TEST(OptionsTest, Defaults) {
  const Options options = ParseOptions({});
  EXPECT_EQ(options.action, Action::kRun);
  EXPECT_EQ(options.version, (Cmm::FileVersion{5, 8, 0, 0}));
  EXPECT_TRUE(options.installProduct);
  EXPECT_TRUE(options.registerCommand);
  EXPECT_FALSE(options.force);
  EXPECT_EQ(options.windows, (std::vector<std::wstring>{kHostWindow}));
  EXPECT_EQ(options.misbehaviour.hang, 0ms);
  EXPECT_EQ(options.misbehaviour.dieAfter, 0U);
  EXPECT_TRUE(options.audioPipes && options.servicePipe);
  EXPECT_EQ(options.serviceId, std::nullopt);
  EXPECT_EQ(options.pipeSuffix, "");
  EXPECT_FALSE(options.misbehaviour.stall || options.misbehaviour.split ||
               options.misbehaviour.withholdsGoodbye);
}

TEST(OptionsTest, EveryOptionOfThePipes) {
  const Options options = ParseOptions({"--pipes", "service", "--service-id", "4294967295", "--pipe-suffix",
                                        ".real", "--stall", "--split", "--no-goodbye"});
  EXPECT_FALSE(options.audioPipes);
  EXPECT_TRUE(options.servicePipe);
  EXPECT_EQ(options.serviceId, 4294967295U);
  EXPECT_EQ(options.pipeSuffix, ".real");
  EXPECT_TRUE(options.misbehaviour.stall && options.misbehaviour.split &&
              options.misbehaviour.withholdsGoodbye);
  EXPECT_TRUE(ParseOptions({"--pipes", "audio"}).audioPipes);
  EXPECT_FALSE(ParseOptions({"--pipes", "audio"}).servicePipe);
  EXPECT_FALSE(ParseOptions({"--pipes", "none"}).audioPipes);
  EXPECT_FALSE(ParseOptions({"--pipes", "none"}).servicePipe);
}

TEST(OptionsTest, EveryOption) {
  const Options options = ParseOptions({"run", "--version", "1.2.3.65535", "--directory", "D:\\x",
                                        "--no-registry", "--force", "--no-install", "--windows", "both",
                                        "--script", "s", "--stay", "--hang-ms", "7", "--die-after", "2"});
  EXPECT_EQ(options.version, (Cmm::FileVersion{1, 2, 3, 65535}));
  EXPECT_EQ(options.directory, "D:\\x");
  EXPECT_FALSE(options.registerCommand);
  EXPECT_TRUE(options.force);
  EXPECT_FALSE(options.installProduct);
  EXPECT_EQ(options.windows, (std::vector<std::wstring>{kHostWindow, kHelperWindow}));
  EXPECT_EQ(options.script, "s");
  EXPECT_TRUE(options.stay);
  EXPECT_EQ(options.misbehaviour.hang, 7ms);
  EXPECT_EQ(options.misbehaviour.dieAfter, 2U);
}

TEST(OptionsTest, ShortVersionsEndInZeros) {
  EXPECT_EQ(ParseOptions({"--version", "5"}).version, (Cmm::FileVersion{5, 0, 0, 0}));
  EXPECT_EQ(ParseOptions({"--version", "5.6"}).version, (Cmm::FileVersion{5, 6, 0, 0}));
}

TEST(OptionsTest, WhatIsWrongIsSaid) {
  EXPECT_EQ(ErrorOf([] { ParseOptions({"--version", "5."}); }), "part of the version '' is not a number");
  EXPECT_EQ(ErrorOf([] {
              ParseOptions({"--version", "5.65536"});
            }),
            "part of the version '65536' is out of range: 0 to 65535");
  EXPECT_EQ(ErrorOf([] { ParseOptions({"install", "--stay"}); }), "'--stay' is only for 'run'");
  EXPECT_EQ(ErrorOf([] {
              ParseOptions({"uninstall", "--version", "1"});
            }),
            "'uninstall' only takes --directory, not '--version'");
  EXPECT_EQ(ErrorOf([] {
              ParseOptions({"--hang-ms", "-1"});
            }),
            "--hang-ms '-1' is out of range: 0 to 3600000");
  EXPECT_EQ(ErrorOf([] {
              ParseOptions({"--pipes", "all"});
            }),
            "'--pipes' takes audio, service, both or none, not 'all'");
  EXPECT_EQ(ErrorOf([] { ParseOptions({"--service-id", "x"}); }), "--service-id 'x' is not a number");
}

TEST(OptionsTest, HelpWinsOverEverythingElse) {
  EXPECT_EQ(ParseOptions({"--nonsense", "--help"}).action, Action::kHelp);
  EXPECT_EQ(ParseOptions({"help"}).action, Action::kHelp);
  EXPECT_EQ(ParseOptions({"-h"}).action, Action::kHelp);
}

}  // namespace
}  // namespace velm_sim
