// Methods of objects: parameters that refer to the caller's values, native methods, what the
// result may be, and that everything is held while a method runs.
#include <gtest/gtest.h>

#include "ixomep/expr/evaluator.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/object.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

using Type = IxoMepValueType;

class ObjectCalls : public testing::Test {
 protected:
  ObjectCalls() {
    Set(scope, "o", IxoMepValue(Type::Object));
    object = Variable(scope, "o")->GetObject();
  }
  void AddMethod(const char* name, const char* lambda) {
    object->MoveValue(name, new IxoMepValue(ValueOf(lambda)));
  }
  // Calls through the class, without an expression.
  long Call(const char* name, const IxoMepValueList& args, IxoMepValue*& slot, String& text) {
    return object->EvaluateObjectMethodCall(Intern(name), args, slot, text);
  }
  IxoMepValueSet scope;
  IxoMepObject* object;
};

TEST_F(ObjectCalls, A_method_that_assigns_to_its_parameter_changes_the_callers_variable) {
  AddMethod("f", "lambda(p, (p := p + 1))");
  EXPECT_EQ(Shown("x := 1, o.f(x), x", &scope), "real 2.0");
  AddMethod("g", "lambda(p, (p := \"new\"))");
  EXPECT_EQ(Shown("o.g(x), x", &scope), "string \"new\"");
  AddMethod("h", "lambda(p, (p[0] := 9))");
  EXPECT_EQ(Shown("a := {1, 2}, o.h(a), a", &scope), "array {9, 2}");
}

TEST_F(ObjectCalls, Any_other_argument_is_a_temporary) {
  AddMethod("f", "lambda(p, (p := 9, p))");
  EXPECT_EQ(Shown("o.f(1 + 2)", &scope), "integer 9");
  EXPECT_EQ(Shown("a := {1}, o.f(a[0]), a", &scope), "array {1}");
  EXPECT_EQ(Shown("o.f((x := 1)), x", &scope), "integer 1");
  EXPECT_EQ(Shown("o.f(unknown), unknown", &scope), "undefined");
  EXPECT_EQ(Shown("o.f(unknown)", &scope, Mode::Strict), "error 20");
}

TEST_F(ObjectCalls, The_variable_of_an_outer_scope_is_reached_from_inside_a_lambda) {
  AddMethod("f", "lambda(p, (p := 9))");
  EXPECT_EQ(Shown("x := 1, g := lambda(q, (eval(\"o.f(x)\"), o.f(q), q)), {g(5), x}", &scope),
            "array {9, 9}");
}

TEST_F(ObjectCalls, A_parameter_as_the_key_of_merase_stands_for_what_it_refers_to) {
  AddMethod("f", "lambda(v, (m := {\"a\": 1, \"b\": 2}, merase(m, v), m))");
  EXPECT_EQ(Shown("k := \"a\", o.f(k)", &scope), "map {\"b\": 2}");
}

TEST_F(ObjectCalls, A_result_is_a_copy_of_what_a_parameter_refers_to) {
  AddMethod("f", "lambda(p, p)");
  EXPECT_EQ(Shown("x := 5, o.f(x)", &scope), "integer 5");
  EXPECT_EQ(Shown("type(o.f(x))", &scope), "string \"integer\"");
  EXPECT_EQ(Shown("y := o.f(x), x := 6, y", &scope), "integer 5");
  AddMethod("g", "lambda(p, {p, p})");
  EXPECT_EQ(Shown("y := o.g(x), x := 7, y", &scope), "array {6, 6}");
  AddMethod("h", "lambda(p, lambda(q, p + q))");
  EXPECT_EQ(Shown("y := o.h(x), x := 8, y(1)", &scope), "integer 8")
      << "the lambda captured what the parameter refers to";
  AddMethod("k", "lambda(p, q, cond(p, q, p))");
  EXPECT_EQ(Shown("type(o.k(0, 1))", &scope), "string \"integer\"");
}

