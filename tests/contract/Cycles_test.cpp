// A host application that starts and stops its channel again and again: what is left behind is what stays by
// design, and nothing else. Counted from inside the process.

#include <windows.h>

#include <tlhelp32.h>

#include <functional>

#include "common/client/utility/src/UniqueHandle.h"
#include "tests/contract/ContractFixture.h"

namespace velm_test {
namespace {

constexpr SIZE_T kTableRegion = 0x3000;  // the device table's 12004 bytes in whole pages

// Every handle value up to the limit that is open. The system's own count is not to be had everywhere.
int CountHandles() {
  constexpr uintptr_t kLimit = 0x10000;
  int count = 0;
  for (uintptr_t value = 4; value < kLimit; value += 4) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
  }
  return count;
}

int CountThreads() {
  const Cmm::UniqueFileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  int count = 0;
  for (BOOL found = Thread32First(snapshot.get(), &entry); found;
       found = Thread32Next(snapshot.get(), &entry))
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  return count;
}

// Views of mapped files, by whether they are as large as the device table.
struct Views {
  int tables = 0;
  int others = 0;
};

Views CountViews() {
  Views views;
  MEMORY_BASIC_INFORMATION region{};
  for (const char* at = nullptr; VirtualQuery(at, &region, sizeof(region)) == sizeof(region);
       at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
    if (region.Type != MEM_MAPPED || region.BaseAddress != region.AllocationBase) continue;
    ++(region.RegionSize == kTableRegion ? views.tables : views.others);
  }
  return views;
}

// What is allocated on all heaps of the process.
struct HeapUse {
  size_t blocks = 0;
  size_t bytes = 0;
};

HeapUse CountHeap() {
  std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
  heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
  HeapUse use;
  for (const HANDLE heap : heaps) {
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
      if (!(entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)) continue;
      ++use.blocks;
      use.bytes += entry.cbData;
    }
    HeapUnlock(heap);
  }
  return use;
}

struct Use {
  int handles = CountHandles();
  int threads = CountThreads();
  Views views = CountViews();
  HeapUse heap = CountHeap();
};

class CyclesContract : public ContractTest {
 protected:
  static constexpr int kWarmUp = 5;
  static constexpr int kCycles = 100;
  // The system's own blocks come and go, but less than one in two cycles; and the fixture keeps what the
  // client remarks in each, which is one line.
  static constexpr int kSlackBlocks = kCycles / 2;
  static constexpr int kSlackBytes = kCycles * 64;

  // What each cycle leaves behind by design.
  struct Left {
    int handles;
    int tables;
  };

  // A machine that is busy with other things may hold something of the system's back now and then, and a leak
  // shows every time: two more hundreds of cycles are granted.
  void ExpectEachLeaves(const Left& left, const std::function<void()>& start) {
    for (int i = 0; i < kWarmUp; ++i)
      Cycle(start);
    std::string wrong = "not measured";
    for (int attempt = 0; attempt < 3 && !wrong.empty(); ++attempt)
      wrong = Measure(left, start);
    EXPECT_EQ(wrong, "");
  }

  // What a hundred cycles left behind that they should not, or did not and should; empty for nothing.
  std::string Measure(const Left& left, const std::function<void()>& start) {
    const Use before;
    for (int i = 0; i < kCycles; ++i)
      Cycle(start);
    WaitUntil([&] { return CountThreads() <= before.threads; });
    const Use after;
    std::string wrong;
    const auto check = [&](bool isRight, const char* what, int64_t change) {
      if (!isRight) wrong += std::string(what) + ' ' + std::to_string(change) + "; ";
    };
    const int handles = after.handles - before.handles;
    check(handles == kCycles * left.handles, "handles", handles);
    check(after.threads <= before.threads, "threads", after.threads - before.threads);
    const int tables = after.views.tables - before.views.tables;
    check(tables == kCycles * left.tables, "views of the device table", tables);
    const int views = after.views.others - before.views.others;
    check(views == 0, "other views", views);
    const auto blocks = static_cast<int64_t>(after.heap.blocks) - static_cast<int64_t>(before.heap.blocks);
    check(blocks < kSlackBlocks, "blocks", blocks);
    const auto bytes = static_cast<int64_t>(after.heap.bytes) - static_cast<int64_t>(before.heap.bytes);
    check(bytes < kSlackBytes, "bytes", bytes);
    return wrong;
  }

