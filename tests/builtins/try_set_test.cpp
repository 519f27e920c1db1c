// try and set.
#include <gtest/gtest.h>

#include <string>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/slot.h"
#include "tests/support/call_checks.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

const char* const kNotAssignable =
    "error 31: A place that can be assigned is expected, such as the bare name of a variable; a "
    "captured variable is constant in the lambda.";
const char* const kNoAssignment =
    "error 20: A variable is used that does not exist, or one would be changed where nothing may "
    "be changed.";

TEST(Try, Value_of_the_expression_when_it_succeeds) {
  Session session;
  CheckAll(session, {{"try(1 + 1, error(\"fallback\"))", "integer 2"},
                     {"try(while(0, 1), 5)", "no result"}});
}

TEST(Try, Fallback_when_the_expression_fails_with_any_code) {
  Session session;
  CheckAll(session, {{"try(error(\"a\"), 7)", "integer 7"},
                     {"try(1 / 0, 7)", "integer 7"},
                     {"try(1 + \"a\", 7)", "integer 7"},
                     {"try(nowhere(1), 7)", "integer 7"},
                     {"try(tokcnt(), 7)", "integer 7"},
                     {"try({1}[5], 7)", "integer 7"},
                     {"try(eval(\"(\"), 7)", "integer 7"},
                     {"try(error(\"a\"), while(0, 1))", "no result"}});
}

TEST(Try, Failing_fallback_gives_its_own_code_and_text) {
  Session session;
  EXPECT_EQ(session.Eval("try(error(\"a\"), error(\"b\"))"), "error 32: b");
}

TEST(Try, Only_evaluates_the_fallback_when_it_is_needed) {
  Session session;
  EXPECT_EQ(session.Eval("try(1, (x := 1))"), "integer 1");
  EXPECT_FALSE(session.scope().OldIsContained("x"));
}

TEST(Try, What_the_failed_expression_assigned_stays) {
  Session session;
  CheckAll(session, {{"try((x := 1, error(\"a\")), 2)", "integer 2"}, {"x", "integer 1"}});
}

TEST(Try, Text_of_the_failed_attempt_is_not_cleared) {
  IxoMepExpressionParser parser;
  IxoMepValueSet scope;
  String text;
  ASSERT_EQ(parser.SetExpression("try(error(\"first\"), 7)", text), IMEPERR_NONE);
  IxoMepValue* slot = nullptr;
  ASSERT_EQ(parser.Evaluate(&scope, slot, text, false, false), IMEPERR_NONE);
  const ValuePtr result(slot);
  EXPECT_EQ(text, "first");
  EXPECT_EQ(result->GetInt(), 7);
}

TEST(Try, Fails_with_20_under_the_no_assignment_flag) {
  Session session;
  EXPECT_EQ(session.Eval("try(1, 2)", true), kNoAssignment);
}

TEST(Try, Counts_other_than_two_fail_with_23_also_under_the_flag) {
  Session session;
  for (const char* call : {"try()", "try(1)", "try(1, 2, 3)"}) {
    EXPECT_EQ(session.Eval(call), "error 23: The number of arguments is wrong: try()") << call;
    EXPECT_EQ(session.Eval(call, true), "error 23: The number of arguments is wrong: try()");
  }
}

TEST(Try, Catches_what_memory_cannot_hold) {
  Session session;
  const ScopedMemoryLimit limit(1 << 20);
  EXPECT_EQ(session.Eval("try(\"ab\" * 10000000, \"caught\")"), "string \"caught\"");
  EXPECT_EQ(session.Eval("try(array(10000000), \"caught\")"), "string \"caught\"");
}

TEST(Set, Assigns_and_gives_the_value) {
  Session session;
  CheckAll(session, {{"set(x, 5)", "integer 5"},
                     {"x", "integer 5"},
                     {"set(x, \"a\")", "string \"a\""},
                     {"x", "string \"a\""},
                     {"set(x, {1, 2})", "array {1, 2}"},
                     {"set(x[1], 9)", "integer 9"},
                     {"x", "array {1, 9}"},
                     {"set(x, unknown)", "undefined (undefined)"},
                     {"type(x)", "string \"undefined\""}});
}

