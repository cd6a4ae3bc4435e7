// The simulator as a program.

#include <gtest/gtest.h>
#include <windows.h>

#include "sdk/WindowRoute.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/tools/EndToEnd.h"
#include "tools/client_simulator/ClientWindow.h"
#include "tools/fake_product/FakeProduct.h"

namespace velm_test {
namespace {

using Velm3rdSDK::BroadcastToClientWindows;
using velm_tools::FakeProduct;

// A simulator that is ready, and leaves nothing behind.
class SimulatorProgramTest : public testing::Test {
 protected:
  ~SimulatorProgramTest() override { FakeProduct::RemoveFrom(FakeProduct::DefaultDirectory()); }

  static bool ProductIsThere() {
    return std::filesystem::exists(std::filesystem::path(FakeProduct::DefaultDirectory()) / L"Velm.exe");
  }

  static void SendCommand(std::string text) { BroadcastToClientWindows(text.data()); }
};

TEST_F(SimulatorProgramTest, InstallsSaysSoAndTakesTheProductAwayAtTheEndOfItsInput) {
  auto simulator = StartSimulator({"--version", "5.4.3.2"});
  const auto ready = simulator.ReadLine();
  ASSERT_TRUE(ready);
  EXPECT_NE(ready->find(R"("version":"5.4.3.2","windows":["VelmPTApp_HostWindow"])"), std::string::npos)
      << *ready;
  EXPECT_TRUE(ProductIsThere());
  EXPECT_NE(FindWindowW(velm_sim::kHostWindow, nullptr), nullptr);
  EXPECT_EQ(simulator.Wait(), 0U);
  EXPECT_EQ(simulator.ReadLine(), R"({"event":"end","commands":0})");
  EXPECT_FALSE(ProductIsThere());
  EXPECT_EQ(FindWindowW(velm_sim::kHostWindow, nullptr), nullptr);
}

TEST_F(SimulatorProgramTest, EndsAtQuit) {
  auto simulator = StartSimulator({"--stay"});
  ASSERT_TRUE(simulator.ReadLine());
  simulator.WriteLine("quit");
  EXPECT_EQ(simulator.Wait(), 0U);
  EXPECT_FALSE(ProductIsThere());
}

TEST_F(SimulatorProgramTest, ReportsACommandExactly) {
  auto simulator = StartSimulator({});
  ASSERT_TRUE(simulator.ReadLine());
  SendCommand("{\"a\":\"\xC3\xA9\\n\"}");
  EXPECT_EQ(
      simulator.ReadLine(),
      R"({"event":"command","number":1,"route":"window","window":"VelmPTApp_HostWindow","dwData":10,"bytes":13,)"
      "\"terminated\":true,\"text\":\"{\\\"a\\\":\\\"\xC3\xA9\\\\n\\\"}\",\"command\":{\"a\":\"\xC3\xA9\\n\"}"
      "}");
  BroadcastToClientWindows(nullptr);
  const std::string empty = simulator.ReadLine().value_or("");  // of what size, systems disagree
  EXPECT_TRUE(empty.starts_with(R"({"event":"command","number":2,)")) << empty;
  EXPECT_TRUE(empty.ends_with(R"("text":null})")) << empty;
  EXPECT_EQ(simulator.Wait(), 0U);
}

TEST_F(SimulatorProgramTest, BothWindowsGetACopyOfACommand) {
  auto simulator = StartSimulator({"--windows", "both"});
  ASSERT_TRUE(simulator.ReadLine());
  SendCommand("{}");
  const std::string first = simulator.ReadLine().value_or("");
  const std::string second = simulator.ReadLine().value_or("");
  EXPECT_NE((first + second).find("\"VelmPTApp_HostWindow\""), std::string::npos);
  EXPECT_NE((first + second).find("\"VelmPTApp_VVHOST_HostWindow\""), std::string::npos);
}

TEST_F(SimulatorProgramTest, UninstallRemovesWhatAKilledSimulatorLeft) {
  {
    auto simulator = StartSimulator({});
    ASSERT_TRUE(simulator.ReadLine());
    simulator.Kill();
  }
  EXPECT_TRUE(ProductIsThere());
  auto uninstall = StartSimulator({"uninstall"});
  EXPECT_NE(uninstall.ReadLine().value_or("").find(R"("removed":true)"), std::string::npos);
  EXPECT_EQ(uninstall.Wait(), 0U);
  EXPECT_FALSE(ProductIsThere());
  auto again = StartSimulator({"uninstall"});
  EXPECT_NE(again.ReadLine().value_or("").find(R"("removed":false)"), std::string::npos);
  EXPECT_EQ(again.Wait(), 0U);
}

TEST_F(SimulatorProgramTest, InstallLeavesAProductThatIsNotRunning) {
  auto install = StartSimulator({"install", "--version", "5.4"});
  EXPECT_NE(install.ReadLine().value_or("").find(R"("version":"5.4.0.0")"), std::string::npos);
  EXPECT_EQ(install.Wait(), 0U);
  EXPECT_TRUE(ProductIsThere());
  EXPECT_EQ(FindWindowW(velm_sim::kHostWindow, nullptr), nullptr);
}

// A product that no simulator made.
class RealProduct {
 public:
  RealProduct() : m_directory(FakeProduct::DefaultDirectory()) {
    std::filesystem::create_directories(m_directory);
    for (const Cmm::RequiredFile& file : Cmm::RequiredFiles(Cmm::kMeetingClient))
      WriteFile(m_directory / file.name, "x");
  }
  RealProduct(const RealProduct&) = delete;
  RealProduct& operator=(const RealProduct&) = delete;
  ~RealProduct() { std::filesystem::remove_all(m_directory.parent_path()); }

