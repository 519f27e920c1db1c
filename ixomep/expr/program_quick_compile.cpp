// Quiet tree -> quick tree (program_quick.h).
#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/program_quick.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;

class QuickCompiler {
 public:
  QuickCompiler(QuickNames& names, Program& program) : names_(names), program_(program) {}

  // Null for what is not quiet, or large.
  QuickOp* Make(const IxoMepExprNode& node) {
    if (--budget_ < 0) return nullptr;
    switch (node.GetType()) {
      case Kind::Constant:
        return MakeConstant(node);
      case Kind::Variable:
        return MakeName(node);
      case Kind::ArraySubscription:
        return MakeElement(node);
      case Kind::FunctionCall:
        return MakeChoice(node);
      default:
        return MakeOperator(node);
    }
  }

 private:
  // Operations nest on the native stack without asking how much is left.
  static constexpr std::int32_t kMostNodes = 64;

  QuickOp& New(QuickOp::Fn fn) {
    auto& op = program_.New<QuickOp>();
    op.fn = fn;
    return op;
  }

  QuickOp* MakeConstant(const IxoMepExprNode& node) {
    const IxoMepValue* const value = node.GetValue();
    if (value == nullptr) return nullptr;
    if (IsScalar(*value)) {
      QuickOp& op = New(&QuickNumber);
      op.left.number = CopyOf(*value);
      return &op;
    }
    QuickOp& op = New(&QuickRead);
    op.constant = const_cast<IxoMepValue*>(value);  // read only
    op.left.slot = &op.constant;
    return &op;
  }

  QuickOp* MakeName(const IxoMepExprNode& node) {
    QuickOp& op = New(&QuickRead);
    op.left.slot = names_.SlotOf(NameRef(node.GetNameAddress()));
    return op.left.slot != nullptr ? &op : nullptr;
  }

  bool Fill(QuickOperand& operand, const IxoMepExprNode* node) {
    const QuickOp* const op = node != nullptr ? Make(*node) : nullptr;
    if (op == nullptr) return false;
    operand.op = op;
    if (op->fn == &QuickRead) operand.slot = op->left.slot;
    if (op->fn == &QuickNumber) {
      operand.number = op->left.number;
      if (IsNumber(operand.number)) operand.landmark = Landmark(NumberOf(operand.number));
    }
    return true;
  }

  QuickOp* MakeElement(const IxoMepExprNode& node) {
    const IxoMepExprNode* const cell = node.Right();
    if (cell == nullptr || cell->Right() != nullptr) return nullptr;
    QuickOp& op = New(&QuickElement);
    if (!Fill(op.left, node.Left()) || !Fill(op.right, cell->Left())) return nullptr;
    if (op.left.slot != nullptr && op.right.slot != nullptr) op.fn = &QuickElementOfName;
    return &op;
  }

  QuickOp* MakeOperator(const IxoMepExprNode& node) {
    QuickOp& op = New(nullptr);
    if (!Fill(op.right, node.Right())) return nullptr;
    if (node.Left() == nullptr) {
      op.fn = QuickPrefix(node.GetType(), op);
    } else if (Fill(op.left, node.Left())) {
      op.fn = QuickBinary(node.GetType(), op);
    }
    return op.fn != nullptr ? &op : nullptr;
  }

  QuickOp* MakeChoice(const IxoMepExprNode& node) {
    static const char* const cond = Intern("cond");
    const IxoMepExprNode* const callee = node.Left();
    const bool is_cond = callee != nullptr && callee->GetType() == Kind::Variable &&
                         callee->GetNameAddress() == cond;
    const std::int32_t count = is_cond ? node.GetParamCount() : 0;
    return count >= 3 && count % 2 == 1 ? MakeChoices(*node.Right()) : nullptr;
  }

  // From the cell of a condition on.
  QuickOp* MakeChoices(const IxoMepExprNode& cell) {
    if (cell.Right() == nullptr) return Make(*cell.Left());
    const IxoMepExprNode& chosen = *cell.Right();
    QuickOp& op = New(&QuickChoice);
    if (!Fill(op.left, cell.Left()) || !Fill(op.right, chosen.Left())) return nullptr;
    op.otherwise = MakeChoices(*chosen.Right());
    return op.otherwise != nullptr ? &op : nullptr;
  }

  QuickNames& names_;
  Program& program_;
  std::int32_t budget_ = kMostNodes;
};

}  // namespace

const QuickOp* MakeQuickOp(const IxoMepExprNode& node, QuickNames& names, Program& program) {
  return QuickCompiler(names, program).Make(node);
}

QuickTree* MakeQuickTree(const IxoMepExprNode& node, Program& program) {
  auto& tree = program.New<QuickTree>();
  tree.node = &node;
  tree.root = MakeQuickOp(node, tree.names, program);
  return tree.root != nullptr ? &tree : nullptr;
}

}  // namespace ixomep
