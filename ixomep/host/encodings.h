// Texts in other dress: Base64, UTF-8, the OEM code page, URL and XML escaping, under the names
// of the host's libraries. The character tables are the host's; the formats live here.
#pragma once

#include <cstdint>
#include <string_view>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

// Standard alphabet, padded, no line breaks; the empty text gives the empty text. False, and
// `text` unchanged, when the result would pass String::kMaxLength.
IXOMEP_API bool Ixo_NewBase64Encode(std::string_view bytes, String& text);
// The inverse: skips white space, accepts missing padding. False, and `bytes` unchanged, for
// anything else that is not Base64. Zero bytes are kept.
IXOMEP_API bool Ixo_NewBase64Decode(std::string_view text, String& bytes);

// Between the host's character set and UTF-8. Every byte has a UTF-8 form; what has no byte, or
// is not UTF-8, becomes "?".
IXOMEP_API String ConvertStringToUTF8(const String& text);
IXOMEP_API String ConvertUTF8StringToString(const String& text);

// Between the host's character set and the OEM code page, byte for byte up to and including the
// terminating zero. Source and destination may be the same buffer. False for a null pointer.
IXOMEP_API bool CharToOemA(const char* source, char* destination);
IXOMEP_API bool OemToCharA(const char* source, char* destination);
// The same for exactly `length` bytes, zero bytes included.
IXOMEP_API bool CharToOemBuffA(const char* source, char* destination, std::uint32_t length);
IXOMEP_API bool OemToCharBuffA(const char* source, char* destination, std::uint32_t length);

class IXOMEP_API HttpRequest {
 public:
  // "%" and two upper-case hexadecimal digits for every byte that is not in `unescaped`.
  static String escapeUrlStyle(const String& text, const String& unescaped);
};

class IXOMEP_API IxoSGMLString {
 public:
  // Text for XML: the five named entities; tab, line feed and carriage return as numeric
  // references; other bytes below 32 dropped. Bytes of 128 and more become numeric references of
  // their Unicode number (references true) or UTF-8 (references false).
  static String XMLStr(const String& text, bool references);
};
