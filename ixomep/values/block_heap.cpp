// The slow paths of BlockHeap: beginning slabs, getting regions and giving them back. Regions of
// the full size are announced to the host, whose machine may have a faster way to hand them out.
#include "ixomep/values/block_heap.h"

#include <algorithm>
#include <new>

#include "ixomep/host/host.h"

namespace ixomep {
namespace {

std::align_val_t Alignment(std::size_t bytes) noexcept { return std::align_val_t{bytes}; }

}  // namespace

// A region is as large as all before it together and aligned to its size.
BlockHeap::Region& BlockHeap::AddRegion() {
  std::uint32_t slabs = 1;
  while (slabs < kMaxRegionSlabs && slabs * 2 <= slabs_) slabs *= 2;
  const std::size_t bytes = slabs * kSlabBytes;
  void* const memory = ::operator new(bytes, Alignment(bytes));
  if (slabs == kMaxRegionSlabs) IxoHost::Current().PrepareMemory(memory, bytes);
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
  const std::size_t bytes = region.slabs * kSlabBytes;
  ::operator delete(static_cast<void*>(memory), Alignment(bytes));
}

}  // namespace ixomep
