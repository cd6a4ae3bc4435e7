#include "sdk/IpcClient.h"

#include "sdk/AudioSDKIPCClient.h"
#include "sdk/Client3rdSDKIPCClient.h"

namespace Velm3rdSDK {
namespace {

class PipeClientFactory : public IpcClientFactory {
 public:
  std::shared_ptr<IAudioSDKIPCClient> MakeAudioClient() override {
    return std::make_shared<CAudioSDKIPCClient>();
  }
  std::shared_ptr<IClient3rdSDKIPCClient> MakeServiceModeClient() override {
    return std::make_shared<CClient3rdSDKIPCClient>();
  }
};

PipeClientFactory g_pipeClients;
IpcClientFactory* g_factory = &g_pipeClients;

}  // namespace

IpcClientFactory& GetIpcClientFactory() {
  return *g_factory;
}

void SetIpcClientFactory(IpcClientFactory* factory) {
  g_factory = factory ? factory : &g_pipeClients;
}

}  // namespace Velm3rdSDK
