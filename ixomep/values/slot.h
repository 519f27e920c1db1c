// Internal: owners for values inside the engine, and the turn from the interface's result slots
// (`IxoMepValue*&`: null means "allocate", else "assign into") to plain values.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "ixomep/values/value.h"

namespace ixomep {

using ValuePtr = std::unique_ptr<IxoMepValue>;

template <class... Args>
ValuePtr MakeValue(Args&&... args) {
  return ValuePtr(new IxoMepValue(std::forward<Args>(args)...));
}

// Stores a finished result: into the caller's value, whose identity stays, or a new one.
inline void StoreResult(IxoMepValue*& slot, IxoMepValue&& result) {
  if (slot != nullptr) {
    *slot = std::move(result);
  } else {
    slot = new IxoMepValue(std::move(result));
  }
}

// The rule for failures: the value in the slot is destroyed and the slot nulled.
inline void FailSlot(IxoMepValue*& slot) noexcept { delete std::exchange(slot, nullptr); }

// A list of owned values that lends itself as an argument list.
class OwnedList {
 public:
  OwnedList() = default;
  OwnedList(const OwnedList&) = delete;
  OwnedList& operator=(const OwnedList&) = delete;
  ~OwnedList() {
    for (IxoMepValue* v : items_) delete v;
  }
  void Add(IxoMepValue&& value) { Add(MakeValue(std::move(value))); }
  void Add(ValuePtr value) {
    items_.push_back(value.get());
    (void)value.release();
  }
  const IxoMepValueList& View() const noexcept { return items_; }
  IxoMepValueList& View() noexcept { return items_; }
  // Hands all elements over to the caller.
  IxoMepValueList Release() noexcept { return std::exchange(items_, {}); }

 private:
  IxoMepValueList items_;
};

}  // namespace ixomep
