// Tree -> result: the entry of every evaluation with its depth limits, the dispatch by kind, and
// what only reads: constants, variables, subscripts, properties, operands of operators. Places and
// assignment are evaluate_place.cpp's, calls evaluate_call.cpp's.
//
// Whatever is stored already is read where it stands, not copied, as long as nothing runs in
// between that could change it (IsQuiet); else a copy is held, which for most values is one count.
#include "ixomep/expr/evaluator.h"

#include <algorithm>
#include <iterator>

#include "ixomep/expr/binary_operators.h"
#include "ixomep/expr/call_depth.h"
#include "ixomep/expr/guarded.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/expr/unary_operators.h"
#include "ixomep/host/assertion.h"
#include "ixomep/host/numbers.h"
#include "ixomep/values/object.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

IxoMepErrorEnum TooDeep(Frame& frame) { return Raise(frame.text, IMEPERR_TOO_DEEP); }

const IxoMepValue* FindVariable(const IxoMepExprNode& node, const Frame& frame) noexcept {
  if (frame.scope == nullptr) return nullptr;
  return frame.scope->FindInBucket(NodeAccess::Bucket(node), node.GetNameAddress());
}

IxoMepErrorEnum BorrowVariable(const IxoMepExprNode& node, Frame& frame,
                               const IxoMepValue*& value) {
  value = FindVariable(node, frame);
  if (value != nullptr) return IMEPERR_NONE;
  if (frame.strict) return Raise(frame.text, IMEPERR_UNKNOWN_VARIABLE);
  value = IxoMepValue::GetNull();
  return IMEPERR_NONE;
}

const IxoMepValue& OrNull(const IxoMepValue* value) noexcept {
  return value != nullptr ? *value : *IxoMepValue::GetNull();
}

// The base and the elements on the way stay where they are or in storage.
IxoMepErrorEnum BorrowElement(const IxoMepExprNode& node, Frame& frame, IxoMepValue& storage,
                              const IxoMepValue*& value) {
  IxoMepErrorEnum code = BorrowOperand(*node.Left(), frame, storage, value);
  if (code != IMEPERR_NONE) return code;
  const IxoMepExprNode* cell = node.Right();
  if (cell != nullptr && value != &storage && !IsQuiet(*cell)) {
    storage = *value;
    value = &storage;
  }
  for (; cell != nullptr && code == IMEPERR_NONE; cell = cell->Right()) {
    IxoMepValue index_storage;
    const IxoMepValue* index = nullptr;
    code = BorrowOperand(*cell->Left(), frame, index_storage, index);
    if (code == IMEPERR_NONE) code = SelectElement(*value, *index, frame, value);
  }
  return code;
}

// What the property belongs to. A bare name must exist, also where unknown names may be read.
IxoMepErrorEnum BorrowOwner(const IxoMepExprNode& node, Frame& frame, IxoMepValue& storage,
                            const IxoMepValue*& value) {
  if (node.GetType() == Kind::Variable && FindVariable(node, frame) == nullptr) {
    return Raise(frame.text, IMEPERR_UNKNOWN_VARIABLE);
  }
  return BorrowOperand(node, frame, storage, value);
}

// By the owner's own type: a reference is not followed and has no properties.
IxoMepErrorEnum BorrowProperty(const IxoMepExprNode& node, Frame& frame, IxoMepValue& storage,
                               const IxoMepValue*& value) {
  const IxoMepValue* owner = nullptr;
  const IxoMepErrorEnum code = BorrowOwner(*node.Left(), frame, storage, owner);
  if (code != IMEPERR_NONE) return code;
  const char* const name = MemberName(node);
  if (owner->GetType() == Type::Object) {
    const IxoMepObject* const object = ValueAccess::Object(*owner);
    value = object != nullptr ? object->FindProperty(name) : nullptr;
    return value != nullptr ? IMEPERR_NONE : FailMember(*owner, name, frame.text);
  }
  IxoMepValue* property = nullptr;
  const auto found =
      static_cast<IxoMepErrorEnum>(owner->GetPropertyValue(name, property, frame.text));
  const ValuePtr owned(property);
  if (found != IMEPERR_NONE) return found;
  storage = owned != nullptr ? std::move(*owned) : IxoMepValue();
  value = &storage;
  return IMEPERR_NONE;
}

using Borrow = IxoMepErrorEnum(const IxoMepExprNode& node, Frame& frame, IxoMepValue& storage,
                               const IxoMepValue*& value);

// Reads into out what the borrower finds.
IxoMepErrorEnum CopyBorrowed(Borrow& borrow, const IxoMepExprNode& node, Frame& frame,
                             IxoMepValue& out) {
  IxoMepValue storage;
  const IxoMepValue* value = nullptr;
  const IxoMepErrorEnum code = borrow(node, frame, storage, value);
  if (code != IMEPERR_NONE) return code;
  frame.no_result = false;
  if (value == &storage) {
    out = std::move(storage);
  } else {
    out = *value;
  }
  return IMEPERR_NONE;
}

