// The life of a node: construction from the pool, counted owners, release without recursion; and
// the access to the parameters of a call.
#include "ixomep/expr/node.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program.h"
#include "ixomep/expr/tree_slot.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/teardown.h"

using ixomep::NodeAccess;
using ixomep::NodePool;
using ixomep::NodePtr;
using Kind = IxoMepExprNodeType;

namespace {

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

// A node without children.
void BuryLeaf(IxoMepExprNode& node) noexcept {
  if (NodeAccess::GetMark(node) == NodeAccess::Mark::HasEntry) ixomep::ForgetProgram(node);
  const bool is_constant = node.GetType() == Kind::Constant;
  // The value goes last: destroying it may run code of the host.
  const ixomep::ValuePtr value(is_constant ? NodeAccess::Value(node) : nullptr);
  NodeAccess::Free(node);
}

// One owner less of a child; gives the child when it has none left and has to be destroyed yet. A
// leaf goes at once: in a long list the queue would be as long as the list.
IxoMepExprNode* Orphaned(IxoMepExprNode* child) noexcept {
  if (child == nullptr || NodeAccess::DropFurtherOwner(*child)) return nullptr;
  if (!IsLeaf(*child)) return child;
  BuryLeaf(*child);
  return nullptr;
}

// Asks for memory that will be read soon, so far behind the node; it need not be any node's. Nodes
// lie in the order in which the text was read, and mostly end with their neighbours.
void AskForMemoryBehind(const IxoMepExprNode& node, std::size_t bytes) noexcept {
#if defined(__GNUC__)
  __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(&node) + bytes),
                     1);
#else
  static_cast<void>(node);
  static_cast<void>(bytes);
#endif
}

// Destroys the node and, along one way down, all that ends with it. What branches off is queued.
// The distances ahead were measured: farther ones fetch what goes to waste in short branches.
void Bury(IxoMepExprNode* node) noexcept {
  while (node != nullptr) {
    if (node->GetType() == Kind::Constant) {
      BuryLeaf(*node);
      return;
    }
    if (NodeAccess::GetMark(*node) == NodeAccess::Mark::HasEntry) ixomep::ForgetProgram(*node);
    IxoMepExprNode* const left = NodeAccess::Left(*node);
    IxoMepExprNode* const right = NodeAccess::Right(*node);
    NodeAccess::Free(*node);
    if (right != nullptr) AskForMemoryBehind(*right, 384);
    IxoMepExprNode* const below = Orphaned(left);
    node = Orphaned(right);
    if (node == nullptr) {
      node = below;
    } else if (below != nullptr) {
      for (std::size_t bytes = 64; bytes <= 512; bytes += 64) AskForMemoryBehind(*below, bytes);
      Doom(*below);
    }
  }
}

}  // namespace

bool ixomep::BuryDoomedNodes() noexcept {
  if (first_doomed == nullptr) return false;
  while (IxoMepExprNode* const node = TakeDoomed()) Bury(node);
  return true;
}

IxoMepExprNode::IxoMepExprNode(Kind kind, const char* name)
    : kind_(kind),
      extra_references_(ixomep::TreeSlot::BucketBits(name)),
      left_(nullptr),
      right_(nullptr),
      name_(name) {
  if (kind == Kind::Constant) value_ = nullptr;
  FillFunctionTable();
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
    BuryLeaf(*this);
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
