// lambda: its parameters, the capture of visible variables, and calls of what it makes.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/call_checks.h"

namespace ixomep::test {
namespace {

const char* const kNotAssignable =
    "error 31: A place that can be assigned is expected, such as the bare name of a variable; a "
    "captured variable is constant in the lambda.";

TEST(Lambda, Gives_a_lambda_of_the_named_parameters) {
  Session session;
  CheckAll(session, {{"type(lambda(x, y, x + y))", "string \"lambda\""},
                     {"f := lambda(x, y, x - y), f(5, 3)", "integer 2"},
                     {"g := lambda(7), g()", "integer 7"}});
}

TEST(Lambda, Evaluates_nothing) {
  Session session;
  CheckAll(session,
           {{"f := lambda(x, error(\"body\")), 1", "integer 1"}, {"f(1)", "error 32: body"}});
}

TEST(Lambda, Parameter_that_is_no_bare_name_fails_with_31) {
  Session session;
  for (const char* call :
       {"lambda(1, 2)", "lambda(x, 1, x)", "lambda(\"x\", 1)", "lambda(a[0], 1)", "lambda(f(x), 1)",
        "lambda(x + 1, 1)", "lambda(a.b, 1)", "lambda((x, y), 1)"}) {
    EXPECT_EQ(session.Eval(call), kNotAssignable) << call;
  }
}

TEST(Lambda, Without_arguments_fails_with_23) {
  Session session;
  EXPECT_EQ(session.Eval("lambda()"), "error 23: The number of arguments is wrong: lambda()");
}

TEST(Lambda, Works_under_the_no_assignment_flag) {
  Session session;
  EXPECT_EQ(session.Eval("type(lambda(x, (x := 1)))", true), "string \"lambda\"");
  EXPECT_EQ(session.Eval("type(lambda(x, x))", true), "string \"lambda\"");
}

TEST(Lambda, Captures_the_value_that_a_visible_variable_has_now) {
  Session session;
  CheckAll(session, {{"k := 10, f := lambda(x, x + k), k := 99, f(1)", "integer 11"}});
}

TEST(Lambda, Names_that_are_not_visible_yet_resolve_at_the_call) {
  Session session;
  CheckAll(session, {{"f := lambda(x, x + later), later := 5, f(1)", "integer 6"}});
}

TEST(Lambda, Parameter_is_never_captured) {
  Session session;
  CheckAll(session, {{"x := 10, f := lambda(x, x + 1), f(1)", "integer 2"}});
}

TEST(Lambda, Assignment_to_a_captured_name_fails_with_31) {
  Session session;
  EXPECT_EQ(session.Eval("n := 1, f := lambda((n := 2)), f()"), kNotAssignable);
}

TEST(Lambda, Calls_itself_by_the_name_that_it_is_assigned_to) {
  Session session;
  CheckAll(session,
           {{"fib := lambda(n, cond(n < 2, n, fib(n - 1) + fib(n - 2))), fib(10)", "integer 55"}});
}

TEST(Lambda, Definition_inside_another_is_not_given_the_outer_name) {
  Session session;
  CheckAll(session,
           {{"g := lambda(x, x * 2), h := cond(1, lambda(x, g(x) + 1), 0), "
             "g := lambda(x, 0), h(5)",
             "integer 11"},
            {"h := lambda(x, x * 2), h := cond(1, lambda(x, h(x) + 1), 0), h(5)", "integer 11"}});
}

}  // namespace
}  // namespace ixomep::test
