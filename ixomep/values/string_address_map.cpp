// Interning. Every name is copied into a chunk of memory that never moves and found again through a
// hash table, in which a name stands within a few places of where its hash points. A place is a
// quarter of a cache line and holds all of a name of up to eight bytes: one access finds such a
// name. Texts may be written to have equal hashes: what finds no place there goes into an ordered
// set, so that no name is slow to find. The order of the names shows nowhere.
#include "ixomep/values/string_address_map.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <vector>

#include "ixomep/host/large_blocks.h"

using Map = IxoMepStringAddressMap;

namespace {

constexpr std::uint64_t kFactor = 0x9e3779b97f4a7c15u;

// What a name is compared by: all bytes of a name of up to eight, else a hash of them.
struct Key {
  std::uint64_t word;
  std::uint32_t length;
};

template <class Word>
Word Load(std::string_view bytes, std::size_t from = 0) noexcept {
  Word word;
  std::memcpy(&word, bytes.data() + from, sizeof word);
  return word;
}

// One to eight bytes; different for different bytes of one length.
std::uint64_t WordOf(std::string_view bytes) noexcept {
  const std::size_t size = bytes.size();
  if (size >= 4) {
    return std::uint64_t{Load<std::uint32_t>(bytes)} << 32 | Load<std::uint32_t>(bytes, size - 4);
  }
  const auto at = [&](std::size_t i) {
    return static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i]));
  };
  return at(0) << 16 | at(size / 2) << 8 | at(size - 1);
}

Key KeyOf(std::string_view name) noexcept {
  const auto length = static_cast<std::uint32_t>(name.size());
  if (length <= sizeof(std::uint64_t)) return {WordOf(name), length};
  const auto mixed = [](std::uint64_t hash, std::uint64_t word) {
    hash = (hash ^ word) * kFactor;
    return (hash ^ hash >> 29) * kFactor;
  };
  std::uint64_t hash = length;
  const auto last = Load<std::uint64_t>(name, name.size() - 8);
  for (; name.size() > 8; name.remove_prefix(8)) hash = mixed(hash, Load<std::uint64_t>(name));
  return {mixed(hash, last), length};
}

// A place of the table.
struct Slot {
  std::uint64_t word;
  std::uint32_t length;  // 0: free
  std::uint32_t text;    // in Texts
  Key KeyOfName() const noexcept { return {word, length}; }
};

// A power of two of places, all of them free at first.
class Slots {
 public:
  // Throws std::bad_alloc.
  explicit Slots(std::size_t count) : mask_(count - 1), shift_(64 - std::countr_zero(count)) {
    const std::size_t bytes = count * sizeof(Slot);
    if (bytes < kLarge) {
      first_.reset(static_cast<Slot*>(std::calloc(count, sizeof(Slot))));
    } else {
      first_.reset(static_cast<Slot*>(ixomep::LargeBlocks::New(bytes)));
      if (first_) std::memset(static_cast<void*>(first_.get()), 0, bytes);
    }
    if (!first_) throw std::bad_alloc();
  }
  std::size_t Count() const noexcept { return mask_ + 1; }
  const Slot& operator[](std::size_t i) const noexcept { return first_.get()[i]; }
  // The place where the key's hash points, and those that follow it.
  Slot& From(const Key& key, std::size_t step) const noexcept {
    return first_.get()[(PlaceOf(key) + step) & mask_];
  }
  // Asks for the memory of the key's place.
  void Announce(const Key& key) const noexcept {
#if defined(__GNUC__)
    __builtin_prefetch(&From(key, 0), 1);
#else
    static_cast<void>(key);
#endif
  }

 private:
  static constexpr std::size_t kLarge = std::size_t{2} << 20;  // from here on of large pages
  std::size_t PlaceOf(const Key& key) const noexcept {
    std::uint64_t hash = (key.word ^ key.length * kFactor) * kFactor;
    hash = (hash ^ hash >> 32) * kFactor;
    return hash >> shift_;
  }

