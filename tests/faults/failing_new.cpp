// The program's operator new and delete, which count and fail. See failing_new.h.
#include "tests/faults/failing_new.h"

#include <cstddef>
#include <cstdlib>
#include <new>

#include "ixomep/expr/node.h"
#include "ixomep/values/free_list.h"
#include "ixomep/values/value_rep.h"

namespace {

int allocations_left = 0;  // until one fails; 0: none fails
bool fails_on = false;     // every further one fails too
bool has_failed = false;

bool FailsNow() noexcept {
  if (allocations_left > 0 && --allocations_left == 0) {
    has_failed = true;
    if (fails_on) allocations_left = 1;
    return true;
  }
  return false;
}

void* Take(std::size_t size) {
  void* const block = FailsNow() ? nullptr : std::malloc(size > 0 ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void* TakeAligned(std::size_t size, std::align_val_t alignment) {
  const auto unit = static_cast<std::size_t>(alignment);
  const std::size_t whole = (size + unit - 1) / unit * unit;
  void* const block = FailsNow() ? nullptr : std::aligned_alloc(unit, whole > 0 ? whole : unit);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

void* operator new(std::size_t size) { return Take(size); }
void* operator new[](std::size_t size) { return Take(size); }
void* operator new(std::size_t size, std::align_val_t unit) { return TakeAligned(size, unit); }
void* operator new[](std::size_t size, std::align_val_t unit) { return TakeAligned(size, unit); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return FailsNow() ? nullptr : std::malloc(size > 0 ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return FailsNow() ? nullptr : std::malloc(size > 0 ? size : 1);
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

namespace ixomep::test {

FailingNew::FailingNew(int n, FailMode mode) noexcept {
  has_failed = false;
  fails_on = mode == FailMode::FromThenOn;
  allocations_left = n;
}

FailingNew::~FailingNew() { allocations_left = 0; }

bool FailingNew::HasFailed() noexcept { return has_failed; }

void EmptyFreeLists() noexcept {
  FreeList<IxoMepValue, sizeof(IxoMepValue)>::TrimTo(0);
  FreeList<IxoMepExprNode, 32>::TrimTo(0);
  FreeList<ListRep, sizeof(ListRep)>::TrimTo(0);
  FreeList<MapRep, sizeof(MapRep)>::TrimTo(0);
}

}  // namespace ixomep::test
