/* hello_host: asks the meeting client for its presence and prints every notification until Enter. */
#include <stdio.h>

#include "sdk/VelmSdk.h"

static void OnNotify(const SdkNotifyInfo* info, const wchar_t* rawJson) {
  if (info) printf("notification %d: value %d, %ls\n", (int)info->commandId, (int)info->value, rawJson);
}

int main(void) {
  GetSDKAvailableFeatures();                                       /* creates the channel */
  RegisterMsg(SDK_FEATURES_ALL & ~SDK_FEATURE_AUDIO);              /* says what it is to deliver */
  SetCallBackFunc(OnNotify);                                       /* starts it */
  printf("presence query: %u\n", (unsigned)GetIMPresenceStatus()); /* 0: the client has it; 2: no client */
  getchar();                                                       /* OnNotify runs on another thread */
  return (int)DestroySdkChannel();
}
