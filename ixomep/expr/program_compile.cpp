// Tree -> side program. For each node the operation that fits its operands; what has none is
// evaluated the plain way (RunPlainly).
#include <algorithm>
#include <limits>
#include <utility>

#include "ixomep/expr/builtin_table.h"
#include "ixomep/expr/capture.h"
#include "ixomep/expr/operator_table.h"
#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/program_passes.h"
#include "ixomep/expr/program_quick_lambda.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;

// Deeper trees are walked: operations nest on the native stack without asking how much is left. The
// spine of a program is no longer than that, too.
constexpr std::int32_t kMaxNesting = 120;

class Compiler {
 public:
  explicit Compiler(Program& program) : program_(program) {}

  const Op* Value(const IxoMepExprNode& node, SpineDepth depth) {
    return Counted(node, depth, &Compiler::MakeValueOp);
  }
  // For a result that nobody wants.
  const Op* Effect(const IxoMepExprNode& node, SpineDepth depth) {
    return Counted(node, depth, &Compiler::MakeEffectOp);
  }

 private:
  using Maker = const Op* (Compiler::*)(const IxoMepExprNode& node, SpineDepth depth);

  const Op* Counted(const IxoMepExprNode& node, SpineDepth depth, Maker maker) {
    if (depth.above_entry) program_.spine = std::max(program_.spine, depth.count + 1);
    if (nesting_ >= kMaxNesting) return Plain(node, depth);
    ++nesting_;
    const Op* const op = (this->*maker)(node, depth);
    --nesting_;
    return op;
  }

  template <class T>
  T& New(const IxoMepExprNode& node, SpineDepth depth, Op::Fn fn) {
    T& op = program_.New<T>();
    op.fn = fn;
    op.node = &node;
    op.depth = depth;
    return op;
  }

  const Op* Plain(const IxoMepExprNode& node, SpineDepth depth) {
    return &New<Op>(node, depth, &RunPlainly);
  }

  const Op* MakeValueOp(const IxoMepExprNode& node, SpineDepth depth) {
    switch (node.GetType()) {
      case Kind::Constant:
        return MakeConstant(node, depth);
      case Kind::Variable:
        return MakeName(node, depth);
      case Kind::ArraySubscription:
        return MakeElement(node, depth);
      case Kind::FunctionCall:
        return MakeCall(node, depth);
      case Kind::Assign:
        return MakeAssign(node, depth, &RunAssign);
      case Kind::Comma:
        return MakeSequence(node, depth, true);
      case Kind::ObjectSubscription:
      case Kind::ParamItem:
      case Kind::Lambda:
        return Plain(node, depth);
      default:
        return MakeOperator(node, depth);
    }
  }

  const Op* MakeEffectOp(const IxoMepExprNode& node, SpineDepth depth) {
    switch (node.GetType()) {
      case Kind::Assign:
        return MakeAssign(node, depth, &RunAssignOnly);
      case Kind::Comma:
        return MakeSequence(node, depth, false);
      case Kind::FunctionCall:
        if (IsAppend(node)) return MakeAppend(node, depth);
        [[fallthrough]];
      default:
        return MakeValueOp(node, depth);
    }
  }

  const Op* MakeConstant(const IxoMepExprNode& node, SpineDepth depth) {
    const IxoMepValue* const value = node.GetValue();
    if (value == nullptr) return Plain(node, depth);
    if (IsScalar(static_cast<std::int64_t>(value->GetType()))) {
      auto& op = New<NumberOp>(node, depth, &RunNumber);
      op.number = CopyOf(*value);
      return &op;
    }
    auto& op = New<ConstantOp>(node, depth, &RunConstant);
    op.value = value;
    return &op;
  }

  // The parameter of that name, -1 for none.
  std::int32_t ParameterOf(const char* name) const noexcept {
    for (std::int32_t i = 0; i < program_.parameter_count; ++i) {
      if (program_.parameters[i].name == name) return i;
    }
    return -1;
  }

