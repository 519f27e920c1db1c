// Calls: the order in which a callee is looked for, method calls, calls of lambdas. What is called
// may replace or destroy the variable that holds it, its receiver or its arguments, so all of
// these are held or found again; scopes come from the pool and go back on every path.
#include <typeinfo>

#include "ixomep/expr/builtin_table.h"
#include "ixomep/expr/call_depth.h"
#include "ixomep/expr/calling_parser.h"
#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/error.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

IxoMepErrorEnum NotCallable(Frame& frame) { return Raise(frame.text, IMEPERR_NOT_CALLABLE); }

// Stands in where a tree is evaluated without an expression object.
const IxoMepExpressionParser& ParserOf(const Frame& frame) {
  static const IxoMepExpressionParser nobody;
  return frame.parser != nullptr ? *frame.parser : nobody;
}

// Takes over what a hook or a method left in its slot.
void TakeResult(ValuePtr result, Frame& frame, IxoMepValue& out) noexcept {
  frame.no_result = result == nullptr;
  if (result != nullptr) out = std::move(*result);
}

IxoMepErrorEnum CallHook(const IxoMepExprNode& call, const char* name, Frame& frame,
                         IxoMepValue& out) {
  if (!LimitWatch::Step()) return RaiseLimit(frame.text);
  IxoMepValue* slot = nullptr;
  const IxoMepErrorEnum code = ParserOf(frame).EvaluateFunctionCall(
      &call, frame.scope, String(name), slot, frame.text, frame.strict);
  ValuePtr result(slot);
  if (code == IMEPERR_NONE) TakeResult(std::move(result), frame, out);
  if (code == IMEPERR_UNKNOWN_FUNCTION) LimitWatch::GiveBack(1);  // no function of the host
  return code;
}

// The base class knows one name only and answers 22, without evaluating anything, where a lambda
// is visible: then it need not be asked.
bool HookMayKnow(const char* name, const Frame& frame) {
  static const char* const kLineNumber = Intern("curlineno");
  const IxoMepExpressionParser& parser = ParserOf(frame);
  return name == kLineNumber || typeid(parser) != typeid(IxoMepExpressionParser);
}

const IxoMepValue* FindVariable(const char* name, const Frame& frame) noexcept {
  return frame.scope != nullptr ? frame.scope->_find(name) : nullptr;
}

IxoMepErrorEnum CallValue(const IxoMepValue& callee, const IxoMepExprNode& call, Frame& frame,
                          IxoMepValue& out) {
  const IxoMepExprNode* const lambda = callee.GetLambda();
  return lambda != nullptr ? CallLambda(*lambda, call, frame, out) : NotCallable(frame);
}

IxoMepErrorEnum CallByName(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out) {
  const char* const name = call.Left()->GetNameAddress();
  const BuiltinBody builtin = name != nullptr ? FindBuiltin(name) : nullptr;
  if (builtin != nullptr) return builtin(call, frame, out);
  const IxoMepValue* const variable = FindVariable(name, frame);
  const bool is_lambda = variable != nullptr && variable->GetLambda() != nullptr;
  const String text = frame.text;
  if (!is_lambda || HookMayKnow(name, frame)) {
    const IxoMepErrorEnum code = CallHook(call, name, frame, out);
    if (code != IMEPERR_UNKNOWN_FUNCTION) return code;
  }
  return CallVariable(call, text, frame, out);
}

IxoMepErrorEnum CallResult(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out) {
  IxoMepValue callee;
  const IxoMepErrorEnum code = EvaluateOperand(*call.Left(), frame, callee);
  return code != IMEPERR_NONE ? code : CallValue(callee, call, frame, out);
}

// --- Methods ------------------------------------------------------------------------------------

// What a method is called on: an object, held; a place, found again when the arguments have been
// evaluated; or a temporary value.
class Receiver {
 public:
  IxoMepErrorEnum Evaluate(const IxoMepExprNode& node, const char* method, Frame& frame) {
    is_place_ = Place::IsPlace(node);
    if (!is_place_) return EvaluateOperand(node, frame, own_);
    const CallDepth depth;
    if (!depth.IsAllowed()) return Raise(frame.text, IMEPERR_TOO_DEEP);
    IxoMepErrorEnum code = place_.Evaluate(node, frame, UseOf(method));
    IxoMepValue* value = nullptr;
    if (code == IMEPERR_NONE) code = place_.Find(frame, value);
    if (code != IMEPERR_NONE) return code;
    if (value->GetType() == Type::Object) HoldObject(*value);
    return IMEPERR_NONE;
  }

  bool IsObject() const noexcept { return is_object_ || own_.GetType() == Type::Object; }

  IxoMepErrorEnum Find(Frame& frame, IxoMepValue*& value) {
    if (is_place_) return place_.Find(frame, value);
    value = &own_;
    return IMEPERR_NONE;
  }

 private:
  static PlaceUse UseOf(const char* method) noexcept {
    const bool changes = method == IxoMepStringAddressMap::IMEPSAM_SORT ||
                         method == IxoMepStringAddressMap::IMEPSAM_INSERT_ALL_FROM;
    return changes ? PlaceUse::ReceiveToChange : PlaceUse::Receive;
  }

  // At the cap of an object's references there is none left to hold it with; it then stays where
  // it is.
  void HoldObject(const IxoMepValue& value) {
    is_object_ = true;
    own_ = value;
    if (ValueAccess::Object(own_) != nullptr) is_place_ = false;
  }

