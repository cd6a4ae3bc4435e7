#include "tools/client_simulator/Script.h"

#include <algorithm>

#include "tools/client_simulator/Notification.h"
#include "tools/common/Text.h"
#include "tools/common/UsageError.h"
#include "tools/common/Words.h"

namespace velm_sim {
namespace {

using velm_tools::UsageError;
using Words = std::vector<std::string>;

constexpr uint32_t kDefaultSeconds = 10;
constexpr uint32_t kMaxSeconds = 86400;
constexpr char kTerminator = '\0';

std::chrono::milliseconds Seconds(const Words& words, size_t index) {
  if (index >= words.size()) return std::chrono::seconds(kDefaultSeconds);
  return std::chrono::seconds(velm_tools::ParseInteger(words[index], 0, kMaxSeconds, "number of seconds"));
}

void ExpectWords(const Words& words, size_t least, size_t most, std::string_view form) {
  if (words.size() < least || words.size() > most)
    throw UsageError("'" + words.front() + "' is written: " + std::string(form));
}

Step Notification(std::string_view line, std::string_view) {
  return SendStep{NotificationText(velm_tools::SplitWords(line)) + kTerminator};
}

Step Raw(std::string_view, std::string_view rest) {
  if (rest.empty()) throw UsageError("'raw' needs the text to send; an empty message is 'empty'");
  return SendStep{std::string(rest) + kTerminator};
}

Step Bytes(std::string_view line, std::string_view) {
  Words words = velm_tools::SplitWords(line);
  SendStep step;
  constexpr std::string_view kId = "dwData=";
  if (words.back().starts_with(kId)) {
    step.id = velm_tools::ParseNumber<uint32_t>(words.back().substr(kId.size()), "dwData");
    words.pop_back();
  }
  std::string digits;
  for (size_t i = 1; i < words.size(); ++i)
    digits += words[i] + ' ';
  step.data = velm_tools::FromHex(digits);
  if (!step.data) throw UsageError("'bytes' takes two hexadecimal digits a byte, not '" + digits + "'");
  if (step.data->empty()) throw UsageError("'bytes' needs at least one byte; no data at all is 'nodata'");
  return step;
}

Step Empty(std::string_view line, std::string_view) {
  ExpectWords(velm_tools::SplitWords(line), 1, 1, "empty");
  return SendStep{std::string(1, kTerminator)};
}

Step NoData(std::string_view line, std::string_view) {
  ExpectWords(velm_tools::SplitWords(line), 1, 1, "nodata");
  return SendStep{};
}

Step WaitForHost(std::string_view line, std::string_view) {
  const Words words = velm_tools::SplitWords(line);
  ExpectWords(words, 1, 2, "wait-host [SECONDS]");
  return WaitForHostStep{Seconds(words, 1)};
}

Step WaitForCommands(std::string_view line, std::string_view) {
  const Words words = velm_tools::SplitWords(line);
  ExpectWords(words, 2, 3, "wait-command N [SECONDS]");
  return WaitForCommandsStep{velm_tools::ParseNumber<uint32_t>(words[1], "number of commands"),
                             Seconds(words, 2)};
}

Step Sleep(std::string_view line, std::string_view) {
  const Words words = velm_tools::SplitWords(line);
  ExpectWords(words, 2, 2, "sleep MILLISECONDS");
  return SleepStep{std::chrono::milliseconds(
      velm_tools::ParseInteger(words[1], 0, int64_t{kMaxSeconds} * 1000, "number of milliseconds"))};
}

Step Help(std::string_view, std::string_view) {
  return HelpStep{};
}

Step Quit(std::string_view line, std::string_view) {
  ExpectWords(velm_tools::SplitWords(line), 1, 1, "quit");
  return QuitStep{};
}

struct Verb {
  std::string_view name;
  Step (*parse)(std::string_view line, std::string_view rest);
};

constexpr Verb kVerbs[] = {
    {"raw", Raw},
    {"bytes", Bytes},
    {"empty", Empty},
    {"nodata", NoData},
    {"wait-host", WaitForHost},
    {"wait-command", WaitForCommands},
    {"sleep", Sleep},
    {"help", Help},
    {"quit", Quit},
};

}  // namespace

const std::string_view kStepHelp =
    R"(Lines, from the standard input or a script. '#' begins a comment line; "..." keeps blanks in a word, with
\" and \\ inside.

  Notifications; NUMBER is the family's value, a signed 32-bit number, decimal or 0x..:
    presence NUMBER [v2=N] [reason=N]    1   PresenceStatus, PresenceStatusV2, extraReason
    audio NUMBER                         2   AudioCmd
    share NUMBER                         3   ScreenShareStatus
    chat NUMBER                          4   ConfChatStatus
    camera NUMBER                        5   CameraStatus
    confaudio NUMBER [computer=N]        6   ConfAudioStatus, IsInComputerAudio
    event NUMBER [type=N]                7   ConfEvent, meetingType
    pt NUMBER                            8   PTEvent
    device NUMBER [type=N]               9   ConfDeviceStatus, ConfDeviceType
    ui NUMBER [type=N]                   10  UIControlStatus, UIControlType
  All of them also take
    from=N device=TEXT guid=TEXT meeting=TEXT count=N result=CODE:TEXT
  What is not written is not sent.

  Anything else:
    raw TEXT                    the rest of the line as it stands, with a terminating NUL
    bytes HEX.. [dwData=N]      exactly these bytes, with no NUL added; dwData is 10 unless given
    empty                       an empty message: one byte, NUL
    nodata                      a message without data: a null pointer

  Steps:
    wait-host [SECONDS]         until a host application's window exists
    wait-command N [SECONDS]    until N commands arrived that no earlier wait-command counted
    sleep MILLISECONDS
    help
    quit
  A wait fails after 10 seconds unless SECONDS say otherwise.)";

std::optional<Step> ParseStep(std::string_view line) {
  line = velm_tools::Trim(line);
  if (line.empty() || line.front() == '#') return std::nullopt;
  const auto [name, rest] = velm_tools::SplitFirstWord(line);
  for (const Verb& verb : kVerbs)
    if (verb.name == name) return verb.parse(line, rest);
  std::vector<std::string_view> names = NotificationNames();
  if (std::ranges::find(names, name) != names.end()) return Notification(line, rest);
  for (const Verb& verb : kVerbs)
    names.push_back(verb.name);
  throw UsageError("unknown command '" + std::string(name) + "'" + velm_tools::Hint(name, names));
}

std::vector<Step> ParseScript(std::string_view text) {
  std::vector<Step> steps;
  for (size_t number = 1; !text.empty(); ++number) {
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    try {
      if (const std::optional<Step> step = ParseStep(line)) steps.push_back(*step);
    } catch (const UsageError& error) {
      throw UsageError("line " + std::to_string(number) + ": " + error.what());
    }
  }
  return steps;
}

}  // namespace velm_sim
