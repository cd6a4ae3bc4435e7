// velm_client_sim: a stand-in for the meeting client; see Options.cpp for its help.

#include <windows.h>

#include <objbase.h>

#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

#include "tools/client_simulator/Options.h"
#include "tools/client_simulator/PipeMessage.h"
#include "tools/client_simulator/PipeRoute.h"
#include "tools/client_simulator/Script.h"
#include "tools/client_simulator/Simulator.h"
#include "tools/client_simulator/WindowRoute.h"
#include "tools/common/Console.h"
#include "tools/common/JsonLine.h"
#include "tools/common/Text.h"
#include "tools/common/UsageError.h"
#include "tools/fake_product/FakeProduct.h"

namespace velm_sim {
namespace {

using velm_tools::FakeProduct;
using velm_tools::InputLines;
using velm_tools::JsonLine;
using velm_tools::PrintLine;
using velm_tools::Remark;
using velm_tools::UsageError;

enum ExitCode { kDone = 0, kFailed = 1, kBadUsage = 2, kRefusedExit = 3 };

// This machine has a real client.
class Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// COM on the main thread, which the search for products needs.
class ComScope {
 public:
  ComScope() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;
  ~ComScope() { CoUninitialize(); }
};

std::string VersionText(const Cmm::FileVersion& version) {
  return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
         std::to_string(version.third) + "." + std::to_string(version.fourth);
}

std::wstring ProductDirectory(const Options& options) {
  return options.directory.empty() ? FakeProduct::DefaultDirectory()
                                   : velm_tools::FromUtf8(options.directory);
}

void RefuseBesideARealProduct(const Options& options) {
  if (options.force) return;
  if (const std::optional<std::wstring> real = FakeProduct::FindForeignProduct())
    throw Refused("a real client is installed in " + velm_tools::ToUtf8(*real) +
                  "; --force goes on all the same");
}

void RefuseBesideAnOpenWindow(const Options& options) {
  if (options.force) return;
  std::vector<std::wstring> windows = options.windows;
  if (options.audioPipes) windows.emplace_back(kHelperWindow);
  for (const std::wstring& windowClass : windows)
    if (FindWindowW(windowClass.c_str(), nullptr))
      throw Refused("a client is running: its window " + velm_tools::ToUtf8(windowClass) +
                    " is open; --force opens one more");
}

velm_tools::FakeProductOptions ProductOptions(const Options& options) {
  velm_tools::FakeProductOptions product;
  product.version = options.version;
  product.directory = ProductDirectory(options);
  product.registerCommand = options.registerCommand;
  return product;
}

void Install(const Options& options) {
  RefuseBesideARealProduct(options);
  FakeProduct product(ProductOptions(options));
  product.Keep();
  PrintLine(JsonLine()
                .Add("event", "installed")
                .Add("product", velm_tools::ToUtf8(product.Directory()))
                .Add("version", VersionText(options.version))
                .Text());
}

void Uninstall(const Options& options) {
  const std::wstring directory = ProductDirectory(options);
  const bool removed = FakeProduct::RemoveFrom(directory);
  PrintLine(JsonLine()
                .Add("event", "uninstalled")
                .Add("product", velm_tools::ToUtf8(directory))
                .Add("removed", removed)
                .Text());
}

std::vector<Step> ReadScript(const std::string& path) {
  std::ifstream file(velm_tools::FromUtf8(path).c_str(), std::ios::binary);
  if (!file) throw UsageError("cannot read the script '" + path + "'");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  try {
    return ParseScript(text);
  } catch (const UsageError& error) {
    throw UsageError(path + ", " + error.what());
  }
}

uint32_t ServiceId(const Options& options) {
  return options.serviceId.value_or(ServiceChannelId());
}

std::string ServicePipeName(const Options& options) {
  return ChannelName(RouteKind::kService, ServiceId(options)) + options.pipeSuffix;
}

void ReportReady(const Options& options, const std::optional<FakeProduct>& product) {
  Json::Value windows(Json::arrayValue);
  for (const std::wstring& windowClass : options.windows)
    windows.append(velm_tools::ToUtf8(windowClass));
  const bool installed = product.has_value();
  PrintLine(
      JsonLine()
          .Add("event", "ready")
          .Add("product", installed ? Json::Value(velm_tools::ToUtf8(product->Directory())) : Json::Value())
          .Add("version", installed ? Json::Value(VersionText(options.version)) : Json::Value())
          .Add("windows", windows)
          .Add("servicePipe", options.servicePipe ? Json::Value(ServicePipeName(options)) : Json::Value())
          .Add("audioPipes", options.audioPipes)
          .Text());
  Remark(installed ? "installed a fake client " + VersionText(options.version) + " in " +
                         velm_tools::ToUtf8(product->Directory())
                   : "installed nothing");
}

void ServeOrRemark(PipeRoute& route, uint32_t channelId) {
  try {
    route.Serve(channelId);
  } catch (const std::system_error& error) {
    Remark(error.what());  // the host asks again
  }
}

void AddRoutes(Simulator& simulator, const Options& options) {
  std::unique_ptr<PipeRoute> audio;
  ClientWindow::RequestHandler onRequest;
  if (options.audioPipes) {
    audio = std::make_unique<PipeRoute>(RouteKind::kAudio, options.pipeSuffix, simulator.Pipes(),
                                        simulator.Handler());
    onRequest = [route = audio.get()](uint32_t channelId) { ServeOrRemark(*route, channelId); };
  }
  if (options.servicePipe) {
    auto service = std::make_unique<PipeRoute>(RouteKind::kService, options.pipeSuffix, simulator.Pipes(),
                                               simulator.Handler());
    service->Serve(ServiceId(options));
    simulator.AddRoute(std::move(service));
  }
  // Routes are closed in this order: requests for audio pipes end before these do.
  simulator.AddRoute(std::make_unique<WindowRoute>(options.windows, simulator.Handler(), onRequest));
  if (audio) simulator.AddRoute(std::move(audio));
}

enum class Ended { kByItself, kByQuit };

Ended RunScript(Simulator& simulator, const std::vector<Step>& script) {
  for (const Step& step : script) {
    if (velm_tools::Interrupted()) break;
    if (!simulator.Run(step)) return Ended::kByQuit;
  }
  return Ended::kByItself;
}

Ended RunInput(Simulator& simulator) {
  const bool typed = velm_tools::InputIsConsole();
  if (typed) Remark("type 'help' for what can be sent, 'quit' to end");
  InputLines input;
  for (size_t number = 1; const std::optional<std::string> line = input.Next(); ++number) {
    try {
      const std::optional<Step> step = ParseStep(*line);
      if (step && !simulator.Run(*step)) return Ended::kByQuit;
    } catch (const UsageError& error) {
      if (!typed) throw UsageError("line " + std::to_string(number) + ": " + error.what());
      Remark(error.what());
    } catch (const StepFailed& failure) {
      if (!typed) throw;
      Remark(failure.what());
    }
  }
  return Ended::kByItself;
}

void Run(const Options& options) {
  const std::vector<Step> script = options.script.empty() ? std::vector<Step>() : ReadScript(options.script);
  RefuseBesideAnOpenWindow(options);
  if (options.installProduct) RefuseBesideARealProduct(options);

  std::optional<FakeProduct> product;
  if (options.installProduct) product.emplace(ProductOptions(options));
  Simulator simulator(options.misbehaviour);
  AddRoutes(simulator, options);
  ReportReady(options, product);

  const Ended ended = options.script.empty() ? RunInput(simulator) : RunScript(simulator, script);
  if (options.stay && ended == Ended::kByItself) velm_tools::SleepUnlessInterrupted(INFINITE);

  simulator.CloseRoutes();
  if (product) product->Remove();
  PrintLine(JsonLine().Add("event", "end").Add("commands", simulator.CommandCount()).Text());
}

void Do(const Options& options) {
  switch (options.action) {
    case Action::kHelp:
      PrintLine(std::string(kOptionHelp) + '\n' + std::string(kStepHelp));
      return;
    case Action::kInstall:
      return Install(options);
    case Action::kUninstall:
      return Uninstall(options);
    case Action::kRun:
      return Run(options);
  }
}

int Main(const std::vector<std::string>& arguments) {
  const auto fail = [](ExitCode code, const std::exception& error) {
    Remark(std::string("velm_client_sim: ") + error.what());
    return code;
  };
  try {
    Do(ParseOptions(arguments));
    return kDone;
  } catch (const UsageError& error) {
    fail(kBadUsage, error);
    Remark("'velm_client_sim --help' says what can be written");
    return kBadUsage;
  } catch (const Refused& error) {
    return fail(kRefusedExit, error);
  } catch (const std::exception& error) {
    return fail(kFailed, error);
  }
}

}  // namespace
}  // namespace velm_sim

int main() {
  const std::vector<std::string> arguments = velm_tools::PrepareConsole();
  velm_tools::TrapInterrupts();
  const velm_sim::ComScope com;
  return velm_sim::Main(arguments);
}
