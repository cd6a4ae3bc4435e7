#pragma once

// Who may open a pipe of this library: the processes of the logon session that made it.

#include <string>

#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

// The security descriptor's text for the logon session `sid`: full access for it, none for anybody else. It
// is cut to the 88 characters that the buffer for it has.
std::wstring PipeSecurityText(const wchar_t* sid);

// The SID of the logon session that this process runs in; empty when it cannot be had.
std::wstring LogonSessionSid();

// The security descriptor for a pipe; empty when it cannot be made.
UniqueLocalMemory MakePipeSecurity();

}  // namespace Cmm
