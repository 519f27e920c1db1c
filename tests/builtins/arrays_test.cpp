// aappend, ainsert, aerase, areplace, asinsert: the steps that all of them share, one function
// after the other, and what happens when an argument changes the array.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/call_checks.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

const char* const kNotAssignable =
    "error 31: A place that can be assigned is expected, such as the bare name of a variable; a "
    "captured variable is constant in the lambda.";
const char* const kNoAssignment =
    "error 20: A variable is used that does not exist, or one would be changed where nothing may "
    "be changed.";
const char* const kTooSmall = "error 26: An index is below the first element of the array.";
const char* const kTooLarge = "error 27: An index is beyond the last element of the array.";

std::string WrongType(const std::string& call) {
  return "error 21: A value has the wrong type: " + call;
}

// A function with its own arguments, valid for an array of one element, and its smallest number
// of arguments.
struct Editor {
  const char* name;
  const char* own_arguments;
  int least;
  bool has_path;
};
const Editor kEditors[] = {
    {"aappend", "7", 2, true},     {"ainsert", "0, 7", 3, true}, {"aerase", "0", 2, true},
    {"areplace", "0, 7", 3, true}, {"asinsert", "7", 2, false},
};

TEST(ArrayEditors, Too_few_arguments_fail_with_23) {
  Session session;
  session.Eval("a := {1}");
  for (const Editor& editor : kEditors) {
    std::string arguments;
    for (int count = 0; count < editor.least; ++count) {
      const std::string call = std::string(editor.name) + "(" + arguments + ")";
      EXPECT_EQ(session.Eval(call),
                "error 23: The number of arguments is wrong: " + std::string(editor.name) + "()")
          << call;
      arguments += arguments.empty() ? "a" : ", 0";
    }
  }
  EXPECT_EQ(session.Eval("asinsert(a, 1, 2)"),
            "error 23: The number of arguments is wrong: asinsert()");
}

TEST(ArrayEditors, First_argument_must_be_a_bare_name) {
  Session session;
  session.Eval("a := {{1}}");
  for (const Editor& editor : kEditors) {
    for (const char* target : {"{1}", "a[0]", "5", "\"a\"", "a.b", "(a, a)"}) {
      const std::string call =
          std::string(editor.name) + "(" + target + ", " + editor.own_arguments + ")";
      EXPECT_EQ(session.Eval(call), kNotAssignable) << call;
      EXPECT_EQ(session.Eval(call, true), kNotAssignable) << call;
    }
  }
}

TEST(ArrayEditors, Fail_with_20_under_the_no_assignment_flag_before_anything_is_looked_up) {
  Session session;
  session.Eval("a := {1}");
  for (const Editor& editor : kEditors) {
    const std::string end = std::string(", ") + editor.own_arguments + ")";
    EXPECT_EQ(session.Eval(editor.name + ("(a" + end), true), kNoAssignment);
    EXPECT_EQ(session.Eval(editor.name + ("(unknown" + end), true), kNoAssignment);
  }
  EXPECT_EQ(session.Eval("a"), "array {1}");
}

TEST(ArrayEditors, Unknown_variable_fails_with_39_and_is_not_created) {
  Session session;
  for (const Editor& editor : kEditors) {
    const std::string name = editor.name;
    EXPECT_EQ(session.Eval(name + "(unknown, " + editor.own_arguments + ")"),
              "error 39: The variable \"unknown\" does not exist: " + name + "(unknown, ...)");
    EXPECT_EQ(session.Eval(
                  name + "(unknown, " +
                  std::string(editor.least - 1 == 1 ? "error(\"no\")" : "error(\"no\"), 1") + ")"),
              "error 39: The variable \"unknown\" does not exist: " + name + "(unknown, ...)");
  }
  EXPECT_FALSE(session.scope().OldIsContained("unknown"));
}

TEST(ArrayEditors, Target_that_is_no_array_fails_naming_the_variable) {
  Session session;
  for (const Editor& editor : kEditors) {
    for (const char* value : {"\"text\"", "5", "map()", "object()"}) {
      session.Eval(std::string("v := ") + value);
      const std::string type = session.Eval("type(v)").substr(8);
      EXPECT_EQ(session.Eval(std::string(editor.name) + "(v, " + editor.own_arguments + ")"),
                WrongType("v(" + type.substr(0, type.size() - 1) + ")"))
          << editor.name;
    }
  }
}

