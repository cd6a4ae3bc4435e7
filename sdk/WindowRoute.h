#pragma once

// The window route: WM_COPYDATA messages between the library and the client's hidden windows, both ways
// with the same form of payload.

#include <cstddef>
#include <cstdint>
#include <memory>

struct HWND__;

namespace Velm3rdSDK {

inline constexpr uintptr_t kCopyDataId = 10;

// The windows of the client. The first tells whether it runs; both receive commands.
inline constexpr const wchar_t* kClientWindowClass = L"VelmPTApp_HostWindow";
inline constexpr const wchar_t* kClientHelperWindowClass = L"VelmPTApp_VVHOST_HostWindow";

// Whether a window of this class receives commands; compared with case.
bool IsClientWindowClass(const wchar_t* className);

// The client's host window, or null when the client does not run.
HWND__* GetVelmClientIPCWindow();

// `text` in UTF-8, NUL-terminated, in memory of its own; null for a null or empty text.
std::unique_ptr<char[]> ToUtf8(const wchar_t* text);

// Sends `utf8` to every window of both classes, and waits for each to have handled it: a window that
// hangs holds the caller up. A null text is sent as no data with a size of 1. Of a text beyond 65536
// bytes only that many are sent, the last without a terminator.
void BroadcastToClientWindows(char* utf8);

}  // namespace Velm3rdSDK
