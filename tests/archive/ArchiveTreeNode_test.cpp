// Building trees of nodes, and finding one's way in them.

#include "tests/archive/ArchiveTesting.h"

#include "gmock/gmock.h"

namespace {

using namespace archive_testing;
using testing::IsNull;
using testing::NotNull;

// Says when it is destroyed.
class WatchedNode : public CCmmArchiveTreeNode {
 public:
  explicit WatchedNode(int& destroyed) : m_destroyed(destroyed) {}
  ~WatchedNode() override { ++m_destroyed; }

 private:
  int& m_destroyed;
};

TEST(ArchiveTreeNode, ANewNodeIsAnEssentialAttributeWithoutNameOrType) {
  CCmmArchiveTreeNode node;
  EXPECT_EQ(node.GetName(), L"");
  EXPECT_EQ(node.IsContainer(), 0);
  EXPECT_EQ(node.IsText(), 0);
  EXPECT_EQ(node.IsEssential(), 1);
  EXPECT_EQ(node.GetCountAttr(), 1);
  EXPECT_EQ(node.IsSupportLoop(), 0);
  EXPECT_EQ(node.IsParsed(), 0);
  EXPECT_EQ(node.GetData().GetDataType(), CCmmArchiveVarivant::ArchDataType_Empty);
  EXPECT_THAT(node.GetFirstChild(L""), IsNull());
  EXPECT_THAT(node.GetNextSibling(L""), IsNull());
}

TEST(ArchiveTreeNode, OnlyACountOfExactlyMinusOneSupportsALoop) {
  CCmmArchiveTreeNode node;
  for (int count : {-2, 0, 1, 2, 0x7FFFFFFF}) {
    node.SetCountAttr(count);
    EXPECT_EQ(node.IsSupportLoop(), 0) << count;
    EXPECT_EQ(node.GetCountAttr(), count);
  }
  node.SetCountAttr(-1);
  EXPECT_EQ(node.IsSupportLoop(), 1);
}

TEST(ArchiveTreeNode, AppendChildPutsTheChildBehindTheOthers) {
  const NodePtr root(Container(L"root"));
  CCmmArchiveTreeNode* a = Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32);
  CCmmArchiveTreeNode* b = Leaf(L"b", CCmmArchiveVarivant::ArchDataType_Int32);
  CCmmArchiveTreeNode* c = Leaf(L"c", CCmmArchiveVarivant::ArchDataType_Int32);
  EXPECT_EQ(root->AppendChild(a), 1);
  EXPECT_EQ(root->AppendChild(b), 1);
  EXPECT_EQ(root->AppendChild(c), 1);
  EXPECT_EQ(First(root.get()), a);
  EXPECT_EQ(Next(a), b);
  EXPECT_EQ(Next(b), c);
  EXPECT_THAT(Next(c), IsNull());
}

TEST(ArchiveTreeNode, AppendChildOfNullFails) {
  const NodePtr root(Container(L"root"));
  EXPECT_EQ(root->AppendChild(nullptr), 0);
  CCmmArchiveTreeNode leaf;
  EXPECT_EQ(leaf.AppendChild(nullptr), 0);
}

TEST(ArchiveTreeNode, AppendChildOnANodeThatIsNoContainerDestroysTheChild) {
  int destroyed = 0;
  CCmmArchiveTreeNode attribute;
  EXPECT_EQ(attribute.AppendChild(new WatchedNode(destroyed)), 0);
  EXPECT_EQ(destroyed, 1);
  const NodePtr text(TextNode(L"t"));
  EXPECT_EQ(text->AppendChild(new WatchedNode(destroyed)), 0);
  EXPECT_EQ(destroyed, 2);
  EXPECT_THAT(attribute.GetFirstChild(L""), IsNull());
}

TEST(ArchiveTreeNode, TheDestructorDestroysEveryChild) {
  int destroyed = 0;
  {
    const NodePtr root(Container(L"root", new WatchedNode(destroyed), new WatchedNode(destroyed)));
    root->AppendChild(Container(L"inner", new WatchedNode(destroyed)));
  }
  EXPECT_EQ(destroyed, 3);
}

