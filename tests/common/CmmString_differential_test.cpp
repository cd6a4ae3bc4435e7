// Drives the standard vocabulary and std::basic_string through the same random operations and compares
// what they answer, what they raise and what they hold. A failure prints the seed and the shortest
// sequence of operations that ends in the difference.

#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "tests/common/CmmStringTesting.h"

namespace {

using namespace cmm_string_testing;

constexpr unsigned kSeeds = 60;
constexpr size_t kStepsPerSeed = 400;
constexpr size_t kMaxLength = 120;  // keeps the text between nothing, the inner buffer and the heap

enum class Form { kOwnString, kStandardString, kPointer, kCounted, kUnit };
constexpr int kForms = 5;

enum class Op {
  kAppend,
  kAppendPart,
  kAppendFill,
  kAssign,
  kAssignPart,
  kInsert,
  kInsertPart,
  kInsertFill,
  kInsertAtIterator,
  kErase,
  kEraseAtIterator,
  kReplace,
  kReplacePart,
  kReplaceFill,
  kReplaceIterators,
  kPushBack,
  kResize,
  kResizeFill,
  kReserve,
  kClear,
  kAt,
  kSubstr,
  kCompare,
  kComparePart,
  kCompareParts,
  kFind,
  kRfind,
  kFindFirstOf,
  kFindLastOf,
  kFindFirstNotOf,
  kFindLastNotOf,
  kIterate,
  kCount,
};

const char* const kOpNames[] = {"append",
                                "append part",
                                "append fill",
                                "assign",
                                "assign part",
                                "insert",
                                "insert part",
                                "insert fill",
                                "insert at iterator",
                                "erase",
                                "erase at iterator",
                                "replace",
                                "replace part",
                                "replace fill",
                                "replace iterators",
                                "push_back",
                                "resize",
                                "resize fill",
                                "reserve",
                                "clear",
                                "at",
                                "substr",
                                "compare",
                                "compare part",
                                "compare parts",
                                "find",
                                "rfind",
                                "find_first_of",
                                "find_last_of",
                                "find_first_not_of",
                                "find_last_not_of",
                                "iterate"};
static_assert(std::size(kOpNames) == static_cast<size_t>(Op::kCount));

template <typename T>
struct Step {
  Op op;
  Form form;
  size_t a, b, c, d;
  std::basic_string<T> text;
  T unit;
};

// What one operation answered; nothing but `outOfRange` when it raised.
template <typename T>
struct Outcome {
  bool outOfRange = false;
  size_t number = 0;
  std::basic_string<T> text;

