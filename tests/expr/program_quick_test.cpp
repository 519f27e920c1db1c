// Quick trees against the plain walk: a quiet expression that is evaluated again and again in one
// scope gives the same code, message and value, whatever its variables have become meanwhile.
#include "ixomep/expr/program_quick.h"

#include <gtest/gtest.h>

#include <array>
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

constexpr const char* kNames[] = {"i", "j", "r", "q", "s", "a", "m", "u"};

// Quiet expressions of all forms over these names.
class QuietExpressions {
 public:
  explicit QuietExpressions(std::uint32_t seed) : random_(seed) {}

  std::string Next(int depth) {
    if (depth == 0) return Leaf();
    switch (Below(9)) {
      case 0:
        return Leaf();
      case 1:
        return Pick({"-", "NOT ", "REAL "}) + "(" + Next(depth - 1) + ")";
      case 2:
        return Pick({"a", "m", "a[2]", "m[\"text\"]"}) + "[" + Next(depth - 1) + "]";
      case 3:
        return "cond(" + Next(depth - 1) + ", " + Next(depth - 1) + ", " + Next(depth - 1) + ")";
      case 4:
        return "cond(" + Next(depth - 1) + ", " + Next(depth - 1) + ", " + Next(depth - 1) + ", " +
               Next(depth - 1) + ", " + Next(depth - 1) + ")";
      default:
        return "(" + Next(depth - 1) + ")" +
               Pick({" + ", " - ", " * ", " / ", " MOD ", " = ", " != ", " < ", " <= ", " > ",
                     " >= ", " AND ", " OR "}) +
               "(" + Next(depth - 1) + ")";
    }
  }

  // Something for a variable to become. Made beforehand: evaluating something else in between
  // may bring variables.
  const IxoMepValue& Value() {
    static const std::vector<IxoMepValue> values = [] {
      std::vector<IxoMepValue> made;
      for (const char* const text :
           {"0", "1", "2", "-7", "2147483647", "0.5", "2.0", "-1.5", "1e300", "0.1 + 0.2", "0.3",
            "\"text\"", "\"k\"", "\"\"", "2cm", "3s", "{1, 2.5, {3, 4}, \"k\"}",
            "{\"k\": 1, 2: \"two\", \"text\": {5, 6}}"}) {
        made.push_back(ValueOf(text));
      }
      return made;
    }();
    return values[static_cast<std::size_t>(Below(static_cast<int>(values.size())))];
  }

  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

 private:
  std::string Pick(const std::vector<const char*>& choices) {
    return choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))];
  }
  std::string Leaf() {
    return Pick({"i",     "i",        "j",   "j",    "r",    "r",        "q",   "q",  "s",
                 "a",     "m",        "u",   "1",    "2",    "0",        "0.5", "-3", "2147483647",
                 "\"k\"", "\"text\"", "1cm", "a[0]", "a[i]", "m[\"k\"]", "m[s]"});
  }

  std::mt19937 random_;
};

void Bind(IxoMepValueSet& scope) {
  const IxoMepValue values[] = {IxoMepValue(2),
                                IxoMepValue(3),
                                IxoMepValue(1.5),
                                IxoMepValue(0.25),
                                IxoMepValue("text"),
                                ValueOf("{1, 2.5, {3, 4}, \"k\"}"),
                                ValueOf("{\"k\": 1, 2: \"two\", \"text\": {5, 6}}"),
                                IxoMepValue()};
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    scope.NewSetValue(Intern(kNames[i]), values[i], true);
  }
}

// An evaluation into that value, or into none.
std::string Traced(const IxoMepExpressionParser& parser, IxoMepValueSet& scope,
                   const IxoMepValue* into, bool strict, bool own_scope = false) {
  String text("before");
  IxoMepValue* slot = into != nullptr ? new IxoMepValue(*into) : nullptr;
  const IxoMepErrorEnum code = parser.Evaluate(&scope, slot, text, strict, own_scope);
  const ValuePtr owner(slot);
  return std::to_string(code) + " \"" + std::string(text.view()) + "\" " + ShownValue(slot) +
         " depth " + std::to_string(IxoMepExprNode::m_nCallDepth);
}

IxoMepExpressionParser Compiled(const std::string& expression) {
  IxoMepExpressionParser parser;
  String text;
  EXPECT_EQ(parser.SetExpression(String(expression), text), IMEPERR_NONE)
      << expression << ": " << text.view();
  return parser;
}

bool IsReady(const IxoMepExpressionParser& parser, const IxoMepValueSet& scope) {
  const QuickTree* const tree = FindQuickTree(*parser.GetTree());
  return tree != nullptr && tree->names.IsBoundTo(&scope);
}

