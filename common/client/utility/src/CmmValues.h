#pragma once

// A small family of values, kept for code outside this library: it builds them, by heirs of these classes,
// and reads them by what stands here. The values that a container holds are borrowed; nothing is freed. No
// lock.

#include <cstddef>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "common/client/utility/src/CmmDefine.h"

class CMM_EXPORT Value {
 public:
  // Other kinds have numbers of their own, which this library does not name.
  enum ValueType : int {
    TYPE_DICTIONARY = 6,
  };

  virtual ~Value();

  ValueType GetType() const;
  bool IsType(ValueType other) const;
  bool is_dict() const;

 protected:
  explicit Value(ValueType valueType);
  Value(const Value&);
  Value& operator=(const Value&);

 private:
  ValueType type;
};

class CMM_EXPORT BinaryValue : public Value {
 public:
  ~BinaryValue() override;

  size_t GetSize() const;  // in bytes
  char* GetBuffer();
  const char* GetBuffer() const;

 protected:
  // Borrows the `size` bytes at `buffer`.
  BinaryValue(ValueType valueType, char* buffer, size_t size);
  BinaryValue(const BinaryValue&);
  BinaryValue& operator=(const BinaryValue&);

 private:
  char* m_buffer;
  size_t m_size;
};

class CMM_EXPORT DictionaryValue : public Value {
 public:
  using Map = std::map<std::string, Value*>;

  // Runs over the keys in their order; invalid where an iterator of the map would be.
  class CMM_EXPORT key_iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::string;
    using difference_type = std::ptrdiff_t;
    using pointer = const std::string*;
    using reference = const std::string&;

    explicit key_iterator(Map::const_iterator position);

    const std::string& operator*() const;
    const std::string* operator->() const;
    key_iterator& operator++();
    key_iterator operator++(int);
    bool operator==(const key_iterator& other) const;
    bool operator!=(const key_iterator& other) const;

   private:
    Map::const_iterator m_position;
  };

  ~DictionaryValue() override;

  size_t size() const;
  bool empty() const;
  key_iterator begin_keys() const;
  key_iterator end_keys() const;

 protected:
  explicit DictionaryValue(Map values);
  DictionaryValue(const DictionaryValue&);
  DictionaryValue& operator=(const DictionaryValue&);

 private:
  Map m_values;
};

class CMM_EXPORT ListValue : public Value {
 public:
  using Vector = std::vector<Value*>;
  using iterator = Vector::iterator;
  using const_iterator = Vector::const_iterator;

  ~ListValue() override;

  size_t GetSize() const;
  bool empty() const;
  void Swap(ListValue* other);  // exchanges the values; `other` must not be null

  iterator begin();
  iterator end();
  const_iterator begin() const;
  const_iterator end() const;

 protected:
  ListValue(ValueType valueType, Vector values);
  ListValue(const ListValue&);
  ListValue& operator=(const ListValue&);

 private:
  Vector m_values;
};
