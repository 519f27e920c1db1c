// Definition text to elements: the top level, elements, bodies and expression statements. The
// frames of nested stretches are in reader.cpp. See reader.h.
#include <algorithm>
#include <charconv>
#include <typeinfo>
#include <utility>

#include "ixomep/expr/error_place.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/parser/bytes.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/parser_state.h"
#include "ixomep/parser/reader.h"
#include "ixomep/parser/spliced_text.h"

namespace ixomep {
namespace {

constexpr unsigned kKeywordBytes = kUpper;

// The number that a host may have put in front of its error texts; 0 when there is none.
int LeadingNumber(const String& text) noexcept {
  int number = 0;
  const std::string_view view = text.view();
  std::from_chars(view.data(), view.data() + view.size(), number);
  return number;
}

bool IsErrorCode(int number) noexcept {
  return number > IMEPERR_NONE && number <= IMEPERR_INCLUDE_FAILED;
}

}  // namespace

// --- Top level --------------------------------------------------------------------------------

// Reads items of the top frame until its end, an error, or another frame on top.
IxoMepErrorEnum Grammar::ReadStretch() {
  const std::size_t depth = frames_.size();
  while (frames_.size() == depth) {
    work_.Part();
    ReadingFrame& frame = Top();
    if (frame.position >= frame.end) break;
    const char byte = frame.bytes[frame.position];
    if (Is(byte, kWhite)) {
      if (byte == '\n') {
        PassLines(frame.position, frame.position + 1);
        frame.at_statement_start = true;
      }
      ++frame.position;
    } else if (byte == '#') {
      frame.position = LineCommentEnd(frame.bytes, frame.position, frame.end);
      frame.at_statement_start = true;
    } else if (OpensComment(frame.bytes, frame.position, frame.end)) {
      const std::size_t end = BlockCommentEnd(frame.bytes, frame.position, frame.end);
      PassLines(frame.position, end);
      frame.position = end;
    } else if (const IxoMepErrorEnum code = ReadItem(byte); code != IMEPERR_NONE) {
      return code;
    }
  }
  return IMEPERR_NONE;
}

IxoMepErrorEnum Grammar::ReadItem(char first) {
  ReadingFrame& frame = Top();
  if (first == '@' || Is(first, kUpper)) return ReadElement();
  if (frame.at_statement_start) {
    const std::size_t end = frame.extents->FindStatementEnd(frame.position, frame.end);
    if (end != kNoMatch) return ReadStatement(frame.position, end, frame.line);
  }
  if (Is(first, kNameStart)) return ReadAttribute();
  if (first == '{') return ReadElementBody();
  return Unexpected();
}

IxoMepErrorEnum Grammar::Unexpected() {
  const std::size_t position = Top().position;
  if (!HasCurrent()) return Fail(IMEPERR_OUTSIDE_ELEMENT, position, {{"%s", WordAt(position)}});
  return Fail(IMEPERR_UNEXPECTED_CHARACTER, position, {{"%c", Top().bytes.substr(position, 1)}});
}

IxoMepErrorEnum Grammar::ReadExpressionText(std::size_t start, std::size_t end, std::int32_t line,
                                            std::unique_ptr<IxoMepExpressionParser>& expression) {
  ReadingFrame& frame = Top();
  expression = NewExpression(frame.parser);
  String text;
  const IxoMepErrorEnum code =
      expression->SetExpression(String(frame.bytes.substr(start, end - start)), text);
  if (code == IMEPERR_NONE) {
    expression->SetLineNo(static_cast<std::uint32_t>(line));
    return code;
  }
  const std::int32_t place = ErrorPlace::Offset();
  return FailWith(code, text, start,
                  place < 0 ? start : std::min(start + static_cast<std::size_t>(place), end));
}

IxoMepErrorEnum Grammar::ReadStatement(std::size_t start, std::size_t end, std::int32_t line) {
  ReadingFrame& frame = Top();
  std::unique_ptr<IxoMepExpressionParser> expression;
  const IxoMepErrorEnum code = ReadExpressionText(start, end, line, expression);
  if (code != IMEPERR_NONE) {
    const int number = LeadingNumber(frame.parser->State().error_text);
    if (!IsErrorCode(number) || number == code) return code;
    return Fail(static_cast<IxoMepErrorEnum>(number), start);
  }
  auto statement =
      std::make_unique<IxoMepElement>(Shared(";"), frame.parser, OffsetOf(start), line);
  statement->value_ = MakeValue(expression.get(), true);
  (void)expression.release();
  frame.parser->State().elements.push_back(std::move(statement));
  frame.line = line;
  PassLines(start, end);
  frame.position = end + 1;
  frame.at_statement_start = true;
  return IMEPERR_NONE;
}

// --- Elements ---------------------------------------------------------------------------------

// What follows a keyword directly: white space, a quote, a bracket or the end.
IxoMepErrorEnum Grammar::CheckKeywordEnd(std::size_t start, std::size_t end) {
  const ReadingFrame& frame = Top();
  if (end >= frame.end) return IMEPERR_NONE;
  const char next = frame.bytes[end];
  if (Is(next, kWhite) || next == '"' || next == '(') return IMEPERR_NONE;
  if (Is(next, kLower)) return Fail(IMEPERR_BAD_KEYWORD, start, {{"%s", WordAt(start)}});
  return Fail(IMEPERR_AFTER_KEYWORD, end, {{"%c", frame.bytes.substr(end, 1)}});
}

bool Grammar::OpensArray(std::size_t position) noexcept {
  const ReadingFrame& frame = Top();
  if (frame.bytes[position] != '{') return false;
  const std::size_t inner = Skip(frame.bytes, position + 1, frame.end, kWhite);
  if (inner >= frame.end) return false;
  const char byte = frame.bytes[inner];
  return Is(byte, kDigit) || std::string_view("\"$(-.{").find(byte) != std::string_view::npos;
}

IxoMepErrorEnum Grammar::ReadElement() {
  ReadingFrame& frame = Top();
  const std::size_t start = frame.position;
  const std::int32_t line = frame.line;
  std::size_t end = start + 1;
  while (end < frame.end && (Is(frame.bytes[end], kKeywordBytes) || frame.bytes[end] == '_')) ++end;
  if (const IxoMepErrorEnum code = CheckKeywordEnd(start, end)) return code;

  auto element = std::make_unique<IxoMepElement>(Shared(frame.bytes.substr(start, end - start)),
                                                 frame.parser, OffsetOf(start), line);
  std::size_t position = Skip(frame.bytes, end, frame.end, kWhite);
  if (StartsValue(position)) {
    PassLines(end, position);
    IxoMepErrorEnum code = IMEPERR_NONE;
    element->value_ = ReadValue(position, code);
    if (element->value_ == nullptr) return code;
    if (position < frame.end && !Is(frame.bytes[position], kWhite)) {
      if (frame.bytes[position] == ';') return ReadStatement(start, position, line);
      return FailAfterValue(*element->value_, position);
    }
    end = position;
  }
  // Without a value the white space stays, so that a line feed in it starts a statement.
  frame.position = end;
  frame.at_statement_start = false;
  IxoMepElement* const current = element.get();
  if (frame.bytes[start] == '@') return Execute(std::move(element), start);
  auto& elements = frame.parser->State().elements;
  elements.push_back(std::move(element));
  frame.parser->SetCurrent(current, static_cast<std::int32_t>(elements.size()) - 1);
  return IMEPERR_NONE;
}

bool Grammar::StartsValue(std::size_t position) noexcept {
  const ReadingFrame& frame = Top();
  if (position >= frame.end) return false;
  const char byte = frame.bytes[position];
  if (byte == '(') return !OpensComment(frame.bytes, position, frame.end);
  if (byte == '{') return OpensArray(position);
  return Is(byte, kDigit) || byte == '"' || byte == '$' || byte == '-' || byte == '.';
}

IxoMepErrorEnum Grammar::FailAfterValue(const IxoMepValue& value, std::size_t position) {
  switch (value.GetType()) {
    case IxoMepValueType::String:
      return Fail(IMEPERR_AFTER_STRING, position);
    case IxoMepValueType::Expression:
      return Fail(IMEPERR_AFTER_EXPRESSION, position);
    default:
      return Fail(IMEPERR_AFTER_NUMBER, position);
  }
}

IxoMepErrorEnum Grammar::ReadElementBody() {
  ReadingFrame& frame = Top();
  const std::size_t open = frame.position;
  if (!HasCurrent() || frame.parser->State().current->body_ != nullptr) {
    return Fail(IMEPERR_OUTSIDE_ELEMENT, open, {{"%s", "{"}});
  }
  const std::size_t close = frame.extents->MatchingBrace(open, frame.end, open);
  if (close == kNoMatch) return Fail(IMEPERR_CLOSER_EXPECTED, open, {{"%1", "}"}});
  return ReadBody(open, close, ReadingFrame::Kind::ElementBody,
                  &frame.parser->State().current->body_);
}

}  // namespace ixomep
