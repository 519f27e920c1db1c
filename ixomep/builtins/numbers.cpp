// Built-in functions on numbers: power, extremes, absolute value, chance, the tick counter, and
// the sixteen mathematical functions of one number with the rows that name them.
#include <algorithm>
#include <cmath>

#include "ixomep/builtins/call.h"
#include "ixomep/builtins/handlers.h"
#include "ixomep/host/clock.h"
#include "ixomep/host/numbers.h"

namespace ixomep {
namespace {

bool BothIntegers(const Call& call) {
  return call.TypeOf(0) == IxoMepValueType::Integer && call.TypeOf(1) == IxoMepValueType::Integer;
}

// The smaller number; something that is not a number loses against a number.
double SmallerReal(double a, double b) {
  if (std::isnan(a)) return b;
  return b < a ? b : a;
}

double LargerReal(double a, double b) {
  if (std::isnan(a)) return b;
  return b > a ? b : a;
}

}  // namespace

namespace builtins {

IxoMepErrorEnum Pow(Call& call) { return call.Return(std::pow(call.Real(0), call.Real(1))); }

IxoMepErrorEnum Min(Call& call) {
  if (BothIntegers(call)) return call.Return(std::min(call.Int(0), call.Int(1)));
  return call.Return(SmallerReal(call.Real(0), call.Real(1)));
}

IxoMepErrorEnum Max(Call& call) {
  if (BothIntegers(call)) return call.Return(std::max(call.Int(0), call.Int(1)));
  return call.Return(LargerReal(call.Real(0), call.Real(1)));
}

IxoMepErrorEnum Abs(Call& call) {
  if (call.TypeOf(0) != IxoMepValueType::Integer) return call.Return(std::fabs(call.Real(0)));
  const std::int32_t number = call.Int(0);
  // Meant: the most negative integer has no opposite and stays itself.
  if (number >= 0) return call.Return(number);
  return call.Return(static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(number)));
}

IxoMepErrorEnum Random(Call& call) { return call.Return(RandomFifteenBits() * 3.0517578125e-5); }

IxoMepErrorEnum GetTickCount(Call& call) {
  return call.Return(static_cast<std::int32_t>(::GetTickCount()));
}

}  // namespace builtins

namespace {

template <double (*Function)(double)>
IxoMepErrorEnum Apply(Call& call) {
  return call.Return(Function(call.Real(0)));
}

template <double (*Function)(double)>
consteval BuiltinRow MathRow(const char* name) {
  return {name, nullptr, &Apply<Function>, "Number -> Real"};
}

// Meant: halves go upwards, those of negative numbers too.
double RoundHalfUp(double x) { return std::floor(x + 0.5); }

// What a name that is none of the sixteen gives.
double Zero(double) { return 0.0; }

}  // namespace

constinit const std::array<BuiltinRow, 16> kMathRows = {
    MathRow<[](double x) { return std::acos(x); }>("acos"),
    MathRow<[](double x) { return std::asin(x); }>("asin"),
    MathRow<[](double x) { return std::atan(x); }>("atan"),
    MathRow<[](double x) { return std::cos(x); }>("cos"),
    MathRow<[](double x) { return std::cosh(x); }>("cosh"),
    MathRow<[](double x) { return std::exp(x); }>("exp"),
    MathRow<[](double x) { return std::log(x); }>("log"),
    MathRow<[](double x) { return std::log10(x); }>("log10"),
    MathRow<[](double x) { return std::sin(x); }>("sin"),
    MathRow<[](double x) { return std::sinh(x); }>("sinh"),
    MathRow<[](double x) { return std::tan(x); }>("tan"),
    MathRow<[](double x) { return std::tanh(x); }>("tanh"),
    MathRow<[](double x) { return std::sqrt(x); }>("sqrt"),
    MathRow<[](double x) { return std::ceil(x); }>("ceil"),
    MathRow<[](double x) { return std::floor(x); }>("floor"),
    MathRow<RoundHalfUp>("round"),
};

}  // namespace ixomep

IxoMepErrorEnum IxoMepExprNode::_math(const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                                      const String& name, IxoMepValue*& result, String& errorText,
                                      bool strict) const {
  using namespace ixomep;
  for (const BuiltinRow& row : kMathRows) {
    if (name == row.name) return RunHandler(row, *this, parser, scope, result, errorText, strict);
  }
  const BuiltinRow unknown = {name.c_str(), nullptr, &Apply<Zero>, "Number -> Real"};
  return RunHandler(unknown, *this, parser, scope, result, errorText, strict);
}
