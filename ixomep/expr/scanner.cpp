// Text -> tokens. One pass over the bytes, a batch at a time as the grammar asks for more. Names
// and constants become nodes at once; literals are read by IxoMepValue::Create.
#include "ixomep/expr/scanner.h"

#include <algorithm>
#include <array>
#include <string>

#include "ixomep/expr/char_class.h"
#include "ixomep/expr/operator_table.h"

namespace ixomep {
namespace {

constexpr std::size_t kMaxKeyword = 9;      // letters; a longer run is no keyword
constexpr std::size_t kMaxShownWord = 20;   // letters of an unknown keyword in the error text
constexpr std::size_t kMaxWholeDigits = 9;  // every number of so many digits has 32 bits

// What a byte that is no letter, digit or quote may be: a token of one byte, and a token of two
// with the byte that must follow. Constant stands for "no such token".
struct Symbol {
  IxoMepExprNodeType alone = IxoMepExprNodeType::Constant;
  char follower = '\0';
  IxoMepExprNodeType with_follower = IxoMepExprNodeType::Constant;
};

constexpr std::array<Symbol, 256> MakeSymbols() {
  std::array<Symbol, 256> symbols{};
  for (const OperatorRow& row : kOperators) {
    if (row.is_word) continue;
    Symbol& symbol = symbols[static_cast<unsigned char>(row.spelling[0])];
    if (row.spelling.size() == 1) {
      symbol.alone = row.kind;
    } else {
      symbol.follower = row.spelling[1];
      symbol.with_follower = row.kind;
    }
  }
  return symbols;
}

constexpr std::array<Symbol, 256> kSymbols = MakeSymbols();

const OperatorRow* FindKeyword(std::string_view word) {
  if (word.size() > kMaxKeyword) return nullptr;
  for (const OperatorRow& row : kOperators) {
    if (row.is_word && row.spelling == word) return &row;
  }
  return nullptr;
}

// What starts with a byte.
enum class Start : std::uint8_t { Symbol, Blank, Comment, Paren, Upper, Name, Digit, Dot, Literal };

constexpr Start StartOf(char byte) {
  if (CharClass::IsWhite(byte)) return Start::Blank;
  if (CharClass::IsUpper(byte)) return Start::Upper;
  if (CharClass::IsNameStart(byte)) return Start::Name;
  if (CharClass::IsDigit(byte)) return Start::Digit;
  switch (byte) {
    case '#':
      return Start::Comment;
    case '(':
      return Start::Paren;
    case '.':
      return Start::Dot;
    case '"':
    case '$':
      return Start::Literal;
    default:
      return Start::Symbol;
  }
}

constexpr std::array<Start, 256> MakeStarts() {
  std::array<Start, 256> starts{};
  for (std::size_t byte = 0; byte < starts.size(); ++byte) {
    starts[byte] = StartOf(static_cast<char>(static_cast<unsigned char>(byte)));
  }
  return starts;
}

constexpr std::array<Start, 256> kStarts = MakeStarts();

}  // namespace

// Reads on until that many tokens have been appended, or the text ends, or a token is none.
IxoMepErrorEnum Scanner::Read(TokenList& tokens, std::size_t count) {
  while (count > 0 && position_ < bytes_.size()) {
    start_ = position_;
    bool appended = true;
    switch (kStarts[static_cast<unsigned char>(bytes_[position_])]) {
      case Start::Blank:
        ++position_;
        continue;
      case Start::Comment:
        SkipBehind("\n", 1);
        continue;
      case Start::Paren:
        if (Peek(1) == '*') {
          SkipBehind("*)", 2);
          continue;
        }
        appended = ReadSymbol(tokens);
        break;
      case Start::Upper:
        appended = ReadKeyword(tokens);
        break;
      case Start::Name:
        ReadName(tokens);
        break;
      case Start::Digit:
        appended = ReadWholeNumber(tokens) || ReadLiteral(tokens);
        break;
      case Start::Dot:
        appended = CharClass::IsDigit(Peek(1)) ? ReadLiteral(tokens) : ReadSymbol(tokens);
        break;
      case Start::Literal:
        appended = ReadLiteral(tokens);
        break;
      case Start::Symbol:
        appended = ReadSymbol(tokens);
        break;
    }
    if (!appended) return code_;
    --count;
  }
  return IMEPERR_NONE;
}

bool Scanner::ReadMore(TokenList& tokens) {
  if (code_ != IMEPERR_NONE || position_ == bytes_.size()) return false;
  work_.Part();
  Read(tokens, TokenList::kBatch);
  return true;
}

// To behind the next such mark, looked for `opener` bytes on, or to the end of the text.
void Scanner::SkipBehind(std::string_view mark, std::size_t opener) {
  const std::size_t found = bytes_.find(mark, position_ + opener);
  position_ = found == std::string_view::npos ? bytes_.size() : found + mark.size();
}

bool Scanner::Fail(IxoMepErrorEnum code, std::initializer_list<Fill> fills) {
  code_ = Raise(error_text_, code, fills);
  return false;
}

bool Scanner::ReadKeyword(TokenList& tokens) {
  while (CharClass::IsUpper(Peek())) ++position_;
  const std::string_view word = bytes_.substr(start_, position_ - start_);
  const OperatorRow* const row = FindKeyword(word);
  if (row == nullptr) {
    std::string shown(word.substr(0, kMaxShownWord));
    if (word.size() > kMaxShownWord) shown += "...";
    return Fail(IMEPERR_UNKNOWN_KEYWORD, {{"%s", shown}});
  }
  tokens.AppendSymbol(row->kind, Offset());
  return true;
}

// A leading question mark is no part of the name and allows hyphens in it.
void Scanner::ReadName(TokenList& tokens) {
  const bool hyphens = Peek() == '?';
  ++position_;
  while (CharClass::IsNameByte(Peek()) || (hyphens && Peek() == '-')) ++position_;
  const std::size_t begin = start_ + (hyphens ? 1 : 0);
  tokens.AppendName(names_.Intern(bytes_.substr(begin, position_ - begin)), Offset());
}

// The frequent literal, without the general reader: few digits that nothing follows which could
// belong to the literal (a point, letters, "%", the ":" of a time) and that do not end the text.
bool Scanner::ReadWholeNumber(TokenList& tokens) {
  std::size_t end = start_;
  const std::size_t most = std::min(bytes_.size(), start_ + kMaxWholeDigits);
  std::int32_t number = 0;
  for (; end < most && CharClass::IsDigit(bytes_[end]); ++end) {
    number = number * 10 + (bytes_[end] - '0');
  }
  if (end >= bytes_.size()) return false;
  const char next = bytes_[end];
  if (CharClass::IsNameByte(next) || next == '.' || next == '%' || next == ':') return false;
  position_ = end;
  tokens.AppendConstant(MakeValue(number), Offset());
  return true;
}

bool Scanner::ReadLiteral(TokenList& tokens) {
  std::int32_t position = Offset();
  IxoMepErrorEnum code = IMEPERR_NONE;
  ValuePtr value(IxoMepValue::Create(text_, position, code, error_text_, nullptr, -1));
  if (code != IMEPERR_NONE) {
    code_ = code;
    return false;
  }
  position_ = static_cast<std::size_t>(position);
  tokens.AppendConstant(std::move(value), Offset());
  return true;
}

bool Scanner::ReadSymbol(TokenList& tokens) {
  const Symbol& symbol = kSymbols[static_cast<unsigned char>(Peek())];
  IxoMepExprNodeType kind = symbol.alone;
  std::size_t length = 1;
  if (symbol.follower != '\0') {
    if (Peek(1) == symbol.follower) {
      kind = symbol.with_follower;
      length = 2;
    } else if (Peek() == '<' && Peek(1) == '>') {  // the other spelling of "!="
      kind = IxoMepExprNodeType::NotEqual;
      length = 2;
    }
  }
  if (kind == IxoMepExprNodeType::Constant) return Fail(IMEPERR_UNKNOWN_CHARACTER);
  position_ += length;
  tokens.AppendSymbol(kind, Offset());
  return true;
}

IxoMepErrorEnum Scan(const String& text, TokenList& tokens, String& error_text,
                     std::int32_t& error_offset) {
  Scanner scanner(text);
  const IxoMepErrorEnum code = scanner.Read(tokens, static_cast<std::size_t>(text.Len()));
  if (code != IMEPERR_NONE) {
    error_offset = scanner.Offset();
    error_text = scanner.ErrorText();
  }
  return code;
}

}  // namespace ixomep
