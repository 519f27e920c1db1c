// Functions on token lists: tokcnt, token, tokindex, tokcat, the set operations tokunion,
// tokisect and tokdiff, and the exchange with arrays: tokstr, valtokstr, strarray, valarray.
#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/token_set.h"
#include "ixomep/builtins/tokens.h"
#include "ixomep/host/core_time.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/values/slot.h"

namespace ixomep::builtins {

namespace {

TokenSet TokensOf(std::string_view list, Separator separator) {
  TokenSet tokens(list);
  // Membership means that the token between two separators occurs in the list between two
  // separators, which holds for the empty token in the empty list too.
  if (list.empty()) tokens.Add(list);
  TokenWalker walker(list, separator);
  for (std::string_view token; walker.Next(token);) {
    LimitWatch::Work();
    tokens.Add(token);
  }
  return tokens;
}

void AppendToken(String& list, std::string_view token, Separator separator) {
  if (!list.IsEmpty()) list += separator.view();
  list += token;
}

// Appends to result, in their order, the tokens of `from` that are (or are not) in `other`.
void AppendTokens(String& result, std::string_view from, std::string_view other, bool in_other,
                  Separator separator) {
  const TokenSet members = TokensOf(other, separator);
  TokenWalker walker(from, separator);
  for (std::string_view token; walker.Next(token);) {
    LimitWatch::Work();
    if (members.Contains(token) == in_other) AppendToken(result, token, separator);
  }
}

String TextOfElement(const IxoMepValue& element) {
  if (element.GetType() == IxoMepValueType::String) return ValueAccess::Text(element);
  if (element.GetType() == IxoMepValueType::Time) {
    return IxoCoreTime::_d2s(ValueAccess::Number(element));
  }
  return ValueAccess::TextOf(element);
}

String LiteralOfElement(const IxoMepValue& element) { return ValueAccess::TextOf(element); }

IxoMepErrorEnum Join(Call& call, String (*text_of)(const IxoMepValue&)) {
  const Separator separator = SeparatorArg(call, 1);
  const IxoMepValue& array = call.Arg(0);
  String result;
  for (std::size_t i = 0; i < ValueAccess::Count(array); ++i) {
    LimitWatch::Work();
    if (i > 0) result += separator.view();
    result += text_of(ValueAccess::Element(array, i));
  }
  return call.Return(std::move(result));
}

ValuePtr StringOfToken(std::string_view token) { return MakeValue(String(token)); }

// Undefined for a token that cannot be read. A plain literal fails with 37 or 38 only for want of
// memory, which is no property of the token.
ValuePtr ValueOfToken(std::string_view token) {
  std::int32_t position = 0;
  std::int32_t code = 0;
  String text;
  ValuePtr value(IxoMepValue::Create(String(token), position, code, text, nullptr, -1));
  if (value != nullptr) return value;
  const bool is_expression = token.starts_with('(') || token.starts_with('{');
  if (!is_expression && (code == IMEPERR_TOO_LONG || code == IMEPERR_TOO_DEEP)) {
    MemoryBudget::Refuse();
  }
  return MakeValue();
}

IxoMepErrorEnum Split(Call& call, ValuePtr (*element_of)(std::string_view)) {
  // Reading a token as an expression may run anything; the list is kept alive meanwhile.
  const String list = call.Text(0);
  const Separator separator = SeparatorArg(call, 1);
  IxoMepValue array(IxoMepValueType::Array);
  ValueAccess::Reserve(array, static_cast<std::size_t>(CountTokens(list, separator)));
  TokenWalker walker(list, separator);
  for (std::string_view token; walker.Next(token);) {
    LimitWatch::Work();
    ValueAccess::AppendOwned(array, element_of(token));
  }
  return call.Return(std::move(array));
}

}  // namespace

IxoMepErrorEnum TokCnt(Call& call) {
  return call.Return(CountTokens(call.Text(0), SeparatorArg(call, 1)));
}

IxoMepErrorEnum Token(Call& call) {
  return call.Return(String(TokenAt(call.Text(0), call.Int(1), SeparatorArg(call, 2))));
}

IxoMepErrorEnum TokIndex(Call& call) {
  const String& wanted = call.Text(1);
  if (wanted.IsEmpty()) return call.Return(-1);
  // Meant: here, and only here, an empty separator means the space.
  const bool has_separator = call.Has(2) && !call.Text(2).IsEmpty();
  const Separator separator = has_separator ? Separator(call.Text(2)) : Separator::Space();
  TokenWalker walker(call.Text(0), separator);
  std::string_view token;
  for (std::int32_t i = 0; walker.Next(token); ++i) {
    LimitWatch::Work();
    if (token == wanted.view()) return call.Return(i);
  }
  return call.Return(-1);
}

IxoMepErrorEnum TokCat(Call& call) {
  const String& first = call.Text(0);
  const String& second = call.Text(1);
  if (first.IsEmpty()) return call.Return(second);
  if (second.IsEmpty()) return call.Return(first);
  String result = first;
  AppendToken(result, second, SeparatorArg(call, 2));
  return call.Return(std::move(result));
}

IxoMepErrorEnum TokUnion(Call& call) {
  // Meant: only the first list is searched, so that a token that the second one repeats is
  // appended each time.
  String result = call.Text(0);
  AppendTokens(result, call.Text(1), call.Text(0), /*in_other=*/false, SeparatorArg(call, 2));
  return call.Return(std::move(result));
}

IxoMepErrorEnum TokIsect(Call& call) {
  String result;
  AppendTokens(result, call.Text(1), call.Text(0), /*in_other=*/true, SeparatorArg(call, 2));
  return call.Return(std::move(result));
}

IxoMepErrorEnum TokDiff(Call& call) {
  String result;
  AppendTokens(result, call.Text(0), call.Text(1), /*in_other=*/false, SeparatorArg(call, 2));
  return call.Return(std::move(result));
}

IxoMepErrorEnum TokStr(Call& call) { return Join(call, &TextOfElement); }
IxoMepErrorEnum ValTokStr(Call& call) { return Join(call, &LiteralOfElement); }
IxoMepErrorEnum StrArray(Call& call) { return Split(call, &StringOfToken); }
IxoMepErrorEnum ValArray(Call& call) { return Split(call, &ValueOfToken); }

}  // namespace ixomep::builtins
