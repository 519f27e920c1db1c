// Error texts: the code's text and the context block behind it, which names the line and the
// source; and the line read back out of such a text.
#include "ixomep/host/numbers.h"
#include "ixomep/host/res_id.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"
#include "ixomep/parser/spliced_text.h"
#include "ixomep/values/error.h"

namespace {

constexpr ResId kLineLabel(33570582);
constexpr ResId kContextLabel(33570583);

// An empty line, the line part unless the line is 0, and the context.
String ContextBlock(std::int32_t line, const String& context) {
  String block = "\n\n";
  if (line > 0) block += String(kLineLabel) + ' ' + StringFromInteger(line) + ' ';
  return block + String(kContextLabel) + ' ' + context;
}

}  // namespace

void IxoMepParser::MakeErrorText(IxoMepErrorEnum code, ixomep::SoughtPlace place) {
  NoteError(code, place);
  State().error_text = IxoMepError::GetErrorText(code);
  if (code != IMEPERR_NONE) AppendContextInfo(place);
}

// Meant: a text of one line gets no line number here.
void IxoMepParser::AppendContextInfo(ixomep::SoughtPlace sought) {
  const ixomep::TextPlace place = FindPlace(sought);
  State().error_text += ContextBlock(place.several_lines ? place.line : 0, place.context);
}

// Meant: a text of one line gets its line number here.
void IxoMepParser::MakeErrorText(String& text) const {
  const String block = ixomep::OrNeutral(String(), [&] {
    const ixomep::TextPlace place = FindPlace(CurrentView().StartOffset());
    return ContextBlock(place.line, place.context);
  });
  text = ixomep::OrNeutral(text, [&] { return text + block; });
}

std::int32_t IxoMepParser::GetLineOfErrorText(const String& text) {
  return ixomep::OrNeutral(String::kNotFound, [&] {
    const String label = "\n" + String(kLineLabel) + ' ';
    const std::int32_t at = text.Search(label);
    if (at == String::kNotFound) return String::kNotFound;
    return ixomep::LeadingInteger(text.view().substr(static_cast<std::size_t>(at + label.Len())));
  });
}
