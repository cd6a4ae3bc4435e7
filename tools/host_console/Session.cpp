#include "tools/host_console/Session.h"

#include "tools/common/Console.h"
#include "tools/common/JsonLine.h"
#include "tools/host_console/Callbacks.h"
#include "tools/host_console/Records.h"

namespace velm_host {
namespace {

using velm_tools::JsonLine;

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

Session::Session(bool json) : m_json(json) {
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
  if (m_hasChannel) Invoke(CallOf("DestroySdkChannel"));
}

void Session::MakeChannel() {
  if (!m_hasChannel) Invoke(CallOf("GetSDKAvailableFeatures"));
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
  if (!command.bare && command.call.function->channel == Channel::kNeeds) MakeChannel();
  return ToExitCode(command.call.function->result, Invoke(command.call));
}

int Session::Run(const WatchCommand& command, bool returnAtOnce) {
  MakeChannel();
  if (!Invoke(CallOf("RegisterMsg", command.features))) {
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
  if (command.raw && !command.general && !command.family)
    Invoke([] {  // a raw sink alone does not start the channel, a setter does
      Call call = CallOf("SetCallBackFunc");
      call.null = true;
      return call;
    }());

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
