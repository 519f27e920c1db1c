// The slow paths of BlockHeap: beginning slabs, getting regions and giving them back. Regions of
// the full size are announced to the host, whose machine may have a faster way to hand them out.
#include "ixomep/values/block_heap.h"

#include <algorithm>
#include <new>
#include <utility>

#include "ixomep/host/host.h"

namespace ixomep {
namespace {

std::align_val_t Alignment(std::size_t bytes) noexcept { return std::align_val_t{bytes}; }

void FreeRegion(void* memory, std::size_t slabs) noexcept {
  ::operator delete(memory, Alignment(slabs * BlockHeap::kSlabBytes));
}

}  // namespace

// A region is as large as all before it together and aligned to its size, unless an idle one is at
// hand where it may be a large one.
BlockHeap::Region& BlockHeap::AddRegion() {
  std::uint32_t slabs = 1;
  while (slabs < kMaxRegionSlabs && slabs * 2 <= slabs_) slabs *= 2;
  void* memory = nullptr;
  if (idle_ != nullptr && slabs > 1) {
    slabs = kMaxRegionSlabs;
    memory = idle_;
    idle_ = idle_->next;
    --idle_regions_;
  } else {
    const std::size_t bytes = slabs * kSlabBytes;
    memory = ::operator new(bytes, Alignment(bytes));
    if (slabs == kMaxRegionSlabs) IxoHost::Current().PrepareMemory(memory, bytes);
  }
  Slab* const first = new (memory) Slab{};
  first->own_region = {slabs, 0, 0};
  ++regions_;
  slabs_ += slabs;
  return first->own_region;
}

BlockHeap::Slab* BlockHeap::AddSlab() {
  if (newest_ == nullptr || newest_->begun == newest_->slabs) newest_ = &AddRegion();
  Region& region = *newest_;
  unsigned char* const memory =
      reinterpret_cast<unsigned char*>(FirstSlab(region)) + region.begun * kSlabBytes;
  Slab* slab = FirstSlab(region);
  if (region.begun != 0) slab = new (memory) Slab{};
  ++region.begun;
  slab->region = &region;
  Link(*slab);
  return slab;
}

// An empty slab is carved anew, from its start; an empty region goes back.
void BlockHeap::Empty(Slab& slab) noexcept {
  slab.given_back = nullptr;
  slab.carved = 0;
  if (--slab.region->used_slabs == 0) Release(*slab.region);
}

void BlockHeap::Release(Region& region) noexcept {
  unsigned char* const memory = reinterpret_cast<unsigned char*>(FirstSlab(region));
  for (std::uint32_t i = 0; i < region.begun; ++i) {
    Unlink(*reinterpret_cast<Slab*>(memory + i * kSlabBytes));
  }
  if (newest_ == &region) newest_ = nullptr;
  --regions_;
  slabs_ -= region.slabs;
  if (region.slabs == kMaxRegionSlabs && idle_regions_ < kMaxIdleRegions) {
    Slab* const first = FirstSlab(region);
    first->next = std::exchange(idle_, first);
    ++idle_regions_;
    return;
  }
  FreeRegion(memory, region.slabs);
}

void BlockHeap::ReleaseIdle() noexcept {
  while (idle_ != nullptr) FreeRegion(std::exchange(idle_, idle_->next), kMaxRegionSlabs);
  idle_regions_ = 0;
}

}  // namespace ixomep
