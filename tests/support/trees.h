// Expression trees for tests: compiling a text, building nodes by hand, and writing a tree in a
// form that shows its exact shape.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/raise.h"

namespace ixomep::test {

struct Compiled {
  NodePtr tree;
  IxoMepErrorEnum code = IMEPERR_NONE;
  String text;         // of the error
  std::int32_t place;  // of the error, -1 after a success
};

Compiled Compile(const String& text);

// The tree in prefix form: (+ a 1), (call f x), (index a 1), (. o m), (params x y),
// (lambda x body). A missing child is written "nil".
std::string Shape(const IxoMepExprNode* node);
// The shape of the text's tree, or "error N".
std::string ShapeOf(const String& text);

// The code's text with the placeholders filled.
String TextOf(IxoMepErrorEnum code, std::initializer_list<Fill> fills = {});

NodePtr Name(std::string_view name);
NodePtr Number(int number);
NodePtr Text(std::string_view text);
NodePtr Binary(IxoMepExprNodeType kind, NodePtr left, NodePtr right);
NodePtr Prefix(IxoMepExprNodeType kind, NodePtr operand);
// A lambda of the given parameters; the list is comma-separated.
NodePtr LambdaOf(std::string_view parameters, NodePtr body);
// A lambda value whose node was made by LambdaOf.
IxoMepValue LambdaValue(std::string_view parameters, NodePtr body);

// Sums of `leaves` names "x", growing down to the left or to the right.
NodePtr LeftDeepSum(std::int32_t leaves);
NodePtr RightDeepSum(std::int32_t leaves);

// Stores a variable in that scope itself.
void Set(IxoMepValueSet& scope, std::string_view name, const IxoMepValue& value);

}  // namespace ixomep::test
