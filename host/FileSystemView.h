#pragma once

// What the product search sees of the system, as a table: places and files that a machine does not have
// can then still be shown to it.

#include <cstddef>
#include <cstdint>

namespace Cmm {

// The folder functions fill a buffer of kPathLimit units and answer whether they could. Narrow text is in
// the ANSI code page. Null pointers are not allowed.
struct FileSystemView {
  static constexpr size_t kPathLimit = 260;

  bool (*specialFolder)(int csidl, char* path);         // a missing folder is created
  bool (*specialFolderWide)(int csidl, wchar_t* path);  // a missing folder is created
  bool (*tempDirectory)(char* path);                    // ends in a backslash
  bool (*executable)(char* path);                       // full path of the running program
  uint32_t (*attributes)(const char* path);             // kNoAttributes when there is nothing

  static constexpr uint32_t kNoAttributes = 0xFFFFFFFF;
  static constexpr uint32_t kDirectoryAttribute = 0x10;

  static const FileSystemView& OfThisSystem();
};

}  // namespace Cmm
