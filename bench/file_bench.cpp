// The walk of one directory of 10,000 files by cmm_fs_search, beside its floor in the same run: a bare loop
// of FindFirstFileW and FindNextFileW over the same directory.

#include <windows.h>

#include <string>

#include "bench/RatioReporter.h"
#include "common/client/utility/src/CmmDir.h"
#include "common/client/utility/src/UniqueHandle.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr int kFiles = 10000;
constexpr int kItems = kFiles + 2;  // with "." and ".."

void Count(const Cmm::CmmDir*, int, int*, void* context) {
  ++*static_cast<int*>(context);
}

void Walk(benchmark::State& state, const std::wstring& directory) {
  for (auto _ : state) {
    int items = 0;
    cmm_fs_search(directory.c_str(), Count, &items);
    if (items != kItems) state.SkipWithError("the walk did not see every file");
  }
}

void WalkFloor(benchmark::State& state, const std::wstring& directory) {
  const std::wstring pattern = directory + L"\\*";
  for (auto _ : state) {
    int items = 0;
    WIN32_FIND_DATAW item;
    const Cmm::UniqueFindHandle search(FindFirstFileW(pattern.c_str(), &item));
    if (search) {
      do {
        ++items;
      } while (FindNextFileW(search.get(), &item));
    }
    if (items != kItems) state.SkipWithError("the loop did not see every file");
  }
}

}  // namespace

int main(int argc, char** argv) {
  const velm_test::ScratchDirectory scratch;
  for (int i = 0; i < kFiles; ++i)
    scratch.MakeFile(L"file" + std::to_wstring(i), "");
  const std::wstring directory = scratch.Path().wstring();
  velm_bench::Register("walk", Walk, directory);
  velm_bench::Register(std::string("walk") + velm_bench::kFloorSuffix, WalkFloor, directory);
  return velm_bench::RunBenchmarks(argc, argv);
}