TEST(Set, Value_that_leaves_its_result_unset_counts_as_undefined) {
  Session session;
  CheckAll(session,
           {{"set(x, while(0, 1))", "undefined (undefined)"}, {"type(x)", "string \"undefined\""}});
}

TEST(Set, The_variable_keeps_its_value_object) {
  Session session;
  for (const char* value : {"\"text\"", "1", "2.5", "1cm", "3s", "{1}", "map()", "object()"}) {
    session.Set("x", IxoMepValue("before"));
    const IxoMepValue* const before = session.scope().OldGetValue("x");
    session.Eval(std::string("set(x, ") + value + ")");
    EXPECT_EQ(session.scope().OldGetValue("x"), before) << value;
  }
}

TEST(Set, References_to_the_variable_see_the_new_value) {
  Session session;
  session.Set("x", IxoMepValue(1));
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("x")));
  CheckAll(session, {{"set(x, 5), r + 0", "real 5.0"},
                     {"set(r, 6), x", "integer 6"},
                     {"type(r)", "string \"reference\""}});
}

TEST(Set, A_reference_as_value_is_stored_as_a_copy_of_what_it_refers_to) {
  Session session;
  session.Set("x", IxoMepValue(1));
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("x")));
  CheckAll(session, {{"set(y, r)", "integer 1"}, {"x := 2, y", "integer 1"}});
}

TEST(Set, Entry_of_a_map_is_found_or_created) {
  Session session;
  CheckAll(session, {{"m := map(), set(m[\"a\"], 1)", "integer 1"},
                     {"set(m[\"a\"], 2), set(m[3], \"x\"), m", "map {3: \"x\", \"a\": 2}"}});
}

TEST(Set, Elements_beyond_the_end_are_not_created) {
  Session session;
  EXPECT_EQ(session.Eval("a := {1}, set(a[1], 2)"),
            "error 27: An index is beyond the last element of the array.");
}

TEST(Set, Place_is_evaluated_before_the_value) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session, {{"a := {0, 0}, set(a[(log := log + \"p\", 1)], (log := log + \"v\", 4)), log",
                      "string \"pv\""},
                     {"a", "array {0, 4}"},
                     {"set(1, error(\"value\"))", kNotAssignable},
                     {"set(f(1), error(\"value\"))", kNotAssignable}});
}

TEST(Set, Place_is_found_again_after_the_value_was_evaluated) {
  Session session;
  CheckAll(session, {{"a := {1, 2}, set(a[1], (a := {7, 8, 9}, 5)), a", "array {7, 5, 9}"},
                     {"a := {1, 2}, set(a[1], (a := {}, 5))",
                      "error 27: An index is beyond the last element of the array."}});
}

TEST(Set, Failing_value_leaves_the_variable_as_it_was) {
  Session session;
  session.Set("x", IxoMepValue(1));
  CheckAll(session, {{"set(x, error(\"value\"))", "error 32: value"}, {"x", "integer 1"}});
}

TEST(Set, Lambda_calls_itself_by_the_name_that_it_is_given) {
  Session session;
  CheckAll(session,
           {{"set(fac, lambda(n, cond(n < 2, 1, n * fac(n - 1)))), fac(5)", "integer 120"}});
}

TEST(Set, Fails_with_20_under_the_no_assignment_flag) {
  Session session;
  EXPECT_EQ(session.Eval("set(x, 5)", true), kNoAssignment);
  EXPECT_EQ(session.Eval("set(1, error(\"value\"))", true), kNoAssignment);
  EXPECT_FALSE(session.scope().OldIsContained("x"));
}

TEST(Set, Counts_other_than_two_fail_with_23) {
  Session session;
  for (const char* call : {"set()", "set(x)", "set(x, 1, 2)"}) {
    EXPECT_EQ(session.Eval(call), "error 23: The number of arguments is wrong: set()") << call;
  }
}

}  // namespace
}  // namespace ixomep::test
