#include "common/client/utility/src/CmmConvert.h"

#include <windows.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "common/client/utility/src/CmmConvertDetail.h"
#include "gtest/gtest.h"

namespace {

constexpr int kUtf8 = 65001;
constexpr int kAnsi = 0;
constexpr size_t kUpToNul = static_cast<size_t>(-1);

// Converts into a buffer of `cap` units that lies before a guard; answers the text that is reported.
std::wstring ToWide(int cp, const std::string& text, size_t cap) {
  std::wstring buffer(cap + 4, L'#');
  const size_t written = cmm_str_convert(cp, buffer.data(), cap, text.data(), text.size());
  EXPECT_LE(written, cap);
  EXPECT_EQ(L"####", buffer.substr(cap)) << "written behind the destination";
  return buffer.substr(0, written);
}

std::string ToNarrow(int cp, const std::wstring& text, size_t cap) {
  std::string buffer(cap + 4, '#');
  const size_t written = cmm_str_convert(cp, buffer.data(), cap, text.data(), text.size());
  EXPECT_LE(written, cap);
  EXPECT_EQ("####", buffer.substr(cap)) << "written behind the destination";
  return buffer.substr(0, written);
}

std::wstring Utf8ToWide(const std::string& text) {
  return ToWide(kUtf8, text, text.size() + 1);
}

std::string WideToUtf8(const std::wstring& text) {
  return ToNarrow(kUtf8, text, 4 * text.size() + 1);
}

struct Utf8Pair {
  const char* name;
  std::wstring wide;
  std::string utf8;
};

std::vector<Utf8Pair> Utf8Pairs() {
  return {
      {"ASCII", L"velm", "velm"},
      {"all of ASCII's controls", L"\x01\x1F\x7F", "\x01\x1F\x7F"},
      {"first of two bytes", L"\x0080", "\xC2\x80"},
      {"last of two bytes", L"\x07FF", "\xDF\xBF"},
      {"first of three bytes", L"\x0800", "\xE0\xA0\x80"},
      {"last of three bytes", L"\xFFFD", "\xEF\xBF\xBD"},
      {"first surrogate pair", L"\xD800\xDC00", "\xF0\x90\x80\x80"},
      {"last surrogate pair", L"\xDBFF\xDFFF", "\xF4\x8F\xBF\xBF"},
      {"mixed", L"a\x00E4\x4E2D\xD83D\xDE00z", "a\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80z"},
      {"an inner NUL", std::wstring(L"a\0b", 3), std::string("a\0b", 3)},
  };
}

TEST(CmmStrConvert, ConvertsBetweenUtf8AndUtf16) {
  for (const Utf8Pair& pair : Utf8Pairs()) {
    EXPECT_EQ(pair.utf8, WideToUtf8(pair.wide)) << pair.name;
    EXPECT_EQ(pair.wide, Utf8ToWide(pair.utf8)) << pair.name;
  }
}

TEST(CmmStrConvert, FitsADestinationOfExactlyTheNeededSize) {
  for (const Utf8Pair& pair : Utf8Pairs()) {
    EXPECT_EQ(pair.utf8, ToNarrow(kUtf8, pair.wide, pair.utf8.size())) << pair.name;
    EXPECT_EQ(pair.wide, ToWide(kUtf8, pair.utf8, pair.wide.size())) << pair.name;
  }
}

TEST(CmmStrConvert, DoesNotCountATerminatorThatTheSourceLengthIncludes) {
  EXPECT_EQ(L"velm", Utf8ToWide(std::string("velm", 5)));
  EXPECT_EQ("velm", WideToUtf8(std::wstring(L"velm", 5)));
  EXPECT_EQ(L"\x00E4", Utf8ToWide(std::string("\xC3\xA4", 3)));
  EXPECT_EQ("\xC3\xA4", WideToUtf8(std::wstring(L"\x00E4", 2)));
}

TEST(CmmStrConvert, LeavesOutOneFinalNulOnly) {
  EXPECT_EQ(std::wstring(L"a\0", 2), Utf8ToWide(std::string("a\0\0", 3)));
  EXPECT_EQ(std::string("a\0", 2), WideToUtf8(std::wstring(L"a\0\0", 3)));
  EXPECT_EQ(L"", Utf8ToWide(std::string(1, '\0')));
  EXPECT_EQ("", WideToUtf8(std::wstring(1, L'\0')));
}

TEST(CmmStrConvert, AddsNoTerminator) {
  char narrow[] = "######";
  EXPECT_EQ(4u, cmm_str_convert(kUtf8, narrow, 6, L"velm", 4));
  EXPECT_STREQ("velm##", narrow);
  wchar_t wide[] = L"######";
  EXPECT_EQ(4u, cmm_str_convert(kUtf8, wide, 6, "velm", 4));
  EXPECT_STREQ(L"velm##", wide);
}

TEST(CmmStrConvert, ReadsUpToTheNulForALengthOfAllOnes) {
  char narrow[16];
  wchar_t wide[16];
  for (const int cp : {kUtf8, kAnsi}) {
    EXPECT_EQ(4u, cmm_str_convert(cp, narrow, 16, L"velm\0x", kUpToNul));
    EXPECT_STREQ("velm", narrow);
    EXPECT_EQ(4u, cmm_str_convert(cp, wide, 16, "velm\0x", kUpToNul));
    EXPECT_STREQ(L"velm", wide);
    EXPECT_EQ(4u, cmm_str_convert(kAnsi, narrow, 16, cp, "velm\0x", kUpToNul));
  }
}

TEST(CmmStrConvert, AnswersZeroForWhatCannotBeConverted) {
  char narrow[] = "####";
  wchar_t wide[] = L"####";
  for (const int cp : {kUtf8, kAnsi}) {
    EXPECT_EQ(0u, cmm_str_convert(cp, narrow, 0, L"a", 1)) << "no capacity";
    EXPECT_EQ(0u, cmm_str_convert(cp, wide, 0, "a", 1)) << "no capacity";
    EXPECT_EQ(0u, cmm_str_convert(cp, narrow, 4, L"a", 0)) << "empty source";
    EXPECT_EQ(0u, cmm_str_convert(cp, wide, 4, "a", 0)) << "empty source";
    EXPECT_EQ(0u, cmm_str_convert(cp, narrow, 4, static_cast<const wchar_t*>(nullptr), 1)) << "null source";
    EXPECT_EQ(0u, cmm_str_convert(cp, wide, 4, static_cast<const char*>(nullptr), 1)) << "null source";
    EXPECT_EQ(0u, cmm_str_convert(cp, static_cast<char*>(nullptr), 4, L"a", 1)) << "null destination";
    EXPECT_EQ(0u, cmm_str_convert(cp, static_cast<wchar_t*>(nullptr), 4, "a", 1)) << "null destination";
    EXPECT_EQ(0u, cmm_str_convert(kUtf8, narrow, 4, cp, nullptr, kUpToNul)) << "null source";
    EXPECT_EQ(0u, cmm_str_convert(kUtf8, narrow, 4, cp, "a", 0)) << "empty source";
    EXPECT_EQ(0u, cmm_str_convert(kUtf8, narrow, 0, cp, "a", 1)) << "no capacity";
  }
  EXPECT_EQ(0u, cmm_str_convert(12345, narrow, 4, L"a", 1)) << "no such code page";
  EXPECT_EQ(0u, cmm_str_convert(12345, wide, 4, "a", 1)) << "no such code page";
  EXPECT_STREQ("####", narrow);
  EXPECT_STREQ(L"####", wide);
}

TEST(CmmStrConvert, KeepsWhatFitsAndReportsItsLength) {
  EXPECT_EQ("ve", ToNarrow(kUtf8, L"velm", 2));
  EXPECT_EQ(L"ve", ToWide(kUtf8, "velm", 2));
  EXPECT_EQ("ve", ToNarrow(kAnsi, L"velm", 2));
  EXPECT_EQ(L"ve", ToWide(kAnsi, "velm", 2));
  EXPECT_EQ("vel", ToNarrow(kUtf8, L"velm", 3));
  EXPECT_EQ(L"v", ToWide(kUtf8, "velm", 1));
}

TEST(CmmStrConvert, ClearsTheRestOfADestinationThatWasTooSmall) {
  char narrow[] = "######";
  EXPECT_EQ(4u, cmm_str_convert(kUtf8, narrow, 5, L"velm\x4E2D", 5));  // its three bytes do not fit
  EXPECT_EQ(0, std::memcmp("velm\0#", narrow, 6));
}

TEST(CmmStrConvert, ReportsOnlyTheLengthUpToAnInnerNulWhenTheDestinationWasTooSmall) {
  EXPECT_EQ("a", ToNarrow(kUtf8, std::wstring(L"a\0bcd", 5), 4));
  EXPECT_EQ(L"a", ToWide(kUtf8, std::string("a\0bcd", 5), 4));
}

TEST(CmmStrConvert, AcceptsCapacitiesAboveWhatTheSystemCounts) {
  char narrow[8] = {};
  wchar_t wide[8] = {};
  for (const size_t cap : {size_t{0x3FFFFFFF}, size_t{0x40000000}, size_t{0x7FFFFFFF}, size_t{0x80000000},
                           size_t{0x100000000}, static_cast<size_t>(-1)}) {
    EXPECT_EQ(3u, cmm_str_convert(kUtf8, narrow, cap, L"a\x00E4", 2)) << cap;
    EXPECT_EQ(2u, cmm_str_convert(kUtf8, wide, cap, "a\xC3\xA4", 3)) << cap;
  }
}

TEST(CmmStrConvert, ReplacesMalformedUtf8AndLoneSurrogatesAsTheSystemDoes) {
  const std::vector<std::string> malformed = {
      "\xFF", "a\x80z", "\xC3", "\xE4\xB8", "\xC0\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80"};
  for (const std::string& text : malformed) {
    wchar_t expected[16];
    const int length =
        MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), expected, 16);
    EXPECT_EQ(std::wstring(expected, static_cast<size_t>(length)), ToWide(kUtf8, text, 16)) << text;
  }
  EXPECT_EQ("a\xEF\xBF\xBDz", WideToUtf8(L"a\xD800z"));
  EXPECT_EQ("\xEF\xBF\xBD", WideToUtf8(L"\xDC00"));
}

