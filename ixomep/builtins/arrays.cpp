// Functions that change an array held in a variable, in place: aappend, ainsert, aerase,
// areplace, asinsert. The arguments between the variable's name and the function's own ones are
// indices that lead to an array inside; each is evaluated and checked before the next.
//
// Evaluating an argument may change the very array, so that nothing found before it is used after
// it: the path is a list of numbers, followed anew each time, and the array is only written to
// when all is evaluated and checked.
#include <new>
#include <vector>

#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/variables.h"
#include "ixomep/values/slot.h"

namespace ixomep::builtins {

namespace {

class Edit {
 public:
  explicit Edit(Call& call) : call_(call), variable_(call.Param(0)), cell_(call.List()) {}

  // The checks of the variable, then all indices but the function's own arguments.
  IxoMepErrorEnum Begin(std::int32_t own_arguments) {
    if (const IxoMepErrorEnum code = CheckVariable(call_, variable_, call_.Name())) return code;
    for (std::int32_t i = call_.Count() - 1 - own_arguments; i > 0; --i) {
      if (const IxoMepErrorEnum code = Descend()) return code;
    }
    return IMEPERR_NONE;
  }

  // The function's position in the array reached; `beyond` is 1 when it may equal the count.
  IxoMepErrorEnum ReadPosition(std::int32_t beyond) {
    if (const IxoMepErrorEnum code = ReadIndex(position_)) return code;
    beyond_ = beyond;
    return CheckTarget();
  }

  // The function's value, the last argument.
  IxoMepErrorEnum ReadValue(IxoMepValue& value) {
    if (const IxoMepErrorEnum code = EvaluateNext(value)) return code;
    ReplaceReference(value);
    return CheckTarget();
  }

  std::size_t position() const noexcept { return static_cast<std::size_t>(position_); }
  // The array reached, for writing. After CheckTarget, with nothing evaluated since.
  IxoMepValue& Target() {
    IxoMepValue* current = FindVariable(call_, variable_);
    for (const std::int32_t index : path_) {
      current = ValueAccess::OwnElement(*current, static_cast<std::size_t>(index));
    }
    return *current;
  }

 private:
  static constexpr std::int32_t kNoPosition = -1;

  IxoMepErrorEnum EvaluateNext(IxoMepValue& value) {
    cell_ = cell_->Right();
    return EvaluateOperand(*cell_->Left(), call_.frame(), value);
  }

  IxoMepErrorEnum ReadIndex(std::int32_t& index) {
    IxoMepValue value;
    if (const IxoMepErrorEnum code = EvaluateNext(value)) return code;
    if (value.GetType() != IxoMepValueType::Integer) {
      return call_.WrongTypes(call_.Name(), {&value});
    }
    index = ValueAccess::Integer(value);
    return IMEPERR_NONE;
  }

  // One index of the path.
  IxoMepErrorEnum Descend() {
    const IxoMepValue* current = nullptr;
    if (const IxoMepErrorEnum code = FollowToArray(current)) return code;
    std::int32_t index = 0;
    if (const IxoMepErrorEnum code = ReadIndex(index)) return code;
    if (const IxoMepErrorEnum code = FollowToArray(current)) return code;
    if (const IxoMepErrorEnum code = CheckRange(*current, index, 0)) return code;
    path_.push_back(index);
    return IMEPERR_NONE;
  }

  // Where the path leads now.
  IxoMepErrorEnum Follow(const IxoMepValue*& current) {
    current = FindVariable(call_, variable_);
    // Foreign code may have emptied the scope meanwhile.
    if (current == nullptr) return CheckVariable(call_, variable_, call_.Name());
    for (const std::int32_t index : path_) {
      if (current->GetType() != IxoMepValueType::Array) {
        return call_.WrongTypes(call_.Name(), {current});
      }
      if (const IxoMepErrorEnum code = CheckRange(*current, index, 0)) return code;
      current = &ValueAccess::Element(*current, static_cast<std::size_t>(index));
    }
    return IMEPERR_NONE;
  }

  // The same, to an array that a further index can select from.
  IxoMepErrorEnum FollowToArray(const IxoMepValue*& current) {
    if (const IxoMepErrorEnum code = Follow(current)) return code;
    if (current->GetType() == IxoMepValueType::Array) return IMEPERR_NONE;
    return call_.WrongTypes(call_.Name(), {current});
  }

  // Is what the path leads to an array, and the position inside it? The text names the variable.
  IxoMepErrorEnum CheckTarget() {
    const IxoMepValue* target = nullptr;
    if (const IxoMepErrorEnum code = Follow(target)) return code;
    if (target->GetType() != IxoMepValueType::Array) {
      return call_.WrongTypes(variable_.GetName(), {target});
    }
    return beyond_ == kNoPosition ? IMEPERR_NONE : CheckRange(*target, position_, beyond_);
  }

