// IxoMepParser: one definition text, the elements read from it, and the questions a host asks
// about them. This header is the face; the sections name the sources: parser.cpp (life),
// grammar.cpp and attributes.cpp (reading), include.cpp, protected_text.cpp, query.cpp,
// query_values.cpp, query_colors.cpp, error_report.cpp, error_box.cpp, rendering.cpp.
#pragma once

#include <concepts>
#include <cstdint>
#include <deque>
#include <exception>
#include <map>
#include <memory>

#include "ixomep/export.h"
#include "ixomep/host/string.h"
#include "ixomep/parser/element.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/value.h"

class Color;
class IxoMepExpressionParser;
class IxoMepValueSet;

namespace ixomep {
class BodyTeardown;
class Document;
class ElementView;
class Splices;
class ValueView;
struct AttributeRecord;
struct BodyRecord;
struct ElementRecord;
struct FoldedLiteral;
struct LiteralRecord;
struct ParserState;
struct RecordRange;
struct SoughtPlace;
struct TextPlace;
}  // namespace ixomep

class IXOMEP_API IxoMepParser {
 public:
  // --- Life (parser.cpp) ---------------------------------------------------------------------
  // A constructor loads (and deciphers) the text and parses nothing: call Parse.
  // The whole text; context names its source in error texts.
  explicit IxoMepParser(const String& text, const String& context = String());
  // The same; the context is the label `"name" (kind)`.
  IxoMepParser(const String& text, const String& name, const String& kind);
  // A stretch of a larger text, clipped to it. firstLine 0 or less: counted from 1.
  IxoMepParser(const String& text, std::int32_t start, std::int32_t length, std::int32_t firstLine,
               const String& context);
  IxoMepParser(const IxoMepParser&) = delete;
  IxoMepParser& operator=(const IxoMepParser&) = delete;

  // The order of the virtual members is part of the interface.
  // Destroys the elements with their values, attributes and body parsers.
  virtual ~IxoMepParser();
  // Makes the parser of a braced body; override it to get bodies of your own class. The caller
  // owns the result.
  virtual IxoMepParser* NewParser(const String& text, std::int32_t start, std::int32_t length,
                                  std::int32_t firstLine, const String& context);
  // Makes the expression objects of this text. The caller owns the result.
  virtual IxoMepExpressionParser* NewExprParser();

  // Destroys all elements and takes another text, as the first constructor does; the context,
  // the variables and the error text stay.
  void SetText(const String& text);
  // Reads the stretch. 0: the first element is current. Else the code, the error text set, and
  // what was read before the error stays. A further call appends to the elements.
  IxoMepErrorEnum Parse();

  // The whole text, included files spliced in; composed when first asked for.
  const String& GetCompleteText() const;
  // The text of the stretch, as it stands in the complete text, and its length in bytes.
  String GetText() const;
  std::int32_t GetTextLen() const noexcept;
  const String& GetContext() const noexcept;
  // The scope in which queries evaluate expression values; not owned, null by default. A body
  // without the memory to remember it goes on without one.
  void SetVars(IxoMepValueSet* vars) noexcept;
  IxoMepValueSet* GetVars() const noexcept;
  // Whether files with repository names are read once for all parsers; off by default.
  void SetUseIncludeCache(bool use) noexcept;

  // --- Elements (query.cpp) ------------------------------------------------------------------
  // Index and position arguments out of range give the empty text, 0, false or null.
  std::int32_t GetElemCount() const noexcept;
  std::int32_t GetCurElemIndex() const noexcept;  // -1 when none is current
  // False, and nothing changes, when there is no such element.
  bool SetCurElemIndex(std::int32_t index);
  String GetKeyword(std::int32_t index) const;
  // The element as written, up to the next element or the end of the stretch.
  String GetElemText(std::int32_t index) const;
  // The element at an index; the current element (never null: an empty one when none is current).
  // Borrowed; at one address until SetText or the parser's end. Most elements become objects when
  // they are first asked for: without the memory for one it counts as missing.
  const IxoMepElement* GetElement(std::int32_t index) const noexcept;
  const IxoMepElement* GetCurElement() const noexcept;
  // The attributes of a braced body that stand before its first element; null when there are
  // none. Without any element they are current, and the queries without an index speak of them.
  const IxoMepElement* GetLooseAttributes() const noexcept;

