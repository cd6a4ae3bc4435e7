#include "archive/ArchiveText.h"

#include <random>
#include <string>

#include "common/client/utility/src/CmmConvert.h"
#include "gmock/gmock.h"

namespace {

using Cmm::CStringA;
using Cmm::CStringW;
using Cmm::Archive::Utf8FromWide;
using Cmm::Archive::Utf8Text;
using Cmm::Archive::WideFromUtf8;
using SystemWide = Cmm::A2BT<65001, char, wchar_t>;
using SystemUtf8 = Cmm::A2BT<65001, wchar_t, char>;

TEST(ArchiveText, NullAndEmptyTextGiveTheEmptyString) {
  EXPECT_EQ(WideFromUtf8(nullptr), L"");
  EXPECT_EQ(WideFromUtf8(""), L"");
  CStringA out("before");
  Utf8FromWide(L"", 0, out);
  EXPECT_EQ(out, "");
}

TEST(ArchiveText, WhereTheFirstNonAsciiCharacterStandsDoesNotMatter) {
  for (size_t length = 0; length < 70; ++length) {
    for (size_t at = 0; at <= length; ++at) {
      std::wstring wide(length, L'x');
      wide.insert(at, L"\u00E9\U0001F600");
      const SystemUtf8 utf8(wide);
      CStringA narrowed;
      Utf8FromWide(wide.c_str(), wide.size(), narrowed);
      ASSERT_EQ(narrowed, utf8.c_str());
      ASSERT_EQ(WideFromUtf8(narrowed.c_str()), wide.c_str());
    }
  }
}

TEST(ArchiveText, MalformedTextConvertsAsTheSystemDoes) {
  std::mt19937 random(20240101);
  for (int round = 0; round < 2000; ++round) {
    std::string bytes;
    std::wstring units;
    for (unsigned i = random() % 40; i > 0; --i) {
      const bool isAscii = random() % 3 != 0;
      bytes += static_cast<char>(isAscii ? 1 + random() % 0x7F : 0x80 + random() % 0x80);
      units += static_cast<wchar_t>(isAscii ? 1 + random() % 0x7F : 0xD700 + random() % 0x1000);
    }
    ASSERT_EQ(WideFromUtf8(bytes.c_str()), SystemWide(bytes).c_str());
    CStringA out;
    Utf8FromWide(units.c_str(), units.size(), out);
    ASSERT_EQ(out, SystemUtf8(units).c_str());
  }
}

TEST(ArchiveText, ShortAndLongTextsOfACallAreTerminated) {
  for (size_t length : {0, 1, 169, 170, 171, 5000}) {
    const std::wstring wide(length, L'\u4E2D');
    std::string expected;
    for (size_t i = 0; i < length; ++i)
      expected += "\xE4\xB8\xAD";
    EXPECT_EQ(Utf8Text(wide.c_str(), wide.size()).c_str(), expected);
  }
}

}  // namespace
