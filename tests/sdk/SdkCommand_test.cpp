#include "sdk/SdkCommand.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cwchar>
#include <string>

namespace Velm3rdSDK {
namespace {

DeviceIdentity Headset() {
  DeviceIdentity device;
  std::wcscpy(device.name, L"Headset");
  std::wcscpy(device.guid, L"{G}");
  std::wcscpy(device.usbVid, L"0A12");
  std::wcscpy(device.usbPid, L"1004");
  return device;
}

std::wstring Text(const CommandText& text) {
  return text.data();
}

TEST(SdkCommand, PresenceQueryHasAnObjectAndNotAnArrayAsData) {
  EXPECT_EQ(Text(FormatPresenceQuery(Headset())),
            LR"({"commandId":1,"from":1,"version":"1.0.0","data":{},"deviceName":"Headset"})");
}

TEST(SdkCommand, AudioCommandCarriesTheWholeIdentityInTextOrder) {
  EXPECT_EQ(Text(FormatAudioCommand(5, Headset())),
            LR"({"commandId":2,"from":1,"version":"1.0.0","data":[{"AudioCmd":5}],"deviceName":"Headset",)"
            LR"("usbVid":"0A12","usbPid":"1004","deviceGUID":"{G}"})");
}

TEST(SdkCommand, HotSwitchFormIsAudioCommand99WithTheValueLast) {
  EXPECT_EQ(Text(FormatHotSwitchCommand(7, Headset())),
            LR"({"commandId":2,"from":1,"version":"1.0.0","data":[{"AudioCmd":99}],"deviceName":"Headset",)"
            LR"("usbVid":"0A12","usbPid":"1004","deviceGUID":"{G}","HotSwitch":7})");
}

TEST(SdkCommand, HotSwitchValueIsFormattedAsASignedNumber) {
  EXPECT_NE(Text(FormatHotSwitchCommand(0xFFFFFFFF, Headset())).find(LR"("HotSwitch":-1})"),
            std::wstring::npos);
}

TEST(SdkCommand, ValueCommandsMatchTheirTexts) {
  struct Row {
    CommandId id;
    const wchar_t* text;
  };
  const Row rows[] = {
      {kCommandScreenShare,
       LR"({"commandId":3,"from":1,"version":"1.0.0","data":[{"ScreenShareCmd":1}],"deviceName":"Headset"})"},
      {kCommandConfChat,
       LR"({"commandId":4,"from":1,"version":"1.0.0","data":[{"ChatCmd":1}],"deviceName":"Headset"})"},
      {kCommandCamera,
       LR"({"commandId":5,"from":1,"version":"1.0.0","data":[{"CameraCmd":1}],"deviceName":"Headset"})"},
      {kCommandConfAudio,
       LR"({"commandId":6,"from":1,"version":"1.0.0","data":[{"ConfAudioCmd":1}],"deviceName":"Headset"})"},
      {kCommandConfEvent,
       LR"({"commandId":7,"from":1,"version":"1.0.0","data":[{"ConfEventCmd":1}],"deviceName":"Headset"})"},
      {kCommandConfDevice,
       LR"({"commandId":9,"from":1,"version":"1.0.0","data":[{"ConfDeviceCmd":1}],"deviceName":"Headset"})"},
      {kCommandUIControl,
       LR"({"commandId":10,"from":1,"version":"1.0.0","data":[{"UIControlStatusCmd":1}],"deviceName":"Headset"})"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(Text(FormatValueCommand(row.id, 1, Headset())), row.text);
}

TEST(SdkCommand, ValuesReachTheirWholeSignedRange) {
  const std::wstring prefix = LR"({"commandId":5,"from":1,"version":"1.0.0","data":[{"CameraCmd":)";
  EXPECT_EQ(Text(FormatValueCommand(kCommandCamera, INT_MIN, {})),
            prefix + LR"(-2147483648}],"deviceName":""})");
  EXPECT_EQ(Text(FormatValueCommand(kCommandCamera, INT_MAX, {})),
            prefix + LR"(2147483647}],"deviceName":""})");
}

TEST(SdkCommand, DeviceSelectedNamesTheDeviceInsideItsData) {
  EXPECT_EQ(Text(FormatDeviceSelected(Headset())),
            LR"({"commandId":11,"from":1,"version":"1.0.0","data":[{"DeviceName":"Headset"}]})");
}

TEST(SdkCommand, TextsAreEmptyUntilADeviceIsSelected) {
  EXPECT_EQ(Text(FormatAudioCommand(0, {})),
            LR"({"commandId":2,"from":1,"version":"1.0.0","data":[{"AudioCmd":0}],"deviceName":"",)"
            LR"("usbVid":"","usbPid":"","deviceGUID":""})");
}

TEST(SdkCommand, QuotationMarkInADeviceNameIsNotEscaped) {
  DeviceIdentity device;
  std::wcscpy(device.name, LR"(The "Good" One\)");
  EXPECT_EQ(Text(FormatDeviceSelected(device)),
            LR"({"commandId":11,"from":1,"version":"1.0.0","data":[{"DeviceName":"The "Good" One\"}]})");
}

// An audio command whose four texts have `total` characters together.
CommandText AudioCommandWithDeviceTexts(size_t total) {
  DeviceIdentity device;
  wchar_t* const texts[] = {device.name, device.guid, device.usbVid, device.usbPid};
  for (wchar_t* text : texts) {
    const size_t length = std::min(total, kDeviceTextChars - 1);
    std::fill_n(text, length, L'x');
    total -= length;
  }
  return FormatAudioCommand(5, device);
}

TEST(SdkCommand, TextOf511CharactersIsWholeAndOf512IsCut) {
  const size_t fixed = std::wcslen(AudioCommandWithDeviceTexts(0).data());
  const CommandText whole = AudioCommandWithDeviceTexts(511 - fixed);
  EXPECT_EQ(std::wcslen(whole.data()), 511U);
  EXPECT_EQ(whole[510], L'}');
  const CommandText cut = AudioCommandWithDeviceTexts(512 - fixed);
  EXPECT_EQ(std::wcslen(cut.data()), 511U);
  EXPECT_EQ(cut[510], L'"');  // the brace is lost, and the text is no valid JSON
}

TEST(SdkCommand, LongestIdentityIsCutInsideTheBuffer) {
  const CommandText text = AudioCommandWithDeviceTexts(4 * 99);
  EXPECT_EQ(std::wcslen(text.data()), 511U);
  EXPECT_EQ(text[511], L'\0');
}

TEST(SdkCommand, BufferIsZeroBehindTheText) {
  const CommandText text = FormatPresenceQuery({});
  EXPECT_TRUE(std::all_of(text.begin() + static_cast<ptrdiff_t>(std::wcslen(text.data())), text.end(),
                          [](wchar_t unit) { return unit == L'\0'; }));
}

}  // namespace
}  // namespace Velm3rdSDK