  // Without an index these speak of the current element.
  std::int32_t GetAttrCount() const;
  std::int32_t GetAttrCount(std::int32_t index) const;
  String GetAttrNameOfPos(std::int32_t pos) const;
  String GetAttrNameOfPos(std::int32_t index, std::int32_t pos) const;
  String GetModifierOfPos(std::int32_t pos) const;
  String GetModifierOfPos(std::int32_t index, std::int32_t pos) const;
  bool IsContained(const String& name) const;
  bool IsContained(std::int32_t index, const String& name) const;
  String GetModifier(const String& name) const;
  // False, and modifier unchanged, when there is no such attribute.
  bool GetModifier(const String& name, String& modifier) const;

  // Forms without a name or position speak of the current element's own value. Borrowed, not
  // evaluated; null when missing.
  IxoMepValue* GetValue() const;
  IxoMepValue* GetValue(const String& name) const;
  IxoMepValue* GetValueOfPos(std::int32_t pos) const;
  // The type of the resolved value; undefined when missing.
  IxoMepValueType GetValueType() const;
  IxoMepValueType GetValueType(const String& name) const;
  IxoMepValueType GetValueTypeOfPos(std::int32_t pos) const;
  // Borrowed; null when there is none.
  IxoMepParser* GetBodyParser() const;
  IxoMepParser* GetBodyParser(const String& name) const;
  IxoMepParser* GetBodyParser(std::int32_t index) const;
  IxoMepParser* GetBodyParserOfPos(std::int32_t pos) const;
  // A copy of the expression object of an expression value, owned by the caller; else null.
  IxoMepExpressionParser* CreateExprParserCopy() const;
  IxoMepExpressionParser* CreateExprParserCopy(const String& name) const;
  IxoMepExpressionParser* CreateExprParserCopyOfPos(std::int32_t pos) const;
  // A copy of the place that an indexed attribute name denotes, owned by the caller; else null.
  IxoMepExpressionParser* GetArrayLValueCopyOfPos(std::int32_t pos) const;

  // --- Typed values (query_values.cpp) ---------------------------------------------------------
  // A value is resolved first: references are followed, expressions evaluated in GetVars(). A
  // Get... gives its neutral result when the value is missing, a TryGet... false with the out
  // argument unchanged. Without a name: the current element's own value.
  std::unique_ptr<IxoMepValue> GetMapValue(const String& name) const;  // null when missing
  String GetStrValue() const;
  String GetStrValue(const String& name) const;
  bool TryGetStrValue(String& value) const;
  bool TryGetStrValue(const String& name, String& value) const;
  // Reals are truncated, 0 outside the 32-bit range. The own value is read as text, like atol.
  std::int32_t GetIntValue() const;
  std::int32_t GetIntValue(const String& name) const;
  bool TryGetIntValue(std::int32_t& value) const;
  bool TryGetIntValue(const String& name, std::int32_t& value) const;
  double GetRealValue() const;
  double GetRealValue(const String& name) const;
  bool TryGetRealValue(double& value) const;
  bool TryGetRealValue(const String& name, double& value) const;
  // By modifier ("true", "yes"), by presence, or by value; `missing` when there is no attribute.
  // The form without a name is constrained, so that no text is taken for a truth value.
  bool GetBoolValue(const String& name, bool missing) const;
  template <std::same_as<bool> Bool>
  bool GetBoolValue(Bool missing) const {
    return GetOwnBoolValue(missing);
  }
  std::int32_t GetValueTMM() const;  // whole tenths of a millimetre
  std::int32_t GetValueTMM(const String& name) const;
  std::int32_t GetValueTPt() const;  // tenths of a point, rounded
  std::int32_t GetValueTPt(const String& name) const;
  double GetValueSec() const;  // seconds
  double GetValueSec(const String& name) const;
  // 0 when the resolved value has the type (integer and real stand for each other) or is missing
  // and may be; else 36 with the error text set.
  IxoMepErrorEnum ExpectValueType(IxoMepValueType type, bool allowMissing);
  IxoMepErrorEnum ExpectValueType(const String& name, IxoMepValueType type, bool allowMissing);
  IxoMepErrorEnum ExpectValueTypeOfPos(std::int32_t pos, IxoMepValueType type, bool allowMissing);

