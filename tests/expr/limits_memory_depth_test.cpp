// The limits of a host on memory and depth: their codes and texts, and what is left as it was.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "ixomep/host/memory_budget.h"
#include "tests/support/eval.h"
#include "tests/support/limits.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::string MemoryExceeded(std::size_t limit) {
  std::string text = "error 38: The limit of ";
  text += std::to_string(limit);
  text += " bytes of memory is exceeded.";
  return text;
}

// In both ways, and twice so that lambdas have programs.
void ExpectShown(std::string_view text, IxoMepValueSet* scope, const std::string& expected) {
  SCOPED_TRACE(text);
  for (const bool programs : {false, true}) {
    const UseOfPrograms use(programs);
    for (int i = 0; i < 2; ++i) {
      IxoMepValueSet inner(scope);
      EXPECT_EQ(Eval(text, &inner).ShownWithText(), expected);
    }
  }
}

constexpr const char* kTooMuch[] = {
    "\"x\" * 20000000",
    "s := \"x\", while(1){s := s + s}",
    "s := \"x\", for(i, 1, 100){s := s + s + \"a\" + STR i}",
    "a := {}, while(1, aappend(a, 1))",
    "a := {}, while(1, aappend(a, {1, 2}))",
    "a := {}, while(1, ainsert(a, 0, 1.5))",
    "a := {}, while(1, asinsert(a, \"abc\"))",
    "a := {}, i := 0, while(1){a := {a, \"abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz\"}}",
    "m := map(), i := 0, while(1){i := i + 1, m[i] := STR i}",
    "m := map(), i := 0, while(1){set(m[STR i], i), set(i, i + 1)}",
    "array(10000000)",
    "LEN array(10000, 10000)",
    "strarray(\"a \" * 900000)",
    "f := lambda(s, f(s + s)), f(\"abc\")",
    "\"x\" * 900000 + \"z\" * 900000 + \"y\" * 900000",
};

TEST(LimitsOfMemory, A_limit_of_the_host_ends_with_38_and_names_itself) {
  for (const char* const text : kTooMuch) {
    const std::size_t limit = MemoryBudget::InUse() + 1500000;
    const ScopedLimits limits({.memory = limit});
    ExpectShown(
        text, nullptr,
        "error 38: The limit of " + std::to_string(limit) + " bytes of memory is exceeded.");
  }
}

TEST(LimitsOfMemory, Try_does_not_hide_it) {
  const std::size_t limit = MemoryBudget::InUse() + 1000000;
  const ScopedLimits limits({.memory = limit});
  ExpectShown("try(\"x\" * 20000000, 5)", nullptr, MemoryExceeded(limit));
}

TEST(LimitsOfMemory, What_was_held_is_given_back_and_the_engine_works_again) {
  IxoMepValueSet scope;
  const auto exceed_all = [&scope] {
    for (const char* const text : kTooMuch) {
      const ScopedLimits limits({.memory = MemoryBudget::InUse() + 1500000});
      Eval(text);
      EXPECT_EQ(Eval("LEN (\"x\" * 1000)", &scope).Shown(), "integer 1000");
    }
  };
  exceed_all();
  const std::size_t before = MemoryBudget::InUse();
  exceed_all();
  // Less than one of the texts holds, more than what varies: how full the free lists are.
  EXPECT_LE(MemoryBudget::InUse(), before + 1000000);
}

TEST(LimitsOfMemory, Without_a_limit_of_the_host_the_codes_are_those_of_the_functions) {
  const ScopedMemoryLimit limit(1000000);
  EXPECT_EQ(Eval("\"x\" * 20000000").Shown(), "error 37");
  EXPECT_EQ(Eval("array(10000000)").Shown(), "error 37");
  EXPECT_EQ(Eval("try(\"x\" * 20000000, 5)").Shown(), "integer 5");
}

TEST(LimitsOfMemory, A_text_beyond_the_maximum_length_stays_37) {
  const ScopedLimits limits({.memory = MemoryBudget::InUse() + 1000000});
  EXPECT_EQ(Eval("\"xy\" * 2000000000").Shown(), "error 37");
}

