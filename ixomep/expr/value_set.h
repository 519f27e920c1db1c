// IxoMepValueSet: a variable scope. A small fixed hash table keyed by the interned address of the
// name, one entry a bucket and an ordered map for a bucket that receives a second name; lookups
// walk on through the parents. Operations called New... take an interned address, their Old...
// twins a text that they intern. Defined in value_set.cpp.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <type_traits>

#include "ixomep/export.h"
#include "ixomep/host/string.h"
#include "ixomep/values/value.h"

// Orders names by their address.
struct imepvs_ltptr {
  bool operator()(const char* a, const char* b) const noexcept {
    return std::less<const char*>()(a, b);
  }
};

using IxoMepValueSetMap = std::map<const char*, IxoMepValue*, imepvs_ltptr>;

class IXOMEP_API IxoMepValueSet {
 public:
  static constexpr std::uint32_t kBuckets = 31;

  // parent (may be null) must outlive this scope.
  explicit IxoMepValueSet(IxoMepValueSet* parent = nullptr) noexcept;
  IxoMepValueSet(const IxoMepValueSet&) = delete;
  IxoMepValueSet& operator=(const IxoMepValueSet&) = delete;
  ~IxoMepValueSet();

  void SetParent(IxoMepValueSet* parent) noexcept {
    parent_ = parent;
    ++changes_;
  }
  IxoMepValueSet* GetParent() const noexcept { return parent_; }

  // Found here or in an ancestor?
  bool NewIsContained(const char* name) const noexcept;
  bool OldIsContained(const String& name) const;
  // The value found here or in the nearest ancestor (borrowed); the shared null value when absent.
  IxoMepValue* NewGetValue(const char* name) const noexcept;
  IxoMepValue* OldGetValue(const String& name) const;
  // The same, but an absent name is created here, undefined. Borrowed.
  IxoMepValue* NewGetLValue(const char* name);
  IxoMepValue* OldGetLValue(const String& name);
  // Stores a copy. local: here only; else into the nearest scope that has the name, or here.
  void NewSetValue(const char* name, const IxoMepValue& value, bool local) {
    IxoMepValue* const own = FindInline(IndexOf(name), name);
    if (own != nullptr) {
      *own = value;
    } else {
      SetElsewhere(name, value, local);
    }
  }
  void OldSetValue(const String& name, const IxoMepValue& value, bool local);
  template <class P>
  requires std::is_pointer_v<P> && std::convertible_to<P, const IxoMepValue*>
  void NewSetValue(const char* name, P value, bool local) {
    NewSetValue(name, *static_cast<const IxoMepValue*>(value), local);
  }
  template <class P>
  requires std::is_pointer_v<P> && std::convertible_to<P, const IxoMepValue*>
  void OldSetValue(const String& name, P value, bool local) {
    OldSetValue(name, *static_cast<const IxoMepValue*>(value), local);
  }
  // The same, taking over value: it becomes the variable, or is assigned from and destroyed.
  void NewMoveValue(const char* name, IxoMepValue* value, bool local);
  void OldMoveValue(const String& name, IxoMepValue* value, bool local);
  // Copies of all variables (owned by the caller) inserted into vars; names already there stay.
  void GetAllVars(IxoMepValueSetMap& vars, bool withParents) const;
  // Replaces the variables by copies of other's own ones; the parent stays.
  void Assign(const IxoMepValueSet& other);
  void Clear() noexcept;

