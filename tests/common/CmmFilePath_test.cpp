#include "common/client/utility/src/CmmFilePath.h"

#include <windows.h>

#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/AnsiText.h"

namespace Cmm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Components = std::vector<std::wstring>;

FilePath Path(const wchar_t* text) {
  return FilePath(CStringT<wchar_t>(text));
}

// UTF-8, so that a failing test can be read.
std::string Shown(const FilePath& path) {
  return path.utf8Value().GetCData();
}

std::string Shown(const wchar_t* text) {
  return Shown(Path(text));
}

Components ComponentsOf(const wchar_t* path) {
  std::vector<CStringT<wchar_t>> components{L"rest of before"};
  Path(path).GetComponents(&components);
  return Components(components.begin(), components.end());
}

struct OneToOne {
  const wchar_t* path;
  const wchar_t* expected;
};

struct TwoToOne {
  const wchar_t* path;
  const wchar_t* other;
  const wchar_t* expected;
};

struct Verdict {
  const wchar_t* path;
  bool expected;
};

struct VerdictOfTwo {
  const wchar_t* path;
  const wchar_t* other;
  bool expected;
};

// ---- Text -------------------------------------------------------------------------------------------------

TEST(FilePath, HoldsOneStringAndNothingElse) {
  EXPECT_EQ(sizeof(FilePath), sizeof(CStringT<wchar_t>));
}

TEST(FilePath, TheConstantsAreTheSeparatorsAndTheTwoDots) {
  EXPECT_STREQ(FilePath::kSeparators, L"\\/");
  EXPECT_STREQ(FilePath::kCurrentDirectory, L".");
  EXPECT_STREQ(FilePath::kParentDirectory, L"..");
  EXPECT_EQ(FilePath::kExtensionSeparator, L'.');
}

TEST(FilePath, KeepsItsTextAsItStands) {
  EXPECT_TRUE(FilePath().empty());
  EXPECT_TRUE(FilePath().value().empty());
  const wchar_t* const odd = L"C:/a\\..//<b>|*\x4F1A\\";
  EXPECT_EQ(Path(odd).value(), odd);
  EXPECT_FALSE(Path(odd).empty());
}

TEST(FilePath, IsAValue) {
  FilePath path = Path(L"a");
  const FilePath copy = path;
  path = path.Append(CStringT<wchar_t>(L"b"));
  EXPECT_EQ(copy.value(), L"a");
  FilePath assigned;
  assigned = path;
  const FilePath moved = std::move(path);
  EXPECT_EQ(moved.value(), L"a\\b");
  EXPECT_EQ(assigned, moved);
  assigned.clear();
  EXPECT_TRUE(assigned.empty());
}

TEST(FilePath, NarrowTextIsUtf8) {
  const FilePath path(CStringT<char>("C:\\\xE4\xBC\x9A\xE8\xAE\xAE\\\xC3\xA9"));
  EXPECT_EQ(path.value(), L"C:\\\x4F1A\x8BAE\\\x00E9");
  EXPECT_EQ(path.utf8Value(), "C:\\\xE4\xBC\x9A\xE8\xAE\xAE\\\xC3\xA9");
  EXPECT_TRUE(FilePath(CStringT<char>()).empty());
  EXPECT_TRUE(FilePath().utf8Value().empty());
}

TEST(FilePath, GoesToTheStandardStringAndBack) {
  EXPECT_EQ(FilePath::FromWStringHack(L"a\\b").value(), L"a\\b");
  EXPECT_EQ(Path(L"a\\b").ToWStringHack(), L"a\\b");
}

TEST(FilePath, BothSlashesAreSeparatorsAndNothingElse) {
  EXPECT_TRUE(FilePath::IsSeparator(L'\\'));
  EXPECT_TRUE(FilePath::IsSeparator(L'/'));
  for (const wchar_t c : {L':', L'.', L'|', L'a', L'\0', L'\xFF0F', L'\xFF3C', L'\x2215'})
    EXPECT_FALSE(FilePath::IsSeparator(c)) << static_cast<int>(c);
}

