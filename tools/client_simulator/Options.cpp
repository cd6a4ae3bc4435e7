#include "tools/client_simulator/Options.h"

#include <algorithm>
#include <array>

#include "tools/client_simulator/ClientWindow.h"
#include "tools/common/UsageError.h"
#include "tools/common/Words.h"

namespace velm_sim {
namespace {

using velm_tools::UsageError;

constexpr int64_t kMaxHangMs = 3600 * 1000;

Cmm::FileVersion ParseVersion(std::string_view text) {
  std::array<uint16_t, 4> numbers{};
  size_t count = 0;
  for (std::string_view rest = text; count < numbers.size(); ++count) {
    const size_t dot = std::min(rest.find('.'), rest.size());
    numbers[count] = velm_tools::ParseNumber<uint16_t>(rest.substr(0, dot), "part of the version");
    if (dot == rest.size()) return {numbers[0], numbers[1], numbers[2], numbers[3]};
    rest.remove_prefix(dot + 1);
  }
  throw UsageError("version '" + std::string(text) + "' has more than four parts");
}

std::vector<std::wstring> ParseWindows(std::string_view text) {
  if (text == "host") return {kHostWindow};
  if (text == "helper") return {kHelperWindow};
  if (text == "both") return {kHostWindow, kHelperWindow};
  if (text == "none") return {};
  throw UsageError("'--windows' takes host, helper, both or none, not '" + std::string(text) + "'");
}

void ParsePipes(Options& options, std::string_view text) {
  options.audioPipes = text == "audio" || text == "both";
  options.servicePipe = text == "service" || text == "both";
  if (!options.audioPipes && !options.servicePipe && text != "none")
    throw UsageError("'--pipes' takes audio, service, both or none, not '" + std::string(text) + "'");
}

struct Option {
  std::string_view name;
  bool takesValue;
  bool onlyForRun;
  void (*apply)(Options& options, const std::string& value);
};

constexpr Option kOptions[] = {
    {"--version", true, false, [](Options& o, const std::string& v) { o.version = ParseVersion(v); }},
    {"--directory", true, false, [](Options& o, const std::string& v) { o.directory = v; }},
    {"--no-registry", false, false, [](Options& o, const std::string&) { o.registerCommand = false; }},
    {"--force", false, false, [](Options& o, const std::string&) { o.force = true; }},
    {"--no-install", false, true, [](Options& o, const std::string&) { o.installProduct = false; }},
    {"--windows", true, true, [](Options& o, const std::string& v) { o.windows = ParseWindows(v); }},
    {"--pipes", true, true, [](Options& o, const std::string& v) { ParsePipes(o, v); }},
    {"--service-id", true, true,
     [](Options& o, const std::string& v) {
       o.serviceId = velm_tools::ParseNumber<uint32_t>(v, "--service-id");
     }},
    {"--pipe-suffix", true, true, [](Options& o, const std::string& v) { o.pipeSuffix = v; }},
    {"--stall", false, true, [](Options& o, const std::string&) { o.misbehaviour.stall = true; }},
    {"--split", false, true, [](Options& o, const std::string&) { o.misbehaviour.split = true; }},
    {"--no-goodbye", false, true,
     [](Options& o, const std::string&) { o.misbehaviour.withholdsGoodbye = true; }},
    {"--script", true, true, [](Options& o, const std::string& v) { o.script = v; }},
    {"--stay", false, true, [](Options& o, const std::string&) { o.stay = true; }},
    {"--hang-ms", true, true,
     [](Options& o, const std::string& v) {
       o.misbehaviour.hang =
           std::chrono::milliseconds(velm_tools::ParseInteger(v, 0, kMaxHangMs, "--hang-ms"));
     }},
    {"--die-after", true, true,
     [](Options& o, const std::string& v) {
       o.misbehaviour.dieAfter = velm_tools::ParseNumber<uint32_t>(v, "--die-after");
     }},
};

Action ParseAction(const std::string& word) {
  if (word == "run") return Action::kRun;
  if (word == "install") return Action::kInstall;
  if (word == "uninstall") return Action::kUninstall;
  throw UsageError("unknown action '" + word + "'" + velm_tools::Hint(word, {"run", "install", "uninstall"}));
}

const Option& FindOption(const std::string& name) {
  const auto found = std::ranges::find(kOptions, name, &Option::name);
  if (found != std::end(kOptions)) return *found;
  std::vector<std::string_view> names{"--help"};
  for (const Option& option : kOptions)
    names.push_back(option.name);
  throw UsageError("unknown option '" + name + "'" + velm_tools::Hint(name, names));
}

}  // namespace

const std::string_view kOptionHelp =
    R"(velm_client_sim: stands in for the meeting client, for trying a host application without one.