  bool is_place_ = false;
  bool is_object_ = false;
  Place place_;
  IxoMepValue own_;  // the temporary, or the object's further owner
};

// The arguments of a method call, left to right. For an object the bare name of a variable stands
// for the variable's value itself; it is looked up last, when nothing more is evaluated.
class Arguments {
 public:
  IxoMepErrorEnum Evaluate(const IxoMepExprNode* cell, bool names_stand_for_variables,
                           Frame& frame) {
    for (; cell != nullptr; cell = cell->Right()) {
      const IxoMepExprNode& node = *cell->Left();
      if (names_stand_for_variables && node.GetType() == Kind::Variable &&
          FindVariable(node.GetNameAddress(), frame) != nullptr) {
        const CallDepth depth;
        if (!depth.IsAllowed()) return Raise(frame.text, IMEPERR_TOO_DEEP);
        names_.push_back(node.GetNameAddress());
        temporaries_.Add(ValuePtr());
        continue;
      }
      ValuePtr value = MakeValue();
      const IxoMepErrorEnum code = EvaluateOperand(node, frame, *value);
      if (code != IMEPERR_NONE) return code;
      temporaries_.Add(std::move(value));
    }
    return IMEPERR_NONE;
  }

  const IxoMepValueList& Find(const Frame& frame) {
    list_ = temporaries_.View();
    auto name = names_.begin();
    for (std::size_t i = 0; i < list_.size(); ++i) {
      if (list_[i] != nullptr) continue;
      list_[i] = const_cast<IxoMepValue*>(FindVariable(*name++, frame));
      if (list_[i] == nullptr) list_[i] = temporaries_.View()[i] = new IxoMepValue;
    }
    return list_;
  }

 private:
  OwnedList temporaries_;  // an empty slot for each bare name
  std::vector<const char*> names_;
  IxoMepValueList list_;
};

}  // namespace

IxoMepErrorEnum CallVariable(const IxoMepExprNode& call, const String& text_before, Frame& frame,
                             IxoMepValue& out) {
  const IxoMepValue* const variable = FindVariable(call.Left()->GetNameAddress(), frame);
  const IxoMepValue& callee =
      variable != nullptr ? ValueAccess::Follow(*variable) : *IxoMepValue::GetNull();
  if (callee.GetType() == Type::Undefined) return IMEPERR_UNKNOWN_FUNCTION;
  frame.text = text_before;  // without the hook's message
  return CallValue(callee, call, frame, out);
}

IxoMepErrorEnum EvaluateMethod(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out) {
  const IxoMepExprNode& callee = *call.Left();
  const char* const method = MemberName(callee);
  Receiver receiver;
  IxoMepErrorEnum code = receiver.Evaluate(*callee.Left(), method, frame);
  if (code != IMEPERR_NONE) return code;
  Arguments arguments;
  code = arguments.Evaluate(call.Right(), receiver.IsObject(), frame);
  if (code != IMEPERR_NONE) return code;
  IxoMepValue* value = nullptr;
  code = receiver.Find(frame, value);
  if (code != IMEPERR_NONE) return code;
  const CallingParser calling(frame.parser);
  IxoMepValue* slot = nullptr;
  code = static_cast<IxoMepErrorEnum>(
      value->EvaluateMethodCall(method, arguments.Find(frame), slot, frame.text, frame.strict));
  ValuePtr result(slot);
  if (code == IMEPERR_NONE) TakeResult(std::move(result), frame, out);
  return code;
}

IxoMepErrorEnum EvaluateCall(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out) {
  frame.no_result = false;
  const IxoMepExprNode* const callee = call.Left();
  switch (callee != nullptr ? callee->GetType() : Kind::ParamItem) {
    case Kind::Variable:
      return CallByName(call, frame, out);
    case Kind::FunctionCall:
      return CallResult(call, frame, out);
    case Kind::ObjectSubscription:
      return EvaluateMethod(call, frame, out);
    case Kind::Constant:  // a captured lambda
      return callee->GetValue() != nullptr ? CallValue(*callee->GetValue(), call, frame, out)
                                           : NotCallable(frame);
    default:
      return NotCallable(frame);
  }
}

// Meant: parameters without an argument stay unbound, and their names mean what the caller sees.
IxoMepErrorEnum CallLambda(const IxoMepExprNode& lambda, const IxoMepExprNode& call, Frame& frame,
                           IxoMepValue& out) {
  if (lambda.GetType() != Kind::Lambda || lambda.Right() == nullptr) return NotCallable(frame);
  if (call.GetParamCount() > lambda.GetLambdaParamCount()) {
    return IxoMepError::MakeFunctionError(frame.text, IMEPERR_WRONG_ARGUMENT_COUNT, &call);
  }
  const NodePtr held = NodePtr::Share(&lambda);
  const PooledScope scope(frame.scope);
  const IxoMepExprNode* parameter = held->Left();
  for (const IxoMepExprNode* cell = call.Right(); cell != nullptr; cell = cell->Right()) {
    ValuePtr argument = MakeValue();
    const IxoMepErrorEnum code = EvaluateOperand(*cell->Left(), frame, *argument);
    if (code != IMEPERR_NONE) return code;
    scope->NewMoveValue(parameter->GetNameAddress(), argument.release(), true);
    parameter = parameter->Left();
  }
  const CallLevel level;
  if (!level.IsAllowed()) return RaiseLimit(frame.text);
  Frame inner = frame.In(scope.get());
  const IxoMepErrorEnum code = EvaluateBody(*held, inner, out);
  frame.no_result = inner.no_result;
  return code;
}

}  // namespace ixomep