// ---- Comparison -------------------------------------------------------------------------------------------

TEST(FilePath, EqualityIsExactButForTheDrive) {
  for (const auto& [path, other, expected] : {
           VerdictOfTwo{L"", L"", true},
           {L"a", L"a", true},
           {L"a", L"A", false},
           {L"a", L"", false},
           {L"a\\b", L"a/b", false},
           {L"a", L"a\\", false},
           {L"C:\\a", L"c:\\a", true},
           {L"c:", L"C:", true},
           {L"C:\\a", L"C:\\A", false},
           {L"C:\\a", L"D:\\a", false},
           {L"C:a", L"c:b", false},
           {L"C:\\a", L"\\a", false},
           {L"C:\\a", L"C:\\ab", false},
           {L"\x00C4:\\a", L"\x00E4:\\a", false},  // no drive letters
           {L"1:\\a", L"1:\\a", true},
           {L"C", L"c", false},
       }) {
    EXPECT_EQ(Path(path) == Path(other), expected) << Shown(path) << " " << Shown(other);
    EXPECT_EQ(Path(other) == Path(path), expected) << Shown(path) << " " << Shown(other);
    EXPECT_EQ(Path(path) != Path(other), !expected) << Shown(path) << " " << Shown(other);
  }
}

TEST(FilePath, OrderIsByUnitsWithTheEmptyPathFirst) {
  for (const auto& [path, other, expected] : {
           VerdictOfTwo{L"", L"a", true},
           {L"", L"", false},
           {L"a", L"", false},
           {L"a", L"b", true},
           {L"b", L"a", false},
           {L"a", L"a", false},
           {L"B", L"a", true},
           {L"a", L"ab", true},
           {L"C:", L"c:", true},
           {L"a", L"\x4F1A", true},
       }) {
    EXPECT_EQ(Path(path) < Path(other), expected) << Shown(path) << " " << Shown(other);
  }
}

TEST(FilePath, CompareIgnoreCaseUppercasesUnitByUnit) {
  struct Case {
    const wchar_t* a;
    const wchar_t* b;
    int expected;
  };
  for (const auto& [a, b, expected] : {
           Case{L"", L"", 0},
           {L"abc", L"ABC", 0},
           {L"\x00E9\x0436", L"\x00C9\x0416", 0},
           {L"\x4F1A", L"\x4F1A", 0},
           {L"stra\x00DF"
            L"e",
            L"STRASSE", 1},  // no unit becomes two
           {L"a", L"B", -1},
           {L"B", L"a", 1},
           {L"a", L"ab", -1},
           {L"AB", L"a", 1},
           {L"", L"a", -1},
           {L"a", L"", 1},
           {L"_", L"a", 1},  // in upper case, where the underscore stands behind the letters
           {L"_", L"A", 1},
       }) {
    EXPECT_EQ(FilePath::CompareIgnoreCase(a, b), expected) << Shown(a) << " " << Shown(b);
    EXPECT_EQ(FilePath::CompareIgnoreCase(b, a), -expected) << Shown(a) << " " << Shown(b);
    EXPECT_EQ(FilePath::CompareEqualIgnoreCase(a, b), expected == 0) << Shown(a) << " " << Shown(b);
    EXPECT_EQ(FilePath::CompareLessIgnoreCase(a, b), expected < 0) << Shown(a) << " " << Shown(b);
  }
}

TEST(FilePath, CompareIgnoreCaseGoesOnBehindANul) {
  const CStringT<wchar_t> a(L"a\0b", 3);
  const CStringT<wchar_t> c(L"A\0C", 3);
  EXPECT_EQ(FilePath::CompareIgnoreCase(a, c), -1);
}

// ---- Components -------------------------------------------------------------------------------------------

