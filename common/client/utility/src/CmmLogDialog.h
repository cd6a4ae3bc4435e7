#pragma once

#include <string>

namespace logging::internal {

// Shows `text` to the user and waits until it has been seen, if SetShowErrorDialogs allows it and `text` is
// not empty: by "debug_message.exe" beside the process's executable, which gets it as its command line, or
// where that cannot be started, in a message box.
void ShowErrorDialog(const std::string& text);

}  // namespace logging::internal
