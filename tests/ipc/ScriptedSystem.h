#pragma once

// A system that does what a test says, for the state machine of the channel, and the fixture of such tests.

#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/client/utility/src/ipc/CmmIPCChannelImpl.h"
#include "gtest/gtest.h"
#include "tests/ipc/ChannelTesting.h"

namespace qxb_ipc {

struct ChannelTestAccess {
  using Impl = Channel::ChannelImpl;
  static bool IsReading(const Impl& impl) { return impl.input_state_.is_pending; }
  static bool IsWriting(const Impl& impl) { return impl.output_state_.is_pending; }
  static bool IsWaiting(const Impl& impl) { return impl.waiting_connect_; }
  static IOContext* InputContext(Impl& impl) { return &impl.input_state_.context; }
  static IOContext* OutputContext(Impl& impl) { return &impl.output_state_.context; }
  static size_t Queued(const Impl& impl) { return impl.output_queue_.size(); }
};

using Impl = ChannelTestAccess::Impl;

// How a call is to answer.
struct Answer {
  BOOL result;
  DWORD error = ERROR_SUCCESS;
  DWORD moved = 0;
};
inline constexpr Answer kPending = {FALSE, ERROR_IO_PENDING};

// A system that does what the test says and keeps what it was asked for. Operations that are pending end by
// CompleteRead and CompleteWrite, or by being cancelled.
class ScriptedSystem {
 public:
  ScriptedSystem() { s_current = this; }
  ~ScriptedSystem() { s_current = nullptr; }
  ScriptedSystem(const ScriptedSystem&) = delete;
  ScriptedSystem& operator=(const ScriptedSystem&) = delete;

  const PipeApi& Api() const { return m_api; }

  // ---- What to answer
  bool pipeFails = false;
  bool portFails = false;
  bool cancelFails = false;
  bool keepsCompletedAtOnce = false;    // operations that end at once do not go through the port
  std::deque<Answer> awaitPeer;         // pending when empty
  std::deque<Answer> reads;             // pending when empty
  std::deque<std::string> dataOfReads;  // what reads that end at once have read
  std::deque<Answer> writes;            // pending when empty
  std::deque<Completion> completions;

  // ---- What was asked for
  std::vector<std::string> calls;
  std::wstring path;
  DWORD openMode = 0;
  DWORD pipeMode = 0;
  DWORD instances = 0;
  DWORD outSize = 0;
  DWORD inSize = 0;
  DWORD timeoutMs = 0;
  std::optional<SECURITY_ATTRIBUTES> security;
  DWORD access = 0;
  DWORD share = 0;
  DWORD disposition = 0;
  DWORD flags = 0;
  DWORD waitedMs = 0;
  std::vector<std::string> written;
  std::vector<Completion> posted;

  void CompletePeer() { completions.push_back({nullptr, 0, m_key, std::exchange(m_reading, nullptr), 0}); }
  void CompleteRead(const std::string& bytes) {
    std::memcpy(m_readBuffer, bytes.data(), bytes.size());
    completions.push_back(
        {nullptr, static_cast<DWORD>(bytes.size()), m_key, std::exchange(m_reading, nullptr), 0});
  }
  void BreakRead() {
    completions.push_back({nullptr, 0, m_key, std::exchange(m_reading, nullptr), ERROR_BROKEN_PIPE});
  }
  void CompleteWrite(DWORD bytes) {
    completions.push_back({nullptr, bytes, m_key, std::exchange(m_writing, nullptr), 0});
  }

 private:
  static Answer Next(std::deque<Answer>& answers) {
    Answer answer = kPending;
    if (!answers.empty()) {
      answer = answers.front();
      answers.pop_front();
    }
    SetLastError(answer.error);
    return answer;
  }
  // Whether a completion is still to come through the port.
  static bool PendsOn(const Answer& answer) {
    return answer.result ? !s_current->keepsCompletedAtOnce : answer.error == ERROR_IO_PENDING;
  }
  // A handle that can be closed.
  static HANDLE AnyHandle() { return CreateEventW(nullptr, TRUE, FALSE, nullptr); }

