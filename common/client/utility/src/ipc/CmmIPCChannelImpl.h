#pragma once

// What is behind a Channel: the pipe, its completion port, one outstanding read, one outstanding write, the
// queue of frames to write and the reassembly of those read.

#include <windows.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "common/client/utility/src/UniqueHandle.h"
#include "common/client/utility/src/ipc/CmmIPCChannel.h"
#include "common/client/utility/src/ipc/FrameReader.h"
#include "common/client/utility/src/ipc/PipeApi.h"

namespace qxb_ipc {

class IOHandler;

// One side of the channel's I/O. The address of the OVERLAPPED is that of the context, so that a completion
// leads back to it.
struct IOContext {
  OVERLAPPED overlapped;
  IOHandler* handler;
};

class IOHandler {
 public:
  virtual ~IOHandler() = default;
  // An operation has ended and moved `bytes_transferred`; 0 stands for a failure, which `error` explains.
  virtual void OnIOCompleted(IOContext* context, uint32_t bytes_transferred, uint32_t error) = 0;
};

// A packet of the completion port.
struct Completion {
  HANDLE port = nullptr;  // where it came from
  DWORD bytes = 0;
  ULONG_PTR key = 0;
  OVERLAPPED* overlapped = nullptr;
  DWORD error = ERROR_SUCCESS;
};

// The completion port: one concurrent thread.
class CompletionPort {
 public:
  explicit CompletionPort(const PipeApi& api) : m_api(api) {}

  void Create() { m_port.reset(m_api.createPort(INVALID_HANDLE_VALUE, nullptr, 0, 1)); }
  HANDLE Get() const { return m_port.get(); }
  // False when nothing came in time; a failed operation counts as one that moved no bytes.
  bool Wait(int timeout_ms, Completion& completion);
  bool Post(DWORD bytes, ULONG_PTR key, const void* overlapped);

 private:
  const PipeApi& m_api;
  Cmm::UniqueHandle m_port;
};

class Channel::ChannelImpl : public IOHandler, private Cmm::FrameSink {
 public:
  static const PipeApi kSystemApi;

  ChannelImpl(const std::string& channel_id, ChannelMode mode, Listener* listener, int use_security,
              const PipeApi& api = kSystemApi);
  ChannelImpl(ChannelMode mode, Listener* listener, HANDLE pipe, const PipeApi& api = kSystemApi);
  ChannelImpl(const ChannelImpl&) = delete;
  ChannelImpl& operator=(const ChannelImpl&) = delete;
  ~ChannelImpl() override;

  bool Connect();
  void Close();
  bool Send(std::unique_ptr<Cmm::CmmMQ_Msg> msg);
  bool IsGood() const { return static_cast<bool>(pipe_); }
  void set_listener(Listener* listener) { listener_ = listener; }
  void WaitForIOCompletion(int timeout_ms);
  bool WakeUp();

  void OnIOCompleted(IOContext* context, uint32_t bytes_transferred, uint32_t error) override;

 private:
  friend struct ChannelTestAccess;

  struct State {
    IOContext context = {};
    bool is_pending = false;
  };

  static constexpr DWORD kReadBufferSize = 4096;

  void CreatePipe(const std::wstring& path, bool use_security);
  void OpenPipe(const std::wstring& path);
  void QueueAnnouncement();

  // Without a port nobody would learn of an operation's end, so none is begun.
  bool CanStartIO() const { return pipe_ && port_.Get(); }

  bool ProcessConnection();
  bool ProcessInput(IOContext* context, DWORD bytes_read);
  bool ProcessIncomingMessages(IOContext* context, DWORD bytes_read);
  bool ProcessOutgoingMessages(IOContext* context, DWORD bytes_written);
  bool FinishWrite(IOContext* context, DWORD bytes_written);
  bool StartRead();
  bool StartWrite();
  void OnFrame(const unsigned char* frame, unsigned payload_length) override;

  State input_state_;
  State output_state_;
  Cmm::UniqueFileHandle pipe_;
  const ChannelMode channel_mode_;
  Listener* listener_;                                        // not owned; null drops what it would be told
  std::deque<std::unique_ptr<Cmm::CmmMQ_Msg>> output_queue_;  // the front one is in flight
  unsigned char input_buf_[kReadBufferSize];
  Cmm::FrameReader read_overflow_;
  bool waiting_connect_;
  bool processing_incoming_;
  const bool adopted_ = false;
  CompletionPort port_;
  const PipeApi& api_;
};

}  // namespace qxb_ipc
