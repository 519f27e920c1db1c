// Internal: growing a tree from its root. Whoever builds keeps one owner of the root and otherwise
// only places in the tree; every new node hangs in it at once. What fails half-way just returns:
// the tree may be released at any moment.
#pragma once

#include <cstdint>
#include <utility>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/free_list.h"

namespace ixomep {

using NodePool = FreeList<IxoMepExprNode, sizeof(IxoMepExprNode)>;

// A place where a node hangs or may be hung: the root, or below a node that is no constant.
class TreeSlot {
 public:
  static TreeSlot Root(NodePtr& owner) noexcept { return TreeSlot(owner.node_); }
  static TreeSlot LeftOf(IxoMepExprNode& node) noexcept { return TreeSlot(node.left_); }
  static TreeSlot RightOf(IxoMepExprNode& node) noexcept { return TreeSlot(node.right_); }

  // Before the first node of a tree: fills the table of built-in functions.
  static void Begin() { IxoMepExprNode::FillFunctionTable(); }

  // Null when nothing hangs here.
  IxoMepExprNode* Node() const noexcept { return *node_; }

  // A node where nothing hangs; both may throw std::bad_alloc.
  void PutName(const char* name) const {
    *node_ = Make(IxoMepExprNodeType::Variable, BucketBits(name), nullptr, name);
  }
  // Takes the value over, unless it throws.
  void PutConstant(IxoMepValue*& value) const {
    IxoMepExprNode* const node = Make(IxoMepExprNodeType::Constant, 0, nullptr, nullptr);
    node->value_ = std::exchange(value, nullptr);
    *node_ = node;
  }
  // A node of that kind, with what hung here on its left. May throw std::bad_alloc.
  IxoMepExprNode& Wrap(IxoMepExprNodeType kind) const {
    return *(*node_ = Make(kind, 0, *node_, nullptr));
  }

  // The bucket of the name where a node's count of owners has it; nothing for null.
  static std::uint32_t BucketBits(const char* name) noexcept {
    return name != nullptr ? IxoMepValueSet::IndexOf(name) << IxoMepExprNode::kBucketShift : 0;
  }

 private:
  explicit TreeSlot(IxoMepExprNode*& node) noexcept : node_(&node) {}

  static IxoMepExprNode* Make(IxoMepExprNodeType kind, std::uint32_t bits, IxoMepExprNode* left,
                              const char* name) {
    return ::new (NodePool::Take()) IxoMepExprNode(kind, bits, left, name);
  }

  IxoMepExprNode** node_;
};

}  // namespace ixomep
