// The quick reading: top level, elements, attributes and bodies. Literals are in
// document_literals.cpp. What is accepted here ends where the Grammar would end it, and holds
// matched brackets of every kind, so that the first "}" that closes nothing closes the body.
#include "ixomep/parser/document_scanner.h"

#include <algorithm>
#include <cstring>

#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/bytes.h"

namespace ixomep {
namespace {

// Rough sizes, so that the arrays seldom grow.
constexpr std::uint32_t kBytesOfElement = 96;
constexpr std::uint32_t kBytesOfAttribute = 24;
constexpr std::uint32_t kMostReserved = 1 << 16;

}  // namespace

DocumentScanner::DocumentScanner(Document& document)
    : document_(document),
      text_(document.text_.c_str()),
      at_(text_ + document.start_),
      end_(text_ + document.text_.Len()) {
  const auto bytes = static_cast<std::uint32_t>(end_ - at_);
  document.elements_.Reserve(std::min(bytes / kBytesOfElement, kMostReserved) + 4);
  document.attributes_.Reserve(std::min(bytes / kBytesOfAttribute, kMostReserved) + 8);
}

bool DocumentScanner::Read(FoldedLiterals& folded) {
  if (!Scan() || !Fold(folded)) return false;
  document_.elements_.Trim();
  document_.attributes_.Trim();
  document_.bodies_.Trim();
  return true;
}

bool DocumentScanner::Scan() {
  gap_ = at_;
  next_semicolon_ = text_;
  MayStartStatement();
  for (;;) {
    work_.Part();
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

// --- Elements and attributes --------------------------------------------------------------------

bool DocumentScanner::ReadElement() {
  const char* const start = at_;
  const char* end = SkipQuick(start + 1, kQuickKeyword);
  const char next = *end;
  at_ = end;
  if (!IsQuick(next, kQuickWhite) && next != '"' && next != '(' && !EndsHere()) return false;

  FinishElement();
  frame_.owner = pending_elements_.Size();
  frame_.has_element = true;
  ElementRecord element{};
  element.start = OffsetOf(start);
  element.body = kNoRecord;
  element.keyword = document_.names_.Add(element.start, static_cast<std::uint32_t>(end - start));
  if (element.keyword == NameTable::kUnknown) return false;

  at_ = SkipQuick(end, kQuickWhite);
  if (IsQuick(*at_, kQuickLiteral) && !(*at_ == '(' && at_[1] == '*') &&
      (*at_ != '{' || OpensArray())) {
    if (!ReadLiteral(element.literal, element.start) || !EndsHere()) return false;
    end = at_;
  }
  // Without a value the white space stays, so that a line feed in it starts a statement.
  at_ = end;
  gap_ = end;
  is_fresh_ = false;
  pending_elements_.Push(element);
  return true;
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
  const char* const start = at_;
  if (frame_.owner == kNoRecord && !AddLoose()) return false;
  const char* const end = SkipQuick(start, kQuickName);
  AttributeRecord attribute{};
  attribute.name = document_.names_.Add(OffsetOf(start), static_cast<std::uint32_t>(end - start));
  if (attribute.name == NameTable::kUnknown) return false;
  at_ = end;
  is_fresh_ = false;
  if (*end == ':') {
    at_ = SkipQuick(end + 1, kQuickWhite);
    return ReadAttributeValue(attribute);
  }
  gap_ = end;
  pending_attributes_.Push(attribute);
  return EndsHere();
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
    const char* const start = at_;
    const char* const end = SkipQuick(start, kQuickModifier);
    attribute.modifier =
        document_.names_.Add(OffsetOf(start), static_cast<std::uint32_t>(end - start));
    if (attribute.modifier == NameTable::kUnknown) return false;
    at_ = end;
    if (*end != ':') {
      gap_ = end;
      pending_attributes_.Push(attribute);
      return EndsHere();
    }
    at_ = SkipQuick(end + 1, kQuickWhite);
  }
  if (*at_ == '{' && !OpensArray()) {
    pending_attributes_.Push(attribute);
    return OpenBody(true);
  }
  if (!IsQuick(*at_, kQuickLiteral) ||
      !ReadLiteral(attribute.literal, pending_elements_[frame_.owner].start))
    return false;
  gap_ = at_;
  pending_attributes_.Push(attribute);
  return EndsHere();
}

// Whether an item may end at the position.
bool DocumentScanner::EndsHere() const noexcept {
  return IsQuick(*at_, kQuickWhite) || (*at_ == '}' && !outer_.empty()) || at_ == end_;
}

bool DocumentScanner::OpensArray() const noexcept {
  const char byte = *SkipQuick(at_ + 1, kQuickWhite);
  return IsQuick(byte, kQuickLiteral);
}

// --- Bodies -------------------------------------------------------------------------------------

bool DocumentScanner::OpenBody(bool is_attribute) {
  if (!is_attribute) {
    bool done = false;
    if (next_semicolon_ != nullptr && !TryStatement(done)) return false;
    if (done) return true;
    if (!frame_.has_element || pending_elements_[frame_.owner].body != kNoRecord) return false;
    pending_elements_[frame_.owner].body = document_.bodies_.Size();
  } else {
    pending_attributes_.Back().literal.Set(LiteralKind::Body, document_.bodies_.Size());
  }
  outer_.push_back(frame_);
  frame_ = Frame();
  frame_.body = document_.bodies_.Size();
  frame_.elements = pending_elements_.Size();
  frame_.attributes = pending_attributes_.Size();
  frame_.is_attribute = is_attribute;
  ++at_;
  BodyRecord body{};
  body.start = OffsetOf(at_);
  document_.bodies_.Push(body);
  gap_ = at_;
  is_fresh_ = true;
  return true;
}

bool DocumentScanner::CloseBody() {
  if (outer_.empty()) return false;
  FinishElement();
  BodyRecord& body = document_.bodies_[frame_.body];
  body.end = OffsetOf(at_);
  body.has_loose = frame_.has_loose;
  const std::uint32_t loose = frame_.has_loose ? 1 : 0;
  body.first = document_.elements_.Size() + loose;
  body.count = pending_elements_.Size() - frame_.elements - loose;
  document_.elements_.TakeTail(pending_elements_, frame_.elements);
  const bool must_end = frame_.is_attribute;
  frame_ = outer_.back();
  outer_.pop_back();
  ++at_;
  gap_ = at_;
  is_fresh_ = false;
  return !must_end || EndsHere();
}

// --- Comments and statements --------------------------------------------------------------------

bool DocumentScanner::SkipLineComment() noexcept {
  const auto* feed =
      static_cast<const char*>(std::memchr(at_, '\n', static_cast<std::size_t>(end_ - at_)));
  at_ = feed != nullptr ? feed : end_;
  return true;
}

// Anything but a comment is either a statement or wrong.
bool DocumentScanner::ReadRest() {
  if (at_[0] != '(' || at_[1] != '*') {
    bool done = false;
    return next_semicolon_ != nullptr && TryStatement(done) && done;
  }
  is_fresh_ = IsAtStatementStart();
  const std::string_view text(text_, static_cast<std::size_t>(end_ - text_));
  at_ = text_ + BlockCommentEnd(text, OffsetOf(at_), text.size());
  gap_ = at_;
  return true;
}

// Whether a ";" stands somewhere behind the position, and nothing but the line feed that makes a
// statement possible before it.
bool DocumentScanner::MayStartStatement() {
  if (next_semicolon_ < at_ || next_semicolon_ == text_) {
    next_semicolon_ =
        static_cast<const char*>(std::memchr(at_, ';', static_cast<std::size_t>(end_ - at_)));
    if (next_semicolon_ == nullptr) return false;
  }
  return IsAtStatementStart();
}

bool DocumentScanner::IsAtStatementStart() const noexcept {
  return is_fresh_ || std::memchr(gap_, '\n', static_cast<std::size_t>(at_ - gap_)) != nullptr;
}

bool DocumentScanner::FindStatement(std::uint32_t& end) {
  const std::string_view text(text_, static_cast<std::size_t>(end_ - text_));
  std::size_t position = OffsetOf(at_);
  std::uint32_t depth = 0;
  while ((position = Find(text, position, text.size(), kLineStop)) < text.size()) {
    const char byte = text[position];
    if (depth == 0 && byte == '\n') return true;
    if (depth == 0 && byte == ';') {
      end = static_cast<std::uint32_t>(position);
      return true;
    }
    if (byte == '}' && depth-- == 0) return true;  // the stretch ends
    if (byte == '{') ++depth;
    const std::size_t next = SkipUnit(text, position, text.size());
    // Bodies inside bodies, each looked through: the Grammar has a better way.
    if (depth > 0) statement_steps_ += next - position + 1;
    if (statement_steps_ > 4 * text.size() + 4096) return false;
    position = next == position ? position + 1 : next;
  }
  return true;
}

// Reads the statement at the position, if there is one; false to give up.
bool DocumentScanner::TryStatement(bool& done) {
  std::uint32_t end = kNoRecord;
  if (*at_ == '@' || !MayStartStatement()) return true;
  if (!FindStatement(end)) return false;
  if (end == kNoRecord) return true;
  const std::uint32_t start = OffsetOf(at_);
  ElementRecord statement{};
  statement.start = start;
  statement.body = kNoRecord;
  statement.keyword = document_.names_.Add(end, 1);
  std::uint32_t index = 0;
  if (statement.keyword == NameTable::kUnknown ||
      !Compile({at_, end - start}, start, /*is_literal=*/false, /*is_shared=*/false, index)) {
    return false;
  }
  statement.literal.Set(LiteralKind::Made, index);
  // Not the owner of what follows: that is the element before it.
  pending_elements_.Push(statement);
  at_ = text_ + end + 1;
  gap_ = at_;
  is_fresh_ = true;
  done = true;
  return true;
}

}  // namespace ixomep
