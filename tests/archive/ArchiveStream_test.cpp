#include "archive/ArchiveStream.h"

#include <tinyxml2.h>

#include <string>

#include "gmock/gmock.h"

namespace {

using Cmm::CStringA;
using Cmm::ICmmArchiveStream;
using Cmm::Archive::CCmmArchiveByteStream;
using Cmm::Archive::CCmmArchiveXmlStream;
using testing::IsNull;

std::string Bytes(const ICmmArchiveStream& stream) {
  return {reinterpret_cast<const char*>(stream.GetStreamData()), stream.GetStreamSize()};
}

TEST(ArchiveStream, TypeNumbersAreFixed) {
  EXPECT_EQ(ICmmArchiveStream::StreamType_Xml, 1);
  EXPECT_EQ(ICmmArchiveStream::StreamType_Byte, 2);
}

TEST(ArchiveStream, AnXmlStreamIsTheElementAloneAndALineFeed) {
  tinyxml2::XMLDocument document;
  document.Parse("<?xml version='1.0'?><a x='1'><b/></a>");
  const CCmmArchiveXmlStream stream(document.FirstChildElement(), 0);
  EXPECT_EQ(Bytes(stream), "<a x=\"1\">\n    <b/>\n</a>\n");
  EXPECT_EQ(stream.GetXmlElement(), document.FirstChildElement());
}

TEST(ArchiveStream, TheSizeDoesNotCountTheTerminator) {
  tinyxml2::XMLDocument document;
  const CCmmArchiveXmlStream stream(document.NewElement("abc"), 0);
  EXPECT_EQ(stream.GetStreamSize(), 7u);
  EXPECT_EQ(stream.GetStreamData()[7], '\0');
}

TEST(ArchiveStream, RefreshPrintsTheElementAgain) {
  tinyxml2::XMLDocument document;
  tinyxml2::XMLElement* element = document.NewElement("a");
  CCmmArchiveXmlStream stream(element, 0);
  element->SetAttribute("x", 1);
  EXPECT_EQ(Bytes(stream), "<a/>\n");
  stream.Refresh();
  EXPECT_EQ(Bytes(stream), "<a x=\"1\"/>\n");
}

TEST(ArchiveStream, AStreamWithoutAnElementHasNoText) {
  CCmmArchiveXmlStream stream(nullptr, 1);
  stream.Refresh();
  EXPECT_EQ(stream.GetStreamSize(), 0u);
  EXPECT_THAT(stream.GetXmlElement(), IsNull());
}

// A document that says when it is destroyed.
class WatchedDocument : public tinyxml2::XMLDocument {
 public:
  explicit WatchedDocument(int& destroyed) : m_destroyed(destroyed) {}
  ~WatchedDocument() override { ++m_destroyed; }

 private:
  int& m_destroyed;
};

TEST(ArchiveStream, AnOwningStreamDestroysTheElementsDocument) {
  int destroyed = 0;
  auto* document = new WatchedDocument(destroyed);
  { const CCmmArchiveXmlStream stream(document->NewElement("a"), 1); }
  EXPECT_EQ(destroyed, 1);
}

TEST(ArchiveStream, DestroyingANonOwningStreamLeavesTheDocumentAlone) {
  for (int flag : {0, 2}) {
    int destroyed = 0;
    WatchedDocument document(destroyed);
    tinyxml2::XMLElement* element = document.NewElement("a");
    { const CCmmArchiveXmlStream stream(element, flag); }
    EXPECT_EQ(destroyed, 0);
    EXPECT_STREQ(element->Name(), "a");
  }
}

TEST(ArchiveStream, AByteStreamHoldsACopyOfItsBytes) {
  CStringA bytes("a\0b", 3);
  const CCmmArchiveByteStream stream(bytes);
  bytes = "other";
  EXPECT_EQ(Bytes(stream), std::string("a\0b", 3));
}

TEST(ArchiveStream, AByteStreamOverExternalBytesBorrowsThem) {
  const unsigned char bytes[] = {1, 0, 2};
  const CCmmArchiveByteStream stream(bytes, 3);
  EXPECT_EQ(stream.GetStreamData(), bytes);
  EXPECT_EQ(stream.GetStreamSize(), 3u);
}

}  // namespace
