#include "common/client/utility/src/CmmDir.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/DirectoryLink.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using Cmm::CmmDir;
using testing::Contains;
using testing::Pair;
using testing::UnorderedElementsAre;
using velm_test::ScratchDirectory;

std::wstring CurrentDirectory() {
  wchar_t path[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, path);
  return path;
}

// The names that a search begun with `path` gives.
std::set<std::wstring> NamesIn(const std::wstring& path) {
  CmmDir dir;
  std::set<std::wstring> names;
  if (!cmm_fs_find_first(&dir, path.c_str())) return names;
  const Cmm::UniqueFindHandle closed(dir.handle);
  do {
    names.insert(dir.item.cFileName);
  } while (FindNextFileW(dir.handle, &dir.item));
  return names;
}

TEST(FsFindFirst, FindsTheItemsOfADirectoryWhateverItsEnd) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"a");
  scratch.MakeFile(L"\x4F1A\x8BAE");
  const std::wstring path = scratch.Path().wstring();
  const auto all = UnorderedElementsAre(L".", L"..", L"a", L"\x4F1A\x8BAE");
  EXPECT_THAT(NamesIn(path), all);
  EXPECT_THAT(NamesIn(path + L"\\"), all);
  EXPECT_THAT(NamesIn(path + L"/"), all);  // by the doubled separator of the pattern
}

TEST(FsFindFirst, AMissingDirectoryGivesZeroAndAnEmptyName) {
  const ScratchDirectory scratch;
  CmmDir dir;
  std::memset(&dir, 0x55, sizeof(dir));
  EXPECT_EQ(cmm_fs_find_first(&dir, (scratch.Path() / L"missing").c_str()), 0);
  EXPECT_EQ(dir.handle, INVALID_HANDLE_VALUE);
  EXPECT_STREQ(dir.item.cFileName, L"");
}

TEST(FsFindFirst, NullAndEmptyArgumentsGiveZeroAndTouchNothing) {
  CmmDir dir;
  std::memset(&dir, 0x55, sizeof(dir));
  const CmmDir before = dir;
  EXPECT_EQ(cmm_fs_find_first(&dir, nullptr), 0);
  EXPECT_EQ(cmm_fs_find_first(&dir, L""), 0);
  EXPECT_EQ(cmm_fs_find_first(nullptr, L"."), 0);
  EXPECT_EQ(std::memcmp(&dir, &before, sizeof(dir)), 0);
}

// What a walk saw, and the context that its callback records into.
struct Walk {
  std::vector<std::pair<int, std::wstring>> items;
  std::vector<std::wstring> directories;  // the current one at each item
  std::wstring stopAt;

  static void Record(const CmmDir* item, int depth, int* stop, void* context) {
    Walk& walk = *static_cast<Walk*>(context);
    EXPECT_EQ(*stop, 0);
    walk.items.emplace_back(depth, item->item.cFileName);
    walk.directories.push_back(CurrentDirectory());
    if (walk.stopAt == item->item.cFileName) *stop = 1;
  }
};

TEST(FsSearch, SeesEveryItemWithItsDepthDotsIncluded) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"a");
  scratch.MakeFile(L"b\\c");
  scratch.MakeFile(L"b\\d\\\x4F1A");
  Walk walk;
  cmm_fs_search(scratch.Path().c_str(), Walk::Record, &walk);
  EXPECT_THAT(walk.items, UnorderedElementsAre(Pair(0, L"."), Pair(0, L".."), Pair(0, L"a"), Pair(0, L"b"),
                                               Pair(1, L"."), Pair(1, L".."), Pair(1, L"c"), Pair(1, L"d"),
                                               Pair(2, L"."), Pair(2, L".."), Pair(2, L"\x4F1A")));
}

TEST(FsSearch, TheCurrentDirectoryIsTheOneThatHoldsTheItem) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"b\\c");
  scratch.MakeFile(L"z");
  const std::wstring before = CurrentDirectory();
  Walk walk;
  cmm_fs_search(scratch.Path().c_str(), Walk::Record, &walk);
  for (size_t i = 0; i < walk.items.size(); ++i) {
    const std::filesystem::path expected = walk.items[i].first == 0 ? scratch.Path() : scratch.Path() / L"b";
    EXPECT_TRUE(std::filesystem::equivalent(walk.directories[i], expected)) << i;
  }
  EXPECT_EQ(CurrentDirectory(), before);
}

TEST(FsSearch, ADirectoryComesBeforeWhatItHolds) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"b\\c");
  Walk walk;
  cmm_fs_search(scratch.Path().c_str(), Walk::Record, &walk);
  const auto at = [&walk](int depth, const wchar_t* name) {
    return std::find(walk.items.begin(), walk.items.end(), std::pair<int, std::wstring>(depth, name));
  };
  EXPECT_LT(at(0, L"b"), at(1, L"c"));
}

TEST(FsSearch, StopEndsTheWholeWalkFromAnyDepthAndPutsTheDirectoryBack) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"b\\d\\stop");
  for (const wchar_t* name : {L"a", L"c", L"b\\c", L"b\\e", L"b\\d\\y", L"b\\d\\z"})
    scratch.MakeFile(name);
  const std::wstring before = CurrentDirectory();
  Walk walk;
  walk.stopAt = L"stop";
  cmm_fs_search(scratch.Path().c_str(), Walk::Record, &walk);
  EXPECT_EQ(walk.items.back(), (std::pair<int, std::wstring>(2, L"stop")));
  EXPECT_EQ(CurrentDirectory(), before);
}

TEST(FsSearch, StopAtADirectoryKeepsTheWalkOutOfIt) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"b\\c");
  Walk walk;
  walk.stopAt = L"b";
  cmm_fs_search(scratch.Path().c_str(), Walk::Record, &walk);
  EXPECT_EQ(walk.items.back(), (std::pair<int, std::wstring>(0, L"b")));
}

TEST(FsSearch, AnEmptyDirectoryHasItsTwoDots) {
  const ScratchDirectory scratch;
  Walk walk;
  cmm_fs_search(scratch.Path().c_str(), Walk::Record, &walk);
  EXPECT_THAT(walk.items, UnorderedElementsAre(Pair(0, L"."), Pair(0, L"..")));
}

TEST(FsSearch, WhatIsNoDirectoryIsNotWalked) {
  const ScratchDirectory scratch;
  const std::wstring file = scratch.MakeFile(L"a");
  const std::wstring before = CurrentDirectory();
  Walk walk;
  cmm_fs_search((scratch.Path() / L"missing").c_str(), Walk::Record, &walk);
  cmm_fs_search(file.c_str(), Walk::Record, &walk);
  cmm_fs_search(L"", Walk::Record, &walk);
  cmm_fs_search(nullptr, Walk::Record, &walk);
  EXPECT_TRUE(walk.items.empty());
  EXPECT_EQ(CurrentDirectory(), before);
}

TEST(FsSearch, EntersLinksToDirectories) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"target\\inside");
  const std::filesystem::path tree = scratch.MakeDirectory(L"tree");
  const velm_test::DirectoryLink link(tree / L"link", scratch.Path() / L"target");
  ASSERT_TRUE(link.Exists());
  Walk walk;
  cmm_fs_search(tree.c_str(), Walk::Record, &walk);
  EXPECT_THAT(walk.items, Contains(Pair(1, L"inside")));
}

}  // namespace
