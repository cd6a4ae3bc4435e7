#include "tools/host_console/Session.h"

#include "tools/common/Console.h"
#include "tools/common/JsonLine.h"
#include "tools/host_console/Callbacks.h"
#include "tools/host_console/Records.h"

namespace velm_host {
namespace {

using velm_tools::JsonLine;

constexpr unsigned kPipeGraceMs = 500;  // the library opens its pipe by a timer of 50 ms
constexpr std::chrono::milliseconds kForever = std::chrono::hours(24 * 365);

Call CallOf(std::string_view name, int64_t number = 0) {
  Call call;
  call.function = FindFunction(name);
  call.number = number;
  return call;
}

std::string VersionText(const std::array<uint16_t, 4>& version) {
  if (version == std::array<uint16_t, 4>{}) return "nothing was written";
  return std::to_string(version[0]) + "." + std::to_string(version[1]) + "." + std::to_string(version[2]) +
         "." + std::to_string(version[3]);
}

Json::Value VersionJson(const std::array<uint16_t, 4>& version) {
  Json::Value numbers(Json::arrayValue);
  for (const uint16_t number : version)
    numbers.append(number);
  return numbers;
}

}  // namespace

int ToExitCode(Result result, uint32_t value) {
  switch (result) {
    case Result::kMask:
      return kSuccess;
    case Result::kFlag:
      return value ? kSuccess : kNo;
    case Result::kCode:
      break;
  }
  if (value == SDK_OK) return kSuccess;
  return value == SDK_ERR_NO_CHANNEL ? kNoChannel : kCodeBase + static_cast<int>(value);
}

Session::Session(bool json, Start start) : m_json(json), m_start(start) {
  SetRecordHandler([this](const Record& record) {
    velm_tools::PrintLine(m_json ? ToJsonLine(record) : ToReadable(record));
    ++m_records;
  });
}

Session::~Session() {
  DestroyChannel();
  SetRecordHandler(nullptr);
}

void Session::DestroyChannel() {
  if (!m_hasChannel) return;
  if (m_start != Start::kPlain) velm_tools::SleepUnlessInterrupted(kPipeGraceMs);
  Invoke(CallOf("DestroySdkChannel"));
}

int Session::MakeChannel() {
  if (m_hasChannel) return kSuccess;
  if (m_start == Start::kPlain) {
    Invoke(CallOf("GetSDKAvailableFeatures"));
    return kSuccess;
  }
  int64_t features = SDK_FEATURES_ALL;
  if (m_start == Start::kService) {
    const uint32_t code = Invoke(CallOf("TryRunningUnderServiceMode"));
    if (code != SDK_OK) return ToExitCode(Result::kCode, code);
    features = SDK_FEATURES_SERVICE_MODE;
  } else {
    Invoke(CallOf("GetSDKAvailableFeatures"));
  }
  if (!Invoke(CallOf("RegisterMsg", features))) return kNo;
  return ToExitCode(Result::kCode, StartChannel());
}

// A setter does, InitVelm3rdSdkChannel behind another call does not.
uint32_t Session::StartChannel() {
  Call setter = CallOf("SetCallBackFunc");
  setter.null = true;
  return Invoke(setter);
}

uint32_t Session::Invoke(const Call& call) {
  const Outcome outcome = velm_host::Invoke(call);
  if (call.function->channel == Channel::kMakes) m_hasChannel = true;
  if (call.function->channel == Channel::kEnds) m_hasChannel = false;
  PrintCall(call, outcome);
  return outcome.value;
}

void Session::PrintCall(const Call& call, const Outcome& outcome) const {
  const Result result = call.function->result;
  if (m_json) {
    JsonLine line;
    line.Add("event", "call").Add("function", std::string(call.function->name)).Add("call", CallText(call));
    line.Add("result", outcome.value);
    if (result == Result::kCode) line.Add("name", std::string(CodeName(outcome.value)));
    if (outcome.version) line.Add("version", VersionJson(*outcome.version));
    velm_tools::PrintLine(line.Text());
    return;
  }
  std::string line = CallText(call) + " = " + ResultText(result, outcome.value);
  if (outcome.version) line += ": " + VersionText(*outcome.version);
  velm_tools::PrintLine(line);
}

int Session::Run(const CallCommand& command) {
  if (!command.bare && command.call.function->channel == Channel::kNeeds)
    if (const int code = MakeChannel(); code != kSuccess) return code;
  return ToExitCode(command.call.function->result, Invoke(command.call));
}

int Session::Run(const WatchCommand& command, bool returnAtOnce) {
  if (const int code = MakeChannel(); code != kSuccess) return code;
  const int64_t all = m_start == Start::kService ? SDK_FEATURES_SERVICE_MODE : SDK_FEATURES_ALL;
  if (!Invoke(CallOf("RegisterMsg", command.features.value_or(all)))) {
    velm_tools::Remark(
        "RegisterMsg refused: nothing will arrive (SDK_FEATURE_AUDIO needs a client of version 5.6)");
    return kNo;
  }
  const uint64_t before = m_records;
  if (command.raw) Invoke(CallOf("InitVelm3rdSdkChannel"));
  if (command.general) Invoke(CallOf("SetCallBackFunc"));
  if (command.family)
    for (const Function* setter : FamilySetters())
      Invoke(CallOf(setter->name));
  if (command.raw && !command.general && !command.family) StartChannel();

  const auto limit = command.duration.value_or(kForever);
  if (command.count) {
    const uint64_t wanted = before + *command.count;
    const bool arrived = velm_tools::WaitUntilTrue([&] { return m_records >= wanted; }, limit);
    return arrived ? kSuccess : kNo;
  }
  if (command.duration || !returnAtOnce) velm_tools::WaitUntilTrue([] { return false; }, limit);
  return kSuccess;
}

int Session::Run(const WaitCommand& command) {
  const uint64_t wanted = m_waitedFor + command.count;
  if (!velm_tools::WaitUntilTrue([&] { return m_records >= wanted; }, command.limit)) {
    velm_tools::Remark("wait: " + std::to_string(m_records - m_waitedFor) + " of " +
                       std::to_string(command.count) + " records within " +
                       std::to_string(command.limit.count() / 1000) + " s");
    return kNo;
  }
  m_waitedFor = wanted;
  return kSuccess;
}

}  // namespace velm_host
