// How a tree fills itself from XML.

#include <limits>

#include "tests/archive/ArchiveTesting.h"

#include "gmock/gmock.h"

namespace {

using namespace archive_testing;
using testing::IsNull;

constexpr Type kEmpty = CCmmArchiveVarivant::ArchDataType_Empty;
constexpr Type kInt32 = CCmmArchiveVarivant::ArchDataType_Int32;
constexpr Type kUInt32 = CCmmArchiveVarivant::ArchDataType_UInt32;
constexpr Type kBool = CCmmArchiveVarivant::ArchDataType_Bool;
constexpr Type kChar = CCmmArchiveVarivant::ArchDataType_Char;
constexpr Type kString = CCmmArchiveVarivant::ArchDataType_String;
constexpr Type kFloat = CCmmArchiveVarivant::ArchDataType_Float;
constexpr Type kDouble = CCmmArchiveVarivant::ArchDataType_Double;
constexpr Type kInt64 = CCmmArchiveVarivant::ArchDataType_Int64;
constexpr Type kObject = CCmmArchiveVarivant::ArchDataType_Object;
constexpr Type kUInt64 = CCmmArchiveVarivant::ArchDataType_UInt64;

// What loading "<r v='value'/>" into a leaf of that type gives.
class LoadedLeaf {
 public:
  LoadedLeaf(Type type, const std::string& value, int isEssential = 1)
      : m_leaf(Leaf(L"v", type, isEssential)), m_element("<r v='" + value + "'/>") {
    result = m_leaf->LoadFromXml(m_element, nullptr);
  }
  CCmmArchiveVarivant* operator->() { return &m_leaf->GetData(); }

  int result;

