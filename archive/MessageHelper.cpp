#include "archive/MessageHelper.h"

#include <memory>

namespace Cmm::CCmmMessageHelper {

CmmMQ_Msg* FlatternToMsg(CCmmArchiveObjHelper* helper, int messageId) {
  if (!helper) return nullptr;
  const std::unique_ptr<ICmmArchiveStream> stream(helper->Flattern());
  return FlatternStreamToMsg(stream.get(), messageId);
}

CmmMQ_Msg* FlatternStreamToMsg(ICmmArchiveStream* stream, int messageId) {
  if (!stream || !stream->GetStreamData() || stream->GetStreamSize() == 0) return nullptr;
  return CmmMQ_Msg::MakeMessage(stream->GetStreamData(), stream->GetStreamSize(), messageId);
}

void FreeMsg(CmmMQ_Msg* message) {
  delete message;
}

}  // namespace Cmm::CCmmMessageHelper
