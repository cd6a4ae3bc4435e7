#include "common/client/utility/src/CmmSearchDir.h"

#include "common/client/utility/src/CmmDir.h"

namespace Cmm {

CSearchDir::CSearchDir() = default;
CSearchDir::~CSearchDir() = default;

void CSearchDir::OnSearchItem(const CmmDir*, int, int*) {}

void CSearchDir::Search(const wchar_t* path) {
  cmm_fs_search(path, _Search, this);
}

void CSearchDir::_Search(const CmmDir* item, int depth, int* stop, void* context) {
  static_cast<CSearchDir*>(context)->OnSearchItem(item, depth, stop);
}

}  // namespace Cmm
