// The life of a parser: construction, SetText, Parse, the factories, and the complete text. What
// a reading does is in grammar.cpp, attributes.cpp and include.cpp.
#include "ixomep/parser/parser.h"

#include <algorithm>
#include <exception>
#include <new>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/reader.h"
#include "ixomep/parser/spliced_text.h"

namespace {

// The current element of a parser that has none.
IxoMepElement* EmptyElement() noexcept {
  static IxoMepElement empty;
  return &empty;
}

String LabelOf(const String& name, const String& kind) noexcept {
  try {
    return "\"" + name + "\" (" + kind + ")";
  } catch (const std::exception&) {
    return String();
  }
}

}  // namespace

IxoMepParser::IxoMepParser(const String& text, const String& context)
    : IxoMepParser(text, 0, text.Len(), 0, context) {}

IxoMepParser::IxoMepParser(const String& text, const String& name, const String& kind)
    : IxoMepParser(text, LabelOf(name, kind)) {}

IxoMepParser::IxoMepParser(const String& text, std::int32_t start, std::int32_t length,
                           std::int32_t firstLine, const String& context)
    : text_(text),
      start_(std::clamp(start, 0, text.Len())),
      length_(std::clamp(length, 0, text.Len() - start_)),
      first_line_(firstLine),
      context_(context),
      current_(EmptyElement()),
      error_context_(context) {
  Init();
}

// The outer text is deciphered already.
IxoMepParser::IxoMepParser(const IxoMepParser& outer, std::int32_t start, std::int32_t length,
                           std::int32_t first_line)
    : text_(outer.text_),
      start_(start),
      length_(length),
      first_line_(first_line),
      context_(outer.context_),
      current_(EmptyElement()),
      filename_stack_(outer.filename_stack_),
      is_body_(true),
      error_context_(outer.context_) {
  if (outer.splices_ != nullptr) {
    splices_ = std::make_unique<ixomep::Splices>(outer);
  }
}

IxoMepParser::~IxoMepParser() = default;

IxoMepParser* IxoMepParser::NewParser(const String& text, std::int32_t start, std::int32_t length,
                                      std::int32_t firstLine, const String& context) {
  return new (std::nothrow) IxoMepParser(text, start, length, firstLine, context);
}

IxoMepExpressionParser* IxoMepParser::NewExprParser() {
  return new (std::nothrow) IxoMepExpressionParser;
}

void IxoMepParser::SetText(const String& text) {
  // It may belong to an element that goes.
  const String taken = text;  // NOLINT(performance-unnecessary-copy-initialization)
  SetCurrent(nullptr, -1);
  elements_.clear();
  loose_.reset();
  is_body_ = false;
  splices_.reset();
  text_ = taken;
  start_ = 0;
  length_ = taken.Len();
  Init();
}

IxoMepErrorEnum IxoMepParser::Parse() { return Parse(start_, length_, first_line_); }

IxoMepErrorEnum IxoMepParser::Parse(std::int32_t start, std::int32_t length,
                                    std::int32_t first_line) {
  try {
    error_text_.Clear();
    NoteError(IMEPERR_NONE, -1);
    return ixomep::Grammar().Read(*this, start, length, first_line);
  } catch (const std::exception&) {
    error_code_ = IMEPERR_TOO_DEEP;
  }
  try {
    MakeErrorText(IMEPERR_TOO_DEEP, -1);
  } catch (const std::exception&) {
    error_text_.Clear();
  }
  return IMEPERR_TOO_DEEP;
}

void IxoMepParser::Compose() const {
  if (splices_ == nullptr || splices_->IsComposed()) return;
  text_ = splices_->Segments(context_).Copy(0, splices_->Length());
  splices_->SetComposed();
}

const String& IxoMepParser::GetCompleteText() const {
  try {
    Compose();
  } catch (const std::exception&) {
    static const String no_memory;
    return no_memory;
  }
  return text_;
}

String IxoMepParser::CopyText(std::int32_t start, std::int32_t count) const {
  try {
    if (splices_ == nullptr || splices_->IsComposed()) return text_.Copy(start, count);
    const std::int32_t from = std::clamp(start, 0, splices_->Length());
    return splices_->Segments(context_).Copy(from, std::clamp(count, 0, splices_->Length() - from));
  } catch (const std::exception&) {
    return String();
  }
}

String IxoMepParser::GetText() const { return CopyText(start_, length_); }

ixomep::TextPlace IxoMepParser::FindPlace(std::int32_t offset) const {
  if (splices_ == nullptr) return ixomep::SegmentList(text_, context_).Find(offset);
  return splices_->Segments(context_).Find(offset);
}

void IxoMepParser::SetCurrent(IxoMepElement* element, std::int32_t index) noexcept {
  current_ = element != nullptr ? element : EmptyElement();
  current_index_ = index;
}

void IxoMepParser::NoteError(IxoMepErrorEnum code, std::int32_t offset) {
  error_code_ = code;
  error_offset_ = offset == String::kNotFound ? -1 : std::max(offset, -1);
  error_line_ = 0;
  error_column_ = 0;
  error_context_ = context_;
  if (code == IMEPERR_NONE || error_offset_ < 0) return;
  const ixomep::TextPlace place = FindPlace(error_offset_);
  error_line_ = place.line;
  error_column_ = place.column;
  error_context_ = place.context;
}

void IxoMepParser::CopyError(const IxoMepParser& inner, std::int32_t offset) noexcept {
  error_text_ = inner.error_text_;
  error_code_ = inner.error_code_;
  error_offset_ = offset;
  error_line_ = inner.error_line_;
  error_column_ = inner.error_column_;
  error_context_ = inner.error_context_;
}
