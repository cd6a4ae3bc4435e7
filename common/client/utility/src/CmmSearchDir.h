#pragma once

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

struct CmmDir;  // CmmDir.h

// The walk of cmm_fs_search as a class: an heir sees the items. It holds no data, and is not deleted through
// this class.
class CMM_EXPORT CSearchDir {
 public:
  // One item, as the callback of cmm_fs_search sees it. Does nothing here.
  virtual void OnSearchItem(const CmmDir* item, int depth, int* stop);

  // Walks the directory `path`; returns when the walk has ended. See cmm_fs_search for what it does to the
  // current directory.
  void Search(const wchar_t* path);

  // The callback of the walk: forwards to the object `context`.
  static void _Search(const CmmDir* item, int depth, int* stop, void* context);

 protected:
  CSearchDir();
  ~CSearchDir();
};

}  // namespace Cmm
