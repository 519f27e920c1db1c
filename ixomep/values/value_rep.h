// Internal: the counted storage of arrays and maps, and the door to a value's payload.
// Copies of arrays and maps share one storage until one of them is changed (copy on write).
// Shared is only what nobody outside can point into: a storage is pinned as soon as a pointer to
// an element is handed out through the public face, or an element comes from outside, and a
// pinned storage is copied, never shared. Neither is one that holds an expression or an object
// (copying those can be seen); `clean` remembers that a scan found none since the last change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "ixomep/values/element_list.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/text_index.h"
#include "ixomep/values/value.h"

namespace ixomep {

struct RepHeader {
  std::uint32_t sharers = 0;  // owners beyond the first, holds included
  std::uint32_t holds = 0;    // sharers that only keep it alive while it is worked on in place
  bool pinned = false;
  bool clean = false;
  std::size_t counted = 0;           // bytes beyond the block that the memory budget knows of
  RepHeader* next_doomed = nullptr;  // links storages that wait for their destruction

  bool IsShared() const noexcept { return sharers > holds; }
};

struct ListRep : RepHeader {
  ElementList items;  // owned; slots may be null only for a moment

  static void* operator new(std::size_t size);
  static void operator delete(void* block) noexcept;
};

struct MapRep : RepHeader {
  IxoMepValueMap items;  // keys and values owned
  // Where the entry with the number `cursor_index` is; kNoCursor after every change.
  static constexpr std::size_t kNoCursor = static_cast<std::size_t>(-1);
  std::size_t cursor_index = kNoCursor;
  IxoMepValueMap::const_iterator cursor;
  TextIndex index;

  static void* operator new(std::size_t size);
  static void operator delete(void* block) noexcept;
};

// What the sources of the engine may know of a value. Everything here is unchecked: the caller
// has looked at the type.
struct ValueAccess {
  static std::int32_t Integer(const IxoMepValue& v) noexcept { return v.payload_.integer; }
  // The number of a Real, Measure (tenths of a millimetre) or Time (seconds).
  static double Number(const IxoMepValue& v) noexcept { return v.payload_.real; }
  static const String& Text(const IxoMepValue& v) noexcept {
    return *std::launder(reinterpret_cast<const String*>(&v.payload_.text));
  }
  static String& Text(IxoMepValue& v) noexcept {
    return *std::launder(reinterpret_cast<String*>(&v.payload_.text));
  }
  static IxoMepValue* Target(const IxoMepValue& v) noexcept { return v.payload_.target; }
  static IxoMepExprNode* Lambda(const IxoMepValue& v) noexcept { return v.payload_.lambda; }
  static IxoMepObject* Object(const IxoMepValue& v) noexcept { return v.payload_.object; }
  static IxoMepExpressionParser* Expression(const IxoMepValue& v) noexcept {
    return v.payload_.expression;
  }
  // The payload as it stands, for results that travel in registers (../expr/program.h).
  static std::int64_t Bits(const IxoMepValue& v) noexcept { return v.payload_.bits; }
  static std::int64_t TakeBits(IxoMepValue& v) noexcept {
    v.type_ = IxoMepValueType::Undefined;
    return v.payload_.bits;
  }
  static IxoMepValue FromBits(IxoMepValueType type, std::int64_t bits) noexcept {
    IxoMepValue v;
    v.type_ = type;
    v.payload_.bits = bits;
    return v;
  }
  // The payload of a further value with the same text.
  static std::int64_t ShareText(const IxoMepValue& v) noexcept {
    IxoMepValue further;
    new (static_cast<void*>(&further.payload_.text)) String(Text(v));
    return further.payload_.bits;  // typed undefined, it owns nothing
  }
  // Read-only views; borrowed until the value changes.
  static const ElementList& Items(const IxoMepValue& v) noexcept { return List(v)->items; }
  static const IxoMepValueMap& Entries(const IxoMepValue& v) noexcept { return Map(v)->items; }
  // What GetText and GetStr give. Throw where those are empty for want of memory:
  // std::length_error for a text too long for a String, else std::bad_alloc.
  static String TextOf(const IxoMepValue& value, bool period = false);
  static String StrOf(const IxoMepValue& v);
  // Storage of its own for writing; unshares first. Does not pin: use it for the length of one
  // step, and make the new content before asking for the place, because copying the container in
  // between shares the storage that the place stands in.
  static ElementList& OwnItems(IxoMepValue& v);
  // For one that adds or removes entries; what only changes the values under keys uses the other.
  static IxoMepValueMap& OwnEntries(IxoMepValue& v);
  static IxoMepValueMap& OwnEntriesWithTheirKeys(IxoMepValue& v);
  // The element as a place to write to (unshared); null for an empty slot.
  static IxoMepValue* OwnElement(IxoMepValue& array, std::size_t index);
  // The entry as a place to write to; created undefined when absent and `create`, else null.
  static IxoMepValue* OwnEntry(IxoMepValue& map, const IxoMepValue& key, bool create);

