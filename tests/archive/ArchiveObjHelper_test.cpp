// Writers, readers and the helper that ties them to an instance.

#include "archive/ArchiveObjHelper.h"

#include <limits>

#include "archive/MessageHelper.h"
#include "tests/archive/ArchiveTesting.h"
#include "tests/archive/ServiceFixture.h"

namespace {

using namespace archive_testing;
using Cmm::CCmmArchiveObjHelper;
using Cmm::CCmmArchiveObjReader;
using Cmm::CCmmArchiveObjWritter;
using Cmm::CCmmArchiveService;
using Cmm::CmmMQ_Msg;
using Cmm::ICmmArchiveObject;
using testing::IsNull;
using testing::NotNull;
namespace MessageHelper = Cmm::CCmmMessageHelper;

// An instance with a leaf of every type, named by it, a container "c" and a leaf "inner" within.
class ArchiveObj : public ServiceTest {
 protected:
  ArchiveObj()
      : m_root(Container(L"root", Leaf(L"i32", CCmmArchiveVarivant::ArchDataType_Int32),
                         Leaf(L"u32", CCmmArchiveVarivant::ArchDataType_UInt32),
                         Leaf(L"bool", CCmmArchiveVarivant::ArchDataType_Bool),
                         Leaf(L"char", CCmmArchiveVarivant::ArchDataType_Char),
                         Leaf(L"str", CCmmArchiveVarivant::ArchDataType_String),
                         Leaf(L"float", CCmmArchiveVarivant::ArchDataType_Float),
                         Leaf(L"double", CCmmArchiveVarivant::ArchDataType_Double),
                         Leaf(L"i64", CCmmArchiveVarivant::ArchDataType_Int64),
                         Leaf(L"u64", CCmmArchiveVarivant::ArchDataType_UInt64),
                         Container(L"c", Leaf(L"inner", CCmmArchiveVarivant::ArchDataType_Int32)))),
        writter(m_root.get()),
        reader(m_root.get()) {}

  CCmmArchiveVarivant& Data(const wchar_t* name) { return *m_root->GetLeafItem(CStringW(name)); }

 private:
  NodePtr m_root;

