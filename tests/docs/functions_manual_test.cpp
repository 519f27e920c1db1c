// Holds docs/functions.md against the table of built-in functions and runs every example in it.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/table.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/slot.h"
#include "tests/support/functions_manual.h"

namespace ixomep {
namespace {

using test::kManual;
using test::ManualEntry;
using test::ManualExample;
using test::ReadManual;

// Name and signature of everything that can be called.
std::map<std::string, std::string> Functions() {
  std::map<std::string, std::string> functions;
  for (const BuiltinRow& row : BuiltinRows()) functions.emplace(row.name, row.signature.Text());
  for (const BuiltinRow& row : kMathRows) functions.emplace(row.name, row.signature.Text());
  return functions;
}

// What comes out, as the manual shows it.
std::string OutcomeOf(const std::string& expression, IxoMepValueSet& scope) {
  IxoMepExpressionParser parser;
  String text;
  IxoMepErrorEnum code = parser.SetExpression(expression, text);
  IxoMepValue* slot = nullptr;
  if (code == IMEPERR_NONE) code = parser.Evaluate(&scope, slot, text, false, false);
  const ValuePtr result(slot);
  if (code != IMEPERR_NONE) return "error " + std::to_string(code);
  return std::string((result ? *result : IxoMepValue()).GetText(/*period=*/true).view());
}

TEST(FunctionsManual, Every_function_has_one_entry_and_every_entry_is_a_function) {
  std::vector<std::string> described;
  for (const ManualEntry& entry : ReadManual()) described.push_back(entry.name);
  std::sort(described.begin(), described.end());
  std::vector<std::string> existing;
  for (const auto& [name, signature] : Functions()) existing.push_back(name);
  EXPECT_EQ(existing.size(), 68U + 16U);
  EXPECT_EQ(described, existing);
}

TEST(FunctionsManual, Signatures_are_those_of_the_table) {
  const std::map<std::string, std::string> functions = Functions();
  for (const ManualEntry& entry : ReadManual()) {
    const auto found = functions.find(entry.name);
    if (found == functions.end()) continue;  // told by the test above
    EXPECT_EQ(entry.signature, found->second) << entry.name;
  }
}

TEST(FunctionsManual, Every_entry_has_an_example_of_its_function) {
  for (const ManualEntry& entry : ReadManual()) {
    const std::string call = entry.name == "{" || entry.name == "{:" ? "{" : entry.name + "(";
    bool found = false;
    for (const auto& block : entry.blocks) {
      for (const ManualExample& example : block) {
        found = found || example.expression.find(call) != std::string::npos;
      }
    }
    EXPECT_TRUE(found) << entry.name;
  }
}

TEST(FunctionsManual, Every_example_gives_what_is_printed) {
  int examples = 0;
  for (const ManualEntry& entry : ReadManual()) {
    for (const auto& block : entry.blocks) {
      IxoMepValueSet scope;
      for (const ManualExample& example : block) {
        ++examples;
        EXPECT_EQ(OutcomeOf(example.expression, scope), example.outcome)
            << kManual << ":" << example.line << ": " << example.expression;
      }
    }
  }
  EXPECT_GE(examples, 68 + 16);
}

}  // namespace
}  // namespace ixomep
