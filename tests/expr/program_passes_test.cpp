// Passes of loops that only assign numbers, against the plain walk: the same variables, codes,
// messages, steps and questions to the host, whatever the variables are and become.
#include "ixomep/expr/program_passes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "ixomep/host/limit_watch.h"
#include "tests/support/eval.h"
#include "tests/support/limits.h"
#include "tests/support/random_expressions.h"

namespace ixomep::test {
namespace {

// Loops whose bodies are assignments, mostly of numbers; of texts the empty one only, which does
// not grow.
class Loops {
 public:
  explicit Loops(std::uint32_t seed) : random_(seed) {}

  std::string Next() {
    std::string text;
    for (const char* const name : {"x", "y", "z", "n", "m"}) {
      if (Below(4) != 0) text += std::string(name) + " := " + Start() + ", ";
    }
    return text + Loop(1);
  }

  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

 private:
  std::string Pick(const std::vector<const char*>& choices) {
    return choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))];
  }
  std::string Start() {
    return Pick({"0", "1", "-3", "2147483640", "0.5", "0.0", "1e300", "2cm", "1s", "\"\"",
                 "{1, 2, 3, 4.5}", "{0: 1, 1: 2.5}"});
  }
  std::string Name() { return Pick({"x", "y", "z", "n", "m", "k"}); }
  std::string Leaf() {
    return Below(3) == 0 ? Pick({"1", "2", "-1", "0.5", "2147483647", "1cm", "\"\""}) : Name();
  }
  std::string Value(int depth) {
    if (depth == 0 || Below(3) == 0) return Leaf();
    switch (Below(8)) {
      case 0:
        return "cond(" + Value(depth - 1) + ", " + Value(depth - 1) + ", " + Value(depth - 1) + ")";
      case 1:
        return Name() + "[" + Value(depth - 1) + "]";
      case 2:
        return "-(" + Value(depth - 1) + ")";
      case 3:
        return "(-(" + Value(depth - 1) + ")) * (-(" + Value(depth - 1) + "))";
      default:
        return "(" + Value(depth - 1) + ")" +
               Pick({" + ", " + ", " - ", " / ", " MOD ", " < ", " = ", " AND "}) + "(" +
               Value(depth - 1) + ")";
    }
  }
  std::string Step() {
    const std::string name = Pick({"x", "y", "z", "n"});
    if (Below(2) == 0) return name + " := " + name + " + " + Leaf();
    if (Below(4) == 0) return "aappend(" + name + ", " + Value(1) + ")";
    return name + " := " + Value(2);
  }
  std::string Body(int depth) {
    std::string text = Step();
    for (int more = Below(3); more > 0; --more) text += ", " + Step();
    if (depth > 0 && Below(6) == 0) text += ", " + Loop(depth - 1);
    return text;
  }
  std::string Loop(int depth) {
    if (Below(3) != 0) {
      return "for(" + Pick({"n", "n", "x", "fresh"}) + ", " + Pick({"0", "1", "-5", "2147483640"}) +
             ", " + Pick({"7", "40", "-2", "2147483647"}) + " + 0 * 1){" + Body(depth) + "}";
    }
    const std::string counter = depth > 0 ? "k" : "l";
    return counter + " := 0, while(" + counter + Pick({" < 9", " < 30.5", " != 12"}) + "){" +
           counter + " := " + counter + " + 1, " + Body(depth) + "}";
  }

  std::mt19937 random_;
};

// All that an evaluation in a fresh scope leaves behind, steps and questions included.
std::string Traced(const std::string& expression, bool walk, std::uint64_t steps, int interrupt) {
  const UseOfPrograms use(!walk);
  InterruptingHost host(interrupt);
  const ScopedLimits limits(IxoLimits{.steps = steps});
  IxoMepExpressionParser parser;
  IxoMepValueSet scope;
  const Outcome outcome = EvalWith(parser, expression, &scope);
  std::string trace = outcome.ShownWithText() + ", asked " + std::to_string(host.asked) +
                      ", depth " + std::to_string(IxoMepExprNode::m_nCallDepth) + "\n";
  IxoMepValueSetMap variables;
  scope.GetAllVars(variables, true);
  for (const auto& [name, value] : variables) {
    trace += std::string(name) + " = " + ShownValue(value) + "\n";
    delete value;
  }
  return trace;
}

