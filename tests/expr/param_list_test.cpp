// Parameter lists: calls, subscriptions, array and map literals, trailing blocks, and their
// failures.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using ixomep::test::Compile;
using ixomep::test::Compiled;
using ixomep::test::ShapeOf;
using ixomep::test::TextOf;

struct Case {
  const char* text;
  const char* shape;
};

class ParamList : public testing::TestWithParam<Case> {};

TEST_P(ParamList, Builds_the_tree) { EXPECT_EQ(ShapeOf(GetParam().text), GetParam().shape); }

INSTANTIATE_TEST_SUITE_P(Calls, ParamList,
                         testing::Values(Case{"f()", "(call f)"}, Case{"f(a)", "(call f a)"},
                                         Case{"f(a, b, c)", "(call f a b c)"},
                                         Case{"f(a OR b)", "(call f (OR a b))"},
                                         Case{"f((a := 1))", "(call f (:= a 1))"},
                                         Case{"f((a, b))", "(call f (, a b))"},
                                         Case{"f(g(a), b)", "(call f (call g a) b)"}));

INSTANTIATE_TEST_SUITE_P(Subscriptions, ParamList,
                         testing::Values(Case{"a[1, 2]", "(index a 1 2)"}, Case{"a[]", "(index a)"},
                                         Case{"a[b[0]]", "(index a (index b 0))"}));

INSTANTIATE_TEST_SUITE_P(Literals, ParamList,
                         testing::Values(Case{"{}", "(call {)"}, Case{"{1}", "(call { 1)"},
                                         Case{"{1, 2}", "(call { 1 2)"},
                                         Case{"{1:2}", "(call {: 1 2)"},
                                         Case{"{1:2, 3:4}", "(call {: 1 2 3 4)"},
                                         Case{"{a: {b: c}}", "(call {: a (call {: b c))"},
                                         Case{"{{1}, {}}", "(call { (call { 1) (call {))"},
                                         Case{"{(a := 1), b}", "(call { (:= a 1) b)"}));

INSTANTIATE_TEST_SUITE_P(
    TrailingBlocks, ParamList,
    testing::Values(
        Case{"f(x) {a, b}", "(call f x (, a b))"}, Case{"f() {a}", "(call f a)"},
        Case{"f(a) { x := 1, x } (y)", "(call f a (, (:= x 1) x) y)"},
        Case{"f(a) {b} {c}", "(call f a b c)"}, Case{"f(a) {b} (c) {d}", "(call f a b c d)"},
        Case{"f(a) {b} (c, d)", "(call f a b (, c d))"},
        Case{"f(a) (b) {c}", "(call (call f a) b c)"},  // the first must be braces
        Case{"f(a) {b}.c", "(. (call f a b) c)"}, Case{"f(a) {b}[1]", "(index (call f a b) 1)"},
        Case{"o.m(a) {b}", "(call (. o m) a b)"}, Case{"f(a) {{b}}", "(call f a (call { b))"},
        Case{"f(a) {g(b) {c}}", "(call f a (call g b c))"}, Case{"a[1] {b}", "error 15"},
        Case{"(a) {b}", "error 15"}, Case{"{1} {2}", "error 15"}));

struct Failure {
  const char* text;
  int code;
  int place;
  const char* filled = "";  // "%1" of 14, "%c" of 4
};

class ParamListFailure : public testing::TestWithParam<Failure> {};

TEST_P(ParamListFailure, Gives_code_text_and_place) {
  const Failure& expected = GetParam();
  const Compiled compiled = Compile(expected.text);
  EXPECT_FALSE(compiled.tree);
  EXPECT_EQ(compiled.code, expected.code);
  EXPECT_EQ(compiled.place, expected.place);
  EXPECT_EQ(compiled.text, TextOf(static_cast<IxoMepErrorEnum>(expected.code),
                                  {{"%1", expected.filled}, {"%c", expected.filled}}));
}

