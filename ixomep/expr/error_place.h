// Where in its text the last failed IxoMepExpressionParser::SetExpression stopped, for
// tools that show the place.
#pragma once

#include <cstdint>

#include "ixomep/export.h"

namespace ixomep {

struct IXOMEP_API ErrorPlace {
  // Byte offset of the offending token in the text; its length for an unexpected end; -1 after a
  // success.
  static std::int32_t Offset() noexcept;
  static void Set(std::int32_t offset) noexcept;
};

}  // namespace ixomep
