// Notifications from the text to the records of the callbacks.

#include <optional>

#include "tests/sdk/ChannelFixture.h"

namespace Velm3rdSDK {
namespace {

// What the callbacks received, copied: the library reuses its records.
struct Received {
  std::vector<std::string> order;  // "raw", "general", "family <name>"
  std::optional<SdkNotifyInfo> notify;
  std::wstring rawJson;      // of the general callback
  std::wstring rawSinkJson;  // of the raw sink
  bool emptyGeneral = false;
  bool emptyRaw = false;
  std::optional<SdkAudioInfo> audio;
  std::optional<SdkPresenceInfo> presence;
  std::optional<SdkStatusInfo> screenShare, confChat, camera;
  std::optional<SdkConfAudioInfo> confAudio;
  std::optional<SdkConfEventInfo> confEvent;
  std::optional<SdkPTEventInfo> ptEvent;
  std::optional<SdkConfDeviceInfo> confDevice;
  std::optional<SdkUIControlInfo> uiControl;
  std::vector<const void*> records;  // addresses of the family records
};
Received g_received;

template <auto kSlot, typename Record>
void Take(const Record* record) {
  g_received.*kSlot = *record;
  g_received.order.push_back("family");
  g_received.records.push_back(record);
}

struct RawSink : ISdkRawSink {
  virtual ~RawSink() = default;
  void OnRawMessage(const wchar_t* rawJson) override {
    g_received.order.push_back("raw");
    if (rawJson)
      g_received.rawSinkJson = rawJson;
    else
      g_received.emptyRaw = true;
  }
};

void OnGeneral(const SdkNotifyInfo* info, const wchar_t* rawJson) {
  g_received.order.push_back("general");
  if (!info && !rawJson) {
    g_received.emptyGeneral = true;
    return;
  }
  g_received.notify = *info;
  g_received.rawJson = rawJson;
}

class DispatchTest : public ChannelTest {
 protected:
  using Order = std::vector<std::string>;

  DispatchTest() {
    g_received = Received();
    Fields().Features() = 0x3ff;
  }
  ~DispatchTest() override { channel->SetRawSink(nullptr); }

  void SetAll() {
    channel->SetRawSink(&m_rawSink);
    channel->Callbacks().general = OnGeneral;
    SetFamilies();
  }
  void SetFamilies() {
    SdkCallbacks& callbacks = channel->Callbacks();
    callbacks.audio = Take<&Received::audio, SdkAudioInfo>;
    callbacks.presence = Take<&Received::presence, SdkPresenceInfo>;
    callbacks.screenShare = Take<&Received::screenShare, SdkStatusInfo>;
    callbacks.confChat = Take<&Received::confChat, SdkStatusInfo>;
    callbacks.camera = Take<&Received::camera, SdkStatusInfo>;
    callbacks.confAudio = Take<&Received::confAudio, SdkConfAudioInfo>;
    callbacks.confEvent = Take<&Received::confEvent, SdkConfEventInfo>;
    callbacks.ptEvent = Take<&Received::ptEvent, SdkPTEventInfo>;
    callbacks.confDevice = Take<&Received::confDevice, SdkConfDeviceInfo>;
    callbacks.uiControl = Take<&Received::uiControl, SdkUIControlInfo>;
  }
  int Handle(const std::string& json) { return channel->HandleVelmClientMsgNotify(json.c_str()); }

