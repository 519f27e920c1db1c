// Array and map literals, array, map, object, merase.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "ixomep/values/value_rep.h"
#include "tests/support/call_checks.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

const char* const kNoAssignment =
    "error 20: A variable is used that does not exist, or one would be changed where nothing may "
    "be changed.";
const char* const kTooLong = "error 37: A text becomes too long.";

TEST(ArrayLiteral, Holds_its_elements_in_order) {
  Session session;
  CheckAll(session, {{"{}", "array {}"},
                     {"{1}", "array {1}"},
                     {"{1, \"a\", {2.5, {}}}", "array {1, \"a\", {2.5, {}}}"}});
}

TEST(ArrayLiteral, Elements_are_evaluated_left_to_right) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session,
           {{"LEN {(log := log + \"a\"), (log := log + \"b\"), (log := log + \"c\")}", "integer 3"},
            {"log", "string \"abc\""},
            {"{1, error(\"second\"), error(\"third\")}", "error 32: second"}});
}

TEST(ArrayLiteral, Element_without_a_result_is_undefined) {
  Session session;
  EXPECT_EQ(session.Eval("{while(0, 1), unknown}"), "array {(undefined), (undefined)}");
}

TEST(ArrayLiteral, Reference_is_stored_as_a_copy_of_what_it_refers_to) {
  Session session;
  session.Set("x", IxoMepValue(1));
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("x")));
  CheckAll(session,
           {{"a := {r}, x := 2, a", "array {1}"}, {"m := {r: r}, x := 3, m", "map {2: 2}"}});
}

TEST(ArrayLiteral, Many_elements_fit) {
  Session session;
  std::string text = "LEN {0";
  for (int i = 0; i < 20000; ++i) text += ",1";
  EXPECT_EQ(session.Eval(text + "}"), "integer 20001");
}

TEST(MapLiteral, Holds_its_entries_in_the_order_of_keys) {
  Session session;
  CheckAll(session, {{"{\"b\": 1, \"a\": 2}", "map {\"a\": 2, \"b\": 1}"},
                     {"{2: \"x\", 1: {3: 4}}", "map {1: {3: 4}, 2: \"x\"}"}});
}

TEST(MapLiteral, First_of_equal_keys_stays) {
  Session session;
  CheckAll(session, {{"{1: \"first\", 1: \"second\"}", "map {1: \"first\"}"},
                     {"{1: \"first\", 1.0: \"second\", 2: 3}", "map {1: \"first\", 2: 3}"}});
}

TEST(MapLiteral, Undefined_key_fails_with_21) {
  Session session;
  CheckAll(session,
           {{"{unknown: 1}", "error 21: A value has the wrong type: {:(undefined, integer)"},
            {"{1: 2, unknown: \"a\"}",
             "error 21: A value has the wrong type: {:(integer, integer, undefined, string)"},
            {"{1: 2, 3: 4, 5: 6, unknown: 7}",
             "error 21: A value has the wrong type: {:(integer, integer, integer, integer, "
             "integer, integer)"}});
}

TEST(MapLiteral, Undefined_value_is_stored) {
  Session session;
  EXPECT_EQ(session.Eval("{1: unknown}"), "map {1: (undefined)}");
}

TEST(MapLiteral, Keys_and_values_are_evaluated_left_to_right_before_the_keys_are_checked) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session, {{"LEN {(log := log + \"a\"): (log := log + \"b\"), (log := log + \"c\"): 1}",
                      "integer 2"},
                     {"log", "string \"abc\""},
                     {"{unknown: 1, 2: error(\"last\")}", "error 32: last"}});
}

TEST(Array, Has_as_many_undefined_elements_as_told) {
  Session session;
  CheckAll(session, {{"array(3)", "array {(undefined), (undefined), (undefined)}"},
                     {"array(1)", "array {(undefined)}"},
                     {"type(array(2)[0])", "string \"undefined\""}});
}

TEST(Array, Further_sizes_nest) {
  Session session;
  CheckAll(session, {{"array(2, 3)",
                      "array {{(undefined), (undefined), (undefined)}, "
                      "{(undefined), (undefined), (undefined)}}"},
                     {"LEN array(2, 3, 4)[1][2]", "integer 4"},
                     {"a := array(2, 2), a[0][1] := 5, a",
                      "array {{(undefined), 5}, {(undefined), (undefined)}}"}});
}

TEST(Array, Size_below_one_gives_an_empty_array_at_that_level) {
  Session session;
  CheckAll(session, {{"array(0)", "array {}"},
                     {"array(-5)", "array {}"},
                     {"array(2, 0)", "array {{}, {}}"},
                     {"array(0, 2)", "array {}"},
                     {"array(-1, 2000000000)", "array {}"},
                     {"array(1, 0, 2000000000)", "array {{}}"}});
}

TEST(Array, Sizes_must_be_integers) {
  Session session;
  CheckAll(
      session,
      {{"array(1.0)", "error 21: A value has the wrong type: array(real)"},
       {"array(2, \"3\")", "error 21: A value has the wrong type: array(integer, string)"},
       {"array(0, unknown)", "error 21: A value has the wrong type: array(integer, undefined)"},
       {"array(1, 2, 3, 4, 5, 6, 7, \"a\")",
        "error 21: A value has the wrong type: array(integer, integer, integer, integer, "
        "integer, integer)"},
       {"array(\"a\", error(\"second\"))", "error 32: second"},
       {"array()", "error 23: The number of arguments is wrong: array()"}});
}

