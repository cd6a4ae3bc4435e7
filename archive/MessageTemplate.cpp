#include "archive/MessageTemplate.h"

#include "archive/MessageHelper.h"

namespace Cmm::Archive {
namespace {

constexpr int kOwnId = -1;

}  // namespace

CmmMessageTemplate_0::CmmMessageTemplate_0(const char* packageName, int messageId)
    : m_packageName(packageName), m_messageId(messageId) {}

CmmMessageTemplate_0::~CmmMessageTemplate_0() = default;

CmmMQ_Msg* CmmMessageTemplate_0::BuildMsg(int messageId) {
  if (m_packageName.IsEmpty()) return nullptr;
  CCmmArchiveObjHelper helper(m_packageName.c_str());
  if (!WriteData(helper.GetWritterObj())) return nullptr;
  return CCmmMessageHelper::FlatternToMsg(&helper, messageId == kOwnId ? m_messageId : messageId);
}

int CmmMessageTemplate_0::ParseMsg(const CmmMQ_Msg* message) {
  return message ? 1 : 0;
}

int CmmMessageTemplate_0::WriteData(ICmmArchiveObjWritter* writter) {
  return writter ? 1 : 0;
}

int CmmMessageTemplate_0::ReadData(ICmmArchiveObjReader* reader) {
  return reader ? 1 : 0;
}

int CmmMessageTemplate_0::ParseFields(const CmmMQ_Msg* message) {
  if (!message) return 0;
  const CCmmArchiveObjHelper helper(message->GetData(), message->GetLen());
  return ReadData(helper.GetReaderObj());
}

}  // namespace Cmm::Archive
