// Two components of the application that know each other by the names of their message ports only.
#pragma once

#include <vector>

#include <ixomep/ixomep.h>

#include "process_graph.h"

namespace bakery {

// A line of the time table, in minutes since the start of the day.
struct Interval {
  String task;
  double begin = 0.0;
  double finish = 0.0;
  bool uses_oven = false;
};

// Answers questions about the graph: "value NAME" with a variable of the graph, "table" by filling
// the std::vector<Interval> that comes along as the message's companion.
class ModelingPort : public IxoMessagePort {
 public:
  explicit ModelingPort(ProcessGraph& graph)
      : IxoMessagePort(IxoMessagePort::Modeling()), graph_(graph) {}
  bool IsAvailable() override { return true; }
  void Activate() override {}
  void Receive(IxoMessage& message) override;
  void Deactivate() override {}

 private:
  ProcessGraph& graph_;
};

// "run" plays the day and answers with what happens when.
class SimulationPort : public IxoMessagePort {
 public:
  SimulationPort() : IxoMessagePort(IxoMessagePort::Simulation()) {}
  bool IsAvailable() override { return true; }
  void Activate() override {}
  void Receive(IxoMessage& message) override;
  void Deactivate() override {}
};

}  // namespace bakery
