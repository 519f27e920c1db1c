// for and fortok: the loop variable, the bounds, the tokens, and the final expression.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/support/call_checks.h"

namespace ixomep::test {
namespace {

const char* const kNotAssignable =
    "error 31: A place that can be assigned is expected, such as the bare name of a variable; a "
    "captured variable is constant in the lambda.";

TEST(For, Counts_from_the_first_bound_to_the_last_inclusive) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session, {{"for(i, 1, 3, (log := log + STR i))", "no result"},
                     {"log", "string \"123\""},
                     {"i", "integer 3"},
                     {"(log := \"\"), for(i, -1, 1, (log := log + STR i), log)", "string \"-101\""},
                     {"(log := \"\"), for(i, 7, 7, (log := log + STR i), log)", "string \"7\""}});
}

TEST(For, From_greater_than_to_runs_nothing_and_leaves_the_variable_untouched) {
  Session session;
  session.Set("i", IxoMepValue("before"));
  CheckAll(session, {{"for(i, 3, 1, error(\"ran\"))", "no result"},
                     {"i", "string \"before\""},
                     {"for(i, 3, 1, error(\"ran\"), \"final\")", "string \"final\""},
                     {"i", "string \"before\""}});
}

TEST(For, Assignment_to_the_variable_in_the_body_does_not_change_the_iteration) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session, {{"for(i, 1, 3, (log := log + STR i, i := 10))", "no result"},
                     {"log", "string \"123\""},
                     {"i", "integer 10"}});
}

TEST(For, Final_expression_is_evaluated_after_the_last_iteration_or_none) {
  Session session;
  CheckAll(session, {{"for(i, 1, 3, 0, i * 2)", "integer 6"},
                     {"for(j, 1, 0, 0, 5)", "integer 5"},
                     {"for(i, 1, 3, 0, error(\"final\"))", "error 32: final"},
                     {"for(i, 1, 3, 0, while(0, 1))", "no result"}});
}

TEST(For, Real_bound_is_refused) {
  Session session;
  CheckAll(
      session,
      {{"for(i, 1.0, 3, 0)", "error 21: A value has the wrong type: for(#2,#3)(real, integer)"},
       {"for(i, 1, 3.0, 0)", "error 21: A value has the wrong type: for(#2,#3)(integer, real)"},
       {"for(i, \"1\", {}, 0)", "error 21: A value has the wrong type: for(#2,#3)(string, array)"},
       {"for(i, unknown, 1, 0)",
        "error 21: A value has the wrong type: for(#2,#3)(undefined, integer)"}});
}

TEST(For, Reference_to_an_integer_is_no_bound) {
  Session session;
  session.Set("n", IxoMepValue(2));
  session.Set("to_n", IxoMepValue(session.scope().OldGetLValue("n")));
  EXPECT_EQ(session.Eval("for(i, 1, to_n, 0)"),
            "error 21: A value has the wrong type: for(#2,#3)(integer, reference)");
}

TEST(For, Bounds_are_evaluated_once_and_after_the_place) {
  Session session;
  session.Set("log", IxoMepValue(""));
  session.Set("a", IxoMepValue());
  CheckAll(session, {{"a := {0, 0}", "array {0, 0}"},
                     {"for(a[(log := log + \"p\", 1)], (log := log + \"f\", 1), "
                      "(log := log + \"t\", 2), (log := log + \"b\"), log)",
                      "string \"pftbb\""},
                     {"a", "array {0, 2}"}});
}

TEST(For, Type_of_the_first_bound_is_checked_after_both_are_evaluated) {
  Session session;
  EXPECT_EQ(session.Eval("for(i, \"x\", error(\"to\"), 0)"), "error 32: to");
}

TEST(For, Place_that_cannot_be_assigned_fails_before_the_bounds) {
  Session session;
  CheckAll(session, {{"for(1, error(\"from\"), 2, 0)", kNotAssignable},
                     {"for(f(1), error(\"from\"), 2, 0)", kNotAssignable},
                     {"for(i + 1, 1, 2, 0)", kNotAssignable}});
}

