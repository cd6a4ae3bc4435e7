#include "common/client/utility/src/CmmNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cwchar>
#include <exception>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

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

namespace Cmm {
namespace {

// The C runtime's conversions under one name for both widths.
int64_t ToInt64(const char* s) {
  return _atoi64(s);
}

int64_t ToInt64(const wchar_t* s) {
  return _wtoi64(s);
}

int ToInt(const char* s) {
  return std::atoi(s);
}

int ToInt(const wchar_t* s) {
  return _wtoi(s);
}

unsigned ToUInt(const char* s) {
  return std::strtoul(s, nullptr, 10);
}

unsigned ToUInt(const wchar_t* s) {
  return std::wcstoul(s, nullptr, 10);
}

template <typename T>
bool IsExactly(const CStringT<T>& s, std::string_view expected) {
  return std::equal(s.begin(), s.end(), expected.begin(), expected.end());
}

template <typename T>
int ParseInt64(const CStringT<T>& s, int64_t& out) {
  out = s.empty() ? 0 : ToInt64(s.c_str());
  return s.empty() ? 0 : 1;
}

template <typename T>
int ParseUInt64(const CStringT<T>& s, uint64_t& out) {
  try {
    out = std::stoull(s.GetCData());
    return 1;
  } catch (const std::exception&) {
    return 0;
  }
}

// 0 is also the C runtime's answer to text that is no number, so only the plain "0" passes for one.
template <typename T, typename Value>
int Accept(const CStringT<T>& s, Value value, Value& out) {
  out = value;
  return value != 0 || IsExactly(s, "0") ? 1 : 0;
}

template <typename T>
int ParseBool(const CStringT<T>& s, int& out) {
  const bool isTrue = IsExactly(s, "true");
  if (!isTrue && !IsExactly(s, "false")) return 0;
  out = isTrue ? 1 : 0;
  return 1;
}

template <typename T, typename Value>
void Write(Value value, CStringT<T>& out) {
  char digits[std::numeric_limits<Value>::digits10 + 2];  // one more digit and the sign
  const auto end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
  out.assign(digits, end);
}

template <typename T>
void WriteBool(int v, CStringT<T>& out) {
  const std::string_view text = v != 0 ? "true" : "false";
  out.assign(text.begin(), text.end());
}

}  // namespace

int StringToInt64(const CStringT<char>& s, int64_t& out) {
  return ParseInt64(s, out);
}

int StringToInt64(const CStringT<wchar_t>& s, int64_t& out) {
  return ParseInt64(s, out);
}

int StringToUInt64(const CStringT<char>& s, uint64_t& out) {
  return ParseUInt64(s, out);
}

int StringToUInt64(const CStringT<wchar_t>& s, uint64_t& out) {
  return ParseUInt64(s, out);
}

int StringToInt(const CStringT<char>& s, int& out) {
  return Accept(s, ToInt(s.c_str()), out);
}

int StringToInt(const CStringT<wchar_t>& s, int& out) {
  return Accept(s, ToInt(s.c_str()), out);
}

int StringToUInt(const CStringT<char>& s, unsigned& out) {
  return Accept(s, ToUInt(s.c_str()), out);
}

int StringToUInt(const CStringT<wchar_t>& s, unsigned& out) {
  return Accept(s, ToUInt(s.c_str()), out);
}

int StringToBool(const CStringT<char>& s, int& out) {
  return ParseBool(s, out);
}

int StringToBool(const CStringT<wchar_t>& s, int& out) {
  return ParseBool(s, out);
}

int Int64ToString(int64_t v, CStringT<char>& out) {
  Write(v, out);
  return 1;
}

int Int64ToString(int64_t v, CStringT<wchar_t>& out) {
  Write(v, out);
  return 1;
}

void UInt64ToString(uint64_t v, CStringT<char>& out) {
  Write(v, out);
}

void UInt64ToString(uint64_t v, CStringT<wchar_t>& out) {
  Write(v, out);
}

void IntToString(int v, CStringT<char>& out) {
  Write(v, out);
}

void IntToString(int v, CStringT<wchar_t>& out) {
  Write(v, out);
}

void UIntToString(unsigned v, CStringT<char>& out) {
  Write(v, out);
}

void UIntToString(unsigned v, CStringT<wchar_t>& out) {
  Write(v, out);
}

CStringT<char> CmmStringFromInt64(int64_t v) {
  CStringT<char> text;
  Int64ToString(v, text);
  return text;
}

void BoolToString(int v, CStringT<char>& out) {
  WriteBool(v, out);
}

void BoolToString(int v, CStringT<wchar_t>& out) {
  WriteBool(v, out);
}

}  // namespace Cmm
