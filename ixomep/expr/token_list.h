// Internal: the tokens of one expression text, appended by the scanner and consumed from the front
// by the grammar; a list with a source asks it for more whenever it has run out. A token becomes a
// node when it is taken: the nodes of a tree so lie in memory in the order in which it is built,
// and brackets and separators, which are only dropped, cost none. Beside it stands its byte offset,
// for error places.
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
  TokenList(std::int32_t end, TokenSource& source) : TokenList(end) {
    source_ = &source;
    tokens_.reserve(kBatch);
    Refill();
  }
  TokenList(const TokenList&) = delete;
  TokenList& operator=(const TokenList&) = delete;
  ~TokenList() { Clear(); }

  // name: an interned address.
  void AppendName(const char* name, std::int32_t offset) {
    Append({name, nullptr, offset, IxoMepExprNodeType::Variable});
  }
  void AppendConstant(ValuePtr value, std::int32_t offset) {
    Append({nullptr, value.get(), offset, IxoMepExprNodeType::Constant});
    static_cast<void>(value.release());
  }
  // An operator, bracket or separator.
  void AppendSymbol(IxoMepExprNodeType kind, std::int32_t offset) {
    Append({nullptr, nullptr, offset, kind});
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
    NodePtr node = NodePtr::Make(token.kind, token.name);
    if (token.value != nullptr) NodeAccess::SetValue(*node, token.TakeValue());
    Next();
    return node;
  }
  void DropFront() {
    tokens_[front_].TakeValue();
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
    const char* name;    // of a Variable
    IxoMepValue* value;  // of a Constant; owned
    std::int32_t offset;
    IxoMepExprNodeType kind;

    ValuePtr TakeValue() noexcept { return ValuePtr(std::exchange(value, nullptr)); }
  };
  static constexpr IxoMepExprNodeType kNone = static_cast<IxoMepExprNodeType>(-1);

  void Append(const Token& token) {
    tokens_.push_back(token);
    front_kind_ = tokens_[front_].kind;
  }
  void Next() {
    if (++front_ < tokens_.size()) {
      front_kind_ = tokens_[front_].kind;
    } else {
      Refill();
    }
  }
  void Clear() noexcept {
    for (; front_ < tokens_.size(); ++front_) tokens_[front_].TakeValue();
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
