#include "host/PrivilegeReduction.h"

#include <memory>
#include <string>

#include "common/client/utility/src/UniqueHandle.h"
#include "host/PrivilegeApi.h"

namespace Cmm {
namespace {

constexpr WELL_KNOWN_SID_TYPE kLocalAccountAndAdministrator = WinLocalAccountAndAdministratorSid;
static_assert(kLocalAccountAndAdministrator == 106);
static_assert(PROCESS_ALL_ACCESS == 0x1FFFFF);

struct FreeSidDeleter {
  const PrivilegeApi* api;
  void operator()(void* sid) const { api->freeSid(sid); }
};
using UniqueSid = std::unique_ptr<void, FreeSidDeleter>;

struct HeapBlockDeleter {
  const PrivilegeApi* api;
  void operator()(void* block) const { api->heapFree(GetProcessHeap(), 0, block); }
};
using UniqueSidBlock = std::unique_ptr<void, HeapBlockDeleter>;

void Report(const PrivilegeApi& api, const char* words) {
  api.report(words);
}

void ReportWithError(const PrivilegeApi& api, const char* words) {
  const DWORD error = GetLastError();
  Report(api, (words + std::to_string(error)).c_str());
}

UniqueSid MakeSid(const PrivilegeApi& api, SID_IDENTIFIER_AUTHORITY authority, BYTE count, DWORD first,
                  DWORD second = 0) {
  PSID sid = nullptr;
  if (!api.allocateSid(&authority, count, first, second, 0, 0, 0, 0, 0, 0, &sid)) sid = nullptr;
  return UniqueSid(sid, FreeSidDeleter{&api});
}

// The identifier of local accounts that are members of the administrators, into `sid`. False when the
// reduction must end; true with an empty `sid` on a system that does not know the identifier.
bool MakeLocalAdministratorSid(const PrivilegeApi& api, UniqueSidBlock& sid) {
  DWORD size = 0;
  if (api.createWellKnownSid(kLocalAccountAndAdministrator, nullptr, nullptr, &size) ||
      (GetLastError() != ERROR_INSUFFICIENT_BUFFER && GetLastError() != ERROR_BUFFER_OVERFLOW)) {
    ReportWithError(api, "[GetMediumPrivilefeToken] CreateWellKnownSid fail, error code ");
    return true;
  }
  if (size == 0) {
    Report(api, "[GetMediumPrivilefeToken] CreateWellKnownSid local admin fail, sid size is zero");
    return false;
  }
  UniqueSidBlock block(api.heapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, size), HeapBlockDeleter{&api});
  if (!block) {
    ReportWithError(api, "[GetMediumPrivilefeToken] HeapAlloc fail, error code ");
    return false;
  }
  if (!api.createWellKnownSid(kLocalAccountAndAdministrator, nullptr, block.get(), &size)) {
    ReportWithError(api, "[GetMediumPrivilefeToken] CreateWellKnownSid local admin fail, error code:");
    return false;
  }
  sid = std::move(block);
  return true;
}

// The copy of `token` in which the administrators can only be denied and no privilege is left.
UniqueHandle Restrict(const PrivilegeApi& api, HANDLE token) {
  const UniqueSid administrators =
      MakeSid(api, SECURITY_NT_AUTHORITY, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS);
  if (!administrators) {
    ReportWithError(api,
                    "[GetMediumPrivilefeToken] AllocateAndInitializeSid builtin admin fail, error code:");
    return {};
  }
  UniqueSidBlock localAdministrator(nullptr, HeapBlockDeleter{&api});
  if (!MakeLocalAdministratorSid(api, localAdministrator)) return {};

  SID_AND_ATTRIBUTES disabled[] = {{administrators.get(), SE_GROUP_USE_FOR_DENY_ONLY},
                                   {localAdministrator.get(), SE_GROUP_USE_FOR_DENY_ONLY}};
  const DWORD disabledCount = localAdministrator ? 2 : 1;
  UniqueHandle restricted;
  if (!api.createRestrictedToken(token, DISABLE_MAX_PRIVILEGE, disabledCount, disabled, 0, nullptr, 0,
                                 nullptr, restricted.put())) {
    ReportWithError(api, "[GetMediumPrivilefeToken] CreateRestrictedToken fail, error code ");
    return {};
  }
  return restricted;
}

bool SetMediumIntegrity(const PrivilegeApi& api, HANDLE token) {
  const UniqueSid medium = MakeSid(api, SECURITY_MANDATORY_LABEL_AUTHORITY, 1, SECURITY_MANDATORY_MEDIUM_RID);
  if (!medium) {
    ReportWithError(
        api, "[GetMediumPrivilefeToken] AllocateAndInitializeSid mandatory medium label fail, error code ");
    return false;
  }
  TOKEN_MANDATORY_LABEL label = {{medium.get(), SE_GROUP_INTEGRITY}};
  static_assert(sizeof label == 16, "the identifier itself does not count");
  if (!api.setTokenInformation(token, TokenIntegrityLevel, &label, sizeof label)) {
    ReportWithError(api, "[GetMediumPrivilefeToken] SetTokenInformation integrity fail, error code ");
    return false;
  }
  return true;
}

}  // namespace

