#pragma once

// The in-process message bus, as its participants see it: clients register by name, subscribe to topics and
// send to them. Despite the name there is no queue: a send calls the receivers directly, on the sender's
// thread, before it returns.
//
//   ICmmMessageQueueService* bus = CmmMQ_GetService();
//   bus->RegisterClient(&me);
//   bus->Subscribe(&me, "com.Velm.app.topic", nullptr);   // from every sender
//   bus->SendToTopic(&me, "com.Velm.app.topic", nullptr, message.get());

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"

namespace Cmm {

// What the operations of the bus report.
enum CmmMQStatus : int {
  CMM_MQ_OK = 0,
  CMM_MQ_EXISTED = 1,       // done, but a client of that name was registered already
  CMM_MQ_NOT_FOUND = 2,     // no such client, topic or subscription
  CMM_MQ_BAD_ARGUMENT = 4,  // a null pointer where one is required
  CMM_MQ_NOT_SUPPORTED = 6,
  CMM_MQ_NO_ENTRY = 7,  // the topic's entry is missing
};

// A participant of the bus. Messages stay the sender's: they are neither kept nor freed.
class CMM_EXPORT ICmmMessageQueueClient {
 public:
  virtual ~ICmmMessageQueueClient();
  virtual void OnMessage(const char* topic, void* sender, CmmMQ_Msg* msg) = 0;
  virtual void OnNotify(const char* topic, void* sender, CmmMQ_Msg* msg, void* extra) = 0;
  virtual const char* GetClientName() = 0;  // the identity in the registry; null cannot be registered
  // For the clients' own use; the bus does not call them.
  virtual int ClientExt1();
  virtual int ClientExt2();
  virtual int ClientExt3();
  virtual bool WantsTermNotice();  // whether NotifyBeforeTerm calls OnNotify; false by default
};

// The bus. It has no lock: one thread calls it, or the callers take turns. Nothing that it is given becomes
// its own. A handler must not subscribe or unsubscribe on the topic that is being delivered to it.
class CMM_EXPORT ICmmMessageQueueService {
 public:
  virtual ~ICmmMessageQueueService();

  // The identity of the bus itself, as a client that ignores everything.
  virtual ICmmMessageQueueClient* GetClientProxy() = 0;

  // Enters a client under its name and tells all others, in the order of names, by OnNotify with topic
  // "com.Velm.app.mainboard.notifyClientRegistry". Under a name that is taken the client replaces the one
  // before, and nobody is told: CMM_MQ_EXISTED.
  virtual int RegisterClient(ICmmMessageQueueClient* client) = 0;
  // Takes a name off the registry and tells all but the client registered under it, by OnNotify with topic
  // "com.Velm.app.mainboard.notifyClientUnregistry". Its subscriptions stay: unsubscribe first.
  virtual int UnregisterClient(ICmmMessageQueueClient* client) = 0;
  virtual ICmmMessageQueueClient* FindClient(const char* name) = 0;  // null when unknown, or for null

  // A null `sender_filter` stands for every sender; it replaces all narrower subscriptions of the client. A
  // narrower one beside it is not entered. CMM_MQ_OK in each of these cases.
  virtual int Subscribe(ICmmMessageQueueClient* client, const char* topic, void* sender_filter) = 0;
  // A null `sender_filter` ends all subscriptions of the client to the topic; another ends exactly that one.
  virtual int Unsubscribe(ICmmMessageQueueClient* client, const char* topic, void* sender_filter) = 0;

  // Call OnMessage, or OnNotify, of every subscriber in the order of subscribing whose filter lets `sender`
  // pass; of `target` alone when it is not null, which must be such a subscriber. CMM_MQ_NOT_FOUND when
  // nobody has subscribed to the topic. `extra` is carried to OnNotify and dropped by SendToTopicEx.
  virtual int SendToTopic(void* sender, const char* topic, ICmmMessageQueueClient* target,
                          CmmMQ_Msg* msg) = 0;
  virtual int SendToTopicEx(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg,
                            void* extra) = 0;
  virtual int NotifyTopic(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg,
                          void* extra) = 0;

  // Not implemented: always CMM_MQ_NOT_SUPPORTED.
  virtual int PostToTopic(void* sender, const char* topic, ICmmMessageQueueClient* target,
                          CmmMQ_Msg* msg) = 0;
  virtual int PostToTopicEx(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg,
                            void* extra) = 0;
  virtual int PostNotify(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg,
                         void* extra) = 0;
  virtual int CancelPosted(void* sender, const char* topic) = 0;

  // Calls OnNotify with topic "com.Velm.app.mainboard.notifyBeforeTerm" of every client that asks for it, in
  // the order of names. Clients may register and unregister meanwhile.
  virtual void NotifyBeforeTerm(CmmMQ_Msg* msg) = 0;
};

}  // namespace Cmm

extern "C" {
// The bus of the process, which is there from the library's load until its unload.
CMM_EXPORT Cmm::ICmmMessageQueueService* CmmMQ_GetService();
// Have nothing to do and return 0.
CMM_EXPORT int CmmMQ_InitService();
CMM_EXPORT int CmmMQ_TermService();
}
