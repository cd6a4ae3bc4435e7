#include "common/client/utility/src/ipc/CmmIPCChannel.h"

#include "common/client/utility/src/ipc/CmmIPCChannelImpl.h"

namespace qxb_ipc {

Channel::Listener::~Listener() = default;
void Channel::Listener::OnChannelConnected(int) {}
void Channel::Listener::OnChannelDisconnected(int) {}
void Channel::Listener::OnChannelError() {}

Channel::Channel(const std::string& channel_id, ChannelMode mode, Listener* listener, int use_security)
    : m_impl(new ChannelImpl(channel_id, mode, listener, use_security)) {}

Channel::Channel(ChannelMode mode, Listener* listener, void* pipe)
    : m_impl(new ChannelImpl(mode, listener, pipe)) {}

Channel::Channel() : m_impl(nullptr) {}
Channel::Channel(const Channel& other) = default;
Channel& Channel::operator=(const Channel& other) = default;

Channel::~Channel() {
  delete m_impl;
}

bool Channel::Connect() {
  return m_impl && m_impl->Connect();
}

void Channel::Close() {
  if (m_impl) m_impl->Close();
}

bool Channel::Send(Cmm::CmmMQ_Msg* msg) {
  std::unique_ptr<Cmm::CmmMQ_Msg> owned(msg);
  return m_impl && owned && m_impl->Send(std::move(owned));
}

bool Channel::IsGood() const {
  return m_impl && m_impl->IsGood();
}

void Channel::set_listener(Listener* listener) {
  if (m_impl) m_impl->set_listener(listener);
}

void Channel::WaitForIOCompletion(int timeout_ms) {
  if (m_impl) m_impl->WaitForIOCompletion(timeout_ms);
}

bool Channel::WakeUp() {
  return m_impl && m_impl->WakeUp();
}

}  // namespace qxb_ipc
