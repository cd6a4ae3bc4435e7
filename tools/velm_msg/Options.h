#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velm_msg {

enum class Action { kHelp, kFamilies, kList, kFind, kShow, kDecode, kEncode };
enum class Form { kText, kFrame, kHex };

struct Options {
  Action action = Action::kHelp;
  std::string subject;                   // a family, word or message; empty when none was written
  std::string input = "-";               // "-" is the standard input
  std::string output = "-";              // "-" is the standard output
  bool json = false;                     // decode: the output is JSON; encode: the input is
  bool hexInput = false;                 // decode
  Form form = Form::kText;               // encode
  std::vector<std::string> assignments;  // encode: name=value
};

extern const std::string_view kHelp;

// Throws UsageError.
Options ParseOptions(const std::vector<std::string>& arguments);

}  // namespace velm_msg
