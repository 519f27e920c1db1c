// Interning. The texts are kept in a hash table of views, each over a copy of its own that never
// moves; their order shows nowhere, so that they need not be kept in it.
#include "ixomep/values/string_address_map.h"

#include <cstring>
#include <new>
#include <unordered_set>

using Map = IxoMepStringAddressMap;

struct IxoMepStringAddressMap::Names {
  Names() = default;
  Names(const Names& other) : Names() {
    for (const std::string_view name : other.set) Add(name);
  }
  Names& operator=(const Names&) = delete;
  ~Names() {
    for (const std::string_view name : set) delete[] name.data();
  }

  const char* Add(std::string_view name) {
    std::unique_ptr<char[]> copy(new char[name.size() + 1]);
    std::memcpy(copy.get(), name.data(), name.size());
    copy[name.size()] = '\0';
    set.emplace(copy.get(), name.size());
    return copy.release();
  }

  std::unordered_set<std::string_view> set;
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
  const auto found = names_->set.find(name);
  return found != names_->set.end() ? found->data() : names_->Add(name);
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
