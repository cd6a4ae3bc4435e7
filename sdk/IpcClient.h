#pragma once

// The pipe route to the client, as the channel sees it: two clients, each with its sink, and the factory
// that makes them.

#include <cstdint>
#include <memory>

#include "common/client/utility/src/CmmString.h"

namespace Velm3rdSDK {

// What an audio IPC client reports, on its timer thread.
class IAudioSDKIPCClientSink {
 public:
  virtual ~IAudioSDKIPCClientSink() = default;
  virtual void OnServerConnected(uint32_t channelId) = 0;
  virtual void OnServerDisconnected(uint32_t channelId) = 0;
  virtual void OnClientExitConfirmed(uint32_t channelId, int timedOut) = 0;
  virtual void OnAudioCmdNotify(uint32_t channelId, const Cmm::CStringT<wchar_t>& text) = 0;
};

// The channel for audio commands. The sink is not owned. A send gives 0 when no message could be built,
// and otherwise non-zero: sent, or queued until the pipe is there.
class IAudioSDKIPCClient {
 public:
  virtual ~IAudioSDKIPCClient() = default;
  virtual void SetSink(IAudioSDKIPCClientSink* sink) = 0;
  virtual void Connect(uint32_t channelId) = 0;  // 0 stands for the current process id
  virtual void Disconnect() = 0;
  virtual uint32_t GetChannelID() = 0;
  virtual uint32_t IsConnected() = 0;
  virtual int RequestToStartNewChannel(uint32_t channelId) = 0;
  virtual int RequestToStopChannel(uint32_t channelId) = 0;
  virtual int SendAudioCmdRequest(const Cmm::CStringT<wchar_t>& text) = 0;
  virtual int NotifyClientExit() = 0;
};

// What a service-mode IPC client reports, on its timer thread.
class IClient3rdSDKIPCClientSink {
 public:
  virtual ~IClient3rdSDKIPCClientSink() = default;
  virtual void OnClient3rdSDKServerConnected(uint32_t channelId) = 0;
  virtual void OnClient3rdSDKServerDisconnected(uint32_t channelId) = 0;
  virtual void OnClient3rdSDKClientExitConfirmed(uint32_t channelId, int timedOut) = 0;
  virtual void OnClient3rdSDKServerCmdNotify(uint32_t channelId, const Cmm::CStringT<wchar_t>& text) = 0;
};

// The channel for ordinary commands in service mode.
class IClient3rdSDKIPCClient {
 public:
  virtual ~IClient3rdSDKIPCClient() = default;
  virtual void SetSink(IClient3rdSDKIPCClientSink* sink) = 0;
  virtual void Connect(uint32_t channelId) = 0;
  virtual void Disconnect() = 0;
  virtual uint32_t GetChannelID() = 0;
  virtual uint32_t IsConnected() = 0;
  virtual int SendClient3rdSDKCmdRequest(const Cmm::CStringT<wchar_t>& text) = 0;
};

// Makes the clients of the pipe route. They are shared with their own timer ticks, so that a callback may end
// the channel that it was called by.
class IpcClientFactory {
 public:
  virtual ~IpcClientFactory() = default;
  virtual std::shared_ptr<IAudioSDKIPCClient> MakeAudioClient() = 0;
  virtual std::shared_ptr<IClient3rdSDKIPCClient> MakeServiceModeClient() = 0;
};

// The factory in force, at first one of clients over named pipes.
IpcClientFactory& GetIpcClientFactory();
// Not owned; null brings the first one back. For the start of the process, before the channel is used.
void SetIpcClientFactory(IpcClientFactory* factory);

}  // namespace Velm3rdSDK
