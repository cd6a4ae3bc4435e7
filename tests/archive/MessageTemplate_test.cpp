#include "archive/MessageTemplate.h"

#include <limits>

#include "archive/MessageHelper.h"
#include "tests/archive/ServiceFixture.h"

namespace {

using namespace archive_testing;
using namespace Cmm::Archive;
using Cmm::CmmMQ_Msg;
using Cmm::CStringA;
using Cmm::CStringW;
using testing::IsNull;
using testing::NotNull;
using MessagePtr = std::unique_ptr<CmmMQ_Msg>;

// Messages as the catalogue has them, but for the registration, which each test does by itself: the classes
// of the catalogue register once in a process, and this service is emptied for every test.
class LogStart : public CmmMessageTemplate_2<unsigned, unsigned> {
 public:
  LogStart() : CmmMessageTemplate_2("com.test.log.start", 40351, "ChannelId", "GroupId") {}
  unsigned& Get_ChannelId() { return GetItem1(); }
  void Set_ChannelId(const unsigned& value) { SetItem1(value); }
  unsigned& Get_GroupId() { return GetItem2(); }
  void Set_GroupId(const unsigned& value) { SetItem2(value); }
};

class ClientExit : public CmmMessageTemplate_0 {
 public:
  ClientExit() : CmmMessageTemplate_0("com.test.exit", 40353) {}
};

class AllTypes : public CmmMessageTemplate_6<int, unsigned, int64_t, uint64_t, CStringA, CStringW> {
 public:
  AllTypes() : CmmMessageTemplate_6("com.test.all", 7, "I32", "U32", "I64", "U64", "Str", "WStr") {}
};

class Text : public CmmMessageTemplate_1<CStringA> {
 public:
  Text() : CmmMessageTemplate_1("com.test.text", 8, "Text") {}
};

class WideText : public CmmMessageTemplate_1<CStringW> {
 public:
  WideText() : CmmMessageTemplate_1("com.test.text", 8, "Text") {}
};

class MessageTemplate : public ServiceTest {
 protected:
  MessageTemplate() {
    Service().AddPackageDefine2<unsigned, unsigned>("com.test.log.start", "ChannelId", "GroupId");
    Service().AddPackageDefine0("com.test.exit");
    Service().AddPackageDefine6<int, unsigned, int64_t, uint64_t, CStringA, CStringW>(
        "com.test.all", "I32", "U32", "I64", "U64", "Str", "WStr");
    Service().AddPackageDefine1<CStringW>("com.test.text", "Text");
  }

  // The text of a built message; "(null)" when there is none. No instance is left.
  static std::string Build(CmmMessageTemplate_0& message) {
    const MessagePtr built(message.BuildMsg(-1));
    EXPECT_EQ(InstanceCount(), 0u);
    if (!built) return "(null)";
    return {reinterpret_cast<const char*>(built->GetData()), built->GetLen()};
  }

