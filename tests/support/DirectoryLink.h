#pragma once

#include <filesystem>

namespace velm_test {

// A link to a directory: a reparse point with the directory attribute, which no privilege is needed for. The
// destructor removes the link, if it is still there, and leaves its target alone.
class DirectoryLink {
 public:
  // `target` must exist.
  DirectoryLink(std::filesystem::path link, const std::filesystem::path& target);
  DirectoryLink(const DirectoryLink&) = delete;
  DirectoryLink& operator=(const DirectoryLink&) = delete;
  ~DirectoryLink();

  const std::filesystem::path& Path() const { return m_path; }

  // False when it could not be made, and when it has been removed.
  bool Exists() const;

 private:
  std::filesystem::path m_path;
};

// Whether RemoveDirectoryW removes a link to a directory, as Windows does. Wine removes the target instead,
// or fails where that is not empty. Tries it below `scratch`.
bool SystemRemovesDirectoryLinks(const std::filesystem::path& scratch);

}  // namespace velm_test
