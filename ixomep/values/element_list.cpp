// Moving the elements of an array. See element_list.h.
#include "ixomep/values/element_list.h"

#include <algorithm>

namespace ixomep {

void ElementList::Assign(IxoMepValueList&& list) noexcept {
  slots_ = std::move(list);
  first_ = slots_.data();
}

void ElementList::MoveTo(std::size_t front, std::size_t capacity) {
  const std::size_t count = size();
  if (std::max(capacity, front + count) > Capacity()) {
    IxoMepValueList slots;
    slots.reserve(std::max(capacity, front + count));
    slots.resize(front);
    slots.insert(slots.end(), begin(), end());
    slots_.swap(slots);
  } else if (front > Front()) {
    slots_.insert(slots_.begin(), front - Front(), nullptr);
  } else {
    const auto first = slots_.begin() + static_cast<std::ptrdiff_t>(front);
    slots_.erase(first, first + static_cast<std::ptrdiff_t>(Front() - front));
  }
  first_ = slots_.data() + front;
}

void ElementList::InsertMovingFront(std::size_t index, IxoMepValue* element) noexcept {
  std::copy(first_, first_ + index, first_ - 1);
  --first_;
  first_[index] = element;
}

void ElementList::InsertMovingBack(std::size_t index, IxoMepValue* element) {
  slots_.insert(slots_.begin() + static_cast<std::ptrdiff_t>(Front() + index), element);
}

IxoMepValue* ElementList::TakeMovingFront(std::size_t index) noexcept {
  IxoMepValue* const element = first_[index];
  std::copy_backward(first_, first_ + index, first_ + index + 1);
  *first_++ = nullptr;
  return element;
}

IxoMepValue* ElementList::TakeMovingBack(std::size_t index) noexcept {
  IxoMepValue* const element = first_[index];
  slots_.erase(slots_.begin() + static_cast<std::ptrdiff_t>(Front() + index));
  return element;
}

}  // namespace ixomep