TEST(ArchiveTreeNode, ManyChildrenAreAppendedInNoTime) {
  const NodePtr root(Container(L"root"));
  for (int i = 0; i < 200'000; ++i)
    root->AppendChild(new CCmmArchiveTreeNode);
  root->AppendChild(Leaf(L"last", CCmmArchiveVarivant::ArchDataType_Int32));
  EXPECT_THAT(root->GetFirstChild(L"last"), NotNull());
}

TEST(ArchiveTreeNode, DuplicateCopiesEveryPropertyAndEveryChildButNoParsedMark) {
  const NodePtr root(Container(L"root", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32, 0),
                               Counted(5, Container(L"in", TextNode(L"t")))));
  root->SetAsEssential(0);
  root->SetCountAttr(-1);
  First(root.get())->GetData().SetInt32(7);
  Element element("<root a='8'><in/></root>");
  root->LoadChildrenFromXml(element);
  ASSERT_EQ(First(root.get())->IsParsed(), 1);

  for (int flag : {0, 1, -1}) {
    const NodePtr copy(root->Duplicate(flag));
    EXPECT_EQ(copy->GetName(), L"root");
    EXPECT_EQ(copy->IsContainer(), 1);
    EXPECT_EQ(copy->IsEssential(), 0);
    EXPECT_EQ(copy->GetCountAttr(), -1);
    EXPECT_EQ(copy->IsParsed(), 0);
    EXPECT_EQ(Outline(copy.get()), "a=8 in(t)");
    CCmmArchiveTreeNode* a = First(copy.get());
    EXPECT_EQ(a->IsEssential(), 0);
    EXPECT_EQ(a->IsParsed(), 0);
    EXPECT_EQ(Next(a)->GetCountAttr(), 5);
    EXPECT_EQ(Next(a)->IsParsed(), 0);
    EXPECT_EQ(First(Next(a))->IsText(), 1);
  }
}

TEST(ArchiveTreeNode, ADuplicateIsIndependentOfItsSource) {
  NodePtr root(Container(L"root", Leaf(L"s", CCmmArchiveVarivant::ArchDataType_String)));
  First(root.get())->GetData().SetString(L"text");
  const NodePtr copy(root->Duplicate(0));
  First(root.get())->SetName(L"renamed");
  First(root.get())->GetData().SetString(L"other");
  root.reset();
  EXPECT_EQ(Outline(copy.get()), "s=text");
}

TEST(ArchiveTreeNode, DuplicateDoesNotFollowTheSiblingsOfTheNodeItself) {
  const NodePtr root(Container(L"root", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"b", CCmmArchiveVarivant::ArchDataType_Int32)));
  const NodePtr copy(First(root.get())->Duplicate(0));
  EXPECT_THAT(copy->GetNextSibling(L""), IsNull());
}

TEST(ArchiveTreeNode, DuplicateNodeAppendsTheCopyToTheNewParent) {
  const NodePtr source(Container(L"in", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32)));
  const NodePtr parent(Container(L"root", Leaf(L"b", CCmmArchiveVarivant::ArchDataType_Int32)));
  Cmm::ICmmArchiveObject* copy = source->DuplicateNode(parent.get());
  EXPECT_EQ(copy, Next(First(parent.get())));
  EXPECT_EQ(Outline(parent.get()), "b=0 in(a=0)");
  EXPECT_EQ(Outline(source.get()), "a=0");
}

TEST(ArchiveTreeNode, DuplicateNodeWithoutAContainerToTakeItGivesNull) {
  const NodePtr source(Container(L"in"));
  CCmmArchiveTreeNode leaf;
  EXPECT_THAT(source->DuplicateNode(nullptr), IsNull());
  EXPECT_THAT(source->DuplicateNode(&leaf), IsNull());
  EXPECT_THAT(leaf.GetFirstChild(L""), IsNull());
}

TEST(ArchiveTreeNode, ChildrenAreFoundByTheirExactNameFirstMatchFirst) {
  const NodePtr root(Container(L"root", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"B", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"a", CCmmArchiveVarivant::ArchDataType_UInt32)));
  CCmmArchiveTreeNode* first = First(root.get());
  EXPECT_EQ(root->GetFirstChild(L"a"), first);
  EXPECT_EQ(first->GetNextSibling(L"a"), Next(Next(first)));
  EXPECT_EQ(root->GetFirstChild(L"B"), Next(first));
  EXPECT_THAT(root->GetFirstChild(L"b"), IsNull());
  EXPECT_THAT(root->GetFirstChild(L"A"), IsNull());
  EXPECT_THAT(root->GetFirstChild(L"aa"), IsNull());
  EXPECT_THAT(root->GetFirstChild(CStringW(L"a\0", 2)), IsNull());
  EXPECT_THAT(Next(Next(first))->GetNextSibling(L"a"), IsNull());
}

