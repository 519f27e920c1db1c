// Copying of arrays and maps, however deep, without recursion: a scan finds out which storages
// may be shared, then those that may not are copied, depth first and in order.
#include <limits>
#include <optional>
#include <vector>

#include "ixomep/values/value_rep.h"

namespace ixomep {

namespace {

bool IsContainer(const IxoMepValue& value) noexcept {
  return value.GetType() == IxoMepValueType::Array || value.GetType() == IxoMepValueType::Map;
}

RepHeader& HeaderOf(const IxoMepValue& container) noexcept {
  if (container.GetType() == IxoMepValueType::Array) return *ValueAccess::List(container);
  return *ValueAccess::Map(container);
}

bool MayBeShared(const RepHeader& rep) noexcept {
  return rep.clean && !rep.pinned && rep.holds == 0 &&
         rep.sharers < std::numeric_limits<std::uint32_t>::max();
}

// Walks the slots of one storage: elements, or the value and the key of entry after entry, which
// is the order of copying.
class SlotCursor {
 public:
  explicit SlotCursor(const IxoMepValue& container)
      : list_(container.GetType() == IxoMepValueType::Array ? &ValueAccess::Items(container)
                                                            : nullptr) {
    if (list_ != nullptr) return;
    entry_ = ValueAccess::Entries(container).begin();
    end_ = ValueAccess::Entries(container).end();
  }

  bool IsList() const noexcept { return list_ != nullptr; }
  bool AtEnd() const noexcept { return IsList() ? index_ == list_->size() : entry_ == end_; }
  bool AtKey() const noexcept { return at_key_; }
  const IxoMepValue* Slot() const noexcept {
    if (IsList()) return (*list_)[index_];
    return at_key_ ? entry_->first : entry_->second;
  }
  void Advance() noexcept {
    if (IsList()) {
      ++index_;
      return;
    }
    if (at_key_) ++entry_;
    at_key_ = !at_key_;
  }

 private:
  const ElementList* list_;
  std::size_t index_ = 0;
  IxoMepValueMap::const_iterator entry_, end_;
  bool at_key_ = false;
};

// Finds out of every storage below `root` whether it is clean and notes it there. Storages that
// are clean already are not entered: every change on the way to them would have cleared the note.
class CleanScan {
 public:
  CleanScan(const IxoMepValue& root, const IxoMepValue* avoid) : avoid_(avoid) {
    Enter(root);
    while (!open_.empty()) Step();
  }

 private:
  struct Open {
    RepHeader* rep;
    SlotCursor cursor;
    bool clean;
  };

  void Enter(const IxoMepValue& container) {
    RepHeader& rep = HeaderOf(container);
    open_.push_back({&rep, SlotCursor(container), !rep.pinned && rep.holds == 0});
  }

  void Step() {
    Open& top = open_.back();
    for (; !top.cursor.AtEnd(); top.cursor.Advance()) {
      const IxoMepValue* const value = top.cursor.Slot();
      if (value == nullptr) continue;
      if (value == avoid_) top.clean = false;
      if (IsContainer(*value) && !MayBeShared(HeaderOf(*value))) {
        top.cursor.Advance();
        Enter(*value);
        return;
      }
      if (value->GetType() == IxoMepValueType::Expression ||
          value->GetType() == IxoMepValueType::Object) {
        top.clean = false;
      }
    }
    const bool clean = top.clean;
    top.rep->clean = clean;
    open_.pop_back();
    if (!clean && !open_.empty()) open_.back().clean = false;
  }

  const IxoMepValue* avoid_;
  std::vector<Open> open_;
};

// Copies storages slot by slot; what a scan found clean is shared.
class DeepCopy {
 public:
  // `to` is undefined; from's own storage is copied in any case.
  DeepCopy(IxoMepValue& to, const IxoMepValue& from) {
    Enter(to, from);
    while (!open_.empty()) Step();
  }

 private:
  struct Open {
    IxoMepValue* to;
    SlotCursor cursor;
    ValuePtr value;  // of the entry whose key is still to be copied
    ValuePtr key;
    bool has_slot =
        false;  // the slot under the cursor is copied; its storage may have been entered
  };

  void Enter(IxoMepValue& to, const IxoMepValue& from) {
    ValueAccess::MakeEmpty(to, from.GetType());
    if (from.GetType() == IxoMepValueType::Array) {
      ValueAccess::Reserve(to, ValueAccess::Count(from));
    }
    open_.push_back({&to, SlotCursor(from), nullptr, nullptr});
  }

  void Step() {
    while (!open_.back().cursor.AtEnd()) {
      Open& top = open_.back();
      if (!top.has_slot) {
        top.has_slot = true;
        if (StartSlot(top)) return;
      }
      FinishSlot(top);
    }
    open_.pop_back();
  }

  // Copies the slot under the cursor; true when a storage was entered that must be copied first.
  bool StartSlot(Open& top) {
    const IxoMepValue* const from = top.cursor.Slot();
    IxoMepValue* to = nullptr;
    if (from != nullptr) to = new IxoMepValue;
    if (top.cursor.IsList()) {
      ValueAccess::AppendOwned(*top.to, ValuePtr(to));
    } else {
      (top.cursor.AtKey() ? top.key : top.value).reset(to);
    }
    if (from == nullptr) return false;
    if (!IsContainer(*from)) {
      ValueAccess::CopySimple(*to, *from);
      return false;
    }
    if (MayBeShared(HeaderOf(*from))) {
      ValueAccess::CopyContainer(*to, *from);
      return false;
    }
    Enter(*to, *from);
    return true;
  }

  static void FinishSlot(Open& top) {
    if (top.cursor.AtKey()) {
      ValueAccess::InsertEntry(*top.to, std::move(top.key), std::move(top.value));
    }
    top.cursor.Advance();
    top.has_slot = false;
  }

  std::vector<Open> open_;
};

}  // namespace

void ValueAccess::CopyContainer(IxoMepValue& to, const IxoMepValue& from,
                                const IxoMepValue* avoid) {
  if (!MayBeShared(HeaderOf(from))) CleanScan(from, avoid);
  if (!MayBeShared(HeaderOf(from))) {
    DeepCopy(to, from);
    return;
  }
  ++HeaderOf(from).sharers;
  if (from.type_ == IxoMepValueType::Array) {
    SetList(to, List(from));
  } else {
    SetMap(to, Map(from));
  }
}

void ValueAccess::Unshare(const IxoMepValue& container) {
  IxoMepValue own;
  DeepCopy(own, container);
  std::swap(own.payload_, container.payload_);
}

}  // namespace ixomep
