#include "common/client/utility/src/CmmNumber.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "gtest/gtest.h"

namespace {

constexpr long kUntouched = 4711;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::wstring Widen(const std::string& text) {
  return std::wstring(text.begin(), text.end());
}

template <typename Value>
struct Parsed {
  size_t consumed;  // units between the start and the returned position
  Value value;

  friend bool operator==(const Parsed&, const Parsed&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Parsed& p) {
    return out << "{consumed " << p.consumed << ", value " << p.value << "}";
  }
};

template <typename T>
Parsed<long> TolBounded(const std::basic_string<T>& text, int base) {
  long value = kUntouched;
  const T* stop = cmm_str_tol(text.data(), text.data() + text.size(), value, base);
  return {static_cast<size_t>(stop - text.data()), value};
}

template <typename T>
Parsed<long> TolUnbounded(const std::basic_string<T>& text, int base) {
  long value = kUntouched;
  const T* stop = cmm_str_tol(text.c_str(), static_cast<const T*>(nullptr), value, base);
  return {static_cast<size_t>(stop - text.c_str()), value};
}

// Both widths, bounded by the end of the text and by its NUL, must agree.
Parsed<long> Tol(const std::string& text, int base) {
  const auto result = TolBounded(text, base);
  EXPECT_EQ(result, TolUnbounded(text, base)) << text;
  EXPECT_EQ(result, TolBounded(Widen(text), base)) << text;
  EXPECT_EQ(result, TolUnbounded(Widen(text), base)) << text;
  return result;
}

template <typename T>
Parsed<double> TodBounded(const std::basic_string<T>& text) {
  double value = kUntouched;
  const T* stop = cmm_str_tod(text.data(), text.data() + text.size(), value);
  return {static_cast<size_t>(stop - text.data()), value};
}

template <typename T>
Parsed<double> TodUnbounded(const std::basic_string<T>& text) {
  double value = kUntouched;
  const T* stop = cmm_str_tod(text.c_str(), static_cast<const T*>(nullptr), value);
  return {static_cast<size_t>(stop - text.c_str()), value};
}

Parsed<double> Tod(const std::string& text) {
  const auto result = TodBounded(text);
  if (std::isnan(result.value)) return result;  // equal to nothing, itself included
  EXPECT_EQ(result, TodUnbounded(text)) << text;
  EXPECT_EQ(result, TodBounded(Widen(text))) << text;
  EXPECT_EQ(result, TodUnbounded(Widen(text))) << text;
  return result;
}

TEST(CmmStrTol, ParsesNumbersInTheirBase) {
  struct {
    const char* text;
    int base;
    Parsed<long> expected;
  } const cases[] = {
      {"0", 10, {1, 0}},
      {"7", 10, {1, 7}},
      {"123", 10, {3, 123}},
      {"-123", 10, {4, -123}},
      {"+123", 10, {4, 123}},
      {" \t\r\n42", 10, {6, 42}},
      {"42abc", 10, {2, 42}},
      {"42 ", 10, {2, 42}},
      {"1010", 2, {4, 10}},
      {"102", 2, {2, 2}},
      {"777", 8, {3, 511}},
      {"8", 8, {0, kUntouched}},
      {"ff", 16, {2, 255}},
      {"FF", 16, {2, 255}},
      {"fg", 16, {1, 15}},
      {"z", 36, {1, 35}},
      {"Zz", 36, {2, 35 * 36 + 35}},
      {"z", 35, {0, kUntouched}},
      {"2147483647", 10, {10, 2147483647L}},
      {"-2147483648", 10, {11, -2147483647L - 1}},
      {"0000000000000000000000012", 10, {25, 12}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.expected, Tol(c.text, c.base)) << c.text << " base " << c.base;
}

TEST(CmmStrTol, FindsTheBaseFromThePrefixWhenItIsZero) {
  struct {
    const char* text;
    Parsed<long> expected;
  } const cases[] = {
      {"10", {2, 10}}, {"010", {3, 8}},   {"0x10", {4, 16}},  {"0X1f", {4, 31}}, {"0", {1, 0}},
      {"08", {1, 0}},  {"-010", {4, -8}}, {"-0xA", {4, -10}}, {"9f", {1, 9}},    {"0xg", {0, kUntouched}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.expected, Tol(c.text, 0)) << c.text;
}

TEST(CmmStrTol, StepsOverAHexadecimalPrefixInEveryBase) {
  EXPECT_EQ((Parsed<long>{3, 1}), Tol("0x1F", 10));  // then stops at F
  EXPECT_EQ((Parsed<long>{4, 15}), Tol("0x17", 8));
  EXPECT_EQ((Parsed<long>{5, 5}), Tol("0x101", 2));
  EXPECT_EQ((Parsed<long>{4, 31}), Tol("0x1F", 16));
  EXPECT_EQ((Parsed<long>{3, 1}), Tol("0x1", 36));  // although x is a digit there
  EXPECT_EQ((Parsed<long>{4, -1}), Tol("-0X1", 10));
}

TEST(CmmStrTol, FindsNoNumberInAPrefixAlone) {
  for (const int base : {0, 10, 16, 36}) {
    EXPECT_EQ((Parsed<long>{0, kUntouched}), Tol("0x", base)) << base;
    EXPECT_EQ((Parsed<long>{0, kUntouched}), Tol(" -0X", base)) << base;
    EXPECT_EQ((Parsed<long>{0, kUntouched}), Tol("0x-1", base)) << base;
  }
}

TEST(CmmStrTol, LeavesAPrefixThatReachesBeyondTheEndAlone) {
  const char text[] = "0x1F";
  for (const int base : {0, 10, 16, 36}) {
    long value = kUntouched;
    EXPECT_EQ(text + 1, cmm_str_tol(text, text + 1, value, base)) << base;
    EXPECT_EQ(0, value) << base;
  }
}

TEST(CmmStrTol, ReturnsTheStartAndLeavesTheValueAloneWithoutADigit) {
  for (const char* text : {"", " ", "-", "+", "--1", "+-1", "- 1", "abc", ".5", "\v1", "\f1",
                           "\xA0"
                           "1"}) {
    EXPECT_EQ((Parsed<long>{0, kUntouched}), TolBounded<char>(text, 10)) << text;
    EXPECT_EQ((Parsed<long>{0, kUntouched}), TolUnbounded<char>(text, 10)) << text;
  }
}

TEST(CmmStrTol, ReturnsTheStartForABaseThatIsNone) {
  for (const int base :
       {1, 37, 100, -1, -10, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_EQ((Parsed<long>{0, kUntouched}), Tol("11", base)) << base;
  }
}

TEST(CmmStrTol, ReturnsNullForANullStart) {
  long value = kUntouched;
  EXPECT_EQ(nullptr, cmm_str_tol(static_cast<const char*>(nullptr), nullptr, value, 10));
  EXPECT_EQ(nullptr, cmm_str_tol(static_cast<const wchar_t*>(nullptr), nullptr, value, 10));
  EXPECT_EQ(kUntouched, value);
}

TEST(CmmStrTol, WrapsAt32BitsWithoutNotice) {
  EXPECT_EQ((Parsed<long>{10, -2147483647L - 1}), Tol("2147483648", 10));
  EXPECT_EQ((Parsed<long>{10, -1}), Tol("4294967295", 10));
  EXPECT_EQ((Parsed<long>{10, 0}), Tol("4294967296", 10));
  EXPECT_EQ((Parsed<long>{11, -1}), Tol("-4294967297", 10));
  EXPECT_EQ((Parsed<long>{16, -1}), Tol("ffffffffffffffff", 16));
}

TEST(CmmStrTol, ReadsNothingAtOrBehindTheEnd) {
  const std::string text = "  -12345";
  for (size_t length = 0; length <= text.size(); ++length) {
    const std::string exact(text, 0, length);  // a copy, so that a wrong read meets its end
    long value = kUntouched;
    const char* stop = cmm_str_tol(text.data(), text.data() + length, value, 10);
    EXPECT_EQ(TolUnbounded(exact, 10), (Parsed<long>{static_cast<size_t>(stop - text.data()), value}))
        << length;
  }
}

TEST(CmmStrTol, StopsAtANulWithinTheRange) {
  EXPECT_EQ((Parsed<long>{2, 12}), TolBounded(std::string("12\0"
                                                          "34",
                                                          5),
                                              10));
}

TEST(CmmStrTol, TakesNoDigitsBeyondAscii) {
  EXPECT_EQ((Parsed<long>{1, 1}), TolBounded<wchar_t>(L"1\xFF12", 10));  // a full-width 2
  EXPECT_EQ((Parsed<long>{1, 1}), TolBounded<wchar_t>(L"1\x0131", 36));  // low byte of a '1'
  EXPECT_EQ((Parsed<long>{0, kUntouched}), TolBounded<wchar_t>(L"\x3000"
                                                               L"1",
                                                               10));
}

TEST(CmmStrTol, AgreesWithTheCLibraryInRange) {
  std::mt19937 random(20240607);
  for (int i = 0; i < 20000; ++i) {
    const int base =
        std::uniform_int_distribution(2, 33)(random);  // above 33 the 'x' of "0x" is a digit to it
    auto value = static_cast<int32_t>(random());
    value >>= std::uniform_int_distribution(0, 31)(random);
    char digits[40];
    _ltoa(value < 0 && base != 10 ? -(value + 1) : value, digits, base);
    std::string text = std::string(random() % 3, ' ') + digits + std::string(random() % 2, '~');

    char* expectedStop = nullptr;
    const long expected = std::strtol(text.c_str(), &expectedStop, base);
    EXPECT_EQ((Parsed<long>{static_cast<size_t>(expectedStop - text.c_str()), expected}), Tol(text, base))
        << text << " base " << base;
  }
}

TEST(CmmStrTod, ParsesDecimalNumbers) {
  struct {
    const char* text;
    Parsed<double> expected;
  } const cases[] = {
      {"0", {1, 0.0}},          {"1", {1, 1.0}},      {"-1", {2, -1.0}},     {"+1.5", {4, 1.5}},
      {" \t\r\n2.5", {7, 2.5}}, {".5", {2, 0.5}},     {"5.", {2, 5.0}},      {"1.25x", {4, 1.25}},
      {"1.2.3", {3, 1.2}},      {"1..5", {2, 1.0}},   {"1e3", {3, 1000.0}},  {"1E3", {3, 1000.0}},
      {"1e+3", {4, 1000.0}},    {"25e-2", {5, 0.25}}, {"1.5e2", {5, 150.0}}, {"-.5e1", {5, -5.0}},
      {"1e", {2, 1.0}},         {"1e+", {3, 1.0}},    {"1e-x", {3, 1.0}},    {"1e2e3", {3, 100.0}},
      {"1e1.5", {3, 10.0}},     {"1 e2", {1, 1.0}},   {"0x10", {1, 0.0}},    {"00012", {5, 12.0}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.expected, Tod(c.text)) << c.text;
}

TEST(CmmStrTod, ReturnsThePositionReachedAndLeavesTheValueAloneWithoutADigit) {
  struct {
    const char* text;
    size_t reached;
  } const cases[] = {{"", 0},    {"abc", 0}, {"  ", 2},  {" -", 2}, {"+.", 2},
                     {"..1", 1}, {"e5", 0},  {"inf", 0}, {"--1", 1}};
  for (const auto& c : cases)
    EXPECT_EQ((Parsed<double>{c.reached, kUntouched}), Tod(c.text)) << c.text;
}

TEST(CmmStrTod, ReturnsNullForANullStart) {
  double value = kUntouched;
  EXPECT_EQ(nullptr, cmm_str_tod(static_cast<const char*>(nullptr), nullptr, value));
  EXPECT_EQ(nullptr, cmm_str_tod(static_cast<const wchar_t*>(nullptr), nullptr, value));
  EXPECT_EQ(kUntouched, value);
}

TEST(CmmStrTod, GivesPositiveInfinityForEveryExponentOutOfRangeEvenForNegativeAndTinyNumbers) {
  for (const char* text : {"1e5000", "1e-5000", "-1e5000", "-1e-5000", "0e5000", "1e1025", "1e-1022"}) {
    EXPECT_EQ((Parsed<double>{std::string(text).size(), kInfinity}), Tod(text)) << text;
  }
}

TEST(CmmStrTod, CountsDigitsBehindThePointIntoTheExponent) {
  EXPECT_EQ(kInfinity, Tod("1.0e-1021").value);
  EXPECT_EQ(0.0, Tod("1e-1021").value);
  EXPECT_EQ(kInfinity, Tod("0." + std::string(1022, '0')).value);
  EXPECT_EQ(0.0, Tod("0." + std::string(1021, '0')).value);
  EXPECT_EQ(1.0, Tod("0." + std::string(1500, '0') + "1e1501").value);
}

TEST(CmmStrTod, HoldsAgainstAnExponentOfAnyLength) {
  EXPECT_EQ(kInfinity, Tod("1e" + std::string(100, '9')).value);
  EXPECT_EQ(kInfinity, Tod("1e-" + std::string(100, '9')).value);
  EXPECT_EQ(10.0, Tod("1e" + std::string(100, '0') + "1").value);
}

TEST(CmmStrTod, LetsTheScalingOverflowWithinTheRangeOfExponents) {
  EXPECT_EQ(kInfinity, Tod("1e1024").value);
  EXPECT_EQ(-kInfinity, Tod("-1e400").value);
  EXPECT_EQ(kInfinity, Tod(std::string(400, '9')).value);
  EXPECT_TRUE(std::isnan(Tod("0e1024").value));  // zero times an infinite power
}

TEST(CmmStrTod, ReadsNothingAtOrBehindTheEnd) {
  const std::string text = " -12.5e-34";
  for (size_t length = 0; length <= text.size(); ++length) {
    double value = kUntouched;
    const char* stop = cmm_str_tod(text.data(), text.data() + length, value);
    EXPECT_EQ(TodUnbounded(std::string(text, 0, length)),
              (Parsed<double>{static_cast<size_t>(stop - text.data()), value}))
        << length;
  }
}

TEST(CmmStrTod, AgreesWithTheCLibraryUpToRounding) {
  std::mt19937 random(20240608);
  for (int i = 0; i < 20000; ++i) {
    char text[64];
    std::snprintf(text, sizeof text, "%s%u.%ue%d", random() % 2 ? "-" : "",
                  static_cast<unsigned>(random() % 100000), static_cast<unsigned>(random() % 1000000),
                  static_cast<int>(random() % 401) - 200);
    const double expected = std::strtod(text, nullptr);
    const auto parsed = Tod(text);
    EXPECT_EQ(std::string(text).size(), parsed.consumed) << text;
    EXPECT_NEAR(expected, parsed.value, std::fabs(expected) * 1e-14) << text;
  }
}

template <typename T>
class CmmNumberText : public testing::Test {
 protected:
  using Text = Cmm::CStringT<T>;

  static Text Make(std::string_view ascii) { return std::basic_string<T>(ascii.begin(), ascii.end()); }

  // The text that `write(value, out)` leaves in a string that held something else.
  template <typename Function, typename Value>
  static Text Written(Function write, Value value) {
    Text out = Make("something longer than any number in here");
    write(value, out);
    return out;
  }
};

using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(CmmNumberText, Widths);

TYPED_TEST(CmmNumberText, WritesInt64InDecimalAndAnswersOne) {
  const std::pair<int64_t, const char*> cases[] = {{0, "0"},
                                                   {7, "7"},
                                                   {-7, "-7"},
                                                   {INT64_MAX, "9223372036854775807"},
                                                   {INT64_MIN, "-9223372036854775808"}};
  for (const auto& [value, text] : cases) {
    typename TestFixture::Text out;
    EXPECT_EQ(1, Cmm::Int64ToString(value, out));
    EXPECT_EQ(TestFixture::Make(text), out) << text;
  }
}

TYPED_TEST(CmmNumberText, WritesTheOtherWholeNumbersInDecimal) {
  const auto uint64 = [](uint64_t v, auto& out) { Cmm::UInt64ToString(v, out); };
  EXPECT_EQ(this->Make("0"), this->Written(uint64, uint64_t{0}));
  EXPECT_EQ(this->Make("18446744073709551615"), this->Written(uint64, UINT64_MAX));
  const auto int32 = [](int v, auto& out) { Cmm::IntToString(v, out); };
  EXPECT_EQ(this->Make("0"), this->Written(int32, 0));
  EXPECT_EQ(this->Make("2147483647"), this->Written(int32, INT32_MAX));
  EXPECT_EQ(this->Make("-2147483648"), this->Written(int32, INT32_MIN));
  const auto uint32 = [](unsigned v, auto& out) { Cmm::UIntToString(v, out); };
  EXPECT_EQ(this->Make("0"), this->Written(uint32, 0u));
  EXPECT_EQ(this->Make("4294967295"), this->Written(uint32, UINT32_MAX));
}

TYPED_TEST(CmmNumberText, WritesTruthValues) {
  const auto truth = [](int v, auto& out) { Cmm::BoolToString(v, out); };
  EXPECT_EQ(this->Make("false"), this->Written(truth, 0));
  EXPECT_EQ(this->Make("true"), this->Written(truth, 1));
  EXPECT_EQ(this->Make("true"), this->Written(truth, -1));
  EXPECT_EQ(this->Make("true"), this->Written(truth, 2));
}

TYPED_TEST(CmmNumberText, StringToInt64SucceedsForEveryTextButTheEmptyOne) {
  struct {
    const char* text;
    int64_t value;
  } const cases[] = {{"0", 0},
                     {"42", 42},
                     {" \t\n-42abc", -42},
                     {"+7", 7},
                     {"abc", 0},
                     {" ", 0},
                     {"9223372036854775807", INT64_MAX},
                     {"-9223372036854775808", INT64_MIN}};
  for (const auto& c : cases) {
    int64_t out = kUntouched;
    EXPECT_EQ(1, Cmm::StringToInt64(this->Make(c.text), out)) << c.text;
    EXPECT_EQ(c.value, out) << c.text;
  }
  int64_t out = kUntouched;
  EXPECT_EQ(0, Cmm::StringToInt64(this->Make(""), out));
  EXPECT_EQ(0, out);
}

TYPED_TEST(CmmNumberText, StringToUInt64FollowsTheStandardConversion) {
  struct {
    const char* text;
    uint64_t value;
  } const cases[] = {{"0", 0},          {"42", 42}, {" \t\n\v\f\r42abc", 42},
                     {"+7", 7},         {"00", 0},  {"18446744073709551615", UINT64_MAX},
                     {"-1", UINT64_MAX}};
  for (const auto& c : cases) {
    uint64_t out = kUntouched;
    EXPECT_EQ(1, Cmm::StringToUInt64(this->Make(c.text), out)) << c.text;
    EXPECT_EQ(c.value, out) << c.text;
  }
}

TYPED_TEST(CmmNumberText, StringToUInt64LeavesTheValueAloneWithoutADigitOrOutOfRange) {
  for (const char* text :
       {"", " ", "abc", "-", "+", "+-1", "18446744073709551616", "99999999999999999999999"}) {
    uint64_t out = kUntouched;
    EXPECT_EQ(0, Cmm::StringToUInt64(this->Make(text), out)) << text;
    EXPECT_EQ(uint64_t{kUntouched}, out) << text;
  }
}

TYPED_TEST(CmmNumberText, StringToIntTakesAZeroForSuccessOnlyFromThePlainText0) {
  struct {
    std::string_view text;
    int result;
    int value;
  } const cases[] = {{"0", 1, 0},
                     {"00", 0, 0},
                     {"-0", 0, 0},
                     {" 0", 0, 0},
                     {"0x", 0, 0},
                     {"", 0, 0},
                     {"abc", 0, 0},
                     {"7", 1, 7},
                     {" -7abc", 1, -7},
                     {"007", 1, 7},
                     {"+7", 1, 7},
                     {"0 ", 0, 0},
                     {"2147483647", 1, INT32_MAX},
                     {"-2147483648", 1, INT32_MIN},
                     {std::string_view("0\0", 2), 0, 0}};
  for (const auto& c : cases) {
    int out = kUntouched;
    EXPECT_EQ(c.result, Cmm::StringToInt(this->Make(c.text), out)) << c.text;
    EXPECT_EQ(c.value, out) << c.text;
  }
}

TYPED_TEST(CmmNumberText, StringToUIntTakesAZeroForSuccessOnlyFromThePlainText0) {
  struct {
    std::string_view text;
    int result;
    unsigned value;
  } const cases[] = {{"0", 1, 0},          {"00", 0, 0},  {"", 0, 0},    {"abc", 0, 0},
                     {"7", 1, 7},          {" 7a", 1, 7}, {"0x1", 0, 0}, {"4294967295", 1, UINT32_MAX},
                     {"-1", 1, UINT32_MAX}};
  for (const auto& c : cases) {
    unsigned out = kUntouched;
    EXPECT_EQ(c.result, Cmm::StringToUInt(this->Make(c.text), out)) << c.text;
    EXPECT_EQ(c.value, out) << c.text;
  }
}

TYPED_TEST(CmmNumberText, StringToBoolKnowsTwoTextsAndLeavesTheValueAloneForAnyOther) {
  int out = kUntouched;
  EXPECT_EQ(1, Cmm::StringToBool(this->Make("true"), out));
  EXPECT_EQ(1, out);
  EXPECT_EQ(1, Cmm::StringToBool(this->Make("false"), out));
  EXPECT_EQ(0, out);
  for (const std::string_view text :
       {std::string_view(""), std::string_view("TRUE"), std::string_view("True"), std::string_view("1"),
        std::string_view("0"), std::string_view(" true"), std::string_view("true "),
        std::string_view("truex"), std::string_view("tru"), std::string_view("FALSE"),
        std::string_view("true\0", 5)}) {
    out = kUntouched;
    EXPECT_EQ(0, Cmm::StringToBool(this->Make(text), out)) << text;
    EXPECT_EQ(kUntouched, out) << text;
  }
}

TYPED_TEST(CmmNumberText, ReadsBackWhatItWrote) {
  std::mt19937_64 random(20240610);
  for (int i = 0; i < 5000; ++i) {
    const uint64_t bits = random() >> random() % 64;
    typename TestFixture::Text text;

    int64_t int64 = kUntouched;
    Cmm::Int64ToString(static_cast<int64_t>(bits), text);
    EXPECT_EQ(1, Cmm::StringToInt64(text, int64));
    EXPECT_EQ(static_cast<int64_t>(bits), int64);

    uint64_t uint64 = kUntouched;
    Cmm::UInt64ToString(bits, text);
    EXPECT_EQ(1, Cmm::StringToUInt64(text, uint64));
    EXPECT_EQ(bits, uint64);

    int int32 = kUntouched;
    Cmm::IntToString(static_cast<int>(bits), text);
    EXPECT_EQ(1, Cmm::StringToInt(text, int32));
    EXPECT_EQ(static_cast<int>(bits), int32);

    unsigned uint32 = kUntouched;
    Cmm::UIntToString(static_cast<unsigned>(bits), text);
    EXPECT_EQ(1, Cmm::StringToUInt(text, uint32));
    EXPECT_EQ(static_cast<unsigned>(bits), uint32);
  }
}

TEST(CmmStringFromInt64, GivesDecimalText) {
  EXPECT_EQ("-42", Cmm::CmmStringFromInt64(-42).GetCData());
  EXPECT_EQ("9223372036854775807", Cmm::CmmStringFromInt64(INT64_MAX).GetCData());
}

}  // namespace