TEST_F(ObjectCalls, What_a_parameter_refers_to_is_copied_into_local_variables) {
  AddMethod("f", "lambda(p, (l := p, p := 9, l))");
  EXPECT_EQ(Shown("x := 5, o.f(x)", &scope), "integer 5");
  AddMethod("g", "lambda(p, (set(l, p), p := 9, l))");
  EXPECT_EQ(Shown("x := 5, o.g(x)", &scope), "integer 5");
}

TEST_F(ObjectCalls, Fewer_arguments_leave_parameters_unbound_and_more_are_ignored) {
  AddMethod("f", "lambda(p, q, type(q))");
  EXPECT_EQ(Shown("o.f(1)", &scope), "string \"undefined\"");
  EXPECT_EQ(Shown("q := 5, o.f(1)", &scope), "string \"undefined\"")
      << "the scope of a method has no parent";
  AddMethod("g", "lambda(p, p)");
  EXPECT_EQ(Shown("o.g(1, 2, 3)", &scope), "integer 1");
  EXPECT_EQ(Shown("o.g(1, (z := 3)), z", &scope), "integer 3") << "but they are evaluated";
}

TEST_F(ObjectCalls, A_property_that_is_no_lambda_is_no_method) {
  IxoMepValue lambda = ValueOf("lambda(1)");
  object->MoveValue("count", new IxoMepValue(5));
  object->MoveValue("referring", new IxoMepValue(&lambda));
  const Outcome outcome = Eval("o.count()", &scope);
  EXPECT_EQ(outcome.code, 42);
  EXPECT_NE(std::string(outcome.text.view()).find("count"), std::string::npos);
  EXPECT_NE(std::string(outcome.text.view()).find("object"), std::string::npos);
  EXPECT_EQ(Shown("o.referring()", &scope), "error 42");
  EXPECT_EQ(Shown("o.nosuch()", &scope), "error 42");
}

TEST_F(ObjectCalls, The_class_itself_leaves_the_text_of_42_to_its_caller) {
  IxoMepValue* slot = nullptr;
  String text("before");
  object->MoveValue("count", new IxoMepValue(5));
  EXPECT_EQ(Call("nosuch", {}, slot, text), 42);
  EXPECT_EQ(Call("count", {}, slot, text), 42);
  EXPECT_EQ(object->EvaluateObjectMethodCall(nullptr, {}, slot, text), 42);
  EXPECT_EQ(text, "before");
  EXPECT_EQ(slot, nullptr);
}

TEST_F(ObjectCalls, A_failure_inside_a_method_is_returned_unchanged) {
  AddMethod("f", "lambda(p, error(\"inside\"))");
  EXPECT_EQ(Eval("o.f(1)", &scope).ShownWithText(), "error 32: inside");
  AddMethod("g", "lambda(p, nosuch(p))");
  EXPECT_EQ(Shown("o.g(1)", &scope), "error 22");
}

TEST_F(ObjectCalls, A_method_is_never_strict) {
  AddMethod("f", "lambda(p, (l := p, l))");
  EXPECT_EQ(Shown("x := 3", &scope), "integer 3");
  EXPECT_EQ(Shown("o.f(x)", &scope, Mode::Strict), "integer 3");
}

TEST_F(ObjectCalls, A_method_without_a_result_leaves_it_unset) {
  AddMethod("f", "lambda(while(0, 1))");
  EXPECT_EQ(Shown("o.f()", &scope), "no result");
}

TEST_F(ObjectCalls, A_method_may_call_methods_of_what_its_parameters_refer_to) {
  AddMethod("f", "lambda(p, (p := 7))");
  AddMethod("g", "lambda(self, p, (m := self, m.f(p)))");
  EXPECT_EQ(Shown("x := 1, o.g(o, x), x", &scope), "integer 7") << "a reference to a reference";
}

// --- The slot -----------------------------------------------------------------------------------

