// Built-in functions on the text of strings: cut, letter case, literals, numbers as the user sees
// them, pattern matching; and byte, which cuts an integer. Searching and replacing are in
// search.cpp, conversions between encodings in encodings.cpp.
#include <string_view>
#include <utility>

#include "ixomep/builtins/call.h"
#include "ixomep/builtins/handlers.h"
#include "ixomep/host/international.h"
#include "ixomep/host/numbers.h"
#include "ixomep/host/reg_ex.h"

namespace ixomep::builtins {
namespace {

constexpr std::int32_t kTrimmed = -1;  // the mode of uistr

// The text of a number without what a reader does not need: zeros at the end, then one separator.
std::string_view WithoutTrailingZeros(std::string_view text) {
  while (text.ends_with('0')) text.remove_suffix(1);
  if (text.ends_with('.') || text.ends_with(',')) text.remove_suffix(1);
  // Meant: zeros are cut without asking for a separator, so a text of nothing else is empty here.
  return text.empty() ? "0" : text;
}

}  // namespace

IxoMepErrorEnum Copy(Call& call) {
  const String& text = call.Text(0);
  const std::int32_t count = call.Int(2);
  return call.Return(text.Copy(call.Int(1), count < 0 ? String::kMaxLength : count));
}

IxoMepErrorEnum Lower(Call& call) {
  String text = call.Text(0);
  h_strlwr(text);
  return call.Return(std::move(text));
}

IxoMepErrorEnum Upper(Call& call) {
  String text = call.Text(0);
  h_strupr(text);
  return call.Return(std::move(text));
}

IxoMepErrorEnum ILower(Call& call) {
  return call.Return(International::Lower(call.Text(0), CharSet::Ansi));
}

IxoMepErrorEnum IUpper(Call& call) {
  return call.Return(International::Upper(call.Text(0), CharSet::Ansi));
}

IxoMepErrorEnum MStr(Call& call) { return call.Return(ValueAccess::TextOf(call.Arg(0))); }

IxoMepErrorEnum UIStr(Call& call) {
  String text = StringFromDouble(call.Real(0));
  if (call.Int(1) == kTrimmed) text = String(WithoutTrailingZeros(text));
  return call.Return(std::move(text));
}

IxoMepErrorEnum UIVal(Call& call) { return call.Return(DoubleFromString(call.Text(0))); }

IxoMepErrorEnum RegEx(Call& call) {
  IxoRegEx pattern;
  // A pattern that does not compile is no error: it matches nothing.
  pattern.regComp(call.Text(0), IxoRegEx::kExtendedSyntax | IxoRegEx::kCaseSensitive);
  return call.Return(std::int32_t{pattern.match(call.Text(1))});
}

IxoMepErrorEnum Byte(Call& call) {
  const auto bits = static_cast<std::uint32_t>(call.Int(0));
  const std::int32_t index = call.Int(1);
  if (index < 0 || index > 3) return call.Return(std::int32_t{0});
  return call.Return(static_cast<std::int32_t>(bits >> (8 * index) & 255U));
}

}  // namespace ixomep::builtins
