#include "tools/client_simulator/ClientWindow.h"

#include <windows.h>

#include <cwchar>
#include <future>
#include <system_error>
#include <thread>

namespace velm_sim {
namespace {

constexpr const wchar_t* kHostApplicationWindow = L"VelmLauncher3rdSdk_HostWindow";
constexpr int kClassNameChars = 64;

bool IsHostWindow(HWND window) {
  wchar_t name[kClassNameChars] = {};
  return GetClassNameW(window, name, kClassNameChars) && std::wcscmp(name, kHostApplicationWindow) == 0;
}

struct Outgoing {
  COPYDATASTRUCT data{};
  unsigned timeoutMs = 0;
  Delivery delivery;
};

BOOL CALLBACK SendToHost(HWND window, LPARAM parameter) {
  if (!IsHostWindow(window)) return TRUE;
  Outgoing& outgoing = *reinterpret_cast<Outgoing*>(parameter);
  ++outgoing.delivery.hosts;
  if (!SendMessageTimeoutW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&outgoing.data), SMTO_NORMAL,
                           outgoing.timeoutMs, nullptr))
    ++outgoing.delivery.unanswered;
  return TRUE;
}

BOOL CALLBACK CountHost(HWND window, LPARAM parameter) {
  if (IsHostWindow(window)) ++*reinterpret_cast<int*>(parameter);
  return TRUE;
}

}  // namespace

class ClientWindow::Impl {
 public:
  Impl(const wchar_t* windowClass, Handler handler, RequestHandler requestHandler)
      : m_class(windowClass), m_handler(std::move(handler)), m_requestHandler(std::move(requestHandler)) {
    std::promise<DWORD> started;
    std::future<DWORD> error = started.get_future();
    m_thread = std::thread([this, &started] { Run(started); });
    if (const DWORD code = error.get(); code != ERROR_SUCCESS) {
      m_thread.join();
      throw std::system_error(static_cast<int>(code), std::system_category(),
                              "cannot make the client's window");
    }
  }

  ~Impl() {
    PostMessageW(m_window, WM_CLOSE, 0, 0);
    m_thread.join();
  }

 private:
  void Run(std::promise<DWORD>& started) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = m_class.c_str();
    RegisterClassW(&windowClass);  // fails when an earlier window registered it, which serves as well
    m_window = CreateWindowExW(WS_EX_TOOLWINDOW, m_class.c_str(), L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                               instance, this);
    started.set_value(m_window ? ERROR_SUCCESS : GetLastError());
    if (!m_window) return;
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
      DispatchMessageW(&message);
  }

  static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
      case WM_NCCREATE:
        SetWindowLongPtrW(
            window, GWLP_USERDATA,
            reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
        break;
      case WM_COPYDATA: {
        const auto* self = reinterpret_cast<Impl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self->m_handler) return self->Take(*reinterpret_cast<COPYDATASTRUCT*>(lParam));
        break;
      }
      case kPipeRequest: {
        const auto* self = reinterpret_cast<Impl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self->m_requestHandler) self->m_requestHandler(static_cast<uint32_t>(wParam));
        return 0;
      }
      case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
      default:
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
  }

  LRESULT Take(const COPYDATASTRUCT& data) const {
    CopyData received;
    received.windowClass = m_class;
    received.id = data.dwData;
    received.size = data.cbData;
    received.hasData = data.lpData != nullptr;
    if (data.lpData) received.bytes.assign(static_cast<const char*>(data.lpData), data.cbData);
    return m_handler(received);
  }

  const std::wstring m_class;
  const Handler m_handler;
  const RequestHandler m_requestHandler;
  HWND m_window = nullptr;
  std::thread m_thread;
};

ClientWindow::ClientWindow(const wchar_t* windowClass, Handler handler, RequestHandler requestHandler)
    : m_impl(std::make_unique<Impl>(windowClass, std::move(handler), std::move(requestHandler))) {}

ClientWindow::~ClientWindow() = default;

Delivery DeliverToHosts(const char* bytes, size_t size, uintptr_t id, unsigned timeoutMs) {
  Outgoing outgoing;
  outgoing.data.dwData = id;
  outgoing.data.cbData = static_cast<DWORD>(size);
  outgoing.data.lpData = const_cast<char*>(bytes);
  outgoing.timeoutMs = timeoutMs;
  EnumWindows(SendToHost, reinterpret_cast<LPARAM>(&outgoing));
  return outgoing.delivery;
}

int SendToHosts(const char* bytes, size_t size, uintptr_t id, unsigned timeoutMs) {
  return DeliverToHosts(bytes, size, id, timeoutMs).hosts;
}

int CountHosts() {
  int hosts = 0;
  EnumWindows(CountHost, reinterpret_cast<LPARAM>(&hosts));
  return hosts;
}

int NotifyHosts(const std::string& text) {
  return SendToHosts(text.c_str(), text.size() + 1);
}

}  // namespace velm_sim
