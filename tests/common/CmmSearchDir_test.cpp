#include "common/client/utility/src/CmmSearchDir.h"

#include <set>
#include <string>

#include "common/client/utility/src/CmmDir.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/ScratchDirectory.h"

namespace Cmm {
namespace {

using testing::UnorderedElementsAre;
using velm_test::ScratchDirectory;

class NameCollector final : public CSearchDir {
 public:
  explicit NameCollector(std::wstring stopAt = {}) : m_stopAt(std::move(stopAt)) {}

  void OnSearchItem(const CmmDir* item, int depth, int* stop) override {
    names.insert(std::to_wstring(depth) + item->item.cFileName);
    if (m_stopAt == item->item.cFileName) *stop = 1;
  }

  std::set<std::wstring> names;

 private:
  std::wstring m_stopAt;
};

class Indifferent final : public CSearchDir {};

static_assert(sizeof(CSearchDir) == sizeof(void*));  // no data

TEST(CSearchDir, SearchShowsEveryItemToTheHeir) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"a\\b");
  NameCollector collector;
  collector.Search(scratch.Path().c_str());
  EXPECT_THAT(collector.names, UnorderedElementsAre(L"0.", L"0..", L"0a", L"1.", L"1..", L"1b"));
}

TEST(CSearchDir, TheHeirMayStopTheSearch) {
  const ScratchDirectory scratch;
  scratch.MakeFile(L"a\\b");
  NameCollector collector(L"a");
  collector.Search(scratch.Path().c_str());
  EXPECT_FALSE(collector.names.contains(L"1b"));
}

TEST(CSearchDir, TheForwarderHandsEverythingToTheContext) {
  NameCollector collector(L"x");
  CmmDir dir = {};
  dir.item.cFileName[0] = L'x';
  int stop = 0;
  CSearchDir::_Search(&dir, 7, &stop, static_cast<CSearchDir*>(&collector));
  EXPECT_THAT(collector.names, UnorderedElementsAre(L"7x"));
  EXPECT_EQ(stop, 1);
}

TEST(CSearchDir, ByItselfItOnlyWalks) {
  const ScratchDirectory scratch;
  CmmDir dir = {};
  int stop = 0;
  Indifferent search;
  search.OnSearchItem(&dir, 0, &stop);
  EXPECT_EQ(stop, 0);
  search.Search(scratch.Path().c_str());
}

}  // namespace
}  // namespace Cmm
