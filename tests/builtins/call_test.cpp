// The stages that every call goes through: counting, evaluating, matching, the body; the members
// of a node that hosts call directly; and evaluation without a scope.
#include "ixomep/builtins/call.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ixomep/builtins/table.h"
#include "ixomep/expr/builtin_table.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/slot.h"
#include "tests/support/call_checks.h"
#include "tests/support/definitions.h"
#include "tests/support/eval.h"
#include "tests/support/limits.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

// One call of a built-in through the member that the table names.
class DirectCall {
 public:
  explicit DirectCall(const char* text) {
    String error_text;
    EXPECT_EQ(parser_.SetExpression(text, error_text), IMEPERR_NONE) << text;
  }
  IxoMepErrorEnum Run(IxoMepValue*& result, bool strict = false) {
    const IxoMepExprNode& node = *parser_.GetTree();
    const auto handler =
        IxoMepExprNode::aFunctionCallMap.find(node.GetParam0()->GetNameAddress())->second;
    return (node.*handler)(&parser_, &scope_, result, text_, strict);
  }
  const String& text() const { return text_; }
  IxoMepValueSet& scope() { return scope_; }

 private:
  IxoMepExpressionParser parser_;
  IxoMepValueSet scope_;
  String text_;
};

TEST(Handler, Allocates_a_result_into_an_empty_slot) {
  DirectCall call("tokcnt(\"a b\")");
  IxoMepValue* slot = nullptr;
  EXPECT_EQ(call.Run(slot), IMEPERR_NONE);
  const ValuePtr result(slot);
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(result->GetInt(), 2);
}

TEST(Handler, Assigns_into_the_value_of_the_caller) {
  DirectCall call("tokcnt(\"a b\")");
  const ValuePtr own = MakeValue("before");
  IxoMepValue* slot = own.get();
  EXPECT_EQ(call.Run(slot), IMEPERR_NONE);
  EXPECT_EQ(slot, own.get());
  EXPECT_EQ(own->GetInt(), 2);
}

TEST(Handler, Destroys_the_value_of_the_caller_on_failure) {
  for (const char* text : {"tokcnt(1)", "tokcnt()", "tokcnt(error(\"x\"))", "cond(\"a\", 1, 2)"}) {
    DirectCall call(text);
    IxoMepValue* slot = new IxoMepValue("before");
    EXPECT_NE(call.Run(slot), IMEPERR_NONE);
    EXPECT_EQ(slot, nullptr);
    EXPECT_FALSE(call.text().IsEmpty());
  }
}

TEST(Handler, Without_memory_for_a_tree_ends_with_38) {
  // More nodes than the free list keeps.
  DirectCall call(("lambda(1" + Repeated("+1", 40000) + ")").c_str());
  IxoMepValue* slot = nullptr;
  const ScopedMemoryLimit limit(0);
  EXPECT_EQ(call.Run(slot), IMEPERR_TOO_DEEP);
  EXPECT_EQ(slot, nullptr);
}

TEST(Handler, Leaves_a_variable_in_the_slot_to_its_scope_on_failure) {
  DirectCall call("tokcnt(1)");
  call.scope().OldSetValue("x", IxoMepValue("kept"), true);
  IxoMepValue* slot = call.scope().OldGetLValue("x");
  EXPECT_EQ(call.Run(slot), IMEPERR_WRONG_TYPE);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(call.scope().OldGetValue("x")->GetStr(), "kept");
}

TEST(Handler, Leaves_the_slot_as_it_was_when_there_is_no_result) {
  DirectCall call("while(0, 1)");
  IxoMepValue* slot = nullptr;
  EXPECT_EQ(call.Run(slot), IMEPERR_NONE);
  EXPECT_EQ(slot, nullptr);
  const ValuePtr own = MakeValue("before");
  slot = own.get();
  EXPECT_EQ(call.Run(slot), IMEPERR_NONE);
  EXPECT_EQ(slot, own.get());
  EXPECT_EQ(own->GetStr(), "before");
}

TEST(Handler, Passes_the_no_assignment_flag_on) {
  DirectCall call("set(x, 1)");
  IxoMepValue* slot = nullptr;
  EXPECT_EQ(call.Run(slot, true), IMEPERR_UNKNOWN_VARIABLE);
  EXPECT_EQ(call.Run(slot, false), IMEPERR_NONE);
  const ValuePtr result(slot);
  EXPECT_TRUE(call.scope().OldIsContained("x"));
}