  static int ParseText(CmmMessageTemplate_0& message, const std::string& text) {
    const MessagePtr received(CmmMQ_Msg::MakeMessage(reinterpret_cast<const unsigned char*>(text.data()),
                                                     static_cast<unsigned>(text.size()), 1));
    const int result = message.ParseMsg(received.get());
    EXPECT_EQ(InstanceCount(), 0u);
    return result;
  }
};

TEST_F(MessageTemplate, ANewMessageHasItsIdNumbersAtZeroAndEmptyStrings) {
  AllTypes message;
  EXPECT_EQ(message.GetMessageId(), 7);
  EXPECT_EQ(message.GetItem1(), 0);
  EXPECT_EQ(message.GetItem2(), 0u);
  EXPECT_EQ(message.GetItem3(), 0);
  EXPECT_EQ(message.GetItem4(), 0u);
  EXPECT_EQ(message.GetItem5(), "");
  EXPECT_EQ(message.GetItem6(), L"");
}

TEST_F(MessageTemplate, ItemsAreOneStorageForGettersSettersAndReferences) {
  LogStart message;
  message.Set_ChannelId(7);
  EXPECT_EQ(message.Get_ChannelId(), 7u);
  EXPECT_EQ(&message.Get_ChannelId(), &message.GetItem1());
  message.GetItem2() = 3;
  EXPECT_EQ(message.Get_GroupId(), 3u);
  EXPECT_NE(&message.GetItem1(), &message.GetItem2());
}

TEST_F(MessageTemplate, BuildPrintsTheFieldsInOrderAndTheVersionLast) {
  LogStart message;
  message.Set_ChannelId(7);
  message.Set_GroupId(3);
  EXPECT_EQ(Build(message), "<com.test.log.start ChannelId=\"7\" GroupId=\"3\" version=\"10000\"/>\n");
  EXPECT_EQ(Build(message), "<com.test.log.start ChannelId=\"7\" GroupId=\"3\" version=\"10000\"/>\n");
}

TEST_F(MessageTemplate, EveryTypePrintsAndReadsBackAtItsLimits) {
  AllTypes message;
  message.SetItem1(std::numeric_limits<int>::min());
  message.SetItem2(std::numeric_limits<unsigned>::max());
  message.SetItem3(std::numeric_limits<int64_t>::min());
  message.SetItem4(std::numeric_limits<uint64_t>::max());
  message.SetItem5("<\"&'> \xC3\xA9");
  message.SetItem6(L"\U0001F600\n{\"a\":1}");
  const std::string text = Build(message);
  EXPECT_EQ(text,
            "<com.test.all I32=\"-2147483648\" U32=\"4294967295\" I64=\"-9223372036854775808\""
            " U64=\"18446744073709551615\" Str=\"&lt;&quot;&amp;&apos;&gt; \xC3\xA9\""
            " WStr=\"\xF0\x9F\x98\x80\n{&quot;a&quot;:1}\" version=\"10000\"/>\n");
  AllTypes copy;
  ASSERT_EQ(ParseText(copy, text), 1);
  EXPECT_EQ(copy.GetItem1(), message.GetItem1());
  EXPECT_EQ(copy.GetItem2(), message.GetItem2());
  EXPECT_EQ(copy.GetItem3(), message.GetItem3());
  EXPECT_EQ(copy.GetItem4(), message.GetItem4());
  EXPECT_EQ(copy.GetItem5(), message.GetItem5());
  EXPECT_EQ(copy.GetItem6(), message.GetItem6());
}

TEST_F(MessageTemplate, ANewMessageBuildsWithZerosAndEmptyTexts) {
  AllTypes message;
  EXPECT_EQ(Build(message),
            "<com.test.all I32=\"0\" U32=\"0\" I64=\"0\" U64=\"0\" Str=\"\" WStr=\"\" version=\"10000\"/>\n");
}

TEST_F(MessageTemplate, TheIdOfTheQueueMessageIsTheObjectsOwnUnlessAnotherIsGiven) {
  LogStart message;
  const MessagePtr own(message.BuildMsg(-1));
  const MessagePtr other(message.BuildMsg(500));
  const MessagePtr zero(message.BuildMsg(0));
  EXPECT_EQ(own->GetMsgType(), 40351);
  EXPECT_EQ(other->GetMsgType(), 500);
  EXPECT_EQ(zero->GetMsgType(), 0);
  EXPECT_EQ(std::memcmp(own->GetData(), other->GetData(), own->GetLen()), 0);
  EXPECT_EQ(message.GetMessageId(), 40351);
}

TEST_F(MessageTemplate, AMessageWithoutFieldsBuildsTheVersionAlone) {
  ClientExit message;
  EXPECT_EQ(Build(message), "<com.test.exit version=\"10000\"/>\n");
}

TEST_F(MessageTemplate, AMessageWithoutFieldsParsesAnythingButNull) {
  ClientExit message;
  EXPECT_EQ(ParseText(message, "no xml at all"), 1);
  EXPECT_EQ(ParseText(message, ""), 1);
  EXPECT_EQ(message.ParseMsg(nullptr), 0);
}

TEST_F(MessageTemplate, ParseOfNullOrOfAnEmptyRecordFails) {
  LogStart message;
  EXPECT_EQ(message.ParseMsg(nullptr), 0);
  EXPECT_EQ(ParseText(message, ""), 0);
}

TEST_F(MessageTemplate, ParseOverwritesTheItemsEachTime) {
  LogStart message;
  EXPECT_EQ(ParseText(message, "<com.test.log.start GroupId='2' ChannelId='1'/>"), 1);
  EXPECT_EQ(ParseText(message, "<com.test.log.start GroupId='4' ChannelId='3' extra='x'/>"), 1);
  EXPECT_EQ(message.Get_ChannelId(), 3u);
  EXPECT_EQ(message.Get_GroupId(), 4u);
}

TEST_F(MessageTemplate, ATextThatLacksAFieldOrHasABadNumberFailsAndLeavesTheObject) {
  LogStart message;
  message.Set_ChannelId(11);
  message.Set_GroupId(12);
  for (const char* text :
       {"<com.test.log.start ChannelId='1'/>", "<com.test.log.start GroupId='2'/>",
        "<com.test.log.start ChannelId='1' GroupId='two'/>", "<com.test.log.start ChannelId='1' GroupId='2'",
        "<com.test.log.start ChannelId='1' GroupId='2' version='9999'/>", "<com.test.unknown/>"}) {
    EXPECT_EQ(ParseText(message, text), 0) << text;
    EXPECT_EQ(message.Get_ChannelId(), 11u);
    EXPECT_EQ(message.Get_GroupId(), 12u);
  }
}

TEST_F(MessageTemplate, TheNameOfTheParsingClassIsNotComparedWithTheText) {
  Service().AddPackageDefine2<unsigned, unsigned>("com.test.twin", "ChannelId", "GroupId");
  LogStart message;
  EXPECT_EQ(ParseText(message, "<com.test.twin ChannelId='1' GroupId='2'/>"), 1);
  EXPECT_EQ(message.Get_GroupId(), 2u);
}

TEST_F(MessageTemplate, AFailurePartwayLeavesTheEarlierFieldsChanged) {
  Service().AddPackageDefine2<unsigned, int>("com.test.mixed", "ChannelId", "GroupId");
  LogStart message;
  message.Set_GroupId(12);
  EXPECT_EQ(ParseText(message, "<com.test.mixed ChannelId='1' GroupId='2'/>"), 0);
  EXPECT_EQ(message.Get_ChannelId(), 1u);
  EXPECT_EQ(message.Get_GroupId(), 12u);
}

TEST_F(MessageTemplate, OfTwoDefinitionsOfOneNameTheSecondsMessageCanNeitherBeBuiltNorParsed) {
  class First : public CmmMessageTemplate_2<int, int> {
   public:
    First() : CmmMessageTemplate_2("com.test.same", 40145, "A", "B") {}
  } first;
  class Second : public CmmMessageTemplate_2<int, CStringW> {
   public:
    Second() : CmmMessageTemplate_2("com.test.same", 40145, "A", "C") {}
  } second;
  Service().AddPackageDefine2<int, int>("com.test.same", "A", "B");
  Service().AddPackageDefine2<int, CStringW>("com.test.same", "A", "C");
  const std::string text = Build(first);
  EXPECT_EQ(text, "<com.test.same A=\"0\" B=\"0\" version=\"10000\"/>\n");
  EXPECT_EQ(Build(second), "(null)");
  EXPECT_EQ(ParseText(first, text), 1);
  EXPECT_EQ(ParseText(second, "<com.test.same A='0' B='0' C='0'/>"), 0);
}

TEST_F(MessageTemplate, WithoutADefinitionOrANameNothingIsBuilt) {
  Cmm::CCmmArchiveService::ClearAllPackageDefines();
  LogStart message;
  EXPECT_EQ(Build(message), "(null)");
  EXPECT_EQ(ParseText(message, "<com.test.log.start ChannelId='1' GroupId='2'/>"), 0);
  Service().AddPackageDefine0("");
  CmmMessageTemplate_0 null(nullptr, 1), empty("", 1);
  EXPECT_EQ(Build(null), "(null)");
  EXPECT_EQ(Build(empty), "(null)");
}

TEST_F(MessageTemplate, ANullFieldNameIsTheEmptyNameWhichNoFieldHas) {
  Service().AddPackageDefine1<int>("com.test.unnamed", nullptr);
  CmmMessageTemplate_1<int> message("com.test.unnamed", 1, nullptr);
  EXPECT_EQ(Build(message), "(null)");
}

TEST_F(MessageTemplate, WideAndNarrowFieldsAreTheSameOnTheWire) {
  Text narrow;
  narrow.SetItem1("\xC3\xA9");
  WideText wide;
  wide.SetItem1(L"\u00E9");
  EXPECT_EQ(Build(narrow), "<com.test.text Text=\"\xC3\xA9\" version=\"10000\"/>\n");
  EXPECT_EQ(Build(wide), Build(narrow));
  Text narrowCopy;
  EXPECT_EQ(ParseText(narrowCopy, Build(wide)), 1);
  EXPECT_EQ(narrowCopy.GetItem1(), "\xC3\xA9");
  WideText wideCopy;
  EXPECT_EQ(ParseText(wideCopy, Build(narrow)), 1);
  EXPECT_EQ(wideCopy.GetItem1(), L"\u00E9");
}

TEST_F(MessageTemplate, TheLevelsStandOnEachOther) {
  using Three = CmmMessageTemplate_3<int, unsigned, CStringA>;
  static_assert(std::is_base_of_v<CmmMessageTemplate_2<int, unsigned>, Three>);
  static_assert(std::is_base_of_v<CmmMessageTemplate_1<int>, Three>);
  static_assert(std::is_base_of_v<CmmMessageTemplate_0, Three>);
}

TEST_F(MessageTemplate, FifteenFieldsAreBuiltAndParsedInOrder) {
  class Fifteen : public CmmMessageTemplate_15<int, int, int, int, int, int, int, int, int, int, int, int,
                                               int, int, int> {
   public:
    Fifteen()
        : CmmMessageTemplate_15("com.test.fifteen", 15, "a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k",
                                "l", "m", "n", "o") {}
  } message;
  Service().AddPackageDefine15<int, int, int, int, int, int, int, int, int, int, int, int, int, int, int>(
      "com.test.fifteen", "a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o");
  message.SetItem1(1), message.SetItem2(2), message.SetItem3(3), message.SetItem4(4), message.SetItem5(5);
  message.SetItem6(6), message.SetItem7(7), message.SetItem8(8), message.SetItem9(9), message.SetItem10(10);
  message.SetItem11(11), message.SetItem12(12), message.SetItem13(13), message.SetItem14(14),
      message.SetItem15(15);
  const std::string text = Build(message);
  EXPECT_EQ(
      text,
      "<com.test.fifteen a=\"1\" b=\"2\" c=\"3\" d=\"4\" e=\"5\" f=\"6\" g=\"7\" h=\"8\" i=\"9\" j=\"10\""
      " k=\"11\" l=\"12\" m=\"13\" n=\"14\" o=\"15\" version=\"10000\"/>\n");
  Fifteen copy;
  EXPECT_EQ(ParseText(copy, text), 1);
  EXPECT_EQ(Build(copy), text);
}

TEST_F(MessageTemplate, AMessageIsDestroyedThroughItsBase) {
  struct Watched : LogStart {
    explicit Watched(int& count) : destroyed(count) {}
    ~Watched() override { ++destroyed; }
    int& destroyed;
  };
  int destroyed = 0;
  delete static_cast<CmmMessageTemplate_0*>(new Watched(destroyed));
  EXPECT_EQ(destroyed, 1);
}

// A class that registers its definition at its first construction, as those of the catalogue do.
class Registered : public CmmMessageTemplate_1<int> {
 public:
  Registered() : CmmMessageTemplate_1("com.test.registered", 9, "N") {
    static int s_firsttime = 1;
    if (s_firsttime) {
      s_firsttime = 0;
      CCmmArchiveServiceImp::GetImp()->AddPackageDefine1<int>("com.test.registered", "N");
    }
  }
};

TEST_F(MessageTemplate, AClassRegistersOnceAndAfterAClearItsMessagesCannotBeBuiltAnyMore) {
  const size_t before = DefineCount();
  Registered one;
  Registered two;
  EXPECT_EQ(DefineCount(), before + 1);
  EXPECT_NE(Build(two), "(null)");
  Cmm::CCmmArchiveService::ClearAllPackageDefines();
  Registered three;
  EXPECT_EQ(DefineCount(), 0u);
  EXPECT_EQ(Build(three), "(null)");
  EXPECT_EQ(ParseText(three, "<com.test.registered N='1'/>"), 0);
}

// The service exists before any static object of a message, whatever the order of the sources.
class CountsDefinitions : public CmmMessageTemplate_1<int> {
 public:
  CountsDefinitions() : CmmMessageTemplate_1("com.test.static", 9, "N") {
    registered = CCmmArchiveServiceImp::GetImp()->AddPackageDefine1<int>("com.test.static", "N");
    found = CCmmArchiveServiceImp::GetImp()->GetPackageDefines().size();
  }
  int registered;
  size_t found;
};
CountsDefinitions staticMessage;

TEST_F(MessageTemplate, AStaticMessageObjectFindsTheServiceThere) {
  EXPECT_EQ(staticMessage.registered, 1);
  EXPECT_GE(staticMessage.found, 1u);
}

}  // namespace