TEST(ArrayEditors, Index_path_leads_to_the_array_inside) {
  Session session;
  CheckAll(session, {{"a := {{1}, {2, {3}}}, aappend(a, 1, 1, 4), a", "array {{1}, {2, {3, 4}}}"},
                     {"ainsert(a, 0, 0, 9), a", "array {{9, 1}, {2, {3, 4}}}"},
                     {"aerase(a, 1, 1, 0), a", "array {{9, 1}, {2, {4}}}"},
                     {"areplace(a, 1, 0, 8), a", "array {{9, 1}, {8, {4}}}"}});
}

TEST(ArrayEditors, Index_applied_to_no_array_fails_before_it_is_evaluated) {
  Session session;
  session.Eval("a := {1, {2}}, s := \"text\"");
  for (const Editor& editor : kEditors) {
    if (!editor.has_path) continue;
    const std::string name = editor.name;
    const std::string end = std::string(", ") + editor.own_arguments + ")";
    EXPECT_EQ(session.Eval(name + "(s, error(\"index\")" + end), WrongType(name + "(string)"));
    EXPECT_EQ(session.Eval(name + "(a, 0, error(\"index\")" + end), WrongType(name + "(integer)"));
  }
}

TEST(ArrayEditors, Index_must_be_an_integer) {
  Session session;
  session.Eval("a := {{1}}");
  session.Set("n", IxoMepValue(0));
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("n")));
  for (const Editor& editor : kEditors) {
    if (!editor.has_path) continue;
    const std::string name = editor.name;
    const std::string end = std::string(", ") + editor.own_arguments + ")";
    EXPECT_EQ(session.Eval(name + "(a, 0.0" + end), WrongType(name + "(real)"));
    EXPECT_EQ(session.Eval(name + "(a, \"0\"" + end), WrongType(name + "(string)"));
    EXPECT_EQ(session.Eval(name + "(a, unknown" + end), WrongType(name + "(undefined)"));
    EXPECT_EQ(session.Eval(name + "(a, r" + end), WrongType(name + "(reference)"));
  }
  EXPECT_EQ(session.Eval("a"), "array {{1}}");
}

TEST(ArrayEditors, Index_outside_the_array_fails_with_26_or_27) {
  Session session;
  session.Eval("a := {{1}, {2}}");
  for (const Editor& editor : kEditors) {
    if (!editor.has_path) continue;
    const std::string name = editor.name;
    const std::string end = std::string(", ") + editor.own_arguments + ")";
    EXPECT_EQ(session.Eval(name + "(a, -1" + end), kTooSmall);
    EXPECT_EQ(session.Eval(name + "(a, 2" + end), kTooLarge);
    EXPECT_EQ(session.Eval(name + "(a, 2147483647" + end), kTooLarge);
  }
  EXPECT_EQ(session.Eval("a"), "array {{1}, {2}}");
}

TEST(ArrayEditors, Arguments_are_evaluated_and_checked_one_after_the_other) {
  Session session;
  session.Set("log", IxoMepValue(""));
  CheckAll(session, {{"a := {{1}}, ainsert(a, (log := log + \"i\", 0), (log := log + \"p\", 1), "
                      "(log := log + \"v\", 2)), log",
                      "string \"ipv\""},
                     {"a", "array {{1, 2}}"},
                     {"aappend(a, 5, error(\"value\"))", kTooLarge},
                     {"aappend(a, \"x\", error(\"value\"))", WrongType("aappend(string)")},
                     {"aappend(a, error(\"index\"), error(\"value\"))", "error 32: index"}});
}

TEST(ArrayEditors, Failing_value_changes_nothing) {
  Session session;
  session.Eval("a := {1, 2}");
  for (const char* call : {"aappend(a, error(\"value\"))", "ainsert(a, 0, error(\"value\"))",
                           "areplace(a, 0, error(\"value\"))", "asinsert(a, error(\"value\"))",
                           "aerase(a, error(\"value\"))"}) {
    EXPECT_EQ(session.Eval(call), "error 32: value") << call;
    EXPECT_EQ(session.Eval("a"), "array {1, 2}") << call;
  }
}

TEST(ArrayEditors, Work_on_the_variable_and_on_no_copy_of_it) {
  Session session;
  CheckAll(session, {{"a := {3, {1}}, c := a, aappend(a, 5), c", "array {3, {1}}"},
                     {"aappend(a, 1, 2), c", "array {3, {1}}"},
                     {"areplace(a, 1, 0, 9), c", "array {3, {1}}"},
                     {"aerase(a, 0), c", "array {3, {1}}"},
                     {"ainsert(a, 0, 7), c", "array {3, {1}}"},
                     {"a", "array {7, {9, 2}, 5}"}});
}

