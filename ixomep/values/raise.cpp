// Failing: the text of a code with its placeholders filled.
#include "ixomep/values/raise.h"

#include <exception>

#include "ixomep/values/error.h"

namespace ixomep {

void FillPlaceholder(String& text, std::string_view placeholder, std::string_view replacement) {
  text.ReplaceFirst(placeholder, replacement);
}

IxoMepErrorEnum Raise(String& text, IxoMepErrorEnum code, std::initializer_list<Fill> fills) {
  String filled = IxoMepError::GetErrorText(code);
  for (const Fill& fill : fills) FillPlaceholder(filled, fill.placeholder, fill.replacement);
  text = std::move(filled);
  return code;
}

IxoMepErrorEnum RaiseNoMemory(String& text, IxoMepErrorEnum code) noexcept {
  try {
    return Raise(text, code);
  } catch (const std::exception&) {
    text.Clear();
    return code;
  }
}

}  // namespace ixomep