  static HANDLE WINAPI CreatePipe(LPCWSTR name, DWORD open, DWORD mode, DWORD instanceCount, DWORD out,
                                  DWORD in, DWORD timeout, SECURITY_ATTRIBUTES* attributes) {
    ScriptedSystem& self = *s_current;
    self.path = name;
    self.openMode = open;
    self.pipeMode = mode;
    self.instances = instanceCount;
    self.outSize = out;
    self.inSize = in;
    self.timeoutMs = timeout;
    if (attributes) self.security = *attributes;
    return self.pipeFails ? INVALID_HANDLE_VALUE : AnyHandle();
  }
  static HANDLE WINAPI OpenPipe(LPCWSTR name, DWORD wanted, DWORD sharing, SECURITY_ATTRIBUTES* attributes,
                                DWORD creation, DWORD attributeFlags, HANDLE) {
    ScriptedSystem& self = *s_current;
    self.path = name;
    self.access = wanted;
    self.share = sharing;
    if (attributes) self.security = *attributes;
    self.disposition = creation;
    self.flags = attributeFlags;
    return self.pipeFails ? INVALID_HANDLE_VALUE : AnyHandle();
  }
  static BOOL WINAPI AwaitPeer(HANDLE, OVERLAPPED* operation) {
    s_current->calls.push_back("await");
    const Answer answer = Next(s_current->awaitPeer);
    if (answer.error == ERROR_IO_PENDING) s_current->m_reading = operation;
    return answer.result;
  }
  static BOOL WINAPI Read(HANDLE, void* buffer, DWORD size, DWORD* moved, OVERLAPPED* operation) {
    s_current->calls.push_back("read " + std::to_string(size));
    const Answer answer = Next(s_current->reads);
    if (answer.result && !s_current->dataOfReads.empty()) {
      std::memcpy(buffer, s_current->dataOfReads.front().data(), answer.moved);
      s_current->dataOfReads.pop_front();
    }
    *moved = answer.moved;
    if (PendsOn(answer)) {
      s_current->m_readBuffer = buffer;
      s_current->m_reading = operation;
    }
    return answer.result;
  }
  static BOOL WINAPI Write(HANDLE, const void* data, DWORD size, DWORD* moved, OVERLAPPED* operation) {
    s_current->calls.push_back("write " + std::to_string(size));
    if (data) s_current->written.emplace_back(static_cast<const char*>(data), size);
    const Answer answer = Next(s_current->writes);
    *moved = answer.moved;
    if (PendsOn(answer)) s_current->m_writing = operation;
    return answer.result;
  }
  static BOOL WINAPI Cancel(HANDLE) {
    ScriptedSystem& self = *s_current;
    self.calls.push_back("cancel");
    for (OVERLAPPED** pending : {&self.m_reading, &self.m_writing})
      if (OVERLAPPED* const operation = std::exchange(*pending, nullptr))
        self.completions.push_back({nullptr, 0, self.m_key, operation, ERROR_OPERATION_ABORTED});
    return !self.cancelFails;
  }
  static HANDLE WINAPI CreatePort(HANDLE pipe, HANDLE port, ULONG_PTR key, DWORD threads) {
    EXPECT_EQ(threads, 1u);
    if (pipe == INVALID_HANDLE_VALUE) return s_current->portFails ? nullptr : AnyHandle();
    s_current->m_key = key;
    return port;
  }
  static BOOL WINAPI SetNotificationModes(HANDLE, UCHAR modes) {
    EXPECT_EQ(modes, FILE_SKIP_COMPLETION_PORT_ON_SUCCESS);
    return s_current->keepsCompletedAtOnce;
  }
  static BOOL WINAPI NextCompletion(HANDLE, DWORD* bytes, ULONG_PTR* key, OVERLAPPED** operation,
                                    DWORD timeout) {
    ScriptedSystem& self = *s_current;
    self.waitedMs = timeout;
    if (self.completions.empty()) {
      SetLastError(WAIT_TIMEOUT);
      return FALSE;
    }
    const Completion next = self.completions.front();
    self.completions.pop_front();
    *bytes = next.bytes;
    *key = next.key;
    *operation = next.overlapped;
    SetLastError(next.error);
    return next.error == ERROR_SUCCESS;
  }
  static BOOL WINAPI PostCompletion(HANDLE, DWORD bytes, ULONG_PTR key, OVERLAPPED* operation) {
    s_current->posted.push_back({nullptr, bytes, key, operation, 0});
    s_current->completions.push_back({nullptr, bytes, key, operation, 0});
    return TRUE;
  }

  static inline ScriptedSystem* s_current = nullptr;
  const PipeApi m_api = {CreatePipe,           OpenPipe,       AwaitPeer,     Read, Write, Cancel, CreatePort,
                         SetNotificationModes, NextCompletion, PostCompletion};
  ULONG_PTR m_key = 0;
  OVERLAPPED* m_reading = nullptr;
  OVERLAPPED* m_writing = nullptr;
  void* m_readBuffer = nullptr;
};

class ChannelStateTest : public testing::Test {
 protected:
  std::unique_ptr<Impl> Make(ChannelMode mode, int use_security = 1) {
    return std::make_unique<Impl>("name_1", mode, &listener, use_security, system.Api());
  }
  // A client whose announcement is written and whose first read is pending.
  std::unique_ptr<Impl> ConnectedClient() {
    auto impl = Make(MODE_CLIENT);
    EXPECT_TRUE(impl->Connect());
    system.CompleteWrite(1);
    impl->WaitForIOCompletion(0);
    system.calls.clear();
    system.written.clear();
    return impl;
  }
  void Pump(Impl& impl) {
    while (!system.completions.empty())
      impl.WaitForIOCompletion(0);
  }
  static std::string OwnAnnouncement() { return AnnouncementOf(GetCurrentProcessId()); }

  ScriptedSystem system;
  RecordingListener listener;
};

}  // namespace qxb_ipc
