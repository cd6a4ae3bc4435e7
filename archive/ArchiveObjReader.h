#pragma once

#include <cstdint>

#include "archive/ArchiveObject.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm {

// Reads fields of an instance by name. A field is a leaf right below the root; names are ASCII. Each read
// returns 1, or 0 when the name is null or empty, when there is no such leaf, or when the leaf was not
// declared as exactly that type; then the target is left alone.
class ICmmArchiveObjReader {
 public:
  virtual ~ICmmArchiveObjReader() = default;
  virtual int ReadUInt64(const char* name, uint64_t& value) = 0;
  virtual int ReadInt64(const char* name, int64_t& value) = 0;
  virtual int ReadBool(const char* name, int& value) = 0;  // 1 when exactly 1 is stored, else 0
  virtual int ReadDouble(const char* name, double& value) = 0;
  virtual int ReadFloat(const char* name, float& value) = 0;
  // A null text reads as an empty one.
  virtual int ReadStringW(const char* name, CStringT<wchar_t>& value) = 0;
  virtual int ReadStringA(const char* name, CStringT<char>& value) = 0;  // UTF-8
  virtual int ReadChar(const char* name, char& value) = 0;
  virtual int ReadUInt32(const char* name, unsigned& value) = 0;
  virtual int ReadInt32(const char* name, int& value) = 0;
  virtual const wchar_t* ReadRawString(const char* name) = 0;  // the leaf's own text; null on failure
  virtual int ReadInt32Value(const char* name) = 0;            // -1 on failure
};

class CMM_EXPORT CCmmArchiveObjReader : public ICmmArchiveObjReader {
 public:
  explicit CCmmArchiveObjReader(ICmmArchiveObject* object);  // the root of an instance; borrowed
  ~CCmmArchiveObjReader() override;

  int ReadUInt64(const char* name, uint64_t& value) override;
  int ReadInt64(const char* name, int64_t& value) override;
  int ReadBool(const char* name, int& value) override;
  int ReadDouble(const char* name, double& value) override;
  int ReadFloat(const char* name, float& value) override;
  int ReadStringW(const char* name, CStringT<wchar_t>& value) override;
  int ReadStringA(const char* name, CStringT<char>& value) override;
  int ReadChar(const char* name, char& value) override;
  int ReadUInt32(const char* name, unsigned& value) override;
  int ReadInt32(const char* name, int& value) override;
  const wchar_t* ReadRawString(const char* name) override;
  int ReadInt32Value(const char* name) override;

  ICmmArchiveObject* GetArchiveObject() const { return m_object; }

 private:
  ICmmArchiveObject* m_object;
};

// A reader over a new instance parsed from the `size` bytes of XML text at `data`; null when they do not
// parse. The partner deletes a reader that was made so, and frees its instance; null does nothing.
CMM_EXPORT ICmmArchiveObjReader* MakeArchiveObjReader(const unsigned char* data, unsigned size);
CMM_EXPORT void FreeArchiveObjReader(ICmmArchiveObjReader* reader);

}  // namespace Cmm
