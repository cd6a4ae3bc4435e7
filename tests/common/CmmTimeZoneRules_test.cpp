#include "common/client/utility/src/CmmTimeZoneRules.h"

#include <windows.h>

#include <utility>

#include "common/client/utility/src/UniqueHandle.h"
#include "gtest/gtest.h"

namespace Cmm::internal {
namespace {

TEST(ZoneOffsetMinutes, CountsTheBiasesTheOtherWayRound) {
  EXPECT_EQ(ZoneOffsetMinutes(TIME_ZONE_ID_UNKNOWN, -480, 0, -60), 480);
  EXPECT_EQ(ZoneOffsetMinutes(TIME_ZONE_ID_STANDARD, 300, 0, -60), -300);
  EXPECT_EQ(ZoneOffsetMinutes(TIME_ZONE_ID_DAYLIGHT, 300, 0, -60), -240);
}

TEST(ZoneOffsetMinutes, EachAnswerHasItsOwnBias) {
  EXPECT_EQ(ZoneOffsetMinutes(TIME_ZONE_ID_UNKNOWN, 100, 7, 30), -100);
  EXPECT_EQ(ZoneOffsetMinutes(TIME_ZONE_ID_STANDARD, 100, 7, 30), -107);
  EXPECT_EQ(ZoneOffsetMinutes(TIME_ZONE_ID_DAYLIGHT, 100, 7, 30), -130);
}

TEST(ZoneOffsetMinutes, AnyOtherAnswerIs0) {
  EXPECT_EQ(ZoneOffsetMinutes(TIME_ZONE_ID_INVALID, -480, 0, 0), 0);
  EXPECT_EQ(ZoneOffsetMinutes(3, -480, 0, 0), 0);
}

constexpr std::pair<const wchar_t*, const wchar_t*> kRewritten[] = {
    {L"Russia TZ 1 Standard Time", L"Kaliningrad Standard Time"},
    {L"Russia TZ 2 Standard Time", L"Russian Standard Time"},
    {L"Russia TZ 4 Standard Time", L"Ekaterinburg Standard Time"},
    {L"Russia TZ 6 Standard Time", L"North Asia Standard Time"},
    {L"Russia TZ 7 Standard Time", L"North Asia East Standard Time"},
    {L"Russia TZ 8 Standard Time", L"Yakutsk Standard Time"},
    {L"Russia TZ 9 Standard Time", L"Vladivostok Standard Time"},
    {L"Coordinated Universal Time", L"UTC"},
    {L"Cabo Verde Standard Time", L"Cape Verde Standard Time"},
    {L"Jerusalem Standard Time", L"Israel Standard Time"},
    {L"Novosibirsk Standard Time", L"N. Central Asia Standard Time"},
    {L"Malay Peninsula Standard Time", L"Singapore Standard Time"},
};

TEST(RewriteZoneKey, KnowsTwelveKeys) {
  for (const auto& [key, result] : kRewritten)
    EXPECT_EQ(RewriteZoneKey(key), result);
}

TEST(RewriteZoneKey, GivesNothingForAnyOther) {
  for (const wchar_t* key : {L"", L"UTC", L"Russia TZ 3 Standard Time", L"Russia TZ 5 Standard Time",
                             L"Russia TZ 10 Standard Time", L"russia tz 1 standard time",
                             L"Jerusalem Standard Time ", L"China Standard Time"})
    EXPECT_EQ(RewriteZoneKey(key), L"") << key;
}

TEST(ChooseZoneKey, WhatIsRegisteredStandsWhateverTheFlag) {
  EXPECT_EQ(ChooseZoneKey(L"Russia TZ 2 Standard Time", L"Russia TZ 2 Standard Time", 0),
            L"Russia TZ 2 Standard Time");
  EXPECT_EQ(ChooseZoneKey(L"A", L"B", 1), L"A");
}

TEST(ChooseZoneKey, AnUnknownKeyIsRewrittenWithFlag0AndUtcWithAnyOther) {
  EXPECT_EQ(ChooseZoneKey(L"", L"Russia TZ 2 Standard Time", 0), L"Russian Standard Time");
  EXPECT_EQ(ChooseZoneKey(L"", L"Russia TZ 2 Standard Time", 1), L"UTC");
  EXPECT_EQ(ChooseZoneKey(L"", L"Russia TZ 2 Standard Time", -1), L"UTC");
  EXPECT_EQ(ChooseZoneKey(L"", L"China Standard Time", 0), L"");
  EXPECT_EQ(ChooseZoneKey(L"", L"", 1), L"UTC");
}

// A registry key of this test's own, with zones below it.
class FindZone : public testing::Test {
 protected:
  FindZone() : m_path(L"Software\\VelmTimeZoneTest" + std::to_wstring(GetCurrentProcessId())) {
    RegCreateKeyExW(HKEY_CURRENT_USER, m_path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, m_key.put(),
                    nullptr);
  }
  ~FindZone() override {
    m_key.reset();
    RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
  }

