// The control channel beside its floors:
//   window_route      a command by the window route, without discovery; floor: one bare WM_COPYDATA of the
//                     same bytes to the same window of another process
//   window_search     what the route asks the system before it sends: is there a window, and which of all
//                     top-level windows are the client's; grows with the windows of the desktop
//   dispatch          a notification of 300 bytes to its callbacks; floor: jsoncpp parsing the same text
//   log_line          the log line of such a notification, composed and dropped
//   discovery         the walk of the product directories, which every command asks for
//   whole_command     an exported command as a host application calls it
// Run with "--receiver" the program is the other process.

#include <json/reader.h>
#include <json/value.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "bench/RatioReporter.h"
#include "common/client/utility/src/UniqueHandle.h"
#include "sdk/ConsoleLog.h"
#include "sdk/SdkImplHelper.h"
#include "sdk/SdkMsgChannel.h"
#include "sdk/VelmSdk.h"
#include "sdk/WindowRoute.h"
#include "tools/client_simulator/ClientWindow.h"
#include "tools/fake_product/FakeProduct.h"

namespace {

using Velm3rdSDK::CSdkMsgChannel;
using velm_bench::kFloorSuffix;
using velm_bench::Register;

constexpr const wchar_t* kDoneEvent = L"velm-channel-bench-done";
constexpr const wchar_t* kCommand =
    LR"({"commandId":2,"from":1,"version":"1.0.0","data":[{"AudioCmd":5}],"deviceName":"Headset",)"
    LR"("usbVid":"0A12","usbPid":"1004","deviceGUID":"{6F1A3B52-9C7D-4E8B-8A11-2233445566AA}"})";

std::string Notification() {
  std::string text =
      R"({"commandId":7,"from":2,"data":[{"ConfEvent":4}],"deviceName":"","deviceGUID":"",)"
      R"("meetingId":"81234567890","activeMeetingsCount":1,"meetingType":2,"result":"0:meeting joined","note":")";
  text.append(300 - text.size() - 2, 'x');
  return text + "\"}";
}

// ---- The window route

void WindowRoute(benchmark::State& state) {
  CSdkMsgChannel& channel = CSdkMsgChannel::Instance();
  for (auto _ : state)
    channel.SdkSendMsgToVelmClientByWindow(kCommand, Velm3rdSDK::kMsgToAudio);
}

void BareCopyData(benchmark::State& state) {
  const auto utf8 = Velm3rdSDK::ToUtf8(kCommand);
  COPYDATASTRUCT data{10, static_cast<DWORD>(std::strlen(utf8.get()) + 1), utf8.get()};
  const HWND window = FindWindowW(Velm3rdSDK::kClientWindowClass, nullptr);
  for (auto _ : state)
    SendMessageW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
}

BOOL CALLBACK ReadClassName(HWND window, LPARAM) {
  wchar_t name[260];
  benchmark::DoNotOptimize(GetClassNameW(window, name, 260));
  return TRUE;
}

void WindowSearch(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(FindWindowW(Velm3rdSDK::kClientWindowClass, nullptr));
    EnumWindows(ReadClassName, 0);
  }
}

void LogLine(benchmark::State& state, const std::string& text) {
  for (auto _ : state)
    SDK_LOG(Velm3rdSDK::kLogInfo) << L"[CSdkMsgChannel::HandleVelmClientMsgNotify] pMsgA:" << text.c_str();
}

void Discovery(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(Velm3rdSDK::g_sdkImplHelper.HasVelmClient());
}

void WholeCommand(benchmark::State& state) {
  for (auto _ : state)
    SetAudioCmd(5);
}

// ---- Dispatch

void Dispatch(benchmark::State& state, const std::string& text) {
  CSdkMsgChannel& channel = CSdkMsgChannel::Instance();
  channel.Callbacks().general = [](const SdkNotifyInfo* info, const wchar_t*) {
    benchmark::DoNotOptimize(info->value);
  };
  channel.Callbacks().confEvent = [](const SdkConfEventInfo* info) { benchmark::DoNotOptimize(info->event); };
  channel.RegisterFeature(SDK_FEATURE_CONF_EVENT);
  for (auto _ : state) {
    if (channel.HandleVelmClientMsgNotify(text.c_str()) != 1)
      state.SkipWithError("the notification was dropped");
  }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"  // the library parses with this class
void BareParse(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    Json::Value root;
    benchmark::DoNotOptimize(Json::Reader().parse(text.data(), text.data() + text.size(), root, false));
  }
}
#pragma GCC diagnostic pop

// ---- The other process

int RunReceiver() {
  const Cmm::UniqueHandle done(CreateEventW(nullptr, TRUE, FALSE, kDoneEvent));
  const velm_sim::ClientWindow window(Velm3rdSDK::kClientWindowClass,
                                      [](const velm_sim::CopyData&) -> intptr_t { return 0; });
  constexpr DWORD kLimitMs = 10 * 60 * 1000;
  return WaitForSingleObject(done.get(), kLimitMs) == WAIT_OBJECT_0 ? 0 : 1;
}

class Receiver {
 public:
  Receiver() : m_done(CreateEventW(nullptr, TRUE, FALSE, kDoneEvent)) {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) + L"\" --receiver";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
      return;
    m_process.reset(process.hProcess);
    CloseHandle(process.hThread);
    constexpr int kAttempts = 1000;
    for (int i = 0; i < kAttempts && !Velm3rdSDK::GetVelmClientIPCWindow(); ++i)
      Sleep(10);
  }
  ~Receiver() {
    SetEvent(m_done.get());
    WaitForSingleObject(m_process.get(), INFINITE);
  }

 private:
  Cmm::UniqueHandle m_done;
  Cmm::UniqueHandle m_process;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "--receiver") == 0) return RunReceiver();

  velm_tools::FakeProductOptions product;
  product.registerCommand = true;
  product.version = {5, 8, 0, 0};
  const velm_tools::FakeProduct client(product);
  const Receiver receiver;
  if (!Velm3rdSDK::GetVelmClientIPCWindow()) {
    std::fprintf(stderr, "the receiving process did not come up\n");
    return 1;
  }
  GetSDKAvailableFeatures();

  const std::string notification = Notification();
  Register("window_route", WindowRoute);
  Register(std::string("window_route") + kFloorSuffix, BareCopyData);
  Register("window_search", WindowSearch);
  Register("discovery", Discovery);
  Register("whole_command", WholeCommand);
  Register("log_line", LogLine, notification);
  Register("dispatch", Dispatch, notification);
  Register(std::string("dispatch") + kFloorSuffix, BareParse, notification);
  return velm_bench::RunBenchmarks(argc, argv);
}
