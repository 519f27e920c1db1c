// The life of a node: construction from the pool, counted owners, release without recursion; and
// the access to the parameters of a call.
#include "ixomep/expr/node.h"

#include <cstddef>
#include <utility>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/free_list.h"
#include "ixomep/values/teardown.h"

using ixomep::NodeAccess;
using ixomep::NodePtr;
using Kind = IxoMepExprNodeType;

namespace {

using NodePool = ixomep::FreeList<IxoMepExprNode, 32>;
static_assert(sizeof(IxoMepExprNode) == 32);

// Nodes without owners that wait for their destruction. A doomed node needs its name no more:
// that field links the queue, so that nothing is allocated while memory is given back.
IxoMepExprNode* first_doomed = nullptr;

void Doom(IxoMepExprNode& node) noexcept {
  NodeAccess::SetName(node, reinterpret_cast<const char*>(first_doomed));
  first_doomed = &node;
}

IxoMepExprNode* TakeDoomed() noexcept {
  IxoMepExprNode* const node = first_doomed;
  if (node != nullptr) {
    const char* const link = node->GetNameAddress();
    first_doomed = reinterpret_cast<IxoMepExprNode*>(const_cast<char*>(link));
  }
  return node;
}

// Can the node be destroyed on the spot, because nothing that nests hangs on it?
bool IsLeaf(const IxoMepExprNode& node) noexcept {
  if (NodeAccess::Right(node) != nullptr) return false;
  if (node.GetType() != Kind::Constant) return NodeAccess::Left(node) == nullptr;
  const IxoMepValue* const value = NodeAccess::Value(node);
  if (value == nullptr) return true;
  switch (value->GetType()) {
    case IxoMepValueType::Expression:
    case IxoMepValueType::Array:
    case IxoMepValueType::Map:
    case IxoMepValueType::Lambda:
    case IxoMepValueType::Object:
      return false;
    default:
      return true;
  }
}

void Bury(IxoMepExprNode& node) noexcept;

// A leaf goes at once: in a long list the queue would be as long as the list, and every node of it
// be visited twice.
void DropChild(IxoMepExprNode* child) noexcept {
  if (child == nullptr || NodeAccess::DropFurtherOwner(*child)) return;
  if (IsLeaf(*child)) {
    Bury(*child);
  } else {
    Doom(*child);
  }
}

void Bury(IxoMepExprNode& node) noexcept {
  if (NodeAccess::GetMark(node) == NodeAccess::Mark::HasEntry) ixomep::ForgetProgram(node);
  if (node.GetType() == Kind::Constant) {
    const ixomep::ValuePtr value(NodeAccess::Value(node));
    NodeAccess::Free(node);
    return;  // the value goes last: destroying it may run code of the host
  }
  DropChild(NodeAccess::Left(node));
  DropChild(NodeAccess::Right(node));
  NodeAccess::Free(node);
}

}  // namespace

bool ixomep::BuryDoomedNodes() noexcept {
  if (first_doomed == nullptr) return false;
  while (IxoMepExprNode* const node = TakeDoomed()) Bury(*node);
  return true;
}

IxoMepExprNode::IxoMepExprNode(Kind kind, const char* name)
    : kind_(kind),
      extra_references_(name != nullptr ? IxoMepValueSet::IndexOf(name) << kBucketShift : 0),
      left_(nullptr),
      right_(nullptr),
      name_(name) {
  if (kind == Kind::Constant) value_ = nullptr;
  static const bool functions_known = (InitFunctionCallMap(), true);
  static_cast<void>(functions_known);
}

IxoMepExprNode* NodeAccess::New(Kind kind, const char* name) {
  return new IxoMepExprNode(kind, name);
}

void* IxoMepExprNode::operator new(std::size_t) { return NodePool::Take(); }

void IxoMepExprNode::operator delete(void* block) noexcept {
  if (block != nullptr) NodePool::Give(block);
}

// At the cap the copy takes its children with NewReference too. That recursion is shallow: a child
// reaches its cap only through 65535 copies of its parent.
IxoMepExprNode* IxoMepExprNode::NewReference() {
  if (NodeAccess::AddFurtherOwner(*this)) return this;
  NodePtr copy = NodePtr::Make(kind_, name_);
  if (kind_ != Kind::Constant) {
    NodeAccess::SetLeft(*copy, NodePtr::Share(left_));
  } else if (value_ != nullptr) {
    NodeAccess::SetValue(*copy, ixomep::MakeValue(*value_));
  }
  NodeAccess::SetRight(*copy, NodePtr::Share(right_));
  return copy.Release();
}

void IxoMepExprNode::DeleteReference() noexcept {
  if (NodeAccess::DropFurtherOwner(*this)) return;
  if (IsLeaf(*this)) {
    Bury(*this);
    return;
  }
  const bool outermost = ixomep::Teardown::Begin();
  Doom(*this);
  if (outermost) ixomep::Teardown::Drain();
}

const IxoMepValue* IxoMepExprNode::GetValue() const noexcept {
  return kind_ == Kind::Constant ? value_ : nullptr;
}

IxoMepValue* IxoMepExprNode::Value() noexcept { return kind_ == Kind::Constant ? value_ : nullptr; }

const IxoMepExprNode* IxoMepExprNode::Left() const noexcept {
  return kind_ == Kind::Constant ? nullptr : left_;
}

String IxoMepExprNode::GetName() const { return String(name_); }

const IxoMepExprNode* IxoMepExprNode::GetParam(std::int32_t i) const noexcept {
  if (i < 0) return nullptr;
  const IxoMepExprNode* node = this;
  for (; i > 0 && node != nullptr; --i) node = node->right_;
  return node != nullptr ? node->Left() : nullptr;
}

std::int32_t IxoMepExprNode::GetParamCount() const noexcept {
  std::int32_t count = 0;
  for (const IxoMepExprNode* cell = right_; cell != nullptr && cell->kind_ == Kind::ParamItem;
       cell = cell->right_) {
    ++count;
  }
  return count;
}

std::int32_t IxoMepExprNode::GetLambdaParamCount() const noexcept {
  if (kind_ != Kind::Lambda) return 0;
  std::int32_t count = 0;
  for (const IxoMepExprNode* name = left_; name != nullptr; name = name->Left()) ++count;
  return count;
}
