#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "module/CmmModule.h"
#include "telemetry/PerfTelemetry.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using Journal = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

Journal g_journal;

}  // namespace

// The sample modules look this up in the program that loads them.
extern "C" __declspec(dllexport) void RecordModuleCall(const char* line) {
  g_journal.push_back(line);
}

namespace {

bool IsLoaded(const char* name) {
  return GetModuleHandleA(name) != nullptr;
}

std::wstring ProgramDirectory() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return std::filesystem::path(path).parent_path().wstring();
}

class ModuleLoaderTest : public testing::Test {
 protected:
  ModuleLoaderTest() { g_journal.clear(); }
  ~ModuleLoaderTest() override { loader.UnloadAllModules(); }

  int Load(const std::string& elements) {
    return loader.LoadModulesFromXml(("<modules>" + elements + "</modules>").c_str());
  }
  Cmm::ICmmMessageQueueClient* Client(const char* name) { return bus.FindClient(name); }
  int DynamicLoad(const wchar_t* name, const char* caps = "") {
    return loader.DynamicLoadModule(directory.c_str(), name, caps);
  }
  int DynamicUnload(const wchar_t* name) { return loader.DynamicUnloadModule(directory.c_str(), name); }

  const std::wstring directory = ProgramDirectory();
  Cmm::ICmmModuleLoader& loader = *Cmm::GetModuleLoader();
  Cmm::ICmmModuleRegistry& registry = *Cmm::GetModuleRegistry();
  Cmm::ICmmMessageQueueService& bus = *CmmMQ_GetService();
};

// ---- Lists

TEST_F(ModuleLoaderTest, AListedModuleIsLoadedAndBecomesAClientOfTheBus) {
  EXPECT_EQ(Load(R"(<module name="sample_good"/>)"), 1);
  EXPECT_TRUE(IsLoaded("sample_good.dll"));
  ASSERT_NE(Client("sample_good"), nullptr);
  EXPECT_STREQ(Client("sample_good")->GetClientName(), "sample_good");
  EXPECT_THAT(g_journal, ElementsAre("sample_good init"));
}

TEST_F(ModuleLoaderTest, ModulesAreLoadedInTheOrderOfTheListAndToldOfThoseBehindThem) {
  EXPECT_EQ(Load(R"(<module name="sample_other"/><module name="sample_good"/>)"), 1);
  EXPECT_THAT(g_journal, ElementsAre("sample_other init", "sample_good init",
                                     "sample_other notify com.Velm.app.mainboard.notifyClientRegistry"));
}

TEST_F(ModuleLoaderTest, AListFromAFileIsLoadedAlike) {
  const velm_test::ScratchDirectory scratch;
  const auto path = scratch.Path() / "list.xml";
  std::ofstream(path) << R"(<m><module name="sample_good"/></m>)";
  EXPECT_EQ(loader.LoadModulesFromFile(path.string().c_str()), 1);
  EXPECT_NE(Client("sample_good"), nullptr);
}

TEST_F(ModuleLoaderTest, AListThatCannotBeReadIsZero) {
  EXPECT_EQ(loader.LoadModulesFromFile(nullptr), 0);
  EXPECT_EQ(loader.LoadModulesFromXml(nullptr), 0);
  EXPECT_EQ(loader.LoadModulesFromFile("C:\\there is no such list.xml"), 0);
  EXPECT_EQ(loader.LoadModulesFromXml("<modules>"), 0);
  EXPECT_EQ(loader.LoadModulesFromXml(""), 0);
}

TEST_F(ModuleLoaderTest, AnEmptyListIsLoaded) {
  EXPECT_EQ(Load(""), 1);
}

TEST_F(ModuleLoaderTest, AModuleWithoutANameIsSkipped) {
  EXPECT_EQ(Load(R"(<module/><module name="" type="App"/><module name="sample_good"/>)"), 1);
  EXPECT_THAT(g_journal, ElementsAre("sample_good init"));
}

