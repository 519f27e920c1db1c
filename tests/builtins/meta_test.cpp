// eval, parse, error, type, valofvar, curvars, internal.
#include <gtest/gtest.h>

#include <string>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/slot.h"
#include "tests/support/call_checks.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

const char* const kNoAssignment =
    "error 20: A variable is used that does not exist, or one would be changed where nothing may "
    "be changed.";

// An expression class of a host, with a function of its own.
class HostParser : public IxoMepExpressionParser {
 public:
  static int copies;

  using IxoMepExpressionParser::EvaluateFunctionCall;
  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* scope,
                                       const String& name, IxoMepValue*& result, String& errorText,
                                       bool strict) const override {
    if (name != "answer") {
      return IxoMepExpressionParser::EvaluateFunctionCall(call, scope, name, result, errorText,
                                                          strict);
    }
    IxoMepValue::Assign(result, 42);
    return IMEPERR_NONE;
  }
  IxoMepExpressionParser* CreateCopy() const override {
    ++copies;
    return new HostParser(*this);
  }
};
int HostParser::copies = 0;

std::int32_t EvaluateByHost(HostParser& parser, const char* text) {
  String error_text;
  IxoMepValueSet scope;
  EXPECT_EQ(parser.SetExpression(text, error_text), IMEPERR_NONE);
  IxoMepValue* slot = nullptr;
  EXPECT_EQ(parser.Evaluate(&scope, slot, error_text, false, false), IMEPERR_NONE)
      << error_text.c_str();
  const ValuePtr result(slot);
  return result != nullptr ? result->GetInt() : -1;
}

TEST(Eval, Text_is_compiled_and_evaluated_in_the_current_scope) {
  Session session;
  CheckAll(session, {{"eval(\"1 + 2\")", "integer 3"},
                     {"x := 5, eval(\"x * 2\")", "integer 10"},
                     {"eval(\"y := 3\"), y", "integer 3"},
                     {"eval(\"while(0, 1)\")", "no result"}});
}

TEST(Eval, Text_with_a_mistake_fails_with_the_code_of_the_mistake) {
  Session session;
  EXPECT_TRUE(session.Eval("eval(\"\")").starts_with("error 13"));
  EXPECT_EQ(session.Eval("eval(\"(1\")"), "error 14: \")\" is expected here.");
  EXPECT_TRUE(session.Eval("eval(\"1 2\")").starts_with("error 15"));
}

TEST(Eval, Expression_value_is_evaluated) {
  Session session;
  CheckAll(session, {{"e := parse(\"a + 1\"), a := 2, eval(e)", "integer 3"},
                     {"a := 10, eval(e)", "integer 11"},
                     {"eval(parse(\"b := 4\")), b", "integer 4"}});
}

TEST(Eval, Expression_may_replace_the_variable_that_holds_it) {
  Session session;
  CheckAll(session, {{"e := parse(\"e := 1, e + 1\"), eval(e)", "integer 2"},
                     {"s := \"s := 1, s + 1\", eval(s)", "integer 2"}});
}

TEST(Eval, Any_other_type_is_refused) {
  Session session;
  session.Set("x", IxoMepValue("1"));
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("x")));
  CheckAll(session, {{"eval(1)", "error 21: A value has the wrong type: eval(integer)"},
                     {"eval({1})", "error 21: A value has the wrong type: eval(array)"},
                     {"eval(unknown)", "error 21: A value has the wrong type: eval(undefined)"},
                     {"eval(r)", "error 21: A value has the wrong type: eval(reference)"},
                     {"eval(lambda(x, x))", "error 21: A value has the wrong type: eval(lambda)"}});
}

TEST(Eval, No_assignment_flag_holds_inside) {
  Session session;
  session.Set("x", IxoMepValue(4));
  EXPECT_EQ(session.Eval("eval(\"x + 1\")", true), "integer 5");
  EXPECT_EQ(session.Eval("eval(\"x := 1\")", true), kNoAssignment);
  EXPECT_EQ(session.Eval("eval(\"unknown\")", true), kNoAssignment);
}

TEST(Eval, Text_that_evaluates_itself_forever_ends_with_38) {
  Session session;
  session.Set("t", IxoMepValue("eval(t)"));
  EXPECT_EQ(session.Eval("eval(t)"), "error 38: The expression is nested too deeply.");
}

