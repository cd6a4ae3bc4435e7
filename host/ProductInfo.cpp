#include "host/ProductInfo.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

namespace Cmm {
namespace {

// One file of a product, and the file that may stand in its place.
struct RequiredFile {
  const char* name;
  const char* alternative = nullptr;
};

constexpr RequiredFile kClientFiles[] = {
    {"Velm.exe"}, {"vPTApp.dll", "vChatApp.dll"}, {"vVideoApp.dll"}, {"basekit.dll"}};
constexpr RequiredFile kConnectorFiles[] = {
    {"SuiteBridge.exe"}, {"edge_conf_peer.dll"}, {"hlnq.dll"}, {"hkraut.dll"}};
constexpr RequiredFile kControllerFiles[] = {{"Panel.exe"}, {"basekit.dll"}, {"vrc_kit.dll"}};

std::span<const RequiredFile> RequiredFiles(uint32_t kind) {
  switch (kind) {
    case kConnector:
      return kConnectorFiles;
    case kController:
      return kControllerFiles;
    default:
      return kClientFiles;
  }
}

// A path under construction; what does not fit is cut off, so that the path names nothing.
class PathBuffer {
 public:
  explicit PathBuffer(const char* text) { Append(text); }

  void Append(const char* text) {
    const size_t count = std::min(std::strlen(text), kLimit - m_length);
    std::memcpy(m_text.data() + m_length, text, count);
    m_length += count;
  }
  // Drops what stands behind the first `length` characters.
  void CutTo(size_t length) {
    std::fill(m_text.begin() + static_cast<ptrdiff_t>(length), m_text.end(), '\0');
    m_length = length;
  }
  size_t Length() const { return m_length; }
  const char* Text() const { return m_text.data(); }

 private:
  static constexpr size_t kLimit = 1023;
  std::array<char, kLimit + 1> m_text{};
  size_t m_length = 0;
};

bool HasFile(PathBuffer& directory, const char* name) {
  const size_t length = directory.Length();
  directory.Append("\\");
  directory.Append(name);
  const bool exists = GetFileAttributesA(directory.Text()) != INVALID_FILE_ATTRIBUTES;
  directory.CutTo(length);
  return exists;
}

bool IsDirectory(const char* path) {
  const DWORD attributes = GetFileAttributesA(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

int CheckVelmProductInfo(uint32_t kind, const char* basePath, const char* subDir,
                         std::vector<ProductRecord>& list) {
  if (!basePath || !subDir) return 1;
  PathBuffer directory(basePath);
  directory.Append(subDir);
  if (!IsDirectory(directory.Text())) return 1;
  for (const RequiredFile& file : RequiredFiles(kind)) {
    if (HasFile(directory, file.name)) continue;
    if (!file.alternative || !HasFile(directory, file.alternative)) return 1;
  }

  ProductRecord record;
  if (directory.Length() + 1 >= sizeof record.path) return 0;
  std::memcpy(record.path, directory.Text(), directory.Length());
  list.push_back(record);
  return 1;
}

}  // namespace Cmm
