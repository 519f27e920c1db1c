// Places: what ":=" and the functions that change variables store into, and what methods are
// called on. A place is kept as its path (a name and evaluated steps) and walked at every use,
// because a right side, a loop's body or an argument may erase or move what the path led to.
#include "ixomep/expr/capture.h"
#include "ixomep/expr/evaluator.h"
#include "ixomep/values/object.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

bool IsLevel(const IxoMepExprNode& node) noexcept {
  return node.GetType() == Kind::ArraySubscription || node.GetType() == Kind::ObjectSubscription;
}

const IxoMepExprNode& RootOf(const IxoMepExprNode& node) noexcept {
  const IxoMepExprNode* root = &node;
  while (IsLevel(*root)) root = root->Left();
  return *root;
}

// The subscripts and members from the name outwards.
std::vector<const IxoMepExprNode*> LevelsOf(const IxoMepExprNode& node) {
  std::vector<const IxoMepExprNode*> levels;
  for (const IxoMepExprNode* level = &node; IsLevel(*level); level = level->Left()) {
    levels.push_back(level);
  }
  return {levels.rbegin(), levels.rend()};
}

bool IsContainer(const IxoMepValue& value) noexcept {
  return value.GetType() == Type::Array || value.GetType() == Type::Map;
}

}  // namespace

bool IsLambdaCall(const IxoMepExprNode& node) {
  static const char* const lambda = Intern("lambda");
  return node.GetType() == Kind::FunctionCall && node.Left() != nullptr &&
         node.Left()->GetNameAddress() == lambda;
}

bool Place::IsPlace(const IxoMepExprNode& node) noexcept {
  return RootOf(node).GetType() == Kind::Variable;
}

IxoMepErrorEnum Place::Evaluate(const IxoMepExprNode& node, Frame& frame, PlaceUse use) {
  const IxoMepExprNode& root = RootOf(node);
  if (root.GetType() != Kind::Variable) return Raise(frame.text, IMEPERR_NOT_ASSIGNABLE);
  use_ = use;
  name_ = root.GetNameAddress();
  steps_.clear();
  found_ = nullptr;
  IxoMepErrorEnum code = FindRoot(frame, found_);
  if (&node != &root && code == IMEPERR_NONE) {
    for (const IxoMepExprNode* const level : LevelsOf(node)) {
      code = AddLevel(*level, frame, found_);
      if (code != IMEPERR_NONE) break;
    }
  }
  if (code == IMEPERR_NONE && Creates()) found_ = &ValueAccess::Follow(*found_);
  return code;
}

IxoMepErrorEnum Place::AddLevel(const IxoMepExprNode& node, Frame& frame, IxoMepValue*& value) {
  if (node.GetType() == Kind::ObjectSubscription) {
    steps_.push_back(Step{IxoMepValue(), MemberName(node)});
    return Follow(frame, steps_.back(), value);
  }
  for (const IxoMepExprNode* cell = node.Right(); cell != nullptr; cell = cell->Right()) {
    IxoMepValue index;
    Frame index_frame = Creates() ? frame.With(false) : frame;
    IxoMepErrorEnum code = EvaluateOperand(*cell->Left(), index_frame, index);
    if (code == IMEPERR_NONE && !IsQuiet(*cell->Left())) code = Find(frame, value);
    if (code == IMEPERR_NONE && IsContainer(ValueAccess::Follow(index)) &&
        ValueAccess::Follow(*value).GetType() == Type::Map) {
      // The key may share its storage with what the path leads through, and is to become a part of
      // it. So the way is gone again while the key holds its share: the path gets its own storages.
      ReplaceReference(index);
      code = Find(frame, value);
    }
    if (code != IMEPERR_NONE) return code;
    steps_.push_back(Step{std::move(index)});
    code = Follow(frame, steps_.back(), value);
    if (code != IMEPERR_NONE) return code;
  }
  return IMEPERR_NONE;
}

IxoMepErrorEnum Place::Find(Frame& frame, IxoMepValue*& value) {
  const bool created_entry = created_entry_;
  IxoMepErrorEnum code = FindRoot(frame, value);
  for (const Step& step : steps_) {
    if (code != IMEPERR_NONE) break;
    code = Follow(frame, step, value);
  }
  created_entry_ = created_entry;
  if (code == IMEPERR_NONE && Creates()) value = &ValueAccess::Follow(*value);
  return code;
}

IxoMepErrorEnum Place::Store(Frame& frame, IxoMepValue&& value) {
  ReplaceReference(value);
  IxoMepValue* target = nullptr;
  const IxoMepErrorEnum code = Find(frame, target);
  if (code == IMEPERR_NONE) *target = std::move(value);
  return code;
}

IxoMepErrorEnum Place::FindRoot(Frame& frame, IxoMepValue*& value) const {
  if (frame.scope != nullptr) {
    value = Creates() ? frame.scope->NewGetLValue(name_) : frame.scope->_find(name_);
    if (value != nullptr) return IMEPERR_NONE;
  }
  return Raise(frame.text, IMEPERR_UNKNOWN_VARIABLE);
}

