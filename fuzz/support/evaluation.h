// Evaluating for fuzz targets: variables of every type to evaluate with, all that an evaluation
// leaves behind as one text, and the comparison of side programs with the plain walk.
#pragma once

#include <string>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"

namespace ixomep::fuzz {

struct Setting {
  bool strict = false;
  bool own_scope = false;
};

// Objects that a target makes. At the end their properties are emptied: a text may have put an
// object into itself, and what counts its references alone then never ends. Hosts that lend objects
// to foreign texts do the same.
class Objects {
 public:
  Objects() = default;
  Objects(const Objects&) = delete;
  Objects& operator=(const Objects&) = delete;
  ~Objects();
  // An object with the property p, a number, and the method g.
  IxoMepValue Make();
  void Add(const IxoMepValue& object) { objects_.push_back(object); }

 private:
  std::vector<IxoMepValue> objects_;
};

// A scope with the variables a (array), m (map), s, i, r, t (measure), d (time), u (undefined), w
// (a reference), f (a lambda), e (an expression), o (an object).
class Scene {
 public:
  Scene();
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  IxoMepValueSet& scope() { return scope_; }
  // What w refers to.
  const IxoMepValue& outside() const { return outside_; }

 private:
  IxoMepValue outside_{10};
  Objects objects_;
  IxoMepValueSet scope_;
};

// Type and text; "none" for null.
std::string Shown(const IxoMepValue* value);

// Evaluates in a fresh scope of variables: code, message, value, the variables afterwards. Fails
// the target where the contract of Evaluate is broken.
std::string Outcome(const IxoMepExpressionParser& parser, const Setting& setting, bool programs);

// Walks, then evaluates several times with side programs; all outcomes must agree. Gives the
// outcome, the empty text when it came to its bounds.
std::string CheckBothWays(const IxoMepExpressionParser& parser, const Setting& setting);

// Evaluates in one scope until a quiet expression has a quick tree, whose outcome must be the
// walk's.
void CheckQuickly(const IxoMepExpressionParser& parser);

}  // namespace ixomep::fuzz
