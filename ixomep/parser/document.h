// Internal: what the quick reading of a definition text leaves behind (document_scanner.h): small
// records of all elements, attributes and bodies of the text, bodies of bodies included, in a few
// arrays. Everything a record tells is an offset into the text or a number. The objects of the
// public interface are made of them when a query hands out a pointer (document_objects.cpp); a
// query that hands out none reads the records (element_view.h).
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "ixomep/export.h"
#include "ixomep/host/string.h"
#include "ixomep/parser/name_table.h"
#include "ixomep/parser/record_array.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/value.h"

class IxoMepAttribute;
class IxoMepElement;
class IxoMepParser;
class IxoMepValueSet;

namespace ixomep {

inline constexpr std::uint32_t kNoRecord = static_cast<std::uint32_t>(-1);

class Document;

enum class LiteralKind : std::uint8_t {
  None,
  String,   // `at` behind the opening quote, `size` up to the closing one, no backslash between
  Escaped,  // the same with backslashes
  Integer,  // a sign and up to nine digits
  Measure,  // a decimal number with a unit of length
  Time,     // the same with that of time
  Real,     // digits, a point and digits
  Number,   // any other number, measure or time
  Source,   // of an expression that needs variables: it is compiled when it is asked for
  Made,     // `at` is an index into the values that were made when the text was read, `size` how
            // far behind the start of the element the literal stands
  Body,     // `at` is the index of a body
};

// A literal or body of an element or attribute.
struct LiteralRecord {
  static constexpr std::uint32_t kMostBytes = (std::uint32_t{1} << 28) - 1;

  std::uint32_t at = 0;
  std::uint32_t size : 28 = 0;
  std::uint32_t kind : 4 = 0;

  LiteralKind Kind() const noexcept { return static_cast<LiteralKind>(kind); }
  void Set(LiteralKind new_kind, std::uint32_t new_at, std::size_t new_size = 0) noexcept {
    at = new_at;
    size = static_cast<std::uint32_t>(new_size) & kMostBytes;
    kind = static_cast<std::uint32_t>(new_kind) & 15u;
  }
};

struct AttributeRecord {
  std::uint32_t name;  // numbers of the table of names
  std::uint32_t modifier;
  LiteralRecord literal;
};
static_assert(sizeof(AttributeRecord) == 16);

struct ElementRecord {
  std::uint32_t start;  // offset of the keyword; of the first loose attribute
  std::uint32_t keyword;
  LiteralRecord literal;  // never a body
  std::uint32_t first_attribute;
  std::uint32_t attribute_count;
  std::uint32_t body;  // kNoRecord: none
};
static_assert(sizeof(ElementRecord) == 28);

// The stretch between two braces. Bodies are numbered as they end, which is the order of their
// elements too: those of one end where those of the next begin. The last one is the whole text.
struct BodyRecord {
  static constexpr std::uint32_t kMostOffset = (std::uint32_t{1} << 31) - 1;  // any text's length

  BodyRecord(std::uint32_t first_element, std::uint32_t text_start, std::uint32_t text_end,
             bool has_loose_element) noexcept
      : first(first_element & kMostOffset),
        has_parser(0),
        start(text_start & kMostOffset),
        has_loose(has_loose_element),
        end(text_end & kMostOffset),
        is_left_at_last(0) {}

  std::uint32_t first : 31;              // element
  mutable std::uint32_t has_parser : 1;  // it has been asked for
  std::uint32_t start : 31;
  std::uint32_t has_loose : 1;  // the element before the first one holds the attributes before it
  std::uint32_t end : 31;
  // A walk has gone over it before it had a parser: that starts at the last element.
  mutable std::uint32_t is_left_at_last : 1;
};
static_assert(sizeof(BodyRecord) == 12);

// The records of one stretch: those of a document from `first` on.
struct RecordRange {
  const Document* document = nullptr;  // null: none
  std::uint32_t first = 0;
  std::uint32_t count = 0;
  bool has_loose = false;
};

// A place in the row of the parsers of bodies. The first one tells whose they are: a parser that
// knows its number in the row finds its document there.
struct BodySlot {
  const Document* document;
  std::uint64_t unused;
};

// A value that reading had to make: an expression that was compiled and folded.
struct MadeValue {
  ValuePtr value;
  std::uint32_t at;    // of its source
  std::uint32_t size;  // of its source
  bool is_shared;      // several literals have this text: each gets a copy
  bool needs_fold;     // not evaluated yet
};

class Document {
 public:
  // An element with more attributes than this gets them in order, so that one that is asked for by
  // name is not looked for among all.
  static constexpr std::uint32_t kManyAttributes = 32;

  // The text as given to the parser that reads it; lines are counted from `start` on.
  Document(const String& text, std::uint32_t start, std::int32_t first_line, const String& context,
           const String& filename_stack);
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  ~Document();

