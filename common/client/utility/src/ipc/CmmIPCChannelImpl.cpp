#include "common/client/utility/src/ipc/CmmIPCChannelImpl.h"

#include <cstddef>
#include <utility>

#include "archive/catalogue/SdkChannelMessages.h"
#include "common/client/utility/src/CmmCheck.h"
#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmTrace.h"
#include "common/client/utility/src/ipc/PipeSecurity.h"

namespace qxb_ipc {
namespace {

constexpr const wchar_t* kPipePrefix = L"\\\\.\\pipe\\Velm.";
constexpr DWORD kPipeInstances = 1;
constexpr DWORD kPipeBufferSize = 4096;
constexpr DWORD kPipeTimeoutMs = 5000;

constexpr int kAnnouncement = 1;  // the type of QXIPCMessage_Connect

constexpr int kMostInARow = 16;  // completions that the system is not asked for

constexpr DWORD kWakeUpBytes = 4;
constexpr uint64_t kWakeUpMarker = 0xBADFEED1;

std::wstring PipePath(const std::string& channel_id) {
  return kPipePrefix + std::wstring(Cmm::A2BT<CP_UTF8, char, wchar_t>(channel_id).c_str());
}

bool IsWakeUp(const Completion& completion) {
  return completion.bytes == kWakeUpBytes && completion.key == kWakeUpMarker &&
         reinterpret_cast<uint64_t>(completion.overlapped) == kWakeUpMarker;
}

}  // namespace

void CompletionPort::Associate(HANDLE pipe, ULONG_PTR key) {
  m_key = key;
  m_api.createPort(pipe, Get(), key, 1);
  m_keepsCompletedAtOnce = m_api.setNotificationModes(pipe, FILE_SKIP_COMPLETION_PORT_ON_SUCCESS) != FALSE;
}

void CompletionPort::CompletedAtOnce(OVERLAPPED* operation, DWORD bytes) {
  if (m_keepsCompletedAtOnce) m_completedAtOnce.push_back({Get(), bytes, m_key, operation, ERROR_SUCCESS});
}

bool CompletionPort::Wait(int timeout_ms, Completion& completion) {
  if (m_completedAtOnce.empty()) return WaitForSystem(timeout_ms, completion);
  return TakeCompletedAtOnce(completion) || WaitForSystem(0, completion) || TakeCompletedAtOnce(completion);
}

// Not too many in a row, so that a pipe that takes every write at once is still read.
bool CompletionPort::TakeCompletedAtOnce(Completion& completion) {
  if (++m_takenInARow > kMostInARow) {
    m_takenInARow = 0;
    return false;
  }
  completion = m_completedAtOnce.front();
  m_completedAtOnce.pop_front();
  return true;
}

bool CompletionPort::WaitForSystem(int timeout_ms, Completion& completion) {
  completion = {};
  completion.port = Get();
  if (m_api.nextCompletion(Get(), &completion.bytes, &completion.key, &completion.overlapped,
                           static_cast<DWORD>(timeout_ms)))
    return true;
  completion.error = GetLastError();
  completion.bytes = 0;
  return completion.overlapped != nullptr;
}

bool CompletionPort::Post(DWORD bytes, ULONG_PTR key, const void* overlapped) {
  if (!m_port || Get() == INVALID_HANDLE_VALUE) return false;
  return m_api.postCompletion(Get(), bytes, key, static_cast<OVERLAPPED*>(const_cast<void*>(overlapped))) !=
         FALSE;
}

const PipeApi Channel::ChannelImpl::kSystemApi;

Channel::ChannelImpl::ChannelImpl(const std::string& channel_id, ChannelMode mode, Listener* listener,
                                  int use_security, const PipeApi& api)
    : channel_mode_(mode),
      listener_(listener),
      waiting_connect_(mode == MODE_SERVER),
      processing_incoming_(false),
      port_(api),
      api_(api) {
  input_state_.context.handler = this;
  output_state_.context.handler = this;
  const std::wstring path = PipePath(channel_id);
  if (mode == MODE_SERVER)
    CreatePipe(path, use_security != 0);
  else
    OpenPipe(path);
  port_.Create();
}

// The flag that says that data is being dispatched is set from the start here. Nothing comes of it: the flag
// is only saved and restored.
Channel::ChannelImpl::ChannelImpl(ChannelMode mode, Listener* listener, HANDLE pipe, const PipeApi& api)
    : pipe_(pipe),
      channel_mode_(mode),
      listener_(listener),
      waiting_connect_(false),
      processing_incoming_(true),
      adopted_(true),
      port_(api),
      api_(api) {
  input_state_.context.handler = this;
  output_state_.context.handler = this;
  port_.Create();
}

Channel::ChannelImpl::~ChannelImpl() {
  Close();
}

void Channel::ChannelImpl::CreatePipe(const std::wstring& path, bool use_security) {
  CMM_CHECK(pipe_ == INVALID_HANDLE_VALUE);
  const Cmm::UniqueLocalMemory descriptor = Cmm::MakePipeSecurity();
  SECURITY_ATTRIBUTES attributes = {sizeof(attributes), descriptor.get(), FALSE};
  pipe_.reset(
      api_.createPipe(path.c_str(), FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE | PIPE_ACCESS_DUPLEX,
                      PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT, kPipeInstances, kPipeBufferSize,
                      kPipeBufferSize, kPipeTimeoutMs, use_security ? &attributes : nullptr));
}

void Channel::ChannelImpl::OpenPipe(const std::wstring& path) {
  CMM_CHECK(pipe_ == INVALID_HANDLE_VALUE);
  pipe_.reset(api_.openPipe(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                            FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
  if (pipe_) QueueAnnouncement();
}

void Channel::ChannelImpl::QueueAnnouncement() {
  QXIPCMessage_Connect announcement;
  announcement.Set_ProcessID(GetCurrentProcessId());
  if (Cmm::CmmMQ_Msg* const msg = announcement.BuildMsg(-1)) output_queue_.emplace_back(msg);
}

bool Channel::ChannelImpl::Connect() {
  if (!pipe_) return false;
  port_.Associate(pipe_.get(), reinterpret_cast<ULONG_PTR>(this));
  if (waiting_connect_) ProcessConnection();
  // Starts the first read; a server that found its peer there ends its waiting by it.
  if (!input_state_.is_pending) OnIOCompleted(&input_state_.context, 0, 0);
  if (!waiting_connect_) ProcessOutgoingMessages(nullptr, 0);
  return true;
}

void Channel::ChannelImpl::Close() {
  if (input_state_.is_pending || output_state_.is_pending) {
    [[maybe_unused]] const bool ret = api_.cancel(pipe_.get()) != FALSE;
    CMM_CHECK(ret);
  }
  pipe_.reset();
  while (input_state_.is_pending || output_state_.is_pending)
    WaitForIOCompletion(-1);
  output_queue_.clear();
}

bool Channel::ChannelImpl::Send(std::unique_ptr<Cmm::CmmMQ_Msg> msg) {
  CMM_TRACE("sending message @" << msg.get() << " on channel @" << this << " with size " << msg->GetLen()
                                << " (" << output_queue_.size() << " in queue)");
  output_queue_.push_back(std::move(msg));
  if (waiting_connect_ || output_state_.is_pending) return true;
  return ProcessOutgoingMessages(nullptr, 0);
}

void Channel::ChannelImpl::WaitForIOCompletion(int timeout_ms) {
  Completion completion;
  if (!port_.Wait(timeout_ms, completion)) {
    if (input_state_.is_pending || channel_mode_ != MODE_SERVER) return;
    [[maybe_unused]] const bool ret = port_.Post(0, reinterpret_cast<ULONG_PTR>(this), this);
    CMM_CHECK(ret);
    return;
  }
  [[maybe_unused]] const HANDLE port = completion.port;
  CMM_CHECK(port == port_.Get());
  if (IsWakeUp(completion)) return;
  auto* const context = reinterpret_cast<IOContext*>(completion.overlapped);
  // The packet that a timed-out server posts to itself names the channel, which is no context.
  if (!context || completion.overlapped == static_cast<void*>(this) || !context->handler) return;
  reinterpret_cast<ChannelImpl*>(completion.key)->OnIOCompleted(context, completion.bytes, completion.error);
}

bool Channel::ChannelImpl::WakeUp() {
  return port_.Post(kWakeUpBytes, kWakeUpMarker, reinterpret_cast<const void*>(kWakeUpMarker));
}

void Channel::ChannelImpl::OnIOCompleted(IOContext* context, uint32_t bytes_transferred, uint32_t) {
  bool ok;
  if (context == &input_state_.context) {
    if (waiting_connect_) {
      if (!ProcessConnection()) return;  // a server whose pipe fails while it waits stays silent
      if (!output_queue_.empty() && !output_state_.is_pending) ProcessOutgoingMessages(nullptr, 0);
      if (input_state_.is_pending) return;
    }
    ok = ProcessInput(context, bytes_transferred);
  } else {
    CMM_CHECK(context == &output_state_.context);
    ok = ProcessOutgoingMessages(context, bytes_transferred);
  }
  if (ok || !pipe_) return;  // without a pipe the failure is the echo of a cancelled operation
  Close();
  if (listener_) listener_->OnChannelError();
}

bool Channel::ChannelImpl::ProcessConnection() {
  input_state_.is_pending = false;
  if (!CanStartIO()) return false;
  // An overlapped call answers FALSE and tells the rest by its error.
  if (api_.awaitPeer(pipe_.get(), &input_state_.context.overlapped)) return false;
  switch (GetLastError()) {
    case ERROR_PIPE_CONNECTED:
      waiting_connect_ = false;
      return true;
    case ERROR_IO_PENDING:
      input_state_.is_pending = true;
      return true;
    default:  // ERROR_NO_DATA among them: the peer came and went
      return false;
  }
}

bool Channel::ChannelImpl::ProcessInput(IOContext* context, DWORD bytes_read) {
  if (!adopted_) CMM_CHECK(!processing_incoming_);
  const bool before = std::exchange(processing_incoming_, true);
  const bool ok = ProcessIncomingMessages(context, bytes_read);
  processing_incoming_ = before;
  return ok;
}

bool Channel::ChannelImpl::ProcessIncomingMessages(IOContext* context, DWORD bytes_read) {
  if (input_state_.is_pending) {
    input_state_.is_pending = false;
    CMM_CHECK(context);
    if (!context || bytes_read == 0) return false;
  } else {
    CMM_CHECK(!bytes_read && context == &input_state_.context);
  }
  if (bytes_read == 0) return StartRead();
  CMM_CHECK(bytes_read);
  return read_overflow_.Take(input_buf_, bytes_read, *this) && StartRead();
}

// The port reports a completion when the call succeeds at once as well.
bool Channel::ChannelImpl::StartRead() {
  if (!CanStartIO()) return false;
  OVERLAPPED* const operation = &input_state_.context.overlapped;
  DWORD moved = 0;
  if (api_.read(pipe_.get(), input_buf_, kReadBufferSize, &moved, operation))
    port_.CompletedAtOnce(operation, moved);
  else if (GetLastError() != ERROR_IO_PENDING)
    return false;
  input_state_.is_pending = true;
  return true;
}

void Channel::ChannelImpl::OnFrame(const unsigned char* frame, unsigned payload_length) {
  auto msg = std::make_unique<Cmm::CmmInternelMsg>(frame, payload_length, 1);
  const int type = msg->GetMsgType();
  if (!listener_) return;
  if (type != kAnnouncement) {
    listener_->OnMessageReceived(msg.release(), type);
    return;
  }
  QXIPCMessage_Connect announcement;
  if (announcement.ParseMsg(msg.get()))
    listener_->OnChannelConnected(static_cast<int>(announcement.Get_ProcessID()));
}

bool Channel::ChannelImpl::ProcessOutgoingMessages(IOContext* context, DWORD bytes_written) {
  if (output_state_.is_pending && !FinishWrite(context, bytes_written)) return false;
  if (output_queue_.empty()) return true;
  CMM_CHECK(!waiting_connect_);
  return StartWrite();
}

bool Channel::ChannelImpl::FinishWrite(IOContext* context, DWORD bytes_written) {
  output_state_.is_pending = false;
  if (!context || bytes_written == 0) return false;
  CMM_CHECK(!output_queue_.empty());
  auto& msg = static_cast<Cmm::CmmInternelMsg&>(*output_queue_.front());
  if (msg.IsWrittenComplete()) output_queue_.pop_front();
  return true;
}

// How far a frame is written is noted when its write begins and by assignment, not by what the port reports.
bool Channel::ChannelImpl::StartWrite() {
  if (!CanStartIO()) return false;
  auto& msg = static_cast<Cmm::CmmInternelMsg&>(*output_queue_.front());
  OVERLAPPED* const operation = &output_state_.context.overlapped;
  const DWORD size = msg.GetToWrite();
  DWORD written = 0;
  if (api_.write(pipe_.get(), msg.GetWritePos(), size, &written, operation)) {
    port_.CompletedAtOnce(operation, written);
    CMM_TRACE("sent message @" << &msg << " on channel @" << this << " with len " << size);
  } else if (GetLastError() == ERROR_IO_PENDING) {
    written = size;
    CMM_TRACE("sent pending message @" << &msg << " on channel @" << this << " with len " << size);
  } else {
    return false;
  }
  msg.SetWritten(written);
  output_state_.is_pending = true;
  return true;
}

}  // namespace qxb_ipc
