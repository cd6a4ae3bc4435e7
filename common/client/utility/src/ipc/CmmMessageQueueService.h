#pragma once

#include <map>
#include <memory>
#include <vector>

#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/ipc/CmmMessageQueue.h"

namespace Cmm::MQ {

// A client that ignores everything.
class CCmmMessageQueueClientProxy : public ICmmMessageQueueClient {
 public:
  void OnMessage(const char* topic, void* sender, CmmMQ_Msg* msg) override;
  void OnNotify(const char* topic, void* sender, CmmMQ_Msg* msg, void* extra) override;
  const char* GetClientName() override;
};

// Who hears of one topic.
class TopicEntry {
 public:
  struct Subscription {
    ICmmMessageQueueClient* client;
    void* sender_filter;  // null: every sender

    bool Passes(const void* sender) const { return !sender_filter || sender_filter == sender; }
  };

  explicit TopicEntry(const char* name) : m_name(name) {}

  const char* Name() const { return m_name.c_str(); }
  bool IsEmpty() const { return m_subscriptions.empty(); }
  void Add(ICmmMessageQueueClient* client, void* sender_filter);
  bool Remove(const ICmmMessageQueueClient* client, const void* sender_filter);
  // Whether the client hears of what `sender` sends.
  bool Hears(const ICmmMessageQueueClient* client, const void* sender) const;

  // `call` may not change the subscriptions; what it adds all the same is heard of at once.
  template <typename Call>
  void ForEachHearing(const void* sender, Call call) const {
    for (size_t i = 0; i < m_subscriptions.size(); ++i)
      if (m_subscriptions[i].Passes(sender)) call(m_subscriptions[i].client);
  }

 private:
  CStringT<char> m_name;
  std::vector<Subscription> m_subscriptions;
};

class CMM_EXPORT CCmmMessageQueueService : public ICmmMessageQueueService {
 public:
  CCmmMessageQueueService();
  CCmmMessageQueueService(const CCmmMessageQueueService&) = delete;
  CCmmMessageQueueService& operator=(const CCmmMessageQueueService&) = delete;
  ~CCmmMessageQueueService() override;  // clients are neither told nor deleted

  // The one that CmmMQ_GetService hands out.
  static CCmmMessageQueueService* GetProcessService();

  ICmmMessageQueueClient* GetClientProxy() override;
  int RegisterClient(ICmmMessageQueueClient* client) override;
  int UnregisterClient(ICmmMessageQueueClient* client) override;
  ICmmMessageQueueClient* FindClient(const char* name) override;
  int Subscribe(ICmmMessageQueueClient* client, const char* topic, void* sender_filter) override;
  int Unsubscribe(ICmmMessageQueueClient* client, const char* topic, void* sender_filter) override;
  int SendToTopic(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg) override;
  int SendToTopicEx(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg,
                    void* extra) override;
  int NotifyTopic(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg,
                  void* extra) override;
  int PostToTopic(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg) override;
  int PostToTopicEx(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg,
                    void* extra) override;
  int PostNotify(void* sender, const char* topic, ICmmMessageQueueClient* target, CmmMQ_Msg* msg,
                 void* extra) override;
  int CancelPosted(void* sender, const char* topic) override;
  void NotifyBeforeTerm(CmmMQ_Msg* msg) override;

 private:
  friend struct MessageQueueTestAccess;

  void Broadcast(const char* topic, CmmMQ_Msg* msg, const ICmmMessageQueueClient* skipped);
  // The status for a topic that cannot be used, or CMM_MQ_OK and its entry.
  int FindTopic(const char* topic, TopicEntry*& entry);
  template <typename CallEntry, typename CallTarget>
  int Deliver(void* sender, const char* topic, ICmmMessageQueueClient* target, CallEntry callEntry,
              CallTarget callTarget);

  std::map<CStringT<char>, ICmmMessageQueueClient*> clients_;  // by name, not owned
  std::map<CStringT<char>, std::unique_ptr<TopicEntry>> topics_;
  CCmmMessageQueueClientProxy proxy_;
};

}  // namespace Cmm::MQ
