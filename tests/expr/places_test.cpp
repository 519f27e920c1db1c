// Places: EvaluateLValue and AssignToLValue, identity of what is stored, references, properties of
// objects, and places that vanish while the right side is evaluated.
#include <gtest/gtest.h>

#include "ixomep/expr/evaluator.h"
#include "ixomep/values/object.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

using Type = IxoMepValueType;

IxoMepErrorEnum Lend(const char* text, IxoMepValueSet& scope, IxoMepValue*& place, String& error) {
  const Compiled compiled = Compile(text);
  EXPECT_EQ(compiled.code, 0) << text;
  return compiled.tree->EvaluateLValue(nullptr, &scope, place, error);
}

// The place, which must be there.
IxoMepValue* PlaceOf(const char* text, IxoMepValueSet& scope) {
  IxoMepValue* place = nullptr;
  String error;
  EXPECT_EQ(Lend(text, scope, place, error), 0) << text << ": " << error.view();
  return place;
}

// The code of a place that is not there.
int CodeOf(const char* text, IxoMepValueSet& scope) {
  IxoMepValue not_to_be_touched(1);
  IxoMepValue* place = &not_to_be_touched;
  String error;
  const int code = Lend(text, scope, place, error);
  EXPECT_EQ(place, nullptr) << text;
  EXPECT_FALSE(error.IsEmpty()) << text;
  return code;
}

TEST(Places, A_name_is_the_variable_itself_created_undefined_when_it_is_new) {
  IxoMepValueSet outer;
  IxoMepValueSet scope(&outer);
  Set(outer, "x", IxoMepValue(5));
  EXPECT_EQ(PlaceOf("x", scope), Variable(outer, "x"));
  IxoMepValue* const created = PlaceOf("y", scope);
  EXPECT_EQ(ShownValue(created), "undefined");
  EXPECT_EQ(created, scope.FindHere(Intern("y")));
}

TEST(Places, An_element_and_an_entry_are_places_in_their_container) {
  IxoMepValueSet scope;
  Eval("a := {1, {2, 3}}, m := {\"k\": 4}", &scope);
  PlaceOf("a[1][0]", scope)->SetInt(7);
  PlaceOf("a[1, 1]", scope)->SetInt(8);
  PlaceOf("m[\"k\"]", scope)->SetInt(9);
  EXPECT_EQ(ShownVariable(scope, "a"), "array {1, {7, 8}}");
  EXPECT_EQ(ShownVariable(scope, "m"), "map {\"k\": 9}");
}

TEST(Places, A_missing_map_entry_is_created_and_stays_undefined) {
  IxoMepValueSet scope;
  Eval("m := map()", &scope);
  EXPECT_EQ(ShownValue(PlaceOf("m[\"k\"]", scope)), "undefined");
  EXPECT_EQ(ShownVariable(scope, "m"), "map {\"k\": (undefined)}");
}

// The key is a copy of the container that it becomes a part of.
TEST(Places, A_container_may_be_the_key_of_an_entry_inside_itself) {
  const TestHost host;  // maps have no order, which each comparison reports
  struct Row {
    const char* assignment;
    const char* expected;
  };
  for (const Row& row : {Row{"x[\"k\"][x] := 5", "map {\"k\": {{\"k\": {}}: 5}}"},
                         Row{"x[\"k\", x] := 5", "map {\"k\": {{\"k\": {}}: 5}}"},
                         Row{"set(x[\"k\"][x], 5)", "map {\"k\": {{\"k\": {}}: 5}}"},
                         Row{"for(x[\"k\"][x], 1, 2, 0)", "map {\"k\": {{\"k\": {}}: 2}}"},
                         Row{"x[x] := 5", "map {\"k\": {}, {\"k\": {}}: 5}"}}) {
    IxoMepExpressionParser parser;
    String error;
    ASSERT_EQ(parser.SetExpression(row.assignment, error), 0) << row.assignment;
    for (int evaluation = 1; evaluation <= 3; ++evaluation) {
      IxoMepValueSet scope;
      Eval("x := {\"k\": map()}", &scope);
      IxoMepValue* result = nullptr;
      EXPECT_EQ(parser.Evaluate(&scope, result, error, false, false), 0) << row.assignment;
      const ValuePtr owned(result);
      EXPECT_EQ(ShownVariable(scope, "x"), row.expected) << row.assignment << ", " << evaluation;
    }
  }
  IxoMepValueSet scope;
  Eval("a := {map()}, a[0][a] := 5", &scope);
  EXPECT_EQ(ShownVariable(scope, "a"), "array {{{{}}: 5}}");
}

