#pragma once

// The public face of the archive: definitions in, instances and their streams out.

#include "archive/ArchiveObject.h"
#include "archive/ArchiveStream.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm {

// An instance is known by its root, and lives until FreeArchiveObject. Functions that return int return 1
// for success and 0 for failure; pointers are null on failure. Any thread may call them, save
// ReadPackageDefineFile.
class CMM_EXPORT CCmmArchiveService {
 public:
  using StreamType = ICmmArchiveStream::StreamType;

  // Registers every "CmmPdu" below the first element of an XML file; those that do not read are passed
  // over. 0 when the file does not load or has no element. Takes no lock: it is for start-up, and must not
  // run beside any other use of the archive.
  static int ReadPackageDefineFile(const CStringT<wchar_t>& path);
  static int ReadPackageDefineStream(const unsigned char* data, unsigned size,
                                     StreamType type);  // reserved: 0

  // A new instance from XML text of at least two bytes, which may end in a zero byte, or from a file of it.
  // Null when the text is no XML, when no definition has its name and version, and when it lacks an
  // essential field.
  static ICmmArchiveObject* ParseStream(const unsigned char* data, unsigned size, StreamType type);
  static ICmmArchiveObject* ParseFile(const CStringT<wchar_t>& path, StreamType type);

  // A new instance with the definition's defaults. `version` -1 takes the oldest definition of the name.
  static ICmmArchiveObject* MakeObject(const CStringT<wchar_t>& name, int version);
  static void FreeArchiveObject(ICmmArchiveObject* object);  // ignores null and what is no live instance

  static ICmmArchiveStream* Flattern(ICmmArchiveObject* object, StreamType type);  // the caller's

  // Destroys all definitions, then all instances. No message class registers its definition again.
  static void ClearAllPackageDefines();
};

}  // namespace Cmm
