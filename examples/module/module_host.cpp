// Loads the modules of a list, sends them a message over the bus, and unloads them.

#include <cstdio>
#include <memory>

#include "module/CmmModule.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: module_host LIST.xml\n");
    return 2;
  }
  Cmm::ICmmModuleLoader* const loader = Cmm::GetModuleLoader();
  if (!loader->LoadModulesFromFile(argv[1])) {
    std::fprintf(stderr, "the modules of %s cannot be loaded\n", argv[1]);
    loader->UnloadAllModules();
    return 1;
  }
  const unsigned char text[] = "hello from the host";
  const std::unique_ptr<Cmm::CmmMQ_Msg> greeting(Cmm::CmmMQ_Msg::MakeMessage(text, sizeof(text) - 1, 1));
  CmmMQ_GetService()->SendToTopic(loader, "example.greeting", nullptr, greeting.get());
  loader->UnloadAllModules();
}
