#pragma once

// What the tests of the channel share: a listener that keeps what it is told, and messages that are counted.

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/client/utility/src/ipc/CmmIPCChannel.h"
#include "tests/support/PipePeer.h"

namespace qxb_ipc {

// A channel id that no other test uses.
inline std::string UniqueName() {
  static int count = 0;
  return "com.velm.ipc.test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count);
}

struct ReceivedMessage {
  int type;
  std::string payload;
  bool operator==(const ReceivedMessage&) const = default;
};

class RecordingListener : public Channel::Listener {
 public:
  void OnMessageReceived(Cmm::CmmMQ_Msg* msg, int type) override {
    const std::unique_ptr<Cmm::CmmMQ_Msg> owned(msg);
    std::string payload;
    if (msg->GetLen() > 0) payload.assign(reinterpret_cast<const char*>(msg->GetData()), msg->GetLen());
    const std::lock_guard lock(m_mutex);
    m_messages.push_back({type, std::move(payload)});
  }
  void OnChannelConnected(int process_id) override {
    const std::lock_guard lock(m_mutex);
    m_connected.push_back(process_id);
  }
  void OnChannelDisconnected(int) override { ++disconnected; }
  void OnChannelError() override { ++errors; }

  std::vector<ReceivedMessage> Messages() const {
    const std::lock_guard lock(m_mutex);
    return m_messages;
  }
  std::vector<int> Connected() const {
    const std::lock_guard lock(m_mutex);
    return m_connected;
  }

  std::atomic<int> errors = 0;
  std::atomic<int> disconnected = 0;

 private:
  mutable std::mutex m_mutex;
  std::vector<ReceivedMessage> m_messages;
  std::vector<int> m_connected;
};

// A message whose life is counted.
class CountedMessage : public Cmm::CmmInternelMsg {
 public:
  CountedMessage(int type, const std::string& payload)
      : CmmInternelMsg(reinterpret_cast<const unsigned char*>(payload.data()),
                       static_cast<unsigned>(payload.size()), 0) {
    SetMsgType(type);
    ++living;
  }
  ~CountedMessage() override { --living; }

  static inline std::atomic<int> living = 0;
};

inline Cmm::CmmMQ_Msg* NewMessage(int type, const std::string& payload) {
  return new CountedMessage(type, payload);
}

// The announcement of a process, byte for byte.
inline std::string AnnouncementOf(unsigned long processId) {
  return velm_test::FrameOf(1, "<com.Tessarn.ipc.internel.connect_req ProcessID=\"" +
                                   std::to_string(processId) + "\" version=\"10000\"/>\n");
}

}  // namespace qxb_ipc
