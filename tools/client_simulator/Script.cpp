#include "tools/client_simulator/Script.h"

#include <algorithm>
#include <iterator>
#include <random>

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
constexpr uint32_t kMaxGarbageBytes = 1 << 24;
constexpr unsigned kGarbageSeed = 1;  // the same garbage every time
constexpr char kTerminator = '\0';
constexpr std::string_view kVia = "via";

std::chrono::milliseconds Seconds(const Words& words, size_t index) {
  if (index >= words.size()) return std::chrono::seconds(kDefaultSeconds);
  return std::chrono::seconds(velm_tools::ParseInteger(words[index], 0, kMaxSeconds, "number of seconds"));
}

void ExpectWords(const Words& words, size_t least, size_t most, std::string_view form) {
  if (words.size() < least || words.size() > most)
    throw UsageError("'" + words.front() + "' is written: " + std::string(form));
}

SendStep TextStep(std::string data) {
  SendStep step;
  step.data = std::move(data);
  return step;
}

Step Notification(std::string_view line, std::string_view) {
  return TextStep(NotificationText(velm_tools::SplitWords(line)) + kTerminator);
}

Step Raw(std::string_view, std::string_view rest) {
  if (rest.empty()) throw UsageError("'raw' needs the text to send; an empty message is 'empty'");
  return TextStep(std::string(rest) + kTerminator);
}

Step Flood(std::string_view line, std::string_view) {
  Words words = velm_tools::SplitWords(line);
  if (words.size() < 3) throw UsageError("'flood' is written: flood COUNT NOTIFICATION [KEY=VALUE..]");
  FloodStep flood;
  flood.count = velm_tools::ParseNumber<uint32_t>(words[1], "number of notifications");
  flood.words.assign(words.begin() + 2, words.end());
  flood.words.insert(flood.words.begin() + 1, "0");
  NotificationText(flood.words);
  return flood;
}

Step Frame(std::string_view, std::string_view rest) {
  const auto [type, payload] = velm_tools::SplitFirstWord(rest);
  if (type.empty()) throw UsageError("'frame' is written: frame TYPE [PAYLOAD]");
  SendStep step;
  step.form = SendStep::Form::kFrame;
  step.frameType = velm_tools::ParseNumber<int32_t>(type, "type");
  step.data = std::string(payload);
  return step;
}

Step Garbage(std::string_view line, std::string_view) {
  const Words words = velm_tools::SplitWords(line);
  ExpectWords(words, 2, 2, "garbage BYTES");
  const auto size = velm_tools::ParseInteger(words[1], 1, kMaxGarbageBytes, "number of bytes");
  std::mt19937 random(kGarbageSeed);
  SendStep step;
  step.form = SendStep::Form::kBytes;
  std::generate_n(std::back_inserter(step.data.emplace()), size, [&] { return static_cast<char>(random()); });
  return step;
}

Step Drop(std::string_view line, std::string_view) {
  ExpectWords(velm_tools::SplitWords(line), 1, 1, "via PIPE drop");
  return DropStep{};
}

template <PipeSwitchStep::Switch kWhich>
Step PipeSwitch(std::string_view line, std::string_view) {
  const Words words = velm_tools::SplitWords(line);
  const bool on = words.back() == "on";
  if (words.size() != 2 || (!on && words.back() != "off"))
    throw UsageError("'" + words.front() + "' takes on or off");
  return PipeSwitchStep{kWhich, on};
}

Step Die(std::string_view line, std::string_view) {
  ExpectWords(velm_tools::SplitWords(line), 1, 1, "die");
  return DieStep{};
}

Step Bytes(std::string_view line, std::string_view) {
  Words words = velm_tools::SplitWords(line);
  SendStep step;
  step.form = SendStep::Form::kBytes;
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
  return TextStep(std::string(1, kTerminator));
}

Step NoData(std::string_view line, std::string_view) {
  ExpectWords(velm_tools::SplitWords(line), 1, 1, "nodata");
  return SendStep{};
}

Step WaitForHost(std::string_view line, std::string_view) {
  const Words words = velm_tools::SplitWords(line);
  ExpectWords(words, 1, 2, "wait-host [SECONDS]");
  return WaitForHostStep{Seconds(words, 1), {}};
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
    {"flood", Flood},
    {"frame", Frame},
    {"garbage", Garbage},
    {"drop", Drop},
    {"stall", PipeSwitch<PipeSwitchStep::Switch::kStall>},
    {"split", PipeSwitch<PipeSwitchStep::Switch::kSplit>},
    {"goodbye", PipeSwitch<PipeSwitchStep::Switch::kGoodbye>},
    {"die", Die},
    {"wait-host", WaitForHost},
    {"wait-command", WaitForCommands},
    {"sleep", Sleep},
    {"help", Help},
    {"quit", Quit},
};

