// Copies of trees: plain ones, and those in which visible variables become constants.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "ixomep/expr/capture.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using ixomep::AssignedName;
using ixomep::CopyBody;
using ixomep::Intern;
using ixomep::NodePtr;
using ixomep::test::Compile;
using ixomep::test::LambdaOf;
using ixomep::test::LambdaValue;
using ixomep::test::LeftDeepSum;
using ixomep::test::Name;
using ixomep::test::Number;
using ixomep::test::RightDeepSum;
using ixomep::test::Set;
using ixomep::test::Shape;
using Kind = IxoMepExprNodeType;

NodePtr Copy(const NodePtr& tree, const IxoMepValueSet* scope) {
  return NodePtr(tree->Copy(scope));
}

std::string ShapeOfCopy(const char* text, const IxoMepValueSet* scope) {
  return Shape(Copy(Compile(text).tree, scope).get());
}

// The shape of a lambda's body with these parameters, captured from the scope.
std::string ShapeOfBody(const char* text, const IxoMepValueSet* scope,
                        std::initializer_list<const char*> parameters,
                        const char* recursive_name = nullptr) {
  std::vector<const char*> names;
  for (const char* parameter : parameters) names.push_back(Intern(parameter));
  const char* const name = recursive_name != nullptr ? Intern(recursive_name) : nullptr;
  return Shape(CopyBody(*Compile(text).tree, scope, names, name).get());
}

// a = 1 and t = "s" in the parent; b = 2, the lambda l, and a number by a function's name inside.
class NodeCopy : public testing::Test {
 protected:
  NodeCopy() : scope(&outer) {
    Set(outer, "a", 1);
    Set(outer, "t", "s");
    Set(scope, "b", 2);
    Set(scope, "l", LambdaValue("x", Name("x")));
    Set(scope, "abs", 7);
  }

  IxoMepValueSet outer;
  IxoMepValueSet scope;
};

TEST_F(NodeCopy, With_a_null_scope_is_plain) {
  for (const char* text :
       {"1", "a", "a + b * -c", "f(a, {1: b}) {c}", "a[1, 2].m(b)", "x := \"t\", y", "{}", "f()"}) {
    EXPECT_EQ(ShapeOfCopy(text, nullptr), Shape(Compile(text).tree.get())) << text;
  }
}

TEST_F(NodeCopy, Shares_no_node_and_no_value_with_its_original) {
  const NodePtr tree = Compile("a + 1").tree;
  const NodePtr copy = Copy(tree, nullptr);
  EXPECT_NE(copy.get(), tree.get());
  EXPECT_NE(copy->Left(), tree->Left());
  EXPECT_NE(copy->Right()->GetValue(), tree->Right()->GetValue());
  EXPECT_EQ(copy->ExtraReferences(), 0u);
  EXPECT_EQ(copy->Left()->GetNameAddress(), tree->Left()->GetNameAddress());
}

TEST_F(NodeCopy, A_visible_variable_becomes_a_constant_without_a_name) {
  const NodePtr copy = Copy(Name("b"), &scope);
  EXPECT_EQ(copy->GetType(), Kind::Constant);
  EXPECT_EQ(copy->GetNameAddress(), nullptr);
  EXPECT_EQ(copy->GetValue()->GetInt(), 2);
}

TEST_F(NodeCopy, Variables_of_parents_are_captured_too) {
  EXPECT_EQ(ShapeOfCopy("a + b + t", &scope), "(+ (+ 1 2) \"s\")");
}

TEST_F(NodeCopy, Unknown_names_stay) {
  EXPECT_EQ(ShapeOfCopy("a + unknown", &scope), "(+ 1 unknown)");
  EXPECT_EQ(ShapeOfCopy("?", &scope), "");
}

TEST_F(NodeCopy, Captures_the_current_value) {
  const NodePtr tree = Name("b");
  const NodePtr before = Copy(tree, &scope);
  Set(scope, "b", 3);
  EXPECT_EQ(before->GetValue()->GetInt(), 2);
  EXPECT_EQ(Copy(tree, &scope)->GetValue()->GetInt(), 3);
  EXPECT_EQ(tree->GetType(), Kind::Variable);
}

TEST_F(NodeCopy, Captures_a_variable_that_holds_undefined) {
  Set(scope, "u", IxoMepValue());
  const NodePtr copy = Copy(Name("u"), &scope);
  EXPECT_EQ(copy->GetType(), Kind::Constant);
  EXPECT_EQ(copy->GetValue()->GetType(), IxoMepValueType::Undefined);
}

TEST_F(NodeCopy, Captures_everywhere_in_the_tree) {
  EXPECT_EQ(ShapeOfCopy("f(a, -b) {a} (b)", &scope), "(call f 1 (- 2) 1 2)");
  EXPECT_EQ(ShapeOfCopy("x[a, b]", &scope), "(index x 1 2)");
  EXPECT_EQ(ShapeOfCopy("{a, {b: x}}", &scope), "(call { 1 (call {: 2 x))");
  EXPECT_EQ(ShapeOfCopy("x := a, b", &scope), "(, (:= x 1) 2)");
}

