// Internal: number and time literals. The literal reader dispatches to them; the number rules
// (accumulators, units, the overflow test) live in literal_number.cpp.
#pragma once

#include <cstddef>
#include <string_view>

#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/slot.h"

namespace ixomep {

// The text that a literal is read from.
struct LiteralText {
  std::string_view bytes;
  // More text follows that stands in another file: its end is not the end of the whole text, but
  // no literal reaches beyond it.
  bool continues = false;

  bool EndsAt(std::size_t position) const noexcept {
    return position >= bytes.size() && !continues;
  }
};

// Reads the number at the position (a digit, "-", "." or "$") and moves behind it. On failure
// null, with code (5, 6 or 19) and error text set and the position where reading stopped.
ValuePtr ReadNumber(const LiteralText& text, std::size_t& position, IxoMepErrorEnum& code,
                    String& error_text);

// The number of a plain measure or span of time: a sign, up to nine digits, a fraction and a unit,
// all but digits and unit optional. What ReadNumber gives for it, without a value of its own.
double NumberOfPlainMeasure(std::string_view literal) noexcept;

// Reads a time, 15 characters in the host's layout; null, and nothing changed, when none stands
// at the position.
ValuePtr ReadTime(const LiteralText& text, std::size_t& position);

}  // namespace ixomep
