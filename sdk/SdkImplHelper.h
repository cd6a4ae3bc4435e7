#pragma once

// Client discovery: is a meeting client installed, where, and of which version?

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "host/ProductPathHelper.h"

struct HKEY__;  // what a registry key handle (HKEY) points to

namespace Velm3rdSDK {

// Answers from the machine as it is at each call; only the base directories of the search are kept. For
// one thread at a time, like the channel that uses it.
class CSdkImplHelper {
 public:
  static constexpr size_t kInstallPathLimit = 2048;  // bytes of GetInstallPathViaVelmMtg's buffer

  // True when the product directories hold a client, and every one of them could be examined.
  bool HasVelmClient();

  // Reads the version of the client that the registry names, into values that stay as they are when there
  // is none. A client that only the product directories hold is found, but its version is not read.
  // Returns 999 when the path helper cannot be made, else 0; a null pointer reads nothing.
  int GetVelmExeVersion(uint16_t* major, uint16_t* minor, uint16_t* third, uint16_t* fourth);

  // Puts the directory of the registered client, without a trailing backslash, into `buffer`
  // (kInstallPathLimit bytes, ANSI code page). Returns 1, or 0 with `buffer` as it was: no such
  // registration, one of another form, or a null `buffer`. The first argument is not looked at.
  int GetInstallPathViaVelmMtg(const void* ignored, char* buffer);

  // The class root to look the client up in: the machine's in ordinary mode; in service mode that of the
  // user whom the calling thread impersonates, owned by the caller, or null when it impersonates nobody.
  HKEY__* RegGetClassRootKey();

  // Frees the path helper with its base directories; the next need makes a new one.
  void ReleasePathHelper() { m_pathHelper.reset(); }

  uint32_t m_bServiceMode = 0;                            // set by the request for service mode
  std::unique_ptr<Cmm::CProductPathHelper> m_pathHelper;  // made on first need

 private:
  bool EnsurePathHelper();
  bool ReadInstallPath(char* buffer);
};

// The library's one helper; zero at load.
extern constinit CSdkImplHelper g_sdkImplHelper;

// What follows the first quotation mark of a shell command such as "C:\Velm\bin\Velm.exe" "%1".
std::optional<std::string_view> TextBehindQuotationMark(std::string_view command);

// The directory of the program in such a text: what stands in front of the backslash before "Velm.exe",
// exact in case; empty when nothing does. `wide` is `text` in UTF-16. None without that program name.
std::optional<std::string_view> ClientDirectory(std::string_view text, std::wstring_view wide);

}  // namespace Velm3rdSDK