  const Op* MakeName(const IxoMepExprNode& node, SpineDepth depth) {
    const NameRef name(node.GetNameAddress());
    const std::int32_t parameter = ParameterOf(name.name);
    if (parameter >= 0) {
      auto& op = New<ArgumentOp>(node, depth, &RunArgument);
      op.name = name;
      op.index = parameter;
      return &op;
    }
    auto& op = New<VariableOp>(node, depth, &RunVariable);
    op.name = name;
    return &op;
  }

  Operand MakeOperand(const IxoMepExprNode& node, SpineDepth depth) {
    Operand operand;
    operand.op = Value(node, depth);
    operand.quiet = IsQuiet(node);
    if (operand.op->fn == &RunNumber) {
      operand.shape = Shape::Number;
      operand.number = static_cast<const NumberOp*>(operand.op)->number;
      if (IsNumber(operand.number)) operand.landmark = Landmark(NumberOf(operand.number));
    } else if (operand.op->fn == &RunVariable) {
      operand.shape = Shape::Variable;
      operand.name = static_cast<const VariableOp*>(operand.op)->name;
    } else if (operand.op->fn == &RunArgument) {
      const auto* const argument = static_cast<const ArgumentOp*>(operand.op);
      operand.shape = Shape::Argument;
      operand.name = argument->name;
      operand.argument = argument->index;
    }
    return operand;
  }

  const Op* MakeElement(const IxoMepExprNode& node, SpineDepth depth) {
    const IxoMepExprNode* const cell = node.Right();
    const bool simple = node.Left() != nullptr && cell != nullptr && cell->Right() == nullptr &&
                        IsQuiet(*node.Left()) && IsQuiet(*cell->Left());
    if (!simple) return Plain(node, depth);
    auto& op = New<ElementOp>(node, depth, &RunElement);
    op.base = MakeOperand(*node.Left(), depth.Inside());
    op.index = MakeOperand(*cell->Left(), SpineDepth::AfterAnEnd());
    return &op;
  }

  const Op* MakeOperator(const IxoMepExprNode& node, SpineDepth depth) {
    if (node.Right() == nullptr) return Plain(node, depth);
    if (node.Left() == nullptr) {
      auto& op = New<UnaryOp>(node, depth, nullptr);
      op.operand = MakeOperand(*node.Right(), depth.Inside());
      op.fn = UnaryFunction(node.GetType(), op.operand.shape);
      return &op;
    }
    if (BinaryFunction(node.GetType(), Shape::General, Shape::General) == nullptr) {
      return Plain(node, depth);
    }
    const BinaryOp& op = MakeBinary(node, depth);
    return node.GetType() == Kind::Plus && IsQuiet(node) ? MakeTextSum(op) : &op;
  }

  static bool IsText(const TextSumOp::Part& part) noexcept {
    const IxoMepValue* const value = part.operand.op->node->GetValue();
    return part.shown || (value != nullptr && value->GetType() == IxoMepValueType::String);
  }

  static TextSumOp::Part PartOf(const Operand& operand) {
    const bool shown = operand.op->node->GetType() == Kind::Str && operand.op->fn != &RunPlainly;
    if (!shown) return {operand, false};
    TextSumOp::Part part{static_cast<const UnaryOp*>(operand.op)->operand, true};
    part.operand.op = operand.op;  // the whole, for what is no number at hand
    return part;
  }

  // Is it the operation of an operator between two operands (made by MakeBinary)?
  static bool IsBinary(const Op& op) noexcept {
    return op.fn != &RunPlainly && op.fn != &RunTextSum && op.node->Left() != nullptr &&
           BinaryFunction(op.node->GetType(), Shape::General, Shape::General) != nullptr;
  }

