#pragma once

#include "archive/ArchiveObjHelper.h"
#include "archive/ArchiveStream.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"

// Instances into queue messages.
namespace Cmm::CCmmMessageHelper {

// A new message of type `messageId` with the text of what the helper has written, or with the bytes of a
// stream, which stays the caller's; the message is the caller's. Null for null, for a helper that does not
// write, and when there are no bytes.
CMM_EXPORT CmmMQ_Msg* FlatternToMsg(CCmmArchiveObjHelper* helper, int messageId);
CMM_EXPORT CmmMQ_Msg* FlatternStreamToMsg(ICmmArchiveStream* stream, int messageId);

CMM_EXPORT void FreeMsg(CmmMQ_Msg* message);  // null does nothing

}  // namespace Cmm::CCmmMessageHelper
