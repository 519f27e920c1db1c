// Quiet tree -> quick tree (program_quick.h), and the body of a lambda -> quick lambda.
#include <algorithm>

#include "ixomep/expr/builtin_table.h"
#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/program_quick_lambda.h"
#include "ixomep/host/sanitizer.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

using Kind = IxoMepExprNodeType;

class QuickCompiler {
 public:
  QuickCompiler(QuickNames& names, Program& program) : names_(names), program_(program) {}

  // Null when the tree has no quick form.
  static QuickTree* MakeTree(const IxoMepExprNode& node, Program& program) {
    auto& tree = program.New<QuickTree>();
    tree.node = &node;
    QuickCompiler compiler(tree.names, program);
    tree.text_sum = compiler.MakeTextSum(node);
    tree.root = tree.text_sum != nullptr ? tree.text_sum : compiler.Make(node);
    return tree.root != nullptr ? &tree : nullptr;
  }
  // Null when the lambda has no quick form, or would hardly gain from it.
  static QuickLambda* MakeLambda(const IxoMepExprNode& node, Program& program) {
    auto& lambda = program.New<QuickLambda>();
    QuickCompiler compiler(lambda.names_, program);
    compiler.quick_lambda_ = &lambda;
    lambda.lambda_ = &node;
    lambda.parameter_count_ = program.parameter_count;
    if (lambda.parameter_count_ == 0) return nullptr;
    lambda.body_ = compiler.Make(*node.Right());
    lambda.bytes_of_level_ = (compiler.deepest_ + 1) * kBytesOfOperation;
    const bool is_worth_it = lambda.self_ != nullptr || compiler.NodeCount() >= kWorthACall;
    return lambda.body_ != nullptr && is_worth_it ? &lambda : nullptr;
  }

  // Null for what is not quiet, or large.
  QuickOp* Make(const IxoMepExprNode& node) {
    if (--budget_ < 0) return nullptr;
    deepest_ = std::max(deepest_, ++nesting_);
    QuickOp* const op = MakeAny(node);
    --nesting_;
    return op;
  }

 private:
  // Operations nest on the native stack without asking how much is left.
  static constexpr std::int32_t kMostNodes = 64;
  // From how many nodes on the operations of a body save what the call costs.
  static constexpr std::int32_t kWorthACall = 8;
  // More than any of them takes there.
  static constexpr std::size_t kBytesOfOperation = kWatchedMemory ? 4096 : 512;

  QuickOp* MakeAny(const IxoMepExprNode& node) {
    switch (node.GetType()) {
      case Kind::Constant:
        return MakeConstant(node);
      case Kind::Variable:
        return MakeName(node);
      case Kind::ArraySubscription:
        return MakeElement(node);
      case Kind::FunctionCall:
        return MakeCall(node);
      default:
        return MakeOperator(node);
    }
  }

  template <class T = QuickOp>
  T& New(QuickOp::Fn fn) {
    auto& op = program_.New<T>();
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
    const NameRef name(node.GetNameAddress());
    const std::int32_t parameter = ParameterOf(name);
    if (parameter >= 0) {
      QuickOp& op = New(&QuickParameter);
      op.left.argument = parameter;
      return &op;
    }
    QuickOp& op = New(&QuickRead);
    op.left.slot = names_.SlotOf(name);
    return op.left.slot != nullptr ? &op : nullptr;
  }

  // -1 for what is no parameter.
  std::int32_t ParameterOf(const NameRef& name) const noexcept {
    if (quick_lambda_ == nullptr) return -1;
    for (std::int32_t i = 0; i < program_.parameter_count; ++i) {
      if (program_.parameters[i].name == name.name) return i;
    }
    return -1;
  }

  std::int32_t NodeCount() const noexcept { return kMostNodes - budget_; }

  std::size_t ParameterCount() const noexcept {
    return static_cast<std::size_t>(program_.parameter_count);
  }

