// Typed values: a stored value is resolved (Resolve) and then converted, by one conversion for
// each type. The forms of a getter differ only in where the stored value comes from.
#include <algorithm>
#include <bit>
#include <exception>
#include <functional>
#include <utility>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/guarded.h"
#include "ixomep/host/short_text.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/literal_reader.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/units.h"

using ixomep::last_asked;
using Type = IxoMepValueType;

namespace {

bool IsTrue(const IxoMepValue& value) {
  switch (value.GetType()) {
    case Type::String:
      return !value.GetStr().IsEmpty();
    case Type::Integer:
      return value.GetInt() != 0;
    case Type::Real:
      return value.GetReal() != 0.0;  // also NaN
    case Type::Time:
      return value.GetSec() != 0.0;
    case Type::Measure:
      return value.GetTMM() != 0;
    default:
      return false;
  }
}

bool IsTrueModifier(const String& modifier) noexcept {
  return modifier == "true" || modifier == "yes";
}

// The own value of an element is read as text: "12 pieces" is 12.
std::int32_t IntegerOfText(const IxoMepValue& value) {
  return ixomep::LeadingInteger(value.GetStr());
}

bool IsText(const ixomep::LiteralRecord& literal) noexcept {
  return literal.Kind() == ixomep::LiteralKind::String ||
         literal.Kind() == ixomep::LiteralKind::Escaped;
}

// The text of a string goes straight from the definition text into the result. False, and nothing
// is done, for other values and without the memory.
[[gnu::noinline]] bool TakeText(const ixomep::Document& document,
                                const ixomep::LiteralRecord& literal, String& out) noexcept {
  if (!IsText(literal)) return false;
  const std::string_view text = document.Text().view();
  return ixomep::OrNeutral(false, [&] {
    if (literal.Kind() == ixomep::LiteralKind::String) {
      out = String(std::string_view(text.data() + literal.at, literal.size));
    } else {
      ixomep::UnescapePart(text, literal.at, literal.size, out);
    }
    return true;
  });
}

// The same into an empty text, with the common way first.
inline bool CopyLiteral(const ixomep::Document& document, const ixomep::LiteralRecord& literal,
                        String& out) noexcept {
  const bool is_plain = literal.Kind() == ixomep::LiteralKind::String;
  if (is_plain &&
      ixomep::ShortText::CopyPart(document.Text().view(), literal.at, literal.size, out)) {
    return true;
  }
  return TakeText(document, literal, out);
}

[[gnu::noinline]] const ixomep::LiteralRecord* AnyLiteralAtCursor(const String& name) noexcept {
  const ixomep::Document& document = *last_asked.document;
  const std::uint32_t index = document.FindAttribute(*last_asked.record, name);
  return index != ixomep::kNoRecord ? &document.Attribute(index).literal : nullptr;
}

// The literal of the attribute with the name at the cursor; null when there is none. Mostly it is
// one of the first, and the name one that the host has just been told.
[[gnu::noinline]] const ixomep::LiteralRecord* LiteralAtCursor(const String& name) noexcept {
  const ixomep::Document& document = *last_asked.document;
  const std::uint32_t number = document.Names().FindLast(name);
  const bool has_four = document.HasFour(last_asked.record->first_attribute);
  if (number == ixomep::NameTable::kUnknown || !has_four) return AnyLiteralAtCursor(name);
  const std::uint32_t hits = ixomep::Document::HitsAmongFour(last_asked.attributes, number);
  const auto found = static_cast<std::uint32_t>(std::countr_zero(hits | 16));
  if (found >= std::min(last_asked.attribute_count, 4U)) return AnyLiteralAtCursor(name);
  return &last_asked.attributes[found].literal;
}

bool Fits(Type expected, Type found) noexcept {
  const auto is_number = [](Type type) { return type == Type::Integer || type == Type::Real; };
  return expected == found || (is_number(expected) && is_number(found));
}

}  // namespace

const IxoMepValue* IxoMepParser::Resolve(const IxoMepValue* stored,
                                         std::unique_ptr<IxoMepValue>& evaluated) const {
  if (stored == nullptr) return nullptr;
  const IxoMepValue* const value = stored->GetReferencedValue();
  if (value == nullptr || value->GetType() != Type::Expression) return value;
  IxoMepValueSet* const vars = GetVars();
  const IxoMepExpressionParser* const expression = value->GetExpr();
  if (vars == nullptr) return value;
  return expression != nullptr ? Evaluated(*expression, *vars, evaluated) : nullptr;
}

