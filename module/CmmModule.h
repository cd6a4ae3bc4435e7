#pragma once

// The modules of a process: shared libraries that join the process's message bus as clients. A list names
// them; the loader loads them from the directory of the process's program, registers what they give, and
// hands out the two roles that a module can have for the others, application provider and UI provider.
//
// A module exports, by these names:
//   Cmm::ICmmMessageQueueClient* InitModule()                              null: it refuses to run
//   int TermModule(Cmm::ICmmMessageQueueClient* instance, int reason)      0: success
//
// A list is an XML document; its root may have any name:
//   <modules>
//     <module name="mainboard" type="App"/>
//     <module name="meetingui" type="UI" caps="IdleHandler"/>
//   </modules>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/ipc/CmmMessageQueue.h"

namespace Cmm {

// A role of a module that is listed with the capability "IdleHandler", found by a cast of its instance.
class CMM_EXPORT IQXIdleHandler {
 public:
  virtual ~IQXIdleHandler();
};

// The role of a module that is listed as "UI", found by a cast of its instance.
class CMM_EXPORT IQXUIProvider {
 public:
  virtual ~IQXUIProvider();
};

// The role of a module that is listed as "App", found by a cast of its instance. The loader calls
// AddIdleHandler; the other operations are between the modules of the client.
class CMM_EXPORT IQXAppProvider {
 public:
  virtual ~IQXAppProvider();
  virtual int AppOperation1(void* argument) = 0;
  virtual int AppOperation2(void* argument) = 0;
  virtual int AppOperation3(void* argument) = 0;
  virtual int AppOperation4(void* argument) = 0;
  virtual void AddIdleHandler(IQXIdleHandler* handler) = 0;  // not owned
  virtual int AppOperation6(void* argument) = 0;
  virtual int AppOperation7(void* argument) = 0;
  virtual int AppOperation8(void* argument) = 0;
  virtual int AppOperation9(void* argument) = 0;
};

// Who has the two roles. Nothing is owned; null means nobody.
class CMM_EXPORT ICmmModuleRegistry {
 public:
  virtual ~ICmmModuleRegistry();
  virtual IQXAppProvider* GetAppProvider() = 0;
  virtual IQXUIProvider* GetUIProvider() = 0;
  virtual void SetAppProvider(IQXAppProvider* provider) = 0;
  virtual void SetUIProvider(IQXUIProvider* provider) = 0;
};

// The loader. It has no lock: for the process's main thread. Narrow names and paths are in the ANSI code
// page.
class CMM_EXPORT ICmmModuleLoader {
 public:
  virtual ~ICmmModuleLoader();

  // Load the modules of a list, in its order. 1; 0 when the list cannot be read or a module cannot be loaded:
  // that ends the list, and what was loaded before stays. A module that is listed twice is loaded twice.
  virtual int LoadModulesFromFile(const char* path) = 0;
  virtual int LoadModulesFromXml(const char* xml) = 0;

  // Ends all modules, in the order in which they were loaded, and then unloads them. Always 1.
  virtual int UnloadAllModules() = 0;

  // Call OnNotify, or OnMessage, of every module, with no sender. Modules may load and unload others
  // meanwhile, but not the one that is being called. 0 for a null `msg`, otherwise 1.
  virtual int BroadcastSyncMessageToModules(const char* topic, CmmMQ_Msg* msg) = 0;
  virtual int BroadcastMessageToModules(const char* topic, CmmMQ_Msg* msg) = 0;

  // Replaces the instance of the module whose library the process knows as `fileName`. Always 1.
  virtual int SetModuleInstance(const char* fileName, ICmmMessageQueueClient* instance) = 0;
  // Ends and unloads the module that has `instance`. Always 1, also when there is none.
  virtual int UnloadModuleInstance(ICmmMessageQueueClient* instance) = 0;

  // Loads `name` (without ".dll") from the directory of the process's program. 1 when it is loaded then.
  virtual int LoadModule(const CStringT<wchar_t>& name) = 0;
  // Loads `name` from `dir`, with capabilities as in a list. 1 when it is loaded then, also if it was before.
  virtual int DynamicLoadModule(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name,
                                const CStringT<char>& caps) = 0;
  virtual int LoadModuleFromDir(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name) = 0;
  // Ends and unloads `name` of `dir`. 1 also when it is not loaded; 0 when it is not a client of the bus, and
  // then nothing is done, or when its end reported a failure.
  virtual int DynamicUnloadModule(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name) = 0;
};

// The loader of the process, and the registry beside it; the registry is null before the library is loaded
// and after it is unloaded.
CMM_EXPORT ICmmModuleLoader* GetModuleLoader();
CMM_EXPORT ICmmModuleRegistry* GetModuleRegistry();

}  // namespace Cmm
