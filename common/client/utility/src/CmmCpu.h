#pragma once

#include <cstdint>
#include <string>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// The identity of the processor, as it tells it itself; read on construction. The fields are those of its
// signature, each for itself: a family of 15 is the plain field, to which nothing extended is added.
class CMM_EXPORT CPU {
 public:
  CPU();

  int type() const;
  int family() const;
  int model() const;
  int stepping() const;
  int extended_model() const;
  int extended_family() const;
  const std::string& vendor_name() const;  // 12 characters, as in "GenuineIntel"

 private:
  uint32_t m_signature;
  std::string m_vendorName;
};

}  // namespace Cmm