  IxoMepErrorEnum CheckRange(const IxoMepValue& array, std::int32_t index, std::int32_t beyond) {
    if (index < 0) return FailRange(IMEPERR_INDEX_TOO_SMALL);
    const std::size_t end = ValueAccess::Count(array) + static_cast<std::size_t>(beyond);
    return static_cast<std::size_t>(index) < end ? IMEPERR_NONE
                                                 : FailRange(IMEPERR_INDEX_TOO_LARGE);
  }

  IxoMepErrorEnum FailRange(IxoMepErrorEnum code) {
    return call_.Fail(code, {{"%type", IxoMepValue::GetTypeName(IxoMepValueType::Array)},
                             {"%varname", variable_.GetName()},
                             {"%func", EditingCallText(call_.Name(), variable_)}});
  }

  Call& call_;
  const IxoMepExprNode& variable_;
  const IxoMepExprNode* cell_;  // the parameter that was read last
  std::vector<std::int32_t> path_;
  std::int32_t position_ = 0;
  std::int32_t beyond_ = kNoPosition;
};

// Runs the last step of a function; an array that cannot grow fails with 37.
template <class Step>
IxoMepErrorEnum Change(Call& call, Step step) {
  try {
    return step();
  } catch (const std::bad_alloc& cause) {
    return RaiseNoMemory(call.frame().text, IMEPERR_TOO_LONG, cause);
  }
}

// The place that keeps an ascending array ascending, in front of equal elements.
std::size_t SortedPosition(const IxoMepValue& array, const IxoMepValue& value) {
  std::size_t low = 0;
  std::size_t high = ValueAccess::Count(array);
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    if (value > ValueAccess::Element(array, middle)) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

}  // namespace

IxoMepErrorEnum AAppend(Call& call) {
  Edit edit(call);
  IxoMepValue value;
  if (const IxoMepErrorEnum code = edit.Begin(1)) return code;
  if (const IxoMepErrorEnum code = edit.ReadValue(value)) return code;
  return Change(call, [&] {
    ValuePtr copy = MakeValue(value);  // before the place is taken: it may be this array
    ValueAccess::AppendOwned(edit.Target(), std::move(copy));
    return call.Return(std::move(value));
  });
}

IxoMepErrorEnum AInsert(Call& call) {
  Edit edit(call);
  IxoMepValue value;
  if (const IxoMepErrorEnum code = edit.Begin(2)) return code;
  if (const IxoMepErrorEnum code = edit.ReadPosition(1)) return code;
  if (const IxoMepErrorEnum code = edit.ReadValue(value)) return code;
  return Change(call, [&] {
    ValuePtr element = MakeValue(std::move(value));
    ValueAccess::InsertOwned(edit.Target(), edit.position(), std::move(element));
    // Meant: the position, where aappend gives the value.
    return call.Return(static_cast<std::int32_t>(edit.position()));
  });
}

IxoMepErrorEnum AErase(Call& call) {
  Edit edit(call);
  if (const IxoMepErrorEnum code = edit.Begin(1)) return code;
  if (const IxoMepErrorEnum code = edit.ReadPosition(0)) return code;
  return Change(call, [&] {
    const ValuePtr erased = ValueAccess::TakeAt(edit.Target(), edit.position());
    return call.Return(erased != nullptr ? std::move(*erased) : IxoMepValue());
  });
}

IxoMepErrorEnum AReplace(Call& call) {
  Edit edit(call);
  IxoMepValue value;
  if (const IxoMepErrorEnum code = edit.Begin(2)) return code;
  if (const IxoMepErrorEnum code = edit.ReadPosition(0)) return code;
  if (const IxoMepErrorEnum code = edit.ReadValue(value)) return code;
  return Change(call, [&] {
    ValuePtr copy = MakeValue(value);
    IxoMepValue*& element = ValueAccess::OwnItems(edit.Target())[edit.position()];
    if (element != nullptr) {
      *element = std::move(*copy);  // the element keeps its identity
    } else {
      element = copy.release();
    }
    return call.Return(std::move(value));
  });
}

IxoMepErrorEnum ASInsert(Call& call) {
  Edit edit(call);
  IxoMepValue value;
  if (const IxoMepErrorEnum code = edit.Begin(1)) return code;
  if (const IxoMepErrorEnum code = edit.ReadValue(value)) return code;
  return Change(call, [&] {
    ValuePtr copy = MakeValue(value);
    IxoMepValue& array = edit.Target();
    ValueAccess::InsertOwned(array, SortedPosition(array, value), std::move(copy));
    return call.Return(std::move(value));
  });
}

}  // namespace ixomep::builtins
