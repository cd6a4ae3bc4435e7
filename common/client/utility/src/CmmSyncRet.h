#pragma once

namespace Cmm {

// What a try or a timed wait answers: the system's wait value as it stands, of which these are named.
enum ESyncRet : int {
  SYNC_OK = 0,          // acquired, or signalled
  SYNC_TIMEOUT = 258,   // not within the time
  SYNC_NO_OBJECT = -1,  // called on a null pointer; also the system's answer when a wait fails
};

}  // namespace Cmm
