// The evaluation members of IxoMepExprNode: the given interface over the evaluator. Here a result
// slot becomes a local value and back: the result is stored last, because the slot may be the very
// variable that is read, and nothing is thrown beyond this file.
#include "ixomep/expr/binary_operators.h"
#include "ixomep/expr/call_depth.h"
#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/guarded.h"
#include "ixomep/expr/program.h"
#include "ixomep/expr/unary_operators.h"
#include "ixomep/values/error.h"

using ixomep::FailResult;
using ixomep::Frame;
using ixomep::Guarded;
using ixomep::OuterEntry;
using ixomep::RaiseLimit;
using ixomep::WithinLimits;
using Kind = IxoMepExprNodeType;

std::int32_t IxoMepExprNode::m_nCallDepth = 0;

namespace {

using Worker = IxoMepErrorEnum(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out);

// Out of line, so that what is answered before it needs no frame.
[[gnu::noinline]] IxoMepErrorEnum RunWorker(Worker& worker, const IxoMepExprNode& node,
                                            const IxoMepExpressionParser* parser,
                                            IxoMepValueSet* scope, IxoMepValue*& result,
                                            String& text, bool strict) {
  Frame frame{parser, scope, text, strict};
  const OuterEntry entry;
  const IxoMepErrorEnum code = Guarded(text, [&] {
    if (!entry.IsAllowed()) return RaiseLimit(text);
    IxoMepValue value;
    const IxoMepErrorEnum worker_code = WithinLimits(worker(node, frame, value), text);
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

// What functions of a host ask for most: a number under a name, into a value that is there. False,
// and nothing is done, for everything else.
bool StoreNumber(const char* name, const IxoMepValueSet* scope, IxoMepValue* result) noexcept {
  if (scope == nullptr || result == nullptr) return false;
  if (IxoMepExprNode::m_nCallDepth > ixomep::CallDepth::kMax) return false;
  const IxoMepValue* const value = scope->FindInBucket(IxoMepValueSet::IndexOf(name), name);
  if (value == nullptr || !ixomep::IsScalar(*value)) return false;
  IxoMepExprNode::m_nCallDepth = 0;
  *result = *value;
  return true;
}

// One parameter of a call, null when the call has none there.
inline IxoMepErrorEnum EvaluateParam(const IxoMepExprNode& call, const IxoMepExprNode* param,
                                     const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                                     IxoMepValue*& result, String& text, bool strict) {
  if (param != nullptr) return param->Evaluate(parser, scope, result, text, strict);
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
  if (kind_ == Kind::Variable && StoreNumber(name_, scope, result)) return IMEPERR_NONE;
  return RunWorker(ixomep::Evaluate, *this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateOpCall(const IxoMepExpressionParser* parser,
                                               IxoMepValueSet* scope, IxoMepValue*& result,
                                               String& errorText, bool strict) const {
  Worker& worker = IsOperator(kind_) ? ixomep::EvaluateOperator : ixomep::Evaluate;
  return RunWorker(worker, *this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateFunctionCall(const IxoMepExpressionParser* parser,
                                                     IxoMepValueSet* scope, IxoMepValue*& result,
                                                     String& errorText, bool strict) const {
  Worker& worker = kind_ == Kind::FunctionCall ? ixomep::EvaluateCall : ixomep::Evaluate;
  return RunWorker(worker, *this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateMethodCall(const IxoMepExpressionParser* parser,
                                                   IxoMepValueSet* scope, IxoMepValue*& result,
                                                   String& errorText, bool strict) const {
  Worker& worker = IsMethodCall(*this) ? ixomep::EvaluateMethod : ixomep::Evaluate;
  return RunWorker(worker, *this, parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::EvaluateObjectSubscriptionCall(const IxoMepExpressionParser* parser,
                                                               IxoMepValueSet* scope,
                                                               IxoMepValue*& result,
                                                               String& errorText,
                                                               bool strict) const {
  Worker& worker = kind_ == Kind::ObjectSubscription ? ixomep::EvaluateProperty : ixomep::Evaluate;
  return RunWorker(worker, *this, parser, scope, result, errorText, strict);
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
  return EvaluateParam(*this, GetParam1(), parser, scope, result, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::GetParamResults(const IxoMepExpressionParser* parser,
                                                IxoMepValueSet* scope, IxoMepValue*& first,
                                                IxoMepValue*& second, String& errorText,
                                                bool strict) const {
  const IxoMepErrorEnum code =
      EvaluateParam(*this, GetParam1(), parser, scope, first, errorText, strict);
  if (code != IMEPERR_NONE) return code;
  return EvaluateParam(*this, GetParam2(), parser, scope, second, errorText, strict);
}

IxoMepErrorEnum IxoMepExprNode::GetParamResults(const IxoMepExpressionParser* parser,
                                                IxoMepValueSet* scope, IxoMepValue*& first,
                                                IxoMepValue*& second, IxoMepValue*& third,
                                                String& errorText, bool strict) const {
  const IxoMepErrorEnum code = GetParamResults(parser, scope, first, second, errorText, strict);
  if (code != IMEPERR_NONE) return code;
  return EvaluateParam(*this, GetParam3(), parser, scope, third, errorText, strict);
}