TEST(FilePath, StripTrailingSeparators) {
  for (const auto& [path, expected] : {
           OneToOne{L"", L""},     {L"a", L"a"},
           {L"a\\", L"a"},         {L"a/", L"a"},
           {L"a\\/\\", L"a"},      {L"a\\b\\\\", L"a\\b"},
           {L"\\", L"\\"},         {L"/", L"/"},
           {L"\\\\", L"\\\\"},     {L"//", L"//"},
           {L"\\/", L"\\/"},       {L"\\\\\\", L"\\"},
           {L"\\\\\\\\", L"\\"},   {L"\\\\\\\\\\\\", L"\\"},
           {L"\\a\\", L"\\a"},     {L"\\\\a\\\\", L"\\\\a"},
           {L"C:", L"C:"},         {L"C:\\", L"C:\\"},
           {L"C:/", L"C:/"},       {L"C:\\\\", L"C:\\\\"},
           {L"C:\\\\\\", L"C:\\"}, {L"C:\\a\\", L"C:\\a"},
           {L"C:a\\", L"C:a"},     {L"1:\\", L"1:"},  // no drive letter
       }) {
    EXPECT_EQ(Shown(Path(path).StripTrailingSeparators()), Shown(expected)) << Shown(path);
  }
}

TEST(FilePath, DirName) {
  for (const auto& [path, expected] : {
           OneToOne{L"", L"."},
           {L"a", L"."},
           {L".", L"."},
           {L"..", L"."},
           {L"a\\", L"."},
           {L"a\\b", L"a"},
           {L"a/b", L"a"},
           {L"a\\b\\", L"a"},
           {L"a\\\\b", L"a"},
           {L"a\\b/c", L"a\\b"},
           {L".\\a", L"."},
           {L"..\\a", L".."},
           {L"\\", L"\\"},
           {L"\\a", L"\\"},
           {L"/a", L"/"},
           {L"\\a\\b", L"\\a"},
           {L"\\\\", L"\\\\"},
           {L"\\\\a", L"\\\\"},
           {L"\\\\a\\b", L"\\\\a"},
           {L"\\\\\\", L"\\"},
           {L"\\\\\\a", L"\\\\"},  // cut at the last separator, before the strip that keeps two
           {L"C:", L"C:"},
           {L"C:a", L"C:"},
           {L"C:a\\b", L"C:a"},
           {L"C:\\", L"C:\\"},
           {L"C:\\a", L"C:\\"},
           {L"C:/a", L"C:/"},
           {L"C:\\\\a", L"C:\\\\"},
           {L"C:\\\\\\a", L"C:\\\\"},
           {L"C:\\a\\b.txt", L"C:\\a"},
           {L"C:\\a\\b\\", L"C:\\a"},
           {L"\x4F1A\\\x8BAE", L"\x4F1A"},
       }) {
    EXPECT_EQ(Shown(Path(path).DirName()), Shown(expected)) << Shown(path);
  }
}

TEST(FilePath, BaseName) {
  for (const auto& [path, expected] : {
           OneToOne{L"", L""},
           {L"a", L"a"},
           {L"a\\", L"a"},
           {L"a\\b", L"b"},
           {L"a/b//", L"b"},
           {L".", L"."},
           {L"a\\..", L".."},
           {L"\\", L"\\"},
           {L"/", L"/"},
           {L"\\a", L"a"},
           {L"\\\\", L"\\\\"},
           {L"\\\\a", L"a"},
           {L"\\\\\\", L"\\"},
           {L"C:", L""},
           {L"C:a", L"a"},
           {L"C:\\", L"\\"},
           {L"C:/", L"/"},
           {L"C:\\\\", L"\\\\"},
           {L"C:\\a", L"a"},
           {L"C:\\a\\b.txt", L"b.txt"},
           {L"\x4F1A\\\x8BAE", L"\x8BAE"},
       }) {
    EXPECT_EQ(Shown(Path(path).BaseName()), Shown(expected)) << Shown(path);
  }
}

