#pragma once

// A thread's work with fewer rights than its process has: under a stripped copy of the token of a process
// that the caller names, with the administrators' rights turned to deny-only, the privileges dropped and
// the integrity level set to medium.
//
// Each step that fails is told to the system's debug output, with the system's error code where the text
// ends in "error code".

#include <cstdint>

namespace Cmm {

struct PrivilegeApi;  // host/PrivilegeApi.h

// The reduced copy of the token of `process`, a handle that may open its token: an impersonation token that
// the caller closes. Null when a step fails.
void* GetMediumPrivilefeToken(void* process);
void* GetMediumPrivilefeToken(const PrivilegeApi& api, void* process);

// Puts the calling thread under the reduced token of the process `processId`. True when it runs so; `*token`
// is then that token, which the caller closes once the thread has reverted. `*token` is null otherwise.
// `token` must not be null.
bool ConvertCurrentThreadToMediumPrivilege(uint32_t processId, void** token);
bool ConvertCurrentThreadToMediumPrivilege(const PrivilegeApi& api, uint32_t processId, void** token);

// Runs the calling thread under the reduced token of a process while it lives, if that is possible; the
// work that needs it must be left out when IsImpersonating answers false. Other threads keep their rights.
// To be ended on the thread that began it, before the result of the work is looked at.
class MediumPrivilegeScope {
 public:
  explicit MediumPrivilegeScope(uint32_t processId);
  MediumPrivilegeScope(const PrivilegeApi& api, uint32_t processId);  // `api` outlives the scope
  MediumPrivilegeScope(const MediumPrivilegeScope&) = delete;
  MediumPrivilegeScope& operator=(const MediumPrivilegeScope&) = delete;
  ~MediumPrivilegeScope();  // reverts and closes the token, if the thread was put under it

  bool IsImpersonating() const { return m_impersonating != 0; }

 private:
  int m_impersonating = 0;
  void* m_token = nullptr;
  const PrivilegeApi& m_api;
};

}  // namespace Cmm
