// Definitions out of files.

#include "archive/ArchiveDefineFile.h"

#include "tests/archive/ArchiveTesting.h"
#include "tests/archive/ServiceFixture.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using namespace archive_testing;
using Cmm::CCmmArchiveService;
using testing::IsNull;
using testing::NotNull;

class ArchiveDefineFile : public ServiceTest {
 protected:
  CStringW File(const std::string& text) const {
    return m_directory.MakeFile(L"definitions.xml", text).wstring();
  }
  int Read(const std::string& text) const { return CCmmArchiveService::ReadPackageDefineFile(File(text)); }

  // The first child of the root of the last definition.
  static CCmmArchiveTreeNode* FirstNode() { return First(Service().GetPackageDefines().back()->GetRoot()); }
  // The node that this "Node" element gives; null when it gives none.
  CCmmArchiveTreeNode* ReadNode(const std::string& attributes, const std::string& content = "") const {
    EXPECT_EQ(Read("<d><CmmPdu name='p'><Node " + attributes + ">" + content + "</Node></CmmPdu></d>"), 1);
    return FirstNode();
  }

 private:
  velm_test::ScratchDirectory m_directory;
};

TEST_F(ArchiveDefineFile, AFileThatDoesNotLoadFails) {
  EXPECT_EQ(CCmmArchiveService::ReadPackageDefineFile(L"no such file.xml"), 0);
  EXPECT_EQ(CCmmArchiveService::ReadPackageDefineFile(L""), 0);
  EXPECT_EQ(Read(""), 0);
  EXPECT_EQ(Read("<d><CmmPdu name='a'/>"), 0);
  EXPECT_EQ(Read("no xml"), 0);
  EXPECT_EQ(DefineCount(), 0u);
}

TEST_F(ArchiveDefineFile, AFileWithoutAnElementFails) {
  EXPECT_EQ(Read("<!-- nothing -->"), 0);
}

TEST_F(ArchiveDefineFile, AFileWithoutDefinitionsSucceedsAndAddsNothing) {
  EXPECT_EQ(Read("<definitions/>"), 1);
  EXPECT_EQ(Read("<CmmPdu name='a'/>"), 1);
  EXPECT_EQ(Read("<d><cmmpdu name='a'/><x><CmmPdu name='b'/></x></d>"), 1);
  EXPECT_EQ(DefineCount(), 0u);
}

TEST_F(ArchiveDefineFile, EveryCmmPduOfTheWrapperIsAddedInOrder) {
  EXPECT_EQ(Read("<?xml version='1.0'?><anything>\n<CmmPdu name='a' version='3'/><other/>"
                 "<CmmPdu/><CmmPdu name='caf\xC3\xA9'/></anything>"),
            1);
  ASSERT_EQ(DefineCount(), 2u);
  const auto& all = Service().GetPackageDefines();
  EXPECT_EQ(all[0]->GetName(), L"a");
  EXPECT_EQ(all[0]->GetVersion(), 3);
  EXPECT_EQ(all[0]->GetRoot()->GetName(), L"a");
  EXPECT_EQ(all[1]->GetName(), L"caf\u00E9");
  EXPECT_EQ(all[1]->GetVersion(), -1);
  EXPECT_EQ(all[1]->GetRoot()->GetName(), L"caf\u00E9");
  EXPECT_EQ(all[1]->GetRoot()->IsContainer(), 1);
}

TEST_F(ArchiveDefineFile, OnlyTheFirstElementOfTheFileIsTheWrapper) {
  EXPECT_EQ(Read("<a><CmmPdu name='one'/></a><b><CmmPdu name='two'/></b>"), 1);
  EXPECT_EQ(DefineCount(), 1u);
}

