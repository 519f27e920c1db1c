// Evaluation that wants to break the library: endless recursion of every kind, hosts that pull the
// scope away while it is in use, memory that ends at every possible place.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "ixomep/expr/evaluator.h"
#include "ixomep/values/error.h"
#include "ixomep/values/object.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

std::string Repeated(const std::string& part, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += part;
  return text;
}

// --- Endless recursion ends with 38 -------------------------------------------------------------

class EndlessRecursion : public testing::TestWithParam<const char*> {};

TEST_P(EndlessRecursion, Ends_with_38) {
  IxoMepValueSet scope;
  IxoMepValue object(IxoMepValueType::Object);
  object.MoveValue("again", new IxoMepValue(ValueOf("lambda(p, (o := p, 1 + o.again(p)))")));
  object.MoveValue("sorting", new IxoMepValue(ValueOf("lambda(p, (o := p, a := {o, o}, "
                                                      "a.sort(lambda(x, y, x.sorting(x))), 1))")));
  Set(scope, "o", object);
  const Outcome outcome = Eval(GetParam(), &scope);
  EXPECT_EQ(outcome.code, 38) << outcome.ShownWithText();
  EXPECT_EQ(outcome.text, IxoMepError::GetErrorText(IMEPERR_TOO_DEEP));
  EXPECT_EQ(Shown("1 + 1", &scope), "integer 2") << "and all goes on";
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, EndlessRecursion,
    testing::Values("f := lambda(x, f(x)), f(1)", "f := lambda(x, 1 + f(x)), f(1)",
                    "f := lambda(x, {x, f(x)}), f(1)", "f := lambda(x, cond(1, f(x), 0)), f(1)",
                    "f := lambda(x, (y := f(x))), f(1)", "f := lambda(x, (0, f(x))), f(1)",
                    "f := lambda(x, f(f(x))), f(1)", "f := lambda(x, f(x)(1)), f(1)",
                    "f := lambda(x, \"a\".copy(f(x))), f(1)", "f := lambda(x, {1}[f(x)]), f(1)",
                    "f := lambda(x, (a := {1}, a[f(x)] := 1)), f(1)",
                    "f := lambda(for(i, 1, 2, f())), f()", "f := lambda(while(1, f())), f()",
                    "t := \"eval(t)\", eval(t)", "t := \"1 + eval(t)\", eval(t)",
                    "f := lambda(x, g(x)), g := lambda(x, 1 + f(x)), f(1)", "o.again(o)",
                    "o.sorting(o)"));

TEST(DeepTexts, Nested_literals_read_by_val_end_with_a_code) {
  std::string text = "1";
  for (int i = 0; i < 12; ++i) {
    std::string escaped;
    for (const char c : text)
      escaped += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    text = "(VAL \"" + escaped + "\")";
  }
  EXPECT_EQ(Shown(text), "integer 1");
  const Outcome outcome = Eval(Repeated("1 + (", 100000) + "1" + Repeated(")", 100000));
  EXPECT_TRUE(outcome.code == 0 || outcome.code == 38) << outcome.code;
}

TEST(DeepTexts, A_long_path_is_a_place_without_recursion) {
  IxoMepValueSet scope;
  Eval("m := map()", &scope);
  EXPECT_EQ(Shown("m" + Repeated("[1]", 100000) + " := 1", &scope), "error 21");
  EXPECT_EQ(Shown("m" + Repeated(".x", 100000) + " := 1", &scope), "error 21");
  EXPECT_EQ(Shown("m" + Repeated("[1]", 100000), &scope), "error 38");
  EXPECT_EQ(Shown("a := {5}, a[0" + Repeated(", 0", 100000) + "]", &scope), "error 21");
}

TEST(DeepValues, An_array_that_nests_very_deep_is_built_copied_and_released) {
  IxoMepValueSet scope;
  EXPECT_EQ(Shown("a := {}, for(i, 1, 20000, (a := {a})), b := a, LEN b", &scope), "integer 1");
  EXPECT_EQ(Shown("a[0] := 1, a", &scope), "array {1}");
  const Outcome text = Eval("LEN STR b", &scope);
  EXPECT_TRUE(text.code == 0 || text.code == 38) << text.ShownWithText();
}

