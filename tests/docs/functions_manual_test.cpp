// Holds docs/functions.md against the table of built-in functions and runs every example in it.
// An entry is a heading "### name", a line "Signature: `...`", and blocks of examples: lines of
// an expression up to "#=>", which is followed by what comes out.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/table.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/slot.h"

namespace ixomep {
namespace {

constexpr const char* kManual = "docs/functions.md";  // tests run in the root of the sources
constexpr std::string_view kOutcome = "#=>";

struct Example {
  int line;
  std::string expression;
  std::string outcome;
};

struct Entry {
  std::string name;
  std::string signature;
  std::vector<std::vector<Example>> blocks;
};

std::string Trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return "";
  return std::string(text.substr(begin, text.find_last_not_of(' ') - begin + 1));
}

// Reads the manual line by line.
class ManualReader {
 public:
  std::vector<Entry> Read() {
    std::ifstream file(kManual);
    EXPECT_TRUE(file) << kManual << " cannot be read";
    for (std::string line; std::getline(file, line);) {
      ++line_;
      if (in_block_) {
        TakeBlockLine(line);
      } else {
        TakeTextLine(line);
      }
    }
    EXPECT_FALSE(in_block_) << "the last block of examples is not closed";
    return std::move(entries_);
  }

 private:
  void TakeTextLine(std::string_view line) {
    constexpr std::string_view kHeading = "### ";
    constexpr std::string_view kSignature = "Signature: `";
    if (line.starts_with(kHeading)) {
      entries_.push_back({std::string(line.substr(kHeading.size())), "", {}});
    } else if (entries_.empty()) {
      EXPECT_FALSE(line.starts_with("```")) << "an example in front of the first entry";
    } else if (line.starts_with(kSignature)) {
      entries_.back().signature = line.substr(kSignature.size());
      entries_.back().signature.pop_back();
    } else if (line == "```mep") {
      in_block_ = true;
      entries_.back().blocks.emplace_back();
    }
  }

  void TakeBlockLine(const std::string& line) {
    if (line == "```") {
      EXPECT_EQ(pending_, "") << "line " << line_ << ": an example without an outcome";
      in_block_ = false;
      return;
    }
    const std::size_t at = line.find(kOutcome);
    pending_ += line.substr(0, at) + "\n";
    if (at == std::string::npos) return;
    entries_.back().blocks.back().push_back(
        {line_, pending_, Trimmed(std::string_view(line).substr(at + kOutcome.size()))});
    pending_.clear();
  }

  int line_ = 0;
  bool in_block_ = false;
  std::string pending_;
  std::vector<Entry> entries_;
};

std::vector<Entry> Manual() { return ManualReader().Read(); }

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
  for (const Entry& entry : Manual()) described.push_back(entry.name);
  std::sort(described.begin(), described.end());
  std::vector<std::string> existing;
  for (const auto& [name, signature] : Functions()) existing.push_back(name);
  EXPECT_EQ(existing.size(), 68U + 16U);
  EXPECT_EQ(described, existing);
}

TEST(FunctionsManual, Signatures_are_those_of_the_table) {
  const std::map<std::string, std::string> functions = Functions();
  for (const Entry& entry : Manual()) {
    const auto found = functions.find(entry.name);
    if (found == functions.end()) continue;  // told by the test above
    EXPECT_EQ(entry.signature, found->second) << entry.name;
  }
}

TEST(FunctionsManual, Every_entry_has_an_example_of_its_function) {
  for (const Entry& entry : Manual()) {
    const std::string call = entry.name == "{" || entry.name == "{:" ? "{" : entry.name + "(";
    bool found = false;
    for (const auto& block : entry.blocks) {
      for (const Example& example : block) {
        found = found || example.expression.find(call) != std::string::npos;
      }
    }
    EXPECT_TRUE(found) << entry.name;
  }
}

TEST(FunctionsManual, Every_example_gives_what_is_printed) {
  int examples = 0;
  for (const Entry& entry : Manual()) {
    for (const auto& block : entry.blocks) {
      IxoMepValueSet scope;
      for (const Example& example : block) {
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
