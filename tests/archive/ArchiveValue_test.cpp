#include "archive/ArchiveValue.h"

#include <cstring>
#include <cwchar>
#include <limits>
#include <memory>
#include <string>

#include "gmock/gmock.h"

namespace {

using Cmm::CCmmArchiveVarivant;
using testing::IsNull;
using testing::NotNull;

// Opens the protected operations.
class OpenValue : public CCmmArchiveVarivant {
 public:
  using CCmmArchiveVarivant::Assign;
  using CCmmArchiveVarivant::Clear;
  using CCmmArchiveVarivant::ClearData;
};

class CountedObject : public Cmm::ICmmRefableObject {
 public:
  int AddRef() override { return ++references; }
  int Release() override { return --references; }
  int references = 1;
};

TEST(ArchiveValue, TypeNumbersAreFixed) {
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_Empty, 0u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_Int32, 1u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_UInt32, 2u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_Bool, 3u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_Char, 4u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_String, 5u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_Float, 6u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_Double, 7u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_Int64, 8u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_Object, 9u);
  EXPECT_EQ(CCmmArchiveVarivant::ArchDataType_UInt64, 10u);
}

TEST(ArchiveValue, HoldsEightBytesOfPayloadAndTheTag) {
  EXPECT_EQ(sizeof(CCmmArchiveVarivant), 16u);
  CCmmArchiveVarivant value;
  value.SetUInt64(0x1122334455667788);
  uint64_t payload;
  uint32_t tag;
  std::memcpy(&payload, &value, sizeof(payload));
  std::memcpy(&tag, reinterpret_cast<const char*>(&value) + 8, sizeof(tag));
  EXPECT_EQ(payload, 0x1122334455667788u);
  EXPECT_EQ(tag, 10u);
}

TEST(ArchiveValue, EveryGetterOfANewValueYieldsZeroOrNull) {
  const CCmmArchiveVarivant value;
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Empty);
  EXPECT_EQ(value.GetInt32(), 0);
  EXPECT_EQ(value.GetUInt32(), 0u);
  EXPECT_EQ(value.GetBool(), 0);
  EXPECT_EQ(value.GetChar(), 0);
  EXPECT_THAT(value.GetString(), IsNull());
  EXPECT_EQ(value.GetFloat(), 0.0f);
  EXPECT_EQ(value.GetDouble(), 0.0);
  EXPECT_EQ(value.GetInt64(), 0);
  EXPECT_EQ(value.GetUInt64(), 0u);
  EXPECT_THAT(value.GetObject(), IsNull());
}

TEST(ArchiveValue, EverySetterStoresItsTagAndItsValue) {
  CCmmArchiveVarivant value;
  value.SetInt32(std::numeric_limits<int>::min());
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Int32);
  EXPECT_EQ(value.GetInt32(), std::numeric_limits<int>::min());
  value.SetUInt32(0xFFFFFFFF);
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_UInt32);
  EXPECT_EQ(value.GetUInt32(), 0xFFFFFFFFu);
  value.SetBool(1);
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Bool);
  EXPECT_EQ(value.GetBool(), 1);
  value.SetChar('\x80');
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Char);
  EXPECT_EQ(value.GetChar(), '\x80');
  value.SetString(L"text");
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
  EXPECT_STREQ(value.GetString(), L"text");
  value.SetFloat(-1.5f);
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Float);
  EXPECT_EQ(value.GetFloat(), -1.5f);
  value.SetDouble(1e300);
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Double);
  EXPECT_EQ(value.GetDouble(), 1e300);
  value.SetInt64(std::numeric_limits<int64_t>::min());
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Int64);
  EXPECT_EQ(value.GetInt64(), std::numeric_limits<int64_t>::min());
  value.SetUInt64(std::numeric_limits<uint64_t>::max());
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_UInt64);
  EXPECT_EQ(value.GetUInt64(), std::numeric_limits<uint64_t>::max());
}

TEST(ArchiveValue, ABooleanIsKeptAsGivenAndNotNormalised) {
  CCmmArchiveVarivant value;
  value.SetBool(-2);
  EXPECT_EQ(value.GetBool(), -2);
}

