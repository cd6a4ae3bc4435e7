// velm_msg: reads and writes typed messages; see Options.cpp for its help.

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "tools/common/Console.h"
#include "tools/common/Text.h"
#include "tools/common/UsageError.h"
#include "tools/velm_msg/Decode.h"
#include "tools/velm_msg/Encode.h"
#include "tools/velm_msg/Lookup.h"
#include "tools/velm_msg/Options.h"

namespace velm_msg {
namespace {

using velm_tools::PrintLine;
using velm_tools::Remark;
using velm_tools::UsageError;

enum ExitCode { kDone = 0, kFailed = 1, kBadUsage = 2 };

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

std::string ReadAll(std::FILE* file, const std::string& path) {
  std::string bytes;
  char buffer[65536];
  while (const size_t count = std::fread(buffer, 1, sizeof(buffer), file))
    bytes.append(buffer, count);
  if (std::ferror(file)) throw std::runtime_error("cannot read '" + path + "'");
  return bytes;
}

std::string ReadInput(const std::string& path) {
  if (path == "-") {
    _setmode(_fileno(stdin), _O_BINARY);
    return ReadAll(stdin, "standard input");
  }
  const File file(_wfopen(velm_tools::FromUtf8(path).c_str(), L"rb"));
  if (!file) throw std::runtime_error("cannot open '" + path + "'");
  return ReadAll(file.get(), path);
}

void WriteOutput(const std::string& path, const std::string& bytes) {
  const auto write = [&](std::FILE* file) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size() || std::fflush(file) != 0)
      throw std::runtime_error("cannot write '" + path + "'");
  };
  if (path == "-") return write(stdout);
  const File file(_wfopen(velm_tools::FromUtf8(path).c_str(), L"wb"));
  if (!file) throw std::runtime_error("cannot open '" + path + "' for writing");
  write(file.get());
}

ExitCode PrintMessages(const std::vector<const MessageClass*>& messages) {
  for (const MessageClass* message : messages)
    PrintLine(Line(*message));
  return messages.empty() ? kFailed : kDone;
}

ExitCode Find(const std::string& word) {
  const std::vector<const MessageClass*> found = Search(word);
  if (found.empty()) Remark("velm_msg: nothing has '" + word + "'");
  return PrintMessages(found);
}

ExitCode List(const std::string& family) {
  if (!family.empty()) return PrintMessages(OfFamily(family));
  for (const MessageClass& message : Cmm::Archive::MessageClasses())
    PrintLine(Line(message));
  return kDone;
}

ExitCode Show(const std::string& word) {
  bool isFirst = true;
  for (const MessageClass* message : FindNamed(word)) {
    if (!isFirst) PrintLine("");
    isFirst = false;
    for (const std::string& line : Lines(*message))
      PrintLine(line);
  }
  return kDone;
}

std::string BytesFromHex(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return c == '\r' || c == '\n' || c == '\t'; }, ' ');
  const std::optional<std::string> bytes = velm_tools::FromHex(text);
  if (!bytes) throw std::runtime_error("the input is not pairs of hexadecimal digits");
  return *bytes;
}

ExitCode RunDecode(const Options& options) {
  const MessageClass* as = options.subject.empty() ? nullptr : &FindTheOne(options.subject);
  std::string bytes = ReadInput(options.input);
  if (options.hexInput) bytes = BytesFromHex(std::move(bytes));
  ExitCode code = kDone;
  for (const Decoded& decoded : Decode(bytes, as)) {
    if (!decoded.problems.empty()) code = kFailed;
    if (options.json) {
      PrintLine(ToJsonText(decoded));
    } else {
      for (const std::string& line : ToLines(decoded))
        PrintLine(line);
    }
  }
  return code;
}

std::vector<Encoded> EncodeAll(const Options& options) {
  const MessageClass* messageClass = options.subject.empty() ? nullptr : &FindTheOne(options.subject);
  if (options.json) {
    const std::string json = ReadInput(options.input);
    try {
      return EncodeJson(json, messageClass);
    } catch (const UsageError& error) {  // in the data, and not on the command line
      throw std::runtime_error(error.what());
    }
  }
  CatalogueMessage message(*messageClass);
  SetFields(message, options.assignments);
  return {Encode(message)};
}

ExitCode RunEncode(const Options& options) {
  std::string bytes;
  for (const Encoded& encoded : EncodeAll(options)) {
    if (options.form == Form::kText) bytes += encoded.text;
    if (options.form == Form::kFrame) bytes += encoded.frame;
    if (options.form == Form::kHex) bytes += velm_tools::ToHex(encoded.frame) + '\n';
  }
  WriteOutput(options.output, bytes);
  return kDone;
}

ExitCode Do(const Options& options) {
  switch (options.action) {
    case Action::kHelp:
      PrintLine(kHelp.substr(0, kHelp.size() - 1));
      return kDone;
    case Action::kFamilies:
      for (const std::string_view family : Families())
        PrintLine(family);
      return kDone;
    case Action::kList:
      return List(options.subject);
    case Action::kFind:
      return Find(options.subject);
    case Action::kShow:
      return Show(options.subject);
    case Action::kDecode:
      return RunDecode(options);
    case Action::kEncode:
      return RunEncode(options);
  }
  return kBadUsage;
}

int Main(const std::vector<std::string>& arguments) {
  try {
    return Do(ParseOptions(arguments));
  } catch (const UsageError& error) {
    Remark(std::string("velm_msg: ") + error.what());
    Remark("'velm_msg --help' says what can be written");
    return kBadUsage;
  } catch (const std::exception& error) {
    Remark(std::string("velm_msg: ") + error.what());
    return kFailed;
  }
}

}  // namespace
}  // namespace velm_msg

int main() {
  return velm_msg::Main(velm_tools::PrepareConsole());
}
