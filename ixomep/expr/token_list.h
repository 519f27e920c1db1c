// Internal: the tokens of one expression text on their way from the scanner to the grammar: a batch
// at a time, so that a long text is never a long list. A token becomes a node when it is taken: the
// nodes of a tree so lie in memory in the order in which it is built, and brackets and separators,
// which are only dropped, cost none. Beside it stands its byte offset, for error places.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "ixomep/expr/tree_slot.h"

namespace ixomep {

class TokenList;

class TokenSource {
 public:
  // Appends some tokens, TokenList::kBatch at most and possibly none; false when nothing is left to
  // be read.
  virtual bool ReadMore(TokenList& tokens) = 0;

 protected:
  ~TokenSource() = default;
};

class TokenList {
 public:
  static constexpr std::size_t kBatch = 64;

  // Reads the first tokens. end: the length of the text, the place of an unexpected end.
  TokenList(std::int32_t end, TokenSource& source) : TokenList(&source, end) {
    TreeSlot::Begin();
    Refill();
  }
  TokenList(const TokenList&) = delete;
  TokenList& operator=(const TokenList&) = delete;
  ~TokenList() { Clear(); }

  // For the source. name: an interned address, which may be given later, before the batch ends.
  const char*& AppendName(const char* name, std::int32_t offset) noexcept {
    Token& token = Append(offset, IxoMepExprNodeType::Variable);
    token.name = name;
    return token.name;
  }
  void AppendConstant(ValuePtr value, std::int32_t offset) noexcept {
    Append(offset, IxoMepExprNodeType::Constant).value = value.release();
  }
  // An operator, bracket or separator.
  void AppendSymbol(IxoMepExprNodeType kind, std::int32_t offset) noexcept { Append(offset, kind); }

  bool IsEmpty() const noexcept { return FrontIs(kNoToken); }
  // False when there is no token left.
  bool FrontIs(IxoMepExprNodeType kind) const noexcept { return front_->kind == kind; }
  // kNoToken when there is no token left.
  IxoMepExprNodeType FrontKind() const noexcept { return front_->kind; }
  static constexpr IxoMepExprNodeType kNoToken = static_cast<IxoMepExprNodeType>(47);
  // Where the front token starts, or the end of the text.
  std::int32_t FrontOffset() const noexcept { return front_->offset; }
  // The front token becomes a node. It must be a name, a constant, a symbol.
  void PutName(TreeSlot slot) {
    slot.PutName(front_->name);
    Next();
  }
  void PutConstant(TreeSlot slot) {
    slot.PutConstant(front_->value);
    Next();
  }
  // Gets what hung there on its left.
  IxoMepExprNode& PutSymbol(TreeSlot slot) {
    IxoMepExprNode& node = slot.Wrap(front_->kind);
    Next();
    return node;
  }
  // A node of its own. There must be a token.
  NodePtr TakeFront() {
    NodePtr node;
    const TreeSlot root = TreeSlot::Root(node);
    if (FrontIs(IxoMepExprNodeType::Variable)) {
      PutName(root);
    } else if (FrontIs(IxoMepExprNodeType::Constant)) {
      PutConstant(root);
    } else {
      PutSymbol(root);
    }
    return node;
  }
  // There must be a token, and no constant.
  void DropSymbol() { Next(); }
  // There must be one.
  void DropFront() {
    front_->TakeValue();
    Next();
  }
  // Drops the front token when it is that symbol, and says so.
  bool Accept(IxoMepExprNodeType symbol) {
    if (!FrontIs(symbol)) return false;
    DropSymbol();
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
    union {
      const char* name;    // of a Variable
      IxoMepValue* value;  // of a Constant; owned
    };
    std::int32_t offset;
    IxoMepExprNodeType kind;

    ValuePtr TakeValue() noexcept {
      const bool has_value = kind == IxoMepExprNodeType::Constant;
      return ValuePtr(has_value ? std::exchange(value, nullptr) : nullptr);
    }
  };

  // Nothing is read yet.
  TokenList(TokenSource* source, std::int32_t end) noexcept : source_(*source), end_(end) {}

  Token& Append(std::int32_t offset, IxoMepExprNodeType kind) noexcept {
    last_->offset = offset;
    last_->kind = kind;
    return *last_++;
  }
  void SetEnd() noexcept {
    last_->offset = end_;
    last_->kind = kNoToken;
  }
  void Next() {
    if ((++front_)->kind == kNoToken) Refill();
  }
  // Nothing is left in the batch.
  void Clear() noexcept {
    for (; front_ != last_; ++front_) front_->TakeValue();
    front_ = last_ = tokens_.data();
  }
  void Refill() {
    Clear();
    while (last_ == tokens_.data() && source_.ReadMore(*this)) {
    }
    SetEnd();
  }

  TokenSource& source_;
  std::int32_t end_;
  std::array<Token, kBatch + 1> tokens_;
  Token* front_ = tokens_.data();
  Token* last_ = tokens_.data();  // behind the last token: one that is none
};

}  // namespace ixomep
