// Bounds. Steps are counted where one source of the library asks another one for the evaluation of
// a node: the linker leads those calls here (--wrap), and every round of a loop and every call of a
// lambda makes one.
#include "fuzz/support/bounds.h"

#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/guarded.h"
#include "ixomep/host/memory_budget.h"

namespace ixomep {

#define MEP_EVALUATE "_ZN6ixomep8EvaluateERK14IxoMepExprNodeRNS_5FrameER11IxoMepValue"
IxoMepErrorEnum EvaluateUncounted(const IxoMepExprNode& node, Frame& frame,
                                  IxoMepValue& out) __asm__("__real_" MEP_EVALUATE);
IxoMepErrorEnum EvaluateCounted(const IxoMepExprNode& node, Frame& frame,
                                IxoMepValue& out) __asm__("__wrap_" MEP_EVALUATE);
#undef MEP_EVALUATE

namespace {

constexpr int kUnbounded = 2147483647;
constexpr int kDeep = 150;  // levels that any stack has room for

int steps_left = kUnbounded;
int level = 0;
std::size_t much_memory = MemoryBudget::kNoLimit;
bool reached = false;

class Level {
 public:
  Level() {
    if (++level > kDeep) reached = true;
  }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  ~Level() { --level; }
};

}  // namespace

IxoMepErrorEnum EvaluateCounted(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  if (steps_left <= 0) {
    reached = true;
    out = IxoMepValue();
    return FailAllocation(frame.text);
  }
  if (steps_left != kUnbounded) --steps_left;
  const Level one_more;
  const IxoMepErrorEnum code = EvaluateUncounted(node, frame, out);
  if (MemoryBudget::InUse() > much_memory) reached = true;
  return code;
}

namespace fuzz {

Bounds::Bounds(int steps, std::size_t bytes) : memory_before_(MemoryBudget::Limit()) {
  steps_left = steps;
  level = 0;
  reached = false;
  much_memory = MemoryBudget::InUse() + bytes / 2;
  MemoryBudget::SetLimit(MemoryBudget::InUse() + bytes);
}

Bounds::~Bounds() {
  steps_left = kUnbounded;
  much_memory = MemoryBudget::kNoLimit;
  MemoryBudget::SetLimit(memory_before_);
}

bool Bounds::Reached() const { return reached; }

}  // namespace fuzz
}  // namespace ixomep
