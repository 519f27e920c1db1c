// The quick reading: literals. A literal is checked and its place noted; its value is read from
// the text again when it is asked for. Only what must be compiled is made at once: that is the
// check. See document_scanner.h.
#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/literal_number.h"

namespace ixomep {
namespace {

constexpr std::size_t kMostFraction = 15;
constexpr std::size_t kSharedSource = 40;  // longer ones seldom repeat

// Whether evaluating the tree without variables ends at once with an unknown variable: operators
// evaluate their left operand, or the only one, first.
bool StartsWithVariable(const IxoMepExprNode* node) noexcept {
  constexpr int kMostSteps = 32;  // far below the depth at which evaluation gives up
  for (int step = 0; step < kMostSteps && node != nullptr; ++step) {
    const IxoMepExprNodeType kind = node->GetType();
    if (kind == IxoMepExprNodeType::Variable) return true;
    if (kind < IxoMepExprNodeType::Plus || kind > IxoMepExprNodeType::Real) return false;
    node = node->Left() != nullptr ? node->Left() : node->Right();
  }
  return false;
}

const char* SkipSpaces(const char* at) noexcept {
  while (*at == ' ' || *at == '\n' || *at == '\t') ++at;
  return at;
}

// Whether the source is a sum or product of names and plain numbers that begins with a name: it
// can be compiled for certain, and without variables it stays an expression.
bool IsPlainSource(std::string_view source) noexcept {
  constexpr int kMostOperands = 32;
  // A bracket stands behind the source, so every run ends.
  const char* at = SkipSpaces(source.data());
  const char* const end = source.data() + source.size();
  for (int operand = 0; operand < kMostOperands; ++operand) {
    if (IsQuick(*at, kQuickLower)) {
      while (IsQuick(*at, kQuickLower | kQuickDigit) || *at == '_') ++at;
    } else {
      const char* const digits = at;
      at = SkipQuick(at, kQuickDigit);
      if (operand == 0 || at == digits || at - digits > int{kExactDigits}) return false;
      if (*at == '.') return false;
    }
    const char* const next = SkipSpaces(at);
    if (next == end) return true;
    if (*next != '+' && *next != '-' && *next != '*' && *next != '/') return false;
    at = SkipSpaces(next + 1);
  }
  return false;
}

constexpr char CloserOf(char opener) noexcept {
  return opener == '(' ? ')' : opener == '[' ? ']' : '}';
}

}  // namespace

bool DocumentScanner::ReadNumber(LiteralRecord& literal) {
  const char* const start = at_;
  const char* const digits = *start == '-' ? start + 1 : start;
  const char* end = SkipQuick(digits, kQuickDigit);
  const auto count = static_cast<std::size_t>(end - digits);
  if (count == 0 || count > kExactDigits) return ReadRareNumber(literal);
  LiteralKind kind = LiteralKind::Integer;
  if (*end == '.') {
    const char* const fraction = end + 1;
    end = SkipQuick(fraction, kQuickDigit);
    const auto places = static_cast<std::size_t>(end - fraction);
    if (places == 0 || places > kMostFraction) return ReadRareNumber(literal);
    kind = LiteralKind::Real;
  }
  const int unit = UnitLength(end);
  if (unit != 0) kind = *end == 's' ? LiteralKind::Time : LiteralKind::Measure;
  at_ = end + unit;
  if (unit < 0 || !EndsAt(at_)) {
    at_ = start;
    return ReadRareNumber(literal);
  }
  literal.Set(kind, OffsetOf(start), static_cast<std::size_t>(at_ - start));
  return true;
}

// Hexadecimal numbers, exponents, times: the literal reader knows them.
bool DocumentScanner::ReadRareNumber(LiteralRecord& literal) {
  const LiteralText text{{text_, static_cast<std::size_t>(end_ - text_)}};
  const std::size_t start = OffsetOf(at_);
  std::size_t position = start;
  ValuePtr value = ReadTime(text, position);
  if (value == nullptr) {
    IxoMepErrorEnum code = IMEPERR_NONE;
    String error_text;
    value = ixomep::ReadNumber(text, position, code, error_text);
  }
  if (value == nullptr || position - start > LiteralRecord::kMostBytes) return false;
  literal.Set(LiteralKind::Number, static_cast<std::uint32_t>(start), position - start);
  at_ = text_ + position;
  return true;
}

// Behind the closer of the bracket at the position; false when the brackets do not match or
// something stands between that is rare. Simple: neither brackets nor strings inside.
bool DocumentScanner::BracketEnd(const char*& end, bool& is_simple) {
  brackets_.clear();
  is_simple = true;
  for (const char* at = at_;; ++at) {
    while (!IsQuick(*at, kQuickStop)) ++at;
    switch (*at) {
      case '"':
        is_simple = false;
        for (at = FindQuote(at + 1); *at == '\\'; at = FindQuote(at + 2)) {
          if (end_ - at < 2) return false;
        }
        if (at == end_) return false;
        break;
      case '(':
        if (at[1] == '*') return false;
        [[fallthrough]];
      case '[':
      case '{':
        is_simple = is_simple && brackets_.empty();
        brackets_.push_back(CloserOf(*at));
        break;
      case ')':
      case ']':
      case '}':
        if (brackets_.back() != *at) return false;
        brackets_.pop_back();
        if (brackets_.empty()) {
          end = at + 1;
          return true;
        }
        break;
      case ';':
        // It may end a statement.
        if (next_semicolon_ == nullptr) return false;
        break;
      default:
        return false;
    }
  }
}

// An expression or array display.
bool DocumentScanner::ReadExpression(LiteralRecord& literal, std::uint32_t start) {
  const char* end = nullptr;
  bool is_simple = false;
  if (!BracketEnd(end, is_simple)) return false;
  const std::size_t brackets = *at_ == '(' ? 1 : 0;
  const std::string_view source(at_ + brackets, static_cast<std::size_t>(end - at_) - 2 * brackets);
  const std::uint32_t at = OffsetOf(at_) + static_cast<std::uint32_t>(brackets);
  std::uint32_t index = 0;
  if (is_simple && brackets != 0 && IsPlainSource(source)) {
    literal.Set(LiteralKind::Source, at, source.size());
    at_ = end;
    return true;
  }
  if (is_simple && brackets != 0 && !source.empty() && source.size() <= kSharedSource) {
    if (sources_ == nullptr) {
      sources_ = std::make_unique<NameTable>(document_.text_.view());
      made_of_source_.push_back(0);
    }
    const std::uint32_t number = sources_->Add(at, static_cast<std::uint32_t>(source.size()));
    if (number == NameTable::kUnknown) return false;
    if (number == made_of_source_.size()) {
      if (!Compile(source, at, /*is_literal=*/true, /*is_shared=*/true, index)) return false;
      made_of_source_.push_back(index);
    }
    index = made_of_source_[number];
  } else if (!Compile(source, at, /*is_literal=*/true, /*is_shared=*/false, index)) {
    return false;
  }
  literal.Set(LiteralKind::Made, index, at - start);
  at_ = end;
  return at - start <= LiteralRecord::kMostBytes;
}

bool DocumentScanner::Compile(std::string_view source, std::uint32_t at, bool is_literal,
                              bool is_shared, std::uint32_t& index) {
  index = static_cast<std::uint32_t>(document_.made_.size());
  if (is_literal && TakeCompiled(at, source.size(), is_shared)) return true;
  auto expression = std::make_unique<IxoMepExpressionParser>();
  String error_text;
  if (expression->SetExpression(String(source), error_text) != IMEPERR_NONE) return false;
  expression->SetLineNo(static_cast<std::uint32_t>(document_.LineAt(at)));
  MadeValue& made = document_.made_.emplace_back();
  made.at = at;
  made.size = static_cast<std::uint32_t>(source.size());
  made.is_shared = is_shared;
  made.needs_fold = is_literal && !StartsWithVariable(expression->GetTree());
  made.value = MakeValue(expression.get(), true);
  (void)expression.release();
  return true;
}

// Takes what the first scan compiled of the same source, if it did. Both scans go forward, so that
// what they compile comes in the same order; what the first one took for literals may be in a
// statement now. Statements are compiled in the second scan only, and nothing is evaluated before
// the end of a scan that succeeded.
bool DocumentScanner::TakeCompiled(std::uint32_t at, std::size_t size, bool is_shared) {
  while (next_compiled_ < compiled_.size() && compiled_[next_compiled_].at < at) ++next_compiled_;
  if (next_compiled_ == compiled_.size()) return false;
  MadeValue& compiled = compiled_[next_compiled_];
  if (compiled.at != at || compiled.size != size || compiled.is_shared != is_shared) return false;
  document_.made_.push_back(std::move(compiled));
  ++next_compiled_;
  return true;
}

// Evaluates what was compiled, in the order of the text, when all of it is known to be right.
bool DocumentScanner::Fold(FoldedLiterals& folded) {
  std::vector<MadeValue>& all = document_.made_;
  for (std::size_t i = 0; i < all.size(); ++i) {
    MadeValue& made = all[i];
    if (!made.needs_fold) continue;
    IxoMepExpressionParser& expression = *made.value->GetExpr();
    IxoMepValue* result = nullptr;
    String error_text;
    const IxoMepErrorEnum code =
        expression.Evaluate(nullptr, result, error_text, /*strict=*/true, /*ownScope=*/false);
    ValuePtr value(result);
    if (code == IMEPERR_UNKNOWN_VARIABLE || code == IMEPERR_UNKNOWN_FUNCTION) continue;
    if (code == IMEPERR_NONE) {
      made.value = value != nullptr ? std::move(value) : MakeValue();
      continue;
    }
    for (std::size_t k = 0; k < i; ++k) {
      if (all[k].needs_fold)
        folded.push_back({all[k].at, std::move(all[k].value), IMEPERR_NONE, {}});
    }
    folded.push_back({made.at, nullptr, code, error_text});
    return false;
  }
  return true;
}

}  // namespace ixomep
