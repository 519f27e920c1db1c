// The expression object: its texts, trees, copies, constants, and what evaluation through it does.
#include "ixomep/expr/expression_parser.h"

#include <gtest/gtest.h>

#include <memory>

#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/error.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

using Parser = IxoMepExpressionParser;

IxoMepErrorEnum SetTo(Parser& parser, const char* text) {
  String error;
  return parser.SetExpression(text, error);
}

std::string Result(const Parser& parser, IxoMepValueSet* scope, bool strict = false,
                   bool own_scope = false) {
  IxoMepValue* slot = nullptr;
  String error;
  const int code = parser.Evaluate(scope, slot, error, strict, own_scope);
  const ValuePtr value(slot);
  return code != 0 ? "error " + std::to_string(code) : ShownValue(slot);
}

TEST(ExpressionParser, Begins_without_tree_text_and_line) {
  Parser parser;
  EXPECT_EQ(parser.GetTree(), nullptr);
  EXPECT_EQ(parser.GetLineNo(), 4294967295u);
  EXPECT_TRUE(parser.GetOriginalExpression().IsEmpty());
  EXPECT_EQ(parser.GetConstant(), IxoMepValue::GetNull());
}

TEST(ExpressionParser, Evaluating_without_a_tree_gives_36_and_touches_nothing) {
  Parser parser;
  IxoMepValueSet scope;
  IxoMepValue value(7);
  IxoMepValue* slot = &value;
  String error("before");
  EXPECT_EQ(parser.Evaluate(&scope, slot, error, false, true), 36);
  EXPECT_EQ(slot, &value);
  EXPECT_EQ(ShownValue(value), "integer 7");
  EXPECT_EQ(error, "before");
  EXPECT_EQ(parser.AssignToLValue(&value, &scope, error), 36);
  EXPECT_FALSE(parser.IsJustOneVarContained("x"));
  EXPECT_TRUE(parser.GetExpression(nullptr).IsEmpty());
}

TEST(ExpressionParser, A_text_that_fails_is_kept_and_leaves_no_tree) {
  Parser parser;
  IxoMepValueSet scope;
  EXPECT_EQ(SetTo(parser, "1 + 2"), 0);
  String error;
  EXPECT_EQ(parser.SetExpression("1 +", error), 13);
  EXPECT_EQ(error, IxoMepError::GetErrorText(IMEPERR_OPERAND_EXPECTED));
  EXPECT_EQ(parser.GetOriginalExpression(), "1 +");
  EXPECT_EQ(parser.GetTree(), nullptr);
  EXPECT_EQ(Result(parser, &scope), "error 36");
}

TEST(ExpressionParser, The_text_is_kept_as_given) {
  Parser parser;
  EXPECT_EQ(SetTo(parser, "  1 +  2 # sum"), 0);
  EXPECT_EQ(parser.GetOriginalExpression(), "  1 +  2 # sum");
  EXPECT_EQ(parser.GetExpression(nullptr), "((1)+(2))");
}

TEST(ExpressionParser, The_text_may_be_its_own) {
  Parser parser;
  EXPECT_EQ(SetTo(parser, "x + 1"), 0);
  String error;
  EXPECT_EQ(parser.SetExpression(parser.GetOriginalExpression(), error), 0);
  EXPECT_EQ(parser.GetOriginalExpression(), "x + 1");
}

TEST(ExpressionParser, Shows_variables_of_a_scope_by_value) {
  Parser parser;
  IxoMepValueSet scope;
  Set(scope, "x", IxoMepValue(5));
  EXPECT_EQ(SetTo(parser, "x + y"), 0);
  EXPECT_EQ(parser.GetExpression(&scope), "((5)+(y))");
  EXPECT_EQ(parser.GetExpression(nullptr), "((x)+(y))");
}

// --- Copies -------------------------------------------------------------------------------------

TEST(ExpressionParser, A_copy_shares_the_tree_and_outlives_its_source) {
  IxoMepValueSet scope;
  auto source = std::make_unique<Parser>();
  source->SetLineNo(3);
  EXPECT_EQ(SetTo(*source, "x * 2"), 0);
  const std::unique_ptr<Parser> copy(source->CreateCopy());
  const Parser constructed(*source);
  EXPECT_EQ(copy->GetTree(), source->GetTree());
  EXPECT_EQ(copy->GetLineNo(), 3u);
  EXPECT_EQ(copy->GetOriginalExpression(), "x * 2");
  source.reset();
  Set(scope, "x", IxoMepValue(21));
  EXPECT_EQ(Result(*copy, &scope), "integer 42");
  EXPECT_EQ(Result(constructed, &scope), "integer 42");
}