TEST(ArchiveValue, GettersReadThePayloadAsTheirOwnTypeWhateverTheTag) {
  CCmmArchiveVarivant value;
  value.SetInt32(7);
  EXPECT_EQ(value.GetString(), reinterpret_cast<const wchar_t*>(7));
  EXPECT_EQ(value.GetUInt64(), 7u);
  value.SetFloat(1.0f);
  EXPECT_EQ(value.GetInt32(), 0x3F800000);
  value.SetDouble(1.0);
  EXPECT_EQ(value.GetUInt64(), 0x3FF0000000000000u);
  EXPECT_EQ(value.GetInt32(), 0);
  value.SetInt64(-1);
  EXPECT_EQ(value.GetInt32(), -1);
  EXPECT_EQ(value.GetChar(), '\xFF');
  value.SetString(L"text");
  EXPECT_EQ(value.GetUInt64(), reinterpret_cast<uint64_t>(value.GetString()));
}

TEST(ArchiveValue, ANarrowSetterLeavesNothingOfAWiderPayload) {
  CCmmArchiveVarivant value;
  value.SetUInt64(std::numeric_limits<uint64_t>::max());
  value.SetInt32(-1);
  EXPECT_EQ(value.GetUInt64(), 0xFFFFFFFFu);
  value.SetUInt64(std::numeric_limits<uint64_t>::max());
  value.SetChar('\xFF');
  EXPECT_EQ(value.GetUInt64(), 0xFFu);
}

TEST(ArchiveValue, GetObjectIsTheOneGetterThatTestsItsTag) {
  CCmmArchiveVarivant value;
  value.SetInt32(7);
  EXPECT_THAT(value.GetObject(), IsNull());
  CountedObject object;
  value.SetObject(&object);
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Object);
  EXPECT_EQ(value.GetObject(), &object);
}

TEST(ArchiveValue, ANullTextIsNotAnEmptyText) {
  CCmmArchiveVarivant value;
  value.SetString(nullptr);
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
  EXPECT_THAT(value.GetString(), IsNull());
  value.SetString(L"");
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
  ASSERT_THAT(value.GetString(), NotNull());
  EXPECT_EQ(value.GetString()[0], L'\0');
}

TEST(ArchiveValue, ATextEndsInFiveZeros) {
  for (const wchar_t* text : {L"", L"a", L"some longer text"}) {
    CCmmArchiveVarivant value;
    value.SetString(text);
    const size_t length = std::wcslen(text);
    EXPECT_EQ(std::wstring(value.GetString(), length + 5), std::wstring(text) + std::wstring(5, L'\0'));
  }
}

TEST(ArchiveValue, ATextIsAPrivateCopy) {
  CCmmArchiveVarivant value;
  wchar_t source[] = L"before";
  value.SetString(source);
  source[0] = L'X';
  EXPECT_STREQ(value.GetString(), L"before");
}

TEST(ArchiveValue, ATextMayBeSetFromItself) {
  CCmmArchiveVarivant value;
  value.SetString(L"some text to keep");
  value.SetString(value.GetString() + 5);
  EXPECT_STREQ(value.GetString(), L"text to keep");
}

TEST(ArchiveValue, Utf8TextIsConvertedAndPaddedLikeAnyOther) {
  CCmmArchiveVarivant value;
  value.SetUtf8String("a\xC3\xA9\xF0\x9F\x98\x80z");
  EXPECT_EQ(std::wstring(value.GetString(), 10), std::wstring(L"a\u00E9\U0001F600z\0\0\0\0\0", 10));
  value.SetUtf8String("");
  ASSERT_THAT(value.GetString(), NotNull());
  EXPECT_STREQ(value.GetString(), L"");
  value.SetUtf8String(nullptr);
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
  EXPECT_THAT(value.GetString(), IsNull());
}

TEST(ArchiveValue, SetObjectTakesTheCallersReferenceAndTheValueReleasesItOnce) {
  CountedObject object;
  {
    CCmmArchiveVarivant value;
    value.SetObject(&object);
    EXPECT_EQ(object.references, 1);
  }
  EXPECT_EQ(object.references, 0);
}

TEST(ArchiveValue, EverySetterReleasesTheObjectBefore) {
  CountedObject object;
  CCmmArchiveVarivant value;
  const auto hold = [&] {
    object.references = 1;
    value.SetObject(&object);
  };
  hold(), value.SetInt32(1);
  EXPECT_EQ(object.references, 0);
  hold(), value.SetUInt32(1);
  EXPECT_EQ(object.references, 0);
  hold(), value.SetBool(1);
  EXPECT_EQ(object.references, 0);
  hold(), value.SetChar('c');
  EXPECT_EQ(object.references, 0);
  hold(), value.SetString(L"s");
  EXPECT_EQ(object.references, 0);
  hold(), value.SetString(nullptr);
  EXPECT_EQ(object.references, 0);
  hold(), value.SetUtf8String("s");
  EXPECT_EQ(object.references, 0);
  hold(), value.SetFloat(1);
  EXPECT_EQ(object.references, 0);
  hold(), value.SetDouble(1);
  EXPECT_EQ(object.references, 0);
  hold(), value.SetInt64(1);
  EXPECT_EQ(object.references, 0);
  hold(), value.SetUInt64(1);
  EXPECT_EQ(object.references, 0);
  hold(), value.SetObject(nullptr);
  EXPECT_EQ(object.references, 0);
}