void CheckBothWays(const std::string& expression, std::uint64_t steps = 0,
                   int interrupt = InterruptingHost::kNever) {
  EXPECT_EQ(Traced(expression, true, steps, interrupt), Traced(expression, false, steps, interrupt))
      << expression << "\nsteps " << steps << ", interrupted after " << interrupt;
}

TEST(Passes, Random_loops_do_what_the_walk_does) {
  const char* const given = std::getenv("MEP_TEST_ROUNDS");  // for a longer run by hand
  const int rounds = given != nullptr ? std::atoi(given) : 2000;
  const std::uint32_t seed = RandomSeed(rounds);
  for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE("seed " + std::to_string(seed + static_cast<std::uint32_t>(round)));
    Loops random(seed + static_cast<std::uint32_t>(round));
    const std::string expression = random.Next();
    // Some of them would run for very long.
    CheckBothWays(expression, 300 + static_cast<std::uint64_t>(random.Below(20)));
    CheckBothWays(expression, 1 + static_cast<std::uint64_t>(random.Below(60)));
  }
}

TEST(Passes, End_as_the_walk_does_at_every_number_of_steps) {
  for (const char* const loop : {"s := 0.5, for(i, 1, 30){s := s + i}{s}",
                                 "s := 0, for(i, 1, 30){s := s + i, t := s * 2}{t}",
                                 "i := 0, s := 0, while(i < 30){s := s + i, i := i + 1}{s}",
                                 "for(i, 1, 3){for(j, 1, 8){s := i * j}, t := s}"}) {
    for (std::uint64_t steps = 1; steps < 40; ++steps) CheckBothWays(loop, steps);
  }
}

TEST(Passes, Ask_the_host_as_often_as_the_walk_and_stop_where_it_does) {
  for (const char* const loop :
       {"s := 0.5, for(i, 1, 5000){s := s + i}{s}", "s := 0, for(i, 1, 5000){s := s + 3}{s}",
        "s := 0, for(i, 1, 5000){s := s + i, t := s}{t}",
        "i := 0, s := 0, while(i < 5000){s := s + i, i := i + 1}{s}",
        "for(i, 1, 5000){for(j, 1, 3){s := i * j}}"}) {
    CheckBothWays(loop);
    for (int interrupt = 0; interrupt < 7; ++interrupt) CheckBothWays(loop, 0, interrupt);
  }
}

