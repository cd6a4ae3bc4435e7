/* Compiled alone, as C and as C++, with pedantic warnings as errors: the header needs nothing before it. */
#include "sdk/VelmSdk.h"

static void OnCamera(const SdkStatusInfo* info) {
  (void)info->status;
}

int UseTheHeader(void);

int UseTheHeader(void) {
  const uint32_t features = SDK_FEATURES_ALL & ~(uint32_t)SDK_FEATURE_AUDIO;
  return SetCameraCallBack(OnCamera) == SDK_OK && RegisterMsg((int64_t)features) == 1 &&
         InitVelm3rdSdkChannel(0) == SDK_OK;
}
