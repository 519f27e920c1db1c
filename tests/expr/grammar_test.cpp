// Tokens -> tree: precedence, associativity, the shape of every node, and syntax errors. Parameter
// lists have a test file of their own.
#include "ixomep/expr/grammar.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using ixomep::Fill;
using ixomep::test::Compile;
using ixomep::test::Compiled;
using ixomep::test::ShapeOf;
using ixomep::test::TextOf;
using Kind = IxoMepExprNodeType;

struct Case {
  const char* text;
  const char* shape;
};

class Grammar : public testing::TestWithParam<Case> {};

TEST_P(Grammar, Builds_the_tree) { EXPECT_EQ(ShapeOf(GetParam().text), GetParam().shape); }

INSTANTIATE_TEST_SUITE_P(Primary, Grammar,
                         testing::Values(Case{"1", "1"}, Case{"a", "a"}, Case{"\"t\"", "\"t\""},
                                         Case{"(a)", "a"}, Case{"((a))", "a"},
                                         Case{"(a, b)", "(, a b)"}, Case{"(a := 1)", "(:= a 1)"},
                                         Case{"{}", "(call {)"}, Case{"{1}", "(call { 1)"},
                                         Case{"(* note *) 1 # rest", "1"}));

INSTANTIATE_TEST_SUITE_P(
    Prefix, Grammar,
    testing::Values(Case{"-a", "(- a)"}, Case{"- - 1", "(- (- 1))"}, Case{"VAL a", "(VAL a)"},
                    Case{"STR a", "(STR a)"}, Case{"LEN a", "(LEN a)"}, Case{"NOT a", "(NOT a)"},
                    Case{"ROUND a", "(ROUND a)"}, Case{"FLOOR a", "(FLOOR a)"},
                    Case{"CEIL a", "(CEIL a)"}, Case{"CM a", "(CM a)"}, Case{"CMS a", "(CMS a)"},
                    Case{"PT a", "(PT a)"}, Case{"PTS a", "(PTS a)"}, Case{"ASC a", "(ASC a)"},
                    Case{"CHR a", "(CHR a)"}, Case{"INT a", "(INT a)"}, Case{"REAL a", "(REAL a)"},
                    Case{"STR INT -a", "(STR (INT (- a)))"}, Case{"NOTa", "(NOT a)"},
                    Case{"NOT a = b", "(= (NOT a) b)"}, Case{"LEN s + 1", "(+ (LEN s) 1)"},
                    Case{"-a.b", "(- (. a b))"}, Case{"-a[1]", "(- (index a 1))"},
                    Case{"-f(1)", "(- (call f 1))"}, Case{"-a * b", "(* (- a) b)"},
                    Case{"a * -b", "(* a (- b))"}, Case{"a - -b", "(- a (- b))"},
                    Case{"NOT (a = b)", "(NOT (= a b))"}));

INSTANTIATE_TEST_SUITE_P(Infix, Grammar,
                         testing::Values(Case{"a + b", "(+ a b)"}, Case{"a - b", "(- a b)"},
                                         Case{"a * b", "(* a b)"}, Case{"a / b", "(/ a b)"},
                                         Case{"a MOD b", "(MOD a b)"}, Case{"a SUB b", "(SUB a b)"},
                                         Case{"a IN b", "(IN a b)"}, Case{"a = b", "(= a b)"},
                                         Case{"a <= b", "(<= a b)"}, Case{"a != b", "(!= a b)"},
                                         Case{"a <> b", "(!= a b)"}, Case{"a < b", "(< a b)"},
                                         Case{"a >= b", "(>= a b)"}, Case{"a > b", "(> a b)"},
                                         Case{"a AND b", "(AND a b)"}, Case{"a OR b", "(OR a b)"},
                                         Case{"a := b", "(:= a b)"}, Case{"a, b", "(, a b)"},
                                         Case{"a-b", "(- a b)"}));

