// Expressions of the command line: compile, evaluate, and report what goes wrong at its place.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/string.h"
#include "ixomep/values/value.h"

namespace mep {

class Diagnostics;

// What came of an evaluation. The value is never null when the code is 0; a result that the
// expression leaves unset is the undefined value.
struct Evaluation {
  std::unique_ptr<IxoMepValue> value;
  IxoMepErrorEnum code = IMEPERR_NONE;
  String error_text;
  std::vector<String> missing;  // the variables that have to be known first, for code 20
};

// An expression that computes a value of an element, as queries see it: what it assigns is
// forgotten again, but a variable that is not there is an error.
Evaluation EvaluateAttribute(const IxoMepExpressionParser& expression, IxoMepValueSet& scope);

// An expression statement: its assignments stay in the scope.
Evaluation EvaluateStatement(const IxoMepExpressionParser& statement, IxoMepValueSet& scope);

// The source of an expression, in parentheses unless it is an array or map; one that spans lines is
// given in the form the library prints.
std::string SourceOf(const IxoMepExpressionParser& expression);

// Reports what came of an expression when that is an error, and not merely something that is not
// known yet (a variable, a function). `line` counts when the expression does not know its own.
void ReportIfError(const Evaluation& evaluation, const IxoMepExpressionParser& expression,
                   const std::string& source, long line, Diagnostics& diagnostics);

// The value of the text, evaluated in the scope itself, so that what it assigns stays there. Null
// after an error, which has been reported under the name of the source.
std::unique_ptr<IxoMepValue> EvaluateText(const String& text, const std::string& source,
                                          IxoMepValueSet& scope, bool strict,
                                          Diagnostics& diagnostics);

}  // namespace mep