  struct Free {
    void operator()(Slot* slots) const noexcept { std::free(slots); }
  };
  std::unique_ptr<Slot, Free> first_;
  std::size_t mask_;
  int shift_;
};

// The copies of the names, each beginning at a word of a chunk: the word's number tells where.
class Texts {
 public:
  const char* At(std::uint32_t number) const noexcept {
    return chunks_[number >> kChunkBits].get() + (number & (kChunkWords - 1)) * 8;
  }

  // Throws std::bad_alloc.
  std::uint32_t Add(std::string_view name) {
    const std::size_t words = (name.size() + 8) / 8;
    std::uint32_t number = next_;
    if (words > kChunkWords / 4) {
      number = AddChunk(words);
    } else {
      if (words > left_) {
        next_ = number = AddChunk(kChunkWords);
        left_ = kChunkWords;
      }
      next_ += static_cast<std::uint32_t>(words);
      left_ -= words;
    }
    char* const text = chunks_[number >> kChunkBits].get() + (number & (kChunkWords - 1)) * 8;
    std::memcpy(text, name.data(), name.size());
    text[name.size()] = '\0';
    return number;
  }

 private:
  static constexpr int kChunkBits = 13;
  static constexpr std::size_t kChunkWords = std::size_t{1} << kChunkBits;
  static constexpr std::size_t kMaxChunks = std::size_t{1} << (32 - kChunkBits);

  std::uint32_t AddChunk(std::size_t words) {
    if (chunks_.size() == kMaxChunks) throw std::bad_alloc();
    chunks_.push_back(std::unique_ptr<char[]>(new char[words * 8]));
    return static_cast<std::uint32_t>((chunks_.size() - 1) << kChunkBits);
  }

  std::vector<std::unique_ptr<char[]>> chunks_;
  std::uint32_t next_ = 0;
  std::size_t left_ = 0;  // words of its chunk
};

}  // namespace

struct IxoMepStringAddressMap::Names {
  Names() : slots_(kFirstSlots) {}
  Names(const Names& other) : Names() {
    for (std::size_t i = 0; i < other.slots_.Count(); ++i) {
      const Slot& slot = other.slots_[i];
      if (slot.length != 0) Intern({other.texts_.At(slot.text), slot.length});
    }
    for (const auto& [name, number] : other.crowded_) Intern(name);
  }
  Names& operator=(const Names&) = delete;

  const char* Intern(std::string_view name) {
    const Key key = KeyOf(name);
    for (std::size_t i = 0; i < kReach; ++i) {
      Slot& slot = slots_.From(key, i);
      if (slot.length == 0) return Add(name, key, slot);
      if (slot.word == key.word && slot.length == key.length) {
        const char* const text = texts_.At(slot.text);
        if (key.length <= 8 || std::memcmp(text, name.data(), name.size()) == 0) return text;
      }
    }
    const auto found = crowded_.find(name);
    return found != crowded_.end() ? found->first.data() : AddCrowded(name);
  }

  bool IsLarge() const noexcept { return slots_.Count() >= kLargeSlots; }
  void Announce(std::string_view name) const noexcept { slots_.Announce(KeyOf(name)); }

 private:
  using Crowded = std::map<std::string_view, std::uint32_t>;  // the numbers of the texts

  static constexpr std::size_t kFirstSlots = 512;
  static constexpr std::size_t kLargeSlots = 32768;
  static constexpr std::size_t kReach = 16;  // places from where the hash points

  // The name is new and belongs into the free slot. A failed allocation leaves all names as they
  // were.
  const char* Add(std::string_view name, const Key& key, Slot& slot) {
    if (count_ * 2 >= slots_.Count()) {
      Grow();
      return Intern(name);
    }
    const std::uint32_t number = texts_.Add(name);
    slot = {key.word, key.length, number};
    ++count_;
    return texts_.At(number);
  }

