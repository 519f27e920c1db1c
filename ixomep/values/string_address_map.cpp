// Interning. Every name is copied into a chunk of memory that never moves and found again through a
// hash table, in which a name stands within a few places of where its hash points. Texts may be
// written to have equal hashes: what finds no place there goes into an ordered set, so that no
// name is slow to find. The order of the names shows nowhere.
#include "ixomep/values/string_address_map.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <set>
#include <vector>

using Map = IxoMepStringAddressMap;

struct IxoMepStringAddressMap::Names {
  Names() : slots_(kFirstSlots) {}
  Names(const Names& other) : Names() {
    for (const Slot& slot : other.slots_) {
      if (slot.text != nullptr) Intern(slot.View());
    }
    for (const std::string_view name : other.crowded_) Intern(name);
  }
  Names& operator=(const Names&) = delete;

  const char* Intern(std::string_view name) {
    const Key key = KeyOf(name);
    for (std::size_t i = 0; i < kReach; ++i) {
      const Slot& slot = SlotAt(slots_, key.hash, i);
      if (slot.text == nullptr) break;
      if (slot.Holds(key, name)) return slot.text;
    }
    if (!crowded_.empty()) {
      const auto found = crowded_.find(name);
      if (found != crowded_.end()) return found->data();
    }
    return Add(name, key);
  }

 private:
  static constexpr std::size_t kFirstSlots = 512;
  static constexpr std::size_t kReach = 16;  // places from where the hash points
  static constexpr std::size_t kChunkBytes = 16 * 1024;

  // What a name is compared by: all of a name of up to eight bytes is in its last word.
  struct Key {
    std::uint64_t word;
    std::uint32_t hash;
    std::uint32_t length;
  };

  static Key KeyOf(std::string_view name) noexcept {
    constexpr std::uint64_t kFactor = 0x9e3779b97f4a7c15u;
    const auto mixed = [](std::uint64_t hash, std::uint64_t word) {
      hash = (hash ^ word) * kFactor;
      return (hash ^ hash >> 29) * kFactor;
    };
    const auto length = static_cast<std::uint32_t>(name.size());
    std::uint64_t hash = length * kFactor;
    for (; name.size() > 8; name.remove_prefix(8)) hash = mixed(hash, Load<std::uint64_t>(name));
    const std::uint64_t word = LastWord(name);
    hash = mixed(hash, word);
    return {word, static_cast<std::uint32_t>(hash ^ hash >> 32), length};
  }
  template <class Word>
  static Word Load(std::string_view bytes, std::size_t from = 0) noexcept {
    Word word;
    std::memcpy(&word, bytes.data() + from, sizeof word);
    return word;
  }
  // One to eight bytes; different for different bytes of one length.
  static std::uint64_t LastWord(std::string_view bytes) noexcept {
    const std::size_t size = bytes.size();
    if (size == 8) return Load<std::uint64_t>(bytes);
    if (size >= 4) {
      return std::uint64_t{Load<std::uint32_t>(bytes)} << 32 | Load<std::uint32_t>(bytes, size - 4);
    }
    const auto at = [&](std::size_t i) {
      return static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i]));
    };
    return at(0) << 16 | at(size / 2) << 8 | at(size - 1);
  }

  struct Slot {
    const char* text = nullptr;
    Key key = {};
    std::string_view View() const { return {text, key.length}; }
    bool Holds(const Key& other, std::string_view name) const noexcept {
      return key.word == other.word && key.length == other.length &&
             (key.length <= 8 || (key.hash == other.hash && View() == name));
    }
  };
  using Slots = std::vector<Slot>;  // a power of two of them

  static Slot& SlotAt(Slots& table, std::uint32_t hash, std::size_t step) {
    return table[(hash + step) & (table.size() - 1)];
  }

  // The name is new. A failed allocation leaves all names as they were.
  const char* Add(std::string_view name, const Key& key) {
    if (count_ * 2 >= slots_.size()) Grow();
    const Slot added{NewText(name), key};
    if (!Place(slots_, added)) crowded_.insert(added.View());
    ++count_;
    return added.text;
  }

  static bool Place(Slots& table, const Slot& added) noexcept {
    for (std::size_t i = 0; i < kReach; ++i) {
      Slot& slot = SlotAt(table, added.key.hash, i);
      if (slot.text != nullptr) continue;
      slot = added;
      return true;
    }
    return false;
  }

  // Twice the places. Names of the ordered set stay there.
  void Grow() {
    Slots larger(slots_.size() * 2);
    for (const Slot& slot : slots_) {
      if (slot.text != nullptr && !Place(larger, slot)) crowded_.insert(slot.View());
    }
    slots_.swap(larger);
  }

  char* NewText(std::string_view name) {
    const std::size_t bytes = name.size() + 1;
    char* text = free_;
    if (bytes > kChunkBytes / 4) {
      chunks_.push_back(std::unique_ptr<char[]>(new char[bytes]));
      text = chunks_.back().get();
    } else {
      if (bytes > left_) {
        chunks_.push_back(std::unique_ptr<char[]>(new char[kChunkBytes]));
        free_ = text = chunks_.back().get();
        left_ = kChunkBytes;
      }
      free_ += bytes;
      left_ -= bytes;
    }
    std::memcpy(text, name.data(), name.size());
    text[name.size()] = '\0';
    return text;
  }

  Slots slots_;  // at most half of them taken
  std::size_t count_ = 0;
  std::set<std::string_view> crowded_;
  std::vector<std::unique_ptr<char[]>> chunks_;
  char* free_ = nullptr;  // in the last chunk
  std::size_t left_ = 0;
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
