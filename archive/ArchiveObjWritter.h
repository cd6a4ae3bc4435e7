#pragma once

#include <cstdint>

#include "archive/ArchiveObject.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm {

// Writes fields of an instance by name. A field is a leaf right below the root; names are ASCII. Each write
// returns 1, or 0 when the name is null or empty, when there is no such leaf, or when the leaf was not
// declared as exactly that type; then nothing changes.
class ICmmArchiveObjWritter {
 public:
  virtual ~ICmmArchiveObjWritter() = default;
  virtual int WriteUInt64(const char* name, const uint64_t& value) = 0;
  virtual int WriteInt64(const char* name, const int64_t& value) = 0;
  virtual int WriteBool(const char* name, const int& value) = 0;  // written as it is, not made 0 or 1
  virtual int WriteDouble(const char* name, const double& value) = 0;
  virtual int WriteFloat(const char* name, const float& value) = 0;
  virtual int WriteStringW(const char* name, const CStringT<wchar_t>& value) = 0;
  virtual int WriteStringA(const char* name, const CStringT<char>& value) = 0;  // UTF-8
  virtual int WriteChar(const char* name, const char& value) = 0;
  virtual int WriteUInt32(const char* name, const unsigned& value) = 0;
  virtual int WriteInt32(const char* name, const int& value) = 0;
  virtual int WriteRawString(const char* name, const wchar_t* value) = 0;  // null gives a null text
  virtual int WriteInt32Value(const char* name, int value) = 0;
};

class CMM_EXPORT CCmmArchiveObjWritter : public ICmmArchiveObjWritter {
 public:
  explicit CCmmArchiveObjWritter(ICmmArchiveObject* object);  // the root of an instance; borrowed
  ~CCmmArchiveObjWritter() override;

  int WriteUInt64(const char* name, const uint64_t& value) override;
  int WriteInt64(const char* name, const int64_t& value) override;
  int WriteBool(const char* name, const int& value) override;
  int WriteDouble(const char* name, const double& value) override;
  int WriteFloat(const char* name, const float& value) override;
  int WriteStringW(const char* name, const CStringT<wchar_t>& value) override;
  int WriteStringA(const char* name, const CStringT<char>& value) override;
  int WriteChar(const char* name, const char& value) override;
  int WriteUInt32(const char* name, const unsigned& value) override;
  int WriteInt32(const char* name, const int& value) override;
  int WriteRawString(const char* name, const wchar_t* value) override;
  int WriteInt32Value(const char* name, int value) override;

  ICmmArchiveObject* GetArchiveObject() const { return m_object; }

 private:
  ICmmArchiveObject* m_object;
};

// A writer over a new instance of the oldest definition of that name; null when there is none. The partner
// deletes a writer that was made so, and frees its instance; null does nothing.
CMM_EXPORT ICmmArchiveObjWritter* MakeArchiveObjWritter(const char* packageName);
CMM_EXPORT void FreeArchiveObjWritter(ICmmArchiveObjWritter* writter);

}  // namespace Cmm