TEST(Handler, Every_member_of_the_table_runs_its_own_function) {
  // Without arguments, each function either works or names itself in the text of 23.
  for (const BuiltinRow& row : BuiltinRows()) {
    if (row.name[0] == '{') continue;
    DirectCall call((std::string(row.name) + "()").c_str());
    IxoMepValue* slot = nullptr;
    const IxoMepErrorEnum code = call.Run(slot);
    const ValuePtr result(slot);
    if (row.signature.FormFor(0) != nullptr) {
      EXPECT_EQ(code, IMEPERR_NONE) << row.name;
    } else {
      EXPECT_EQ(code, IMEPERR_WRONG_ARGUMENT_COUNT) << row.name;
      EXPECT_EQ(call.text(), TextOf(code, {{"%func", std::string(row.name) + "()"}}));
    }
  }
  EXPECT_EQ(Session().Eval("{}"), "array {}");
  EXPECT_EQ(Session().Eval("{1: 2}"), "map {1: 2}");
}

TEST(Call, Counts_before_it_evaluates) {
  Session session;
  EXPECT_EQ(session.Eval("tokcnt((x := 1), 2, 3)"),
            "error 23: The number of arguments is wrong: tokcnt()");
  EXPECT_FALSE(session.scope().OldIsContained("x"));
}

TEST(Call, Evaluates_all_arguments_left_to_right_before_it_looks_at_their_types) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session, {{"token((log := log + \"a\", 1), (log := log + \"b\", 2), "
                      "(log := log + \"c\", 3))",
                      "error 21: A value has the wrong type: token(integer, integer, integer)"},
                     {"log", "string \"abc\""},
                     {"token(1, error(\"second\"), error(\"third\"))", "error 32: second"}});
}

TEST(Call, Argument_keeps_its_value_when_a_later_argument_changes_the_variable) {
  Session session;
  CheckAll(session, {{"s := \"a b\", tokcat(s, (s := \"c\"))", "string \"a b c\""},
                     {"s := \"a b\", token(s, (s := \"zzz zzz\", 1))", "string \"b\""},
                     {"a := {\"x\", \"y\"}, tokstr(a, (a := 5, \",\"))", "string \"x,y\""},
                     {"a := {\"x\"}, tokcat(a[0], (a[0] := \"new\"))", "string \"x new\""}});
}

TEST(Call, Argument_that_leaves_its_result_unset_counts_as_undefined) {
  Session session;
  CheckAll(session,
           {{"tokcnt(while(0, 1))", "error 21: A value has the wrong type: tokcnt(undefined)"},
            {"tokcnt(\"a\", while(0, 1))",
             "error 21: A value has the wrong type: tokcnt(string, undefined)"}});
}

TEST(Call, Reference_to_a_string_is_no_string) {
  Session session;
  session.Set("s", IxoMepValue("a"));
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("s")));
  EXPECT_EQ(session.Eval("tokcnt(r)"), "error 21: A value has the wrong type: tokcnt(reference)");
}

TEST(Call, Text_of_21_shows_six_arguments_at_most) {
  Session session;
  EXPECT_EQ(session.Eval("array(1, 2, 3, 4, 5, 6, \"seven\")"),
            "error 21: A value has the wrong type: array(integer, integer, integer, integer, "
            "integer, integer)");
}

TEST(Call, Many_arguments_are_taken) {
  Session session;
  EXPECT_EQ(session.Eval("LEN array(2, 1, 1, 1, 1, 1, 1, 1)"), "integer 2");
  EXPECT_EQ(session.Eval("n := 0, LEN array((n := n + 1, 3), n, n, n, n, n)"), "integer 3");
}

// Evaluates without a scope.
std::string EvalWithoutScope(const char* text) {
  IxoMepExpressionParser parser;
  String error_text;
  EXPECT_EQ(parser.SetExpression(text, error_text), IMEPERR_NONE) << text;
  IxoMepValue* slot = nullptr;
  const IxoMepErrorEnum code = parser.Evaluate(nullptr, slot, error_text, false, false);
  const ValuePtr result(slot);
  if (code != IMEPERR_NONE) return "error " + std::to_string(code);
  if (result == nullptr) return "no result";
  return std::string(result->GetText().view());
}

