#include "common/client/utility/src/CmmObject.h"

#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include "common/client/utility/src/CmmMemory.h"
#include "gmock/gmock.h"

namespace {

struct Heir : Cmm::CObject {
  int value = 7;
};

TEST(CObject, AddsNoVirtualOperationAndNoData) {
  EXPECT_FALSE(std::is_polymorphic_v<Heir>);
  EXPECT_EQ(sizeof(Heir), sizeof(int));
}

TEST(CObject, HeirsLiveOnThePlainHeap) {
  Heir* heir = new Heir;
  EXPECT_EQ(heir->value, 7);
  heir->~Heir();
  Cmm::cmm_mem_free(heir);  // what the class allocated, the plain heap takes back

  void* block = Cmm::cmm_mem_alloc(sizeof(Heir));
  delete ::new (block) Heir;  // and the other way round
}

TEST(CObject, ArraysAndPlacedObjectsWorkToo) {
  const std::unique_ptr<Heir[]> heirs(new Heir[3]);
  EXPECT_EQ(heirs[2].value, 7);
  alignas(Heir) unsigned char room[sizeof(Heir)];
  EXPECT_EQ(static_cast<void*>(new (room) Heir), static_cast<void*>(room));
}

TEST(CObject, AnExhaustedHeapRaises) {
  const size_t tooMuch = std::numeric_limits<size_t>::max() / 2;
  EXPECT_THROW(Cmm::CObject::operator new(tooMuch), std::bad_alloc);
  EXPECT_THROW(Cmm::CObject::operator new[](tooMuch), std::bad_alloc);
  EXPECT_EQ(Cmm::cmm_mem_alloc(tooMuch), nullptr);
}

}  // namespace
