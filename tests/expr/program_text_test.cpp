// Sums of texts, which are joined at once: every part is there as it was when its turn came, and a
// result is what the walk gives, whatever the slot held before.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/support/eval.h"
#include "tests/support/limits.h"
#include "tests/support/random_expressions.h"

namespace ixomep::test {
namespace {

// Evaluated again and again, with and without programs.
void ExpectAlways(std::string_view text, std::string_view expected) {
  for (const bool programs : {false, true}) {
    const UseOfPrograms use(programs);
    IxoMepValueSet scope;
    EXPECT_EQ(
        Shown("a := \"1\", b := \"2\", n := 7, f := lambda(" + std::string(text) + "), 0", &scope),
        "integer 0");
    for (int time = 0; time < 3; ++time) EXPECT_EQ(Shown("f()", &scope), expected) << text;
  }
}

TEST(ProgramText, Parts_that_are_made_on_the_way_stay_apart) {
  ExpectAlways("\"<\" + a * 40 + \"|\" + b * 40 + \">\"",
               "string \"<" + std::string(40, '1') + "|" + std::string(40, '2') + ">\"");
  ExpectAlways("STR n + a * 40 + b * 40",
               "string \"7" + std::string(40, '1') + std::string(40, '2') + "\"");
}

TEST(ProgramText, Numbers_are_no_texts_unless_they_are_shown) {
  ExpectAlways("a + STR n + b", "string \"172\"");
  ExpectAlways("a + n + b", "error 21");
  ExpectAlways("a + \"x\" + b - a", "error 21");
  ExpectAlways("a + \"x\" + b = \"1x2\"", "integer 1");
  ExpectAlways("a + \"x\" < b", "integer 1");
  ExpectAlways("STR (n * 2) + \"|\" + STR (n / 2) + a", "string \"14|3.51\"");
}

// Evaluations of one object in one scope, into values of all kinds and into the variables
// themselves, which change meanwhile; the same seed does the same.
std::string TracedSums(const std::string& expression, bool walk, std::uint32_t seed) {
  const UseOfPrograms programs(!walk);
  std::mt19937 random(seed);
  const auto below = [&](int limit) {
    return std::uniform_int_distribution<int>(0, limit - 1)(random);
  };
  IxoMepExpressionParser parser;
  String text;
  EXPECT_EQ(parser.SetExpression(String(expression), text), IMEPERR_NONE) << expression;
  IxoMepValueSet scope;
  const char* const names[] = {"a", "b", "n"};
  for (const char* const name : names) scope.OldSetValue(name, IxoMepValue("1"), true);
  scope.OldSetValue("n", IxoMepValue(-2147483647 - 1), true);
  const std::vector<IxoMepValue> values = {
      IxoMepValue(""),  IxoMepValue("b"),  IxoMepValue("a text of some length"),
      IxoMepValue(17),  IxoMepValue(-3),   IxoMepValue(0.5),
      IxoMepValue("c"), IxoMepValue(2005), IxoMepValue(String::Filled(300, 'l'))};
  const auto value = [&]() -> const IxoMepValue& {
    return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
  };
  IxoMepValue kept("kept");
  std::string trace;
  ValuePtr own = MakeValue();
  for (int time = 0; time < 9; ++time) {
    const char* const target = names[below(3)];
    const bool into_variable = below(6) == 0;
    if (own == nullptr || below(8) == 0) own = MakeValue(below(9) == 0 ? ValueOf("{1}") : value());
    IxoMepValue* slot = into_variable ? Variable(scope, target) : own.release();
    text = "before";
    const IxoMepErrorEnum code = parser.Evaluate(&scope, slot, text, below(4) == 0, false);
    trace += std::to_string(code) + " \"" + std::string(text.view()) + "\" " + ShownValue(slot) +
             " kept " + ShownValue(kept) + "\n";
    if (slot != nullptr && below(4) == 0) kept = *slot;  // shares the text
    if (!into_variable) own.reset(slot);
    if (below(3) == 0) scope.OldSetValue(names[below(3)], value(), true);
  }
  return trace;
}

TEST(ProgramText, Random_sums_give_what_the_walk_gives) {
  const char* const given = std::getenv("MEP_TEST_ROUNDS");  // for a longer run by hand
  const int rounds = given != nullptr ? std::atoi(given) : 2000;
  const std::uint32_t seed = RandomSeed(rounds);
  for (int round = 0; round < rounds; ++round) {
    const std::uint32_t here = seed + static_cast<std::uint32_t>(round);
    std::mt19937 random(here);
    const std::vector<const char*> parts = {"a",     "b",     "n",       "\" (\"", "\"\"",
                                            "STR n", "STR n", "STR a",   "\"x\"",  "STR 7",
                                            "\")\"", "a",     "(a + b)", "1",      "STR (n)"};
    std::string expression;
    const int count = std::uniform_int_distribution<int>(1, 10)(random);
    for (int i = 0; i < count; ++i) {
      const auto last = static_cast<int>(parts.size()) - 1;
      const int drawn = std::uniform_int_distribution<int>(0, i == 0 ? last : 2 * last)(random);
      expression += (i == 0 ? "" : " + ") +
                    std::string(drawn <= last ? parts[static_cast<std::size_t>(drawn)] : "\", \"");
    }
    ASSERT_EQ(TracedSums(expression, true, here), TracedSums(expression, false, here))
        << expression << "\nseed " << here;
  }
}

}  // namespace
}  // namespace ixomep::test
