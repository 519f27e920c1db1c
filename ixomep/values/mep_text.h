// Internal: values written as literals of the language, and the display form of a measure. The
// static members of IxoMepParser that hosts call forward to these. The literal reader reads all
// of them back but the display form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ixomep/host/string.h"

namespace ixomep {

// A quoted string literal. Quote and backslash get a backslash, the bytes 7 to 13 their letter.
String MepTextOfString(std::string_view text);
void AppendMepTextOfString(String& out, std::string_view text);
// Twelve significant digits; `period` keeps the final ".0" of whole numbers.
String MepTextOfNumber(double number, bool period);
// Tenths of a millimetre in centimetres: "1.25cm", ".5cm", "0cm".
String MepTextOfTenths(std::int32_t tenths);
// The same, written into the caller's buffer of kTenthsTextSize bytes; the view is the text.
inline constexpr std::size_t kTenthsTextSize = 16;
std::string_view WriteTenths(std::int32_t tenths, char* buffer) noexcept;
// Tenths of a point: "12.5pt", "0.0pt".
String MepTextOfPoints(std::int32_t tenths);
// Tenths of a millimetre for the user, with the host's decimal separator: "1.25 cm".
String UITextOfTenths(std::int32_t tenths);

}  // namespace ixomep
