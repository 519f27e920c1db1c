// Expression trees for tests.
#include "tests/support/trees.h"

#include <algorithm>
#include <utility>

#include "ixomep/expr/error_place.h"
#include "ixomep/expr/operator_table.h"
#include "ixomep/expr/parse.h"
#include "ixomep/values/error.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep::test {
namespace {

using Kind = IxoMepExprNodeType;

std::string Joined(std::string_view head, const IxoMepExprNode* left, const IxoMepExprNode* right) {
  return "(" + std::string(head) + " " + Shape(left) + " " + Shape(right) + ")";
}

// The elements of a parameter list, each behind a blank.
std::string Cells(const IxoMepExprNode* cell) {
  std::string text;
  for (; cell != nullptr; cell = cell->Right()) {
    text += cell->GetType() == Kind::ParamItem ? " " + Shape(cell->Left()) : " not-a-cell";
  }
  return text;
}

std::string Parameters(const IxoMepExprNode* name) {
  std::string text;
  for (; name != nullptr; name = name->Left()) text += " " + std::string(name->GetName().view());
  return text;
}

std::string OperatorShape(const IxoMepExprNode& node) {
  const std::string_view name = OperatorText(node.GetType());
  if (node.Left() != nullptr) return Joined(name, node.Left(), node.Right());
  return "(" + std::string(name) + " " + Shape(node.Right()) + ")";
}

}  // namespace

Compiled Compile(const String& text) {
  Compiled compiled;
  compiled.tree = ParseExpression(text, compiled.code, compiled.text);
  compiled.place = ErrorPlace::Offset();
  return compiled;
}

std::string Shape(const IxoMepExprNode* node) {
  if (node == nullptr) return "nil";
  switch (node->GetType()) {
    case Kind::Constant:
      return std::string(node->GetValue()->GetText().view());
    case Kind::Variable:
      return std::string(node->GetName().view());
    case Kind::ArraySubscription:
      return "(index " + Shape(node->Left()) + Cells(node->Right()) + ")";
    case Kind::ObjectSubscription:
      return Joined(".", node->Left(), node->Right());
    case Kind::FunctionCall:
      return "(call " + Shape(node->Left()) + Cells(node->Right()) + ")";
    case Kind::ParamItem:
      return "(params" + Cells(node) + ")";
    case Kind::Lambda:
      return "(lambda" + Parameters(node->Left()) + " " + Shape(node->Right()) + ")";
    default:
      return OperatorShape(*node);
  }
}

std::string ShapeOf(const String& text) {
  const Compiled compiled = Compile(text);
  if (compiled.code != IMEPERR_NONE) return "error " + std::to_string(compiled.code);
  return Shape(compiled.tree.get());
}

String TextOf(IxoMepErrorEnum code, std::initializer_list<Fill> fills) {
  String text = IxoMepError::GetErrorText(code);
  for (const Fill& fill : fills) text.ReplaceFirst(fill.placeholder, fill.replacement);
  return text;
}

NodePtr Name(std::string_view name) { return NodePtr::Make(Kind::Variable, Intern(name)); }

NodePtr Number(int number) {
  NodePtr node = NodePtr::Make(Kind::Constant);
  NodeAccess::SetValue(*node, MakeValue(number));
  return node;
}

NodePtr Text(std::string_view text) {
  NodePtr node = NodePtr::Make(Kind::Constant);
  NodeAccess::SetValue(*node, MakeValue(String(text)));
  return node;
}

NodePtr Binary(Kind kind, NodePtr left, NodePtr right) {
  NodePtr node = NodePtr::Make(kind);
  NodeAccess::SetLeft(*node, std::move(left));
  NodeAccess::SetRight(*node, std::move(right));
  return node;
}

NodePtr Prefix(Kind kind, NodePtr operand) { return Binary(kind, {}, std::move(operand)); }

NodePtr LambdaOf(std::string_view parameters, NodePtr body) {
  NodePtr lambda = NodePtr::Make(Kind::Lambda);
  NodeAccess::SetRight(*lambda, std::move(body));
  IxoMepExprNode* last = lambda.get();
  while (!parameters.empty()) {
    const std::string_view name = parameters.substr(0, parameters.find(','));
    parameters.remove_prefix(std::min(parameters.size(), name.size() + 1));
    NodePtr parameter = Name(name);
    IxoMepExprNode* const added = parameter.get();
    NodeAccess::SetLeft(*last, std::move(parameter));
    last = added;
  }
  return lambda;
}

IxoMepValue LambdaValue(std::string_view parameters, NodePtr body) {
  return IxoMepValue(LambdaOf(parameters, std::move(body)).Release());
}

NodePtr LeftDeepSum(std::int32_t leaves) {
  NodePtr sum = Name("x");
  for (std::int32_t i = 1; i < leaves; ++i) sum = Binary(Kind::Plus, std::move(sum), Name("x"));
  return sum;
}

NodePtr RightDeepSum(std::int32_t leaves) {
  NodePtr sum = Name("x");
  for (std::int32_t i = 1; i < leaves; ++i) sum = Binary(Kind::Plus, Name("x"), std::move(sum));
  return sum;
}

void Set(IxoMepValueSet& scope, std::string_view name, const IxoMepValue& value) {
  scope.NewSetValue(Intern(name), value, true);
}

}  // namespace ixomep::test
