#include "common/client/utility/src/CmmLogDialog.h"

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmLogPath.h"
#include "common/client/utility/src/CmmLogSettings.h"

namespace logging::internal {
namespace {

// False when the program cannot be started.
bool RunMessageProgram(std::wstring text) {
  const std::wstring program = ProgramDirectory() + L"debug_message.exe";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(program.c_str(), text.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process))
    return false;
  const Cmm::UniqueHandle thread(process.hThread);
  const Cmm::UniqueHandle owned(process.hProcess);
  WaitForSingleObject(owned.get(), INFINITE);
  return true;
}

}  // namespace

void ShowErrorDialog(const std::string& text) {
  if (text.empty() || !Settings().show_error_dialogs) return;
  const Cmm::A2BT<65001, char, wchar_t> wide(text);
  if (wide.empty()) return;
  if (RunMessageProgram(wide.GetCData())) return;
  MessageBoxW(nullptr, wide.c_str(), L"Fatal error", MB_ICONHAND | MB_TOPMOST);
}

}  // namespace logging::internal
