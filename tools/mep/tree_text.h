// The elements of a parsed definition text as an indented tree, one element or attribute a line.
#pragma once

#include <cstdint>
#include <string>

#include "ixomep/expr/value_set.h"
#include "ixomep/parser/parser.h"

namespace mep {

class Diagnostics;
class Output;

// Writes the tree. Expression statements are evaluated in the scope in the order of the text, so
// that what they assign is known to what follows; other expressions are evaluated in it and leave
// nothing there. An expression whose variables are all known and that fails is an error, reported
// under the name of the source with its line.
void WriteTree(const IxoMepParser& parser, const std::string& source, IxoMepValueSet& scope,
               Output& output, Diagnostics& diagnostics);

// The same for one element of the parser.
void WriteElementTree(const IxoMepParser& parser, std::int32_t index, const std::string& source,
                      IxoMepValueSet& scope, Output& output, Diagnostics& diagnostics);

}  // namespace mep
