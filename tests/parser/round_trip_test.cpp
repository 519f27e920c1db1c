// What is written as a literal reads back equal: random values of every type that has a literal,
// alone and inside a definition text. The seed is printed; MEP_TEST_SEED repeats a run.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <string>

#include "ixomep/values/value_rep.h"
#include "tests/parser/queries.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

using Type = IxoMepValueType;

constexpr int kRounds = 3000;
constexpr int kMaxDepth = 4;
constexpr double kMaxSeconds = 100.0 * 365 * 86400;  // what two digits of years can tell

// Equal with all that is inside: operator== calls no two arrays or maps equal.
bool SameValue(const IxoMepValue& a, const IxoMepValue& b) {
  if (a.GetType() != b.GetType()) return false;
  if (a.GetType() == Type::Array) {
    if (a.GetSize() != b.GetSize()) return false;
    for (std::int32_t i = 0; i < a.GetSize(); ++i) {
      if (!SameValue(*a.GetValue(i), *b.GetValue(i))) return false;
    }
    return true;
  }
  if (a.GetType() != Type::Map) return a == b;
  if (a.GetSize() != b.GetSize()) return false;
  const ValuePtr keys(a.GetKeysOfMap());
  for (std::int32_t i = 0; i < keys->GetSize(); ++i) {
    const IxoMepValue* const key = keys->GetValue(i);
    if (!SameValue(*a.GetValueOfMap(key), *b.GetValueOfMap(key))) return false;
  }
  return true;
}

class Generator {
 public:
  explicit Generator(std::uint32_t seed) : random_(seed) {}

  std::uint32_t Below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

  std::string Text() {
    static constexpr std::string_view kTricky = "\"\\\a\b\t\n\v\f\r#(*){};:%\xA0\xE4 ";
    std::string text;
    for (std::uint32_t i = Below(12); i > 0; --i) {
      text += Below(2) == 0 ? kTricky[Below(kTricky.size())] : static_cast<char>(Below(256));
    }
    return text;
  }

  // Small and large ones, of both signs.
  std::int32_t Integer() {
    const auto bits = static_cast<std::int32_t>(random_());
    return Below(2) == 0 ? bits >> Below(31) : bits;
  }

  // A number of at most twelve digits with a fraction, of any magnitude that is printed in full.
  double Real() {
    const double digits = 1.0 + Below(999999) * 1e5 + Below(100000);
    const double number = std::strtod(
        (std::to_string(static_cast<long long>(digits)) + "e-" + std::to_string(1 + Below(40)))
            .c_str(),
        nullptr);
    const double fraction = number == std::floor(number) ? number + 0.5 : number;
    return Below(2) == 0 ? fraction : -fraction;
  }

  // The smallest integer has no literal: its digits alone are beyond the range.
  IxoMepValue Scalar() {
    switch (Below(5)) {
      case 0:
        return IxoMepValue(String(Text()));
      case 1:
        return IxoMepValue(std::max(Integer(), -2147483647));
      case 2:
        return IxoMepValue(Real());
      case 3:
        return {Type::Measure, Integer()};
      default:
        return {Type::Time, std::floor(kMaxSeconds * (Below(1000000) / 1e6))};
    }
  }

  IxoMepValue Value(int depth) {
    const std::uint32_t kind = depth < kMaxDepth ? Below(4) : 0;
    if (kind < 2) return Scalar();
    IxoMepValue value(kind == 2 ? Type::Array : Type::Map);
    // An empty map has no literal, and empty braces alone are a body.
    const bool may_be_empty = kind == 2 && depth > 0;
    for (std::uint32_t i = may_be_empty ? Below(4) : 1 + Below(3); i > 0; --i) {
      if (kind == 2) {
        ValueAccess::AppendOwned(value, MakeValue(Value(depth + 1)));
      } else {
        const IxoMepValue key =
            Below(2) == 0 ? IxoMepValue(String(Text())) : IxoMepValue(Integer());
        const IxoMepValue element = Value(depth + 1);
        value.SetValue(&key, &element);
      }
    }
    return value;
  }

 private:
  std::mt19937 random_;
};

// Negative numbers inside braces are expressions; so is all the rest of a display.
TEST(RoundTrip, A_scalar_reads_back_from_its_literal) {
  Generator random(RandomSeed(kRounds));
  for (int i = 0; i < kRounds; ++i) {
    const IxoMepValue value = random.Scalar();
    // A blank behind it: a real that ends with the text is not converted afresh.
    const String text = value.GetText(/*period=*/true) + " ";
    const Literal literal = ReadLiteralAt(text);
    ASSERT_NE(literal.value, nullptr) << text.c_str() << " error " << literal.code;
    EXPECT_TRUE(SameValue(value, *literal.value))
        << text.c_str() << " reads as " << Described(literal.value.get());
    EXPECT_EQ(literal.position, text.Len() - 1) << text.c_str();
  }
}

TEST(RoundTrip, Every_value_reads_back_from_a_definition_text) {
  Generator random(RandomSeed(kRounds));
  for (int i = 0; i < kRounds; ++i) {
    const IxoMepValue value = random.Value(0);
    const String text = value.GetText(/*period=*/true);
    const auto parser = ReadText("KEY " + text + " a: " + text + " b");
    ASSERT_NE(parser->GetValue("a"), nullptr) << text.c_str();
    EXPECT_TRUE(SameValue(value, *parser->GetValue("a")))
        << text.c_str() << " reads as " << Described(parser->GetValue("a"));
    EXPECT_TRUE(parser->GetValue() != nullptr && SameValue(value, *parser->GetValue()))
        << text.c_str();
    EXPECT_TRUE(parser->IsContained("b")) << text.c_str();
  }
}

TEST(RoundTrip, Empty_braces_are_an_array_inside_brackets_and_a_body_without) {
  EXPECT_EQ(Described(ReadText("KEY a: ({})")->GetValue("a")), "array {}");
  EXPECT_EQ(Described(ReadText("KEY a: {{}}")->GetValue("a")), "array {{}}");
  EXPECT_NE(ReadText("KEY a: {}")->GetBodyParser("a"), nullptr);
}

}  // namespace
}  // namespace ixomep::test