TEST(CmmStrConvert, UsesNoBestFitForAnsi) {
  // Windows-1252, the ANSI code page of the test environment, has no U+0100; its best fit is A.
  ASSERT_EQ(1252u, GetACP());
  EXPECT_EQ("?", ToNarrow(kAnsi, L"\x0100", 4));
  EXPECT_EQ("\xE4", ToNarrow(kAnsi, L"\x00E4", 4));
}

TEST(WideCharToMultiByteBestFit, LeavesBestFitOn) {
  ASSERT_EQ(1252u, GetACP());
  char narrow[4] = {};
  EXPECT_EQ(1, WideCharToMultiByteBestFit(kAnsi, L"\x0100", 1, narrow, 4, nullptr, nullptr));
  EXPECT_STREQ("A", narrow);
}

TEST(WideCharToMultiByteBestFit, ForwardsLengthsDefaultCharacterAndFailure) {
  char narrow[8] = {};
  int usedDefault = 0;
  EXPECT_EQ(3, WideCharToMultiByteBestFit(kAnsi, L"a\x4E2D", -1, narrow, 8, "!", &usedDefault));
  EXPECT_STREQ("a!", narrow);
  EXPECT_NE(0, usedDefault);
  EXPECT_EQ(5, WideCharToMultiByteBestFit(kUtf8, L"velm", -1, nullptr, 0, nullptr, nullptr));
  EXPECT_EQ(0, WideCharToMultiByteBestFit(kUtf8, L"velm", 4, narrow, 2, nullptr, nullptr));
  EXPECT_EQ(DWORD{ERROR_INSUFFICIENT_BUFFER}, GetLastError());
}

