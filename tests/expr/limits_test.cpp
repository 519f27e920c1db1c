// The limits of a host: what a step is, that the walk of the tree and side programs count alike,
// how each limit ends an evaluation, and that the engine is as before afterwards.
#include "ixomep/host/limits.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "ixomep/expr/program.h"
#include "ixomep/host/limit_watch.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/limits.h"

namespace ixomep::test {
namespace {

constexpr std::string_view kInterrupted = "error 38: The evaluation is interrupted.";

std::string StepsExceeded(std::uint64_t steps) {
  return "error 38: The limit of " + std::to_string(steps) + " steps is exceeded.";
}

// Functions of a host: hten() is 10, heval(text) evaluates the text in the caller's scope,
// hswallow(text) does and hides its failure.
class Host : public IxoMepExpressionParser {
 public:
  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* scope,
                                       const String& name, IxoMepValue*& result, String& text,
                                       bool strict) const override {
    if (name == "hten") {
      IxoMepValue::Assign(result, 10);
      return IMEPERR_NONE;
    }
    if (name == "heval" || name == "hswallow") {
      IxoMepValue* argument = nullptr;
      IxoMepErrorEnum code = call->GetParamResult(this, scope, argument, text, strict);
      const ValuePtr owner(argument);
      if (code != IMEPERR_NONE) return code;
      Host other;
      code = other.SetExpression(argument->GetStr(), text);
      if (code == IMEPERR_NONE) code = other.Evaluate(scope, result, text, strict, false);
      if (name == "heval" || code == IMEPERR_NONE) return code;
      IxoMepValue::Assign(result, -1);
      return IMEPERR_NONE;
    }
    return IxoMepExpressionParser::EvaluateFunctionCall(call, scope, name, result, text, strict);
  }
  IxoMepExpressionParser* CreateCopy() const override { return new Host(*this); }
};

enum class Way { Walked, ByProgram };

// Twice over, so that lambdas have programs too.
std::string ShownIn(Way way, std::string_view text) {
  const UseOfPrograms use(way == Way::ByProgram);
  Host host;
  std::string shown;
  for (int i = 0; i < 2; ++i) {
    IxoMepValueSet scope;
    shown = EvalWith(host, text, &scope).ShownWithText();
  }
  return shown;
}

struct StepRow {
  const char* text;
  std::uint64_t steps;
  const char* value;
};

// One for the evaluation itself in each row.
constexpr StepRow kSteps[] = {
    {"1 + 2 * 3", 1, "integer 7"},
    {"n := 0, while(n < 5){n := n + 1}{n}", 1 + 5, "integer 5"},
    {"while(0, 1, 2)", 1, "integer 2"},
    {"for(i, 1, 7, 0, i)", 1 + 7, "integer 7"},
    {"for(i, 7, 1, 0, 3)", 1, "integer 3"},
    {"s := 0, for(i, 1, 3){for(j, 1, 4){s := s + 1}}{s}", 1 + 3 + 3 * 4, "integer 12"},
    {"n := 0, while(n < 3){n := n + 1, for(j, 1, 4, 0)}{n}", 1 + 3 + 3 * 4, "integer 3"},
    {"n := 0, while(n < 3){n := n + 1, while(0, 1)}{n}", 1 + 3, "integer 3"},
    {"f := lambda(x, x), n := 0, while(n < 3){n := n + f(1)}{n}", 1 + 3 + 3, "integer 3"},
    {"s := \"\", fortok(t, \"a b c\", \" \"){s := s + t}{s}", 1 + 3, "string \"abc\""},
    {"f := lambda(x, x + 1), f(1) + f(2)", 1 + 2, "integer 5"},
    {"f := lambda(1), f()", 1 + 1, "integer 1"},
    {"f := lambda(a, b, c, d, e, a + e), f(1, 2, 3, 4, 5)", 1 + 1, "integer 6"},
    {"f := lambda(n, cond(n < 2, n, f(n - 1) + f(n - 2))), f(5)", 1 + 15, "integer 5"},
    {"f := lambda(x, (y := x)), for(i, 1, 4){f(i)}{f(1)}", 1 + 4 + 5, "integer 1"},
    {"lambda(x, x)(5)", 1 + 1, "integer 5"},
    {"hten()", 1 + 1, "integer 10"},
    {"for(i, 1, 4){hten()}{hten()}", 1 + 4 + 5, "integer 10"},
    {"eval(\"1 + 1\")", 1 + 1, "integer 2"},
    {"e := parse(\"1 + 1\"), for(i, 1, 3){eval(e)}{0}", 1 + 3 + 3, "integer 0"},
    {"heval(\"for(i, 1, 3, 0, i)\")", 1 + 1 + 1 + 3, "integer 3"},
    {"n := 3, while(n){n := n - 1}{n}", 1 + 3, "integer 0"},
    {"try(for(i, 1, 3, 0, 1 / 0), 5)", 1 + 3, "integer 5"},
    {"f := lambda(n, for(i, 1, 10, 1 / (3 - i), 0)), try(f(1), 0), for(i, 1, 4, 0, i)",
     1 + 1 + 3 + 4, "integer 4"},
    {"f := lambda(k, while(1 / (3 - k), (k := k + 1), 0)), try(f(0), 0), for(i, 1, 4, 0, i)",
     1 + 1 + 3 + 4, "integer 4"},
    {"f := lambda(k, while(1, (k := 1 / (3 - k) + k), 0)), try(f(2), 0), for(i, 1, 4, 0, i)",
     1 + 1 + 2 + 4, "integer 4"},
    {"f := lambda(n, for(i, 1, n, lambda(x, x)(i), 9)), f(5)", 1 + 1 + 5 + 5, "integer 9"},
    {"a := {3, 1, 2}, a.sort(), a[0]", 1, "integer 1"},
    {"a := {3, 1, 2}, a.sort(lambda(x, y, x < y)), a[0]", 1 + 3, "integer 1"},
    {"a := {2, 1}, a.sort(lambda(x, y, (hten() > 0) AND x < y)), a[0]", 1 + 2 + 2, "integer 1"},
};

TEST(Limits, Each_kind_of_step_counts_alike_in_walks_and_in_side_programs) {
  for (const StepRow& row : kSteps) {
    for (const Way way : {Way::Walked, Way::ByProgram}) {
      SCOPED_TRACE(std::string(row.text) + (way == Way::Walked ? " walked" : " by program"));
      {
        const ScopedLimits limits({.steps = row.steps});
        EXPECT_EQ(ShownIn(way, row.text), row.value);
      }
      if (row.steps == 1) continue;
      const ScopedLimits limits({.steps = row.steps - 1});
      EXPECT_EQ(ShownIn(way, row.text), StepsExceeded(row.steps - 1));
    }
  }
}

TEST(Limits, Nothing_is_limited_at_the_start) {
  const IxoLimits limits = IxoHost::GetLimits();
  EXPECT_EQ(limits.steps, 0u);
  EXPECT_EQ(limits.memory, 0u);
  EXPECT_EQ(limits.depth, 0);
  for (const Way way : {Way::Walked, Way::ByProgram}) {
    EXPECT_EQ(ShownIn(way, "n := 0, for(i, 1, 20000){n := n + 1}{n}"), "integer 20000");
  }
}

TEST(Limits, What_is_set_is_given_back) {
  const ScopedLimits scoped({.steps = 5, .memory = std::size_t{1} << 40, .depth = 7});
  const IxoLimits limits = IxoHost::GetLimits();
  EXPECT_EQ(limits.steps, 5u);
  EXPECT_EQ(limits.memory, std::size_t{1} << 40);
  EXPECT_EQ(limits.depth, 7);
}

TEST(Limits, The_count_of_steps_begins_anew_with_each_outermost_evaluation) {
  for (const Way way : {Way::Walked, Way::ByProgram}) {
    const ScopedLimits limits({.steps = 5000});
    for (int i = 0; i < 4; ++i) EXPECT_EQ(ShownIn(way, "for(i, 1, 4000, 0, i)"), "integer 4000");
    EXPECT_EQ(ShownIn(way, "while(1, 0)"), StepsExceeded(5000));
    EXPECT_EQ(ShownIn(way, "for(i, 1, 4999, 0, i)"), "integer 4999");
    EXPECT_EQ(ShownIn(way, "for(i, 1, 5000, 0, i)"), StepsExceeded(5000));
  }
}

TEST(Limits, Evaluations_inside_each_other_share_the_steps) {
  for (const Way way : {Way::Walked, Way::ByProgram}) {
    const ScopedLimits limits({.steps = 100});
    EXPECT_EQ(ShownIn(way, "for(k, 1, 3){heval(\"for(i, 1, 40, 0, i)\")}{0}"), StepsExceeded(100));
    EXPECT_EQ(ShownIn(way, "for(k, 1, 3){eval(\"for(i, 1, 40, 0, i)\")}{0}"), StepsExceeded(100));
    EXPECT_EQ(ShownIn(way, "f := lambda(heval(\"f()\")), f()"), StepsExceeded(100));
  }
}

TEST(Limits, Neither_try_nor_a_function_of_the_host_hides_that_a_limit_is_exceeded) {
  for (const Way way : {Way::Walked, Way::ByProgram}) {
    const ScopedLimits limits({.steps = 100});
    EXPECT_EQ(ShownIn(way, "try(while(1, 0), 5)"), StepsExceeded(100));
    EXPECT_EQ(ShownIn(way, "while(1, try(while(1, 0), 0))"), StepsExceeded(100));
    EXPECT_EQ(ShownIn(way, "hswallow(\"while(1, 0)\")"), StepsExceeded(100));
    EXPECT_EQ(ShownIn(way, "x := hswallow(\"while(1, 0)\"), 1 / 0"), StepsExceeded(100));
  }
}

TEST(Limits, A_failure_before_the_limit_keeps_its_own_code) {
  const ScopedLimits limits({.steps = 100});
  EXPECT_EQ(Eval("1 / 0").Shown(), "error 18");
  EXPECT_EQ(Eval("try(1 / 0, 5)").Shown(), "integer 5");
}

TEST(Limits, Assignments_and_lent_places_are_under_the_limits) {
  const ScopedLimits limits({.steps = 10});
  IxoMepExpressionParser place;
  String text;
  ASSERT_EQ(place.SetExpression("a[while(1, 0)]", text), IMEPERR_NONE);
  IxoMepValueSet scope;
  scope.OldSetValue("a", ValueOf("{1, 2}"), true);
  IxoMepValue value(5);
  EXPECT_EQ(place.AssignToLValue(&value, &scope, text), IMEPERR_TOO_DEEP);
  EXPECT_EQ(std::string(text.view()), "The limit of 10 steps is exceeded.");
  IxoMepValue* lent = nullptr;
  text.Clear();
  EXPECT_EQ(place.GetTree()->EvaluateLValue(&place, &scope, lent, text), IMEPERR_TOO_DEEP);
  EXPECT_EQ(std::string(text.view()), "The limit of 10 steps is exceeded.");
  EXPECT_EQ(lent, nullptr);
  IxoMepValue* result = nullptr;
  EXPECT_EQ(place.GetTree()->Evaluate(&place, &scope, result, text, false), IMEPERR_TOO_DEEP);
  EXPECT_EQ(Eval("1 + 1").Shown(), "integer 2");
}

TEST(Limits, A_sort_that_the_host_begins_is_one_evaluation) {
  const ScopedLimits limits({.steps = 10});
  IxoMepValue array = ValueOf("{9, 8, 7, 6, 5, 4, 3, 2, 1}");
  IxoMepValue lambda = ValueOf("lambda(x, y, NOT (x >= y))");
  IxoMepValue* result = nullptr;
  String text;
  EXPECT_EQ(array.EvaluateMethodCall(Intern("sort"), {&lambda}, result, text, false), 38);
  EXPECT_EQ(std::string(text.view()), "The limit of 10 steps is exceeded.");
}

// --- Interruption -------------------------------------------------------------------------------

TEST(Limits, An_interrupt_ends_every_spelling_of_an_endless_loop) {
  constexpr const char* kEndless[] = {
      "while(1, 0)",
      "while(1){0}",
      "f := lambda(1), while(f(), 0)",
      "for(i, 1, 2147483647, 0)",
      "for(i, -2147483647, 2147483647){for(j, 1, 2147483647){0}}",
      "s := 0, for(i, 1, 2147483647){s := s + 1.5}",
      "while(1, try(while(1, 0), 0))",
      "while(1, hten())",
      "heval(\"while(1, 0)\")",
      "eval(\"while(1, 0)\")",
      "f := lambda(x, cond(x > 2000000000, 1, 0)), while(NOT f(1), 0)",
      "l := lambda(n, cond(n, 0, 0)), while(1, l(1))",
      "fortok(t, \"a b\", \" \", while(1, 0))",
      "a := {1, 2}, a.sort(lambda(x, y, while(1, 0)))",
      "f := lambda(n, cond(n < 2, n, f(n - 1) + f(n - 2))), f(90)",
  };
  for (const char* const text : kEndless) {
    for (const Way way : {Way::Walked, Way::ByProgram}) {
      SCOPED_TRACE(text);
      InterruptingHost host(3);
      EXPECT_EQ(ShownIn(way, text), kInterrupted);
    }
  }
}

// Also when what was computed meanwhile looks like a result.
TEST(Limits, Nothing_is_stored_once_a_limit_was_exceeded) {
  constexpr const char* kStores[] = {
      "x := hswallow(\"while(1, 0)\")",
      "x := 1 + hswallow(\"while(1, 0)\")",
      "x := try(hswallow(\"while(1, 0)\"), 2)",
      "x := {hswallow(\"while(1, 0)\")}",
      "set(x, hswallow(\"while(1, 0)\"))",
      "v[0] := hswallow(\"while(1, 0)\")",
      "aappend(v, hswallow(\"while(1, 0)\"))",
      "for(i, 1, 3){x := hswallow(\"while(1, 0)\")}",
      "x := x + hswallow(\"while(1, 0)\")",
      "f := lambda(p, (x := p)), f(hswallow(\"while(1, 0)\"))",
  };
  const ScopedLimits limits(IxoLimits{.steps = 30});
  for (const char* const text : kStores) {
    for (const Way way : {Way::Walked, Way::ByProgram}) {
      SCOPED_TRACE(text);
      const UseOfPrograms use(way == Way::ByProgram);
      IxoMepValueSet scope;
      Eval("x := 0, v := {0}", &scope);
      Host host;
      String message;
      ASSERT_EQ(host.SetExpression(String(text), message), IMEPERR_NONE);
      for (int time = 1; time <= 3; ++time) {
        IxoMepValue* slot = nullptr;
        EXPECT_EQ(host.Evaluate(&scope, slot, message, false, false), IMEPERR_TOO_DEEP);
        EXPECT_EQ(slot, nullptr);
        EXPECT_EQ(ShownVariable(scope, "x"), "integer 0");
        EXPECT_EQ(ShownVariable(scope, "v"), "array {0}");
      }
    }
  }
}

TEST(Limits, A_text_that_an_interruption_cut_short_is_not_stored) {
  IxoMepValueSet scope;
  Eval("x := 0, a := {}, for(i, 1, 20000, aappend(a, i)), v := {0}", &scope);
  for (const char* const text : {"x := STR a", "x := LEN STR a", "x := \"-\" + STR a + \"-\"",
                                 "set(x, STR a)", "aappend(v, STR a)", "v[0] := STR a",
                                 "for(i, 1, 2){x := STR a}", "s := \"\", s := s + STR a, x := s"}) {
    for (const Way way : {Way::Walked, Way::ByProgram}) {
      SCOPED_TRACE(text);
      const UseOfPrograms use(way == Way::ByProgram);
      IxoMepExpressionParser parser;
      String message;
      ASSERT_EQ(parser.SetExpression(String(text), message), IMEPERR_NONE);
      for (int time = 1; time <= 3; ++time) {
        InterruptingHost host(1);
        IxoMepValue* slot = nullptr;
        EXPECT_EQ(parser.Evaluate(&scope, slot, message, false, false), IMEPERR_TOO_DEEP);
        EXPECT_EQ(ShownVariable(scope, "x"), "integer 0");
        EXPECT_EQ(ShownVariable(scope, "v"), "array {0}");
      }
    }
  }
}

TEST(Limits, The_host_is_asked_at_the_latest_after_4096_steps) {
  for (const Way way : {Way::Walked, Way::ByProgram}) {
    InterruptingHost host(InterruptingHost::kNever);
    ShownIn(way, "0");
    const int before = host.asked;
    ShownIn(way, "for(i, 1, 40960, 0)");
    EXPECT_GE(host.asked - before, 2 * 10);
  }
}

TEST(Limits, The_host_is_asked_when_an_outermost_evaluation_begins) {
  InterruptingHost host(0);
  EXPECT_EQ(Eval("1 + 1").ShownWithText(), kInterrupted);
  host.answers_yes_after = InterruptingHost::kNever;
  EXPECT_EQ(Eval("1 + 1").ShownWithText(), "integer 2");
}

TEST(Limits, Long_work_of_built_in_functions_is_interrupted) {
  constexpr const char* kLong[] = {
      "tokcnt(tokunion(t, t))",
      "tokcnt(tokdiff(t, \"b\"))",
      "LEN strarray(t)",
      "tokstr(a)",
      "LEN array(100000)",
      "a.sort()",
      "a.sort(lambda(x, y, x > y))",
      "s.sort()",
      "LEN replall(t, \"a \", \"b\")",
      "token(t, 19999)",
      "tokindex(t, \"b\")",
      "LEN t.without(\"a\")",
      "LEN STR a",
      "LEN valtokstr({a})",
      "LEN tourlquerystring(m)",
      "map().insertAllFrom(m)",
      "LEN parse(\"0\" + \" + 1\" * 200000)",
      "regex(\"(a|b|ab)*c[yz]\", \"ab\" * 1000 + \"cx\")",
  };
  IxoMepValueSet scope;
  Eval(
      "t := \"a \" * 20000, a := {}, s := {}, "
      "for(i, 1, 20000){aappend(a, i * 7919 MOD 10007), aappend(s, STR i)}, "
      "m := map(), for(i, 1, 5000){m[i] := i}",
      &scope);
  for (const char* const text : kLong) {
    SCOPED_TRACE(text);
    {
      InterruptingHost host(1);
      EXPECT_EQ(Eval(text, &scope).ShownWithText(), kInterrupted);
    }
    EXPECT_EQ(Eval("LEN a", &scope).Shown(), "integer 20000");
  }
}

// The text is not there, and nothing is thrown at who asks for it; the evaluation ends all the
// same.
TEST(Limits, A_function_of_the_host_that_asks_for_a_long_text_is_not_left_by_an_exception) {
  class Asking : public IxoMepExpressionParser {
   public:
    IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode*, IxoMepValueSet* scope,
                                         const String&, IxoMepValue*& result, String&,
                                         bool) const override {
      length = scope->OldGetValue("a")->GetText().Len();
      IxoMepValue::Assign(result, length);
      return IMEPERR_NONE;
    }
    mutable std::int32_t length = -1;
  };
  IxoMepValueSet scope;
  Eval("a := {}, for(i, 1, 20000, aappend(a, i))", &scope);
  Asking parser;
  String text;
  ASSERT_EQ(parser.SetExpression("x := length_of_a()", text), IMEPERR_NONE);
  InterruptingHost host(1);
  IxoMepValue* slot = nullptr;
  EXPECT_EQ(parser.Evaluate(&scope, slot, text, false, false), IMEPERR_TOO_DEEP);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(parser.length, 0);
  host.answers_yes_after = InterruptingHost::kNever;
  EXPECT_EQ(parser.Evaluate(&scope, slot, text, false, false), IMEPERR_NONE);
  const ValuePtr owner(slot);
  EXPECT_GT(parser.length, 20000);
}

TEST(Limits, A_host_that_evaluates_while_it_is_asked_is_not_asked_again) {
  class Asking : public InterruptingHost {
   public:
    Asking() : InterruptingHost(3) {}
    bool IsInterruptRequested() noexcept override {
      Eval("for(i, 1, 5000, 0)");
      return InterruptingHost::IsInterruptRequested();
    }
  };
  Asking host;
  EXPECT_EQ(Eval("while(1, 0)").ShownWithText(), kInterrupted);
}

}  // namespace
}  // namespace ixomep::test
