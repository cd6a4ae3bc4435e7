#include "archive/catalogue/TemplateInstances.h"

namespace Cmm::Archive {

template class CmmMessageTemplate_1<int>;
template class CmmMessageTemplate_1<unsigned>;
template class CmmMessageTemplate_1<int64_t>;
template class CmmMessageTemplate_1<CStringA>;
template class CmmMessageTemplate_1<CStringW>;
template class CmmMessageTemplate_2<int, unsigned>;
template class CmmMessageTemplate_2<unsigned, CStringW>;
template class CmmMessageTemplate_3<int, unsigned, int64_t>;
template class CmmMessageTemplate_4<int, unsigned, int64_t, uint64_t>;
template class CmmMessageTemplate_5<int, unsigned, int64_t, uint64_t, CStringA>;
template class CmmMessageTemplate_6<int, unsigned, int64_t, uint64_t, CStringA, CStringW>;
template class CmmMessageTemplate_7<int, unsigned, int64_t, uint64_t, CStringA, CStringW, CStringA>;

}  // namespace Cmm::Archive
