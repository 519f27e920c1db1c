// Quick lambdas against the plain walk: a lambda that calls itself gives the same code, message,
// value and steps, whatever its arguments and the variables that it reads are.
#include "ixomep/expr/program_quick_lambda.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/limits.h"
#include "tests/support/random_expressions.h"

namespace ixomep::test {
namespace {

// A lambda f of up to three parameters that comes to an end, and calls of it.
class Recursions {
 public:
  explicit Recursions(std::uint32_t seed) : random_(seed), parameters_(1 + Below(3)) {}

  std::string Lambda() {
    std::string text = "f := lambda(";
    for (int i = 0; i < parameters_; ++i) text += std::string(kParameters[i]) + ", ";
    std::string choices = "p " + Pick({"<", "<=", "<"}) + Pick({" 1", " 0", " i"}) + ", ";
    may_call_ = false;
    choices += Value(1);
    may_call_ = true;
    if (Below(3) == 0) choices += ", p " + Pick({"=", ">", "!="}) + " 2, " + Value(2);
    return text + "cond(" + choices + ", " + Value(2 + Below(2)) + "))";
  }
  std::string Use() {
    std::string text = "f(" + Argument();
    for (int i = 1; i < parameters_; ++i) text += ", " + Argument();
    text += ")";
    return Below(4) == 0 ? text + Pick({" + ", " * ", " < "}) + text : text;
  }
  IxoMepValue Variable() {
    switch (Below(9)) {
      case 0:
        return IxoMepValue("text");
      case 1:
        return IxoMepValue(0.5);
      case 2:
        return IxoMepValue();
      case 3:
        return ValueOf("{1, 2.5, 3, \"k\"}");
      case 4:
        return ValueOf("{1: 2, 0.5: 7, 2: \"two\"}");
      case 5:
        return ValueOf("lambda(z, 1)");
      default:
        return IxoMepValue(Below(4) - 1);
    }
  }
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
  std::string Pick(const std::vector<const char*>& choices) {
    return choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))];
  }

 private:
  static constexpr const char* kParameters[] = {"p", "q", "r"};

  std::string Argument() {
    return Pick({"0", "1", "2", "3", "4", "3", "2.5", "-1", "-2147483647", "i", "x", "\"s\"", "1cm",
                 "a", "missing", "f(1)", "STR 3"});
  }
  std::string Parameter() { return kParameters[Below(parameters_)]; }
  std::string Value(int depth) {
    if (depth == 0) {
      return Below(2) == 0 ? Parameter() : Pick({"i", "x", "a[0]", "1", "0.25", "2", "\"t\"", "x"});
    }
    switch (Below(9)) {
      case 0:
        return Pick({"-(", "NOT (", "REAL ("}) + Value(depth - 1) + ")";
      case 1:
        return Pick({"a", "a", "x"}) + "[" + Value(depth - 1) + "]";
      case 2:
        return "cond(" + Value(depth - 1) + ", " + Value(depth - 1) + ", " + Value(depth - 1) + ")";
      case 3:
      case 4:
      case 5: {
        if (!may_call_) return Value(0);
        std::string text = Pick({"f(p - 1", "f(p - 1", "f(p + -2", "f(-(2 - p)"});
        for (int i = 1; i < parameters_; ++i) text += ", " + Value(depth - 1);
        return text + ")";
      }
      default:
        return "(" + Value(depth - 1) + ")" +
               Pick({" + ", " + ", " - ", " * ", " / ", " MOD ", " < ", " = ", " OR "}) + "(" +
               Value(depth - 1) + ")";
    }
  }

  std::mt19937 random_;
  int parameters_;
  bool may_call_ = true;
};

