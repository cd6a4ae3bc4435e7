// What looks like a mistake in the catalogue, or depends on what a process did before.

#include <map>
#include <set>

#include "archive/ArchiveService.h"
#include "archive/catalogue/ConferenceFeatureMessages.h"
#include "archive/catalogue/ConferenceMessages.h"
#include "archive/catalogue/DesktopIntegrationMessages.h"
#include "archive/catalogue/SdkChannelMessages.h"
#include "archive/catalogue/catalogue.h"
#include "tests/catalogue/GoldenMessages.h"
#include "tests/catalogue/MessageTesting.h"

namespace {

using namespace catalogue_testing;
using namespace Cmm::Archive;
using testing::ElementsAre;

// ---- Ids and wire names that are used twice -----------------------------------------------------------

TEST(MessageIds, FourAreUsedTwiceAndNoneThreeTimes) {
  std::map<int, int> uses;
  for (const MessageClass& messageClass : MessageClasses())
    ++uses[messageClass.id];
  std::erase_if(uses, [](const auto& use) { return use.second == 1; });
  EXPECT_THAT(
      uses, ElementsAre(std::pair(10197, 2), std::pair(10210, 2), std::pair(40145, 2), std::pair(40362, 2)));
}

TEST(MessageIds, OneWireNameIsUsedTwice) {
  std::map<std::string, int> uses;
  for (const MessageClass& messageClass : MessageClasses())
    ++uses[messageClass.wireName];
  std::erase_if(uses, [](const auto& use) { return use.second == 1; });
  EXPECT_THAT(uses, ElementsAre(std::pair("com.velm.app.assistant.sip.merge.call.response", 2)));
}

// Both of a pair are built with one type, and each reads its own text and not the other's.
template <typename First, typename Second>
void ExpectOneIdAndTwoWireNames(int id) {
  First first;
  Second second;
  const MessagePtr firstBuilt(first.BuildMsg(-1));
  const MessagePtr secondBuilt(second.BuildMsg(-1));
  ASSERT_TRUE(firstBuilt && secondBuilt);
  EXPECT_EQ(firstBuilt->GetMsgType(), id);
  EXPECT_EQ(secondBuilt->GetMsgType(), id);
  EXPECT_EQ(first.ParseMsg(firstBuilt.get()), 1);
  EXPECT_EQ(first.ParseMsg(secondBuilt.get()), 0);
  EXPECT_EQ(second.ParseMsg(secondBuilt.get()), 1);
  EXPECT_EQ(second.ParseMsg(firstBuilt.get()), 0);
}

TEST(MessageIds, 10197IsOfAudioSharingRegistrationAndOfDocsShareToo) {
  ExpectOneIdAndTwoWireNames<CQXMBMessage_ConfInterProcessAudioSharingServiceRegisterRequest,
                             CQXMBMessage_NotifyStartDocsShare>(10197);
}

TEST(MessageIds, 10210IsOfAvatarDataAndOfRunningLateToo) {
  ExpectOneIdAndTwoWireNames<CQXMBMessage_AvatarDataRequest, CQXMBMessage_NotifyRunningLate>(10210);
}

TEST(MessageIds, 40362IsOfTheOutlookMeetingRequestAndOfItsResponseToo) {
  ExpectOneIdAndTwoWireNames<CQXMBMessage_OutlookStartMeetingRequest,
                             CQXMBMessage_OutlookStartMeetingResponse>(40362);
}

// ---- Names --------------------------------------------------------------------------------------------

std::string WireName(const char* className) {
  const MessageClass* found = FindMessageClass(className);
  return found ? found->wireName : "(no such class)";
}

TEST(MessageNames, TheInviteeRequestsForCredAndIakHaveEachOthersWireNames) {
  EXPECT_EQ(WireName("CQXMBMessage_InviteeIakRequest"), "com.Velm.app.conf.invitee.cred.request");
  EXPECT_EQ(WireName("CQXMBMessage_InviteeCredRequest"), "com.Velm.app.conf.invitee.iak.request");
  EXPECT_EQ(WireName("CQXMBMessage_InviteeCredResponse"), "com.Velm.app.conf.invitee.cred.response");
  EXPECT_EQ(WireName("CQXMBMessage_InviteeIakResponse"), "com.Velm.app.conf.invitee.iak.response");
}

TEST(MessageNames, SomeWireNamesDoNotSayWhatTheClassSays) {
  EXPECT_EQ(WireName("CQXMBMessage_Assistant_SIP_Virtual_Microphone_Destroy_Request"),
            "com.velm.app.assistant.sip.virtual.audio.device.destroy.response");
  EXPECT_EQ(WireName("CQXMBMessage_Assistant_SIP_Virtual_Speaker_Destroy_Request"),
            "com.velm.app.assistant.sip.virtual.audio.speaker.destroy.response");
  EXPECT_EQ(WireName("CQXMBMessage_Assistant_SIP_OnCallTransferResultNotification"),
            "com.velm.app.assistant.sip.OnTransferResult.request");
  EXPECT_EQ(WireName("CQXMBMessage_CCIVideoEmbedWindowSendMsgRequest"),
            "com.velm.app.cci.ccivideo.embedwindowsendmsg.notify");
  EXPECT_EQ(WireName("CQXMBMessage_CCIVideoOnEmbedWindowSendMsgRequest"),
            "com.velm.app.cci.ccivideo.onembedwindowsendmsg.notify");
}

TEST(MessageNames, MisspeltWireNamesStay) {
  EXPECT_EQ(WireName("QXIPCMessage_Connect"), "com.Tessarn.ipc.internel.connect_req");
  EXPECT_EQ(WireName("QXIPCMessage_DisConnect"), "com.Tessarn.ipc.internel.disconnect");
  EXPECT_EQ(WireName("QXIPCMessage_ConnectResponse"), "com.Tessarn.ipc.internel.connect_rep");
  EXPECT_EQ(WireName("CQXMBMessage_MyMeetingStatus"), "com.Velm.app.notify.pt.conf.my.statuus");
  EXPECT_EQ(WireName("CQXMBMessage_InviteVelmPhoneTokenRequest"),
            "com.Velm.app.conf.inviete.velm.phone.token.request");
  EXPECT_EQ(WireName("CQXMBMessage_PMCMeetChatMsgReaded"), "com.Velm.app.conf.pmc.meet.chat.msg.readed.req");
  EXPECT_EQ(WireName("CQXMBMessage_Assistant_SIP_ReceiveRealtimePolicesNotification"),
            "com.velm.app.assistant.sip.receive.realtime.policies.notication");
  EXPECT_EQ(WireName("CQXMBMessage_Assistant_SIP_AutoRecordingEvent"),
            "com.velm.app.assistant.sip.auto.recording.event.notication");
  EXPECT_EQ(WireName("CQXMBMessage_Assistant_SIP_RemoteMergerEvent"),
            "com.velm.app.assistant.sip.remote.merger.event.notication");
  EXPECT_EQ(WireName("CQXMBMessage_Assistant_DAL_Service_Identify_Device_Request"),
            "com.velm.app.assistant.virtualaudio.message.indentify.device.request");
  EXPECT_EQ(WireName("CQXMBMessage_Assistant_DAL_Service_Identify_Device_Response"),
            "com.velm.app.assistant.virtualaudio.message.indentify.device.response");
}

TEST(MessageNames, MisspeltClassesStay) {
  EXPECT_EQ(WireName("CQXMBMessage_Assisant_Keybase"), "com.velm.app.assistant.keybase.message");
  EXPECT_EQ(WireName("CQXMBMessage_CCIVideoSetEndButtonDropdowRequest"),
            "com.velm.app.cci.ccivideo.setendbuttondropdown.request");
}

TEST(MessageNames, MisspeltFieldsStay) {
  CQXMBMessage_NotifyPTLoginInfo login;
  login.Set_workflowUrlRegualr(L"w");
  EXPECT_EQ(login.Get_workflowUrlRegualr(), L"w");
  CQXMBMessage_ConfirmConfLeave leave;
  leave.Set_LiveSteamViewUrl(L"l");
  EXPECT_EQ(leave.Get_LiveSteamViewUrl(), L"l");
  CQXMBMessage_LeaveBeforeMeetingStartNotify left;
  left.Set_panalistKey("p");
  EXPECT_EQ(left.Get_panalistKey(), "p");
  CQXMBMessage_AppSupportNewWhiteBoardSetting whiteBoard;
  whiteBoard.Set_bSuppport(1);
  EXPECT_EQ(whiteBoard.Get_bSuppport(), 1);
  CQXMBMessage_ConfInterProcessAudioSharingServiceRegisterResponse sharing;
  sharing.Set_smapleRate(48000);
  EXPECT_EQ(sharing.Get_smapleRate(), 48000u);
  CQXMBMessage_PMCMeetChatMsgReaded chat;
  chat.Set_localReadedTime(-1);
  EXPECT_EQ(chat.Get_localReadedTime(), -1);
}

TEST(MessageNames, TheCaseOfVelmIsPartOfTheName) {
  CQXMBMessage_NotifyConfStop stop;
  EXPECT_EQ(Parse(stop, "<com.Velm.app.conf.stop ProcessID=\"1\" ProcessName=\"\" version=\"10000\"/>"), 1);
  EXPECT_EQ(Parse(stop, "<com.velm.app.conf.stop ProcessID=\"1\" ProcessName=\"\" version=\"10000\"/>"), 0);
}

TEST(MessageNames, TheThreePrefixesAreNotInterchangeable) {
  std::set<std::string> others;
  for (const MessageClass& messageClass : MessageClasses()) {
    const std::string name = messageClass.className;
    if (!name.starts_with("CQXMBMessage_")) others.insert(name);
  }
  EXPECT_THAT(others, ElementsAre("CQXMessage_Assistant_AudioDeviceUpdateNotification",
                                  "CQXMessage_Assistant_AudioQualityNotification", "QXIPCMessage_Connect",
                                  "QXIPCMessage_ConnectResponse", "QXIPCMessage_DisConnect"));
}

// ---- Single messages ----------------------------------------------------------------------------------

TEST(Messages, ClientExitHasNoAttributeButItsVersionAndReadsAnyMessage) {
  CQXMBMessage_LogService_ClientExit message;
  EXPECT_EQ(Build(message), "<com.velm.app.log.clientexit version=\"10000\"/>\n");
  EXPECT_EQ(Parse(message, "not even XML"), 1);
  EXPECT_EQ(message.ParseMsg(nullptr), 0);
}

TEST(Messages, ClientExitIsTheOneMessageWithoutFields) {
  std::vector<std::string> fieldless;
  for (const MessageClass& messageClass : MessageClasses()) {
    if (messageClass.fields.empty()) fieldless.push_back(messageClass.className);
  }
  EXPECT_THAT(fieldless, ElementsAre("CQXMBMessage_LogService_ClientExit"));
}

TEST(Messages, JsonWithQuotesComesThroughAnAudioCommandUnchanged) {
  const Cmm::CStringW json = LR"({"commandId":2,"device":"a \"b\" & <c> 'd'"})";
  CQXMBMessage_Audio3rdSDK_AudioCmdRequest sent;
  sent.Set_ChannelId(1);
  sent.Set_AudioCmdRequest(json);
  const MessagePtr built(sent.BuildMsg(-1));
  CQXMBMessage_Audio3rdSDK_AudioCmdRequest received;
  ASSERT_EQ(received.ParseMsg(built.get()), 1);
  EXPECT_EQ(received.Get_AudioCmdRequest(), json);
}

