#include "archive/ArchivePackageTree.h"

#include "tests/archive/ArchiveTesting.h"

#include "gmock/gmock.h"

namespace {

using namespace archive_testing;
using Cmm::ICmmArchiveStream;
using Cmm::Archive::CCmmArchivePackageTree;
using Cmm::Archive::CCmmArchiveXmlStream;
using testing::IsNull;
using testing::NotNull;

constexpr auto kXml = ICmmArchiveStream::StreamType_Xml;
constexpr auto kByte = ICmmArchiveStream::StreamType_Byte;
constexpr auto kNeither = static_cast<ICmmArchiveStream::StreamType>(3);

std::string Text(CCmmArchivePackageTree& package) {
  const std::unique_ptr<ICmmArchiveStream> stream(package.Flattern(kXml));
  if (!stream) return "(null)";
  return {reinterpret_cast<const char*>(stream->GetStreamData()), stream->GetStreamSize()};
}

// A package of two numbers.
class ArchivePackageTree : public testing::Test {
 protected:
  ArchivePackageTree() {
    package.SetName(L"com.test");
    package.SetVersion(3);
    package.GetRoot()->SetName(L"com.test");
    package.GetRoot()->AppendChild(Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32));
    package.GetRoot()->AppendChild(Leaf(L"b", CCmmArchiveVarivant::ArchDataType_Int32));
  }

  // What reading a stream over the element of `text` gives.
  int Read(const std::string& text) {
    Element element(text);
    CCmmArchiveXmlStream stream(element, 0);
    return package.ReadFromStream(&stream, kXml);
  }

  CCmmArchivePackageTree package;
};

TEST_F(ArchivePackageTree, GetRootMakesAContainerWithoutANameOnTheFirstCall) {
  CCmmArchivePackageTree empty;
  CCmmArchiveTreeNode* root = empty.GetRoot();
  ASSERT_THAT(root, NotNull());
  EXPECT_EQ(root->IsContainer(), 1);
  EXPECT_EQ(root->GetName(), L"");
  EXPECT_EQ(root->GetCountAttr(), 1);
  EXPECT_EQ(root->IsEssential(), 1);
  EXPECT_EQ(empty.GetRoot(), root);
}

TEST_F(ArchivePackageTree, ADuplicateHasTheNameTheVersionAndATreeOfItsOwn) {
  First(package.GetRoot())->GetData().SetInt32(7);
  for (int flag : {0, 1}) {
    const std::unique_ptr<CCmmArchivePackageTree> copy(package.DuplicateTree(flag));
    EXPECT_EQ(copy->GetName(), L"com.test");
    EXPECT_EQ(copy->GetVersion(), 3);
    EXPECT_NE(copy->GetRoot(), package.GetRoot());
    EXPECT_EQ(Outline(copy->GetRoot()), "a=7 b=0");
  }
}

TEST_F(ArchivePackageTree, APackageWithoutARootIsDuplicatedWithoutOne) {
  CCmmArchivePackageTree empty;
  const std::unique_ptr<CCmmArchivePackageTree> copy(empty.DuplicateTree(0));
  EXPECT_THAT(copy->Flattern(kXml), IsNull());
}

TEST_F(ArchivePackageTree, FlatternPrintsTheVersionAsTheLastAttribute) {
  EXPECT_EQ(Text(package), "<com.test a=\"0\" b=\"0\" version=\"3\"/>\n");
  package.SetVersion(-1);
  EXPECT_EQ(Text(package), "<com.test a=\"0\" b=\"0\" version=\"-1\"/>\n");
}

TEST_F(ArchivePackageTree, AFieldThatIsNamedVersionGivesUpItsValueToThePackages) {
  package.GetRoot()->AppendChild(Leaf(L"version", CCmmArchiveVarivant::ArchDataType_Int32));
  package.GetRoot()->AppendChild(Leaf(L"c", CCmmArchiveVarivant::ArchDataType_Int32));
  EXPECT_EQ(Text(package), "<com.test a=\"0\" b=\"0\" version=\"3\" c=\"0\"/>\n");
}

TEST_F(ArchivePackageTree, FlatternOfAnyOtherTypeGivesNull) {
  EXPECT_THAT(package.Flattern(kByte), IsNull());
  EXPECT_THAT(package.Flattern(kNeither), IsNull());
}

TEST_F(ArchivePackageTree, FlatternOfARootThatIsNoContainerGivesNull) {
  package.GetRoot()->SetAsContainer(0);
  EXPECT_THAT(package.Flattern(kXml), IsNull());
}

TEST_F(ArchivePackageTree, ReadFromStreamFillsTheTreeWhateverTheNameAndTheVersion) {
  EXPECT_EQ(Read("<other a='1' b='2' version='99'/>"), 1);
  EXPECT_EQ(Outline(package.GetRoot()), "a=1 b=2");
}

TEST_F(ArchivePackageTree, ReadFromStreamFailsWithMinusOne) {
  EXPECT_EQ(Read("<com.test a='1'/>"), -1);
}

TEST_F(ArchivePackageTree, ReadFromStreamRefusesTheByteFormBeforeItLooksAtTheStream) {
  EXPECT_EQ(package.ReadFromStream(nullptr, kByte), -1);
  EXPECT_EQ(package.ReadFromStream(nullptr, kNeither), 0);
  Element element("<com.test a='1' b='2'/>");
  CCmmArchiveXmlStream stream(element, 0);
  EXPECT_EQ(package.ReadFromStream(&stream, kByte), -1);
  EXPECT_EQ(package.ReadFromStream(&stream, kNeither), 0);
  EXPECT_EQ(Outline(package.GetRoot()), "a=0 b=0");
}

TEST_F(ArchivePackageTree, ReadFromStreamNeedsAStreamWithAnElement) {
  EXPECT_EQ(package.ReadFromStream(nullptr, kXml), -1);
  CCmmArchiveXmlStream withoutElement(nullptr, 0);
  EXPECT_EQ(package.ReadFromStream(&withoutElement, kXml), -1);
  Cmm::Archive::CCmmArchiveByteStream bytes(CStringA("<com.test a='1' b='2'/>"));
  EXPECT_EQ(package.ReadFromStream(&bytes, kXml), -1);
}

TEST_F(ArchivePackageTree, ReadFromStreamIntoARootWithoutChildrenSucceeds) {
  CCmmArchivePackageTree empty;
  Element element("<any/>");
  CCmmArchiveXmlStream stream(element, 0);
  EXPECT_EQ(empty.ReadFromStream(&stream, kXml), 1);
}

}  // namespace
