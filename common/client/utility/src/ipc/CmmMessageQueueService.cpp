#include "common/client/utility/src/ipc/CmmMessageQueueService.h"

#include <algorithm>

#include "archive/catalogue/FrameworkMessages.h"

namespace Cmm {

ICmmMessageQueueClient::~ICmmMessageQueueClient() = default;

int ICmmMessageQueueClient::ClientExt1() {
  return 0;
}

int ICmmMessageQueueClient::ClientExt2() {
  return 0;
}

int ICmmMessageQueueClient::ClientExt3() {
  return 0;
}

bool ICmmMessageQueueClient::WantsTermNotice() {
  return false;
}

ICmmMessageQueueService::~ICmmMessageQueueService() = default;

namespace MQ {
namespace {

constexpr const char* kRegistryTopic = "com.Velm.app.mainboard.notifyClientRegistry";
constexpr const char* kUnregistryTopic = "com.Velm.app.mainboard.notifyClientUnregistry";
constexpr const char* kBeforeTermTopic = "com.Velm.app.mainboard.notifyBeforeTerm";

// The notice that `name` came or went; null when it cannot be made.
template <typename Notice>
std::unique_ptr<CmmMQ_Msg> MakeNotice(const char* name) {
  Notice notice;
  notice.Set_ClientID(name);
  return std::unique_ptr<CmmMQ_Msg>(notice.BuildMsg(-1));
}

}  // namespace

// ---- CCmmMessageQueueClientProxy

void CCmmMessageQueueClientProxy::OnMessage(const char*, void*, CmmMQ_Msg*) {}

void CCmmMessageQueueClientProxy::OnNotify(const char*, void*, CmmMQ_Msg*, void*) {}

const char* CCmmMessageQueueClientProxy::GetClientName() {
  return "com.XXX.MQ.CCmmMessageQueueClientProxy";
}

// ---- TopicEntry

bool TopicEntry::Hears(const ICmmMessageQueueClient* client, const void* sender) const {
  return std::any_of(m_subscriptions.begin(), m_subscriptions.end(), [&](const Subscription& subscription) {
    return subscription.client == client && subscription.Passes(sender);
  });
}

void TopicEntry::Add(ICmmMessageQueueClient* client, void* sender_filter) {
  if (Hears(client, sender_filter)) return;
  if (!sender_filter) Remove(client, nullptr);
  m_subscriptions.push_back({client, sender_filter});
}

bool TopicEntry::Remove(const ICmmMessageQueueClient* client, const void* sender_filter) {
  return std::erase_if(m_subscriptions, [&](const Subscription& subscription) {
           return subscription.client == client &&
                  (!sender_filter || subscription.sender_filter == sender_filter);
         }) > 0;
}

// ---- CCmmMessageQueueService

CCmmMessageQueueService::CCmmMessageQueueService() = default;

CCmmMessageQueueService::~CCmmMessageQueueService() = default;

ICmmMessageQueueClient* CCmmMessageQueueService::GetClientProxy() {
  return &proxy_;
}

int CCmmMessageQueueService::RegisterClient(ICmmMessageQueueClient* client) {
  const char* const name = client ? client->GetClientName() : nullptr;
  if (!name) return CMM_MQ_BAD_ARGUMENT;
  if (!clients_.insert_or_assign(name, client).second) return CMM_MQ_EXISTED;
  if (const auto notice = MakeNotice<CQXMBMessage_NotifyClientRegistry>(name))
    Broadcast(kRegistryTopic, notice.get(), client);
  return CMM_MQ_OK;
}

int CCmmMessageQueueService::UnregisterClient(ICmmMessageQueueClient* client) {
  const char* const name = client ? client->GetClientName() : nullptr;
  if (!name) return CMM_MQ_BAD_ARGUMENT;
  const auto found = clients_.find(name);
  if (found == clients_.end()) return CMM_MQ_NOT_FOUND;
  const CStringT<char> key = found->first;
  if (const ICmmMessageQueueClient* const stored = found->second)
    if (const auto notice = MakeNotice<CQXMBMessage_NotifyClientUnRegistry>(name))
      Broadcast(kUnregistryTopic, notice.get(), stored);
  clients_.erase(key);
  return CMM_MQ_OK;
}

void CCmmMessageQueueService::Broadcast(const char* topic, CmmMQ_Msg* msg,
                                        const ICmmMessageQueueClient* skipped) {
  for (const auto& [name, client] : clients_)
    if (client && client != skipped) client->OnNotify(topic, nullptr, msg, nullptr);
}

ICmmMessageQueueClient* CCmmMessageQueueService::FindClient(const char* name) {
  if (!name) return nullptr;
  const auto found = clients_.find(name);
  return found == clients_.end() ? nullptr : found->second;
}

int CCmmMessageQueueService::FindTopic(const char* topic, TopicEntry*& entry) {
  const auto found = topics_.find(topic);
  if (found == topics_.end()) return CMM_MQ_NOT_FOUND;
  entry = found->second.get();
  return entry ? CMM_MQ_OK : CMM_MQ_NO_ENTRY;
}

int CCmmMessageQueueService::Subscribe(ICmmMessageQueueClient* client, const char* topic,
                                       void* sender_filter) {
  if (!client || !topic) return CMM_MQ_BAD_ARGUMENT;
  TopicEntry* entry = nullptr;
  const int status = FindTopic(topic, entry);
  if (status == CMM_MQ_NO_ENTRY) return status;
  if (status == CMM_MQ_NOT_FOUND)
    entry = topics_.emplace(topic, std::make_unique<TopicEntry>(topic)).first->second.get();
  entry->Add(client, sender_filter);
  return CMM_MQ_OK;
}

int CCmmMessageQueueService::Unsubscribe(ICmmMessageQueueClient* client, const char* topic,
                                         void* sender_filter) {
  if (!client || !topic) return CMM_MQ_BAD_ARGUMENT;
  TopicEntry* entry = nullptr;
  if (const int status = FindTopic(topic, entry); status != CMM_MQ_OK) return status;
  const bool removed = entry->Remove(client, sender_filter);
  if (entry->IsEmpty()) topics_.erase(topic);
  return removed ? CMM_MQ_OK : CMM_MQ_NOT_FOUND;
}

template <typename CallEntry, typename CallTarget>
int CCmmMessageQueueService::Deliver(void* sender, const char* topic, ICmmMessageQueueClient* target,
                                     CallEntry callEntry, CallTarget callTarget) {
  if (!sender || !topic) return CMM_MQ_BAD_ARGUMENT;
  TopicEntry* entry = nullptr;
  if (const int status = FindTopic(topic, entry); status != CMM_MQ_OK) return status;
  if (!target) {
    callEntry(*entry);
    return CMM_MQ_OK;
  }
  if (!entry->Hears(target, sender)) return CMM_MQ_NOT_FOUND;
  callTarget();
  return CMM_MQ_OK;
}

int CCmmMessageQueueService::SendToTopic(void* sender, const char* topic, ICmmMessageQueueClient* target,
                                         CmmMQ_Msg* msg) {
  return Deliver(
      sender, topic, target,
      [&](const TopicEntry& entry) {
        entry.ForEachHearing(
            sender, [&](ICmmMessageQueueClient* client) { client->OnMessage(entry.Name(), sender, msg); });
      },
      [&] { target->OnMessage(topic, sender, msg); });
}

int CCmmMessageQueueService::SendToTopicEx(void* sender, const char* topic, ICmmMessageQueueClient* target,
                                           CmmMQ_Msg* msg, void*) {
  return SendToTopic(sender, topic, target, msg);
}

int CCmmMessageQueueService::NotifyTopic(void* sender, const char* topic, ICmmMessageQueueClient* target,
                                         CmmMQ_Msg* msg, void* extra) {
  return Deliver(
      sender, topic, target,
      [&](const TopicEntry& entry) {
        entry.ForEachHearing(sender, [&](ICmmMessageQueueClient* client) {
          client->OnNotify(entry.Name(), sender, msg, extra);
        });
      },
      [&] { target->OnNotify(topic, sender, msg, extra); });
}

int CCmmMessageQueueService::PostToTopic(void*, const char*, ICmmMessageQueueClient*, CmmMQ_Msg*) {
  return CMM_MQ_NOT_SUPPORTED;
}

int CCmmMessageQueueService::PostToTopicEx(void*, const char*, ICmmMessageQueueClient*, CmmMQ_Msg*, void*) {
  return CMM_MQ_NOT_SUPPORTED;
}

int CCmmMessageQueueService::PostNotify(void*, const char*, ICmmMessageQueueClient*, CmmMQ_Msg*, void*) {
  return CMM_MQ_NOT_SUPPORTED;
}

int CCmmMessageQueueService::CancelPosted(void*, const char*) {
  return CMM_MQ_NOT_SUPPORTED;
}

// The copy is what lets a client unregister from inside the notice.
void CCmmMessageQueueService::NotifyBeforeTerm(CmmMQ_Msg* msg) {
  const auto clients = clients_;
  for (const auto& [name, client] : clients)
    if (client && client->WantsTermNotice()) client->OnNotify(kBeforeTermTopic, nullptr, msg, nullptr);
}

}  // namespace MQ
}  // namespace Cmm

Cmm::ICmmMessageQueueService* CmmMQ_GetService() {
  return Cmm::MQ::CCmmMessageQueueService::GetProcessService();
}

int CmmMQ_InitService() {
  return 0;
}

int CmmMQ_TermService() {
  return 0;
}
