#pragma once

// Installs a stand-in for a product of the client family, so that a program can be tried on a machine
// without the real one: the files that make a directory a product, a file version, and the registration
// that leads to the version. A journal beside the files remembers what was made; exactly that is removed
// again, by the same process or by a later one.
//
//   velm_tools::FakeProduct client({.version = {5, 8, 0, 0}});
//   ...                        // HasVelmClient() says yes, the version reads 5.8.0.0
//   client.Remove();           // or the destructor
//
// Nothing that was there before is replaced: an existing file or registration is an error.

#include <optional>
#include <stdexcept>
#include <string>

#include "host/FileVersion.h"
#include "host/ProductInfo.h"

namespace velm_tools {

// The message, in UTF-8, names the file or key concerned and the system's error.
class FakeProductError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct FakeProductOptions {
  Cmm::ProductKind kind = Cmm::kMeetingClient;
  Cmm::FileVersion version{};    // of "vVideoApp.dll", the file that discovery reads
  std::wstring directory{};      // full path without a trailing separator; empty: DefaultDirectory()
  bool registerCommand = false;  // write the command of "velmmtg:" links, which leads to the version
};

class FakeProduct {
 public:
  // Installs. What an earlier process left in the same directory is removed first. Throws
  // FakeProductError, with all that was made so far taken back.
  explicit FakeProduct(const FakeProductOptions& options);
  FakeProduct(const FakeProduct&) = delete;
  FakeProduct& operator=(const FakeProduct&) = delete;
  // Removes as Remove() does; what cannot be removed stays, with its journal, for RemoveFrom().
  ~FakeProduct();

  // Removes what was made; a second call does nothing. Throws FakeProductError at the first thing that
  // cannot be removed, and can then be called again.
  void Remove();

  // Leaves the product in place when this object ends, for RemoveFrom() later.
  void Keep() { m_installed = false; }

  const std::wstring& Directory() const { return m_directory; }

  // "Velm\bin" in the current user's application data folder, the first place that discovery looks at.
  static std::wstring DefaultDirectory();

  // Removes what an earlier FakeProduct made in `directory`; false when there is no such thing.
  static bool RemoveFrom(const std::wstring& directory);

  // The directory of a meeting client that no FakeProduct made: in a place that discovery looks at, or
  // registered. None when there is none. COM must be initialised, since one of the places is found by
  // shell links.
  static std::optional<std::wstring> FindForeignProduct();

 private:
  std::wstring m_directory;
  bool m_installed = false;
};

}  // namespace velm_tools