TEST(Places, Places_that_are_none_fail_with_the_code_of_the_step) {
  IxoMepValueSet scope;
  Eval("a := {1}, m := map(), s := \"abc\", o := object()", &scope);
  EXPECT_EQ(CodeOf("a[1]", scope), 27);
  EXPECT_EQ(CodeOf("a[-1]", scope), 26);
  EXPECT_EQ(CodeOf("a[\"x\"]", scope), 21);
  EXPECT_EQ(CodeOf("s[0]", scope), 21);
  EXPECT_EQ(CodeOf("new[0]", scope), 21);
  EXPECT_EQ(CodeOf("m[unknown]", scope), 21);
  EXPECT_EQ(CodeOf("o.color", scope), 42);
  EXPECT_EQ(CodeOf("s.length", scope), 21);
  EXPECT_EQ(CodeOf("5", scope), 31);
  EXPECT_EQ(CodeOf("a + 1", scope), 31);
  EXPECT_EQ(CodeOf("f(1)", scope), 31);
  EXPECT_EQ(CodeOf("f(1)[0]", scope), 31);
  EXPECT_EQ(CodeOf("a[1 / 0]", scope), 18);
}

TEST(Places, The_special_members_for_subscripts_and_properties_are_the_same) {
  IxoMepValueSet scope;
  Eval("a := {1, 2}", &scope);
  const Compiled element = Compile("a[1]");
  IxoMepValue* place = nullptr;
  String error;
  EXPECT_EQ(element.tree->EvaluateArraySubscriptionLValue(nullptr, &scope, place, error), 0);
  EXPECT_EQ(ShownValue(place), "integer 2");
  const Compiled property = Compile("a.color");
  EXPECT_EQ(property.tree->EvaluateObjectSubscriptionLValue(nullptr, &scope, place, error), 21);
  EXPECT_EQ(place, nullptr);
}

TEST(Places, A_place_that_was_lent_stays_in_its_container_when_copies_are_made_and_changed) {
  IxoMepValueSet scope;
  Eval("a := {{1, 2}, 3}", &scope);
  IxoMepValue* const place = PlaceOf("a[0][1]", scope);
  Eval("b := a, b[0][1] := 9, c := a[0], c[1] := 8", &scope);
  EXPECT_EQ(ShownValue(place), "integer 2");
  place->SetInt(7);
  EXPECT_EQ(ShownVariable(scope, "a"), "array {{1, 7}, 3}");
  EXPECT_EQ(ShownVariable(scope, "b"), "array {{1, 9}, 3}");
}

TEST(Places, A_copy_made_before_the_place_was_lent_is_not_changed_through_it) {
  IxoMepValueSet scope;
  Eval("a := {{1, 2}, 3}, b := a", &scope);
  PlaceOf("a[0][1]", scope)->SetInt(7);
  EXPECT_EQ(ShownVariable(scope, "b"), "array {{1, 2}, 3}");
}

// --- Identity -----------------------------------------------------------------------------------

