// Internal: counted owners of nodes, and the door to a node's fields for the sources that build
// and walk trees.
#pragma once

#include <cstdint>
#include <utility>

#include "ixomep/expr/node.h"
#include "ixomep/values/slot.h"

namespace ixomep {

class NodePtr;
class TreeSlot;

// Fields of a node. Setters are for nodes under construction only: a finished tree is never
// changed.
struct NodeAccess {
  // A new node; the caller owns it.
  static IxoMepExprNode* New(IxoMepExprNodeType kind, const char* name);
  static IxoMepExprNode* Left(const IxoMepExprNode& n) noexcept { return n.left_; }
  static IxoMepExprNode* Right(const IxoMepExprNode& n) noexcept { return n.right_; }
  static IxoMepValue* Value(const IxoMepExprNode& n) noexcept { return n.value_; }
  static void SetLeft(IxoMepExprNode& n, NodePtr left) noexcept;
  static void SetRight(IxoMepExprNode& n, NodePtr right) noexcept;
  static void SetValue(IxoMepExprNode& n, ValuePtr value) noexcept { n.value_ = value.release(); }
  static void SetKind(IxoMepExprNode& n, IxoMepExprNodeType kind) noexcept { n.kind_ = kind; }
  static void SetName(IxoMepExprNode& n, const char* name) noexcept { n.name_ = name; }
  // Counts one further owner; false when the count is at its cap.
  static bool AddFurtherOwner(const IxoMepExprNode& n) noexcept {
    if (n.ExtraReferences() == IxoMepExprNode::kMaxExtraReferences) return false;
    ++n.extra_references_;
    return true;
  }
  // Gives one further owner back; false when there was none, and n is its last owner's.
  static bool DropFurtherOwner(IxoMepExprNode& n) noexcept {
    if ((n.extra_references_ & IxoMepExprNode::kCountMask) == 0) return false;
    --n.extra_references_;
    return true;
  }
  // What is known of the tree that begins at the node (program_table.cpp).
  enum class Mark : std::uint32_t { Fresh, Seen, HasEntry };
  static constexpr std::uint32_t kMarkShift = 30;
  static constexpr std::uint32_t kBelowMark = (std::uint32_t{1} << kMarkShift) - 1;
  static Mark GetMark(const IxoMepExprNode& n) noexcept {
    return static_cast<Mark>(n.extra_references_ >> kMarkShift);
  }
  static void SetMark(const IxoMepExprNode& n, Mark mark) noexcept {
    n.extra_references_ = (n.extra_references_ & kBelowMark) | static_cast<std::uint32_t>(mark)
                                                                   << kMarkShift;
  }
  // IxoMepValueSet::IndexOf of the name that the node was made with; without one, nothing.
  static std::uint32_t Bucket(const IxoMepExprNode& n) noexcept {
    return (n.extra_references_ & kBelowMark) >> IxoMepExprNode::kBucketShift;
  }
  // Returns the block to the pool; value and children are the caller's.
  static void Free(IxoMepExprNode& n) noexcept { delete &n; }
};

// Owns one reference to a node.
class NodePtr {
 public:
  NodePtr() noexcept = default;
  // Takes over the caller's reference.
  explicit NodePtr(IxoMepExprNode* node) noexcept : node_(node) {}
  NodePtr(NodePtr&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
  NodePtr& operator=(NodePtr&& other) noexcept {
    if (this != &other) {
      Reset();
      node_ = std::exchange(other.node_, nullptr);
    }
    return *this;
  }
  NodePtr(const NodePtr&) = delete;
  NodePtr& operator=(const NodePtr&) = delete;
  ~NodePtr() { Reset(); }

  // A further owner of a node that lives already.
  static NodePtr Share(const IxoMepExprNode* node);
  static NodePtr Make(IxoMepExprNodeType kind, const char* name = nullptr) {
    return NodePtr(NodeAccess::New(kind, name));
  }

  IxoMepExprNode* get() const noexcept { return node_; }
  IxoMepExprNode* operator->() const noexcept { return node_; }
  IxoMepExprNode& operator*() const noexcept { return *node_; }
  explicit operator bool() const noexcept { return node_ != nullptr; }
  IxoMepExprNode* Release() noexcept { return std::exchange(node_, nullptr); }
  void Reset() noexcept;

 private:
  friend class TreeSlot;

  IxoMepExprNode* node_ = nullptr;
};

inline void NodeAccess::SetLeft(IxoMepExprNode& n, NodePtr left) noexcept {
  n.left_ = left.Release();
}
inline void NodeAccess::SetRight(IxoMepExprNode& n, NodePtr right) noexcept {
  n.right_ = right.Release();
}
inline NodePtr NodePtr::Share(const IxoMepExprNode* node) {
  auto* const shared = const_cast<IxoMepExprNode*>(node);
  if (node == nullptr || NodeAccess::AddFurtherOwner(*node)) return NodePtr(shared);
  return NodePtr(shared->NewReference());
}

inline void NodePtr::Reset() noexcept {
  IxoMepExprNode* const node = std::exchange(node_, nullptr);
  if (node != nullptr && !NodeAccess::DropFurtherOwner(*node)) node->DeleteReference();
}

}  // namespace ixomep
