#include "common/client/utility/src/CmmCpu.h"

#include <cpuid.h>

#include <array>
#include <cstring>

namespace Cmm {

namespace {

// The registers a leaf answers with; zeros where the processor does not know the leaf.
struct CpuidAnswer {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
};

CpuidAnswer Ask(unsigned leaf) {
  CpuidAnswer answer;
  __get_cpuid(leaf, &answer.eax, &answer.ebx, &answer.ecx, &answer.edx);
  return answer;
}

std::string AskVendorName() {
  const CpuidAnswer answer = Ask(0);
  const std::array<unsigned, 3> letters = {answer.ebx, answer.edx, answer.ecx};  // in this order
  std::string name(sizeof letters, '\0');
  std::memcpy(name.data(), letters.data(), sizeof letters);
  return name;
}

}  // namespace

CPU::CPU() : m_signature(Ask(1).eax), m_vendorName(AskVendorName()) {}

int CPU::stepping() const {
  return m_signature & 0xF;
}

int CPU::model() const {
  return (m_signature >> 4) & 0xF;
}

int CPU::family() const {
  return (m_signature >> 8) & 0xF;
}

int CPU::type() const {
  return (m_signature >> 12) & 0x3;
}

int CPU::extended_model() const {
  return (m_signature >> 16) & 0xF;
}

int CPU::extended_family() const {
  return (m_signature >> 20) & 0xFF;
}

const std::string& CPU::vendor_name() const {
  return m_vendorName;
}

}  // namespace Cmm
