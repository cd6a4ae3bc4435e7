#pragma once

// The system calls behind the string, one overload per width; private to the string's sources, which
// stay free of the Windows headers by it.

struct HINSTANCE__;

namespace Cmm {

constexpr int kCompareEqual = 2;  // what the system's comparison answers for equal texts

// 1, kCompareEqual or 3: `a` below, equal to or above `b`, ignoring case under the user's default locale.
// Lengths in units, -1: NUL-terminated. 0 when the system refuses.
int CompareIgnoringCase(const char* a, int aLength, const char* b, int bLength);
int CompareIgnoringCase(const wchar_t* a, int aLength, const wchar_t* b, int bLength);

int LoadResourceString(HINSTANCE__* instance, unsigned id, char* buffer, int size);
int LoadResourceString(HINSTANCE__* instance, unsigned id, wchar_t* buffer, int size);

}  // namespace Cmm
