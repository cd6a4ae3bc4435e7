#pragma once

// One use of the library, from the first call to DestroySdkChannel.

#include <atomic>
#include <chrono>
#include <cstdint>

#include "tools/host_console/Commands.h"
#include "tools/host_console/Functions.h"

namespace velm_host {

enum ExitCode : int {
  kSuccess = 0,
  kNo = 1,
  kBadUsage = 2,
  kCodeBase = 10,   // plus a result code
  kNoChannel = 19,  // for the one code that does not fit
};

// What a call's result is as an exit code.
int ToExitCode(Result result, uint32_t value);

class Session {
 public:
  // Prints calls and records, as JSON or readable; makes channels as `start` says.
  explicit Session(bool json, Start start = Start::kPlain);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  // Destroys the channel if there is one; no record is printed afterwards.
  ~Session();

  // Each returns an exit code.
  int Run(const CallCommand& command);
  // Without limits: until an interrupt, or not at all when `returnAtOnce`.
  int Run(const WatchCommand& command, bool returnAtOnce);
  int Run(const WaitCommand& command);

  void DestroyChannel();

 private:
  uint32_t Invoke(const Call& call);
  // An exit code: kSuccess, or what kept the channel from being made as it should be.
  int MakeChannel();
  uint32_t StartChannel();
  void PrintCall(const Call& call, const Outcome& outcome) const;
  bool WaitForRecords(uint32_t count, std::chrono::milliseconds limit);

  const bool m_json;
  const Start m_start;
  bool m_hasChannel = false;
  std::atomic<uint64_t> m_records{0};
  uint64_t m_waitedFor = 0;
};

}  // namespace velm_host
