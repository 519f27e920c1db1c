// Values written as definition text: the static members that hosts call. The forms themselves are
// in ../values/mep_text.h; the extent of an attribute is that of the grammar (extent.h).
#include "ixomep/parser/bytes.h"
#include "ixomep/parser/extent.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"
#include "ixomep/values/mep_text.h"

using ixomep::OrNeutral;

String IxoMepParser::GetMepTextOfStrValue(const String& text) {
  return OrNeutral(String(), [&] { return ixomep::MepTextOfString(text); });
}

String IxoMepParser::GetMepTextOfNumValue(double number, bool period) {
  return OrNeutral(String(), [&] { return ixomep::MepTextOfNumber(number, period); });
}

String IxoMepParser::GetMepTextOfTMMValue(std::int32_t tenths) {
  return OrNeutral(String(), [&] { return ixomep::MepTextOfTenths(tenths); });
}

String IxoMepParser::GetMepTextOfTPtValue(std::int32_t tenths) {
  return OrNeutral(String(), [&] { return ixomep::MepTextOfPoints(tenths); });
}

String IxoMepParser::GetUITextOfTMMValue(std::int32_t tenths) {
  return OrNeutral(String(), [&] { return ixomep::UITextOfTenths(tenths); });
}

// An attribute text also ends at a bracket that closes nothing in it: in a complete text that is
// the one around the attribute.
std::int32_t IxoMepParser::GetAttrMepTextLen(const String& text, std::int32_t position) {
  if (position < 0 || position >= text.Len() || !ixomep::Is(text[position], ixomep::kNameStart)) {
    return String::kNotFound;
  }
  return OrNeutral(String::kNotFound, [&] {
    const std::string_view bytes = text.view();
    const auto start = static_cast<std::size_t>(position);
    ixomep::Extents extents(bytes);
    return static_cast<std::int32_t>(extents.FindAttributeEnd(start, bytes.size()).end - start);
  });
}
