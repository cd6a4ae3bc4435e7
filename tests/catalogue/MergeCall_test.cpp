// Two classes have one id AND one wire name, with different fields. Both register a definition, and the
// oldest definition serves both, so in a process that constructs both only the first one works. That is so in
// every peer, and must stay.

#include <cstdlib>

#include "archive/catalogue/AssistantSipMessages.h"
#include "tests/catalogue/GoldenMessages.h"
#include "tests/catalogue/MessageTesting.h"

namespace {

using namespace catalogue_testing;
using HostChanged = CQXMBMessage_Assistant_SIP_MergeCallHostChanged;
using Response = CQXMBMessage_Assistant_SIP_MergeCallResponse;

constexpr const char* kWireName = "com.velm.app.assistant.sip.merge.call.response";
const char* const kHostChanged = "CQXMBMessage_Assistant_SIP_MergeCallHostChanged";
const char* const kResponse = "CQXMBMessage_Assistant_SIP_MergeCallResponse";

TEST(MergeCall, BothClassesHaveOneId) {
  InFreshProcess([] {
    EXPECT_EQ(HostChanged().GetMessageId(), 40145);
    EXPECT_EQ(Response().GetMessageId(), 40145);
    EXPECT_EQ(DefineCount(kWireName), 2u);
  });
}

TEST(MergeCall, TheResponseWorksWhenItIsConstructedFirstAndTheHostChangeDoesNot) {
  InFreshProcess([] {
    Response response;
    HostChanged hostChanged;
    EXPECT_EQ(Build(response), Golden(kResponse).untouched);
    EXPECT_EQ(Parse(response, Golden(kResponse).filled), 1);
    EXPECT_EQ(Build(response), Golden(kResponse).filled);

    EXPECT_EQ(hostChanged.BuildMsg(-1), nullptr);
    EXPECT_EQ(Parse(hostChanged, Golden(kHostChanged).filled), 0);
    EXPECT_EQ(Parse(hostChanged, Golden(kResponse).filled), 0);
  });
}

TEST(MergeCall, TheHostChangeWorksWhenItIsConstructedFirstAndTheResponseDoesNot) {
  InFreshProcess([] {
    HostChanged hostChanged;
    Response response;
    EXPECT_EQ(Build(hostChanged), Golden(kHostChanged).untouched);
    EXPECT_EQ(Parse(hostChanged, Golden(kHostChanged).filled), 1);
    EXPECT_EQ(Build(hostChanged), Golden(kHostChanged).filled);

    EXPECT_EQ(response.BuildMsg(-1), nullptr);
    EXPECT_EQ(Parse(response, Golden(kResponse).filled), 0);
    EXPECT_EQ(Parse(response, Golden(kHostChanged).filled), 0);
  });
}

TEST(MergeCall, AFailedParseOfTheOtherOnesTextLeavesTheFieldThatBothHaveChanged) {
  InFreshProcess([] {
    HostChanged hostChanged;
    Response response;
    EXPECT_EQ(Parse(response,
                    "<com.velm.app.assistant.sip.merge.call.response Result=\"5\" "
                    "OldHostCallid=\"old\" NewHostCallid=\"new\" version=\"10000\"/>"),
              0);
    EXPECT_EQ(response.Get_Result(), 5);
    EXPECT_TRUE(response.Get_SrcCallid().IsEmpty());
  });
}

}  // namespace