TEST(LambdaOwners, A_lambda_at_the_cap_of_its_owners_is_called_all_the_same) {
  IxoMepValueSet scope;
  Eval("f := lambda(x, x + 1)", &scope);
  const std::vector<IxoMepValue> copies(66000, *Variable(scope, "f"));
  EXPECT_EQ(Shown("f(1)", &scope), "integer 2");
  EXPECT_EQ(Shown("g := f, g(1)", &scope), "integer 2");
}

// --- Hosts that pull the scope away -------------------------------------------------------------

// "clear()" empties the scope that the test evaluates in, "grow()" makes many variables in it.
class PullingParser : public IxoMepExpressionParser {
 public:
  explicit PullingParser(IxoMepValueSet& scope) : scope_(scope) {}
  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode*, IxoMepValueSet*, const String& name,
                                       IxoMepValue*& result, String&, bool) const override {
    if (name == "clear") {
      scope_.Clear();
    } else if (name == "grow") {
      for (int i = 0; i < 200; ++i) {
        scope_.OldSetValue(String("v" + std::to_string(i)), IxoMepValue(i), true);
      }
    } else {
      return IMEPERR_UNKNOWN_FUNCTION;
    }
    result = new IxoMepValue(0);
    return IMEPERR_NONE;
  }

 private:
  IxoMepValueSet& scope_;
};

struct Pulled {
  const char* text;
  const char* outcome;
};
void PrintTo(const Pulled& pulled, std::ostream* out) { *out << pulled.text; }

class PulledScopes : public testing::TestWithParam<Pulled> {};

