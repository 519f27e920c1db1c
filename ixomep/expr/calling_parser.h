// Internal: whose evaluation a method call belongs to. Methods of values and objects are reached
// through interfaces that carry no expression object; the lambdas that they run find it here, so
// that a host's functions work in methods and sort predicates too.
#pragma once

#include <utility>

class IxoMepExpressionParser;

namespace ixomep {

// Names the expression object for the length of a method call.
class CallingParser {
 public:
  explicit CallingParser(const IxoMepExpressionParser* parser) noexcept
      : outer_(std::exchange(current_, parser)) {}
  CallingParser(const CallingParser&) = delete;
  CallingParser& operator=(const CallingParser&) = delete;
  ~CallingParser() { current_ = outer_; }

  // Null when no evaluation has called a method.
  static const IxoMepExpressionParser* Current() noexcept { return current_; }

 private:
  inline static const IxoMepExpressionParser* current_ = nullptr;
  const IxoMepExpressionParser* outer_;
};

}  // namespace ixomep
