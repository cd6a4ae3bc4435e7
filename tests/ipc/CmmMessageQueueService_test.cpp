#include "common/client/utility/src/ipc/CmmMessageQueueService.h"

#include <functional>
#include <string>
#include <vector>

#include "archive/catalogue/FrameworkMessages.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"

namespace Cmm::MQ {

struct MessageQueueTestAccess {
  static void InsertMissingEntry(CCmmMessageQueueService& bus, const char* topic) {
    bus.topics_.emplace(topic, nullptr);
  }
  static void InsertMissingClient(CCmmMessageQueueService& bus, const char* name) {
    bus.clients_.emplace(name, nullptr);
  }
};

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTopic = "com.Velm.test.topic";

using Calls = std::vector<std::string>;

// A client that writes down what it is told, as "name:operation topic sender extra [text]".
class RecordingClient : public ICmmMessageQueueClient {
 public:
  RecordingClient(Calls& calls, const char* name) : m_calls(calls), m_name(name) {}

  void OnMessage(const char* topic, void* sender, CmmMQ_Msg* msg) override {
    m_calls.push_back(Who() + ":message " + topic + " " + Number(sender));
    lastMessage = msg;
    if (onMessage) onMessage();
  }
  void OnNotify(const char* topic, void* sender, CmmMQ_Msg* msg, void* extra) override {
    m_calls.push_back(Who() + ":notify " + topic + " " + Number(sender) + " " + Number(extra));
    lastMessage = msg;
    if (msg && msg->GetLen() > 0) {
      lastType = msg->GetMsgType();
      lastText.assign(reinterpret_cast<const char*>(msg->GetData()), msg->GetLen());
    }
    if (onNotify) onNotify();
  }
  const char* GetClientName() override { return m_name; }
  bool WantsTermNotice() override { return wantsTermNotice; }

  const CmmMQ_Msg* lastMessage = nullptr;
  int lastType = 0;
  std::string lastText;
  bool wantsTermNotice = false;
  std::function<void()> onMessage;
  std::function<void()> onNotify;

 private:
  static std::string Number(const void* pointer) {
    return std::to_string(reinterpret_cast<uintptr_t>(pointer));
  }
  std::string Who() const { return m_name ? m_name : "null"; }

