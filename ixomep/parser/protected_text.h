// Protected definition texts: a marker line and the text behind it, enciphered with the library's
// own key. A parser reads both kinds; these functions make and undo the protection.
#pragma once

#include "ixomep/export.h"
#include "ixomep/host/string.h"

namespace ixomep {

// Whether the text begins with the marker of a protected text.
IXOMEP_API bool IsProtectedText(const String& text) noexcept;
// The marker and the enciphered text. Blanks are added up to a whole block of 8 bytes, so that
// nothing stays readable. May throw std::bad_alloc or std::length_error.
IXOMEP_API String ProtectText(const String& plain);
// The deciphered text without the marker; bytes behind the last whole block stay as they are. A
// text without the marker is given back. May throw std::bad_alloc.
IXOMEP_API String UnprotectText(const String& text);

}  // namespace ixomep
