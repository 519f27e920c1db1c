// The life of a node: construction, counted owners, the pool, release without recursion; and the
// access to parameters.
#include "ixomep/expr/node.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "ixomep/values/free_list.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using ixomep::NodeAccess;
using ixomep::NodePtr;
using ixomep::test::Compile;
using ixomep::test::LambdaOf;
using ixomep::test::LeftDeepSum;
using ixomep::test::Name;
using ixomep::test::Number;
using ixomep::test::Prefix;
using ixomep::test::RightDeepSum;
using Kind = IxoMepExprNodeType;
using Pool = ixomep::FreeList<IxoMepExprNode, 32>;

TEST(Node, Is_a_block_of_32_bytes) { EXPECT_EQ(sizeof(IxoMepExprNode), 32u); }

TEST(Node, A_new_node_has_one_owner_and_no_children) {
  const NodePtr node = Name("abc");
  EXPECT_EQ(node->GetType(), Kind::Variable);
  EXPECT_EQ(node->ExtraReferences(), 0u);
  EXPECT_EQ(node->Left(), nullptr);
  EXPECT_EQ(node->Right(), nullptr);
  EXPECT_EQ(node->GetValue(), nullptr);
  EXPECT_EQ(node->Value(), nullptr);
  EXPECT_EQ(node->GetName(), "abc");
}

TEST(Node, A_node_without_a_name_has_the_empty_name) {
  const NodePtr node = NodePtr::Make(Kind::Plus);
  EXPECT_EQ(node->GetNameAddress(), nullptr);
  EXPECT_EQ(node->GetName(), "");
}

TEST(Node, The_first_node_fills_the_table_of_functions) {
  Name("a");
  EXPECT_EQ(IxoMepExprNode::aFunctionCallMap.size(), 68u);
}

TEST(Node, A_constant_gives_its_value_and_no_left_child) {
  const NodePtr node = Number(5);
  EXPECT_EQ(node->GetValue()->GetInt(), 5);
  EXPECT_EQ(node->Value(), node->GetValue());
  EXPECT_EQ(node->Left(), nullptr);
}

TEST(NodeReferences, A_further_owner_gets_the_node_itself) {
  const NodePtr node = Number(5);
  IxoMepExprNode* const second = node->NewReference();
  EXPECT_EQ(second, node.get());
  EXPECT_EQ(node->ExtraReferences(), 1u);
  second->DeleteReference();
  EXPECT_EQ(node->ExtraReferences(), 0u);
  EXPECT_EQ(node->GetValue()->GetInt(), 5);
}

// Raises the count to its cap and gives all of it back at the end.
class Saturated {
 public:
  explicit Saturated(IxoMepExprNode& node) : node_(node) {
    while (node_.ExtraReferences() < 65535) node_.NewReference();
  }
  ~Saturated() {
    while (node_.ExtraReferences() > 0) node_.DeleteReference();
  }

 private:
  IxoMepExprNode& node_;
};

TEST(NodeReferences, The_owner_beyond_65535_further_ones_gets_a_copy) {
  const NodePtr node = Compile("a + 1").tree;
  const Saturated saturated(*node);
  EXPECT_EQ(node->ExtraReferences(), 65535u);
  const NodePtr copy(node->NewReference());
  EXPECT_EQ(node->ExtraReferences(), 65535u);
  EXPECT_NE(copy.get(), node.get());
  EXPECT_EQ(copy->ExtraReferences(), 0u);
  EXPECT_EQ(ixomep::test::Shape(copy.get()), "(+ a 1)");
  EXPECT_EQ(copy->Left(), node->Left());  // children are shared by counted references
  EXPECT_EQ(copy->Right(), node->Right());
  EXPECT_EQ(node->Left()->ExtraReferences(), 1u);
}

TEST(NodeReferences, A_constants_copy_has_a_value_of_its_own) {
  const NodePtr node = ixomep::test::Text("t");
  const Saturated saturated(*node);
  const NodePtr copy(node->NewReference());
  EXPECT_NE(copy->GetValue(), node->GetValue());
  EXPECT_EQ(copy->GetValue()->GetStr(), "t");
}

TEST(NodeReferences, A_names_copy_has_the_same_interned_name) {
  const NodePtr node = Name("abc");
  const Saturated saturated(*node);
  const NodePtr copy(node->NewReference());
  EXPECT_EQ(copy->GetNameAddress(), node->GetNameAddress());
}

TEST(NodeReferences, A_child_at_its_cap_is_copied_with_its_parent) {
  const NodePtr node = Prefix(Kind::Minus, Number(1));
  IxoMepExprNode& child = *const_cast<IxoMepExprNode*>(node->Right());
  const Saturated saturated_child(child);
  const Saturated saturated(*node);
  const NodePtr copy(node->NewReference());
  EXPECT_NE(copy->Right(), &child);
  EXPECT_EQ(copy->Right()->GetValue()->GetInt(), 1);
}

TEST(NodeReferences, A_subtree_that_is_still_owned_survives_its_parent) {
  NodePtr tree = Compile("a + b").tree;
  const NodePtr left = NodePtr::Share(tree->Left());
  EXPECT_EQ(left->ExtraReferences(), 1u);
  tree.Reset();
  EXPECT_EQ(left->ExtraReferences(), 0u);
  EXPECT_EQ(left->GetName(), "a");
}

