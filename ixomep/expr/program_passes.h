// Internal: passes of a loop whose body only assigns quiet expressions to names, or appends them to
// arrays. Nobody can look on between two steps that were taken together (LimitWatch::StepAhead), so
// the passes between run on quick trees (program_quick.h) with the places of the variables at hand:
// an assignment is 15 instructions instead of 35. A body that only adds a number to a variable
// keeps the sum in a register meanwhile: 4 instructions a pass, where the way through memory takes
// 8 cycles.
//
// An assignment that is about neither numbers nor a text that grows gives up; the loop then runs it
// and what follows in that pass by their operations (program_control.cpp) and tries again. Defined
// in program_passes.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ixomep/expr/program_ops.h"
#include "ixomep/expr/program_quick.h"

namespace ixomep {

// `name := quiet expression` or `aappend(name, quiet expression)`.
struct QuickStep {
  // False, and nothing has happened, when it gives up.
  using Fn = bool (*)(const QuickStep& step);

  Fn fn = nullptr;
  IxoMepValue* const* target = nullptr;
  const QuickOp* value = nullptr;
  QuickOperand added;             // of `x := x + e`, a name or a number
  const Op* operation = nullptr;  // the same as an operation of the program
};

class Passes {
 public:
  // Where a loop stands that cannot go on here.
  struct Stop {
    std::int64_t passes = 0;     // that were made
    bool is_within = false;      // in a further one, whose first steps are done,
    std::size_t steps_done = 0;  // so many
    bool is_ended = false;       // the condition of while does not hold any more
  };

  // Passes of `for` with these values of its variable, at most to the one before end.
  Stop RunFor(const IxoMepValueSet& scope, std::int64_t i, std::int64_t end);
  // At most so many passes of `while`.
  Stop RunWhile(const IxoMepValueSet& scope, std::int64_t most);
  const std::vector<QuickStep>& Steps() const noexcept { return steps_; }

 private:
  friend Passes* MakePasses(const IxoMepExprNode* condition, const NameRef* variable,
                            const Op& body, Program& program);

  bool AddSteps(const Op& body, Program& program);
  bool AddStep(const AssignOp& assign, Program& program);
  bool AddStep(const AppendOp& append, Program& program);
  bool IsReady(const IxoMepValueSet& scope) noexcept {
    return names_.IsBoundTo(&scope) || names_.Bind(scope);
  }
  // How many steps are done; all of them unless one gives up.
  std::size_t RunSteps() const;
  bool Accumulate(std::int64_t i, std::int64_t end) const noexcept;

  QuickNames names_;
  const QuickOp* condition_ = nullptr;      // of while
  IxoMepValue* const* variable_ = nullptr;  // of for
  std::vector<QuickStep> steps_;
};

// For a loop with that condition (while) or variable (for), and that body; null when it does other
// things than assign.
Passes* MakePasses(const IxoMepExprNode* condition, const NameRef* variable, const Op& body,
                   Program& program);

}  // namespace ixomep
