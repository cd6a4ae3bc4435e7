#include "tools/velm_msg/Options.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "tools/common/UsageError.h"
#include "tools/common/Words.h"

namespace velm_msg {
namespace {

using velm_tools::UsageError;

struct Command {
  std::string_view name;
  Action action;
};

constexpr Command kCommands[] = {
    {"help", Action::kHelp},     {"families", Action::kFamilies}, {"list", Action::kList},
    {"find", Action::kFind},     {"show", Action::kShow},         {"decode", Action::kDecode},
    {"encode", Action::kEncode},
};

Action ParseAction(const std::string& word) {
  const auto found = std::ranges::find(kCommands, word, &Command::name);
  if (found != std::end(kCommands)) return found->action;
  std::vector<std::string_view> names;
  for (const Command& command : kCommands)
    names.push_back(command.name);
  throw UsageError("unknown command '" + word + "'" + velm_tools::Hint(word, names));
}

// The arguments behind the command, from left to right.
class Arguments {
 public:
  explicit Arguments(const std::vector<std::string>& all) : m_all(all) {}

  bool AtEnd() const { return m_next == m_all.size(); }
  const std::string& Next() { return m_all[m_next++]; }
  const std::string& ValueOf(const std::string& option) {
    if (AtEnd()) throw UsageError("'" + option + "' needs a value");
    return Next();
  }

 private:
  const std::vector<std::string>& m_all;
  size_t m_next = 1;
};

[[noreturn]] void RefuseOption(const std::string& option, const std::vector<std::string_view>& known) {
  throw UsageError("unknown option '" + option + "'" + velm_tools::Hint(option, known));
}

bool IsOption(const std::string& argument) {
  return argument.starts_with('-') && argument != "-";
}

void ParseDecode(Arguments arguments, Options& options) {
  bool hasInput = false;
  while (!arguments.AtEnd()) {
    const std::string& argument = arguments.Next();
    if (argument == "--json") {
      options.json = true;
    } else if (argument == "--hex") {
      options.hexInput = true;
    } else if (argument == "--as") {
      options.subject = arguments.ValueOf(argument);
    } else if (IsOption(argument)) {
      RefuseOption(argument, {"--json", "--hex", "--as"});
    } else if (std::exchange(hasInput, true)) {
      throw UsageError("'decode' reads one file, and not '" + argument + "' too");
    } else {
      options.input = argument;
    }
  }
}

void ParseEncode(Arguments arguments, Options& options) {
  std::optional<Form> form;
  while (!arguments.AtEnd()) {
    const std::string& argument = arguments.Next();
    if (argument == "--text" || argument == "--frame" || argument == "--hex") {
      if (form) throw UsageError("only one of --text, --frame and --hex");
      form = argument == "--text" ? Form::kText : argument == "--frame" ? Form::kFrame : Form::kHex;
    } else if (argument == "--out") {
      options.output = arguments.ValueOf(argument);
    } else if (argument == "--json") {
      options.json = true;
      options.input = arguments.ValueOf(argument);
    } else if (IsOption(argument)) {
      RefuseOption(argument, {"--text", "--frame", "--hex", "--out", "--json"});
    } else if (options.subject.empty() && argument.find('=') == std::string::npos) {
      options.subject = argument;
    } else {
      options.assignments.push_back(argument);
    }
  }
  options.form = form.value_or(Form::kText);
  if (options.json && !options.assignments.empty())
    throw UsageError("fields come from --json or from name=value, not from both");
  if (!options.json && options.subject.empty()) throw UsageError("'encode' needs a message");
}

void ParseSubject(Arguments arguments, bool isNeeded, Options& options) {
  if (arguments.AtEnd()) {
    if (isNeeded) throw UsageError("what is to be looked for is missing");
    return;
  }
  options.subject = arguments.Next();
  if (options.subject.empty()) throw UsageError("what is to be looked for is empty");
  if (IsOption(options.subject)) RefuseOption(options.subject, {});
  if (!arguments.AtEnd()) throw UsageError("'" + arguments.Next() + "' is too much");
}

}  // namespace

const std::string_view kHelp =
    R"(velm_msg: reads, writes and explains the typed messages of the client's processes.

  velm_msg families                   the families of the catalogue
  velm_msg list [FAMILY]              all messages, or those of a family: id, class, wire name
  velm_msg find WORD                  those with WORD as their id, or in the class, wire name or a field
  velm_msg show MESSAGE               all about a message
  velm_msg decode [--json] [--hex] [--as CLASS] [FILE|-]
                                      messages from a file or the standard input into readable form
  velm_msg encode MESSAGE [FORM] [--out FILE] NAME=VALUE...
  velm_msg encode [MESSAGE] [FORM] [--out FILE] --json FILE|-
                                      a message from values

MESSAGE is a class name, an id (decimal, or hexadecimal with 0x) or a wire name, spelled exactly. Where two
messages share an id or a wire name, only the class name will do.

decode
  The input is frames, one after another, or XML text, one element a message; which it is shows in its
  first bytes. A frame is what travels: the length of the text and the type (the message's id), each 32
  bits and little-endian, then the text.
  --json      one JSON object a line instead: "offset" (of the frame in the input), "type" (of a frame, or
              null), "class", "wireName", "fields" (null when they cannot be read), "notes", "errors"
  --hex       the input is hexadecimal digits, with any blanks and line ends between the bytes
  --as CLASS  take every message for one of this class
  A note tells what a receiver passes over, an error why it does not take the message as it should be.

encode
  FORM        --text (default), the XML element and its line feed; --frame, the bytes that travel;
              --hex, these as hexadecimal digits on a line
  --out FILE  where to instead of the standard output
  --json      one JSON object, or one a line: either what 'decode --json' gives ("class" and "fields", the
              rest is passed over; MESSAGE may be left out) or, with MESSAGE, only the fields
  A field that is not set is 0 or empty. A value that would not arrive as it is, such as text with a
  carriage return before a line feed, is refused. VALUE is UTF-8 and runs to the end of the argument.

Two messages share even their wire name (id 40145). One run can handle the one of them that it meets first.

Exit code
  0  done
  1  a message has an error, nothing was found, or a file cannot be read or written
  2  the command line is wrong
)";

Options ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  if (arguments.empty()) throw UsageError("a command is missing");
  if (std::ranges::find(arguments, "--help") != arguments.end() || arguments.front() == "-h") return options;
  options.action = ParseAction(arguments.front());
  const Arguments rest(arguments);
  switch (options.action) {
    case Action::kHelp:
      break;
    case Action::kFamilies:
      if (!rest.AtEnd()) throw UsageError("'families' takes nothing");
      break;
    case Action::kList:
      ParseSubject(rest, false, options);
      break;
    case Action::kFind:
    case Action::kShow:
      ParseSubject(rest, true, options);
      break;
    case Action::kDecode:
      ParseDecode(rest, options);
      break;
    case Action::kEncode:
      ParseEncode(rest, options);
      break;
  }
  return options;
}

}  // namespace velm_msg
