#pragma once

// What tests of the channel share: a channel of their own, stand-ins for the client's windows and for the
// pipe route, and a log capture.

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "sdk/MessageThread.h"
#include "sdk/SdkImplHelper.h"
#include "sdk/SdkMsgChannel.h"
#include "tests/sdk/LogCapture.h"
#include "tools/client_simulator/ClientWindow.h"
#include "tools/fake_product/FakeProduct.h"

namespace Velm3rdSDK {

// Reaches the fields of a channel that no operation shows.
struct SdkMsgChannelTestAccess {
  CSdkMsgChannel& channel;

  uint32_t& Inited() { return channel.m_bInited; }
  int64_t& Features() { return channel.m_nFeatures; }
  ISdkRawSink*& RawSink() { return channel.m_pRawSink; }
  HWND__*& Window() { return channel.m_hWnd; }
  DeviceIdentity& Device() { return channel.m_device; }
  CAudioDeviceTable& Table() { return channel.m_deviceTable; }
  uint32_t& AudioIPC() { return channel.m_bAudioIPC; }
  uint32_t& ServiceModeIPC() { return channel.m_b3rdSDKIPC; }
  uint32_t& RequestServiceMode() { return channel.m_bRequestServiceMode; }
  std::shared_ptr<IAudioSDKIPCClient>& AudioClient() { return channel.m_pIPCClient; }
  std::shared_ptr<IClient3rdSDKIPCClient>& ServiceModeClient() { return channel.m_p3rdSDKIPCClient; }
  size_t DeviceNames() const { return channel.m_deviceNames.size(); }
  size_t DeviceGUIDs() const { return channel.m_deviceGUIDs.size(); }
};

// What a stand-in for an IPC client was asked, in order: "SetSink", "Connect 0", "Send <text>",
// "Disconnect", "delete".
using Calls = std::vector<std::wstring>;

class FakeAudioClient : public IAudioSDKIPCClient {
 public:
  explicit FakeAudioClient(Calls& calls) : m_calls(calls) {}
  ~FakeAudioClient() override { m_calls.push_back(L"delete"); }
  void SetSink(IAudioSDKIPCClientSink* sink) override {
    m_calls.push_back(L"SetSink");
    m_sink = sink;
  }
  void Connect(uint32_t channelId) override { m_calls.push_back(L"Connect " + std::to_wstring(channelId)); }
  void Disconnect() override { m_calls.push_back(L"Disconnect"); }
  uint32_t GetChannelID() override { return 0; }
  uint32_t IsConnected() override { return 0; }
  int RequestToStartNewChannel(uint32_t) override { return 1; }
  int RequestToStopChannel(uint32_t) override { return 1; }
  int SendAudioCmdRequest(const Cmm::CStringT<wchar_t>& text) override {
    m_calls.push_back(std::wstring(L"Send ") + text.c_str());
    return 0;
  }
  int NotifyClientExit() override { return 1; }

  IAudioSDKIPCClientSink* m_sink = nullptr;

 private:
  Calls& m_calls;
};

class FakeServiceModeClient : public IClient3rdSDKIPCClient {
 public:
  explicit FakeServiceModeClient(Calls& calls) : m_calls(calls) {}
  ~FakeServiceModeClient() override { m_calls.push_back(L"delete"); }
  void SetSink(IClient3rdSDKIPCClientSink* sink) override {
    m_calls.push_back(L"SetSink");
    m_sink = sink;
  }
  void Connect(uint32_t channelId) override { m_calls.push_back(L"Connect " + std::to_wstring(channelId)); }
  void Disconnect() override { m_calls.push_back(L"Disconnect"); }
  uint32_t GetChannelID() override { return 0; }
  uint32_t IsConnected() override { return 0; }
  int SendClient3rdSDKCmdRequest(const Cmm::CStringT<wchar_t>& text) override {
    m_calls.push_back(std::wstring(L"Send ") + text.c_str());
    return 0;
  }

  IClient3rdSDKIPCClientSink* m_sink = nullptr;

 private:
  Calls& m_calls;
};

// Puts stand-ins in the place of the pipe route's clients while it lives.
class FakeIpcRoute : public IpcClientFactory {
 public:
  FakeIpcRoute() { SetIpcClientFactory(this); }
  ~FakeIpcRoute() override { SetIpcClientFactory(nullptr); }
  std::shared_ptr<IAudioSDKIPCClient> MakeAudioClient() override {
    auto client = std::make_shared<FakeAudioClient>(audioCalls);
    audio = client.get();
    return client;
  }
  std::shared_ptr<IClient3rdSDKIPCClient> MakeServiceModeClient() override {
    auto client = std::make_shared<FakeServiceModeClient>(serviceCalls);
    serviceMode = client.get();
    return client;
  }

  Calls audioCalls;
  Calls serviceCalls;
  FakeAudioClient* audio = nullptr;
  FakeServiceModeClient* serviceMode = nullptr;
};

// A window of the client that keeps what it receives.
class RecordingWindow {
 public:
  explicit RecordingWindow(const wchar_t* windowClass)
      : m_window(windowClass, [this](const velm_sim::CopyData& data) -> intptr_t {
          const std::lock_guard lock(m_mutex);
          m_received.push_back(data);
          return 0;
        }) {}

  std::vector<velm_sim::CopyData> Received() const {
    const std::lock_guard lock(m_mutex);
    return m_received;
  }
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const auto& data : Received())
      texts.push_back(data.Text());
    return texts;
  }

 private:
  mutable std::mutex m_mutex;
  std::vector<velm_sim::CopyData> m_received;
  velm_sim::ClientWindow m_window;
};

// An installed client of a version that the registry leads to.
inline velm_tools::FakeProductOptions ClientOfVersion(uint16_t major, uint16_t minor, uint16_t third = 0,
                                                      uint16_t fourth = 0) {
  velm_tools::FakeProductOptions options;
  options.version = {major, minor, third, fourth};
  options.registerCommand = true;
  return options;
}

// Runs `stop`, which stops the message thread, and waits until that thread and its window are gone: the
// library itself does not wait, and the next test would meet them.
template <typename Stop>
void StopAndAwait(Stop stop) {
  constexpr unsigned long kLimitMs = 10000;
  void* const thread = MessageThreadHandle();
  stop();
  if (thread) {
    EXPECT_EQ(WaitForSingleObject(thread, kLimitMs), WAIT_OBJECT_0);
  }
}

// A channel of the test's own, beside the process's instance.
class ChannelTest : public testing::Test {
 protected:
  // The process's instance comes first: it would take the singleton pointer over later, when the message
  // thread asks for it.
  ChannelTest() : m_instance(CSdkMsgChannel::Instance()), channel(std::make_unique<CSdkMsgChannel>()) {}
  ~ChannelTest() override {
    Exit(*channel);
    channel.reset();
    g_sdkImplHelper.m_bServiceMode = 0;
    g_sdkImplHelper.ReleasePathHelper();
  }

  SdkMsgChannelTestAccess Fields() { return {*channel}; }

  static void Exit(CSdkMsgChannel& leaving) {
    StopAndAwait([&] { leaving.Exit(); });
  }

 private:
  CSdkMsgChannel& m_instance;

 protected:
  std::unique_ptr<CSdkMsgChannel> channel;
};

}  // namespace Velm3rdSDK
