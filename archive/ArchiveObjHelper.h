#pragma once

#include "archive/ArchiveObjReader.h"
#include "archive/ArchiveObjWritter.h"
#include "archive/ArchiveStream.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm {

// One instance for the length of a build or a parse, with its writer or its reader. Both pointers are null
// when there is no instance. Used on one thread.
class CMM_EXPORT CCmmArchiveObjHelper {
 public:
  // For writing: a new instance of the oldest definition of that name.
  explicit CCmmArchiveObjHelper(const char* packageName);
  // For reading: an instance parsed from XML text.
  CCmmArchiveObjHelper(const unsigned char* data, unsigned size);
  CCmmArchiveObjHelper(const CCmmArchiveObjHelper&) = delete;
  CCmmArchiveObjHelper& operator=(const CCmmArchiveObjHelper&) = delete;
  ~CCmmArchiveObjHelper();  // frees the instance

  ICmmArchiveObjWritter* GetWritterObj() const { return m_writter; }
  ICmmArchiveObjReader* GetReaderObj() const { return m_reader; }
  const CStringT<wchar_t>& GetPackageName() const;  // the empty string without an instance

  // What has been written, as a stream that is the caller's. Null without a writer.
  ICmmArchiveStream* Flattern() const;

 private:
  ICmmArchiveObjWritter* m_writter = nullptr;
  ICmmArchiveObjReader* m_reader = nullptr;
};

}  // namespace Cmm
