// The expression object: what the host holds, evaluates and derives from. Reading its text is
// parse.cpp's, evaluation the evaluator's; here are the life of the object, the border to both,
// and the base of the host's hook.
#include "ixomep/expr/expression_parser.h"

#include <memory>
#include <string_view>

#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/guarded.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/node_text.h"
#include "ixomep/expr/parse.h"
#include "ixomep/expr/program_quick.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/error.h"
#include "ixomep/values/string_address_map.h"

using ixomep::NodeAccess;
using ixomep::NodePtr;

namespace {

constexpr std::string_view kLineNumber = "curlineno";

// One more owner of a tree; none when the copy that the cap of owners asks for cannot be had.
NodePtr ShareTree(const IxoMepExprNode* tree) noexcept {
  try {
    return NodePtr::Share(tree);
  } catch (const std::exception&) {
    return {};
  }
}

// Releases old after the object has its new tree: what dies may lead back to the object.
void ReplaceTree(IxoMepExprNode*& tree, NodePtr replacement) noexcept {
  const NodePtr old(std::exchange(tree, replacement.Release()));
}

// The arguments of a call, evaluated left to right; a result left unset counts as undefined.
IxoMepErrorEnum EvaluateArguments(const IxoMepExprNode& call, ixomep::Frame& frame,
                                  ixomep::OwnedList& args) {
  for (const IxoMepExprNode* cell = call.Right(); cell != nullptr; cell = cell->Right()) {
    ixomep::ValuePtr value = ixomep::MakeValue();
    const IxoMepErrorEnum code = ixomep::EvaluateOperand(*cell->Left(), frame, *value);
    if (code != IMEPERR_NONE) return code;
    args.Add(std::move(value));
  }
  return IMEPERR_NONE;
}

bool HoldsLambda(const IxoMepValueSet* scope, const String& name) {
  const IxoMepValue* const variable =
      scope != nullptr ? scope->_find(IxoMepStringAddressMap::GetAddress(name)) : nullptr;
  return variable != nullptr && variable->GetLambda() != nullptr;
}

}  // namespace

IxoMepExpressionParser::IxoMepExpressionParser(const IxoMepExpressionParser& other)
    : tree_(ShareTree(other.tree_).Release()), line_(other.line_), text_(other.text_) {}

// Meant: line number and expression text stay, unlike in the copy constructor.
IxoMepExpressionParser& IxoMepExpressionParser::operator=(const IxoMepExpressionParser& other) {
  if (this != &other) ReplaceTree(tree_, ShareTree(other.tree_));
  return *this;
}

IxoMepExpressionParser::~IxoMepExpressionParser() { ReplaceTree(tree_, NodePtr()); }

IxoMepExpressionParser* IxoMepExpressionParser::CreateCopy() const {
  return new IxoMepExpressionParser(*this);
}

IxoMepErrorEnum IxoMepExpressionParser::SetExpression(const String& text, String& errorText) {
  ReplaceTree(tree_, NodePtr());
  text_ = text;
  IxoMepErrorEnum code = IMEPERR_NONE;
  tree_ = ixomep::ParseExpression(text_, code, errorText).Release();
  return code;
}

namespace {

// Variables that the expression creates are discarded with the scope.
IxoMepErrorEnum EvaluateInOwnScope(const IxoMepExprNode& root, const IxoMepExpressionParser* parser,
                                   IxoMepValueSet* scope, IxoMepValue*& result, String& text,
                                   bool strict) {
  const IxoMepErrorEnum code = ixomep::Guarded(text, [&] {
    const ixomep::PooledScope own(scope);
    return ixomep::EvaluateToSlot(root, parser, own.get(), result, text, strict);
  });
  if (code != IMEPERR_NONE) ixomep::FailResult(result, scope);
  return code;
}

}  // namespace

