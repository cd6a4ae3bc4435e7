// The sample modules of the tests, one program text under several names. What a build of it does differently
// is chosen by SAMPLE_... definitions; SAMPLE_NAME is its client name. Each call is written into the journal
// of the process that loads it.

#include <windows.h>

#include <string>

#include "module/CmmModule.h"

namespace {

using Record = void (*)(const char* line);

void Journal(const std::string& line) {
  static const auto record = reinterpret_cast<Record>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), "RecordModuleCall")));
  if (record) record((std::string(SAMPLE_NAME " ") + line).c_str());
}

class SampleModule : public Cmm::ICmmMessageQueueClient
#ifdef SAMPLE_APP_PROVIDER
    ,
                     public Cmm::IQXAppProvider
#endif
#ifdef SAMPLE_UI_PROVIDER
    ,
                     public Cmm::IQXUIProvider
#endif
#ifdef SAMPLE_IDLE_HANDLER
    ,
                     public Cmm::IQXIdleHandler
#endif
{
 public:
  void OnMessage(const char* topic, void* sender, Cmm::CmmMQ_Msg*) override {
    Journal(std::string("message ") + topic + (sender ? " from somebody" : ""));
  }
  void OnNotify(const char* topic, void* sender, Cmm::CmmMQ_Msg*, void* extra) override {
    Journal(std::string("notify ") + topic + (sender || extra ? " with more" : ""));
#ifdef SAMPLE_SLOW
    Sleep(50);
#endif
#ifdef SAMPLE_UNLOADS_OTHER
    if (std::string(topic) != "unload the other") return;
    const int result =
        Cmm::GetModuleLoader()->UnloadModuleInstance(CmmMQ_GetService()->FindClient("sample_good"));
    Journal("unloaded sample_good: " + std::to_string(result));
#endif
  }
  const char* GetClientName() override {
    return SAMPLE_NAME;
  }

#ifdef SAMPLE_APP_PROVIDER
  int AppOperation1(void*) override {
    return 0;
  }
  int AppOperation2(void*) override {
    return 0;
  }
  int AppOperation3(void*) override {
    return 0;
  }
  int AppOperation4(void*) override {
    return 0;
  }
  void AddIdleHandler(Cmm::IQXIdleHandler* handler) override {
    Journal(handler ? "got an idle handler" : "got no idle handler");
  }
  int AppOperation6(void*) override {
    return 0;
  }
  int AppOperation7(void*) override {
    return 0;
  }
  int AppOperation8(void*) override {
    return 0;
  }
  int AppOperation9(void*) override {
    return 0;
  }
#endif
};

SampleModule g_module;

}  // namespace

extern "C" __declspec(dllexport) Cmm::ICmmMessageQueueClient* InitModule() {
  Journal("init");
#ifdef SAMPLE_SLOW
  Sleep(100);
#endif
#ifdef SAMPLE_REFUSES
  return nullptr;
#else
  return &g_module;
#endif
}

#ifndef SAMPLE_WITHOUT_TERM
extern "C" __declspec(dllexport) int TermModule(Cmm::ICmmMessageQueueClient* instance, int reason) {
  Journal(instance == &g_module && reason == 0 ? "term" : "term of something else");
#ifdef SAMPLE_FAILING_TERM
  return 1;
#else
  return 0;
#endif
}
#endif
