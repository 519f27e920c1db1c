// Internal: a growing array of plain records. Its bytes count in the memory budget.
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
    if (count > capacity_ - size_) [[unlikely]]
      Grow(count);
    // Mostly a few records: not worth a call.
    for (std::uint32_t i = 0; i < count; ++i) data_[size_ + i] = other.data_[from + i];
    size_ += count;
    other.size_ = from;
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
  // Gives back the room for more.
  void Trim() {
    if (size_ == 0) {
      Free();
    } else if (size_ < capacity_) {
      SetCapacity(size_);
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
    std::free(data_);
    MemoryBudget::Give(std::size_t{capacity_} * sizeof(Record));
    data_ = nullptr;
    capacity_ = 0;
  }

  void SetCapacity(std::uint32_t capacity) {
    const std::size_t before = std::size_t{capacity_} * sizeof(Record);
    const std::size_t bytes = std::size_t{capacity} * sizeof(Record);
    MemoryBudget::Take(bytes);
    void* const block = Resized(bytes);
    if (block == nullptr) {
      MemoryBudget::Give(bytes);
      throw std::bad_alloc();
    }
    MemoryBudget::Give(before);
    data_ = static_cast<Record*>(block);
    capacity_ = capacity;
  }

  // The records in a block of that size; null when it cannot be had.
  void* Resized(std::size_t bytes) const noexcept {
    if (bytes < LargeBlocks::kFrom || bytes <= std::size_t{capacity_} * sizeof(Record)) {
      return std::realloc(static_cast<void*>(data_), bytes);
    }
    void* const block = LargeBlocks::New(bytes);
    if (block == nullptr || data_ == nullptr) return block;
    std::memcpy(block, static_cast<const void*>(data_), std::size_t{size_} * sizeof(Record));
    std::free(static_cast<void*>(data_));
    return block;
  }

  Record* data_ = nullptr;
  std::uint32_t size_ = 0;
  std::uint32_t capacity_ = 0;
};

}  // namespace ixomep