// "audio:1234": a route, and for a pipe the channel's id.
Via ParseVia(std::string_view word) {
  const size_t colon = std::min(word.find(':'), word.size());
  Via via;
  bool isKnown = false;
  for (const RouteKind kind : {RouteKind::kWindow, RouteKind::kAudio, RouteKind::kService}) {
    if (NameOf(kind) != word.substr(0, colon)) continue;
    via.kind = kind;
    isKnown = true;
  }
  if (!isKnown || (via.kind == RouteKind::kWindow && colon != word.size()))
    throw UsageError(
        "'via' takes window, audio or service, or of these pipes one host's by its channel id, "
        "as in audio:1234, not '" +
        std::string(word) + "'");
  if (colon != word.size()) via.id = velm_tools::ParseNumber<uint32_t>(word.substr(colon + 1), "channel id");
  return via;
}

// What goes by pipe only, and what goes by window only.
void CheckRoute(const Step& step, RouteKind kind) {
  const bool byWindow = kind == RouteKind::kWindow;
  if (const auto* send = std::get_if<SendStep>(&step)) {
    if (byWindow && send->form == SendStep::Form::kFrame) throw UsageError("a frame goes by pipe: via audio");
    if (!byWindow && !send->data) throw UsageError("'nodata' only goes by window");
    if (!byWindow && send->id != SendStep().id) throw UsageError("'dwData=' only goes by window");
  }
  if (byWindow && std::holds_alternative<DropStep>(step))
    throw UsageError("'drop' is written: via PIPE drop");
}

void SetVia(Step& step, const Via& via, std::string_view line) {
  const bool isDone = std::visit(
      [&]<typename T>(T& alternative) {
        if constexpr (requires { alternative.via; }) {
          alternative.via = via;
          return true;
        }
        return false;
      },
      step);
  if (!isDone) throw UsageError("'via' cannot stand before '" + std::string(line) + "'");
}

std::optional<Step> ParseWithoutVia(std::string_view line) {
  line = velm_tools::Trim(line);
  if (line.empty() || line.front() == '#') return std::nullopt;
  const auto [name, rest] = velm_tools::SplitFirstWord(line);
  for (const Verb& verb : kVerbs)
    if (verb.name == name) return verb.parse(line, rest);
  std::vector<std::string_view> names = NotificationNames();
  if (std::ranges::find(names, name) != names.end()) return Notification(line, rest);
  for (const Verb& verb : kVerbs)
    names.push_back(verb.name);
  names.push_back(kVia);
  throw UsageError("unknown command '" + std::string(name) + "'" + velm_tools::Hint(name, names));
}

}  // namespace

std::string_view NameOf(RouteKind kind) {
  switch (kind) {
    case RouteKind::kWindow:
      return "window";
    case RouteKind::kAudio:
      return "audio";
    case RouteKind::kService:
      return "service";
  }
  return {};
}

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
    garbage BYTES               so many bytes that mean nothing, the same every time
    flood COUNT NOTIFICATION..  so many notifications, written without their NUMBER, which counts from 0

  All of this goes to the host applications' windows. To go another way a line begins with
    via audio, via service      by that pipe to every host that has it open
    via audio:ID                only to the host whose channel has this id
  By pipe a text travels in a typed message and without its NUL; 'bytes' go as they are, in no frame, and
  'nodata' and dwData= do not go at all. Only by pipe:
    frame TYPE [PAYLOAD]        a frame of any type; the payload is the rest of the line
    drop                        close the pipe: 'via audio drop'

  How all pipes behave from here on:
    stall on|off                do not read what hosts send
    split on|off                send every byte by itself
    goodbye on|off              confirm a host's goodbye, as at first, or leave it without an answer

  Steps:
    wait-host [SECONDS]         until a host application's window exists; 'via audio wait-host': until one
                                has that pipe open
    wait-command N [SECONDS]    until N commands arrived that no earlier wait-command counted
    sleep MILLISECONDS
    die                         end hard, and leave the product to 'uninstall'
    help
    quit
  A wait fails after 10 seconds unless SECONDS say otherwise.)";

std::optional<Step> ParseStep(std::string_view line) {
  const auto [name, rest] = velm_tools::SplitFirstWord(line);
  if (name != kVia) {
    const std::optional<Step> step = ParseWithoutVia(line);
    if (step) CheckRoute(*step, RouteKind::kWindow);
    return step;
  }
  const auto [route, behind] = velm_tools::SplitFirstWord(rest);
  const Via via = ParseVia(route);
  const bool isTwice = velm_tools::SplitFirstWord(behind).first == kVia;
  std::optional<Step> step = isTwice ? std::nullopt : ParseWithoutVia(behind);
  if (!step) throw UsageError("'via' is written: via ROUTE LINE");
  SetVia(*step, via, behind);
  CheckRoute(*step, via.kind);
  return step;
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
