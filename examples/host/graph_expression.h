// The expressions of this application: the language with the functions of a process graph.
//
//   rate(uses), power(uses)  the sum over the resource or the array of resources of that name
//   each(x)                  an array: x evaluated for every task that the current task waits for,
//                            or for all tasks where none is current
//   task(name)               an object: the variables of the task, and the method follows(name)
#pragma once

#include <ixomep/ixomep.h>

#include "process_graph.h"

namespace bakery {

// The graph is not owned; it must outlive the expression and all values that task() gave.
class GraphExpression : public IxoMepExpressionParser {
 public:
  explicit GraphExpression(const ProcessGraph& graph) : graph_(&graph) {}
  // Values copy expressions through this: a class that does not override it loses its functions.
  IxoMepExpressionParser* CreateCopy() const override;
  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* scope,
                                       const String& name, IxoMepValue*& result, String& errorText,
                                       bool strict) const override;

 protected:
  // The override above would hide the form that gets evaluated arguments.
  using IxoMepExpressionParser::EvaluateFunctionCall;

 private:
  using Arguments = IxoMepValueList;
  using Function = IxoMepErrorEnum (GraphExpression::*)(const Arguments& arguments,
                                                        IxoMepValue*& result, String& error) const;
  struct Entry {
    const char* name;
    std::size_t argument_count;
    Function function;
  };
  static const Entry kFunctions[];

  IxoMepErrorEnum Rate(const Arguments& arguments, IxoMepValue*& result, String& error) const;
  IxoMepErrorEnum Power(const Arguments& arguments, IxoMepValue*& result, String& error) const;
  IxoMepErrorEnum TaskObject(const Arguments& arguments, IxoMepValue*& result, String& error) const;
  IxoMepErrorEnum Each(const IxoMepExprNode& call, const IxoMepValueSet& scope,
                       IxoMepValue*& result, String& error, bool strict) const;
  IxoMepErrorEnum AddUp(const char* name, double Resource::*field, const Arguments& arguments,
                        IxoMepValue*& result, String& error) const;

  const ProcessGraph* graph_;
};

}  // namespace bakery
