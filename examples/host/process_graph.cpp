// Formulas are evaluated in an order in which everything that a task waits for is there already.
#include "process_graph.h"

#include <algorithm>
#include <set>
#include <utility>

#include "library_host.h"

namespace bakery {

void ProcessGraph::AddFormula(const String& kind, Formula formula) {
  formulas_[kind].push_back(std::move(formula));
}

Task& ProcessGraph::AddTask(const String& name) {
  tasks_.push_back(std::make_unique<Task>(scope_));
  Task& task = *tasks_.back();
  task.name = name;
  task.scope.OldSetValue("task", IxoMepValue(name), /*local=*/true);
  return task;
}

const Resource* ProcessGraph::FindResource(const String& name) const {
  const auto found = resources_.find(name);
  return found != resources_.end() ? &found->second : nullptr;
}

Task* ProcessGraph::FindTask(const String& name) const {
  const auto found = std::find_if(tasks_.begin(), tasks_.end(),
                                  [&](const auto& task) { return task->name == name; });
  return found != tasks_.end() ? found->get() : nullptr;
}

const std::vector<Formula>& ProcessGraph::FormulasOf(const String& kind) const {
  static const std::vector<Formula> none;
  const auto found = formulas_.find(kind);
  return found != formulas_.end() ? found->second : none;
}

bool ProcessGraph::Follows(const Task& task, const String& other) const {
  std::set<String> seen;
  std::vector<const Task*> open = {&task};
  while (!open.empty()) {
    const Task* current = open.back();
    open.pop_back();
    for (const String& name : current->after) {
      if (name == other) return true;
      const Task* before = FindTask(name);
      if (before != nullptr && seen.insert(name).second) open.push_back(before);
    }
  }
  return false;
}

bool ProcessGraph::Sort(std::string& problem) {
  std::vector<std::unique_ptr<Task>> sorted;
  std::set<String> done;
  const auto is_ready = [&](const std::unique_ptr<Task>& task) {
    return std::all_of(task->after.begin(), task->after.end(),
                       [&](const String& name) { return done.contains(name); });
  };
  while (!tasks_.empty()) {
    const auto next = std::find_if(tasks_.begin(), tasks_.end(), is_ready);
    if (next == tasks_.end()) {
      problem = "the task \"" + Utf8(tasks_.front()->name) + "\" waits for ever";
      std::move(tasks_.begin(), tasks_.end(), std::back_inserter(sorted));
      tasks_ = std::move(sorted);
      return false;
    }
    done.insert((*next)->name);
    sorted.push_back(std::move(*next));
    tasks_.erase(next);
  }
  tasks_ = std::move(sorted);
  return true;
}

// Not strict: a function of the library may assign to variables of its own. With a scope of its
// own (the last argument) these do not stay behind.
bool ProcessGraph::Evaluate(const Formula& formula, IxoMepValueSet& scope, std::string& problem) {
  IxoMepValue* result = nullptr;
  String error;
  const IxoMepErrorEnum code = formula.expression->Evaluate(&scope, result, error,
                                                            /*strict=*/false, /*ownScope=*/true);
  if (code != IMEPERR_NONE) {
    problem = "\"" + Utf8(formula.name) + "\": " + Utf8(error);
    return false;
  }
  if (result == nullptr) result = new IxoMepValue;  // some functions give nothing
  scope.OldMoveValue(formula.name, result, /*local=*/true);
  return true;
}

bool ProcessGraph::Compute(std::string& problem) {
  if (!Sort(problem)) return false;
  for (const std::unique_ptr<Task>& task : tasks_) {
    for (const Formula& formula : FormulasOf(task->kind)) {
      if (!Evaluate(formula, task->scope, problem)) return false;
    }
  }
  for (const Formula& formula : summaries_) {
    if (!Evaluate(formula, scope_, problem)) return false;
  }
  return true;
}

}  // namespace bakery