TEST(Assignment, The_stored_value_keeps_its_identity) {
  IxoMepValueSet scope;
  Eval("x := 1, a := {1, 2}, m := {1: 2}", &scope);
  IxoMepValue* const x = PlaceOf("x", scope);
  IxoMepValue* const element = PlaceOf("a[1]", scope);
  IxoMepValue* const entry = PlaceOf("m[1]", scope);
  Eval("x := \"text\", a[1] := {5}, m[1] := 1cm", &scope);
  EXPECT_EQ(PlaceOf("x", scope), x);
  EXPECT_EQ(PlaceOf("a[1]", scope), element);
  EXPECT_EQ(PlaceOf("m[1]", scope), entry);
  EXPECT_EQ(ShownValue(x), "string \"text\"");
  EXPECT_EQ(ShownValue(element), "array {5}");
}

TEST(Assignment, A_measure_keeps_its_fractions) {
  IxoMepValueSet scope;
  Eval("x := 1cm, x := CM 0.12345", &scope);
  EXPECT_EQ(ValueAccess::Number(*Variable(scope, "x")), 0.12345 * 100.0);
}

TEST(Assignment, Texts_share_their_storage) {
  IxoMepValueSet scope;
  Eval("x := \"a long text\" + \"!\", y := x", &scope);
  EXPECT_TRUE(ValueAccess::Text(*Variable(scope, "x"))
                  .SharesTextWith(ValueAccess::Text(*Variable(scope, "y"))));
}

TEST(Assignment, A_lambda_that_mentions_its_own_name_may_be_assigned_again_and_again) {
  IxoMepValueSet scope;
  IxoMepExpressionParser parser;
  String error;
  ASSERT_EQ(parser.SetExpression("f := lambda(n, cond(n < 1, 0, 1 + f(n - 1))), f(5)", error), 0);
  std::string text;
  for (int i = 0; i < 50; ++i) {
    IxoMepValue* slot = nullptr;
    ASSERT_EQ(parser.Evaluate(&scope, slot, error, false, false), 0) << error.view();
    EXPECT_EQ(ShownValue(slot), "integer 5");
    delete slot;
    const std::string now(Variable(scope, "f")->GetLambda()->GetPrettyText(nullptr).view());
    if (i == 0) text = now;
    EXPECT_EQ(now, text);
  }
}

// --- References ---------------------------------------------------------------------------------

TEST(References, An_assignment_to_a_name_that_holds_one_assigns_to_its_target) {
  IxoMepValueSet scope;
  IxoMepValue target(1);
  IxoMepValue chain(&target);
  Set(scope, "r", IxoMepValue(&chain));
  EXPECT_EQ(Shown("r := 5", &scope), "integer 5");
  EXPECT_EQ(ShownValue(target), "integer 5");
  EXPECT_EQ(Variable(scope, "r")->GetType(), Type::Reference);
  EXPECT_EQ(PlaceOf("r", scope), &target);
}

TEST(References, A_path_goes_through_them) {
  IxoMepValueSet scope;
  IxoMepValue target = ValueOf("{1, {2, 3}}");
  Set(scope, "r", IxoMepValue(&target));
  Eval("r[1][0] := 7", &scope);
  EXPECT_EQ(ShownValue(target), "array {1, {7, 3}}");
}

TEST(References, What_is_assigned_is_a_copy_of_what_a_reference_refers_to) {
  IxoMepValueSet scope;
  IxoMepValue target(1);
  Set(scope, "r", IxoMepValue(&target));
  EXPECT_EQ(Shown("x := r", &scope), "integer 1");
  EXPECT_EQ(ShownVariable(scope, "x"), "integer 1");
  Eval("a := {0}, a[0] := r, m := map(), m[1] := r, m[r] := 2", &scope);
  target.SetInt(9);
  EXPECT_EQ(ShownVariable(scope, "x"), "integer 1");
  EXPECT_EQ(ShownVariable(scope, "a"), "array {1}");
  EXPECT_EQ(ShownVariable(scope, "m"), "map {1: 2}");
}