TEST_P(PulledScopes, Nothing_that_was_freed_is_touched) {
  for (int round = 0; round < 3; ++round) {
    IxoMepValueSet scope;
    PullingParser parser(scope);
    const Outcome outcome = EvalWith(parser, GetParam().text, &scope);
    EXPECT_EQ(outcome.Shown(), GetParam().outcome) << GetParam().text << "\n"
                                                   << outcome.text.view();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Places, PulledScopes,
    testing::Values(Pulled{"x := \"text\", x + STR clear()", "string \"text0\""},
                    Pulled{"x := {1, 2}, clear() IN x", "error 21"},
                    Pulled{"x := {1, 2}, x[clear()]", "integer 1"},
                    Pulled{"x := {{1, 2}, 3}, x[0][clear()]", "integer 1"},
                    Pulled{"x := {{1, 2}, 3}, x[clear(), clear() + 1]", "integer 2"},
                    Pulled{"x := {1, 2} , x SUB clear()", "integer 1"},
                    Pulled{"x := 1, x := clear(), x", "integer 0"},
                    Pulled{"x := {1, 2}, x[0] := clear()", "error 21"},
                    Pulled{"x := {1}, aappend(x, clear())", "error 39"},
                    Pulled{"x := {1}, ainsert(x, clear(), 2)", "error 39"},
                    Pulled{"x := {1}, aerase(x, clear())", "error 39"},
                    Pulled{"x := {1}, areplace(x, 0, clear())", "error 39"},
                    Pulled{"x := {1}, asinsert(x, clear())", "error 39"},
                    Pulled{"x := {1: 2}, merase(x, clear())", "error 39"},
                    Pulled{"x := {1, 2}, x[clear()] := 5", "error 21"},
                    Pulled{"m := {1: 2}, m[1] := clear()", "error 21"},
                    Pulled{"x := \"abc\", x.copy(clear(), 2)", "error 20"},
                    Pulled{"x := {\"abc\"}, x[clear()].copy(0, 2)", "error 20"},
                    Pulled{"x := {{2, 1}}, x[0].sort(lambda(a, b, clear()))", "undefined"},
                    Pulled{"x := {3, 2, 1}, x.sort(lambda(a, b, (clear(), a < b))), x",
                           "undefined"},
                    Pulled{"f := lambda(a, (clear(), a)), f(5)", "integer 5"},
                    Pulled{"f := lambda(a, b, a), f(5, clear())", "integer 5"},
                    Pulled{"f := lambda(a, lambda(b, b)), f(1)(clear())", "integer 0"},
                    Pulled{"s := \"abc\", {s, clear(), s}", "array {\"abc\", 0, (undefined)}"},
                    Pulled{"for(i, 1, 3, clear(), i)", "undefined"},
                    Pulled{"fortok(t, \"a,b,c\", \",\", clear(), t)", "undefined"},
                    Pulled{"x := 1, grow() + x", "integer 1"},
                    Pulled{"f := lambda(a, b, a + b), f(grow(), v7)", "integer 7"},
                    Pulled{"m := {1: {2, 3}}, m[1][1] := (grow(), 4), m", "map {1: {2, 4}}"}));

TEST(PulledScopes, An_object_method_loses_its_receiver_and_arguments) {
  IxoMepValueSet scope;
  PullingParser parser(scope);
  IxoMepValue object(IxoMepValueType::Object);
  object.MoveValue("f", new IxoMepValue(ValueOf("lambda(p, (clear(), \"end\"))")));
  Set(scope, "o", object);
  EXPECT_EQ(EvalWith(parser, "x := 1, o.f(1)", &scope).Shown(), "string \"end\"");
  Set(scope, "o", object);
  EXPECT_EQ(EvalWith(parser, "x := 1, o.f(x, clear())", &scope).Shown(), "string \"end\"");
}

TEST(PulledObjects, A_method_may_replace_the_property_whose_list_is_being_sorted) {
  IxoMepValueSet scope;
  Set(scope, "o", IxoMepValue(IxoMepValueType::Object));
  IxoMepObject* const object = Variable(scope, "o")->GetObject();
  object->MoveValue("wipe", new IxoMepValue(ValueOf("lambda(p, (p.list := 0))")));
  object->MoveValue("list", new IxoMepValue(0));
  EXPECT_EQ(
      Shown("o.list := {{o, o}, 1}, o.list[0].sort(lambda(x, y, (x.wipe(x), 1))), o.list", &scope),
      "integer 0");
  EXPECT_EQ(Shown("o.list := {o, o, o}, o.list.sort(lambda(x, y, (x.wipe(x), 1))), o.list", &scope),
            "integer 0");
}

// --- Memory that ends ---------------------------------------------------------------------------

TEST(Memory, Ends_at_every_possible_place_with_a_code_and_without_a_leak) {
  const std::vector<std::string> texts = {
      "x := \"abcdefghijklmnopqrstuvwxyz\" * 20, y := x + x, LEN y",
      "a := {}, for(i, 1, 60, aappend(a, {i, STR i})), LEN a",
      "m := map(), for(i, 1, 60, (m[STR i] := {i: i})), LEN m",
      "f := lambda(n, cond(n = 0, {}, {f(n - 1), n})), a := f(40), LEN a",
      "a := {}, for(i, 1, 40, aappend(a, 40 - i)), a.sort(lambda(x, y, x < y)), a[0]",
      "try(error(\"text\" * 30), 7)",
  };
  for (const std::string& text : texts) {
    const std::string expected = Shown(text);
    EXPECT_FALSE(expected.starts_with("error")) << text << " gives " << expected;
    const Compiled compiled = Compile(String(text));
    bool succeeded = false;
    for (std::size_t bytes = 0; bytes < 200000 && !succeeded; bytes += 1 + bytes / 16) {
      IxoMepValueSet scope;
      IxoMepValue* slot = nullptr;
      String error;
      int code = 0;
      {
        const ScopedMemoryLimit limit(bytes);
        code = compiled.tree->Evaluate(nullptr, &scope, slot, error, false);
      }
      const ValuePtr result(slot);
      EXPECT_TRUE(code == 0 || code == 37 || code == 38) << text << " gives " << code;
      if (code == 0 && slot != nullptr) succeeded = ShownValue(slot) == expected;
    }
    EXPECT_TRUE(succeeded) << text;
  }
}

TEST(Memory, A_text_that_doubles_itself_ends_with_37) {
  const ScopedMemoryLimit limit(50000000);
  EXPECT_EQ(Shown("x := \"0123456789\", while(1, (x := x + x))"), "error 37");
}

TEST(Memory, An_array_that_doubles_itself_ends_with_a_code) {
  const ScopedMemoryLimit limit(20000000);
  const Outcome outcome =
      Eval("a := {1}, while(1, (b := a, for(i, 0, LEN b - 1, aappend(a, b[i]))))");
  EXPECT_TRUE(outcome.code == 37 || outcome.code == 38) << outcome.ShownWithText();
}

}  // namespace
}  // namespace ixomep::test
