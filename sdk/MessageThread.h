#pragma once

// The thread that pumps the library's hidden window, through which the client answers.

namespace Velm3rdSDK {

// The window's class name: clients look for it.
inline constexpr const wchar_t* kLauncherWindowClass = L"VelmLauncher3rdSdk_HostWindow";

// Starts the message thread unless it runs. Does not wait for it to come up.
void StartMessageThread();

// The handle of the thread that was started last and not stopped since; null if there is none.
void* MessageThreadHandle();

// Asks the message thread to end and forgets it, without waiting for it to end.
void StopMessageThread();

}  // namespace Velm3rdSDK
