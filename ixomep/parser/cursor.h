// Internal: where the queries of a host stand. Most of them come one after the other for the same
// element, and all of them need the same few addresses: these are looked up when a parser gets
// another current element, and a query is a dozen instructions instead of forty.
#pragma once

#include <cstdint>

#include "ixomep/parser/document.h"

class IxoMepParser;

namespace ixomep {

// The parser that was asked last, while its current element is a record, and that record. Whatever
// changes the current element of that parser, or makes an object of a record, keeps it true or
// forgets it; so does the parser's end.
struct Cursor {
  constexpr Cursor() = default;
  Cursor(const IxoMepParser* asked, const RecordRange& records, const ElementRecord& element,
         bool is_without_element) noexcept
      : parser(asked), document(records.document), first(records.first), count(records.count) {
    StandAt(element, is_without_element);
  }

  const IxoMepParser* parser = nullptr;  // null: none
  const Document* document = nullptr;
  const ElementRecord* record = nullptr;
  const AttributeRecord* attributes = nullptr;
  std::uint32_t attribute_count = 0;
  bool is_loose = false;  // the record is that of attributes without an element
  // The elements of the parser.
  std::uint32_t first = 0;
  std::uint32_t count = 0;

  bool IsAt(const IxoMepParser* asked) const noexcept { return parser == asked; }
  // Whether the current element of that parser is a record with an attribute at the position.
  bool HasAttribute(const IxoMepParser* asked, std::int32_t position) const noexcept {
    return parser == asked && static_cast<std::uint32_t>(position) < attribute_count;
  }
  // The current element is another one of the parser now.
  void StandAt(const ElementRecord& element, bool is_without_element) noexcept {
    record = &element;
    attributes = document->AttributesOf(element);
    attribute_count = element.attribute_count;
    is_loose = is_without_element;
  }
  void Forget(const IxoMepParser* gone) noexcept {
    if (parser == gone) parser = nullptr;
  }
};

// One for the process, as the queries come one after the other.
inline constinit Cursor last_asked;

}  // namespace ixomep