const PrivilegeApi& PrivilegeApi::OfThisSystem() {
  static const PrivilegeApi api;
  return api;
}

void* GetMediumPrivilefeToken(const PrivilegeApi& api, void* process) {
  if (!process) {
    Report(api, "[GetMediumPrivilefeToken] Invalid parameter");
    return nullptr;
  }
  UniqueHandle processToken;
  if (!api.openProcessToken(process, TOKEN_DUPLICATE, processToken.put())) {
    ReportWithError(api, "[GetMediumPrivilefeToken] OpenProcessToken fail, error code:");
    return nullptr;
  }
  UniqueHandle duplicate;
  if (!api.duplicateToken(processToken.get(), MAXIMUM_ALLOWED, nullptr, SecurityImpersonation,
                          TokenImpersonation, duplicate.put())) {
    ReportWithError(api, "[GetMediumPrivilefeToken] DuplicateTokenEx fail, error code:");
    return nullptr;
  }
  UniqueHandle reduced = Restrict(api, duplicate.get());
  if (!reduced || !SetMediumIntegrity(api, reduced.get())) return nullptr;
  Report(api, "[GetMediumPrivilefeToken] success");
  return reduced.release();
}

bool ConvertCurrentThreadToMediumPrivilege(const PrivilegeApi& api, uint32_t processId, void** token) {
  *token = nullptr;
  const UniqueHandle process(api.openProcess(PROCESS_ALL_ACCESS, FALSE, processId));
  if (!process) {
    ReportWithError(api, "[ConvertCurrentThreadToMediumPrivilege] OpenProcess fail, error code ");
    return false;
  }
  UniqueHandle reduced(GetMediumPrivilefeToken(api, process.get()));
  if (!reduced) {
    Report(api, "[ConvertCurrentThreadToMediumPrivilege] GetMediumPrivilefeToken fail");
    return false;
  }
  if (!api.impersonate(reduced.get())) {
    ReportWithError(api, "[ConvertCurrentThreadToMediumPrivilege] ImpersonateLoggedOnUser fail, error code ");
    return false;
  }
  *token = reduced.release();
  return true;
}

void* GetMediumPrivilefeToken(void* process) {
  return GetMediumPrivilefeToken(PrivilegeApi::OfThisSystem(), process);
}

bool ConvertCurrentThreadToMediumPrivilege(uint32_t processId, void** token) {
  return ConvertCurrentThreadToMediumPrivilege(PrivilegeApi::OfThisSystem(), processId, token);
}

MediumPrivilegeScope::MediumPrivilegeScope(uint32_t processId)
    : MediumPrivilegeScope(PrivilegeApi::OfThisSystem(), processId) {}

MediumPrivilegeScope::MediumPrivilegeScope(const PrivilegeApi& api, uint32_t processId) : m_api(api) {
  m_impersonating = ConvertCurrentThreadToMediumPrivilege(api, processId, &m_token);
}

MediumPrivilegeScope::~MediumPrivilegeScope() {
  if (!m_impersonating) return;
  m_api.revertToSelf();
  UniqueHandle closed(m_token);
}

}  // namespace Cmm
