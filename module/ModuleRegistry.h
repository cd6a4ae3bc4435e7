#pragma once

#include "module/CmmModule.h"

namespace Cmm::module {

class CCmmModuleRegistry : public ICmmModuleRegistry {
 public:
  IQXAppProvider* GetAppProvider() override { return m_appProvider; }
  IQXUIProvider* GetUIProvider() override { return m_uiProvider; }
  void SetAppProvider(IQXAppProvider* provider) override { m_appProvider = provider; }
  void SetUIProvider(IQXUIProvider* provider) override { m_uiProvider = provider; }

 private:
  IQXAppProvider* m_appProvider = nullptr;
  IQXUIProvider* m_uiProvider = nullptr;
};

}  // namespace Cmm::module
