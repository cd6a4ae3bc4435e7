#include "tools/fake_product/VersionedImage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace velm_tools {
namespace {

// How VS_FIXEDFILEINFO begins: its signature 0xFEEF04BD and its structure version 1.0, little-endian.
constexpr unsigned char kFixedInfoHead[] = {0xBD, 0x04, 0xEF, 0xFE, 0x00, 0x00, 0x01, 0x00};
// Behind the head: dwFileVersionMS, dwFileVersionLS, dwProductVersionMS, dwProductVersionLS.
constexpr size_t kVersionWords = 4;

}  // namespace

bool PatchFileVersion(std::span<unsigned char> image, const Cmm::FileVersion& version) {
  const auto head =
      std::search(image.begin(), image.end(), std::begin(kFixedInfoHead), std::end(kFixedInfoHead));
  const uint32_t ms = static_cast<uint32_t>(version.major) << 16 | version.minor;
  const uint32_t ls = static_cast<uint32_t>(version.third) << 16 | version.fourth;
  const uint32_t words[kVersionWords] = {ms, ls, ms, ls};
  if (static_cast<size_t>(image.end() - head) < sizeof kFixedInfoHead + sizeof words) return false;
  std::memcpy(&*head + sizeof kFixedInfoHead, words, sizeof words);
  return true;
}

std::vector<unsigned char> ImageOfVersion(const Cmm::FileVersion& version) {
  const std::span<const unsigned char> embedded = EmbeddedImage();
  std::vector<unsigned char> image(embedded.begin(), embedded.end());
  PatchFileVersion(image, version);
  return image;
}

}  // namespace velm_tools