TEST(ArrayEditors, Variable_of_an_outer_scope_is_changed_there) {
  Session session;
  CheckAll(session,
           {{"a := {1}, f := lambda(x, aappend(b, x)), b := {1}, f(2), b", "array {1, 2}"}});
}

TEST(ArrayEditors, An_array_can_be_put_into_itself_as_a_copy) {
  Session session;
  CheckAll(session, {{"a := {1}, aappend(a, a), a", "array {1, {1}}"},
                     {"areplace(a, 0, a), a", "array {{1, {1}}, {1}}"},
                     {"ainsert(a, 0, a[1]), a", "array {{1}, {1, {1}}, {1}}"}});
}

TEST(ArrayEditors, A_reference_is_stored_as_a_copy_of_what_it_refers_to) {
  Session session;
  session.Set("x", IxoMepValue(1));
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("x")));
  CheckAll(session, {{"a := {}, aappend(a, r), ainsert(a, 0, r), asinsert(a, r), x := 2, a",
                      "array {1, 1, 1}"},
                     {"areplace(a, 0, r), x := 3, a", "array {2, 1, 1}"}});
}

TEST(ArrayEditors, Value_that_replaces_the_variable_is_noticed) {
  Session session;
  CheckAll(session, {{"a := {1}, aappend(a, (a := {8, 9}, 5)), a", "array {8, 9, 5}"},
                     {"a := {1}, aappend(a, (a := 4, 5))", WrongType("a(integer)")},
                     {"a := {1, 2, 3}, ainsert(a, 3, (a := {}, 5))", kTooLarge},
                     {"a", "array {}"},
                     {"a := {1, 2, 3}, areplace(a, 2, (a := {7}, 5))", kTooLarge},
                     {"a := {{1}}, aappend(a, 0, (a := {5}, 6))", WrongType("a(integer)")},
                     {"a := {{1}, {2}}, aappend(a, 1, (a := {{3}}, 6))", kTooLarge},
                     {"a := {{1}}, aappend(a, 0, (aerase(a, 0), 6))", kTooLarge}});
}

TEST(ArrayEditors, Index_that_changes_the_variable_is_noticed) {
  Session session;
  CheckAll(session, {{"a := {{1}}, aappend(a, (a := {{5}, {6}}, 1), 7), a", "array {{5}, {6, 7}}"},
                     {"a := {{1}}, aappend(a, (a := {}, 0), 7)", kTooLarge},
                     {"a := {{1}}, aappend(a, (a := 3, 0), 7)", WrongType("aappend(integer)")},
                     {"a := {1}, aerase(a, (a := {}, 0))", kTooLarge}});
}

TEST(ArrayEditors, Growth_beyond_the_memory_fails_with_37_and_changes_nothing) {
  Session session;
  session.Eval("a := {}, n := 0");
  {
    const ScopedMemoryLimit limit(200000);
    EXPECT_EQ(session.Eval("while(1, (aappend(a, n), n := n + 1))"),
              "error 37: A text becomes too long.");
  }
  CheckAll(session, {{"n > 100 AND LEN a = n AND a[n - 1] = n - 1", "integer 1"}});
}

TEST(AAppend, Appends_and_gives_the_value) {
  Session session;
  CheckAll(session, {{"a := {}, aappend(a, 5)", "integer 5"},
                     {"a", "array {5}"},
                     {"aappend(a, \"x\")", "string \"x\""},
                     {"a", "array {5, \"x\"}"},
                     {"aappend(a, unknown)", "undefined (undefined)"},
                     {"a", "array {5, \"x\", (undefined)}"}});
}

TEST(AAppend, One_index_selects_the_inner_array) {
  Session session;
  CheckAll(session, {{"a := {{}, {}}, aappend(a, 1, 5), a", "array {{}, {5}}"}});
}

TEST(AInsert, Inserts_before_the_position_and_gives_the_position) {
  Session session;
  CheckAll(session, {{"a := {1, 2}, ainsert(a, 1, \"x\")", "integer 1"},
                     {"a", "array {1, \"x\", 2}"},
                     {"ainsert(a, 0, \"y\")", "integer 0"},
                     {"a", "array {\"y\", 1, \"x\", 2}"}});
}

TEST(AInsert, Position_equal_to_the_count_appends_and_one_above_fails) {
  Session session;
  CheckAll(session, {{"a := {1}, ainsert(a, 1, 2)", "integer 1"},
                     {"a", "array {1, 2}"},
                     {"ainsert(a, 3, 9)", kTooLarge},
                     {"ainsert(a, -1, 9)", kTooSmall},
                     {"a", "array {1, 2}"},
                     {"b := {}, ainsert(b, 0, 1), b", "array {1}"},
                     {"ainsert(a, 1.0, 2)", WrongType("ainsert(real)")}});
}

