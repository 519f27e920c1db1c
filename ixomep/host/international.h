// Letter case and number signs of the user's language, as the host answers them, and the plain
// ASCII case functions that ask nobody.
#pragma once

#include "ixomep/export.h"
#include "ixomep/host/string.h"

// Character sets by the host's numbers.
enum class CharSet : int {
  Ansi = 9,  // the 8-bit set of the host's texts
};

class IXOMEP_API International {
 public:
  // The text with the letters of the set in the other case; letters without a partner stay.
  static String Lower(const String& text, CharSet char_set);
  static String Upper(const String& text, CharSet char_set);
  static char DecimalSeparator();
};

// ASCII letters only, in place, whatever the character set; zero bytes do not end the text.
// Returns its argument.
IXOMEP_API String& h_strlwr(String& text);
IXOMEP_API String& h_strupr(String& text);
