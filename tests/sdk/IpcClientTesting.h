#pragma once

// What the tests of the pipe route's clients share: a record of what the sinks are told, and a server's bare
// pipe end for a client's channel.

#include <mutex>
#include <string>
#include <vector>

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/sdk/LogCapture.h"
#include "tests/support/PipePeer.h"
#include "tests/support/WaitUntil.h"

namespace Velm3rdSDK {

// Calls in the order in which they came, any thread.
class CallList {
 public:
  void Add(std::wstring call) {
    const std::lock_guard lock(m_mutex);
    m_calls.push_back(std::move(call));
  }
  std::vector<std::wstring> Get() const {
    const std::lock_guard lock(m_mutex);
    return m_calls;
  }
  long Count(const std::wstring& call) const {
    const auto calls = Get();
    return static_cast<long>(std::count(calls.begin(), calls.end(), call));
  }
  bool Await(const std::wstring& call, long count = 1) const {
    return WaitUntil([&] { return Count(call) >= count; });
  }

 private:
  mutable std::mutex m_mutex;
  std::vector<std::wstring> m_calls;
};

// A channel id that no other test uses.
inline uint32_t NewChannelId() {
  static uint32_t count = 0;
  return GetCurrentProcessId() * 1000 + ++count;
}

// Reads the announcement of this process; false when something else came.
inline bool ReadAnnouncement(velm_test::PipePeer& server) {
  const auto frame = server.ReadFrame();
  return frame && *frame == velm_test::Frame{1, "<com.Tessarn.ipc.internel.connect_req ProcessID=\"" +
                                                    std::to_string(GetCurrentProcessId()) +
                                                    "\" version=\"10000\"/>\n"};
}

// A server's end for the channel `id`, whatever ended just before it under the same name.
inline velm_test::PipePeer ServeChannel(const std::string& prefix, uint32_t id) {
  const std::string name = prefix + std::to_string(static_cast<int>(id));
  velm_test::PipePeer server = velm_test::PipePeer::Serve(name);
  WaitUntil([&] {
    if (!server.IsGood()) server = velm_test::PipePeer::Serve(name);
    return server.IsGood();
  });
  return server;
}

}  // namespace Velm3rdSDK