// Meant: 36 leaves result and errorText alone.
IxoMepErrorEnum IxoMepExpressionParser::Evaluate(IxoMepValueSet* scope, IxoMepValue*& result,
                                                 String& errorText, bool strict,
                                                 bool ownScope) const {
  if (tree_ == nullptr) return IMEPERR_UNEXPECTED_TYPE;
  IxoMepExprNode::m_nCallDepth = 0;
  ixomep::QuickTree* const quick = ixomep::FindQuickTree(*tree_);
  if (quick != nullptr && quick->names.IsBoundTo(scope)) {
    return ixomep::EvaluateQuickly(*quick, this, scope, result, errorText, strict);
  }
  // A quiet tree creates nothing that a scope of its own would have to discard.
  const auto evaluate =
      ownScope && quick == nullptr ? &EvaluateInOwnScope : &ixomep::EvaluateToSlot;
  return evaluate(*tree_, this, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExpressionParser::EvaluateFunctionCall(const IxoMepExprNode* call,
                                                             IxoMepValueSet* scope,
                                                             const String& name,
                                                             IxoMepValue*& result,
                                                             String& errorText, bool strict) const {
  const ixomep::OuterEntry entry;
  const IxoMepErrorEnum code = ixomep::Guarded(errorText, [&] {
    if (!entry.IsAllowed()) return ixomep::RaiseLimit(errorText);
    if (!(name == kLineNumber) && HoldsLambda(scope, name)) {
      return ixomep::Raise(errorText, IMEPERR_UNKNOWN_FUNCTION, {{"%s", name}});
    }
    ixomep::OwnedList args;
    ixomep::Frame frame{this, scope, errorText, strict};
    const IxoMepErrorEnum args_code =
        call != nullptr ? EvaluateArguments(*call, frame, args) : IMEPERR_NONE;
    if (args_code != IMEPERR_NONE) return args_code;
    return EvaluateFunctionCall(scope, name, args.View(), result, errorText, strict);
  });
  if (code != IMEPERR_NONE) ixomep::FailSlot(result);
  return code;
}

IxoMepErrorEnum IxoMepExpressionParser::EvaluateFunctionCall(IxoMepValueSet*, const String& name,
                                                             const IxoMepValueList& args,
                                                             IxoMepValue*& result,
                                                             String& errorText, bool) const {
  if (name == kLineNumber && args.empty()) {
    ixomep::StoreResult(result, IxoMepValue(line_));
    return IMEPERR_NONE;
  }
  ixomep::FailSlot(result);
  if (name == kLineNumber) {
    return IxoMepError::MakeFunctionError(errorText, IMEPERR_WRONG_ARGUMENT_COUNT, name, args);
  }
  return ixomep::Raise(errorText, IMEPERR_UNKNOWN_FUNCTION, {{"%s", name}});
}

// A tree that copies of this object share is left as it is: they keep their value.
void IxoMepExpressionParser::SetConstant(const IxoMepValue& value) {
  NodePtr node;
  try {
    IxoMepValue copy(value);
    IxoMepValue* const constant = tree_ != nullptr ? tree_->Value() : nullptr;
    if (constant != nullptr && tree_->ExtraReferences() == 0) {
      *constant = std::move(copy);
      return;
    }
    node = NodePtr::Make(IxoMepExprNodeType::Constant);
    NodeAccess::SetValue(*node, ixomep::MakeValue(std::move(copy)));
  } catch (const std::exception&) {
    node.Reset();  // no memory: no tree
  }
  ReplaceTree(tree_, std::move(node));
}

const IxoMepValue* IxoMepExpressionParser::GetConstant() const noexcept {
  return tree_ != nullptr ? tree_->GetValue() : IxoMepValue::GetNull();
}

IxoMepExpressionParser* IxoMepExpressionParser::CreateConstantEP(const IxoMepValue& value) {
  auto parser = std::make_unique<IxoMepExpressionParser>();
  parser->SetConstant(value);
  return parser.release();
}

String IxoMepExpressionParser::GetExpression(const IxoMepValueSet* scope) const {
  if (tree_ == nullptr) return String();
  try {
    return "(" + ixomep::PrettyTextOf(*tree_, scope) + ")";
  } catch (const std::exception&) {
    return String();  // too long, or no memory
  }
}

IxoMepErrorEnum IxoMepExpressionParser::AssignToLValue(IxoMepValue* value, IxoMepValueSet* scope,
                                                       String& errorText) {
  if (tree_ == nullptr) return IMEPERR_UNEXPECTED_TYPE;
  return ixomep::Guarded(errorText, [&] {
    const NodePtr held = NodePtr::Share(tree_);
    return held->AssignToLValue(value, this, scope, errorText);
  });
}

bool IxoMepExpressionParser::IsJustOneVarContained(const String& name) const {
  return tree_ != nullptr && tree_->IsJustOneVarContained(name);
}
