// Runs the case files of this folder; their format is described in tests/support/language_cases.h.
#include "tests/support/language_cases.h"

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>

namespace ixomep::test {
namespace {

// Tests run in the root of the repository.
constexpr const char* kFolder = "tests/language";

class LanguageCases : public testing::TestWithParam<std::string> {};

TEST_P(LanguageCases, Every_line_gives_what_it_says) {
  const std::vector<LanguageCase> cases = ReadLanguageCases(GetParam());
  EXPECT_FALSE(cases.empty());
  for (const LanguageCase& language_case : cases) CheckLanguageCase(language_case);
}

std::string NameOf(const testing::TestParamInfo<std::string>& info) {
  std::string name = std::filesystem::path(info.param).stem().string();
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Files, LanguageCases, testing::ValuesIn(FindCaseFiles(kFolder)), NameOf);

}  // namespace
}  // namespace ixomep::test
