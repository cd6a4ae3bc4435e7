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