  // --- Colours (query_colors.cpp) --------------------------------------------------------------
  // False, and color unchanged, for a value that is no colour; null is none.
  static bool GetColor(const IxoMepValue* value, Color& color);
  static bool GetColor(const IxoMepValue& value, Color& color) { return GetColor(&value, color); }
  // The colour attribute, else the three components together; false when none of them exists.
  bool GetColor(const String& colorName, const String& redName, const String& greenName,
                const String& blueName, Color& color) const;
  // The same for "color" and "red", "green", "blue", or "r", "g", "b" when none of those exists.
  bool GetColor(Color& color) const;
  // The colour as an expression object owned by the caller; null when there is none.
  IxoMepExpressionParser* CreateColorEP(const String& colorName, const String& redName,
                                        const String& greenName, const String& blueName) const;
  IxoMepExpressionParser* CreateColorEP() const;

  // --- Errors (error_report.cpp, error_box.cpp) --------------------------------------------------
  // The last error's text, code and place; empty, 0 and no place after a successful Parse.
  const String& GetErrorText() const noexcept;
  IxoMepErrorEnum GetErrorCode() const noexcept;
  // Offset into GetCompleteText(), -1 for none.
  std::int32_t GetErrorOffset() const noexcept;
  // Line and column from 1 in the file in which the place stands, 0 for none; the name of that
  // file, GetContext() unless it is an included one.
  std::int32_t GetErrorLine() const noexcept;
  std::int32_t GetErrorColumn() const noexcept;
  const String& GetErrorContext() const noexcept;
  // Appends the context block of the current element to text; the error text stays as it is.
  void MakeErrorText(String& text) const;
  // The line number written in an error text, String::kNotFound when there is none.
  static std::int32_t GetLineOfErrorText(const String& text);
  // Shows this parser's error text.
  void ShowErrorBox() const;
  // fatal: asks whether the process shall end, and ends it with status 1 when answered so.
  static void ShowErrorBox(const String& text, bool fatal);
  static void SetErrorBoxTitle(const String& title);

  // --- Values as text (rendering.cpp) ------------------------------------------------------------
  static String GetMepTextOfStrValue(const String& text);
  static String GetMepTextOfNumValue(double number, bool period);
  static String GetMepTextOfTMMValue(std::int32_t tenths);  // tenths of a millimetre: 1.25cm
  static String GetMepTextOfTPtValue(std::int32_t tenths);  // tenths of a point: 12.5pt
  static String GetUITextOfTMMValue(std::int32_t tenths);   // for display: 1.25 cm
  // Length of the attribute text that starts at the position; String::kNotFound when none does, or
  // when the host asks for the end.
  static std::int32_t GetAttrMepTextLen(const String& text, std::int32_t position);

 private:
  friend class ixomep::BodyTeardown;
  friend class ixomep::Document;
  friend class ixomep::ElementView;
  friend class ixomep::Grammar;
  friend class ixomep::Splices;
  friend class IxoMepConverter;

