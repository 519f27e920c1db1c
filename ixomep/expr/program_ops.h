// Internal: the operations of side programs as the compiler sees them: their operands, and the
// functions that pick an operation for a node and the shapes of its operands.
#pragma once

#include <vector>

#include "ixomep/expr/decimal_compare.h"
#include "ixomep/expr/program.h"

namespace ixomep {

// How an operand is had: by its own operation, from a variable, from an argument of the lambda, or
// as a number known beforehand.
enum class Shape : std::uint8_t { General, Variable, Argument, Number };

struct Operand {
  Shape shape = Shape::General;
  const Op* op = nullptr;  // always there: the operand as an operation of its own
  NameRef name;            // of a variable or argument
  std::int32_t argument = 0;
  Reg number{0, 0};
  Landmark landmark;   // at that number, when it is none with a unit
  bool quiet = false;  // evaluating it changes nothing and calls nobody
};

struct ConstantOp : Op {
  const IxoMepValue* value = nullptr;
};
struct NumberOp : Op {
  Reg number{0, 0};
};
struct VariableOp : Op {
  NameRef name;
};
struct ArgumentOp : Op {
  NameRef name;
  std::int32_t index = 0;
};
struct UnaryOp : Op {
  Operand operand;
};
struct BinaryOp : Op {
  Operand left;
  Operand right;
};
// A chain of "+" in which texts are likely.
struct TextSumOp : Op {
  static constexpr std::size_t kMaxParts = 8;
  struct Part {
    Operand operand;
    bool shown = false;  // STR of the operand
  };
  std::vector<Part> parts;
  const Op* plain = nullptr;  // the chain, one "+" after the other
};
struct ElementOp : Op {
  Operand base;
  Operand index;
};
struct CondOp : Op {
  struct Branch {
    const Op* condition;
    const Op* value;
  };
  std::vector<Branch> branches;
  const Op* otherwise = nullptr;
};
// cond with one condition, or the rest of one with several.
struct ChoiceOp : Op {
  const Op* condition = nullptr;
  const BinaryOp* compared = nullptr;  // the condition, for ChoiceFunction
  const Op* value = nullptr;
  const Op* otherwise = nullptr;
};
class Passes;
struct WhileOp : Op {
  const Op* condition = nullptr;
  const Op* body = nullptr;
  const Op* last = nullptr;      // may be null
  std::int64_t steps_ahead = 1;  // passes whose steps may be taken beforehand
  Passes* passes = nullptr;      // of a body that only assigns
};
struct ForOp : Op {
  NameRef variable;
  const Op* from = nullptr;
  const Op* to = nullptr;
  const Op* body = nullptr;
  const Op* last = nullptr;      // may be null
  std::int64_t steps_ahead = 1;  // passes whose steps may be taken beforehand
  Passes* passes = nullptr;      // of a body that only assigns
};
struct SequenceOp : Op {
  const Op* first = nullptr;
  const Op* second = nullptr;
};
struct AssignOp : Op {
  NameRef variable;
  const Op* value = nullptr;
  const BinaryOp* appended = nullptr;  // of `x := x + e` with a quiet e
  bool quiet = false;                  // the right side changes nothing and calls nobody
};
struct AppendOp : Op {
  NameRef variable;
  const Op* value = nullptr;
};
struct CallOp : Op {
  NameRef callee;
  String name;
  std::vector<const Op*> arguments;
  // Of a call whose only argument is a parameter of the calling lambda plus or minus an integer:
  // which one, and what is added.
  std::int32_t step_of = -1;
  std::int32_t step = 0;
};

// Reading: constants, variables, arguments.
Reg RunConstant(const Op& op, Run& run);
Reg RunNumber(const Op& op, Run& run);
Reg RunVariable(const Op& op, Run& run);
Reg RunArgument(const Op& op, Run& run);
Reg RunElement(const Op& op, Run& run);
Reg RunTextSum(const Op& op, Run& run);
// Operators; null for one that has no operation.
Op::Fn BinaryFunction(IxoMepExprNodeType kind, Shape left, Shape right) noexcept;
Op::Fn UnaryFunction(IxoMepExprNodeType kind, Shape operand) noexcept;
// Control, assignment, calls. The forms without a result are for where nobody wants it.
Reg RunCond(const Op& op, Run& run);
Reg RunChoice(const Op& op, Run& run);
// For a ChoiceOp with that comparison as its condition.
Op::Fn ChoiceFunction(IxoMepExprNodeType kind, Shape left, Shape right) noexcept;
Reg RunWhile(const Op& op, Run& run);
Reg RunFor(const Op& op, Run& run);
Reg RunSequence(const Op& op, Run& run);
Reg RunAssign(const Op& op, Run& run);
Reg RunAssignOnly(const Op& op, Run& run);
Reg RunAppendOnly(const Op& op, Run& run);
// For an AssignOp with `appended`, by the shape of what is added.
Op::Fn AddOnlyFunction(Shape more) noexcept;
// For a call of a name that is no built-in, by its arguments.
Op::Fn CallFunction(const CallOp& call) noexcept;
// The same for the one name that every parser knows, and for many arguments.
Reg RunOtherCall(const Op& op, Run& run);

// A limit of the host is exceeded.
Reg FailLimit(Run& run) noexcept;

// The variable, created undefined when it is nowhere.
inline IxoMepValue& FindOrCreate(IxoMepValueSet& scope, const NameRef& ref) {
  IxoMepValue* const found = scope.FindInBucket(ref.bucket, ref.name);
  return found != nullptr ? *found : *scope.NewGetLValue(ref.name);
}

// Where assignment to the variable stores.
inline IxoMepValue& TargetOf(IxoMepValue& variable) noexcept {
  return variable.GetType() == IxoMepValueType::Reference ? ValueAccess::Follow(variable)
                                                          : variable;
}

// The operand's value where it stands, or made in storage; null after a failure.
const IxoMepValue* ReadOperand(const Operand& operand, Run& run, IxoMepValue& storage);

}  // namespace ixomep