INSTANTIATE_TEST_SUITE_P(
    Associativity, Grammar,
    testing::Values(Case{"a, b, c", "(, (, a b) c)"}, Case{"a := b := c", "(:= a (:= b c))"},
                    Case{"x := y := 3", "(:= x (:= y 3))"},
                    Case{"a := b := c := d", "(:= a (:= b (:= c d)))"},
                    Case{"a OR b OR c", "(OR (OR a b) c)"},
                    Case{"a AND b AND c", "(AND (AND a b) c)"}, Case{"a - b - c", "(- (- a b) c)"},
                    Case{"a - b + c", "(+ (- a b) c)"}, Case{"a / b * c", "(* (/ a b) c)"},
                    Case{"a MOD b SUB c IN d", "(IN (SUB (MOD a b) c) d)"}));

INSTANTIATE_TEST_SUITE_P(
    Precedence, Grammar,
    testing::Values(
        Case{"a + b * c", "(+ a (* b c))"}, Case{"a * b + c", "(+ (* a b) c)"},
        Case{"a + b * c - d", "(- (+ a (* b c)) d)"}, Case{"a = b + c", "(= a (+ b c))"},
        Case{"a + b = c", "(= (+ a b) c)"}, Case{"a AND b = c", "(AND a (= b c))"},
        Case{"a = b AND c", "(AND (= a b) c)"}, Case{"a = b AND c < d", "(AND (= a b) (< c d))"},
        Case{"a OR b AND c", "(OR a (AND b c))"}, Case{"a AND b OR c", "(OR (AND a b) c)"},
        Case{"a = b OR c = d", "(OR (= a b) (= c d))"},
        Case{"a = b AND c = d OR e = f", "(OR (AND (= a b) (= c d)) (= e f))"},
        Case{"a := b OR c", "(:= a (OR b c))"}, Case{"a OR b := c", "(:= (OR a b) c)"},
        Case{"a := 1, b := 2", "(, (:= a 1) (:= b 2))"}, Case{"a, b := c", "(, a (:= b c))"},
        Case{"(a + b) * c", "(* (+ a b) c)"}, Case{"a * (b, c)", "(* a (, b c))"}));

INSTANTIATE_TEST_SUITE_P(
    Postfix, Grammar,
    testing::Values(Case{"f()", "(call f)"}, Case{"f(1)", "(call f 1)"},
                    Case{"a[1]", "(index a 1)"}, Case{"a[]", "(index a)"}, Case{"a.b", "(. a b)"},
                    Case{"obj.m(1)", "(call (. obj m) 1)"},
                    Case{"a[1][2]", "(index (index a 1) 2)"}, Case{"a.b.c", "(. (. a b) c)"},
                    Case{"f(1)(2)", "(call (call f 1) 2)"}, Case{"a.b[1]", "(index (. a b) 1)"},
                    Case{"{1,2}[0]", "(index (call { 1 2) 0)"}, Case{"(a)(1)", "(call a 1)"},
                    Case{"\"t\".length", "(. \"t\" length)"}, Case{"1(2)", "(call 1 2)"},
                    Case{"a.(b + c)", "(. a (+ b c))"}, Case{"a.5b", "error 6"},
                    Case{"a.1", "error 15"}));

struct Failure {
  const char* text;
  int code;
  int place;
  const char* first = "";   // what fills "%1"
  const char* second = "";  // what fills "%2"
};

class GrammarFailure : public testing::TestWithParam<Failure> {};

TEST_P(GrammarFailure, Gives_code_text_and_place) {
  const Failure& expected = GetParam();
  const Compiled compiled = Compile(expected.text);
  EXPECT_FALSE(compiled.tree);
  EXPECT_EQ(compiled.code, expected.code);
  EXPECT_EQ(compiled.place, expected.place);
  EXPECT_EQ(compiled.text, TextOf(static_cast<IxoMepErrorEnum>(expected.code),
                                  {{"%1", expected.first}, {"%2", expected.second}}));
}