  // Drops the marker of a protected text and deciphers the rest (protected_text.cpp).
  void Init() noexcept;
  // The parser of a braced body in outer's text: what NewParser makes, without a copy of a text
  // that includes have changed.
  IxoMepParser(const IxoMepParser& outer, std::int32_t start, std::int32_t length,
               std::int32_t first_line);
  // The same for the records of a body; it belongs to their document, in whose row of parsers it
  // stands. `current` is the record of its current element, kNoRecord for none.
  IxoMepParser(std::uint32_t body, std::uint32_t current) noexcept { PlaceAt(body, current); }

  // Either the number of a body in records, or a state of its own. A body's number stands beside
  // that of the record of its current element: with kIsObject where that is an object, which is
  // part of kNoRecord too.
  static constexpr std::uint32_t kIsObject = std::uint32_t{1} << 31;
  bool IsBodyNumber() const noexcept { return (place_ & 1) != 0; }
  std::uint32_t BodyNumber() const noexcept { return static_cast<std::uint32_t>(place_) >> 1; }
  std::uint32_t CurrentNumber() const noexcept { return static_cast<std::uint32_t>(place_ >> 32); }
  void PlaceAt(std::uint32_t body, std::uint32_t current) const noexcept {
    place_ = std::uint64_t{current} << 32 | std::uint64_t{body} << 1 | 1;
  }
  // The document of a body's number (element_view.h).
  const ixomep::Document& BodyDocument() const noexcept;
  const ixomep::BodyRecord& BodyOfNumber() const noexcept;
  // The state; only of a parser that has one.
  ixomep::ParserState& State() const noexcept {
    return *reinterpret_cast<ixomep::ParserState*>(static_cast<std::uintptr_t>(place_));
  }
  void TakeState(const String& text, std::int32_t start, std::int32_t length,
                 std::int32_t first_line, const String& context) noexcept;
  // The state, made where there is none yet; may throw std::bad_alloc.
  ixomep::ParserState& OwnState() const;
  ixomep::ParserState* TryOwnState() const noexcept;  // null without the memory for it
  IxoMepErrorEnum Parse(std::int32_t start, std::int32_t length, std::int32_t first_line);
  // Code 38 with its text, or that of a limit of the host, for memory that cannot be had.
  IxoMepErrorEnum NoteNoMemory(const std::exception& cause) noexcept;
  // Makes records of the text and, when that succeeds, takes them for the elements.
  bool ReadQuickly(std::int32_t start, std::int32_t length, std::int32_t first_line,
                   std::deque<ixomep::FoldedLiteral>& folded);

  // The records this parser answers from; no document when there are none (element_view.h).
  ixomep::RecordRange Records() const noexcept;
  const ixomep::Document& CurrentDocument() const noexcept;  // of CurrentRecord
  // Where the stretch begins in the complete text.
  std::int32_t StartOffset() const noexcept;
  // The elements as objects (objects.cpp). Null when out of range or without the memory.
  IxoMepElement* ElementAt(std::int32_t index) const noexcept;
  IxoMepElement* ObjectOf(std::uint32_t record, bool is_loose) const noexcept;
  IxoMepElement* Loose() const noexcept;
  IxoMepElement& Current() const noexcept;
  // The current element while it is no record.
  const IxoMepElement* CurrentObject() const noexcept;
  // Makes all that are not yet, takes them and forgets the records. May throw std::bad_alloc.
  void MakeAll();
  // Destroys what has been made of the records and was not taken.
  void ForgetRecords() noexcept;
  // An element, made or not; none when out of range.
  ixomep::ElementView ViewAt(std::int32_t index) const noexcept;
  ixomep::ElementView CurrentView() const noexcept;
  // The current element while it is a record; null otherwise. FindRecord looks where the parser
  // stands, CurrentRecord first at the cursor (cursor.h), which Aim sets on a record.
  const ixomep::ElementRecord* FindRecord() const noexcept;
  const ixomep::ElementRecord* CurrentRecord() const noexcept;
  void Aim() const noexcept;
  const ixomep::LiteralRecord* NamedLiteral(const String& name) const noexcept;
  // The answers where the cursor is not on the current element or its record does not tell. Kept
  // out of the queries, which are short without them (query.cpp, query_values.cpp).
  bool GoTo(std::uint32_t index) noexcept;
  std::int32_t CountAttributes() const noexcept;
  String NameAt(std::int32_t pos) const noexcept;
  String ModifierAt(std::int32_t pos) const noexcept;
  IxoMepParser* Body() const noexcept;
  IxoMepValueType OwnType() const;
  IxoMepValueType TypeAt(std::int32_t pos) const;
  void ReadText(const String* name, String& value) const noexcept;  // null: the own value
  // The stored value of the current element, of its attribute with the name or at the position.
  ixomep::ValueView OwnValue() const noexcept;
  ixomep::ValueView NamedValue(const String& name) const noexcept;
  ixomep::ValueView ValueAt(std::int32_t pos) const noexcept;