TEST(References, A_map_may_be_its_own_key_through_one) {
  const TestHost host;
  IxoMepValueSet scope;
  IxoMepValue target = ValueOf("{\"k\": 1}");
  Set(scope, "r", IxoMepValue(&target));
  Eval("r[r] := 5", &scope);
  EXPECT_EQ(ShownValue(target), "map {\"k\": 1, {\"k\": 1}: 5}");
}

TEST(References, A_circle_of_references_ends_and_is_undefined_when_it_is_assigned) {
  IxoMepValueSet scope;
  IxoMepValue a;
  IxoMepValue b(&a);
  ValueAccess::SetReference(a, &b);
  Set(scope, "r", IxoMepValue(&a));
  EXPECT_EQ(Shown("r + 1", &scope), "error 21");
  EXPECT_EQ(Shown("x := r, x", &scope), "undefined");
  EXPECT_EQ(Shown("r(1)", &scope), "error 40");
  EXPECT_EQ(Shown("m := map(), m[r] := 1", &scope), "error 21");
  EXPECT_EQ(Shown("r := 5", &scope), "integer 5");
}

TEST(References, A_variable_may_refer_to_itself) {
  IxoMepValueSet scope;
  IxoMepValue* const x = PlaceOf("x", scope);
  ValueAccess::SetReference(*x, x);
  EXPECT_EQ(Shown("x := x", &scope), "undefined");
  EXPECT_EQ(Shown("x := 3, x", &scope), "integer 3");
}

// --- Objects ------------------------------------------------------------------------------------

class Objects : public testing::Test {
 protected:
  Objects() {
    IxoMepValue object(Type::Object);
    object.MoveValue("count", new IxoMepValue(1));
    object.MoveValue("list", new IxoMepValue(ValueOf("{3, 1, 2}")));
    object.MoveValue("inner", new IxoMepValue(Type::Object));
    Set(scope, "o", object);
  }
  IxoMepValueSet scope;
};

TEST_F(Objects, Properties_are_read_and_assigned) {
  EXPECT_EQ(Shown("o.count", &scope), "integer 1");
  EXPECT_EQ(Shown("o.count := 5, o.count", &scope), "integer 5");
  EXPECT_EQ(Shown("o.list[1] := 7, o.list", &scope), "array {3, 7, 2}");
  EXPECT_EQ(Shown("o.list[1]", &scope), "integer 7");
  EXPECT_EQ(Shown("o.list.length", &scope), "integer 3");
}

TEST_F(Objects, Copies_of_an_object_share_its_properties) {
  EXPECT_EQ(Shown("p := o, p.count := 8, o.count", &scope), "integer 8");
  EXPECT_EQ(Shown("a := {o}, a[0].count := 9, o.count", &scope), "integer 9");
}

TEST_F(Objects, A_property_is_read_as_a_copy) {
  EXPECT_EQ(Shown("l := o.list, l[0] := 99, o.list", &scope), "array {3, 1, 2}");
}

TEST_F(Objects, Unknown_properties_fail_with_42_and_are_not_created) {
  const Outcome read = Eval("o.color", &scope);
  EXPECT_EQ(read.code, 42);
  EXPECT_NE(std::string(read.text.view()).find("color"), std::string::npos);
  EXPECT_NE(std::string(read.text.view()).find("object"), std::string::npos);
  EXPECT_EQ(Shown("o.color := 1", &scope), "error 42");
  EXPECT_EQ(Shown("o.inner.color := 1", &scope), "error 42");
  EXPECT_EQ(Shown("o.count.color := 1", &scope), "error 21");
  EXPECT_EQ(Shown("o.count[0] := 1", &scope), "error 21");
  EXPECT_EQ(Shown("o.(1 + 2)", &scope), "error 42") << "no name at all";
}