  bool operator==(const Outcome&) const = default;
};

size_t Sign(int order) {
  return static_cast<size_t>((order > 0) - (order < 0));
}

// Calls `f` with the operand in the form that the step names.
template <typename Str, typename T, typename F>
auto WithOperand(const Step<T>& step, F f) {
  if (step.form == Form::kOwnString) return f(Str(step.text));
  if (step.form == Form::kPointer) return f(step.text.c_str());
  return f(step.text);
}

template <typename Str, typename T, typename F>
size_t Search(const Step<T>& step, F f) {
  switch (step.form) {
    case Form::kUnit:
      return f(step.unit, step.a);
    case Form::kCounted:
      return f(step.text.data(), step.a, step.text.size());
    default:
      return WithOperand<Str>(step, [&](const auto& operand) { return f(operand, step.a); });
  }
}

template <typename Str, typename T>
void Apply(Str& s, const Step<T>& step, Outcome<T>& out) {
  const size_t size = s.size();
  const auto from = [&] { return s.cbegin() + static_cast<ptrdiff_t>(size ? step.a % (size + 1) : 0); };
  const auto to = [&] {
    const size_t start = size ? step.a % (size + 1) : 0;
    return s.cbegin() + static_cast<ptrdiff_t>(start + step.b % (size - start + 1));
  };
  const auto with = [&](auto f) { return WithOperand<Str>(step, f); };
  switch (step.op) {
    case Op::kAppend:
      if (step.form == Form::kCounted) {
        s.append(step.text.data(), step.text.size());
      } else {
        with([&](const auto& x) { s.append(x); });
      }
      break;
    case Op::kAppendPart:
      s.append(step.text, step.a, step.b);
      break;
    case Op::kAppendFill:
      s.append(step.a % 20, step.unit);
      break;
    case Op::kAssign:
      if (step.form == Form::kCounted) {
        s.assign(step.text.data(), step.text.size());
      } else {
        with([&](const auto& x) { s.assign(x); });
      }
      break;
    case Op::kAssignPart:
      s.assign(step.text, step.a, step.b);
      break;
    case Op::kInsert:
      if (step.form == Form::kCounted) {
        s.insert(step.a, step.text.data(), step.text.size());
      } else {
        with([&](const auto& x) { s.insert(step.a, x); });
      }
      break;
    case Op::kInsertPart:
      s.insert(step.a, step.text, step.b, step.c);
      break;
    case Op::kInsertFill:
      s.insert(step.a, step.b % 20, step.unit);
      break;
    case Op::kInsertAtIterator:
      out.number = static_cast<size_t>(s.insert(from(), step.unit) - s.begin());
      break;
    case Op::kErase:
      s.erase(step.a, step.b);
      break;
    case Op::kEraseAtIterator:
      out.number = static_cast<size_t>(s.erase(from(), to()) - s.begin());
      break;
    case Op::kReplace:
      if (step.form == Form::kCounted) {
        s.replace(step.a, step.b, step.text.data(), step.text.size());
      } else {
        with([&](const auto& x) { s.replace(step.a, step.b, x); });
      }
      break;
    case Op::kReplacePart:
      s.replace(step.a, step.b, step.text, step.c, step.d);
      break;
    case Op::kReplaceFill:
      s.replace(step.a, step.b, step.c % 20, step.unit);
      break;
    case Op::kReplaceIterators:
      with([&](const auto& x) { s.replace(from(), to(), x); });
      break;
    case Op::kPushBack:
      s.push_back(step.unit);
      break;
    case Op::kResize:
      s.resize(step.a % kMaxLength);
      break;
    case Op::kResizeFill:
      s.resize(step.a % kMaxLength, step.unit);
      break;
    case Op::kReserve:
      s.reserve(step.a % 200);
      out.number = s.capacity();
      break;
    case Op::kClear:
      s.clear();
      break;
    case Op::kAt:
      out.number = static_cast<size_t>(s.at(step.a));
      s.at(step.a) = step.unit;
      break;
    case Op::kSubstr:
      out.text = s.substr(step.a, step.b);
      break;
    case Op::kCompare:
      out.number = Sign(with([&](const auto& x) { return s.compare(x); }));
      break;
    case Op::kComparePart:
      if (step.form == Form::kCounted) {
        out.number = Sign(s.compare(step.a, step.b, step.text.data(), step.text.size()));
      } else {
        out.number = Sign(with([&](const auto& x) { return s.compare(step.a, step.b, x); }));
      }
      break;
    case Op::kCompareParts:
      if (step.form == Form::kOwnString) {
        out.number = Sign(s.compare(step.a, step.b, Str(step.text), step.c, step.d));
      } else {
        out.number = Sign(s.compare(step.a, step.b, step.text, step.c, step.d));
      }
      break;
    case Op::kFind:
      out.number = Search<Str>(step, [&](const auto&... x) { return s.find(x...); });
      break;
    case Op::kRfind:
      out.number = Search<Str>(step, [&](const auto&... x) { return s.rfind(x...); });
      break;
    case Op::kFindFirstOf:
      out.number = Search<Str>(step, [&](const auto&... x) { return s.find_first_of(x...); });
      break;
    case Op::kFindLastOf:
      out.number = Search<Str>(step, [&](const auto&... x) { return s.find_last_of(x...); });
      break;
    case Op::kFindFirstNotOf:
      out.number = Search<Str>(step, [&](const auto&... x) { return s.find_first_not_of(x...); });
      break;
    case Op::kFindLastNotOf:
      out.number = Search<Str>(step, [&](const auto&... x) { return s.find_last_not_of(x...); });
      break;
    case Op::kIterate:
      out.text.assign(s.begin(), s.end());
      out.text.append(s.crbegin(), s.crend());
      break;
    case Op::kCount:
      break;
  }
}

template <typename Str, typename T>
Outcome<T> Run(Str& s, const Step<T>& step) {
  Outcome<T> out;
  try {
    Apply(s, step, out);
  } catch (const std::out_of_range&) {
    return {.outOfRange = true, .number = 0, .text = {}};
  }
  return out;
}

template <typename T>
class Generator {
 public:
  explicit Generator(unsigned seed) : m_random(seed) {}