TEST_F(ModuleLoaderTest, TheFirstFailureEndsTheListAndTheModulesBeforeItStay) {
  EXPECT_EQ(
      Load(R"(<module name="sample_good"/><module name="no_such_module"/><module name="sample_other"/>)"), 0);
  EXPECT_NE(Client("sample_good"), nullptr);
  EXPECT_EQ(Client("sample_other"), nullptr);
  EXPECT_FALSE(IsLoaded("sample_other.dll"));
}

TEST_F(ModuleLoaderTest, ALibraryThatIsListedTwiceIsLoadedTwice) {
  EXPECT_EQ(Load(R"(<module name="sample_good"/><module name="sample_good"/>)"), 1);
  EXPECT_THAT(g_journal, ElementsAre("sample_good init", "sample_good init"));
  loader.UnloadAllModules();
  EXPECT_EQ(std::count(g_journal.begin(), g_journal.end(), "sample_good term"), 2);
  EXPECT_FALSE(IsLoaded("sample_good.dll"));
}

TEST_F(ModuleLoaderTest, AModuleThatRefusesIsAFailureAndFreed) {
  EXPECT_EQ(Load(R"(<module name="sample_refusing"/>)"), 0);
  EXPECT_THAT(g_journal, ElementsAre("sample_refusing init"));
  EXPECT_FALSE(IsLoaded("sample_refusing.dll"));
}

TEST_F(ModuleLoaderTest, ALibraryWithoutAnExitFunctionIsRefusedBeforeItIsCalled) {
  EXPECT_EQ(Load(R"(<module name="sample_without_term"/>)"), 0);
  EXPECT_THAT(g_journal, IsEmpty());
  EXPECT_FALSE(IsLoaded("sample_without_term.dll"));
}

TEST_F(ModuleLoaderTest, ASlowModuleIsWaitedFor) {
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(Load(R"(<module name="sample_slow"/><module name="sample_good"/>)"), 1);
  EXPECT_GE(GetTickCount64() - start, 90u);
  EXPECT_EQ(g_journal[1], "sample_good init");
}

// ---- Roles

TEST_F(ModuleLoaderTest, TheModulesOfTheTwoTypesBecomeTheProviders) {
  EXPECT_EQ(registry.GetAppProvider(), nullptr);
  EXPECT_EQ(registry.GetUIProvider(), nullptr);
  EXPECT_EQ(Load(R"(<module name="sample_app" type="App"/><module name="sample_ui" type="UI"/>)"), 1);
  EXPECT_EQ(registry.GetAppProvider(), dynamic_cast<Cmm::IQXAppProvider*>(Client("sample_app")));
  EXPECT_NE(registry.GetAppProvider(), nullptr);
  EXPECT_EQ(registry.GetUIProvider(), dynamic_cast<Cmm::IQXUIProvider*>(Client("sample_ui")));
  EXPECT_NE(registry.GetUIProvider(), nullptr);
}

TEST_F(ModuleLoaderTest, ATypeWithoutTheRoleOrOfAnotherNameMarksNothing) {
  EXPECT_EQ(Load(R"(<module name="sample_good" type="App"/><module name="sample_other" type="UI"/>
                    <module name="sample_app" type="app"/><module name="sample_ui"/>)"),
            1);
  EXPECT_EQ(registry.GetAppProvider(), nullptr);
  EXPECT_EQ(registry.GetUIProvider(), nullptr);
}

TEST_F(ModuleLoaderTest, ALaterModuleOfTheSameTypeReplacesTheEarlierOne) {
  EXPECT_EQ(Load(R"(<module name="sample_app" type="App"/><module name="sample_app_too" type="App"/>)"), 1);
  EXPECT_EQ(registry.GetAppProvider(), dynamic_cast<Cmm::IQXAppProvider*>(Client("sample_app_too")));
}

TEST_F(ModuleLoaderTest, IdleHandlersAreGivenToTheProviderWhenTheListIsThrough) {
  EXPECT_EQ(Load(R"(<module name="sample_idle" caps="IdleHandler"/><module name="sample_app" type="App"/>)"),
            1);
  EXPECT_EQ(g_journal.back(), "sample_app got an idle handler");
}

