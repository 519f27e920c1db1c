// What tests of the expression language share: evaluating a text and looking at all that comes of
// it (value, code, message), and writing outcomes so that a failed comparison reads well.
#pragma once

#include <string>
#include <string_view>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/slot.h"

namespace ixomep::test {

struct Outcome {
  IxoMepErrorEnum code = IMEPERR_NONE;
  String text;     // the message of a failure
  ValuePtr value;  // null for a failure and for a result left unset

  // The type and the value as the language writes it ("integer 5", "string \"a\"", "real 2.0"),
  // "no result", or "error 21".
  std::string Shown() const;
  // The same, a failure with its message: "error 21: ...".
  std::string ShownWithText() const;
};

enum class Mode { Plain, Strict };

// Compiles the text, a failure of which is an outcome too, and evaluates it directly in the scope,
// which may be null.
Outcome Eval(std::string_view text, IxoMepValueSet* scope, Mode mode = Mode::Plain);
// In an empty scope of its own.
Outcome Eval(std::string_view text, Mode mode = Mode::Plain);
// With an expression object whose class the test chose; its tree is replaced.
Outcome EvalWith(IxoMepExpressionParser& parser, std::string_view text, IxoMepValueSet* scope,
                 Mode mode = Mode::Plain);

// Eval(...).Shown().
std::string Shown(std::string_view text, IxoMepValueSet* scope, Mode mode = Mode::Plain);
std::string Shown(std::string_view text, Mode mode = Mode::Plain);
// The type and the text of a value; "null" for a null pointer.
std::string ShownValue(const IxoMepValue* value);
inline std::string ShownValue(const IxoMepValue& value) { return ShownValue(&value); }

// The variable's value in that scope or above (borrowed), null when there is none.
IxoMepValue* Variable(const IxoMepValueSet& scope, std::string_view name);
// ShownValue of it.
std::string ShownVariable(const IxoMepValueSet& scope, std::string_view name);

// A value made by evaluating the text, which must succeed.
IxoMepValue ValueOf(std::string_view text);

}  // namespace ixomep::test
