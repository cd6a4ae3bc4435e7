#include "module/ModuleLoader.h"

#include <algorithm>

#include "common/client/utility/src/CmmConvert.h"
#include "telemetry/PerfTelemetryScopes.h"

namespace Cmm {

IQXIdleHandler::~IQXIdleHandler() = default;
IQXUIProvider::~IQXUIProvider() = default;
IQXAppProvider::~IQXAppProvider() = default;
ICmmModuleRegistry::~ICmmModuleRegistry() = default;
ICmmModuleLoader::~ICmmModuleLoader() = default;

namespace module {
namespace {

constexpr const char* kLibraryExtension = ".dll";
constexpr const char* kLoadSource = "CmmPTUtil";
constexpr const char* kBroadcastSource = "cmmlib";
constexpr const char* kBroadcastSyncName = "broadcast_sync_msg_handler";

ICmmModuleRegistry* g_registry = nullptr;

CStringT<char> ToAnsi(const CStringT<wchar_t>& text) {
  CStringT<char> ansi;
  _cstring_set(ansi, 0, text.c_str(), static_cast<size_t>(-1));
  return ansi;
}

CStringT<char> PathOf(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name) {
  return ToAnsi(dir) + "\\" + ToAnsi(name) + kLibraryExtension;
}

// What stands for a module's path in a record: its second half.
CStringT<char> ShortName(const CStringT<char>& name) {
  if (name.IsEmpty()) return "";
  return CStringT<char>("...") + (name.c_str() + name.size() / 2);
}

VelmPTPAAP::PerfMetricsEvents_s BroadcastSyncEvent() {
  VelmPTPAAP::PerfMetricsEvents_s event;
  event.login_event = e_chat_perfmetrics_Perfmetrics_login_event::broadcast_sync_msg_handler;
  return event;
}

}  // namespace

CStringT<char> FindModuleDirectory(decltype(&GetModuleFileNameA) getModuleFileName) {
  char path[512] = {};
  char longPath[1024] = {};
  const DWORD length = getModuleFileName(nullptr, path, sizeof(path) - 1);
  if (length == 0) return "";
  std::string_view text(path);
  if (length >= sizeof(path)) {
    getModuleFileName(nullptr, longPath, sizeof(longPath) - 1);
    text = longPath;
  }
  return std::string(text.substr(0, text.find_last_of('\\') + 1)).c_str();
}

CCmmModuleLoader::CCmmModuleLoader() {
  g_registry = &m_registry;
}

CCmmModuleLoader::~CCmmModuleLoader() {
  g_registry = nullptr;
}

bool CCmmModuleLoader::FindDirectory() {
  m_directory = FindModuleDirectory(GetModuleFileNameA);
  return !m_directory.IsEmpty();
}

// ---- Lists

int CCmmModuleLoader::LoadModulesFromFile(const char* path) {
  return FindDirectory() && path && LoadEntries(ReadModuleListFile(path));
}

int CCmmModuleLoader::LoadModulesFromXml(const char* xml) {
  return FindDirectory() && xml && LoadEntries(ParseModuleList(xml));
}

int CCmmModuleLoader::LoadEntries(const std::optional<std::vector<ModuleEntry>>& entries) {
  if (!entries) return 0;
  for (const ModuleEntry& entry : *entries)
    if (!LoadEntry(entry)) return 0;
  AddIdleHandlers();
  return 1;
}

int CCmmModuleLoader::LoadEntry(const ModuleEntry& entry) {
  if (entry.name.IsEmpty()) return 1;
  const CCmmPerfTelemetryStacks scope(CStringT<char>("LoadModule - ") + entry.name, kLoadSource, 0);
  const CStringT<char> fileName = entry.name + kLibraryExtension;
  // Items hold full paths, so this finds none: a library that is listed twice is loaded twice.
  if (FindPath(fileName) != m_items.end()) return 1;
  auto item = std::make_unique<CCmmDynamicModule>();
  if (!item->LoadModule(m_directory + fileName)) return 0;
  ICmmMessageQueueClient* const instance = item->GetInstance();
  item->SetCapabilities(ParseCapabilities(entry.caps));
  m_items.push_back(std::move(item));
  TakeRole(entry, instance);
  if (instance) CmmMQ_GetService()->RegisterClient(instance);
  return 1;
}

void CCmmModuleLoader::TakeRole(const ModuleEntry& entry, ICmmMessageQueueClient* instance) {
  if (entry.type == "App") {
    if (auto* const provider = dynamic_cast<IQXAppProvider*>(instance)) m_registry.SetAppProvider(provider);
  } else if (entry.type == "UI") {
    if (auto* const provider = dynamic_cast<IQXUIProvider*>(instance)) m_registry.SetUIProvider(provider);
  }
}

void CCmmModuleLoader::AddIdleHandlers() {
  for (const auto& item : m_items)
    AddIdleHandler(*item);
}

void CCmmModuleLoader::AddIdleHandler(CCmmDynamicModule& item) {
  IQXAppProvider* const provider = m_registry.GetAppProvider();
  if (!provider || !item.IsIdleHandler()) return;
  if (auto* const handler = dynamic_cast<IQXIdleHandler*>(item.GetInstance()))
    provider->AddIdleHandler(handler);
}

// ---- The end of all

int CCmmModuleLoader::UnloadAllModules() {
  m_registry.SetUIProvider(nullptr);
  m_registry.SetAppProvider(nullptr);
  for (const auto& item : m_items) {
    CmmMQ_GetService()->UnregisterClient(item->GetInstance());
    item->TerminateOnly();
  }
  m_items.clear();  // the libraries go, now that every module has ended
  return 1;
}

// ---- Broadcasts

int CCmmModuleLoader::BroadcastSyncMessageToModules(const char* topic, CmmMQ_Msg* msg) {
  const CCmmPerfTelemetryStacks stacks(kBroadcastSyncName, kBroadcastSource, 0);
  const CCmmPerfTelemetryEventWStack event(BroadcastSyncEvent(), {}, {}, L"");
  if (!msg) return 0;
  for (CCmmDynamicModule* const item : ItemsNow()) {
    if (!item->GetInstance()) continue;
    const CCmmPerfTelemetryLog scope(ShortName(item->GetModuleName()), kBroadcastSource, 0,
                                     "BroadcastSyncMessageToModules");
    item->GetInstance()->OnNotify(topic, nullptr, msg, nullptr);
  }
  return 1;
}

int CCmmModuleLoader::BroadcastMessageToModules(const char* topic, CmmMQ_Msg* msg) {
  if (!msg) return 0;
  for (CCmmDynamicModule* const item : ItemsNow())
    if (item->GetInstance()) item->GetInstance()->OnMessage(topic, nullptr, msg);
  return 1;
}

// Items that leave the list stay as objects, without an instance; so those of a list made before may be
// asked.
std::vector<CCmmDynamicModule*> CCmmModuleLoader::ItemsNow() const {
  std::vector<CCmmDynamicModule*> items;
  for (const auto& item : m_items)
    items.push_back(item.get());
  return items;
}

// ---- At run time

int CCmmModuleLoader::SetModuleInstance(const char* fileName, ICmmMessageQueueClient* instance) {
  const HMODULE library = fileName ? GetModuleHandleA(fileName) : nullptr;
  const auto found = std::find_if(m_items.begin(), m_items.end(),
                                  [&](const auto& item) { return item->IsLibrary(library); });
  if (found != m_items.end()) (*found)->SetInstance(instance);
  return 1;
}

int CCmmModuleLoader::UnloadModuleInstance(ICmmMessageQueueClient* instance) {
  const auto found = std::find_if(m_items.begin(), m_items.end(),
                                  [&](const auto& item) { return item->GetInstance() == instance; });
  if (!instance || found == m_items.end()) return 1;
  CmmMQ_GetService()->UnregisterClient(instance);
  (*found)->UnloadModule(kNoReason);
  Forget(found);
  return 1;
}

int CCmmModuleLoader::LoadModule(const CStringT<wchar_t>& name) {
  if (name.IsEmpty() || (m_directory.IsEmpty() && !FindDirectory())) return 0;
  CStringT<wchar_t> directory;
  _cstring_set(directory, 0, m_directory.c_str(), static_cast<size_t>(-1));
  return LoadModuleFromDir(directory, name);
}

int CCmmModuleLoader::LoadModuleFromDir(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name) {
  if (dir.IsEmpty() || name.IsEmpty()) return 0;
  const CStringT<char> path = PathOf(dir, name);
  return FindPath(path) != m_items.end() || LoadPath(path, "");
}

int CCmmModuleLoader::DynamicLoadModule(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name,
                                        const CStringT<char>& caps) {
  const CCmmPerfTelemetryStacks scope(CStringT<char>("DynamicLoadModule - ") + ToAnsi(name), kLoadSource, 0);
  if (dir.IsEmpty() || name.IsEmpty()) return 0;
  const CStringT<char> path = PathOf(dir, name);
  if (FindPath(path) != m_items.end()) return 1;
  CCmmDynamicModule* const item = LoadPath(path, caps);
  if (!item) return 0;
  AddIdleHandler(*item);
  return 1;
}

CCmmDynamicModule* CCmmModuleLoader::LoadPath(const CStringT<char>& path, const CStringT<char>& caps) {
  auto loaded = std::make_unique<CCmmDynamicModule>();
  if (!loaded->LoadModule(path)) return nullptr;
  CCmmDynamicModule* const item = loaded.get();
  item->SetCapabilities(ParseCapabilities(caps));
  m_items.push_back(std::move(loaded));
  if (item->GetInstance()) CmmMQ_GetService()->RegisterClient(item->GetInstance());
  return item;
}

int CCmmModuleLoader::DynamicUnloadModule(const CStringT<wchar_t>& dir, const CStringT<wchar_t>& name) {
  const auto found = FindPath(PathOf(dir, name));
  if (found == m_items.end()) return 1;
  if (CmmMQ_GetService()->UnregisterClient((*found)->GetInstance()) != CMM_MQ_OK) return 0;
  const int succeeded = (*found)->UnloadModule(kNoReason);
  if (succeeded) Forget(found);
  return succeeded;
}

CCmmModuleLoader::Items::iterator CCmmModuleLoader::FindPath(const CStringT<char>& path) {
  return std::find_if(m_items.begin(), m_items.end(),
                      [&](const auto& item) { return item->GetModuleName() == path; });
}

void CCmmModuleLoader::Forget(Items::iterator item) {
  static_cast<void>(item->release());
  m_items.erase(item);
}

}  // namespace module

ICmmModuleLoader* GetModuleLoader() {
  return module::CCmmModuleLoader::GetProcessLoader();
}

ICmmModuleRegistry* GetModuleRegistry() {
  return module::g_registry;
}

}  // namespace Cmm
