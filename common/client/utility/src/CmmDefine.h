#pragma once

// CMM_EXPORT marks what the DLL exports. VELMSDK_BUILD is defined while the library's own sources are
// compiled, VELMSDK_STATIC where its objects are linked straight into a program (the unit tests).
#if !defined(_WIN32) || defined(VELMSDK_STATIC)
#define CMM_EXPORT
#elif defined(VELMSDK_BUILD)
#define CMM_EXPORT __declspec(dllexport)
#else
#define CMM_EXPORT __declspec(dllimport)
#endif

// Marks members of an exported class template that have their body in the class: the compiler leaves inline
// members out of an exported instantiation, although a caller that does not inline them looks for them in
// the DLL.
#if defined(VELMSDK_BUILD)
#define CMM_EXPORT_INLINE CMM_EXPORT
#else
#define CMM_EXPORT_INLINE
#endif