  Calls& m_calls;
  const char* m_name;
};

void* Sender(uintptr_t number) {
  return reinterpret_cast<void*>(number);
}

class MessageQueueTest : public testing::Test {
 protected:
  Calls calls;
  CCmmMessageQueueService bus;
  RecordingClient a{calls, "a"};
  RecordingClient b{calls, "b"};
  RecordingClient c{calls, "c"};
  CmmInternelMsg message;
};

// ---- The exports

TEST(CmmMQ, TheProcessHasOneServiceWhichInitAndTermLeaveAsItIs) {
  ICmmMessageQueueService* const service = CmmMQ_GetService();
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(CmmMQ_InitService(), 0);
  EXPECT_EQ(CmmMQ_GetService(), service);
  EXPECT_EQ(CmmMQ_TermService(), 0);
  EXPECT_EQ(CmmMQ_GetService(), service);
}

TEST_F(MessageQueueTest, TheProxyIsTheServicesOwnIdentityAndIgnoresEverything) {
  ICmmMessageQueueClient* const proxy = bus.GetClientProxy();
  EXPECT_STREQ(proxy->GetClientName(), "com.XXX.MQ.CCmmMessageQueueClientProxy");
  proxy->OnMessage(kTopic, nullptr, nullptr);
  proxy->OnNotify(kTopic, nullptr, nullptr, nullptr);
  EXPECT_EQ(proxy->ClientExt1(), 0);
  EXPECT_EQ(proxy->ClientExt2(), 0);
  EXPECT_EQ(proxy->ClientExt3(), 0);
  EXPECT_FALSE(proxy->WantsTermNotice());
  CCmmMessageQueueService other;
  EXPECT_NE(other.GetClientProxy(), proxy);
}

// ---- The registry

TEST_F(MessageQueueTest, ARegisteredClientIsFoundByItsName) {
  EXPECT_EQ(bus.FindClient("a"), nullptr);
  EXPECT_EQ(bus.RegisterClient(&a), 0);
  EXPECT_EQ(bus.FindClient("a"), &a);
  EXPECT_EQ(bus.FindClient("A"), nullptr);
  EXPECT_EQ(bus.FindClient(nullptr), nullptr);
}

TEST_F(MessageQueueTest, NullAndANullNameAreBadArguments) {
  RecordingClient nameless(calls, nullptr);
  EXPECT_EQ(bus.RegisterClient(nullptr), 4);
  EXPECT_EQ(bus.RegisterClient(&nameless), 4);
  EXPECT_EQ(bus.UnregisterClient(nullptr), 4);
  EXPECT_EQ(bus.UnregisterClient(&nameless), 4);
}

TEST_F(MessageQueueTest, AnEmptyNameIsAName) {
  RecordingClient unnamed(calls, "");
  EXPECT_EQ(bus.RegisterClient(&unnamed), 0);
  EXPECT_EQ(bus.FindClient(""), &unnamed);
}

TEST_F(MessageQueueTest, ANewcomerIsAnnouncedToAllOthersInTheOrderOfNames) {
  bus.RegisterClient(&c);
  bus.RegisterClient(&a);
  calls.clear();
  bus.RegisterClient(&b);
  EXPECT_THAT(calls, ElementsAre("a:notify com.Velm.app.mainboard.notifyClientRegistry 0 0",
                                 "c:notify com.Velm.app.mainboard.notifyClientRegistry 0 0"));
  EXPECT_EQ(a.lastType, 20003);
  EXPECT_EQ(a.lastText, "<com.Velm.app.mainboard.notifyClientRegistry ClientID=\"b\" version=\"10000\"/>\n");
}

TEST_F(MessageQueueTest, ASecondObjectUnderATakenNameReplacesTheFirstAndNobodyIsTold) {
  RecordingClient second(calls, "a");
  bus.RegisterClient(&a);
  bus.RegisterClient(&b);
  calls.clear();
  EXPECT_EQ(bus.RegisterClient(&second), 1);
  EXPECT_EQ(bus.FindClient("a"), &second);
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(MessageQueueTest, UnregisteringANameSkipsTheClientThatIsStoredThenAndNotTheCaller) {
  RecordingClient second(calls, "a");
  RecordingClient caller(calls, "a");
  bus.RegisterClient(&a);
  bus.RegisterClient(&b);
  bus.RegisterClient(&second);
  calls.clear();
  EXPECT_EQ(bus.UnregisterClient(&caller), 0);
  EXPECT_THAT(calls, ElementsAre("b:notify com.Velm.app.mainboard.notifyClientUnregistry 0 0"));
  EXPECT_EQ(b.lastType, 20004);
  EXPECT_EQ(b.lastText,
            "<com.Velm.app.mainboard.notifyClientUnregistry ClientID=\"a\" version=\"10000\"/>\n");
  EXPECT_EQ(bus.FindClient("a"), nullptr);
  EXPECT_EQ(bus.UnregisterClient(&a), 2);
}

TEST_F(MessageQueueTest, TheClientThatLeavesIsStillRegisteredWhileTheOthersAreTold) {
  bus.RegisterClient(&a);
  bus.RegisterClient(&b);
  const ICmmMessageQueueClient* found = nullptr;
  b.onNotify = [&] { found = bus.FindClient("a"); };
  bus.UnregisterClient(&a);
  EXPECT_EQ(found, &a);
}

TEST_F(MessageQueueTest, AnEntryWithoutAClientIsPassedOverAndLeavesUntold) {
  MessageQueueTestAccess::InsertMissingClient(bus, "m");
  bus.RegisterClient(&a);
  bus.RegisterClient(&b);
  RecordingClient missing(calls, "m");
  calls.clear();
  EXPECT_EQ(bus.UnregisterClient(&missing), 0);
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(MessageQueueTest, UnregisteringLeavesTheSubscriptionsStanding) {
  bus.RegisterClient(&a);
  bus.Subscribe(&a, kTopic, nullptr);
  bus.UnregisterClient(&a);
  EXPECT_EQ(bus.SendToTopic(Sender(1), kTopic, nullptr, &message), 0);
  EXPECT_EQ(calls.size(), 1u);
}

// ---- Subscriptions

TEST_F(MessageQueueTest, SubscribeAndUnsubscribeWantAClientAndATopic) {
  EXPECT_EQ(bus.Subscribe(nullptr, kTopic, nullptr), 4);
  EXPECT_EQ(bus.Subscribe(&a, nullptr, nullptr), 4);
  EXPECT_EQ(bus.Unsubscribe(nullptr, kTopic, nullptr), 4);
  EXPECT_EQ(bus.Unsubscribe(&a, nullptr, nullptr), 4);
}

TEST_F(MessageQueueTest, ASubscriberNeedNotBeRegistered) {
  EXPECT_EQ(bus.Subscribe(&a, kTopic, nullptr), 0);
  EXPECT_EQ(bus.SendToTopic(Sender(1), kTopic, nullptr, &message), 0);
  EXPECT_THAT(calls, ElementsAre("a:message com.Velm.test.topic 1"));
  EXPECT_EQ(a.lastMessage, &message);
}

TEST_F(MessageQueueTest, SubscribingTwiceIsHeardOnceAndGivesZero) {
  EXPECT_EQ(bus.Subscribe(&a, kTopic, Sender(1)), 0);
  EXPECT_EQ(bus.Subscribe(&a, kTopic, Sender(1)), 0);
  bus.SendToTopic(Sender(1), kTopic, nullptr, &message);
  EXPECT_EQ(calls.size(), 1u);
}

TEST_F(MessageQueueTest, AWideSubscriptionReplacesTheNarrowOnes) {
  bus.Subscribe(&a, kTopic, Sender(1));
  bus.Subscribe(&b, kTopic, nullptr);
  bus.Subscribe(&a, kTopic, Sender(2));
  EXPECT_EQ(bus.Subscribe(&a, kTopic, nullptr), 0);
  bus.SendToTopic(Sender(1), kTopic, nullptr, &message);
  EXPECT_THAT(calls, ElementsAre("b:message com.Velm.test.topic 1", "a:message com.Velm.test.topic 1"));
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, Sender(1)), 2);
}

TEST_F(MessageQueueTest, ANarrowSubscriptionAfterAWideOneChangesNothing) {
  bus.Subscribe(&a, kTopic, nullptr);
  EXPECT_EQ(bus.Subscribe(&a, kTopic, Sender(1)), 0);
  bus.SendToTopic(Sender(1), kTopic, nullptr, &message);
  EXPECT_EQ(calls.size(), 1u);
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, Sender(1)), 2);
}

