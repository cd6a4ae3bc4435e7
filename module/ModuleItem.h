#pragma once

// One module of the process.

#include <windows.h>

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/UniqueHandle.h"
#include "common/client/utility/src/ipc/CmmMessageQueue.h"

namespace Cmm::module {

using InitModuleFunction = ICmmMessageQueueClient* (*)();
using TermModuleFunction = int (*)(ICmmMessageQueueClient* instance, int reason);

inline constexpr int kNoReason = 0;
inline constexpr uint32_t kIdleHandler = 1;  // capability flag

// The capability flags of a list of names separated by ';'. Blanks around a name are of no account; what
// follows the first unknown name is not read.
uint32_t ParseCapabilities(const CStringT<char>& caps);

class CMM_EXPORT ICmmModuleItemBase {
 public:
  virtual ~ICmmModuleItemBase();
  virtual int LoadModule(const CStringT<char>& path) = 0;  // non-zero when it gave an instance
  virtual int UnloadModule(int reason) = 0;                // non-zero when its end reported success
  virtual const CStringT<char>& GetModuleName() = 0;       // the full path
  virtual ICmmMessageQueueClient* GetInstance() = 0;       // null when it does not run
  virtual int IsIdleHandler() = 0;
};

// What both kinds of module have.
class CMM_EXPORT CCmmModuleItem : public ICmmModuleItemBase {
 public:
  CCmmModuleItem();
  CCmmModuleItem(const CCmmModuleItem&) = delete;
  CCmmModuleItem& operator=(const CCmmModuleItem&) = delete;
  ~CCmmModuleItem() override;

  int UnloadModule(int reason) override;
  const CStringT<char>& GetModuleName() override;
  ICmmMessageQueueClient* GetInstance() override;
  int IsIdleHandler() override;

  void SetInstance(ICmmMessageQueueClient* instance);
  void SetCapabilities(uint32_t flags);

 protected:
  // Ends the module that runs; non-zero when it reported success.
  int Terminate(int reason);
  int Start(const CStringT<char>& name);
  void ForgetFunctions();

  InitModuleFunction m_init = nullptr;
  TermModuleFunction m_term = nullptr;
  CStringT<char> m_name;
  ICmmMessageQueueClient* m_instance = nullptr;
  uint32_t m_flags = 0;
};

// A module in a shared library.
class CMM_EXPORT CCmmDynamicModule : public CCmmModuleItem {
 public:
  CCmmDynamicModule();
  ~CCmmDynamicModule() override;  // unloads the library without a word to the module

  int LoadModule(const CStringT<char>& path) override;
  int UnloadModule(int reason) override;

  bool IsLibrary(HMODULE library) const { return library && m_library.get() == library; }
  // Ends the module and keeps its library loaded until the object goes.
  void TerminateOnly();

 private:
  UniqueModule m_library;
};

// A module that is linked into the host. A host enters its functions under a name first.
class CMM_EXPORT CCmmStaticModule : public CCmmModuleItem {
 public:
  CCmmStaticModule();
  ~CCmmStaticModule() override;

  // Enters the functions of `name`, in place of those before. For the start of the process: no lock.
  static void AddStaticModule(const CStringT<char>& name, InitModuleFunction init, TermModuleFunction term);

  int LoadModule(const CStringT<char>& name) override;
};

}  // namespace Cmm::module
