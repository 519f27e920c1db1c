// The frames of a reading: outermost stretch, bodies, included files; how each is entered and
// ended, and how an error gets out of all of them. What is read inside a frame is in grammar.cpp
// and attributes.cpp. See reader.h.
#include "ixomep/parser/reader.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

#include "ixomep/expr/stack_guard.h"
#include "ixomep/parser/bytes.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/parser_state.h"
#include "ixomep/parser/spliced_text.h"
#include "ixomep/values/error.h"

namespace ixomep {

// Frames are left over only when an exception ended the reading.
Grammar::~Grammar() {
  while (!frames_.empty()) {
    if (Top().kind == ReadingFrame::Kind::Include) DropInclude();
    frames_.pop_back();
  }
}

IxoMepErrorEnum Grammar::Read(IxoMepParser& parser, std::int32_t start, std::int32_t length,
                              std::int32_t first_line) {
  ReadingFrame frame;
  frame.parser = &parser;
  parser.Compose();
  frame.source = parser.State().text;
  frame.bytes = frame.source.view();
  frame.position = std::min(static_cast<std::size_t>(start), frame.bytes.size());
  frame.end = std::min(frame.position + static_cast<std::size_t>(length), frame.bytes.size());
  // A leading line feed counts when it is passed, as every other one.
  frame.line = first_line > 0 ? first_line : 1;
  frame.own_extents = std::make_unique<Extents>(frame.bytes);
  frame.extents = frame.own_extents.get();
  frame.saved_shift = std::exchange(parser.State().include_shift, 0);
  frames_.push_back(std::move(frame));
  return Run();
}

IxoMepErrorEnum Grammar::Run() {
  for (;;) {
    const IxoMepErrorEnum code = ReadStretch();
    if (code != IMEPERR_NONE) {
      Unwind();
      return code;
    }
    while (Top().position >= Top().end) {
      Finish();
      if (frames_.empty()) return IMEPERR_NONE;
    }
  }
}

// Ends the top frame, whose stretch has been read without error.
void Grammar::Finish() {
  ReadingFrame& done = Top();
  IxoMepParser& parser = *done.parser;
  parser.State().include_shift += done.saved_shift;
  if (done.kind == ReadingFrame::Kind::Include) {
    DropInclude();
    frames_.pop_back();
    return;
  }
  if (!parser.State().elements.empty()) parser.SetCurrent(parser.State().elements.front().get(), 0);
  if (done.kind == ReadingFrame::Kind::Outermost) {
    frames_.pop_back();
    return;
  }
  *done.owner = std::move(done.body);
  const std::size_t close = done.end;
  const std::int32_t line = done.line;
  frames_.pop_back();
  Top().position = close + 1;
  Top().line = line;
  Top().at_statement_start = false;
}

// Hands the error of the innermost parser to all parsers around it.
void Grammar::Unwind() {
  while (!frames_.empty()) {
    const ReadingFrame::Kind kind = Top().kind;
    if (kind == ReadingFrame::Kind::Include) {
      error_position_ = Top().directive_start;
      DropInclude();
    }
    if (kind == ReadingFrame::Kind::Outermost || kind == ReadingFrame::Kind::Include) {
      frames_.pop_back();
      continue;
    }
    const ReadingFrame inner = std::move(Top());
    frames_.pop_back();
    IxoMepParser& outer = *Top().parser;
    outer.CopyError(*inner.parser, SoughtPlaceOf(error_position_).offset);
  }
}

// Ends an include, read or not: its name goes, and its directive is not current any more.
void Grammar::DropInclude() noexcept {
  IxoMepParser& parser = *Top().parser;
  parser.PopFilename();
  // Meant: as after every reading the first element becomes current, so that attributes behind
  // an include belong to it.
  if (parser.State().elements.empty()) {
    parser.SetCurrent(nullptr, -1);
  } else {
    parser.SetCurrent(parser.State().elements.front().get(), 0);
  }
}

IxoMepErrorEnum Grammar::ReadBody(std::size_t open, std::size_t close, ReadingFrame::Kind kind,
                                  BodyPtr* owner) {
  IxoMepParser& outer = *Top().parser;
  const std::int32_t start = OffsetOf(open + 1);
  const auto length = static_cast<std::int32_t>(close - open - 1);
  // These two have no factory of their own, and so need no composed text to hand to it.
  if (typeid(outer) == typeid(IxoMepParser) || typeid(outer) == typeid(IxoMepConverter)) {
    EnterBody(open, close, kind, owner,
              BodyPtr(new IxoMepParser(outer, start, length, Top().line)));
    return IMEPERR_NONE;
  }
  outer.Compose();
  const String text = outer.State().text;
  BodyPtr body(outer.NewParser(text, start, length, Top().line, outer.GetContext()));
  if (body == nullptr || body->State().is_shared) return Fail(IMEPERR_TOO_DEEP, open);
  body->State().is_body = true;
  body->State().filename_stack = outer.State().filename_stack;
  if (!body->State().text.SharesTextWith(text) || body->State().start != start ||
      body->State().length != length) {
    return ReadForeignBody(open, close, owner, std::move(body));
  }
  if (outer.State().splices != nullptr) {
    body->State().splices = std::make_unique<Splices>(outer);
    body->State().splices->SetComposed();
  }
  EnterBody(open, close, kind, owner, std::move(body));
  return IMEPERR_NONE;
}

void Grammar::EnterBody(std::size_t open, std::size_t close, ReadingFrame::Kind kind,
                        BodyPtr* owner, BodyPtr body) {
  const ReadingFrame& outer = Top();
  ReadingFrame frame;
  frame.kind = kind;
  frame.continues = outer.continues;
  frame.is_included = outer.is_included;
  frame.base = outer.base + outer.parser->State().include_shift;
  frame.line = outer.line;
  frame.parser = body.get();
  frame.extents = outer.extents;
  frame.source = outer.source;
  frame.bytes = outer.bytes;
  frame.position = open + 1;
  frame.end = close;
  frame.body = std::move(body);
  frame.owner = owner;
  frames_.push_back(std::move(frame));
}

// A body whose factory gave it another text than it was asked to: it is read on its own.
IxoMepErrorEnum Grammar::ReadForeignBody(std::size_t open, std::size_t close, BodyPtr* owner,
                                         BodyPtr body) {
  if (!StackGuard::HasRoom()) return Fail(IMEPERR_TOO_DEEP, open);
  const IxoMepErrorEnum code = body->Parse();
  if (code != IMEPERR_NONE) {
    error_position_ = open;
    Top().parser->CopyError(*body, OffsetOf(open));
    return code;
  }
  *owner = std::move(body);
  PassLines(open, close);
  Top().position = close + 1;
  Top().at_statement_start = false;
  return IMEPERR_NONE;
}

// --- Shared -----------------------------------------------------------------------------------

bool Grammar::HasCurrent() const noexcept {
  const IxoMepParser& parser = *frames_.back().parser;
  return parser.State().current->GetParser() != nullptr &&
         parser.State().current != parser.State().loose.get();
}

// The element that an attribute belongs to; null when there is none. A body may begin with
// attributes: they get an element without a keyword, which is none of the body's elements.
IxoMepElement* Grammar::AttributeOwner() {
  IxoMepParser& parser = *Top().parser;
  if (!HasCurrent()) {
    if (!parser.State().is_body) return nullptr;
    if (parser.State().loose == nullptr) {
      parser.State().loose = std::make_unique<IxoMepElement>(String(), &parser, -1, Top().line);
    }
    parser.SetCurrent(parser.State().loose.get(), -1);
  }
  return parser.State().current;
}

std::int32_t Grammar::OffsetOf(std::size_t position) const noexcept {
  const ReadingFrame& frame = frames_.back();
  return frame.base + static_cast<std::int32_t>(position) + frame.parser->State().include_shift;
}

SoughtPlace Grammar::SoughtPlaceOf(std::size_t position) const noexcept {
  const ReadingFrame& frame = frames_.back();
  const bool is_file_end = frame.is_included && position > 0 && position >= frame.bytes.size();
  return {OffsetOf(is_file_end ? frame.bytes.size() : position), is_file_end};
}

void Grammar::PassLines(std::size_t from, std::size_t to) noexcept {
  ReadingFrame& frame = Top();
  to = std::min(to, frame.bytes.size());
  // A host may start with any line: wraps.
  frame.line =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(frame.line) +
                                static_cast<std::uint32_t>(CountLineFeeds(frame.bytes, from, to)));
}