  // Elements and entries to read; an empty slot reads as the shared undefined value.
  static std::size_t Count(const IxoMepValue& container) noexcept {  // array or map
    return container.type_ == IxoMepValueType::Array ? Items(container).size()
                                                     : Entries(container).size();
  }
  static bool HasElement(const IxoMepValue& array, long index) noexcept {
    return index >= 0 && static_cast<std::size_t>(index) < Count(array);
  }
  static const IxoMepValue& Element(const IxoMepValue& array, std::size_t index) noexcept {
    const IxoMepValue* const element = Items(array)[index];
    return element != nullptr ? *element : *IxoMepValue::GetNull();
  }
  // Null when there is no such key.
  static const IxoMepValue* FindEntry(const IxoMepValue& map, const IxoMepValue& key);
  static const IxoMepValueMap::value_type* Lookup(const IxoMepValue& map, const IxoMepValue& key);
  // The key with that number in map order; asking in order, up or down, is fast.
  static const IxoMepValue& KeyAt(const IxoMepValue& map, std::size_t index) noexcept;

  // The editing of arrays and maps without pinning: what goes in is the container's alone, and
  // nobody else may keep a pointer to it. The index of InsertOwned may equal the count.
  static void AppendOwned(IxoMepValue& array, ValuePtr value);
  static void Reserve(IxoMepValue& array, std::size_t count);
  static void InsertOwned(IxoMepValue& array, std::size_t index, ValuePtr value);
  static void EraseAt(IxoMepValue& array, std::size_t index);
  // The element taken out of the array; null for an empty slot.
  static ValuePtr TakeAt(IxoMepValue& array, std::size_t index);
  // False when there is no such key.
  static bool EraseKey(IxoMepValue& map, const IxoMepValue& key);
  // The slot under the key, created empty when absent.
  static IxoMepValue*& OwnEntrySlot(IxoMepValue& map, const IxoMepValue& key);
  // False, and both destroyed, when the map has the key already.
  static bool InsertEntry(IxoMepValue& map, ValuePtr key, ValuePtr value);

  // Arrays and maps from elements that were made for them (array and map literals). Of equal keys
  // the first stays, a last key without value is dropped. False, and nothing changed, for an
  // undefined key.
  static void MakeArray(IxoMepValue& out, OwnedList&& elements);
  static bool MakeMap(IxoMepValue& out, OwnedList&& pairs);
  // The same into a map that is there; undefined keys are taken as they come.
  static void AddPairs(IxoMepValue& map, OwnedList&& pairs);

