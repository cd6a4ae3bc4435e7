// A module: it joins the message bus of the process that loads it and prints what it is told.

#include <cstdio>
#include <cstring>

#include "module/CmmModule.h"

namespace {

class Greeter : public Cmm::ICmmMessageQueueClient {
 public:
  void OnMessage(const char* topic, void*, Cmm::CmmMQ_Msg* msg) override {
    if (std::strcmp(topic, "example.greeting") == 0)
      std::printf("greeter: %.*s\n", static_cast<int>(msg->GetLen()), msg->GetData());
  }
  void OnNotify(const char*, void*, Cmm::CmmMQ_Msg*, void*) override {}
  const char* GetClientName() override { return "example.greeter"; }
};

Greeter g_greeter;

}  // namespace

extern "C" __declspec(dllexport) Cmm::ICmmMessageQueueClient* InitModule() {
  CmmMQ_GetService()->Subscribe(&g_greeter, "example.greeting", nullptr);
  return &g_greeter;
}

extern "C" __declspec(dllexport) int TermModule(Cmm::ICmmMessageQueueClient* instance, int) {
  CmmMQ_GetService()->Unsubscribe(instance, "example.greeting", nullptr);
  std::printf("greeter: goodbye\n");
  std::fflush(stdout);
  return 0;
}
