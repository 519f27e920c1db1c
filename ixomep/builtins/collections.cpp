// Functions that make arrays, maps and objects, and the one that erases from a map: "{", "{:",
// array, map, object, merase.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/variables.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/values/slot.h"

namespace ixomep::builtins {

namespace {

// What an array costs beside its elements, and what an element costs, in bytes.
constexpr double kArrayBytes = sizeof(IxoMepValue) + sizeof(ListRep);
constexpr double kElementBytes = sizeof(IxoMepValue) + sizeof(IxoMepValue*);

// May a nest of arrays of these sizes (the outermost first) be had? The bytes are counted in
// floating point, in which the product of all sizes cannot overflow.
bool FitsBudget(const std::vector<std::int32_t>& sizes) noexcept {
  constexpr double kMost = 1e18;
  double arrays = 1;
  double bytes = 0;
  for (const std::int32_t size : sizes) {
    const double each = std::max(size, 0);
    bytes += arrays * (kArrayBytes + each * kElementBytes);
    if (bytes > kMost) return false;
    arrays *= each;
  }
  return MemoryBudget::MayTake(static_cast<std::size_t>(bytes));
}

// An array of `size` copies of element.
IxoMepValue Repeated(std::int32_t size, IxoMepValue&& element) {
  IxoMepValue array(IxoMepValueType::Array);
  if (size < 1) return array;
  ValueAccess::Reserve(array, static_cast<std::size_t>(size));
  for (std::int32_t i = 1; i < size; ++i) {
    LimitWatch::Work();
    ValueAccess::AppendOwned(array, MakeValue(element));
  }
  ValueAccess::AppendOwned(array, MakeValue(std::move(element)));
  return array;
}

// Evaluates the parameters left to right into elements. A reference becomes a copy of its target.
IxoMepErrorEnum EvaluateElements(Call& call, OwnedList& elements) {
  elements.View().reserve(static_cast<std::size_t>(call.Count()));
  for (const IxoMepExprNode* cell = call.List(); cell != nullptr; cell = cell->Right()) {
    ValuePtr element = MakeValue();
    const IxoMepErrorEnum code = EvaluateOperand(*cell->Left(), call.frame(), *element);
    if (code != IMEPERR_NONE) return code;
    ReplaceReference(*element);
    elements.Add(std::move(element));
  }
  return IMEPERR_NONE;
}

}  // namespace

// What cannot be had while a collection is built fails with 37.
IxoMepErrorEnum Curly(Call& call) {
  const long built = CatchTooLong(call.frame().text, [&]() -> long {
    OwnedList elements;
    if (const IxoMepErrorEnum code = EvaluateElements(call, elements)) return code;
    IxoMepValue array;
    ValueAccess::MakeArray(array, std::move(elements));
    return call.Return(std::move(array));
  });
  return static_cast<IxoMepErrorEnum>(built);
}

IxoMepErrorEnum CurlyColon(Call& call) {
  const long built = CatchTooLong(call.frame().text, [&]() -> long {
    OwnedList pairs;
    if (const IxoMepErrorEnum code = EvaluateElements(call, pairs)) return code;
    IxoMepValue map;
    if (!ValueAccess::MakeMap(map, std::move(pairs))) {
      // NOLINTNEXTLINE(bugprone-use-after-move): a failure leaves the pairs alone
      return call.WrongTypes(call.Name(), pairs.View());
    }
    return call.Return(std::move(map));
  });
  return static_cast<IxoMepErrorEnum>(built);
}

IxoMepErrorEnum Array(Call& call) {
  std::vector<std::int32_t> sizes;  // up to the first that ends the nesting
  for (std::int32_t i = 0; i < call.Count(); ++i) {
    sizes.push_back(call.Int(i));
    if (sizes.back() < 1) break;
  }
  if (!FitsBudget(sizes)) MemoryBudget::Refuse();
  IxoMepValue nest;
  for (auto size = sizes.rbegin(); size != sizes.rend(); ++size) {
    nest = Repeated(*size, std::move(nest));
  }
  return call.Return(std::move(nest));
}

IxoMepErrorEnum Map(Call& call) { return call.Return(IxoMepValue(IxoMepValueType::Map)); }

IxoMepErrorEnum Object(Call& call) { return call.Return(IxoMepValue(IxoMepValueType::Object)); }

IxoMepErrorEnum MErase(Call& call) {
  const IxoMepExprNode& target = call.Param(0);
  // Meant: the text names the array function.
  if (const IxoMepErrorEnum code = CheckVariable(call, target, "aerase")) return code;
  const IxoMepValue* const map = FindVariable(call, target);
  if (map->GetType() != IxoMepValueType::Map) return call.WrongTypes(call.Name(), {map});
  IxoMepValue key;
  if (const IxoMepErrorEnum code = call.Evaluate(1, key)) return code;
  ReplaceReference(key);
  // The key may have replaced the map, foreign code in it emptied the scope.
  IxoMepValue* const now = FindVariable(call, target);
  if (now == nullptr) return CheckVariable(call, target, "aerase");
  if (now->GetType() != IxoMepValueType::Map) return call.WrongTypes(call.Name(), {now});
  if (ValueAccess::FindEntry(*now, key) == nullptr) return call.Return(IxoMepValue());
  const ValuePtr erased(std::exchange(ValueAccess::OwnEntrySlot(*now, key), nullptr));
  ValueAccess::EraseKey(*now, key);
  return call.Return(erased != nullptr ? std::move(*erased) : IxoMepValue());
}

}  // namespace ixomep::builtins
