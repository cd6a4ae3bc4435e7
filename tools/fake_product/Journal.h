#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"

namespace velm_tools {

// Remembers, in a file of the product's directory, what was made: each thing is noted as soon as it
// exists, so that a process that dies half-way leaves the truth behind. One UTF-8 line per thing, its
// kind and its name.
class Journal {
 public:
  static constexpr std::wstring_view kFileName = L"fake_product.journal";

  // Directories by their full path, files by their name in the directory, registry entries as
  // Registration.h names them.
  enum class Kind { kDirectory, kFile, kKey, kCommand };
  struct Entry {
    Kind kind;
    std::wstring name;
  };

  // Starts the journal of a directory, which must not have one. Throws FakeProductError.
  explicit Journal(const std::wstring& directory);

  // Throws FakeProductError.
  void Note(Kind kind, const std::wstring& name);

  static std::wstring PathIn(const std::wstring& directory);
  static bool ExistsIn(const std::wstring& directory);

  // What the journal of `directory` holds, oldest first; none when there is no journal. Throws
  // FakeProductError when it cannot be read or holds anything that Note() did not write.
  static std::optional<std::vector<Entry>> Read(const std::wstring& directory);

 private:
  void Write(std::string_view line);

  std::wstring m_path;
  Cmm::UniqueFileHandle m_file;
};

}  // namespace velm_tools
