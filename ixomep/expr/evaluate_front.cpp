// The evaluation members of IxoMepExprNode: the given interface over the evaluator. Here a result
// slot becomes a local value and back: the result is stored last, because the slot may be the very
// variable that is read, and nothing is thrown beyond this file.
#include "ixomep/expr/binary_operators.h"
#include "ixomep/expr/call_depth.h"
#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/guarded.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program.h"
#include "ixomep/expr/unary_operators.h"
#include "ixomep/values/error.h"

using ixomep::FailResult;
using ixomep::Frame;
using ixomep::Guarded;
using ixomep::NodeAccess;
using ixomep::OuterEntry;
using ixomep::RaiseLimit;
using ixomep::WithinLimits;
using Kind = IxoMepExprNodeType;

std::int32_t IxoMepExprNode::m_nCallDepth = 0;

namespace {

using Worker = IxoMepErrorEnum(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out);

// Out of line and with the arguments of the interface in their order, so that what is answered
// before it needs no frame.
template <Worker& kWorker>
[[gnu::noinline]] IxoMepErrorEnum RunWorker(const IxoMepExprNode& node,
                                            const IxoMepExpressionParser* parser,
                                            IxoMepValueSet* scope, IxoMepValue*& result,
                                            String& text, bool strict) {
  Frame frame{parser, scope, text, strict};
  const OuterEntry entry;
  const IxoMepErrorEnum code = Guarded(text, [&] {
    if (!entry.IsAllowed()) return RaiseLimit(text);
    IxoMepValue value;
    const IxoMepErrorEnum worker_code = WithinLimits(kWorker(node, frame, value), text);
    if (worker_code != IMEPERR_NONE || frame.no_result) return worker_code;
    if (result != nullptr && ixomep::IsScalar(value)) {
      ixomep::StoreScalar(*result, value.GetType(), ixomep::ValueAccess::Bits(value));
    } else {
      ixomep::StoreResult(result, std::move(value));
    }
    return worker_code;
  });
  if (code != IMEPERR_NONE) FailResult(result, scope);
  return code;
}

constexpr auto& RunAny = RunWorker<ixomep::Evaluate>;

// What functions of a host ask for most: a number under a name of the innermost scope, into a value
// that is there. False, and nothing is done, for everything else.
inline bool StoreNumber(const IxoMepExprNode& node, const IxoMepValueSet* scope,
                        IxoMepValue* result) noexcept {
  if (node.GetType() != Kind::Variable || scope == nullptr || result == nullptr) return false;
  if (IxoMepExprNode::m_nCallDepth > ixomep::CallDepth::kMax) return false;
  const IxoMepValue* const value =
      scope->FindInline(NodeAccess::Bucket(node), node.GetNameAddress());
  if (value == nullptr || !ixomep::IsScalar(*value)) return false;
  const bool owns_nothing =
      ixomep::IsScalar(*result) || result->GetType() == IxoMepValueType::Undefined;
  if (!owns_nothing) return false;
  IxoMepExprNode::m_nCallDepth = 0;
  ixomep::ValueAccess::SetScalar(*result, value->GetType(), ixomep::ValueAccess::Bits(*value));
  return true;
}

// The cell of a call's parameter list behind this one (the call's first one behind the call).
inline const IxoMepExprNode* NextCell(const IxoMepExprNode* cell) noexcept {
  return cell != nullptr ? cell->Right() : nullptr;
}

// The parameter in a cell, which is null when the call has none there.
inline IxoMepErrorEnum EvaluateParam(const IxoMepExprNode& call, const IxoMepExprNode* cell,
                                     const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                                     IxoMepValue*& result, String& text, bool strict) {
  if (cell != nullptr && cell->GetType() != Kind::Constant) {
    const IxoMepExprNode* const param = NodeAccess::Left(*cell);
    if (param != nullptr) {
      if (StoreNumber(*param, scope, result)) return IMEPERR_NONE;
      return RunAny(*param, parser, scope, result, text, strict);
    }
  }
  FailResult(result, scope);
  return IxoMepError::MakeFunctionError(text, IMEPERR_WRONG_ARGUMENT_COUNT, &call);
}

// Which worker serves a kind of node, when a host asks for one by its own name.
bool IsOperator(Kind kind) noexcept {
  return kind > Kind::Lambda && kind != Kind::Assign && kind != Kind::Comma;
}

bool IsMethodCall(const IxoMepExprNode& node) noexcept {
  return node.GetType() == Kind::FunctionCall && node.Left() != nullptr &&
         node.Left()->GetType() == Kind::ObjectSubscription;
}

IxoMepErrorEnum LendPlace(const IxoMepExprNode& node, const IxoMepExpressionParser* parser,
                          IxoMepValueSet* scope, IxoMepValue*& result, String& text) {
  result = nullptr;
  const OuterEntry entry;
  return Guarded(text, [&] {
    if (!entry.IsAllowed()) return RaiseLimit(text);
    Frame frame{parser, scope, text, false};
    ixomep::Place place;
    IxoMepValue* value = nullptr;
    IxoMepErrorEnum code = place.Evaluate(node, frame, ixomep::PlaceUse::Lend);
    if (code == IMEPERR_NONE) code = place.Find(frame, value);
    code = WithinLimits(code, text);
    if (code == IMEPERR_NONE) result = value;
    return code;
  });
}

}  // namespace

