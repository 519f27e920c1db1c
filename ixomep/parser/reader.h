// Internal: one reading of a definition text: class Grammar turns a stretch into elements. Bodies
// and included files nest by frames on a list of its own, not on the native stack, so that a text
// may nest as deep as it likes. The frames are in reader.cpp, top level and elements in
// grammar.cpp, attributes in attributes.cpp, directives in include.cpp; literals are read by
// literal_reader.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

#include "ixomep/host/limit_watch.h"
#include "ixomep/host/string.h"
#include "ixomep/parser/element.h"
#include "ixomep/parser/extent.h"
#include "ixomep/parser/folded.h"
#include "ixomep/parser/literal_reader.h"
#include "ixomep/parser/spliced_text.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/raise.h"

class IxoMepExpressionParser;
class IxoMepParser;

namespace ixomep {

// A stretch that is being read. Positions are in its source: the text of one file. The offset in
// the parser's complete text is base + position + the parser's include shift.
struct ReadingFrame {
  enum class Kind { Outermost, ElementBody, AttributeBody, Include };

  Kind kind = Kind::Outermost;
  bool at_statement_start = true;
  bool continues = false;    // the complete text goes on behind the source
  bool is_included = false;  // the source is an included file
  std::int32_t base = 0;
  std::int32_t line = 1;           // of the position
  IxoMepParser* parser = nullptr;  // receives the elements
  Extents* extents = nullptr;      // of the source
  String source;
  std::string_view bytes;  // the source
  std::size_t position = 0;
  std::size_t end = 0;

  BodyPtr body;                              // a body's parser while it is read,
  BodyPtr* owner = nullptr;                  // and where it goes then
  std::unique_ptr<IxoMepElement> directive;  // an include's
  std::size_t directive_start = 0;           // in the frame below
  std::int32_t saved_shift = 0;              // include shift to go on with behind an include
  std::unique_ptr<Extents> own_extents;
};

class Grammar {
 public:
  // `folded`: what evaluations before gave; not owned, may be null.
  explicit Grammar(FoldedLiterals* folded = nullptr) noexcept : folded_(folded) {}
  Grammar(const Grammar&) = delete;
  Grammar& operator=(const Grammar&) = delete;
  ~Grammar();

  // Reads the stretch of the parser's text and appends the elements to it. On failure the code,
  // with error text and place set in the parser. May throw std::bad_alloc or std::length_error.
  IxoMepErrorEnum Read(IxoMepParser& parser, std::int32_t start, std::int32_t length,
                       std::int32_t first_line);

 private:
  // The frames (reader.cpp).
  IxoMepErrorEnum Run();
  void Finish();
  void Unwind();
  void DropInclude() noexcept;
  void EnterBody(std::size_t open, std::size_t close, ReadingFrame::Kind kind, BodyPtr* owner,
                 BodyPtr body);
  IxoMepErrorEnum ReadBody(std::size_t open, std::size_t close, ReadingFrame::Kind kind,
                           BodyPtr* owner);
  IxoMepErrorEnum ReadForeignBody(std::size_t open, std::size_t close, BodyPtr* owner,
                                  BodyPtr body);

  // Top level and elements (grammar.cpp). Each reads at the top frame's position and moves it;
  // what enters a body or a file does so last, because that moves the frames.
  IxoMepErrorEnum ReadStretch();
  IxoMepErrorEnum ReadItem(char first);
  IxoMepErrorEnum ReadStatement(std::size_t start, std::size_t end, std::int32_t line);
  IxoMepErrorEnum ReadElement();
  IxoMepErrorEnum CheckKeywordEnd(std::size_t start, std::size_t end);
  IxoMepErrorEnum ReadElementBody();
  IxoMepErrorEnum FailAfterValue(const IxoMepValue& value, std::size_t position);
  IxoMepErrorEnum Unexpected();

  // Attributes (attributes.cpp).
  IxoMepErrorEnum ReadAttribute();
  IxoMepErrorEnum ReadAttributeName(IxoMepElement& element, std::size_t start, std::size_t end,
                                    std::size_t& colon, IxoMepAttribute*& attribute);
  IxoMepErrorEnum ReadModifier(IxoMepAttribute& attribute, std::size_t& position, std::size_t end,
                               bool& has_value);
  IxoMepErrorEnum ReadAttributeValue(IxoMepAttribute& attribute, std::size_t start,
                                     std::size_t position, std::size_t end);

  // Directives (include.cpp).
  IxoMepErrorEnum Execute(std::unique_ptr<IxoMepElement> directive, std::size_t start);
  IxoMepErrorEnum Include(std::unique_ptr<IxoMepElement> directive, std::size_t start);
  bool EnterFile(std::unique_ptr<IxoMepElement> directive, std::size_t start, const String& name,
                 const String& text);

  // Shared (reader.cpp).
  ReadingFrame& Top() noexcept { return frames_.back(); }
  bool HasCurrent() const noexcept;
  IxoMepElement* AttributeOwner();
  std::int32_t OffsetOf(std::size_t position) const noexcept;
  SoughtPlace SoughtPlaceOf(std::size_t position) const noexcept;
  IxoMepErrorEnum Fail(IxoMepErrorEnum code, std::size_t position,
                       std::initializer_list<Fill> fills = {});
  // The same with a text made elsewhere; `position` stands in the text's context block, `place`
  // is where tools point at.
  IxoMepErrorEnum FailWith(IxoMepErrorEnum code, const String& text, std::size_t position,
                           std::size_t place);
  ValuePtr ReadValue(std::size_t& position, IxoMepErrorEnum& code);
  IxoMepErrorEnum ReadExpressionText(std::size_t start, std::size_t end, std::int32_t line,
                                     std::unique_ptr<IxoMepExpressionParser>& expression);
  void PassLines(std::size_t from, std::size_t to) noexcept;
  // A "{" that opens an array display, not a body.
  bool OpensArray(std::size_t position) noexcept;
  bool StartsValue(std::size_t position) noexcept;
  std::string_view WordAt(std::size_t position) const noexcept;
  const String& Shared(std::string_view name);

  FoldedLiterals* folded_;
  LongWork work_;
  std::vector<ReadingFrame> frames_;
  std::size_t error_position_ = 0;  // in the top frame's source
  std::int32_t includes_ = 0;
  // Names repeat: the last text of each slot is shared instead of made again.
  std::array<String, 256> names_;
};

}  // namespace ixomep
