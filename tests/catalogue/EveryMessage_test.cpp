// What holds for every message of the catalogue, one test for each.

#include <cstdint>

#include "archive/catalogue/catalogue.h"
#include "tests/catalogue/GoldenMessages.h"
#include "tests/catalogue/MessageTesting.h"

namespace {

using namespace catalogue_testing;
using namespace Cmm::Archive;

// Shares its wire name with an earlier class: in one process only one of the two can be built.
// MergeCall_test.cpp has its tests, so that no order of tests matters here.
constexpr const char* kSecondOfOneWireName = "CQXMBMessage_Assistant_SIP_MergeCallResponse";

std::vector<GoldenMessage> MessagesOfOneProcess() {
  std::vector<GoldenMessage> messages = GoldenMessages();
  std::erase_if(messages,
                [](const GoldenMessage& message) { return message.className == kSecondOfOneWireName; });
  return messages;
}

void PutUInt32(std::string& bytes, uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8)
    bytes += static_cast<char>(value >> shift & 0xFF);
}

std::string Frame(const std::string& payload, int type) {
  std::string bytes;
  PutUInt32(bytes, static_cast<uint32_t>(payload.size()));
  PutUInt32(bytes, static_cast<uint32_t>(type));
  return bytes + payload;
}

std::string FrameOf(const Cmm::CmmMQ_Msg* message) {
  const auto* record = dynamic_cast<const Cmm::CmmInternelMsg*>(message);
  if (!record) return "(null)";
  return {reinterpret_cast<const char*>(record->GetBase()),
          Cmm::CmmInternelMsg::GetHeadLen() + record->GetLen()};
}

// The text without the attribute of that name.
std::string Without(const std::string& text, const std::string& attribute) {
  const size_t begin = text.find(" " + attribute + "=\"");
  const size_t end = text.find('"', begin + attribute.size() + 3) + 1;
  return text.substr(0, begin) + text.substr(end);
}

class EveryMessage : public testing::TestWithParam<GoldenMessage> {
 protected:
  EveryMessage() : class_(FindMessageClass(GetParam().className)) {}

  void SetUp() override { ASSERT_NE(class_, nullptr) << "the index lacks it"; }

  const MessageClass* class_;
};

TEST_P(EveryMessage, HasTheIdTheWireNameAndTheFieldsOfTheTable) {
  EXPECT_EQ(class_->id, GetParam().id);
  EXPECT_EQ(class_->wireName, GetParam().wireName);
  ASSERT_EQ(class_->fields.size(), GetParam().fields.size());
  for (size_t i = 0; i < class_->fields.size(); ++i) {
    EXPECT_EQ(class_->fields[i].name, GetParam().fields[i].name);
    EXPECT_EQ(ToString(class_->fields[i].type), GetParam().fields[i].type);
  }
  EXPECT_EQ(CatalogueMessage(*class_).Object().GetMessageId(), GetParam().id);
}

TEST_P(EveryMessage, UntouchedIsBuiltWithZerosAndEmptyTexts) {
  CatalogueMessage message(*class_);
  const MessagePtr built(message.Object().BuildMsg(-1));
  EXPECT_EQ(TextOf(built.get()), GetParam().untouched);
}

TEST_P(EveryMessage, IsBuiltIntoAFrameOfItsIdWithItsFieldsInOrder) {
  CatalogueMessage message(*class_);
  Fill(message, GetParam());
  const MessagePtr built(message.Object().BuildMsg(-1));
  EXPECT_EQ(FrameOf(built.get()), Frame(GetParam().filled, GetParam().id));
  const MessagePtr again(message.Object().BuildMsg(-1));
  EXPECT_EQ(TextOf(again.get()), GetParam().filled) << "built a second time";
}

TEST_P(EveryMessage, IsReadBackEqual) {
  CatalogueMessage message(*class_);
  ASSERT_EQ(Parse(message.Object(), GetParam().filled), 1);
  if (class_->fields.empty()) return;  // then the text is not looked at
  for (size_t i = 0; i < class_->fields.size(); ++i)
    EXPECT_EQ(message.GetField(i), ValueOf(GetParam().fields[i])) << class_->fields[i].name;
  EXPECT_EQ(Build(message.Object()), GetParam().filled);
}

TEST_P(EveryMessage, GivesBackWhatWasSetInEachFieldAndInNoOther) {
  CatalogueMessage message(*class_);
  const CatalogueMessage untouched(*class_);
  for (size_t set = 0; set < class_->fields.size(); ++set) {
    ASSERT_TRUE(message.SetField(set, ValueOf(GetParam().fields[set])));
    for (size_t i = 0; i < class_->fields.size(); ++i)
      EXPECT_EQ(message.GetField(i), i <= set ? ValueOf(GetParam().fields[i]) : untouched.GetField(i));
  }
}

TEST_P(EveryMessage, RefusesATextThatLacksAnyOfItsFieldsAndStaysAsItWas) {
  for (const GoldenField& field : GetParam().fields) {
    CatalogueMessage message(*class_);
    EXPECT_EQ(Parse(message.Object(), Without(GetParam().filled, field.name)), 0) << field.name;
    EXPECT_EQ(Build(message.Object()), GetParam().untouched);
  }
}

TEST_P(EveryMessage, IsDefinedOnceHoweverOftenItIsConstructed) {
  const CatalogueMessage first(*class_);
  const CatalogueMessage second(*class_);
  EXPECT_EQ(DefineCount(class_->wireName), 1u);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryMessage, testing::ValuesIn(MessagesOfOneProcess()),
                         [](const auto& instance) { return instance.param.className; });

}  // namespace
