#include "archive/MessageHelper.h"

#include <tinyxml2.h>

namespace Cmm::CCmmMessageHelper {

// The same as FlatternStreamToMsg on the stream of Flattern, without the element and the stream.
CmmMQ_Msg* FlatternToMsg(CCmmArchiveObjHelper* helper, int messageId) {
  tinyxml2::XMLPrinter printer;
  if (!helper || !helper->Print(printer)) return nullptr;
  return CmmMQ_Msg::MakeMessage(reinterpret_cast<const unsigned char*>(printer.CStr()),
                                static_cast<unsigned>(printer.CStrSize() - 1), messageId);
}

CmmMQ_Msg* FlatternStreamToMsg(ICmmArchiveStream* stream, int messageId) {
  if (!stream || !stream->GetStreamData() || stream->GetStreamSize() == 0) return nullptr;
  return CmmMQ_Msg::MakeMessage(stream->GetStreamData(), stream->GetStreamSize(), messageId);
}

void FreeMsg(CmmMQ_Msg* message) {
  delete message;
}

}  // namespace Cmm::CCmmMessageHelper
