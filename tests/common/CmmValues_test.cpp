#include "common/client/utility/src/CmmValues.h"

#include <cstring>
#include <type_traits>
#include <utility>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

namespace {

using testing::ElementsAre;

constexpr auto kNumberType = static_cast<Value::ValueType>(2);
constexpr auto kBinaryType = static_cast<Value::ValueType>(5);
constexpr auto kListType = static_cast<Value::ValueType>(7);

// Values as code outside the library builds them.
class Number final : public Value {
 public:
  Number() : Value(kNumberType) {}
};

class Binary final : public BinaryValue {
 public:
  Binary(char* buffer, size_t size) : BinaryValue(kBinaryType, buffer, size) {}
};

class Dictionary final : public DictionaryValue {
 public:
  explicit Dictionary(Map values) : DictionaryValue(std::move(values)) {}
};

class List final : public ListValue {
 public:
  explicit List(Vector values) : ListValue(kListType, std::move(values)) {}
};

TEST(Value, TellsItsTypeAndWhetherItIsADictionary) {
  const Number number;
  EXPECT_EQ(number.GetType(), 2);
  EXPECT_TRUE(number.IsType(kNumberType));
  EXPECT_FALSE(number.IsType(kListType));
  EXPECT_FALSE(number.is_dict());
  const Dictionary dictionary({});
  EXPECT_EQ(dictionary.GetType(), 6);
  EXPECT_TRUE(dictionary.IsType(static_cast<Value::ValueType>(6)));
  EXPECT_TRUE(dictionary.is_dict());
}

TEST(Value, IsPolymorphicWithOneField) {
  static_assert(std::is_polymorphic_v<Value>);
  static_assert(sizeof(Value) == 16);
}

TEST(BinaryValue, GivesItsBytesAndTheirCount) {
  static_assert(sizeof(BinaryValue) == sizeof(Value) + sizeof(char*) + sizeof(size_t));
  char bytes[] = {'a', '\0', 'b'};
  Binary binary(bytes, sizeof(bytes));
  EXPECT_EQ(binary.GetSize(), 3u);
  EXPECT_EQ(binary.GetBuffer(), bytes);
  EXPECT_EQ(std::as_const(binary).GetBuffer(), bytes);
  // The pointer stands before the size.
  char* pointer;
  std::memcpy(&pointer, reinterpret_cast<const char*>(&binary) + sizeof(Value), sizeof(pointer));
  EXPECT_EQ(pointer, bytes);
}

TEST(DictionaryValue, RunsOverItsKeysInOrder) {
  Number number;
  const Dictionary dictionary({{"b", &number}, {"a", &number}, {"c", nullptr}});
  EXPECT_EQ(dictionary.size(), 3u);
  EXPECT_FALSE(dictionary.empty());
  EXPECT_THAT(std::vector<std::string>(dictionary.begin_keys(), dictionary.end_keys()),
              ElementsAre("a", "b", "c"));
  DictionaryValue::key_iterator it = dictionary.begin_keys();
  EXPECT_EQ(*it++, "a");
  EXPECT_EQ(it->size(), 1u);
  EXPECT_EQ(*++it, "c");
  EXPECT_NE(it, dictionary.end_keys());
  EXPECT_EQ(++it, dictionary.end_keys());
}

TEST(DictionaryValue, AnEmptyOneHasNoKeys) {
  const Dictionary dictionary({});
  EXPECT_EQ(dictionary.size(), 0u);
  EXPECT_TRUE(dictionary.empty());
  EXPECT_EQ(dictionary.begin_keys(), dictionary.end_keys());
}

TEST(ListValue, RunsOverItsValues) {
  Number a;
  Number b;
  List list({&a, &b});
  EXPECT_EQ(list.GetSize(), 2u);
  EXPECT_FALSE(list.empty());
  EXPECT_THAT(std::vector<Value*>(list.begin(), list.end()), ElementsAre(&a, &b));
  const List& constant = list;
  EXPECT_THAT(std::vector<Value*>(constant.begin(), constant.end()), ElementsAre(&a, &b));
  *list.begin() = &b;
  EXPECT_EQ(*constant.begin(), &b);
  EXPECT_TRUE(List({}).empty());
}

TEST(ListValue, SwapExchangesTheValues) {
  Number a;
  Number b;
  List one({&a, &b});
  List other({});
  one.Swap(&other);
  EXPECT_TRUE(one.empty());
  EXPECT_THAT(std::vector<Value*>(other.begin(), other.end()), ElementsAre(&a, &b));
  other.Swap(&other);
  EXPECT_EQ(other.GetSize(), 2u);
}

}  // namespace