TEST(ArchiveTreeNode, AnEmptyNameFindsTheFirstAtAll) {
  const NodePtr root(Container(L"root", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"", CCmmArchiveVarivant::ArchDataType_Int32)));
  EXPECT_EQ(root->GetFirstChild(L"")->GetName(), L"a");
  EXPECT_EQ(First(root.get())->GetNextSibling(L"")->GetName(), L"");
}

TEST(ArchiveTreeNode, LeavesAndTrunksAreFoundByPath) {
  const NodePtr root(
      Container(L"root", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32),
                Container(L"in", Container(L"deep", Leaf(L"b", CCmmArchiveVarivant::ArchDataType_Int32)))));
  EXPECT_EQ(root->GetLeafItem(Path({L"a"})), &First(root.get())->GetData());
  CCmmArchiveTreeNode* in = Next(First(root.get()));
  EXPECT_EQ(root->GetTrunkItem(Path({L"in"})), in);
  EXPECT_EQ(root->GetTrunkItem(Path({L"in", L"deep"})), First(in));
  EXPECT_EQ(root->GetLeafItem(Path({L"in", L"deep", L"b"})), &First(First(in))->GetData());
}

TEST(ArchiveTreeNode, APathOfDepthZeroLeadsToTheNodeItself) {
  const NodePtr root(Container(L"root"));
  EXPECT_EQ(root->GetTrunkItem(Path({})), root.get());
  EXPECT_THAT(root->GetLeafItem(Path({})), IsNull());
  CCmmArchiveTreeNode leaf;
  EXPECT_EQ(leaf.GetLeafItem(Path({})), &leaf.GetData());
  EXPECT_THAT(leaf.GetTrunkItem(Path({})), IsNull());
}

TEST(ArchiveTreeNode, AnEmptyNameInAPathLeadsToTheFirstChild) {
  const NodePtr root(
      Container(L"root", Container(L"in", Leaf(L"b", CCmmArchiveVarivant::ArchDataType_Int32))));
  EXPECT_EQ(root->GetLeafItem(Path({L"", L"b"})), &First(First(root.get()))->GetData());
  EXPECT_EQ(root->GetTrunkItem(Path({L""})), First(root.get()));
}

TEST(ArchiveTreeNode, AbsentNodesAndNodesOfTheOtherKindAreNull) {
  const NodePtr root(Container(L"root", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32), Container(L"in"),
                               TextNode(L"t")));
  EXPECT_THAT(root->GetLeafItem(Path({L"x"})), IsNull());
  EXPECT_THAT(root->GetLeafItem(Path({L"in"})), IsNull());
  EXPECT_THAT(root->GetTrunkItem(Path({L"a"})), IsNull());
  EXPECT_THAT(root->GetTrunkItem(Path({L"x", L"y"})), IsNull());
  EXPECT_THAT(root->GetLeafItem(Path({L"a", L"b"})), IsNull());
  EXPECT_THAT(root->GetLeafItem(Path({L"t"})), NotNull());
}

TEST(ArchiveTreeNode, APathTakesTheFirstOfTwoNodesOfOneName) {
  const NodePtr root(Container(L"root", Container(L"in"),
                               Container(L"in", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32))));
  EXPECT_THAT(root->GetLeafItem(Path({L"in", L"a"})), IsNull());
}

TEST(ArchiveTreeNode, FindLeafAnswersAsThePathOfOneNameDoes) {
  const NodePtr root(Container(L"root", Container(L"both"),
                               Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"both", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"\u0161", CCmmArchiveVarivant::ArchDataType_Int32)));
  for (const char* name : {"a", "A", "aa", "both", "x", "S", "a "}) {
    const std::string text = name;
    EXPECT_EQ(root->FindLeaf(text), root->GetLeafItem(Path({std::wstring(text.begin(), text.end()).c_str()})))
        << name;
  }
}

}  // namespace
