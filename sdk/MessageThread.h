#pragma once

// The thread that pumps the library's hidden window, through which the client answers.

namespace Velm3rdSDK {

// The window's class name: clients look for it.
inline constexpr const wchar_t* kLauncherWindowClass = L"VelmLauncher3rdSdk_HostWindow";

// Starts the message thread unless it runs. Does not wait for it to come up.
void StartMessageThread();

// Asks the message thread to end and forgets it, without waiting for it to end.
void StopMessageThread();

}  // namespace Velm3rdSDK
