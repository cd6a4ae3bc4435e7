#pragma once

// CStringT: assignment from the other width and from a variant.

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm {

template <typename T>
CStringT<T>& CStringT<T>::Assign(const VARIANT& v, int change) {
  _cstring_assign(*this, v, change);
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::AssignOther(const CStringT<OtherChar>& other) {
  return AssignOther(other.GetCData());
}

template <typename T>
CStringT<T>& CStringT<T>::AssignOther(const std::basic_string<OtherChar>& other) {
  _cstring_set(*this, 0, other.data(), other.size());
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::AssignOther(const OtherChar* s) {
  _cstring_set(*this, 0, s, npos);
  return *this;
}

}  // namespace Cmm