TEST(AErase, Removes_the_element_and_gives_it) {
  Session session;
  CheckAll(session, {{"a := {1, \"x\", {3}}, aerase(a, 1)", "string \"x\""},
                     {"a", "array {1, {3}}"},
                     {"aerase(a, 1)", "array {3}"},
                     {"aerase(a, 0)", "integer 1"},
                     {"a", "array {}"},
                     {"aerase(a, 0)", kTooLarge},
                     {"aerase(a, -1)", kTooSmall},
                     {"aerase(a, \"0\")", WrongType("aerase(string)")}});
}

TEST(AReplace, Overwrites_the_element_in_place_and_gives_the_value) {
  Session session;
  CheckAll(session, {{"a := {1, 2}, areplace(a, 1, \"x\")", "string \"x\""},
                     {"a", "array {1, \"x\"}"},
                     {"areplace(a, 2, 9)", kTooLarge},
                     {"areplace(a, -1, 9)", kTooSmall},
                     {"areplace(a, 0.0, 9)", WrongType("areplace(real)")},
                     {"a", "array {1, \"x\"}"}});
}

TEST(AReplace, Element_keeps_its_value_object) {
  Session session;
  session.Eval("a := {1, 2}");
  const IxoMepValue* const element = session.scope().OldGetValue("a")->GetValue(1);
  session.Eval("areplace(a, 1, \"x\")");
  EXPECT_EQ(session.scope().OldGetValue("a")->GetValue(1), element);
  EXPECT_EQ(element->GetStr(), "x");
}

TEST(ASInsert, Keeps_an_ascending_array_ascending) {
  Session session;
  CheckAll(session,
           {{"a := {}, asinsert(a, 5)", "integer 5"},
            {"a", "array {5}"},
            {"asinsert(a, 9), asinsert(a, 1), asinsert(a, 7), a", "array {1, 5, 7, 9}"},
            {"asinsert(a, \"x\"), asinsert(a, 6.5), a", "array {1, 5, 6.5, 7, 9, \"x\"}"}});
}

TEST(ASInsert, Goes_before_equal_elements) {
  Session session;
  CheckAll(session,
           {{"a := {1, 2, 3}, asinsert(a, 2.0), a[1] = 2.0 AND type(a[1]) = \"real\"", "integer 1"},
            {"type(a[2])", "string \"integer\""}});
}

TEST(ASInsert, Follows_the_binary_search_in_an_array_that_is_not_sorted) {
  Session session;
  // middle 2 (9): not greater; middle 1 (5): greater; so before position 2.
  CheckAll(session, {{"a := {7, 5, 9, 1}, asinsert(a, 6), a", "array {7, 5, 6, 9, 1}"}});
}

TEST(ASInsert, Values_without_an_order_are_reported_and_inserted_all_the_same) {
  TestHost host;
  Session session;
  EXPECT_EQ(session.Eval("a := {{1}, {2}}, asinsert(a, {3}), LEN a"), "integer 3");
  EXPECT_FALSE(host.assertions.empty());
}

// --- What arguments and hosts do to the array meanwhile ------------------------------------------

TEST(ArrayEditors, Path_that_an_argument_has_cut_off_is_followed_to_where_it_ends_now) {
  Session session;
  CheckAll(
      session,
      {{"a := {{{1}}}, aappend(a, 0, 0, (a := {5}, 7))", WrongType("aappend(integer)")},
       {"try((a := {{{1}}}, aappend(a, 0, (a := {}, 0), 1)), \"failed\")", "string \"failed\""},
       {"try((a := {{1}}, aerase(a, 0, (a := {{}}, 0))), \"failed\")", "string \"failed\""},
       {"LEN a", "integer 1"}});
}

TEST(ArrayEditors, Element_that_a_host_has_left_empty_is_undefined_and_can_be_replaced) {
  Session session;
  session.Eval("a := {1, 2}");
  Variable(session.scope(), "a")->SetValue(0, nullptr);
  CheckAll(session, {{"areplace(a, 0, 7)", "integer 7"}, {"a", "array {7, 2}"}});
  Variable(session.scope(), "a")->SetValue(1, nullptr);
  CheckAll(session, {{"type(aerase(a, 1))", "string \"undefined\""}, {"a", "array {7}"}});
}

}  // namespace
}  // namespace ixomep::test