TEST_F(MessageQueueTest, UnsubscribingWithoutAFilterEndsAllOfTheClient) {
  bus.Subscribe(&a, kTopic, Sender(1));
  bus.Subscribe(&a, kTopic, Sender(2));
  bus.Subscribe(&b, kTopic, Sender(2));
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, nullptr), 0);
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, nullptr), 2);
  bus.SendToTopic(Sender(2), kTopic, nullptr, &message);
  EXPECT_THAT(calls, ElementsAre("b:message com.Velm.test.topic 2"));
}

TEST_F(MessageQueueTest, UnsubscribingWithAFilterEndsExactlyThatOne) {
  bus.Subscribe(&a, kTopic, Sender(1));
  bus.Subscribe(&a, kTopic, Sender(2));
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, Sender(3)), 2);
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, Sender(1)), 0);
  bus.SendToTopic(Sender(1), kTopic, nullptr, &message);
  EXPECT_THAT(calls, IsEmpty());
  bus.SendToTopic(Sender(2), kTopic, nullptr, &message);
  EXPECT_EQ(calls.size(), 1u);
}

TEST_F(MessageQueueTest, TheLastSubscriptionTakesTheTopicWithIt) {
  bus.Subscribe(&a, kTopic, nullptr);
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, nullptr), 0);
  EXPECT_EQ(bus.SendToTopic(Sender(1), kTopic, nullptr, &message), 2);
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, nullptr), 2);
}

TEST_F(MessageQueueTest, ATopicWhoseEntryIsMissingIs7) {
  MessageQueueTestAccess::InsertMissingEntry(bus, kTopic);
  EXPECT_EQ(bus.Subscribe(&a, kTopic, nullptr), 7);
  EXPECT_EQ(bus.Unsubscribe(&a, kTopic, nullptr), 7);
  EXPECT_EQ(bus.SendToTopic(Sender(1), kTopic, nullptr, &message), 7);
  EXPECT_EQ(bus.NotifyTopic(Sender(1), kTopic, nullptr, &message, nullptr), 7);
}

