// What a method is called on, and the members of nodes by which a host evaluates parameters and
// calls functions itself.
#include <gtest/gtest.h>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node.h"
#include "ixomep/values/error.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

TEST(Receivers, An_element_is_used_in_place) {
  EXPECT_EQ(Shown("a := {\" x \", {3, 1, 2}}, a[0].trim()"), "string \"x\"");
  EXPECT_EQ(Shown("a := {\" x \", {3, 1, 2}}, a[1].sort(lambda(p, q, p < q)), a"),
            "array {\" x \", {1, 2, 3}}");
  EXPECT_EQ(Shown("m := {\"k\": {3, 1}}, m[\"k\"].sort(lambda(p, q, p < q)), m"),
            "map {\"k\": {1, 3}}");
}

TEST(Receivers, A_property_that_is_no_place_is_a_temporary) {
  EXPECT_EQ(Shown("s := \"abc\", s.length"), "integer 3");
  EXPECT_EQ(Shown("s := \"abc\", s.length.trim()"), "error 42") << "an integer has no methods";
  EXPECT_EQ(Shown("s := \"abc\", s.unknown.trim()"), "error 42");
  EXPECT_EQ(Shown("a := {1, 2}, a.length.sort()"), "error 42");
}

TEST(GetParamResults, Of_three_parameters_the_missing_third_is_23) {
  const Compiled compiled = Compile("f(1, 2)");
  ASSERT_EQ(compiled.code, IMEPERR_NONE);
  IxoMepValue *first = nullptr, *second = nullptr, *third = new IxoMepValue("given");
  String text;
  IxoMepValueSet scope;
  EXPECT_EQ(compiled.tree->GetParamResults(nullptr, &scope, first, second, third, text, false),
            IMEPERR_WRONG_ARGUMENT_COUNT);
  const ValuePtr owner1(first), owner2(second);
  EXPECT_EQ(ShownValue(first), "integer 1");
  EXPECT_EQ(ShownValue(second), "integer 2");
  EXPECT_EQ(third, nullptr);
}

TEST(GetParamResults, Three_parameters_come_in_order) {
  const Compiled compiled = Compile("f(1, 2, 1 + 2)");
  IxoMepValue *first = nullptr, *second = nullptr, *third = nullptr;
  String text;
  EXPECT_EQ(compiled.tree->GetParamResults(nullptr, nullptr, first, second, third, text, false),
            IMEPERR_NONE);
  const ValuePtr owner1(first), owner2(second), owner3(third);
  EXPECT_EQ(ShownValue(third), "integer 3");
}

// The literals of arrays and maps are functions of the table like all others.
TEST(Handlers, Of_the_braces_make_arrays_and_maps) {
  const auto call = [](const char* source, const char* name) {
    const Compiled compiled = Compile(source);
    const auto handler = IxoMepExprNode::aFunctionCallMap.find(name);
    EXPECT_NE(handler, IxoMepExprNode::aFunctionCallMap.end()) << name;
    IxoMepValue* result = nullptr;
    String text;
    EXPECT_EQ(((*compiled.tree).*(handler->second))(nullptr, nullptr, result, text, false),
              IMEPERR_NONE);
    const ValuePtr owner(result);
    return ShownValue(result);
  };
  EXPECT_EQ(call("{1, {2}}", "{"), "array {1, {2}}");
  EXPECT_EQ(call("{1: 2}", "{:"), "map {1: 2}");
}

}  // namespace
}  // namespace ixomep::test
