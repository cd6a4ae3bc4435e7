#pragma once

#include <memory>
#include <vector>

#include "module/CmmModule.h"
#include "module/ModuleItem.h"
#include "module/ModuleList.h"
#include "module/ModuleRegistry.h"

namespace Cmm::module {

// The directory of the process's program, with the backslash at its end, as `getModuleFileName` tells the
// path; empty when it tells none. A path beyond 511 characters comes out cut: the call that is there for
// longer ones is made for a result that the first never gives.
CStringT<char> FindModuleDirectory(decltype(&GetModuleFileNameA) getModuleFileName);

class CCmmModuleLoader : public ICmmModuleLoader {
 public:
  // The registry of the loader made last is that of GetModuleRegistry, until a loader ends.
  CCmmModuleLoader();
  CCmmModuleLoader(const CCmmModuleLoader&) = delete;
  CCmmModuleLoader& operator=(const CCmmModuleLoader&) = delete;
  ~CCmmModuleLoader() override;

  // The loader of the process.
  static CCmmModuleLoader* GetProcessLoader();

  int LoadModulesFromFile(const char* path) override;
  int LoadModulesFromXml(const char* xml) override;
  int UnloadAllModules() override;
  int BroadcastSyncMessageToModules(const char* topic, CmmMQ_Msg* msg) override;
  int BroadcastMessageToModules(const char* topic, CmmMQ_Msg* msg) override;
  int SetModuleInstance(const char* fileName, ICmmMessageQueueClient* instance) override;
  int UnloadModuleInstance(ICmmMessageQueueClient* instance) override;
  int LoadModule(const CStringT<wchar_t>& name) override;
  int DynamicLoadModule(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name,
                        const CStringT<char>& caps) override;
  int LoadModuleFromDir(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name) override;
  int DynamicUnloadModule(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name) override;

 private:
  using Items = std::vector<std::unique_ptr<CCmmDynamicModule>>;

  bool FindDirectory();
  int LoadEntries(const std::optional<std::vector<ModuleEntry>>& entries);
  int LoadEntry(const ModuleEntry& entry);
  void TakeRole(const ModuleEntry& entry, ICmmMessageQueueClient* instance);
  void AddIdleHandlers();
  void AddIdleHandler(CCmmDynamicModule& item);
  // Loads the module of `path` and puts it on the bus; null when it does not load.
  CCmmDynamicModule* LoadPath(const CStringT<char>& path, const CStringT<char>& caps);
  std::vector<CCmmDynamicModule*> ItemsNow() const;
  Items::iterator FindPath(const CStringT<char>& path);
  // Takes the item out of the list. The object stays, for its module may be what is asking.
  void Forget(Items::iterator item);

  Items m_items;  // in the order of loading
  CStringT<char> m_directory;
  CCmmModuleRegistry m_registry;
};

}  // namespace Cmm::module
