#include "archive/ArchiveServiceImp.h"

#include <tinyxml2.h>

#include <algorithm>

#include "archive/ArchiveText.h"

namespace Cmm::Archive {
namespace {

using Guard = CAutoLock<CCritical>;

void DestroyAll(std::vector<CCmmArchivePackageTree*>& packages) {
  for (CCmmArchivePackageTree* package : packages)
    delete package;
  packages.clear();
}

// A package of that name with an empty root of the same name.
std::unique_ptr<CCmmArchivePackageTree> NewPackage(const CStringT<wchar_t>& name, const char* rootName) {
  auto package = std::make_unique<CCmmArchivePackageTree>();
  package->SetName(name);
  package->SetVersion(kCodePackageVersion);
  package->GetRoot()->SetName(WideFromUtf8(rootName));
  return package;
}

void SetDefault(CCmmArchiveVarivant& data, CCmmArchiveVarivant::ArchDataType type) {
  switch (type) {
    case CCmmArchiveVarivant::ArchDataType_UInt32:
      return data.SetUInt32(0);
    case CCmmArchiveVarivant::ArchDataType_Int64:
      return data.SetInt64(0);
    case CCmmArchiveVarivant::ArchDataType_UInt64:
      return data.SetUInt64(0);
    case CCmmArchiveVarivant::ArchDataType_String:
      return data.SetString(nullptr);
    default:
      return data.SetInt32(0);
  }
}

void AddItemNode(CCmmArchiveTreeNode& root, const char* field, CCmmArchiveVarivant::ArchDataType type) {
  auto node = std::make_unique<CCmmArchiveTreeNode>();
  node->SetName(WideFromUtf8(field));
  SetDefault(node->GetData(), type);
  root.AppendChild(node.release());
}

}  // namespace

CCmmArchiveServiceImp::CCmmArchiveServiceImp() = default;
CCmmArchiveServiceImp::~CCmmArchiveServiceImp() = default;

// ---- Lookup -------------------------------------------------------------------------------------------

CCmmArchiveServiceImp::Position CCmmArchiveServiceImp::FindPackageDefineWithoutLock(
    const CStringT<wchar_t>& name, int version) const {
  const auto named = m_definitionsByName.find(name);
  if (named == m_definitionsByName.end()) return m_definitions.end();
  for (const size_t index : named->second) {
    const int candidate = m_definitions[index]->GetVersion();
    if (version == kAnyPackageVersion || candidate == kAnyPackageVersion || candidate == version)
      return m_definitions.begin() + static_cast<ptrdiff_t>(index);
  }
  return m_definitions.end();
}

CCmmArchiveServiceImp::Position CCmmArchiveServiceImp::FindPackageDefine(const CStringT<wchar_t>& name,
                                                                         int version, int lock) {
  const Guard guard(lock ? &m_definitionsLock : nullptr);
  return FindPackageDefineWithoutLock(name, version);
}

CCmmArchiveServiceImp::Position CCmmArchiveServiceImp::FindDuplicatedPackageWithoutLock(
    const ICmmArchiveObject* object) const {
  if (!object) return m_duplicated.end();
  // The youngest instance is the likeliest, and a root is in the list only once.
  const auto found =
      std::find_if(m_duplicated.rbegin(), m_duplicated.rend(),
                   [=](CCmmArchivePackageTree* package) { return package->GetRoot() == object; });
  return found == m_duplicated.rend() ? m_duplicated.end() : found.base() - 1;
}

CCmmArchiveServiceImp::Position CCmmArchiveServiceImp::FindDuplicatedPackage(const ICmmArchiveObject* object,
                                                                             int lock) {
  const Guard guard(lock ? &m_duplicatedLock : nullptr);
  return FindDuplicatedPackageWithoutLock(object);
}

// ---- Instances ----------------------------------------------------------------------------------------

std::unique_ptr<CCmmArchivePackageTree> CCmmArchiveServiceImp::DuplicateDefine(const CStringT<wchar_t>& name,
                                                                               int version) {
  const Guard guard(m_definitionsLock);
  const Position definition = FindPackageDefineWithoutLock(name, version);
  if (definition == m_definitions.end()) return nullptr;
  return std::unique_ptr<CCmmArchivePackageTree>((*definition)->DuplicateTree(0));
}

ICmmArchiveObject* CCmmArchiveServiceImp::AddInstance(std::unique_ptr<CCmmArchivePackageTree> package) {
  const Guard guard(m_duplicatedLock);
  m_duplicated.push_back(package.get());
  return package.release()->GetRoot();
}

ICmmArchiveObject* CCmmArchiveServiceImp::MakeObject(const CStringT<wchar_t>& name, int version) {
  std::unique_ptr<CCmmArchivePackageTree> package = DuplicateDefine(name, version);
  return package ? AddInstance(std::move(package)) : nullptr;
}

void CCmmArchiveServiceImp::FreeDuplicatedObj(ICmmArchiveObject* object) {
  std::unique_ptr<CCmmArchivePackageTree> package;  // destroyed when the lock is free again
  const Guard guard(m_duplicatedLock);
  const Position instance = FindDuplicatedPackageWithoutLock(object);
  if (instance == m_duplicated.end()) return;
  package.reset(*instance);
  m_duplicated.erase(instance);
}

ICmmArchiveStream* CCmmArchiveServiceImp::Flattern(ICmmArchiveObject* object,
                                                   ICmmArchiveStream::StreamType type) {
  if (!object) return nullptr;
  const Guard guard(m_duplicatedLock);
  const Position instance = FindDuplicatedPackageWithoutLock(object);
  return instance == m_duplicated.end() ? nullptr : (*instance)->Flattern(type);
}

ICmmArchiveObject* CCmmArchiveServiceImp::ParsePackageFromXmlDoc(tinyxml2::XMLDocument& document) {
  tinyxml2::XMLElement* element = document.FirstChildElement();
  if (!element) return nullptr;
  int version = kAnyPackageVersion;
  element->QueryIntAttribute("version", &version);
  std::unique_ptr<CCmmArchivePackageTree> package = DuplicateDefine(WideFromUtf8(element->Name()), version);
  if (!package || !package->GetRoot()->LoadChildrenFromXml(element)) return nullptr;
  return AddInstance(std::move(package));
}

// ---- Definitions --------------------------------------------------------------------------------------

int CCmmArchiveServiceImp::AddPackageDefine0(const char* name) {
  if (!name) return 0;
  CStringT<wchar_t> wide;
  wide.AssignOther(name);  // by the ANSI code page, where the other definitions go by UTF-8
  auto package = NewPackage(wide, name);
  const Guard guard(m_definitionsLock);
  AppendPackageDefineWithoutLock(std::move(package));
  return 1;
}

int CCmmArchiveServiceImp::AddPackageDefine(const char* name, const FieldDefine* fields, size_t count) {
  if (!name) return 0;
  auto package = NewPackage(WideFromUtf8(name), name);
  for (size_t i = 0; i < count; ++i)
    AddItemNode(*package->GetRoot(), fields[i].name, fields[i].type);
  const Guard guard(m_definitionsLock);
  AppendPackageDefineWithoutLock(std::move(package));
  return 1;
}

void CCmmArchiveServiceImp::AppendPackageDefineWithoutLock(std::unique_ptr<CCmmArchivePackageTree> package) {
  m_definitions.push_back(package.get());
  m_definitionsByName[package.release()->GetName()].push_back(m_definitions.size() - 1);
}

void CCmmArchiveServiceImp::ClearAllDuplicatedPackage() {
  const Guard guard(m_duplicatedLock);
  DestroyAll(m_duplicated);
}

void CCmmArchiveServiceImp::ClearAllPackageDefines() {
  const Guard guard(m_definitionsLock);
  m_definitionsByName.clear();
  DestroyAll(m_definitions);
}

void CCmmArchiveServiceImp::Dump() {
  const Guard guard(m_definitionsLock);
}

}  // namespace Cmm::Archive
