#include "archive/ArchivePath.h"

#include "gmock/gmock.h"

namespace {

using Cmm::CCmmArchivePath;
using Cmm::CStringW;

TEST(ArchivePath, ANonEmptyTextBecomesOneNameWhateverItHolds) {
  const CCmmArchivePath path(CStringW(L"a/b"));
  ASSERT_EQ(path.Depth(), 1u);
  EXPECT_EQ(path.NameAt(0), L"a/b");
}

TEST(ArchivePath, AnEmptyTextGivesAPathOfDepthZero) {
  const CCmmArchivePath path(CStringW(L""));
  EXPECT_EQ(path.Depth(), 0u);
}

TEST(ArchivePath, NamesAreAppendedBehindTheLast) {
  CCmmArchivePath path(CStringW(L"a"));
  path.AppendName(L"b");
  path.AppendName(L"c");
  EXPECT_EQ(path.Depth(), 3u);
  EXPECT_EQ(path.NameAt(0), L"a");
  EXPECT_EQ(path.NameAt(1), L"b");
  EXPECT_EQ(path.NameAt(2), L"c");
  EXPECT_EQ(path.LastName(), L"c");
}

TEST(ArchivePath, AnEmptyNameIsAppendedLikeAnyOther) {
  CCmmArchivePath path(CStringW(L""));
  path.AppendName(L"");
  EXPECT_EQ(path.Depth(), 1u);
}

TEST(ArchivePath, PopNameRemovesTheLastAndDoesNothingOnAnEmptyPath) {
  CCmmArchivePath path(CStringW(L"a"));
  path.AppendName(L"b");
  path.PopName();
  EXPECT_EQ(path.LastName(), L"a");
  path.PopName();
  EXPECT_EQ(path.Depth(), 0u);
  path.PopName();
  EXPECT_EQ(path.Depth(), 0u);
}

TEST(ArchivePath, IndexesPastTheEndReadAsOneSharedEmptyString) {
  CCmmArchivePath path(CStringW(L"a"));
  path.AppendName(L"b");
  EXPECT_EQ(path.NameAt(1), L"b");
  EXPECT_EQ(path.NameAt(2), L"");
  EXPECT_EQ(path.NameAt(5), L"");
  EXPECT_EQ(path.NameAt(0xFFFFFFFF), L"");
  EXPECT_EQ(&path.NameAt(2), &path.NameAt(5));
}

TEST(ArchivePath, LastNameOfAnEmptyPathIsTheSharedEmptyString) {
  const CCmmArchivePath path(CStringW(L""));
  EXPECT_EQ(path.LastName(), L"");
  EXPECT_EQ(&path.LastName(), &path.NameAt(0));
}

TEST(ArchivePath, ToStringAppendsEachNameWithASeparatorBehindItTheLastIncluded) {
  CCmmArchivePath path(CStringW(L"a"));
  path.AppendName(L"b");
  CStringW out(L"at ");
  path.ToString(L"/", out);
  EXPECT_EQ(out, L"at a/b/");
}

TEST(ArchivePath, ToStringTakesSeparatorsOfAnyLength) {
  CCmmArchivePath path(CStringW(L"a"));
  path.AppendName(L"");
  CStringW out;
  path.ToString(L"::", out);
  EXPECT_EQ(out, L"a::::");
  out = L"";
  path.ToString(L"", out);
  EXPECT_EQ(out, L"a");
}

TEST(ArchivePath, ToStringOfAnEmptyPathLeavesTheTextAlone) {
  const CCmmArchivePath path(CStringW(L""));
  CStringW out(L"kept");
  path.ToString(L"/", out);
  EXPECT_EQ(out, L"kept");
}

TEST(ArchivePath, ACopyOwnsItsNames) {
  CCmmArchivePath path(CStringW(L"a"));
  const CCmmArchivePath copy(path);
  path.AppendName(L"b");
  path.PopName();
  path.PopName();
  EXPECT_EQ(copy.Depth(), 1u);
  EXPECT_EQ(copy.LastName(), L"a");
}

}  // namespace
