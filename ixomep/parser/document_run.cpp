// The quick reading: runs of plain items, which are most of a text: an option, an element or an
// attribute with a name that was met before, and a string or number behind it. They are read in one
// loop in which next to nothing depends on what a byte is but the kind of the item and of its
// value: a processor that guesses wrong there loses more than all the rest takes. Whatever is not
// plain ends the run and is looked at byte by byte (document_scanner.cpp).
#include <algorithm>
#include <string_view>

#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/plain_values.h"

namespace ixomep {
namespace {

// Parts of work are counted for a whole run, by its bytes.
constexpr std::ptrdiff_t kMostRun = 8192;
constexpr std::int32_t kBytesOfItem = 16;

constexpr std::uint32_t kColonAndQuote = ':' | ' ' << 8 | '"' << 16;
constexpr std::uint64_t kWindowEnd = std::uint64_t{1} << ByteMap::kWindow;
constexpr std::uint32_t kMostGap = ByteRun::kSize;
constexpr std::ptrdiff_t kMostDistance = 96;  // to a value

// A wrong guess at the next item costs as much as two right ones save. When the credit of those is
// used up no guess is made for a while, and for the last items of that what follows what is noted.
constexpr std::int32_t kWrongGuess = 2;
constexpr std::int32_t kItemsWithoutGuess = 192;
constexpr std::int32_t kItemsToLearn = 16;
// The same for the guess that a number is like the one before it; never made again.
constexpr std::int32_t kUnlikeNumber = 3;

// Whether two stretches are the same in the bytes whose bits are set; two blocks may be read of
// both.
bool IsSame(const char* a, const char* b, std::uint32_t bytes) noexcept {
  const std::uint32_t first = ByteRun(a).Same(ByteRun(b));
  const std::uint32_t rest = ByteRun(a + ByteRun::kSize).Same(ByteRun(b + ByteRun::kSize));
  return (~(first | rest << ByteRun::kSize) & bytes) == 0;
}

// A number that is known to be equal to another one. What depends on it then waits for that one
// instead, since a processor that guesses right that they are equal does not wait for the proof.
const char* Foreseen(const char* equal) noexcept {
#if defined(__GNUC__)
  asm("" : "+r"(equal));  // the compiler forgets what it is equal to
#endif
  return equal;
}

}  // namespace

// --- Literals -----------------------------------------------------------------------------------

// A string or plain number; false, and nothing is changed, when something else stands there.
bool DocumentScanner::ReadPlainLiteral(const char*& at, LiteralRecord& literal) const noexcept {
  if (*at != '"') return ReadPlainNumber<InBytes>(at, literal);
  const char* end = at + 1;
  if (!ReadString<InBytes>(end, literal)) return false;
  at = end;
  return true;
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
  // Only its first bytes: mostly the line feed comes first, and who asks looks closer.
  head.starts_line =
      (white.LineFeeds() & ((std::uint32_t{1} << std::min(gap, kMostGap)) - 1)) != 0 ||
      gap > kMostGap;
  const char* const end = FindTail(start + size, item, head);
  if (end == nullptr || end - at > kMostDistance) return Item::Other;
  head.size = static_cast<std::uint8_t>(end - at);
  return item;
}

// What stands behind a name or keyword, up to where the value begins; null when it takes a closer
// look.
IXOMEP_FUSED const char* DocumentScanner::FindTail(const char* end, Item item,
                                                   Head& head) const noexcept {
  head.modifier = NameTable::kNoName;
  if (item == Item::Name) {
    head.form = Form::Option;
    if (*end != ':') return end;
    if (!FindModifier(end, head)) return nullptr;
    if (head.form != Form::Other || *end != '"') return end;
    head.form = Form::String;
    return end + 1;
  }
  if (!IsQuick(*end, kQuickWhite)) return nullptr;
  const char* const value = SkipQuick(end + 1, kQuickWhite);
  head.form = Form::StringElement;
  if (*value == '"') return value + 1;
  head.form = Form::OtherElement;
  if (IsQuick(*value, kQuickLiteral) && *value != '{') return value;
  head.form = Form::BareElement;
  return *value == '{' && OpensArray(value) ? nullptr : end;
}

// What stands behind the name of an attribute, from its colon on; moves to the value, if any.
IXOMEP_FUSED bool DocumentScanner::FindModifier(const char*& end, Head& head) const noexcept {
  end = SkipQuick(end + 1, kQuickWhite);
  head.form = Form::Other;
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
  head.form = *end == ':' ? Form::Other : Form::Option;
  if (*end == ':') end = SkipQuick(end + 1, kQuickWhite);
  return true;
}

// Notes the item that began at item_: its bytes up to a position say so much of it.
void DocumentScanner::Learn(Form form, const char* end, std::uint32_t name,
                            std::uint32_t modifier) {
  const bool is_string = (form == Form::Other || form == Form::OtherElement) && *end == '"';
  if (is_string) {
    ++end;
    form = form == Form::Other ? Form::String : Form::StringElement;
  }
  const std::ptrdiff_t size = end - item_;
  if (size <= kMostHead && item_ < run_end_) {
    while (followers_.Size() <= last_) followers_.Push({});
    const char* const start = SkipQuick(item_, kQuickWhite);
    const std::string_view gap(item_, static_cast<std::size_t>(start - item_));
    followers_[last_] = Follower(
        OffsetOf(item_), {static_cast<std::uint8_t>(size), static_cast<std::uint8_t>(gap.size()),
                          form, gap.find('\n') != std::string_view::npos, name, modifier});
  }
  last_ = name + kAfterName;
}

// --- Runs ---------------------------------------------------------------------------------------

// Room for one more attribute, and an element that it belongs to.
IXOMEP_FUSED bool DocumentScanner::HasRoom(Run& run) {
  return run.next != run.room_end || MakeRoom(run);
}

bool DocumentScanner::MakeRoom(Run& run) {
  if (!HasOwner()) return false;
  attributes_->SetEnd(run.next);
  run.next = &attributes_->Next();
  run.room_end = attributes_->RoomEnd();
  return true;
}

// Adds an item that starts at one position and whose value, if any, stands at another one; moves
// behind it. False, and nothing is changed, when it is not plain.
template <class Ends>
IXOMEP_FUSED bool DocumentScanner::AddItem(const Head& head, const char* start, const char* value,
                                           Run& run) {
  if (head.form >= Form::StringElement) return AddPlainElement<Ends>(head, start, value, run);
  if (!HasRoom(run)) return false;
  if (head.form == Form::String) {
    if (!ReadString<Ends>(value, run.next->literal)) return false;
  } else if (head.form == Form::Other) {
    if (!ReadPlainNumber<Ends>(value, run.next->literal)) return false;
  } else {
    if (head.form == Form::None || !EndsAt(value)) return false;
    run.next->literal.Set(LiteralKind::None, 0);
  }
  AddPlainAttribute(head.name, head.modifier, value, run);
  return true;
}

IXOMEP_FUSED void DocumentScanner::AddPlainAttribute(std::uint32_t name, std::uint32_t modifier,
                                                     const char* end, Run& run) {
  run.next->name = name;
  run.next->modifier = modifier;
  ++run.next;
  run.at = end;
}

template <class Ends>
IXOMEP_FUSED bool DocumentScanner::AddPlainElement(const Head& head, const char* start,
                                                   const char* value, Run& run) {
  // Records are written where they stay: moved at once, their parts would have to wait for each
  // other.
  ElementRecord& element = pending_elements_.Next();
  if (head.form == Form::BareElement) {
    if (HasValue(value) || !EndsAt(value)) return false;
    element.literal.Set(LiteralKind::None, 0);
  } else if (head.form == Form::StringElement) {
    if (!ReadString<Ends>(value, element.literal)) return false;
  } else if (!ReadPlainNumber<Ends>(value, element.literal)) {
    return false;
  }
  element.start = OffsetOf(start);
  element.keyword = head.name;
  element.first_attribute = 0;
  element.attribute_count = 0;
  element.body = kNoRecord;
  attributes_->SetEnd(run.next);
  FinishElement();
  run.next = attributes_->End();
  run.room_end = attributes_->RoomEnd();
  frame_.owner = pending_elements_.Size();
  frame_.has_element = true;
  pending_elements_.PushNext();
  run.at = value;
  return true;
}

IXOMEP_FUSED DocumentScanner::Run DocumentScanner::StartRun() const noexcept {
  AttributeRecord* const next = attributes_->End();
  return {at_, next, HasOwner() ? attributes_->RoomEnd() : next, last_};
}

// Opens or closes a body at the brace behind a gap.
IXOMEP_FUSED bool DocumentScanner::ReadBrace(Item item, Run& run, std::uint32_t gap) {
  attributes_->SetEnd(run.next);
  at_ = run.at + gap;
  if (!(item == Item::Opener ? OpenBody(false) : CloseBody())) return false;
  run = StartRun();
  return true;
}

IXOMEP_FUSED DocumentScanner::RunEnd DocumentScanner::EndRun(const Run& run, const char* start,
                                                             RunEnd how) {
  attributes_->SetEnd(run.next);
  work_.Parts(static_cast<std::int32_t>(run.at - start) / kBytesOfItem);
  if (run.at == at_) return how;
  is_fresh_ = false;
  at_ = run.at;
  gap_ = run.at;
  last_ = run.last;
  return how;
}

bool DocumentScanner::ReadRun() {
  while (followers_.Size() <= document_.names_.Count()) followers_.Push({});
  RunEnd end = RunEnd::Change;
  while (end == RunEnd::Change) {
    end = credit_ < -kItemsToLearn && MayMap(at_) ? ReadMapped() : ReadForeseen();
  }
  return end == RunEnd::Look;
}

// Adds the item that follows when its bytes up to the value are those of the follower: mostly its
// value is like that one's too. False, and nothing is changed, when it is not plain.
IXOMEP_FUSED bool DocumentScanner::AddForeseen(Follower& follower, Run& run) {
  const Head& head = follower.head;
  const char* const start = run.at;
  const char* const value = start + head.size;
  const char* const end = start + follower.size;
  if (head.form == Form::Other && follower.credit >= 0) {
    // The same number but for its digits.
    const ByteRun bytes(value);
    const std::uint32_t same = bytes.Same(ByteRun(text_ + follower.number));
    const std::uint32_t digits = bytes.Digits();
    const std::uint32_t like = same | (digits & follower.digits);
    if ((~like & follower.number_bytes) == 0 && EndsAt(end) && HasRoom(run)) {
      run.next->literal.Set(follower.number_kind, OffsetOf(value),
                            static_cast<std::size_t>(end - value));
      AddPlainAttribute(head.name, head.modifier, Foreseen(end), run);
      follower.credit = std::min(follower.credit + 1, kLikeCredit);
      return true;
    }
    if (!AddItem<InBytes>(head, start + head.gap, value, run)) return false;
    follower.credit -= kUnlikeNumber;
    follower.number = OffsetOf(value);
    follower.number_kind = run.next[-1].literal.Kind();
    follower.number_bytes = LowBits(static_cast<std::size_t>(run.at - value));
    follower.digits = digits;
  } else {
    if (!AddItem<InBytes>(head, start + head.gap, value, run)) return false;
    if (run.at == end) {
      run.at = Foreseen(end);
      return true;
    }
  }
  follower.size = static_cast<std::uint32_t>(run.at - start);
  return true;
}

// Many texts say the same things in the same order and form again and again: when the bytes are
// those that followed an item of this name before, they mean the same as then, which saves looking
// for them. In other texts that guess is mostly wrong, and then it is not made for a while.
DocumentScanner::RunEnd DocumentScanner::ReadForeseen() {
  Run run = StartRun();
  std::int32_t credit = credit_;
  const bool has_statements = next_semicolon_ != nullptr;
  const char* const start = at_;
  const char* const end = start + std::min(run_end_ - start, kMostRun);
  Follower* const followers = followers_.Data();
  const char* const text = text_;
  RunEnd how = RunEnd::Look;
  Head found{};
  while (run.at < end) {
    Follower& follower = followers[run.last];
    if (credit >= 0 && IsSame(run.at, text + follower.at, follower.bytes)) {
      ++credit;
      if (has_statements && MayBeStatement(follower.head, run.at == start)) break;
      if (!AddForeseen(follower, run)) break;
      run.last = follower.head.name + kAfterName;
      continue;
    }
    if (credit >= 0) {
      credit = std::min(credit, kMostCredit) - kWrongGuess;
      if (credit < 0) credit = -kItemsWithoutGuess;
    } else {
      ++credit;
    }
    if (credit < -kItemsToLearn && MayMap(run.at)) {
      how = RunEnd::Change;
      break;
    }
    const Item item = FindHead(run.at, found);
    if (item != Item::Name && item != Item::Keyword) {
      if (has_statements || (item != Item::Opener && item != Item::Closer)) break;
      if (!ReadBrace(item, run, found.gap)) return RunEnd::Fail;
      continue;
    }
    if (found.size <= kMostHead) follower = Follower(OffsetOf(run.at), found);
    if (has_statements && MayBeStatement(found, run.at == start)) break;
    if (!AddItem<InBytes>(found, run.at + found.gap, run.at + found.size, run)) break;
    run.last = found.name + kAfterName;
  }
  credit_ = credit;
  return EndRun(run, start, how);
}

// The other texts: names are found in a map of the bytes. What an item is, is next to impossible to
// guess in them: the earlier it is known, the less a processor has done in vain. So the usual ways
// to write one are told by its bytes, without a look at what the name is.
DocumentScanner::RunEnd DocumentScanner::ReadMapped() {
  if (!map_.Covers(at_, kMapRoom)) map_.Fill(at_, end_);
  Run run = StartRun();
  const char* const start = at_;
  const char* const map_end = map_.End() - kMapRoom;
  std::int32_t credit = credit_;
  RunEnd how = RunEnd::Change;
  while (run.at <= map_end && credit < -kItemsToLearn) {
    const ByteMap::Place place(map_, run.at);
    const std::uint32_t gap = FirstBit(~place.White() | kWindowEnd);
    const char* const name = run.at + gap;
    const Item item = ItemOf(*name);
    if (item == Item::Opener || item == Item::Closer) {
      if (!ReadBrace(item, run, gap)) return RunEnd::Fail;
      continue;
    }
    const std::uint32_t size = FirstBit(place.Ends() >> gap | kWindowEnd);
    how = RunEnd::Look;
    if (size > NameTable::kShort || gap == 0) break;
    const std::uint32_t number = document_.names_.FindShort(NameTable::ShortKey(name, size));
    if (number == NameTable::kNoName) break;
    const char* end = name + size;
    const std::uint32_t next = LoadHalf(end);
    if (item == Item::Name && (next & 0xFFFFFF) == kColonAndQuote) {
      end += 3;
      if (!HasRoom(run) || !ReadString<InMap>(end, run.next->literal)) break;
      AddPlainAttribute(number, NameTable::kNoName, end, run);
    } else if (item == Item::Name && (next & 0xFFFF) == (kColonAndQuote & 0xFFFF) &&
               IsQuick(end[2], kQuickDigit)) {
      end += 2;
      if (!HasRoom(run) || !ReadPlainNumber<InMap>(end, run.next->literal)) break;
      AddPlainAttribute(number, NameTable::kNoName, end, run);
    } else {
      Head head{};
      head.name = number;
      const char* const value = FindTail(end, item, head);
      if (value == nullptr || value - name > kMostDistance ||
          !AddItem<InMap>(head, name, value, run)) {
        break;
      }
    }
    how = RunEnd::Change;
    run.last = number + kAfterName;
    ++credit;
  }
  credit_ = credit;
  return EndRun(run, start, how);
}

}  // namespace ixomep