  // The name is new and all its places are taken.
  const char* AddCrowded(std::string_view name) {
    const std::uint32_t number = texts_.Add(name);
    const char* const text = texts_.At(number);
    crowded_.emplace(std::string_view(text, name.size()), number);
    return text;
  }

  // Twice the places. A name of the ordered set gets one if it can: whoever meets a free place
  // knows that the set does not have the name.
  void Grow() {
    Slots larger(slots_.Count() * 2);
    Crowded crowded;
    std::size_t count = 0;
    const auto place = [&](const Slot& added) {
      for (std::size_t i = 0; i < kReach; ++i) {
        Slot& slot = larger.From(added.KeyOfName(), i);
        if (slot.length != 0) continue;
        slot = added;
        ++count;
        return;
      }
      crowded.emplace(std::string_view(texts_.At(added.text), added.length), added.text);
    };
    for (std::size_t i = 0; i < slots_.Count(); ++i) {
      if (slots_[i].length != 0) place(slots_[i]);
    }
    for (const auto& [name, number] : crowded_) {
      const Key key = KeyOf(name);
      place({key.word, key.length, number});
    }
    std::swap(slots_, larger);
    std::swap(crowded_, crowded);
    count_ = count;
  }

  Slots slots_;  // at most half of them taken
  std::size_t count_ = 0;
  Crowded crowded_;
  Texts texts_;
};

IxoMepStringAddressMap::IxoMepStringAddressMap() = default;

IxoMepStringAddressMap::IxoMepStringAddressMap(const IxoMepStringAddressMap& other)
    : names_(other.names_ != nullptr ? std::make_unique<Names>(*other.names_) : nullptr) {}

IxoMepStringAddressMap& IxoMepStringAddressMap::operator=(const IxoMepStringAddressMap& other) {
  if (this != &other) {
    IxoMepStringAddressMap copy(other);
    names_.swap(copy.names_);
  }
  return *this;
}

IxoMepStringAddressMap::~IxoMepStringAddressMap() = default;

// The map itself is never destroyed, only emptied when the library is unloaded: what still asks
// for a name in that late hour is answered.
IxoMepStringAddressMap& IxoMepStringAddressMap::Global() {
  alignas(Map) static unsigned char storage[sizeof(Map)];
  static Map* const map = new (storage) Map;
  static const struct Emptier {
    ~Emptier() { map->names_.reset(); }
  } emptier;
  return *map;
}

const char* IxoMepStringAddressMap::GetAddress(const String& name) { return Global().Intern(name); }

const char* IxoMepStringAddressMap::Intern(std::string_view name) {
  if (name.empty()) return nullptr;
  if (names_ == nullptr) names_ = std::make_unique<Names>();
  return names_->Intern(name);
}

bool IxoMepStringAddressMap::IsLarge() const noexcept {
  return names_ != nullptr && names_->IsLarge();
}

void IxoMepStringAddressMap::Announce(std::string_view name) const noexcept {
  if (names_ != nullptr) names_->Announce(name);
}

const char* const Map::IMEPSAM_COPY = GetAddress("copy");
const char* const Map::IMEPSAM_EMPTY = GetAddress("empty");
const char* const Map::IMEPSAM_ERASE = GetAddress("erase");
const char* const Map::IMEPSAM_ERASE_ALL_FROM = GetAddress("eraseAllFrom");
const char* const Map::IMEPSAM_INSERT = GetAddress("insert");
const char* const Map::IMEPSAM_INSERT_ALL_FROM = GetAddress("insertAllFrom");
const char* const Map::IMEPSAM_KEY = GetAddress("key");
const char* const Map::IMEPSAM_LAST_INDEX_OF = GetAddress("lastIndexOf");
const char* const Map::IMEPSAM_LENGTH = GetAddress("length");
const char* const Map::IMEPSAM_SORT = GetAddress("sort");
const char* const Map::IMEPSAM_TRIM = GetAddress("trim");
const char* const Map::IMEPSAM_WITHOUT = GetAddress("without");