TEST(CmmStrConvert, ConvertsBetweenCodePages) {
  char narrow[8] = "#######";
  EXPECT_EQ(2u, cmm_str_convert(1252, narrow, 8, kUtf8, "a\xC3\xA4", 3));
  EXPECT_EQ(0, std::memcmp("a\xE4#", narrow, 3));
  EXPECT_EQ(3u, cmm_str_convert(kUtf8, narrow, 8, 1252, "a\xE4", 2));
  EXPECT_EQ(0, std::memcmp("a\xC3\xA4#", narrow, 4));
  EXPECT_EQ(2u, cmm_str_convert(932, narrow, 8, kUtf8, "\xE3\x81\x82", 3));
  EXPECT_EQ(0, std::memcmp("\x82\xA0", narrow, 2));
  EXPECT_EQ(1u, cmm_str_convert(kUtf8, narrow, 2, 1252, "a\xE4", 2)) << "only the first character fits";
}

TEST(CmmStrConvert, RoundTripsRandomTextAsTheSystemDoes) {
  std::mt19937 random(20240609);
  for (int i = 0; i < 5000; ++i) {
    std::wstring text;
    const auto length = std::uniform_int_distribution(1, 60)(random);
    const bool ascii = random() % 4 == 0;
    for (int unit = 0; unit < length; ++unit) {
      text += static_cast<wchar_t>(ascii || random() % 2 ? random() % 0x80 : random() % 0x10000);
    }
    char expected[256];
    int expectedLength =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, expected, sizeof expected, nullptr, nullptr);
    if (expected[expectedLength - 1] == '\0') --expectedLength;
    const std::string utf8(expected, static_cast<size_t>(expectedLength));
    ASSERT_EQ(utf8, WideToUtf8(text)) << "round " << i;
    if (utf8.empty()) continue;

    wchar_t back[64];
    int backLength = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), expectedLength, back, 64);
    if (back[backLength - 1] == L'\0') --backLength;
    ASSERT_EQ(std::wstring(back, static_cast<size_t>(backLength)), Utf8ToWide(utf8)) << "round " << i;
  }
}