  // Results, written into a value that may hold anything. Lambda, object and expression are taken
  // over with one counted reference of the caller.
  static void SetReference(IxoMepValue& v, IxoMepValue* target) noexcept {
    Release(v);
    v.type_ = IxoMepValueType::Reference;
    v.payload_.target = target;
  }
  static void SetLambda(IxoMepValue& v, IxoMepExprNode* lambda) noexcept {
    Release(v);
    v.type_ = IxoMepValueType::Lambda;
    v.payload_.lambda = lambda;
  }
  static void SetObject(IxoMepValue& v, IxoMepObject* object) noexcept {
    Release(v);
    v.type_ = IxoMepValueType::Object;
    v.payload_.object = object;
  }
  static void SetExpression(IxoMepValue& v, IxoMepExpressionParser* parser) noexcept {
    Release(v);
    v.type_ = IxoMepValueType::Expression;
    v.payload_.expression = parser;
  }
  static void SetInteger(IxoMepValue& v, std::int32_t n) noexcept {
    Release(v);
    v.type_ = IxoMepValueType::Integer;
    v.SetInteger(n);
  }
  // For Integer, Real, Measure and Time, over a value that owns nothing.
  static void SetScalar(IxoMepValue& v, IxoMepValueType type, std::int64_t bits) noexcept {
    v.type_ = type;
    v.payload_.bits = bits;
  }
  // For a Real. In place, where the number need not leave the machine's floating-point unit.
  static void AddToReal(IxoMepValue& v, double d) noexcept { v.payload_.real += d; }
  static void SetNumber(IxoMepValue& v, IxoMepValueType type, double d) noexcept {
    Release(v);
    v.type_ = type;
    v.payload_.real = d;
  }
  static void SetText(IxoMepValue& v, String text) noexcept {
    Release(v);
    v.type_ = IxoMepValueType::String;
    new (static_cast<void*>(&v.payload_.text)) String(std::move(text));
  }
  static void SetUndefined(IxoMepValue& v) noexcept {
    Release(v);
    v.type_ = IxoMepValueType::Undefined;
  }
  static void Release(IxoMepValue& v) noexcept {
    if (v.HasHeapPayload()) v.Discard();
    v.type_ = IxoMepValueType::Undefined;
  }
  // The end of a reference chain: a Reference only when the chain is a circle or ends in nothing.
  static const IxoMepValue& FollowReference(const IxoMepValue& v) noexcept;
  static const IxoMepValue& Follow(const IxoMepValue& v) noexcept {
    return v.type_ != IxoMepValueType::Reference ? v : FollowReference(v);
  }
  static IxoMepValue& Follow(IxoMepValue& v) noexcept {
    return const_cast<IxoMepValue&>(Follow(static_cast<const IxoMepValue&>(v)));
  }

  // Life of the containers' storage (value_rep.cpp, container_copy.cpp). `to` is undefined before.
  // A storage in which `avoid` stands is copied, never shared: `*element = container` must not
  // put a storage into itself.
  static void CopyContainer(IxoMepValue& to, const IxoMepValue& from,
                            const IxoMepValue* avoid = nullptr);
  // Swaps the container's shared storage for a copy of its own.
  static void Unshare(const IxoMepValue& container);
  // Everything but arrays and maps. `to` is undefined before.
  static void CopySimple(IxoMepValue& to, const IxoMepValue& from);
  // Makes an array or map of its own storage, empty; `to` is undefined before.
  static void MakeEmpty(IxoMepValue& to, IxoMepValueType type);
  // Gives the container a storage of its own and keeps it from being shared ever again, because a
  // pointer into it leaves the engine.
  static void Pin(const IxoMepValue& container);
  static ListRep* List(const IxoMepValue& v) noexcept { return v.payload_.list; }
  static MapRep* Map(const IxoMepValue& v) noexcept { return v.payload_.map; }
  static void SetList(IxoMepValue& v, ListRep* list) noexcept;
  static void SetMap(IxoMepValue& v, MapRep* map) noexcept;
  static void DropList(ListRep* list) noexcept;  // gives back one owner's share
  static void DropMap(MapRep* map) noexcept;
};

}  // namespace ixomep
