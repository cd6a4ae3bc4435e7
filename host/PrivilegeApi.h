#pragma once

// The token calls of the privilege reduction, as a table: every step can then be made to fail, and a system
// that knows an identifier, or does not know it, can be shown to it.

#include <windows.h>

namespace Cmm {

struct PrivilegeApi {
  decltype(&OpenProcess) openProcess = OpenProcess;
  decltype(&OpenProcessToken) openProcessToken = OpenProcessToken;
  decltype(&DuplicateTokenEx) duplicateToken = DuplicateTokenEx;
  decltype(&AllocateAndInitializeSid) allocateSid = AllocateAndInitializeSid;
  decltype(&FreeSid) freeSid = FreeSid;
  decltype(&CreateWellKnownSid) createWellKnownSid = CreateWellKnownSid;
  decltype(&HeapAlloc) heapAlloc = HeapAlloc;
  decltype(&HeapFree) heapFree = HeapFree;
  decltype(&CreateRestrictedToken) createRestrictedToken = CreateRestrictedToken;
  decltype(&SetTokenInformation) setTokenInformation = SetTokenInformation;
  decltype(&ImpersonateLoggedOnUser) impersonate = ImpersonateLoggedOnUser;
  decltype(&RevertToSelf) revertToSelf = RevertToSelf;
  void(WINAPI* report)(const char* line) = OutputDebugStringA;  // takes what there is to say of a step

  static const PrivilegeApi& OfThisSystem();
};

}  // namespace Cmm