// The text from a position to the next white space.
std::string_view Grammar::WordAt(std::size_t position) const noexcept {
  const ReadingFrame& frame = frames_.back();
  return frame.bytes.substr(position, Find(frame.bytes, position, frame.end, kWhite) - position);
}

const String& Grammar::Shared(std::string_view name) {
  const std::size_t key = name.size() * 31 + static_cast<unsigned char>(name.front()) * 7 +
                          static_cast<unsigned char>(name.back());
  String& slot = names_[key % names_.size()];
  if (slot != name) slot = String(name);
  return slot;
}

ValuePtr Grammar::ReadValue(std::size_t& position, IxoMepErrorEnum& code) {
  const ReadingFrame& frame = Top();
  const std::size_t start = position;
  LiteralContext context(frame.parser, frame.line);
  context.folded = folded_;
  ValuePtr value = ReadLiteral({frame.bytes, frame.continues}, position, context);
  if (value != nullptr) {
    PassLines(start, position);
    return value;
  }
  code = context.code;
  const bool is_number = !Is(frame.bytes[start], kNestStop);
  if (code == IMEPERR_NUMBER_OVERFLOW && is_number && frame.parser->State().splices != nullptr) {
    // The text being read is the complete one, not this file's.
    frame.parser->Compose();
    Raise(context.error_text, code, {{"%func", frame.parser->State().text.view()}});
  }
  const bool has_place = context.error_place != LiteralContext::kNoPlace;
  const std::size_t place = has_place ? std::min(context.error_place, position) : start;
  FailWith(code, context.error_text, place, place);
  return nullptr;
}

IxoMepErrorEnum Grammar::Fail(IxoMepErrorEnum code, std::size_t position,
                              std::initializer_list<Fill> fills) {
  error_position_ = position;
  IxoMepParser& parser = *Top().parser;
  parser.MakeErrorText(code, SoughtPlaceOf(position));
  for (const Fill& fill : fills) {
    FillPlaceholder(parser.State().error_text, fill.placeholder, fill.replacement);
  }
  return code;
}

IxoMepErrorEnum Grammar::FailWith(IxoMepErrorEnum code, const String& text, std::size_t position,
                                  std::size_t place) {
  error_position_ = place;
  IxoMepParser& parser = *Top().parser;
  parser.State().error_text = text;
  parser.AppendContextInfo(SoughtPlaceOf(position));
  parser.NoteError(code, SoughtPlaceOf(place));
  return code;
}

}  // namespace ixomep