 protected:
  CCmmArchiveObjWritter writter;
  CCmmArchiveObjReader reader;
};

TEST_F(ArchiveObj, EveryTypeIsWrittenAndReadBack) {
  EXPECT_EQ(writter.WriteUInt64("u64", std::numeric_limits<uint64_t>::max()), 1);
  EXPECT_EQ(writter.WriteInt64("i64", std::numeric_limits<int64_t>::min()), 1);
  EXPECT_EQ(writter.WriteBool("bool", 1), 1);
  EXPECT_EQ(writter.WriteDouble("double", 1e300), 1);
  EXPECT_EQ(writter.WriteFloat("float", -1.5f), 1);
  EXPECT_EQ(writter.WriteStringW("str", L"\u00E9"), 1);
  EXPECT_EQ(writter.WriteChar("char", '\x80'), 1);
  EXPECT_EQ(writter.WriteUInt32("u32", 0xFFFFFFFF), 1);
  EXPECT_EQ(writter.WriteInt32("i32", std::numeric_limits<int>::min()), 1);

  uint64_t u64 = 0;
  EXPECT_EQ(reader.ReadUInt64("u64", u64), 1);
  EXPECT_EQ(u64, std::numeric_limits<uint64_t>::max());
  int64_t i64 = 0;
  EXPECT_EQ(reader.ReadInt64("i64", i64), 1);
  EXPECT_EQ(i64, std::numeric_limits<int64_t>::min());
  int boolean = 0;
  EXPECT_EQ(reader.ReadBool("bool", boolean), 1);
  EXPECT_EQ(boolean, 1);
  double twice = 0;
  EXPECT_EQ(reader.ReadDouble("double", twice), 1);
  EXPECT_EQ(twice, 1e300);
  float single = 0;
  EXPECT_EQ(reader.ReadFloat("float", single), 1);
  EXPECT_EQ(single, -1.5f);
  CStringW wide;
  EXPECT_EQ(reader.ReadStringW("str", wide), 1);
  EXPECT_EQ(wide, L"\u00E9");
  CStringA narrow;
  EXPECT_EQ(reader.ReadStringA("str", narrow), 1);
  EXPECT_EQ(narrow, "\xC3\xA9");
  char character = 0;
  EXPECT_EQ(reader.ReadChar("char", character), 1);
  EXPECT_EQ(character, '\x80');
  unsigned u32 = 0;
  EXPECT_EQ(reader.ReadUInt32("u32", u32), 1);
  EXPECT_EQ(u32, 0xFFFFFFFFu);
  int i32 = 0;
  EXPECT_EQ(reader.ReadInt32("i32", i32), 1);
  EXPECT_EQ(i32, std::numeric_limits<int>::min());
  EXPECT_STREQ(reader.ReadRawString("str"), L"\u00E9");
  EXPECT_EQ(reader.ReadInt32Value("i32"), std::numeric_limits<int>::min());
}

TEST_F(ArchiveObj, AWriteOfAnotherTypeFailsAndLeavesTheValue) {
  for (const wchar_t* name :
       {L"i32", L"u32", L"bool", L"char", L"str", L"float", L"double", L"i64", L"u64"}) {
    std::string field;
    for (const wchar_t* c = name; *c; ++c)
      field += static_cast<char>(*c);
    const char* n = field.c_str();
    const Type type = Data(name).GetDataType();
    int written = 0;
    written += writter.WriteUInt64(n, 0) + writter.WriteInt64(n, 0) + writter.WriteBool(n, 0);
    written += writter.WriteDouble(n, 0) + writter.WriteFloat(n, 0) + writter.WriteStringW(n, L"");
    written += writter.WriteStringA(n, "") + writter.WriteChar(n, 0) + writter.WriteUInt32(n, 0);
    written += writter.WriteInt32(n, 0) + writter.WriteRawString(n, nullptr) + writter.WriteInt32Value(n, 0);
    EXPECT_EQ(written, type == CCmmArchiveVarivant::ArchDataType_String  ? 3
                       : type == CCmmArchiveVarivant::ArchDataType_Int32 ? 2
                                                                         : 1)
        << n;
    EXPECT_EQ(Data(name).GetDataType(), type) << n;
  }
  EXPECT_EQ(writter.WriteInt32("u32", 5), 0);
  EXPECT_EQ(Data(L"u32").GetUInt32(), 0u);
}

TEST_F(ArchiveObj, AReadOfAnotherTypeFailsWithoutConversionAndLeavesTheTarget) {
  writter.WriteInt32("i32", 5);
  unsigned u32 = 99;
  EXPECT_EQ(reader.ReadUInt32("i32", u32), 0);
  EXPECT_EQ(u32, 99u);
  CStringW wide(L"kept");
  EXPECT_EQ(reader.ReadStringW("i32", wide), 0);
  EXPECT_EQ(wide, L"kept");
  CStringA narrow("kept");
  EXPECT_EQ(reader.ReadStringA("i32", narrow), 0);
  EXPECT_EQ(narrow, "kept");
  int boolean = 99;
  EXPECT_EQ(reader.ReadBool("i32", boolean), 0);
  EXPECT_EQ(boolean, 99);
  EXPECT_THAT(reader.ReadRawString("i32"), IsNull());
  EXPECT_EQ(reader.ReadInt32Value("u32"), -1);
}

TEST_F(ArchiveObj, AbsentNullAndEmptyNamesFail) {
  for (const char* name :
       {static_cast<const char*>(nullptr), "", "absent", "I32", "i32 ", "c", "c/inner", "inner"}) {
    EXPECT_EQ(writter.WriteInt32(name, 1), 0);
    EXPECT_EQ(writter.WriteStringW(name, L"x"), 0);
    EXPECT_EQ(reader.ReadInt32Value(name), -1);
    EXPECT_THAT(reader.ReadRawString(name), IsNull());
  }
}

TEST_F(ArchiveObj, AWriterOrReaderOverNothingFails) {
  CCmmArchiveObjWritter noWritter(nullptr);
  EXPECT_EQ(noWritter.WriteInt32("i32", 1), 0);
  CCmmArchiveObjReader noReader(nullptr);
  EXPECT_EQ(noReader.ReadInt32Value("i32"), -1);
}

TEST_F(ArchiveObj, ANameThatIsNotAsciiGoesThroughTheAnsiCodePage) {
  const char* name = "\xC3\xA9";
  CStringW wide;
  wide.AssignOther(name);
  const NodePtr root(Container(L"root", Leaf(wide.c_str(), CCmmArchiveVarivant::ArchDataType_Int32)));
  CCmmArchiveObjWritter local(root.get());
  EXPECT_EQ(local.WriteInt32(name, 5), 1);
  EXPECT_EQ(First(root.get())->GetData().GetInt32(), 5);
}

TEST_F(ArchiveObj, BothStringWritersWorkOnOneLeaf) {
  EXPECT_EQ(writter.WriteStringA("str", "\xC3\xA9t\xC3\xA9"), 1);
  EXPECT_STREQ(Data(L"str").GetString(), L"\u00E9t\u00E9");
  EXPECT_EQ(writter.WriteStringW("str", L"wide"), 1);
  EXPECT_STREQ(Data(L"str").GetString(), L"wide");
}

TEST_F(ArchiveObj, AnEmptyStringBecomesARealEmptyText) {
  EXPECT_EQ(writter.WriteStringW("str", CStringW()), 1);
  EXPECT_STREQ(Data(L"str").GetString(), L"");
  EXPECT_EQ(writter.WriteStringA("str", CStringA()), 1);
  EXPECT_STREQ(Data(L"str").GetString(), L"");
}

TEST_F(ArchiveObj, AStringIsWrittenUpToItsFirstNul) {
  writter.WriteStringW("str", CStringW(L"a\0b", 3));
  EXPECT_STREQ(Data(L"str").GetString(), L"a");
  writter.WriteStringA("str", CStringA("c\0d", 3));
  EXPECT_STREQ(Data(L"str").GetString(), L"c");
}

TEST_F(ArchiveObj, ANullRawStringLeavesANullTextThatReadsAsEmpty) {
  writter.WriteStringW("str", L"before");
  EXPECT_EQ(writter.WriteRawString("str", nullptr), 1);
  EXPECT_THAT(Data(L"str").GetString(), IsNull());
  CStringW wide(L"before");
  EXPECT_EQ(reader.ReadStringW("str", wide), 1);
  EXPECT_EQ(wide, L"");
  CStringA narrow("before");
  EXPECT_EQ(reader.ReadStringA("str", narrow), 1);
  EXPECT_EQ(narrow, "");
  EXPECT_THAT(reader.ReadRawString("str"), IsNull());
}

TEST_F(ArchiveObj, ABooleanIsStoredAsGivenAndReadsAsOneOnlyWhenItIsExactlyOne) {
  int value = 99;
  for (int stored : {2, -1, 0}) {
    EXPECT_EQ(writter.WriteBool("bool", stored), 1);
    EXPECT_EQ(Data(L"bool").GetBool(), stored);
    EXPECT_EQ(reader.ReadBool("bool", value), 1);
    EXPECT_EQ(value, 0) << stored;
  }
  writter.WriteBool("bool", 1);
  reader.ReadBool("bool", value);
  EXPECT_EQ(value, 1);
}

TEST_F(ArchiveObj, ReadInt32ValueCannotTellMinusOneFromFailure) {
  writter.WriteInt32Value("i32", -1);
  EXPECT_EQ(reader.ReadInt32Value("i32"), -1);
}

TEST_F(ArchiveObj, ALongTextReadsWholeInBothEncodings) {
  const std::wstring text(100'000, L'\u4E2D');
  writter.WriteStringW("str", text);
  CStringW wide;
  reader.ReadStringW("str", wide);
  EXPECT_EQ(wide, text.c_str());
  CStringA narrow;
  reader.ReadStringA("str", narrow);
  EXPECT_EQ(narrow.GetLength(), 300'000u);
}

// ---- The helper ---------------------------------------------------------------------------------------

class ArchiveObjHelper : public ServiceTest {
 protected:
  ArchiveObjHelper() { Service().AddPackageDefine2<int, CStringW>("com.test", "n", "s"); }

  static constexpr const char* kText = "<com.test n=\"5\" s=\"x\" version=\"10000\"/>\n";
  static const unsigned char* Bytes(const char* text) { return reinterpret_cast<const unsigned char*>(text); }
  static unsigned Size(const char* text) { return static_cast<unsigned>(std::strlen(text)); }
};

TEST_F(ArchiveObjHelper, AHelperForWritingHoldsANewInstanceUntilItEnds) {
  {
    CCmmArchiveObjHelper helper("com.test");
    ASSERT_THAT(helper.GetWritterObj(), NotNull());
    EXPECT_THAT(helper.GetReaderObj(), IsNull());
    EXPECT_EQ(helper.GetPackageName(), L"com.test");
    EXPECT_EQ(InstanceCount(), 1u);
    EXPECT_EQ(helper.GetWritterObj()->WriteInt32("n", 5), 1);
    EXPECT_EQ(helper.GetWritterObj()->WriteStringA("s", "x"), 1);
    const std::unique_ptr<Cmm::ICmmArchiveStream> stream(helper.Flattern());
    ASSERT_THAT(stream, NotNull());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(stream->GetStreamData()), stream->GetStreamSize()),
              kText);
  }
  EXPECT_EQ(InstanceCount(), 0u);
}

TEST_F(ArchiveObjHelper, AHelperForWritingTakesTheOldestDefinitionWhateverItsVersion) {
  auto package = std::make_unique<Cmm::Archive::CCmmArchivePackageTree>();
  package->SetName(L"com.old");
  package->SetVersion(3);
  package->GetRoot()->SetName(L"com.old");
  Service().AppendPackageDefineWithoutLock(std::move(package));
  Service().AddPackageDefine0("com.old");
  CCmmArchiveObjHelper helper("com.old");
  const std::unique_ptr<Cmm::ICmmArchiveStream> stream(helper.Flattern());
  ASSERT_THAT(stream, NotNull());
  EXPECT_STREQ(reinterpret_cast<const char*>(stream->GetStreamData()), "<com.old version=\"3\"/>\n");
}

TEST_F(ArchiveObjHelper, AHelperForReadingHoldsAParsedInstanceUntilItEnds) {
  {
    CCmmArchiveObjHelper helper(Bytes(kText), Size(kText));
    ASSERT_THAT(helper.GetReaderObj(), NotNull());
    EXPECT_THAT(helper.GetWritterObj(), IsNull());
    EXPECT_EQ(helper.GetPackageName(), L"com.test");
    EXPECT_EQ(helper.GetReaderObj()->ReadInt32Value("n"), 5);
    EXPECT_EQ(InstanceCount(), 1u);
    EXPECT_THAT(helper.Flattern(), IsNull());
    EXPECT_THAT(MessageHelper::FlatternToMsg(&helper, 1), IsNull());
  }
  EXPECT_EQ(InstanceCount(), 0u);
}

TEST_F(ArchiveObjHelper, WithoutAnInstanceBothPointersAreNullAndTheNameIsTheSharedEmptyOne) {
  const char* bad = "<com.test n='5'/>";
  const CCmmArchiveObjHelper nullName(nullptr), undefined("com.other"), emptyName("");
  const CCmmArchiveObjHelper nullData(nullptr, 5), noData(Bytes(kText), 0), badText(Bytes(bad), Size(bad));
  for (const CCmmArchiveObjHelper* helper :
       {&nullName, &undefined, &emptyName, &nullData, &noData, &badText}) {
    EXPECT_THAT(helper->GetWritterObj(), IsNull());
    EXPECT_THAT(helper->GetReaderObj(), IsNull());
    EXPECT_THAT(helper->Flattern(), IsNull());
    EXPECT_EQ(helper->GetPackageName(), L"");
    EXPECT_EQ(&helper->GetPackageName(), &nullName.GetPackageName());
  }
  EXPECT_EQ(InstanceCount(), 0u);
}

TEST_F(ArchiveObjHelper, AHelperOutlivesTheClearingOfTheService) {
  CCmmArchiveObjHelper helper("com.test");
  CCmmArchiveService::ClearAllPackageDefines();
  EXPECT_THAT(helper.Flattern(), IsNull());
}

TEST_F(ArchiveObjHelper, FreeWritersAndReadersComeWithPartnersThatFreeTheirInstances) {
  Cmm::ICmmArchiveObjWritter* writter = Cmm::MakeArchiveObjWritter("com.test");
  ASSERT_THAT(writter, NotNull());
  EXPECT_EQ(writter->WriteInt32("n", 1), 1);
  Cmm::ICmmArchiveObjReader* reader = Cmm::MakeArchiveObjReader(Bytes(kText), Size(kText));
  ASSERT_THAT(reader, NotNull());
  EXPECT_EQ(reader->ReadInt32Value("n"), 5);
  EXPECT_EQ(InstanceCount(), 2u);
  Cmm::FreeArchiveObjWritter(writter);
  Cmm::FreeArchiveObjReader(reader);
  Cmm::FreeArchiveObjWritter(nullptr);
  Cmm::FreeArchiveObjReader(nullptr);
  EXPECT_EQ(InstanceCount(), 0u);
  EXPECT_THAT(Cmm::MakeArchiveObjWritter(nullptr), IsNull());
  EXPECT_THAT(Cmm::MakeArchiveObjReader(Bytes("x"), 1), IsNull());
}

// ---- Messages -----------------------------------------------------------------------------------------

TEST_F(ArchiveObjHelper, FlatternToMsgGivesAMessageWithTheText) {
  CCmmArchiveObjHelper helper("com.test");
  helper.GetWritterObj()->WriteInt32("n", 5);
  helper.GetWritterObj()->WriteStringW("s", L"x");
  const std::unique_ptr<CmmMQ_Msg> message(MessageHelper::FlatternToMsg(&helper, 77));
  ASSERT_THAT(message, NotNull());
  EXPECT_EQ(message->GetMsgType(), 77);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(message->GetData()), message->GetLen()), kText);
}

