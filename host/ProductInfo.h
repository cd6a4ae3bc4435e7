#pragma once

// The product test: does a directory hold the files that make it an installed product?

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/FileSystemView.h"

namespace Cmm {

// What a product directory may hold. Any other number counts as the meeting client.
enum ProductKind : uint32_t {
  kMeetingClient = 0,
  kConnector = 1,
  kController = 2,
};

// One file that a product's directory must hold, and the file that may stand in its place.
struct RequiredFile {
  const char* name;
  const char* alternative = nullptr;
};
std::span<const RequiredFile> RequiredFiles(uint32_t kind);

// One product that was found.
struct ProductRecord {
  uint32_t kind = 0;  // always 0, whatever kind was looked for
  uint32_t found = 1;
  char path[260] = {};  // the directory, without a trailing separator
  uint16_t reserved16[2] = {};
  uint32_t reserved32 = 0;
};
static_assert(sizeof(ProductRecord) == 276);
static_assert(offsetof(ProductRecord, path) == 8);

// Looks whether the directory `basePath` + `subDir`, joined as they stand, holds all files of the product
// `kind`, and appends a record if it does. Paths are in the ANSI code page.
// Returns 1 when the directory was dealt with, whether it holds a product or not, and when a pointer is
// null; 0 when it holds a product whose path is too long for a record.
int CheckVelmProductInfo(const FileSystemView& view, uint32_t kind, const char* basePath, const char* subDir,
                         std::vector<ProductRecord>& list);

}  // namespace Cmm