  Step<T> Next(size_t length) {
    Step<T> step;
    step.op = static_cast<Op>(Below(static_cast<size_t>(Op::kCount)));
    if (length > kMaxLength) step.op = Op::kResize;
    step.form = static_cast<Form>(Below(kForms));
    step.text.resize(Below(4) ? Below(6) : Below(40));
    for (T& unit : step.text)
      unit = Unit();
    step.unit = Unit();
    step.a = Position(length);
    step.b = Position(length);
    step.c = Position(step.text.size());
    step.d = Position(step.text.size());
    return step;
  }

 private:
  size_t Below(size_t n) { return m_random() % n; }

  // Few different units, so that searches hit; NUL and one with the top bit set among them.
  T Unit() {
    const T units[] = {T('a'), T('b'), T('c'), T(0), static_cast<T>(0xfff0)};
    return units[Below(std::size(units))];
  }

  // Mostly inside the text, its end included; now and then just behind it, far behind it, or all ones.
  size_t Position(size_t length) {
    switch (Below(12)) {
      case 0:
        return length;
      case 1:
        return length + 1;
      case 2:
        return length + 1000;
      case 3:
        return static_cast<size_t>(-1);
      default:
        return Below(length + 1);
    }
  }

  std::mt19937 m_random;
};

template <typename T>
std::string Print(const std::vector<Step<T>>& steps) {
  std::ostringstream out;
  for (const Step<T>& step : steps) {
    out << "  " << kOpNames[static_cast<size_t>(step.op)] << " form " << static_cast<int>(step.form) << " ("
        << step.a << ", " << step.b << ", " << step.c << ", " << step.d << ") unit "
        << static_cast<unsigned>(step.unit) << " text";
    for (T unit : step.text)
      out << ' ' << static_cast<unsigned>(unit);
    out << '\n';
  }
  return out.str();
}

template <typename T>
class CmmStringDifferential : public testing::Test {};
TYPED_TEST_SUITE(CmmStringDifferential, Widths, WidthNames);

TYPED_TEST(CmmStringDifferential, BehavesAsTheStandardStringThroughRandomOperations) {
  size_t raised = 0;
  for (unsigned seed = 1; seed <= kSeeds; ++seed) {
    Generator<TypeParam> generator(seed);
    std::vector<Step<TypeParam>> steps;
    Cmm::CStringT<TypeParam> ours;
    std::basic_string<TypeParam> theirs;
    for (size_t i = 0; i < kStepsPerSeed; ++i) {
      steps.push_back(generator.Next(theirs.size()));
      const auto expected = Run(theirs, steps.back());
      const auto actual = Run(ours, steps.back());
      // The first difference ends the sequence, so what is printed is the shortest failing prefix.
      ASSERT_TRUE(actual == expected && ours.GetCData() == theirs) << "seed " << seed << ", operations:\n"
                                                                   << Print(steps);
      ASSERT_EQ(ours.c_str()[ours.size()], TypeParam()) << "seed " << seed;
      raised += expected.outOfRange;
    }
  }
  // The exceptions are part of what is compared, so they must have happened.
  EXPECT_GT(raised, kSeeds * kStepsPerSeed / 50);
}

}  // namespace