TEST(NodeReferences, Owners_of_the_same_node_twice_in_a_tree_are_counted) {
  NodePtr shared = Number(1);
  const IxoMepExprNode* const address = shared.get();
  NodePtr second = NodePtr::Share(address);
  NodePtr keeper = NodePtr::Share(address);
  NodePtr tree = ixomep::test::Binary(Kind::Plus, std::move(shared), std::move(second));
  EXPECT_EQ(keeper->ExtraReferences(), 2u);
  tree.Reset();
  EXPECT_EQ(keeper->ExtraReferences(), 0u);
}

TEST(NodePool, The_block_freed_last_is_used_first) {
  NodePtr first = Name("a");
  NodePtr second = Name("b");
  IxoMepExprNode* const first_block = first.get();
  IxoMepExprNode* const second_block = second.get();
  first.Reset();
  second.Reset();
  const NodePtr third = Name("c");
  const NodePtr fourth = Name("d");
  EXPECT_EQ(third.get(), second_block);
  EXPECT_EQ(fourth.get(), first_block);
}

TEST(NodePool, More_than_30000_free_blocks_are_trimmed_to_15000) {
  std::vector<NodePtr> nodes;
  for (int i = 0; i < 60000; ++i) nodes.push_back(Name("a"));  // the pool is empty now
  ASSERT_EQ(Pool::Count(), 0);
  for (int i = 0; i < 30000; ++i) nodes.pop_back();
  EXPECT_EQ(Pool::Count(), 30000);
  nodes.pop_back();
  EXPECT_EQ(Pool::Count(), 15000);
}

TEST(NodeRelease, Trees_of_a_million_nodes_are_released_without_recursion) {
  LeftDeepSum(500000).Reset();
  RightDeepSum(500000).Reset();
  NodePtr list;
  for (int i = 0; i < 500000; ++i) {
    list = ixomep::test::Binary(Kind::ParamItem, Name("x"), std::move(list));
  }
}

TEST(NodeRelease, Lambdas_held_by_constants_of_lambdas_are_released_without_recursion) {
  NodePtr lambda = LambdaOf("x", Name("x"));
  for (int i = 0; i < 300000; ++i) {
    NodePtr constant = NodePtr::Make(Kind::Constant);
    NodeAccess::SetValue(*constant, ixomep::MakeValue(lambda.Release()));
    lambda = LambdaOf("x", std::move(constant));
  }
}

TEST(NodeRelease, Constants_of_nested_arrays_are_released_without_recursion) {
  IxoMepValue nested(IxoMepValueType::Array);
  for (int i = 0; i < 300000; ++i) {
    auto outer = ixomep::MakeValue(IxoMepValueType::Array);
    outer->Append(new IxoMepValue(std::move(nested)));
    nested = std::move(*outer);
  }
  NodePtr constant = NodePtr::Make(Kind::Constant);
  NodeAccess::SetValue(*constant, ixomep::MakeValue(std::move(nested)));
}

TEST(NodeParameters, Are_numbered_from_1_with_the_callee_as_0) {
  const NodePtr call = Compile("f(a, b, c, d, e)").tree;
  EXPECT_EQ(call->GetParam0()->GetName(), "f");
  EXPECT_EQ(call->GetParam1()->GetName(), "a");
  EXPECT_EQ(call->GetParam2()->GetName(), "b");
  EXPECT_EQ(call->GetParam3()->GetName(), "c");
  EXPECT_EQ(call->GetParam4()->GetName(), "d");
  EXPECT_EQ(call->GetParam(0), call->GetParam0());
  EXPECT_EQ(call->GetParam(1), call->GetParam1());
  EXPECT_EQ(call->GetParam(5)->GetName(), "e");
  EXPECT_EQ(call->GetParam(6), nullptr);
  EXPECT_EQ(call->GetParam(2147483647), nullptr);
  EXPECT_EQ(call->GetParam(-1), nullptr);
  EXPECT_EQ(call->GetParamCount(), 5);
}

TEST(NodeParameters, An_empty_list_is_a_null_pointer) {
  const NodePtr call = Compile("f()").tree;
  EXPECT_EQ(call->Right(), nullptr);
  EXPECT_EQ(call->GetParamCount(), 0);
  EXPECT_EQ(call->GetParam1(), nullptr);
}

TEST(NodeParameters, Of_a_lambda_are_the_chain_of_names) {
  EXPECT_EQ(LambdaOf("x,y,z", Name("x"))->GetLambdaParamCount(), 3);
  EXPECT_EQ(LambdaOf("", Name("x"))->GetLambdaParamCount(), 0);
  EXPECT_EQ(Compile("a + b").tree->GetLambdaParamCount(), 0);
  EXPECT_EQ(Number(1)->GetLambdaParamCount(), 0);
}

TEST(NodeParameters, A_constant_or_a_name_has_none) {
  EXPECT_EQ(Number(1)->GetParam0(), nullptr);
  EXPECT_EQ(Number(1)->GetParamCount(), 0);
  EXPECT_EQ(Name("a")->GetParam1(), nullptr);
}

}  // namespace
