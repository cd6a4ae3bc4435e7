#pragma once

// Knows the ten places where a product of the client family may be installed, and looks through them.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/FileSystemView.h"
#include "host/ProductInfo.h"

namespace Cmm {

// Results of CProductPathHelper::GetProductPath.
enum ProductPathResult : int {
  kProductPathOk = 0,
  kProductPathNoSuchIndex = 1,
  kProductPathNotFormed = 3,
};

// Base directories are formed once and kept for the life of the helper; what lies in them is looked up
// anew each time. For one thread at a time. Index 9 reads shell links and changes the current directory
// while it does: it needs COM, initialised by the caller, and puts the directory back.
class CProductPathHelper {
 public:
  static constexpr int kBaseCount = 10;
  static constexpr size_t kBaseLimit = 1024;  // bytes of a base directory, with its terminator

  explicit CProductPathHelper(const FileSystemView& view = FileSystemView::OfThisSystem()) : m_view(&view) {}
  CProductPathHelper(const CProductPathHelper&) = delete;
  CProductPathHelper& operator=(const CProductPathHelper&) = delete;

  // Gives the base directory `index` (0 to 9), which ends in a backslash; the text belongs to the helper.
  // `*path` is null unless the result is kProductPathOk; a null `path` gives kProductPathNotFormed.
  int GetProductPath(int index, char** path);

  // The product test of ProductInfo.h for this helper's kind.
  int CheckVelmProductInfo(const char* basePath, const char* subDir, std::vector<ProductRecord>& list) const;

  // Tests "bin" and "bin_00" to "bin_05" under `base`, which ends in a separator, and appends what it
  // finds. Returns 1 if every one could be dealt with, else 0; 1 for a null `base`.
  int ScanBinDirs(const char* base, std::vector<ProductRecord>& list) const;

  // Walks all base directories in order and appends every product found. Returns 0 when some place could
  // not be examined, with what the others held still in the list, else 1.
  int ScanProductPaths(std::vector<ProductRecord>& list);

  uint32_t kind = kMeetingClient;  // what is looked for; decides folder names and files

 private:
  std::array<std::unique_ptr<char[]>, kBaseCount> m_paths;
  const FileSystemView* m_view;
};

}  // namespace Cmm
