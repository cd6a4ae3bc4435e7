#include "common/client/utility/src/CmmCodec.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "common/client/utility/src/CmmMemory.h"

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

namespace Cmm {
namespace {

constexpr char kBase64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPad = '=';

constexpr auto kBase64Values = [] {
  std::array<int8_t, 128> values;
  values.fill(-1);
  for (int8_t value = 0; value < 64; ++value)
    values[static_cast<size_t>(kBase64Alphabet[value])] = value;
  return values;
}();

// The six bits that a character stands for, -1 for one outside the alphabet.
template <typename T>
int Base64Value(T unit) {
  const auto index = static_cast<std::make_unsigned_t<T>>(unit);
  return index < kBase64Values.size() ? kBase64Values[index] : -1;
}

template <typename T>
CStringT<T> EncodeBase64(const uint8_t* data, unsigned len) {
  CStringT<T> text;
  if (data == nullptr) return text;
  text.resize((size_t{len} / 3 + (len % 3 != 0)) * 4, kPad);

  T* to = text.data();
  for (unsigned left = len; left > 0;) {
    const unsigned taken = std::min(left, 3u);
    uint32_t group = 0;
    for (unsigned i = 0; i < 3; ++i)
      group = group << 8 | (i < taken ? data[i] : 0u);
    for (unsigned i = 0; i <= taken; ++i)
      to[i] = kBase64Alphabet[group >> (18 - 6 * i) & 0x3F];
    data += taken;
    left -= taken;
    to += 4;
  }
  return text;
}

struct HeapRelease {
  void operator()(uint8_t* bytes) const { cmm_mem_free(bytes); }
};
using HeapBytes = std::unique_ptr<uint8_t, HeapRelease>;

// The `=` at the end of a text whose length is a multiple of 4, two at most.
template <typename T>
size_t PaddingOf(const CStringT<T>& text) {
  const size_t length = text.GetLength();
  if (length == 0 || text[length - 1] != kPad) return 0;
  return text[length - 2] == kPad ? 2 : 1;
}

template <typename T>
uint8_t* DecodeBase64(const CStringT<T>& text, unsigned& outLen) {
  const size_t length = text.GetLength();
  if (length % 4 != 0) return nullptr;
  outLen = static_cast<unsigned>(length / 4 * 3 - PaddingOf(text));

  HeapBytes bytes(static_cast<uint8_t*>(cmm_mem_alloc(outLen)));
  if (!bytes) return nullptr;
  std::memset(bytes.get(), 0, outLen);

  unsigned written = 0;
  // Puts the first `count` bytes of the group's low 24 bits behind what is there, if there is room for them.
  const auto write = [&](uint32_t group, unsigned count) {
    if (outLen - written < count) return false;
    for (unsigned i = 0; i < count; ++i)
      bytes.get()[written++] = static_cast<uint8_t>(group >> (16 - 8 * i));
    return true;
  };

  uint32_t group = 0;
  size_t position = 0;
  for (int value; position < length && (value = Base64Value(text[position])) >= 0; ++position) {
    group = group << 6 | static_cast<uint32_t>(value);
    if (position % 4 == 3 && !write(group, 3)) return nullptr;
  }

  const size_t rest = length - position;
  const bool complete = rest == 0 || (text[position] == kPad && ((rest == 1 && write(group << 6, 2)) ||
                                                                 (rest == 2 && write(group << 12, 1))));
  return complete ? bytes.release() : nullptr;
}

// The well-formed sequences of more than one byte by their first byte: how many bytes follow, and the
// range of the first of them. The others lie between 0x80 and 0xBF.
struct Utf8Sequence {
  uint8_t firstLead, lastLead;
  uint8_t following;
  uint8_t secondMin, secondMax;
};

constexpr Utf8Sequence kUtf8Sequences[] = {
    {0xC2, 0xDF, 1, 0x80, 0xBF},                               // 0xC0 and 0xC1 would be longer forms of ASCII
    {0xE0, 0xE0, 2, 0xA0, 0xBF},                               // below: a longer form of two bytes
    {0xE1, 0xEC, 2, 0x80, 0xBF}, {0xED, 0xED, 2, 0x80, 0x9F},  // above: surrogates
    {0xEE, 0xEF, 2, 0x80, 0xBF}, {0xF0, 0xF0, 3, 0x90, 0xBF},  // below: a longer form of three bytes
    {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F},  // above: beyond U+10FFFF
};

// Whether the bytes behind `lead`, `avail` in number, complete a sequence; if so, how many they are.
std::optional<size_t> FollowingBytes(uint8_t lead, const uint8_t* next, size_t avail) {
  if (lead < 0x80) return 0;
  for (const Utf8Sequence& s : kUtf8Sequences) {
    if (lead < s.firstLead || lead > s.lastLead) continue;
    if (avail < s.following || next[0] < s.secondMin || next[0] > s.secondMax) return std::nullopt;
    const bool continued =
        std::all_of(next + 1, next + s.following, [](uint8_t byte) { return (byte & 0xC0) == 0x80; });
    return continued ? std::optional<size_t>(s.following) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

void StringToHex(const CStringT<char>& in, CStringT<char>& out) {
  CStringT<char> hex;
  hex.reserve(in.GetLength() * 2);
  for (const char unit : in) {
    const auto byte = static_cast<uint8_t>(unit);
    hex.push_back(kHexDigits[byte >> 4]);
    hex.push_back(kHexDigits[byte & 0xF]);
  }
  out = std::move(hex);
}

CStringT<char> base64EncodeA(const uint8_t* data, unsigned len) {
  return EncodeBase64<char>(data, len);
}

CStringT<wchar_t> base64EncodeW(const uint8_t* data, unsigned len) {
  return EncodeBase64<wchar_t>(data, len);
}

CStringT<wchar_t> base64Encode(const uint8_t* data, unsigned len) {
  return base64EncodeW(data, len);
}

uint8_t* base64DecodeA(const CStringT<char>& text, unsigned& outLen) {
  return DecodeBase64(text, outLen);
}

uint8_t* base64DecodeW(const CStringT<wchar_t>& text, unsigned& outLen) {
  return DecodeBase64(text, outLen);
}

uint8_t* base64Decode(const CStringT<wchar_t>& text, unsigned& outLen) {
  return base64DecodeW(text, outLen);
}

void base64FreeDecodeBuffer(uint8_t*& p) {
  cmm_mem_free(p);
  p = nullptr;
}

bool IsValidateUTF8(const CStringT<char>& text) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  const size_t length = text.GetLength();
  for (size_t i = 0; i < length; ++i) {
    const auto following = FollowingBytes(bytes[i], bytes + i + 1, length - i - 1);
    if (!following) return false;
    i += *following;
  }
  return true;
}

}  // namespace Cmm
