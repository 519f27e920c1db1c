// The quick reading: runs of plain items, which are most of a text: an option, an element or an
// attribute with a name that was met before, and a string or number behind it. They are read in one
// loop in which next to nothing depends on what a byte is but the kind of the item and of its
// value: a processor that guesses wrong there loses more than all the rest takes. Whatever is not
// plain ends the run and is looked at byte by byte (document_scanner.cpp).
#include <algorithm>
#include <array>
#include <bit>
#include <string_view>

#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/document_scanner.h"

// One function with its callers: what it returns stays in a register.
#define IXOMEP_FUSED [[gnu::always_inline]] inline

namespace ixomep {
namespace {

// Parts of work are counted for a whole run, by its bytes.
constexpr std::ptrdiff_t kMostRun = 8192;
constexpr std::int32_t kBytesOfItem = 16;

constexpr std::uint32_t kMostGap = ByteRun::kSize;
constexpr std::ptrdiff_t kMostDistance = 96;  // to a value

// A wrong guess at the next item costs as much as two right ones save. When the credit of those is
// used up no guess is made for a while.
constexpr std::int32_t kWrongGuess = 2;
constexpr std::int32_t kMostCredit = 24;
constexpr std::int32_t kItemsWithoutGuess = 64;

std::uint32_t RunLength(std::uint32_t mask) noexcept {
  return static_cast<std::uint32_t>(std::countr_one(mask));
}

// Whether two stretches of at most two blocks are the same; so many bytes may be read of both.
bool IsSame(const char* a, const char* b, std::uint32_t size) noexcept {
  const std::uint32_t first = ByteRun(a).Same(ByteRun(b));
  if (size <= ByteRun::kSize) return (~first & ((std::uint32_t{1} << size) - 1)) == 0;
  const std::uint64_t rest = ByteRun(a + ByteRun::kSize).Same(ByteRun(b + ByteRun::kSize));
  const std::uint64_t wanted = (std::uint64_t{1} << size) - 1;
  return (~(first | rest << ByteRun::kSize) & wanted) == 0;
}

// What may stand behind the digits of a number. A unit is found by the low bits of its first letter
// and by whether it has a second one: no two of them share these.
struct Unit {
  std::uint32_t letters = 0xFFFFFFFF;  // two at most; these are none
  LiteralKind kind = LiteralKind::Integer;
};
constexpr std::size_t UnitSlot(std::uint32_t letters, std::uint32_t length) noexcept {
  return (letters & 15) | (length & 2) << 3;
}
constexpr std::array<Unit, 32> kUnits = [] {
  std::array<Unit, 32> units{};
  const auto set = [&units](std::string_view letters, LiteralKind kind) {
    std::uint32_t bytes = 0;
    for (std::size_t i = 0; i < letters.size(); ++i) {
      bytes |= static_cast<std::uint32_t>(letters[i]) << (8 * i);
    }
    units[UnitSlot(bytes, static_cast<std::uint32_t>(letters.size()))] = {bytes, kind};
  };
  set("", LiteralKind::Integer);
  set("m", LiteralKind::Measure);
  set("mm", LiteralKind::Measure);
  set("cm", LiteralKind::Measure);
  set("pt", LiteralKind::Measure);
  set("s", LiteralKind::Time);
  return units;
}();
constexpr std::array<std::uint32_t, 3> kUnitBytes = {0, 0xFF, 0xFFFF};

}  // namespace

// --- Strings and plain numbers ------------------------------------------------------------------

IXOMEP_FUSED bool DocumentScanner::ReadString(const char*& at,
                                              LiteralRecord& literal) const noexcept {
  const char* const first = at + 1;
  LiteralKind kind = LiteralKind::String;
  const char* end = FindQuote(first);
  while (*end == '\\') {
    kind = LiteralKind::Escaped;
    if (end_ - end < 2) return false;
    end = FindQuote(end + 2);
  }
  const auto size = static_cast<std::size_t>(end - first);
  if (end == end_ || size > LiteralRecord::kMostBytes) return false;
  literal.Set(kind, OffsetOf(first), size);
  at = end + 1;
  return true;
}

// Digits with a fraction and a unit, or without them, that stand in one block with what follows.
// Where the number ends is found in one step, because all that comes behind it waits for that; that
// it is one is checked meanwhile.
IXOMEP_FUSED bool DocumentScanner::ReadPlainNumber(const char*& at,
                                                   LiteralRecord& literal) const noexcept {
  const char* const start = at;
  if (start >= block_end_) return false;
  const ByteRun run(start);
  const std::uint32_t size = RunLength(run.InNumber());
  const char* const end = start + size;

  const std::uint32_t others = ~run.Digits();
  const auto whole = static_cast<std::uint32_t>(std::countr_zero(others));
  const bool has_point = start[whole] == '.';
  const auto number =
      static_cast<std::uint32_t>(std::countr_zero(has_point ? others & (others - 1) : others));
  const std::uint32_t letters = size - number;
  if (whole - 1 >= kExactDigits || number - whole == 1 || letters > 2) return false;
  const std::uint32_t bytes = (static_cast<unsigned char>(start[number]) |
                               std::uint32_t{static_cast<unsigned char>(start[number + 1])} << 8) &
                              kUnitBytes[letters];
  const Unit& unit = kUnits[UnitSlot(bytes, letters)];
  if (unit.letters != bytes || size == ByteRun::kSize || !EndsAt(end)) return false;
  const bool is_real = has_point && letters == 0;
  literal.Set(is_real ? LiteralKind::Real : unit.kind, OffsetOf(start), size);
  at = end;
  return true;
}

// A string or plain number; false, and nothing is changed, when something else stands there.
IXOMEP_FUSED bool DocumentScanner::ReadPlainLiteral(const char*& at,
                                                    LiteralRecord& literal) const noexcept {
  return *at == '"' ? ReadString(at, literal) : ReadPlainNumber(at, literal);
}

bool DocumentScanner::ReadLiteral(LiteralRecord& literal, std::uint32_t start) {
  if (ReadPlainLiteral(at_, literal)) return true;
  if (*at_ == '(' || *at_ == '{') return ReadExpression(literal, start);
  return *at_ != '"' && ReadNumber(literal);
}

// --- What an item is ----------------------------------------------------------------------------

// Finds out what stands at a position: an item of a known name, whose head is set, or a brace, up
// to which there is a gap. Other when it takes a closer look.
IXOMEP_FUSED Item DocumentScanner::FindHead(const char* at, Head& head) const noexcept {
  const ByteRun white(at);
  std::uint32_t gap = RunLength(white.White());
  if (gap == ByteRun::kSize) [[unlikely]] {
    gap += RunLength(ByteRun(at + gap).White());
    if (gap == 2 * ByteRun::kSize) return Item::Other;
  }
  head.gap = static_cast<std::uint8_t>(gap);
  const char* const start = at + gap;
  const Item item = ItemOf(*start);
  if (item != Item::Name && item != Item::Keyword) return item;
  if (gap == 0) return Item::Other;
  const ByteRun run(start);
  const std::uint32_t size = RunLength(item == Item::Name ? run.InName() : run.InKeyword());
  if (size == ByteRun::kSize) return Item::Other;
  head.name = document_.names_.FindShort(NameTable::ShortKey(start, size));
  if (head.name == NameTable::kNoName) return Item::Other;
  head.modifier = NameTable::kNoName;
  // Only its first bytes: mostly the line feed comes first, and who asks looks closer.
  head.starts_line =
      (white.LineFeeds() & ((std::uint32_t{1} << std::min(gap, kMostGap)) - 1)) != 0 ||
      gap > kMostGap;
  const char* end = start + size;
  if (item == Item::Name) {
    head.form = Form::Option;
    if (*end == ':' && !FindModifier(end, head)) return Item::Other;
  } else {
    if (!IsQuick(*end, kQuickWhite)) return Item::Other;
    const char* const value = SkipQuick(end + 1, kQuickWhite);
    head.form = Form::BareElement;
    if (IsQuick(*value, kQuickLiteral) && *value != '{') {
      head.form = Form::Element;
      end = value;
    } else if (*value == '{' && OpensArray(value)) {
      return Item::Other;
    }
  }
  if (end - at > kMostDistance) return Item::Other;
  head.size = static_cast<std::uint8_t>(end - at);
  return item;
}

// What stands behind the name of an attribute, from its colon on; moves to the value, if any.
IXOMEP_FUSED bool DocumentScanner::FindModifier(const char*& end, Head& head) const noexcept {
  end = SkipQuick(end + 1, kQuickWhite);
  head.form = Form::Attribute;
  if (!IsQuick(*end, kQuickLower)) return true;
  const char* const start = end;
  if (start >= block_end_) return false;
  const std::uint32_t size = RunLength(ByteRun(start).InName());
  if (size == ByteRun::kSize) return false;
  head.modifier = document_.names_.FindShort(NameTable::ShortKey(start, size));
  if (head.modifier == NameTable::kNoName || document_.names_.HasBytesAbove(head.modifier)) {
    return false;
  }
  end += size;
  head.form = *end == ':' ? Form::Attribute : Form::Option;
  if (*end == ':') end = SkipQuick(end + 1, kQuickWhite);
  return true;
}

// --- Runs ---------------------------------------------------------------------------------------

// Notes the item that began at item_: its bytes up to a position say so much of it.
void DocumentScanner::Learn(Form form, const char* end, std::uint32_t name,
                            std::uint32_t modifier) {
  const std::ptrdiff_t size = end - item_;
  if (size <= kMostHead && item_ < run_end_) {
    while (followers_.Size() <= last_) followers_.Push({});
    const char* const start = SkipQuick(item_, kQuickWhite);
    const std::string_view gap(item_, static_cast<std::size_t>(start - item_));
    followers_[last_] = {OffsetOf(item_),
                         {static_cast<std::uint8_t>(size), static_cast<std::uint8_t>(gap.size()),
                          form, gap.find('\n') != std::string_view::npos, name, modifier}};
  }
  last_ = name + kAfterName;
}

// Reads the value behind the head of an element and adds the element; moves behind it. False, and
// nothing is changed, when the value is not plain.
IXOMEP_FUSED bool DocumentScanner::AddPlainElement(const Head& head, const char*& at) {
  const char* end = at + head.size;
  // Records are written where they stay: moved at once, their parts would have to wait for each
  // other.
  ElementRecord& element = pending_elements_.Next();
  element.literal.Set(LiteralKind::None, 0);
  if (head.form == Form::BareElement ? HasValue(end) : !ReadPlainLiteral(end, element.literal)) {
    return false;
  }
  if (!EndsAt(end)) return false;
  element.start = OffsetOf(at) + head.gap;
  element.keyword = head.name;
  element.first_attribute = 0;
  element.attribute_count = 0;
  element.body = kNoRecord;
  if (frame_.is_split || frame_.is_pending) {
    FinishElement();
  } else {
    SetAttributes(document_.attributes_.Size());
  }
  frame_.owner = pending_elements_.Size();
  frame_.has_element = true;
  pending_elements_.PushNext();
  at = end;
  return true;
}

// Many texts say the same things in the same order and form again and again: when the bytes are
// those that followed an item of this name before, they mean the same as then, which saves looking
// for them. In other texts that guess is mostly wrong, and then it is not made.
bool DocumentScanner::ReadRun() {
  while (followers_.Size() <= document_.names_.Count()) followers_.Push({});
  const char* at = at_;
  std::uint32_t last = last_;
  std::int32_t credit = credit_;
  // An attribute needs an element, and no statement may start there.
  bool has_owner = frame_.owner != kNoRecord && !frame_.is_split;
  const bool has_statements = next_semicolon_ != nullptr;
  const char* const run_start = at;
  const char* const run_end = at + std::min(run_end_ - at, kMostRun);
  AttributeRecord* next = attributes_->End();
  const AttributeRecord* room_end = attributes_->RoomEnd();
  Head found;
  while (at < run_end) {
    Follower& follower = followers_[last];
    const Head* head = &follower.head;
    if (credit >= 0 && IsSame(at, text_ + follower.at, follower.head.size)) {
      ++credit;
    } else {
      if (credit >= 0) {
        credit = std::min(credit, kMostCredit) - kWrongGuess;
        if (credit < 0) credit = -kItemsWithoutGuess;
      } else {
        ++credit;
      }
      const Item item = FindHead(at, found);
      if (item != Item::Name && item != Item::Keyword) {
        if (has_statements || (item != Item::Opener && item != Item::Closer)) break;
        attributes_->SetEnd(next);
        at_ = at + found.gap;
        if (!(item == Item::Opener ? OpenBody(false) : CloseBody())) return false;
        at = at_;
        last = last_;
        has_owner = frame_.owner != kNoRecord && !frame_.is_split;
        next = attributes_->End();
        room_end = attributes_->RoomEnd();
        continue;
      }
      if (found.size <= kMostHead) follower = {OffsetOf(at), found};
      head = &found;
    }
    if (head->form >= Form::Element) {
      attributes_->SetEnd(next);
      if (!AddPlainElement(*head, at)) break;
      next = attributes_->End();
      room_end = attributes_->RoomEnd();
      has_owner = true;
    } else {
      if (!has_owner) break;
      if (has_statements && (head->starts_line || (at == run_start && is_fresh_))) break;
      if (next == room_end) [[unlikely]] {
        attributes_->SetEnd(next);
        next = &attributes_->Next();
        room_end = attributes_->RoomEnd();
      }
      const char* end = at + head->size;
      if (head->form == Form::Attribute) {
        if (!ReadPlainLiteral(end, next->literal)) break;
      } else {
        if (head->form == Form::None) break;
        next->literal.Set(LiteralKind::None, 0);
      }
      if (!EndsAt(end)) break;
      next->name = head->name;
      next->modifier = head->modifier;
      ++next;
      at = end;
    }
    last = head->name + kAfterName;
  }
  attributes_->SetEnd(next);
  credit_ = credit;
  work_.Parts(static_cast<std::int32_t>(at - run_start) / kBytesOfItem);
  if (at == at_) return true;
  is_fresh_ = false;
  at_ = at;
  gap_ = at;
  last_ = last;
  return true;
}

}  // namespace ixomep