TEST(ExpressionParser, Copy_assignment_takes_the_tree_but_keeps_line_and_text) {
  IxoMepValueSet scope;
  Parser source;
  Parser target;
  source.SetLineNo(3);
  target.SetLineNo(9);
  EXPECT_EQ(SetTo(source, "1 + 2"), 0);
  EXPECT_EQ(SetTo(target, "7"), 0);
  target = source;
  EXPECT_EQ(Result(target, &scope), "integer 3");
  EXPECT_EQ(target.GetLineNo(), 9u);
  EXPECT_EQ(target.GetOriginalExpression(), "7");
  const Parser& same = target;
  target = same;
  EXPECT_EQ(Result(target, &scope), "integer 3");
  target = Parser();
  EXPECT_EQ(target.GetTree(), nullptr);
}

TEST(ExpressionParser, A_new_text_for_one_copy_leaves_the_other_its_tree) {
  IxoMepValueSet scope;
  Parser source;
  EXPECT_EQ(SetTo(source, "1"), 0);
  const Parser copy(source);
  EXPECT_EQ(SetTo(source, "2"), 0);
  EXPECT_EQ(Result(copy, &scope), "integer 1");
}

// --- Constants ----------------------------------------------------------------------------------

TEST(ExpressionParser, GetConstant_gives_the_value_of_a_constant_only) {
  Parser parser;
  EXPECT_EQ(SetTo(parser, "1+2"), 0);
  EXPECT_EQ(parser.GetConstant(), nullptr);
  EXPECT_EQ(SetTo(parser, "3"), 0);
  EXPECT_EQ(ShownValue(parser.GetConstant()), "integer 3");
  EXPECT_EQ(SetTo(parser, "x"), 0);
  EXPECT_EQ(parser.GetConstant(), nullptr);
}

TEST(ExpressionParser, SetConstant_replaces_a_tree_and_rewrites_a_constant) {
  IxoMepValueSet scope;
  Parser parser;
  EXPECT_EQ(SetTo(parser, "1 + 2"), 0);
  parser.SetConstant(IxoMepValue("a"));
  EXPECT_EQ(Result(parser, &scope), "string \"a\"");
  EXPECT_EQ(parser.GetOriginalExpression(), "1 + 2");
  const IxoMepExprNode* const node = parser.GetTree();
  const IxoMepValue* const value = parser.GetConstant();
  parser.SetConstant(IxoMepValue(5));
  EXPECT_EQ(parser.GetTree(), node);
  EXPECT_EQ(parser.GetConstant(), value);
  EXPECT_EQ(Result(parser, &scope), "integer 5");
  parser.SetConstant(*parser.GetConstant());
  EXPECT_EQ(Result(parser, &scope), "integer 5");
}

TEST(ExpressionParser, SetConstant_does_not_change_the_copies_that_share_the_tree) {
  IxoMepValueSet scope;
  Parser parser;
  parser.SetConstant(IxoMepValue(1));
  const Parser copy(parser);
  parser.SetConstant(IxoMepValue(2));
  EXPECT_EQ(Result(copy, &scope), "integer 1");
  EXPECT_EQ(Result(parser, &scope), "integer 2");
}

TEST(ExpressionParser, CreateConstantEP_makes_a_constant) {
  IxoMepValueSet scope;
  const std::unique_ptr<Parser> parser(Parser::CreateConstantEP(ValueOf("{1, 2}")));
  EXPECT_EQ(Result(*parser, &scope), "array {1, 2}");
  EXPECT_EQ(parser->GetLineNo(), 4294967295u);
}

// --- Evaluation ---------------------------------------------------------------------------------

TEST(ExpressionParser, With_its_own_scope_new_variables_are_discarded) {
  IxoMepValueSet scope;
  Parser parser;
  EXPECT_EQ(SetTo(parser, "x := 1"), 0);
  EXPECT_EQ(Result(parser, &scope, false, /*own_scope=*/true), "integer 1");
  EXPECT_EQ(ShownVariable(scope, "x"), "null");
  EXPECT_EQ(Result(parser, &scope, false, /*own_scope=*/false), "integer 1");
  EXPECT_EQ(ShownVariable(scope, "x"), "integer 1");
}

TEST(ExpressionParser, A_variable_of_the_given_scope_is_assigned_either_way) {
  Parser parser;
  EXPECT_EQ(SetTo(parser, "x := 1"), 0);
  for (const bool own_scope : {true, false}) {
    IxoMepValueSet outer;
    IxoMepValueSet scope(&outer);
    Set(outer, "x", IxoMepValue(0));
    EXPECT_EQ(Result(parser, &scope, false, own_scope), "integer 1");
    EXPECT_EQ(ShownVariable(outer, "x"), "integer 1");
    EXPECT_EQ(scope.Count(), 0u);
  }
}

