// Internal: what a parser holds that does not answer from the records of another parser's text:
// its text, elements that are objects, errors, includes. A body in records has none of it until
// somebody asks for what takes one: it is a number, and its document knows the rest (document.h).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "ixomep/host/string.h"
#include "ixomep/parser/document.h"
#include "ixomep/parser/element.h"
#include "ixomep/parser/spliced_text.h"
#include "ixomep/values/error_code.h"

class IxoMepValueSet;

namespace ixomep {

// The current element of a parser that has none.
IxoMepElement* EmptyElement() noexcept;

struct ParserState {
  ParserState(const String& whole_text, std::int32_t stretch_start, std::int32_t stretch_length,
              std::int32_t line, const String& source) noexcept
      : text(whole_text),
        start(stretch_start),
        length(stretch_length),
        first_line(line),
        context(source),
        error_context(source) {}
  ParserState(const ParserState&) = delete;
  ParserState& operator=(const ParserState&) = delete;
  ~ParserState() {
    if (is_counted) MemoryBudget::Give(sizeof(ParserState));
  }

  String text;  // see Splices for what it holds while includes are not composed
  std::int32_t start;
  std::int32_t length;
  std::int32_t first_line;
  std::int32_t include_shift = 0;  // by how much includes moved the text behind the reader
  String context;
  String error_text;  // also the sink of evaluations made by queries

  // The records that the elements were read into, and which of them are this parser's; no records
  // when all elements are objects of its own. The outermost parser owns the document.
  std::unique_ptr<Document> document;
  const Document* records = nullptr;
  std::uint32_t first_record = 0;
  std::uint32_t record_count = 0;
  bool has_loose_record = false;  // the record before the first one
  // The record of the current element while that is no object; null otherwise.
  const ElementRecord* current_record = nullptr;

  // Without records: the elements, what stands before the first one of a body, and the current one,
  // a shared empty element when none is.
  std::vector<std::unique_ptr<IxoMepElement>> elements;
  std::unique_ptr<IxoMepElement> loose;
  IxoMepElement* current = EmptyElement();
  std::int32_t current_index = -1;

  IxoMepValueSet* vars = nullptr;
  String filename_stack;
  std::unique_ptr<Splices> splices;     // null while the text is as it was given
  IxoMepParser* next_doomed = nullptr;  // links bodies that wait for their destruction

  String error_context;
  IxoMepErrorEnum error_code = IMEPERR_NONE;
  std::int32_t error_offset = -1;
  std::int32_t error_line = 0;
  std::int32_t error_column = 0;

  bool use_include_cache = false;
  bool is_body = false;
  bool is_counted = false;  // of a body in records: its bytes count in the memory budget
  bool is_shared = false;   // of all parsers that could have none of their own
};

}  // namespace ixomep
