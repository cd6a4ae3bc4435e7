#include "tools/client_simulator/PipeMessage.h"

#include <tinyxml2.h>

#include <charconv>

#include "tools/common/Frame.h"

namespace velm_sim {
namespace {

constexpr const char* kVersion = "version";
constexpr int kMessageVersion = 10000;

constexpr PipeVocabulary kAudio = {"com.velm.ipc.audiosdk_",
                                   40520,
                                   "AudioCmdRequest",
                                   40521,
                                   "com.velm.app.3rd.audiosdk.sendaudiocmd.notify",
                                   "AudioCmdNotify"};
constexpr PipeVocabulary kService = {"com.velm.ipc.client3rdsdk_",
                                     40525,
                                     "SDKCmdRequest",
                                     40526,
                                     "com.velm.app.3rd.clientsdk.send3rdsdkcmd.notify",
                                     "SDKCmdNotify"};

std::string FrameOf(int type, tinyxml2::XMLDocument& document) {
  tinyxml2::XMLPrinter printer;
  document.Print(&printer);
  return velm_tools::MakeFrame(type, printer.CStr());
}

}  // namespace

const PipeVocabulary& VocabularyOf(RouteKind kind) {
  return kind == RouteKind::kAudio ? kAudio : kService;
}

std::string ChannelName(RouteKind kind, uint32_t id) {
  return std::string(VocabularyOf(kind).channelPrefix) + std::to_string(static_cast<int32_t>(id));
}

std::optional<uint32_t> PipeMessage::Number(std::string_view attribute) const {
  const auto found = attributes.find(attribute);
  if (found == attributes.end()) return std::nullopt;
  const std::string& text = found->second;
  uint32_t number = 0;
  const auto [stop, code] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (code != std::errc() || stop != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<PipeMessage> ReadMessage(std::string_view payload) {
  tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  if (document.Parse(payload.data(), payload.size()) != tinyxml2::XML_SUCCESS) return std::nullopt;
  const tinyxml2::XMLElement* element = document.FirstChildElement();
  if (!element) return std::nullopt;
  PipeMessage message;
  message.name = element->Name();
  for (const auto* attribute = element->FirstAttribute(); attribute; attribute = attribute->Next())
    message.attributes.emplace(attribute->Name(), attribute->Value());
  return message;
}

std::string NotificationFrame(RouteKind kind, uint32_t channelId, const std::string& text) {
  const PipeVocabulary& vocabulary = VocabularyOf(kind);
  tinyxml2::XMLDocument document;
  tinyxml2::XMLElement* element = document.NewElement(std::string(vocabulary.notifyName).c_str());
  document.InsertEndChild(element);
  element->SetAttribute("ChannelId", channelId);
  element->SetAttribute(std::string(vocabulary.notifyField).c_str(), text.c_str());
  element->SetAttribute(kVersion, kMessageVersion);
  return FrameOf(vocabulary.notifyType, document);
}

std::string GoodbyeFrame() {
  tinyxml2::XMLDocument document;
  tinyxml2::XMLElement* element = document.NewElement("com.velm.app.log.clientexit");
  document.InsertEndChild(element);
  element->SetAttribute(kVersion, kMessageVersion);
  return FrameOf(kClientExitType, document);
}

}  // namespace velm_sim
