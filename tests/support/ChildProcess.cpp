#include "tests/support/ChildProcess.h"

#include <windows.h>

#include <system_error>

namespace velm_test {
namespace {

constexpr UINT kKilledExitCode = 137;

[[noreturn]] void ThrowLastError(const char* what) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

struct Pipe {
  Cmm::UniqueHandle read;
  Cmm::UniqueHandle write;
};

enum class ChildEnd { kRead, kWrite };

// A pipe of which the child inherits one end.
Pipe MakePipe(ChildEnd childEnd) {
  Pipe pipe;
  if (!CreatePipe(pipe.read.put(), pipe.write.put(), nullptr, 0)) ThrowLastError("CreatePipe");
  const HANDLE inherited = childEnd == ChildEnd::kRead ? pipe.read.get() : pipe.write.get();
  SetHandleInformation(inherited, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
  return pipe;
}

std::wstring Widen(std::string_view utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).wstring();
}

// Calls `take` with what arrives until the pipe ends.
template <typename Take>
void ReadAll(HANDLE pipe, Take take) {
  char bytes[4096];
  DWORD count = 0;
  while (ReadFile(pipe, bytes, sizeof(bytes), &count, nullptr) && count > 0)
    take(std::string_view(bytes, count));
}

}  // namespace

std::filesystem::path ProgramBeside(std::wstring_view name) {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return std::filesystem::path(path).replace_filename(name);
}

std::wstring QuoteArgument(std::wstring_view argument) {
  if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring_view::npos)
    return std::wstring(argument);
  std::wstring quoted = L"\"";
  size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'\\') {
      ++backslashes;
      continue;
    }
    // Backslashes count double in front of a quotation mark only.
    quoted.append(c == L'"' ? backslashes * 2 + 1 : backslashes, L'\\');
    backslashes = 0;
    quoted += c;
  }
  return quoted.append(backslashes * 2, L'\\') + L'"';
}

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
  std::wstring commandLine = QuoteArgument(program.wstring());
  for (const std::string& argument : arguments)
    commandLine += L' ' + QuoteArgument(Widen(argument));

  // Under Wine the first window of a session starts a process for the desktop, which keeps open what its
  // starter would pass on to a child: start it before there are pipes.
  GetDesktopWindow();
  Pipe input = MakePipe(ChildEnd::kRead);
  Pipe output = MakePipe(ChildEnd::kWrite);
  Pipe errors = MakePipe(ChildEnd::kWrite);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input.read.get();
  startup.hStdOutput = output.write.get();
  startup.hStdError = errors.write.get();
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                      &startup, &started))
    ThrowLastError("CreateProcessW");
  CloseHandle(started.hThread);
  m_process.reset(started.hProcess);
  m_id = started.dwProcessId;
  m_input = std::move(input.write);
  m_output = std::move(output.read);
  m_errors = std::move(errors.read);
  m_outputReader = std::thread([this] { ReadOutput(); });
  m_errorReader = std::thread([this] { ReadErrors(); });
}

ChildProcess::~ChildProcess() {
  Kill();
  m_outputReader.join();
  if (m_errorReader.joinable()) m_errorReader.join();
}

void ChildProcess::ReadOutput() {
  std::string pending;
  ReadAll(m_output.get(), [&](std::string_view bytes) {
    pending += bytes;
    const std::lock_guard lock(m_lock);
    for (size_t end; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1))
      m_lines.push_back(pending.substr(0, end));
    m_changed.notify_all();
  });
  const std::lock_guard lock(m_lock);
  if (!pending.empty()) m_lines.push_back(pending);
  m_outputEnded = true;
  m_changed.notify_all();
}

void ChildProcess::ReadErrors() {
  ReadAll(m_errors.get(), [this](std::string_view bytes) {
    const std::lock_guard lock(m_lock);
    m_errorText += bytes;
  });
}

bool ChildProcess::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD written = 0;
    if (!m_input ||
        !WriteFile(m_input.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
      return false;
    bytes.remove_prefix(written);
  }
  return true;
}

std::optional<std::string> ChildProcess::ReadLine(std::chrono::milliseconds limit) {
  std::unique_lock lock(m_lock);
  m_changed.wait_for(lock, limit, [this] { return !m_lines.empty() || m_outputEnded; });
  if (m_lines.empty()) return std::nullopt;
  std::string line = std::move(m_lines.front());
  m_lines.pop_front();
  return line;
}

std::optional<std::string> ChildProcess::ReadLineWith(std::string_view part,
                                                      std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    std::optional<std::string> line = ReadLine(left);
    if (!line || line->find(part) != std::string::npos) return line;
  }
}

std::vector<std::string> ChildProcess::ReadRest(std::chrono::milliseconds limit) {
  std::unique_lock lock(m_lock);
  m_changed.wait_for(lock, limit, [this] { return m_outputEnded; });
  std::vector<std::string> lines(m_lines.begin(), m_lines.end());
  m_lines.clear();
  return lines;
}

std::string ChildProcess::Errors() {
  const std::lock_guard lock(m_lock);
  return m_errorText;
}

std::optional<uint32_t> ChildProcess::Wait(std::chrono::milliseconds limit) {
  CloseInput();
  if (WaitForSingleObject(m_process.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0)
    return std::nullopt;
  if (m_errorReader.joinable()) m_errorReader.join();
  DWORD code = 0;
  GetExitCodeProcess(m_process.get(), &code);
  return code;
}

void ChildProcess::Kill() {
  CloseInput();
  TerminateProcess(m_process.get(), kKilledExitCode);  // fails when it has ended
  WaitForSingleObject(m_process.get(), INFINITE);
}

}  // namespace velm_test
