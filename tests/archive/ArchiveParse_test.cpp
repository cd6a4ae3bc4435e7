// Texts into instances, well-meant and hostile: a stated result, never a crash, and no instance left behind.

#include <windows.h>

#include "tests/archive/ArchiveTesting.h"
#include "tests/archive/ServiceFixture.h"

namespace {

using namespace archive_testing;
using Cmm::CCmmArchiveService;
using Cmm::ICmmArchiveObject;
using testing::IsNull;
using testing::NotNull;

class ArchiveParse : public ServiceTest {
 protected:
  ArchiveParse() { Service().AddPackageDefine2<int, CStringW>("m", "n", "s"); }

  // The outline of the instance that the text gives, which is freed again; "(null)" when it gives none.
  static std::string Read(const std::string& text) {
    ICmmArchiveObject* object = Parse(text);
    const std::string outline = object ? Outline(object) : "(null)";
    EXPECT_EQ(InstanceCount(), object ? 1u : 0u);
    CCmmArchiveService::FreeArchiveObject(object);
    EXPECT_EQ(InstanceCount(), 0u);
    return outline;
  }

  static std::wstring ReadText(const std::string& value) {
    ICmmArchiveObject* object = Parse("<m n='1' s='" + value + "'/>");
    if (!object) return L"(null)";
    const std::wstring text = object->GetLeafItem(CStringW(L"s"))->GetString();
    CCmmArchiveService::FreeArchiveObject(object);
    return text;
  }
};

TEST_F(ArchiveParse, AWellFormedTextGivesAnInstance) {
  EXPECT_EQ(Read("<m n=\"7\" s=\"x\" version=\"10000\"/>\n"), "n=7 s=x");
}

TEST_F(ArchiveParse, NullShortAndByteFormTextsGiveNull) {
  const auto* text = reinterpret_cast<const unsigned char*>("<m n='7' s='x'/>");
  EXPECT_THAT(CCmmArchiveService::ParseStream(nullptr, 16, kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::ParseStream(text, 0, kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::ParseStream(text, 1, kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::ParseStream(text, 2, kXml), IsNull());
  EXPECT_THAT(CCmmArchiveService::ParseStream(text, 16, kByte), IsNull());
  EXPECT_THAT(CCmmArchiveService::ParseStream(text, 16, static_cast<Cmm::ICmmArchiveStream::StreamType>(0)),
              IsNull());
  EXPECT_EQ(InstanceCount(), 0u);
}

TEST_F(ArchiveParse, TheTerminatorMayBePartOfTheTextOrLacking) {
  const std::string text = "<m n='7' s='x'/>";
  EXPECT_EQ(Read(text), "n=7 s=x");
  EXPECT_EQ(Read(text + '\0'), "n=7 s=x");
  EXPECT_EQ(Read(text + std::string(3, '\0')), "n=7 s=x");
}

TEST_F(ArchiveParse, AnUnterminatedTextOfNearlyFourGigabytesIsRefused) {
  // Only the last page is ever touched.
  for (unsigned size : {0xFFFFFFFEu, 0xFFFFFFFFu}) {
    auto* text = static_cast<unsigned char*>(VirtualAlloc(nullptr, size_t{size}, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_THAT(text, NotNull());
    ASSERT_THAT(VirtualAlloc(text + size - 1, 1, MEM_COMMIT, PAGE_READWRITE), NotNull());
    text[size - 1] = '>';
    EXPECT_THAT(CCmmArchiveService::ParseStream(text, size, kXml), IsNull());
    VirtualFree(text, 0, MEM_RELEASE);
  }
}

TEST_F(ArchiveParse, ATextWithoutADefinitionGivesNull) {
  EXPECT_EQ(Read("<x n='7' s='x'/>"), "(null)");
  EXPECT_EQ(Read("<M n='7' s='x'/>"), "(null)");
}

TEST_F(ArchiveParse, TheVersionMustBeTheDefinitionsUnlessItIsLackingOrUnreadable) {
  EXPECT_EQ(Read("<m n='7' s='x' version='10000'/>"), "n=7 s=x");
  EXPECT_EQ(Read("<m n='7' s='x'/>"), "n=7 s=x");
  EXPECT_EQ(Read("<m n='7' s='x' version='-1'/>"), "n=7 s=x");
  EXPECT_EQ(Read("<m n='7' s='x' version='new'/>"), "n=7 s=x");
  EXPECT_EQ(Read("<m n='7' s='x' version='9999'/>"), "(null)");
  EXPECT_EQ(Read("<m n='7' s='x' version='10001'/>"), "(null)");
}

TEST_F(ArchiveParse, TheVersionChoosesAmongDefinitionsOfOneName) {
  for (int version : {1, 2}) {
    auto package = std::make_unique<Cmm::Archive::CCmmArchivePackageTree>();
    package->SetName(L"v");
    package->SetVersion(version);
    package->GetRoot()->AppendChild(
        Leaf(version == 1 ? L"one" : L"two", CCmmArchiveVarivant::ArchDataType_Int32));
    Service().AppendPackageDefineWithoutLock(std::move(package));
  }
  EXPECT_EQ(Read("<v one='1' two='2' version='2'/>"), "two=2");
  EXPECT_EQ(Read("<v one='1' two='2'/>"), "one=1");
  EXPECT_EQ(Read("<v one='1' two='2' version='3'/>"), "(null)");
}

TEST_F(ArchiveParse, ALackingFieldFailsTheWhole) {
  EXPECT_EQ(Read("<m n='7'/>"), "(null)");
  EXPECT_EQ(Read("<m s='x'/>"), "(null)");
  EXPECT_EQ(Read("<m n='seven' s='x'/>"), "(null)");
  EXPECT_EQ(Read("<m><n>7</n><s>x</s></m>"), "(null)");
}

TEST_F(ArchiveParse, TheOrderOfAttributesIsFreeAndUnknownOnesAreIgnored) {
  EXPECT_EQ(Read("<m version='10000' extra='1' s='x' n='7' other=''/>"), "n=7 s=x");
  EXPECT_EQ(Read("<m n='7' s='x'>text<unknown n='8'/><!-- c --></m>"), "n=7 s=x");
}

TEST_F(ArchiveParse, ADeclarationCommentsAndTrailingElementsDoNotMatter) {
  EXPECT_EQ(
      Read(
          "\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?>\n<!-- c -->\n<m n='7' s='x'/><m n='8' s='y'/>"),
      "n=7 s=x");
}

TEST_F(ArchiveParse, OnlyTheFirstElementCounts) {
  EXPECT_EQ(Read("<x/><m n='7' s='x'/>"), "(null)");
}

TEST_F(ArchiveParse, OfAnAttributeGivenTwiceTheTextIsMalformed) {
  EXPECT_EQ(Read("<m n='7' n='8' s='x'/>"), "(null)");
}

TEST_F(ArchiveParse, APackageWithoutFieldsIsReadWhateverItsElementHolds) {
  Service().AddPackageDefine0("none");
  EXPECT_EQ(Read("<none/>"), "");
  EXPECT_EQ(Read("<none a='1'><b/></none>"), "");
}

TEST_F(ArchiveParse, TextCutAtAnyByteGivesNull) {
  const std::string text = "<m n=\"7\" s=\"x&lt;&#x41;\xC3\xA9\" version=\"10000\"/>";
  for (size_t size = 0; size < text.size(); ++size)
    EXPECT_EQ(Read(text.substr(0, size)), "(null)") << size;
  EXPECT_NE(Read(text), "(null)");
}

TEST_F(ArchiveParse, TextWithAnyByteBrokenNeverLeavesAnInstance) {
  const std::string text = "<m n=\"7\" s=\"x&lt;\" version=\"10000\"/>";
  for (size_t at = 0; at < text.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string broken = text;
      broken[at] = static_cast<char>(byte);
      Read(broken);  // which looks for an instance that was left
    }
  }
  EXPECT_EQ(InstanceCount(), 0u);
}

TEST_F(ArchiveParse, AZeroByteEndsTheText) {
  const std::string text = "<m n='7' s='x'/>";
  for (size_t at = 0; at < text.size(); ++at) {
    std::string cut = text;
    cut[at] = '\0';
    EXPECT_EQ(Read(cut), "(null)") << at;
  }
  EXPECT_EQ(Read(text + '\0' + "<<<<"), "n=7 s=x");
  EXPECT_EQ(Read(std::string(1000, '\0')), "(null)");
}

TEST_F(ArchiveParse, EntitiesAreResolvedAndUnknownOnesStand) {
  EXPECT_EQ(ReadText("&lt;&gt;&amp;&quot;&apos;"), L"<>&\"'");
  EXPECT_EQ(ReadText("&#65;&#x42;&#x1F600;"), L"AB\U0001F600");
  EXPECT_EQ(ReadText("&unknown; & &;"), L"&unknown; & &;");
  EXPECT_NE(ReadText("&#xFFFFFFFFFFFF;&#;&#x;&#-1;"), L"(null)");  // what becomes of it is the XML library's
}

TEST_F(ArchiveParse, AZeroCharacterReferenceEndsTheValue) {
  EXPECT_EQ(ReadText("ab&#0;cd"), L"ab");
}

TEST_F(ArchiveParse, InvalidUtf8IsReadWithReplacementCharacters) {
  EXPECT_EQ(ReadText("a\xFF"
                     "b"),
            L"a\uFFFD"
            L"b");
  EXPECT_EQ(ReadText("\xC3"), L"\uFFFD");
  EXPECT_THAT(ReadText("\xED\xA0\x80 \xC0\x80 \xF5\x80\x80\x80"), testing::StartsWith(L"\uFFFD"));
}

TEST_F(ArchiveParse, AnAttributeOfEightMegabytesIsReadWhole) {
  const std::string value(8 << 20, 'v');
  EXPECT_EQ(ReadText(value), std::wstring(value.begin(), value.end()));
  std::string wide;
  for (int i = 0; i < (1 << 20); ++i)
    wide += "\xE4\xB8\xAD";
  EXPECT_EQ(ReadText(wide), std::wstring(1 << 20, L'\u4E2D'));
}

TEST_F(ArchiveParse, AnAttributeNameOfAMegabyteIsIgnored) {
  EXPECT_EQ(Read("<m " + std::string(1 << 20, 'a') + "='' n='7' s='x'/>"), "n=7 s=x");
}

TEST_F(ArchiveParse, ATagNameOfAMegabyteGivesNull) {
  EXPECT_EQ(Read("<" + std::string(1 << 20, 'm') + "/>"), "(null)");
}

// It takes the XML library some 15 s, which looks for a repeated attribute among all those before it.
TEST_F(ArchiveParse, AHundredThousandUnknownAttributesAreIgnored) {
  std::string text = "<m ";
  for (int i = 0; i < 100'000; ++i)
    text += "a" + std::to_string(i) + "='' ";
  EXPECT_EQ(Read(text + "n='7' s='x'/>"), "n=7 s=x");
}

TEST_F(ArchiveParse, ElementsThatNestTooDeepGiveNull) {
  std::string open, close;
  for (int i = 0; i < 100'000; ++i) {
    open += "<d>";
    close += "</d>";
  }
  EXPECT_EQ(Read("<m n='7' s='x'>" + open + close + "</m>"), "(null)");
  EXPECT_EQ(Read(open), "(null)");
  EXPECT_EQ(Read("<m n='7' s='x'><d><d><d/></d></d></m>"), "n=7 s=x");
}

TEST_F(ArchiveParse, ManyElementsOfADeclaredAndOfAnUnknownNameAreRead) {
  auto package = std::make_unique<Cmm::Archive::CCmmArchivePackageTree>();
  package->SetName(L"list");
  package->GetRoot()->AppendChild(
      Counted(-1, Container(L"i", Leaf(L"n", CCmmArchiveVarivant::ArchDataType_Int32))));
  Service().AppendPackageDefineWithoutLock(std::move(package));
  std::string text = "<list>";
  for (int i = 0; i < 50'000; ++i)
    text += "<i n='1'/><x/>";
  ICmmArchiveObject* object = Parse(text + "</list>");
  ASSERT_THAT(object, NotNull());
  int count = 0;
  for (CCmmArchiveTreeNode* node = First(object); node; node = Next(node))
    count += node->IsParsed();
  EXPECT_EQ(count, 50'000);
  EXPECT_THAT(Parse(text + "<i/></list>"), IsNull());
  EXPECT_EQ(InstanceCount(), 1u);
}

TEST_F(ArchiveParse, DoctypesAreNoElementsAndTheirEntitiesAreNotExpanded) {
  EXPECT_EQ(Read("<!DOCTYPE m [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]><m n='7' s='&b;'/>"), "n=7 s=&b;");
  EXPECT_EQ(Read("<!DOCTYPE m><m n='7' s='&b;'/>"), "n=7 s=&b;");
}

}  // namespace