TEST(CmmStrConvert, KeepsARightPrefixForEveryCapacity) {
  const std::wstring wide = L"ab\x00E4\x4E2D\xD83D\xDE00z";
  const std::string utf8 = WideToUtf8(wide);
  for (size_t cap = 0; cap <= utf8.size(); ++cap) {
    const std::string kept = ToNarrow(kUtf8, wide, cap);
    EXPECT_EQ(utf8.substr(0, kept.size()), kept) << cap;
    EXPECT_GT(kept.size() + 4, cap) << "a whole character was left out";
  }
  for (size_t cap = 0; cap <= wide.size(); ++cap) {
    const std::wstring kept = ToWide(kUtf8, utf8, cap);
    EXPECT_EQ(wide.substr(0, kept.size()), kept) << cap;
    EXPECT_GT(kept.size() + 2, cap) << "a whole character was left out";
  }
}

// A system that answers as told and says how it was called: for the failures that this platform's
// system calls do not show.
template <typename T>
struct ScriptedSystem {
  struct Answer {
    Cmm::detail::CallResult result;
    std::basic_string<T> writes;
  };
  std::vector<Answer> answers;
  std::vector<unsigned long> flags = {};
  std::vector<int> capacities = {};
  std::vector<std::basic_string<T>> destinations = {};  // its first four units, as each call found it

  Cmm::detail::CallResult operator()(unsigned long callFlags, T* dst, int cap) {
    const Answer answer = answers.at(flags.size());
    flags.push_back(callFlags);
    capacities.push_back(cap);
    destinations.emplace_back(dst, 4);
    std::copy(answer.writes.begin(), answer.writes.end(), dst);
    return answer.result;
  }
};

