// The element that stands for none. See element_view.h.
#include "ixomep/parser/element_view.h"

namespace ixomep {

IxoMepElement* EmptyElement() noexcept {
  static IxoMepElement empty;
  return &empty;
}

}  // namespace ixomep