  const String& Text() const noexcept { return text_; }
  const String& Context() const noexcept { return context_; }
  const String& FilenameStack() const noexcept { return filename_stack_; }
  const ElementRecord& Element(std::uint32_t index) const noexcept { return elements_[index]; }
  const AttributeRecord& Attribute(std::uint32_t index) const noexcept {
    return attributes_[index];
  }
  // The first one of an element; beyond the last of all where it has none.
  const AttributeRecord* AttributesOf(const ElementRecord& element) const noexcept {
    return attributes_.Data() + element.first_attribute;
  }
  // The value of a literal of kind Made, while its element is no object.
  const IxoMepValue* Made(const LiteralRecord& literal) const noexcept {
    return made_[literal.at].value.get();
  }
  const BodyRecord& Body(std::uint32_t index) const noexcept { return bodies_[index]; }
  // How many elements a body has.
  std::uint32_t CountOf(std::uint32_t body) const noexcept {
    const BodyRecord& next = bodies_[body + 1];
    return next.first - next.has_loose - bodies_[body].first;
  }
  // The parser of a body; null while nobody has asked for it.
  IxoMepParser* MadeParser(std::uint32_t index) const noexcept {
    return bodies_[index].has_parser != 0 ? ParserAt(index) : nullptr;
  }
  void LeaveAtLast(std::uint32_t index) const noexcept { bodies_[index].is_left_at_last = 1; }
  const NameTable& Names() const noexcept { return names_; }
  // The first attribute of that name; kNoRecord when there is none.
  std::uint32_t FindAttribute(const ElementRecord& element, std::string_view name) const noexcept {
    return FindAttribute(element, names_.Find(name));
  }
  std::uint32_t FindAttribute(const ElementRecord& element, const String& name) const noexcept {
    return FindAttribute(element, names_.Find(name));
  }
  // Which of four attributes have that name, the first one's bit lowest. All are looked at, also
  // those that belong to the elements behind: where the name is cannot be foretold, and a branch
  // taken wrongly costs more.
  static std::uint32_t HitsAmongFour(const AttributeRecord* four, std::uint32_t name) noexcept {
    const auto hit = [=](std::uint32_t i) { return std::uint32_t{four[i].name == name} << i; };
    return hit(0) | hit(1) | hit(2) | hit(3);
  }
  // Whether there are four from an index on.
  bool HasFour(std::uint32_t index) const noexcept { return attributes_.Size() - index >= 4; }
  // The line of an offset. Cheap for offsets that are asked in order.
  std::int32_t LineAt(std::uint32_t offset) const;

  // The objects of records, each made once. They belong to the document. May throw std::bad_alloc.
  IxoMepElement* ElementObject(std::uint32_t index, bool is_loose, IxoMepParser* parser) const;
  IxoMepParser* BodyParser(std::uint32_t index) const;
  // The object of an element; null while nobody has asked for it.
  IxoMepElement* MadeElement(std::uint32_t index) const noexcept {
    return objects_.IsEmpty() ? nullptr : objects_[index];
  }
  // Hands over the object of an element; null when there is none.
  std::unique_ptr<IxoMepElement> TakeObject(std::uint32_t index) const noexcept;
  // The variables of bodies; none unless set. SetVarsOf may throw std::bad_alloc.
  IxoMepValueSet* VarsOf(std::uint32_t body) const noexcept {
    return vars_.IsEmpty() ? nullptr : vars_[body];
  }
  void SetVarsOf(std::uint32_t body, IxoMepValueSet* vars) const;
  // The value of a literal that is neither Made nor Body nor None.
  IxoMepValue ReadLiteral(const LiteralRecord& literal) const;

 private:
  friend class DocumentScanner;

  std::uint32_t FindAttribute(const ElementRecord& element, std::uint32_t name) const noexcept {
    if (element.attribute_count > kManyAttributes) [[unlikely]]
      return FindAmongMany(element, name);
    return FindAmongFew(element, name);
  }
  std::uint32_t FindAmongFew(const ElementRecord& element, std::uint32_t name) const noexcept {
    const std::uint32_t end = element.first_attribute + element.attribute_count;
    std::uint32_t at = element.first_attribute;
    for (; at < end && HasFour(at); at += 4) {
      const std::uint32_t hits = HitsAmongFour(&attributes_[at], name);
      if (hits == 0) continue;
      const std::uint32_t found = at + static_cast<std::uint32_t>(std::countr_zero(hits));
      return found < end ? found : kNoRecord;
    }
    for (; at < end; ++at) {
      if (attributes_[at].name == name) return at;
    }
    return kNoRecord;
  }
  std::uint32_t FindAmongMany(const ElementRecord& element, std::uint32_t name) const noexcept;
  void OrderAttributes(const ElementRecord& element) const;
  // Where the parser of a body stands, made or not.
  IxoMepParser* ParserAt(std::uint32_t index) const noexcept {
    return reinterpret_cast<IxoMepParser*>(&slots_.Data()[index + 1]);
  }
  std::unique_ptr<IxoMepElement> MakeObject(std::uint32_t index, IxoMepParser* parser,
                                            std::int32_t offset) const;
  // `start` is the element's.
  ValuePtr CompileSource(const LiteralRecord& literal) const;
  ValuePtr MakeValueOf(const LiteralRecord& literal, std::uint32_t start) const;
  std::uint32_t CountedLines(std::uint32_t offset) const;

  String text_;
  String context_;
  String filename_stack_;
  std::uint32_t start_;
  std::int32_t first_line_;

  RecordArray<ElementRecord> elements_;
  RecordArray<AttributeRecord> attributes_;
  RecordArray<BodyRecord> bodies_;
  NameTable names_;
  mutable std::vector<MadeValue> made_;

  // What has been asked for: parsers of bodies behind the first slot, and by numbers of elements
  // and bodies, where there are any, the objects of elements and the variables of bodies.
  mutable RecordArray<BodySlot> slots_;
  mutable RecordArray<IxoMepElement*> objects_;
  mutable RecordArray<IxoMepValueSet*> vars_;

  // Beside attributes_, for elements with many that were asked for one by name: which attributes
  // these are in the order of their names, counted from 1; 0 where nobody has asked.
  mutable RecordArray<std::uint32_t> by_name_;

  mutable RecordArray<std::uint32_t> line_marks_;  // line feeds before every kLineMark-th byte
  mutable std::uint32_t lines_offset_;             // of the last question, and the answer
  mutable std::uint32_t lines_ = 0;
};

}  // namespace ixomep
