// Lines of the log to a file, by one thread and by four, each beside its floor in the same run: a bare seek
// and write of as many bytes under the same kind of lock. A process decides once on the lock, so the part
// with the named mutex is a second process, which the first starts at its end.

#include <windows.h>

#include <process.h>

#include <filesystem>
#include <string>
#include <vector>

#include "bench/RatioReporter.h"
#include "common/client/utility/src/CmmLogMessage.h"
#include "common/client/utility/src/CmmLogging.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace {

constexpr wchar_t kMutexPart[] = L"named_mutex";
constexpr char kText[] = "[Channel::OnDataReceived] 1234 bytes of type 40521 for the client, 17 in the queue";

void Log(benchmark::State& state) {
  for (auto _ : state)
    logging::LogMessage(__FILE__, __LINE__).stream() << kText;
}

// The bare file, and the bare lock.
class Floor {
 public:
  Floor(const std::filesystem::path& path, bool byMutex)
      : m_file(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                           CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    if (byMutex) m_mutex.reset(CreateMutexW(nullptr, FALSE, L"Global\\velm_logging_bench_floor"));
    InitializeCriticalSection(&m_section);
  }
  Floor(const Floor&) = delete;
  Floor& operator=(const Floor&) = delete;
  ~Floor() { DeleteCriticalSection(&m_section); }

  void Write(const std::string& line) {
    if (m_mutex)
      WaitForSingleObject(m_mutex.get(), INFINITE);
    else
      EnterCriticalSection(&m_section);
    SetFilePointerEx(m_file.get(), LARGE_INTEGER{}, nullptr, FILE_END);
    DWORD written = 0;
    WriteFile(m_file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    if (m_mutex)
      ReleaseMutex(m_mutex.get());
    else
      LeaveCriticalSection(&m_section);
  }

 private:
  Cmm::UniqueFileHandle m_file;
  Cmm::UniqueHandle m_mutex;
  CRITICAL_SECTION m_section;
};

void Register(const std::string& name, int threads, Floor& floor) {
  const std::string line =
      "[1234:5678:03-07/09:05:01.042:INFO:logging_bench.cpp(27)] " + std::string(kText) + '\n';
  const auto add = [threads](const std::string& full, auto function) {
    benchmark::RegisterBenchmark(full.c_str(), function)
        ->Repetitions(9)
        ->MinTime(0.05)
        ->Threads(threads)
        ->UseRealTime();
  };
  add(name, Log);
  add(name + velm_bench::kFloorSuffix, [line, &floor](benchmark::State& state) {
    for (auto _ : state)
      floor.Write(line);
  });
}

// What a line costs until it is handed to the file: composed, and kept by a handler.
void Compose(benchmark::State& state) {
  logging::SetLogMessageHandler([](int, const char*, int, size_t, const std::string& text) {
    benchmark::DoNotOptimize(text.data());
    return true;
  });
  Log(state);
  logging::SetLogMessageHandler(nullptr);
}

int RunPart(int argc, char** argv, bool byMutex) {
  const std::filesystem::path directory = std::filesystem::temp_directory_path() /
                                          ("velm_logging_bench_" + std::to_string(GetCurrentProcessId()));
  std::filesystem::create_directories(directory);
  int result = 1;
  if (logging::BaseInitLoggingImpl_built_with_NDEBUG(
          (directory / "log.log").c_str(), logging::LOG_TO_FILE,
          byMutex ? logging::LOCK_BY_NAMED_MUTEX : logging::LOCK_BY_CRITICAL_SECTION,
          logging::APPEND_TO_OLD_LOG_FILE, logging::LOG_NOT_ENCRYPTED, 0)) {
    Floor floor(directory / "floor.log", byMutex);
    const std::string name = byMutex ? "mutex_line" : "line";
    Register(name + "_1_thread", 1, floor);
    Register(name + "_4_threads", 4, floor);
    if (!byMutex) velm_bench::Register("compose_line", Compose);
    result = velm_bench::RunBenchmarks(argc, argv);
    logging::CloseLogFile();
  }
  std::filesystem::remove_all(directory);
  return result;
}

}  // namespace

int wmain(int wideCount, wchar_t** wideArguments) {
  const bool byMutex = wideCount > 1 && std::wstring(wideArguments[1]) == kMutexPart;
  std::vector<std::string> texts;
  for (int i = 0; i < wideCount; ++i)
    if (i != 1 || !byMutex) texts.push_back(std::filesystem::path(wideArguments[i]).string());
  std::vector<char*> arguments;
  for (std::string& text : texts)
    arguments.push_back(text.data());
  const int result = RunPart(static_cast<int>(arguments.size()), arguments.data(), byMutex);
  if (byMutex || result != 0) return result;

  std::vector<const wchar_t*> again = {wideArguments[0], kMutexPart};
  again.insert(again.end(), wideArguments + 1, wideArguments + wideCount);
  again.push_back(nullptr);
  return static_cast<int>(_wspawnv(_P_WAIT, wideArguments[0], again.data()));
}