// All that some evaluations of one object leave behind. The same seed changes the same variables.
std::string Traced(const std::string& lambda, const std::string& use, bool walk,
                   std::uint64_t steps, std::uint32_t seed, int times = 5) {
  const UseOfPrograms programs(!walk);
  const ScopedLimits limits(IxoLimits{.steps = steps});
  Recursions random(seed);
  IxoMepValueSet scope;
  IxoMepExpressionParser parser;
  String text;
  // Before the variables are there, so that none is captured.
  std::string trace = Eval(lambda, &scope).ShownWithText();
  EXPECT_EQ(parser.SetExpression(String(use), text), IMEPERR_NONE) << use;
  for (const char* const name : {"i", "x", "a"}) {
    scope.OldSetValue(name, name[0] == 'a' ? ValueOf("{1, 2.5, 3}") : IxoMepValue(1), true);
  }
  for (int time = 0; time < times; ++time) {
    const bool strict = random.Below(5) == 0;
    IxoMepValue* slot = random.Below(2) == 0 ? nullptr : new IxoMepValue("slot");
    text = "before";
    const IxoMepErrorEnum code = parser.Evaluate(&scope, slot, text, strict, random.Below(3) == 0);
    const ValuePtr owner(slot);
    trace += "\n" + std::to_string(code) + " \"" + std::string(text.view()) + "\" " +
             ShownValue(slot) + " depth " + std::to_string(IxoMepExprNode::m_nCallDepth);
    if (random.Below(2) == 0) {
      scope.OldSetValue(random.Pick({"i", "x", "a"}).c_str(), random.Variable(), true);
    }
  }
  return trace;
}

void CheckBothWays(const std::string& lambda, const std::string& use, std::uint64_t steps = 0,
                   std::uint32_t seed = 1) {
  ASSERT_EQ(Traced(lambda, use, true, steps, seed), Traced(lambda, use, false, steps, seed))
      << lambda << "\n"
      << use << "\nsteps " << steps << ", seed " << seed;
}

// The quick form of the lambda in that variable; null when it has none.
QuickLambda* QuickFormOf(const IxoMepValueSet& scope, const char* name) {
  const IxoMepExprNode* const lambda = Variable(scope, name)->GetLambda();
  ProgramFor(*lambda);
  const Program* const program = ProgramFor(*lambda);
  return program != nullptr ? program->quick_lambda : nullptr;
}

TEST(QuickLambda, Random_recursions_give_what_the_walk_gives) {
  const char* const given = std::getenv("MEP_TEST_ROUNDS");  // for a longer run by hand
  const int rounds = given != nullptr ? std::atoi(given) : 1500;
  const std::uint32_t seed = RandomSeed(rounds);
  int are_quick = 0;
  for (int round = 0; round < rounds && !testing::Test::HasFatalFailure(); ++round) {
    const std::uint32_t here = seed + static_cast<std::uint32_t>(round);
    Recursions random(here);
    const std::string lambda = random.Lambda();
    const std::string use = random.Use();
    CheckBothWays(lambda, use, 3000, here);  // some of them would run for very long
    CheckBothWays(lambda, use, 1 + static_cast<std::uint64_t>(random.Below(40)), here);
    IxoMepValueSet scope;
    Eval(lambda, &scope);
    are_quick += QuickFormOf(scope, "f") != nullptr ? 1 : 0;
  }
  EXPECT_GT(are_quick, rounds * 3 / 4);
}

TEST(QuickLambda, Exists_for_quiet_bodies_of_some_size_that_call_nothing_but_the_lambda) {
  for (const char* const quick :
       {"lambda(n, cond(n < 2, n, f(n - 1) + f(n - 2)))", "lambda(n, n * n * n + n / 2 - n)",
        "lambda(m, n, cond(m = 0, n + 1, f(m - 1, f(m, n - 1))))", "lambda(n, f(a[f(n)]))",
        "lambda(p, q, r, s, f(s, r, q, p))"}) {
    IxoMepValueSet scope;
    Eval("f := " + std::string(quick), &scope);
    EXPECT_NE(QuickFormOf(scope, "f"), nullptr) << quick;
  }
  for (const char* const other :
       {"lambda(1)", "lambda(n, n * n)", "lambda(n, (n := 1))", "lambda(n, f(n) + g(n))",
        "lambda(n, f())", "lambda(n, f(n, n))", "lambda(n, n(1))", "lambda(n, abs(n))",
        "lambda(n, STR n)", "lambda(n, curlineno(n))", "lambda(p, q, r, s, t, p)",
        "lambda(n, f(n)(n))"}) {
    IxoMepValueSet scope;
    Eval("f := " + std::string(other), &scope);
    EXPECT_EQ(QuickFormOf(scope, "f"), nullptr) << other;
  }
}