TEST(ExpressionParser, Its_own_scope_goes_back_to_the_pool_after_success_and_failure) {
  IxoMepValueSet scope;
  Parser parser;
  IxoMepValueSet* const next = IxoMepValueSetContainer::AllocateValueSet(nullptr);
  IxoMepValueSetContainer::FreeValueSet(next);
  for (const char* text : {"x := 1", "x := 1 / 0"}) {
    EXPECT_EQ(SetTo(parser, text), 0);
    Result(parser, &scope, false, /*own_scope=*/true);
    IxoMepValueSet* const again = IxoMepValueSetContainer::AllocateValueSet(nullptr);
    EXPECT_EQ(again, next);
    EXPECT_EQ(again->Count(), 0u);
    IxoMepValueSetContainer::FreeValueSet(again);
  }
}

TEST(ExpressionParser, With_its_own_scope_and_no_given_one_variables_can_be_made) {
  Parser parser;
  EXPECT_EQ(SetTo(parser, "x := 2, x * x"), 0);
  EXPECT_EQ(Result(parser, nullptr, false, true), "integer 4");
  EXPECT_EQ(Result(parser, nullptr, false, false), "error 20");
}

TEST(ExpressionParser, Strictness_is_handed_on) {
  IxoMepValueSet scope;
  Parser parser;
  EXPECT_EQ(SetTo(parser, "x"), 0);
  EXPECT_EQ(Result(parser, &scope, true), "error 20");
  EXPECT_EQ(Result(parser, &scope, false), "undefined");
  EXPECT_EQ(SetTo(parser, "x := 1"), 0);
  EXPECT_EQ(Result(parser, &scope, true, true), "error 20");
}

TEST(ExpressionParser, The_line_number_is_what_curlineno_gives) {
  IxoMepValueSet scope;
  Parser parser;
  EXPECT_EQ(SetTo(parser, "curlineno()"), 0);
  IxoMepValue* slot = nullptr;
  String error;
  EXPECT_EQ(parser.Evaluate(&scope, slot, error, false, false), 0);
  EXPECT_EQ(static_cast<std::uint32_t>(slot->GetInt()), 4294967295u) << "never set";
  delete slot;
  parser.SetLineNo(17);
  EXPECT_EQ(Result(parser, &scope), "integer 17");
  EXPECT_EQ(SetTo(parser, "curlineno(1)"), 0);
  EXPECT_EQ(Result(parser, &scope), "error 23");
}

TEST(ExpressionParser, Assigns_to_the_place_that_the_expression_denotes) {
  IxoMepValueSet scope;
  Parser parser;
  IxoMepValue value(5);
  String error;
  Eval("a := {1, 2}", &scope);
  EXPECT_EQ(SetTo(parser, "a[1]"), 0);
  EXPECT_EQ(parser.AssignToLValue(&value, &scope, error), 0);
  EXPECT_EQ(ShownVariable(scope, "a"), "array {1, 5}");
  EXPECT_EQ(SetTo(parser, "b"), 0);
  EXPECT_EQ(parser.AssignToLValue(&value, &scope, error), 0);
  EXPECT_EQ(ShownVariable(scope, "b"), "integer 5");
  EXPECT_EQ(SetTo(parser, "1 + 2"), 0);
  EXPECT_EQ(parser.AssignToLValue(&value, &scope, error), 31);
}

TEST(ExpressionParser, Asks_its_tree_whether_one_variable_is_contained) {
  Parser parser;
  EXPECT_EQ(SetTo(parser, "x + x * 2"), 0);
  EXPECT_TRUE(parser.IsJustOneVarContained("x"));
  EXPECT_FALSE(parser.IsJustOneVarContained("y"));
}

TEST(ExpressionParser, A_hook_may_give_its_own_object_another_text) {
  class Fickle : public Parser {
   public:
    IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode*, IxoMepValueSet*, const String&,
                                         IxoMepValue*& result, String& text, bool) const override {
      EXPECT_EQ(const_cast<Fickle*>(this)->SetExpression("2", text), 0);
      result = new IxoMepValue(10);
      return IMEPERR_NONE;
    }
  };
  Fickle parser;
  IxoMepValueSet scope;
  EXPECT_EQ(EvalWith(parser, "change() + {1, 2, 3}[2]", &scope).Shown(), "integer 13");
  EXPECT_EQ(Result(parser, &scope), "integer 2");
}

TEST(ExpressionParser, Virtual_members_stand_in_the_order_of_the_interface) {
  class Derived : public Parser {
   public:
    Parser* CreateCopy() const override { return new Derived(*this); }
    IxoMepErrorEnum Evaluate(IxoMepValueSet*, IxoMepValue*& result, String&, bool,
                             bool) const override {
      result = new IxoMepValue("mine");
      return IMEPERR_NONE;
    }
  };
  const Derived derived;
  const std::unique_ptr<Parser> copy(derived.CreateCopy());
  EXPECT_EQ(Result(*copy, nullptr), "string \"mine\"");
}

}  // namespace
}  // namespace ixomep::test