TEST(FilePath, GetComponentsRunsFromTheRootDown) {
  EXPECT_THAT(ComponentsOf(L""), IsEmpty());
  EXPECT_THAT(ComponentsOf(L"."), IsEmpty());
  EXPECT_THAT(ComponentsOf(L"a"), ElementsAre(L"a"));
  EXPECT_THAT(ComponentsOf(L"a\\b/c\\"), ElementsAre(L"a", L"b", L"c"));
  EXPECT_THAT(ComponentsOf(L"a\\\\b"), ElementsAre(L"a", L"b"));
  EXPECT_THAT(ComponentsOf(L".\\a"), ElementsAre(L"a"));
  EXPECT_THAT(ComponentsOf(L"a\\.\\b"), ElementsAre(L"a", L".", L"b"));
  EXPECT_THAT(ComponentsOf(L"..\\a"), ElementsAre(L"..", L"a"));
  EXPECT_THAT(ComponentsOf(L"\\"), ElementsAre(L"\\"));
  EXPECT_THAT(ComponentsOf(L"/a"), ElementsAre(L"/", L"a"));
  EXPECT_THAT(ComponentsOf(L"\\\\server\\share"), ElementsAre(L"\\\\", L"server", L"share"));
  EXPECT_THAT(ComponentsOf(L"C:"), ElementsAre(L"C:"));
  EXPECT_THAT(ComponentsOf(L"C:\\"), ElementsAre(L"C:", L"\\"));
  EXPECT_THAT(ComponentsOf(L"C:\\a\\b"), ElementsAre(L"C:", L"\\", L"a", L"b"));
  EXPECT_THAT(ComponentsOf(L"C:a\\b"), ElementsAre(L"C:", L"a", L"b"));
  EXPECT_THAT(ComponentsOf(L"C:\\\\a"), ElementsAre(L"C:", L"\\\\", L"a"));
}

TEST(FilePath, GetComponentsWithoutAPlaceForThemDoesNothing) {
  const FilePath path = Path(L"a\\b");
  SetLastError(4711);
  path.GetComponents(nullptr);
  EXPECT_EQ(path.value(), L"a\\b");
  EXPECT_EQ(GetLastError(), 4711u);
}

TEST(FilePath, IsParentIgnoresCaseOnlyInTheDrive) {
  for (const auto& [path, child, expected] : {
           VerdictOfTwo{L"C:\\a", L"C:\\a\\b", true},
           {L"c:\\a", L"C:\\a\\b", true},
           {L"C:\\A", L"C:\\a\\b", false},
           {L"C:\\a", L"D:\\a\\b", false},
           {L"C:\\a", L"C:\\a", false},
           {L"C:\\a\\b", L"C:\\a", false},
           {L"C:\\", L"C:\\a", true},
           {L"C:\\", L"C:a", false},
           {L"C:", L"C:a", true},
           {L"C:", L"C:\\a", true},
           {L"C:\\a", L"a\\b\\c\\d", false},
           {L"a", L"C:\\a\\b\\c", false},
           {L"a", L"a\\b", true},
           {L"a\\", L"a/b", true},
           {L"A", L"a\\b", false},
           {L"a", L"ab\\c", false},
           {L"a\\b", L"a\\b\\c\\d", true},
           {L"", L"a", false},
           {L".", L"a", false},
           {L"..", L"..\\a", true},
           {L"\\", L"\\a", true},
           {L"\\", L"/a", false},
           {L"\\\\s", L"\\\\s\\t", true},
           {L"\\\\S", L"\\\\s\\t", false},
       }) {
    EXPECT_EQ(Path(path).IsParent(Path(child)), expected) << Shown(path) << " " << Shown(child);
  }
}

TEST(FilePath, AppendRelativePathAppendsTheRestOfTheChild) {
  FilePath path = Path(L"X:\\base\\");
  EXPECT_TRUE(Path(L"C:\\a").AppendRelativePath(Path(L"c:\\a\\b/c.txt\\"), &path));
  EXPECT_EQ(path.value(), L"X:\\base\\b\\c.txt");
  FilePath fromNothing;
  EXPECT_TRUE(Path(L"a").AppendRelativePath(Path(L"a\\b\\c"), &fromNothing));
  EXPECT_EQ(fromNothing.value(), L"b\\c");
}

