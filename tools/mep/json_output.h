// Elements, attributes and values as JSON, in ASCII whatever the encoding of the output.
//   element    {"keyword", "line", "value"?, "attributes": [...], "body"?: [...]}
//   attribute  {"name", "modifier"?, "value"?, "body"?: [...]}
//   value      null, number, string, array; {"map": [[key, value], ...]};
//              {"measure": tenths of a millimetre, "text"}, {"time": seconds, "text"};
//              {"expression": source, "value" or "error"}; {"type", "text"} for the others
#pragma once

#include "ixomep/expr/value_set.h"
#include "ixomep/parser/parser.h"
#include "tools/mep/path.h"

namespace mep {

class Output;

// An array of what was selected, expressions evaluated in the scope, and a line feed.
void WriteJson(const std::vector<Selection>& selections, IxoMepValueSet& scope, Output& output);

}  // namespace mep
