// The quick reading: top level, elements, attributes, strings and bodies. Other literals are in
// document_literals.cpp, comments and statements in document_statements.cpp. What is accepted here
// ends where the Grammar would end it, and holds matched brackets of every kind, so that the first
// "}" that closes nothing closes the body.
#include "ixomep/parser/document_scanner.h"

#include <algorithm>
#include <cstring>

#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/bytes.h"

// One function with its callers: what it returns stays in a register.
#define IXOMEP_FUSED [[gnu::always_inline]] inline

namespace ixomep {
namespace {

// Rough sizes, so that the arrays seldom grow. Room that stays unused is given back.
constexpr std::uint32_t kBytesOfElement = 96;
constexpr std::uint32_t kBytesOfAttribute = 24;

constexpr std::uint32_t kMostFollowers = 4096;
constexpr std::ptrdiff_t kBlockRoom = 32;
static_assert(kBlockRoom >= std::ptrdiff_t{ByteBlock::kSize});

// Whether two stretches of at most kBlockRoom bytes are the same; so many may be read of both.
bool IsSame(const char* a, const char* b, std::uint32_t size) noexcept {
  if (size < 8) return ((LoadWord(a) ^ LoadWord(b)) & NameTable::HeadOf(size)) == 0;
  const std::uint32_t last = size - 8;
  std::uint64_t others = (LoadWord(a) ^ LoadWord(b)) | (LoadWord(a + last) ^ LoadWord(b + last));
  if (size > 16) others |= LoadWord(a + 8) ^ LoadWord(b + 8);
  if (size > 24) others |= LoadWord(a + 16) ^ LoadWord(b + 16);
  return others == 0;
}

}  // namespace

DocumentScanner::DocumentScanner(Document& document)
    : document_(document),
      text_(document.text_.c_str()),
      at_(text_ + document.start_),
      end_(text_ + document.text_.Len()),
      block_end_(end_ - std::min(end_ - at_, kBlockRoom - 1)) {
  const auto bytes = static_cast<std::uint32_t>(end_ - at_);
  // Only where there is plenty of memory.
  if (MemoryBudget::MayTake(std::size_t{4} * bytes)) {
    document.elements_.Reserve(bytes / kBytesOfElement + 4);
    document.attributes_.Reserve(bytes / kBytesOfAttribute + 8);
  }
}

bool DocumentScanner::Read(FoldedLiterals& folded) {
  if (!Scan() && !ScanWithStatements()) return false;
  if (!Fold(folded)) return false;
  BodyRecord whole{};
  whole.first = first_ & BodyRecord::kMostOffset;
  document_.bodies_.Push(whole);
  document_.elements_.Trim();
  document_.attributes_.Trim();
  document_.bodies_.Trim();
  return true;
}

bool DocumentScanner::Scan() {
  gap_ = at_;
  for (;;) {
    work_.Part();
    ReadFollowers();
    item_ = at_;
    at_ = SkipQuick(at_, kQuickWhite);
    bool good = false;
    switch (ItemOf(*at_)) {
      case Item::Keyword:
        good = ReadElement();
        break;
      case Item::Name:
        good = ReadAttribute();
        break;
      case Item::Opener:
        good = OpenBody(false);
        break;
      case Item::Closer:
        good = CloseBody();
        break;
      case Item::Hash:
        good = SkipLineComment();
        break;
      case Item::Zero:
        if (at_ != end_ || !outer_.empty()) return false;
        FinishElement();
        first_ = document_.elements_.Size();
        count_ = pending_elements_.Size();
        document_.elements_.TakeTail(pending_elements_, 0);
        return true;
      case Item::Other:
        good = ReadRest();
        break;
    }
    if (!good) return false;
  }
}

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
IXOMEP_FUSED bool DocumentScanner::ReadPlainNumber(const char*& at,
                                                   LiteralRecord& literal) const noexcept {
  const char* const start = at;
  if (start >= block_end_) return false;
  ByteBlock::Mask others = ByteBlock(start).Between('0', '9') ^ ByteBlock::kAll;
  if (others == 0) return false;
  const std::size_t digits = ByteBlock::First(others);
  if (digits == 0 || digits > kExactDigits) return false;
  LiteralKind kind = LiteralKind::Integer;
  const char* end = start + digits;
  if (*end == '.') {
    others &= others - 1;
    if (others == 0) return false;
    const std::size_t places = ByteBlock::First(others) - digits - 1;
    if (places == 0) return false;
    kind = LiteralKind::Real;
    end += 1 + places;
  }
  if (!IsQuick(*end, kQuickWhite)) {
    const int unit = UnitLength(end);
    if (unit < 0) return false;
    if (unit > 0) kind = *end == 's' ? LiteralKind::Time : LiteralKind::Measure;
    end += unit;
    if (!EndsAt(end)) return false;
  }
  literal.Set(kind, OffsetOf(start), static_cast<std::size_t>(end - start));
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

// --- What is repeated ---------------------------------------------------------------------------

// Notes the item that began at item_: its bytes up to a position say so much of it.
void DocumentScanner::Learn(Form form, const char* end, std::uint32_t name,
                            std::uint32_t modifier) {
  const std::ptrdiff_t size = end - item_;
  if (size <= kBlockRoom && last_ < kMostFollowers) {
    while (followers_.Size() <= last_) followers_.Push({});
    const char* const start = SkipQuick(item_, kQuickWhite);
    const std::string_view gap(item_, static_cast<std::size_t>(start - item_));
    followers_[last_] = {OffsetOf(item_),
                         static_cast<std::uint8_t>(size),
                         static_cast<std::uint8_t>(gap.size()),
                         form,
                         gap.find('\n') != std::string_view::npos,
                         name,
                         modifier};
  }
  last_ = name + kAfterName;
}

// Most texts say the same things in the same order and form again and again. When the bytes are
// those that followed an item of this name before, they mean the same as then. Reads such items
// until there are others, or until what follows them has to be looked at.
void DocumentScanner::ReadFollowers() {
  const char* at = at_;
  std::uint32_t last = last_;
  while (last < followers_.Size() && at < block_end_) {
    work_.Part();
    const Follower follower = followers_[last];
    if (!IsSame(at, text_ + follower.at, follower.size) || !MayFollow(follower)) break;
    const char* end = at + follower.size;
    // Written where they stay: moved at once, their parts would have to wait for each other.
    if (follower.form >= Form::Element) {
      ElementRecord& element = pending_elements_.Next();
      element.literal.Set(LiteralKind::None, 0);
      if (follower.form == Form::BareElement ? HasValue(end)
                                             : !ReadPlainLiteral(end, element.literal)) {
        break;
      }
      if (!EndsAt(end)) break;
      FinishElement();
      frame_.owner = pending_elements_.Size();
      frame_.has_element = true;
      element.start = OffsetOf(at) + follower.gap;
      element.keyword = follower.name;
      element.first_attribute = 0;
      element.attribute_count = 0;
      element.body = kNoRecord;
      pending_elements_.PushNext();
    } else {
      AttributeRecord& attribute = pending_attributes_.Next();
      attribute.literal.Set(LiteralKind::None, 0);
      if (follower.form == Form::Attribute && !ReadPlainLiteral(end, attribute.literal)) break;
      if (!EndsAt(end)) break;
      attribute.name = follower.name;
      attribute.modifier = follower.modifier;
      pending_attributes_.PushNext();
    }
    at = end;
    last = follower.name + kAfterName;
    is_fresh_ = false;
  }
  if (at == at_) return;
  at_ = at;
  gap_ = at;
  last_ = last;
}

// Whether the bytes mean at the position what they meant before: no statement may start there, and
// an attribute needs an element.
bool DocumentScanner::MayFollow(const Follower& follower) const noexcept {
  if (follower.form >= Form::Element) return true;
  const bool may_be_statement = next_semicolon_ != nullptr && (follower.starts_line || is_fresh_);
  return follower.form != Form::None && !may_be_statement && frame_.owner != kNoRecord;
}

// Whether a value stands behind the keyword that ends at a position.
bool DocumentScanner::HasValue(const char* end) noexcept {
  const char* const value = SkipQuick(end, kQuickWhite);
  if (!IsQuick(*value, kQuickLiteral) || (*value == '(' && value[1] == '*')) return false;
  return *value != '{' || OpensArray(value);
}

// --- Elements and attributes --------------------------------------------------------------------

bool DocumentScanner::ReadElement() {
  ElementRecord element{};
  element.start = OffsetOf(at_);
  element.keyword = ReadName(kQuickKeyword);
  element.body = kNoRecord;
  if (element.keyword == NameTable::kUnknown) return false;
  const char* end = at_;
  const char next = *end;
  if (!IsQuick(next, kQuickWhite) && next != '"' && next != '(' && !EndsAt(at_)) return false;

  Form form = Form::BareElement;
  at_ = SkipQuick(end, kQuickWhite);
  const char* const value = at_;
  if (IsQuick(*at_, kQuickLiteral) && !(*at_ == '(' && at_[1] == '*') &&
      (*at_ != '{' || OpensArray(at_))) {
    if (!ReadLiteral(element.literal, element.start) || !EndsAt(at_)) return false;
    end = at_;
    form = Form::Element;
  }
  if (form == Form::Element && !IsQuick(next, kQuickWhite)) {
    // Not every value may touch the keyword: such items are looked at each time.
    last_ = element.keyword + kAfterName;
  } else {
    Learn(form, form == Form::Element ? value : end, element.keyword, NameTable::kNoName);
  }
  // Without a value the white space stays, so that a line feed in it starts a statement.
  at_ = end;
  gap_ = end;
  is_fresh_ = false;
  AddElement(element);
  return true;
}

void DocumentScanner::AddElement(const ElementRecord& element) {
  FinishElement();
  frame_.owner = pending_elements_.Size();
  frame_.has_element = true;
  pending_elements_.Push(element);
}

// The attributes that have been read go to their final place.
void DocumentScanner::FinishElement() {
  if (pending_attributes_.Size() == frame_.attributes) return;
  ElementRecord& owner = pending_elements_[frame_.owner];
  owner.first_attribute = document_.attributes_.Size();
  owner.attribute_count = pending_attributes_.Size() - frame_.attributes;
  document_.attributes_.TakeTail(pending_attributes_, frame_.attributes);
}

bool DocumentScanner::ReadAttribute() {
  bool done = false;
  if (next_semicolon_ != nullptr && !TryStatement(done)) return false;
  if (done) return true;
  if (frame_.owner == kNoRecord && !AddLoose()) return false;
  AttributeRecord attribute{};
  attribute.name = ReadName(kQuickName);
  if (attribute.name == NameTable::kUnknown) return false;
  is_fresh_ = false;
  if (*at_ == ':') {
    at_ = SkipQuick(at_ + 1, kQuickWhite);
    return ReadAttributeValue(attribute);
  }
  Learn(Form::Option, at_, attribute.name, attribute.modifier);
  gap_ = at_;
  pending_attributes_.Push(attribute);
  return EndsAt(at_);
}

// A body may begin with attributes: they get an element without a keyword.
bool DocumentScanner::AddLoose() {
  if (outer_.empty() || pending_elements_.Size() != frame_.elements) return false;
  frame_.has_loose = true;
  frame_.owner = pending_elements_.Size();
  ElementRecord loose{};
  loose.start = OffsetOf(at_);
  loose.body = kNoRecord;
  pending_elements_.Push(loose);
  return true;
}

bool DocumentScanner::ReadAttributeValue(AttributeRecord& attribute) {
  if (IsQuick(*at_, kQuickLower)) {
    attribute.modifier = ReadName(kQuickModifier);
    if (attribute.modifier == NameTable::kUnknown) return false;
    if (*at_ != ':') {
      Learn(Form::Option, at_, attribute.name, attribute.modifier);
      gap_ = at_;
      pending_attributes_.Push(attribute);
      return EndsAt(at_);
    }
    at_ = SkipQuick(at_ + 1, kQuickWhite);
  }
  if (*at_ == '{' && !OpensArray(at_)) {
    pending_attributes_.Push(attribute);
    return OpenBody(true);
  }
  const char* const value = at_;
  if (!IsQuick(*at_, kQuickLiteral) ||
      !ReadLiteral(attribute.literal, pending_elements_[frame_.owner].start))
    return false;
  Learn(Form::Attribute, value, attribute.name, attribute.modifier);
  gap_ = at_;
  pending_attributes_.Push(attribute);
  return EndsAt(at_);
}

std::uint32_t DocumentScanner::ReadName(unsigned classes) {
  const char* const start = at_;
  at_ = SkipQuick(start, classes);
  const auto size = static_cast<std::uint32_t>(at_ - start);
  if (start < block_end_ && size <= NameTable::kShort) {
    const std::uint32_t number = document_.names_.FindShort(NameTable::ShortKey(start, size));
    if (number != NameTable::kNoName) return number;
  }
  return document_.names_.Add(OffsetOf(start), size);
}

// Whether the brace at a position opens an array display.
bool DocumentScanner::OpensArray(const char* at) noexcept {
  const char byte = *SkipQuick(at + 1, kQuickWhite);
  return IsQuick(byte, kQuickLiteral);
}

// --- Bodies -------------------------------------------------------------------------------------

bool DocumentScanner::OpenBody(bool is_attribute) {
  if (!is_attribute) {
    bool done = false;
    if (next_semicolon_ != nullptr && !TryStatement(done)) return false;
    if (done) return true;
    if (!frame_.has_element || pending_elements_[frame_.owner].body != kNoRecord) return false;
  } else {
    frame_.holder = pending_attributes_.Size() - 1;
  }
  outer_.push_back(frame_);
  frame_ = Frame();
  frame_.elements = pending_elements_.Size();
  frame_.attributes = pending_attributes_.Size();
  frame_.is_attribute = is_attribute;
  ++at_;
  last_ = kAfterOpener;
  frame_.start = OffsetOf(at_);
  gap_ = at_;
  is_fresh_ = true;
  return true;
}

bool DocumentScanner::CloseBody() {
  if (outer_.empty()) return false;
  FinishElement();
  const std::uint32_t number = document_.bodies_.Size();
  const std::uint32_t first = document_.elements_.Size() + (frame_.has_loose ? 1 : 0);
  BodyRecord body{};
  body.first = first & BodyRecord::kMostOffset;
  body.start = frame_.start & BodyRecord::kMostOffset;
  body.end = OffsetOf(at_) & BodyRecord::kMostOffset;
  body.has_loose = frame_.has_loose;
  document_.bodies_.Push(body);
  document_.elements_.TakeTail(pending_elements_, frame_.elements);
  const bool must_end = frame_.is_attribute;
  frame_ = outer_.back();
  outer_.pop_back();
  if (must_end) {
    pending_attributes_[frame_.holder].literal.Set(LiteralKind::Body, number);
  } else {
    pending_elements_[frame_.owner].body = number;
  }
  ++at_;
  gap_ = at_;
  is_fresh_ = false;
  last_ = kAfterCloser;
  return !must_end || EndsAt(at_);
}

}  // namespace ixomep
