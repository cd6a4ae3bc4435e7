#include "common/client/utility/src/CmmLogSettings.h"

#include <new>

namespace logging::internal {
namespace {

// Gives back what the settings hold, and leaves them usable: lines that come later have no file any more.
struct AtUnload {
  LogSettings& settings;
  ~AtUnload() {
    if (GoesToFile(settings.destination)) settings.destination = LOG_TO_DEBUG_OUTPUT;
    settings.log_handle.reset();
    settings.log_path.reset();
    settings.log_dir.reset();
    settings.log_base.reset();
    settings.memory.Take();
  }
};

}  // namespace

LogSettings& Settings() {
  alignas(LogSettings) static unsigned char storage[sizeof(LogSettings)];
  static LogSettings* const settings = new (storage) LogSettings;
  static const AtUnload atUnload{*settings};
  return *settings;
}

}  // namespace logging::internal
