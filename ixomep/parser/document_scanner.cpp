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

namespace ixomep {
namespace {

// Rough sizes, so that the arrays seldom grow. Room that stays unused is given back.
constexpr std::uint32_t kBytesOfElement = 96;
constexpr std::uint32_t kBytesOfAttribute = 24;

}  // namespace

DocumentScanner::DocumentScanner(Document& document)
    : document_(document),
      text_(document.text_.c_str()),
      at_(text_ + document.start_),
      end_(text_ + document.text_.Len()),
      block_end_(end_ - std::min(end_ - at_, kBlockRoom - 1)),
      run_end_(end_ - std::min(end_ - at_, kRunRoom)),
      attributes_(&document.attributes_) {
  const auto bytes = static_cast<std::uint32_t>(end_ - at_);
  // Only where there is plenty of memory.
  if (MemoryBudget::MayTake(std::size_t{4} * bytes)) {
    pending_elements_.Reserve(bytes / kBytesOfElement + 4);
    document.attributes_.Reserve(bytes / kBytesOfAttribute + 8);
  }
}

bool DocumentScanner::Read(FoldedLiterals& folded) {
  if (!Scan() && !ScanWithStatements()) return false;
  if (!Fold(folded)) return false;
  document_.bodies_.Push(BodyRecord(first_, 0, 0, false));
  document_.elements_.Trim();
  document_.attributes_.Trim();
  document_.bodies_.Trim();
  return true;
}

bool DocumentScanner::Scan() {
  gap_ = at_;
  for (;;) {
    work_.Part();
    if (!ReadRun()) return false;
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
    form = Form::OtherElement;
  }
  if (form == Form::OtherElement && !IsQuick(next, kQuickWhite)) {
    // Not every value may touch the keyword: such items are looked at each time.
    last_ = element.keyword + kAfterName;
  } else {
    Learn(form, form == Form::OtherElement ? value : end, element.keyword, NameTable::kNoName);
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

// The owner of the attributes gets no more of them, where some came behind those of bodies.
void DocumentScanner::FinishSplitElement() {
  if (frame_.is_pending) {
    const std::uint32_t first = document_.attributes_.Size();
    document_.attributes_.TakeTail(pending_attributes_, frame_.attributes);
    frame_.attributes = first;
  }
  SetAttributes(frame_.is_split ? frame_.attributes_end : document_.attributes_.Size());
  frame_.is_split = false;
  frame_.is_pending = false;
  attributes_ = &document_.attributes_;
}

AttributeRecord& DocumentScanner::AddAttribute(const AttributeRecord& attribute) {
  if (frame_.is_split) {
    const std::uint32_t first = pending_attributes_.Size();
    for (std::uint32_t i = frame_.attributes; i < frame_.attributes_end; ++i) {
      pending_attributes_.Push(document_.attributes_[i]);
    }
    frame_.attributes = first;
    frame_.is_split = false;
    frame_.is_pending = true;
    attributes_ = &pending_attributes_;
  }
  attributes_->Push(attribute);
  return attributes_->Back();
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
  AddAttribute(attribute);
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
      AddAttribute(attribute);
      return EndsAt(at_);
    }
    at_ = SkipQuick(at_ + 1, kQuickWhite);
  }
  if (*at_ == '{' && !OpensArray(at_)) {
    AddAttribute(attribute);
    return OpenBody(true);
  }
  const char* const value = at_;
  if (!IsQuick(*at_, kQuickLiteral) ||
      !ReadLiteral(attribute.literal, pending_elements_[frame_.owner].start))
    return false;
  Learn(Form::Other, value, attribute.name, attribute.modifier);
  gap_ = at_;
  AddAttribute(attribute);
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
    frame_.holder = attributes_->Size() - 1;
  }
  if (!frame_.is_split) frame_.attributes_end = document_.attributes_.Size();
  outer_.push_back(frame_);
  ++at_;
  Frame inner;
  inner.start = OffsetOf(at_);
  inner.elements = pending_elements_.Size();
  inner.attributes = document_.attributes_.Size();
  inner.is_attribute = is_attribute;
  frame_ = inner;
  attributes_ = &document_.attributes_;
  last_ = kAfterOpener;
  gap_ = at_;
  is_fresh_ = true;
  return true;
}

bool DocumentScanner::CloseBody() {
  if (outer_.empty()) return false;
  FinishElement();
  const std::uint32_t number = document_.bodies_.Size();
  const std::uint32_t first = document_.elements_.Size() + (frame_.has_loose ? 1 : 0);
  document_.bodies_.Next() = BodyRecord(first, frame_.start, OffsetOf(at_), frame_.has_loose);
  document_.bodies_.PushNext();
  document_.elements_.TakeTail(pending_elements_, frame_.elements);
  const bool must_end = frame_.is_attribute;
  frame_ = outer_.back();
  outer_.pop_back();
  const bool is_pending = frame_.is_pending;
  if (must_end) {
    (is_pending ? pending_attributes_ : document_.attributes_)[frame_.holder].literal.Set(
        LiteralKind::Body, number);
  } else {
    pending_elements_[frame_.owner].body = number;
  }
  if (is_pending) {
    attributes_ = &pending_attributes_;
  } else {
    const std::uint32_t end = document_.attributes_.Size();
    if (frame_.attributes == frame_.attributes_end) frame_.attributes = end;
    frame_.is_split = frame_.attributes != end && frame_.attributes_end != end;
  }
  ++at_;
  gap_ = at_;
  is_fresh_ = false;
  last_ = kAfterCloser;
  return !must_end || EndsAt(at_);
}

}  // namespace ixomep
