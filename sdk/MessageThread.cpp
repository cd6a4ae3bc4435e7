#include "sdk/MessageThread.h"

#include <windows.h>

#include "sdk/SdkMsgChannel.h"
#include "sdk/WindowRoute.h"

namespace Velm3rdSDK {
namespace {

struct MessageThreadRecord {
  HANDLE thread = nullptr;
  DWORD id = 0;
};

MessageThreadRecord& Record() {
  static MessageThreadRecord record;
  return record;
}

LRESULT OnCopyData(COPYDATASTRUCT* data) {
  constexpr LRESULT kIgnored = 1;
  constexpr LRESULT kTaken = 0;
  constexpr DWORD kShortestText = 2;  // one character and its terminator

  if (!data) return kIgnored;
  CSdkMsgChannel& channel = CSdkMsgChannel::Instance();
  if (!data->lpData || data->dwData != kCopyDataId) return kIgnored;
  if (data->cbData < kShortestText) {
    channel.HandleEmptyNotification();
    return kTaken;
  }
  // Whatever stands last gives way to the terminator: a sender that did not send one loses a character.
  char* text = static_cast<char*>(data->lpData);
  text[data->cbData - 1] = '\0';
  channel.HandleVelmClientMsgNotify(text);
  return kTaken;
}

LRESULT CALLBACK CopyDataWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_COPYDATA) return DefWindowProcW(window, message, wParam, lParam);
  return OnCopyData(reinterpret_cast<COPYDATASTRUCT*>(lParam));
}

// The class keeps DefWindowProcW, by which the next start of the thread knows it as its own.
void RegisterLauncherClass() {
  WNDCLASSW known{};
  if (GetClassInfoW(nullptr, kLauncherWindowClass, &known)) {
    if (known.lpfnWndProc == DefWindowProcW) return;
    UnregisterClassW(kLauncherWindowClass, nullptr);
  }
  WNDCLASSW launcher{};
  launcher.lpfnWndProc = DefWindowProcW;
  launcher.lpszClassName = kLauncherWindowClass;
  RegisterClassW(&launcher);
}

// Lets a client of another integrity level reach the window.
void AllowCopyDataFromAnyLevel() {
  using ChangeWindowMessageFilterFunction = BOOL(WINAPI*)(UINT, DWORD);
  const HMODULE user32 = GetModuleHandleW(L"User32.dll");
  if (!user32) return;
  const auto changeFilter = reinterpret_cast<ChangeWindowMessageFilterFunction>(
      reinterpret_cast<void*>(GetProcAddress(user32, "ChangeWindowMessageFilter")));
  if (changeFilter) changeFilter(WM_COPYDATA, MSGFLT_ADD);
}

DWORD PumpMessages() {
  MSG message;
  PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);  // makes the thread's message queue exist
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<DWORD>(message.wParam);
}

// `ownModule` is a reference to this module, so that its code stays while the thread runs it.
DWORD WINAPI MessageThreadProc(void* ownModule) {
  CSdkMsgChannel::Instance();
  RegisterLauncherClass();
  const HWND window = CreateWindowExW(WS_EX_TOOLWINDOW, kLauncherWindowClass, L"", WS_POPUP, 0, 0, 0, 0,
                                      nullptr, nullptr, nullptr, nullptr);
  if (window) SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CopyDataWindowProc));
  AllowCopyDataFromAnyLevel();
  const DWORD result = PumpMessages();
  if (window) DestroyWindow(window);  // while its procedure is still loaded
  FreeLibraryAndExitThread(static_cast<HMODULE>(ownModule), result);
}

}  // namespace

void StartMessageThread() {
  MessageThreadRecord& record = Record();
  DWORD exitCode = 0;
  if (record.thread && GetExitCodeThread(record.thread, &exitCode) && exitCode == STILL_ACTIVE) return;

  HMODULE ownModule = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&MessageThreadProc),
                     &ownModule);
  record.thread = CreateThread(nullptr, 0, MessageThreadProc, ownModule, 0, &record.id);
  if (!record.thread) FreeLibrary(ownModule);
}

void* MessageThreadHandle() {
  return Record().thread;
}

void StopMessageThread() {
  MessageThreadRecord& record = Record();
  // A thread that was started a moment ago has no message queue yet, and would miss the message for good.
  constexpr int kAttempts = 1000;
  constexpr DWORD kPauseMs = 1;
  DWORD exitCode = 0;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (PostThreadMessageW(record.id, WM_QUIT, 0, 0)) break;
    if (!record.thread || !GetExitCodeThread(record.thread, &exitCode) || exitCode != STILL_ACTIVE) break;
    Sleep(kPauseMs);
  }
  record = MessageThreadRecord();  // nobody waits for the thread, and its handle stays open
}

}  // namespace Velm3rdSDK
