// Which tree has which side program. A node carries two marks beside its count of owners: whether
// it was evaluated before, and whether there is an entry for it here, which its destruction
// removes. A small direct-mapped cache in front makes finding a program one comparison.
#include <array>
#include <memory>
#include <unordered_map>
#include <utility>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program.h"
#include "ixomep/expr/stack_guard.h"

namespace ixomep {

namespace {

constexpr std::int32_t kLongestSpine = 251;

bool are_used = true;

class Table {
 public:
  // Never destroyed: trees of static storage may outlive everything else.
  static Table& Instance() {
    static Table* const table = new Table;
    return *table;
  }

  const Program* Find(const IxoMepExprNode& node) {
    Cached& cached = CachedFor(node);
    if (cached.node != &node) {
      const auto found = programs_.find(&node);
      cached = {&node, found != programs_.end() ? found->second.get() : nullptr};
    }
    return cached.program;
  }

  void Add(const IxoMepExprNode& node, std::unique_ptr<Program> program) {
    programs_[&node] = std::move(program);
  }

  void Remove(const IxoMepExprNode& node) noexcept {
    Cached& cached = CachedFor(node);
    if (cached.node == &node) cached = {};
    programs_.erase(&node);
  }

 private:
  struct Cached {
    const IxoMepExprNode* node = nullptr;
    const Program* program = nullptr;
  };

  Cached& CachedFor(const IxoMepExprNode& node) noexcept {
    return cache_[(reinterpret_cast<std::uintptr_t>(&node) >> 5) % cache_.size()];
  }

  std::unordered_map<const IxoMepExprNode*, std::unique_ptr<Program>> programs_;
  std::array<Cached, 256> cache_{};
};

// Sets the counter back however the evaluation ends.
struct DepthAtEnd {
  ~DepthAtEnd() { IxoMepExprNode::m_nCallDepth = 0; }
};

// False, and nothing is done, when the tree is to be walked.
bool EvaluateByProgram(const IxoMepExprNode& keeper, Frame& frame, IxoMepValue& out,
                       IxoMepErrorEnum& code) {
  const Program* const program = ProgramFor(keeper);
  const std::int32_t depth = IxoMepExprNode::m_nCallDepth;
  if (program == nullptr || depth + program->spine > kLongestSpine || !StackGuard::HasRoom()) {
    return false;
  }
  const DepthAtEnd at_end;
  Run run(frame, depth);
  const Reg result = (*program->root)(run);
  frame.no_result = result.tag == kTagUnset;
  code = result.tag == kTagFailed ? run.code : IMEPERR_NONE;
  if (IsScalar(result.tag)) {
    StoreScalar(out, static_cast<IxoMepValueType>(result.tag), result.bits);
  } else {
    out = OwnedValue(result);
  }
  return true;
}

}  // namespace

bool UsePrograms(bool use) noexcept { return std::exchange(are_used, use); }

const Program* ProgramFor(const IxoMepExprNode& node) {
  if (!are_used) return nullptr;
  switch (NodeAccess::GetMark(node)) {
    case NodeAccess::Mark::HasEntry:
      return Table::Instance().Find(node);
    case NodeAccess::Mark::Fresh:
      NodeAccess::SetMark(node, NodeAccess::Mark::Seen);
      return nullptr;
    default:
      break;
  }
  Table::Instance().Add(node, CompileProgram(node));
  NodeAccess::SetMark(node, NodeAccess::Mark::HasEntry);
  return Table::Instance().Find(node);
}

void ForgetProgram(const IxoMepExprNode& node) noexcept { Table::Instance().Remove(node); }

IxoMepErrorEnum EvaluateTree(const IxoMepExprNode& root, Frame& frame, IxoMepValue& out) {
  IxoMepErrorEnum code = IMEPERR_NONE;
  if (!IsInert(root) && EvaluateByProgram(root, frame, out, code)) return code;
  return Evaluate(root, frame, out);
}

IxoMepErrorEnum EvaluateBody(const IxoMepExprNode& lambda, Frame& frame, IxoMepValue& out) {
  IxoMepErrorEnum code = IMEPERR_NONE;
  if (EvaluateByProgram(lambda, frame, out, code)) return code;
  return Evaluate(*lambda.Right(), frame, out);
}

}  // namespace ixomep
