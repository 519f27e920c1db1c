// Side programs against the plain walk of the tree: whatever is evaluated again and again gives
// the same code, message, value and variables as what is walked.
#include "ixomep/expr/program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <type_traits>

#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/random_expressions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

// Everything is walked while one of these lives.
class WalkOnly {
 public:
  WalkOnly() : before_(UsePrograms(false)) {}
  WalkOnly(const WalkOnly&) = delete;
  WalkOnly& operator=(const WalkOnly&) = delete;
  ~WalkOnly() { UsePrograms(before_); }

 private:
  bool before_;
};

// An argument may be left unset.
double RealOf(const IxoMepValue* value) { return value != nullptr ? value->GetReal() : 0.0; }

// A host with functions of its own; every call is written down.
class Host : public IxoMepExpressionParser {
 public:
  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* scope,
                                       const String& name, IxoMepValue*& result, String& text,
                                       bool strict) const override {
    log += std::string(name.view()) + "@" + std::to_string(IxoMepExprNode::m_nCallDepth) + " ";
    if (name == "hsum") {
      IxoMepValue* a = nullptr;
      IxoMepValue* b = nullptr;
      const auto code = call->GetParamResults(this, scope, a, b, text, strict);
      const ValuePtr first(a), second(b);
      if (code == IMEPERR_NONE) IxoMepValue::Assign(result, RealOf(a) + RealOf(b));
      return code;
    }
    if (name == "hset") {
      IxoMepValue* value = nullptr;
      const auto code = call->GetParamResult(this, scope, value, text, strict);
      const ValuePtr owner(value);
      if (value != nullptr) scope->NewSetValue(Intern("i"), *value, false);
      return code;
    }
    if (name == "htree") {
      IxoMepExpressionParser other;
      if (other.SetExpression("i := 5, p", text) != IMEPERR_NONE) return IMEPERR_WRONG_TYPE;
      return other.Evaluate(scope, result, text, strict, true);
    }
    if (name == "hpass") {  // not a function of this host, but it has evaluated something
      IxoMepExpressionParser other;
      IxoMepValue* value = nullptr;
      other.SetExpression("1 + 1", text);
      other.Evaluate(scope, value, text, false, true);
      const ValuePtr owner(value);
      return IMEPERR_UNKNOWN_FUNCTION;
    }
    if (name == "hunset") return IMEPERR_NONE;
    if (name == "hfail") {
      text = "the host says no";
      return IMEPERR_WRONG_TYPE;
    }
    return IxoMepExpressionParser::EvaluateFunctionCall(call, scope, name, result, text, strict);
  }

  mutable std::string log;
};

class Silent : public IxoMepExpressionParser {};

void Bind(IxoMepValueSet& scope, IxoMepValue& outside) {
  scope.OldSetValue("i", IxoMepValue(2), true);
  scope.OldSetValue("r", IxoMepValue(1.5), true);
  scope.OldSetValue("s", IxoMepValue("text"), true);
  scope.OldSetValue("t", IxoMepValue(IxoMepValueType::Measure, 200.0), true);
  scope.OldSetValue("u", IxoMepValue(), true);
  scope.OldSetValue("w", IxoMepValue(&outside), true);
  scope.OldSetValue("a", ValueOf("{1, 2.5, {3, 4}, \"k\"}"), true);
  scope.OldSetValue("m", ValueOf("{\"k\": 1, 2: \"two\", \"text\": {5, 6}}"), true);
  scope.OldSetValue("f", ValueOf("lambda(p, n, (p + i, cond(p > n, n, p + 1)))"), true);
}

struct Setting {
  bool strict = false;
  bool own_scope = false;
  bool given_slot = false;
};

