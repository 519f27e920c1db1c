// The life of a parser: construction, SetText, Parse, the factories, and the complete text. What
// a reading does is in grammar.cpp, attributes.cpp and include.cpp.
#include "ixomep/parser/parser.h"

#include <algorithm>
#include <exception>
#include <new>
#include <typeinfo>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/host/limit_watch.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/document.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/reader.h"
#include "ixomep/parser/spliced_text.h"
#include "ixomep/values/raise.h"

namespace {

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
      current_(ixomep::EmptyElement()),
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
      current_(ixomep::EmptyElement()),
      filename_stack_(outer.filename_stack_),
      is_body_(true),
      error_context_(outer.context_) {
  if (outer.splices_ != nullptr) {
    splices_ = std::make_unique<ixomep::Splices>(outer);
  }
}

IxoMepParser::IxoMepParser(const ixomep::Document& document,
                           const ixomep::BodyRecord& body) noexcept
    : text_(document.Text()),
      start_(static_cast<std::int32_t>(body.start)),
      length_(static_cast<std::int32_t>(body.end - body.start)),
      first_line_(0),
      context_(document.Context()),
      records_(&document),
      first_record_(body.first),
      record_count_(body.count),
      has_loose_record_(body.has_loose != 0),
      current_index_(body.is_left_at_last != 0 ? static_cast<std::int32_t>(body.count) - 1
                     : body.count != 0         ? 0
                                               : -1),
      current_(body.count != 0 || body.has_loose != 0 ? nullptr : ixomep::EmptyElement()),
      filename_stack_(document.FilenameStack()),
      is_body_(true),
      error_context_(document.Context()) {}

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
  ForgetRecords();
  SetCurrent(nullptr, -1);
  elements_.clear();
  loose_.reset();
  document_.reset();
  is_body_ = false;
  splices_.reset();
  text_ = taken;
  start_ = 0;
  length_ = taken.Len();
  Init();
}

IxoMepErrorEnum IxoMepParser::Parse() {
  try {
    MakeAll();
  } catch (const std::exception& cause) {
    return NoteNoMemory(cause);
  }
  return Parse(start_, length_, first_line_);
}

// For a whole text and the classes whose factories are known to make nothing of their own.
bool IxoMepParser::ReadQuickly(std::int32_t start, std::int32_t length, std::int32_t first_line,
                               ixomep::FoldedLiterals& folded) {
  const bool is_plain =
      typeid(*this) == typeid(IxoMepParser) || typeid(*this) == typeid(IxoMepConverter);
  if (!is_plain || !ixomep::QuickReading::IsOn() || is_body_ || splices_ != nullptr ||
      !elements_.empty() || length != text_.Len() - start) {
    return false;
  }
  try {
    auto document = std::make_unique<ixomep::Document>(text_, static_cast<std::uint32_t>(start),
                                                       first_line > 0 ? first_line : 1, context_,
                                                       filename_stack_);
    ixomep::DocumentScanner scanner(*document);
    if (!scanner.Read(folded)) return false;
    include_shift_ = 0;
    document_ = std::move(document);
    if (scanner.Count() == 0) return true;
    records_ = document_.get();
    first_record_ = scanner.First();
    record_count_ = scanner.Count();
    current_index_ = 0;
    current_ = nullptr;
    return true;
  } catch (const ixomep::LimitExceeded& exceeded) {
    if (exceeded.Which() == ixomep::Limit::Interrupt) throw;
    return false;
  } catch (const std::exception&) {
    return false;  // the Grammar says where the memory ends
  }
}

IxoMepErrorEnum IxoMepParser::Parse(std::int32_t start, std::int32_t length,
                                    std::int32_t first_line) {
  try {
    error_text_.Clear();
    NoteError(IMEPERR_NONE, -1);
    ixomep::FoldedLiterals folded;
    if (ReadQuickly(start, length, first_line, folded)) return IMEPERR_NONE;
    return ixomep::Grammar(&folded).Read(*this, start, length, first_line);
  } catch (const std::exception& cause) {
    return NoteNoMemory(cause);
  }
}

IxoMepErrorEnum IxoMepParser::NoteNoMemory(const std::exception& cause) noexcept {
  error_code_ = ixomep::RaiseNoMemory(error_text_, IMEPERR_TOO_DEEP, cause);
  const ixomep::MemoryBudget::Reserve reserve;
  try {
    NoteError(error_code_, -1);
    AppendContextInfo(-1);
  } catch (const std::exception&) {
    error_text_.Clear();
  }
  return error_code_;
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
  current_ = element != nullptr ? element : ixomep::EmptyElement();
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