TEST_F(ObjectCalls, The_result_goes_into_the_slot_which_may_be_an_argument) {
  AddMethod("f", "lambda(p, (p := p + 1, p * 10))");
  IxoMepValue arg(2);
  IxoMepValue* slot = &arg;
  String text;
  EXPECT_EQ(Call("f", {&arg}, slot, text), 0);
  EXPECT_EQ(slot, &arg);
  EXPECT_EQ(ShownValue(arg), "real 30.0");
}

TEST_F(ObjectCalls, A_failure_destroys_the_value_of_the_slot) {
  AddMethod("f", "lambda(1 / 0)");
  IxoMepValue* slot = new IxoMepValue("old");
  String text;
  EXPECT_EQ(Call("f", {}, slot, text), 18);
  EXPECT_EQ(slot, nullptr);
}

TEST_F(ObjectCalls, An_argument_that_is_missing_from_the_list_stays_unbound) {
  AddMethod("f", "lambda(p, q, {type(p), q})");
  IxoMepValue two(2);
  IxoMepValue* slot = nullptr;
  String text;
  EXPECT_EQ(Call("f", {nullptr, &two}, slot, text), 0);
  EXPECT_EQ(ShownValue(slot), "array {\"undefined\", 2}");
  delete slot;
}

// --- Native methods -----------------------------------------------------------------------------

TEST_F(ObjectCalls, A_native_method_gets_object_arguments_and_slot) {
  object->SetNativeMethod("add",
                          [this](IxoMepObject* self, const IxoMepValueList& args,
                                 IxoMepValue*& result, String&) -> long {
                            EXPECT_EQ(self, object);
                            EXPECT_EQ(args.size(), 2u);
                            EXPECT_EQ(args[0], Variable(scope, "x"))
                                << "the variable's value itself";
                            args[0]->SetInt(args[0]->GetInt() + args[1]->GetInt());
                            result = new IxoMepValue("done");
                            return 0;
                          });
  EXPECT_EQ(Shown("x := 1, {o.add(x, 41), x}", &scope), "array {\"done\", 42}");
}

TEST_F(ObjectCalls, A_native_methods_code_and_text_are_returned) {
  object->SetNativeMethod(
      "fail",
      [](IxoMepObject*, const IxoMepValueList&, IxoMepValue*& result, String& text) -> long {
        result = new IxoMepValue("left behind");
        text = "native";
        return 32;
      });
  EXPECT_EQ(Eval("o.fail()", &scope).ShownWithText(), "error 32: native");
}

TEST_F(ObjectCalls, A_property_comes_before_a_native_method_of_its_name) {
  object->SetNativeMethod(
      "f", [](IxoMepObject*, const IxoMepValueList&, IxoMepValue*& result, String&) -> long {
        result = new IxoMepValue("native");
        return 0;
      });
  EXPECT_EQ(Shown("o.f()", &scope), "string \"native\"");
  AddMethod("f", "lambda(\"lambda\")");
  EXPECT_EQ(Shown("o.f()", &scope), "string \"lambda\"");
  object->MoveValue("f", new IxoMepValue(1));
  EXPECT_EQ(Shown("o.f()", &scope), "error 42");
}

TEST_F(ObjectCalls, An_empty_native_method_is_unknown) {
  object->SetNativeMethod("f", nullptr);
  EXPECT_EQ(Shown("o.f()", &scope), "error 42");
}

TEST_F(ObjectCalls, A_native_method_may_replace_itself_while_it_runs) {
  object->SetNativeMethod("f",
                          [big = std::string(100, 'x')](IxoMepObject* self, const IxoMepValueList&,
                                                        IxoMepValue*& result, String&) -> long {
                            self->SetNativeMethod("f", nullptr);
                            result = new IxoMepValue(String(big));
                            return 0;
                          });
  EXPECT_EQ(Shown("LEN o.f()", &scope), "integer 100");
}

// --- Holding ------------------------------------------------------------------------------------

