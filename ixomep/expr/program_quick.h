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

#include <array>
#include <cstddef>
#include <cstdint>

#include "ixomep/expr/decimal_compare.h"
#include "ixomep/expr/program_ops.h"

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
  // May one of them be in that mask (NameRef::bits)?
  bool MayBeAmong(std::uint64_t mask) const noexcept;
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

// An argument of a quick lambda's call, a number (program_quick_lambda.h).
using QuickArgument = Reg;

struct QuickOperand {
  IxoMepValue* const* slot = nullptr;  // of a name or a constant that is no number
  std::int32_t argument = 0;           // of a parameter: its number
  const QuickOp* op = nullptr;
  Reg number{0, 0};
  Landmark landmark;  // at that number
};

struct QuickOp {
  // The value, which is not owned; kGivenUp for what is the program's business. The arguments are
  // those of the call of a quick lambda whose body it is, behind which there is room for others.
  using Fn = Reg (*)(const QuickOp& op, QuickArgument* arguments);

  Reg operator()(QuickArgument* arguments = nullptr) const { return fn(*this, arguments); }

  Fn fn = nullptr;
  QuickOperand left;
  QuickOperand right;
  IxoMepValue* constant = nullptr;  // what a slot of an operand points to
};

// cond, from one of its conditions on.
struct QuickChoiceOp : QuickOp {
  const QuickOp* condition = nullptr;  // left and right are its operands when it compares
  const QuickOp* chosen = nullptr;
  const QuickOp* otherwise = nullptr;
};

inline constexpr Reg kGivenUp{-3, 0};

// A text that an operation has given, as one of the caller's.
inline Reg ShareText(Reg borrowed) noexcept {
  IxoMepValue text = ValueAccess::FromBits(IxoMepValueType::String, borrowed.bits);
  const Reg shared{kTagString, ValueAccess::ShareText(text)};
  ValueAccess::TakeBits(text);
  return shared;
}

// A sum in which texts are likely. It has no value in registers: the tree stores it.
struct QuickTextSum : QuickOp {
  struct Part {
    IxoMepValue* const* slot = nullptr;
    bool shown = false;  // STR of what stands there
  };

  // False, and nothing has happened, when it gives up.
  bool StoreIn(IxoMepValue& result) const;

  std::size_t count = 0;
  std::array<Part, TextSumOp::kMaxParts> parts;
};
// For the operation itself: its tree stores the sum, all others give up.
Reg QuickNoValue(const QuickOp& op, QuickArgument* arguments);

// What is tried and gives up again and again is tried more and more seldom.
class QuickPause {
 public:
  // Is it not to be tried this time?
  bool Holds() noexcept {
    if (left_ == 0) return false;
    --left_;
    return true;
  }
  void Begin() noexcept {
    left_ = next_;
    if (next_ < kLongest) next_ *= 2;
  }

 private:
  static constexpr std::int32_t kLongest = 1 << 12;

  std::int32_t left_ = 0;
  std::int32_t next_ = 1;
};

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
  const QuickTextSum* text_sum = nullptr;  // when the root is one
  QuickNames names;
  const IxoMepExprNode* node = nullptr;  // what it is the form of

 private:
  static bool OwnsNothing(const IxoMepValue& value) noexcept {
    return IsScalar(value) || value.GetType() == IxoMepValueType::Undefined;
  }
  bool StoreOther(Reg made, IxoMepValue& result);

  const IxoMepValueSet* expected_ = nullptr;
  std::uint64_t expected_changes_ = 0;
  QuickPause pause_;
};

// The tree's quick form; null when it is not quiet. It lives with the program.
QuickTree* MakeQuickTree(const IxoMepExprNode& node, Program& program);
// The same of a part that shares its names with others; null when it is not quiet or has too many.
const QuickOp* MakeQuickOp(const IxoMepExprNode& node, QuickNames& names, Program& program);

// The operators (null for others), and the rest.
QuickOp::Fn QuickBinary(IxoMepExprNodeType kind, const QuickOp& op, bool in_lambda) noexcept;
QuickOp::Fn QuickPrefix(IxoMepExprNodeType kind, const QuickOp& op) noexcept;
Reg QuickRead(const QuickOp& op, QuickArgument* arguments);
Reg QuickNumber(const QuickOp& op, QuickArgument* arguments);
Reg QuickParameter(const QuickOp& op, QuickArgument* arguments);
Reg QuickElement(const QuickOp& op, QuickArgument* arguments);
Reg QuickElementOfName(const QuickOp& op, QuickArgument* arguments);  // selected by a name
Reg QuickChoice(const QuickOp& op, QuickArgument* arguments);
// For a choice by a comparison.
QuickOp::Fn QuickChoiceBy(IxoMepExprNodeType kind, const QuickChoiceOp& choice) noexcept;

// The quick tree of an expression object's root, null when it has none or was not used of late.
inline QuickTree* FindQuickTree(const IxoMepExprNode& root) noexcept {
  const CachedProgram& cached = CachedProgramFor(root);
  return cached.node == &root ? cached.quick : nullptr;
}

// EvaluateToSlot for the root of a quick tree that is ready: by that, when nothing limits the
// evaluation and the slot's value can take the result.
IxoMepErrorEnum EvaluateQuickly(QuickTree& quick, const IxoMepExpressionParser* parser,
                                IxoMepValueSet* scope, IxoMepValue*& result, String& text,
                                bool strict);

}  // namespace ixomep
