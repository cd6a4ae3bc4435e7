#pragma once

// A notification of the client: UTF-8 JSON turned into values, with no system call and no state.

#include <json/value.h>

#include <cstdint>

#include "sdk/SdkCommand.h"

namespace Velm3rdSDK {

inline constexpr size_t kTextChars = 200;       // meeting and result texts, terminator included
inline constexpr size_t kMaxResultBytes = 511;  // of the whole "code:text"; a longer one is not read
inline constexpr int32_t kNoResultCode = -1;

// What a notification says. A key that is absent, of another type, or a text at or over its limit leaves
// the value that stands here.
struct Notification {
  int32_t commandId = 0;
  int32_t from = 0;
  int32_t value = 0;               // the family's main value
  int32_t subType = 0;             // families 9 and 10
  int32_t statusV2 = 0;            // family 1
  int32_t extraReason = 0;         // family 1
  bool isInComputerAudio = false;  // family 6
  int32_t activeMeetingsCount = 0;
  int32_t meetingType = 0;
  wchar_t deviceName[kDeviceTextChars] = {};
  wchar_t deviceGUID[kDeviceTextChars] = {};
  wchar_t meetingId[kTextChars] = {};
  int32_t code = kNoResultCode;
  // The client may send up to 510 characters; what lies past 199 is cut off, and with it the first half
  // of a surrogate pair that would lose its second.
  wchar_t resultInfo[kTextChars] = {};
  bool resultTooLong = false;  // there was a result of more than kMaxResultBytes
};

// Reads a notification in two steps, so that one which nobody asked for costs no more than its parsing.
class NotificationReader {
 public:
  // Parses the whole text. Returns the commandId, 1 to 10, or 0 when the text is no JSON object or has no
  // integer commandId in that range.
  int32_t ParseCommandId(const char* utf8);

  // Reads the rest; only after ParseCommandId gave a commandId.
  void Read(Notification& out) const;

 private:
  Json::Value m_root;
  int32_t m_commandId = 0;
};

}  // namespace Velm3rdSDK
