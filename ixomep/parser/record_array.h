// Internal: a growing array of plain records. Its bytes count in the memory budget. Large arrays
// use blocks of earlier ones again: memory that has been written before is had much faster.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "ixomep/host/large_blocks.h"
#include "ixomep/host/memory_budget.h"

namespace ixomep {

template <class Record>
class RecordArray {
  static_assert(std::is_trivially_copyable_v<Record> && std::is_trivially_destructible_v<Record>);

 public:
  RecordArray() = default;
  RecordArray(const RecordArray&) = delete;
  RecordArray& operator=(const RecordArray&) = delete;
  ~RecordArray() { Free(); }

  std::uint32_t Size() const noexcept { return size_; }
  bool IsEmpty() const noexcept { return size_ == 0; }
  Record& operator[](std::uint32_t index) noexcept { return data_[index]; }
  const Record& operator[](std::uint32_t index) const noexcept { return data_[index]; }
  const Record* Data() const noexcept { return data_; }
  Record* Data() noexcept { return data_; }
  Record& Back() noexcept { return data_[size_ - 1]; }

  // All of these throw std::bad_alloc when the memory cannot be had.
  void Push(const Record& record) {
    if (size_ == capacity_) [[unlikely]]
      Grow(1);
    data_[size_++] = record;
  }
  // The place of the record that comes next: written there, and then counted by PushNext.
  Record& Next() {
    if (size_ == capacity_) [[unlikely]]
      Grow(1);
    return data_[size_];
  }
  void PushNext() noexcept { ++size_; }
  // The same for many records: behind the last one, the end of the room for more, and the end of
  // what was written there.
  Record* End() noexcept { return data_ + size_; }
  const Record* RoomEnd() const noexcept { return data_ + capacity_; }
  void SetEnd(const Record* end) noexcept { size_ = static_cast<std::uint32_t>(end - data_); }
  // Appends what stands from an index on in another array, and cuts that array there.
  void TakeTail(RecordArray& other, std::uint32_t from) {
    const std::uint32_t count = other.size_ - from;
    if (size_ == 0 && from == 0) return Swap(other);
    if (count > capacity_ - size_) [[unlikely]]
      Grow(count);
    // Mostly a few records: not worth a call.
    for (std::uint32_t i = 0; i < count; ++i) data_[size_ + i] = other.data_[from + i];
    size_ += count;
    other.size_ = from;
  }
  void Swap(RecordArray& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(block_bytes_, other.block_bytes_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }
  void Reserve(std::uint32_t capacity) {
    if (capacity > capacity_) SetCapacity(capacity);
  }
  // All records zero.
  void AssignZero(std::uint32_t count) {
    Reserve(count);
    if (count != 0) std::memset(static_cast<void*>(data_), 0, std::size_t{count} * sizeof(Record));
    size_ = count;
  }
  void Pop() noexcept { --size_; }
  void Clear() noexcept { size_ = 0; }
  // Gives back the room for more, but for an eighth of a large block: the next text needs it again.
  void Trim() {
    const std::size_t bytes = std::size_t{size_} * sizeof(Record);
    if (size_ == 0) {
      Free();
    } else if (block_bytes_ < IdleBlocks::kLeast || block_bytes_ - bytes > bytes / 8) {
      if (block_bytes_ != bytes) SetCapacity(size_);
    }
  }

 private:
  static constexpr std::uint64_t kMostRecords = 0xFFFFFFF0;

  void Grow(std::uint32_t more) {
    const std::uint64_t needed = std::uint64_t{size_} + more;
    if (needed > kMostRecords) throw std::bad_alloc();
    const std::uint64_t wished = std::max(needed, std::uint64_t{capacity_} + capacity_ / 2 + 8);
    SetCapacity(static_cast<std::uint32_t>(std::min(wished, kMostRecords)));
  }

  void Free() noexcept {
    Discard(data_, block_bytes_);
    MemoryBudget::Give(std::size_t{capacity_} * sizeof(Record));
    data_ = nullptr;
    block_bytes_ = 0;
    capacity_ = 0;
  }

  void SetCapacity(std::uint32_t capacity) {
    const std::size_t before = std::size_t{capacity_} * sizeof(Record);
    const std::size_t bytes = std::size_t{capacity} * sizeof(Record);
    MemoryBudget::Take(bytes);
    if (!Resize(bytes)) {
      MemoryBudget::Give(bytes);
      throw std::bad_alloc();
    }
    MemoryBudget::Give(before);
    capacity_ = capacity;
  }

  // Whether the records are in a block of so many bytes now. While they grow it may have more of
  // them: an idle one.
  bool Resize(std::size_t bytes) noexcept {
    if (bytes <= block_bytes_ && bytes > std::size_t{capacity_} * sizeof(Record)) return true;
    std::size_t new_bytes = bytes;
    void* block = nullptr;
    const bool is_larger = bytes > block_bytes_;
    if (is_larger) block = IdleBlocks::Take(new_bytes);
    if (block == nullptr && is_larger && bytes >= LargeBlocks::kFrom) {
      block = LargeBlocks::New(bytes);
      if (block == nullptr) return false;
    }
    if (block == nullptr) {
      block = std::realloc(static_cast<void*>(data_), bytes);
      if (block == nullptr) return false;
    } else if (data_ != nullptr) {
      std::memcpy(block, static_cast<const void*>(data_), std::size_t{size_} * sizeof(Record));
      Discard(data_, block_bytes_);
    }
    data_ = static_cast<Record*>(block);
    block_bytes_ = new_bytes;
    return true;
  }

  static void Discard(Record* data, std::size_t bytes) noexcept {
    if (data != nullptr) IdleBlocks::Give(static_cast<void*>(data), bytes);
  }

  Record* data_ = nullptr;
  std::size_t block_bytes_ = 0;
  std::uint32_t size_ = 0;
  std::uint32_t capacity_ = 0;
};

}  // namespace ixomep
