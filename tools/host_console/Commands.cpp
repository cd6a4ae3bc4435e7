#include "tools/host_console/Commands.h"

#include <algorithm>
#include <tuple>

#include "tools/common/Text.h"
#include "tools/common/UsageError.h"
#include "tools/common/Words.h"

namespace velm_host {
namespace {

using velm_tools::UsageError;
using Words = std::vector<std::string>;

constexpr uint32_t kDefaultSeconds = 10;
constexpr uint32_t kMaxSeconds = 86400;
constexpr std::string_view kWordCommands[] = {"call",  "select-device", "watch",       "wait",
                                              "sleep", "help",          "interactive", "quit"};

[[noreturn]] void ThrowUnknown(const std::string& word, std::string_view what) {
  std::vector<std::string_view> names;
  for (const Function& function : Functions()) {
    names.push_back(function.name);
    if (!function.shortName.empty()) names.push_back(function.shortName);
  }
  if (what == "command") names.insert(names.end(), std::begin(kWordCommands), std::end(kWordCommands));
  std::string hint = velm_tools::Hint(word, names);
  if (hint.empty()) hint = "; 'help' lists them";
  throw UsageError("unknown " + std::string(what) + " '" + word + "'" + hint);
}

// "--name value" pairs behind the command word.
class OptionReader {
 public:
  OptionReader(const Words& words, size_t first) : m_words(words), m_next(first) {}

  bool AtEnd() const { return m_next == m_words.size(); }
  const std::string& Next() { return m_words[m_next++]; }
  const std::string& Value(const std::string& name) {
    if (AtEnd()) throw UsageError("'" + name + "' needs a value");
    return Next();
  }