TEST_F(ObjectCalls, The_object_is_held_when_its_last_variable_is_overwritten) {
  AddMethod("f", "lambda(p, (p := 0, unknown := 1, \"end\"))");
  EXPECT_EQ(Shown("o.f(o)", &scope), "string \"end\"");
  EXPECT_EQ(ShownVariable(scope, "o"), "integer 0");
}

TEST_F(ObjectCalls, A_method_that_replaces_itself_runs_to_its_end) {
  AddMethod("f", "lambda(p, (p.f := 5, \"end\"))");
  EXPECT_EQ(Shown("o.f(o)", &scope), "string \"end\"");
  EXPECT_EQ(Shown("o.f", &scope), "integer 5");
}

TEST_F(ObjectCalls, An_argument_may_overwrite_the_receiver) {
  AddMethod("f", "lambda(p, p)");
  EXPECT_EQ(Shown("o.f((o := 5))", &scope), "integer 5") << "the object was taken first";
}

TEST_F(ObjectCalls, An_object_at_the_cap_of_its_references_is_called_all_the_same) {
  AddMethod("f", "lambda(p, p)");
  std::uint32_t raised = 0;
  while (object->NewReference() != nullptr) ++raised;
  EXPECT_EQ(object->ReferenceCount(), 65535u);
  EXPECT_EQ(Shown("o.f(7)", &scope), "integer 7");
  EXPECT_EQ(object->ReferenceCount(), 65535u);
  for (; raised > 0; --raised) object->DeleteReference();
}

TEST_F(ObjectCalls, References_are_given_back) {
  AddMethod("f", "lambda(p, 1 / p)");
  const std::uint32_t before = object->ReferenceCount();
  for (const char* text : {"o.f(1)", "o.f(0)", "o.f(1 / 0)", "o.nosuch(o)", "o.f(o)"}) {
    Eval(text, &scope);
    EXPECT_EQ(object->ReferenceCount(), before) << text;
  }
}

// --- Predicates ---------------------------------------------------------------------------------

TEST(Predicate, Reads_its_result_as_an_integer_greater_than_zero) {
  struct Row {
    const char* lambda;
    bool truth;
  };
  for (const Row& row : {Row{"lambda(x, y, 1)", true}, Row{"lambda(x, y, 0)", false},
                         Row{"lambda(x, y, -1)", false}, Row{"lambda(x, y, 0.9)", false},
                         Row{"lambda(x, y, 1.5)", true}, Row{"lambda(x, y, 1e300)", false},
                         Row{"lambda(x, y, \"1\")", false}, Row{"lambda(x, y, x < y)", true},
                         Row{"lambda(x, y, while(0, 1))", false}, Row{"lambda(5)", true}}) {
    IxoMepValue lambda = ValueOf(row.lambda);
    bool truth = !row.truth;
    String text;
    EXPECT_EQ(ApplyPredicate(lambda.GetLambda(), IxoMepValue(1), IxoMepValue(2), truth, text), 0);
    EXPECT_EQ(truth, row.truth) << row.lambda;
  }
}

TEST(Predicate, Has_a_scope_without_a_parent_and_copies_of_the_elements) {
  EXPECT_EQ(Shown("v := 5, a := {2, 1}, f := eval(\"lambda(x, y, w > 0)\"), w := 1, a.sort(f), a"),
            "error 21");
  EXPECT_EQ(Shown("a := {{1}, {2}}, a.sort(lambda(x, y, (x[0] := 9, 0))), a"), "array {{1}, {2}}");
}

TEST(Predicate, Passes_its_failure_on) {
  IxoMepValue lambda = ValueOf("lambda(x, y, error(\"inside\"))");
  bool truth = true;
  String text;
  EXPECT_EQ(ApplyPredicate(lambda.GetLambda(), IxoMepValue(1), IxoMepValue(2), truth, text), 32);
  EXPECT_EQ(text, "inside");
  EXPECT_FALSE(truth);
}

}  // namespace
}  // namespace ixomep::test
