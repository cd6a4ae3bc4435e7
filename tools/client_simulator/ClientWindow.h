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

inline constexpr unsigned kPipeRequest = 0xA40;

// A message as it arrived.
struct CopyData {
  std::wstring windowClass;  // of the window that received it
  uintptr_t id = 0;          // dwData
  size_t size = 0;           // cbData
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

  // Takes a host's request for a pipe, a message of number kPipeRequest, with the channel id of its wParam.
  using RequestHandler = std::function<void(uint32_t channelId)>;

  // Without a handler its messages are not answered. Throws std::system_error when the window cannot be made.
  ClientWindow(const wchar_t* windowClass, Handler handler, RequestHandler requestHandler = {});
  ~ClientWindow();
  ClientWindow(const ClientWindow&) = delete;
  ClientWindow& operator=(const ClientWindow&) = delete;

 private:
  class Impl;
  std::unique_ptr<Impl> m_impl;
};

struct Delivery {
  int hosts = 0;       // host applications on this desktop
  int unanswered = 0;  // those of them that did not handle the message in time
};

// Sends `size` bytes, null for none, to the hidden window of every host application on this desktop and
// waits until each has handled it or `timeoutMs` has passed. `id` is 10 for what a client really sends.
Delivery DeliverToHosts(const char* bytes, size_t size, uintptr_t id = 10, unsigned timeoutMs = 5000);

// DeliverToHosts() for callers that only need the number of host applications.
int SendToHosts(const char* bytes, size_t size, uintptr_t id = 10, unsigned timeoutMs = 5000);

int CountHosts();

// A notification's text with its terminator.
int NotifyHosts(const std::string& text);

}  // namespace velm_sim