// All that an evaluation leaves behind.
std::string Trace(const IxoMepExpressionParser& parser, IxoMepValueSet& scope, bool walk,
                  const Setting& setting) {
  String text("before");
  IxoMepValue* slot = setting.given_slot ? new IxoMepValue("slot") : nullptr;
  const IxoMepValue* const given = slot;
  IxoMepErrorEnum code = IMEPERR_NONE;
  if (walk) {
    const WalkOnly walk_only;
    code = parser.Evaluate(&scope, slot, text, setting.strict, setting.own_scope);
  } else {
    code = parser.Evaluate(&scope, slot, text, setting.strict, setting.own_scope);
  }
  const ValuePtr owner(slot);
  std::string trace = "code " + std::to_string(code) + " \"" + std::string(text.view()) + "\" " +
                      ShownValue(slot) + (slot != nullptr && slot == given ? " in place" : "") +
                      " depth " + std::to_string(IxoMepExprNode::m_nCallDepth) + "\n";
  IxoMepValueSetMap variables;
  scope.GetAllVars(variables, true);
  for (const auto& [name, value] : variables) {
    trace += std::string(name) + " = " + ShownValue(value) + "\n";
    delete value;
  }
  return trace;
}

bool IsMemoryFailure(const std::string& trace) {
  return trace.starts_with("code 37") || trace.starts_with("code 38");
}

// Each of three times in fresh scopes, there twice: the first evaluation by the second object
// walks too, the others run its program.
template <class Parser>
void CheckBothWays(const std::string& expression, const Setting& setting,
                   bool memory_counts = true) {
  Parser walked, compiled;
  String text;
  ASSERT_EQ(walked.SetExpression(String(expression), text), IMEPERR_NONE)
      << expression << ": " << text.view();
  ASSERT_EQ(compiled.SetExpression(String(expression), text), IMEPERR_NONE);
  for (int round = 1; round <= 3; ++round) {
    IxoMepValue left_outside(10), right_outside(10);
    IxoMepValueSet left, right;
    Bind(left, left_outside);
    Bind(right, right_outside);
    for (int time = 1; time <= 2; ++time) {
      const std::string expected = Trace(walked, left, true, setting);
      const std::string actual = Trace(compiled, right, false, setting);
      if (!memory_counts && (IsMemoryFailure(expected) || IsMemoryFailure(actual))) return;
      ASSERT_EQ(expected, actual) << expression << "\nround " << round << ", time " << time
                                  << (setting.strict ? " strict" : "")
                                  << (setting.own_scope ? " own scope" : "")
                                  << (setting.given_slot ? " given slot" : "");
      ASSERT_EQ(ShownValue(left_outside), ShownValue(right_outside)) << expression;
    }
    if constexpr (std::is_same_v<Parser, Host>) {
      ASSERT_EQ(walked.log, compiled.log) << expression;
    }
  }
}

TEST(Program, Random_expressions_give_what_the_walk_gives) {
  const char* const given = std::getenv("MEP_TEST_ROUNDS");  // for a longer run by hand
  const int rounds = given != nullptr ? std::atoi(given) : 2000;
  const std::uint32_t seed = RandomSeed(rounds);
  const TestHost host;
  const ScopedMemoryLimit limit(32'000'000);
  for (int i = 0; i < rounds && !testing::Test::HasFatalFailure(); ++i) {
    const std::uint32_t own_seed = seed + static_cast<std::uint32_t>(i);
    const std::string expression = RandomExpressions(own_seed).Next();
    const Setting setting{i % 7 == 0, i % 3 == 0, i % 2 == 0};
    SCOPED_TRACE("expression of seed " + std::to_string(own_seed));
    if (i % 4 == 0) {
      CheckBothWays<Host>(expression, setting, false);
    } else if (i % 4 == 1) {
      CheckBothWays<Silent>(expression, setting, false);
    } else {
      CheckBothWays<IxoMepExpressionParser>(expression, setting, false);
    }
  }
}

