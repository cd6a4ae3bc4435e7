// Definitions and instances: what the service keeps, finds and gives up.

#include <atomic>
#include <thread>
#include <vector>

#include "tests/archive/ArchiveTesting.h"
#include "tests/archive/ServiceFixture.h"

namespace {

using namespace archive_testing;
using Cmm::CCmmArchiveService;
using Cmm::ICmmArchiveObject;
using Cmm::Archive::CCmmArchivePackageTree;
using Cmm::Archive::CCmmArchiveServiceImp;
using testing::IsNull;
using testing::NotNull;

class ArchiveService : public ServiceTest {
 protected:
  // A definition with one leaf, named after its place among all definitions.
  static void Define(const wchar_t* name, int version) {
    auto package = std::make_unique<CCmmArchivePackageTree>();
    package->SetName(name);
    package->SetVersion(version);
    package->GetRoot()->SetName(name);
    const std::wstring leaf = L"d" + std::to_wstring(DefineCount());
    package->GetRoot()->AppendChild(Leaf(leaf.c_str(), CCmmArchiveVarivant::ArchDataType_Int32));
    Service().AppendPackageDefineWithoutLock(std::move(package));
  }

  // The index of the definition found; -1 at the end of the list.
  static int Find(const wchar_t* name, int version) {
    const auto found = Service().FindPackageDefineWithoutLock(name, version);
    EXPECT_EQ(Service().FindPackageDefine(name, version, 0), found);
    EXPECT_EQ(Service().FindPackageDefine(name, version, 1), found);
    const auto& all = Service().GetPackageDefines();
    return found == all.end() ? -1 : static_cast<int>(found - all.begin());
  }
};

// ---- Definitions --------------------------------------------------------------------------------------

TEST_F(ArchiveService, DefinitionsAreFoundByNameAndVersionTheEarliestFirst) {
  Define(L"a", 1);
  Define(L"a", 2);
  Define(L"b", 2);
  Define(L"a", 2);
  EXPECT_EQ(Find(L"a", 1), 0);
  EXPECT_EQ(Find(L"a", 2), 1);
  EXPECT_EQ(Find(L"a", -1), 0);
  EXPECT_EQ(Find(L"b", 2), 2);
  EXPECT_EQ(Find(L"a", 3), -1);
  EXPECT_EQ(Find(L"c", -1), -1);
}

TEST_F(ArchiveService, ADefinitionOfVersionMinusOneMatchesAnyVersion) {
  Define(L"a", 5);
  Define(L"a", -1);
  Define(L"a", 7);
  EXPECT_EQ(Find(L"a", 5), 0);
  EXPECT_EQ(Find(L"a", 7), 1);
  EXPECT_EQ(Find(L"a", 12345), 1);
  EXPECT_EQ(Find(L"a", -2), 1);
}

TEST_F(ArchiveService, NamesAreComparedExactly) {
  Define(L"com.Velm.a", 1);
  EXPECT_EQ(Find(L"com.velm.a", 1), -1);
  EXPECT_EQ(Find(L"com.Velm.a ", 1), -1);
  EXPECT_EQ(Find(L"com.Velm.", 1), -1);
  EXPECT_EQ(Find(L"", 1), -1);
}

TEST_F(ArchiveService, AddPackageDefine0AddsARootOfTheNameWithoutFields) {
  EXPECT_EQ(Service().AddPackageDefine0("com.test.none"), 1);
  ASSERT_EQ(DefineCount(), 1u);
  CCmmArchivePackageTree* package = Service().GetPackageDefines()[0];
  EXPECT_EQ(package->GetName(), L"com.test.none");
  EXPECT_EQ(package->GetVersion(), 10000);
  EXPECT_EQ(package->GetRoot()->GetName(), L"com.test.none");
  EXPECT_THAT(package->GetRoot()->GetFirstChild(L""), IsNull());
}

TEST_F(ArchiveService, AddPackageDefine0ReadsThePackagesNameInTheAnsiCodePageAndTheRootsInUtf8) {
  const char* name = "caf\xC3\xA9";
  EXPECT_EQ(Service().AddPackageDefine0(name), 1);
  CStringW ansi;
  ansi.AssignOther(name);
  EXPECT_EQ(Service().GetPackageDefines()[0]->GetName(), ansi);
  EXPECT_EQ(Service().GetPackageDefines()[0]->GetRoot()->GetName(), L"caf\u00E9");
}

TEST_F(ArchiveService, AddPackageDefineNReadsBothNamesInUtf8) {
  EXPECT_EQ(Service().AddPackageDefine1<int>("caf\xC3\xA9", "\xC3\xA9"), 1);
  EXPECT_EQ(Service().GetPackageDefines()[0]->GetName(), L"caf\u00E9");
  EXPECT_EQ(Service().GetPackageDefines()[0]->GetRoot()->GetName(), L"caf\u00E9");
  EXPECT_EQ(First(Service().GetPackageDefines()[0]->GetRoot())->GetName(), L"\u00E9");
}

TEST_F(ArchiveService, ANullNameAddsNothing) {
  EXPECT_EQ(Service().AddPackageDefine0(nullptr), 0);
  EXPECT_EQ(Service().AddPackageDefine1<int>(nullptr, "a"), 0);
  EXPECT_EQ(DefineCount(), 0u);
}

TEST_F(ArchiveService, ANullFieldNameIsTheEmptyName) {
  EXPECT_EQ(Service().AddPackageDefine1<int>("n", nullptr), 1);
  EXPECT_EQ(First(Service().GetPackageDefines()[0]->GetRoot())->GetName(), L"");
}

TEST_F(ArchiveService, EveryFieldTypeDeclaresItsTagAndItsDefault) {
  EXPECT_EQ((Service().AddPackageDefine6<int, unsigned, int64_t, uint64_t, CStringA, CStringW>(
                "n", "i32", "u32", "i64", "u64", "str", "wstr")),
            1);
  CCmmArchiveTreeNode* node = First(Service().GetPackageDefines()[0]->GetRoot());
  for (const auto& [name, type] : {std::pair{L"i32", CCmmArchiveVarivant::ArchDataType_Int32},
                                   {L"u32", CCmmArchiveVarivant::ArchDataType_UInt32},
                                   {L"i64", CCmmArchiveVarivant::ArchDataType_Int64},
                                   {L"u64", CCmmArchiveVarivant::ArchDataType_UInt64},
                                   {L"str", CCmmArchiveVarivant::ArchDataType_String},
                                   {L"wstr", CCmmArchiveVarivant::ArchDataType_String}}) {
    ASSERT_THAT(node, NotNull());
    EXPECT_EQ(node->GetName(), name);
    EXPECT_EQ(node->GetData().GetDataType(), type);
    EXPECT_EQ(node->GetData().GetUInt64(), 0u);
    EXPECT_EQ(node->IsContainer(), 0);
    EXPECT_EQ(node->IsText(), 0);
    EXPECT_EQ(node->IsEssential(), 1);
    EXPECT_EQ(node->GetCountAttr(), 1);
    node = Next(node);
  }
  EXPECT_THAT(node, IsNull());
}

TEST_F(ArchiveService, FifteenFieldsAreAddedInOrder) {
  EXPECT_EQ(
      (Service()
           .AddPackageDefine15<int, int, int, int, int, int, int, int, int, int, int, int, int, int, int>(
               "n", "a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o")),
      1);
  EXPECT_EQ(Outline(Service().GetPackageDefines()[0]->GetRoot()),
            "a=0 b=0 c=0 d=0 e=0 f=0 g=0 h=0 i=0 j=0 k=0 l=0 m=0 n=0 o=0");
}

TEST_F(ArchiveService, ASecondDefinitionOfANameIsKeptAndNeverFound) {
  Service().AddPackageDefine1<int>("n", "first");
  Service().AddPackageDefine1<int>("n", "second");
  EXPECT_EQ(DefineCount(), 2u);
  EXPECT_EQ(Find(L"n", -1), 0);
  EXPECT_EQ(Find(L"n", 10000), 0);
  EXPECT_EQ(Outline(CCmmArchiveService::MakeObject(L"n", -1)), "first=0");
}

// ---- Instances ----------------------------------------------------------------------------------------

TEST_F(ArchiveService, MakeObjectGivesAnInstanceOfItsOwn) {
  Service().AddPackageDefine1<int>("n", "a");
  ICmmArchiveObject* one = CCmmArchiveService::MakeObject(L"n", 10000);
  ICmmArchiveObject* two = CCmmArchiveService::MakeObject(L"n", -1);
  ASSERT_THAT(one, NotNull());
  ASSERT_THAT(two, NotNull());
  EXPECT_NE(one, two);
  First(one)->GetData().SetInt32(7);
  EXPECT_EQ(Outline(two), "a=0");
  EXPECT_EQ(Outline(Service().GetPackageDefines()[0]->GetRoot()), "a=0");
  EXPECT_EQ(one->GetName(), L"n");
  ASSERT_EQ(InstanceCount(), 2u);
  EXPECT_EQ(Service().GetDuplicatedPackages()[0]->GetRoot(), one);
  EXPECT_EQ(Service().GetDuplicatedPackages()[1]->GetRoot(), two);
}

TEST_F(ArchiveService, MakeObjectWithoutADefinitionGivesNull) {
  Service().AddPackageDefine0("n");
  EXPECT_THAT(CCmmArchiveService::MakeObject(L"m", -1), IsNull());
  EXPECT_THAT(CCmmArchiveService::MakeObject(L"n", 1), IsNull());
  EXPECT_EQ(InstanceCount(), 0u);
}

TEST_F(ArchiveService, InstancesAreFoundByTheirRoot) {
  Service().AddPackageDefine0("n");
  ICmmArchiveObject* one = CCmmArchiveService::MakeObject(L"n", -1);
  ICmmArchiveObject* two = CCmmArchiveService::MakeObject(L"n", -1);
  const auto& all = Service().GetDuplicatedPackages();
  for (int lock : {0, 1}) {
    EXPECT_EQ(Service().FindDuplicatedPackage(one, lock) - all.begin(), 0);
    EXPECT_EQ(Service().FindDuplicatedPackage(two, lock) - all.begin(), 1);
    EXPECT_EQ(Service().FindDuplicatedPackage(nullptr, lock), all.end());
    EXPECT_EQ(Service().FindDuplicatedPackage(Service().GetPackageDefines()[0]->GetRoot(), lock), all.end());
  }
}

TEST_F(ArchiveService, FreeingAnInstanceKeepsTheOrderOfTheOthers) {
  Service().AddPackageDefine0("n");
  ICmmArchiveObject* one = CCmmArchiveService::MakeObject(L"n", -1);
  ICmmArchiveObject* two = CCmmArchiveService::MakeObject(L"n", -1);
  ICmmArchiveObject* three = CCmmArchiveService::MakeObject(L"n", -1);
  CCmmArchiveService::FreeArchiveObject(two);
  ASSERT_EQ(InstanceCount(), 2u);
  EXPECT_EQ(Service().GetDuplicatedPackages()[0]->GetRoot(), one);
  EXPECT_EQ(Service().GetDuplicatedPackages()[1]->GetRoot(), three);
}

TEST_F(ArchiveService, FreeingNullOrWhatIsNoInstanceDoesNothing) {
  Service().AddPackageDefine1<int>("n", "a");
  ICmmArchiveObject* one = CCmmArchiveService::MakeObject(L"n", -1);
  CCmmArchiveService::FreeArchiveObject(nullptr);
  CCmmArchiveTreeNode stranger;
  CCmmArchiveService::FreeArchiveObject(&stranger);
  CCmmArchiveService::FreeArchiveObject(First(one));
  CCmmArchiveService::FreeArchiveObject(Service().GetPackageDefines()[0]->GetRoot());
  EXPECT_EQ(InstanceCount(), 1u);
  EXPECT_EQ(DefineCount(), 1u);
  EXPECT_EQ(Outline(one), "a=0");
}

TEST_F(ArchiveService, FlatternPrintsAnInstance) {
  Service().AddPackageDefine2<unsigned, unsigned>("com.velm.app.log.startchannel", "ChannelId", "GroupId");
  ICmmArchiveObject* object = CCmmArchiveService::MakeObject(L"com.velm.app.log.startchannel", -1);
  First(object)->GetData().SetUInt32(7);
  Next(First(object))->GetData().SetUInt32(3);
  EXPECT_EQ(Flatten(object),
            "<com.velm.app.log.startchannel ChannelId=\"7\" GroupId=\"3\" version=\"10000\"/>\n");
}

TEST_F(ArchiveService, FlatternOfWhatIsNoInstanceOrOfAnotherTypeGivesNull) {
  Service().AddPackageDefine1<int>("n", "a");
  ICmmArchiveObject* object = CCmmArchiveService::MakeObject(L"n", -1);
  EXPECT_THAT(CCmmArchiveService::Flattern(nullptr, kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::Flattern(First(object), kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::Flattern(Service().GetPackageDefines()[0]->GetRoot(), kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::Flattern(object, kByte), IsNull());
}

TEST_F(ArchiveService, ClearingDestroysDefinitionsAndInstances) {
  Service().AddPackageDefine1<int>("n", "a");
  CCmmArchiveService::MakeObject(L"n", -1);
  CCmmArchiveService::ClearAllPackageDefines();
  EXPECT_EQ(DefineCount(), 0u);
  EXPECT_EQ(InstanceCount(), 0u);
  EXPECT_EQ(Find(L"n", -1), -1);
  EXPECT_THAT(CCmmArchiveService::MakeObject(L"n", -1), IsNull());
  Service().AddPackageDefine1<int>("n", "b");
  EXPECT_EQ(Outline(CCmmArchiveService::MakeObject(L"n", -1)), "b=0");
}

TEST_F(ArchiveService, EachListIsClearedAlone) {
  Service().AddPackageDefine1<int>("n", "a");
  ICmmArchiveObject* object = CCmmArchiveService::MakeObject(L"n", -1);
  Service().ClearAllPackageDefines();
  EXPECT_EQ(DefineCount(), 0u);
  EXPECT_EQ(Flatten(object), "<n a=\"0\" version=\"10000\"/>\n");
  Service().ClearAllDuplicatedPackage();
  EXPECT_EQ(InstanceCount(), 0u);
}

TEST_F(ArchiveService, DumpChangesNothing) {
  Service().AddPackageDefine0("n");
  Service().Dump();
  EXPECT_EQ(DefineCount(), 1u);
}

TEST_F(ArchiveService, TheEndOfAServiceLeavesItsPackagesUndestroyed) {
  auto service = std::make_unique<CCmmArchiveServiceImp>();
  service->AddPackageDefine1<int>("n", "a");
  ICmmArchiveObject* object = service->MakeObject(L"n", -1);
  const std::unique_ptr<CCmmArchivePackageTree> definition(service->GetPackageDefines()[0]);
  const std::unique_ptr<CCmmArchivePackageTree> instance(service->GetDuplicatedPackages()[0]);
  service.reset();
  EXPECT_EQ(Outline(definition->GetRoot()), "a=0");
  EXPECT_EQ(Outline(object), "a=0");
}

// ---- Threads ------------------------------------------------------------------------------------------

TEST_F(ArchiveService, ManyThreadsDefineMakePrintParseAndFreeAtOnce) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 300;
  std::atomic<int> failures = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &failures] {
      const std::string name = "com.test.t" + std::to_string(t);
      const std::string text = "<" + name + " a=\"5\" version=\"10000\"/>\n";
      for (int i = 0; i < kRounds; ++i) {
        Service().AddPackageDefine1<int>(name.c_str(), "a");
        ICmmArchiveObject* made = CCmmArchiveService::MakeObject(std::wstring(name.begin(), name.end()), -1);
        ICmmArchiveObject* parsed = Parse(text);
        if (made && parsed) {
          First(made)->GetData().SetInt32(5);
          if (Flatten(made) != text || Flatten(parsed) != text) ++failures;
        } else {
          ++failures;
        }
        CCmmArchiveService::FreeArchiveObject(made);
        CCmmArchiveService::FreeArchiveObject(parsed);
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(InstanceCount(), 0u);
  EXPECT_EQ(DefineCount(), size_t{kThreads} * kRounds);
}

}  // namespace
