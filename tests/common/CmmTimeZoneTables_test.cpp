#include "common/client/utility/src/CmmTimeZoneTables.h"

#include <fstream>
#include <ostream>
#include <string>

#include "gtest/gtest.h"

namespace Cmm::internal {
namespace {

using GoldenNames = std::map<std::string, std::string>;

// The rows of a file of tab-separated keys and names, without its heading.
GoldenNames ReadRows(const char* path) {
  GoldenNames rows;
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    const size_t tab = line.find('\t');
    rows.emplace(line.substr(0, tab), line.substr(tab + 1));
  }
  return rows;
}

GoldenNames Copy(const ZoneNames& names) {
  return {names.begin(), names.end()};
}

TEST(TimeZoneTables, TheTableOfWindowsKeysHasItsRows) {
  EXPECT_EQ(WindowsZoneNames().size(), 102u);
  EXPECT_EQ(Copy(WindowsZoneNames()), ReadRows(WINDOWS_ZONES));
}

TEST(TimeZoneTables, TheTableOfTheClientHasItsRows) {
  EXPECT_EQ(ClientZoneNames().size(), 72u);
  EXPECT_EQ(Copy(ClientZoneNames()), ReadRows(CLIENT_ZONES));
}

struct Lookup {
  const char* key;
  const char* windowsName;
  const char* clientName;
};

void PrintTo(const Lookup& lookup, std::ostream* out) {
  *out << lookup.key;
}

class TimeZoneLookup : public testing::TestWithParam<Lookup> {};

TEST_P(TimeZoneLookup, EachTableAnswersForItself) {
  EXPECT_EQ(FindZoneName(WindowsZoneNames(), GetParam().key), GetParam().windowsName);
  EXPECT_EQ(FindZoneName(ClientZoneNames(), GetParam().key), GetParam().clientName);
}

INSTANTIATE_TEST_SUITE_P(OfKeys, TimeZoneLookup,
                         testing::Values(Lookup{"China Standard Time", "Asia/Shanghai", "Asia/Shanghai"},
                                         Lookup{"UTC", "Etc/GMT", ""}, Lookup{"GMT", "", "UTC"},
                                         Lookup{"Mountain Standard Time", "MST7MDT", ""},
                                         Lookup{"Central Standard Time", "CST6CDT", "America/Chicago"},
                                         Lookup{"Eastern Standard Time", "EST5EDT", "America/New_York"},
                                         Lookup{"Pakistan Standard Time", "Asia/Karachi", "Asia/Tashkent"},
                                         Lookup{"West Asia Standard Time", "Etc/GMT-5", "Asia/Tashkent"},
                                         Lookup{"Nepal Standard Time", "Asia/Katmandu", "Asia/Kathmandu"},
                                         Lookup{"Dateline Standard Time", "Etc/GMT+12", ""},
                                         Lookup{"No Such Standard Time", "", ""}, Lookup{"", "", ""},
                                         Lookup{"china standard time", "", ""},
                                         Lookup{"China Standard Time ", "", ""}));

}  // namespace
}  // namespace Cmm::internal
