// Which tree has which side program. A node carries two marks beside its count of owners: whether
// it was evaluated before, and whether there is an entry for it here, which its destruction
// removes. A small direct-mapped cache in front makes finding a program one comparison.
#include <algorithm>
#include <iterator>
#include <memory>
#include <unordered_map>
#include <utility>

#include "ixomep/expr/guarded.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program_quick.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

namespace {

constexpr std::int32_t kLongestSpine = 251;

bool are_used = true;

// Does a loop stand among the first nodes of the tree? Its body will be evaluated often, so that
// the program is worth making at once.
bool HasLoop(const IxoMepExprNode* node, std::int32_t& budget) noexcept {
  static const char* const names[] = {Intern("for"), Intern("while")};
  for (; node != nullptr && --budget >= 0; node = node->Right()) {
    if (node->GetType() == IxoMepExprNodeType::Variable) {
      return node->GetNameAddress() == names[0] || node->GetNameAddress() == names[1];
    }
    if (HasLoop(node->Left(), budget)) return true;
  }
  return false;
}

bool HasLoop(const IxoMepExprNode& node) noexcept {
  std::int32_t budget = 64;
  return HasLoop(&node, budget);
}

class Table {
 public:
  // Never destroyed: trees of static storage may outlive everything else.
  static Table& Instance() {
    static Table* const table = new Table;
    return *table;
  }

  const Program* Find(const IxoMepExprNode& node) const {
    const auto found = programs_.find(&node);
    return found != programs_.end() ? found->second.get() : nullptr;
  }

  void Add(const IxoMepExprNode& node, std::unique_ptr<Program> program) {
    programs_[&node] = std::move(program);
  }

  void Remove(const IxoMepExprNode& node) noexcept { programs_.erase(&node); }

 private:
  std::unordered_map<const IxoMepExprNode*, std::unique_ptr<Program>> programs_;
};

// Sets the counter back however the evaluation ends.
struct DepthAtEnd {
  ~DepthAtEnd() { IxoMepExprNode::m_nCallDepth = 0; }
};

// The program to evaluate the keeper by; null when its tree is to be walked.
const Program* ProgramWithRoom(const IxoMepExprNode& keeper) {
  const Program* const program = ProgramFor(keeper);
  if (program == nullptr) return nullptr;
  const bool fits = IxoMepExprNode::m_nCallDepth + program->spine <= kLongestSpine;
  if (!fits || !StackGuard::HasRoom()) [[unlikely]]
    return nullptr;
  return program;
}

inline Reg RunProgram(const Program& program, Frame& frame, IxoMepErrorEnum& code) {
  const DepthAtEnd at_end;
  Run run(frame, IxoMepExprNode::m_nCallDepth);
  const Reg result = (*program.root)(run);
  if (result.tag == kTagFailed) code = run.code;
  return result;
}

// False, and nothing is done, when the tree is to be walked.
bool EvaluateByProgram(const IxoMepExprNode& keeper, Frame& frame, IxoMepValue& out,
                       IxoMepErrorEnum& code) {
  const Program* const program = ProgramWithRoom(keeper);
  if (program == nullptr) return false;
  const Reg result = RunProgram(*program, frame, code);
  frame.no_result = result.tag == kTagUnset;
  if (IsScalar(result.tag)) {
    StoreScalar(out, static_cast<IxoMepValueType>(result.tag), result.bits);
  } else {
    out = OwnedValue(result);
  }
  return true;
}

// A failure or a result left unset changes nothing here.
void StoreInSlot(Reg result, IxoMepValue*& slot) {
  if (slot != nullptr && IsScalar(result.tag)) {
    StoreScalar(*slot, static_cast<IxoMepValueType>(result.tag), result.bits);
  } else if (result.tag >= 0) {
    StoreResult(slot, OwnedValue(result));
  }
}

// Where somebody is asked at the beginning of an evaluation, or it stands inside another one: the
// quick tree then has to be tried here. False, and nothing has happened, unless it gives the
// result.
bool RunQuickly(QuickTree& quick, const IxoMepValueSet* scope, IxoMepValue* result) {
  if (result != nullptr && quick.names.IsBoundTo(scope) && quick.Run(*result)) {
    IxoMepExprNode::m_nCallDepth = 0;
    return true;
  }
  quick.Expect(scope);
  return false;
}

}  // namespace

CachedProgram cached_programs[kCachedPrograms];

bool UsePrograms(bool use) noexcept {
  std::fill(std::begin(cached_programs), std::end(cached_programs), CachedProgram());
  return std::exchange(are_used, use);
}

const Program* FindProgram(const IxoMepExprNode& node) {
  if (!are_used) return nullptr;
  const NodeAccess::Mark mark = NodeAccess::GetMark(node);
  if (mark == NodeAccess::Mark::Fresh && !HasLoop(node)) {
    NodeAccess::SetMark(node, NodeAccess::Mark::Seen);
    return nullptr;
  }
  if (mark != NodeAccess::Mark::HasEntry) {
    Table::Instance().Add(node, CompileProgram(node));
    NodeAccess::SetMark(node, NodeAccess::Mark::HasEntry);
  }
  const Program* const program = Table::Instance().Find(node);
  CachedProgramFor(node) = {&node, program, program != nullptr ? program->quick : nullptr};
  return program;
}

void ForgetProgram(const IxoMepExprNode& node) noexcept {
  CachedProgram& cached = CachedProgramFor(node);
  if (cached.node == &node) cached = {};
  Table::Instance().Remove(node);
}

IxoMepErrorEnum EvaluateToSlot(const IxoMepExprNode& root, const IxoMepExpressionParser* parser,
                               IxoMepValueSet* scope, IxoMepValue*& result, String& text,
                               bool strict) {
  const EvaluationLevel level;
  const IxoMepErrorEnum code = Guarded(text, [&] {
    if (!level.IsAllowed()) [[unlikely]]
      return RaiseLimit(text);
    const NodePtr held = NodePtr::Share(&root);
    const Program* const program = IsInert(*held) ? nullptr : ProgramWithRoom(*held);
    if (program == nullptr) [[unlikely]]
      return held->Evaluate(parser, scope, result, text, strict);
    if (program->quick != nullptr && RunQuickly(*program->quick, scope, result)) {
      return IMEPERR_NONE;
    }
    Frame frame{parser, scope, text, strict};
    IxoMepErrorEnum failure = IMEPERR_NONE;
    const Reg made = RunProgram(*program, frame, failure);
    if (LimitWatch::Exceeded() != Limit::None) [[unlikely]] {
      Drop(made);
      return WithinLimits(failure, text);
    }
    StoreInSlot(made, result);
    return failure;
  });
  if (code != IMEPERR_NONE) FailResult(result, scope);
  return code;
}

IxoMepErrorEnum EvaluateBody(const IxoMepExprNode& lambda, Frame& frame, IxoMepValue& out) {
  IxoMepErrorEnum code = IMEPERR_NONE;
  if (EvaluateByProgram(lambda, frame, out, code)) return code;
  return Evaluate(*lambda.Right(), frame, out);
}

}  // namespace ixomep
