#include "tests/support/ShellLinkFile.h"

#include <cstdint>
#include <string>

#include "tests/support/ScratchDirectory.h"

namespace velm_test {
namespace {

enum LinkFlags : uint32_t { kHasLinkInfo = 0x02, kHasName = 0x04, kIsUnicode = 0x80 };

class Bytes {
 public:
  Bytes& U16(uint16_t value) { return Little(value, 2); }
  Bytes& U32(uint32_t value) { return Little(value, 4); }
  Bytes& Text(std::string_view text) {
    m_bytes += text;
    return *this;
  }
  Bytes& Zeros(size_t count) {
    m_bytes.append(count, '\0');
    return *this;
  }
  const std::string& Get() const { return m_bytes; }

 private:
  Bytes& Little(uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
      m_bytes += static_cast<char>(value >> 8 * i & 0xFF);
    return *this;
  }
  std::string m_bytes;
};

void AppendHeader(Bytes& bytes, uint32_t flags) {
  constexpr uint32_t kHeaderSize = 0x4C;
  constexpr std::string_view kLinkClass("\x01\x14\x02\x00\x00\x00\x00\x00\xC0\x00\x00\x00\x00\x00\x00\x46",
                                        16);
  constexpr uint32_t kShowNormal = 1;
  bytes.U32(kHeaderSize).Text(kLinkClass).U32(flags);
  bytes.Zeros(4 + 3 * 8 + 4 + 4);  // attributes, three times, file size, icon index
  bytes.U32(kShowNormal).Zeros(2 + 2 + 4 + 4);
}

void AppendLinkInfo(Bytes& bytes, std::string_view target) {
  constexpr uint32_t kInfoHeaderSize = 0x1C;
  constexpr uint32_t kVolumeIdSize = 0x11;
  constexpr uint32_t kFixedDrive = 3;
  constexpr uint32_t kHasVolumeAndLocalPath = 1;
  const uint32_t pathOffset = kInfoHeaderSize + kVolumeIdSize;
  const uint32_t suffixOffset = pathOffset + static_cast<uint32_t>(target.size()) + 1;
  bytes.U32(suffixOffset + 1).U32(kInfoHeaderSize).U32(kHasVolumeAndLocalPath);
  bytes.U32(kInfoHeaderSize).U32(pathOffset).U32(0).U32(suffixOffset);
  bytes.U32(kVolumeIdSize).U32(kFixedDrive).U32(0).U32(0x10).Zeros(1);
  bytes.Text(target).Zeros(1).Zeros(1);
}

void AppendName(Bytes& bytes, std::string_view name) {
  bytes.U16(static_cast<uint16_t>(name.size()));
  for (const char c : name)
    bytes.U16(static_cast<unsigned char>(c));
}

}  // namespace

void WriteShellLink(const std::filesystem::path& link, std::string_view target) {
  Bytes bytes;
  AppendHeader(bytes, kHasLinkInfo | kHasName | kIsUnicode);
  AppendLinkInfo(bytes, target);
  AppendName(bytes, "A link of the tests");
  bytes.U32(0);
  WriteFile(link, bytes.Get());
}

void WriteShellLinkWithoutTarget(const std::filesystem::path& link) {
  Bytes bytes;
  AppendHeader(bytes, kHasName | kIsUnicode);
  AppendName(bytes, "A link of the tests");
  bytes.U32(0);
  WriteFile(link, bytes.Get());
}

}  // namespace velm_test
