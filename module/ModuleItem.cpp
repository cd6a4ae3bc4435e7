#include "module/ModuleItem.h"

#include <map>
#include <string>
#include <string_view>

#include "common/client/utility/src/CmmConvert.h"
#include "telemetry/PerfTelemetryScopes.h"

namespace Cmm::module {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

struct StaticFunctions {
  InitModuleFunction init;
  TermModuleFunction term;
};

std::map<std::string, StaticFunctions>& StaticModules() {
  static std::map<std::string, StaticFunctions> modules;
  return modules;
}

template <typename Function>
Function FindFunction(HMODULE library, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace

uint32_t ParseCapabilities(const CStringT<char>& caps) {
  uint32_t flags = 0;
  std::string_view rest(caps.c_str());
  while (!rest.empty()) {
    const size_t end = rest.find(';');
    if (Trimmed(rest.substr(0, end)) != "IdleHandler") break;
    flags |= kIdleHandler;
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
  return flags;
}

// ---- What both kinds have

ICmmModuleItemBase::~ICmmModuleItemBase() = default;

CCmmModuleItem::CCmmModuleItem() = default;
CCmmModuleItem::~CCmmModuleItem() = default;

const CStringT<char>& CCmmModuleItem::GetModuleName() {
  return m_name;
}

ICmmMessageQueueClient* CCmmModuleItem::GetInstance() {
  return m_instance;
}

int CCmmModuleItem::IsIdleHandler() {
  return (m_flags & kIdleHandler) != 0;
}

void CCmmModuleItem::SetInstance(ICmmMessageQueueClient* instance) {
  m_instance = instance;
}

void CCmmModuleItem::SetCapabilities(uint32_t flags) {
  m_flags = flags;
}

int CCmmModuleItem::Start(const CStringT<char>& name) {
  m_name = name;
  m_instance = m_init();
  return m_instance != nullptr;
}

int CCmmModuleItem::Terminate(int reason) {
  const bool succeeded = m_instance && m_term && m_term(m_instance, reason) == 0;
  m_instance = nullptr;
  return succeeded;
}

void CCmmModuleItem::ForgetFunctions() {
  m_init = nullptr;
  m_term = nullptr;
}

int CCmmModuleItem::UnloadModule(int reason) {
  const int succeeded = Terminate(reason);
  ForgetFunctions();
  m_name.clear();
  return succeeded;
}

// ---- A module in a shared library

CCmmDynamicModule::CCmmDynamicModule() = default;
CCmmDynamicModule::~CCmmDynamicModule() = default;

int CCmmDynamicModule::LoadModule(const CStringT<char>& path) {
  const CCmmPerfTelemetryLog scope("CCmmDynamicModule::LoadModule", "cmmlib", 0, path);
  if (path.IsEmpty()) return 0;
  CStringT<wchar_t> widePath;
  _cstring_set(widePath, 0, path.c_str(), static_cast<size_t>(-1));
  m_library.reset(LoadLibraryW(widePath.c_str()));
  if (!m_library) return 0;
  m_init = FindFunction<InitModuleFunction>(m_library.get(), "InitModule");
  m_term = FindFunction<TermModuleFunction>(m_library.get(), "TermModule");
  if (!m_init || !m_term) {
    ForgetFunctions();
    m_library.reset();
    return 0;
  }
  return Start(path);
}

int CCmmDynamicModule::UnloadModule(int reason) {
  const int succeeded = CCmmModuleItem::UnloadModule(reason);
  m_library.reset();
  return succeeded;
}

void CCmmDynamicModule::TerminateOnly() {
  CCmmModuleItem::UnloadModule(kNoReason);
}

// ---- A module that is linked into the host

CCmmStaticModule::CCmmStaticModule() = default;
CCmmStaticModule::~CCmmStaticModule() = default;

void CCmmStaticModule::AddStaticModule(const CStringT<char>& name, InitModuleFunction init,
                                       TermModuleFunction term) {
  StaticModules()[name.c_str()] = {init, term};
}

int CCmmStaticModule::LoadModule(const CStringT<char>& name) {
  if (name.IsEmpty()) return 0;
  if (const auto found = StaticModules().find(name.c_str()); found != StaticModules().end()) {
    m_init = found->second.init;
    m_term = found->second.term;
  }
  if (!m_init || !m_term) {
    ForgetFunctions();
    return 0;
  }
  return Start(name);
}

}  // namespace Cmm::module
