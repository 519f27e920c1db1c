// Internal: the elements of an array, a vector that may have room in front too: an array that is
// used as a queue, or filled from the front, takes an amortised constant time a step instead of
// moving all its elements (65,536 of them: 8 us).
#pragma once

#include <cstddef>
#include <utility>

#include "ixomep/values/value.h"

namespace ixomep {

// Owns no elements: its storage (value_rep.h) does. Slots are 8 bytes each, elements stand in one
// piece, and `Begin` + i stays the slot of element i until elements are inserted or erased.
class ElementList {
 public:
  ElementList() = default;
  ElementList(const ElementList&) = delete;
  ElementList& operator=(const ElementList&) = delete;

  std::size_t size() const noexcept { return static_cast<std::size_t>(end() - begin()); }
  IxoMepValue** begin() noexcept { return first_; }
  IxoMepValue** end() noexcept { return slots_.data() + slots_.size(); }
  IxoMepValue* const* begin() const noexcept { return first_; }
  IxoMepValue* const* end() const noexcept { return slots_.data() + slots_.size(); }
  IxoMepValue*& operator[](std::size_t index) noexcept { return first_[index]; }
  IxoMepValue* operator[](std::size_t index) const noexcept { return first_[index]; }

  // Takes over the slots of a list.
  void Assign(IxoMepValueList&& list) noexcept;

  // Slots there are, the free ones in front and behind included.
  std::size_t Capacity() const noexcept { return slots_.capacity(); }
  bool HasRoomInFront() const noexcept { return Front() > 0; }
  bool HasRoomBehind() const noexcept { return slots_.size() < slots_.capacity(); }
  // Moves all elements to where `front` slots in front of them are free, among the slots there are,
  // or in a new piece of at least `capacity` slots when those are more.
  void MoveTo(std::size_t front, std::size_t capacity);

  // There is room behind.
  void Append(IxoMepValue* element) { slots_.push_back(element); }
  // There is room on the side that moves.
  void InsertMovingFront(std::size_t index, IxoMepValue* element) noexcept;
  void InsertMovingBack(std::size_t index, IxoMepValue* element);
  // The element, which leaves the list.
  IxoMepValue* TakeMovingFront(std::size_t index) noexcept;
  IxoMepValue* TakeMovingBack(std::size_t index) noexcept;

 private:
  std::size_t Front() const noexcept { return static_cast<std::size_t>(first_ - slots_.data()); }

  IxoMepValueList slots_;          // those in front of the elements are free, and null
  IxoMepValue** first_ = nullptr;  // element
};

}  // namespace ixomep
