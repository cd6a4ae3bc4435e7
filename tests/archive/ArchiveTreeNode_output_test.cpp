// How a tree prints itself as XML.

#include <limits>

#include "tests/archive/ArchiveTesting.h"

#include "gmock/gmock.h"

namespace {

using namespace archive_testing;
using testing::IsNull;
using testing::NotNull;

// The text of a root "r" with one leaf "v" that `set` has given its value.
template <typename Set>
std::string PrintLeaf(Set set) {
  const NodePtr root(Container(L"r", Leaf(L"v", CCmmArchiveVarivant::ArchDataType_Empty)));
  set(First(root.get())->GetData());
  return Print(*root);
}

TEST(ArchiveTreeNodeOutput, NodesThatAreNoContainersHaveNoElement) {
  CCmmArchiveTreeNode attribute;
  EXPECT_THAT(attribute.ToXmlElement(nullptr), IsNull());
  const NodePtr text(TextNode(L"t"));
  EXPECT_THAT(text->ToXmlElement(nullptr), IsNull());
}

TEST(ArchiveTreeNodeOutput, EveryTypePrintsItsText) {
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetInt32(std::numeric_limits<int>::min()); }),
            "<r v=\"-2147483648\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetInt32(std::numeric_limits<int>::max()); }),
            "<r v=\"2147483647\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetUInt32(4294967295u); }), "<r v=\"4294967295\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetBool(1); }), "<r v=\"1\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetBool(0); }), "<r v=\"0\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetString(L"text"); }), "<r v=\"text\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetFloat(-1.5f); }), "<r v=\"-1.5\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetDouble(0.1); }), "<r v=\"0.10000000000000001\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetInt64(std::numeric_limits<int64_t>::min()); }),
            "<r v=\"-9223372036854775808\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetUInt64(std::numeric_limits<uint64_t>::max()); }),
            "<r v=\"18446744073709551615\"/>\n");
}

TEST(ArchiveTreeNodeOutput, ACharPrintsAsItsSignedNumber) {
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetChar('A'); }), "<r v=\"65\"/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetChar('\x80'); }), "<r v=\"-128\"/>\n");
}

TEST(ArchiveTreeNodeOutput, ABooleanThatWasSetToAnotherNumberPrintsThatNumber) {
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetBool(-2); }), "<r v=\"-2\"/>\n");
}

TEST(ArchiveTreeNodeOutput, UntypedAndObjectLeavesPrintNothing) {
  EXPECT_EQ(PrintLeaf([](auto&) {}), "<r/>\n");
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetObject(nullptr); }), "<r/>\n");
}

TEST(ArchiveTreeNodeOutput, TextIsPrintedInUtf8AndEscaped) {
  EXPECT_EQ(PrintLeaf([](auto& v) { v.SetString(L"<\"&'>\u00E9\U0001F600"); }),
            "<r v=\"&lt;&quot;&amp;&apos;&gt;\xC3\xA9\xF0\x9F\x98\x80\"/>\n");
}

TEST(ArchiveTreeNodeOutput, ANullTextPrintsNoAttributeAndAnEmptyTextAnEmptyOne) {
  const NodePtr root(Container(L"r", Leaf(L"null", CCmmArchiveVarivant::ArchDataType_String),
                               Leaf(L"empty", CCmmArchiveVarivant::ArchDataType_String)));
  Next(First(root.get()))->GetData().SetString(L"");
  EXPECT_EQ(Print(*root), "<r empty=\"\"/>\n");
}

TEST(ArchiveTreeNodeOutput, UntouchedNumbersPrintTheirDefaults) {
  const NodePtr root(Container(L"r", Leaf(L"i", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"u", CCmmArchiveVarivant::ArchDataType_UInt64)));
  EXPECT_EQ(Print(*root), "<r i=\"0\" u=\"0\"/>\n");
}

TEST(ArchiveTreeNodeOutput, ChildrenPrintInOrderContainersAsElementsAndTextNodesNotAtAll) {
  const NodePtr root(
      Container(L"r", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32), TextNode(L"t"),
                Container(L"in", Leaf(L"n", CCmmArchiveVarivant::ArchDataType_Int32), Container(L"deep")),
                Leaf(L"b", CCmmArchiveVarivant::ArchDataType_Int32), Container(L"in")));
  EXPECT_EQ(Print(*root),
            "<r a=\"0\" b=\"0\">\n"
            "    <in n=\"0\">\n"
            "        <deep/>\n"
            "    </in>\n"
            "    <in/>\n"
            "</r>\n");
}

