// cond and while: what counts as a condition, what is evaluated and what is not.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/support/call_checks.h"

namespace ixomep::test {
namespace {

// Conditions of every kind; "target" and "text" are what the references refer to.
void SetConditions(Session& session) {
  session.Set("target", IxoMepValue(2.5));
  session.Set("zero", IxoMepValue(0));
  session.Set("text", IxoMepValue("1"));
  session.Set("nan", IxoMepValue(std::numeric_limits<double>::quiet_NaN()));
  session.Set("to_number", IxoMepValue(session.scope().OldGetLValue("target")));
  session.Set("to_zero", IxoMepValue(session.scope().OldGetLValue("zero")));
  session.Set("to_text", IxoMepValue(session.scope().OldGetLValue("text")));
  session.Set("to_reference", IxoMepValue(session.scope().OldGetLValue("to_number")));
  session.Set("absent", IxoMepValue());
  session.Set("measure", IxoMepValue(IxoMepValueType::Measure, 100));
  session.Set("time", IxoMepValue(IxoMepValueType::Time, 1));
}

const char* const kTrue[] = {"1",      "-1",  "2147483647", "0.5",
                             "-0.001", "nan", "to_number",  "to_reference"};
const char* const kFalse[] = {"0", "0.0", "1 - 1", "to_zero"};
// What is no condition, and its type.
const std::pair<const char*, const char*> kNoConditions[] = {
    {"\"1\"", "string"},
    {"{1}", "array"},
    {"map()", "map"},
    {"absent", "undefined"},
    {"unknown", "undefined"},
    {"to_text", "reference"},
    {"measure", "measure"},
    {"time", "time"},
    {"lambda(x, x)", "lambda"},
    {"object()", "object"},
    {"parse(\"1\")", "expression"},
    {"while(0, 1)", "undefined"},
};

TEST(Cond, True_condition_chooses_the_value_behind_it) {
  Session session;
  CheckAll(session, {{"cond(1, 10, 20)", "integer 10"},
                     {"cond(0, 10, 20)", "integer 20"},
                     {"cond(0, 1, 1, 2, 3)", "integer 2"},
                     {"cond(1, 1, 1, 2, 3)", "integer 1"},
                     {"cond(0, 1, 0, 2, 3)", "integer 3"},
                     {"cond(0, 1, 0, 2, 0, 3, \"else\")", "string \"else\""}});
}

TEST(Cond, Numbers_that_are_not_zero_are_true) {
  Session session;
  SetConditions(session);
  for (const std::string condition : kTrue) {
    EXPECT_EQ(session.Eval("cond(" + condition + ", 1, 2)"), "integer 1") << condition;
  }
  for (const std::string condition : kFalse) {
    EXPECT_EQ(session.Eval("cond(" + condition + ", 1, 2)"), "integer 2") << condition;
  }
}

TEST(Cond, NaN_counts_as_true) {
  Session session;
  session.Set("nan", IxoMepValue(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(session.Eval("cond(nan, 1, 2)"), "integer 1");
}

TEST(Cond, Anything_but_a_number_is_no_condition) {
  Session session;
  SetConditions(session);
  for (const auto& [condition, type] : kNoConditions) {
    const std::string wrong =
        std::string("error 21: A value has the wrong type: cond(") + type + ")";
    EXPECT_EQ(session.Eval(std::string("cond(") + condition + ", 1, 2)"), wrong) << condition;
    EXPECT_EQ(session.Eval(std::string("cond(0, 1, ") + condition + ", 1, 2)"), wrong) << condition;
  }
}

TEST(Cond, Fewer_than_three_arguments_or_an_even_number_fail_with_23) {
  Session session;
  for (const char* call :
       {"cond()", "cond(1)", "cond(0, 10)", "cond(1, 2, 3, 4)", "cond(1, 2, 3, 4, 5, 6)"}) {
    EXPECT_EQ(session.Eval(call), "error 23: The number of arguments is wrong: cond()") << call;
  }
}

TEST(Cond, A_wrong_count_is_found_before_anything_is_evaluated) {
  Session session;
  EXPECT_EQ(session.Eval("cond((x := 1), 2)"),
            "error 23: The number of arguments is wrong: cond()");
  EXPECT_FALSE(session.scope().OldIsContained("x"));
}

TEST(Cond, Only_the_chosen_value_is_evaluated) {
  Session session;
  CheckAll(session, {{"cond(1, 5, error(\"not chosen\"))", "integer 5"},
                     {"cond(0, error(\"not chosen\"), 6)", "integer 6"},
                     {"cond(0, error(\"a\"), 1, 7, 0, error(\"b\"), error(\"c\"))", "integer 7"}});
}

TEST(Cond, Conditions_are_evaluated_in_order_up_to_the_first_true_one) {
  Session session;
  session.Set("log", IxoMepValue(""));
  EXPECT_EQ(session.Eval("cond((log := log + \"a\", 0), 1, (log := log + \"b\", 1), 2, "
                         "(log := log + \"c\", 1), 3, 4)"),
            "integer 2");
  EXPECT_EQ(session.Eval("log"), "string \"ab\"");
}

TEST(Cond, Failures_of_condition_and_value_pass_unchanged) {
  Session session;
  CheckAll(session, {{"cond(error(\"condition\"), 1, 2)", "error 32: condition"},
                     {"cond(1, error(\"value\"), 2)", "error 32: value"},
                     {"cond(0, 1, error(\"otherwise\"))", "error 32: otherwise"}});
}

TEST(Cond, Chosen_value_that_leaves_its_result_unset_leaves_it_unset) {
  Session session;
  CheckAll(session,
           {{"cond(1, while(0, 1), 2)", "no result"}, {"cond(0, 1, while(0, 1))", "no result"}});
}

TEST(Cond, No_assignment_flag_reaches_the_arguments_and_nothing_else) {
  Session session;
  EXPECT_EQ(session.Eval("cond(1, 2, 3)", true), "integer 2");
  EXPECT_TRUE(session.Eval("cond((x := 1), 2, 3)", true).starts_with("error 20"));
  EXPECT_TRUE(session.Eval("cond(1, (x := 1), 3)", true).starts_with("error 20"));
  EXPECT_EQ(session.Eval("cond(1, 2, (x := 1))", true), "integer 2");
}

TEST(While, Runs_the_body_while_the_condition_is_true) {
  Session session;
  session.Set("i", IxoMepValue(0));
  EXPECT_EQ(session.Eval("while(i < 5, (i := i + 1))"), "no result");
  EXPECT_EQ(session.Eval("i"), "integer 5");
}

TEST(While, Result_is_left_unset_without_a_final_expression) {
  Session session;
  CheckAll(session, {{"while(0, 1)", "no result"}, {"type(while(0, 1))", "string \"undefined\""}});
}

TEST(While, Final_expression_gives_the_result_once_the_condition_is_false) {
  Session session;
  session.Set("i", IxoMepValue(0));
  CheckAll(session, {{"while(i < 3, (i := i + 1), i * 10)", "integer 30"},
                     {"while(0, error(\"body\"), \"end\")", "string \"end\""},
                     {"while(0, 1, while(0, 1))", "no result"},
                     {"while(0, 1, error(\"final\"))", "error 32: final"}});
}

TEST(While, Condition_is_evaluated_before_every_round_and_once_more) {
  Session session;
  session.Set("log", IxoMepValue(""));
  session.Set("i", IxoMepValue(0));
  EXPECT_EQ(session.Eval("while((log := log + \"c\", i < 2), (log := log + \"b\", i := i + 1), "
                         "(log := log + \"f\", log))"),
            "string \"cbcbcf\"");
}

TEST(While, Conditions_are_those_of_cond) {
  Session session;
  SetConditions(session);
  for (const std::string condition : kTrue) {
    session.Set("go", IxoMepValue(1));
    EXPECT_EQ(session.Eval("while(cond(go, " + condition + ", 0), (go := 0), \"done\")"),
              "string \"done\"");
    EXPECT_EQ(session.Eval("go"), "integer 0") << condition;
  }
  for (const std::string condition : kFalse) {
    EXPECT_EQ(session.Eval("while(" + condition + ", error(\"ran\"), 1)"), "integer 1");
  }
  for (const auto& [condition, type] : kNoConditions) {
    EXPECT_EQ(session.Eval(std::string("while(") + condition + ", 1)"),
              std::string("error 21: A value has the wrong type: while(") + type + ")")
        << condition;
  }
}

TEST(While, Failure_in_condition_or_body_ends_the_loop_with_its_code) {
  Session session;
  session.Set("i", IxoMepValue(0));
  EXPECT_EQ(session.Eval("while(error(\"condition\"), 1)"), "error 32: condition");
  EXPECT_EQ(session.Eval("while(1, (i := i + 1, cond(i = 3, error(\"body\"), 0)))"),
            "error 32: body");
  EXPECT_EQ(session.Eval("i"), "integer 3");
}

TEST(While, Counts_other_than_two_and_three_fail_with_23) {
  Session session;
  for (const char* call : {"while()", "while(0)", "while(0, 1, 2, 3)"}) {
    EXPECT_EQ(session.Eval(call), "error 23: The number of arguments is wrong: while()") << call;
  }
}

TEST(While, Many_rounds_use_no_memory_and_no_depth) {
  Session session;
  session.Set("i", IxoMepValue(0));
  EXPECT_EQ(session.Eval("while(i < 100000, (i := i + 1), i)"), "integer 100000");
}

}  // namespace
}  // namespace ixomep::test
