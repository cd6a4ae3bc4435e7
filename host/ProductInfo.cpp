#include "host/ProductInfo.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace Cmm {
namespace {

constexpr RequiredFile kClientFiles[] = {
    {"Velm.exe"}, {"vPTApp.dll", "vChatApp.dll"}, {"vVideoApp.dll"}, {"basekit.dll"}};
constexpr RequiredFile kConnectorFiles[] = {
    {"SuiteBridge.exe"}, {"edge_conf_peer.dll"}, {"hlnq.dll"}, {"hkraut.dll"}};
constexpr RequiredFile kControllerFiles[] = {{"Panel.exe"}, {"basekit.dll"}, {"vrc_kit.dll"}};

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
    std::memset(m_text.data() + length, 0, m_length - length);
    m_length = length;
  }
  size_t Length() const { return m_length; }
  const char* Text() const { return m_text.data(); }
  std::string_view WithoutTrailingSeparator() const {
    const std::string_view text(m_text.data(), m_length);
    return text.substr(0, text.find_last_not_of("\\/") + 1);
  }

 private:
  static constexpr size_t kLimit = 1023;
  std::array<char, kLimit + 1> m_text{};
  size_t m_length = 0;
};

bool HasFile(const FileSystemView& view, PathBuffer& directory, const char* name) {
  const size_t length = directory.Length();
  directory.Append("\\");
  directory.Append(name);
  const bool exists = view.attributes(directory.Text()) != FileSystemView::kNoAttributes;
  directory.CutTo(length);
  return exists;
}

bool IsDirectory(const FileSystemView& view, const char* path) {
  const uint32_t attributes = view.attributes(path);
  return attributes != FileSystemView::kNoAttributes &&
         (attributes & FileSystemView::kDirectoryAttribute) != 0;
}

}  // namespace

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

int CheckVelmProductInfo(const FileSystemView& view, uint32_t kind, const char* basePath, const char* subDir,
                         std::vector<ProductRecord>& list) {
  if (!basePath || !subDir) return 1;
  PathBuffer directory(basePath);
  directory.Append(subDir);
  if (!IsDirectory(view, directory.Text())) return 1;
  for (const RequiredFile& file : RequiredFiles(kind)) {
    if (HasFile(view, directory, file.name)) continue;
    if (!file.alternative || !HasFile(view, directory, file.alternative)) return 1;
  }

  ProductRecord record;
  if (directory.Length() + 1 >= sizeof record.path) return 0;
  directory.WithoutTrailingSeparator().copy(record.path, sizeof record.path - 1);
  list.push_back(record);
  return 1;
}

}  // namespace Cmm