IxoMepErrorEnum Place::Follow(Frame& frame, const Step& step, IxoMepValue*& value) {
  if (Creates()) value = &ValueAccess::Follow(*value);
  created_entry_ = false;
  return step.property != nullptr ? FollowProperty(frame, step, value)
                                  : FollowIndex(frame, step, value);
}

IxoMepErrorEnum Place::FollowIndex(Frame& frame, const Step& step, IxoMepValue*& value) {
  const Type type = value->GetType();
  if (type != Type::Array && type != Type::Map) return FailSubscript(*value, frame.text);
  if (use_ == PlaceUse::Lend) ValueAccess::Pin(*value);
  if (type == Type::Array) {
    std::size_t position = 0;
    const IxoMepErrorEnum code = ReadPosition(*value, step.index, frame.text, position);
    if (code == IMEPERR_NONE) value = ElementOf(*value, position);
    return code;
  }
  const IxoMepValue& key = ValueAccess::Follow(step.index);
  const bool is_key = key.GetType() != Type::Undefined && key.GetType() != Type::Reference;
  if (Creates() && !is_key) return FailIndex(key, frame.text);
  value = EntryOf(*value, key);
  return IMEPERR_NONE;
}

// Only a method that changes its receiver, or a store, needs a storage of its own.
IxoMepValue* Place::ElementOf(IxoMepValue& array, std::size_t position) const {
  if (use_ == PlaceUse::Receive) {
    return const_cast<IxoMepValue*>(&ValueAccess::Element(array, position));
  }
  IxoMepValue*& slot = ValueAccess::OwnItems(array)[position];
  if (slot == nullptr) slot = new IxoMepValue;
  return slot;
}

IxoMepValue* Place::EntryOf(IxoMepValue& map, const IxoMepValue& key) {
  if (Creates()) {
    const std::size_t before = ValueAccess::Count(map);
    IxoMepValue* const entry = ValueAccess::OwnEntry(map, key, true);
    created_entry_ = ValueAccess::Count(map) != before;
    return entry;
  }
  const IxoMepValue* const found = ValueAccess::FindEntry(map, key);
  if (found == nullptr) {
    ValueAccess::SetUndefined(temporary_);
    return &temporary_;
  }
  return use_ == PlaceUse::ReceiveToChange ? ValueAccess::OwnEntry(map, key, false)
                                           : const_cast<IxoMepValue*>(found);
}

IxoMepErrorEnum Place::FollowProperty(Frame& frame, const Step& step, IxoMepValue*& value) {
  if (value->GetType() == Type::Object) {
    IxoMepObject* const object = ValueAccess::Object(*value);
    IxoMepValue* property = nullptr;
    if (object == nullptr ||
        object->GetObjectPropertyLValue(step.property, property, frame.text) != IMEPERR_NONE ||
        property == nullptr) {
      return FailMember(*value, step.property, frame.text);
    }
    value = property;
    return IMEPERR_NONE;
  }
  if (Creates()) {
    const String type = IxoMepValue::GetTypeName(value->GetType());
    return Raise(frame.text, IMEPERR_WRONG_TYPE,
                 {{"%type", type}, {"%func", type + "." + step.property}});
  }
  IxoMepValue* property = nullptr;
  const auto code =
      static_cast<IxoMepErrorEnum>(value->GetPropertyValue(step.property, property, frame.text));
  const ValuePtr owned(property);
  if (code != IMEPERR_NONE) return code;
  temporary_ = owned != nullptr ? std::move(*owned) : IxoMepValue();
  value = &temporary_;
  return IMEPERR_NONE;
}

// Meant: the place comes first, so that a name or map entry that it creates stays when the right
// side fails.
IxoMepErrorEnum EvaluateAssignment(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  if (frame.strict) return Raise(frame.text, IMEPERR_UNKNOWN_VARIABLE);
  if (node.Left() == nullptr || node.Right() == nullptr) {
    return Raise(frame.text, IMEPERR_WRONG_ARGUMENT_COUNT, {{"%func", ":="}});
  }
  Place place;
  IxoMepErrorEnum code = place.Evaluate(*node.Left(), frame);
  if (code != IMEPERR_NONE) return code;
  IxoMepValue value;
  if (place.IsPlainVariable() && IsLambdaCall(*node.Right())) {
    const AssignedName name(node.Left()->GetNameAddress());
    code = EvaluateOperand(*node.Right(), frame, value);
  } else {
    code = EvaluateOperand(*node.Right(), frame, value);
  }
  if (code != IMEPERR_NONE) return code;
  ReplaceReference(value);
  out = value;
  if (IsContainer(value) || !IsQuiet(*node.Right())) return place.Store(frame, std::move(value));
  place.StoreAtOnce(std::move(value));
  return IMEPERR_NONE;
}

}  // namespace ixomep