void ixomep::FailResult(IxoMepValue*& slot, const IxoMepValueSet* scope) noexcept {
  if (slot != nullptr && scope != nullptr && scope->Owns(slot)) {
    slot = nullptr;
  } else {
    FailSlot(slot);
  }
}

IxoMepErrorEnum IxoMepExprNode::Evaluate(const IxoMepExpressionParser* parser,
                                         IxoMepValueSet* scope, IxoMepValue*& result,
                                         String& errorText, bool strict) const {
  if (StoreNumber(*this, scope, result)) return IMEPERR_NONE;
  return RunAny(*this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateOpCall(const IxoMepExpressionParser* parser,
                                               IxoMepValueSet* scope, IxoMepValue*& result,
                                               String& errorText, bool strict) const {
  const auto worker = IsOperator(kind_) ? &RunWorker<ixomep::EvaluateOperator> : &RunAny;
  return worker(*this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateFunctionCall(const IxoMepExpressionParser* parser,
                                                     IxoMepValueSet* scope, IxoMepValue*& result,
                                                     String& errorText, bool strict) const {
  const auto worker = kind_ == Kind::FunctionCall ? &RunWorker<ixomep::EvaluateCall> : &RunAny;
  return worker(*this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateMethodCall(const IxoMepExpressionParser* parser,
                                                   IxoMepValueSet* scope, IxoMepValue*& result,
                                                   String& errorText, bool strict) const {
  const auto worker = IsMethodCall(*this) ? &RunWorker<ixomep::EvaluateMethod> : &RunAny;
  return worker(*this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateObjectSubscriptionCall(const IxoMepExpressionParser* parser,
                                                               IxoMepValueSet* scope,
                                                               IxoMepValue*& result,
                                                               String& errorText,
                                                               bool strict) const {
  const auto worker =
      kind_ == Kind::ObjectSubscription ? &RunWorker<ixomep::EvaluateProperty> : &RunAny;
  return worker(*this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateLValue(const IxoMepExpressionParser* parser,
                                               IxoMepValueSet* scope, IxoMepValue*& result,
                                               String& errorText) const {
  return LendPlace(*this, parser, scope, result, errorText);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateArraySubscriptionLValue(
    const IxoMepExpressionParser* parser, IxoMepValueSet* scope, IxoMepValue*& result,
    String& errorText) const {
  return LendPlace(*this, parser, scope, result, errorText);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateObjectSubscriptionLValue(
    const IxoMepExpressionParser* parser, IxoMepValueSet* scope, IxoMepValue*& result,
    String& errorText) const {
  return LendPlace(*this, parser, scope, result, errorText);
}

// A null value is stored as undefined.
IxoMepErrorEnum IxoMepExprNode::AssignToLValue(IxoMepValue* value,
                                               const IxoMepExpressionParser* parser,
                                               IxoMepValueSet* scope, String& errorText) const {
  const OuterEntry entry;
  return Guarded(errorText, [&] {
    if (!entry.IsAllowed()) return RaiseLimit(errorText);
    Frame frame{parser, scope, errorText, false};
    IxoMepValue copy(value != nullptr ? *value : *IxoMepValue::GetNull());
    ixomep::Place place;
    const IxoMepErrorEnum code = WithinLimits(place.Evaluate(*this, frame), errorText);
    return code != IMEPERR_NONE ? code : place.Store(frame, std::move(copy));
  });
}

IxoMepErrorEnum IxoMepExprNode::EvaluateUnaryOpCall(Kind kind, IxoMepValue& operand,
                                                    String& errorText, bool) {
  return Guarded(errorText, [&] { return ixomep::ApplyUnary(kind, operand, errorText); });
}

IxoMepErrorEnum IxoMepExprNode::EvaluateBinaryOpCall(Kind kind, const IxoMepValue& left,
                                                     IxoMepValue& right, String& errorText, bool) {
  return Guarded(errorText, [&] { return ixomep::ApplyBinary(kind, left, right, errorText); });
}

IxoMepErrorEnum IxoMepExprNode::EvaluateLambda(const IxoMepExprNode* lambda,
                                               const IxoMepExpressionParser* parser,
                                               IxoMepValueSet* scope, IxoMepValue*& result,
                                               String& errorText, bool strict) const {
  Frame frame{parser, scope, errorText, strict};
  const OuterEntry entry;
  const IxoMepErrorEnum code = Guarded(errorText, [&] {
    if (!entry.IsAllowed()) return RaiseLimit(errorText);
    if (lambda == nullptr) return ixomep::Raise(errorText, IMEPERR_NOT_CALLABLE);
    IxoMepValue value;
    const IxoMepErrorEnum call_code =
        WithinLimits(ixomep::CallLambda(*lambda, *this, frame, value), errorText);
    if (call_code == IMEPERR_NONE && !frame.no_result) {
      ixomep::StoreResult(result, std::move(value));
    }
    return call_code;
  });
  if (code != IMEPERR_NONE) FailResult(result, scope);
  return code;
}

IxoMepErrorEnum IxoMepExprNode::GetParamResult(const IxoMepExpressionParser* parser,
                                               IxoMepValueSet* scope, IxoMepValue*& result,
                                               String& errorText, bool strict) const {
  return EvaluateParam(*this, right_, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::GetParamResults(const IxoMepExpressionParser* parser,
                                                IxoMepValueSet* scope, IxoMepValue*& first,
                                                IxoMepValue*& second, String& errorText,
                                                bool strict) const {
  const IxoMepErrorEnum code =
      EvaluateParam(*this, right_, parser, scope, first, errorText, strict);
  if (code != IMEPERR_NONE) return code;
  return EvaluateParam(*this, NextCell(right_), parser, scope, second, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::GetParamResults(const IxoMepExpressionParser* parser,
                                                IxoMepValueSet* scope, IxoMepValue*& first,
                                                IxoMepValue*& second, IxoMepValue*& third,
                                                String& errorText, bool strict) const {
  const IxoMepErrorEnum code = GetParamResults(parser, scope, first, second, errorText, strict);
  if (code != IMEPERR_NONE) return code;
  return EvaluateParam(*this, NextCell(NextCell(right_)), parser, scope, third, errorText, strict);
}
