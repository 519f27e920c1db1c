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
#include "ixomep/parser/parser_state.h"
#include "ixomep/parser/query_support.h"
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

// Where there is no memory for a state of its own, a parser has this one: of an empty text, which
// cannot be parsed.
ixomep::ParserState& SharedState() noexcept {
  static ixomep::ParserState state(String(), 0, 0, 0, String());
  state.is_shared = true;
  return state;
}

std::uint64_t PlaceOf(ixomep::ParserState& state) noexcept {
  return reinterpret_cast<std::uintptr_t>(&state);
}

}  // namespace

IxoMepParser::IxoMepParser(const String& text, const String& context)
    : IxoMepParser(text, 0, text.Len(), 0, context) {}

IxoMepParser::IxoMepParser(const String& text, const String& name, const String& kind)
    : IxoMepParser(text, LabelOf(name, kind)) {}

IxoMepParser::IxoMepParser(const String& text, std::int32_t start, std::int32_t length,
                           std::int32_t firstLine, const String& context)
    : place_(0) {
  start = std::clamp(start, 0, text.Len());
  TakeState(text, start, std::clamp(length, 0, text.Len() - start), firstLine, context);
  Init();
}

// The outer text is deciphered already.
IxoMepParser::IxoMepParser(const IxoMepParser& outer, std::int32_t start, std::int32_t length,
                           std::int32_t first_line)
    : place_(0) {
  const ixomep::ParserState& around = outer.State();
  std::unique_ptr<ixomep::Splices> splices;
  if (around.splices != nullptr) splices = std::make_unique<ixomep::Splices>(outer);
  TakeState(around.text, start, length, first_line, around.context);
  if (State().is_shared) throw std::bad_alloc();
  State().filename_stack = around.filename_stack;
  State().is_body = true;
  State().splices = std::move(splices);
}

IxoMepParser::~IxoMepParser() {
  ixomep::last_asked.Forget(this);
  if (!IsBodyNumber() && !State().is_shared) delete &State();
}

void IxoMepParser::TakeState(const String& text, std::int32_t start, std::int32_t length,
                             std::int32_t first_line, const String& context) noexcept {
  auto* const state =
      new (std::nothrow) ixomep::ParserState(text, start, length, first_line, context);
  place_ = PlaceOf(state != nullptr ? *state : SharedState());
}

ixomep::ParserState& IxoMepParser::OwnState() const {
  if (!IsBodyNumber()) return State();
  const ixomep::RecordRange records = Records();
  const ixomep::Document& document = *records.document;
  auto state = std::make_unique<ixomep::ParserState>(document.Text(), StartOffset(), GetTextLen(),
                                                     0, document.Context());
  ixomep::MemoryBudget::Take(sizeof(ixomep::ParserState));
  state->is_counted = true;
  state->is_body = true;
  state->records = &document;
  state->first_record = records.first;
  state->record_count = records.count;
  state->has_loose_record = records.has_loose;
  state->current_record = CurrentRecord();
  state->current_index = GetCurElemIndex();
  state->vars = GetVars();
  state->filename_stack = document.FilenameStack();
  // The cursor may stay: the current element is the same.
  place_ = PlaceOf(*state.release());
  return State();
}

ixomep::ParserState* IxoMepParser::TryOwnState() const noexcept {
  return ixomep::OrNeutral<ixomep::ParserState*>(nullptr, [this] { return &OwnState(); });
}

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
  if (TryOwnState() == nullptr) {
    ixomep::last_asked.Forget(this);
    place_ = PlaceOf(SharedState());
  }
  if (State().is_shared) {
    TakeState(taken, 0, taken.Len(), 0, String());
    Init();
    return;
  }
  ixomep::ParserState& state = State();
  ForgetRecords();
  SetCurrent(nullptr, -1);
  state.elements.clear();
  state.loose.reset();
  state.document.reset();
  state.is_body = false;
  state.splices.reset();
  state.text = taken;
  state.start = 0;
  state.length = taken.Len();
  Init();
}

IxoMepErrorEnum IxoMepParser::Parse() {
  try {
    MakeAll();
    if (State().is_shared) ixomep::MemoryBudget::Refuse();
  } catch (const std::exception& cause) {
    return NoteNoMemory(cause);
  }
  return Parse(State().start, State().length, State().first_line);
}

// For a whole text and the classes whose factories are known to make nothing of their own.
bool IxoMepParser::ReadQuickly(std::int32_t start, std::int32_t length, std::int32_t first_line,
                               ixomep::FoldedLiterals& folded) {
  ixomep::ParserState& state = State();
  const bool is_plain =
      typeid(*this) == typeid(IxoMepParser) || typeid(*this) == typeid(IxoMepConverter);
  if (!is_plain || !ixomep::QuickReading::IsOn() || state.is_body || state.splices != nullptr ||
      !state.elements.empty() || length != state.text.Len() - start) {
    return false;
  }
  try {
    auto document = std::make_unique<ixomep::Document>(
        state.text, static_cast<std::uint32_t>(start), first_line > 0 ? first_line : 1,
        state.context, state.filename_stack);
    ixomep::DocumentScanner scanner(*document);
    if (!scanner.Read(folded)) return false;
    state.include_shift = 0;
    state.document = std::move(document);
    if (scanner.Count() == 0) return true;
    state.records = state.document.get();
    state.first_record = scanner.First();
    state.record_count = scanner.Count();
    state.current_index = 0;
    state.current_record = &state.records->Element(state.first_record);
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
    State().error_text.Clear();
    NoteError(IMEPERR_NONE, -1);
    ixomep::FoldedLiterals folded;
    if (ReadQuickly(start, length, first_line, folded)) return IMEPERR_NONE;
    return ixomep::Grammar(&folded).Read(*this, start, length, first_line);
  } catch (const std::exception& cause) {
    return NoteNoMemory(cause);
  }
}