size_t RunWide(ScriptedSystem<wchar_t>& system, wchar_t* dst, size_t cap) {
  return Cmm::detail::ConvertToWide(dst, cap, [&](wchar_t* to, int size) { return system(0, to, size); });
}

size_t RunNarrow(ScriptedSystem<char>& system, int cp, char* dst, size_t cap) {
  return Cmm::detail::ConvertToMultiByte(
      cp, dst, cap, [&](unsigned long flags, char* to, int size) { return system(flags, to, size); });
}

using Flags = std::vector<unsigned long>;
using Capacities = std::vector<int>;

TEST(CmmStrConvertFailures, WideTargetCallsOnceWhenAllIsWell) {
  wchar_t dst[5] = L"####";
  ScriptedSystem<wchar_t> system{{{{2, 0}, L"ab"}}};
  EXPECT_EQ(2u, RunWide(system, dst, 4));
  EXPECT_EQ(Capacities{4}, system.capacities);
}

TEST(CmmStrConvertFailures, WideTargetGivesUpOnAnyOtherError) {
  for (const unsigned long error : {87ul, 1004ul, 1113ul}) {
    wchar_t dst[5] = L"####";
    ScriptedSystem<wchar_t> system{{{{0, error}, L""}}};
    EXPECT_EQ(0u, RunWide(system, dst, 4)) << error;
    EXPECT_EQ(1u, system.capacities.size()) << error;
    EXPECT_STREQ(L"####", dst) << "what the system left stays";
  }
}

TEST(CmmStrConvertFailures, WideTargetIsClearedBeforeTheSecondCallAndMeasuredAfterIt) {
  wchar_t dst[5] = L"####";
  ScriptedSystem<wchar_t> system{{{{0, 122}, L"xyzw"}, {{0, 122}, L"abc"}}};
  EXPECT_EQ(3u, RunWide(system, dst, 4));
  EXPECT_EQ((Capacities{4, 4}), system.capacities);
  EXPECT_EQ(std::wstring(4, L'\0'), system.destinations[1]);
}

TEST(CmmStrConvertFailures, WideTargetThatIsFullHasItsCapacityForLength) {
  wchar_t dst[5] = L"####";
  ScriptedSystem<wchar_t> system{{{{0, 122}, L""}, {{0, 122}, L"abcd"}}};
  EXPECT_EQ(4u, RunWide(system, dst, 4));
  EXPECT_EQ(L'\0', dst[4]);
}

TEST(CmmStrConvertFailures, CapacitiesAreClampedToWhatTheSystemCounts) {
  struct {
    size_t cap;
    int wide;
    int narrow;
  } const cases[] = {
      {1, 1, 1},
      {0x3FFFFFFE, 0x3FFFFFFE, 0x3FFFFFFE},
      {0x3FFFFFFF, 0x3FFFFFFF, 0x3FFFFFFF},
      {0x40000000, 0x3FFFFFFF, 0x40000000},
      {0x7FFFFFFF, 0x3FFFFFFF, 0x7FFFFFFF},
      {0x80000000, 0x3FFFFFFF, 0x7FFFFFFF},
      {0x100000001, 0x3FFFFFFF, 0x7FFFFFFF},
      {static_cast<size_t>(-1), 0x3FFFFFFF, 0x7FFFFFFF},
  };
  for (const auto& c : cases) {
    wchar_t wide[5] = L"####";
    ScriptedSystem<wchar_t> wideSystem{{{{1, 0}, L"a"}}};
    RunWide(wideSystem, wide, c.cap);
    EXPECT_EQ(Capacities{c.wide}, wideSystem.capacities) << c.cap;

    char narrow[5] = "####";
    ScriptedSystem<char> narrowSystem{{{{1, 0}, "a"}}};
    RunNarrow(narrowSystem, kUtf8, narrow, c.cap);
    EXPECT_EQ(Capacities{c.narrow}, narrowSystem.capacities) << c.cap;
  }
}