TEST(Passes, Do_what_the_walk_does) {
  for (const char* const loop : {
           "s := 0, for(i, 2147483640, 2147483647){s := s + i}{s}",
           "s := 0.5, for(i, -3, 3){s := s + i}{s}",
           "s := 0, c := 0.5, for(i, 1, 9){s := s + c}{s}",
           "s := 2147483647, c := 2147483647, for(i, 1, 9){s := s + c}{s}",
           "s := 1, for(i, 1, 9){s := s + s}{s}",
           "s := 0.5, for(i, 1, 9){i := i + s}{i}",
           "for(i, 1, 9){i := i + 1}{i}",
           "for(i, 1, 9){i := i + i}{i}",
           "for(i, 1, 9){s := s + i}{s}",
           "for(i, 1, 9){s := i}{s}",
           "s := \"\", for(i, 1, 9){s := s + \"x\", t := i}{s + STR t}",
           "s := 2cm, for(i, 1, 9){s := s + 1cm}{s}",
           "s := 2s, for(i, 1, 9){s := s + 1s, t := s}{t}",
           "s := 0, for(i, 1, 9){t := s, s := s + missing}{s}",
           "s := 0, for(i, 5, 1){s := s + i}{i}",
           "s := 0, for(i, -5, 5){s := s + 1 / i}{s}",
           "a := {1, 2, 3}, s := 0, for(i, 0, 9){s := s + a[i]}{s}",
           "a := {1, \"x\", 2.5}, for(i, 0, 2){s := a[i]}{s}",
           "a := {1, 2}, for(i, 0, 2){a := 5}{a}",
           "s := object(), for(i, 0, 20){s := i}{s}",
           "v := {}, for(i, 1, 20){aappend(v, i)}{v}",
           "v := {}, for(i, 1, 9){aappend(v, \"text \"), aappend(v, i / 2)}{v}",
           "v := {1}, for(i, 1, 20){aappend(v, v[i - 1] + i)}{v}",
           "v := {\"long enough a text\"}, for(i, 0, 40){aappend(v, v[i])}{v}",
           "v := {1, 2}, w := v, for(i, 1, 5){aappend(v, i)}, {v, w}",
           "v := {1, 2}, for(i, 1, 5){aappend(v, v)}{v}",
           "v := {1}, for(i, 1, 9){aappend(v, cond(i = 5, {i}, i))}{v}",
           "v := {1}, for(i, 1, 9){aappend(v, m[i])}{v}",
           "v := {1: 2}, for(i, 1, 9){aappend(v, i)}{v}",
           "for(i, 1, 9){aappend(v, i)}{v}",
           "v := 5, for(i, 1, 9){aappend(v, i)}{v}",
           "v := {}, for(v, 1, 9){aappend(v, 1)}{v}",
           "v := {}, i := 0, while(i < 9){i := i + 1, aappend(v, i)}{v}",
           "v := {}, for(i, 1, 30){v := cond(i = 20, 7, v), aappend(v, i)}{v}",
           "s := \"\", for(i, 1, 40){s := s + \"ab\"}{s}",
           "s := \"a\", for(i, 1, 9){s := s + s}{s}",
           "s := \"a\", t := \"b\", u := s, for(i, 1, 9){s := s + t, t := cond(i = 5, 1, t)}, s + "
           "u",
           "s := \"a\", t := \"b\", u := s, for(i, 1, 9){s := s + t}, s + u",
           "s := \"a\", for(i, 1, 9){s := s + i}{s}",
           "s := \"a\", for(i, 1, 20){s := s + missing}{s}",
           "s := \"a\", i := 0, while(i < 20){i := i + 1, s := s + \"-\"}{s}",
           "i := 0, while(i < 9){i := i + 1}{i}",
           "i := 0.0, while(i < 9){i := i + 0.5}{i}",
           "i := 9, while(i){i := i - 1}{i}",
           "i := 9.0, while(i){i := i - 1}{i}",
           "i := 0, while(i < 9){i := i + 1, s := s + i}{s}",
           "i := 0, while(i < 9){i := cond(i > 5, \"x\", i + 1)}{i}",
           "i := 0, while(cond(i < 9, 1, i = 9, 0, 1)){i := i + 1}{i}",
           "g := lambda(n, (s := 0, for(i, 1, n){s := s + i}{s})), g(5) + g(7)",
           "g := lambda(n, (s := 0, while(n > 0){s := s + n, n := n - 1}{s})), g(5) + g(7)",
           "g := lambda(n, (for(i, 1, 3){s := n + i}, cond(n > 0, g(n - 1) + s, s))), g(4)",
           "g := lambda(n, for(i, 1, 3){t := cond(n > 0 AND i = 2, n, i)}{t}), g(1), g(0)",
       }) {
    CheckBothWays(loop);
    CheckBothWays("(" + std::string(loop) + "), " + loop);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(Passes, A_variable_that_is_a_reference_is_stored_into_where_it_refers_to) {
  for (const bool walk : {true, false}) {
    const UseOfPrograms use(!walk);
    IxoMepValue outside(10);
    IxoMepValueSet scope;
    scope.OldSetValue("w", IxoMepValue(&outside), true);
    scope.OldSetValue("s", IxoMepValue(0), true);
    EXPECT_EQ(Shown("for(i, 1, 20){s := s + w, w := w + i}{s}", &scope), "real 1530.0") << walk;
    EXPECT_EQ(ShownValue(outside), "real 220.0") << walk;
    EXPECT_EQ(Shown("for(w, 1, 20){s := w}{s}", &scope), "integer 20") << walk;
    EXPECT_EQ(ShownValue(outside), "integer 20") << walk;
  }
}

}  // namespace
}  // namespace ixomep::test
