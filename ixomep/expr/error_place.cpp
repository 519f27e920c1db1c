// The place of the last syntax error: one number, set by every compilation of an expression.
#include "ixomep/expr/error_place.h"

namespace ixomep {
namespace {

std::int32_t last_offset = -1;

}  // namespace

std::int32_t ErrorPlace::Offset() noexcept { return last_offset; }

void ErrorPlace::Set(std::int32_t offset) noexcept { last_offset = offset; }

}  // namespace ixomep
