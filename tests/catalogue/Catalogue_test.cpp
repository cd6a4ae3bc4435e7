#include "archive/catalogue/catalogue.h"

#include <map>
#include <set>
#include <stdexcept>

#include "gmock/gmock.h"

namespace {

using namespace Cmm::Archive;
using Cmm::CStringA;
using Cmm::CStringW;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

std::vector<std::string> ClassNames(const std::vector<const MessageClass*>& classes) {
  std::vector<std::string> names;
  for (const MessageClass* messageClass : classes)
    names.push_back(messageClass->className);
  return names;
}

CatalogueMessage New(const char* className) {
  return CatalogueMessage(*FindMessageClass(className));
}

TEST(Catalogue, Has397MessagesInNineFamilies) {
  std::set<std::string> classes;
  std::map<std::string, int> families;
  for (const MessageClass& messageClass : MessageClasses()) {
    classes.insert(messageClass.className);
    ++families[messageClass.family];
  }
  EXPECT_EQ(MessageClasses().size(), 397u);
  EXPECT_EQ(classes.size(), 397u);
  EXPECT_THAT(families, testing::UnorderedElementsAre(
                            std::pair("sdk_and_connection", 14), std::pair("conference_1", 69),
                            std::pair("conference_2", 93), std::pair("lifecycle_and_framework", 19),
                            std::pair("assistant_sip", 32), std::pair("assistant_audio_device_broadcast", 70),
                            std::pair("document_calendar_desktop", 26), std::pair("contact_centre_video", 59),
                            std::pair("process_service", 15)));
}

TEST(Catalogue, FindsAMessageByItsClass) {
  const MessageClass* found = FindMessageClass("CQXMBMessage_LogService_StartChannel");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->id, 40351);
  EXPECT_STREQ(found->wireName, "com.velm.app.log.startchannel");
  EXPECT_STREQ(found->family, "sdk_and_connection");
  EXPECT_THAT(FindMessageClass("CQXMBMessage_LogService"), IsNull());
  EXPECT_THAT(FindMessageClass(""), IsNull());
}

TEST(Catalogue, FindsAllMessagesOfAnId) {
  EXPECT_THAT(ClassNames(FindMessagesById(40520)), ElementsAre("CQXMBMessage_Audio3rdSDK_AudioCmdRequest"));
  EXPECT_THAT(ClassNames(FindMessagesById(10210)),
              ElementsAre("CQXMBMessage_AvatarDataRequest", "CQXMBMessage_NotifyRunningLate"));
  EXPECT_THAT(FindMessagesById(10012), IsEmpty());
  EXPECT_THAT(FindMessagesById(-1), IsEmpty());
}

TEST(Catalogue, FindsMessagesByTheExactWireName) {
  EXPECT_THAT(ClassNames(FindMessagesByWireName("com.Velm.app.conf.start")),
              ElementsAre("CQXMBMessage_NotifyConfStart"));
  EXPECT_THAT(FindMessagesByWireName("com.velm.app.conf.start"), IsEmpty());
}

TEST(CatalogueMessage, IsOfItsClass) {
  CatalogueMessage message = New("CQXMBMessage_NotifyConfStart");
  EXPECT_STREQ(message.Class().className, "CQXMBMessage_NotifyConfStart");
  EXPECT_EQ(message.Object().GetMessageId(), 10008);
}

TEST(CatalogueMessage, FindsAFieldByItsExactName) {
  const CatalogueMessage message = New("CQXMBMessage_NotifyConfStart");
  EXPECT_EQ(message.FindField("ProcessID"), 0u);
  EXPECT_EQ(message.FindField("RecoveryCommand"), 2u);
  EXPECT_EQ(message.FindField("recoverycommand"), std::nullopt);
}

TEST(CatalogueMessage, TakesAValueOfTheFieldsTypeOnly) {
  CatalogueMessage message = New("CQXMBMessage_NotifyConfStart");
  EXPECT_TRUE(message.SetField(0, 7u));
  EXPECT_FALSE(message.SetField(0, 8));
  EXPECT_FALSE(message.SetField(1, CStringW(L"wide")));
  EXPECT_EQ(message.GetField(0), MessageFieldValue(7u));
  EXPECT_EQ(message.GetField(1), MessageFieldValue(CStringA()));
}

TEST(CatalogueMessage, ThrowsForAPositionPastItsFields) {
  CatalogueMessage message = New("CQXMBMessage_NotifyConfStart");
  EXPECT_THROW(message.GetField(3), std::out_of_range);
  EXPECT_THROW(message.SetField(3, 7u), std::out_of_range);
  EXPECT_THROW(message.SetFieldText(3, "7"), std::out_of_range);
  CatalogueMessage fieldless = New("CQXMBMessage_LogService_ClientExit");
  EXPECT_THROW(fieldless.GetFieldText(0), std::out_of_range);
}

TEST(CatalogueMessage, GivesAndTakesNumbersAsDecimalText) {
  CatalogueMessage message = New("CQXMBMessage_NotifyInviteFBBuddy");  // wstr, u64, i64, u32
  for (const auto& [position, text] : std::vector<std::pair<size_t, const char*>>{
           {1, "18446744073709551615"}, {2, "-9223372036854775808"}, {3, "4294967295"}, {3, "0"}}) {
    EXPECT_TRUE(message.SetFieldText(position, text)) << text;
    EXPECT_EQ(message.GetFieldText(position), text);
  }
  CatalogueMessage facility = New("CQXMBMessage_AudioFacilityStatus");  // i32, i32
  EXPECT_TRUE(facility.SetFieldText(0, "-2147483648"));
  EXPECT_EQ(facility.GetFieldText(0), "-2147483648");
}

TEST(CatalogueMessage, RefusesTextThatIsNoNumberOfTheFieldsType) {
  CatalogueMessage message = New("CQXMBMessage_NotifyConfStart");
  ASSERT_TRUE(message.SetFieldText(0, "7"));
  for (const char* text : {"", " 1", "1 ", "+1", "-1", "0x1", "1.0", "4294967296", "one"})
    EXPECT_FALSE(message.SetFieldText(0, text)) << text;
  EXPECT_EQ(message.GetFieldText(0), "7");
}

TEST(CatalogueMessage, GivesAndTakesStringsAsUtf8) {
  CatalogueMessage narrow = New("CQXMBMessage_IPCSDK_SDKCmdRequest");
  EXPECT_TRUE(narrow.SetFieldText(0, "\xC3\xA9 <\"'&>"));
  EXPECT_EQ(narrow.GetField(0), MessageFieldValue(CStringA("\xC3\xA9 <\"'&>")));
  EXPECT_EQ(narrow.GetFieldText(0), "\xC3\xA9 <\"'&>");

  CatalogueMessage wide = New("CQXMBMessage_IGotIt");
  EXPECT_TRUE(wide.SetFieldText(0, "\xC3\xA9 \xF0\x9D\x84\x9E"));
  EXPECT_EQ(wide.GetField(0), MessageFieldValue(CStringW(L"\u00E9 \U0001D11E")));
  EXPECT_EQ(wide.GetFieldText(0), "\xC3\xA9 \xF0\x9D\x84\x9E");
  EXPECT_TRUE(wide.SetFieldText(0, ""));
  EXPECT_EQ(wide.GetField(0), MessageFieldValue(CStringW()));
}

}  // namespace