TEST(FilePath, AppendRelativePathOfAStrangerLeavesThePath) {
  FilePath path = Path(L"base");
  EXPECT_FALSE(Path(L"a").AppendRelativePath(Path(L"b\\c"), &path));
  EXPECT_EQ(path.value(), L"base");
}

TEST(FilePath, AppendRelativePathMayWriteToItsOwnArguments) {
  FilePath path = Path(L"a");
  EXPECT_TRUE(path.AppendRelativePath(Path(L"a\\b\\c"), &path));
  EXPECT_EQ(path.value(), L"a\\b\\c");
}

TEST(FilePath, IsAbsolute) {
  for (const auto& [path, expected] : {
           Verdict{L"C:\\", true},
           {L"C:/a", true},
           {L"c:\\a", true},
           {L"\\\\", true},
           {L"\\\\server\\share", true},
           {L"//a", true},
           {L"\\/a", true},
           {L"", false},
           {L"a", false},
           {L"C:", false},
           {L"C:a", false},
           {L"C:a\\", false},
           {L"\\", false},
           {L"\\a", false},
           {L"/a", false},
           {L"1:\\a", false},
           {L"\x00C4:\\a", false},
           {L"CC:\\a", false},
           {L".\\a", false},
       }) {
    EXPECT_EQ(Path(path).IsAbsolute(), expected) << Shown(path);
  }
}

TEST(FilePath, ReferencesParent) {
  for (const auto& [path, expected] : {
           Verdict{L"..", true},
           {L"..\\a", true},
           {L"a\\..\\b", true},
           {L"a/..", true},
           {L"C:\\..", true},
           {L"C:..\\a", true},
           {L"\\\\..\\a", true},
           {L"a\\..\\", true},
           {L"", false},
           {L".", false},
           {L"...", false},
           {L"..a", false},
           {L"a..", false},
           {L"a\\.. \\b", false},
           {L"a\\b", false},
       }) {
    EXPECT_EQ(Path(path).ReferencesParent(), expected) << Shown(path);
  }
}

// ---- Extension --------------------------------------------------------------------------------------------

TEST(FilePath, Extension) {
  for (const auto& [path, expected] : {
           OneToOne{L"", L""},
           {L"a", L""},
           {L"a.b", L".b"},
           {L"foo.", L"."},
           {L".", L""},
           {L"..", L""},
           {L"...", L"."},
           {L".profile", L".profile"},
           {L"a.tar.gz", L".gz"},
           {L"a.b\\c", L""},
           {L"a\\b.c", L".c"},
           {L"a.b\\", L".b"},
           {L"a\\..", L""},
           {L"C:\\a.b\\c.d", L".d"},
           {L"C:.b", L".b"},
           {L"C:\\", L""},
           {L"a.\x4F1A", L".\x4F1A"},
       }) {
    EXPECT_EQ(Shown(Path(path).Extension().c_str()), Shown(expected)) << Shown(path);
  }
}

TEST(FilePath, RemoveExtension) {
  for (const auto& [path, expected] : {
           OneToOne{L"", L""},
           {L"a", L"a"},
           {L"a.b", L"a"},
           {L"foo.", L"foo"},
           {L".", L"."},
           {L"..", L".."},
           {L"...", L".."},
           {L".profile", L""},
           {L"a.tar.gz", L"a.tar"},
           {L"a.b\\c", L"a.b\\c"},
           {L"a.b\\c.d", L"a.b\\c"},
           {L"a.b\\", L"a"},  // the whole path is cut, separators and all
           {L"C:\\a.b\\..", L"C:\\a.b\\.."},
       }) {
    EXPECT_EQ(Shown(Path(path).RemoveExtension()), Shown(expected)) << Shown(path);
  }
}

