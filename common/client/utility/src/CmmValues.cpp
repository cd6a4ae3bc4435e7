#include "common/client/utility/src/CmmValues.h"

#include <utility>

Value::Value(ValueType valueType) : type(valueType) {}
Value::Value(const Value&) = default;
Value& Value::operator=(const Value&) = default;
Value::~Value() = default;

Value::ValueType Value::GetType() const {
  return type;
}

bool Value::IsType(ValueType other) const {
  return type == other;
}

bool Value::is_dict() const {
  return IsType(TYPE_DICTIONARY);
}

BinaryValue::BinaryValue(ValueType valueType, char* buffer, size_t size)
    : Value(valueType), m_buffer(buffer), m_size(size) {}
BinaryValue::BinaryValue(const BinaryValue&) = default;
BinaryValue& BinaryValue::operator=(const BinaryValue&) = default;
BinaryValue::~BinaryValue() = default;

size_t BinaryValue::GetSize() const {
  return m_size;
}

char* BinaryValue::GetBuffer() {
  return m_buffer;
}

const char* BinaryValue::GetBuffer() const {
  return m_buffer;
}

DictionaryValue::DictionaryValue(Map values) : Value(TYPE_DICTIONARY), m_values(std::move(values)) {}
DictionaryValue::DictionaryValue(const DictionaryValue&) = default;
DictionaryValue& DictionaryValue::operator=(const DictionaryValue&) = default;
DictionaryValue::~DictionaryValue() = default;

size_t DictionaryValue::size() const {
  return m_values.size();
}

bool DictionaryValue::empty() const {
  return m_values.empty();
}

DictionaryValue::key_iterator DictionaryValue::begin_keys() const {
  return key_iterator(m_values.begin());
}

DictionaryValue::key_iterator DictionaryValue::end_keys() const {
  return key_iterator(m_values.end());
}

DictionaryValue::key_iterator::key_iterator(Map::const_iterator position) : m_position(position) {}

const std::string& DictionaryValue::key_iterator::operator*() const {
  return m_position->first;
}

const std::string* DictionaryValue::key_iterator::operator->() const {
  return &m_position->first;
}

DictionaryValue::key_iterator& DictionaryValue::key_iterator::operator++() {
  ++m_position;
  return *this;
}

DictionaryValue::key_iterator DictionaryValue::key_iterator::operator++(int) {
  const key_iterator before = *this;
  ++m_position;
  return before;
}

bool DictionaryValue::key_iterator::operator==(const key_iterator& other) const {
  return m_position == other.m_position;
}

bool DictionaryValue::key_iterator::operator!=(const key_iterator& other) const {
  return m_position != other.m_position;
}

ListValue::ListValue(ValueType valueType, Vector values) : Value(valueType), m_values(std::move(values)) {}
ListValue::ListValue(const ListValue&) = default;
ListValue& ListValue::operator=(const ListValue&) = default;
ListValue::~ListValue() = default;

size_t ListValue::GetSize() const {
  return m_values.size();
}

bool ListValue::empty() const {
  return m_values.empty();
}

void ListValue::Swap(ListValue* other) {
  m_values.swap(other->m_values);
}

ListValue::iterator ListValue::begin() {
  return m_values.begin();
}

ListValue::iterator ListValue::end() {
  return m_values.end();
}

ListValue::const_iterator ListValue::begin() const {
  return m_values.begin();
}

ListValue::const_iterator ListValue::end() const {
  return m_values.end();
}
