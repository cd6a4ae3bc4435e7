#pragma once

// The window side of a simulated meeting client: hidden windows that take commands, and notifications to
// the host applications' windows. For the simulator program and for tests.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace velm_sim {

inline constexpr const wchar_t* kHostWindow = L"VelmPTApp_HostWindow";
inline constexpr const wchar_t* kHelperWindow = L"VelmPTApp_VVHOST_HostWindow";

// A message as it arrived.
struct CopyData {
  std::wstring windowClass;  // of the window that received it
  uintptr_t id = 0;          // dwData
  bool hasData = false;      // lpData was not null
  std::string bytes;         // lpData, terminator included if the sender sent one

  // The bytes up to the first NUL.
  std::string Text() const { return bytes.substr(0, bytes.find('\0')); }
};

// A hidden top-level window on a thread of its own, from construction to destruction.
class ClientWindow {
 public:
  // Runs on the window's thread while the sender waits; its result is the sender's result.
  using Handler = std::function<intptr_t(const CopyData&)>;

  // Throws std::system_error when the window cannot be made.
  ClientWindow(const wchar_t* windowClass, Handler handler);
  ~ClientWindow();
  ClientWindow(const ClientWindow&) = delete;
  ClientWindow& operator=(const ClientWindow&) = delete;

 private:
  class Impl;
  std::unique_ptr<Impl> m_impl;
};

// Sends `size` bytes, null for none, to the hidden window of every host application on this desktop and
// waits until each has handled it or `timeoutMs` has passed. Returns how many windows there were.
// `id` is 10 for what a client really sends.
int SendToHosts(const char* bytes, size_t size, uintptr_t id = 10, unsigned timeoutMs = 5000);

// A notification's text with its terminator.
int NotifyHosts(const std::string& text);

}  // namespace velm_sim
