#include "sdk/WindowRoute.h"

#include <windows.h>

#include <cstring>
#include <cwchar>

namespace Velm3rdSDK {
namespace {

constexpr size_t kMaxCountedBytes = 65536;
constexpr int kClassNameChars = 260;

BOOL CALLBACK SendToClientWindow(HWND window, LPARAM copyData) {
  wchar_t className[kClassNameChars] = {};
  if (!window || !GetClassNameW(window, className, kClassNameChars)) return TRUE;
  if (std::wcscmp(className, kClientWindowClass) == 0 ||
      std::wcscmp(className, kClientHelperWindowClass) == 0)
    SendMessageW(window, WM_COPYDATA, 0, copyData);
  return TRUE;
}

}  // namespace

bool IsClientWindowClass(const wchar_t* className) {
  return std::wcscmp(className, kClientWindowClass) == 0 ||
         std::wcscmp(className, kClientHelperWindowClass) == 0;
}

HWND__* GetVelmClientIPCWindow() {
  if (const HWND window = FindWindowW(kClientWindowClass, nullptr)) return window;
  return FindWindowW(kClientWindowClass,
                     nullptr);  // once more: a client that is starting gets a second chance
}

std::unique_ptr<char[]> ToUtf8(const wchar_t* text) {
  if (!text || *text == L'\0') return nullptr;
  const int length = static_cast<int>(std::wcslen(text));
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
  if (size <= 0) return nullptr;
  auto utf8 = std::make_unique<char[]>(static_cast<size_t>(size) + 2);
  if (WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.get(), size, nullptr, nullptr) <= 0) return nullptr;
  return utf8;
}

void BroadcastToClientWindows(char* utf8) {
  COPYDATASTRUCT record{};
  record.dwData = kCopyDataId;
  record.cbData = static_cast<DWORD>(utf8 ? strnlen(utf8, kMaxCountedBytes) : 0) + 1;
  record.lpData = utf8;
  EnumWindows(SendToClientWindow, reinterpret_cast<LPARAM>(&record));
}

}  // namespace Velm3rdSDK