TEST(QuickLambda, Ends_as_the_walk_does_at_every_number_of_steps) {
  const std::string fib = "f := lambda(n, cond(n < 2, n, f(n - 1) + f(n - 2)))";
  for (std::uint64_t steps = 1; steps < 60; ++steps) CheckBothWays(fib, "f(7)", steps);
}

// The last of thousands of calls gives a text, which is no number to add.
TEST(QuickLambda, Steps_of_a_call_that_gave_up_are_given_back) {
  const std::string lambda =
      "f := lambda(n, cond(n < 0, \"x\", n < 1, 0, n < 11, f(n - 1) + f(n - 1), "
      "f(n - 1) + f(n - 1) + f(-1)))";
  EXPECT_NE(Traced(lambda, "f(11)", true, 4096, 1, 1), Traced(lambda, "f(11)", true, 4097, 1, 1));
  for (std::uint64_t steps = 4090; steps < 4102; ++steps) {
    const auto traced = [&](bool walk) { return Traced(lambda, "f(11)", walk, steps, 1, 3); };
    EXPECT_EQ(traced(true), traced(false)) << steps;
  }
}

TEST(QuickLambda, Asks_the_host_as_often_as_the_walk_and_stops_where_it_does) {
  const auto traced = [](bool walk, int interrupt) {
    const UseOfPrograms programs(!walk);
    IxoMepValueSet scope;
    Eval("f := lambda(n, cond(n < 2, n, f(n - 1) + f(n - 2)))", &scope);
    Eval("f(3)", &scope);
    InterruptingHost host(interrupt);
    const Outcome outcome = Eval("f(18)", &scope);
    return outcome.ShownWithText() + ", asked " + std::to_string(host.asked);
  };
  EXPECT_TRUE(traced(false, InterruptingHost::kNever).starts_with("integer 2584"));
  EXPECT_EQ(traced(true, InterruptingHost::kNever), traced(false, InterruptingHost::kNever));
  for (int interrupt = 0; interrupt < 8; ++interrupt) {
    EXPECT_EQ(traced(true, interrupt), traced(false, interrupt)) << interrupt;
  }
}

TEST(QuickLambda, The_host_may_evaluate_calls_of_the_same_lambda_when_it_is_asked) {
  class Asking : public InterruptingHost {
   public:
    Asking(IxoMepValueSet& scope, IxoMepValueSet& elsewhere)
        : InterruptingHost(kNever), scope_(scope), elsewhere_(elsewhere) {}
    bool IsInterruptRequested() noexcept override {
      EXPECT_EQ(Shown("f(9)", &scope_), "integer 34");
      EXPECT_EQ(Shown("fresh := other", &elsewhere_), "integer 1");
      return InterruptingHost::IsInterruptRequested();
    }

   private:
    IxoMepValueSet& scope_;
    IxoMepValueSet& elsewhere_;
  };
  IxoMepValueSet scope, elsewhere;
  Eval("f := lambda(n, cond(n < 2, n, f(n - 1) + f(n - 2)))", &scope);
  Eval("f(3) + f(4)", &scope);
  Eval("f := 5, other := 1", &elsewhere);
  ASSERT_NE(QuickFormOf(scope, "f"), nullptr);
  Asking host(scope, elsewhere);
  for (int time = 0; time < 3; ++time) EXPECT_EQ(Shown("f(18)", &scope), "integer 2584");
  EXPECT_GT(host.asked, 9);
}