TEST(FilePath, InsertBeforeExtension) {
  for (const auto& [path, suffix, expected] : {
           TwoToOne{L"a.b", L"-1", L"a-1.b"},
           {L"a", L"-1", L"a-1"},
           {L"a.", L"-1", L"a-1."},
           {L"C:\\x.y\\a.tar.gz", L" (2)", L"C:\\x.y\\a.tar (2).gz"},
           {L".profile", L"-1", L"-1.profile"},
           {L"a.b\\", L"-1", L"a-1.b"},
           {L"a.b", L"", L"a.b"},
           {L"a.b\\", L"", L"a.b\\"},
           {L".", L"", L"."},
           {L"", L"-1", L""},
           {L".", L"-1", L""},
           {L"..", L"-1", L""},
           {L"a\\..", L"-1", L""},
           {L"C:", L"-1", L""},
           {L"...", L"-1", L"..-1."},
           {L"\\", L"-1", L"\\-1"},
       }) {
    EXPECT_EQ(Shown(Path(path).InsertBeforeExtension(suffix)), Shown(expected)) << Shown(path);
  }
}

TEST(FilePath, ReplaceExtension) {
  for (const auto& [path, ext, expected] : {
           TwoToOne{L"a.b", L".", L"a"},
           {L"a.b", L"c", L"a.c"},
           {L"a.b", L".c", L"a.c"},
           {L"a.b", L"", L"a"},
           {L"a", L"c", L"a.c"},
           {L"a.", L"c", L"a.c"},
           {L"a.tar.gz", L"bz2", L"a.tar.bz2"},
           {L"a.b", L"..c", L"a..c"},
           {L"a.b", L"c\\d", L"a.c\\d"},  // unchecked
           {L".profile", L"c", L".c"},
           {L"C:\\x.y\\a", L"c", L"C:\\x.y\\a.c"},
           {L"", L"c", L""},
           {L".", L"c", L""},
           {L"..", L"c", L""},
           {L"a\\..", L"c", L""},
           {L"C:", L"c", L""},
           {L".", L"", L""},
       }) {
    EXPECT_EQ(Shown(Path(path).ReplaceExtension(ext)), Shown(expected)) << Shown(path) << " " << Shown(ext);
  }
}

TEST(FilePath, MatchesExtensionIgnoresCase) {
  for (const auto& [path, ext, expected] : {
           VerdictOfTwo{L"a.TXT", L".txt", true},
           {L"a.txt", L".Txt", true},
           {L"a.tar.gz", L".gz", true},
           {L"a.tar.gz", L".tar.gz", false},
           {L"a.txt", L"txt", false},
           {L"a.txt", L"", false},
           {L"a", L"", true},
           {L"a.", L".", true},
           {L"a.\x00E9", L".\x00C9", true},
       }) {
    EXPECT_EQ(Path(path).MatchesExtension(ext), expected) << Shown(path) << " " << Shown(ext);
  }
}

// ---- Building ---------------------------------------------------------------------------------------------

TEST(FilePath, Append) {
  for (const auto& [path, component, expected] : {
           TwoToOne{L"a", L"b", L"a\\b"},
           {L"a\\", L"b", L"a\\b"},
           {L"a/", L"b", L"a\\b"},
           {L"a", L"", L"a"},
           {L"a\\\\", L"", L"a"},
           {L"", L"b", L"b"},
           {L"", L"", L""},
           {L".", L"b", L"b"},
           {L".", L"", L""},
           {L".\\", L"b", L".\\b"},
           {L"..", L"b", L"..\\b"},
           {L"C:", L"x", L"C:x"},
           {L"C:\\", L"x", L"C:\\x"},
           {L"C:/", L"x", L"C:/x"},
           {L"C:a", L"x", L"C:a\\x"},
           {L"1:", L"x", L"1:\\x"},
           {L"\\", L"x", L"\\x"},
           {L"\\\\", L"x", L"\\\\x"},
           {L"\\\\\\", L"x", L"\\x"},
           {L"a", L"C:\\b", L"a\\C:\\b"},  // an absolute component is text like any other
           {L"a", L"\\b", L"a\\\\b"},
           {L"a", L"b/c\\", L"a\\b/c\\"},
       }) {
    EXPECT_EQ(Shown(Path(path).Append(CStringT<wchar_t>(component))), Shown(expected)) << Shown(path);
    EXPECT_EQ(Shown(Path(path).Append(Path(component))), Shown(expected)) << Shown(path);
  }
}