TEST(Messages, TheWidestHaveFifteenFields) {
  std::set<std::string> widest;
  for (const MessageClass& messageClass : MessageClasses()) {
    EXPECT_LE(messageClass.fields.size(), 15u);
    if (messageClass.fields.size() == 15) widest.insert(messageClass.className);
  }
  EXPECT_THAT(widest, ElementsAre("CQXMBMessage_ConfirmConfLeave", "CQXMBMessage_NotifyPTLoginInfo"));
}

TEST(Messages, AnotherIdGoesIntoTheQueueMessageAndNotIntoTheText) {
  CQXMBMessage_LogService_StartChannel message;
  const MessagePtr own(message.BuildMsg(-1));
  const MessagePtr other(message.BuildMsg(500));
  EXPECT_EQ(own->GetMsgType(), 40351);
  EXPECT_EQ(other->GetMsgType(), 500);
  EXPECT_EQ(TextOf(own.get()), TextOf(other.get()));
}

TEST(Messages, ACopyIsAMessageOfItsOwn) {
  CQXMBMessage_LogService_StartChannel message;
  message.Set_ChannelId(7);
  CQXMBMessage_LogService_StartChannel copy = message;
  copy.Set_ChannelId(8);
  EXPECT_EQ(Build(message),
            "<com.velm.app.log.startchannel ChannelId=\"7\" GroupId=\"0\" version=\"10000\"/>\n");
  EXPECT_EQ(Build(copy),
            "<com.velm.app.log.startchannel ChannelId=\"8\" GroupId=\"0\" version=\"10000\"/>\n");
}

// ---- Registration -------------------------------------------------------------------------------------

TEST(MessageRegistration, ASecondAudioCommandAddsNoDefinition) {
  InFreshProcess([] {
    constexpr const char* kWireName = "com.velm.app.3rd.audiosdk.sendaudiocmd.request";
    EXPECT_EQ(DefineCount(kWireName), 0u) << "before the first construction";
    const CQXMBMessage_Audio3rdSDK_AudioCmdRequest first;
    EXPECT_EQ(DefineCount(kWireName), 1u);
    const CQXMBMessage_Audio3rdSDK_AudioCmdRequest second;
    EXPECT_EQ(DefineCount(kWireName), 1u);
  });
}

TEST(MessageRegistration, NoClassRegistersAgainAfterAllDefinitionsWereCleared) {
  InFreshProcess([] {
    CQXMBMessage_LogService_StartChannel message;
    const std::string text = Build(message);
    Cmm::CCmmArchiveService::ClearAllPackageDefines();
    CQXMBMessage_LogService_StartChannel another;
    EXPECT_EQ(another.BuildMsg(-1), nullptr);
    EXPECT_EQ(Parse(another, text), 0);
  });
}

}  // namespace
