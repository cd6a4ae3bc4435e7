#include "tools/host_console/Records.h"

#include "tools/common/JsonLine.h"
#include "tools/common/Text.h"

namespace velm_host {
namespace {

Json::Value Text(const wchar_t* text) {
  return velm_tools::ToUtf8(text);
}

Json::Value TextOrNull(const wchar_t* text) {
  return text ? Text(text) : Json::Value();
}

}  // namespace

Record Describe(const SdkNotifyInfo* info, const wchar_t* rawJson) {
  Record record{"SetCallBackFunc", "SdkNotifyInfo", {}};
  if (info)
    record.fields = {{"success", info->success},
                     {"code", info->code},
                     {"from", info->from},
                     {"value", info->value},
                     {"commandId", info->commandId},
                     {"deviceName", Text(info->deviceName)},
                     {"deviceGUID", Text(info->deviceGUID)},
                     {"resultInfo", Text(info->resultInfo)},
                     {"meetingId", Text(info->meetingId)},
                     {"isInComputerAudio", info->isInComputerAudio},
                     {"activeMeetingsCount", info->activeMeetingsCount},
                     {"subType", info->subType}};
  record.fields.emplace_back("rawJson", TextOrNull(rawJson));
  return record;
}

Record Describe(const SdkPresenceInfo& info) {
  return {"SetIMPresenceCallBack",
          "SdkPresenceInfo",
          {{"success", info.success},
           {"code", info.code},
           {"status", info.status},
           {"statusV2", info.statusV2},
           {"resultInfo", Text(info.resultInfo)},
           {"extraReason", info.extraReason}}};
}

Record Describe(const SdkAudioInfo& info) {
  return {"SetAudioCallBack",
          "SdkAudioInfo",
          {{"success", info.success},
           {"code", info.code},
           {"audioCmd", info.audioCmd},
           {"deviceName", Text(info.deviceName)},
           {"deviceGUID", Text(info.deviceGUID)},
           {"resultInfo", Text(info.resultInfo)}}};
}

Record Describe(const SdkStatusInfo& info, std::string_view callback) {
  return {callback,
          "SdkStatusInfo",
          {{"success", info.success},
           {"code", info.code},
           {"status", info.status},
           {"resultInfo", Text(info.resultInfo)}}};
}

Record Describe(const SdkConfAudioInfo& info) {
  return {"SetConfAudioCallBack",
          "SdkConfAudioInfo",
          {{"success", info.success},
           {"code", info.code},
           {"status", info.status},
           {"isInComputerAudio", info.isInComputerAudio},
           {"resultInfo", Text(info.resultInfo)}}};
}

Record Describe(const SdkConfEventInfo& info) {
  return {"SetConfEventCallBack",
          "SdkConfEventInfo",
          {{"success", info.success},
           {"code", info.code},
           {"event", info.event},
           {"resultInfo", Text(info.resultInfo)},
           {"meetingId", Text(info.meetingId)},
           {"activeMeetingsCount", info.activeMeetingsCount},
           {"meetingType", info.meetingType}}};
}

Record Describe(const SdkPTEventInfo& info) {
  return {"SetPTEventCallBack",
          "SdkPTEventInfo",
          {{"success", info.success},
           {"code", info.code},
           {"event", info.event},
           {"resultInfo", Text(info.resultInfo)}}};
}

Record Describe(const SdkConfDeviceInfo& info) {
  return {"SetConfDeviceCallBack",
          "SdkConfDeviceInfo",
          {{"success", info.success},
           {"code", info.code},
           {"status", info.status},
           {"deviceType", info.deviceType},
           {"meetingId", Text(info.meetingId)}}};
}

Record Describe(const SdkUIControlInfo& info) {
  return {"SetUIControlStatusCallBack",
          "SdkUIControlInfo",
          {{"success", info.success},
           {"code", info.code},
           {"controlType", info.controlType},
           {"status", info.status}}};
}

Record DescribeRaw(const wchar_t* rawJson) {
  return {"InitVelm3rdSdkChannel", "ISdkRawSink", {{"rawJson", TextOrNull(rawJson)}}};
}

std::string ToReadable(const Record& record) {
  std::string text = "<- " + std::string(record.callback) + ":";
  for (const auto& [name, value] : record.fields)
    text += " " + std::string(name) + "=" + velm_tools::ToJson(value);
  return text;
}

std::string ToJsonLine(const Record& record) {
  velm_tools::JsonLine line;
  line.Add("event", "record")
      .Add("callback", std::string(record.callback))
      .Add("type", std::string(record.type));
  for (const auto& [name, value] : record.fields)
    line.Add(name, value);
  return line.Text();
}

}  // namespace velm_host
