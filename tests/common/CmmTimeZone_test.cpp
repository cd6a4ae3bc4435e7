#include "common/client/utility/src/CmmTimeZone.h"

#include <windows.h>

#include <string>

#include "common/client/utility/src/UniqueHandle.h"
#include "gtest/gtest.h"

namespace Cmm {
namespace {

TEST(TimeZone, TheOffsetIsThatOfLocalTimeNow) {
  SYSTEMTIME utc;
  GetSystemTime(&utc);
  SYSTEMTIME local;
  ASSERT_TRUE(SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local));
  FILETIME utcFile, localFile;
  SystemTimeToFileTime(&utc, &utcFile);
  SystemTimeToFileTime(&local, &localFile);
  const auto value = [](const FILETIME& t) {
    return static_cast<int64_t>(t.dwHighDateTime) << 32 | t.dwLowDateTime;
  };
  EXPECT_EQ(GetTimeZoneOffsetMinutes(), (value(localFile) - value(utcFile)) / 600000000);
}

TEST(TimeZone, WithoutAFlagTheKeyIsThatOfFlag1) {
  EXPECT_EQ(GetCurrentTimeZone_DisplayName(), GetCurrentTimeZone_DisplayName(1));
  EXPECT_FALSE(GetCurrentTimeZone_DisplayName().IsEmpty());
}

TEST(TimeZone, TheKeyIsInTheRegistry) {
  const std::wstring path = std::wstring(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\") +
                            GetCurrentTimeZone_DisplayName(1).c_str();
  UniqueRegistryKey key;
  EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, key.put()), ERROR_SUCCESS);
}

}  // namespace
}  // namespace Cmm