TEST(CmmStrConvertFailures, NarrowTargetForbidsBestFitExceptForUtf8) {
  char dst[5] = "####";
  for (const int cp : {0, 1, 932, 1252, 50220, 65000}) {
    ScriptedSystem<char> system{{{{2, 0}, "ab"}}};
    EXPECT_EQ(2u, RunNarrow(system, cp, dst, 4)) << cp;
    EXPECT_EQ(Flags{0x400}, system.flags) << cp;
  }
  ScriptedSystem<char> system{{{{2, 0}, "ab"}}};
  EXPECT_EQ(2u, RunNarrow(system, kUtf8, dst, 4));
  EXPECT_EQ(Flags{0}, system.flags);
}

TEST(CmmStrConvertFailures, NarrowTargetRetriesWithTheSameFlagsWhenTooSmall) {
  char dst[5] = "####";
  ScriptedSystem<char> system{{{{0, 122}, "xyzw"}, {{0, 122}, "abc"}}};
  EXPECT_EQ(3u, RunNarrow(system, 1252, dst, 4));
  EXPECT_EQ((Flags{0x400, 0x400}), system.flags);
  EXPECT_EQ(std::string(4, '\0'), system.destinations[1]);
}

TEST(CmmStrConvertFailures, NarrowTargetRetriesWithoutFlagsWhereACodePageRefusesThem) {
  char dst[5] = "####";
  ScriptedSystem<char> system{{{{0, 1004}, ""}, {{3, 0}, "abc"}}};
  EXPECT_EQ(3u, RunNarrow(system, 50220, dst, 4));
  EXPECT_EQ((Flags{0x400, 0}), system.flags);
  EXPECT_EQ(std::string(4, '\0'), system.destinations[1]);
}

TEST(CmmStrConvertFailures, NarrowTargetIsMeasuredUpToTheFirstNulWhereACodePageRefusesTheFlags) {
  char dst[5] = "####";
  ScriptedSystem<char> system{{{{0, 1004}, ""}, {{4, 0}, std::string("a\0bc", 4)}}};
  EXPECT_EQ(1u, RunNarrow(system, 50220, dst, 4));
}

TEST(CmmStrConvertFailures, NarrowTargetGivesUpOnAnyOtherError) {
  for (const unsigned long error : {87ul, 1113ul}) {
    char dst[5] = "####";
    ScriptedSystem<char> system{{{{0, error}, ""}}};
    EXPECT_EQ(0u, RunNarrow(system, 1252, dst, 4)) << error;
    EXPECT_EQ(1u, system.flags.size()) << error;
    EXPECT_STREQ("####", dst) << "what the system left stays";
  }
}

TEST(CmmStrConvertFailures, ASecondFailureLeavesAnEmptyDestination) {
  char narrow[5] = "####";
  ScriptedSystem<char> narrowSystem{{{{0, 1004}, ""}, {{0, 87}, ""}}};
  EXPECT_EQ(0u, RunNarrow(narrowSystem, 50220, narrow, 4));
  wchar_t wide[5] = L"####";
  ScriptedSystem<wchar_t> wideSystem{{{{0, 122}, L""}, {{0, 87}, L""}}};
  EXPECT_EQ(0u, RunWide(wideSystem, wide, 4));
}

TEST(CmmStrConvertFailures, ADestinationAboveTheLimitOfTheCheckedFillIsClearedWhole) {
  std::string dst(Cmm::kMaxCheckedMemory + 8, '#');
  ScriptedSystem<char> system{{{{0, 122}, ""}, {{0, 122}, "abcd"}}};
  EXPECT_EQ(4u, RunNarrow(system, kUtf8, dst.data(), dst.size()));
  EXPECT_EQ(std::string::npos, dst.find('#'));
}

TEST(CmmStrConvertFailures, NoCapacityMeansNoCall) {
  ScriptedSystem<char> narrow{{}};
  EXPECT_EQ(0u, RunNarrow(narrow, kUtf8, nullptr, 0));
  ScriptedSystem<wchar_t> wide{{}};
  EXPECT_EQ(0u, RunWide(wide, nullptr, 0));
}

}  // namespace
