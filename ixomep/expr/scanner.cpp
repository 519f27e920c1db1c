// Text -> tokens. One pass over the bytes; every token becomes a node at once, so that the grammar
// can keep operators, names and constants as they are. Literals are read by IxoMepValue::Create.
#include "ixomep/expr/scanner.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "ixomep/expr/char_class.h"
#include "ixomep/expr/operator_table.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {
namespace {

constexpr std::size_t kMaxKeyword = 9;     // letters; a longer run is no keyword
constexpr std::size_t kMaxShownWord = 20;  // letters of an unknown keyword in the error text

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

class Scanner {
 public:
  Scanner(const String& text, TokenList& tokens, String& error_text)
      : text_(text), bytes_(text.view()), tokens_(tokens), error_text_(error_text) {}

  IxoMepErrorEnum Run() {
    for (SkipBlank(); position_ < bytes_.size(); SkipBlank()) {
      const IxoMepErrorEnum code = ReadToken();
      if (code != IMEPERR_NONE) return code;
    }
    return IMEPERR_NONE;
  }

  // Where the token being read starts.
  std::int32_t Offset() const { return static_cast<std::int32_t>(start_); }

 private:
  // The byte so far behind the position; zero behind the end of the text.
  char Peek(std::size_t ahead = 0) const {
    const std::size_t at = position_ + ahead;
    return at < bytes_.size() ? bytes_[at] : '\0';
  }

  // Skips white space and comments, and starts the next token.
  void SkipBlank() {
    while (position_ < bytes_.size()) {
      if (CharClass::IsWhite(Peek())) {
        ++position_;
      } else if (Peek() == '#') {
        SkipBehind("\n", 1);
      } else if (Peek() == '(' && Peek(1) == '*') {
        SkipBehind("*)", 2);
      } else {
        break;
      }
    }
    start_ = position_;
  }

  // To behind the next such mark, looked for `opener` bytes on, or to the end of the text.
  void SkipBehind(std::string_view mark, std::size_t opener) {
    const std::size_t found = bytes_.find(mark, position_ + opener);
    position_ = found == std::string_view::npos ? bytes_.size() : found + mark.size();
  }

  void Append(NodePtr token) { tokens_.Append(std::move(token), Offset()); }

  IxoMepErrorEnum ReadToken() {
    const char first = Peek();
    if (CharClass::IsUpper(first)) return ReadKeyword();
    if (CharClass::IsNameStart(first)) return ReadName();
    if (first == '"' || first == '$' || CharClass::IsDigit(first) ||
        (first == '.' && CharClass::IsDigit(Peek(1)))) {
      return ReadLiteral();
    }
    return ReadSymbol();
  }

  IxoMepErrorEnum ReadKeyword() {
    while (CharClass::IsUpper(Peek())) ++position_;
    const std::string_view word = bytes_.substr(start_, position_ - start_);
    const OperatorRow* const row = FindKeyword(word);
    if (row == nullptr) return RaiseUnknownKeyword(word);
    Append(NodePtr::Make(row->kind));
    return IMEPERR_NONE;
  }

  IxoMepErrorEnum RaiseUnknownKeyword(std::string_view word) {
    std::string shown(word.substr(0, kMaxShownWord));
    if (word.size() > kMaxShownWord) shown += "...";
    return Raise(error_text_, IMEPERR_UNKNOWN_KEYWORD, {{"%s", shown}});
  }

  // A leading question mark is no part of the name and allows hyphens in it.
  IxoMepErrorEnum ReadName() {
    const bool hyphens = Peek() == '?';
    ++position_;
    while (CharClass::IsNameByte(Peek()) || (hyphens && Peek() == '-')) ++position_;
    const std::size_t begin = start_ + (hyphens ? 1 : 0);
    Append(NodePtr::Make(IxoMepExprNodeType::Variable,
                         Intern(bytes_.substr(begin, position_ - begin))));
    return IMEPERR_NONE;
  }

  IxoMepErrorEnum ReadLiteral() {
    std::int32_t position = Offset();
    IxoMepErrorEnum code = IMEPERR_NONE;
    ValuePtr value(IxoMepValue::Create(text_, position, code, error_text_, nullptr, -1));
    if (code != IMEPERR_NONE) return code;
    position_ = static_cast<std::size_t>(position);
    NodePtr token = NodePtr::Make(IxoMepExprNodeType::Constant);
    NodeAccess::SetValue(*token, std::move(value));
    Append(std::move(token));
    return IMEPERR_NONE;
  }

  IxoMepErrorEnum ReadSymbol() {
    const Symbol& symbol = kSymbols[static_cast<unsigned char>(Peek())];
    IxoMepExprNodeType kind = symbol.alone;
    std::size_t length = 1;
    if (Peek() == '<' && Peek(1) == '>') {  // the other spelling of "!="
      kind = IxoMepExprNodeType::NotEqual;
      length = 2;
    } else if (symbol.follower != '\0' && Peek(1) == symbol.follower) {
      kind = symbol.with_follower;
      length = 2;
    }
    if (kind == IxoMepExprNodeType::Constant) {
      return Raise(error_text_, IMEPERR_UNKNOWN_CHARACTER);
    }
    position_ += length;
    Append(NodePtr::Make(kind));
    return IMEPERR_NONE;
  }

  const String& text_;
  std::string_view bytes_;
  TokenList& tokens_;
  String& error_text_;
  std::size_t position_ = 0;
  std::size_t start_ = 0;
};

}  // namespace

IxoMepErrorEnum Scan(const String& text, TokenList& tokens, String& error_text,
                     std::int32_t& error_offset) {
  Scanner scanner(text, tokens, error_text);
  const IxoMepErrorEnum code = scanner.Run();
  if (code != IMEPERR_NONE) error_offset = scanner.Offset();
  return code;
}

}  // namespace ixomep
