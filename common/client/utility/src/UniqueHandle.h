#pragma once

// Owners of system resources. Each alias at the end names what it holds; its destructor, reset() and
// move assignment release the resource and leave the thread's last error as it was.

#include <windows.h>

#include <utility>

namespace Cmm {

// Traits: `Type`, `Empty()` (the value that stands for "nothing held") and `Release(Type)`.
template <typename Traits>
class UniqueResource {
 public:
  using Type = typename Traits::Type;

  UniqueResource() = default;
  explicit UniqueResource(Type value) : m_value(value) {}
  UniqueResource(UniqueResource&& other) noexcept : m_value(other.release()) {}
  UniqueResource& operator=(UniqueResource&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  ~UniqueResource() { reset(); }

  Type get() const { return m_value; }
  explicit operator bool() const { return m_value != Traits::Empty(); }
  bool operator==(Type value) const { return m_value == value; }
  [[nodiscard]] Type release() { return std::exchange(m_value, Traits::Empty()); }

  void reset(Type value = Traits::Empty()) {
    Type old = std::exchange(m_value, value);
    if (old == Traits::Empty()) return;
    const DWORD lastError = GetLastError();
    Traits::Release(old);
    SetLastError(lastError);
  }

  // For calls that return a resource through a pointer: releases what is held first.
  Type* put() {
    reset();
    return &m_value;
  }

 private:
  Type m_value = Traits::Empty();
};

struct KernelHandleTraits {
  using Type = HANDLE;
  static Type Empty() { return nullptr; }
  static void Release(Type value) { CloseHandle(value); }
};

struct FileHandleTraits {
  using Type = HANDLE;
  static Type Empty() { return INVALID_HANDLE_VALUE; }
  static void Release(Type value) { CloseHandle(value); }
};

struct FindHandleTraits {
  using Type = HANDLE;
  static Type Empty() { return INVALID_HANDLE_VALUE; }
  static void Release(Type value) { FindClose(value); }
};

struct ModuleTraits {
  using Type = HMODULE;
  static Type Empty() { return nullptr; }
  static void Release(Type value) { FreeLibrary(value); }
};

struct RegistryKeyTraits {
  using Type = HKEY;
  static Type Empty() { return nullptr; }
  static void Release(Type value) { RegCloseKey(value); }
};

struct LocalMemoryTraits {
  using Type = void*;
  static Type Empty() { return nullptr; }
  static void Release(Type value) { LocalFree(value); }
};

struct GlobalMemoryTraits {
  using Type = void*;
  static Type Empty() { return nullptr; }
  static void Release(Type value) { GlobalFree(value); }
};

struct ProcessHeapTraits {
  using Type = void*;
  static Type Empty() { return nullptr; }
  static void Release(Type value) { HeapFree(GetProcessHeap(), 0, value); }
};

using UniqueHandle = UniqueResource<KernelHandleTraits>;  // events, threads, tokens, mappings: null is empty
using UniqueFileHandle =
    UniqueResource<FileHandleTraits>;  // CreateFile and kin: INVALID_HANDLE_VALUE is empty
using UniqueFindHandle = UniqueResource<FindHandleTraits>;  // FindFirstFile: INVALID_HANDLE_VALUE is empty
using UniqueModule = UniqueResource<ModuleTraits>;
using UniqueRegistryKey = UniqueResource<RegistryKeyTraits>;
using UniqueLocalMemory = UniqueResource<LocalMemoryTraits>;
using UniqueGlobalMemory = UniqueResource<GlobalMemoryTraits>;
using UniqueHeapBlock = UniqueResource<ProcessHeapTraits>;

}  // namespace Cmm
