// An application that brings its own host: the core links without the default host and without
// any library, and evaluates expressions with the texts that this host gives.
#include <cstdio>
#include <memory>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/host.h"
#include "ixomep/values/value.h"

namespace {

class StubHost : public IxoHost {
 public:
  String ResourceText(std::int32_t number) override {
    return number == 16118 ? String("stub: division by zero") : String();
  }
};

bool Check(bool holds, const char* what) {
  if (!holds) std::printf("failed: %s\n", what);
  return holds;
}

bool EvaluatesWithVariables() {
  IxoMepValueSet scope;
  scope.OldSetValue("w", IxoMepValue(20), true);
  IxoMepExpressionParser expression;
  String error_text;
  IxoMepValue* result = nullptr;
  bool ok =
      Check(expression.SetExpression("cond(w > 1, w * 2 + 2, 0)", error_text) == 0, "compile");
  ok &= Check(expression.Evaluate(&scope, result, error_text, true, true) == 0, "evaluate");
  const std::unique_ptr<IxoMepValue> owner(result);
  return ok && Check(result != nullptr && result->GetInt() == 42, "the value is 42");
}

bool ReportsWithTheTextsOfTheHost() {
  IxoMepExpressionParser expression;
  String error_text;
  IxoMepValue* result = nullptr;
  bool ok = Check(expression.SetExpression("1 / 0", error_text) == 0, "compile 1 / 0");
  ok &= Check(expression.Evaluate(nullptr, result, error_text, true, false) == 18, "code 18");
  return ok && Check(error_text == "stub: division by zero", "the text is the host's");
}

}  // namespace

namespace ixomep {

IxoHost* DefaultHost() noexcept {
  static StubHost host;
  return &host;
}

}  // namespace ixomep

int main() {
  const bool evaluates = EvaluatesWithVariables();
  const bool reports = ReportsWithTheTextsOfTheHost();
  return evaluates && reports ? 0 : 1;
}
