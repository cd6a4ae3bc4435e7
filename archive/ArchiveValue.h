#pragma once

// The tagged value that sits on every leaf of an archive tree.

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"

// The Windows headers define GetObject as a macro. It is put aside for this declaration; a source that
// includes them and calls GetObject has to #undef it.
#pragma push_macro("GetObject")
#undef GetObject

namespace Cmm {

// An object that counts its references. A value calls Release, its third virtual operation, to give up the
// reference that it owns.
class ICmmRefableObject {
 public:
  virtual ~ICmmRefableObject() = default;
  virtual int AddRef() = 0;
  virtual int Release() = 0;
};

// One value of one of ten types. It owns its text, and one reference to its object. Not locked: a value
// belongs to the thread that holds its tree.
class CMM_EXPORT CCmmArchiveVarivant {
 public:
  // The numbers are fixed: definitions and the typed reads and writes go by them.
  enum ArchDataType : uint32_t {
    ArchDataType_Empty = 0,
    ArchDataType_Int32 = 1,
    ArchDataType_UInt32 = 2,
    ArchDataType_Bool = 3,
    ArchDataType_Char = 4,
    ArchDataType_String = 5,
    ArchDataType_Float = 6,
    ArchDataType_Double = 7,
    ArchDataType_Int64 = 8,
    ArchDataType_Object = 9,
    ArchDataType_UInt64 = 10,
  };

  CCmmArchiveVarivant() = default;
  CCmmArchiveVarivant(const CCmmArchiveVarivant& other);
  // Does not give up what this value held: text that it owned is lost. The library assigns to fresh values
  // only. The pointer of an object is copied without a reference of its own.
  CCmmArchiveVarivant& operator=(const CCmmArchiveVarivant& other);
  ~CCmmArchiveVarivant();

  ArchDataType GetDataType() const { return m_type; }

  // The payload read as the getter's own type, WHATEVER the tag says; zero or null only under the empty
  // tag. Test the tag first: text read as a number is an address, a number read as text is a wild pointer.
  int GetInt32() const { return static_cast<int>(static_cast<uint32_t>(Payload())); }
  unsigned GetUInt32() const { return static_cast<uint32_t>(Payload()); }
  int GetBool() const { return GetInt32(); }
  char GetChar() const { return static_cast<char>(Payload()); }
  const wchar_t* GetString() const { return reinterpret_cast<const wchar_t*>(Payload()); }
  float GetFloat() const;
  double GetDouble() const;
  int64_t GetInt64() const { return static_cast<int64_t>(Payload()); }
  uint64_t GetUInt64() const { return Payload(); }
  // The one getter that tests its tag: null unless the value holds an object. The reference stays here.
  ICmmRefableObject* GetObject() const;

  // Each gives up what the value held, then stores tag and payload; what a narrow payload leaves of the 64
  // bits is zero.
  void SetInt32(int value);
  void SetUInt32(unsigned value);
  void SetBool(int value);  // kept as it is, not made 0 or 1
  void SetChar(char value);
  // Copies the text up to its terminator, with kStringPadding zeros behind it. Null gives a null text,
  // which is not the same as an empty one. A failing allocation raises std::bad_alloc.
  void SetString(const wchar_t* text);
  void SetUtf8String(const char* text);  // the same from UTF-8
  void SetFloat(float value);
  void SetDouble(double value);
  void SetInt64(int64_t value);
  void SetUInt64(uint64_t value);
  void SetObject(ICmmRefableObject* object);  // takes over the caller's reference

  static constexpr unsigned kStringPadding = 5;

 protected:
  void Assign(const CCmmArchiveVarivant& other);
  void ClearData();  // frees text, releases an object; leaves the tag and a number alone
  void Clear();

 private:
  uint64_t Payload() const { return m_type == ArchDataType_Empty ? 0 : m_payload; }
  void Store(ArchDataType type, uint64_t payload);
  void StoreText(const wchar_t* ownedText);

  uint64_t m_payload = 0;  // every form of the value, from its lowest bits on
  ArchDataType m_type = ArchDataType_Empty;
};

}  // namespace Cmm

#pragma pop_macro("GetObject")
