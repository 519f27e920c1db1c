// Internal: blocks of one size, carved from slabs. A block of its own from the general heap costs
// 16 bytes and more beside what it holds, and neighbours in a tree would lie anywhere; from a slab
// they lie side by side in the order in which they are made. A slab is 64 KB at a multiple of
// 64 KB, so that a block's address tells its slab. Slabs come in regions from the general heap:
// the more are in use the larger, up to 2 MB, and a region goes back as soon as its last block is
// given back; but for a few of the largest, which the next large tree gets without the system
// clearing new memory. Process-wide use and unguarded: one thread at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

namespace ixomep {

class BlockHeap {
 public:
  static constexpr std::size_t kSlabBytes = 64 * 1024;
  static constexpr std::uint32_t kMaxRegionSlabs = 32;
  static constexpr std::size_t kMaxIdleRegions = 8;

  // Blocks of that size, rounded up to whole words. Nothing is allocated before the first Take.
  // Regions still in use when the heap ends are left to whoever holds blocks in them.
  explicit constexpr BlockHeap(std::size_t block_bytes) noexcept
      : block_bytes_(static_cast<std::uint32_t>((block_bytes + 7) / 8 * 8)),
        capacity_(static_cast<std::uint32_t>((kSlabBytes - sizeof(Slab)) / block_bytes_)) {}
  ~BlockHeap() { ReleaseIdle(); }
  BlockHeap(const BlockHeap&) = delete;
  BlockHeap& operator=(const BlockHeap&) = delete;

  // Blocks that lie side by side.
  struct Run {
    unsigned char* first;
    std::uint32_t count;
  };

  // Throws std::bad_alloc.
  void* Take() { return TakeRun(1).first; }
  // One block at least and `most` at most, each of them given back alone. Throws std::bad_alloc.
  Run TakeRun(std::uint32_t most) {
    Slab* const slab = roomy_ != nullptr ? roomy_ : AddSlab();
    if (slab->used == 0) ++slab->region->used_slabs;
    Run run{reinterpret_cast<unsigned char*>(slab->given_back), 1};
    if (run.first != nullptr) {
      slab->given_back = slab->given_back->next;
    } else {
      const std::size_t offset = std::size_t{slab->carved} * block_bytes_;
      run.first = &reinterpret_cast<unsigned char*>(slab + 1)[offset];
      run.count = std::min(most, capacity_ - slab->carved);
      slab->carved += run.count;
    }
    slab->used += run.count;
    if (slab->used == capacity_) Unlink(*slab);
    return run;
  }

  void Give(void* block) noexcept {
    Slab* const slab = SlabOf(block);
    slab->given_back = new (block) Block{slab->given_back};
    if (slab->used-- == capacity_) Link(*slab);
    if (slab->used == 0) Empty(*slab);
  }

  std::size_t BlocksPerSlab() const noexcept { return capacity_; }
  // What holds blocks that are in use: regions, and the slabs in them.
  std::size_t RegionCount() const noexcept { return regions_; }
  std::size_t SlabCount() const noexcept { return slabs_; }
  // Regions of the largest size that hold none and are kept.
  std::size_t IdleCount() const noexcept { return idle_regions_; }
  void ReleaseIdle() noexcept;

 private:
  struct Block {
    Block* next;
  };
  // Stands at the start of its first slab's memory, inside that slab's head.
  struct Region {
    std::uint32_t slabs;       // how many it has room for
    std::uint32_t begun;       // how many of them have a head
    std::uint32_t used_slabs;  // how many hold blocks in use
  };
  // The head of a slab; its blocks follow.
  struct alignas(64) Slab {
    Slab* next;  // of those with room
    Slab* previous;
    Region* region;
    Block* given_back;
    std::uint32_t carved;  // blocks made so far
    std::uint32_t used;    // blocks in use
    Region own_region;     // of the region's first slab
  };

  static Slab* SlabOf(void* block) noexcept {
    return reinterpret_cast<Slab*>(reinterpret_cast<std::uintptr_t>(block) & ~(kSlabBytes - 1));
  }
  static Slab* FirstSlab(Region& region) noexcept { return SlabOf(&region); }

  void Link(Slab& slab) noexcept {
    slab.previous = nullptr;
    slab.next = roomy_;
    if (roomy_ != nullptr) roomy_->previous = &slab;
    roomy_ = &slab;
  }
  void Unlink(Slab& slab) noexcept {
    (slab.previous != nullptr ? slab.previous->next : roomy_) = slab.next;
    if (slab.next != nullptr) slab.next->previous = slab.previous;
  }

  Slab* AddSlab();
  Region& AddRegion();
  void Empty(Slab& slab) noexcept;
  void Release(Region& region) noexcept;

  std::uint32_t block_bytes_;
  std::uint32_t capacity_;
  Slab* roomy_ = nullptr;     // the slabs that have room
  Region* newest_ = nullptr;  // the region that further slabs are begun in
  Slab* idle_ = nullptr;      // the first slabs of idle regions
  std::size_t idle_regions_ = 0;
  std::size_t regions_ = 0;
  std::size_t slabs_ = 0;
};

}  // namespace ixomep