  void Cycle(const std::function<void()>& start) {
    start();
    EXPECT_TRUE(Sdk::AwaitWindow());
    EXPECT_EQ(m_sdk->DestroySdkChannel(), 0U);
    EXPECT_TRUE(WaitUntil([] { return Sdk::Window() == nullptr; }));
  }

  void StartChannel() { EXPECT_EQ(m_sdk->SetCallBackFunc(OnGeneral), 0U); }
  void StartChannelAndAwaitPipe() {
    StartChannel();
    EXPECT_TRUE(m_client->ReadLineWith(R"("state":"announced")"));
  }
};

constexpr int kMessageThread = 1;  // its handle
constexpr int kDeviceTable = 1;    // its mapping

TEST_F(CyclesContract, OneByWindowLeavesTheThreadsHandleAndTheDeviceTable) {
  StartClient({"--pipes", "none"});
  m_sdk->GetSDKAvailableFeatures();
  EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL & ~SDK_FEATURE_AUDIO), 1U);
  ExpectEachLeaves({kMessageThread + kDeviceTable, kDeviceTable}, [&] { StartChannel(); });
}

TEST_F(CyclesContract, OneByAudioPipeLeavesNoMoreThanOneByWindow) {
  StartClient({});
  m_sdk->GetSDKAvailableFeatures();
  EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL), 1U);
  ExpectEachLeaves({kMessageThread + kDeviceTable, kDeviceTable}, [&] {
    StartChannelAndAwaitPipe();
    EXPECT_EQ(m_sdk->SetAudioCmd(1), 0U);
    Tell("via audio audio 1");
  });
}

TEST_F(CyclesContract, OneInServiceModeLeavesTheThreadsHandleAlone) {
  StartClient({});
  EXPECT_EQ(m_sdk->TryRunningUnderServiceMode(), 0U);
  EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_SERVICE_MODE), 1U);
  ExpectEachLeaves({kMessageThread, 0}, [&] {
    StartChannelAndAwaitPipe();
    EXPECT_EQ(m_sdk->SetCameraCmd(1), 0U);
    Tell("via service camera 1");
  });
}

TEST_F(CyclesContract, OneWithoutAClientThatServesThePipeLeavesNoMore) {
  StartClient({"--pipes", "none"});
  m_sdk->GetSDKAvailableFeatures();
  EXPECT_EQ(m_sdk->RegisterMsg(SDK_FEATURES_ALL), 1U);
  ExpectEachLeaves({kMessageThread + kDeviceTable, kDeviceTable}, [&] {
    StartChannel();
    EXPECT_EQ(m_sdk->SetAudioCmd(1), 0U);  // waits for the pipe, and is lost
  });
}

TEST(CyclesCounts, SeeWhatIsLeft) {
  const Use before;
  const Cmm::UniqueHandle stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  const Cmm::UniqueHandle mapping(
      CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kTableRegion, nullptr));
  void* const view = MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0);
  const Cmm::UniqueHandle thread(CreateThread(
      nullptr, 0,
      [](void* event) -> DWORD {
        WaitForSingleObject(event, INFINITE);
        return 0;
      },
      stop.get(), 0, nullptr));
  std::vector<std::unique_ptr<char[]>> blocks;
  for (int i = 0; i < 100; ++i)
    blocks.push_back(std::make_unique<char[]>(1000));
  const Use after;
  EXPECT_EQ(after.handles, before.handles + 3);
  EXPECT_EQ(after.threads, before.threads + 1);
  EXPECT_EQ(after.views.tables, before.views.tables + 1);
  EXPECT_GE(after.heap.blocks, before.heap.blocks + 100);
  EXPECT_GE(after.heap.bytes, before.heap.bytes + 100000);
  SetEvent(stop.get());
  WaitForSingleObject(thread.get(), INFINITE);
  UnmapViewOfFile(view);
}

}  // namespace
}  // namespace velm_test