INSTANTIATE_TEST_SUITE_P(
    Closers, ParamListFailure,
    testing::Values(Failure{"f(a", 14, 3, ")"}, Failure{"f(a]", 14, 3, ")"},
                    Failure{"f(a b)", 14, 4, ")"}, Failure{"f(a : b)", 14, 4, ")"},
                    Failure{"f(a := 1)", 14, 4, ")"}, Failure{"f(a, b", 14, 6, ")"},
                    Failure{"f(a = b = c)", 14, 8, ")"}, Failure{"a[1", 14, 3, "]"},
                    Failure{"a[1)", 14, 3, "]"}, Failure{"a[1:2]", 14, 3, "]"},
                    Failure{"{1", 14, 2, "}"}, Failure{"{1)", 14, 2, "}"},
                    Failure{"{1 2}", 14, 3, "}"}, Failure{"{1, 2:3}", 14, 5, "}"},
                    Failure{"{1:2", 14, 4, "}"}, Failure{"{1:2:3}", 14, 4, "}"},
                    Failure{"{1:2, 3", 14, 7, "}"}, Failure{"{1:2 3}", 14, 5, "}"},
                    Failure{"{a := 1}", 14, 3, "}"}));

INSTANTIATE_TEST_SUITE_P(MapSeparators, ParamListFailure,
                         testing::Values(Failure{"{1:2, 3}", 4, 7, "}"},
                                         Failure{"{1:2, 3, 4}", 4, 7, ","},
                                         Failure{"{1:2, 3:4, 5}", 4, 12, "}"}));

INSTANTIATE_TEST_SUITE_P(Operands, ParamListFailure,
                         testing::Values(Failure{"f(", 13, 2}, Failure{"f(,)", 13, 2},
                                         Failure{"f(a,)", 13, 4}, Failure{"a[", 13, 2},
                                         Failure{"a[1,]", 13, 4}, Failure{"{", 13, 1},
                                         Failure{"{,}", 13, 1}, Failure{"{1,}", 13, 3},
                                         Failure{"{:}", 13, 1}, Failure{"{1:}", 13, 3},
                                         Failure{"{1:2,}", 13, 5}));

INSTANTIATE_TEST_SUITE_P(
    Blocks, ParamListFailure,
    testing::Values(Failure{"f(a) {", 13, 6}, Failure{"f(a) {}", 13, 6},
                    Failure{"f(a) {b", 14, 7, "}"}, Failure{"f(a) {b)", 14, 7, "}"},
                    Failure{"f(a) {b} (c", 14, 11, ")"}, Failure{"f(a) {b} (c}", 14, 11, ")"},
                    Failure{"f(a) {b : c}", 14, 8, "}"}, Failure{"f(a) {b} ()", 13, 10}));

TEST(ParamListNodes, Cells_are_chained_through_their_right_children) {
  const Compiled compiled = Compile("f(a, b)");
  const IxoMepExprNode* const first = compiled.tree->Right();
  EXPECT_EQ(first->GetType(), IxoMepExprNodeType::ParamItem);
  EXPECT_EQ(first->Left()->GetName(), "a");
  EXPECT_EQ(first->Right()->GetType(), IxoMepExprNodeType::ParamItem);
  EXPECT_EQ(first->Right()->Left()->GetName(), "b");
  EXPECT_EQ(first->Right()->Right(), nullptr);
}

TEST(ParamListNodes, A_literal_calls_a_new_variable_node) {
  EXPECT_EQ(Compile("{}").tree->GetParam0()->GetType(), IxoMepExprNodeType::Variable);
  EXPECT_EQ(Compile("{}").tree->GetParam0()->GetName(), "{");
  EXPECT_EQ(Compile("{1:2}").tree->GetParam0()->GetName(), "{:");
}

TEST(ParamListNodes, Trailing_blocks_count_as_parameters) {
  EXPECT_EQ(Compile("f(a) { x := 1, x } (y)").tree->GetParamCount(), 3);
  EXPECT_EQ(Compile("f(x) {a, b}").tree->GetParamCount(), 2);
}

}  // namespace
