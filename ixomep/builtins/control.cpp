// Functions that steer evaluation: cond, while, for, fortok, try, set. All of them get their
// parameters unevaluated.
#include <new>
#include <stdexcept>

#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/tokens.h"
#include "ixomep/expr/capture.h"

namespace ixomep::builtins {

namespace {

IxoMepErrorEnum EvaluateCondition(Call& call, const IxoMepExprNode& node, bool& truth) {
  IxoMepValue storage;
  const IxoMepValue* value = nullptr;
  const IxoMepErrorEnum code = BorrowOperand(node, call.frame(), storage, value);
  if (code != IMEPERR_NONE) return code;
  if (!ReadCondition(*value, truth)) return call.WrongTypes(call.Name(), {value});
  return IMEPERR_NONE;
}

// The loops' end: the final expression, if there is one, is the result.
IxoMepErrorEnum Finish(Call& call, std::int32_t final_param) {
  if (!call.Has(final_param)) return call.LeaveUnset();
  return call.ReturnResultOf(call.Param(final_param));
}

// One round of "for" or "fortok": the loop variable, then the body, whose value nobody wants.
IxoMepErrorEnum RunBody(Call& call, Place& place, IxoMepValue&& counter,
                        const IxoMepExprNode& body) {
  if (!LimitWatch::Step()) return RaiseLimit(call.frame().text);
  if (const IxoMepErrorEnum code = place.Store(call.frame(), std::move(counter))) return code;
  IxoMepValue unwanted;
  return EvaluateOperand(body, call.frame(), unwanted);
}

}  // namespace

IxoMepErrorEnum Cond(Call& call) {
  const IxoMepExprNode* cell = call.List();
  while (cell->Right() != nullptr) {
    const IxoMepExprNode* const chosen = cell->Right();
    bool truth = false;
    if (const IxoMepErrorEnum code = EvaluateCondition(call, *cell->Left(), truth)) return code;
    if (truth) return call.ReturnResultOf(*chosen->Left());
    cell = chosen->Right();
  }
  return call.ReturnResultOf(*cell->Left());
}

IxoMepErrorEnum While(Call& call) {
  const IxoMepExprNode& condition = call.Param(0);
  const IxoMepExprNode& body = call.Param(1);
  while (true) {
    bool truth = false;
    if (const IxoMepErrorEnum code = EvaluateCondition(call, condition, truth)) return code;
    if (!truth) return Finish(call, 2);
    if (!LimitWatch::Step()) return RaiseLimit(call.frame().text);
    IxoMepValue unwanted;
    if (const IxoMepErrorEnum code = EvaluateOperand(body, call.frame(), unwanted)) return code;
  }
}

IxoMepErrorEnum For(Call& call) {
  Place place;
  IxoMepValue from, to;
  if (const IxoMepErrorEnum code = place.Evaluate(call.Param(0), call.frame())) return code;
  if (const IxoMepErrorEnum code = call.Evaluate(1, from)) return code;
  if (const IxoMepErrorEnum code = call.Evaluate(2, to)) return code;
  if (from.GetType() != IxoMepValueType::Integer || to.GetType() != IxoMepValueType::Integer) {
    return call.WrongTypes("for(#2,#3)", {&from, &to});
  }
  const IxoMepExprNode& body = call.Param(3);
  const std::int64_t last = ValueAccess::Integer(to);
  // Wider than the language's integers, so that a last value of 2147483647 ends the loop.
  for (std::int64_t i = ValueAccess::Integer(from); i <= last; ++i) {
    const IxoMepErrorEnum code =
        RunBody(call, place, IxoMepValue(static_cast<std::int32_t>(i)), body);
    if (code != IMEPERR_NONE) return code;
  }
  return Finish(call, 4);
}

IxoMepErrorEnum Fortok(Call& call) {
  Place place;
  IxoMepValue list, separator;
  if (const IxoMepErrorEnum code = place.Evaluate(call.Param(0), call.frame())) return code;
  if (const IxoMepErrorEnum code = call.Evaluate(1, list)) return code;
  if (const IxoMepErrorEnum code = call.Evaluate(2, separator)) return code;
  if (list.GetType() != IxoMepValueType::String || separator.GetType() != IxoMepValueType::String) {
    return call.WrongTypes("fortok(#2,#3)", {&list, &separator});
  }
  const IxoMepExprNode& body = call.Param(3);
  TokenWalker walker(ValueAccess::Text(list), Separator(ValueAccess::Text(separator)));
  std::string_view token;
  while (walker.Next(token)) {
    const IxoMepErrorEnum code = RunBody(call, place, IxoMepValue(String(token)), body);
    if (code != IMEPERR_NONE) return code;
  }
  return Finish(call, 4);
}

IxoMepErrorEnum Try(Call& call) {
  if (call.IsStrict()) return call.Fail(IMEPERR_UNKNOWN_VARIABLE);
  IxoMepErrorEnum code = IMEPERR_NONE;
  try {
    code = call.ReturnResultOf(call.Param(0));
  } catch (const std::bad_alloc& cause) {
    code = RaiseNoMemory(call.frame().text, IMEPERR_TOO_DEEP, cause);
  } catch (const std::length_error& cause) {
    code = RaiseNoMemory(call.frame().text, IMEPERR_TOO_LONG, cause);
  }
  if (code == IMEPERR_NONE) return code;
  // A limit of the host ends the whole evaluation.
  if (LimitWatch::Exceeded() != Limit::None) return WithinLimits(code, call.frame().text);
  call.frame().no_result = false;
  // Meant: the text of the failed attempt stays, also when the fallback succeeds.
  return call.ReturnResultOf(call.Param(1));
}

IxoMepErrorEnum Set(Call& call) {
  if (call.IsStrict()) return call.Fail(IMEPERR_UNKNOWN_VARIABLE);
  const IxoMepExprNode& target = call.Param(0);
  const IxoMepExprNode& source = call.Param(1);
  Place place;
  IxoMepValue value;
  if (const IxoMepErrorEnum code = place.Evaluate(target, call.frame())) return code;
  if (place.IsPlainVariable() && IsLambdaCall(source)) {
    const AssignedName name(target.GetNameAddress());
    if (const IxoMepErrorEnum code = call.Evaluate(1, value)) return code;
  } else {
    if (const IxoMepErrorEnum code = call.Evaluate(1, value)) return code;
  }
  ReplaceReference(value);
  if (const IxoMepErrorEnum code = place.Store(call.frame(), IxoMepValue(value))) return code;
  return call.Return(std::move(value));
}

}  // namespace ixomep::builtins
