#include "tools/velm_trace/Options.h"

#include <algorithm>

#include "tools/common/UsageError.h"
#include "tools/common/Words.h"

namespace velm_trace {
namespace {

using velm_tools::UsageError;

constexpr uint32_t kMaxSeconds = 86400;

struct Option {
  std::string_view name;
  bool takesValue;
  void (*apply)(Options& options, const std::string& value);
};

constexpr Option kOptions[] = {
    {"--serve", true, [](Options& o, const std::string& v) { o.serve = v; }},
    {"--open", true, [](Options& o, const std::string& v) { o.open = v; }},
    {"--record", true, [](Options& o, const std::string& v) { o.recording = v; }},
    {"--replay", true, [](Options& o, const std::string& v) { o.replay = v; }},
    {"--wait", true,
     [](Options& o, const std::string& v) {
       o.limit = std::chrono::seconds(velm_tools::ParseInteger(v, 0, kMaxSeconds, "number of seconds"));
     }},
    {"--json", false, [](Options& o, const std::string&) { o.json = true; }},
    {"--once", false, [](Options& o, const std::string&) { o.once = true; }},
    {"--help", false, [](Options& o, const std::string&) { o.help = true; }},
    {"-h", false, [](Options& o, const std::string&) { o.help = true; }},
};

const Option& FindOption(const std::string& name) {
  const auto found = std::ranges::find(kOptions, name, &Option::name);
  if (found != std::end(kOptions)) return *found;
  std::vector<std::string_view> names;
  for (const Option& option : kOptions)
    names.push_back(option.name);
  throw UsageError("unknown option '" + name + "'" + velm_tools::Hint(name, names));
}

void Check(const Options& options) {
  if (options.help) return;
  if (options.replay.empty()) {
    if (options.serve.empty() || options.open.empty())
      throw UsageError("both --serve and --open are needed, or --replay with one of them");
    if (options.serve == options.open) throw UsageError("--serve and --open cannot name the same pipe");
    return;
  }
  if (options.serve.empty() == options.open.empty())
    throw UsageError("--replay plays one end: it needs --serve to be the client, or --open to be the host");
  if (options.once) throw UsageError("'--once' does not go with --replay, which ends after one connection");
}

}  // namespace

const std::string_view kHelp =
    R"(velm_trace: stands between a host application and the client, and shows every frame on the pipe.

  velm_trace --serve NAME --open NAME [OPTION..]
      serves the one pipe for the host application, opens the other that the client serves, and carries the
      bytes as they come; when one of the two leaves, the other's pipe is closed and the next host is served
  velm_trace --replay FILE --serve NAME    plays the client of a recording to a host application
  velm_trace --replay FILE --open NAME     plays the host application of a recording to the client
      sends the recorded bytes, each piece once the peer has sent as many frames as it had by then

A NAME is a channel's, such as com.velm.ipc.client3rdsdk_0 or com.velm.ipc.audiosdk_1234.

  --record FILE   record the connections in a file: a JSON object a line, with every byte and its time
  --json          print one JSON object a line
  --once          end after the first connection
  --wait SECONDS  how long to wait for the client's pipe, and in a replay for each frame of the peer (10)

Of each frame: the time since the connection was opened, who sent it, its type and size with the header, the
message and its fields as velm_msg decodes them. Bytes that are no frame, and a frame that is not finished
when its sender leaves, are shown as such, the first 64 bytes in hexadecimal digits.
As JSON, by "event": opened, closed; frame with "bytes", "type", "class", "wireName", "fields", "notes",
"errors"; partial and garbage with "bytes" and "hex"; all with "at" (microseconds) and "from" (host or client);
replayed with "sent", "toSend", "received" and "expected". Remarks and errors go to the standard error stream.

With velm_client_sim: give it --pipe-suffix .real, and serve NAME while opening NAME.real.

Exit code: 0 at Ctrl-C and when all was done; 1 when a pipe could not be served or opened, a file not read or
written, or a replay was not completed; 2 when the command line is wrong.
)";

Options ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (auto argument = arguments.begin(); argument != arguments.end();) {
    const std::string& name = *argument++;
    const Option& option = FindOption(name);
    if (option.takesValue && argument == arguments.end()) throw UsageError("'" + name + "' needs a value");
    option.apply(options, option.takesValue ? *argument++ : std::string());
  }
  Check(options);
  return options;
}

}  // namespace velm_trace
