#pragma once

// velmsdk.dll as a host application without the import library has it: loaded at run time, its functions
// looked up by name. Each object is a fresh load, with nothing left of the one before.

#include <windows.h>

#include <string>

#include "sdk/VelmSdk.h"

#define VELM_CONTROL_FUNCTIONS(X) \
  X(TryRunningUnderServiceMode)   \
  X(GetVelmClientVersion)         \
  X(GetSDKAvailableFeatures)      \
  X(RegisterMsg)                  \
  X(InitVelm3rdSdkChannel)        \
  X(DestroySdkChannel)            \
  X(SetCallBackFunc)              \
  X(SetIMPresenceCallBack)        \
  X(SetAudioCallBack)             \
  X(SetScreenShareCallBack)       \
  X(SetConfChatCallBack)          \
  X(SetCameraCallBack)            \
  X(SetConfAudioCallBack)         \
  X(SetConfEventCallBack)         \
  X(SetPTEventCallBack)           \
  X(SetConfDeviceCallBack)        \
  X(SetUIControlStatusCallBack)   \
  X(GetIMPresenceStatus)          \
  X(SetAudioCmd)                  \
  X(SetScreenShareCmd)            \
  X(SetConfChatCmd)               \
  X(SetCameraCmd)                 \
  X(SetConfAudioCmd)              \
  X(SetConfEventCmd)              \
  X(SetConfDeviceCmd)             \
  X(GetUIControlStatusCmd)        \
  X(SendMsgToVelmClient)          \
  X(SetAudioDevice)               \
  X(SetAudioDeviceV2)             \
  X(SetAudioDeviceWCHAR)

namespace velm_test {

class Sdk {
 public:
  static constexpr const wchar_t* kDll = L"velmsdk.dll";
  static constexpr const wchar_t* kWindow = L"VelmLauncher3rdSdk_HostWindow";

  Sdk() : m_dll(LoadLibraryW(kDll)) {
#define VELM_LOOK_UP(name) \
  name = reinterpret_cast<decltype(&::name)>(reinterpret_cast<void*>(GetProcAddress(m_dll, #name)));
    VELM_CONTROL_FUNCTIONS(VELM_LOOK_UP)
#undef VELM_LOOK_UP
  }
  Sdk(const Sdk&) = delete;
  Sdk& operator=(const Sdk&) = delete;
  ~Sdk() {
    DestroySdkChannel();
    FreeLibrary(m_dll);
    AwaitUnload();
  }

  // The library's window of this process, or null.
  static HWND Window() {
    HWND window = nullptr;
    while ((window = FindWindowExW(nullptr, window, kWindow, nullptr)) != nullptr) {
      DWORD process = 0;
      GetWindowThreadProcessId(window, &process);
      if (process == GetCurrentProcessId()) return window;
    }
    return nullptr;
  }

  // Waits until the library's thread runs, and answers as its window does from then on.
  static bool AwaitWindow() {
    return Await([] { return Window() && SendMessageW(Window(), WM_COPYDATA, 0, 0) == 1; });
  }

  // The DLL stays loaded while its thread runs, which ends by itself a moment after the channel.
  static bool AwaitUnload() {
    return Await([] { return GetModuleHandleW(kDll) == nullptr; });
  }

#define VELM_DECLARE(name) decltype(&::name) name;
  VELM_CONTROL_FUNCTIONS(VELM_DECLARE)
#undef VELM_DECLARE

 private:
  template <typename Condition>
  static bool Await(Condition condition) {
    constexpr int kAttempts = 10000;
    for (int i = 0; i < kAttempts; ++i) {
      if (condition()) return true;
      Sleep(1);
    }
    return false;
  }

  HMODULE m_dll;
};

}  // namespace velm_test