TEST(QuickLambda, Levels_beyond_what_the_host_allows_fail) {
  for (const std::int32_t depth : {1, 2, 5, 30}) {
    for (const int calls : {1, 2, 3, 5, 6, 7, 29, 30, 31, 32}) {
      const auto traced = [&](bool walk) {
        const UseOfPrograms programs(!walk);
        IxoMepValueSet scope;
        Eval("f := lambda(n, cond(n < 2, n, 1 + f(n - 1)))", &scope);
        Eval("f(2)", &scope);
        const ScopedLimits limits(IxoLimits{.depth = depth});
        std::string trace;
        for (int time = 0; time < 3; ++time) {
          trace += Eval("f(" + std::to_string(calls) + ")", &scope).ShownWithText() + "\n";
        }
        return trace;
      };
      EXPECT_EQ(traced(true), traced(false)) << depth << ", " << calls;
    }
  }
}

TEST(QuickLambda, A_recursion_without_an_end_fails_and_one_that_is_deep_goes_on) {
  IxoMepValueSet scope;
  Eval("f := lambda(n, f(n + 1) + f(n + 1)), d := lambda(n, cond(n < 1, 0, 1 + d(n - 1)))", &scope);
  for (int time = 0; time < 3; ++time) {
    EXPECT_EQ(Shown("f(1)", &scope), "error 38");
    EXPECT_EQ(Shown("d(2000)", &scope), "integer 2000");
  }
  ASSERT_NE(QuickFormOf(scope, "f"), nullptr);
  // More arguments than there is room for.
  for (int time = 0; time < 3; ++time) {
    const std::string shown = Shown("d(20000)", &scope);
    EXPECT_TRUE(shown == "integer 20000" || shown == "error 38") << shown;
  }
}

TEST(QuickLambda, A_name_means_what_the_callers_of_the_lambda_see) {
  for (const bool walk : {true, false}) {
    const UseOfPrograms programs(!walk);
    IxoMepValueSet scope;
    // In g the name k is its parameter, and f is another lambda in h. None is captured.
    Eval("h := lambda(f, g(5) + f(1)), g := lambda(k, f(2))", &scope);
    Eval("f := lambda(n, cond(n < 1, k, f(n - 1))), k := 1", &scope);
    for (int time = 0; time < 4; ++time) {
      EXPECT_EQ(Shown("f(3)", &scope), "integer 1") << walk;
      EXPECT_EQ(Shown("g(7) + g(0.5)", &scope), "real 7.5") << walk;
      EXPECT_EQ(Shown("for(z, 1, 4){g(7)}{g(7) + g(z)}", &scope), "integer 11") << walk;
      EXPECT_EQ(Shown("h(lambda(n, n * 100))", &scope), "integer 300") << walk;
    }
    Eval("e := f, f := lambda(n, n * 1000)", &scope);
    for (int time = 0; time < 4; ++time) {
      EXPECT_EQ(Shown("e(2) + e(0)", &scope), "integer 1001") << walk;
    }
  }
}

TEST(QuickLambda, A_result_that_is_no_number_is_a_copy) {
  IxoMepValueSet scope;
  Eval("f := lambda(n, cond(n < 0, a[0], n < 1, t, f(n - 1)))", &scope);
  Eval("t := \"a text of some length\", a := {{1, 2}}", &scope);
  for (int time = 0; time < 4; ++time) {
    EXPECT_EQ(Shown("f(2)", &scope), "string \"a text of some length\"");
    EXPECT_EQ(Shown("t := f(2) + \"!\", t := \"a text of some length\", f(1)", &scope),
              "string \"a text of some length\"");
    EXPECT_EQ(Shown("b := f(-1), aappend(b, 3), a[0]", &scope), "array {1, 2}");
  }
}

}  // namespace
}  // namespace ixomep::test