  // For the engine: the lookup (null when absent), the lookup that creates here, the insertion of
  // a name known to be absent here, the release of all values.
  IxoMepValue* _find(const char* name) const noexcept;
  IxoMepValue* _findCreate(const char* name);
  void _add(const char* name, IxoMepValue* value);
  void _deleteVals() noexcept;
  bool _isUsed(std::uint32_t bucket) const noexcept { return (used_ >> (bucket % 32) & 1u) != 0; }
  bool _isMulti(std::uint32_t bucket) const noexcept { return (multi_ >> (bucket % 32) & 1u) != 0; }
  // _find for a caller that knows IndexOf(name) already.
  IxoMepValue* FindInBucket(std::uint32_t bucket, const char* name) const noexcept {
    for (const IxoMepValueSet* scope = this; scope != nullptr; scope = scope->parent_) {
      if (IxoMepValue* const value = scope->FindHere(bucket, name)) return value;
    }
    return nullptr;
  }
  // The lookup in this scope alone; null when absent.
  IxoMepValue* FindHere(const char* name) const noexcept { return FindHere(IndexOf(name), name); }
  // Null also for a variable of this scope that shares its bucket with another.
  IxoMepValue* FindInline(std::uint32_t bucket, const char* name) const noexcept {
    return names_[bucket] == name ? values_[bucket].single : nullptr;
  }
  IxoMepValue* FindHere(std::uint32_t bucket, const char* name) const noexcept {
    if (IxoMepValue* const value = FindInline(bucket, name)) return value;
    return _isMulti(bucket) ? FindIn(*values_[bucket].several, name) : nullptr;
  }
  // Is it the value of a variable of this scope or of an ancestor?
  bool Owns(const IxoMepValue* value) const noexcept {
    bool found = false;
    for (const IxoMepValueSet* scope = this; scope != nullptr && !found; scope = scope->parent_) {
      scope->ForEach([&](const char*, const IxoMepValue& own) { found = found || &own == value; });
    }
    return found;
  }
  // Goes up whenever a variable is added to or removed from any scope, or a scope gets a parent:
  // while it stands still, what a lookup has found stays where it is.
  static std::uint64_t Changes() noexcept { return changes_; }
  // Variables added since the scope was last emptied.
  std::uint32_t Count() const noexcept { return count_; }

  static std::uint32_t BucketOf(const char* name) noexcept {
    return static_cast<std::uint32_t>(reinterpret_cast<std::int64_t>(name) %
                                      std::int64_t{kBuckets});
  }
  // BucketOf within 0 to 30, also for an address with its top bit set, whose remainder is negative.
  static std::uint32_t IndexOf(const char* name) noexcept {
    const auto address = reinterpret_cast<std::uintptr_t>(name);
    constexpr std::uintptr_t kTopBit = ~(~std::uintptr_t{0} >> 1);
    if ((address & kTopBit) == 0) return static_cast<std::uint32_t>(address % kBuckets);
    return BucketOf(name) % kBuckets;
  }

 private:
  // NewSetValue for a name that is not inline in this scope.
  void SetElsewhere(const char* name, const IxoMepValue& value, bool local);

  // The masks say which member counts: single for a used bucket, several for a multi bucket.
  union Slot {
    IxoMepValue* single;
    IxoMepValueSetMap* several;
  };

  static IxoMepValue* FindIn(const IxoMepValueSetMap& variables, const char* name) noexcept {
    const auto found = variables.find(name);
    return found != variables.end() ? found->second : nullptr;
  }

  // This scope's own variables, bucket by bucket, those of a multi bucket by address.
  template <class Use>
  void ForEach(Use use) const {
    for (std::uint32_t bucket = 0; bucket < kBuckets; ++bucket) {
      if (!_isUsed(bucket)) continue;
      if (!_isMulti(bucket)) {
        use(names_[bucket], *values_[bucket].single);
        continue;
      }
      for (const auto& [name, value] : *values_[bucket].several) use(name, *value);
    }
  }

  // Stands for the name of a bucket without an inline variable, so that a lookup is one comparison.
  // No interned text and not null, which a caller may ask for.
  static const char* NoName() noexcept { return &no_name_; }
  static const char no_name_;
  static std::uint64_t changes_;

  IxoMepValueSet* parent_;
  std::uint32_t count_ = 0;
  std::array<const char*, kBuckets> names_;
  std::array<Slot, kBuckets> values_;
  std::uint32_t used_ = 0;
  std::uint32_t multi_ = 0;
  IxoMepValue* first_value_ = nullptr;
};
