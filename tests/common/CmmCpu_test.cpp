#include "common/client/utility/src/CmmCpu.h"

#include <cpuid.h>

#include "gtest/gtest.h"

namespace Cmm {
namespace {

TEST(Cpu, TellsTheVendorInTwelveCharacters) {
  const CPU cpu;
  unsigned eax, ebx, ecx, edx;
  ASSERT_TRUE(__get_cpuid(0, &eax, &ebx, &ecx, &edx));
  std::string expected;
  for (unsigned letters : {ebx, edx, ecx})
    for (int shift = 0; shift < 32; shift += 8)
      expected += static_cast<char>(letters >> shift);
  EXPECT_EQ(cpu.vendor_name(), expected);
}

TEST(Cpu, ItsFieldsMakeUpTheProcessorsSignature) {
  const CPU cpu;
  unsigned eax, ebx, ecx, edx;
  ASSERT_TRUE(__get_cpuid(1, &eax, &ebx, &ecx, &edx));
  const unsigned signature =
      static_cast<unsigned>(cpu.stepping() | cpu.model() << 4 | cpu.family() << 8 | cpu.type() << 12 |
                            cpu.extended_model() << 16 | cpu.extended_family() << 20);
  EXPECT_EQ(signature, eax & 0x0FFF3FFF);
}

TEST(Cpu, EachFieldHasItsOwnWidth) {
  const CPU cpu;
  EXPECT_LT(cpu.stepping(), 16);
  EXPECT_LT(cpu.model(), 16);
  EXPECT_LT(cpu.family(), 16);  // nothing extended is added
  EXPECT_LT(cpu.type(), 4);
  EXPECT_LT(cpu.extended_model(), 16);
  EXPECT_LT(cpu.extended_family(), 256);
}

}  // namespace
}  // namespace Cmm
