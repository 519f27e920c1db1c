// IxoRegEx: hands pattern and text to the host's matcher. See reg_ex.h.
#include "ixomep/host/reg_ex.h"

#include "ixomep/host/host.h"

bool IxoRegEx::regComp(const String& pattern, int options) {
  pattern_ = pattern;
  options_ = options;
  compiles_ = IxoHost::Current().IsRegEx(pattern_, options_);
  return compiles_;
}

int IxoRegEx::match(const String& text) const {
  return compiles_ && IxoHost::Current().MatchesRegEx(pattern_, text, options_) ? 1 : 0;
}