// ---- Sending

TEST_F(MessageQueueTest, SendingWantsASenderAndATopic) {
  bus.Subscribe(&a, kTopic, nullptr);
  EXPECT_EQ(bus.SendToTopic(nullptr, kTopic, nullptr, &message), 4);
  EXPECT_EQ(bus.SendToTopic(Sender(1), nullptr, nullptr, &message), 4);
  EXPECT_EQ(bus.SendToTopicEx(nullptr, kTopic, nullptr, &message, Sender(9)), 4);
  EXPECT_EQ(bus.NotifyTopic(nullptr, kTopic, nullptr, &message, nullptr), 4);
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(MessageQueueTest, ASendToATopicWithoutSubscribersIs2) {
  EXPECT_EQ(bus.SendToTopic(Sender(1), kTopic, nullptr, &message), 2);
  EXPECT_EQ(bus.SendToTopicEx(Sender(1), kTopic, nullptr, &message, Sender(9)), 2);
  EXPECT_EQ(bus.NotifyTopic(Sender(1), kTopic, nullptr, &message, nullptr), 2);
}

TEST_F(MessageQueueTest, SubscribersHearInTheOrderOfSubscribing) {
  bus.Subscribe(&b, kTopic, nullptr);
  bus.Subscribe(&a, kTopic, nullptr);
  bus.Subscribe(&c, kTopic, nullptr);
  bus.SendToTopic(Sender(1), kTopic, nullptr, &message);
  EXPECT_THAT(calls, ElementsAre("b:message com.Velm.test.topic 1", "a:message com.Velm.test.topic 1",
                                 "c:message com.Velm.test.topic 1"));
}

TEST_F(MessageQueueTest, AFilterLetsOnlyItsSenderPassAndTheStatusStaysZero) {
  bus.Subscribe(&a, kTopic, Sender(1));
  EXPECT_EQ(bus.SendToTopic(Sender(2), kTopic, nullptr, &message), 0);
  EXPECT_THAT(calls, IsEmpty());
  EXPECT_EQ(bus.SendToTopic(Sender(1), kTopic, nullptr, &message), 0);
  EXPECT_EQ(calls.size(), 1u);
}

TEST_F(MessageQueueTest, TopicsAreCaseSensitive) {
  bus.Subscribe(&a, kTopic, nullptr);
  EXPECT_EQ(bus.SendToTopic(Sender(1), "com.velm.test.topic", nullptr, &message), 2);
}

TEST_F(MessageQueueTest, ATargetHearsAloneIfItsSubscriptionLetsTheSenderPass) {
  bus.Subscribe(&a, kTopic, nullptr);
  bus.Subscribe(&b, kTopic, Sender(1));
  EXPECT_EQ(bus.SendToTopic(Sender(1), kTopic, &b, &message), 0);
  EXPECT_EQ(bus.SendToTopic(Sender(2), kTopic, &b, &message), 2);
  EXPECT_EQ(bus.SendToTopic(Sender(2), kTopic, &a, &message), 0);
  EXPECT_EQ(bus.SendToTopic(Sender(2), kTopic, &c, &message), 2);
  EXPECT_THAT(calls, ElementsAre("b:message com.Velm.test.topic 1", "a:message com.Velm.test.topic 2"));
}

TEST_F(MessageQueueTest, SendToTopicExDropsTheExtraValue) {
  bus.Subscribe(&a, kTopic, nullptr);
  EXPECT_EQ(bus.SendToTopicEx(Sender(1), kTopic, nullptr, &message, Sender(9)), 0);
  EXPECT_EQ(bus.SendToTopicEx(Sender(1), kTopic, &a, &message, nullptr), 0);
  EXPECT_THAT(calls, ElementsAre("a:message com.Velm.test.topic 1", "a:message com.Velm.test.topic 1"));
}

TEST_F(MessageQueueTest, SendToTopicExGoesThroughTheVirtualSendToTopic) {
  class Overridden : public CCmmMessageQueueService {
   public:
    int SendToTopic(void*, const char*, ICmmMessageQueueClient*, CmmMQ_Msg*) override { return 77; }
  } overridden;
  EXPECT_EQ(overridden.SendToTopicEx(Sender(1), kTopic, nullptr, &message, nullptr), 77);
}

TEST_F(MessageQueueTest, NotifyTopicCarriesTheExtraValueToOnNotify) {
  bus.Subscribe(&a, kTopic, nullptr);
  bus.Subscribe(&b, kTopic, Sender(1));
  EXPECT_EQ(bus.NotifyTopic(Sender(1), kTopic, nullptr, &message, Sender(9)), 0);
  EXPECT_EQ(bus.NotifyTopic(Sender(1), kTopic, &b, &message, Sender(8)), 0);
  EXPECT_EQ(bus.NotifyTopic(Sender(2), kTopic, &b, &message, Sender(8)), 2);
  EXPECT_THAT(calls, ElementsAre("a:notify com.Velm.test.topic 1 9", "b:notify com.Velm.test.topic 1 9",
                                 "b:notify com.Velm.test.topic 1 8"));
}

TEST_F(MessageQueueTest, ANullMessageIsDeliveredAsItIs) {
  bus.Subscribe(&a, kTopic, nullptr);
  a.lastMessage = &message;
  EXPECT_EQ(bus.SendToTopic(Sender(1), kTopic, nullptr, nullptr), 0);
  EXPECT_EQ(a.lastMessage, nullptr);
}

TEST_F(MessageQueueTest, AHandlerMaySendOnAnotherTopic) {
  bus.Subscribe(&a, kTopic, nullptr);
  bus.Subscribe(&b, "other", nullptr);
  a.onMessage = [&] { bus.SendToTopic(&a, "other", nullptr, &message); };
  bus.SendToTopic(Sender(1), kTopic, nullptr, &message);
  EXPECT_EQ(calls.size(), 2u);
}

TEST_F(MessageQueueTest, TheFourOperationsThatAreNotImplementedGive6) {
  bus.Subscribe(&a, kTopic, nullptr);
  EXPECT_EQ(bus.PostToTopic(Sender(1), kTopic, nullptr, &message), 6);
  EXPECT_EQ(bus.PostToTopicEx(Sender(1), kTopic, &a, &message, nullptr), 6);
  EXPECT_EQ(bus.PostNotify(nullptr, nullptr, nullptr, nullptr, nullptr), 6);
  EXPECT_EQ(bus.CancelPosted(nullptr, kTopic), 6);
  EXPECT_THAT(calls, IsEmpty());
}

// ---- The end

TEST_F(MessageQueueTest, TheNoticeBeforeTermGoesToThoseWhoWantItInTheOrderOfNames) {
  c.wantsTermNotice = true;
  a.wantsTermNotice = true;
  for (RecordingClient* client : {&c, &b, &a})
    bus.RegisterClient(client);
  MessageQueueTestAccess::InsertMissingClient(bus, "aa");
  calls.clear();
  bus.NotifyBeforeTerm(&message);
  EXPECT_THAT(calls, ElementsAre("a:notify com.Velm.app.mainboard.notifyBeforeTerm 0 0",
                                 "c:notify com.Velm.app.mainboard.notifyBeforeTerm 0 0"));
  EXPECT_EQ(a.lastMessage, &message);
}

TEST_F(MessageQueueTest, ClientsMayUnregisterWithinTheNoticeBeforeTerm) {
  for (RecordingClient* client : {&a, &b, &c}) {
    client->wantsTermNotice = true;
    bus.RegisterClient(client);
  }
  for (RecordingClient* client : {&a, &b, &c})
    client->onNotify = [this, client] {
      if (calls.back().find("notifyBeforeTerm") != std::string::npos) bus.UnregisterClient(client);
    };
  bus.NotifyBeforeTerm(&message);
  EXPECT_EQ(bus.FindClient("a"), nullptr);
  EXPECT_EQ(bus.FindClient("b"), nullptr);
  EXPECT_EQ(bus.FindClient("c"), nullptr);
}

TEST_F(MessageQueueTest, TheEndOfTheServiceIsToldToNobody) {
  {
    CCmmMessageQueueService short_lived;
    short_lived.RegisterClient(&a);
    short_lived.Subscribe(&a, kTopic, nullptr);
  }
  EXPECT_THAT(calls, IsEmpty());
}

}  // namespace
}  // namespace Cmm::MQ