TEST(WithoutScope, Every_name_is_unknown_and_nothing_can_be_assigned) {
  const EvalCase cases[] = {
      {"valofvar(\"x\")", "(undefined)"},
      {"LEN curvars()", "0"},
      {"set(x, 1)", "error 20"},
      {"for(i, 1, 2, 0)", "error 20"},
      {"fortok(t, \"a b\", \" \", 0)", "error 20"},
      {"aappend(a, 1)", "error 39"},
      {"ainsert(a, 0, 1)", "error 39"},
      {"aerase(a, 0)", "error 39"},
      {"areplace(a, 0, 1)", "error 39"},
      {"asinsert(a, 0)", "error 39"},
      {"merase(m, 1)", "error 39"},
      {"try(set(x, 1), 5)", "5"},
      {"eval(\"1 + 2\")", "3"},
      {"eval(parse(\"1 + 2\"))", "3"},
      {"eval(\"x := 2\")", "error 20"},
      {"type(lambda(x, x + y))", "\"lambda\""},
      {"type(x)", "\"undefined\""},
      {"cond(0, 1, 2)", "2"},
      {"while(0, 1, 3)", "3"},
      {"while(x, 1, 3)", "error 21"},
      {"tokunion(\"a\", \"b\")", "\"a b\""},
      {"{1, x}", "{1, (undefined)}"},
      {"{1: x}", "{1: (undefined)}"},
  };
  for (const EvalCase& row : cases) {
    EXPECT_EQ(EvalWithoutScope(row.text.c_str()), row.result) << row.text;
  }
}

TEST(Call, Memory_that_cannot_be_had_fails_with_37) {
  Session session;
  session.Set("long", IxoMepValue(String::Filled(300000, ' ')));
  const ScopedMemoryLimit limit(1 << 20);
  for (const char* call : {"strarray(long)", "tokcat(long + long, long + long)", "valarray(long)",
                           "replall(long, \" \", \"12345678\")"}) {
    EXPECT_EQ(session.Eval(call), "error 37: A text becomes too long.") << call;
  }
}

TEST(Call, Every_limit_of_memory_leaves_a_clean_failure_or_a_result) {
  Session session;
  session.Eval("a := {{1, 2}, {3}}, m := {1: \"one\", 2: {2}}, s := \"some words in a list\"");
  const char* const calls[] = {
      "tokunion(s, \"more words in another list of words\")",
      "tokstr(strarray(s + s), \", \")",
      "valarray(\"1 2.5 (1+2) {1,2,3} \" + mstr(s))",
      "array(3, 4)",
      "{1: {2: {3: s + s}}, s + \"x\": {s + s, s + s + s}}",
      "eval(\"{1, 2, s + s + s + s}\")",
      "parse(\"a + b * cond(1, 2, 3)\")",
      "lambda(x, y, x + y + s)",
      "curvars()",
      "replall(s, \"o\", \"a longer text than before\")",
      "try(array(4, 4), 1)",
      "aappend(a, 0, s + s + s + s)",
      "areplace(a, 1, {s + s, s + s})",
      "set(m[5], {s + s, 1})",
  };
  for (const char* call : calls) {
    IxoMepExpressionParser parser;
    String text;
    ASSERT_EQ(parser.SetExpression(call, text), IMEPERR_NONE) << call;
    IxoMepErrorEnum code = IMEPERR_TOO_LONG;
    for (std::size_t bytes = 0; bytes < 20000 && code != IMEPERR_NONE; bytes += 48) {
      const ScopedMemoryLimit limit(bytes);
      IxoMepValue* slot = nullptr;
      code = parser.Evaluate(&session.scope(), slot, text, false, false);
      const ValuePtr result(slot);
      EXPECT_TRUE(code == IMEPERR_NONE || code == IMEPERR_TOO_LONG || code == IMEPERR_TOO_DEEP)
          << call << " gives " << code;
    }
    EXPECT_EQ(code, IMEPERR_NONE) << call;
  }
}

TEST(Arguments, Keep_the_value_that_they_had_when_a_later_one_changes_the_variable) {
  Session session;
  EXPECT_EQ(session.Eval("x := 3, max(x, (x := 1))"), "integer 3");
  EXPECT_EQ(session.Eval("a := {3}, max(a[0], (a[0] := 1))"), "integer 3");
  EXPECT_EQ(session.Eval("s := \"abc\", replace(s, \"b\", (s := \"-\"))"), "string \"a-c\"");
  EXPECT_EQ(session.Eval("s := \"abc\", copy(s, 1, (s := \"\", 2))"), "string \"bc\"");
}

TEST(Handlers, Called_by_a_host_are_under_the_limits_of_an_evaluation) {
  DirectCall call("tokcnt(\"a b\")");
  IxoMepValue* result = nullptr;
  {
    const InterruptingHost host(0);
    EXPECT_EQ(call.Run(result), IMEPERR_TOO_DEEP);
    EXPECT_EQ(call.text(), "The evaluation is interrupted.");
    EXPECT_EQ(result, nullptr);
  }
  EXPECT_EQ(call.Run(result), IMEPERR_NONE);
  EXPECT_EQ(ShownValue(ValuePtr(result).get()), "integer 2");
}

}  // namespace
}  // namespace ixomep::test
