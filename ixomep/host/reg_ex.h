// IxoRegEx: one compiled pattern of the host's regular expressions. The host keeps compiled
// patterns itself, so that an object per call costs a look-up.
#pragma once

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IXOMEP_API IxoRegEx {
 public:
  // The options that a caller combines. Without the first, letters of both cases are alike;
  // without the second, the pattern is plain text.
  static constexpr int kCaseSensitive = 1;
  static constexpr int kExtendedSyntax = 4;

  // Sets the pattern; false when it does not compile (match then gives 0).
  bool regComp(const String& pattern, int options = kExtendedSyntax | kCaseSensitive);
  // 1 when the pattern matches somewhere in the text, else 0; a match that passes the host's
  // limits counts as none.
  int match(const String& text) const;

 private:
  String pattern_;
  int options_ = kExtendedSyntax | kCaseSensitive;
  bool compiles_ = false;
};
