// The relations of values: equality within one type, the order of numbers and of types, and the
// order of map keys. There is no structural comparison.
#include <array>

#include "ixomep/host/assertion.h"
#include "ixomep/values/units.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_compare.h"
#include "ixomep/values/value_rep.h"

using ixomep::ValueAccess;
using Type = IxoMepValueType;

namespace ixomep {

std::int32_t TypeRank(IxoMepValueType type) noexcept {
  // Numbers stand before strings, although their tags do not.
  constexpr std::array<std::int32_t, 4> kRanks = {0, 3, 1, 2};
  const auto number = static_cast<std::int32_t>(type);
  return number >= 0 && number < 4 ? kRanks[static_cast<std::size_t>(number)] : number;
}

bool IsLess(const IxoMepValue& a, const IxoMepValue& b) {
  if (a.GetType() == Type::String && b.GetType() == Type::String) {
    return ValueAccess::Text(a) < ValueAccess::Text(b);
  }
  if (a.IsNum() && b.IsNum()) return a.GetReal() < b.GetReal();
  if (a.GetType() != b.GetType()) return TypeRank(a.GetType()) < TypeRank(b.GetType());
  if (a.GetType() == Type::Measure) return a.GetTMM() < b.GetTMM();
  if (a.GetType() == Type::Time) return ValueAccess::Number(a) < ValueAccess::Number(b);
  ReportAssertion("values of this type have no order");
  return false;
}

}  // namespace ixomep

bool operator==(const IxoMepValue& a, const IxoMepValue& b) {
  if (a.GetType() != b.GetType()) return false;
  switch (a.GetType()) {
    case Type::String:
      return ValueAccess::Text(a) == ValueAccess::Text(b);
    case Type::Integer:
      return ValueAccess::Integer(a) == ValueAccess::Integer(b);
    case Type::Real:
    case Type::Time:
      return ValueAccess::Number(a) == ValueAccess::Number(b);
    case Type::Measure:
      return a.GetTMM() == b.GetTMM();
    default:
      return false;  // Meant: not even equal to itself.
  }
}

bool operator<(const IxoMepValue& a, const IxoMepValue& b) { return ixomep::IsLess(a, b); }
bool operator>(const IxoMepValue& a, const IxoMepValue& b) { return ixomep::IsLess(b, a); }

bool IxoMepValueLess::operator()(const IxoMepValue* a, const IxoMepValue* b) const {
  if (a == nullptr || b == nullptr) return a == nullptr && b != nullptr;
  return ixomep::IsLess(*a, *b);
}
