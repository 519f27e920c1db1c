// Letter case through the host, and the plain ASCII case functions. See international.h.
#include "ixomep/host/international.h"

#include <algorithm>

#include "ixomep/host/host.h"

namespace {

using MapBytes = void (IxoHost::*)(char* bytes, std::size_t count, CharSet char_set);

String Mapped(const String& text, CharSet char_set, MapBytes map) {
  String mapped = text;
  if (char* bytes = mapped.MutableText()) {
    (IxoHost::Current().*map)(bytes, static_cast<std::size_t>(mapped.Len()), char_set);
  }
  return mapped;
}

// Moves the letters that lie in the 26 places from `first` on by the distance.
String& Shift(String& text, char first, int distance) {
  const auto is_moved = [first](char byte) { return byte >= first && byte <= first + 25; };
  const std::string_view view = text.view();
  if (std::none_of(view.begin(), view.end(), is_moved)) return text;
  char* bytes = text.MutableText();
  std::transform(bytes, bytes + text.Len(), bytes, [&](char byte) {
    return is_moved(byte) ? static_cast<char>(byte + distance) : byte;
  });
  return text;
}

}  // namespace

String International::Lower(const String& text, CharSet char_set) {
  return Mapped(text, char_set, &IxoHost::MapToLower);
}

String International::Upper(const String& text, CharSet char_set) {
  return Mapped(text, char_set, &IxoHost::MapToUpper);
}

char International::DecimalSeparator() { return IxoHost::Current().DecimalSeparator(); }

String& h_strlwr(String& text) { return Shift(text, 'A', 'a' - 'A'); }

String& h_strupr(String& text) { return Shift(text, 'a', 'A' - 'a'); }