[[gnu::noinline]] const IxoMepValue* IxoMepParser::Evaluated(
    const IxoMepExpressionParser& expression, IxoMepValueSet& vars,
    std::unique_ptr<IxoMepValue>& evaluated) const {
  IxoMepValue* result = nullptr;
  // Only an error is worth a state of its own.
  String error_text;
  String& sink = IsBodyNumber() ? error_text : State().error_text;
  const IxoMepErrorEnum code =
      expression.Evaluate(&vars, result, sink, /*strict=*/false, /*ownScope=*/true);
  evaluated.reset(result);
  if (!error_text.IsEmpty()) {
    if (ixomep::ParserState* const state = TryOwnState()) state->error_text = error_text;
  }
  if (code != IMEPERR_NONE) return nullptr;
  if (evaluated == nullptr) evaluated = ixomep::MakeValue();
  return evaluated.get();
}

template <class Out, class Convert>
bool IxoMepParser::Read(const ixomep::ValueView& stored, Out& out, Convert convert) const {
  try {
    IxoMepValue room;
    std::unique_ptr<IxoMepValue> evaluated;
    const IxoMepValue* const value = Resolve(stored.Get(room), evaluated);
    if (value == nullptr) return false;
    out = std::invoke(convert, *value);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

// --- Types --------------------------------------------------------------------------------------

bool IxoMepParser::FindType(const ixomep::ValueView& stored, Type& type) const {
  const bool is_final = stored.GetType(type) && type != Type::Reference &&
                        (type != Type::Expression || GetVars() == nullptr);
  if (is_final) return static_cast<bool>(stored);
  type = Type::Undefined;
  return Read(stored, type, &IxoMepValue::GetType);
}

Type IxoMepParser::TypeOf(const ixomep::ValueView& stored) const {
  Type type = Type::Undefined;
  FindType(stored, type);
  return type;
}

IxoMepValueType IxoMepParser::GetValueType() const {
  if (!last_asked.IsAt(this)) [[unlikely]]
    return OwnType();
  const Type type = ixomep::kSettledTypes[last_asked.record->literal.kind];
  return type != ixomep::kOpenType ? type : OwnType();
}

[[gnu::noinline]] IxoMepValueType IxoMepParser::OwnType() const {
  Aim();
  return TypeOf(OwnValue());
}

IxoMepValueType IxoMepParser::GetValueType(const String& name) const {
  return TypeOf(NamedValue(name));
}

IxoMepValueType IxoMepParser::GetValueTypeOfPos(std::int32_t pos) const {
  if (!last_asked.HasAttribute(this, pos)) [[unlikely]]
    return TypeAt(pos);
  const Type type = ixomep::kSettledTypes[last_asked.attributes[pos].literal.kind];
  return type != ixomep::kOpenType ? type : TypeAt(pos);
}

[[gnu::noinline]] IxoMepValueType IxoMepParser::TypeAt(std::int32_t pos) const {
  Aim();
  return TypeOf(ValueAt(pos));
}

IxoMepErrorEnum IxoMepParser::ExpectValueType(Type type, bool allowMissing) {
  return Expect(OwnValue(), nullptr, type, allowMissing);
}

IxoMepErrorEnum IxoMepParser::ExpectValueType(const String& name, Type type, bool allowMissing) {
  return Expect(NamedValue(name), &name, type, allowMissing);
}

IxoMepErrorEnum IxoMepParser::ExpectValueTypeOfPos(std::int32_t pos, Type type, bool allowMissing) {
  const String name = GetAttrNameOfPos(pos);
  return Expect(ValueAt(pos), &name, type, allowMissing);
}

IxoMepErrorEnum IxoMepParser::Expect(const ixomep::ValueView& stored, const String* attribute,
                                     Type type, bool allow_missing) {
  Type found = Type::Undefined;
  const bool is_there = FindType(stored, found);
  if (is_there ? Fits(type, found) : allow_missing) return IMEPERR_NONE;

  ixomep::ParserState* const state = TryOwnState();
  if (state == nullptr) return IMEPERR_TOO_DEEP;
  const IxoMepErrorEnum code = ixomep::Guarded(state->error_text, [&] {
    const String keyword = CurrentView().Keyword();
    const String shown =
        attribute != nullptr ? "\"" + *attribute + "\" (" + keyword + ")" : keyword;
    MakeErrorText(IMEPERR_UNEXPECTED_TYPE, CurrentView().StartOffset());
    // The name comes last: an indexed one may hold any text.
    ixomep::FillPlaceholder(state->error_text, "%type1", IxoMepValue::GetTypeName(type));
    ixomep::FillPlaceholder(state->error_text, "%type2", IxoMepValue::GetTypeName(found));
    ixomep::FillPlaceholder(state->error_text, "%attr", shown);
    return IMEPERR_UNEXPECTED_TYPE;
  });
  state->error_code = code;
  return code;
}

// --- Values -------------------------------------------------------------------------------------

std::unique_ptr<IxoMepValue> IxoMepParser::GetMapValue(const String& name) const {
  return ixomep::OrNeutral<ixomep::ValuePtr>(nullptr, [&]() -> ixomep::ValuePtr {
    IxoMepValue room;
    ixomep::ValuePtr evaluated;
    const IxoMepValue* const value = Resolve(NamedValue(name).Get(room), evaluated);
    if (value == nullptr) return nullptr;
    return evaluated != nullptr ? std::move(evaluated) : ixomep::MakeValue(*value);
  });
}

bool IxoMepParser::TryGetStrValue(String& value) const {
  const ixomep::ElementRecord* const record = CurrentRecord();
  if (record != nullptr && TakeText(CurrentDocument(), record->literal, value)) return true;
  return Read(OwnValue(), value, &IxoMepValue::GetStr);
}

bool IxoMepParser::TryGetStrValue(const String& name, String& value) const {
  const ixomep::LiteralRecord* const literal = NamedLiteral(name);
  if (literal != nullptr && TakeText(CurrentDocument(), *literal, value)) return true;
  return Read(NamedValue(name), value, &IxoMepValue::GetStr);
}

String IxoMepParser::GetStrValue() const {
  String value;
  const bool is_copied =
      last_asked.IsAt(this) && CopyLiteral(*last_asked.document, last_asked.record->literal, value);
  if (!is_copied) [[unlikely]]
    ReadText(nullptr, value);
  return value;
}

String IxoMepParser::GetStrValue(const String& name) const {
  String value;
  const ixomep::LiteralRecord* const literal =
      last_asked.IsAt(this) ? LiteralAtCursor(name) : nullptr;
  const bool is_copied = literal != nullptr && CopyLiteral(*last_asked.document, *literal, value);
  if (!is_copied) [[unlikely]]
    ReadText(&name, value);
  return value;
}

[[gnu::noinline]] void IxoMepParser::ReadText(const String* name, String& value) const noexcept {
  if (!last_asked.IsAt(this)) Aim();
  if (name != nullptr) {
    TryGetStrValue(*name, value);
  } else {
    TryGetStrValue(value);
  }
}

bool IxoMepParser::TryGetIntValue(std::int32_t& value) const {
  return Read(OwnValue(), value, IntegerOfText);
}

bool IxoMepParser::TryGetIntValue(const String& name, std::int32_t& value) const {
  if (name.IsEmpty()) return TryGetIntValue(value);
  return Read(NamedValue(name), value, &IxoMepValue::GetInt);
}

std::int32_t IxoMepParser::GetIntValue() const {
  std::int32_t value = 0;
  TryGetIntValue(value);
  return value;
}

std::int32_t IxoMepParser::GetIntValue(const String& name) const {
  std::int32_t value = 0;
  TryGetIntValue(name, value);
  return value;
}

bool IxoMepParser::TryGetRealValue(double& value) const {
  return Read(OwnValue(), value, &IxoMepValue::GetReal);
}

bool IxoMepParser::TryGetRealValue(const String& name, double& value) const {
  return Read(NamedValue(name), value, &IxoMepValue::GetReal);
}

double IxoMepParser::GetRealValue() const {
  double value = 0.0;
  TryGetRealValue(value);
  return value;
}

double IxoMepParser::GetRealValue(const String& name) const {
  double value = 0.0;
  TryGetRealValue(name, value);
  return value;
}

bool IxoMepParser::GetOwnBoolValue(bool missing) const {
  bool value = missing;
  Read(OwnValue(), value, IsTrue);
  return value;
}

bool IxoMepParser::GetBoolValue(const String& name, bool missing) const {
  return ixomep::OrNeutral(missing, [&] {
    const ixomep::AttributeView attribute = CurrentView().FindAttr(name);
    if (!attribute) return missing;
    const String& modifier = attribute.Modifier();
    if (!modifier.IsEmpty()) return IsTrueModifier(modifier);
    if (!attribute.HasValue()) return true;
    bool value = missing;
    Read(NamedValue(name), value, IsTrue);
    return value;
  });
}

std::int32_t IxoMepParser::GetValueTMM() const {
  std::int32_t tenths = 0;
  Read(OwnValue(), tenths, &IxoMepValue::GetTMM);
  return tenths;
}

std::int32_t IxoMepParser::GetValueTMM(const String& name) const {
  std::int32_t tenths = 0;
  Read(NamedValue(name), tenths, &IxoMepValue::GetTMM);
  return tenths;
}

std::int32_t IxoMepParser::GetValueTPt() const {
  std::int32_t tenths = 0;
  Read(OwnValue(), tenths, &IxoMepValue::GetTPt);
  return tenths;
}

std::int32_t IxoMepParser::GetValueTPt(const String& name) const {
  std::int32_t tenths = 0;
  Read(NamedValue(name), tenths, &IxoMepValue::GetTPt);
  return tenths;
}

double IxoMepParser::GetValueSec() const {
  double seconds = 0.0;
  Read(OwnValue(), seconds, &IxoMepValue::GetSec);
  return seconds;
}

double IxoMepParser::GetValueSec(const String& name) const {
  double seconds = 0.0;
  Read(NamedValue(name), seconds, &IxoMepValue::GetSec);
  return seconds;
}
