#pragma once

// The system calls behind the string, one overload per width; private to the string's sources, which
// stay free of the Windows headers by it.

#include <cstdarg>
#include <string>

struct HINSTANCE__;

namespace Cmm {

constexpr int kCompareEqual = 2;  // what the system's comparison answers for equal texts

// 1, kCompareEqual or 3: `a` below, equal to or above `b`, ignoring case under the user's default locale.
// Lengths in units, -1: NUL-terminated. 0 when the system refuses.
int CompareIgnoringCase(const char* a, int aLength, const char* b, int bLength);
int CompareIgnoringCase(const wchar_t* a, int aLength, const wchar_t* b, int bLength);

// Formats `format` and its inserts through the system's message formatter into `text`. Returns the count
// of units; 0 leaves `text` unchanged.
unsigned FormatSystemMessage(const char* format, va_list* args, std::string& text);
unsigned FormatSystemMessage(const wchar_t* format, va_list* args, std::wstring& text);

// The string resource `id`, cut to `size` units with its terminator; the length, 0 without such a resource.
int LoadResourceString(HINSTANCE__* instance, unsigned id, char* buffer, int size);
int LoadResourceString(HINSTANCE__* instance, unsigned id, wchar_t* buffer, int size);

}  // namespace Cmm