// Every operator between a variable and a constant of every kind, written as such or captured.
TEST(Program, Operators_between_names_and_constants_of_all_kinds_do_what_the_walk_does) {
  for (const char* const name : {"i", "r", "s", "t", "u", "w", "a"}) {
    for (const char* const constant : {"2", "1.5", "2cm", "1.5mm", "2s", "0.5s", "\"text\""}) {
      for (const char* const op :
           {"+", "-", "*", "/", "MOD", "=", "!=", "<", "<=", ">", ">=", "AND", "OR"}) {
        const std::string with = std::string(" ") + op + " ";
        CheckBothWays<IxoMepExpressionParser>(name + with + constant, Setting{});
        CheckBothWays<IxoMepExpressionParser>(constant + with + name, Setting{});
      }
    }
  }
  CheckBothWays<IxoMepExpressionParser>("g := 5cm, h := lambda(x, x < g), h(2.5)", Setting{});
}

std::string Repeated(const std::string& open, int count, const std::string& inner,
                     const std::string& close) {
  std::string text;
  for (int i = 0; i < count; ++i) text += open;
  text += inner;
  for (int i = 0; i < count; ++i) text += close;
  return text;
}

TEST(Program, Chains_end_at_the_same_depth) {
  struct Chain {
    const char* open;
    const char* inner;
    const char* close;
  };
  const Chain chains[] = {
      {"", "i", " + 1"},          {"-", "i", ""},
      {"NOT ", "i", ""},          {"", "i", ", 1"},
      {"", "i", " IN a"},         {"cond(", "i", ", 1, 2)"},
      {"f(", "i", ", 1)"},        {"f(1, ", "i", ")"},
      {"abs(", "i", ")"},         {"hsum(", "i", ", 1)"},
      {"v := ", "i", ""},         {"", "a", "[2]"},
      {"a[", "0", "]"},           {"1 + (", "i", ")"},
      {"while(", "0", ", 1, 0)"}, {"for(n, ", "1", ", 1, n, n)"},
  };
  for (const Chain& chain : chains) {
    for (int count = 60; count <= 262; count += count < 244 && count > 60 ? 61 : 1) {
      const std::string text = "(" + Repeated(chain.open, count, chain.inner, chain.close) + ")";
      CheckBothWays<IxoMepExpressionParser>(text, {});
      CheckBothWays<Host>("1, " + text, {});
      CheckBothWays<IxoMepExpressionParser>("(g := lambda(p, " + text + ")), g(i), g(i)", {});
      CheckBothWays<IxoMepExpressionParser>("(g := lambda(" + text + ")), g() + 1", {});
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(Program, A_hook_that_evaluates_and_passes_leaves_the_depth_as_it_is) {
  const auto deep = [](const std::string& inner) {
    std::string text = inner;
    for (int i = 0; i < 100; ++i) text = "-(" + text + ")";
    return text;
  };
  Host setup, parser;
  IxoMepValueSet scope;
  IxoMepValue* unwanted = nullptr;
  String text;
  const std::string lambdas =
      "f := lambda(" + deep("hpass()") + "), hpass := lambda(" + deep("1") + ")";
  ASSERT_EQ(setup.SetExpression(String(lambdas), text), IMEPERR_NONE);
  ASSERT_EQ(setup.Evaluate(&scope, unwanted, text, false, false), IMEPERR_NONE);
  const ValuePtr owner(unwanted);
  ASSERT_EQ(parser.SetExpression(String(deep("f()")), text), IMEPERR_NONE);
  for (int time = 1; time <= 4; ++time) {
    IxoMepValue* result = nullptr;
    EXPECT_EQ(parser.Evaluate(&scope, result, text, false, false), IMEPERR_NONE) << time;
    EXPECT_EQ(ShownValue(result), "integer 1") << time;
    delete result;
  }
}

TEST(Program, Lambdas_without_parameters_nest_to_the_same_depth) {
  for (int count = 110; count < 260; ++count) {
    const std::string number = std::to_string(count);
    CheckBothWays<IxoMepExpressionParser>(
        "k := 0, g := lambda((k := k + 1, cond(k < " + number + ", g(), k))), g()", {});
    CheckBothWays<IxoMepExpressionParser>(
        "g := lambda(g() + 1), try(g(), 1), try(g() + " + number + ", 2)", {});
    if (testing::Test::HasFatalFailure()) return;
  }
}

// One line for each thing that a program does in a way of its own.
TEST(Program, Does_what_the_walk_does) {
  const char* const expressions[] = {
      "fib := lambda(n, cond(n < 2, n, fib(n - 1) + fib(n - 2))), fib(10)",
      "g := lambda(p, n, p + n), g(1), g(1, 2), g(g(1, 2), g(3, 4))",
      "g := lambda(p, n, p + n), g(1, 2, 3)",
      "g := lambda(p, (p := p + 1, p)), g(i) + g(i), p",
      "g := lambda(p, (q := p, lambda(n, n + p))), g(1)(2) + g(3)(4)",
      "g := lambda(p, curvars()), h := lambda(q, g(q + 1)), h(1), h(1)",
      "g := lambda(p, valofvar(\"q\")), h := lambda(q, g(q + 1)), h(1), h(2)",
      "g := lambda(p, q), h := lambda(q, g(0)), h(7) + h(8)",
      "g := lambda(p, cond(p < 1, 5, (g := 3, p))), g(0), g(1), g(2)",
      "g := lambda(p, cond(p < 1, r, g(p - 1))), h := lambda(r, g(r)), h(3), h(4)",
      "o := {{{\"k\": 1}: 1}}, g := lambda(p, m.keys[p]), g(0), g(0)",
      "g := lambda(p, {a, m}[1][p]), g(2), g(2)",
      "s := s + s, s := s + s, q := s, s := s + \"x\", q",
      "s := \"\", for(n, 1, 100){s := s + \"ab\"}{s}",
      "for(n, 1, 3){n := n + 1}{n}",
      "for(w, 1, 3){w}{w}",
      "for(n, 1, 0){1}",
      "while(0){1}",
      "for(n, 1, 2.5){n}",
      "for(missing.x, 1, 2){n}",
      "cond(\"x\", 1, 2)",
      "cond(u, 1, 2)",
      "while(s){1}",
      "while(w > 5){w := w - 1}{w}",
      "w := 3, w + 1",
      "w := w + \"x\"",
      "a[missing]",
      "m[missing]",
      "m[u]",
      "m[w]",
      "a[-1]",
      "a[9]",
      "a[1.0]",
      "a[2][1]",
      "s[0]",
      "aappend(a, a), aappend(a, w), a",
      "aappend(s, 1)",
      "aappend(missing, 1)",
      "for(n, 1, 20){aappend(a, n)}{a}",
      "v := {}, for(n, 1, 3){aappend(v, v)}{v}",
      "1 / 0",
      "1 MOD 0",
      "-7 MOD 2",
      "2147483647 + 1",
      "-2147483647 - 2",
      "2147483647 * 3",
      "0.1 + 0.2 = 0.3",
      "u + 1",
      "missing",
      "missing + 1",
      "i + missing",
      "s + 1",
      "t + t",
      "t * 2",
      "t = t",
      "t < CM 3",
      "NOT s",
      "REAL s",
      "-s",
      "hunset()",
      "hunset() + 1",
      "x := hunset(), x",
      "curlineno()",
      "curlineno := lambda(p, p), curlineno(1)",
      "nosuch(1)",
      "s(1)",
      "u(1)",
      "cond(1, hunset(), 2)",
      "g := lambda(p, while(0){1}), g(1), g(1)",
      "i, while(0){1}",
      "try(a[9], i), try(missing(1), 2)",
      "x := y",
      "x := (y := 3)",
      "x := 1/0, x",
      "g := lambda(p, n, q, r, i, p + n + q + r + i), g(1, 2, 3, 4, 5), g(1, 2, 3, 4, 5)",
      "g := lambda(p, p, p), g(1, 2), g(1, 2)",
      // A callee that becomes known later sees its caller's arguments.
      "h := lambda(q, g(0)), g := lambda(p, p + q), h(7) + h(8)",
      "h := lambda(q, n, g(q)), g := lambda(p, q + n + k(1)), k := lambda(x, x + q), h(7, 1)",
      "h := lambda(q, g(0)), g := lambda(p, (q := q + 1, q)), h(7) + h(8)",
      // An index that waits among a caller's arguments while the base moves them.
      "z := {{1: \"one\", 2: \"two\"}}, h := lambda(k, g(z)), g := lambda(q, (q SUB 0)[k]), h(1), "
      "h(2)",
      "h := lambda(k, g(m)), g := lambda(q, (1, q)[k]), h(2), h(\"k\")",
      // Elements of elements.
      "z := {{1, 2}, {3, {4, 5}}}, z[1][0] + z[i - 1][i - 2] + z[0][r - 0.5] + z[1][1][z[0][0]]",
      "z := {{1, 2}, {3, 4}}, g := lambda(p, q, z[p][q - 1] + z[p - 1][q]), g(1, 1) + g(1, 1)",
      "z := {{1, 2}, {3, 4}}, z[0][2]",
      "z := {{1, 2}, {3, 4}}, z[2][0]",
      "m[\"te\" + \"xt\"][0] + LEN m[\"text\"] + m[\"absent\"]",
      "m[\"text\"][i - 3]",
      // Sums of texts.
      "s + \" (\" + STR i + \")\"",
      "s + \"-\" + STR r + \"-\" + STR t + \"-\" + STR u",
      "s + \"-\" + a[3] + STR a[0] + m[2] + STR m + STR w",
      "g := lambda(p, p + \"/\" + STR p + STR i), g(s), g(1)",
      "\"a\" + i + \"b\"",
      "i + \"a\" + \"b\"",
      "\"a\" + \"b\" + missing",
      "\"a\" + a[9] + \"b\"",
      "s + \"1\" + s + \"2\" + s + \"3\" + s + \"4\" + s + \"5\" + s + \"6\"",
      // Sums in place.
      "x := 0, for(n, 1, 5){x := x + n}{x}",
      "x := 0.5, for(n, 1, 5){x := x + n}{x}",
      "x := 0, for(n, 1, 5){x := x + r}{x}",
      "x := 2147483647, for(n, 1, 2){x := x + 1}{x}",
      "for(n, 1, 3){t := t + t}{t}",
      "for(n, 1, 3){w := w + 1}{w}",
      "for(n, 1, 3){i := i + missing}{i}",
      "for(n, 1, 3){u := u + n}{u}",
      "g := lambda(p, for(n, 1, 3){p := p + n}{p}), g(1) + g(0.5)",
      // More names than a scope has buckets.
      "a1 := 1, a2 := 2, a3 := 3, a4 := 4, a5 := 5, a6 := 6, a7 := 7, a8 := 8, a9 := 9, b1 := 10, "
      "b2 := 1.5, b3 := 2.5, b4 := 3, b5 := 4, b6 := 5, b7 := 6, b8 := 7, b9 := 8, c1 := 9, "
      "c2 := 1, c3 := 2, c4 := 3, c5 := 4, c6 := 5, c7 := 6, c8 := 7, c9 := 8, d1 := 9, "
      "for(n, 1, 3){a1 := a1 + c9, b2 := b2 * a2, c4 := c4 - d1, d1 := a9 < b3}, "
      "a1 + b2 + c4 + d1 + a3 * b4 - c5 / b6",
  };
  for (const char* const expression : expressions) {
    for (const bool strict : {false, true}) {
      CheckBothWays<IxoMepExpressionParser>(expression, {strict, false, false});
      CheckBothWays<Host>(expression, {strict, true, true});
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(Program, Is_made_on_the_second_evaluation_and_goes_with_the_tree) {
  IxoMepExpressionParser parser;
  String text;
  ASSERT_EQ(parser.SetExpression("1 + 2", text), IMEPERR_NONE);
  EXPECT_EQ(ProgramFor(*parser.GetTree()), nullptr);
  const Program* const program = ProgramFor(*parser.GetTree());
  EXPECT_NE(program, nullptr);
  EXPECT_EQ(ProgramFor(*parser.GetTree()), program);
  const WalkOnly walk_only;
  EXPECT_EQ(ProgramFor(*parser.GetTree()), nullptr);
}

}  // namespace
}  // namespace ixomep::test