  bool Fill(QuickOperand& operand, const IxoMepExprNode* node) {
    const QuickOp* const op = node != nullptr ? Make(*node) : nullptr;
    if (op == nullptr) return false;
    operand.op = op;
    if (op->fn == &QuickRead) operand.slot = op->left.slot;
    operand.argument = op->left.argument;
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
      op.fn = QuickBinary(node.GetType(), op, quick_lambda_ != nullptr);
    }
    return op.fn != nullptr ? &op : nullptr;
  }

  // A chain of "+" of names and texts, some of them shown, if any part is sure to be a text. Null
  // for other trees.
  QuickTextSum* MakeTextSum(const IxoMepExprNode& node) {
    if (!HasText(node)) return nullptr;
    auto& sum = New<QuickTextSum>(&QuickNoValue);
    return AddParts(node, sum) && sum.count > 1 ? &sum : nullptr;
  }

  static bool IsSum(const IxoMepExprNode& node) noexcept {
    return node.GetType() == Kind::Plus && node.Left() != nullptr && node.Right() != nullptr;
  }

  static bool IsText(const IxoMepExprNode& node) noexcept {
    const IxoMepValue* const value = node.GetType() == Kind::Constant ? node.GetValue() : nullptr;
    return node.GetType() == Kind::Str ||
           (value != nullptr && value->GetType() == IxoMepValueType::String);
  }

  static bool HasText(const IxoMepExprNode& node) noexcept {
    const IxoMepExprNode* sum = &node;
    for (std::size_t i = 0; i < TextSumOp::kMaxParts && IsSum(*sum); ++i, sum = sum->Left()) {
      if (IsText(*sum->Right())) return true;
    }
    return IsText(*sum);
  }

  // From the left; the chain has few links when this is called.
  bool AddParts(const IxoMepExprNode& node, QuickTextSum& sum) {
    if (!IsSum(node)) return AddPart(node, sum);
    if (--budget_ < 0) return false;
    return AddParts(*node.Left(), sum) && AddPart(*node.Right(), sum);
  }

  bool AddPart(const IxoMepExprNode& node, QuickTextSum& sum) {
    const bool is_shown = node.GetType() == Kind::Str && node.Right() != nullptr;
    const QuickOp* const op = Make(is_shown ? *node.Right() : node);
    if (op == nullptr || op->left.slot == nullptr || op->fn != &QuickRead) return false;
    if (sum.count == sum.parts.size()) return false;
    sum.parts[sum.count++] = {op->left.slot, is_shown};
    return true;
  }

  QuickOp* MakeCall(const IxoMepExprNode& node) {
    static const char* const cond = Intern("cond");
    const IxoMepExprNode* const callee = node.Left();
    if (callee == nullptr || callee->GetType() != Kind::Variable) return nullptr;
    const char* const name = callee->GetNameAddress();
    const std::int32_t count = node.GetParamCount();
    if (name == cond) return count >= 3 && count % 2 == 1 ? MakeChoices(*node.Right()) : nullptr;
    const bool may_be_itself = quick_lambda_ != nullptr && name != nullptr &&
                               count == program_.parameter_count && !IsBuiltinName(name);
    return may_be_itself ? MakeCallItself(node, NameRef(name)) : nullptr;
  }

  // From the cell of a condition on.
  QuickOp* MakeChoices(const IxoMepExprNode& cell) {
    if (cell.Right() == nullptr) return Make(*cell.Left());
    const IxoMepExprNode& chosen = *cell.Right();
    auto& op = New<QuickChoiceOp>(&QuickChoice);
    const QuickOp* const condition = Make(*cell.Left());
    op.chosen = condition != nullptr ? Make(*chosen.Left()) : nullptr;
    op.otherwise = op.chosen != nullptr ? MakeChoices(*chosen.Right()) : nullptr;
    if (op.otherwise == nullptr) return nullptr;
    op.condition = condition;
    op.left = condition->left;
    op.right = condition->right;
    op.fn = QuickChoiceBy(cell.Left()->GetType(), op);
    return &op;
  }

  // All calls of the lambda's body are by one name, which is none of its parameters.
  QuickOp* MakeCallItself(const IxoMepExprNode& node, const NameRef& name) {
    static const char* const line_number = Intern("curlineno");
    if (ParameterOf(name) >= 0 || name.name == line_number) return nullptr;
    IxoMepValue* const* const slot = names_.SlotOf(name);
    QuickLambda& lambda = *quick_lambda_;
    if (lambda.self_ == nullptr) lambda.self_ = slot;
    if (slot == nullptr || slot != lambda.self_) return nullptr;
    auto& op = New<QuickCallOp>(QuickCallOf(ParameterCount()));
    op.lambda = &lambda;
    const IxoMepExprNode* cell = node.Right();
    for (std::size_t i = 0; i < ParameterCount(); ++i, cell = cell->Right()) {
      op.arguments[i] = Make(*cell->Left());
      if (op.arguments[i] == nullptr) return nullptr;
    }
    if (ParameterCount() == 1) FindStep(op, *node.Right()->Left());
    return &op;
  }

  // Is the only argument the parameter plus or minus an integer?
  static void FindStep(QuickCallOp& call, const IxoMepExprNode& argument) noexcept {
    const QuickOp& sum = *call.arguments[0];
    const Kind kind = argument.GetType();
    if ((kind != Kind::Plus && kind != Kind::Minus) || argument.Left() == nullptr) return;
    const bool is_step = sum.left.op->fn == &QuickParameter && sum.right.op->fn == &QuickNumber &&
                         sum.right.number.tag == kTagInteger;
    if (!is_step) return;
    call.step = IntegerOf(sum.right.number);
    if (kind == Kind::Minus) call.step = Wrapped<Kind::Minus>(0, call.step);
    call.fn = &QuickCallWithStep;
  }

  QuickNames& names_;
  Program& program_;
  QuickLambda* quick_lambda_ = nullptr;  // whose body it is
  std::int32_t budget_ = kMostNodes;
  std::size_t nesting_ = 0;
  std::size_t deepest_ = 0;
};

QuickLambda* MakeQuickLambda(const IxoMepExprNode& lambda, Program& program) {
  return QuickCompiler::MakeLambda(lambda, program);
}

const QuickOp* MakeQuickOp(const IxoMepExprNode& node, QuickNames& names, Program& program) {
  return QuickCompiler(names, program).Make(node);
}

QuickTree* MakeQuickTree(const IxoMepExprNode& node, Program& program) {
  return QuickCompiler::MakeTree(node, program);
}

}  // namespace ixomep
