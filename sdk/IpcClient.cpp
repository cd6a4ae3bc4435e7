#include "sdk/IpcClient.h"

namespace Velm3rdSDK {
namespace {

IpcClientFactory* g_factory = nullptr;

}  // namespace

IpcClientFactory* GetIpcClientFactory() {
  return g_factory;
}

void SetIpcClientFactory(IpcClientFactory* factory) {
  g_factory = factory;
}

}  // namespace Velm3rdSDK
