#pragma once

// Where the system keeps its well-known folders, as the product path helper asks for them.

#include <cstddef>

namespace Cmm {

// Each function fills a buffer of kPathLimit units and answers whether it could; the text is in the ANSI
// code page or wide. Null pointers are not allowed.
struct SystemFolders {
  static constexpr size_t kPathLimit = 260;

  bool (*specialFolder)(int csidl, char* path);         // a missing folder is created
  bool (*specialFolderWide)(int csidl, wchar_t* path);  // a missing folder is created
  bool (*tempDirectory)(char* path);                    // ends in a backslash
  bool (*executable)(char* path);                       // full path of the running program

  static const SystemFolders& OfThisSystem();
};

}  // namespace Cmm