TEST(LimitsOfMemory, Without_memory_for_anything_the_text_is_there_all_the_same) {
  IxoMepExpressionParser expression;
  String text;
  ASSERT_EQ(expression.SetExpression("\"x\" * 2000", text), IMEPERR_NONE);
  const ScopedLimits limits({.memory = 1});
  IxoMepValue* result = nullptr;
  EXPECT_EQ(expression.Evaluate(nullptr, result, text, false, true), IMEPERR_TOO_DEEP);
  EXPECT_EQ(text.view(), "The limit of 1 bytes of memory is exceeded.");
  EXPECT_EQ(result, nullptr);
}

TEST(LimitsOfMemory, Taking_the_limit_back_goes_back_to_that_of_the_machine) {
  const std::size_t before = MemoryBudget::Limit();
  {
    const ScopedLimits limits({.memory = 12345678});
    EXPECT_EQ(MemoryBudget::Limit(), 12345678u);
  }
  EXPECT_EQ(MemoryBudget::Limit(), before);
}

// --- Depth --------------------------------------------------------------------------------------

TEST(LimitsOfDepth, As_many_calls_stand_inside_each_other_as_the_host_allows) {
  const ScopedLimits limits({.depth = 5});
  const std::string exceeded = "error 38: The limit of 5 calls inside each other is exceeded.";
  ExpectShown("f := lambda(n, cond(n < 2, 1, f(n - 1) + 0)), f(5)", nullptr, "integer 1");
  ExpectShown("f := lambda(n, cond(n < 2, 1, f(n - 1) + 0)), f(6)", nullptr, exceeded);
  ExpectShown("f := lambda(f()), f()", nullptr, exceeded);
  ExpectShown("f := lambda(f()), try(f(), 1)", nullptr, exceeded);
  ExpectShown("s := \"1\", for(i, 1, 5){s := \"eval(\" + valtokstr({s}) + \")\"}{eval(s)}", nullptr,
              exceeded);
}

TEST(LimitsOfDepth, Calls_after_each_other_are_not_inside_each_other) {
  const ScopedLimits limits({.depth = 1});
  ExpectShown("f := lambda(x, x + 1), s := 0, for(i, 1, 100){s := s + f(i)}{s}", nullptr,
              "integer 5150");
  ExpectShown("f := lambda(x, x + 1), f(f(f(1)))", nullptr, "integer 4");
}

TEST(LimitsOfDepth, A_limit_beyond_the_native_stack_changes_nothing) {
  const ScopedLimits limits({.depth = 2000000000});
  EXPECT_EQ(Eval("f := lambda(n, f(n + 1)), f(0)").ShownWithText(),
            "error 38: The expression is nested too deeply.");
}

TEST(LimitsOfDepth, A_negative_depth_is_none) {
  const ScopedLimits limits({.depth = -1});
  EXPECT_EQ(Eval("f := lambda(x, x), f(f(1))").Shown(), "integer 1");
}

// --- Texts --------------------------------------------------------------------------------------

TEST(LimitTexts, A_host_without_a_text_for_its_limits_gets_that_of_the_code) {
  class Mute : public TestHost {
   public:
    String ResourceText(std::int32_t number) override {
      return number >= 16201 && number <= 16204 ? String() : TestHost::ResourceText(number);
    }
  };
  Mute host;
  const ScopedLimits limits({.steps = 3});
  EXPECT_EQ(Eval("while(1, 0)").ShownWithText(), "error 38: The expression is nested too deeply.");
}

TEST(LimitTexts, The_host_words_them) {
  TestHost host;
  host.resources[16201] = "%1 steps are enough";
  const ScopedLimits limits({.steps = 3});
  EXPECT_EQ(Eval("while(1, 0)").ShownWithText(), "error 38: 3 steps are enough");
}

}  // namespace
}  // namespace ixomep::test