 private:
  NodePtr m_leaf;
  Element m_element;
};

// ---- Attribute nodes ------------------------------------------------------------------------------------

TEST(ArchiveTreeNodeInput, ANullElementFailsAndLeavesTheNodeUnparsed) {
  const NodePtr leaf(Leaf(L"v", kInt32, 0));
  EXPECT_EQ(leaf->LoadFromXml(nullptr, nullptr), 0);
  EXPECT_EQ(leaf->IsParsed(), 0);
  const NodePtr container(Container(L"c"));
  EXPECT_EQ(container->LoadFromXml(nullptr, nullptr), 0);
  EXPECT_EQ(container->IsParsed(), 0);
}

TEST(ArchiveTreeNodeInput, IntegersAreRead) {
  LoadedLeaf leaf(kInt32, "-2147483648");
  EXPECT_EQ(leaf.result, 1);
  EXPECT_EQ(leaf->GetDataType(), kInt32);
  EXPECT_EQ(leaf->GetInt32(), std::numeric_limits<int>::min());
}

TEST(ArchiveTreeNodeInput, UnsignedIntegersAreRead) {
  LoadedLeaf leaf(kUInt32, "4294967295");
  EXPECT_EQ(leaf.result, 1);
  EXPECT_EQ(leaf->GetDataType(), kUInt32);
  EXPECT_EQ(leaf->GetUInt32(), 4294967295u);
}

TEST(ArchiveTreeNodeInput, BooleansReadAsOneForEveryIntegerButZero) {
  for (const char* text : {"7", "1", "-1", "2147483647"}) {
    LoadedLeaf leaf(kBool, text);
    EXPECT_EQ(leaf.result, 1);
    EXPECT_EQ(leaf->GetDataType(), kBool);
    EXPECT_EQ(leaf->GetBool(), 1) << text;
  }
  LoadedLeaf zero(kBool, "0");
  EXPECT_EQ(zero.result, 1);
  EXPECT_EQ(zero->GetBool(), 0);
  EXPECT_EQ(LoadedLeaf(kBool, "true").result, 0);
}

TEST(ArchiveTreeNodeInput, TextIsReadFromUtf8) {
  LoadedLeaf leaf(kString, "a&lt;&amp;&quot;\xC3\xA9");
  EXPECT_EQ(leaf.result, 1);
  EXPECT_EQ(leaf->GetDataType(), kString);
  EXPECT_STREQ(leaf->GetString(), L"a<&\"\u00E9");
}

TEST(ArchiveTreeNodeInput, AnEmptyAttributeReadsAsAnEmptyText) {
  LoadedLeaf leaf(kString, "");
  EXPECT_EQ(leaf.result, 1);
  EXPECT_STREQ(leaf->GetString(), L"");
}

TEST(ArchiveTreeNodeInput, FloatsAndDoublesAreRead) {
  LoadedLeaf single(kFloat, "-1.5");
  EXPECT_EQ(single.result, 1);
  EXPECT_EQ(single->GetDataType(), kFloat);
  EXPECT_EQ(single->GetFloat(), -1.5f);
  LoadedLeaf twice(kDouble, "1e300");
  EXPECT_EQ(twice.result, 1);
  EXPECT_EQ(twice->GetDataType(), kDouble);
  EXPECT_EQ(twice->GetDouble(), 1e300);
  EXPECT_EQ(LoadedLeaf(kFloat, "x").result, 0);
  EXPECT_EQ(LoadedLeaf(kDouble, "").result, 0);
}

TEST(ArchiveTreeNodeInput, SixtyFourBitIntegersAreRead) {
  LoadedLeaf low(kInt64, "-9223372036854775808");
  EXPECT_EQ(low.result, 1);
  EXPECT_EQ(low->GetDataType(), kInt64);
  EXPECT_EQ(low->GetInt64(), std::numeric_limits<int64_t>::min());
  LoadedLeaf high(kUInt64, "18446744073709551615");
  EXPECT_EQ(high.result, 1);
  EXPECT_EQ(high->GetDataType(), kUInt64);
  EXPECT_EQ(high->GetUInt64(), std::numeric_limits<uint64_t>::max());
}

TEST(ArchiveTreeNodeInput, ANumberThatDoesNotReadCountsAsLacking) {
  for (Type type : {kInt32, kUInt32, kBool, kFloat, kDouble, kUInt64}) {
    EXPECT_EQ(LoadedLeaf(type, "seven").result, 0) << type;
    EXPECT_EQ(LoadedLeaf(type, "").result, 0) << type;
    LoadedLeaf optional(type, "seven", 0);
    EXPECT_EQ(optional.result, 1) << type;
    EXPECT_EQ(optional->GetUInt64(), 0u) << type;
  }
  EXPECT_EQ(LoadedLeaf(kUInt64, "18446744073709551616").result, 0);
}

TEST(ArchiveTreeNodeInput, AMalformedSigned64BitNumberStandsAsWhateverItConvertsTo) {
  for (const auto& [text, value] : {std::pair{"seven", int64_t{0}}, {"", 0}, {"12x", 12}, {" -3", -3}}) {
    LoadedLeaf leaf(kInt64, text);
    EXPECT_EQ(leaf.result, 1) << text;
    EXPECT_EQ(leaf->GetInt64(), value) << text;
  }
}

TEST(ArchiveTreeNodeInput, ALackingAttributeFailsAnEssentialNodeAndLeavesTheDefaultOfAnother) {
  Element element("<r other='1' V='2'/>");
  for (Type type : {kInt32, kUInt32, kBool, kString, kFloat, kDouble, kInt64, kUInt64}) {
    const NodePtr essential(Leaf(L"v", type));
    EXPECT_EQ(essential->LoadFromXml(element, nullptr), 0) << type;
    EXPECT_EQ(essential->IsParsed(), 1) << type;
    const NodePtr optional(Leaf(L"v", type, 0));
    EXPECT_EQ(optional->LoadFromXml(element, nullptr), 1) << type;
    EXPECT_EQ(optional->GetData().GetDataType(), type);
    EXPECT_EQ(optional->GetData().GetUInt64(), 0u) << type;
  }
}

TEST(ArchiveTreeNodeInput, AnOptionalLeafKeepsADefaultOtherThanZero) {
  const NodePtr leaf(Leaf(L"v", kInt32, 0));
  leaf->GetData().SetInt32(42);
  Element element("<r v='?'/>");
  EXPECT_EQ(leaf->LoadFromXml(element, nullptr), 1);
  EXPECT_EQ(leaf->GetData().GetInt32(), 42);
}

TEST(ArchiveTreeNodeInput, ACharIsPrintedButNeverReadBackNotEvenWhenItIsOptional) {
  EXPECT_EQ(LoadedLeaf(kChar, "65").result, 0);
  EXPECT_EQ(LoadedLeaf(kChar, "65", 0).result, 0);
}

TEST(ArchiveTreeNodeInput, UntypedAndObjectLeavesFailEvenWhenTheyAreOptional) {
  EXPECT_EQ(LoadedLeaf(kEmpty, "1", 0).result, 0);
  EXPECT_EQ(LoadedLeaf(kObject, "1", 0).result, 0);
}

TEST(ArchiveTreeNodeInput, ATextNodeFails) {
  Element element("<r t='x'>text</r>");
  const NodePtr text(TextNode(L"t", 0));
  EXPECT_EQ(text->LoadFromXml(element, nullptr), 0);
  EXPECT_EQ(text->IsParsed(), 1);
}

TEST(ArchiveTreeNodeInput, TheAttributesNameIsTheNodesNameInUtf8) {
  const NodePtr leaf(Leaf(L"\u00E9t\u00E9", kInt32));
  Element element("<r \xC3\xA9t\xC3\xA9='5'/>");
  EXPECT_EQ(leaf->LoadFromXml(element, nullptr), 1);
  EXPECT_EQ(leaf->GetData().GetInt32(), 5);
}

// ---- Containers -----------------------------------------------------------------------------------------

// A root with a block "b" of one number "n", then a leaf "z"; loaded from the element.
NodePtr RootWithBlock(int count) {
  return NodePtr(
      Container(L"root", Counted(count, Container(L"b", Leaf(L"n", kInt32))), Optional(Leaf(L"z", kInt32))));
}

int Load(const NodePtr& root, const std::string& text) {
  Element element(text);
  return root->LoadChildrenFromXml(element);
}

TEST(ArchiveTreeNodeInput, AContainerReadsItsChildElement) {
  const NodePtr root = RootWithBlock(1);
  EXPECT_EQ(Load(root, "<root z='9'>\n <x/> <b n='1'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "b(n=1) z=9");
}

TEST(ArchiveTreeNodeInput, ALackingContainerFailsWhenEssential) {
  EXPECT_EQ(Load(RootWithBlock(1), "<root z='9'><B n='1'/></root>"), 0);
  EXPECT_EQ(Load(RootWithBlock(-1), "<root z='9'/>"), 0);
}

TEST(ArchiveTreeNodeInput, ALackingOptionalContainerPassesWithItsChildrenUntouched) {
  const NodePtr root(Container(L"root", Optional(Container(L"b", Leaf(L"n", kInt32)))));
  EXPECT_EQ(Load(root, "<root/>"), 1);
  EXPECT_EQ(Outline(root.get()), "b(n=0)");
  EXPECT_EQ(First(root.get())->IsParsed(), 1);
  EXPECT_EQ(First(First(root.get()))->IsParsed(), 0);
}

TEST(ArchiveTreeNodeInput, ABlockOfCountOneReadsTheFirstElementAndIgnoresTheRest) {
  const NodePtr root = RootWithBlock(1);
  EXPECT_EQ(Load(root, "<root z='9'><b n='1'/><b n='2'/><b n='bad'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "b(n=1) z=9");
}

TEST(ArchiveTreeNodeInput, RepeatsOfABoundedBlockGoToTheEndOfTheParentsList) {
  const NodePtr root = RootWithBlock(3);
  EXPECT_EQ(Load(root, "<root z='9'><b n='1'/><b n='2'/><b n='3'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "b(n=1) z=9 b(n=2) b(n=3)");
}

TEST(ArchiveTreeNodeInput, ElementsPastTheCountAreIgnored) {
  const NodePtr root = RootWithBlock(2);
  EXPECT_EQ(Load(root, "<root z='9'><b n='1'/><b n='2'/><b n='3'/><b n='4'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "b(n=1) z=9 b(n=2)");
}

TEST(ArchiveTreeNodeInput, TheBoundIsLooseByOneSoThatOneElementLessThanTheCountPasses) {
  EXPECT_EQ(Load(RootWithBlock(2), "<root><b n='1'/></root>"), 1);
  EXPECT_EQ(Load(RootWithBlock(3), "<root><b n='1'/><b n='2'/></root>"), 1);
  EXPECT_EQ(Load(RootWithBlock(3), "<root><b n='1'/></root>"), 0);
  EXPECT_EQ(Load(RootWithBlock(4), "<root><b n='1'/><b n='2'/></root>"), 0);
}

TEST(ArchiveTreeNodeInput, CountsBelowOneReadOneElement) {
  for (int count : {0, -2, std::numeric_limits<int>::min()}) {
    const NodePtr root = RootWithBlock(count);
    EXPECT_EQ(Load(root, "<root><b n='1'/><b n='2'/></root>"), 1) << count;
    EXPECT_EQ(Outline(root.get()), "b(n=1) z=0") << count;
  }
}

TEST(ArchiveTreeNodeInput, AnOpenBlockKeepsTheFirstInPlaceAndPutsTheOthersAtTheEndInElementOrder) {
  const NodePtr root = RootWithBlock(-1);
  EXPECT_EQ(Load(root, "<root z='9'><b n='1'/><other/><b n='2'/><b n='3'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "b(n=1) z=9 b(n=2) b(n=3)");
}

TEST(ArchiveTreeNodeInput, RepeatsOfTwoBlocksKeepTheOrderOfTheirBlocks) {
  const NodePtr root(Container(L"root", Counted(-1, Container(L"a", Leaf(L"n", kInt32))),
                               Counted(-1, Container(L"b", Leaf(L"n", kInt32)))));
  EXPECT_EQ(Load(root, "<root><b n='1'/><a n='2'/><b n='3'/><a n='4'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "a(n=2) b(n=1) a(n=4) b(n=3)");
}

TEST(ArchiveTreeNodeInput, ACopyAppendedDuringTheLoopIsNotLoadedASecondTime) {
  // Loaded again, the copy would make further copies of its own.
  const NodePtr root(Container(L"root", Counted(-1, Container(L"b", Leaf(L"n", kInt32)))));
  EXPECT_EQ(Load(root, "<root><b n='1'/><b n='2'/><b n='3'/><b n='4'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "b(n=1) b(n=2) b(n=3) b(n=4)");
  for (CCmmArchiveTreeNode* node = First(root.get()); node; node = Next(node))
    EXPECT_EQ(node->IsParsed(), 1);
}

TEST(ArchiveTreeNodeInput, CopiesCarryTheDefinitionsDefaultsAndNotTheFirstElementsValues) {
  const NodePtr root(
      Container(L"root", Counted(-1, Container(L"b", Leaf(L"n", kInt32, 0), Leaf(L"s", kString, 0)))));
  First(First(root.get()))->GetData().SetInt32(42);
  EXPECT_EQ(Load(root, "<root><b n='1' s='one'/><b/><b s='three'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "b(n=1 s=one) b(n=42 s) b(n=42 s=three)");
}

TEST(ArchiveTreeNodeInput, AnyRepeatThatDoesNotReadFailsTheWhole) {
  EXPECT_EQ(Load(RootWithBlock(-1), "<root><b n='1'/><b n='2'/><b/></root>"), 0);
  EXPECT_EQ(Load(RootWithBlock(-1), "<root><b/><b n='2'/></root>"), 0);
  EXPECT_EQ(Load(RootWithBlock(3), "<root><b n='1'/><b/><b n='3'/></root>"), 0);
  EXPECT_EQ(Load(RootWithBlock(1), "<root><b/></root>"), 0);
}

TEST(ArchiveTreeNodeInput, RepeatsNestWithinRepeats) {
  const NodePtr root(Container(
      L"root",
      Counted(-1, Container(L"g", Counted(-1, Container(L"b", Leaf(L"n", kInt32))), Leaf(L"z", kInt32)))));
  EXPECT_EQ(
      Load(root, "<root><g z='1'><b n='1'/><b n='2'/></g><g z='2'><b n='3'/><b n='4'/><b n='5'/></g></root>"),
      1);
  EXPECT_EQ(Outline(root.get()), "g(b(n=1) z=1 b(n=2)) g(b(n=3) z=2 b(n=4) b(n=5))");
}

TEST(ArchiveTreeNodeInput, WithoutAParentThatIsAContainerOnlyTheFirstElementIsRead) {
  Element element("<root><b n='1'/><b n='2'/></root>");
  CCmmArchiveTreeNode leaf;
  for (CCmmArchiveTreeNode* parent : {static_cast<CCmmArchiveTreeNode*>(nullptr), &leaf}) {
    for (int count : {-1, 2}) {
      const NodePtr block(Counted(count, Container(L"b", Leaf(L"n", kInt32))));
      EXPECT_EQ(block->LoadFromXml(element, parent), 1);
      EXPECT_EQ(Outline(block.get()), "n=1");
    }
    const NodePtr block(Counted(3, Container(L"b", Leaf(L"n", kInt32))));
    EXPECT_EQ(block->LoadFromXml(element, parent), 0);
    EXPECT_EQ(Outline(block.get()), "n=1");
  }
}

TEST(ArchiveTreeNodeInput, ATextChildFailsWhenItIsReached) {
  const NodePtr root(Container(L"root", Leaf(L"n", kInt32), TextNode(L"t", 0), Leaf(L"z", kInt32)));
  EXPECT_EQ(Load(root, "<root n='1' z='2'>text</root>"), 0);
  EXPECT_EQ(First(root.get())->GetData().GetInt32(), 1);
  EXPECT_EQ(Next(Next(First(root.get())))->IsParsed(), 0);
}

TEST(ArchiveTreeNodeInput, AFailureLeavesTheTreePartlyFilled) {
  const NodePtr root(Container(L"root", Leaf(L"a", kInt32), Leaf(L"b", kInt32), Leaf(L"c", kInt32)));
  EXPECT_EQ(Load(root, "<root a='1' c='3'/>"), 0);
  EXPECT_EQ(Outline(root.get()), "a=1 b=0 c=0");
}

TEST(ArchiveTreeNodeInput, UnknownAttributesAndElementsAreIgnoredAndTheOrderIsFree) {
  const NodePtr root(Container(L"root", Leaf(L"a", kInt32), Leaf(L"b", kInt32)));
  EXPECT_EQ(Load(root, "<any x='0' b='2' a='1' y=''>text<!-- c --><p><q/></p></any>"), 1);
  EXPECT_EQ(Outline(root.get()), "a=1 b=2");
}

TEST(ArchiveTreeNodeInput, AContainerWithoutANameIsAlwaysLacking) {
  const NodePtr root(Container(L"root", Optional(Container(L"", Leaf(L"n", kInt32)))));
  EXPECT_EQ(Load(root, "<root><b n='1'/></root>"), 1);
  EXPECT_EQ(Outline(root.get()), "(n=0)");
}

TEST(ArchiveTreeNodeInput, ParsingTextNodesIsReservedAndFails) {
  struct OpenNode : CCmmArchiveTreeNode {
    using CCmmArchiveTreeNode::ParseAsAttributeNode;
    using CCmmArchiveTreeNode::ParseAsContainerNode;
    using CCmmArchiveTreeNode::ParseAsTextNode;
  } node;
  Element element("<r>text</r>");
  EXPECT_EQ(node.ParseAsTextNode(element), 0);
  EXPECT_EQ(node.ParseAsTextNode(nullptr), 0);
  EXPECT_EQ(node.ParseAsAttributeNode(nullptr), 0);
  EXPECT_EQ(node.ParseAsContainerNode(nullptr, nullptr), 0);
}

TEST(ArchiveTreeNodeInput, AHundredThousandRepeatsAreReadInNoTime) {
  std::string text = "<root>";
  for (int i = 0; i < 100'000; ++i)
    text += "<b n='" + std::to_string(i) + "'/>";
  const NodePtr root = RootWithBlock(-1);
  EXPECT_EQ(Load(root, text + "</root>"), 1);
  int count = 0;
  for (CCmmArchiveTreeNode* node = First(root.get()); node; node = Next(node))
    ++count;
  EXPECT_EQ(count, 100'001);
}

}  // namespace
