#pragma once

// Bytes as text and back: hexadecimal, base64, URL form encoding, and the shape of UTF-8.

#include <cstddef>
#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

extern "C" {

// The length in bytes of the UTF-8 sequence at `p`, of which `avail` bytes are left; 0 when the first
// byte begins none, when fewer bytes are left than it asks for, or when a zero byte is met. The test for
// zero reads offset 1 of every longer sequence and offset 3 of those of three and four bytes: the caller
// must own one byte behind a sequence of three, even beyond `avail`. Nothing else is validated.
CMM_EXPORT size_t cmm_str_u8extent(const char* p, size_t avail);

// Encodes `srcLen` bytes for a URL's form data: letters, digits and "-._" stay, a space becomes '+', all
// else '%' and two lower-case hexadecimal digits. `dst` must hold 3 * srcLen + 1 bytes; it is terminated.
CMM_EXPORT void cmm_urlenc(const char* src, char* dst, size_t srcLen);

// Decodes such text up to its NUL. `dst` must hold the source's length + 1 bytes, and may be `src`; it is
// terminated. Text that ends within an escape ends the decoding before it; an escape with a letter
// beyond f is dropped; any unit below '0' counts as a digit. Returns the number of units and escapes
// consumed, dropped ones included: not a length of `dst`, which may hold decoded NULs as well.
CMM_EXPORT int cmm_urldec(const char* src, char* dst);

}  // extern "C"

namespace Cmm {

// Two lower-case hexadecimal digits for each byte of `in`, which may be `out` itself.
CMM_EXPORT void StringToHex(const CStringT<char>& in, CStringT<char>& out);

// The standard base64 alphabet with padding and without line breaks. Null data gives the empty string.
CMM_EXPORT CStringT<char> base64EncodeA(const uint8_t* data, unsigned len);
CMM_EXPORT CStringT<wchar_t> base64EncodeW(const uint8_t* data, unsigned len);
CMM_EXPORT CStringT<wchar_t> base64Encode(const uint8_t* data, unsigned len);  // base64EncodeW

// The bytes of a base64 text, `outLen` in number, in a block that the caller gives back through
// base64FreeDecodeBuffer; an empty text gives a block of no bytes. Null when the text is malformed or the
// heap gives out. Nothing is skipped: blanks and line breaks are malformed. `outLen` is set even where
// the decoding then fails, except for a length that is no multiple of 4.
// Of two final characters of padding only the first is looked at: "QQ=A" passes, as the byte that it has
// and two bytes of 0, because what follows the '=' did not count as padding.
CMM_EXPORT uint8_t* base64DecodeA(const CStringT<char>& text, unsigned& outLen);
CMM_EXPORT uint8_t* base64DecodeW(const CStringT<wchar_t>& text, unsigned& outLen);
CMM_EXPORT uint8_t* base64Decode(const CStringT<wchar_t>& text, unsigned& outLen);  // base64DecodeW
CMM_EXPORT void base64FreeDecodeBuffer(uint8_t*& p);  // sets `p` null; a null `p` does nothing

// Whether the whole stored text is UTF-8 by RFC 3629: shortest forms only, no surrogates, nothing above
// U+10FFFF, no sequence cut short. NUL passes as ASCII.
CMM_EXPORT bool IsValidateUTF8(const CStringT<char>& text);

}  // namespace Cmm