TEST_F(ModuleLoaderTest, OnlyModulesWithCapabilityAndRoleAreIdleHandlers) {
  EXPECT_EQ(Load(R"(<module name="sample_app" type="App"/><module name="sample_idle"/>
                    <module name="sample_good" caps="IdleHandler"/>)"),
            1);
  EXPECT_EQ(std::count(g_journal.begin(), g_journal.end(), "sample_app got an idle handler"), 0);
}

TEST_F(ModuleLoaderTest, AListThatFailsGivesNoIdleHandlers) {
  EXPECT_EQ(Load(R"(<module name="sample_app" type="App"/><module name="sample_idle" caps="IdleHandler"/>
                    <module name="no_such_module"/>)"),
            0);
  EXPECT_EQ(std::count(g_journal.begin(), g_journal.end(), "sample_app got an idle handler"), 0);
}

// ---- The end of all

TEST_F(ModuleLoaderTest, UnloadingAllEndsEachInTheOrderOfLoadingAndClearsTheRoles) {
  Load(
      R"(<module name="sample_app" type="App"/><module name="sample_good"/><module name="sample_ui" type="UI"/>)");
  g_journal.clear();
  EXPECT_EQ(loader.UnloadAllModules(), 1);
  EXPECT_THAT(g_journal,
              ElementsAre("sample_good notify com.Velm.app.mainboard.notifyClientUnregistry",
                          "sample_ui notify com.Velm.app.mainboard.notifyClientUnregistry", "sample_app term",
                          "sample_ui notify com.Velm.app.mainboard.notifyClientUnregistry",
                          "sample_good term", "sample_ui term"));
  EXPECT_EQ(registry.GetAppProvider(), nullptr);
  EXPECT_EQ(registry.GetUIProvider(), nullptr);
  EXPECT_EQ(Client("sample_good"), nullptr);
  for (const char* name : {"sample_app.dll", "sample_good.dll", "sample_ui.dll"})
    EXPECT_FALSE(IsLoaded(name)) << name;
}

TEST_F(ModuleLoaderTest, UnloadingNothingIsOne) {
  EXPECT_EQ(loader.UnloadAllModules(), 1);
}

// ---- Broadcasts

TEST_F(ModuleLoaderTest, ASyncBroadcastIsANotifyOfEveryModule) {
  Load(R"(<module name="sample_good"/><module name="sample_other"/>)");
  g_journal.clear();
  Cmm::CmmInternelMsg message;
  EXPECT_EQ(loader.BroadcastSyncMessageToModules("topic", &message), 1);
  EXPECT_THAT(g_journal, ElementsAre("sample_good notify topic", "sample_other notify topic"));
}

TEST_F(ModuleLoaderTest, ABroadcastIsAMessageToEveryModule) {
  Load(R"(<module name="sample_good"/><module name="sample_other"/>)");
  g_journal.clear();
  Cmm::CmmInternelMsg message;
  EXPECT_EQ(loader.BroadcastMessageToModules("topic", &message), 1);
  EXPECT_THAT(g_journal, ElementsAre("sample_good message topic", "sample_other message topic"));
}

TEST_F(ModuleLoaderTest, ABroadcastOfNullIsZeroAndCallsNobody) {
  Load(R"(<module name="sample_good"/>)");
  g_journal.clear();
  EXPECT_EQ(loader.BroadcastSyncMessageToModules("topic", nullptr), 0);
  EXPECT_EQ(loader.BroadcastMessageToModules("topic", nullptr), 0);
  EXPECT_THAT(g_journal, IsEmpty());
}

