// Trees back to text, and the test for a single variable.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "ixomep/expr/node.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using ixomep::NodePtr;
using ixomep::test::Binary;
using ixomep::test::Compile;
using ixomep::test::LambdaOf;
using ixomep::test::LeftDeepSum;
using ixomep::test::Name;
using ixomep::test::RightDeepSum;
using ixomep::test::Set;
using ixomep::test::TestHost;
using Kind = IxoMepExprNodeType;

std::string Pretty(const NodePtr& tree, const IxoMepValueSet* scope = nullptr) {
  return std::string(tree->GetPrettyText(scope).view());
}
std::string Pretty(const char* text, const IxoMepValueSet* scope = nullptr) {
  return Pretty(Compile(text).tree, scope);
}

struct Case {
  const char* text;
  const char* pretty;
};

class PrettyText : public testing::TestWithParam<Case> {};

TEST_P(PrettyText, Has_no_blanks_and_brackets_operands) {
  EXPECT_EQ(Pretty(GetParam().text), GetParam().pretty);
}

INSTANTIATE_TEST_SUITE_P(
    All, PrettyText,
    testing::Values(Case{"5", "5"}, Case{"\"a\\\"b\"", "\"a\\\"b\""}, Case{"2.5", "2.5"},
                    Case{"1cm", "1cm"}, Case{"abc", "abc"}, Case{"a + b", "(a)+(b)"},
                    Case{"-a", "-(a)"}, Case{"NOT a", "NOT(a)"}, Case{"a MOD 2", "(a)MOD(2)"},
                    Case{"a := b := 1", "(a):=((b):=(1))"}, Case{"a, b", "(a),(b)"},
                    Case{"a <> b", "(a)!=(b)"}, Case{"- - 1", "-(-(1))"},
                    Case{"a + b * c", "(a)+((b)*(c))"}, Case{"a[1]", "a[1]"},
                    Case{"a[1, b + 2]", "a[1,(b)+(2)]"}, Case{"a[]", "a[]"},
                    Case{"a[1][2]", "a[1][2]"}, Case{"(a + b)[1]", "(a)+(b)[1]"},
                    Case{"o.m", "o.m"}, Case{"o.m.n", "o.m.n"}, Case{"f()", "f()"},
                    Case{"f(1, a + 2)", "f(1,(a)+(2))"}, Case{"f(g(x))", "f(g(x))"},
                    // of a callee only the name is printed
                    Case{"o.m(1)", "(1)"}, Case{"{1, 2}", "{(1,2)"}, Case{"{}", "{()"},
                    Case{"{1: 2}", "{:(1,2)"}, Case{"f(1)(2)", "(2)"},
                    // of a member only the name
                    Case{"o.(a + b)", "o."}));

TEST(PrettyTextOf, A_lambda_shows_its_parameters_and_its_body) {
  EXPECT_EQ(Pretty(LambdaOf("x,y", Compile("x + y").tree)), "lambda(x,y,(x)+(y))");
  EXPECT_EQ(Pretty(LambdaOf("", Name("z"))), "lambda(z)");
}

TEST(PrettyTextOf, A_list_shows_its_elements) {
  EXPECT_EQ(Pretty(NodePtr::Share(Compile("f(1, 2, 3)").tree->Right())), "1,2,3");
}

TEST(PrettyTextOf, A_name_without_text_is_empty) { EXPECT_EQ(Pretty("?"), ""); }

TEST(PrettyTextOf, Variables_of_the_scope_and_its_parents_show_their_values) {
  IxoMepValueSet outer;
  IxoMepValueSet scope(&outer);
  Set(outer, "a", 1);
  Set(outer, "b", 2);
  Set(scope, "b", "t");
  EXPECT_EQ(Pretty("a + b + c", &scope), "((1)+(\"t\"))+(c)");
  EXPECT_EQ(Pretty("x[b]", &scope), "x[\"t\"]");
}

