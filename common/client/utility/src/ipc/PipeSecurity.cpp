#include "common/client/utility/src/ipc/PipeSecurity.h"

#include <sddl.h>

#include <cwchar>
#include <vector>

namespace Cmm {

std::wstring PipeSecurityText(const wchar_t* sid) {
  wchar_t text[178 / sizeof(wchar_t)];
  _snwprintf_s(text, std::size(text), _TRUNCATE, L"D:(A;OICI;GA;;;%ls)", sid);
  return text;
}

std::wstring LogonSessionSid() {
  UniqueHandle token;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.put())) return {};
  DWORD size = 0;
  GetTokenInformation(token.get(), TokenGroups, nullptr, 0, &size);
  std::vector<unsigned char> buffer(size);
  if (size < sizeof(TOKEN_GROUPS) ||
      !GetTokenInformation(token.get(), TokenGroups, buffer.data(), size, &size))
    return {};
  const auto* const groups = reinterpret_cast<const TOKEN_GROUPS*>(buffer.data());
  for (DWORD i = 0; i < groups->GroupCount; ++i) {
    if ((groups->Groups[i].Attributes & SE_GROUP_LOGON_ID) == 0) continue;
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(groups->Groups[i].Sid, &text)) return {};
    const UniqueLocalMemory owner(text);
    return text;
  }
  return {};
}

UniqueLocalMemory MakePipeSecurity() {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ConvertStringSecurityDescriptorToSecurityDescriptorW(PipeSecurityText(LogonSessionSid().c_str()).c_str(),
                                                       SDDL_REVISION_1, &descriptor, nullptr);
  return UniqueLocalMemory(descriptor);
}

}  // namespace Cmm