  RawSink m_rawSink;
};

// ---- What is dropped

TEST_F(DispatchTest, NullIsDropped) {
  EXPECT_EQ(channel->HandleVelmClientMsgNotify(nullptr), 0);
}

TEST_F(DispatchTest, GarbageIsDroppedAndCallsNobody) {
  SetAll();
  for (const char* text :
       {"", "{", "nonsense", "[]", "{}", R"({"commandId":"2"})", R"({"commandId":0})", R"({"commandId":11})"})
    EXPECT_EQ(Handle(text), 0) << text;
  EXPECT_TRUE(g_received.order.empty());
}

TEST_F(DispatchTest, ClearFeatureBitKeepsTheNotificationFromRawSinkAndCallbacks) {
  SetAll();
  for (int id = 1; id <= 10; ++id) {
    Fields().Features() = 0x3ff & ~(1 << (id - 1));
    EXPECT_EQ(Handle("{\"commandId\":" + std::to_string(id) + "}"), 0);
  }
  EXPECT_TRUE(g_received.order.empty());
}

TEST_F(DispatchTest, BeforeRegistrationNothingIsDelivered) {
  SetAll();
  Fields().Features() = 0;
  EXPECT_EQ(Handle(R"({"commandId":5})"), 0);
  EXPECT_TRUE(g_received.order.empty());
}

TEST_F(DispatchTest, EachFeatureBitAdmitsItsFamilyAlone) {
  SetAll();
  for (int bit = 0; bit < 10; ++bit)
    for (int id = 1; id <= 10; ++id) {
      Fields().Features() = 1 << bit;
      EXPECT_EQ(Handle("{\"commandId\":" + std::to_string(id) + "}"), id == bit + 1 ? 1 : 0);
    }
}

TEST_F(DispatchTest, WithoutAnyCallbackItRunsToItsEnd) {
  EXPECT_EQ(Handle(R"({"commandId":5})"), 1);
}

// ---- Order

TEST_F(DispatchTest, RawSinkComesFirstThenGeneralThenFamily) {
  SetAll();
  for (int id = 1; id <= 10; ++id) {
    g_received.order.clear();
    EXPECT_EQ(Handle("{\"commandId\":" + std::to_string(id) + "}"), 1);
    EXPECT_EQ(g_received.order, (Order{"raw", "general", "family"})) << id;
  }
}

TEST_F(DispatchTest, RawTextIsTheWholeMessageInUtf16) {
  SetAll();
  Handle("{\"commandId\":5,\"x\":\"\xC3\xA9\xF0\x9F\x98\x80\"} ");
  EXPECT_EQ(g_received.rawJson, L"{\"commandId\":5,\"x\":\"\u00E9\xD83D\xDE00\"} ");
  EXPECT_EQ(g_received.rawSinkJson, g_received.rawJson);
}

TEST_F(DispatchTest, MegabyteOfRawTextArrivesWhole) {
  SetAll();
  const std::string padding(1 << 20, 'x');
  EXPECT_EQ(Handle("{\"commandId\":5,\"padding\":\"" + padding + "\"}"), 1);
  EXPECT_EQ(g_received.rawJson.size(),
            padding.size() + std::string("{\"commandId\":5,\"padding\":\"\"}").size());
}

TEST_F(DispatchTest, EmptyNotificationCallsRawSinkAndGeneralWithNullsAndNoFeatureTest) {
  SetAll();
  Fields().Features() = 0;
  channel->HandleEmptyNotification();
  EXPECT_EQ(g_received.order, (Order{"raw", "general"}));
  EXPECT_TRUE(g_received.emptyRaw);
  EXPECT_TRUE(g_received.emptyGeneral);
}

// ---- Records

TEST_F(DispatchTest, GeneralRecordHasEverything) {
  SetAll();
  EXPECT_EQ(Handle(R"({"commandId":6,"from":3,"data":[{"ConfAudioStatus":4,"IsInComputerAudio":1}],)"
                   R"("deviceName":"D","deviceGUID":"G","meetingId":"M","activeMeetingsCount":2,)"
                   R"("result":"0:fine"})"),
            1);
  const SdkNotifyInfo& info = g_received.notify.value();
  EXPECT_TRUE(info.success);
  EXPECT_EQ(info.code, 0);
  EXPECT_EQ(info.from, 3);
  EXPECT_EQ(info.value, 4);
  EXPECT_EQ(info.reserved, 0);
  EXPECT_EQ(info.commandId, 6);
  EXPECT_STREQ(info.deviceName, L"D");
  EXPECT_STREQ(info.deviceGUID, L"G");
  EXPECT_STREQ(info.resultInfo, L"fine");
  EXPECT_STREQ(info.meetingId, L"M");
  EXPECT_TRUE(info.isInComputerAudio);
  EXPECT_EQ(info.activeMeetingsCount, 2);
  EXPECT_EQ(info.subType, 0);
}

TEST_F(DispatchTest, GeneralRecordIsResetByTheNextNotification) {
  SetAll();
  Handle(R"({"commandId":6,"from":3,"data":[{"ConfAudioStatus":4,"IsInComputerAudio":1}],"deviceName":"D",)"
         R"("deviceGUID":"G","meetingId":"M","activeMeetingsCount":2,"result":"0:fine"})");
  Handle(R"({"commandId":9})");
  const SdkNotifyInfo& info = g_received.notify.value();
  EXPECT_FALSE(info.success);
  EXPECT_EQ(info.code, -1);
  EXPECT_EQ(info.from, 0);
  EXPECT_EQ(info.value, 0);
  EXPECT_EQ(info.commandId, 9);
  EXPECT_STREQ(info.deviceName, L"");
  EXPECT_STREQ(info.deviceGUID, L"");
  EXPECT_STREQ(info.resultInfo, L"");
  EXPECT_STREQ(info.meetingId, L"");
  EXPECT_FALSE(info.isInComputerAudio);
  EXPECT_EQ(info.activeMeetingsCount, 0);
}

TEST_F(DispatchTest, WithoutDataTheCallbackStillFiresWithValue0) {
  SetAll();
  EXPECT_EQ(Handle(R"({"commandId":5})"), 1);
  EXPECT_EQ(g_received.camera.value().status, 0);
  EXPECT_EQ(g_received.camera.value().code, -1);
  EXPECT_FALSE(g_received.camera.value().success);
}

TEST_F(DispatchTest, Presence) {
  SetAll();
  Handle(
      R"({"commandId":1,"data":[{"PresenceStatus":1,"PresenceStatusV2":2,"extraReason":3}],"result":"7:r"})");
  const SdkPresenceInfo& info = g_received.presence.value();
  EXPECT_FALSE(info.success);
  EXPECT_EQ(info.code, 7);
  EXPECT_EQ(info.status, 1);
  EXPECT_EQ(info.statusV2, 2);
  EXPECT_STREQ(info.resultInfo, L"r");
  EXPECT_EQ(info.extraReason, 3);
}

TEST_F(DispatchTest, Audio) {
  SetAll();
  Handle(R"({"commandId":2,"data":[{"AudioCmd":5}],"deviceName":"D","deviceGUID":"G","result":"0:r"})");
  const SdkAudioInfo& info = g_received.audio.value();
  EXPECT_TRUE(info.success);
  EXPECT_EQ(info.code, 0);
  EXPECT_EQ(info.audioCmd, 5);
  EXPECT_STREQ(info.deviceName, L"D");
  EXPECT_STREQ(info.deviceGUID, L"G");
  EXPECT_STREQ(info.resultInfo, L"r");
}

TEST_F(DispatchTest, StatusFamiliesHaveThreeSeparateRecordsOfOneShape) {
  SetAll();
  Handle(R"({"commandId":3,"data":[{"ScreenShareStatus":31}],"result":"0:s"})");
  Handle(R"({"commandId":4,"data":[{"ConfChatStatus":41}],"result":"4:c"})");
  Handle(R"({"commandId":5,"data":[{"CameraStatus":51}]})");
  EXPECT_EQ(g_received.screenShare.value().status, 31);
  EXPECT_STREQ(g_received.screenShare.value().resultInfo, L"s");
  EXPECT_EQ(g_received.confChat.value().status, 41);
  EXPECT_EQ(g_received.confChat.value().code, 4);
  EXPECT_EQ(g_received.camera.value().status, 51);
  ASSERT_EQ(g_received.records.size(), 3U);
  EXPECT_NE(g_received.records[0], g_received.records[1]);
  EXPECT_NE(g_received.records[1], g_received.records[2]);
}

TEST_F(DispatchTest, ConfAudio) {
  SetAll();
  Handle(R"({"commandId":6,"data":[{"ConfAudioStatus":4,"IsInComputerAudio":2}],"result":"0:r"})");
  EXPECT_EQ(g_received.confAudio.value().status, 4);
  EXPECT_TRUE(g_received.confAudio.value().isInComputerAudio);
  EXPECT_STREQ(g_received.confAudio.value().resultInfo, L"r");
  Handle(R"({"commandId":6,"data":[{"ConfAudioStatus":4}]})");
  EXPECT_FALSE(g_received.confAudio.value().isInComputerAudio);
}

TEST_F(DispatchTest, ConfEvent) {
  SetAll();
  Handle(R"({"commandId":7,"data":[{"ConfEvent":9}],"result":"0:r","meetingId":"M",)"
         R"("activeMeetingsCount":2,"meetingType":3})");
  const SdkConfEventInfo& info = g_received.confEvent.value();
  EXPECT_EQ(info.event, 9);
  EXPECT_STREQ(info.resultInfo, L"r");
  EXPECT_STREQ(info.meetingId, L"M");
  EXPECT_EQ(info.activeMeetingsCount, 2);
  EXPECT_EQ(info.meetingType, 3);
}

TEST_F(DispatchTest, PTEventHoldsTheSuccessFlagInItsCode) {
  SetAll();
  Handle(R"({"commandId":8,"data":[{"PTEvent":6}],"result":"0:r"})");
  EXPECT_TRUE(g_received.ptEvent.value().success);
  EXPECT_EQ(g_received.ptEvent.value().code, 1);
  EXPECT_EQ(g_received.ptEvent.value().event, 6);
  EXPECT_STREQ(g_received.ptEvent.value().resultInfo, L"r");
  Handle(R"({"commandId":8,"result":"12:r"})");
  EXPECT_FALSE(g_received.ptEvent.value().success);
  EXPECT_EQ(g_received.ptEvent.value().code, 0);
  EXPECT_EQ(g_received.notify.value().code, 12);
}

TEST_F(DispatchTest, ConfDeviceHasStatusBeforeType) {
  SetAll();
  Handle(R"({"commandId":9,"data":[{"ConfDeviceStatus":7,"ConfDeviceType":8}],"meetingId":"M"})");
  EXPECT_EQ(g_received.confDevice.value().status, 7);
  EXPECT_EQ(g_received.confDevice.value().deviceType, 8);
  EXPECT_STREQ(g_received.confDevice.value().meetingId, L"M");
  EXPECT_EQ(g_received.notify.value().subType, 8);
}

TEST_F(DispatchTest, UIControlHasTypeBeforeStatus) {
  SetAll();
  Handle(R"({"commandId":10,"data":[{"UIControlStatus":7,"UIControlType":8}]})");
  const SdkUIControlInfo& info = g_received.uiControl.value();
  EXPECT_EQ(info.controlType, 8);
  EXPECT_EQ(info.status, 7);
  EXPECT_LT(static_cast<const void*>(&info.controlType), static_cast<const void*>(&info.status));
  EXPECT_EQ(g_received.notify.value().subType, 8);
}

TEST_F(DispatchTest, LongestResultLeavesTheNeighboursOfItsFieldIntact) {
  SetAll();
  const std::string longest = "\"result\":\":" + std::string(510, 'x') + "\"";
  Handle("{\"commandId\":7," + longest + R"(,"meetingId":"M","activeMeetingsCount":2,"meetingType":3})");
  const std::wstring cut(199, L'x');
  EXPECT_EQ(g_received.notify.value().resultInfo, cut);
  EXPECT_STREQ(g_received.notify.value().meetingId, L"M");
  EXPECT_EQ(g_received.confEvent.value().resultInfo, cut);
  EXPECT_STREQ(g_received.confEvent.value().meetingId, L"M");
  EXPECT_EQ(g_received.confEvent.value().activeMeetingsCount, 2);

  Handle("{\"commandId\":1,\"data\":[{\"extraReason\":3}]," + longest + "}");
  EXPECT_EQ(g_received.presence.value().resultInfo, cut);
  EXPECT_EQ(g_received.presence.value().extraReason, 3);
}

TEST_F(DispatchTest, ResultOf512BytesIsLoggedAndCountsAsAbsent) {
  SetAll();
  LogCapture log;
  EXPECT_EQ(Handle("{\"commandId\":5,\"result\":\"0:" + std::string(510, 'x') + "\"}"), 1);
  EXPECT_EQ(g_received.camera.value().code, -1);
  EXPECT_TRUE(
      log.Has(L"[CSdkMsgChannel::HandleVelmClientMsgNotify] strcpy_s resultRawInfo failed, nErrRet:34"));
}

TEST_F(DispatchTest, EveryMessageIsLoggedBeforeItIsParsed) {
  LogCapture log;
  Handle("nonsense");
  EXPECT_EQ(log.Texts(),
            (std::vector<std::wstring>{L"[CSdkMsgChannel::HandleVelmClientMsgNotify] pMsgA:nonsense"}));
}

// ---- The device filter

constexpr const char* kAboutAnotherDevice =
    R"({"commandId":%ID%,"data":[{"AudioCmd":5}],"deviceName":"Other"})";

std::string AboutAnotherDevice(int commandId) {
  std::string json = kAboutAnotherDevice;
  return json.replace(json.find("%ID%"), 4, std::to_string(commandId));
}

TEST_F(DispatchTest, WithAGeneralCallbackForeignDevicesStopBehindTheRawSinkInEveryFamily) {
  SetAll();
  channel->SetAudioDevice(L"Mine", nullptr, nullptr, nullptr);
  for (int id = 1; id <= 10; ++id) {
    g_received.order.clear();
    EXPECT_EQ(Handle(AboutAnotherDevice(id)), 0);
    EXPECT_EQ(g_received.order, (Order{"raw"})) << id;
  }
}

TEST_F(DispatchTest, WithoutAGeneralCallbackOnlyTheAudioFamilyIsFiltered) {
  SetFamilies();
  channel->SetAudioDevice(L"Mine", nullptr, nullptr, nullptr);
  for (int id = 1; id <= 10; ++id) {
    g_received.order.clear();
    EXPECT_EQ(Handle(AboutAnotherDevice(id)), id == 2 ? 0 : 1);
    EXPECT_EQ(g_received.order, id == 2 ? Order{} : Order{"family"}) << id;
  }
}

TEST_F(DispatchTest, OwnDeviceAndNoDevicePass) {
  SetAll();
  channel->SetAudioDevice(L"Mine", nullptr, nullptr, L"{G}");
  EXPECT_EQ(Handle(R"({"commandId":2,"deviceName":"MINE","deviceGUID":"{g}"})"), 1);
  EXPECT_EQ(Handle(R"({"commandId":2})"), 1);
}

TEST_F(DispatchTest, SelectionOfAnUnknownDevicePasses) {
  SetAll();
  channel->SetAudioDevice(L"Mine", nullptr, nullptr, nullptr);
  EXPECT_EQ(Handle(R"({"commandId":2,"data":[{"AudioCmd":102}],"deviceName":"Other"})"), 1);
  EXPECT_EQ(g_received.audio.value().audioCmd, 102);
}

TEST_F(DispatchTest, DeviceNameOfExactly100BytesCountsAsAbsentAndPasses) {
  SetAll();
  channel->SetAudioDevice(L"Mine", nullptr, nullptr, nullptr);
  EXPECT_EQ(Handle("{\"commandId\":2,\"deviceName\":\"" + std::string(99, 'd') + "\"}"), 0);
  EXPECT_EQ(Handle("{\"commandId\":2,\"deviceName\":\"" + std::string(100, 'd') + "\"}"), 1);
  EXPECT_STREQ(g_received.audio.value().deviceName, L"");
}

// ---- The sink operations

TEST_F(DispatchTest, IpcNotificationReachesTheCallbacksFromBothClients) {
  SetAll();
  IAudioSDKIPCClientSink& audio = *channel;
  IClient3rdSDKIPCClientSink& service = *channel;
  audio.OnAudioCmdNotify(7, L"{\"commandId\":2,\"deviceName\":\"\u00E9\"}");
  EXPECT_STREQ(g_received.audio.value().deviceName, L"\u00E9");
  service.OnClient3rdSDKServerCmdNotify(7, L"{\"commandId\":5,\"data\":[{\"CameraStatus\":1}]}");
  EXPECT_EQ(g_received.camera.value().status, 1);
}

TEST_F(DispatchTest, IpcDoorsIgnoreAnEmptyTextAndOnlyTheServiceDoorLogs) {
  SetAll();
  LogCapture log;
  channel->OnAudioCmdNotify(7, L"");
  EXPECT_TRUE(log.Lines().empty());
  channel->OnClient3rdSDKServerCmdNotify(7, L"");
  EXPECT_EQ(log.Texts(),
            (std::vector<std::wstring>{
                L"[CSdkMsgChannel::OnClient3rdSDKServerCmdNotify] uChannelID:7, strAudioCmdNotify:"}));
  EXPECT_TRUE(g_received.order.empty());
}

TEST_F(DispatchTest, OtherSinkOperationsOnlyLogTheirChannelId) {
  LogCapture log;
  channel->OnServerConnected(1);
  channel->OnServerDisconnected(2);
  channel->OnClientExitConfirmed(3, 1);
  channel->OnClient3rdSDKServerConnected(4);
  channel->OnClient3rdSDKServerDisconnected(5);
  channel->OnClient3rdSDKClientExitConfirmed(6, 0);
  EXPECT_EQ(log.Texts(),
            (std::vector<std::wstring>{L"[CSdkMsgChannel::OnServerConnected] uChannelID:1",
                                       L"[CSdkMsgChannel::OnServerDisconnected] uChannelID:2",
                                       L"[CSdkMsgChannel::OnClientExitConfirmed] uChannelID:3",
                                       L"[CSdkMsgChannel::OnClient3rdSDKServerConnected] uChannelID:4",
                                       L"[CSdkMsgChannel::OnClient3rdSDKServerDisconnected] uChannelID:5",
                                       L"[CSdkMsgChannel::OnClient3rdSDKClientExitConfirmed] uChannelID:6"}));
}

}  // namespace
}  // namespace Velm3rdSDK
