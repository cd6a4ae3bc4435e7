#include "common/client/utility/src/CmmTimeValue.h"

#include "common/client/utility/src/CmmTimestamp.h"
#include "common/client/utility/src/CmmWrappingMath.h"

namespace Cmm {

using internal::WrappingAdd;
using internal::WrappingDivide;
using internal::WrappingMultiply;
using internal::WrappingSubtract;

// ---- TimeDelta ---------------------------------------------------------------------------------------

TimeDelta TimeDelta::FromDays(int64_t days) {
  return TimeDelta(WrappingMultiply(days, Time::kMicrosecondsPerDay));
}

TimeDelta TimeDelta::FromHours(int64_t hours) {
  return TimeDelta(WrappingMultiply(hours, Time::kMicrosecondsPerHour));
}

TimeDelta TimeDelta::FromMinutes(int64_t minutes) {
  return TimeDelta(WrappingMultiply(minutes, Time::kMicrosecondsPerMinute));
}

TimeDelta TimeDelta::FromSeconds(int64_t seconds) {
  return TimeDelta(WrappingMultiply(seconds, Time::kMicrosecondsPerSecond));
}

TimeDelta TimeDelta::FromMilliseconds(int64_t ms) {
  return TimeDelta(WrappingMultiply(ms, Time::kMicrosecondsPerMillisecond));
}

TimeDelta TimeDelta::FromMicroseconds(int64_t us) {
  return TimeDelta(us);
}

int64_t TimeDelta::ToInternalValue() const {
  return m_us;
}

int TimeDelta::InDays() const {
  return static_cast<int>(m_us / Time::kMicrosecondsPerDay);
}

int TimeDelta::InHours() const {
  return static_cast<int>(m_us / Time::kMicrosecondsPerHour);
}

int TimeDelta::InMinutes() const {
  return static_cast<int>(m_us / Time::kMicrosecondsPerMinute);
}

double TimeDelta::InSecondsF() const {
  return static_cast<double>(m_us) / static_cast<double>(Time::kMicrosecondsPerSecond);
}

int64_t TimeDelta::InSeconds() const {
  return m_us / Time::kMicrosecondsPerSecond;
}

double TimeDelta::InMillisecondsF() const {
  return static_cast<double>(m_us) / static_cast<double>(Time::kMicrosecondsPerMillisecond);
}

int64_t TimeDelta::InMilliseconds() const {
  return m_us / Time::kMicrosecondsPerMillisecond;
}

int64_t TimeDelta::InMillisecondsRoundedUp() const {
  return WrappingAdd(m_us, Time::kMicrosecondsPerMillisecond - 1) / Time::kMicrosecondsPerMillisecond;
}

int64_t TimeDelta::InMicroseconds() const {
  return m_us;
}

TimeDelta TimeDelta::operator+(TimeDelta other) const {
  return TimeDelta(WrappingAdd(m_us, other.m_us));
}

TimeDelta TimeDelta::operator-(TimeDelta other) const {
  return TimeDelta(WrappingSubtract(m_us, other.m_us));
}

TimeDelta TimeDelta::operator-() const {
  return TimeDelta(WrappingSubtract(0, m_us));
}

TimeDelta& TimeDelta::operator+=(TimeDelta other) {
  return *this = *this + other;
}

TimeDelta& TimeDelta::operator-=(TimeDelta other) {
  return *this = *this - other;
}

TimeDelta TimeDelta::operator*(int64_t factor) const {
  return TimeDelta(WrappingMultiply(m_us, factor));
}

TimeDelta TimeDelta::operator/(int64_t divisor) const {
  return TimeDelta(WrappingDivide(m_us, divisor));
}

TimeDelta& TimeDelta::operator*=(int64_t factor) {
  return *this = *this * factor;
}

TimeDelta& TimeDelta::operator/=(int64_t divisor) {
  return *this = *this / divisor;
}

int64_t TimeDelta::operator/(TimeDelta divisor) const {
  return WrappingDivide(m_us, divisor.m_us);
}

Time TimeDelta::operator+(Time moment) const {
  return moment + *this;
}

TimeTicks TimeDelta::operator+(TimeTicks moment) const {
  return moment + *this;
}

bool TimeDelta::operator==(TimeDelta other) const {
  return m_us == other.m_us;
}

bool TimeDelta::operator!=(TimeDelta other) const {
  return m_us != other.m_us;
}

bool TimeDelta::operator<(TimeDelta other) const {
  return m_us < other.m_us;
}

bool TimeDelta::operator<=(TimeDelta other) const {
  return m_us <= other.m_us;
}

bool TimeDelta::operator>(TimeDelta other) const {
  return m_us > other.m_us;
}

bool TimeDelta::operator>=(TimeDelta other) const {
  return m_us >= other.m_us;
}

// ---- Time --------------------------------------------------------------------------------------------

const int64_t Time::kMillisecondsPerSecond;
const int64_t Time::kMicrosecondsPerMillisecond;
const int64_t Time::kMicrosecondsPerSecond;
const int64_t Time::kMicrosecondsPerMinute;
const int64_t Time::kMicrosecondsPerHour;
const int64_t Time::kMicrosecondsPerDay;
const int64_t Time::kMicrosecondsPerWeek;
const int64_t Time::kNanosecondsPerMicrosecond;
const int64_t Time::kNanosecondsPerSecond;
const int32_t Time::kMinLowResolutionThresholdMs;

Time Time::FromInternalValue(int64_t us) {
  return Time(us);
}

int64_t Time::ToInternalValue() const {
  return m_us;
}

bool Time::is_null() const {
  return m_us == 0;
}

Time Time::FromTimeT(int64_t seconds) {
  if (seconds == 0) return Time();
  return UnixEpoch() + TimeDelta::FromSeconds(seconds);
}

int64_t Time::ToTimeT() const {
  return is_null() ? 0 : (*this - UnixEpoch()).InSeconds();
}

Time Time::FromTimeTInMS(int64_t ms) {
  if (ms == 0) return Time();
  return UnixEpoch() + TimeDelta::FromMilliseconds(ms);
}

int64_t Time::ToTimeTInMS() const {
  return is_null() ? 0 : (*this - UnixEpoch()).InMilliseconds();
}

Time Time::FromDoubleT(double seconds) {
  if (seconds == 0.0) return Time();
  const double us = seconds * static_cast<double>(kMicrosecondsPerSecond);
  return Time(internal::TruncateToInt64(us + static_cast<double>(kTimeTToMicrosecondsOffset)));
}

double Time::ToDoubleT() const {
  return is_null() ? 0.0 : (*this - UnixEpoch()).InSecondsF();
}

Time Time::UnixEpoch() {
  return Time(kTimeTToMicrosecondsOffset);
}

Time Time::FromStringT(const CStringT<wchar_t>& text) {
  if (text.GetLength() < internal::kTimestampLength) return Time();
  const CStringT<char> narrow = CStringT<char>().AssignOther(text);
  return FromTimeT(internal::ParseTimestamp(narrow.c_str()));
}

bool Time::FromString(const wchar_t*, Time*) {
  return true;
}

TimeDelta Time::operator-(Time other) const {
  return TimeDelta::FromMicroseconds(WrappingSubtract(m_us, other.m_us));
}

Time Time::operator+(TimeDelta delta) const {
  return Time(WrappingAdd(m_us, delta.ToInternalValue()));
}

Time Time::operator-(TimeDelta delta) const {
  return Time(WrappingSubtract(m_us, delta.ToInternalValue()));
}

Time& Time::operator+=(TimeDelta delta) {
  return *this = *this + delta;
}

Time& Time::operator-=(TimeDelta delta) {
  return *this = *this - delta;
}

bool Time::operator==(Time other) const {
  return m_us == other.m_us;
}

bool Time::operator!=(Time other) const {
  return m_us != other.m_us;
}

bool Time::operator<(Time other) const {
  return m_us < other.m_us;
}

bool Time::operator<=(Time other) const {
  return m_us <= other.m_us;
}

bool Time::operator>(Time other) const {
  return m_us > other.m_us;
}

bool Time::operator>=(Time other) const {
  return m_us >= other.m_us;
}

// ---- TimeTicks ---------------------------------------------------------------------------------------

int64_t TimeTicks::ToInternalValue() const {
  return m_us;
}

bool TimeTicks::is_null() const {
  return m_us == 0;
}

TimeDelta TimeTicks::operator-(TimeTicks other) const {
  return TimeDelta::FromMicroseconds(WrappingSubtract(m_us, other.m_us));
}

TimeTicks TimeTicks::operator+(TimeDelta delta) const {
  return TimeTicks(WrappingAdd(m_us, delta.ToInternalValue()));
}

TimeTicks TimeTicks::operator-(TimeDelta delta) const {
  return TimeTicks(WrappingSubtract(m_us, delta.ToInternalValue()));
}

TimeTicks& TimeTicks::operator+=(TimeDelta delta) {
  return *this = *this + delta;
}

TimeTicks& TimeTicks::operator-=(TimeDelta delta) {
  return *this = *this - delta;
}

bool TimeTicks::operator==(TimeTicks other) const {
  return m_us == other.m_us;
}

bool TimeTicks::operator!=(TimeTicks other) const {
  return m_us != other.m_us;
}

bool TimeTicks::operator<(TimeTicks other) const {
  return m_us < other.m_us;
}

bool TimeTicks::operator<=(TimeTicks other) const {
  return m_us <= other.m_us;
}

bool TimeTicks::operator>(TimeTicks other) const {
  return m_us > other.m_us;
}

bool TimeTicks::operator>=(TimeTicks other) const {
  return m_us >= other.m_us;
}

}  // namespace Cmm
