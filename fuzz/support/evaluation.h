// Evaluating for fuzz targets: variables of every type to evaluate with, all that an evaluation
// leaves behind as one text, and the comparison of side programs with the plain walk.
#pragma once

#include <string>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"

namespace ixomep::fuzz {

struct Setting {
  bool strict = false;
  bool own_scope = false;
};

// Variables a (array), m (map), s, i, r, t (measure), d (time), u (undefined), w (a reference), f
// (a lambda), e (an expression), o (an object). outside is what w refers to.
void Bind(IxoMepValueSet& scope, IxoMepValue& outside);

// Type and text; "none" for null.
std::string Shown(const IxoMepValue* value);

// Evaluates in a fresh scope of variables: code, message, value, the variables afterwards. Fails
// the target where the contract of Evaluate is broken.
std::string Outcome(const IxoMepExpressionParser& parser, const Setting& setting, bool programs);

// Walks, then evaluates several times with side programs; all outcomes must agree. Gives the
// outcome, the empty text when it came to its bounds.
std::string CheckBothWays(const IxoMepExpressionParser& parser, const Setting& setting);

}  // namespace ixomep::fuzz