TEST(For, Elements_entries_and_properties_can_be_loop_variables) {
  Session session;
  CheckAll(session, {{"a := {0, 0}, for(a[1], 1, 4, 0), a", "array {0, 4}"},
                     {"m := map(), for(m[\"k\"], 1, 4, 0), m", "map {\"k\": 4}"}});
}

TEST(For, Variable_is_found_again_at_every_iteration) {
  Session session;
  CheckAll(session, {{"a := {0}, for(a[0], 1, 3, (a := {a[0] * 10})), a", "array {30}"},
                     {"b := {0}, for(b[0], 1, 3, (b := {}))",
                      "error 27: An index is beyond the last element of the array."},
                     {"c := {0}, for(c[0], 1, 3, (c := 5))",
                      "error 21: A value has the wrong type: integer[...]"}});
}

TEST(For, Last_bound_at_the_greatest_integer_ends_the_loop) {
  Session session;
  session.Set("most", IxoMepValue(std::numeric_limits<int>::max()));
  session.Set("least", IxoMepValue(std::numeric_limits<int>::min()));
  session.Set("n", IxoMepValue(0));
  CheckAll(session, {{"for(i, most - 2, most, (n := n + 1), n)", "integer 3"},
                     {"i", "integer 2147483647"},
                     {"for(i, least, least + 1, (n := n + 1), n)", "integer 5"},
                     {"for(i, most, least, error(\"ran\"), n)", "integer 5"}});
}

TEST(For, Failure_in_the_body_ends_the_loop_with_its_code) {
  Session session;
  CheckAll(session, {{"for(i, 1, 9, cond(i = 4, error(\"body\"), 0))", "error 32: body"},
                     {"i", "integer 4"}});
}

TEST(For, Counts_other_than_four_and_five_fail_with_23) {
  Session session;
  for (const char* call :
       {"for()", "for(i)", "for(i, 1)", "for(i, 1, 2)", "for(i, 1, 2, 3, 4, 5)"}) {
    EXPECT_EQ(session.Eval(call), "error 23: The number of arguments is wrong: for()") << call;
  }
}

TEST(For, Body_may_be_a_trailing_block) {
  Session session;
  EXPECT_EQ(session.Eval("s := 0, for(i, 1, 4) { s := s + i } (s)"), "integer 10");
}

TEST(For, Runs_under_the_no_assignment_flag_as_long_as_the_body_assigns_nothing) {
  Session session;
  EXPECT_EQ(session.Eval("for(i, 1, 3, i, i)", true), "integer 3");
  EXPECT_TRUE(session.Eval("for(i, 1, 3, (j := i))", true).starts_with("error 20"));
}

TEST(For, Nested_loops_keep_their_own_counters) {
  Session session;
  EXPECT_EQ(session.Eval("n := 0, for(i, 1, 30, for(j, 1, i, (n := n + 1)), n)"), "integer 465");
}

TEST(Fortok, Runs_once_for_every_token) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session, {{"fortok(t, \"a b c\", \" \", (log := log + \"[\" + t + \"]\"))", "no result"},
                     {"log", "string \"[a][b][c]\""},
                     {"t", "string \"c\""}});
}

TEST(Fortok, Empty_list_runs_no_iteration_and_leaves_the_variable_untouched) {
  Session session;
  session.Set("t", IxoMepValue(5));
  CheckAll(session, {{"fortok(t, \"\", \",\", error(\"ran\"))", "no result"},
                     {"fortok(t, \"\", \",\", error(\"ran\"), 7)", "integer 7"},
                     {"t", "integer 5"}});
}

TEST(Fortok, Empty_tokens_count) {
  Session session;
  const auto tokens = [&](const std::string& list, const std::string& separator) {
    session.Set("log", IxoMepValue(""));
    session.Set("list", IxoMepValue(list.c_str()));
    session.Set("separator", IxoMepValue(separator.c_str()));
    return session.Eval("fortok(t, list, separator, (log := log + \"[\" + t + \"]\"), log)");
  };
  EXPECT_EQ(tokens(",a,,b", ","), "string \"[][a][][b]\"");
  EXPECT_EQ(tokens(",", ","), "string \"[][]\"");
  EXPECT_EQ(tokens("a,", ","), "string \"[a][]\"");
  EXPECT_EQ(tokens("a,,b", ","), "string \"[a][][b]\"");
  EXPECT_EQ(tokens("a b", ","), "string \"[a b]\"");
}