TEST_F(ModuleLoaderTest, AModuleMayUnloadAnotherDuringABroadcast) {
  Load(R"(<module name="sample_unloader"/><module name="sample_good"/><module name="sample_other"/>)");
  g_journal.clear();
  Cmm::CmmInternelMsg message;
  EXPECT_EQ(loader.BroadcastSyncMessageToModules("unload the other", &message), 1);
  EXPECT_EQ(g_journal.front(), "sample_unloader notify unload the other");
  EXPECT_EQ(std::count(g_journal.begin(), g_journal.end(), "sample_good term"), 1);
  EXPECT_EQ(std::count(g_journal.begin(), g_journal.end(), "sample_good notify unload the other"), 0);
  EXPECT_EQ(g_journal.back(), "sample_other notify unload the other");
  EXPECT_FALSE(IsLoaded("sample_good.dll"));
}

class RecordingHelper : public Cmm::IPerfTelemetryHelper {
 public:
  void SendPerfMetrics(const VelmPTPAAP::VClientPerfMetricsInfo_s& record) override {
    records.push_back(record);
  }
  std::vector<VelmPTPAAP::VClientPerfMetricsInfo_s> records;
};

TEST_F(ModuleLoaderTest, ASyncBroadcastThatTakesItsTimeIsMeasured) {
  RecordingHelper helper;
  Load(R"(<module name="sample_slow"/>)");
  Cmm::CCmmPerfTelemetry::PerfTelemetryInit(1, "test");
  Cmm::CCmmPerfTelemetry::EnablePerformanceMetrics(1, &helper);
  Cmm::CmmInternelMsg message;
  loader.BroadcastSyncMessageToModules("topic", &message);
  Cmm::CCmmPerfTelemetry::DoConsumeEvents();
  Cmm::CCmmPerfTelemetry::DoSendEvents();
  Cmm::CCmmPerfTelemetry::PerfTelemetryTerm();
  ASSERT_EQ(helper.records.size(), 1u);
  EXPECT_EQ(static_cast<int>(helper.records[0].events.login_event), 9);
  EXPECT_EQ(helper.records[0].events.fetch_event, e_chat_perfmetrics_Perfmetrics_fetch_event{});
}

// ---- At run time

TEST_F(ModuleLoaderTest, AModuleIsLoadedByNameFromTheProgramsDirectory) {
  EXPECT_EQ(loader.LoadModule(L"sample_good"), 1);
  EXPECT_NE(Client("sample_good"), nullptr);
  EXPECT_EQ(loader.LoadModule(L"sample_good"), 1);
  EXPECT_THAT(g_journal, ElementsAre("sample_good init"));  // it is there already
  EXPECT_EQ(loader.LoadModule(L""), 0);
  EXPECT_EQ(loader.LoadModule(L"no_such_module"), 0);
}

TEST_F(ModuleLoaderTest, AModuleIsLoadedFromADirectoryOnce) {
  EXPECT_EQ(loader.LoadModuleFromDir(directory.c_str(), L"sample_good"), 1);
  EXPECT_EQ(loader.LoadModuleFromDir(directory.c_str(), L"sample_good"), 1);
  EXPECT_THAT(g_journal, ElementsAre("sample_good init"));
  EXPECT_EQ(loader.LoadModuleFromDir(L"", L"sample_good"), 0);
  EXPECT_EQ(loader.LoadModuleFromDir(directory.c_str(), L""), 0);
  EXPECT_EQ(loader.LoadModuleFromDir(directory.c_str(), L"sample_refusing"), 0);
}

TEST_F(ModuleLoaderTest, ADirectoryWithATrailingSeparatorIsAnotherPath) {
  EXPECT_EQ(loader.LoadModuleFromDir(directory.c_str(), L"sample_good"), 1);
  EXPECT_EQ(loader.LoadModuleFromDir((directory + L"\\").c_str(), L"sample_good"), 1);
  EXPECT_EQ(std::count(g_journal.begin(), g_journal.end(), "sample_good init"), 2);
}