// Evaluates until the quick tree is ready.
void Prepare(const IxoMepExpressionParser& parser, IxoMepValueSet& scope) {
  for (int i = 0; i < 3; ++i) Traced(parser, scope, nullptr, false);
}

TEST(QuickTree, Random_quiet_expressions_give_what_the_walk_gives) {
  const char* const given = std::getenv("MEP_TEST_ROUNDS");  // for a longer run by hand
  const int rounds = given != nullptr ? std::atoi(given) : 3000;
  const std::uint32_t seed = RandomSeed(rounds);
  int were_ready = 0;
  for (int round = 0; round < rounds; ++round) {
    QuietExpressions random(seed + static_cast<std::uint32_t>(round));
    const std::string expression = random.Next(1 + random.Below(4));
    const IxoMepExpressionParser walked = Compiled(expression);
    const IxoMepExpressionParser quick = Compiled(expression);
    IxoMepValueSet scope;
    Bind(scope);
    random.Value();
    Prepare(quick, scope);
    for (int time = 0; time < 6; ++time) {
      const IxoMepValue into = random.Value();
      const IxoMepValue* const slot = random.Below(6) == 0 ? nullptr : &into;
      const bool strict = random.Below(4) == 0;
      const std::string first = Traced(quick, scope, slot, strict, random.Below(2) == 0);
      were_ready += IsReady(quick, scope) ? 1 : 0;
      const std::string second = Traced(quick, scope, slot, strict);
      const UseOfPrograms walk_only(false);
      const std::string expected = Traced(walked, scope, slot, strict);
      ASSERT_EQ(first, expected) << expression << "\nseed " << seed << " + " << round;
      ASSERT_EQ(second, expected) << expression << "\nseed " << seed << " + " << round;
      for (int changed = random.Below(3); changed > 0; --changed) {
        const char* const name = kNames[random.Below(static_cast<int>(std::size(kNames)))];
        scope.NewSetValue(Intern(name), random.Value(), true);
      }
    }
  }
  EXPECT_GT(were_ready, rounds);
}

TEST(QuickTree, Is_ready_once_the_scope_was_the_same_twice_and_until_variables_come) {
  const IxoMepExpressionParser parser = Compiled("i + 1");
  IxoMepValueSet scope, other;
  Bind(scope);
  Bind(other);
  Traced(parser, scope, nullptr, false);  // walked
  Traced(parser, scope, nullptr, false);
  EXPECT_FALSE(IsReady(parser, scope));
  Traced(parser, scope, nullptr, false);
  EXPECT_TRUE(IsReady(parser, scope));
  EXPECT_FALSE(IsReady(parser, other));
  const IxoMepValue number(0);
  EXPECT_EQ(Traced(parser, scope, &number, false), "0 \"before\" integer 3 depth 0");
  scope.NewSetValue(Intern("fresh"), IxoMepValue(1), true);
  EXPECT_FALSE(IsReady(parser, scope));
  EXPECT_EQ(Traced(parser, scope, &number, false), "0 \"before\" integer 3 depth 0");
}

TEST(QuickTree, Serves_evaluations_in_a_scope_of_their_own_too) {
  const IxoMepExpressionParser parser = Compiled("i + u[j]");
  const IxoMepExpressionParser text = Compiled("s + \" \" + STR i");
  IxoMepValueSet scope;
  Bind(scope);
  scope.NewSetValue(Intern("u"), ValueOf("{3: 5}"), true);
  const IxoMepValue number(0);
  for (int time = 1; time <= 5; ++time) {
    EXPECT_EQ(Traced(parser, scope, &number, false, true), "0 \"before\" integer 7 depth 0")
        << time;
    EXPECT_EQ(Traced(text, scope, &number, false, true), "0 \"before\" string \"text 2\" depth 0");
  }
  EXPECT_TRUE(IsReady(parser, scope));
  EXPECT_TRUE(IsReady(text, scope));
  IxoMepValueSet inner(&scope);
  EXPECT_EQ(Traced(parser, inner, &number, false, true), "0 \"before\" integer 7 depth 0");
  String message;
  IxoMepValue* slot = nullptr;
  EXPECT_EQ(parser.Evaluate(nullptr, slot, message, true, true), IMEPERR_UNKNOWN_VARIABLE);
}