IxoMepErrorEnum EvaluateVariable(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  const IxoMepValue* value = nullptr;
  const IxoMepErrorEnum code = BorrowVariable(node, frame, value);
  if (code != IMEPERR_NONE) return code;
  frame.no_result = false;
  out = *value;
  return IMEPERR_NONE;
}

// Lambda nodes are called, never evaluated.
IxoMepErrorEnum EvaluateLambdaNode(Frame& frame, IxoMepValue& out) {
  ReportAssertion("a lambda node is not evaluated");
  frame.no_result = false;
  ValueAccess::SetUndefined(out);
  return IMEPERR_NONE;
}

// The value of the left side is thrown away.
IxoMepErrorEnum EvaluateSequence(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  const IxoMepErrorEnum code = EvaluateOperand(*node.Left(), frame, out);
  return code != IMEPERR_NONE ? code : EvaluateOperand(*node.Right(), frame, out);
}

IxoMepErrorEnum Dispatch(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  switch (node.GetType()) {
    case Kind::Constant:
      frame.no_result = false;
      out = OrNull(node.GetValue());
      return IMEPERR_NONE;
    case Kind::Variable:
      return EvaluateVariable(node, frame, out);
    default:
      break;
  }
  if (!StackGuard::HasRoom()) return TooDeep(frame);
  ValueAccess::SetUndefined(out);  // what it held may share storage with a variable
  switch (node.GetType()) {
    case Kind::ArraySubscription:
      return CopyBorrowed(BorrowElement, node, frame, out);
    case Kind::ObjectSubscription:
      return EvaluateProperty(node, frame, out);
    case Kind::FunctionCall:
      return EvaluateCall(node, frame, out);
    case Kind::Lambda:
      return EvaluateLambdaNode(frame, out);
    case Kind::Assign:
      return EvaluateAssignment(node, frame, out);
    case Kind::Comma:
      return EvaluateSequence(node, frame, out);
    default:
      return EvaluateOperator(node, frame, out);
  }
}

// Small enough to look at before each use, large enough for the usual index.
constexpr std::int32_t kQuietNodes = 16;

bool IsQuietTree(const IxoMepExprNode* node, std::int32_t& budget) noexcept {
  for (; node != nullptr; node = node->Right()) {
    if (--budget < 0) return false;
    switch (node->GetType()) {
      case Kind::Constant:
      case Kind::Variable:
        return true;
      case Kind::FunctionCall:
      case Kind::Lambda:
      case Kind::Assign:
      case Kind::Val:  // a literal may hold a whole expression
        return false;
      default:
        if (!IsQuietTree(node->Left(), budget)) return false;
    }
  }
  return true;
}

// A function whose own work takes no steps.
bool IsStepless(const IxoMepExprNode* callee) noexcept {
  static const char* const kNames[] = {Intern("aappend"), Intern("cond"), Intern("{"),
                                       Intern("{:"),      Intern("set"),  Intern("try")};
  return callee != nullptr && callee->GetType() == Kind::Variable &&
         std::find(std::begin(kNames), std::end(kNames), callee->GetNameAddress()) !=
             std::end(kNames);
}

bool IsSteplessTree(const IxoMepExprNode* node, std::int32_t& budget) noexcept {
  for (; node != nullptr; node = node->Right()) {
    if (--budget < 0) return false;
    switch (node->GetType()) {
      case Kind::Constant:
      case Kind::Variable:
        return true;
      case Kind::FunctionCall:
        if (!IsStepless(node->Left())) return false;
        break;
      case Kind::Lambda:
      case Kind::Val:
        return false;
      default:
        if (!IsSteplessTree(node->Left(), budget)) return false;
    }
  }
  return true;
}

// Reads the left operand in place when evaluating the right one cannot change it, else copies it.
IxoMepErrorEnum ReadLeft(const IxoMepExprNode& node, Frame& frame, IxoMepValue& storage,
                         const IxoMepValue*& value) {
  if (IsQuiet(*node.Right())) return BorrowOperand(*node.Left(), frame, storage, value);
  value = &storage;
  return EvaluateOperand(*node.Left(), frame, storage);
}

}  // namespace

IxoMepErrorEnum Evaluate(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  const CallDepth depth;
  // What was computed while a limit was exceeded goes nowhere: nobody stores it.
  const IxoMepErrorEnum code = WithinLimits(
      Guarded(frame.text,
              [&] { return depth.IsAllowed() ? Dispatch(node, frame, out) : TooDeep(frame); }),
      frame.text);
  if (code != IMEPERR_NONE) {
    frame.no_result = false;
    ValueAccess::SetUndefined(out);
  }
  return code;
}

