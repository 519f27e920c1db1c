// The model of this application: a graph of tasks that wait for each other, the resources that
// they use, and the formulas that are computed for every task of a kind. Nothing here knows
// definition texts; graph_text.cpp fills the model from them.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <ixomep/ixomep.h>

namespace bakery {

struct Resource {
  double rate = 0.0;   // for one hour
  double power = 0.0;  // kilowatts
};

struct Formula {
  String name;
  String unit;
  std::unique_ptr<IxoMepExpressionParser> expression;
};

struct Task {
  // The scope of a task hangs below that of the graph: a formula sees both.
  explicit Task(IxoMepValueSet& graph_scope) : scope(&graph_scope) {}

  String name;
  String kind;
  std::vector<String> after;
  IxoMepValueSet scope;
};

class ProcessGraph {
 public:
  IxoMepValueSet& Scope() { return scope_; }

  void AddResource(const String& name, const Resource& resource) { resources_[name] = resource; }
  void AddFormula(const String& kind, Formula formula);
  void AddSummary(Formula formula) { summaries_.push_back(std::move(formula)); }
  // The variable "task" of the new task's scope holds its name.
  Task& AddTask(const String& name);

  // Null when there is none.
  const Resource* FindResource(const String& name) const;
  Task* FindTask(const String& name) const;
  // In the order of their definition; after Compute, each behind those that it waits for.
  const std::vector<std::unique_ptr<Task>>& Tasks() const { return tasks_; }
  const std::vector<Formula>& FormulasOf(const String& kind) const;
  const std::vector<Formula>& Summaries() const { return summaries_; }
  // Whether the task waits for the other one, directly or through others.
  bool Follows(const Task& task, const String& other) const;

  // Evaluates the formulas of all tasks and stores each result as a variable of the task, then the
  // summaries as variables of the graph. False, with a sentence in problem, when one fails.
  bool Compute(std::string& problem);

 private:
  bool Sort(std::string& problem);
  static bool Evaluate(const Formula& formula, IxoMepValueSet& scope, std::string& problem);

  // First, because it has to outlive the scopes of the tasks.
  IxoMepValueSet scope_;
  std::map<String, Resource> resources_;
  std::map<String, std::vector<Formula>> formulas_;
  std::vector<Formula> summaries_;
  std::vector<std::unique_ptr<Task>> tasks_;
};

}  // namespace bakery