TEST(PrettyTextOf, Callees_and_members_show_their_names_whatever_the_scope) {
  IxoMepValueSet scope;
  Set(scope, "f", 1);
  Set(scope, "m", 2);
  Set(scope, "o", 3);
  EXPECT_EQ(Pretty("f(f) + o.m", &scope), "(f(1))+(3.m)");
}

TEST(PrettyTextOf, Trees_of_a_million_nodes_is_made_without_recursion) {
  constexpr std::int32_t kLeaves = 500000;
  constexpr std::int32_t kLength = kLeaves + 5 * (kLeaves - 1);  // "(" ")" "+" "(" ")" a sum
  EXPECT_EQ(LeftDeepSum(kLeaves)->GetPrettyText(nullptr).Len(), kLength);
  EXPECT_EQ(RightDeepSum(kLeaves)->GetPrettyText(nullptr).Len(), kLength);
}

TEST(PrettyTextOf, More_than_memory_holds_is_empty) {
  const NodePtr tree = LeftDeepSum(10000);
  const ixomep::test::ScopedMemoryLimit limit(1000);
  EXPECT_EQ(tree->GetPrettyText(nullptr), "");
}

struct OneVar {
  const char* text;
  const char* name;
  bool expected;
};

class JustOneVar : public testing::TestWithParam<OneVar> {};

TEST_P(JustOneVar, Looks_at_every_variable) {
  TestHost host;
  EXPECT_EQ(Compile(GetParam().text).tree->IsJustOneVarContained(GetParam().name),
            GetParam().expected);
  EXPECT_TRUE(host.assertions.empty());
}

INSTANTIATE_TEST_SUITE_P(
    All, JustOneVar,
    testing::Values(OneVar{"1", "a", true}, OneVar{"\"a\" + 2", "a", true}, OneVar{"a", "a", true},
                    OneVar{"a", "b", false}, OneVar{"a", "A", false}, OneVar{"a", "", false},
                    OneVar{"a + a * 2", "a", true}, OneVar{"a + b", "a", false},
                    OneVar{"b + a", "a", false}, OneVar{"-a", "a", true}, OneVar{"-b", "a", false},
                    OneVar{"a[a, 1]", "a", true}, OneVar{"a[1, b]", "a", false},
                    OneVar{"b[1]", "a", false}, OneVar{"a[]", "a", true}, OneVar{"f(a)", "a", true},
                    OneVar{"f(a, b)", "a", false},
                    OneVar{"f()", "a", true},  // a callee's name is no variable
                    OneVar{"{a, 1}", "a", true}, OneVar{"{b}", "a", false},
                    OneVar{"o.m(a)", "a", true},  // nor is what stands before a method's name
                    OneVar{"a := a, a", "a", true}, OneVar{"a := b", "a", false}));

TEST(JustOneVarIn, A_member_access_is_reported_and_false) {
  TestHost host;
  EXPECT_FALSE(Compile("a.a").tree->IsJustOneVarContained("a"));
  EXPECT_EQ(host.assertions.size(), 1u);
  EXPECT_FALSE(Compile("1 + a.a").tree->IsJustOneVarContained("a"));
  EXPECT_EQ(host.assertions.size(), 2u);
}

TEST(JustOneVarIn, A_lambda_is_reported_and_false) {
  TestHost host;
  EXPECT_FALSE(LambdaOf("a", Name("a"))->IsJustOneVarContained("a"));
  EXPECT_EQ(host.assertions.size(), 1u);
}

TEST(JustOneVarIn, Names_are_compared_as_text) {
  const std::string text = "abc";  // not the interned address
  EXPECT_TRUE(Name("abc")->IsJustOneVarContained(text));
}

TEST(JustOneVarIn, Trees_of_a_million_nodes_is_decided_without_recursion) {
  EXPECT_TRUE(LeftDeepSum(500000)->IsJustOneVarContained("x"));
  EXPECT_TRUE(RightDeepSum(500000)->IsJustOneVarContained("x"));
}

}  // namespace