 private:
  std::filesystem::path m_directory;
};

TEST_F(SimulatorProgramTest, RefusesToTouchAMachineWithARealClient) {
  const RealProduct real;
  for (const char* action : {"run", "install"}) {
    auto simulator = StartSimulator({action});
    EXPECT_EQ(simulator.Wait(), 3U) << action;
    EXPECT_NE(simulator.Errors().find("a real client is installed in C:\\"), std::string::npos)
        << simulator.Errors();
    EXPECT_EQ(simulator.ReadRest(), std::vector<std::string>());
  }
  auto windowsOnly = StartSimulator({"--no-install"});
  EXPECT_EQ(windowsOnly.Wait(), 0U);
}

TEST_F(SimulatorProgramTest, ForceInstallsBesideARealClient) {
  const RealProduct real;
  const ScratchDirectory scratch;
  const std::string directory = scratch.Narrow() + "\\bin";
  auto simulator = StartSimulator({"--force", "--directory", directory});
  EXPECT_EQ(simulator.Wait(), 0U) << simulator.Errors();
}

TEST_F(SimulatorProgramTest, RefusesBesideARunningClient) {
  const velm_sim::ClientWindow window(velm_sim::kHostWindow,
                                      [](const velm_sim::CopyData&) -> intptr_t { return 0; });
  auto simulator = StartSimulator({});
  EXPECT_EQ(simulator.Wait(), 3U);
  EXPECT_NE(simulator.Errors().find("a client is running"), std::string::npos);
  EXPECT_FALSE(ProductIsThere());
}

TEST_F(SimulatorProgramTest, BadUsageIs2AndSaysWhatWouldBeRight) {
  const struct {
    std::vector<std::string> arguments;
    const char* message;
  } cases[] = {
      {{"rum"}, "unknown action 'rum', did you mean 'run'?"},
      {{"--windos", "host"}, "unknown option '--windos', did you mean '--windows'?"},
      {{"--windows", "all"}, "'--windows' takes host, helper, both or none, not 'all'"},
      {{"--version"}, "'--version' needs a value"},
      {{"--version", "5.x"}, "part of the version 'x' is not a number"},
      {{"--script", "C:\\no such script"}, "cannot read the script 'C:\\no such script'"},
  };
  for (const auto& test : cases) {
    auto simulator = StartSimulator(test.arguments);
    EXPECT_EQ(simulator.Wait(), 2U) << test.message;
    EXPECT_NE(simulator.Errors().find(test.message), std::string::npos) << simulator.Errors();
    EXPECT_EQ(simulator.ReadRest(), std::vector<std::string>());
  }
}

TEST_F(SimulatorProgramTest, HelpTellsOfEveryOptionAndStep) {
  auto simulator = StartSimulator({"--help"});
  std::string help;
  for (const std::string& line : simulator.ReadRest())
    help += line + '\n';
  EXPECT_EQ(simulator.Wait(), 0U);
  for (const char* word :
       {"--version",     "--directory", "--no-registry", "--force",      "--no-install", "--windows",
        "--script",      "--stay",      "--hang-ms",     "--die-after",  "--pipes",      "--service-id",
        "--pipe-suffix", "--stall",     "--split",       "--no-goodbye", "via audio",    "flood",
        "garbage",       "presence",    "confaudio",     "wait-host",    "Exit code"})
    EXPECT_NE(help.find(word), std::string::npos) << word;
}

TEST_F(SimulatorProgramTest, ABadLineOfInputEndsItWith2AndTheLineNumber) {
  auto simulator = StartSimulator({});
  simulator.Write("# a comment\n\naudio five\n");
  EXPECT_EQ(simulator.Wait(), 2U);
  EXPECT_NE(simulator.Errors().find("line 3: AudioCmd 'five' is not a number"), std::string::npos)
      << simulator.Errors();
  EXPECT_FALSE(ProductIsThere());
}

TEST_F(SimulatorProgramTest, ABadScriptIsFoundBeforeAnythingIsInstalled) {
  const ScratchDirectory scratch;
  const std::string script = scratch.MakeFile(L"script.txt", "sleep 1\r\nshare\r\n").string();
  auto simulator = StartSimulator({"--script", script});
  EXPECT_EQ(simulator.Wait(), 2U);
  EXPECT_NE(simulator.Errors().find(script + ", line 2: 'share' needs a number"), std::string::npos)
      << simulator.Errors();
  EXPECT_EQ(simulator.ReadRest(), std::vector<std::string>());
}

TEST_F(SimulatorProgramTest, AScriptWaitsForCommandsAndEnds) {
  const ScratchDirectory scratch;
  const std::string script = scratch.MakeFile(L"script.txt", "wait-command 2\n").string();
  auto simulator = StartSimulator({"--script", script});
  ASSERT_TRUE(simulator.ReadLine());
  SendCommand("{}");
  SendCommand("{}");
  EXPECT_TRUE(simulator.ReadLineWith(R"({"event":"end","commands":2})"));
  EXPECT_EQ(simulator.Wait(), 0U);
}

TEST_F(SimulatorProgramTest, AWaitThatRunsOutIs1) {
  auto simulator = StartSimulator({});
  simulator.WriteLine("wait-command 1 0");
  EXPECT_EQ(simulator.Wait(), 1U);
  EXPECT_NE(simulator.Errors().find("wait-command: 0 of 1 commands within 0 s"), std::string::npos);
  EXPECT_FALSE(ProductIsThere());
}

TEST_F(SimulatorProgramTest, HangKeepsTheSenderWaiting) {
  auto simulator = StartSimulator({"--hang-ms", "300"});
  ASSERT_TRUE(simulator.ReadLine());
  const auto begin = std::chrono::steady_clock::now();
  SendCommand("{}");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(290));
}

TEST_F(SimulatorProgramTest, DieAfterEndsHardAndLeavesTheProduct) {
  auto simulator = StartSimulator({"--die-after", "2"});
  ASSERT_TRUE(simulator.ReadLine());
  SendCommand("{}");
  SendCommand("{}");
  EXPECT_EQ(simulator.Wait(), 9U);
  EXPECT_EQ(simulator.ReadRest().size(), 2U);
  EXPECT_TRUE(ProductIsThere());
}

}  // namespace
}  // namespace velm_test