TEST_F(ArchiveDefineFile, ANodeIsAnEssentialTextLeafOfCountOneByDefault) {
  CCmmArchiveTreeNode* node = ReadNode("name='n'");
  ASSERT_THAT(node, NotNull());
  EXPECT_EQ(node->GetName(), L"n");
  EXPECT_EQ(node->IsContainer(), 0);
  EXPECT_EQ(node->IsText(), 0);
  EXPECT_EQ(node->IsEssential(), 1);
  EXPECT_EQ(node->GetCountAttr(), 1);
  EXPECT_EQ(node->GetData().GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
  EXPECT_THAT(node->GetData().GetString(), IsNull());
}

TEST_F(ArchiveDefineFile, ANodeWithoutANameIsPassedOver) {
  EXPECT_EQ(Read("<d><CmmPdu name='p'><Node/><Node name='a' isContainer='1'><Node/><Node name='b'/></Node>"
                 "<other name='x'/><Node name='c'/></CmmPdu></d>"),
            1);
  EXPECT_EQ(Outline(Service().GetPackageDefines().back()->GetRoot()), "a(b) c");
}

TEST_F(ArchiveDefineFile, EveryDataTypeHasItsTag) {
  for (const auto& [text, type] : {std::pair{"String", CCmmArchiveVarivant::ArchDataType_String},
                                   {"", CCmmArchiveVarivant::ArchDataType_String},
                                   {"Int32", CCmmArchiveVarivant::ArchDataType_Int32},
                                   {"UInt32", CCmmArchiveVarivant::ArchDataType_UInt32},
                                   {"BOOL", CCmmArchiveVarivant::ArchDataType_Bool},
                                   {"Char", CCmmArchiveVarivant::ArchDataType_Char},
                                   {"Float", CCmmArchiveVarivant::ArchDataType_Float},
                                   {"Double", CCmmArchiveVarivant::ArchDataType_Double}}) {
    CCmmArchiveTreeNode* node = ReadNode(std::string("name='n' dataType='") + text + "'");
    EXPECT_EQ(node->GetData().GetDataType(), type) << text;
    EXPECT_EQ(node->GetData().GetUInt64(), 0u) << text;
    EXPECT_EQ(node->IsText(), 0) << text;
  }
}

TEST_F(ArchiveDefineFile, TheTypeTextMakesATextNode) {
  CCmmArchiveTreeNode* node = ReadNode("name='n' dataType='Text'");
  EXPECT_EQ(node->IsText(), 1);
  EXPECT_EQ(node->GetData().GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
  EXPECT_THAT(node->GetData().GetString(), IsNull());
}

TEST_F(ArchiveDefineFile, The64BitTypesHaveNoTextSoThatTheirNodesStayUntypedAndFailInput) {
  for (const char* text : {"Int64", "UInt64", "int32", "Bool", " Int32", "Object"}) {
    CCmmArchiveTreeNode* node = ReadNode(std::string("name='n' dataType='") + text + "'");
    EXPECT_EQ(node->GetData().GetDataType(), CCmmArchiveVarivant::ArchDataType_Empty) << text;
  }
  Service().ClearAllPackageDefines();
  ReadNode("name='n' isEssential='0' dataType='Int64'");
  EXPECT_THAT(Parse("<p n='1'/>"), IsNull());
  EXPECT_EQ(Flatten(CCmmArchiveService::MakeObject(L"p", -1)), "<p version=\"-1\"/>\n");
}

TEST_F(ArchiveDefineFile, OnlyAValueOfExactlyOneMakesAContainer) {
  EXPECT_EQ(ReadNode("name='n' isContainer='1'")->IsContainer(), 1);
  for (const char* value : {"0", "2", "-1", "true", "", "11"})
    EXPECT_EQ(ReadNode(std::string("name='n' isContainer='") + value + "'")->IsContainer(), 0) << value;
}

TEST_F(ArchiveDefineFile, OnlyAValueOfExactlyOneIsEssentialAndAnUnreadableOneIsTheDefault) {
  EXPECT_EQ(ReadNode("name='n' isEssential='1'")->IsEssential(), 1);
  EXPECT_EQ(ReadNode("name='n' isEssential='x'")->IsEssential(), 1);
  for (const char* value : {"0", "2", "-1"})
    EXPECT_EQ(ReadNode(std::string("name='n' isEssential='") + value + "'")->IsEssential(), 0) << value;
}

TEST_F(ArchiveDefineFile, TheCountIsTakenAsItStands) {
  for (int count : {-1, 0, 1, 7, -5})
    EXPECT_EQ(ReadNode("name='n' count='" + std::to_string(count) + "'")->GetCountAttr(), count);
  EXPECT_EQ(ReadNode("name='n' count='x'")->GetCountAttr(), 1);
}

TEST_F(ArchiveDefineFile, AContainerTakesNodesOfItsOwnAndNoType) {
  CCmmArchiveTreeNode* node = ReadNode("name='n' isContainer='1' dataType='Int32'",
                                       "<Node name='a' dataType='Int32'/><Node name='in' isContainer='1'>"
                                       "<Node name='b' dataType='Int32'/></Node>");
  EXPECT_EQ(Outline(node), "a=0 in(b=0)");
  EXPECT_EQ(node->GetData().GetDataType(), CCmmArchiveVarivant::ArchDataType_Empty);
}

TEST_F(ArchiveDefineFile, ALeafIgnoresNodesBelowIt) {
  EXPECT_EQ(Outline(ReadNode("name='n'", "<Node name='a'/>")), "");
}

TEST_F(ArchiveDefineFile, AMessageOfAFilesDefinitionReadsAndPrints) {
  EXPECT_EQ(Read("<d><CmmPdu name='com.test.list' version='2'><Node name='title'/>"
                 "<Node name='item' isContainer='1' count='-1'><Node name='id' dataType='Int32'/></Node>"
                 "<Node name='tail' isContainer='1'/></CmmPdu></d>"),
            1);
  Cmm::ICmmArchiveObject* object =
      Parse("<com.test.list title='t' version='2'><item id='1'/><tail/><item id='2'/></com.test.list>");
  ASSERT_THAT(object, NotNull());
  // The second item stands at the end of the list, so it prints behind the tail.
  EXPECT_EQ(Flatten(object),
            "<com.test.list title=\"t\" version=\"2\">\n"
            "    <item id=\"1\"/>\n"
            "    <tail/>\n"
            "    <item id=\"2\"/>\n"
            "</com.test.list>\n");
}

TEST_F(ArchiveDefineFile, AFileThatNestsTooDeepFailsAndAddsNothing) {
  std::string text;
  for (int i = 0; i < 10'000; ++i)
    text += "<Node name='n' isContainer='1'>";
  EXPECT_EQ(Read("<d><CmmPdu name='p'>" + text), 0);
  for (int i = 0; i < 10'000; ++i)
    text += "</Node>";
  EXPECT_EQ(Read("<d><CmmPdu name='p'>" + text + "</CmmPdu></d>"), 0);
  EXPECT_EQ(DefineCount(), 0u);
}

TEST_F(ArchiveDefineFile, ReadingAStreamOfDefinitionsIsReservedAndFails) {
  const unsigned char text[] = "<d><CmmPdu name='a'/></d>";
  EXPECT_EQ(CCmmArchiveService::ReadPackageDefineStream(text, sizeof(text), kXml), 0);
  EXPECT_EQ(CCmmArchiveService::ReadPackageDefineStream(nullptr, 0, kByte), 0);
  EXPECT_EQ(DefineCount(), 0u);
}

TEST_F(ArchiveDefineFile, ParseFileReadsAMessageFromAFile) {
  Service().AddPackageDefine1<int>("n", "a");
  const CStringW path = File("<n a='5'/>");
  Cmm::ICmmArchiveObject* object = CCmmArchiveService::ParseFile(path, kXml);
  ASSERT_THAT(object, NotNull());
  EXPECT_EQ(Outline(object), "a=5");
  EXPECT_EQ(InstanceCount(), 1u);
  EXPECT_THAT(CCmmArchiveService::ParseFile(path, kByte), IsNull());
  EXPECT_THAT(CCmmArchiveService::ParseFile(L"no such file.xml", kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::ParseFile(File("<n a='5'>"), kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::ParseFile(File("<n/>"), kXml), IsNull());
  EXPECT_EQ(InstanceCount(), 1u);
}

}  // namespace