TEST_F(Objects, A_place_reaches_a_property_through_a_reference_to_the_object) {
  Set(scope, "r", IxoMepValue(Variable(scope, "o")));
  EXPECT_EQ(Shown("r.count := 4, o.count", &scope), "integer 4");
  EXPECT_EQ(Shown("r.count", &scope), "error 42") << "reading follows no reference";
}

TEST_F(Objects, A_method_may_be_called_on_a_property) {
  EXPECT_EQ(Shown("o.list.sort(), o.list", &scope), "array {1, 2, 3}");
}

TEST_F(Objects, An_object_value_without_object_has_no_members) {
  IxoMepObject* const none = nullptr;
  Set(scope, "empty", IxoMepValue(none));
  EXPECT_EQ(Shown("empty.count", &scope), "error 42");
  EXPECT_EQ(Shown("empty.count := 1", &scope), "error 42");
  EXPECT_EQ(Shown("empty.count()", &scope), "error 42");
}

TEST_F(Objects, A_property_named_by_the_text_behind_the_point_needs_not_be_interned) {
  IxoMepValue object(Type::Object);
  object.MoveValue("", new IxoMepValue(1));
  Set(scope, "p", object);
  EXPECT_EQ(Shown("p.\"x\"", &scope), "integer 1") << "what is no name is the empty name";
}

// --- AssignToLValue -----------------------------------------------------------------------------

TEST(AssignToLValue, Stores_a_copy_into_the_place) {
  IxoMepValueSet scope;
  Eval("a := {1, 2}", &scope);
  const Compiled element = Compile("a[1]");
  IxoMepValue value("new");
  String error;
  EXPECT_EQ(element.tree->AssignToLValue(&value, nullptr, &scope, error), 0);
  EXPECT_EQ(ShownVariable(scope, "a"), "array {1, \"new\"}");
  EXPECT_EQ(ShownValue(value), "string \"new\"");
}

TEST(AssignToLValue, The_value_may_stand_in_the_place_itself) {
  IxoMepValueSet scope;
  Eval("a := {{1, 2}, 3}", &scope);
  const Compiled name = Compile("a");
  String error;
  IxoMepValue* const element = PlaceOf("a[0]", scope);
  EXPECT_EQ(name.tree->AssignToLValue(element, nullptr, &scope, error), 0);
  EXPECT_EQ(ShownVariable(scope, "a"), "array {1, 2}");
  IxoMepValue* const whole = PlaceOf("a", scope);
  const Compiled first = Compile("a[0]");
  EXPECT_EQ(first.tree->AssignToLValue(whole, nullptr, &scope, error), 0);
  EXPECT_EQ(ShownVariable(scope, "a"), "array {{1, 2}, 2}");
}

TEST(AssignToLValue, Stores_what_a_reference_refers_to_and_undefined_for_null) {
  IxoMepValueSet scope;
  const Compiled name = Compile("x");
  IxoMepValue target(5);
  IxoMepValue reference(&target);
  String error;
  EXPECT_EQ(name.tree->AssignToLValue(&reference, nullptr, &scope, error), 0);
  EXPECT_EQ(ShownVariable(scope, "x"), "integer 5");
  EXPECT_EQ(name.tree->AssignToLValue(nullptr, nullptr, &scope, error), 0);
  EXPECT_EQ(ShownVariable(scope, "x"), "undefined");
}

TEST(AssignToLValue, Fails_as_the_place_does) {
  IxoMepValueSet scope;
  IxoMepValue value(1);
  String error;
  EXPECT_EQ(Compile("5").tree->AssignToLValue(&value, nullptr, &scope, error), 31);
  EXPECT_EQ(Compile("x[0]").tree->AssignToLValue(&value, nullptr, &scope, error), 21);
  EXPECT_EQ(Compile("y").tree->AssignToLValue(&value, nullptr, nullptr, error), 20);
  EXPECT_FALSE(error.IsEmpty());
}

}  // namespace
}  // namespace ixomep::test
