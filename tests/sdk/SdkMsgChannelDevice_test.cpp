#include "tests/sdk/ChannelFixture.h"

namespace Velm3rdSDK {
namespace {

constexpr int kAnyCommand = 5;

class DeviceTest : public ChannelTest {
 protected:
  int Filter(const wchar_t* name, const wchar_t* guid, int value = kAnyCommand) {
    return channel->IsNeedFilterDevice(name, guid, value);
  }
};

// With the shared table. Other processes' records may stand in it, so records are looked up by name.
class SharedDeviceTest : public DeviceTest {
 protected:
  SharedDeviceTest() { channel->Init(); }

  const DeviceRecord* Find(const std::wstring& name) {
    const DeviceTableLayout* table = Fields().Table().View();
    if (!table) return nullptr;
    for (uint32_t i = 0; i < table->count && i < DeviceTableLayout::kMaxDevices; ++i)
      if (name == table->records[i].name) return &table->records[i];
    return nullptr;
  }
};

// ---- SetAudioDevice

TEST_F(DeviceTest, SelectingStoresTheIdentityAndReturns1WithoutATable) {
  EXPECT_EQ(channel->SetAudioDevice(L"Headset", L"0A12", L"1004", L"{G}"), 1U);
  EXPECT_STREQ(Fields().Device().name, L"Headset");
  EXPECT_STREQ(Fields().Device().usbVid, L"0A12");
  EXPECT_STREQ(Fields().Device().usbPid, L"1004");
  EXPECT_STREQ(Fields().Device().guid, L"{G}");
}

TEST_F(DeviceTest, SelectingLogsTheTextsThatAreThere) {
  LogCapture log;
  channel->SetAudioDevice(L"N", L"V", L"P", L"G");
  EXPECT_EQ(log.Texts(), (std::vector<std::wstring>{L"[CSdkMsgChannel::SetAudioDevice] deviceName:N",
                                                    L"[CSdkMsgChannel::SetAudioDevice] usb_vid:V",
                                                    L"[CSdkMsgChannel::SetAudioDevice] usb_pid:P",
                                                    L"[CSdkMsgChannel::SetAudioDevice] deviceGUID:G"}));
  log.Clear();
  channel->SetAudioDevice(nullptr, nullptr, nullptr, nullptr);
  EXPECT_TRUE(log.Lines().empty());
}

TEST_F(DeviceTest, NullClearsItsArrayAndLeavesTheLists) {
  channel->SetAudioDevice(L"Headset", L"0A12", L"1004", L"{G}");
  EXPECT_EQ(channel->SetAudioDevice(nullptr, nullptr, nullptr, nullptr), 1U);
  EXPECT_STREQ(Fields().Device().name, L"");
  EXPECT_STREQ(Fields().Device().usbVid, L"");
  EXPECT_STREQ(Fields().Device().usbPid, L"");
  EXPECT_STREQ(Fields().Device().guid, L"");
  EXPECT_EQ(Fields().DeviceNames(), 1U);
  EXPECT_EQ(Fields().DeviceGUIDs(), 1U);
  EXPECT_EQ(Filter(L"Headset", L"{G}"), 0);
  EXPECT_EQ(Filter(L"Other", nullptr), 1);
}

TEST_F(DeviceTest, SameNameAgainIsOneEntryWithoutRegardToCase) {
  channel->SetAudioDevice(L"Headset", nullptr, nullptr, L"{abc}");
  channel->SetAudioDevice(L"HEADSET", nullptr, nullptr, L"{ABC}");
  channel->SetAudioDevice(L"Speaker", nullptr, nullptr, L"{DEF}");
  EXPECT_EQ(Fields().DeviceNames(), 2U);
  EXPECT_EQ(Fields().DeviceGUIDs(), 2U);
}

TEST_F(DeviceTest, EmptyNameIsNotListed) {
  channel->SetAudioDevice(L"", nullptr, nullptr, L"");
  EXPECT_EQ(Fields().DeviceNames(), 0U);
  EXPECT_EQ(Fields().DeviceGUIDs(), 0U);
}

TEST_F(DeviceTest, TextsOf99CharactersAreWholeAndLongerOnesCut) {
  const std::wstring text99(99, L'n');
  channel->SetAudioDevice(text99.c_str(), text99.c_str(), text99.c_str(), text99.c_str());
  EXPECT_EQ(Fields().Device().name, text99);
  const std::wstring text600(600, L'm');
  channel->SetAudioDevice(text600.c_str(), text600.c_str(), text600.c_str(), text600.c_str());
  EXPECT_EQ(Fields().Device().name, std::wstring(99, L'm'));
  EXPECT_EQ(Fields().Device().usbVid, std::wstring(99, L'm'));
  EXPECT_EQ(Fields().Device().usbPid, std::wstring(99, L'm'));
  EXPECT_EQ(Fields().Device().guid, std::wstring(99, L'm'));
}

TEST_F(SharedDeviceTest, SelectedDeviceStandsInTheTable) {
  channel->SetAudioDevice(L"Table headset", L"0A12", L"1004", nullptr);
  const DeviceRecord* record = Find(L"Table headset");
  ASSERT_NE(record, nullptr);
  EXPECT_STREQ(record->usbVid, L"0A12");
  EXPECT_STREQ(record->usbPidOrGuid, L"1004");
}

TEST_F(SharedDeviceTest, GuidTakesThePlaceOfTheProductIdInTheTableAndNowhereElse) {
  channel->SetAudioDevice(L"Guid headset", L"0A12", L"1004", L"{G}");
  ASSERT_NE(Find(L"Guid headset"), nullptr);
  EXPECT_STREQ(Find(L"Guid headset")->usbPidOrGuid, L"{G}");
  EXPECT_STREQ(Fields().Device().usbPid, L"1004");
  EXPECT_STREQ(Fields().Device().guid, L"{G}");
}

TEST_F(SharedDeviceTest, SameNameWithAnotherVendorIdKeepsTheOldOneInTheTable) {
  channel->SetAudioDevice(L"Twice", L"old", nullptr, nullptr);
  channel->SetAudioDevice(L"Twice", L"new", nullptr, nullptr);
  EXPECT_STREQ(Find(L"Twice")->usbVid, L"old");
  EXPECT_STREQ(Fields().Device().usbVid, L"new");
}

TEST_F(SharedDeviceTest, ExitEmptiesTheRecordsAndKeepsTheCount) {
  channel->SetAudioDevice(L"First of two", nullptr, nullptr, nullptr);
  channel->SetAudioDevice(L"Second of two", nullptr, nullptr, nullptr);
  const DeviceTableLayout* table = Fields().Table().View();
  const uint32_t count = table->count;
  Exit(*channel);
  EXPECT_EQ(table->count, count);
  EXPECT_EQ(Find(L"First of two"), nullptr);
  EXPECT_EQ(Find(L"Second of two"), nullptr);
  EXPECT_NE(Find(L""), nullptr);
}

TEST_F(SharedDeviceTest, DeviceWithALongNameLeavesTheTableAtExit) {
  channel->SetAudioDevice(std::wstring(150, L'l').c_str(), nullptr, nullptr, nullptr);
  ASSERT_NE(Find(std::wstring(99, L'l')), nullptr);
  Exit(*channel);
  EXPECT_EQ(Find(std::wstring(99, L'l')), nullptr);
}

TEST_F(SharedDeviceTest, ExitEmptiesTheNameAndItsListAndLeavesTheGuidList) {
  channel->SetAudioDevice(L"Leaving", L"V", L"P", L"{G}");
  Exit(*channel);
  EXPECT_STREQ(Fields().Device().name, L"");
  EXPECT_STREQ(Fields().Device().usbVid, L"V");
  EXPECT_EQ(Fields().DeviceNames(), 0U);
  EXPECT_EQ(Fields().DeviceGUIDs(), 1U);
}

// ---- The filter

TEST_F(DeviceTest, WithNoDeviceSelectedEverythingPasses) {
  EXPECT_EQ(Filter(L"Other", L"{X}"), 0);
  EXPECT_EQ(Filter(nullptr, nullptr), 0);
}

TEST_F(DeviceTest, SelectionCommandAlwaysPasses) {
  channel->SetAudioDevice(L"Headset", nullptr, nullptr, L"{G}");
  LogCapture log;
  EXPECT_EQ(Filter(L"Other", L"{X}", 102), 0);
  EXPECT_TRUE(log.Has(L"[CSdkMsgChannel::IsNeedFilterDevice] VelmAudio_SelectDevice"));
}

TEST_F(DeviceTest, FilterTable) {
  channel->SetAudioDevice(L"Headset", nullptr, nullptr, L"{G}");
  channel->SetAudioDevice(L"Speaker", nullptr, nullptr, L"{H}");
  const struct {
    const wchar_t* name;
    const wchar_t* guid;
    int filtered;
  } rows[] = {
      {L"Headset", L"{G}", 0}, {L"Headset", L"{H}", 0}, {L"SPEAKER", L"{h}", 0}, {L"Headset", nullptr, 0},
      {L"Headset", L"", 0},    {nullptr, L"{G}", 0},    {L"", L"{G}", 0},        {nullptr, nullptr, 0},
      {L"", L"", 0},           {L"Other", nullptr, 1},  {L"Other", L"", 1},      {nullptr, L"{X}", 1},
      {L"", L"{X}", 1},        {L"Headset", L"{X}", 1}, {L"Other", L"{G}", 1},   {L"Other", L"{X}", 1},
  };
  for (const auto& row : rows)
    EXPECT_EQ(Filter(row.name, row.guid), row.filtered)
        << testing::PrintToString(std::wstring(row.name ? row.name : L"(null)")) << ' '
        << testing::PrintToString(std::wstring(row.guid ? row.guid : L"(null)"));
}

TEST_F(DeviceTest, WithoutASelectedGuidOnlyTheNameDecides) {
  channel->SetAudioDevice(L"Headset", nullptr, nullptr, nullptr);
  EXPECT_EQ(Filter(L"Headset", L"{X}"), 0);
  EXPECT_EQ(Filter(L"Other", L"{X}"), 1);
}

TEST_F(DeviceTest, WithoutASelectedNameOnlyTheGuidDecides) {
  channel->SetAudioDevice(nullptr, nullptr, nullptr, L"{G}");
  EXPECT_EQ(Filter(L"Other", L"{G}"), 0);
  EXPECT_EQ(Filter(L"Other", L"{X}"), 1);
}

TEST_F(DeviceTest, AfterExitTheEmptiedNameListHoldsNamedNotificationsBack) {
  channel->SetAudioDevice(L"Headset", nullptr, nullptr, nullptr);
  Exit(*channel);
  EXPECT_EQ(Filter(L"Headset", nullptr), 1);
  EXPECT_EQ(Filter(nullptr, nullptr), 0);
}

}  // namespace
}  // namespace Velm3rdSDK
