// Definition texts of this application: what they say, put into a ProcessGraph.
//
//   GRAPH "name" attributes                    become variables of the graph
//   name := expression;                        the same, among them functions (lambdas)
//   RESOURCE "name" rate: power:
//   KIND "name" { COMPUTED "name" value: unit: ... }
//   TASK "name" kind: after: {...} attributes  become variables of the task
//   SUMMARY "name" value: unit:                computed for the graph
#pragma once

#include <memory>
#include <string>

#include <ixomep/ixomep.h>

#include "process_graph.h"

namespace bakery {

// A parser whose bodies are of its own class and whose expressions know the graph's functions.
class GraphText : public IxoMepParser {
 public:
  // The graph is not owned and must outlive the parser and the formulas it read.
  GraphText(const String& text, const String& context, ProcessGraph& graph)
      : IxoMepParser(text, context), graph_(graph) {
    SetVars(&graph.Scope());
  }

  IxoMepParser* NewParser(const String& text, std::int32_t start, std::int32_t length,
                          std::int32_t firstLine, const String& context) override;
  IxoMepExpressionParser* NewExprParser() override;

  // Parses the text and fills the graph. False, with the report in problem, for the first error.
  bool Read(std::string& problem);

 private:
  GraphText(const String& text, std::int32_t start, std::int32_t length, std::int32_t first_line,
            const String& context, ProcessGraph& graph)
      : IxoMepParser(text, start, length, first_line, context), graph_(graph) {
    SetVars(&graph.Scope());
  }

  bool ReadElement(std::string& problem);
  bool ReadGraph(std::string& problem);
  bool ReadStatement(std::string& problem);
  bool ReadResource(std::string& problem);
  bool ReadKind(std::string& problem);
  bool ReadTask(std::string& problem);
  bool ReadSummary(std::string& problem);
  // The attributes of the current element as variables of the scope.
  bool SetVariables(IxoMepValueSet& scope, std::string& problem);
  // The current element of a body or of this text as a formula.
  static Formula FormulaOf(const IxoMepParser& text);
  // A sentence about the current element, with its line; false.
  bool Fail(std::string& problem, const std::string& sentence) const;

  ProcessGraph& graph_;
};

}  // namespace bakery