INSTANTIATE_TEST_SUITE_P(
    OperandExpected, GrammarFailure,
    testing::Values(Failure{"", 13, 0}, Failure{"  # only a comment", 13, 18}, Failure{"+1", 13, 0},
                    Failure{"-", 13, 1}, Failure{"NOT ", 13, 4}, Failure{"a +", 13, 3},
                    Failure{"a + * b", 13, 4}, Failure{"a * ", 13, 4}, Failure{"a =", 13, 3},
                    Failure{"a AND", 13, 5}, Failure{"a OR", 13, 4}, Failure{"a :=", 13, 4},
                    Failure{"a := b :=", 13, 9}, Failure{"a,", 13, 2}, Failure{",a", 13, 0},
                    Failure{":= a", 13, 0}, Failure{"()", 13, 1}, Failure{"(", 13, 1},
                    Failure{")", 13, 0}, Failure{"]", 13, 0}, Failure{"}", 13, 0},
                    Failure{"[1]", 13, 0}, Failure{":", 13, 0}, Failure{".", 13, 0},
                    Failure{"a.", 13, 2}, Failure{"a.+", 13, 2}, Failure{"= b", 13, 0},
                    Failure{"a == b", 13, 3}, Failure{"- + a", 13, 2}));

INSTANTIATE_TEST_SUITE_P(CloserExpected, GrammarFailure,
                         testing::Values(Failure{"(a", 14, 2, ")"}, Failure{"(a b)", 14, 3, ")"},
                                         Failure{"(a = b = c)", 14, 7, ")"},
                                         Failure{"(a]", 14, 2, ")"}, Failure{"((a)", 14, 4, ")"}));

INSTANTIATE_TEST_SUITE_P(
    LeftOver, GrammarFailure,
    testing::Values(Failure{"a b", 15, 2}, Failure{"a = b = c", 15, 6}, Failure{"a < b > c", 15, 6},
                    Failure{"1 = 2 != 3 AND 4", 15, 6}, Failure{"a OR b = c = d", 15, 11},
                    Failure{"a]", 15, 1}, Failure{"a}", 15, 1}, Failure{"a : b", 15, 2},
                    Failure{"a NOT b", 15, 2}, Failure{"a {b}", 15, 2}, Failure{"1 2", 15, 2}));

INSTANTIATE_TEST_SUITE_P(NothingOpen, GrammarFailure,
                         testing::Values(Failure{"a)", 16, 1, ")", "("},
                                         Failure{"(a))", 16, 3, ")", "("},
                                         Failure{"a) b", 16, 1, ")", "("}));

TEST(GrammarNodes, Both_spellings_of_unequal_give_the_same_kind) {
  EXPECT_EQ(Compile("a <> b").tree->GetType(), Kind::NotEqual);
  EXPECT_EQ(Compile("a != b").tree->GetType(), Kind::NotEqual);
}

TEST(GrammarNodes, A_prefix_operator_has_no_left_child) {
  const Compiled compiled = Compile("-a");
  EXPECT_EQ(compiled.tree->GetType(), Kind::Minus);
  EXPECT_EQ(compiled.tree->Left(), nullptr);
  EXPECT_EQ(compiled.tree->Right()->GetName(), "a");
}

TEST(GrammarNodes, A_member_access_is_a_node_of_kind_3) {
  const Compiled compiled = Compile("o.m");
  EXPECT_EQ(static_cast<int>(compiled.tree->GetType()), 3);
  EXPECT_EQ(compiled.tree->Right()->GetType(), Kind::Variable);
}

TEST(GrammarNodes, Every_node_has_one_owner) {
  const Compiled compiled = Compile("f(a, {b: c}).d[1] + -e");
  std::vector<const IxoMepExprNode*> open = {compiled.tree.get()};
  int nodes = 0;
  while (!open.empty()) {
    const IxoMepExprNode* const node = open.back();
    open.pop_back();
    if (node == nullptr) continue;
    ++nodes;
    EXPECT_EQ(node->ExtraReferences(), 0u);
    open.push_back(node->Left());
    open.push_back(node->Right());
  }
  EXPECT_EQ(nodes, 19);
}

}  // namespace