TEST_F(ArchiveObjHelper, FlatternToMsgWithoutAWriterGivesNull) {
  CCmmArchiveObjHelper undefined("com.other");
  EXPECT_THAT(MessageHelper::FlatternToMsg(&undefined, 77), IsNull());
  EXPECT_THAT(MessageHelper::FlatternToMsg(nullptr, 77), IsNull());
}

TEST_F(ArchiveObjHelper, FlatternStreamToMsgCopiesTheStreamAndLeavesItToTheCaller) {
  Cmm::Archive::CCmmArchiveByteStream stream(CStringA("a\0c", 3));
  const std::unique_ptr<CmmMQ_Msg> message(MessageHelper::FlatternStreamToMsg(&stream, 5));
  ASSERT_THAT(message, NotNull());
  EXPECT_EQ(message->GetMsgType(), 5);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(message->GetData()), message->GetLen()),
            std::string("a\0c", 3));
  EXPECT_EQ(stream.GetStreamSize(), 3u);
}

TEST_F(ArchiveObjHelper, StreamsWithoutBytesGiveNoMessage) {
  EXPECT_THAT(MessageHelper::FlatternStreamToMsg(nullptr, 5), IsNull());
  Cmm::Archive::CCmmArchiveByteStream empty((CStringA()));
  EXPECT_THAT(MessageHelper::FlatternStreamToMsg(&empty, 5), IsNull());
  Cmm::Archive::CCmmArchiveByteStream null(nullptr, 3);
  EXPECT_THAT(MessageHelper::FlatternStreamToMsg(&null, 5), IsNull());
}

TEST_F(ArchiveObjHelper, FreeMsgDestroysTheMessage) {
  struct WatchedMsg : Cmm::CmmInternelMsg {
    explicit WatchedMsg(int& count) : destroyed(count) {}
    ~WatchedMsg() override { ++destroyed; }
    int& destroyed;
  };
  int destroyed = 0;
  MessageHelper::FreeMsg(new WatchedMsg(destroyed));
  EXPECT_EQ(destroyed, 1);
  MessageHelper::FreeMsg(nullptr);
}

}  // namespace
