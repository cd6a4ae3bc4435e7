#include "module/ModuleItem.h"

#include "gtest/gtest.h"

namespace Cmm::module {
namespace {

struct CapabilityCase {
  const char* caps;
  uint32_t flags;
};

TEST(ParseCapabilities, KnowsIdleHandlerUntilTheFirstUnknownName) {
  const CapabilityCase cases[] = {
      {"", 0},
      {"IdleHandler", 1},
      {"  IdleHandler\t", 1},
      {"IdleHandler;Other;IdleHandler", 1},
      {"Other;IdleHandler", 0},
      {"idlehandler", 0},
      {"IdleHandler;", 1},
      {";IdleHandler", 0},
      {"IdleHandler;IdleHandler", 1},
      {"IdleHandlerX", 0},
      {" ", 0},
  };
  for (const CapabilityCase& c : cases)
    EXPECT_EQ(ParseCapabilities(c.caps), c.flags) << '"' << c.caps << '"';
}

class NullClient : public ICmmMessageQueueClient {
 public:
  void OnMessage(const char*, void*, CmmMQ_Msg*) override {}
  void OnNotify(const char*, void*, CmmMQ_Msg*, void*) override {}
  const char* GetClientName() override { return "null client"; }
};

NullClient g_client;
int g_terminated = 0;
int g_reason = 0;

ICmmMessageQueueClient* Init() {
  return &g_client;
}
ICmmMessageQueueClient* Refuse() {
  return nullptr;
}
int Term(ICmmMessageQueueClient* instance, int reason) {
  g_terminated += instance == &g_client;
  g_reason = reason;
  return 0;
}
int FailingTerm(ICmmMessageQueueClient*, int) {
  return 5;
}

TEST(CCmmStaticModule, RunsWithTheFunctionsThatWereEnteredUnderItsName) {
  CCmmStaticModule::AddStaticModule("linked in", Init, Term);
  CCmmStaticModule item;
  EXPECT_EQ(item.GetInstance(), nullptr);
  EXPECT_EQ(item.LoadModule("linked in"), 1);
  EXPECT_EQ(item.GetInstance(), &g_client);
  EXPECT_STREQ(item.GetModuleName().c_str(), "linked in");
  g_terminated = 0;
  EXPECT_NE(item.UnloadModule(7), 0);
  EXPECT_EQ(g_terminated, 1);
  EXPECT_EQ(g_reason, 7);
  EXPECT_EQ(item.GetInstance(), nullptr);
  EXPECT_STREQ(item.GetModuleName().c_str(), "");
  EXPECT_EQ(item.UnloadModule(7), 0);
}

TEST(CCmmStaticModule, AnEmptyOrUnknownNameFails) {
  CCmmStaticModule item;
  EXPECT_EQ(item.LoadModule(""), 0);
  EXPECT_EQ(item.LoadModule("nobody entered this"), 0);
}

TEST(CCmmStaticModule, AnUnknownNameKeepsTheFunctionsThatItHas) {
  CCmmStaticModule::AddStaticModule("known", Init, Term);
  CCmmStaticModule item;
  item.LoadModule("known");
  EXPECT_EQ(item.LoadModule("unknown"), 1);
  EXPECT_STREQ(item.GetModuleName().c_str(), "unknown");
}

TEST(CCmmStaticModule, WithoutBothFunctionsItDoesNotRun) {
  CCmmStaticModule::AddStaticModule("half", Init, nullptr);
  CCmmStaticModule::AddStaticModule("other half", nullptr, Term);
  CCmmStaticModule item;
  EXPECT_EQ(item.LoadModule("half"), 0);
  EXPECT_EQ(item.LoadModule("other half"), 0);
}

TEST(CCmmStaticModule, AModuleThatRefusesHasItsNameAndNoInstance) {
  CCmmStaticModule::AddStaticModule("refusing", Refuse, Term);
  CCmmStaticModule item;
  EXPECT_EQ(item.LoadModule("refusing"), 0);
  EXPECT_EQ(item.GetInstance(), nullptr);
  EXPECT_STREQ(item.GetModuleName().c_str(), "refusing");
}

TEST(CCmmStaticModule, AnEndThatReportsAFailureGivesZero) {
  CCmmStaticModule::AddStaticModule("failing", Init, FailingTerm);
  CCmmStaticModule item;
  item.LoadModule("failing");
  EXPECT_EQ(item.UnloadModule(0), 0);
  EXPECT_EQ(item.GetInstance(), nullptr);
}

TEST(CCmmStaticModule, IsAnIdleHandlerByItsFlag) {
  CCmmStaticModule item;
  EXPECT_EQ(item.IsIdleHandler(), 0);
  item.SetCapabilities(ParseCapabilities("IdleHandler"));
  EXPECT_EQ(item.IsIdleHandler(), 1);
}

TEST(CCmmDynamicModule, AnEmptyPathAndAMissingLibraryFail) {
  CCmmDynamicModule item;
  EXPECT_EQ(item.LoadModule(""), 0);
  EXPECT_EQ(item.LoadModule("C:\\there is no such.dll"), 0);
  EXPECT_STREQ(item.GetModuleName().c_str(), "");
  EXPECT_EQ(item.UnloadModule(0), 0);
}

TEST(CCmmDynamicModule, ALibraryWithoutTheTwoFunctionsIsFreedAgain) {
  CCmmDynamicModule item;
  EXPECT_EQ(item.LoadModule("winmm.dll"), 0);
  EXPECT_STREQ(item.GetModuleName().c_str(), "");
  EXPECT_FALSE(item.IsLibrary(nullptr));
}

}  // namespace
}  // namespace Cmm::module