IxoMepErrorEnum BorrowOperand(const IxoMepExprNode& node, Frame& frame, IxoMepValue& storage,
                              const IxoMepValue*& value) {
  const Kind kind = node.GetType();
  const bool in_place =
      IsInert(node) || kind == Kind::ArraySubscription || kind == Kind::ObjectSubscription;
  if (!in_place) {
    value = &storage;
    return EvaluateOperand(node, frame, storage);
  }
  const CallDepth depth;
  if (!depth.IsAllowed()) return TooDeep(frame);
  frame.no_result = false;
  if (kind == Kind::Constant) {
    value = &OrNull(node.GetValue());
    return IMEPERR_NONE;
  }
  if (kind == Kind::Variable) return BorrowVariable(node, frame, value);
  if (!StackGuard::HasRoom()) return TooDeep(frame);
  return kind == Kind::ArraySubscription ? BorrowElement(node, frame, storage, value)
                                         : BorrowProperty(node, frame, storage, value);
}

bool IsQuiet(const IxoMepExprNode& node) noexcept {
  std::int32_t budget = kQuietNodes;
  return IsQuietTree(&node, budget);
}

bool MayTakeSteps(const IxoMepExprNode& node) noexcept {
  constexpr std::int32_t kNodes = 64;
  std::int32_t budget = kNodes;
  return !IsSteplessTree(&node, budget);
}

IxoMepErrorEnum EvaluateProperty(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  return CopyBorrowed(BorrowProperty, node, frame, out);
}

// A node without operands is none of the grammar's.
IxoMepErrorEnum EvaluateOperator(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  const Kind kind = node.GetType();
  if (node.Right() == nullptr) {
    return Raise(frame.text, IMEPERR_WRONG_TYPE, {{"%func", IxoMepExprNode::GetOpName(kind)}});
  }
  IxoMepValue left_storage;
  const IxoMepValue* left = nullptr;
  IxoMepErrorEnum code = IMEPERR_NONE;
  if (node.Left() != nullptr) code = ReadLeft(node, frame, left_storage, left);
  if (code != IMEPERR_NONE) return code;
  IxoMepValue right_storage;
  const IxoMepValue* right = nullptr;
  code = BorrowOperand(*node.Right(), frame, right_storage, right);
  if (code != IMEPERR_NONE) return code;
  frame.no_result = false;
  return left != nullptr ? ApplyBinaryTo(kind, *left, *right, out, frame.text)
                         : ApplyUnaryTo(kind, *right, out, frame.text);
}

IxoMepErrorEnum SelectElement(const IxoMepValue& base, const IxoMepValue& index, Frame& frame,
                              const IxoMepValue*& selected) {
  if (base.GetType() == Type::Array) {
    std::size_t position = 0;
    const IxoMepErrorEnum code = ReadPosition(base, index, frame.text, position);
    if (code == IMEPERR_NONE) selected = &ValueAccess::Element(base, position);
    return code;
  }
  if (base.GetType() != Type::Map) return FailSubscript(base, frame.text);
  selected = &OrNull(ValueAccess::FindEntry(base, ValueAccess::Follow(index)));
  return IMEPERR_NONE;
}

IxoMepErrorEnum FailIndex(const IxoMepValue& index, String& text) {
  const String type = IxoMepValue::GetTypeName(index.GetType());
  return Raise(text, IMEPERR_WRONG_TYPE, {{"%type", type}, {"%func", "...[" + type + "]"}});
}

IxoMepErrorEnum ReadPosition(const IxoMepValue& array, const IxoMepValue& index, String& text,
                             std::size_t& position) {
  if (index.GetType() != Type::Integer) return FailIndex(index, text);
  const std::int32_t number = ValueAccess::Integer(index);
  if (number < 0 || static_cast<std::size_t>(number) >= ValueAccess::Count(array)) {
    return Raise(text, number < 0 ? IMEPERR_INDEX_TOO_SMALL : IMEPERR_INDEX_TOO_LARGE,
                 {{"%type", IxoMepValue::GetTypeName(Type::Array)},
                  {"%func", "...[" + StringFromInteger(number) + "]"}});
  }
  position = static_cast<std::size_t>(number);
  return IMEPERR_NONE;
}

IxoMepErrorEnum FailSubscript(const IxoMepValue& base, String& text) {
  const String type = IxoMepValue::GetTypeName(base.GetType());
  return Raise(text, IMEPERR_WRONG_TYPE, {{"%type", type}, {"%func", type + "[...]"}});
}

const char* MemberName(const IxoMepExprNode& node) noexcept {
  const char* const name = node.Right() != nullptr ? node.Right()->GetNameAddress() : nullptr;
  return name != nullptr ? name : "";
}

IxoMepErrorEnum FailMember(const IxoMepValue& value, const char* name, String& text) {
  return Raise(text, IMEPERR_UNKNOWN_MEMBER,
               {{"%type", IxoMepValue::GetTypeName(value.GetType())}, {"%property", name}});
}

void ReplaceReference(IxoMepValue& value) {
  if (value.GetType() != Type::Reference) return;
  const IxoMepValue& end = ValueAccess::Follow(value);
  value = end.GetType() == Type::Reference ? IxoMepValue() : IxoMepValue(end);
}

bool ReadCondition(const IxoMepValue& value, bool& truth) noexcept {
  if (!value.IsNum()) return false;
  truth = value.GetReal() != 0.0;  // NaN counts as true
  return true;
}

}  // namespace ixomep