IxoMepErrorEnum IxoMepParser::NoteNoMemory(const std::exception& cause) noexcept {
  ixomep::ParserState* const state = TryOwnState();
  if (state == nullptr) return IMEPERR_TOO_DEEP;
  state->error_code = ixomep::RaiseNoMemory(state->error_text, IMEPERR_TOO_DEEP, cause);
  const ixomep::MemoryBudget::Reserve reserve;
  try {
    NoteError(state->error_code, -1);
    AppendContextInfo(-1);
  } catch (const std::exception&) {
    state->error_text.Clear();
  }
  return state->error_code;
}

// --- The text -----------------------------------------------------------------------------------

void IxoMepParser::Compose() const {
  if (IsBodyNumber()) return;
  ixomep::ParserState& state = State();
  if (state.splices == nullptr || state.splices->IsComposed()) return;
  state.text = state.splices->Segments(state.context).Copy(0, state.splices->Length());
  state.splices->SetComposed();
}

const String& IxoMepParser::GetCompleteText() const {
  try {
    Compose();
  } catch (const std::exception&) {
    static const String no_memory;
    return no_memory;
  }
  return IsBodyNumber() ? BodyDocument().Text() : State().text;
}

String IxoMepParser::CopyText(std::int32_t start, std::int32_t count) const {
  try {
    const ixomep::Splices* const splices = IsBodyNumber() ? nullptr : State().splices.get();
    if (splices == nullptr || splices->IsComposed()) return GetCompleteText().Copy(start, count);
    const std::int32_t from = std::clamp(start, 0, splices->Length());
    return splices->Segments(GetContext())
        .Copy(from, std::clamp(count, 0, splices->Length() - from));
  } catch (const std::exception&) {
    return String();
  }
}

String IxoMepParser::GetText() const { return CopyText(StartOffset(), GetTextLen()); }

std::int32_t IxoMepParser::StartOffset() const noexcept {
  return IsBodyNumber() ? static_cast<std::int32_t>(BodyOfNumber().start) : State().start;
}

std::int32_t IxoMepParser::GetTextLen() const noexcept {
  if (!IsBodyNumber()) return State().length;
  const ixomep::BodyRecord& body = BodyOfNumber();
  return static_cast<std::int32_t>(body.end - body.start);
}

ixomep::TextPlace IxoMepParser::FindPlace(ixomep::SoughtPlace place) const {
  if (IsBodyNumber() || State().splices == nullptr) {
    return ixomep::SegmentList(GetCompleteText(), GetContext()).Find(place);
  }
  return State().splices->Segments(GetContext()).Find(place);
}

// --- What a host sets ---------------------------------------------------------------------------

const String& IxoMepParser::GetContext() const noexcept {
  return IsBodyNumber() ? BodyDocument().Context() : State().context;
}

void IxoMepParser::SetVars(IxoMepValueSet* vars) noexcept {
  if (!IsBodyNumber()) {
    State().vars = vars;
    return;
  }
  ixomep::OrNeutral(false, [&] {
    BodyDocument().SetVarsOf(BodyNumber(), vars);
    return true;
  });
}

IxoMepValueSet* IxoMepParser::GetVars() const noexcept {
  return IsBodyNumber() ? BodyDocument().VarsOf(BodyNumber()) : State().vars;
}

void IxoMepParser::SetUseIncludeCache(bool use) noexcept {
  if (IsBodyNumber() && !use) return;
  if (ixomep::ParserState* const state = TryOwnState()) state->use_include_cache = use;
}

void IxoMepParser::SetCurrent(IxoMepElement* element, std::int32_t index) noexcept {
  State().current = element != nullptr ? element : ixomep::EmptyElement();
  State().current_index = index;
}

// --- The last error -----------------------------------------------------------------------------

const String& IxoMepParser::GetErrorText() const noexcept {
  static const String none;
  return IsBodyNumber() ? none : State().error_text;
}

IxoMepErrorEnum IxoMepParser::GetErrorCode() const noexcept {
  return IsBodyNumber() ? IMEPERR_NONE : State().error_code;
}

std::int32_t IxoMepParser::GetErrorOffset() const noexcept {
  return IsBodyNumber() ? -1 : State().error_offset;
}

std::int32_t IxoMepParser::GetErrorLine() const noexcept {
  return IsBodyNumber() ? 0 : State().error_line;
}

std::int32_t IxoMepParser::GetErrorColumn() const noexcept {
  return IsBodyNumber() ? 0 : State().error_column;
}

const String& IxoMepParser::GetErrorContext() const noexcept {
  return IsBodyNumber() ? GetContext() : State().error_context;
}

void IxoMepParser::NoteError(IxoMepErrorEnum code, ixomep::SoughtPlace sought) {
  ixomep::ParserState& state = State();
  state.error_code = code;
  state.error_offset = sought.offset == String::kNotFound ? -1 : std::max(sought.offset, -1);
  state.error_line = 0;
  state.error_column = 0;
  state.error_context = state.context;
  if (code == IMEPERR_NONE || state.error_offset < 0) return;
  const ixomep::TextPlace place = FindPlace(sought);
  state.error_line = place.line;
  state.error_column = place.column;
  state.error_context = place.context;
}

void IxoMepParser::CopyError(const IxoMepParser& inner, std::int32_t offset) noexcept {
  ixomep::ParserState& state = State();
  const ixomep::ParserState& from = inner.State();
  state.error_text = from.error_text;
  state.error_code = from.error_code;
  state.error_offset = offset;
  state.error_line = from.error_line;
  state.error_column = from.error_column;
  state.error_context = from.error_context;
}
