// Internal: the tokens of one expression text, appended by the scanner and consumed from the front
// by the grammar. A token is a node already; beside it stands its byte offset, for error places.
#pragma once

#include <cstdint>
#include <deque>
#include <new>
#include <utility>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/host/memory_budget.h"

namespace ixomep {

class TokenList {
 public:
  // end: the length of the text, the place of an unexpected end.
  explicit TokenList(std::int32_t end) : end_(end) {}
  TokenList(const TokenList&) = delete;
  TokenList& operator=(const TokenList&) = delete;
  ~TokenList() { MemoryBudget::Give(tokens_.size() * sizeof(Token)); }

  // Throws std::bad_alloc when the list would pass the memory budget.
  void Append(NodePtr token, std::int32_t offset) {
    if (!MemoryBudget::MayTake(sizeof(Token))) throw std::bad_alloc();
    tokens_.push_back(Token{std::move(token), offset});
    MemoryBudget::Take(sizeof(Token));
  }
  bool IsEmpty() const noexcept { return tokens_.empty(); }
  // False when there is no token left.
  bool FrontIs(IxoMepExprNodeType kind) const noexcept {
    return !tokens_.empty() && tokens_.front().node->GetType() == kind;
  }
  // There must be one.
  IxoMepExprNodeType FrontKind() const noexcept { return tokens_.front().node->GetType(); }
  // Where the front token starts, or the end of the text.
  std::int32_t FrontOffset() const noexcept {
    return tokens_.empty() ? end_ : tokens_.front().offset;
  }
  // There must be one.
  NodePtr TakeFront() noexcept {
    NodePtr token = std::move(tokens_.front().node);
    DropFront();
    return token;
  }
  void DropFront() noexcept {
    tokens_.pop_front();
    MemoryBudget::Give(sizeof(Token));
  }
  // Drops the front token when it is of that kind, and says so.
  bool Accept(IxoMepExprNodeType kind) noexcept {
    if (!FrontIs(kind)) return false;
    DropFront();
    return true;
  }

 private:
  struct Token {
    NodePtr node;
    std::int32_t offset;
  };
  // A deque gives its memory back while it is consumed and never copies it while it grows.
  std::deque<Token> tokens_;
  std::int32_t end_;
};

}  // namespace ixomep
