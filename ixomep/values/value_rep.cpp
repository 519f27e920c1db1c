// The storage of arrays and maps: reading it, editing it without pinning, and its owners. When a
// storage is shared and when it is copied is decided in container_copy.cpp; it is destroyed in
// teardown.cpp.
#include "ixomep/values/value_rep.h"

#include <algorithm>

#include "ixomep/host/memory_budget.h"
#include "ixomep/values/free_list.h"
#include "ixomep/values/teardown.h"

namespace ixomep {

namespace {

using ListBlocks = FreeList<ListRep, sizeof(ListRep)>;
using MapBlocks = FreeList<MapRep, sizeof(MapRep)>;

// A tree node: three links, a colour, key and value, and the heap's own head.
constexpr std::size_t kEntryBytes = 64;
constexpr std::size_t kFirstCapacity = 4;

// Tells the memory budget that the storage holds that many bytes now.
void CountBytes(RepHeader& rep, std::size_t bytes) {
  if (bytes > rep.counted) MemoryBudget::Take(bytes - rep.counted);
  if (bytes < rep.counted) MemoryBudget::Give(rep.counted - bytes);
  rep.counted = bytes;
}

// Leaves so many free slots in front. Counts the room before it is asked for.
void Arrange(ListRep& rep, std::size_t front, std::size_t capacity) {
  CountBytes(rep, std::max(capacity, rep.items.Capacity()) * sizeof(IxoMepValue*));
  rep.items.MoveTo(front, capacity);
}

// Makes room for one more element behind. All elements are moved when half as many as there are
// can be added before they are moved again, so that a step takes constant time on the average.
void GrowBehind(ListRep& rep) {
  if (rep.items.HasRoomBehind()) return;
  const std::size_t count = rep.items.size();
  const bool has_room = rep.items.Capacity() - count >= std::max(kFirstCapacity, count / 2);
  Arrange(rep, 0, has_room ? rep.items.Capacity() : std::max(kFirstCapacity, count * 2));
}

// The same in front; half of the room stays behind.
void GrowInFront(ListRep& rep) {
  if (rep.items.HasRoomInFront()) return;
  const std::size_t count = rep.items.size();
  std::size_t capacity = rep.items.Capacity();
  if (capacity - count < std::max(kFirstCapacity, count / 2)) {
    capacity = count + std::max(kFirstCapacity, count);
  }
  Arrange(rep, (capacity - count) / 2, capacity);
}

// Whether a change at that index moves the elements in front of it, which are fewer. A pinned
// storage does as a vector would: somebody may know a slot in front of the change.
bool MovesFront(const ListRep& rep, std::size_t index) noexcept {
  return !rep.pinned && index < rep.items.size() / 2;
}

const IxoMepValue& OrNull(const IxoMepValue* value) noexcept {
  return value != nullptr ? *value : *IxoMepValue::GetNull();
}

}  // namespace

void* ListRep::operator new(std::size_t) { return ListBlocks::Take(); }
void ListRep::operator delete(void* block) noexcept { ListBlocks::Give(block); }
void* MapRep::operator new(std::size_t) { return MapBlocks::Take(); }
void MapRep::operator delete(void* block) noexcept { MapBlocks::Give(block); }

// --- Reading ------------------------------------------------------------------------------------

// Inlined where it is asked most.
[[gnu::always_inline]] inline const IxoMepValueMap::value_type* ValueAccess::Lookup(
    const IxoMepValue& map, const IxoMepValue& key) {
  MapRep& rep = *Map(map);
  if (key.type_ == IxoMepValueType::String && rep.index.IsReady(rep.items)) {
    return rep.index.Find(Text(key).view());
  }
  const auto entry = rep.items.find(&key);
  return entry == rep.items.end() ? nullptr : &*entry;
}

const IxoMepValue* ValueAccess::FindEntry(const IxoMepValue& map, const IxoMepValue& key) {
  const IxoMepValueMap::value_type* const entry = Lookup(map, key);
  return entry == nullptr ? nullptr : &OrNull(entry->second);
}

const IxoMepValue& ValueAccess::KeyAt(const IxoMepValue& map, std::size_t index) noexcept {
  MapRep& rep = *Map(map);
  if (rep.cursor_index == MapRep::kNoCursor || index < rep.cursor_index / 2) {
    rep.cursor = rep.items.cbegin();
    rep.cursor_index = 0;
  }
  for (; rep.cursor_index < index; ++rep.cursor_index) ++rep.cursor;
  for (; rep.cursor_index > index; --rep.cursor_index) --rep.cursor;
  return OrNull(rep.cursor->first);
}

const IxoMepValue& ValueAccess::FollowReference(const IxoMepValue& v) noexcept {
  const IxoMepValue* value = &v;
  const IxoMepValue* behind = &v;  // runs half as fast: a circle makes the two meet
  for (bool odd = false; value->type_ == IxoMepValueType::Reference; odd = !odd) {
    if (value->payload_.target == nullptr) return *value;
    value = value->payload_.target;
    if (odd) behind = behind->payload_.target;
    if (value == behind) return *value;
  }
  return *value;
}

// --- Writing ------------------------------------------------------------------------------------

ElementList& ValueAccess::OwnItems(IxoMepValue& v) {
  if (List(v)->IsShared()) Unshare(v);
  ListRep& rep = *List(v);
  rep.clean = false;
  return rep.items;
}

IxoMepValueMap& ValueAccess::OwnEntries(IxoMepValue& v) {
  IxoMepValueMap& entries = OwnEntriesWithTheirKeys(v);
  MapRep& rep = *Map(v);
  rep.cursor_index = MapRep::kNoCursor;
  rep.index.Drop();
  return entries;
}

IxoMepValueMap& ValueAccess::OwnEntriesWithTheirKeys(IxoMepValue& v) {
  if (Map(v)->IsShared()) Unshare(v);
  MapRep& rep = *Map(v);
  rep.clean = false;
  return rep.items;
}

IxoMepValue* ValueAccess::OwnElement(IxoMepValue& array, std::size_t index) {
  return OwnItems(array)[index];
}

IxoMepValue* ValueAccess::OwnEntry(IxoMepValue& map, const IxoMepValue& key, bool create) {
  const bool absent = FindEntry(map, key) == nullptr;
  if (absent && !create) return nullptr;
  // A new value comes before a new entry, which must not stay without one.
  ValuePtr content = absent ? MakeValue() : nullptr;
  IxoMepValue*& slot = OwnEntrySlot(map, key);
  if (slot == nullptr) slot = content != nullptr ? content.release() : new IxoMepValue;
  return slot;
}

IxoMepValue*& ValueAccess::OwnEntrySlot(IxoMepValue& map, const IxoMepValue& key) {
  OwnEntriesWithTheirKeys(map);
  if (const TextIndex::Entry* const entry = Lookup(map, key)) {
    return const_cast<TextIndex::Entry*>(entry)->second;
  }
  ValuePtr own_key = MakeValue(key);  // before the entries are taken: it may be this map
  IxoMepValueMap& entries = OwnEntries(map);
  CountBytes(*Map(map), (entries.size() + 1) * kEntryBytes);
  const auto [place, inserted] = entries.emplace(own_key.get(), nullptr);
  if (inserted) static_cast<void>(own_key.release());
  return place->second;
}

void ValueAccess::AppendOwned(IxoMepValue& array, ValuePtr value) {
  ElementList& items = OwnItems(array);
  GrowBehind(*List(array));
  items.Append(value.release());
}

void ValueAccess::Reserve(IxoMepValue& array, std::size_t count) {
  OwnItems(array);
  if (count > Items(array).Capacity()) Arrange(*List(array), 0, count);
}

void ValueAccess::InsertOwned(IxoMepValue& array, std::size_t index, ValuePtr value) {
  ElementList& items = OwnItems(array);
  index = std::min(index, items.size());
  if (MovesFront(*List(array), index)) {
    GrowInFront(*List(array));
    items.InsertMovingFront(index, value.release());
  } else {
    GrowBehind(*List(array));
    items.InsertMovingBack(index, value.release());
  }
}

ValuePtr ValueAccess::TakeAt(IxoMepValue& array, std::size_t index) {
  ElementList& items = OwnItems(array);
  const bool moves_front = MovesFront(*List(array), index);
  return ValuePtr(moves_front ? items.TakeMovingFront(index) : items.TakeMovingBack(index));
}

void ValueAccess::EraseAt(IxoMepValue& array, std::size_t index) { TakeAt(array, index); }

bool ValueAccess::EraseKey(IxoMepValue& map, const IxoMepValue& key) {
  if (FindEntry(map, key) == nullptr) return false;
  IxoMepValueMap& entries = OwnEntries(map);
  const auto entry = entries.find(&key);
  if (entry == entries.end()) return false;
  const ValuePtr old_key(const_cast<IxoMepValue*>(entry->first));
  const ValuePtr old_value(entry->second);
  entries.erase(entry);
  CountBytes(*Map(map), entries.size() * kEntryBytes);
  return true;
}

bool ValueAccess::InsertEntry(IxoMepValue& map, ValuePtr key, ValuePtr value) {
  IxoMepValueMap& entries = OwnEntries(map);
  CountBytes(*Map(map), (entries.size() + 1) * kEntryBytes);
  if (!entries.emplace(key.get(), value.get()).second) return false;
  static_cast<void>(key.release());
  static_cast<void>(value.release());
  return true;
}

void ValueAccess::MakeArray(IxoMepValue& out, OwnedList&& elements) {
  IxoMepValue array;
  MakeEmpty(array, IxoMepValueType::Array);
  ListRep& rep = *List(array);
  CountBytes(rep, elements.View().capacity() * sizeof(IxoMepValue*));
  rep.items.Assign(elements.Release());
  out = std::move(array);
}

bool ValueAccess::MakeMap(IxoMepValue& out, OwnedList&& pairs) {
  const IxoMepValueList& list = pairs.View();
  for (std::size_t i = 0; i + 1 < list.size(); i += 2) {
    if (OrNull(list[i]).GetType() == IxoMepValueType::Undefined) return false;
  }
  IxoMepValue map;
  MakeEmpty(map, IxoMepValueType::Map);
  AddPairs(map, std::move(pairs));
  out = std::move(map);
  return true;
}

void ValueAccess::AddPairs(IxoMepValue& map, OwnedList&& pairs) {
  IxoMepValueList& list = pairs.View();
  for (std::size_t i = 0; i + 1 < list.size(); i += 2) {
    ValuePtr key(std::exchange(list[i], nullptr));
    ValuePtr value(std::exchange(list[i + 1], nullptr));
    if (key != nullptr) InsertEntry(map, std::move(key), std::move(value));
  }
}

// --- Owners -------------------------------------------------------------------------------------

void ValueAccess::MakeEmpty(IxoMepValue& to, IxoMepValueType type) {
  if (type == IxoMepValueType::Array) {
    SetList(to, new ListRep);
  } else {
    SetMap(to, new MapRep);
  }
}

void ValueAccess::SetList(IxoMepValue& v, ListRep* list) noexcept {
  v.type_ = IxoMepValueType::Array;
  v.payload_.list = list;
}

void ValueAccess::SetMap(IxoMepValue& v, MapRep* map) noexcept {
  v.type_ = IxoMepValueType::Map;
  v.payload_.map = map;
}

void ValueAccess::DropList(ListRep* list) noexcept {
  if (list->sharers == 0) {
    Teardown::OfList(list);
  } else {
    --list->sharers;
  }
}

void ValueAccess::DropMap(MapRep* map) noexcept {
  if (map->sharers == 0) {
    Teardown::OfMap(map);
  } else {
    --map->sharers;
  }
}

void ValueAccess::Pin(const IxoMepValue& container) {
  RepHeader* rep = nullptr;
  if (container.type_ == IxoMepValueType::Array) {
    if (List(container)->IsShared()) Unshare(container);
    rep = List(container);
  } else {
    if (Map(container)->IsShared()) Unshare(container);
    rep = Map(container);
  }
  rep->pinned = true;
  rep->clean = false;
}

}  // namespace ixomep
