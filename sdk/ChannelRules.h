#pragma once

// The decisions of the channel that need nothing but their arguments.

#include <cstdint>
#include <span>

namespace Velm3rdSDK {

struct ClientVersion {
  uint16_t major = 0;
  uint16_t minor = 0;
  uint16_t third = 0;   // never compared
  uint16_t fourth = 0;  // never compared
};

constexpr bool IsAtLeast(const ClientVersion& version, uint16_t major, uint16_t minor) {
  return version.major > major || (version.major == major && version.minor >= minor);
}

constexpr bool SupportsAudioIpc(const ClientVersion& version) {
  return IsAtLeast(version, 5, 6);
}

// The log text of a refusal speaks of 5.7.6; the rule is 5.8 all the same, and 5.7.x is refused.
constexpr bool SupportsServiceMode(const ClientVersion& version) {
  return IsAtLeast(version, 5, 8);
}

inline constexpr int kSessionActive = 0;  // WTSActive

struct Session {
  uint32_t id;
  int state;  // a WTS_CONNECTSTATE_CLASS
};

// The id of the first active session; without one, the number of sessions, which no server may serve.
constexpr uint32_t ChooseChannelId(std::span<const Session> sessions) {
  for (const Session& session : sessions)
    if (session.state == kSessionActive) return session.id;
  return static_cast<uint32_t>(sessions.size());
}

}  // namespace Velm3rdSDK
