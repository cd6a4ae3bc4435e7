#pragma once

// What callbacks receive, as lists of named fields: written out readable or as JSON.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <json/value.h>

#include "sdk/VelmSdk.h"

namespace velm_host {

struct Record {
  std::string_view callback;  // the setter of the callback that received it
  std::string_view type;      // the record's type
  std::vector<std::pair<std::string_view, Json::Value>> fields;
};

// Null arguments, which an empty message of the client brings, give a record without fields.
Record Describe(const SdkNotifyInfo* info, const wchar_t* rawJson);
Record Describe(const SdkPresenceInfo& info);
Record Describe(const SdkAudioInfo& info);
// One type, three families: `callback` tells them apart.
Record Describe(const SdkStatusInfo& info, std::string_view callback);
Record Describe(const SdkConfAudioInfo& info);
Record Describe(const SdkConfEventInfo& info);
Record Describe(const SdkPTEventInfo& info);
Record Describe(const SdkConfDeviceInfo& info);
Record Describe(const SdkUIControlInfo& info);
// What the raw sink receives.
Record DescribeRaw(const wchar_t* rawJson);

// "<- SetAudioCallBack: success=true code=0 audioCmd=5 ..."
std::string ToReadable(const Record& record);
// {"event":"record","callback":"SetAudioCallBack","type":"SdkAudioInfo","success":true,...}
std::string ToJsonLine(const Record& record);

}  // namespace velm_host