  // The sum as one of three or more parts when a text is among them, else as it was.
  const Op* MakeTextSum(const BinaryOp& sum) {
    const Op* const left = sum.left.op;
    std::vector<TextSumOp::Part> parts;
    if (left->fn == &RunTextSum) {
      parts = static_cast<const TextSumOp*>(left)->parts;
    } else if (left->node->GetType() == Kind::Plus && left->node->Left() != nullptr &&
               left->fn != &RunPlainly) {
      const auto* const inner = static_cast<const BinaryOp*>(left);
      parts = {PartOf(inner->left), PartOf(inner->right)};
    }
    if (parts.empty() || parts.size() == TextSumOp::kMaxParts) return &sum;
    parts.push_back(PartOf(sum.right));
    if (std::none_of(parts.begin(), parts.end(), IsText)) return &sum;
    auto& op = New<TextSumOp>(*sum.node, sum.depth, &RunTextSum);
    op.parts = std::move(parts);
    op.plain = &sum;
    return &op;
  }

  const BinaryOp& MakeBinary(const IxoMepExprNode& node, SpineDepth depth) {
    auto& op = New<BinaryOp>(node, depth, nullptr);
    op.left = MakeOperand(*node.Left(), depth.Inside());
    op.right = MakeOperand(*node.Right(), SpineDepth::AfterAnEnd());
    op.fn = BinaryFunction(node.GetType(), op.left.shape, op.right.shape);
    return op;
  }

  const Op* MakeSequence(const IxoMepExprNode& node, SpineDepth depth, bool wanted) {
    if (node.Left() == nullptr || node.Right() == nullptr) return Plain(node, depth);
    auto& op = New<SequenceOp>(node, depth, &RunSequence);
    op.first = Effect(*node.Left(), depth.Inside());
    op.second = wanted ? Value(*node.Right(), SpineDepth::AfterAnEnd())
                       : Effect(*node.Right(), SpineDepth::AfterAnEnd());
    return &op;
  }

  static bool IsCallOf(const IxoMepExprNode& node, const char* name) noexcept {
    return node.GetType() == Kind::FunctionCall && node.Left() != nullptr &&
           node.Left()->GetType() == Kind::Variable && node.Left()->GetNameAddress() == name;
  }

  // To a name. A lambda that is assigned learns that name, which the plain way sees to.
  const Op* MakeAssign(const IxoMepExprNode& node, SpineDepth depth, Op::Fn fn) {
    const IxoMepExprNode* const target = node.Left();
    const IxoMepExprNode* const source = node.Right();
    if (target == nullptr || source == nullptr || target->GetType() != Kind::Variable ||
        IsLambdaCall(*source)) {
      return Plain(node, depth);
    }
    auto& op = New<AssignOp>(node, depth, fn);
    op.variable = NameRef(target->GetNameAddress());
    op.value = Value(*source, depth.Inside());
    op.quiet = IsQuiet(*source);
    const bool is_sum = source->GetType() == Kind::Plus && source->Left() != nullptr &&
                        op.value->fn != &RunPlainly && op.value->fn != &RunTextSum;
    if (is_sum) {
      const auto* const sum = static_cast<const BinaryOp*>(op.value);
      if (sum->left.shape != Shape::General && sum->left.name.name == op.variable.name &&
          sum->right.quiet) {
        op.appended = sum;
        if (fn == &RunAssignOnly) op.fn = AddOnlyFunction(sum->right.shape);
      }
    }
    return &op;
  }

  static bool IsAppend(const IxoMepExprNode& node) noexcept {
    static const char* const append = Intern("aappend");
    if (!IsCallOf(node, append) || node.GetParamCount() != 2) return false;
    return node.GetParam1()->GetType() == Kind::Variable && IsQuiet(*node.GetParam2());
  }

  const Op* MakeAppend(const IxoMepExprNode& node, SpineDepth depth) {
    auto& op = New<AppendOp>(node, depth, &RunAppendOnly);
    op.variable = NameRef(node.GetParam1()->GetNameAddress());
    op.value = Value(*node.GetParam2(), depth.Inside());
    return &op;
  }

