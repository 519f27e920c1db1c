// The variables that the user sets on the command line with -v name=EXPR. They are evaluated in
// the order given, each in the scope of those before it.
#pragma once

#include <string>
#include <vector>

#include "ixomep/expr/value_set.h"

namespace mep {

class Diagnostics;
class TextIo;

// Fills the scope. The exit status: 0, 1 when an expression has an error, 2 for a definition that
// is not of the form name=EXPR; what is wrong has been reported.
int SetVariables(const std::vector<std::string>& definitions, IxoMepValueSet& scope,
                 const TextIo& io, Diagnostics& diagnostics);

}  // namespace mep
