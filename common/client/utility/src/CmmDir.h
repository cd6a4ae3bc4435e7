#pragma once

// Walking directories: one level by cmm_fs_find_first, a whole tree by cmm_fs_search. CSearchDir is the same
// walk as a class.

#include <windows.h>

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// A running search and the item that it stands at.
struct CmmDir {
  void* handle;           // of FindFirstFileW; the owner of the record closes it with FindClose
  WIN32_FIND_DATAW item;  // its name is empty when there is no item, or none is left
};
static_assert(offsetof(CmmDir, item) == 8 && sizeof(CmmDir) == 600);

// Sees one item of a walk. `depth` is 0 in the directory that the walk began with; what is written to
// `*stop` other than 0 ends the walk. The current directory is the one that holds the item.
using FsSearchCallback = void (*)(const CmmDir* item, int depth, int* stop, void* context);

}  // namespace Cmm

extern "C" {

// Begins a search of everything in the directory `path`, "." and ".." among it, and fills `*dir` with the
// first item. Non-zero when there is one. On failure the item's name is empty and the handle is
// INVALID_HANDLE_VALUE; with a null argument or an empty path `*dir` stays as it was.
CMM_EXPORT int cmm_fs_find_first(Cmm::CmmDir* dir, const wchar_t* path);

// Calls `callback`, with `context` as it stands, for every item of the directory `path` and of the
// directories below it, "." and ".." of each among them; a directory comes before what it holds. Links to
// directories are entered. A directory that cannot be entered is passed over.
// The walk changes the current directory of the process and puts it back level by level: nothing else in the
// process may depend on it meanwhile. A directory whose path has more than 259 units cannot be put back.
CMM_EXPORT void cmm_fs_search(const wchar_t* path, Cmm::FsSearchCallback callback, void* context);

}  // extern "C"
