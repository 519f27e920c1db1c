// Questions to ask of a text that has been read: a parser over it, variables, and what comes out.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/slot.h"
#include "tests/support/test_host.h"

namespace ixomep::test {

using ParserPtr = std::unique_ptr<IxoMepParser>;
using ExpressionPtr = std::unique_ptr<IxoMepExpressionParser>;

// A parser that has read the text without error.
inline ParserPtr ReadText(const String& text, const String& context = "test") {
  auto parser = std::make_unique<IxoMepParser>(text, context);
  EXPECT_EQ(parser->Parse(), IMEPERR_NONE) << parser->GetErrorText().c_str();
  return parser;
}

// A parser that could not read the text.
inline ParserPtr FailText(const String& text, const String& context = "test") {
  auto parser = std::make_unique<IxoMepParser>(text, context);
  EXPECT_NE(parser->Parse(), IMEPERR_NONE);
  return parser;
}

inline void SetVariable(IxoMepValueSet& scope, const char* name, const IxoMepValue& value) {
  scope.OldSetValue(name, value, /*local=*/true);
}

// What an expression object gives in a scope, as text; the code after "error" when it fails.
inline std::string ResultOf(const IxoMepExpressionParser* expression, IxoMepValueSet* scope) {
  if (expression == nullptr) return "no expression";
  IxoMepValue* slot = nullptr;
  String error_text;
  const IxoMepErrorEnum code =
      expression->Evaluate(scope, slot, error_text, /*strict=*/false, /*ownScope=*/true);
  const ValuePtr result(slot);
  if (code != IMEPERR_NONE) return "error " + std::to_string(code);
  return std::string((result ? *result : IxoMepValue()).GetText(/*period=*/true).view());
}

// A host's own classes of expression objects and parsers.
class OwnExpression : public IxoMepExpressionParser {
 public:
  IxoMepExpressionParser* CreateCopy() const override { return new OwnExpression(*this); }
};

class OwnParser : public IxoMepParser {
 public:
  using IxoMepParser::IxoMepParser;
  IxoMepExpressionParser* NewExprParser() override { return new OwnExpression; }
};

}  // namespace ixomep::test