TEST(Array, Sizes_beyond_the_memory_fail_with_37_at_once) {
  Session session;
  session.Set("most", IxoMepValue(std::numeric_limits<int>::max()));
  for (const char* call :
       {"array(2000000000)", "array(most)", "array(100000, 100000)",
        "array(most, most, most, most, most)", "array(2, most)", "array(100000, 100000, 0)"}) {
    EXPECT_EQ(session.Eval(call), kTooLong) << call;
  }
}

TEST(Array, Sizes_are_held_against_the_memory_budget) {
  Session session;
  const ScopedMemoryLimit limit(1 << 20);
  EXPECT_EQ(session.Eval("array(1000000)"), kTooLong);
  EXPECT_EQ(session.Eval("array(1000, 1000)"), kTooLong);
  EXPECT_EQ(session.Eval("LEN array(1000)"), "integer 1000");
}

TEST(Array, Many_sizes_nest_without_native_recursion) {
  Session session;
  std::string text = "type(array(1";
  for (int i = 0; i < 20000; ++i) text += ",1";
  EXPECT_EQ(session.Eval(text + "))"), "string \"array\"");
}

TEST(MapAndObject, Are_empty_and_take_no_argument) {
  Session session;
  CheckAll(session, {{"map()", "map {}"},
                     {"object()", "object OBJECT{}"},
                     {"map(1)", "error 23: The number of arguments is wrong: map()"},
                     {"object(1)", "error 23: The number of arguments is wrong: object()"},
                     {"object(1, 2)", "error 23: The number of arguments is wrong: object()"}});
  EXPECT_EQ(session.Eval("map()", true), "map {}");
  EXPECT_EQ(session.Eval("object()", true), "object OBJECT{}");
}

TEST(MapErase, Removes_the_entry_and_gives_its_value) {
  Session session;
  CheckAll(session, {{"m := {1: \"a\", 2: \"b\"}, merase(m, 1)", "string \"a\""},
                     {"m", "map {2: \"b\"}"},
                     {"merase(m, 2)", "string \"b\""},
                     {"m", "map {}"}});
}

TEST(MapErase, Absent_key_succeeds_with_undefined) {
  Session session;
  CheckAll(session, {{"m := {1: \"a\"}, merase(m, 5)", "undefined (undefined)"},
                     {"merase(m, unknown)", "undefined (undefined)"},
                     {"m", "map {1: \"a\"}"}});
}

TEST(MapErase, Changes_the_variable_and_no_copy_of_it) {
  Session session;
  CheckAll(session, {{"m := {1: \"a\"}, c := m, merase(m, 1), c", "map {1: \"a\"}"}});
}

TEST(MapErase, First_argument_must_be_a_bare_name) {
  Session session;
  const std::string wrong =
      "error 31: A place that can be assigned is expected, such as the bare name of a variable; "
      "a captured variable is constant in the lambda.";
  CheckAll(session, {{"merase(map(), 1)", wrong},
                     {"merase({1: 2}, error(\"key\"))", wrong},
                     {"a := {map()}, merase(a[0], 1)", wrong},
                     {"merase(1, 1)", wrong}});
  EXPECT_EQ(session.Eval("merase(map(), 1)", true), wrong);
}

TEST(MapErase, Fails_with_20_under_the_no_assignment_flag) {
  Session session;
  session.Eval("m := {1: 2}");
  EXPECT_EQ(session.Eval("merase(m, 1)", true), kNoAssignment);
  EXPECT_EQ(session.Eval("merase(unknown, 1)", true), kNoAssignment);
}

TEST(MapErase, Unknown_variable_fails_with_39_under_the_name_of_the_array_function) {
  Session session;
  EXPECT_EQ(session.Eval("merase(unknown, error(\"key\"))"),
            "error 39: The variable \"unknown\" does not exist: aerase(unknown, ...)");
  EXPECT_FALSE(session.scope().OldIsContained("unknown"));
}

TEST(MapErase, Variable_that_is_no_map_fails_before_the_key_is_evaluated) {
  Session session;
  CheckAll(session,
           {{"x := 1, merase(x, error(\"key\"))",
             "error 21: A value has the wrong type: merase(integer)"},
            {"x := {1}, merase(x, 0)", "error 21: A value has the wrong type: merase(array)"}});
}

TEST(MapErase, Key_that_replaces_the_variable_is_noticed) {
  Session session;
  CheckAll(session,
           {{"m := {1: 2}, merase(m, (m := {1: 3, 4: 5}, 1))", "integer 3"},
            {"m", "map {4: 5}"},
            {"merase(m, (m := 7, 1))", "error 21: A value has the wrong type: merase(integer)"}});
}

TEST(MapErase, Failing_key_changes_nothing) {
  Session session;
  CheckAll(session,
           {{"m := {1: 2}, merase(m, error(\"key\"))", "error 32: key"}, {"m", "map {1: 2}"}});
}

TEST(MapErase, Counts_other_than_two_fail_with_23) {
  Session session;
  for (const char* call : {"merase()", "merase(m)", "merase(m, 1, 2)"}) {
    EXPECT_EQ(session.Eval(call), "error 23: The number of arguments is wrong: merase()") << call;
  }
}

TEST(MErase, Entry_that_a_host_has_left_empty_is_undefined) {
  Session session;
  session.Eval("m := map(), m[1] := 2");
  const IxoMepValue key(1);
  const ValuePtr taken(
      std::exchange(ValueAccess::OwnEntrySlot(*Variable(session.scope(), "m"), key), nullptr));
  EXPECT_EQ(session.Eval("type(merase(m, 1))"), "string \"undefined\"");
  EXPECT_EQ(session.Eval("LEN m"), "integer 0");
}

}  // namespace
}  // namespace ixomep::test
