// What values ask of the expression engine, answered: expressions and lambdas as payloads, and the
// text of a failed call of a node.
#include "ixomep/values/engine_hooks.h"

#include <algorithm>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/node_text.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/values/error.h"

using Kind = IxoMepExprNodeType;

namespace ixomep {

IxoMepExpressionParser* CloneExpression(const IxoMepExpressionParser* parser) {
  return parser != nullptr ? parser->CreateCopy() : nullptr;
}

void DestroyExpression(IxoMepExpressionParser* parser) noexcept { delete parser; }

String TextOfExpression(const IxoMepExpressionParser* parser) {
  const IxoMepExprNode* const tree = parser != nullptr ? parser->GetTree() : nullptr;
  return tree != nullptr ? "(" + PrettyTextOf(*tree, nullptr) + ")" : String();
}

IxoMepExprNode* KeepLambda(IxoMepExprNode* lambda) {
  return lambda != nullptr ? lambda->NewReference() : nullptr;
}

void DropLambda(IxoMepExprNode* lambda) noexcept {
  if (lambda != nullptr) lambda->DeleteReference();
}

std::int32_t LambdaParamCount(const IxoMepExprNode* lambda) noexcept {
  return lambda != nullptr ? lambda->GetLambdaParamCount() : 0;
}

bool HasStack() noexcept { return StackGuard::HasRoom(); }

namespace {

// The function that a call names; the empty text for a callee without a name.
String NameOfCall(const IxoMepExprNode& node) {
  const IxoMepExprNode* callee = node.GetType() == Kind::FunctionCall ? node.Left() : &node;
  if (callee != nullptr && callee->GetType() == Kind::ObjectSubscription) callee = callee->Right();
  return callee != nullptr ? callee->GetName() : String();
}

}  // namespace

}  // namespace ixomep

IxoMepErrorEnum IxoMepError::MakeFunctionError(String& text, IxoMepErrorEnum code,
                                               const IxoMepExprNode* node) {
  const String name = node != nullptr ? ixomep::NameOfCall(*node) : String();
  return MakeFunctionError(text, code, name, IxoMepValueList());
}

IxoMepExpressionParser* IxoMepValue::CreateExprParser() const {
  const IxoMepExpressionParser* const own = GetExpr();
  if (type_ == IxoMepValueType::Expression && own != nullptr) return own->CreateCopy();
  return IxoMepExpressionParser::CreateConstantEP(*this);
}
