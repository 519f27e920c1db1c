// Evaluates texts for tests; see eval.h.
#include "tests/support/eval.h"

#include <gtest/gtest.h>

#include "ixomep/values/string_address_map.h"

namespace ixomep::test {

std::string ShownValue(const IxoMepValue* value) {
  if (value == nullptr) return "null";
  if (value->GetType() == IxoMepValueType::Undefined) return "undefined";
  return std::string(IxoMepValue::GetTypeName(value->GetType()).view()) + " " +
         std::string(value->GetText(/*period=*/true).view());
}

std::string Outcome::Shown() const {
  if (code != IMEPERR_NONE) return "error " + std::to_string(code);
  return value != nullptr ? ShownValue(value.get()) : "no result";
}

std::string Outcome::ShownWithText() const {
  return code != IMEPERR_NONE ? Shown() + ": " + std::string(text.view()) : Shown();
}

Outcome EvalWith(IxoMepExpressionParser& parser, std::string_view text, IxoMepValueSet* scope,
                 Mode mode) {
  Outcome outcome;
  outcome.code = parser.SetExpression(String(text), outcome.text);
  if (outcome.code != IMEPERR_NONE) return outcome;
  IxoMepValue* slot = nullptr;
  outcome.code =
      parser.Evaluate(scope, slot, outcome.text, mode == Mode::Strict, /*ownScope=*/false);
  outcome.value.reset(slot);
  if (outcome.code != IMEPERR_NONE) {
    EXPECT_EQ(slot, nullptr) << "a failure leaves no value: " << text;
  }
  return outcome;
}

Outcome Eval(std::string_view text, IxoMepValueSet* scope, Mode mode) {
  IxoMepExpressionParser parser;
  return EvalWith(parser, text, scope, mode);
}

Outcome Eval(std::string_view text, Mode mode) {
  IxoMepValueSet scope;
  return Eval(text, &scope, mode);
}

std::string Shown(std::string_view text, IxoMepValueSet* scope, Mode mode) {
  return Eval(text, scope, mode).Shown();
}

std::string Shown(std::string_view text, Mode mode) { return Eval(text, mode).Shown(); }

IxoMepValue* Variable(const IxoMepValueSet& scope, std::string_view name) {
  return scope._find(Intern(name));
}

std::string ShownVariable(const IxoMepValueSet& scope, std::string_view name) {
  return ShownValue(Variable(scope, name));
}

IxoMepValue ValueOf(std::string_view text) {
  const Outcome outcome = Eval(text);
  EXPECT_NE(outcome.value, nullptr) << text << " gives " << outcome.ShownWithText();
  return outcome.value != nullptr ? *outcome.value : IxoMepValue();
}

}  // namespace ixomep::test
