#include "sdk/AudioDeviceTable.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <cwchar>
#include <memory>
#include <string>

#include "common/client/utility/src/UniqueHandle.h"

namespace Velm3rdSDK {
namespace {

DeviceRecord Device(const wchar_t* name, const wchar_t* vid = L"VID", const wchar_t* pid = L"PID") {
  DeviceRecord record;
  CopyDeviceText(record.name, name);
  CopyDeviceText(record.usbVid, vid);
  CopyDeviceText(record.usbPidOrGuid, pid);
  return record;
}

// A table between two guards, so that a write beyond it is seen.
struct GuardedTable {
  static constexpr uint64_t kGuard = 0x5AA5'5AA5'5AA5'5AA5;
  uint64_t before = kGuard;
  DeviceTableLayout table{};
  uint64_t after = kGuard;

  bool GuardsIntact() const { return before == kGuard && after == kGuard; }
};

class DeviceTable : public testing::Test {
 protected:
  ~DeviceTable() override { EXPECT_TRUE(m_guarded->GuardsIntact()); }
  DeviceTableLayout& Table() { return m_guarded->table; }

 private:
  std::unique_ptr<GuardedTable> m_guarded = std::make_unique<GuardedTable>();
};

TEST_F(DeviceTable, FirstDeviceIsWrittenByteForByte) {
  AddDevice(Table(), Device(L"Ab", L"1", L"2"));
  unsigned char expected[12004] = {};
  expected[0] = 1;
  expected[4] = 'A';
  expected[6] = 'b';
  expected[204] = '1';
  expected[404] = '2';
  EXPECT_EQ(std::memcmp(&Table(), expected, sizeof(expected)), 0);
}

TEST_F(DeviceTable, SecondDeviceTakesTheNextRecord) {
  AddDevice(Table(), Device(L"One"));
  AddDevice(Table(), Device(L"Two"));
  EXPECT_EQ(Table().count, 2U);
  EXPECT_STREQ(Table().records[1].name, L"Two");
}

TEST_F(DeviceTable, SameNameAgainKeepsTheOldVendorId) {
  AddDevice(Table(), Device(L"One", L"old"));
  AddDevice(Table(), Device(L"One", L"new"));
  EXPECT_EQ(Table().count, 1U);
  EXPECT_STREQ(Table().records[0].usbVid, L"old");
}

TEST_F(DeviceTable, NamesDifferByCase) {
  AddDevice(Table(), Device(L"One"));
  AddDevice(Table(), Device(L"ONE"));
  EXPECT_EQ(Table().count, 2U);
}

TEST_F(DeviceTable, RemovingBlanksAllThreeFieldsAndKeepsTheCount) {
  AddDevice(Table(), Device(L"One"));
  AddDevice(Table(), Device(L"Two"));
  RemoveDevice(Table(), L"One");
  EXPECT_EQ(Table().count, 2U);
  const DeviceRecord blank;
  EXPECT_EQ(std::memcmp(&Table().records[0], &blank, sizeof(blank)), 0);
}

TEST_F(DeviceTable, NextDeviceTakesTheFirstEmptiedRecord) {
  for (const wchar_t* name : {L"One", L"Two", L"Three"})
    AddDevice(Table(), Device(name));
  RemoveDevice(Table(), L"Three");
  RemoveDevice(Table(), L"One");
  AddDevice(Table(), Device(L"Four"));
  EXPECT_EQ(Table().count, 3U);
  EXPECT_STREQ(Table().records[0].name, L"Four");
  EXPECT_STREQ(Table().records[2].name, L"");
}

TEST_F(DeviceTable, RemovingAnUnknownNameChangesNothing) {
  AddDevice(Table(), Device(L"One"));
  RemoveDevice(Table(), L"Two");
  EXPECT_STREQ(Table().records[0].name, L"One");
}

TEST_F(DeviceTable, EmptyNameGetsARecordWhenThereIsNone) {
  AddDevice(Table(), Device(L"", L"V", L"P"));
  EXPECT_EQ(Table().count, 1U);
  EXPECT_STREQ(Table().records[0].usbVid, L"V");
}

TEST_F(DeviceTable, EmptyNameFindsAnEmptiedRecordAndIsNotWritten) {
  AddDevice(Table(), Device(L"One"));
  RemoveDevice(Table(), L"One");
  AddDevice(Table(), Device(L"", L"V"));
  EXPECT_EQ(Table().count, 1U);
  EXPECT_STREQ(Table().records[0].usbVid, L"");
}

TEST_F(DeviceTable, TwentiethDeviceIsEnteredAndTheNextOneIsNot) {
  for (int i = 0; i < 21; ++i)
    AddDevice(Table(), Device(std::to_wstring(i).c_str()));
  EXPECT_EQ(Table().count, 20U);
  EXPECT_STREQ(Table().records[19].name, L"19");
}

TEST_F(DeviceTable, FullTableStillTakesADeviceIntoAnEmptiedRecord) {
  for (int i = 0; i < 20; ++i)
    AddDevice(Table(), Device(std::to_wstring(i).c_str()));
  RemoveDevice(Table(), L"7");
  AddDevice(Table(), Device(L"late"));
  EXPECT_EQ(Table().count, 20U);
  EXPECT_STREQ(Table().records[7].name, L"late");
}

TEST_F(DeviceTable, CountThatAnotherProcessRanPastTheEndIsNotFollowed) {
  for (int i = 0; i < 20; ++i)
    AddDevice(Table(), Device(std::to_wstring(i).c_str()));
  Table().count = 0xFFFFFFFF;
  AddDevice(Table(), Device(L"late"));
  RemoveDevice(Table(), L"3");
  EXPECT_EQ(Table().count, 0xFFFFFFFFU);
  EXPECT_STREQ(Table().records[3].name, L"");
}

TEST_F(DeviceTable, NameWithoutTerminatorIsReadWithinItsField) {
  AddDevice(Table(), Device(L"One"));
  std::wmemset(Table().records[0].name, L'x', kDeviceTextChars);
  AddDevice(Table(), Device(std::wstring(150, L'x').c_str()));
  EXPECT_EQ(Table().count, 2U);
}

TEST_F(DeviceTable, LongNameIsFoundAgainByItsWholeText) {
  const std::wstring longName(150, L'n');
  AddDevice(Table(), Device(longName.c_str()));
  EXPECT_EQ(std::wcslen(Table().records[0].name), 99U);
  RemoveDevice(Table(), longName.c_str());
  EXPECT_STREQ(Table().records[0].name, L"");
}

TEST(CopyDeviceText, KeepsNinetyNineCharactersAndClearsTheRest) {
  wchar_t field[kDeviceTextChars];
  std::wmemset(field, L'?', kDeviceTextChars);
  CopyDeviceText(field, std::wstring(100, L'a').c_str());
  EXPECT_EQ(std::wcslen(field), 99U);
  CopyDeviceText(field, L"b");
  EXPECT_STREQ(field, L"b");
  EXPECT_EQ(field[98], L'\0');
  CopyDeviceText(field, nullptr);
  EXPECT_STREQ(field, L"");
}

// ---- The mapping. Views stay mapped by design, so within this program the shared table only grows.

TEST(SharedDeviceTable, WithoutAViewNothingHappens) {
  CAudioDeviceTable table;
  table.AddDevice(Device(L"nobody"));
  table.RemoveDevice(L"nobody");
  EXPECT_EQ(table.View(), nullptr);
}

TEST(SharedDeviceTable, IsTheMappingOtherProcessesOpenByName) {
  CAudioDeviceTable table;
  table.OpenTable();
  ASSERT_NE(table.View(), nullptr);
  table.AddDevice(Device(L"SharedDeviceTable device", L"V", L"P"));

  const Cmm::UniqueHandle mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, L"VELM_SDK_AUDIO_DEV"));
  ASSERT_TRUE(mapping);
  const auto* bytes =
      static_cast<const unsigned char*>(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 12004));
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(std::memcmp(bytes, table.View(), 12004), 0);
  UnmapViewOfFile(bytes);
  table.RemoveDevice(L"SharedDeviceTable device");
}

TEST(SharedDeviceTable, OpeningAnExistingTableKeepsItsContents) {
  CAudioDeviceTable first;
  first.OpenTable();
  first.AddDevice(Device(L"kept"));
  CAudioDeviceTable second;
  second.OpenTable();
  ASSERT_NE(second.View(), nullptr);
  EXPECT_EQ(std::memcmp(first.View(), second.View(), sizeof(DeviceTableLayout)), 0);
  second.RemoveDevice(L"kept");
}

}  // namespace
}  // namespace Velm3rdSDK