 private:
  const Words& m_words;
  size_t m_next;
};

std::chrono::milliseconds ParseSeconds(const std::string& text) {
  return std::chrono::seconds(velm_tools::ParseInteger(text, 0, kMaxSeconds, "number of seconds"));
}

Command ParseBareCall(const Words& words) {
  if (words.size() < 2) throw UsageError("'call' needs the name of a function");
  const Function* function = FindFunction(words[1]);
  if (!function) ThrowUnknown(words[1], "function");
  return CallCommand{ParseCall(*function, {words.begin() + 2, words.end()}), true};
}

Command ParseSelectDevice(const Words& words) {
  if (words.size() < 2 || words[1].starts_with("--"))
    throw UsageError("'select-device' needs the device's name");
  Call call;
  call.texts[0] = velm_tools::FromUtf8(words[1]);
  std::string name;
  for (OptionReader options(words, 2); !options.AtEnd();) {
    const std::string& option = options.Next();
    if (option == "--guid")
      call.texts[1] = velm_tools::FromUtf8(options.Value(option));
    else if (option == "--vid")
      call.texts[2] = velm_tools::FromUtf8(options.Value(option));
    else if (option == "--pid")
      call.texts[3] = velm_tools::FromUtf8(options.Value(option));
    else if (option == "--hot-switch")
      call.hotSwitch = velm_tools::ParseNumber<uint32_t>(options.Value(option), "hot switch");
    else if (option == "--by")
      name = options.Value(option);
    else
      throw UsageError("'select-device' does not take '" + option +
                       "'; it takes --guid, --vid, --pid, --hot-switch and --by");
  }
  if (name.empty()) name = call.texts[1] ? "SetAudioDeviceV2" : "SetAudioDevice";
  call.function = FindFunction(name);
  if (!call.function || !name.starts_with("SetAudioDevice"))
    throw UsageError("'--by' takes SetAudioDevice, SetAudioDeviceV2 or SetAudioDeviceWCHAR, not '" + name +
                     "'");
  if (call.texts[1] && name == "SetAudioDevice") throw UsageError("SetAudioDevice takes no GUID");
  return CallCommand{call};
}

void ParseCallbacks(const std::string& list, WatchCommand& watch) {
  watch.general = watch.family = watch.raw = false;
  for (size_t begin = 0; begin <= list.size();) {
    const size_t end = std::min(list.find(',', begin), list.size());
    const std::string name = list.substr(begin, end - begin);
    if (name == "general")
      watch.general = true;
    else if (name == "family")
      watch.family = true;
    else if (name == "raw")
      watch.raw = true;
    else
      throw UsageError("'--callbacks' takes a list of general, family and raw, not '" + name + "'");
    begin = end + 1;
  }
}

Command ParseWatch(const Words& words) {
  WatchCommand watch;
  for (OptionReader options(words, 1); !options.AtEnd();) {
    const std::string& option = options.Next();
    if (option == "--features")
      watch.features = velm_tools::ParseInteger(options.Value(option), INT64_MIN, INT64_MAX, "feature mask");
    else if (option == "--seconds")
      watch.duration = ParseSeconds(options.Value(option));
    else if (option == "--count")
      watch.count = velm_tools::ParseNumber<uint32_t>(options.Value(option), "number of records");
    else if (option == "--callbacks")
      ParseCallbacks(options.Value(option), watch);
    else
      throw UsageError("'watch' does not take '" + option +
                       "'; it takes --features, --seconds, --count and --callbacks");
  }
  return watch;
}

Command ParseWait(const Words& words) {
  if (words.size() < 2 || words.size() > 3) throw UsageError("'wait' is written: wait N [SECONDS]");
  WaitCommand wait;
  wait.count = velm_tools::ParseNumber<uint32_t>(words[1], "number of records");
  wait.limit = words.size() == 3 ? ParseSeconds(words[2]) : std::chrono::seconds(kDefaultSeconds);
  return wait;
}

Command ParseSleep(const Words& words) {
  if (words.size() != 2) throw UsageError("'sleep' is written: sleep MILLISECONDS");
  return SleepCommand{std::chrono::milliseconds(
      velm_tools::ParseInteger(words[1], 0, int64_t{kMaxSeconds} * 1000, "number of milliseconds"))};
}

template <typename Alone>
Command ParseAlone(const Words& words) {
  if (words.size() > 1) throw UsageError("'" + words[0] + "' stands alone");
  return Alone{};
}

Command ParseCommand(const Words& words) {
  const std::string& word = words.front();
  if (word == "call") return ParseBareCall(words);
  if (word == "select-device") return ParseSelectDevice(words);
  if (word == "watch") return ParseWatch(words);
  if (word == "wait") return ParseWait(words);
  if (word == "sleep") return ParseSleep(words);
  if (word == "interactive") return ParseAlone<InteractiveCommand>(words);
  if (word == "help") return ParseAlone<HelpCommand>(words);
  if (word == "quit") return ParseAlone<QuitCommand>(words);
  const Function* function = FindFunction(word);
  if (!function) ThrowUnknown(word, "command");
  return CallCommand{ParseCall(*function, {words.begin() + 1, words.end()})};
}

// The words of a line, with a text to send kept in one piece.
Words WordsOfLine(std::string_view line) {
  Words words;
  auto [word, rest] = velm_tools::SplitFirstWord(line);
  if (word == "call") {
    words.emplace_back(word);
    std::tie(word, rest) = velm_tools::SplitFirstWord(rest);
  }
  const Function* function = FindFunction(word);
  if (!function || !std::holds_alternative<TakesText>(function->target)) return velm_tools::SplitWords(line);
  words.emplace_back(word);
  words.emplace_back(rest);
  return words;
}

}  // namespace

const std::string_view kHelp =
    R"(velm_host: tries the functions of velmsdk.dll from the command line.

