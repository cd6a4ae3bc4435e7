#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace velm_test {

// A new, empty directory under the temporary directory, removed with all it holds.
class ScratchDirectory {
 public:
  ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory();

  const std::filesystem::path& Path() const { return m_path; }
  std::string Narrow() const { return m_path.string(); }

  // Creates a directory below this one, with those between.
  std::filesystem::path MakeDirectory(std::wstring_view relative) const;
  // Creates a file below this one, with the directories between.
  std::filesystem::path MakeFile(std::wstring_view relative, std::string_view content = "x") const;

 private:
  std::filesystem::path m_path;
};

// A directory path below `parent` of exactly `length` characters, which exists. Lengths above 247 need
// the \\?\ form to create; the result is the plain form.
std::filesystem::path MakeDirectoryOfLength(const std::filesystem::path& parent, size_t length);

void WriteFile(const std::filesystem::path& path, std::string_view content);

}  // namespace velm_test