TEST(Eval, The_new_expression_is_of_the_class_of_the_caller) {
  HostParser parser;
  parser.SetLineNo(17);
  HostParser::copies = 0;
  EXPECT_EQ(EvaluateByHost(parser, "eval(\"answer() + curlineno()\")"), 42 + 17);
  EXPECT_EQ(HostParser::copies, 1);
  EXPECT_EQ(EvaluateByHost(parser, "eval(parse(\"answer()\"))"), 42);
}

TEST(Eval, Without_an_expression_object_a_plain_one_is_made) {
  IxoMepExpressionParser parser;
  IxoMepValueSet scope;
  String text;
  ASSERT_EQ(parser.SetExpression("eval(\"1 + 2\")", text), IMEPERR_NONE);
  IxoMepValue* slot = nullptr;
  EXPECT_EQ(parser.GetTree()->Evaluate(nullptr, &scope, slot, text, false), IMEPERR_NONE);
  const ValuePtr result(slot);
  EXPECT_EQ(result->GetInt(), 3);
}

TEST(Parse, Gives_an_expression_that_is_not_evaluated) {
  Session session;
  CheckAll(session, {{"type(parse(\"error(1)\"))", "string \"expression\""},
                     {"parse(\"1+a\")", "expression ((1)+(a))"},
                     {"e := parse(\"a + 1\"), a := 1, f := e, a := 2, eval(f)", "integer 3"}});
}

TEST(Parse, Mistake_fails_with_its_code) {
  Session session;
  EXPECT_EQ(session.Eval("parse(\"(1\")"), "error 14: \")\" is expected here.");
  EXPECT_TRUE(session.Eval("parse(\"\")").starts_with("error 13"));
  EXPECT_TRUE(session.Eval("parse(\"FOO\")").starts_with("error 24"));
}

TEST(Meta, Counts_and_types_of_plain_functions_are_those_of_the_table) {
  CheckCountsAndTypes({"parse", {"S"}});
  CheckCountsAndTypes({"type", {"X"}});
}

TEST(Eval, Count_is_exactly_one) {
  Session session;
  for (const char* call : {"eval()", "eval(\"1\", \"2\")"}) {
    EXPECT_EQ(session.Eval(call), "error 23: The number of arguments is wrong: eval()") << call;
  }
}

TEST(Error, Fails_with_32_and_the_message) {
  Session session;
  session.Set("percent", IxoMepValue("100%s %func"));
  CheckAll(session, {{"error(\"my message\")", "error 32: my message"},
                     {"error(\"\")", "error 32: "},
                     {"error(\"a\" + \"b\")", "error 32: ab"},
                     {"error(percent)", "error 32: 100%s %func"}});
}

TEST(Error, Message_that_is_no_string_fails_with_21) {
  Session session;
  CheckAll(session,
           {{"error(5)", "error 21: A value has the wrong type: error(integer)"},
            {"error({})", "error 21: A value has the wrong type: error(array)"},
            {"error(unknown)", "error 21: A value has the wrong type: error(undefined)"},
            {"error(error(\"inner\"))", "error 32: inner"},
            {"error()", "error 23: The number of arguments is wrong: error()"},
            {"error(\"a\", \"b\")", "error 23: The number of arguments is wrong: error()"}});
}

TEST(Type, Gives_the_name_of_every_type) {
  Session session;
  session.Set("x", IxoMepValue(1));
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("x")));
  CheckAll(session, {{"type(\"a\")", "string \"string\""},
                     {"type(1)", "string \"integer\""},
                     {"type(1.5)", "string \"real\""},
                     {"type(1cm)", "string \"measure\""},
                     {"type(1s)", "string \"time\""},
                     {"type(parse(\"1\"))", "string \"expression\""},
                     {"type({1})", "string \"array\""},
                     {"type(map())", "string \"map\""},
                     {"type(r)", "string \"reference\""},
                     {"type(lambda(a, a))", "string \"lambda\""},
                     {"type(object())", "string \"object\""},
                     {"type(unknown)", "string \"undefined\""},
                     {"type(while(0, 1))", "string \"undefined\""}});
}

TEST(ValOfVar, Gives_a_copy_of_the_variable_of_that_name) {
  Session session;
  CheckAll(session, {{"x := 5, valofvar(\"x\")", "integer 5"},
                     {"n := \"x\", valofvar(n)", "integer 5"},
                     {"a := {1}, b := valofvar(\"a\"), b[0] := 2, a", "array {1}"}});
}

