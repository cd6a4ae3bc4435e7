#include "common/client/utility/src/ipc/CmmIPCChannelThread.h"

#include <utility>

#include "common/client/utility/src/CmmNumber.h"

namespace qxb_ipc {
namespace {

constexpr unsigned kStopPollMs = 50;
constexpr int kLeavePolls = 50;  // of a millisecond each

}  // namespace

CIPCChannelThread::CIPCChannelThread(const std::string& channel_id, ChannelMode mode,
                                     Channel::Listener* listener, int use_security)
    : channel_(channel_id, mode, listener, use_security) {}

CIPCChannelThread::CIPCChannelThread(ChannelMode mode, Channel::Listener* listener, int, void* pipe)
    : channel_(mode, listener, pipe) {}

CIPCChannelThread::~CIPCChannelThread() {
  if (running_) Stop();
}

int CIPCChannelThread::Start() {
  if (running_.exchange(true)) return 0;
  thread_.Create(this);
  return 1;
}

int CIPCChannelThread::Stop() {
  if (!running_) return 0;
  stop_requested_ = true;
  channel_.WakeUp();
  while (running_ && thread_.IsRunning())
    Cmm::CThread::Sleep(kStopPollMs);
  running_ = false;
  // The worker may have a few instructions of this library left, and the library may be unloaded next. There
  // is a limit because a thread cannot end while this runs at unload.
  for (int i = 0; i < kLeavePolls && thread_.IsRunning(); ++i)
    Cmm::CThread::Sleep(1);
  return 1;
}

int CIPCChannelThread::IsServerGood() const {
  return channel_.IsGood();
}

unsigned int CIPCChannelThread::ThreadProc() {
  running_ = true;
  if (channel_.Connect()) {
    while (!stop_requested_) {
      SendPending();
      channel_.WaitForIOCompletion(-1);
      idle_ = false;
    }
  }
  channel_.Close();
  running_ = false;
  return 0;
}

// Ends with idle_ set and nothing pending: a message that comes later wakes the wait that follows.
void CIPCChannelThread::SendPending() {
  do {
    idle_ = false;
    while (auto msg = TakePending())
      channel_.Send(msg.release());
    idle_ = true;
  } while ([this] {
    const Cmm::CAutoLock lock(pending_lock_);
    return !pending_.empty();
  }());
}

std::unique_ptr<Cmm::CmmMQ_Msg> CIPCChannelThread::TakePending() {
  const Cmm::CAutoLock lock(pending_lock_);
  if (pending_.empty()) return nullptr;
  auto msg = std::move(pending_.front());
  pending_.pop_front();
  return msg;
}

int CIPCChannelThread::SendMessageW(Cmm::CmmMQ_Msg* msg) {
  {
    const Cmm::CAutoLock lock(pending_lock_);
    pending_.emplace_back(msg);
  }
  if (idle_.exchange(false)) channel_.WakeUp();
  return 1;
}

void CIPCChannelThread::GenChannelName(const Cmm::CStringT<wchar_t>& base, unsigned int id,
                                       Cmm::CStringT<wchar_t>& out) {
  Cmm::CStringT<wchar_t> number;
  Cmm::IntToString(static_cast<int>(id), number);
  out = base + number;
}

}  // namespace qxb_ipc