TEST(FilePath, TheAsciiFormsTakeTextOfTheAnsiCodePage) {
  EXPECT_EQ(Path(L"a").AppendASCII("b.c").value(), L"a\\b.c");
  EXPECT_EQ(Path(L"a").AppendASCII(StringPiece("bcd", 2)).value(), L"a\\bc");
  EXPECT_EQ(Path(L"a\\").AppendASCII(StringPiece()).value(), L"a");
  EXPECT_EQ(Path(L"a.b").InsertBeforeExtensionASCII("-1").value(), L"a-1.b");
  EXPECT_EQ(Path(L"a.b").InsertBeforeExtensionASCII("").value(), L"a.b");
  const std::string text = velm_test::ToAnsi(L"\x00E9\x20AC");  // "\xE9\x80" in code page 1252
  EXPECT_EQ(Path(L"a").AppendASCII(text.c_str()).value().GetCData(), L"a\\" + velm_test::FromAnsi(text));
  EXPECT_EQ(Path(L"a.b").InsertBeforeExtensionASCII(text.c_str()).value().GetCData(),
            L"a" + velm_test::FromAnsi(text) + L".b");
}

TEST(FilePath, NormalizeWindowsPathSeparators) {
  EXPECT_EQ(Path(L"C:/a\\b//c/").NormalizeWindowsPathSeparators().value(), L"C:\\a\\b\\\\c\\");
  EXPECT_TRUE(FilePath().NormalizeWindowsPathSeparators().empty());
}

TEST(FilePath, OperationsLeaveThePathItself) {
  const FilePath path = Path(L"C:/a/b.c\\");
  path.DirName();
  path.BaseName();
  path.RemoveExtension();
  path.ReplaceExtension(L"x");
  path.Append(CStringT<wchar_t>(L"x"));
  path.StripTrailingSeparators();
  path.NormalizeWindowsPathSeparators();
  EXPECT_EQ(path.value(), L"C:/a/b.c\\");
}

// Every text of up to five units from the ones that mean something: no operation may fail to end, and what
// they say about one path must agree.
TEST(FilePath, PartsOfEveryShortPathAgree) {
  const std::wstring units = L"aC:./\\";
  std::vector<std::wstring> texts{L""};
  for (size_t first = 0; texts.back().size() < 5;) {
    const size_t last = texts.size();
    for (; first < last; ++first) {
      for (const wchar_t unit : units)
        texts.push_back(texts[first] + unit);
    }
  }
  for (const std::wstring& text : texts) {
    const FilePath path = FilePath::FromWStringHack(text);
    const FilePath stripped = path.StripTrailingSeparators();
    ASSERT_EQ(stripped, stripped.StripTrailingSeparators()) << Shown(path);
    ASSERT_EQ(path.DirName(), stripped.DirName()) << Shown(path);
    ASSERT_EQ(path.BaseName(), stripped.BaseName()) << Shown(path);
    std::vector<CStringT<wchar_t>> components;
    path.GetComponents(&components);
    ASSERT_LE(components.size(), text.size()) << Shown(path);
    ASSERT_FALSE(path.IsParent(path)) << Shown(path);
    // "./" has the component ".", and "./child" has not.
    if (!components.empty() && components.front() != FilePath::kCurrentDirectory) {
      ASSERT_TRUE(path.IsParent(path.Append(CStringT<wchar_t>(L"child")))) << Shown(path);
    }
  }
}

}  // namespace
}  // namespace Cmm