  const Op* MakeCall(const IxoMepExprNode& node, SpineDepth depth) {
    static const char* const cond = Intern("cond");
    static const char* const mepwhile = Intern("while");
    static const char* const mepfor = Intern("for");
    const IxoMepExprNode* const callee = node.Left();
    if (callee == nullptr || callee->GetType() != Kind::Variable) return Plain(node, depth);
    const char* const name = callee->GetNameAddress();
    const std::int32_t count = node.GetParamCount();
    if (name == cond && count >= 3 && count % 2 == 1) return MakeCond(node, depth);
    if (name == mepwhile && (count == 2 || count == 3)) return MakeWhile(node, depth);
    if (name == mepfor && (count == 4 || count == 5) &&
        node.GetParam1()->GetType() == Kind::Variable) {
      return MakeFor(node, depth);
    }
    if (name == nullptr || IsBuiltinName(name)) return Plain(node, depth);
    return MakeUserCall(node, depth, name);
  }

  const Op* MakeCond(const IxoMepExprNode& node, SpineDepth depth) {
    CondOp& cond = New<CondOp>(node, depth, &RunCond);
    SpineDepth condition_depth = depth.Inside();
    const IxoMepExprNode* cell = node.Right();
    while (cell->Right() != nullptr) {
      const Op* const condition = Value(*cell->Left(), condition_depth);
      cell = cell->Right();
      cond.branches.push_back({condition, Value(*cell->Left(), SpineDepth::AfterAnEnd())});
      condition_depth = SpineDepth::AfterAnEnd();
      cell = cell->Right();
    }
    cond.otherwise = Value(*cell->Left(), SpineDepth::AfterAnEnd());
    constexpr std::size_t kMostChoices = 4;  // they nest
    return cond.branches.size() <= kMostChoices ? MakeChoices(cond) : &cond;
  }

  const Op* MakeChoices(const CondOp& cond) {
    const Op* rest = cond.otherwise;
    for (auto branch = cond.branches.rbegin(); branch != cond.branches.rend(); ++branch) {
      auto& choice = New<ChoiceOp>(*cond.node, cond.depth, &RunChoice);
      choice.condition = branch->condition;
      choice.value = branch->value;
      choice.otherwise = rest;
      if (IsBinary(*choice.condition)) {
        choice.compared = static_cast<const BinaryOp*>(choice.condition);
        choice.fn = ChoiceFunction(choice.condition->node->GetType(), choice.compared->left.shape,
                                   choice.compared->right.shape);
      }
      rest = &choice;
    }
    return rest;
  }

  const Op* MakeWhile(const IxoMepExprNode& node, SpineDepth depth) {
    auto& op = New<WhileOp>(node, depth, &RunWhile);
    op.condition = Value(*node.GetParam1(), depth.Inside());
    op.body = Effect(*node.GetParam2(), SpineDepth::AfterAnEnd());
    if (!MayTakeSteps(*node.GetParam1())) op.steps_ahead = StepsAhead(*node.GetParam2());
    op.passes = MakePasses(node.GetParam1(), nullptr, *op.body, program_);
    if (node.GetParam3() != nullptr) op.last = Value(*node.GetParam3(), SpineDepth::AfterAnEnd());
    return &op;
  }

  // How many passes with this body may take their steps at once.
  static std::int64_t StepsAhead(const IxoMepExprNode& body) noexcept {
    return MayTakeSteps(body) ? 1 : std::numeric_limits<std::int64_t>::max();
  }

