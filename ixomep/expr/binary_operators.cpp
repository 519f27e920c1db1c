// Two values and an operator -> a value. The rows below are the language's definition of the
// infix operators; they are expanded at compile time into a dense table in which everything
// without a row is a wrong type (21). The comparison of numbers by digits is decimal_compare.cpp's.
#include "ixomep/expr/binary_operators.h"

#include <algorithm>
#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>

#include "ixomep/expr/decimal_compare.h"
#include "ixomep/expr/operator_table.h"
#include "ixomep/host/numbers.h"
#include "ixomep/values/error.h"
#include "ixomep/values/units.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

// What the table tells operands apart by. A reference to a number is a Number, any other
// reference is of no use to an operator but as index of SUB.
enum class Class : std::uint8_t { Integer, Number, String, Measure, Time, Array, Other };

Class ClassOf(const IxoMepValue& value) noexcept {
  switch (value.GetType()) {
    case Type::Integer:
      return Class::Integer;
    case Type::Real:
      return Class::Number;
    case Type::String:
      return Class::String;
    case Type::Measure:
      return Class::Measure;
    case Type::Time:
      return Class::Time;
    case Type::Array:
      return Class::Array;
    case Type::Reference:
      return value.IsNum() ? Class::Number : Class::Other;
    default:
      return Class::Other;
  }
}

struct Operands {
  Kind kind;
  const IxoMepValue& left;
  const IxoMepValue& right;
  IxoMepValue& out;
  String& text;

  std::int32_t LeftInt() const noexcept { return ValueAccess::Integer(left); }
  std::int32_t RightInt() const noexcept { return ValueAccess::Integer(right); }
  IxoMepErrorEnum Give(std::int32_t number) const noexcept {
    ValueAccess::SetInteger(out, number);
    return IMEPERR_NONE;
  }
  IxoMepErrorEnum Give(Type type, double number) const noexcept {
    ValueAccess::SetNumber(out, type, number);
    return IMEPERR_NONE;
  }
};

using Action = IxoMepErrorEnum (*)(const Operands& o);

IxoMepErrorEnum WrongTypes(Kind kind, const IxoMepValue& left, const IxoMepValue& right,
                           String& text) {
  text = IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, OperatorText(kind), &left, &right);
  return IMEPERR_WRONG_TYPE;
}

// --- Arithmetic ---------------------------------------------------------------------------------

// Whole numbers wrap around at 32 bits.
std::int32_t Wrapped(Kind kind, std::int32_t left, std::int32_t right) noexcept {
  const auto a = static_cast<std::uint32_t>(left);
  const auto b = static_cast<std::uint32_t>(right);
  if (kind == Kind::Plus) return static_cast<std::int32_t>(a + b);
  if (kind == Kind::Minus) return static_cast<std::int32_t>(a - b);
  return static_cast<std::int32_t>(a * b);
}

double Combined(Kind kind, double left, double right) noexcept {
  if (kind == Kind::Plus) return left + right;
  if (kind == Kind::Minus) return left - right;
  if (kind == Kind::Times) return left * right;
  return left / right;
}

// A measure as an operator sees it: whole tenths of a millimetre.
std::int32_t Tenths(const IxoMepValue& measure) noexcept {
  return WholeTenthsOf(ValueAccess::Number(measure));
}

IxoMepErrorEnum Integers(const Operands& o) {
  return o.Give(Wrapped(o.kind, o.LeftInt(), o.RightInt()));
}

IxoMepErrorEnum Numbers(const Operands& o) {
  return o.Give(Type::Real, Combined(o.kind, o.left.GetReal(), o.right.GetReal()));
}

IxoMepErrorEnum Measures(const Operands& o) {
  return o.Give(Type::Measure, Wrapped(o.kind, Tenths(o.left), Tenths(o.right)));
}

IxoMepErrorEnum Times(const Operands& o) {
  return o.Give(Type::Time,
                Combined(o.kind, ValueAccess::Number(o.left), ValueAccess::Number(o.right)));
}

// Measure or time by number. The product of tenths is not rounded again.
IxoMepErrorEnum Scale(const Operands& o) {
  const double factor = o.right.GetReal();
  if (o.kind == Kind::Divide && factor == 0.0) return Raise(o.text, IMEPERR_DIVISION_BY_ZERO);
  const Type type = o.left.GetType();
  const double size = type == Type::Measure ? Tenths(o.left) : ValueAccess::Number(o.left);
  return o.Give(type, Combined(o.kind, size, factor));
}

IxoMepErrorEnum Quotient(const Operands& o) {
  if (o.right.GetReal() == 0.0) return Raise(o.text, IMEPERR_DIVISION_BY_ZERO);
  return Numbers(o);
}

