// IxoMepElement and IxoMepAttribute: what one definition text is made of. A parser reads them
// (grammar.cpp, attributes.cpp) and owns them; queries read them through the accessors here.
// Members are defined in element.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IxoMepExpressionParser;
class IxoMepParser;
class IxoMepValue;

namespace ixomep {
class Document;
class Grammar;

// Frees a body parser. Bodies nest as deep as a text likes: while one is being destroyed, those
// inside it are queued instead of destroyed in the depth of the native stack.
struct BodyDeleter {
  bool is_borrowed = false;  // belongs to a document
  void operator()(IxoMepParser* body) const noexcept;
};
using BodyPtr = std::unique_ptr<IxoMepParser, BodyDeleter>;
}  // namespace ixomep

// One `name: modifier: value` of an element.
class IXOMEP_API IxoMepAttribute {
 public:
  explicit IxoMepAttribute(const String& name);
  IxoMepAttribute(const IxoMepAttribute&) = delete;
  IxoMepAttribute& operator=(const IxoMepAttribute&) = delete;
  virtual ~IxoMepAttribute();
  // Blocks are recycled, as those of values are.
  static void* operator new(std::size_t size);
  static void operator delete(void* block, std::size_t size) noexcept;

  // As written, an index part included.
  const String& GetName() const noexcept { return name_; }
  // Empty when there is none.
  const String& GetModifier() const noexcept { return modifier_; }
  void SetModifier(const String& modifier) { modifier_ = modifier; }
  // The stored value, the place that an indexed name denotes, the braced body. Borrowed; null
  // when there is none.
  IxoMepValue* GetValue() const noexcept { return value_.get(); }
  IxoMepExpressionParser* GetArrayLValue() const noexcept { return array_lvalue_.get(); }
  IxoMepParser* GetBodyParser() const noexcept { return body_.get(); }

 private:
  friend class ixomep::Document;
  friend class ixomep::Grammar;

  String name_;
  String modifier_;
  std::unique_ptr<IxoMepExpressionParser> array_lvalue_;
  std::unique_ptr<IxoMepValue> value_;
  ixomep::BodyPtr body_;
};

// One keyword with its value, attributes and body, or one expression statement.
class IXOMEP_API IxoMepElement {
 public:
  // The empty element: no keyword, offset -1, line 0.
  IxoMepElement();
  IxoMepElement(const String& keyword, IxoMepParser* parser, std::int32_t start_offset,
                std::int32_t line);
  IxoMepElement(const IxoMepElement&) = delete;
  IxoMepElement& operator=(const IxoMepElement&) = delete;
  virtual ~IxoMepElement();
  static void* operator new(std::size_t size);
  static void operator delete(void* block, std::size_t size) noexcept;

  // ";" for an expression statement.
  const String& GetKeyword() const noexcept { return keyword_; }
  // The element's own value and body. Borrowed; null when there is none.
  IxoMepValue* GetValue() const noexcept { return value_.get(); }
  IxoMepParser* GetBodyParser() const noexcept { return body_.get(); }
  // The parser that read the element; null for the empty element.
  IxoMepParser* GetParser() const noexcept { return parser_; }
  // Offset of the keyword in the parser's complete text; its line in its own file, from 1.
  std::int32_t GetStartOffset() const noexcept { return start_offset_; }
  std::int32_t GetLine() const noexcept { return line_; }

  std::int32_t GetAttrCount() const noexcept {
    return static_cast<std::int32_t>(attributes_.size());
  }
  // Borrowed; null when the position is out of range.
  IxoMepAttribute* GetAttr(std::int32_t position) const noexcept;
  // The first attribute of exactly that name; borrowed, null when there is none. In an element with
  // many attributes it is not looked for among all of them.
  IxoMepAttribute* FindAttr(std::string_view name) const noexcept;

 private:
  friend class ixomep::Document;
  friend class ixomep::Grammar;

  // How many of the first attributes are in by_name_, after more have been added to it.
  std::size_t OrderAttributes() const noexcept;
  IxoMepAttribute* AttributeOf(std::uint64_t entry) const noexcept;

  std::unique_ptr<IxoMepValue> value_;
  String keyword_;
  std::vector<std::unique_ptr<IxoMepAttribute>> attributes_;
  // Positions of attributes, each below the hash of its name (32 bits), in the order of hashes and
  // names; null while there are few.
  mutable std::unique_ptr<std::vector<std::uint64_t>> by_name_;
  ixomep::BodyPtr body_;
  IxoMepParser* parser_;
  std::int32_t start_offset_;
  std::int32_t line_;
};
