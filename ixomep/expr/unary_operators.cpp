// A value and a prefix operator -> a value. The rows at the end are the language's definition of
// the prefix operators; they are expanded at compile time into a dense table in which everything
// without a row is a wrong type (21).
#include "ixomep/expr/unary_operators.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>

#include "ixomep/expr/char_class.h"
#include "ixomep/expr/operator_table.h"
#include "ixomep/values/error.h"
#include "ixomep/values/units.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

struct Operand {
  Kind kind;
  const IxoMepValue& value;
  IxoMepValue& out;
  String& text;

  double Number() const noexcept { return ValueAccess::Number(value); }
  IxoMepErrorEnum Give(std::int32_t number) const noexcept {
    ValueAccess::SetInteger(out, number);
    return IMEPERR_NONE;
  }
  IxoMepErrorEnum Give(Type type, double number) const noexcept {
    ValueAccess::SetNumber(out, type, number);
    return IMEPERR_NONE;
  }
  IxoMepErrorEnum Give(String result) const noexcept {
    ValueAccess::SetText(out, std::move(result));
    return IMEPERR_NONE;
  }
};

using Action = IxoMepErrorEnum (*)(const Operand& o);

IxoMepErrorEnum WrongType(Kind kind, const IxoMepValue& operand, String& text) {
  text = IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, OperatorText(kind), &operand);
  return IMEPERR_WRONG_TYPE;
}

// Wraps around: the negative of the smallest integer is itself.
std::int32_t Negative(std::int32_t number) noexcept {
  return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(number));
}

IxoMepErrorEnum NegateInteger(const Operand& o) {
  return o.Give(Negative(ValueAccess::Integer(o.value)));
}

IxoMepErrorEnum NegateReal(const Operand& o) { return o.Give(Type::Real, -o.Number()); }

IxoMepErrorEnum NegateMeasure(const Operand& o) {
  return o.Give(Type::Measure, Negative(WholeTenthsOf(o.Number())));
}

// A text stays as it is: no quotes, no escapes.
IxoMepErrorEnum TextOf(const Operand& o) {
  if (o.value.GetType() == Type::String) return o.Give(ValueAccess::Text(o.value));
  return o.Give(ValueAccess::TextOf(o.value));
}

// Reads one literal from the start of the text, behind white space; what follows is ignored.
IxoMepErrorEnum ValueOfText(const Operand& o) {
  const String source = ValueAccess::Text(o.value);
  std::int32_t position = 0;
  while (position < source.Len() && CharClass::IsWhite(source[position])) ++position;
  IxoMepErrorEnum code = IMEPERR_NONE;
  String error_text;
  const ValuePtr value(IxoMepValue::Create(source, position, code, error_text, nullptr, -1));
  if (code != IMEPERR_NONE) {
    o.text = error_text;
    return code;
  }
  o.out = value != nullptr ? std::move(*value) : IxoMepValue();
  return IMEPERR_NONE;
}

IxoMepErrorEnum LengthOfText(const Operand& o) { return o.Give(ValueAccess::Text(o.value).Len()); }

IxoMepErrorEnum LengthOfContainer(const Operand& o) { return o.Give(o.value.GetSize()); }

IxoMepErrorEnum Not(const Operand& o) { return o.Give(o.value.GetReal() == 0.0 ? 1 : 0); }

// The byte without sign; the empty text gives its terminating zero.
IxoMepErrorEnum FirstByte(const Operand& o) {
  return o.Give(static_cast<unsigned char>(ValueAccess::Text(o.value)[0]));
}

IxoMepErrorEnum CharacterOf(const Operand& o) {
  const auto low = static_cast<unsigned char>(static_cast<std::uint32_t>(o.value.GetInt()) & 0xFFu);
  return o.Give(String(static_cast<char>(low)));
}

IxoMepErrorEnum Truncate(const Operand& o) {
  const double number = o.Number();
  if (!(number >= -2147483648.0 && number <= 2147483647.0)) {
    return WrongType(o.kind, o.value, o.text);
  }
  return o.Give(static_cast<std::int32_t>(number));
}

IxoMepErrorEnum ToReal(const Operand& o) { return o.Give(Type::Real, o.value.GetReal()); }

IxoMepErrorEnum Round(const Operand& o) {
  return o.Give(Type::Real, std::floor(o.value.GetReal() + 0.5));
}

IxoMepErrorEnum Floor(const Operand& o) {
  return o.Give(Type::Real, std::floor(o.value.GetReal()));
}

IxoMepErrorEnum Ceil(const Operand& o) { return o.Give(Type::Real, std::ceil(o.value.GetReal())); }

