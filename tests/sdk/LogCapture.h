#pragma once

// Collects the console log lines of the control channel while it lives. One at a time.

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "sdk/ConsoleLog.h"

namespace Velm3rdSDK {

class LogCapture {
 public:
  LogCapture() {
    s_current = this;
    Output2CONSOLE::SetTap([](const std::wstring& line) { s_current->Add(line); });
  }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture() { Output2CONSOLE::SetTap(nullptr); }

  std::vector<std::wstring> Lines() const {
    const std::lock_guard lock(m_mutex);
    return m_lines;
  }

  // The lines' texts: what stands behind "LEVEL: ", without the line feed.
  std::vector<std::wstring> Texts() const {
    std::vector<std::wstring> texts;
    for (const std::wstring& line : Lines()) {
      const size_t start = line.find(L": ") + 2;
      texts.push_back(line.substr(start, line.size() - start - 1));
    }
    return texts;
  }

  bool Has(const std::wstring& text) const {
    const auto texts = Texts();
    return std::find(texts.begin(), texts.end(), text) != texts.end();
  }

  void Clear() {
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
  }

 private:
  void Add(const std::wstring& line) {
    const std::lock_guard lock(m_mutex);
    m_lines.push_back(line);
  }

  static inline LogCapture* s_current = nullptr;
  mutable std::mutex m_mutex;
  std::vector<std::wstring> m_lines;
};

}  // namespace Velm3rdSDK