TEST_F(NodeCopy, Captures_the_target_of_an_assignment) {
  EXPECT_EQ(ShapeOfCopy("a := 5", &scope), "(:= 1 5)");
}

TEST_F(NodeCopy, A_captured_reference_gives_what_it_refers_to) {
  IxoMepValue target(42);
  IxoMepValue middle(&target);
  Set(scope, "r", IxoMepValue(&middle));
  const NodePtr copy = Copy(Name("r"), &scope);
  EXPECT_EQ(copy->GetValue()->GetType(), IxoMepValueType::Integer);
  EXPECT_EQ(copy->GetValue()->GetInt(), 42);
}

TEST_F(NodeCopy, A_circle_of_references_does_not_hang) {
  IxoMepValue first;
  IxoMepValue second(&first);
  first = IxoMepValue(&second);
  Set(scope, "r", IxoMepValue(&first));
  EXPECT_TRUE(Copy(Name("r"), &scope));
}

TEST_F(NodeCopy, The_name_of_a_member_stays_while_its_object_is_captured) {
  EXPECT_EQ(ShapeOfCopy("x.a", &scope), "(. x a)");
  EXPECT_EQ(ShapeOfCopy("t.a", &scope), "(. \"s\" a)");
  EXPECT_EQ(ShapeOfCopy("t.a(a)", &scope), "(call (. \"s\" a) 1)");
}

TEST_F(NodeCopy, A_callee_is_captured_when_its_variable_holds_a_lambda) {
  const NodePtr copy = Copy(Compile("l(b)").tree, &scope);
  EXPECT_EQ(copy->GetParam0()->GetType(), Kind::Constant);
  EXPECT_EQ(copy->GetParam0()->GetValue()->GetType(), IxoMepValueType::Lambda);
  EXPECT_EQ(copy->GetParam1()->GetValue()->GetInt(), 2);
}

TEST_F(NodeCopy, A_callee_whose_variable_holds_anything_else_stays_a_name) {
  EXPECT_EQ(ShapeOfCopy("b(b)", &scope), "(call b 2)");
}

TEST_F(NodeCopy, A_built_in_callee_stays_a_name_whatever_its_variable_holds) {
  Set(scope, "sin", LambdaValue("x", Name("x")));
  Set(scope, "cond", LambdaValue("x", Name("x")));
  EXPECT_EQ(ShapeOfCopy("abs(abs)", &scope), "(call abs 7)");
  EXPECT_EQ(ShapeOfCopy("sin(b) + cond(1, b, 3)", &scope), "(+ (call sin 2) (call cond 1 2 3))");
}

TEST_F(NodeCopy, A_lambda_named_outside_a_call_is_captured) {
  EXPECT_EQ(Copy(Name("l"), &scope)->GetValue()->GetType(), IxoMepValueType::Lambda);
}

TEST_F(NodeCopy, The_callee_of_a_call_of_a_call_is_looked_through) {
  EXPECT_EQ(ShapeOfCopy("b(a)(b)", &scope), "(call (call b 1) 2)");
}

TEST_F(NodeCopy, The_tree_of_a_lambda_keeps_its_own_parameters) {
  const NodePtr lambda = LambdaOf("a,x", Compile("a + b + x").tree);
  EXPECT_EQ(Shape(Copy(lambda, &scope).get()), "(lambda a x (+ (+ a 2) x))");
  EXPECT_EQ(Shape(Copy(lambda, nullptr).get()), "(lambda a x (+ (+ a b) x))");
}

TEST_F(NodeCopy, Trees_of_a_million_nodes_are_copied_without_recursion) {
  const NodePtr left = LeftDeepSum(500000);
  const NodePtr right = RightDeepSum(500000);
  EXPECT_EQ(Copy(left, nullptr)->GetPrettyText(nullptr), left->GetPrettyText(nullptr));
  EXPECT_EQ(Copy(right, nullptr)->GetPrettyText(nullptr), right->GetPrettyText(nullptr));
  Set(scope, "x", 1);
  EXPECT_TRUE(Copy(left, &scope));
  EXPECT_TRUE(Copy(right, &scope));
}

TEST_F(NodeCopy, Without_memory_gives_null) {
  const NodePtr tree = LeftDeepSum(100000);
  const ixomep::test::ScopedMemoryLimit limit(1000);
  EXPECT_FALSE(Copy(tree, nullptr));
}

using NodeCapture = NodeCopy;

TEST_F(NodeCapture, Parameters_of_the_lambda_stay_names) {
  EXPECT_EQ(ShapeOfBody("a + b", &scope, {"a"}), "(+ a 2)");
  EXPECT_EQ(ShapeOfBody("l(a)", &scope, {"l", "x"}), "(call l 1)");
  EXPECT_EQ(ShapeOfBody("a + b", nullptr, {"a"}), "(+ a b)");
}

