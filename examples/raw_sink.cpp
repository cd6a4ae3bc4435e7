// raw_sink: prints the text of every notification, before any device filter, until Enter.
#include <cstdio>

#include "sdk/VelmSdk.h"

namespace {

struct PrintingSink final : ISdkRawSink {
  void OnRawMessage(const wchar_t* rawJson) override { std::printf("%ls\n", rawJson ? rawJson : L"(empty)"); }
};

}  // namespace

int main() {
  static PrintingSink sink;  // outlives the channel
  GetSDKAvailableFeatures();
  RegisterMsg(SDK_FEATURES_ALL & ~SDK_FEATURE_AUDIO);
  InitVelm3rdSdkChannel(&sink);
  SetCallBackFunc(nullptr);  // starts the channel: a sink alone does not once the channel exists
  std::getchar();
  return static_cast<int>(DestroySdkChannel());
}
