#include "common/client/utility/src/CmmCodec.h"

#include <cstdint>
#include <optional>

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

bool IsUnreservedInForm(uint8_t byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
         byte == '-' || byte == '.' || byte == '_';
}

// A unit at or below '9' is a digit whatever it is, so that one below '0' has a negative value: existing
// text is decoded like this, keep it.
std::optional<int> EscapeDigit(uint8_t unit) {
  if (unit <= '9') return unit - '0';
  if (unit >= 'A' && unit <= 'F') return unit - 'A' + 10;
  if (unit >= 'a' && unit <= 'f') return unit - 'a' + 10;
  return std::nullopt;
}

}  // namespace

size_t cmm_str_u8extent(const char* p, size_t avail) {
  if (avail == 0 || *p == '\0') return 0;
  const auto lead = static_cast<uint8_t>(*p);
  if (lead < 0x80) return 1;

  size_t extent;
  if ((lead & 0xE0) == 0xC0) {
    extent = 2;
  } else if ((lead & 0xF0) == 0xE0) {
    extent = 3;
  } else if ((lead & 0xF8) == 0xF0) {
    extent = 4;
  } else {
    return 0;
  }
  if (avail < extent || p[1] == '\0') return 0;
  // Offset 3 in both cases, and offset 2 in none: callers have adapted to exactly this test.
  if (extent > 2 && p[3] == '\0') return 0;
  return extent;
}

void cmm_urlenc(const char* src, char* dst, size_t srcLen) {
  for (size_t i = 0; i < srcLen; ++i) {
    const auto byte = static_cast<uint8_t>(src[i]);
    if (IsUnreservedInForm(byte)) {
      *dst++ = src[i];
    } else if (byte == ' ') {
      *dst++ = '+';
    } else {
      *dst++ = '%';
      *dst++ = kHexDigits[byte >> 4];
      *dst++ = kHexDigits[byte & 0xF];
    }
  }
  *dst = '\0';
}

int cmm_urldec(const char* src, char* dst) {
  int tokens = 0;
  for (; *src != '\0'; ++src, ++tokens) {
    if (*src == '+') {
      *dst++ = ' ';
    } else if (*src == '%') {
      if (src[1] == '\0' || src[2] == '\0') break;
      const auto high = EscapeDigit(static_cast<uint8_t>(src[1]));
      const auto low = EscapeDigit(static_cast<uint8_t>(src[2]));
      if (high && low) *dst++ = static_cast<char>(*high * 16 + *low);
      src += 2;
    } else {
      *dst++ = *src;
    }
  }
  *dst = '\0';
  return tokens;
}
