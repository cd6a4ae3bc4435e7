#pragma once

// The instantiations of the message templates in use. The library holds them all: including code does not
// instantiate them again.

#include <cstdint>

#include "archive/MessageTemplate.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm::Archive {

extern template class CMM_EXPORT CmmMessageTemplate_1<int>;
extern template class CMM_EXPORT CmmMessageTemplate_1<unsigned>;
extern template class CMM_EXPORT CmmMessageTemplate_1<int64_t>;
extern template class CMM_EXPORT CmmMessageTemplate_1<CStringA>;
extern template class CMM_EXPORT CmmMessageTemplate_1<CStringW>;
extern template class CMM_EXPORT CmmMessageTemplate_2<int, unsigned>;
extern template class CMM_EXPORT CmmMessageTemplate_2<unsigned, CStringW>;
extern template class CMM_EXPORT CmmMessageTemplate_3<int, unsigned, int64_t>;
extern template class CMM_EXPORT CmmMessageTemplate_4<int, unsigned, int64_t, uint64_t>;
extern template class CMM_EXPORT CmmMessageTemplate_5<int, unsigned, int64_t, uint64_t, CStringA>;
extern template class CMM_EXPORT CmmMessageTemplate_6<int, unsigned, int64_t, uint64_t, CStringA, CStringW>;
extern template class CMM_EXPORT CmmMessageTemplate_7<int, unsigned, int64_t, uint64_t, CStringA, CStringW,
                                                      CStringA>;

}  // namespace Cmm::Archive
