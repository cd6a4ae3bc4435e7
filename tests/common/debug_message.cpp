// Stands for the program that shows the text of an error to the user: writes its command line, as UTF-8, to
// the file "shown.txt" beside itself.

#include <windows.h>

#include <filesystem>
#include <fstream>

#include "common/client/utility/src/CmmConvert.h"

int main() {
  wchar_t program[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  const Cmm::A2BT<65001, wchar_t, char> text(GetCommandLineW());
  std::ofstream(std::filesystem::path(program).parent_path() / "shown.txt", std::ios::binary) << text.c_str();
  return 0;
}
