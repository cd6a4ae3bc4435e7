/* A second host application on the machine, in C and with the import library: selects a device, says
 * "ready", tells each camera status that arrives, and leaves in good order at the end of its input. */
#include <stdio.h>

#include "sdk/VelmSdk.h"

static void OnCamera(const SdkStatusInfo* info) {
  printf("camera %d\n", info->status);
  fflush(stdout);
}

int main(void) {
  GetSDKAvailableFeatures();
  if (RegisterMsg(SDK_FEATURE_CAMERA) != 1 || SetCameraCallBack(OnCamera) != SDK_OK) return 1;
  if (SetAudioDevice(L"Second host's device", L"", L"", 0) != 1) return 2;
  printf("ready\n");
  fflush(stdout);
  while (getchar() != EOF) {
  }
  return DestroySdkChannel() == SDK_OK ? 0 : 3;
}