TEST(Fortok, First_character_of_the_separator_counts) {
  Session session;
  session.Set("log", IxoMepValue(""));
  EXPECT_EQ(session.Eval("fortok(t, \"a;b,c\", \";,\", (log := log + \"[\" + t + \"]\"), log)"),
            "string \"[a][b,c]\"");
}

TEST(Fortok, Empty_separator_makes_the_list_one_token) {
  Session session;
  session.Set("log", IxoMepValue(""));
  session.Set("zeros", IxoMepValue(String(std::string_view("a\0b", 3))));
  CheckAll(session,
           {{"fortok(t, \"a b\", \"\", (log := log + \"[\" + t + \"]\"), log)", "string \"[a b]\""},
            {"fortok(t, zeros, \"\", 0, LEN t)", "integer 3"}});
}

TEST(Fortok, List_and_separator_must_be_strings) {
  Session session;
  CheckAll(session, {{"fortok(t, 1, \",\", 0)",
                      "error 21: A value has the wrong type: fortok(#2,#3)(integer, string)"},
                     {"fortok(t, \"a\", 2, 0)",
                      "error 21: A value has the wrong type: fortok(#2,#3)(string, integer)"},
                     {"fortok(t, {\"a\"}, unknown, 0)",
                      "error 21: A value has the wrong type: fortok(#2,#3)(array, undefined)"},
                     {"fortok(t, 1, error(\"separator\"), 0)", "error 32: separator"}});
}

TEST(Fortok, Place_comes_before_list_and_separator) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session, {{"fortok(1, error(\"list\"), \",\", 0)", kNotAssignable},
                     {"a := {0}", "array {0}"},
                     {"fortok(a[(log := log + \"p\", 0)], (log := log + \"l\", \"x,y\"), "
                      "(log := log + \"s\", \",\"), (log := log + \"b\"), log)",
                      "string \"plsbb\""},
                     {"a", "array {\"y\"}"}});
}

TEST(Fortok, Body_that_changes_the_list_does_not_change_the_iteration) {
  Session session;
  session.Set("list", IxoMepValue("a,b,c"));
  session.Set("log", IxoMepValue(""));
  EXPECT_EQ(session.Eval("fortok(t, list, \",\", (list := \"zzzzzzzz\", log := log + t, t := 1), "
                         "log)"),
            "string \"abc\"");
}

TEST(Fortok, Failure_in_the_body_ends_the_loop_with_its_code) {
  Session session;
  CheckAll(session,
           {{"fortok(t, \"a b c\", \" \", cond(t = \"b\", error(\"body\"), 0))", "error 32: body"},
            {"t", "string \"b\""}});
}

TEST(Fortok, Counts_other_than_four_and_five_fail_with_23) {
  Session session;
  for (const char* call : {"fortok()", "fortok(t)", "fortok(t, \"a\")", "fortok(t, \"a\", \",\")",
                           "fortok(t, \"a\", \",\", 1, 2, 3)"}) {
    EXPECT_EQ(session.Eval(call), "error 23: The number of arguments is wrong: fortok()") << call;
  }
}

TEST(Fortok, Runs_under_the_no_assignment_flag_as_long_as_the_body_assigns_nothing) {
  Session session;
  EXPECT_EQ(session.Eval("fortok(t, \"a,b\", \",\", t, t)", true), "string \"b\"");
  EXPECT_TRUE(session.Eval("fortok(t, \"a\", \",\", (x := 1))", true).starts_with("error 20"));
}

TEST(Loops, Failure_of_a_bound_or_list_is_that_of_the_loop) {
  Session session;
  for (const char* const loop :
       {"for(i, 1 / 0, 2, i)", "for(i, 1, 1 / 0, i)", "fortok(t, STR (1 / 0), \" \", t)",
        "fortok(t, \"a\", STR (1 / 0), t)"}) {
    EXPECT_EQ(session.Eval(loop), session.Eval("1 / 0")) << loop;
  }
}

}  // namespace
}  // namespace ixomep::test
