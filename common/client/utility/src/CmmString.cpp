#include "common/client/utility/src/CmmString.h"

#include "common/client/utility/src/CmmStringCompare.inl"
#include "common/client/utility/src/CmmStringConvert.inl"
#include "common/client/utility/src/CmmStringCore.inl"
#include "common/client/utility/src/CmmStringEdit.inl"
#include "common/client/utility/src/CmmStringFormat.inl"
#include "common/client/utility/src/CmmStringSearch.inl"
#include "common/client/utility/src/CmmStringStd.inl"

namespace Cmm {

// Covers every member whose body is visible here, so each theme's bodies must be included above.
template class CStringT<char>;
template class CStringT<wchar_t>;

}  // namespace Cmm
