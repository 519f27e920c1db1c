// Internal: quick trees, the second form that a side program has when its tree is quiet: constants,
// names, operators, subscripts and cond, nothing that changes anything or calls anybody. A quick
// tree knows where the values of its names stand (QuickNames), hands values on without owning them
// and knows no failure: what is not numbers, a text or an element as it is gives up, and since
// nothing has happened yet the program begins the evaluation again.
//
// So an evaluation by a host needs no level, no owner of the tree and no look at the limits
// afterwards: it saves 80 of the 125 instructions that one costs before the first operator, and an
// operator on two names is 12 instructions instead of 27. Loops use quick trees for their bodies
// (program_passes.h). Made by program_quick_compile.cpp, the operators are in program_quick.cpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ixomep/expr/decimal_compare.h"
#include "ixomep/expr/program.h"

namespace ixomep {

// The values of a tree's names where they stood when they were looked up: good for that scope
// until variables come or go.
class QuickNames {
 public:
  static constexpr std::size_t kMost = 8;

  // Where the value's place will be kept; null when there are too many names.
  IxoMepValue* const* SlotOf(const NameRef& name) noexcept;
  bool IsBoundTo(const IxoMepValueSet* scope) const noexcept {
    return scope_ == scope && changes_ == IxoMepValueSet::Changes();
  }
  // False when a name is bound nowhere.
  bool Bind(const IxoMepValueSet& scope) noexcept;
  void Unbind() noexcept { changes_ = kNever; }

 private:
  static constexpr std::uint64_t kNever = ~std::uint64_t{0};

  const IxoMepValueSet* scope_ = nullptr;
  std::uint64_t changes_ = kNever;
  std::size_t count_ = 0;
  NameRef names_[kMost];
  IxoMepValue* values_[kMost] = {};
};

struct QuickOp;

struct QuickOperand {
  IxoMepValue* const* slot = nullptr;  // of a name or a constant that is no number
  const QuickOp* op = nullptr;
  Reg number{0, 0};
  Landmark landmark;  // at that number
};

struct QuickOp {
  // The value, which is not owned; kGivenUp for what is the program's business.
  using Fn = Reg (*)(const QuickOp& op);

  Reg operator()() const { return fn(*this); }

  Fn fn = nullptr;
  QuickOperand left;
  QuickOperand right;
  const QuickOp* otherwise = nullptr;  // of a choice: left the condition, right what it chooses
  IxoMepValue* constant = nullptr;     // what a slot of an operand points to
};

inline constexpr Reg kGivenUp{-3, 0};

class QuickTree {
 public:
  // Evaluates into the slot's value. False, and nothing has happened, when the program has to.
  bool Run(IxoMepValue& result) {
    const Reg made = (*root)();
    if (IsScalar(made.tag) && OwnsNothing(result)) [[likely]] {
      ValueAccess::SetScalar(result, static_cast<IxoMepValueType>(made.tag), made.bits);
      return true;
    }
    return StoreOther(made, result);
  }
  // Called when the program evaluates in that scope: binds the names for the next time, when it is
  // the same scope for the second time and running did not fail of late.
  void Expect(const IxoMepValueSet* scope) noexcept;

  const QuickOp* root = nullptr;
  QuickNames names;
  const IxoMepExprNode* node = nullptr;  // what it is the form of

 private:
  static bool OwnsNothing(const IxoMepValue& value) noexcept {
    return IsScalar(value) || value.GetType() == IxoMepValueType::Undefined;
  }
  bool StoreOther(Reg made, IxoMepValue& result);

  const IxoMepValueSet* expected_ = nullptr;
  std::uint64_t expected_changes_ = 0;
  std::int32_t pause_ = 0;  // evaluations that are not tried
  std::int32_t next_pause_ = 1;
};

// The tree's quick form; null when it is not quiet. It lives with the program.
QuickTree* MakeQuickTree(const IxoMepExprNode& node, Program& program);
// The same of a part that shares its names with others; null when it is not quiet or has too many.
const QuickOp* MakeQuickOp(const IxoMepExprNode& node, QuickNames& names, Program& program);

// The operators (null for others), and the rest.
QuickOp::Fn QuickBinary(IxoMepExprNodeType kind, const QuickOp& op) noexcept;
QuickOp::Fn QuickPrefix(IxoMepExprNodeType kind, const QuickOp& op) noexcept;
Reg QuickRead(const QuickOp& op);
Reg QuickNumber(const QuickOp& op);
Reg QuickElement(const QuickOp& op);
Reg QuickElementOfName(const QuickOp& op);  // selected by a name
Reg QuickChoice(const QuickOp& op);

// The quick tree of an expression object's root when its names are bound in that scope, else null.
inline QuickTree* FindQuickTree(const IxoMepExprNode& root, const IxoMepValueSet* scope) noexcept {
  const CachedProgram& cached = CachedProgramFor(root);
  const bool is_ready =
      cached.node == &root && cached.quick != nullptr && cached.quick->names.IsBoundTo(scope);
  return is_ready ? cached.quick : nullptr;
}

// EvaluateToSlot for the root of a quick tree that is ready: by that, when nothing limits the
// evaluation and the slot's value can take the result.
IxoMepErrorEnum EvaluateQuickly(QuickTree& quick, const IxoMepExpressionParser* parser,
                                IxoMepValueSet* scope, IxoMepValue*& result, String& text,
                                bool strict);

}  // namespace ixomep