  // The names of the files being included, innermost first (include.cpp).
  void PushFilename(const String& name);
  void PopFilename() noexcept;
  String GetCurFilename() const;

  // Makes the text complete; GetCompleteText without its guard against exceptions.
  void Compose() const;
  // A stretch of the complete text, without composing all of it (parser.cpp).
  String CopyText(std::int32_t start, std::int32_t count) const;
  // Source, line and column of an offset into the complete text (parser.cpp).
  ixomep::TextPlace FindPlace(ixomep::SoughtPlace place) const;

  // Sets the error text to the code's text and the context block of the offset, and code and
  // place with it; 0 clears all of them. Placeholders are filled afterwards (error_report.cpp).
  void MakeErrorText(IxoMepErrorEnum code, ixomep::SoughtPlace place);
  // Appends the context block to the error text. An offset that is negative or kNotFound is no
  // place.
  void AppendContextInfo(ixomep::SoughtPlace sought);
  void SetCurrent(IxoMepElement* element, std::int32_t index) noexcept;  // null: none
  // Notes code and place of the last error; the text is set beside (parser.cpp).
  void NoteError(IxoMepErrorEnum code, ixomep::SoughtPlace sought);
  // Takes over the error of a body; the offset is into this parser's text.
  void CopyError(const IxoMepParser& inner, std::int32_t offset) noexcept;

  // The value to answer a query with: stored, what it refers to, or `evaluated`, which then holds
  // the result of its expression; null when missing (query_values.cpp).
  const IxoMepValue* Resolve(const IxoMepValue* stored,
                             std::unique_ptr<IxoMepValue>& evaluated) const;
  // The same of an expression in a scope.
  const IxoMepValue* Evaluated(const IxoMepExpressionParser& expression, IxoMepValueSet& vars,
                               std::unique_ptr<IxoMepValue>& evaluated) const;
  // Stores what convert makes of the resolved value; false, and out unchanged, when it is missing.
  template <class Out, class Convert>
  bool Read(const ixomep::ValueView& stored, Out& out, Convert convert) const;
  bool GetOwnBoolValue(bool missing) const;
  // The type of the resolved value; undefined, and false, when it is missing.
  bool FindType(const ixomep::ValueView& stored, IxoMepValueType& type) const;
  IxoMepValueType TypeOf(const ixomep::ValueView& stored) const;
  // The work of ExpectValueType; attribute is its name in the error text, null for the own value.
  IxoMepErrorEnum Expect(const ixomep::ValueView& stored, const String* attribute,
                         IxoMepValueType type, bool allow_missing);

  // The texts of files with repository names, for all parsers of the process (include.cpp).
  static std::map<String, String> m_aIncludeCache;

  // A body in records: 1, the number of the body (31 bits) and of the record of its current
  // element. Otherwise the address of the state.
  mutable std::uint64_t place_;
};