TEST_F(ModuleLoaderTest, ADynamicModuleHasItsCapabilitiesAndNoRole) {
  Load(R"(<module name="sample_app" type="App"/>)");
  EXPECT_EQ(DynamicLoad(L"sample_idle", "IdleHandler"), 1);
  EXPECT_EQ(g_journal.back(), "sample_app got an idle handler");
  EXPECT_EQ(DynamicLoad(L"sample_app_too"), 1);
  EXPECT_EQ(registry.GetAppProvider(), dynamic_cast<Cmm::IQXAppProvider*>(Client("sample_app")));
  EXPECT_EQ(DynamicLoad(L"sample_idle", "IdleHandler"), 1);
  EXPECT_EQ(std::count(g_journal.begin(), g_journal.end(), "sample_app got an idle handler"), 1);
  EXPECT_EQ(DynamicLoad(L""), 0);
  EXPECT_EQ(loader.DynamicLoadModule(L"", L"sample_good", ""), 0);
}

TEST_F(ModuleLoaderTest, ADynamicModuleIsEndedAndUnloaded) {
  DynamicLoad(L"sample_good");
  EXPECT_EQ(DynamicUnload(L"sample_good"), 1);
  EXPECT_EQ(g_journal.back(), "sample_good term");
  EXPECT_FALSE(IsLoaded("sample_good.dll"));
  EXPECT_EQ(Client("sample_good"), nullptr);
}

TEST_F(ModuleLoaderTest, UnloadingANameThatWasNeverLoadedIsOne) {
  EXPECT_EQ(DynamicUnload(L"sample_good"), 1);
}

TEST_F(ModuleLoaderTest, AModuleThatTheBusDoesNotKnowIsLeftAsItIs) {
  DynamicLoad(L"sample_good");
  bus.UnregisterClient(Client("sample_good"));
  EXPECT_EQ(DynamicUnload(L"sample_good"), 0);
  EXPECT_TRUE(IsLoaded("sample_good.dll"));
  EXPECT_EQ(DynamicLoad(L"sample_good"), 1);
  EXPECT_THAT(g_journal, ElementsAre("sample_good init"));
}

TEST_F(ModuleLoaderTest, AnEndThatFailsGivesZeroAndTheModuleIsUnloadedAllTheSame) {
  DynamicLoad(L"sample_failing_term");
  EXPECT_EQ(DynamicUnload(L"sample_failing_term"), 0);
  EXPECT_FALSE(IsLoaded("sample_failing_term.dll"));
  EXPECT_EQ(DynamicUnload(L"sample_failing_term"), 1);  // it has no name any more
}

TEST_F(ModuleLoaderTest, AModuleIsUnloadedByItsInstance) {
  Load(R"(<module name="sample_good"/><module name="sample_other"/>)");
  EXPECT_EQ(loader.UnloadModuleInstance(Client("sample_good")), 1);
  EXPECT_FALSE(IsLoaded("sample_good.dll"));
  EXPECT_TRUE(IsLoaded("sample_other.dll"));
  EXPECT_EQ(loader.UnloadModuleInstance(nullptr), 1);
  EXPECT_EQ(loader.UnloadModuleInstance(bus.GetClientProxy()), 1);
  EXPECT_TRUE(IsLoaded("sample_other.dll"));
}

TEST_F(ModuleLoaderTest, TheInstanceOfALibraryCanBeReplaced) {
  Load(R"(<module name="sample_good"/>)");
  EXPECT_EQ(loader.SetModuleInstance("sample_good.dll", bus.GetClientProxy()), 1);
  g_journal.clear();
  Cmm::CmmInternelMsg message;
  loader.BroadcastMessageToModules("topic", &message);
  EXPECT_THAT(g_journal, IsEmpty());
  EXPECT_EQ(loader.SetModuleInstance("sample_good.dll", nullptr), 1);
  EXPECT_EQ(loader.BroadcastMessageToModules("topic", &message), 1);
  EXPECT_EQ(loader.SetModuleInstance(nullptr, bus.GetClientProxy()), 1);
  EXPECT_EQ(loader.SetModuleInstance("kernel32.dll", bus.GetClientProxy()), 1);
  EXPECT_EQ(loader.SetModuleInstance("not_loaded.dll", bus.GetClientProxy()), 1);
}

}  // namespace