  velm_client_sim [run] [OPTION...]    install a fake product, open the client's window, serve its
                                       pipes, report every command that arrives and send notifications
                                       as told; take the product away again at the end
  velm_client_sim install [OPTION...]  only install the fake product, and leave it: a client that is
                                       installed and not running
  velm_client_sim uninstall [--directory DIR]
                                       take away what 'install' or a killed simulator left

Options
  --version A.B.C.D   of the fake product (default 5.8.0.0). Audio needs 5.6, service mode 5.8
  --directory DIR     where its files go (default: Velm\bin in the user's application data)
  --no-registry       do not register it: it is found, but its version cannot be read
  --force             go on although a real client is found or a client's window is open already
and for 'run'
  --no-install        install nothing: only open windows
  --windows WHICH     host (default), helper, both or none. Host applications look for the host
                      window to tell whether the client runs; each window gets its own copy of a command
  --pipes WHICH       audio, service, both (default) or none. Audio pipes are made when a host application
                      asks the helper window, which is open for that even if --windows does not name it, and
                      drops its copies of commands then; the pipe of service mode is there from the start
  --service-id N      channel id of service mode (default: the first active session's id, and without an
                      active session the number of sessions)
  --pipe-suffix TEXT  stands behind the names of all pipes, so that velm_trace can serve the names themselves
  --script FILE       take lines from a UTF-8 file instead of the standard input
  --stay              do not end with the input: stay until Ctrl-C
  --hang-ms N         take N milliseconds over each command; the sender waits for so long
  --die-after N       end hard with the Nth command, and leave the product to 'uninstall'
  --stall             do not read from the pipes, until 'stall off'
  --split             send every byte by pipe by itself, until 'split off'
  --no-goodbye        do not confirm a host's goodbye, until 'goodbye on'

The program ends at the end of its input, at 'quit' and at Ctrl-C.

Standard output: one JSON object a line, in UTF-8, by its "event":
  ready      "product" (directory, or null), "version", "windows", "servicePipe" (its name, or null),
             "audioPipes" (true when they are made on request): from here on commands are taken. A host that
             has been waiting may be told of before
  command    "number" from 1, "route" and where it came, which is by window "window" and "dwData", and by
             audio or service "pipe", "process" (the host's, as it announced itself) and "channelId"; "bytes"
             (size with the terminator), "terminated", "text", "command" (the text parsed, or null when it
             is no JSON).
             The bytes that arrived are "text", and a NUL if "terminated" is true. Of bytes that are
             not UTF-8 "text" is null and "hex" has them all; of a message without data there is only
             a "text" of null
  sent       "hosts" (host applications reached), "unanswered" (those that did not handle it, or did not
             take it from the pipe, within 5 s), "dwData", "bytes", "text"; by pipe "via" and no "dwData"
  flooded    "via", "hosts", "unanswered", "count": how many were sent
  dropped    "via", "hosts": how many had the pipe open
  pipe       "route", "pipe", "state": requested (an audio pipe, now served), open (a host has opened it),
             announced (it has said who it is: "process"), closed
  goodbye    "route", "pipe", "confirmed"
  message    any other frame: "route", "pipe", "type", "bytes", "text", or "hex" of its first 64 bytes
  partial, garbage
             bytes that are no frame: the beginning of one when its pipe closed, or no beginning of one;
             "route", "pipe", "bytes", "text" or "hex" as above
  host       "hosts": a wait-host that ended; by pipe also "via"
  installed, uninstalled
             "product"; for 'uninstalled' also "removed", false when there was nothing
  end        "commands": how many arrived
Remarks and errors go to the standard error stream.

Exit code
  0  done
  1  something failed: a wait ran out, the product could not be installed or removed, a pipe not served
  2  the command line or a line of the input is wrong
  3  refused: a real client is found, or a client's window is open already
  9  died by --die-after or 'die'
)";

Options ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  options.windows = {kHostWindow};
  const auto asksForHelp = [](const std::string& argument) {
    return argument == "--help" || argument == "-h";
  };
  if (std::ranges::any_of(arguments, asksForHelp) || (!arguments.empty() && arguments.front() == "help")) {
    options.action = Action::kHelp;
    return options;
  }
  auto argument = arguments.begin();
  if (argument != arguments.end() && !argument->starts_with('-')) options.action = ParseAction(*argument++);
  while (argument != arguments.end()) {
    const std::string& name = *argument++;
    const Option& option = FindOption(name);
    if (option.onlyForRun && options.action != Action::kRun)
      throw UsageError("'" + name + "' is only for 'run'");
    if (options.action == Action::kUninstall && name != "--directory")
      throw UsageError("'uninstall' only takes --directory, not '" + name + "'");
    if (option.takesValue && argument == arguments.end()) throw UsageError("'" + name + "' needs a value");
    option.apply(options, option.takesValue ? *argument++ : std::string());
  }
  return options;
}

}  // namespace velm_sim