  UniqueRegistryKey AddZone(const std::wstring& name) {
    UniqueRegistryKey zone;
    EXPECT_EQ(RegCreateKeyExW(m_key.get(), name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, zone.put(),
                              nullptr),
              ERROR_SUCCESS);
    return zone;
  }

  void AddZone(const std::wstring& name, const std::wstring& standardName, DWORD type = REG_SZ) {
    const UniqueRegistryKey zone = AddZone(name);
    EXPECT_EQ(RegSetValueExW(zone.get(), L"Std", 0, type, reinterpret_cast<const BYTE*>(standardName.c_str()),
                             static_cast<DWORD>((standardName.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
  }

  std::wstring Find(const std::wstring& key) { return FindZoneKey(HKEY_CURRENT_USER, m_path.c_str(), key); }

 private:
  const std::wstring m_path;
  UniqueRegistryKey m_key;
};

TEST_F(FindZone, FindsTheZoneOfTheKeyItself) {
  AddZone(L"China Standard Time");
  EXPECT_EQ(Find(L"China Standard Time"), L"China Standard Time");
}

TEST_F(FindZone, FindsTheZoneOfTheStandardName) {
  AddZone(L"A zone without a name");
  AddZone(L"Belarus Standard Time", L"Minsk");
  AddZone(L"W. Europe Standard Time", L"Mitteleurop\x00E4ische Zeit");
  EXPECT_EQ(Find(L"Mitteleurop\x00E4ische Zeit"), L"W. Europe Standard Time");
}

TEST_F(FindZone, TheKeyItselfGoesBeforeAStandardName) {
  AddZone(L"A", L"B");
  AddZone(L"B", L"C");
  EXPECT_EQ(Find(L"B"), L"B");
}

TEST_F(FindZone, TheStandardNameMustBeTheSameToTheLetter) {
  AddZone(L"A", L"Some Time");
  EXPECT_EQ(Find(L"some time"), L"");
  EXPECT_EQ(Find(L"Some Tim"), L"");
  EXPECT_EQ(Find(L"Some Time "), L"");
}

TEST_F(FindZone, AStandardNameOf63UnitsIsReadAndALongerOneIsNot) {
  AddZone(L"A", std::wstring(63, L'n'));
  AddZone(L"B", std::wstring(64, L'n'));
  EXPECT_EQ(Find(std::wstring(63, L'n')), L"A");
  EXPECT_EQ(Find(std::wstring(64, L'n')), L"");
}

TEST_F(FindZone, AZoneNameOf63UnitsIsSeenAndALongerOneIsPassedOver) {
  AddZone(std::wstring(64, L'a'), L"Wanted");
  AddZone(std::wstring(63, L'b'), L"Wanted");
  EXPECT_EQ(Find(L"Wanted"), std::wstring(63, L'b'));
}

TEST_F(FindZone, AStandardNameThatIsNoStringIsPassedOver) {
  AddZone(L"A", L"Wanted", REG_BINARY);
  AddZone(L"B", L"Wanted");
  EXPECT_EQ(Find(L"Wanted"), L"B");
}

TEST_F(FindZone, FindsNothingWhereNothingIs) {
  EXPECT_EQ(Find(L"China Standard Time"), L"");
  EXPECT_EQ(FindZoneKey(HKEY_CURRENT_USER, L"Software\\VelmNoSuchKey", L"China Standard Time"), L"");
}

TEST_F(FindZone, FindsNothingForAnEmptyKey) {
  AddZone(L"A", L"");
  EXPECT_EQ(Find(L""), L"");
}

}  // namespace
}  // namespace Cmm::internal
