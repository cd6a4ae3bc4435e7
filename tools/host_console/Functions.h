#pragma once

// The 30 functions of the library: how each is named, what it takes and what its result means.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "sdk/VelmSdk.h"

namespace velm_host {

// What a function takes, and the function.
struct Plain {
  uint32_t (*call)();
};
struct TakesVersion {
  uint32_t (*call)(uint16_t*);
};
struct TakesFeatures {
  uint32_t (*call)(int64_t);
};
struct TakesSink {
  uint32_t (*call)(ISdkRawSink*);
};
struct TakesCallback {
  uint32_t (*call)(bool null);  // sets this program's callback, or null
};
struct TakesCommand {
  uint32_t (*call)(int32_t);
};
struct TakesText {
  uint32_t (*call)(const wchar_t*);
};
struct TakesDevice {  // name, vendor id, product id, hot switch
  uint32_t (*call)(const wchar_t*, const wchar_t*, const wchar_t*, uint32_t);
};
struct TakesDeviceWithGuid {  // name, GUID, vendor id, product id, hot switch
  uint32_t (*call)(const wchar_t*, const wchar_t*, const wchar_t*, const wchar_t*, uint32_t);
};
using Target = std::variant<Plain, TakesVersion, TakesFeatures, TakesSink, TakesCallback, TakesCommand,
                            TakesText, TakesDevice, TakesDeviceWithGuid>;

// What its result means.
enum class Result {
  kCode,  // a result code
  kMask,  // a feature mask
  kFlag,  // 1 for yes, 0 for no
};

// Whether a function needs a channel, makes one, or ends it.
enum class Channel { kNeeds, kMakes, kEnds };

struct Function {
  std::string_view name;
  std::string_view shortName;  // empty: only by its name
  Target target;
  Result result = Result::kCode;
  Channel channel = Channel::kNeeds;
};

const std::vector<Function>& Functions();

// By name or short name; null when there is none.
const Function* FindFunction(std::string_view name);

// The setters of the callbacks for one family each.
std::vector<const Function*> FamilySetters();

// A function with its arguments.
struct Call {
  const Function* function = nullptr;
  bool null = false;                                   // a version array, sink or callback: pass null
  int64_t number = 0;                                  // features or command
  std::array<std::optional<std::wstring>, 4> texts{};  // the text; or name, GUID, vendor, product; none: null
  uint32_t hotSwitch = 0;
};

// From the arguments in the order of the C declaration; "null" stands for a null pointer. Throws
// UsageError.
Call ParseCall(const Function& function, const std::vector<std::string>& arguments);

struct Outcome {
  uint32_t value = 0;
  std::optional<std::array<uint16_t, 4>> version;  // zeros where the function wrote nothing
};

// Calls the function and nothing else.
Outcome Invoke(const Call& call);

// "SetAudioCmd COMMAND": how ParseCall() wants it.
std::string Usage(const Function& function);

// "SDK_ERR_NO_CLIENT"; empty for a value that is no code.
std::string_view CodeName(uint32_t code);

// "SDK_ERR_NO_CLIENT (2)", "0x3ff (1023)", "1 (yes)".
std::string ResultText(Result result, uint32_t value);

// "SetAudioCmd(5)".
std::string CallText(const Call& call);

}  // namespace velm_host