// Meant: the remainder of two integers is a real.
IxoMepErrorEnum Remainder(const Operands& o) {
  if (o.RightInt() == 0) return Raise(o.text, IMEPERR_DIVISION_BY_ZERO);
  const std::int64_t remainder = std::int64_t{o.LeftInt()} % o.RightInt();
  return o.Give(Type::Real, static_cast<double>(remainder));
}

// Meant: both operands are evaluated before; there is no short circuit.
IxoMepErrorEnum Logical(const Operands& o) {
  const bool left = o.left.GetReal() != 0.0;
  const bool right = o.right.GetReal() != 0.0;
  return o.Give(o.kind == Kind::And ? left && right : left || right);
}

// --- Texts --------------------------------------------------------------------------------------

IxoMepErrorEnum Concatenate(const Operands& o) {
  const String& left = ValueAccess::Text(o.left);
  const String& right = ValueAccess::Text(o.right);
  if (std::int64_t{left.Len()} + right.Len() > String::kMaxLength) {
    return Raise(o.text, IMEPERR_TOO_LONG);
  }
  ValueAccess::SetText(o.out, left + right);
  return IMEPERR_NONE;
}

std::int32_t RepeatCount(const IxoMepValue& number) noexcept {
  if (number.GetType() == Type::Real) return ToInt32Saturating(ValueAccess::Number(number));
  return number.GetInt();
}

// The first copy of the unit is laid down, then what is there is copied behind itself.
String Repeated(const String& unit, std::int32_t count) {
  if (unit.Len() == 1) return String::Filled(count, unit[0]);
  String text;
  text.Resize(unit.Len() * count);
  char* const bytes = text.MutableText();
  const auto total = static_cast<std::size_t>(text.Len());
  auto filled = static_cast<std::size_t>(unit.Len());
  std::memcpy(bytes, unit.c_str(), filled);
  while (filled < total) {
    const std::size_t more = std::min(filled, total - filled);
    std::memcpy(bytes + filled, bytes, more);
    filled += more;
  }
  return text;
}

IxoMepErrorEnum Repeat(const Operands& o) {
  const bool text_first = o.left.GetType() == Type::String;
  const String& unit = ValueAccess::Text(text_first ? o.left : o.right);
  const std::int32_t count = RepeatCount(text_first ? o.right : o.left);
  if (unit.IsEmpty() || count < 1) {
    ValueAccess::SetText(o.out, String());
    return IMEPERR_NONE;
  }
  if (std::int64_t{unit.Len()} * count > String::kMaxLength) {
    return Raise(o.text, IMEPERR_TOO_LONG);
  }
  ValueAccess::SetText(o.out, Repeated(unit, count));
  return IMEPERR_NONE;
}

// --- Selection and membership -------------------------------------------------------------------

// False for what is no index. A reference is one whatever it refers to: 0 when that is no number.
bool ReadIndex(const IxoMepValue& value, std::int32_t& index) noexcept {
  const Type type = value.GetType();
  if (type == Type::Real) {
    const double number = ValueAccess::Number(value);
    if (!(number >= -2147483648.0 && number <= 2147483647.0)) return false;
  } else if (type != Type::Integer && type != Type::Reference) {
    return false;
  }
  index = value.GetInt();
  return true;
}

IxoMepErrorEnum Select(const Operands& o) {
  std::int32_t index = 0;
  if (!ReadIndex(o.right, index)) return WrongTypes(o.kind, o.left, o.right, o.text);
  const bool is_text = o.left.GetType() == Type::String;
  // Meant: a text has one place more than characters; the last gives its terminating zero byte.
  const std::size_t places = is_text ? static_cast<std::size_t>(ValueAccess::Text(o.left).Len()) + 1
                                     : ValueAccess::Count(o.left);
  if (index < 0 || static_cast<std::size_t>(index) >= places) {
    return Raise(o.text, index < 0 ? IMEPERR_INDEX_TOO_SMALL : IMEPERR_INDEX_TOO_LARGE,
                 {{"%type", IxoMepValue::GetTypeName(o.left.GetType())},
                  {"%func", "... SUB " + StringFromInteger(index)}});
  }
  if (is_text) {
    ValueAccess::SetText(o.out, String(ValueAccess::Text(o.left)[index]));
  } else {
    o.out = ValueAccess::Element(o.left, static_cast<std::size_t>(index));
  }
  return IMEPERR_NONE;
}