TEST(ArchiveValue, ClearDataFreesWhatTheValueOwnsAndKeepsTheTag) {
  OpenValue text;
  text.SetString(L"text");
  text.ClearData();
  EXPECT_EQ(text.GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
  EXPECT_THAT(text.GetString(), IsNull());

  CountedObject counted;
  OpenValue object;
  object.SetObject(&counted);
  object.ClearData();
  EXPECT_EQ(counted.references, 0);
  EXPECT_EQ(object.GetDataType(), CCmmArchiveVarivant::ArchDataType_Object);
  EXPECT_THAT(object.GetObject(), IsNull());
}

TEST(ArchiveValue, ClearDataLeavesANumberInPlace) {
  OpenValue value;
  value.SetInt32(7);
  value.ClearData();
  EXPECT_EQ(value.GetInt32(), 7);
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Int32);
}

TEST(ArchiveValue, ClearEmptiesTheTagSoThatTheNumberReadsAsZero) {
  OpenValue value;
  value.SetInt32(7);
  value.Clear();
  EXPECT_EQ(value.GetDataType(), CCmmArchiveVarivant::ArchDataType_Empty);
  EXPECT_EQ(value.GetInt32(), 0);
  EXPECT_THAT(value.GetString(), IsNull());
}

TEST(ArchiveValue, ACopyOfATextIsASeparateBuffer) {
  auto source = std::make_unique<CCmmArchiveVarivant>();
  source->SetString(L"shared by nobody");
  const CCmmArchiveVarivant copy(*source);
  EXPECT_NE(copy.GetString(), source->GetString());
  source.reset();
  EXPECT_STREQ(copy.GetString(), L"shared by nobody");
  EXPECT_EQ(copy.GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
}

TEST(ArchiveValue, CopiesKeepNullTextsNumbersAndTheEmptyValue) {
  CCmmArchiveVarivant source;
  EXPECT_EQ(CCmmArchiveVarivant(source).GetDataType(), CCmmArchiveVarivant::ArchDataType_Empty);
  source.SetString(nullptr);
  const CCmmArchiveVarivant null(source);
  EXPECT_EQ(null.GetDataType(), CCmmArchiveVarivant::ArchDataType_String);
  EXPECT_THAT(null.GetString(), IsNull());
  source.SetInt64(-5);
  CCmmArchiveVarivant number;
  number = source;
  EXPECT_EQ(number.GetDataType(), CCmmArchiveVarivant::ArchDataType_Int64);
  EXPECT_EQ(number.GetInt64(), -5);
}

TEST(ArchiveValue, AssigningOverATextLosesItsMemoryAndDoesNotFreeIt) {
  CCmmArchiveVarivant value;
  value.SetString(L"lost");
  const wchar_t* lost = value.GetString();
  CCmmArchiveVarivant other;
  other.SetInt32(1);
  value = other;
  EXPECT_STREQ(lost, L"lost");
  delete[] lost;  // only possible because nobody else has freed it
}

TEST(ArchiveValue, AssigningOverAnObjectDoesNotReleaseIt) {
  CountedObject object;
  OpenValue value;
  value.SetObject(&object);
  value.Assign(CCmmArchiveVarivant());
  EXPECT_EQ(object.references, 1);
}

TEST(ArchiveValue, ACopiedObjectGetsNoReferenceSoThatBothValuesReleaseIt) {
  CountedObject object;
  {
    CCmmArchiveVarivant value;
    value.SetObject(&object);
    const CCmmArchiveVarivant copy(value);
    EXPECT_EQ(copy.GetObject(), &object);
    EXPECT_EQ(object.references, 1);
  }
  EXPECT_EQ(object.references, -1);
}

TEST(ArchiveValue, ATextOfAMillionCharactersIsKeptWhole) {
  const std::wstring text(1'000'000, L'x');
  CCmmArchiveVarivant value;
  value.SetString(text.c_str());
  EXPECT_EQ(value.GetString(), text);
}

}  // namespace
