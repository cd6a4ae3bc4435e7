#include "archive/ArchiveText.h"

#include <cstring>

#include "common/client/utility/src/CmmConvert.h"

namespace Cmm::Archive {
namespace {

constexpr int kUtf8 = 65001;
constexpr size_t kBlock = 16;  // units that are tested together

// Copies the leading ASCII units of `text`, and returns how many they are.
template <typename From, typename To>
size_t CopyAscii(const From* text, size_t length, To* out) {
  size_t done = 0;
  for (; length - done >= kBlock; done += kBlock) {
    unsigned seen = 0;
    for (size_t i = 0; i < kBlock; ++i)
      seen |= std::make_unsigned_t<From>(text[done + i]);
    if (seen >= 0x80) break;
    for (size_t i = 0; i < kBlock; ++i)
      out[done + i] = static_cast<To>(text[done + i]);
  }
  for (; done < length && std::make_unsigned_t<From>(text[done]) < 0x80; ++done)
    out[done] = static_cast<To>(text[done]);
  return done;
}

}  // namespace

size_t WideFromUtf8(const char* text, size_t size, wchar_t* out) {
  const size_t ascii = CopyAscii(text, size, out);
  if (ascii == size) return size;
  return ascii + cmm_str_convert(kUtf8, out + ascii, size - ascii, text + ascii, size - ascii);
}

CStringT<wchar_t> WideFromUtf8(const char* text) {
  CStringT<wchar_t> wide;
  if (!text) return wide;
  const size_t size = std::strlen(text);
  wide.resize(size);
  wide.resize(WideFromUtf8(text, size, wide.data()));
  return wide;
}

size_t Utf8FromWide(const wchar_t* text, size_t length, char* out) {
  const size_t ascii = CopyAscii(text, length, out);
  if (ascii == length) return length;
  const size_t rest = length - ascii;
  return ascii + cmm_str_convert(kUtf8, out + ascii, rest * kUtf8BytesPerUnit, text + ascii, rest);
}

void Utf8FromWide(const wchar_t* text, size_t length, CStringT<char>& out) {
  out.resize(length * kUtf8BytesPerUnit);
  out.resize(Utf8FromWide(text, length, out.data()));
}

Utf8Text::Utf8Text(const wchar_t* text, size_t length) {
  char* out = m_short;
  if (length > kShortUnits) {
    m_long.reset(new char[length * kUtf8BytesPerUnit + 1]);
    out = m_long.get();
  }
  out[Utf8FromWide(text, length, out)] = '\0';
}

const CStringT<wchar_t>& EmptyName() {
  static const CStringT<wchar_t> empty;
  return empty;
}

}  // namespace Cmm::Archive
