// Text -> tokens. One pass over the bytes, a batch at a time as the grammar asks for more. Names
// are interned and constants made at once; literals are read by IxoMepValue::Create. The zero byte
// behind the text ends every run of bytes, so that only a zero byte asks for the end of the text.
#include "ixomep/expr/scanner.h"

#include <array>
#include <string>

#include "ixomep/expr/char_class.h"
#include "ixomep/expr/operator_table.h"

namespace ixomep {
namespace {

constexpr std::size_t kMaxShownWord = 20;      // letters of an unknown keyword in the error text
constexpr std::ptrdiff_t kMaxWholeDigits = 9;  // every number of so many digits has 32 bits

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

constexpr const Symbol& SymbolOf(char byte) { return kSymbols[static_cast<unsigned char>(byte)]; }

// Where a word of two letters or more stands among the keywords; no two of them at one place.
constexpr std::size_t kKeywordPlaces = 32;

constexpr std::size_t PlaceOf(std::string_view word) {
  const auto letter = [&](std::size_t i) { return static_cast<std::size_t>(word[i]); };
  return (letter(0) + letter(1) * 5 + letter(word.size() - 1) * 10 + word.size()) % kKeywordPlaces;
}

// The rows of the keywords by place; row 0, which is none, at places of no keyword.
using Keywords = std::array<std::uint8_t, kKeywordPlaces>;

constexpr Keywords MakeKeywords() {
  Keywords keywords{};
  for (std::size_t i = 0; i < kOperators.size(); ++i) {
    const OperatorRow& row = kOperators[i];
    if (row.is_word) keywords[PlaceOf(row.spelling)] = static_cast<std::uint8_t>(i);
  }
  return keywords;
}

constexpr Keywords kKeywords = MakeKeywords();

static_assert(
    [] {
      for (std::size_t i = 0; i < kOperators.size(); ++i) {
        const OperatorRow& row = kOperators[i];
        if (row.is_word && kKeywords[PlaceOf(row.spelling)] != i) return false;
      }
      return !kOperators[0].is_word;
    }(),
    "every keyword has a place of its own");

// Of upper-case letters; null when it is no keyword.
const OperatorRow* FindKeyword(std::string_view word) {
  if (word.size() < 2) return nullptr;
  const OperatorRow& row = kOperators[kKeywords[PlaceOf(word)]];
  return row.spelling == word ? &row : nullptr;
}

// What starts with a byte. Pair: a symbol that may have a second byte.
enum class Start : std::uint8_t {
  Blank,
  Comment,
  Paren,
  Symbol,
  Pair,
  Name,
  Hyphens,
  Digit,
  Dot,
  Literal,
  Upper,
  None
};

constexpr Start StartOf(char byte) {
  if (CharClass::IsWhite(byte)) return Start::Blank;
  if (CharClass::IsUpper(byte)) return Start::Upper;
  if (byte == '?') return Start::Hyphens;
  if (CharClass::IsNameStart(byte)) return Start::Name;
  if (CharClass::IsDigit(byte)) return Start::Digit;
  if (byte == '#') return Start::Comment;
  if (byte == '(') return Start::Paren;
  if (byte == '.') return Start::Dot;
  if (byte == '"' || byte == '$') return Start::Literal;
  if (SymbolOf(byte).follower != '\0') return Start::Pair;
  return SymbolOf(byte).alone != IxoMepExprNodeType::Constant ? Start::Symbol : Start::None;
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

bool Scanner::ReadMore(TokenList& tokens) {
  if (code_ != IMEPERR_NONE || at_ == end_) return false;
  work_.Part();
  announces_ = names_.IsLarge();
  ReadBatch(tokens);
  for (const AnnouncedName* name = announced_.data(); name != announced_end_; ++name) {
    *name->place = names_.Intern({name->begin, name->length});
  }
  announced_end_ = announced_.data();
  return true;
}

void Scanner::ReadBatch(TokenList& tokens) {
  const char* at = at_;
  for (std::size_t wanted = TokenList::kBatch; wanted > 0;) {
    const char* behind = nullptr;
    switch (kStarts[static_cast<unsigned char>(*at)]) {
      case Start::Blank:
        ++at;
        continue;
      case Start::Comment:
        at = Behind("\n", at + 1);
        continue;
      case Start::Paren:
        if (at[1] == '*') {
          at = Behind("*)", at + 2);
          continue;
        }
        [[fallthrough]];
      case Start::Symbol:
        tokens.AppendSymbol(SymbolOf(*at).alone, OffsetOf(at));
        behind = at + 1;
        break;
      case Start::Pair:
        behind = ReadPair(tokens, at);
        break;
      case Start::Name:
        behind = ReadName(tokens, at);
        break;
      case Start::Hyphens:
        behind = ReadHyphenName(tokens, at);
        break;
      case Start::Digit:
        behind = ReadNumber(tokens, at);
        break;
      case Start::Dot:
        behind = CharClass::IsDigit(at[1]) ? ReadLiteral(tokens, at) : ReadPair(tokens, at);
        break;
      case Start::Literal:
        behind = ReadLiteral(tokens, at);
        break;
      case Start::Upper:
        behind = ReadKeyword(tokens, at);
        break;
      case Start::None:
        if (at != end_) Fail(IMEPERR_UNKNOWN_CHARACTER);
        break;
    }
    if (behind == nullptr) break;
    at = behind;
    --wanted;
  }
  at_ = at;
}

const char* Scanner::Behind(std::string_view mark, const char* from) const noexcept {
  const std::string_view rest(from, static_cast<std::size_t>(end_ - from));
  const std::size_t found = rest.find(mark);
  return found == std::string_view::npos ? end_ : from + found + mark.size();
}

const char* Scanner::Fail(IxoMepErrorEnum code, std::initializer_list<Fill> fills) {
  code_ = Raise(error_text_, code, fills);
  return nullptr;
}

const char* Scanner::ReadKeyword(TokenList& tokens, const char* at) {
  const char* end = at;
  while (CharClass::IsUpper(*end)) ++end;
  const std::string_view word(at, static_cast<std::size_t>(end - at));
  if (const OperatorRow* const row = FindKeyword(word)) {
    tokens.AppendSymbol(row->kind, OffsetOf(at));
    return end;
  }
  std::string shown(word.substr(0, kMaxShownWord));
  if (word.size() > kMaxShownWord) shown += "...";
  return Fail(IMEPERR_UNKNOWN_KEYWORD, {{"%s", shown}});
}

inline const char* Scanner::ReadName(TokenList& tokens, const char* at) {
  const char* end = at + 1;
  while (CharClass::IsNameByte(*end)) ++end;
  const std::string_view name(at, static_cast<std::size_t>(end - at));
  if (announces_) {
    names_.Announce(name);
    *announced_end_++ = {at, name.size(), &tokens.AppendName(nullptr, OffsetOf(at))};
  } else {
    tokens.AppendName(names_.Intern(name), OffsetOf(at));
  }
  return end;
}

// A leading question mark is no part of the name and allows hyphens in it.
const char* Scanner::ReadHyphenName(TokenList& tokens, const char* at) {
  const char* end = at + 1;
  while (CharClass::IsNameByte(*end) || *end == '-') ++end;
  tokens.AppendName(names_.Intern({at + 1, static_cast<std::size_t>(end - at - 1)}), OffsetOf(at));
  return end;
}

// The frequent literal, without the general reader: few digits that nothing follows which could
// belong to the literal (a point, letters, "%", the ":" of a time) and that do not end the text.
inline const char* Scanner::ReadNumber(TokenList& tokens, const char* at) {
  const char* end = at;
  std::int32_t number = 0;
  while (CharClass::IsDigit(*end) && end - at < kMaxWholeDigits) {
    number = number * 10 + (*end++ - '0');
  }
  const bool is_whole = !CharClass::IsNameByte(*end) && *end != '.' && *end != '%' && *end != ':';
  if (!is_whole || end == end_) return ReadLiteral(tokens, at);
  tokens.AppendConstant(MakeValue(number), OffsetOf(at));
  return end;
}

const char* Scanner::ReadLiteral(TokenList& tokens, const char* at) {
  std::int32_t position = OffsetOf(at);
  IxoMepErrorEnum code = IMEPERR_NONE;
  ValuePtr value(IxoMepValue::Create(text_, position, code, error_text_, nullptr, -1));
  if (code != IMEPERR_NONE) {
    code_ = code;
    return nullptr;
  }
  tokens.AppendConstant(std::move(value), OffsetOf(at));
  return begin_ + position;
}

const char* Scanner::ReadPair(TokenList& tokens, const char* at) {
  const Symbol& symbol = SymbolOf(*at);
  IxoMepExprNodeType kind = symbol.alone;
  std::ptrdiff_t length = 1;
  if (symbol.follower != '\0' && at[1] == symbol.follower) {
    kind = symbol.with_follower;
    length = 2;
  } else if (*at == '<' && at[1] == '>') {  // the other spelling of "!="
    kind = IxoMepExprNodeType::NotEqual;
    length = 2;
  }
  if (kind == IxoMepExprNodeType::Constant) return Fail(IMEPERR_UNKNOWN_CHARACTER);
  tokens.AppendSymbol(kind, OffsetOf(at));
  return at + length;
}

}  // namespace ixomep