  const Op* MakeFor(const IxoMepExprNode& node, SpineDepth depth) {
    auto& op = New<ForOp>(node, depth, &RunFor);
    op.variable = NameRef(node.GetParam1()->GetNameAddress());
    op.from = Value(*node.GetParam2(), depth.Inside());
    op.to = Value(*node.GetParam3(), SpineDepth::AfterAnEnd());
    op.body = Effect(*node.GetParam4(), SpineDepth::AfterAnEnd());
    op.steps_ahead = StepsAhead(*node.GetParam4());
    op.passes = MakePasses(nullptr, &op.variable, *op.body, program_);
    if (node.GetParam(5) != nullptr) op.last = Value(*node.GetParam(5), SpineDepth::AfterAnEnd());
    return &op;
  }

  const Op* MakeUserCall(const IxoMepExprNode& node, SpineDepth depth, const char* name) {
    static const char* const line_number = Intern("curlineno");
    auto& op = New<CallOp>(node, depth, nullptr);
    op.callee = NameRef(name);
    op.name = String(name);
    SpineDepth argument_depth = depth.Inside();
    for (const IxoMepExprNode* cell = node.Right(); cell != nullptr; cell = cell->Right()) {
      op.arguments.push_back(Value(*cell->Left(), argument_depth));
      argument_depth = SpineDepth::AfterAnEnd();
    }
    if (op.arguments.size() == 1) FindStep(op);
    op.fn = name == line_number ? &RunOtherCall : CallFunction(op);
    return &op;
  }

  // Is the only argument a parameter plus or minus an integer?
  static void FindStep(CallOp& call) noexcept {
    const Op& argument = *call.arguments[0];
    const Kind kind = argument.node->GetType();
    if (!IsBinary(argument) || (kind != Kind::Plus && kind != Kind::Minus)) return;
    const auto& sum = static_cast<const BinaryOp&>(argument);
    if (sum.left.shape != Shape::Argument || sum.right.shape != Shape::Number ||
        sum.right.number.tag != kTagInteger) {
      return;
    }
    call.step_of = sum.left.argument;
    call.step = IntegerOf(sum.right.number);
    if (kind == Kind::Minus) call.step = Wrapped<Kind::Minus>(0, call.step);
  }

  Program& program_;
  std::int32_t nesting_ = 0;
};

// False for a lambda with more parameters than a level holds, or two of one name.
bool ReadParameters(const IxoMepExprNode& lambda, Program& program) {
  for (const IxoMepExprNode* name = lambda.Left(); name != nullptr; name = name->Left()) {
    if (program.parameter_count == Run::kMaxArguments) return false;
    const NameRef parameter(name->GetNameAddress());
    for (std::int32_t i = 0; i < program.parameter_count; ++i) {
      if (program.parameters[i].name == parameter.name) return false;
    }
    program.parameters[program.parameter_count++] = parameter;
    program.parameter_bits |= parameter.bits;
  }
  return true;
}

// Names stand close to each other: the product spreads them.
std::uint64_t BitsOf(const char* name) noexcept {
  const std::uint64_t hash = reinterpret_cast<std::uintptr_t>(name) * 0x9E3779B97F4A7C15;
  return std::uint64_t{1} << (hash >> 58) | std::uint64_t{1} << (hash >> 52 & 63) |
         std::uint64_t{1} << (hash >> 46 & 63);
}

}  // namespace

NameRef::NameRef(const char* interned) noexcept
    : name(interned), bucket(IxoMepValueSet::IndexOf(interned)), bits(BitsOf(interned)) {}

std::unique_ptr<Program> CompileProgram(const IxoMepExprNode& node) {
  auto program = std::make_unique<Program>();
  const bool is_lambda = node.GetType() == Kind::Lambda;
  const IxoMepExprNode* const root = is_lambda ? node.Right() : &node;
  if (root == nullptr || (is_lambda && !ReadParameters(node, *program))) return nullptr;
  if (is_lambda) program->lambda = &node;
  Compiler compiler(*program);
  program->root = compiler.Value(*root, SpineDepth());
  if (is_lambda) {
    program->quick_lambda = MakeQuickLambda(node, *program);
  } else {
    program->quick = MakeQuickTree(node, *program);
  }
  return program;
}

}  // namespace ixomep