  velm_host [OPTION..] COMMAND         one command; the channel is made before and destroyed after it
  velm_host [OPTION..] [interactive]   commands from the standard input, a line each, in one process
  --json                               print one JSON object a line
  --audio                              make the channel so that audio commands go by the audio pipe:
                                       RegisterMsg(0x3ff), then the setter that starts it
  --service                            make it so that commands go by the pipe of service mode:
                                       TryRunningUnderServiceMode, RegisterMsg(0x3fd), then that setter
With --audio and --service, half a second passes before the channel is destroyed at the end: the pipe opens by
and by, and what still waits for it then would be lost.

Commands; the channel is made first, if there is none: as --audio or --service say, otherwise by
GetSDKAvailableFeatures. Numbers are decimal or 0x..
  version                     GetVelmClientVersion        chat N         SetConfChatCmd
  features                    GetSDKAvailableFeatures     camera N       SetCameraCmd
  service-mode                TryRunningUnderServiceMode  confaudio N    SetConfAudioCmd
  register FEATURES           RegisterMsg                 event N        SetConfEventCmd
  init [null]                 InitVelm3rdSdkChannel       device N       SetConfDeviceCmd
  destroy                     DestroySdkChannel           ui N           GetUIControlStatusCmd
  presence                    GetIMPresenceStatus         send TEXT      SendMsgToVelmClient
  audio N                     SetAudioCmd
  share N                     SetScreenShareCmd
  select-device NAME [--guid G] [--vid V] [--pid P] [--hot-switch N] [--by FUNCTION]
                              SetAudioDevice, or SetAudioDeviceV2 with a GUID, or the FUNCTION named
  watch [--features MASK] [--callbacks LIST] [--seconds N] [--count N]
                              RegisterMsg (0x3ff unless given, with --service 0x3fd), then set callbacks and print each record
                              that arrives. LIST is of general, family and raw, separated by commas;
                              general,family unless given, which gives two records a notification.
                              Ends after N seconds or records, or at Ctrl-C; when interactive and
                              without limits it goes on beside the next commands

Any of the 30 functions by its name in C, with its arguments in their order; 'null' is a null pointer:
  SetAudioDeviceV2 NAME GUID VID PID HOTSWITCH, SetCameraCallBack [null], RegisterMsg FEATURES, ...
  call FUNCTION ARGUMENT...   call it and nothing else: no channel is made first. For trying wrong orders

When interactive, also
  wait N [SECONDS]            until N records arrived that no earlier wait counted (10 s unless given)
  sleep MILLISECONDS
  help, quit
'#' begins a comment line; "..." keeps blanks in a word, with \" and \\ inside; the TEXT to send is
all that follows, without quotes. The channel is destroyed at the end.

Output: each call that is made, with its result; each record that a callback receives. As JSON
  {"event":"call","function":..,"call":..,"result":..,"name":..}   and "version" where one was read
  {"event":"record","callback":SETTER,"type":..,fields of the record}
Remarks and errors go to the standard error stream.

Exit code of one command
  0   the function succeeded: SDK_OK, a mask, or 1 for yes
  1   a function returned 0 for no, or the records of --count did not arrive in time; with --audio and
      --service also when RegisterMsg refused, and below the code of TryRunningUnderServiceMode
  2   the command is wrong
  12  SDK_ERR_NO_CLIENT (2)          16  SDK_ERR_BAD_DATA (6)         19  SDK_ERR_NO_CHANNEL (999)
  15  SDK_ERR_NO_CLIENT_WINDOW (5)   17  SDK_ERR_CLIENT_TOO_OLD (7)
Interactive: 0 at the end; 2 for a wrong line and 1 for a wait that ran out, which end piped input.)";

Options ParseArguments(const std::vector<std::string>& arguments) {
  Options options;
  Words words;
  for (const std::string& argument : arguments) {
    if (argument == "--json") {
      options.json = true;
    } else if (argument == "--audio" || argument == "--service") {
      const Start start = argument == "--audio" ? Start::kAudio : Start::kService;
      if (options.start != Start::kPlain && options.start != start)
        throw UsageError("--audio and --service exclude each other: service mode has no audio feature");
      options.start = start;
    } else if (argument == "--help" || argument == "-h") {
      options.command = HelpCommand{};
      return options;
    } else {
      words.push_back(argument);
    }
  }
  if (words.empty()) return options;
  if (words[0].starts_with('-'))
    throw UsageError("unknown option '" + words[0] + "'; there are --json, --audio, --service and --help");
  for (const std::string_view word : {"wait", "sleep", "quit"})
    if (words[0] == word) throw UsageError("'" + words[0] + "' is only for interactive use");
  options.command = ParseCommand(words);
  return options;
}

std::optional<Command> ParseLine(std::string_view line) {
  line = velm_tools::Trim(line);
  if (line.empty() || line.front() == '#') return std::nullopt;
  const Words words = WordsOfLine(line);
  if (words[0] == "interactive") throw UsageError("this is interactive already");
  return ParseCommand(words);
}

}  // namespace velm_host
