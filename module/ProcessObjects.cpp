// The objects that the process has one of, built by one static initialiser when the library is loaded, in
// the order of the members, and ended in the reverse order when it is unloaded.

#include "archive/ArchiveServiceImp.h"
#include "common/client/utility/src/CmmTimerSlot.h"
#include "common/client/utility/src/ipc/CmmMessageQueueService.h"
#include "module/ModuleLoader.h"

namespace Cmm {
namespace {

struct ProcessObjects {
  Archive::CCmmArchiveServiceImp archiveService;  // first: every message class registers with it
  MQ::CCmmMessageQueueService messageQueueService;
  internal::TimerSlot timerSlot;
  module::CCmmModuleLoader moduleLoader;  // with the registry in it
};

// Before every static object of default priority, for these may be messages.
constexpr int kBeforeMessages = 101;
__attribute__((init_priority(kBeforeMessages))) ProcessObjects processObjects;

}  // namespace

Archive::CCmmArchiveServiceImp* Archive::CCmmArchiveServiceImp::GetImp() {
  return &processObjects.archiveService;
}

MQ::CCmmMessageQueueService* MQ::CCmmMessageQueueService::GetProcessService() {
  return &processObjects.messageQueueService;
}

internal::TimerSlot& internal::TimerSlot::OfThisProcess() {
  return processObjects.timerSlot;
}

module::CCmmModuleLoader* module::CCmmModuleLoader::GetProcessLoader() {
  return &processObjects.moduleLoader;
}

}  // namespace Cmm