TEST_F(NodeCapture, Parameters_of_an_inner_lambda_stay_names_in_its_list_and_body) {
  EXPECT_EQ(ShapeOfBody("lambda(a, a + b)", &scope, {}), "(call lambda a (+ a 2))");
  EXPECT_EQ(ShapeOfBody("lambda(a, a + b)", &scope, {"b"}), "(call lambda a (+ a b))");
  EXPECT_EQ(ShapeOfBody("lambda(x, y, b)", &scope, {}), "(call lambda x y 2)");
  EXPECT_EQ(ShapeOfBody("lambda(a)", &scope, {}), "(call lambda 1)");
  EXPECT_EQ(ShapeOfBody("lambda(l, l(a))", &scope, {}), "(call lambda l (call l 1))");
}

TEST_F(NodeCapture, Parameters_of_an_inner_lambda_are_captured_outside_of_it) {
  EXPECT_EQ(ShapeOfBody("a + lambda(a, a) (a) + a", &scope, {}),
            "(+ (+ 1 (call (call lambda a a) 1)) 1)");
  EXPECT_EQ(ShapeOfBody("f(lambda(a, a), a)", &scope, {}), "(call f (call lambda a a) 1)");
}

TEST_F(NodeCapture, Parameters_of_nested_lambdas_add_up) {
  EXPECT_EQ(ShapeOfBody("lambda(a, lambda(b, a + b) + b)", &scope, {}),
            "(call lambda a (+ (call lambda b (+ a b)) 2))");
  EXPECT_EQ(ShapeOfBody("lambda(a, lambda(a, a) + a) + a", &scope, {}),
            "(+ (call lambda a (+ (call lambda a a) a)) 1)");
}

TEST_F(NodeCapture, An_argument_of_an_inner_lambda_that_is_no_name_is_captured) {
  EXPECT_EQ(ShapeOfBody("lambda(a + b, a)", &scope, {}), "(call lambda (+ 1 2) 1)");
}

TEST_F(NodeCapture, A_lambda_behind_a_trailing_block_keeps_its_parameters) {
  EXPECT_EQ(ShapeOfBody("lambda(a) {a + b}", &scope, {}), "(call lambda a (+ a 2))");
}

TEST_F(NodeCapture, A_method_called_lambda_has_no_parameters_of_that_kind) {
  EXPECT_EQ(ShapeOfBody("x.lambda(a, a)", &scope, {}), "(call (. x lambda) 1 1)");
}

TEST_F(NodeCapture, A_call_of_the_recursive_name_stays_a_name) {
  EXPECT_EQ(ShapeOfBody("l(x - a)", &scope, {"x"}, "l"), "(call l (- x 1))");
  EXPECT_EQ(ShapeOfBody("lambda(y, l(y))", &scope, {}, "l"), "(call lambda y (call l y))");
}

TEST_F(NodeCapture, The_recursive_name_outside_a_call_is_captured) {
  const NodePtr copy = CopyBody(*Name("l"), &scope, {}, Intern("l"));
  EXPECT_EQ(copy->GetType(), Kind::Constant);
}

TEST_F(NodeCapture, A_call_of_another_lambda_beside_the_recursive_one_is_captured) {
  Set(scope, "k", LambdaValue("x", Name("x")));
  const NodePtr copy = CopyBody(*Compile("k(l(1))").tree, &scope, {}, Intern("l"));
  EXPECT_EQ(copy->GetParam0()->GetType(), Kind::Constant);
  EXPECT_EQ(copy->GetParam1()->GetParam0()->GetType(), Kind::Variable);
}

TEST_F(NodeCapture, A_callee_that_refers_to_a_lambda_captures_the_lambda) {
  IxoMepValue target = LambdaValue("x", Name("x"));
  Set(scope, "r", IxoMepValue(&target));
  const NodePtr copy = CopyBody(*Compile("r(1)").tree, &scope, {});
  EXPECT_EQ(copy->GetParam0()->GetValue()->GetType(), IxoMepValueType::Lambda);
}

TEST_F(NodeCapture, Many_nested_lambdas_take_linear_time) {
  std::string text;
  for (int i = 0; i < 400; ++i) text += "lambda(a,";
  text += "a+b" + std::string(400, ')');
  const std::string shape = ShapeOfBody(text.c_str(), &scope, {});
  EXPECT_NE(shape.find("(+ a 2)"), std::string::npos);
}

TEST_F(NodeCapture, Thousands_of_parameters_are_looked_up_quickly) {
  std::string text = "lambda(";
  for (int i = 0; i < 20000; ++i) text += "p" + std::to_string(i) + ",";
  for (int i = 0; i < 20000; ++i) text += "p" + std::to_string(i) + "+";
  text += "b)";
  EXPECT_TRUE(CopyBody(*Compile(text).tree, &scope, {}));
}

TEST(AssignedNameOf, An_assignment_is_seen_until_it_is_taken_or_ends) {
  EXPECT_EQ(AssignedName::Current(), nullptr);
  {
    const AssignedName outer(Intern("f"));
    EXPECT_EQ(AssignedName::Current(), Intern("f"));
    {
      const AssignedName inner(Intern("g"));
      EXPECT_EQ(AssignedName::Take(), Intern("g"));
      EXPECT_EQ(AssignedName::Current(), nullptr);
    }
    EXPECT_EQ(AssignedName::Current(), Intern("f"));
  }
  EXPECT_EQ(AssignedName::Current(), nullptr);
}

}  // namespace