IxoMepErrorEnum Contains(const Operands& o) {
  for (const IxoMepValue* const element : ValueAccess::Items(o.right)) {
    if (element != nullptr && *element == o.left) return o.Give(1);
  }
  return o.Give(0);
}

IxoMepErrorEnum Second(const Operands& o) {
  o.out = o.right;
  return IMEPERR_NONE;
}

// --- Comparison ---------------------------------------------------------------------------------

// Unordered (NaN seconds) is only ever "!=".
bool Holds(Kind kind, std::partial_ordering order) noexcept {
  switch (kind) {
    case Kind::Equal:
      return order == 0;
    case Kind::NotEqual:
      return order != 0;
    case Kind::Less:
      return order < 0;
    case Kind::LessEqual:
      return order <= 0;
    case Kind::Greater:
      return order > 0;
    default:
      return order >= 0;
  }
}

IxoMepErrorEnum CompareIntegers(const Operands& o) {
  return o.Give(Holds(o.kind, o.LeftInt() <=> o.RightInt()));
}

// Meant: numbers that are not both integers are compared by twelve digits.
IxoMepErrorEnum CompareNumbers(const Operands& o) {
  return o.Give(Holds(o.kind, CompareDecimals(o.left.GetReal(), o.right.GetReal())));
}

IxoMepErrorEnum CompareMeasures(const Operands& o) {
  return o.Give(Holds(o.kind, Tenths(o.left) <=> Tenths(o.right)));
}

IxoMepErrorEnum CompareTimes(const Operands& o) {
  return o.Give(Holds(o.kind, ValueAccess::Number(o.left) <=> ValueAccess::Number(o.right)));
}

IxoMepErrorEnum CompareTexts(const Operands& o) {
  const String& left = ValueAccess::Text(o.left);
  const String& right = ValueAccess::Text(o.right);
  if (o.kind == Kind::Equal) return o.Give(left == right);
  if (o.kind == Kind::NotEqual) return o.Give(!(left == right));
  return o.Give(Holds(o.kind, left <=> right));
}

// --- The table ----------------------------------------------------------------------------------

struct ClassPair {
  Class left;
  Class right;
  Action action;
};

struct Row {
  Kind kind;
  ClassPair operands;
};

constexpr Row kRows[] = {
    {Kind::Plus, {Class::Integer, Class::Integer, &Integers}},
    {Kind::Plus, {Class::Integer, Class::Number, &Numbers}},
    {Kind::Plus, {Class::Number, Class::Integer, &Numbers}},
    {Kind::Plus, {Class::Number, Class::Number, &Numbers}},
    {Kind::Plus, {Class::Measure, Class::Measure, &Measures}},
    {Kind::Plus, {Class::Time, Class::Time, &Times}},
    {Kind::Plus, {Class::String, Class::String, &Concatenate}},

    {Kind::Minus, {Class::Integer, Class::Integer, &Integers}},
    {Kind::Minus, {Class::Integer, Class::Number, &Numbers}},
    {Kind::Minus, {Class::Number, Class::Integer, &Numbers}},
    {Kind::Minus, {Class::Number, Class::Number, &Numbers}},
    {Kind::Minus, {Class::Measure, Class::Measure, &Measures}},
    {Kind::Minus, {Class::Time, Class::Time, &Times}},

    {Kind::Times, {Class::Integer, Class::Integer, &Integers}},
    {Kind::Times, {Class::Integer, Class::Number, &Numbers}},
    {Kind::Times, {Class::Number, Class::Integer, &Numbers}},
    {Kind::Times, {Class::Number, Class::Number, &Numbers}},
    {Kind::Times, {Class::String, Class::Integer, &Repeat}},
    {Kind::Times, {Class::String, Class::Number, &Repeat}},
    {Kind::Times, {Class::Integer, Class::String, &Repeat}},
    {Kind::Times, {Class::Number, Class::String, &Repeat}},
    {Kind::Times, {Class::Measure, Class::Integer, &Scale}},
    {Kind::Times, {Class::Measure, Class::Number, &Scale}},
    {Kind::Times, {Class::Time, Class::Integer, &Scale}},
    {Kind::Times, {Class::Time, Class::Number, &Scale}},

    {Kind::Divide, {Class::Integer, Class::Integer, &Quotient}},
    {Kind::Divide, {Class::Integer, Class::Number, &Quotient}},
    {Kind::Divide, {Class::Number, Class::Integer, &Quotient}},
    {Kind::Divide, {Class::Number, Class::Number, &Quotient}},
    {Kind::Divide, {Class::Measure, Class::Integer, &Scale}},
    {Kind::Divide, {Class::Measure, Class::Number, &Scale}},
    {Kind::Divide, {Class::Time, Class::Integer, &Scale}},
    {Kind::Divide, {Class::Time, Class::Number, &Scale}},

    {Kind::Mod, {Class::Integer, Class::Integer, &Remainder}},

    {Kind::And, {Class::Integer, Class::Integer, &Logical}},
    {Kind::And, {Class::Integer, Class::Number, &Logical}},
    {Kind::And, {Class::Number, Class::Integer, &Logical}},
    {Kind::And, {Class::Number, Class::Number, &Logical}},
    {Kind::Or, {Class::Integer, Class::Integer, &Logical}},
    {Kind::Or, {Class::Integer, Class::Number, &Logical}},
    {Kind::Or, {Class::Number, Class::Integer, &Logical}},
    {Kind::Or, {Class::Number, Class::Number, &Logical}},

    {Kind::Sub, {Class::String, Class::Integer, &Select}},
    {Kind::Sub, {Class::String, Class::Number, &Select}},
    {Kind::Sub, {Class::String, Class::Other, &Select}},
    {Kind::Sub, {Class::Array, Class::Integer, &Select}},
    {Kind::Sub, {Class::Array, Class::Number, &Select}},
    {Kind::Sub, {Class::Array, Class::Other, &Select}},
};

