#include "common/client/utility/src/CmmAtomic.h"

namespace Cmm {

CAtomicInt::operator long() const {
  return Get();
}

long CAtomicInt::Get() const {
  return m_value.load(std::memory_order_acquire);  // on this processor a plain load
}

long CAtomicInt::operator=(long value) {
  m_value.store(value);
  return value;
}

long CAtomicInt::operator++() {
  return m_value.fetch_add(1) + 1;
}

long CAtomicInt::Inc() {
  return ++*this;
}

long CAtomicInt::operator--() {
  return m_value.fetch_sub(1) - 1;
}

long CAtomicInt::Dec() {
  return --*this;
}

long CAtomicInt::Set(long value) {
  return m_value.exchange(value);
}

// The compound assignments keep answering the value before, unlike those of the language.
long CAtomicInt::operator+=(long n) {
  return m_value.fetch_add(n);
}

long CAtomicInt::Add(long n) {
  return *this += n;
}

long CAtomicInt::operator-=(long n) {
  return m_value.fetch_sub(n);
}

}  // namespace Cmm