IxoMepErrorEnum FromCentimetres(const Operand& o) {
  return o.Give(Type::Measure, o.value.GetReal() * kTenthsPerCentimetre);
}

IxoMepErrorEnum FromPoints(const Operand& o) {
  return o.Give(Type::Measure, o.value.GetReal() * kTenthsPerPoint);
}

IxoMepErrorEnum ToCentimetres(const Operand& o) {
  return o.Give(Type::Real, WholeTenthsOf(o.Number()) / kTenthsPerCentimetre);
}

IxoMepErrorEnum ToPoints(const Operand& o) {
  return o.Give(Type::Real, WholeTenthsOf(o.Number()) / kTenthsPerPoint);
}

// --- The table ----------------------------------------------------------------------------------

// One column for each type; a reference to a number has its own, any other type without a row
// shares the last.
enum class Column : std::uint8_t {
  Integer,
  Real,
  NumberReference,
  String,
  Measure,
  Array,
  Map,
  Other,
};

constexpr std::size_t kColumns = static_cast<std::size_t>(Column::Other) + 1;

Column ColumnOf(const IxoMepValue& value) noexcept {
  switch (value.GetType()) {
    case Type::Integer:
      return Column::Integer;
    case Type::Real:
      return Column::Real;
    case Type::String:
      return Column::String;
    case Type::Measure:
      return Column::Measure;
    case Type::Array:
      return Column::Array;
    case Type::Map:
      return Column::Map;
    case Type::Reference:
      return value.IsNum() ? Column::NumberReference : Column::Other;
    default:
      return Column::Other;
  }
}

class Table {
 public:
  constexpr Table() {
    const auto number = {Column::Integer, Column::Real, Column::NumberReference};
    Add(Kind::Minus, {Column::Integer}, &NegateInteger);
    Add(Kind::Minus, {Column::Real}, &NegateReal);
    Add(Kind::Minus, {Column::Measure}, &NegateMeasure);
    for (std::size_t any = 0; any < kColumns; ++any) {
      Add(Kind::Str, {static_cast<Column>(any)}, &TextOf);
    }
    Add(Kind::Val, {Column::String}, &ValueOfText);
    Add(Kind::Len, {Column::String}, &LengthOfText);
    Add(Kind::Len, {Column::Array, Column::Map}, &LengthOfContainer);
    Add(Kind::Not, number, &Not);
    Add(Kind::Asc, {Column::String}, &FirstByte);
    Add(Kind::Chr, {Column::Integer}, &CharacterOf);
    Add(Kind::Int, {Column::Real}, &Truncate);
    Add(Kind::Real, number, &ToReal);
    Add(Kind::Round, number, &Round);
    Add(Kind::Floor, number, &Floor);
    Add(Kind::Ceil, number, &Ceil);
    Add(Kind::Cm, number, &FromCentimetres);
    Add(Kind::Pt, number, &FromPoints);
    Add(Kind::Cms, {Column::Measure}, &ToCentimetres);
    Add(Kind::Pts, {Column::Measure}, &ToPoints);
  }

  constexpr bool IsUnique() const { return unique_; }
  constexpr Action Find(Kind kind, Column column) const noexcept {
    return FindOperator(kind) != nullptr ? actions_[Index(kind, column)] : nullptr;
  }

 private:
  static constexpr std::size_t Index(Kind kind, Column column) {
    const auto number = static_cast<std::size_t>(static_cast<std::int32_t>(kind) - kFirstOperator);
    return number * kColumns + static_cast<std::size_t>(column);
  }
  constexpr void Add(Kind kind, std::initializer_list<Column> columns, Action action) {
    for (const Column column : columns) {
      Action& entry = actions_[Index(kind, column)];
      if (entry != nullptr) unique_ = false;
      entry = action;
    }
  }

  std::array<Action, kOperators.size() * kColumns> actions_{};
  bool unique_ = true;
};

constexpr Table kTable;
static_assert(kTable.IsUnique(), "no operator has two rows for the same operand");

}  // namespace

IxoMepErrorEnum ApplyUnaryTo(IxoMepExprNodeType kind, const IxoMepValue& operand, IxoMepValue& out,
                             String& text) {
  const Action action = kTable.Find(kind, ColumnOf(operand));
  if (action == nullptr) return WrongType(kind, operand, text);
  const long code = CatchTooLong(text, [&]() -> long {
    return action({kind, operand, out, text});
  });
  return static_cast<IxoMepErrorEnum>(code);
}

IxoMepErrorEnum ApplyUnary(IxoMepExprNodeType kind, IxoMepValue& operand, String& text) {
  return ApplyUnaryTo(kind, operand, operand, text);
}

}  // namespace ixomep
