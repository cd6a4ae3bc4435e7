#include "common/client/utility/src/CmmNumber.h"

#include <limits>

namespace {

// Reads units one by one and never beyond the end of the range: past it, every unit is NUL.
template <typename T>
class Cursor {
 public:
  Cursor(const T* begin, const T* end) : m_position(begin), m_end(end) {}

  T Peek(size_t ahead = 0) const { return Holds(ahead) ? m_position[ahead] : T(); }
  void Step(size_t units = 1) { m_position += units; }
  T* Position() const { return const_cast<T*>(m_position); }

  void SkipWhitespace() {
    while (Peek() == '\t' || Peek() == '\n' || Peek() == '\r' || Peek() == ' ')
      Step();
  }

  // Takes one sign, if there is one, and answers whether it was a minus.
  bool TakeMinus() {
    const bool minus = Peek() == '-';
    if (minus || Peek() == '+') Step();
    return minus;
  }

 private:
  bool Holds(size_t ahead) const {
    return m_end == nullptr || (m_position < m_end && ahead < static_cast<size_t>(m_end - m_position));
  }

  const T* m_position;
  const T* m_end;
};

constexpr int kNoDigit = 36;

template <typename T>
int DigitValue(T unit) {
  if (unit >= '0' && unit <= '9') return unit - '0';
  if (unit >= 'A' && unit <= 'Z') return unit - 'A' + 10;
  if (unit >= 'a' && unit <= 'z') return unit - 'a' + 10;
  return kNoDigit;
}

template <typename T>
bool AtHexPrefix(const Cursor<T>& cursor) {
  return cursor.Peek() == '0' && (cursor.Peek(1) == 'x' || cursor.Peek(1) == 'X');
}

template <typename T>
T* ParseLong(const T* s, const T* end, long& out, int base) {
  T* const nothingParsed = const_cast<T*>(s);
  if (s == nullptr || base == 1 || base > 36) return nothingParsed;

  Cursor<T> cursor(s, end);
  cursor.SkipWhitespace();
  const bool minus = cursor.TakeMinus();

  if (base == 0) base = cursor.Peek() != '0' ? 10 : AtHexPrefix(cursor) ? 16 : 8;
  // In every base, base 10 and base 36 included: callers rely on it.
  if (AtHexPrefix(cursor)) cursor.Step(2);

  const T* const firstDigit = cursor.Position();
  uint32_t value = 0;
  for (int digit; (digit = DigitValue(cursor.Peek())) < base; cursor.Step()) {
    value = value * static_cast<uint32_t>(base) + static_cast<uint32_t>(digit);
  }
  if (cursor.Position() == firstDigit) return nothingParsed;

  out = static_cast<int32_t>(minus ? 0 - value : value);
  return cursor.Position();
}

constexpr int64_t kMinExponent = -1021;
constexpr int64_t kMaxExponent = 1024;

// Far outside the range above whatever the number of digits behind the point adds to it.
constexpr int64_t kSaturatedExponent = 1'000'000'000'000'000'000;

// Reads decimal digits; answers their value, saturated.
template <typename T>
int64_t TakeExponent(Cursor<T>& cursor) {
  const bool minus = cursor.TakeMinus();
  int64_t exponent = 0;
  for (int digit; (digit = DigitValue(cursor.Peek())) < 10; cursor.Step()) {
    exponent = exponent < kSaturatedExponent / 10 ? exponent * 10 + digit : kSaturatedExponent;
  }
  return minus ? -exponent : exponent;
}

double ScaleByPowerOfTen(double value, int64_t exponent) {
  double power = 10.0;
  for (int64_t bits = exponent < 0 ? -exponent : exponent; bits != 0; bits >>= 1) {
    if (bits & 1) value = exponent < 0 ? value / power : value * power;
    power *= power;
  }
  return value;
}

template <typename T>
T* ParseDouble(const T* s, const T* end, double& out) {
  if (s == nullptr) return nullptr;

  Cursor<T> cursor(s, end);
  cursor.SkipWhitespace();
  const bool minus = cursor.TakeMinus();

  double mantissa = 0.0;
  int64_t exponent = 0;
  bool hasDigit = false;
  for (bool hasPoint = false;; cursor.Step()) {
    const int digit = DigitValue(cursor.Peek());
    if (digit < 10) {
      mantissa = mantissa * 10.0 + digit;
      exponent -= hasPoint;
      hasDigit = true;
    } else if (cursor.Peek() == '.' && !hasPoint) {
      hasPoint = true;
    } else {
      break;
    }
  }
  if (!hasDigit) return cursor.Position();

  if (cursor.Peek() == 'e' || cursor.Peek() == 'E') {
    cursor.Step();
    exponent += TakeExponent(cursor);
  }

  if (exponent < kMinExponent || exponent > kMaxExponent) {
    // Positive infinity for a negative and for a tiny number as well: part of the interface.
    out = std::numeric_limits<double>::infinity();
  } else {
    out = ScaleByPowerOfTen(minus ? -mantissa : mantissa, exponent);
  }
  return cursor.Position();
}

}  // namespace

char* cmm_str_tol(const char* s, const char* end, long& out, int base) {
  return ParseLong(s, end, out, base);
}

wchar_t* cmm_str_tol(const wchar_t* s, const wchar_t* end, long& out, int base) {
  return ParseLong(s, end, out, base);
}

char* cmm_str_tod(const char* s, const char* end, double& out) {
  return ParseDouble(s, end, out);
}

wchar_t* cmm_str_tod(const wchar_t* s, const wchar_t* end, double& out) {
  return ParseDouble(s, end, out);
}
