#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "archive/ArchiveObject.h"
#include "archive/ArchivePackageTree.h"
#include "archive/ArchiveStream.h"
#include "archive/ArchiveValue.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmLock.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm::Archive {

// The tag of the leaf that a field of type T is declared as. Both strings are text in UTF-8 on the wire.
template <typename T>
struct FieldType;
template <>
struct FieldType<int> {
  static constexpr auto value = CCmmArchiveVarivant::ArchDataType_Int32;
};
template <>
struct FieldType<unsigned> {
  static constexpr auto value = CCmmArchiveVarivant::ArchDataType_UInt32;
};
template <>
struct FieldType<int64_t> {
  static constexpr auto value = CCmmArchiveVarivant::ArchDataType_Int64;
};
template <>
struct FieldType<uint64_t> {
  static constexpr auto value = CCmmArchiveVarivant::ArchDataType_UInt64;
};
template <>
struct FieldType<CStringT<char>> {
  static constexpr auto value = CCmmArchiveVarivant::ArchDataType_String;
};
template <>
struct FieldType<CStringT<wchar_t>> {
  static constexpr auto value = CCmmArchiveVarivant::ArchDataType_String;
};

// The registry of definitions and the list of live instances. An instance is known to callers by its root.
// Any thread may call it, but for what says "without lock". The two locks are never held together.
class CMM_EXPORT CCmmArchiveServiceImp {
  template <typename>
  using NameOf = const char*;  // one parameter for each field

  struct FieldDefine {
    const char* name;
    CCmmArchiveVarivant::ArchDataType type;
  };

 public:
  using PackageList = std::vector<CCmmArchivePackageTree*>;
  using Position = PackageList::const_iterator;

  // The process's one service. It exists from load to unload of the library.
  static CCmmArchiveServiceImp* GetImp();

  CCmmArchiveServiceImp();
  CCmmArchiveServiceImp(const CCmmArchiveServiceImp&) = delete;
  CCmmArchiveServiceImp& operator=(const CCmmArchiveServiceImp&) = delete;
  ~CCmmArchiveServiceImp();  // leaves definitions and instances undestroyed: the process ends

  // Both lists, oldest first. Reading them needs that no other thread changes them.
  const PackageList& GetPackageDefines() const { return m_definitions; }
  const PackageList& GetDuplicatedPackages() const { return m_duplicated; }

  // The oldest definition of exactly that name whose version is equal, or where either version is
  // kAnyPackageVersion. The end of the list when there is none.
  Position FindPackageDefineWithoutLock(const CStringT<wchar_t>& name, int version) const;
  Position FindPackageDefine(const CStringT<wchar_t>& name, int version, int lock);
  // The instance whose root is `object`. The end of the list for any other pointer, null among them.
  Position FindDuplicatedPackageWithoutLock(const ICmmArchiveObject* object) const;
  Position FindDuplicatedPackage(const ICmmArchiveObject* object, int lock);

  // A new instance of a definition; null when there is none. It lives until FreeDuplicatedObj.
  ICmmArchiveObject* MakeObject(const CStringT<wchar_t>& name, int version);
  void FreeDuplicatedObj(ICmmArchiveObject* object);  // ignores what is no live instance

  // The stream of an instance, the caller's. Null when `object` is none, and for any type but XML.
  ICmmArchiveStream* Flattern(ICmmArchiveObject* object, ICmmArchiveStream::StreamType type);

  // A new instance filled from the first element of `document`, which names the definition. Null when there
  // is no such definition or the element does not match it; then no instance is left.
  ICmmArchiveObject* ParsePackageFromXmlDoc(tinyxml2::XMLDocument& document);

  // Registers a definition of kCodePackageVersion, with fields that are all essential. A second one of the
  // same name is kept and never found. 1, or 0 for a null name.
  int AddPackageDefine0(const char* name);

  // AddPackageDefineN<T1, ..., TN>(name, field1, ..., fieldN): the same with N fields, in the order of the
  // wire. T is one of the types that FieldType knows.
#define CMM_ADD_PACKAGE_DEFINE(N)                                                                        \
  template <typename... Fields>                                                                          \
  requires(sizeof...(Fields) == N) int AddPackageDefine##N(const char* name, NameOf<Fields>... fields) { \
    const FieldDefine defines[] = {{fields, FieldType<Fields>::value}...};                               \
    return AddPackageDefine(name, defines, N);                                                           \
  }
  CMM_ADD_PACKAGE_DEFINE(1)
  CMM_ADD_PACKAGE_DEFINE(2)
  CMM_ADD_PACKAGE_DEFINE(3)
  CMM_ADD_PACKAGE_DEFINE(4)
  CMM_ADD_PACKAGE_DEFINE(5)
  CMM_ADD_PACKAGE_DEFINE(6)
  CMM_ADD_PACKAGE_DEFINE(7)
  CMM_ADD_PACKAGE_DEFINE(8)
  CMM_ADD_PACKAGE_DEFINE(9)
  CMM_ADD_PACKAGE_DEFINE(10)
  CMM_ADD_PACKAGE_DEFINE(11)
  CMM_ADD_PACKAGE_DEFINE(12)
  CMM_ADD_PACKAGE_DEFINE(13)
  CMM_ADD_PACKAGE_DEFINE(14)
  CMM_ADD_PACKAGE_DEFINE(15)
#undef CMM_ADD_PACKAGE_DEFINE

  // Appends a definition without lock: for start-up, when nothing else uses the service.
  void AppendPackageDefineWithoutLock(std::unique_ptr<CCmmArchivePackageTree> package);

  // Destroy all of one list. A message class registers its definition once in the life of the process, so
  // after the definitions are gone its messages can neither be built nor parsed.
  void ClearAllDuplicatedPackage();
  void ClearAllPackageDefines();

  void Dump();  // reserved: takes and releases the definitions lock

 private:
  int AddPackageDefine(const char* name, const FieldDefine* fields, size_t count);
  std::unique_ptr<CCmmArchivePackageTree> DuplicateDefine(const CStringT<wchar_t>& name, int version);
  ICmmArchiveObject* AddInstance(std::unique_ptr<CCmmArchivePackageTree> package);

  PackageList m_definitions;  // owned; guarded by m_definitionsLock
  PackageList m_duplicated;   // owned; guarded by m_duplicatedLock
  CCritical m_definitionsLock;
  CCritical m_duplicatedLock;
  // Where the definitions of a name stand, oldest first; guarded by m_definitionsLock.
  std::unordered_map<std::wstring, std::vector<size_t>> m_definitionsByName;
};

}  // namespace Cmm::Archive
