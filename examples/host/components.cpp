// A message is delivered by a direct call: when SendTo returns, the answer is there.
#include "components.h"

#include <algorithm>
#include <string_view>

namespace bakery {
namespace {

constexpr std::string_view kValueQuestion = "value ";

std::vector<Interval> TimeTable(const ProcessGraph& graph) {
  std::vector<Interval> table;
  for (const auto& task : graph.Tasks()) {
    const IxoMepValue& uses = *task->scope.OldGetValue("uses");
    Interval line{task->name, task->scope.OldGetValue("begin")->GetReal(),
                  task->scope.OldGetValue("finish")->GetReal()};
    for (long i = 0; i < uses.GetSize(); ++i) {
      line.uses_oven = line.uses_oven || uses.GetValue(i)->GetStr() == "oven";
    }
    table.push_back(line);
  }
  return table;
}

}  // namespace

void ModelingPort::Receive(IxoMessage& message) {
  const std::string_view text = message.GetText().view();
  if (text == "hello") {
    message.SetAnswer("Modeling: " + String(std::to_string(graph_.Tasks().size())) + " tasks");
  } else if (text == "table" && message.GetInfo() != nullptr) {
    *static_cast<std::vector<Interval>*>(message.GetInfo()) = TimeTable(graph_);
  } else if (text.starts_with(kValueQuestion)) {
    const String name(text.substr(kValueQuestion.size()));
    message.SetAnswer(graph_.Scope().OldGetValue(name)->GetStr());
  }
}

void SimulationPort::Receive(IxoMessage& message) {
  if (message.GetText() == "hello") {
    message.SetAnswer("Simulation: ready");
  } else if (message.GetText() == "run") {
    std::vector<Interval> table;
    IxoMessage question("table");
    question.SetInfo(&table);  // borrowed for the length of the call
    question.SendTo(IxoMessagePort::Modeling());
    double oven = 0.0;
    double end = 0.0;
    for (const Interval& line : table) {
      if (line.uses_oven) oven += line.finish - line.begin;
      end = std::max(end, line.finish);
    }
    message.SetAnswer("the day ends after " + String(std::to_string(static_cast<int>(end))) +
                      " minutes");
    message.SetAnswer("the oven is hot for " + String(std::to_string(static_cast<int>(oven))) +
                      " of them");
  }
}

}  // namespace bakery