TEST(ValOfVar, Unknown_name_gives_undefined_and_creates_nothing) {
  Session session;
  CheckAll(session, {{"valofvar(\"unknown\")", "undefined (undefined)"},
                     {"valofvar(\"\")", "undefined (undefined)"}});
  EXPECT_FALSE(session.scope().OldIsContained("unknown"));
}

TEST(ValOfVar, Name_must_be_one_string) {
  Session session;
  CheckAll(session,
           {{"valofvar(1)", "error 21: A value has the wrong type: valofvar(integer)"},
            {"valofvar()", "error 23: The number of arguments is wrong: valofvar()"},
            {"valofvar(\"a\", \"b\")", "error 23: The number of arguments is wrong: valofvar()"},
            {"valofvar(error(\"name\"))", "error 32: name"}});
}

TEST(ValOfVar, Fails_with_20_under_the_no_assignment_flag) {
  Session session;
  session.Set("x", IxoMepValue(5));
  EXPECT_EQ(session.Eval("valofvar(\"x\")", true), kNoAssignment);
}

TEST(CurVars, Lists_every_variable_with_its_value) {
  Session session;
  session.Eval("x := 5, y := \"a\"");
  const std::string lines = session.Eval("curvars()");
  EXPECT_TRUE(lines == "string \"x:5\\ny:\\\"a\\\"\\n\"" ||
              lines == "string \"y:\\\"a\\\"\\nx:5\\n\"")
      << lines;
}

TEST(CurVars, Empty_scope_gives_the_empty_string) {
  Session session;
  EXPECT_EQ(session.Eval("curvars()"), "string \"\"");
}

TEST(CurVars, Order_is_that_of_the_names_addresses) {
  Session session;
  std::string setup;
  for (const char* name : {"one", "two", "three", "four", "five"}) {
    setup += std::string(setup.empty() ? "" : ", ") + name + " := 1";
  }
  session.Eval(setup);
  IxoMepValueSetMap variables;
  session.scope().GetAllVars(variables, true);
  std::string expected;
  for (const auto& [name, value] : variables) {
    expected += std::string(name) + ":1\\n";
    delete value;
  }
  EXPECT_EQ(session.Eval("curvars()"), "string \"" + expected + "\"");
}

TEST(CurVars, Inner_variable_hides_the_outer_one_of_its_name) {
  Session session;
  session.Set("x", IxoMepValue(1));
  IxoMepValueSet inner(&session.scope());
  inner.OldSetValue("x", IxoMepValue(2), true);
  IxoMepExpressionParser parser;
  String text;
  ASSERT_EQ(parser.SetExpression("search(curvars(), \"x:2\", 0) >= 0 AND "
                                 "search(curvars(), \"x:1\", 0) < 0",
                                 text),
            IMEPERR_NONE);
  IxoMepValue* slot = nullptr;
  ASSERT_EQ(parser.Evaluate(&inner, slot, text, false, false), IMEPERR_NONE);
  const ValuePtr result(slot);
  EXPECT_EQ(result->GetInt(), 1);
}

TEST(CurVars, Any_argument_fails_with_23_and_the_flag_with_20) {
  Session session;
  EXPECT_EQ(session.Eval("curvars(1)"), "error 23: The number of arguments is wrong: curvars()");
  EXPECT_EQ(session.Eval("curvars()", true), kNoAssignment);
}

TEST(Internal, Gives_the_handles_of_the_hosts_windows) {
  TestHost host;
  int application = 0;
  int top = 0;
  host.application_window = &application;
  host.top_window = &top;
  host.native_handles = {{&application, 4711}, {&top, 4712}};
  Session session;
  CheckAll(session,
           {{"internal(\"APPWIN\")", "integer 4711"}, {"internal(\"TOPWIN\")", "integer 4712"}});
}

TEST(Internal, Other_keys_give_undefined_and_case_counts) {
  Session session;
  CheckAll(session, {{"internal(\"\")", "undefined (undefined)"},
                     {"internal(\"appwin\")", "undefined (undefined)"},
                     {"internal(\"APPWIN \")", "undefined (undefined)"}});
}

TEST(Internal, Key_must_be_one_string_and_the_flag_fails_with_20) {
  Session session;
  CheckAll(session,
           {{"internal(1)", "error 21: A value has the wrong type: internal(integer)"},
            {"internal()", "error 23: The number of arguments is wrong: internal()"},
            {"internal(\"a\", \"b\")", "error 23: The number of arguments is wrong: internal()"}});
  EXPECT_EQ(session.Eval("internal(\"APPWIN\")", true), kNoAssignment);
}

}  // namespace
}  // namespace ixomep::test