TEST(QuickTree, Exists_for_quiet_trees_only) {
  IxoMepValueSet scope;
  Bind(scope);
  for (const char* const quiet :
       {"i + j * r", "NOT i AND -j < 2", "cond(i < 1, \"a\", j, s, r)", "a[i] + a[0]", "m[s][0]",
        "a[j - 1][0]", "REAL i = r", "m[\"k\"]"}) {
    const IxoMepExpressionParser parser = Compiled(quiet);
    Prepare(parser, scope);
    EXPECT_TRUE(IsReady(parser, scope)) << quiet;
  }
  for (const char* const other : {"i := j", "abs(i)", "i, j", "STR i", "a.length", "missing + 1",
                                  "f(i)", "cond(i, 1)", "{i, j}", "VAL s + i"}) {
    const IxoMepExpressionParser parser = Compiled(other);
    Prepare(parser, scope);
    EXPECT_FALSE(IsReady(parser, scope)) << other;
  }
}

TEST(QuickTree, Gives_up_on_what_is_no_number_and_is_tried_again_later) {
  const IxoMepExpressionParser parser = Compiled("i + j");
  IxoMepValueSet scope;
  Bind(scope);
  Prepare(parser, scope);
  ASSERT_TRUE(IsReady(parser, scope));
  const IxoMepValue number(0);
  scope.NewSetValue(Intern("i"), IxoMepValue("a"), true);
  EXPECT_TRUE(Traced(parser, scope, &number, false).starts_with("21 "));
  EXPECT_FALSE(IsReady(parser, scope));
  scope.NewSetValue(Intern("i"), IxoMepValue(1), true);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(Traced(parser, scope, &number, false), "0 \"before\" integer 4 depth 0");
  }
  EXPECT_TRUE(IsReady(parser, scope));
}

TEST(QuickTree, A_value_with_code_of_the_host_behind_it_is_replaced_by_the_program) {
  const IxoMepExpressionParser parser = Compiled("i + j");
  IxoMepValueSet scope;
  Bind(scope);
  Prepare(parser, scope);
  ASSERT_TRUE(IsReady(parser, scope));
  const IxoMepValue object = ValueOf("object()");
  EXPECT_EQ(Traced(parser, scope, &object, false), "0 \"before\" integer 5 depth 0");
}

TEST(QuickTree, The_slot_may_be_the_variable_that_is_read) {
  const IxoMepExpressionParser parser = Compiled("cond(i < 5, i + 1, s)");
  IxoMepValueSet scope;
  Bind(scope);
  Prepare(parser, scope);
  String text;
  IxoMepValue* slot = Variable(scope, "i");
  for (const char* const expected : {"integer 3", "integer 4", "integer 5", "string \"text\""}) {
    ASSERT_TRUE(IsReady(parser, scope));
    ASSERT_EQ(parser.Evaluate(&scope, slot, text, false, false), IMEPERR_NONE);
    EXPECT_EQ(slot, Variable(scope, "i"));
    EXPECT_EQ(ShownVariable(scope, "i"), expected);
  }
}

TEST(QuickTree, Serves_evaluations_inside_others_and_of_a_host_that_may_interrupt) {
  const IxoMepExpressionParser inner = Compiled("cond(i > j, i - j, a[2][0] + j)");
  class Host : public IxoMepExpressionParser {
   public:
    explicit Host(const IxoMepExpressionParser& inner) : inner_(inner) {}
    IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode*, IxoMepValueSet* scope,
                                         const String&, IxoMepValue*& result, String& text,
                                         bool strict) const override {
      IxoMepValue::Assign(result, 0);
      return inner_.Evaluate(scope, result, text, strict, false);
    }

   private:
    const IxoMepExpressionParser& inner_;
  } outer(inner);
  String text;
  ASSERT_EQ(outer.SetExpression("1 + hinner()", text), IMEPERR_NONE);
  IxoMepValueSet scope;
  Bind(scope);
  const IxoMepValue number(0);
  InterruptingHost host(InterruptingHost::kNever);
  Traced(inner, scope, nullptr, false);
  for (int time = 1; time <= 6; ++time) {
    EXPECT_EQ(Traced(outer, scope, &number, false), "0 \"before\" integer 7 depth 0") << time;
    EXPECT_EQ(Traced(inner, scope, &number, false), "0 \"before\" integer 6 depth 0") << time;
  }
  EXPECT_TRUE(IsReady(inner, scope));
}

TEST(QuickTree, An_evaluation_is_one_step_and_a_host_is_asked_as_ever) {
  const IxoMepExpressionParser parser = Compiled("i + j");
  IxoMepValueSet scope;
  Bind(scope);
  Prepare(parser, scope);
  ASSERT_TRUE(IsReady(parser, scope));
  const IxoMepValue number(0);
  InterruptingHost host(2);
  EXPECT_EQ(Traced(parser, scope, &number, false), "0 \"before\" integer 5 depth 0");
  EXPECT_EQ(Traced(parser, scope, &number, false), "0 \"before\" integer 5 depth 0");
  EXPECT_TRUE(Traced(parser, scope, &number, false).starts_with("38 "));
}

}  // namespace
}  // namespace ixomep::test
