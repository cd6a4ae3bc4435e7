#include "tools/host_console/Functions.h"

#include <algorithm>
#include <cstdio>

#include "tools/common/JsonLine.h"
#include "tools/common/Overloaded.h"
#include "tools/common/Text.h"
#include "tools/common/UsageError.h"
#include "tools/common/Words.h"
#include "tools/host_console/Callbacks.h"

namespace velm_host {
namespace {

using velm_tools::Overloaded;
using velm_tools::UsageError;

constexpr std::string_view kNull = "null";

// The words of a call, in the order of the C declaration.
std::vector<std::string_view> ArgumentNames(const Target& target) {
  using Names = std::vector<std::string_view>;
  return std::visit(Overloaded{
                        [](const Plain&) { return Names{}; },
                        [](const TakesVersion&) { return Names{"[null]"}; },
                        [](const TakesFeatures&) { return Names{"FEATURES"}; },
                        [](const TakesSink&) { return Names{"[null]"}; },
                        [](const TakesCallback&) { return Names{"[null]"}; },
                        [](const TakesCommand&) { return Names{"COMMAND"}; },
                        [](const TakesText&) { return Names{"TEXT"}; },
                        [](const TakesDevice&) {
                          return Names{"NAME", "VID", "PID", "HOTSWITCH"};
                        },
                        [](const TakesDeviceWithGuid&) {
                          return Names{"NAME", "GUID", "VID", "PID", "HOTSWITCH"};
                        },
                    },
                    target);
}

std::optional<std::wstring> TextArgument(const std::string& word) {
  if (word == kNull) return std::nullopt;
  return velm_tools::FromUtf8(word);
}

const wchar_t* Pointer(const std::optional<std::wstring>& text) {
  return text ? text->c_str() : nullptr;
}

std::string Quoted(const std::optional<std::wstring>& text) {
  return text ? velm_tools::ToJson(velm_tools::ToUtf8(*text)) : std::string(kNull);
}

}  // namespace

const std::vector<Function>& Functions() {
  using enum Result;
  using enum Channel;
  static const std::vector<Function> functions = {
      {"TryRunningUnderServiceMode", "service-mode", Plain{TryRunningUnderServiceMode}, kCode, kMakes},
      {"GetVelmClientVersion", "version", TakesVersion{GetVelmClientVersion}, kCode, kMakes},
      {"GetSDKAvailableFeatures", "features", Plain{GetSDKAvailableFeatures}, kMask, kMakes},
      {"RegisterMsg", "register", TakesFeatures{RegisterMsg}, kFlag},
      {"InitVelm3rdSdkChannel", "init", TakesSink{InitVelm3rdSdkChannel}, kCode, kMakes},
      {"DestroySdkChannel", "destroy", Plain{DestroySdkChannel}, kCode, kEnds},

      {"SetCallBackFunc", "",
       TakesCallback{[](bool null) { return SetCallBackFunc(null ? nullptr : OnNotify); }}, kCode, kMakes},
      {"SetIMPresenceCallBack", "",
       TakesCallback{[](bool null) { return SetIMPresenceCallBack(null ? nullptr : OnPresence); }}, kCode,
       kMakes},
      {"SetAudioCallBack", "",
       TakesCallback{[](bool null) { return SetAudioCallBack(null ? nullptr : OnAudio); }}, kCode, kMakes},
      {"SetScreenShareCallBack", "",
       TakesCallback{[](bool null) { return SetScreenShareCallBack(null ? nullptr : OnScreenShare); }}, kCode,
       kMakes},
      {"SetConfChatCallBack", "",
       TakesCallback{[](bool null) { return SetConfChatCallBack(null ? nullptr : OnConfChat); }}, kCode,
       kMakes},
      {"SetCameraCallBack", "",
       TakesCallback{[](bool null) { return SetCameraCallBack(null ? nullptr : OnCamera); }}, kCode, kMakes},
      {"SetConfAudioCallBack", "",
       TakesCallback{[](bool null) { return SetConfAudioCallBack(null ? nullptr : OnConfAudio); }}, kCode,
       kMakes},
      {"SetConfEventCallBack", "",
       TakesCallback{[](bool null) { return SetConfEventCallBack(null ? nullptr : OnConfEvent); }}, kCode,
       kMakes},
      {"SetPTEventCallBack", "",
       TakesCallback{[](bool null) { return SetPTEventCallBack(null ? nullptr : OnPTEvent); }}, kCode,
       kMakes},
      {"SetConfDeviceCallBack", "",
       TakesCallback{[](bool null) { return SetConfDeviceCallBack(null ? nullptr : OnConfDevice); }}, kCode,
       kMakes},
      {"SetUIControlStatusCallBack", "",
       TakesCallback{[](bool null) { return SetUIControlStatusCallBack(null ? nullptr : OnUIControl); }},
       kCode, kMakes},

      {"GetIMPresenceStatus", "presence", Plain{GetIMPresenceStatus}},
      {"SetAudioCmd", "audio", TakesCommand{SetAudioCmd}},
      {"SetScreenShareCmd", "share", TakesCommand{SetScreenShareCmd}},
      {"SetConfChatCmd", "chat", TakesCommand{SetConfChatCmd}},
      {"SetCameraCmd", "camera", TakesCommand{SetCameraCmd}},
      {"SetConfAudioCmd", "confaudio", TakesCommand{SetConfAudioCmd}},
      {"SetConfEventCmd", "event", TakesCommand{SetConfEventCmd}},
      {"SetConfDeviceCmd", "device", TakesCommand{SetConfDeviceCmd}},
      {"GetUIControlStatusCmd", "ui", TakesCommand{GetUIControlStatusCmd}},
      {"SendMsgToVelmClient", "send", TakesText{SendMsgToVelmClient}},

      {"SetAudioDevice", "", TakesDevice{SetAudioDevice}, kFlag},
      {"SetAudioDeviceV2", "", TakesDeviceWithGuid{SetAudioDeviceV2}, kFlag},
      {"SetAudioDeviceWCHAR", "", TakesDeviceWithGuid{SetAudioDeviceWCHAR}, kFlag},
  };
  return functions;
}

const Function* FindFunction(std::string_view name) {
  for (const Function& function : Functions())
    if (!name.empty() && (function.name == name || function.shortName == name)) return &function;
  return nullptr;
}

std::vector<const Function*> FamilySetters() {
  std::vector<const Function*> setters;
  for (const Function& function : Functions())
    if (std::holds_alternative<TakesCallback>(function.target) && function.name != "SetCallBackFunc")
      setters.push_back(&function);
  return setters;
}

std::string Usage(const Function& function) {
  std::string usage(function.name);
  for (const std::string_view name : ArgumentNames(function.target))
    usage += ' ' + std::string(name);
  return usage;
}

Call ParseCall(const Function& function, const std::vector<std::string>& arguments) {
  const std::vector<std::string_view> names = ArgumentNames(function.target);
  const bool optional = !names.empty() && names[0].starts_with('[');
  if (arguments.size() > names.size() || (!optional && arguments.size() < names.size()))
    throw UsageError("wrong number of arguments, it is written: " + Usage(function));

  Call call;
  call.function = &function;
  const auto readNull = [&](const auto&) {
    if (arguments.empty()) return;
    if (arguments[0] != kNull)
      throw UsageError("'" + arguments[0] + "' is not 'null', it is written: " + Usage(function));
    call.null = true;
  };
  std::visit(Overloaded{
                 [](const Plain&) {},
                 [&](const TakesFeatures&) {
                   call.number = velm_tools::ParseInteger(arguments[0], INT64_MIN, INT64_MAX, "feature mask");
                 },
                 [&](const TakesCommand&) {
                   call.number = velm_tools::ParseNumber<int32_t>(arguments[0], "command");
                 },
                 [&](const TakesText&) { call.texts[0] = TextArgument(arguments[0]); },
                 [&](const TakesDevice&) {
                   call.texts = {TextArgument(arguments[0]), std::nullopt, TextArgument(arguments[1]),
                                 TextArgument(arguments[2])};
                   call.hotSwitch = velm_tools::ParseNumber<uint32_t>(arguments[3], "hot switch");
                 },
                 [&](const TakesDeviceWithGuid&) {
                   call.texts = {TextArgument(arguments[0]), TextArgument(arguments[1]),
                                 TextArgument(arguments[2]), TextArgument(arguments[3])};
                   call.hotSwitch = velm_tools::ParseNumber<uint32_t>(arguments[4], "hot switch");
                 },
                 readNull,  // all others
             },
             function.target);
  return call;
}

Outcome Invoke(const Call& call) {
  const auto& [name, guid, vid, pid] = call.texts;
  Outcome outcome;
  outcome.value = std::visit(
      Overloaded{
          [](const Plain& target) { return target.call(); },
          [&](const TakesVersion& target) {
            if (call.null) return target.call(nullptr);
            return target.call(outcome.version.emplace().data());
          },
          [&](const TakesFeatures& target) { return target.call(call.number); },
          [&](const TakesSink& target) { return target.call(call.null ? nullptr : RawSink()); },
          [&](const TakesCallback& target) { return target.call(call.null); },
          [&](const TakesCommand& target) { return target.call(static_cast<int32_t>(call.number)); },
          [&](const TakesText& target) { return target.call(Pointer(call.texts[0])); },
          [&](const TakesDevice& target) {
            return target.call(Pointer(name), Pointer(vid), Pointer(pid), call.hotSwitch);
          },
          [&](const TakesDeviceWithGuid& target) {
            return target.call(Pointer(name), Pointer(guid), Pointer(vid), Pointer(pid), call.hotSwitch);
          },
      },
      call.function->target);
  return outcome;
}

std::string_view CodeName(uint32_t code) {
  switch (code) {
    case SDK_OK:
      return "SDK_OK";
    case SDK_ERR_NO_CLIENT:
      return "SDK_ERR_NO_CLIENT";
    case SDK_ERR_NO_CLIENT_WINDOW:
      return "SDK_ERR_NO_CLIENT_WINDOW";
    case SDK_ERR_BAD_DATA:
      return "SDK_ERR_BAD_DATA";
    case SDK_ERR_CLIENT_TOO_OLD:
      return "SDK_ERR_CLIENT_TOO_OLD";
    case SDK_ERR_NO_CHANNEL:
      return "SDK_ERR_NO_CHANNEL";
    default:
      return "";
  }
}

std::string ResultText(Result result, uint32_t value) {
  const std::string number = std::to_string(value);
  switch (result) {
    case Result::kCode:
      return CodeName(value).empty() ? number : std::string(CodeName(value)) + " (" + number + ")";
    case Result::kMask: {
      char hexadecimal[16];
      std::snprintf(hexadecimal, sizeof(hexadecimal), "0x%x", value);
      return std::string(hexadecimal) + " (" + number + ")";
    }
    case Result::kFlag:
      return number + (value ? " (yes)" : " (no)");
  }
  return number;
}

std::string CallText(const Call& call) {
  const auto& [name, guid, vid, pid] = call.texts;
  const auto pointerOr = [&](std::string_view what) { return std::string(call.null ? kNull : what); };
  const std::string arguments =
      std::visit(Overloaded{
                     [](const Plain&) { return std::string(); },
                     [&](const TakesVersion&) { return pointerOr("version"); },
                     [&](const TakesSink&) { return pointerOr("sink"); },
                     [&](const TakesCallback&) { return pointerOr("callback"); },
                     [&](const TakesFeatures&) { return std::to_string(call.number); },
                     [&](const TakesCommand&) { return std::to_string(call.number); },
                     [&](const TakesText&) { return Quoted(call.texts[0]); },
                     [&](const TakesDevice&) {
                       return Quoted(name) + ", " + Quoted(vid) + ", " + Quoted(pid) + ", " +
                              std::to_string(call.hotSwitch);
                     },
                     [&](const TakesDeviceWithGuid&) {
                       return Quoted(name) + ", " + Quoted(guid) + ", " + Quoted(vid) + ", " + Quoted(pid) +
                              ", " + std::to_string(call.hotSwitch);
                     },
                 },
                 call.function->target);
  return std::string(call.function->name) + "(" + arguments + ")";
}

}  // namespace velm_host