TEST(ArchiveTreeNodeOutput, ASecondLeafOfOneNameReplacesTheFirstsValueInItsPlace) {
  const NodePtr root(Container(L"r", Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"b", CCmmArchiveVarivant::ArchDataType_Int32),
                               Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32)));
  Next(Next(First(root.get())))->GetData().SetInt32(7);
  EXPECT_EQ(Print(*root), "<r a=\"7\" b=\"0\"/>\n");
}

TEST(ArchiveTreeNodeOutput, NamesPrintInUtf8) {
  const NodePtr root(Container(L"r\u00E9", Leaf(L"\u00E9", CCmmArchiveVarivant::ArchDataType_Int32)));
  EXPECT_EQ(Print(*root), "<r\xC3\xA9 \xC3\xA9=\"0\"/>\n");
}

TEST(ArchiveTreeNodeOutput, AGivenDocumentIsUsedAndKeepsTheElement) {
  tinyxml2::XMLDocument document;
  const NodePtr root(Container(L"r", Container(L"in")));
  tinyxml2::XMLElement* element = root->ToXmlElement(&document);
  ASSERT_THAT(element, NotNull());
  EXPECT_EQ(element->GetDocument(), &document);
  EXPECT_EQ(element->FirstChildElement("in")->GetDocument(), &document);
  EXPECT_THAT(document.FirstChild(), IsNull());
}

TEST(ArchiveTreeNodeOutput, OutputLooksAtNoMark) {
  const NodePtr root(Container(L"r", Optional(Leaf(L"a", CCmmArchiveVarivant::ArchDataType_Int32)),
                               Optional(Counted(0, Container(L"in")))));
  EXPECT_EQ(Print(*root), "<r a=\"0\">\n    <in/>\n</r>\n");
}

TEST(ArchiveTreeNodeOutput, AppendAttributeNodeTellsWhatCameOfIt) {
  struct OpenNode : CCmmArchiveTreeNode {
    using CCmmArchiveTreeNode::AppendAttributeNode;
  } node;
  Element element("<r/>");
  const NodePtr number(Leaf(L"n", CCmmArchiveVarivant::ArchDataType_Int32));
  EXPECT_EQ(node.AppendAttributeNode(nullptr, number.get()), 0);
  EXPECT_EQ(node.AppendAttributeNode(element, nullptr), 0);
  EXPECT_EQ(node.AppendAttributeNode(element, NodePtr(TextNode(L"t")).get()), 0);
  EXPECT_EQ(node.AppendAttributeNode(element, NodePtr(Container(L"c")).get()), 0);
  EXPECT_EQ(
      node.AppendAttributeNode(element, NodePtr(Leaf(L"e", CCmmArchiveVarivant::ArchDataType_Empty)).get()),
      0);
  EXPECT_EQ(
      node.AppendAttributeNode(element, NodePtr(Leaf(L"o", CCmmArchiveVarivant::ArchDataType_Object)).get()),
      0);
  EXPECT_EQ(
      node.AppendAttributeNode(element, NodePtr(Leaf(L"s", CCmmArchiveVarivant::ArchDataType_String)).get()),
      0);
  EXPECT_EQ(node.AppendAttributeNode(element,
                                     NodePtr(Leaf(L"s", CCmmArchiveVarivant::ArchDataType_String, 0)).get()),
            1);
  EXPECT_THAT(static_cast<tinyxml2::XMLElement*>(element)->FirstAttribute(), IsNull());
  EXPECT_EQ(node.AppendAttributeNode(element, number.get()), 1);
  EXPECT_STREQ(static_cast<tinyxml2::XMLElement*>(element)->Attribute("n"), "0");
}

TEST(ArchiveTreeNodeOutput, WhatWasPrintedReadsBackEqual) {
  const NodePtr root(
      Container(L"r", Leaf(L"i", CCmmArchiveVarivant::ArchDataType_Int32),
                Leaf(L"s", CCmmArchiveVarivant::ArchDataType_String),
                Counted(-1, Container(L"in", Leaf(L"f", CCmmArchiveVarivant::ArchDataType_Float),
                                      Leaf(L"d", CCmmArchiveVarivant::ArchDataType_Double)))));
  First(root.get())->GetData().SetInt32(-7);
  Next(First(root.get()))->GetData().SetString(L"<\"&'>\n\t \u00E9\U0001F600");
  CCmmArchiveTreeNode* in = Next(Next(First(root.get())));
  First(in)->GetData().SetFloat(0.1f);
  Next(First(in))->GetData().SetDouble(-1.0 / 3);
  const NodePtr copy(root->Duplicate(0));
  Element element(Print(*root));
  ASSERT_EQ(copy->LoadChildrenFromXml(element), 1);
  EXPECT_EQ(Print(*copy), Print(*root));
  EXPECT_EQ(Next(First(Next(Next(First(copy.get())))))->GetData().GetDouble(), -1.0 / 3);
}

}  // namespace
