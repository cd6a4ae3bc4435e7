#pragma once

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm {

// A GUID as the text that the system writes for it, "{" and "}" around it, or any other text that it was
// given. The byte form has 16 bytes: the fields of the system's record in their order, each of the first
// three with its highest byte first. No lock: even GetStr changes the object.
class CMM_EXPORT CmmGUID {
 public:
  CmmGUID();                                        // a new GUID
  explicit CmmGUID(const CStringT<wchar_t>& text);  // keeps `text` unchecked; a new GUID when it is empty
  CmmGUID(const CmmGUID&) = delete;
  CmmGUID& operator=(const CmmGUID&) = delete;
  ~CmmGUID();

  // 1 when the texts are the same unit by unit, else 0: neither case nor braces are folded.
  int operator==(const CmmGUID& other) const;
  int operator==(const CmmGUID& other);
  // The same; without them C++20 finds the two above and their reversed forms equally good.
  int operator==(CmmGUID& other) const;
  int operator==(CmmGUID& other);

  // The text, or with `naked` the text without braces and the blanks around it, as it was when it was first
  // asked for. A reference into this object. Where the system gave no GUID, a value is made up from the
  // clock; the text is never empty.
  CStringT<wchar_t>& GetStr(int naked);

  // Writes the byte form of the text, which may lack its braces, to `bytes` and sets `size` to 16. 1, or 0
  // with nothing written: `size` below 16, null `bytes`, or a text that is no GUID.
  int GetByte(unsigned char* bytes, unsigned int& size);

  // The text of the 16 bytes at `bytes`, always without braces; `length` is not looked at. 1, or 0 for null
  // and when the system fails; `naked` changes nothing that can be seen. Turns the caller's bytes into the
  // system's record: a second call with the same buffer gives another text.
  int ByteToString(unsigned char* bytes, unsigned int length, CStringT<wchar_t>& text, int naked);

 private:
  void Generate();
  static CStringT<wchar_t> GetNakedGUID(const CStringT<wchar_t>& text);

  int m_bNakedDirty = 1;
  CStringT<wchar_t> m_strGUID;
  CStringT<wchar_t> m_strNakedGUID;
  void* m_pTaskMem = nullptr;
};

namespace internal {

// The text that stands in for a GUID: "99999999-", three groups of four from the decimal seconds since 1970,
// filled up with "11112222", and "-000000000000".
CStringT<wchar_t> StandByGuid(int64_t seconds);

}  // namespace internal

}  // namespace Cmm
