// Internal: text -> tokens, the first stage of compiling an expression; the grammar is next.
#pragma once

#include <cstdint>

#include "ixomep/expr/token_list.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"

namespace ixomep {

// Appends the tokens of the whole text. On failure returns the code, error_text is set and
// error_offset is where the offending token starts; tokens holds those before it.
IxoMepErrorEnum Scan(const String& text, TokenList& tokens, String& error_text,
                     std::int32_t& error_offset);

}  // namespace ixomep
