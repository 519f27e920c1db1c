// The words of signatures, for those who print them.
#include "ixomep/builtins/signature.h"

namespace ixomep {

std::string_view ArgTypeName(ArgType type) noexcept {
  for (const signature_text::Word& known : signature_text::kWords) {
    if (known.type == type) return known.text;
  }
  return "";
}

}  // namespace ixomep