// One set of rows for each of the six comparisons.
constexpr Kind kComparisons[] = {Kind::Equal,   Kind::NotEqual,     Kind::Less,
                                 Kind::Greater, Kind::GreaterEqual, Kind::LessEqual};
constexpr ClassPair kComparable[] = {
    {Class::Integer, Class::Integer, &CompareIntegers},
    {Class::Integer, Class::Number, &CompareNumbers},
    {Class::Number, Class::Integer, &CompareNumbers},
    {Class::Number, Class::Number, &CompareNumbers},
    {Class::Measure, Class::Measure, &CompareMeasures},
    {Class::Time, Class::Time, &CompareTimes},
    {Class::String, Class::String, &CompareTexts},
};

constexpr std::size_t kClasses = static_cast<std::size_t>(Class::Other) + 1;
constexpr std::size_t kKinds = kOperators.size();

class Table {
 public:
  constexpr Table() {
    for (const Row& row : kRows) Add(row.kind, row.operands);
    for (const Kind kind : kComparisons) {
      for (const ClassPair& operands : kComparable) Add(kind, operands);
    }
    for (std::size_t left = 0; left < kClasses; ++left) {
      Add(Kind::In, {static_cast<Class>(left), Class::Array, &Contains});
      for (std::size_t right = 0; right < kClasses; ++right) {
        Add(Kind::Comma, {static_cast<Class>(left), static_cast<Class>(right), &Second});
      }
    }
  }

  constexpr bool IsUnique() const { return unique_; }
  constexpr Action Find(Kind kind, Class left, Class right) const noexcept {
    const OperatorRow* const row = FindOperator(kind);
    return row != nullptr ? actions_[Index(kind, left, right)] : nullptr;
  }

 private:
  static constexpr std::size_t Index(Kind kind, Class left, Class right) {
    const auto number = static_cast<std::size_t>(static_cast<std::int32_t>(kind) - kFirstOperator);
    return (number * kClasses + static_cast<std::size_t>(left)) * kClasses +
           static_cast<std::size_t>(right);
  }
  constexpr void Add(Kind kind, const ClassPair& operands) {
    Action& action = actions_[Index(kind, operands.left, operands.right)];
    if (action != nullptr) unique_ = false;
    action = operands.action;
  }

  std::array<Action, kKinds * kClasses * kClasses> actions_{};
  bool unique_ = true;
};

constexpr Table kTable;
static_assert(kTable.IsUnique(), "no operator has two rows for the same operands");

}  // namespace

IxoMepErrorEnum ApplyBinaryTo(IxoMepExprNodeType kind, const IxoMepValue& left,
                              const IxoMepValue& right, IxoMepValue& out, String& text) {
  const Action action = kTable.Find(kind, ClassOf(left), ClassOf(right));
  if (action == nullptr) return WrongTypes(kind, left, right, text);
  try {
    return action({kind, left, right, out, text});
  } catch (const std::bad_alloc& cause) {
    return RaiseNoMemory(text, IMEPERR_TOO_LONG, cause);
  } catch (const std::length_error& cause) {
    return RaiseNoMemory(text, IMEPERR_TOO_LONG, cause);
  }
}

IxoMepErrorEnum ApplyBinary(IxoMepExprNodeType kind, const IxoMepValue& left, IxoMepValue& right,
                            String& text) {
  return ApplyBinaryTo(kind, left, right, right, text);
}

}  // namespace ixomep
