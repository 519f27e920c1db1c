// Internal: the tokens of one expression text, appended by the scanner and consumed from the front
// by the grammar; a list with a source asks it for more whenever it has run out. A token is a
// node; that of an operator or a bracket is made when it is taken, because most brackets and
// separators are only dropped. Beside it stands its byte offset, for error places.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "ixomep/expr/node_ptr.h"

namespace ixomep {

class TokenList;

class TokenSource {
 public:
  // Appends some tokens, possibly none; false when nothing is left to be read.
  virtual bool ReadMore(TokenList& tokens) = 0;

 protected:
  ~TokenSource() = default;
};

class TokenList {
 public:
  static constexpr std::size_t kBatch = 64;  // tokens that a source had better add at a time

  // end: the length of the text, the place of an unexpected end.
  explicit TokenList(std::int32_t end) : end_(end) {}
  // Reads the first tokens.
  TokenList(std::int32_t end, TokenSource& source) : end_(end), source_(&source) {
    tokens_.reserve(kBatch);
    Refill();
  }
  TokenList(const TokenList&) = delete;
  TokenList& operator=(const TokenList&) = delete;
  ~TokenList() { Clear(); }

  // A name or constant.
  void Append(NodePtr token, std::int32_t offset) {
    tokens_.push_back({token.get(), offset, token->GetType()});
    static_cast<void>(token.Release());
    ShowFront();
  }
  // An operator, bracket or separator.
  void Append(IxoMepExprNodeType kind, std::int32_t offset) {
    tokens_.push_back({nullptr, offset, kind});
    ShowFront();
  }
  bool IsEmpty() const noexcept { return front_kind_ == kNone; }
  // False when there is no token left.
  bool FrontIs(IxoMepExprNodeType kind) const noexcept { return front_kind_ == kind; }
  // A number that is no kind when there is no token left.
  IxoMepExprNodeType FrontKind() const noexcept { return front_kind_; }
  // Where the front token starts, or the end of the text.
  std::int32_t FrontOffset() const noexcept { return IsEmpty() ? end_ : tokens_[front_].offset; }
  // There must be one.
  NodePtr TakeFront() {
    Token& token = tokens_[front_];
    NodePtr node(token.node != nullptr ? std::exchange(token.node, nullptr)
                                       : NodeAccess::New(token.kind, nullptr));
    Next();
    return node;
  }
  void DropFront() {
    NodePtr dropped(std::exchange(tokens_[front_].node, nullptr));
    Next();
  }
  // Drops the front token when it is of that kind, and says so.
  bool Accept(IxoMepExprNodeType kind) {
    if (!FrontIs(kind)) return false;
    DropFront();
    return true;
  }
  // Reads and drops whatever is left.
  void DropAll() {
    do {
      Clear();
      Refill();
    } while (!IsEmpty());
  }

 private:
  struct Token {
    IxoMepExprNode* node;  // owned; null: to be made when taken
    std::int32_t offset;
    IxoMepExprNodeType kind;
  };
  static constexpr IxoMepExprNodeType kNone = static_cast<IxoMepExprNodeType>(-1);

  void ShowFront() noexcept {
    front_kind_ = front_ < tokens_.size() ? tokens_[front_].kind : kNone;
  }
  void Next() {
    if (++front_ < tokens_.size()) {
      front_kind_ = tokens_[front_].kind;
    } else {
      Refill();
    }
  }
  void Clear() noexcept {
    for (; front_ < tokens_.size(); ++front_) {
      NodePtr dropped(std::exchange(tokens_[front_].node, nullptr));
    }
    tokens_.clear();
    front_ = 0;
    front_kind_ = kNone;
  }
  void Refill() {
    Clear();
    while (source_ != nullptr && tokens_.empty() && source_->ReadMore(*this)) {
    }
  }

  std::vector<Token> tokens_;
  std::size_t front_ = 0;
  IxoMepExprNodeType front_kind_ = kNone;
  std::int32_t end_;
  TokenSource* source_ = nullptr;
};

}  // namespace ixomep
