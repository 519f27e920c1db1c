// Reads and checks case files; see language_cases.h.
#include "tests/support/language_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace ixomep::test {

namespace {

constexpr std::string_view kArrow = "#=>";

std::string Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

std::string Where(const LanguageCase& language_case) {
  return language_case.file + ":" + std::to_string(language_case.line) + ": " +
         language_case.expression;
}

// "error N: part" agrees with every message that contains the part.
bool Agrees(const Outcome& outcome, const std::string& expected) {
  const std::size_t colon = expected.find(": ");
  if (!expected.starts_with("error ") || colon == std::string::npos) {
    return outcome.Shown() == expected;
  }
  return outcome.Shown() == expected.substr(0, colon) &&
         std::string(outcome.text.view()).find(expected.substr(colon + 2)) != std::string::npos;
}

}  // namespace

std::vector<LanguageCase> ReadLanguageCases(const std::string& path) {
  std::vector<LanguageCase> cases;
  std::ifstream file(path);
  EXPECT_TRUE(file.is_open()) << path;
  Mode mode = Mode::Plain;
  std::string text;
  for (int line = 1; std::getline(file, text); ++line) {
    const std::string trimmed = Trimmed(text);
    const std::size_t arrow = text.rfind(kArrow);
    if (trimmed == "#! strict") {
      mode = Mode::Strict;
    } else if (trimmed == "#! plain") {
      mode = Mode::Plain;
    } else if (trimmed.empty() || trimmed.starts_with('#')) {
      continue;
    } else if (arrow == std::string::npos) {
      ADD_FAILURE() << path << ":" << line << ": a case needs \"#=>\"";
    } else {
      cases.push_back({path, line, Trimmed(text.substr(0, arrow)),
                       Trimmed(text.substr(arrow + kArrow.size())), mode});
    }
  }
  return cases;
}

std::vector<std::string> FindCaseFiles(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".mep") files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void CheckLanguageCase(const LanguageCase& language_case) {
  IxoMepExpressionParser parser;
  for (int round = 1; round <= 3; ++round) {
    IxoMepValueSet scope;
    Outcome outcome;
    if (round == 1) {
      outcome = EvalWith(parser, language_case.expression, &scope, language_case.mode);
      if (parser.GetTree() == nullptr) round = 3;  // a text that does not compile
    } else {
      IxoMepValue* slot = nullptr;
      outcome.code = parser.Evaluate(&scope, slot, outcome.text, language_case.mode == Mode::Strict,
                                     /*ownScope=*/false);
      outcome.value.reset(slot);
    }
    EXPECT_TRUE(Agrees(outcome, language_case.expected))
        << Where(language_case) << "\n  expected " << language_case.expected << "\n  gives    "
        << outcome.ShownWithText() << " (evaluation " << round << ")";
  }
}

}  // namespace ixomep::test
