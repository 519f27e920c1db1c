// Internal: the count of evaluations that have begun since one ended, and its limit.
#pragma once

#include <cstdint>

#include "ixomep/expr/node.h"

namespace ixomep {

// One node evaluation. Meant: the end of any evaluation sets the count to 0, so that it bounds a
// chain of evaluations without an end among them, not the depth of a tree; one that is refused
// leaves it as it is.
class CallDepth {
 public:
  static constexpr std::int32_t kMax = 250;

  CallDepth() noexcept : allowed_(IxoMepExprNode::m_nCallDepth <= kMax) {
    ++IxoMepExprNode::m_nCallDepth;
  }
  CallDepth(const CallDepth&) = delete;
  CallDepth& operator=(const CallDepth&) = delete;
  ~CallDepth() {
    if (allowed_) IxoMepExprNode::m_nCallDepth = 0;
  }
  // False: the evaluation has to fail with 38.
  bool IsAllowed() const noexcept { return allowed_; }

 private:
  bool allowed_;
};

}  // namespace ixomep
