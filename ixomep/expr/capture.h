// Internal: copies of trees in which visible variables become constants: how a lambda keeps the
// variables of the place where it is written. Defined in node_copy.cpp.
//
// What stays a name although a variable of that name is visible: parameters of the lambda and of
// lambdas inside it; a callee that is a built-in or whose variable holds no lambda; a member's
// name behind a point; the recursive call of a lambda that is being given a name.
#pragma once

#include <utility>
#include <vector>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/value_set.h"

namespace ixomep {

// A deep copy of a lambda's body. scope may be null: then nothing is captured. excluded_names are
// the lambda's parameters; calls of recursive_name (may be null) stay calls by name. A captured
// reference gives a copy of what it refers to. May throw std::bad_alloc.
NodePtr CopyBody(const IxoMepExprNode& body, const IxoMepValueSet* scope,
                 const std::vector<const char*>& excluded_names,
                 const char* recursive_name = nullptr);

// Is the node a call of "lambda", whose result learns the name it is assigned to?
bool IsLambdaCall(const IxoMepExprNode& node);

// The name of the variable that a lambda is about to be assigned to. An assignment makes one of
// these just around the evaluation of a right side that is itself a call of "lambda"; the built-in
// takes it, so that nothing evaluated later can see it.
class AssignedName {
 public:
  explicit AssignedName(const char* name) noexcept : outer_(std::exchange(current_, name)) {}
  AssignedName(const AssignedName&) = delete;
  AssignedName& operator=(const AssignedName&) = delete;
  ~AssignedName() { current_ = outer_; }

  // Null when no assignment is directly around.
  static const char* Current() noexcept { return current_; }
  // The same, and forgets it.
  static const char* Take() noexcept { return std::exchange(current_, nullptr); }

 private:
  inline static const char* current_ = nullptr;
  const char* outer_;
};

}  // namespace ixomep
