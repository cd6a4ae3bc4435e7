#pragma once

// What travels by pipe between the client and a host application: its texts inside typed messages. They are
// put together and taken apart here, without the library's archive, so that each is a witness for the other.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "tools/client_simulator/Script.h"

namespace velm_sim {

inline constexpr int kConnectType = 1;         // a host's announcement, its first frame
inline constexpr int kClientExitType = 40353;  // a host's goodbye, and its confirmation

// One of the pipes, by the route that is its name.
struct PipeVocabulary {
  std::string_view channelPrefix;
  int requestType;
  std::string_view requestField;  // of the message that brings a command
  int notifyType;
  std::string_view notifyName;  // the message that takes a notification
  std::string_view notifyField;
};

// `kind` is not the window.
const PipeVocabulary& VocabularyOf(RouteKind kind);

// The channel's name: the number behind the prefix is signed, as the library writes it.
std::string ChannelName(RouteKind kind, uint32_t id);

// The one XML element of a payload. None when it is no element.
struct PipeMessage {
  std::string name;
  std::map<std::string, std::string, std::less<>> attributes;

  // None when there is no attribute of that name, or it is no number.
  std::optional<uint32_t> Number(std::string_view attribute) const;
};
std::optional<PipeMessage> ReadMessage(std::string_view payload);

// Whole frames.
std::string NotificationFrame(RouteKind kind, uint32_t channelId, const std::string& text);
std::string GoodbyeFrame();

}  // namespace velm_sim
