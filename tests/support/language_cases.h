// Cases written in the language itself. A case file holds one case a line:
//
//     7 MOD 2                 #=> real 1.0
//     x := "a", x + 1         #=> error 21
//     "a" + 1                 #=> error 21: +(string, integer)
//     while(0, 1)             #=> no result
//
// Left of "#=>" stands an expression (for the language the rest is a comment), right of it the
// expected outcome: the type and the value as the language writes it, a real with its point;
// "undefined"; "no result"; "error N", or "error N: part" when the message has to contain that
// part. Every case has an empty scope of its own.
//
// Empty lines and lines that begin with "#" are skipped, except for
//     #! strict               the cases below are evaluated strictly,
//     #! plain                as usual again.
// A case is evaluated three times, each time from the start, because what is evaluated again may
// take a faster way; all must agree.
#pragma once

#include <string>
#include <vector>

#include "tests/support/eval.h"

namespace ixomep::test {

struct LanguageCase {
  std::string file;
  int line = 0;
  std::string expression;
  std::string expected;
  Mode mode = Mode::Plain;
};

// The cases of a file; a line that is neither a case nor to be skipped is a test failure.
std::vector<LanguageCase> ReadLanguageCases(const std::string& path);
// The case files of a folder, in the order of their names.
std::vector<std::string> FindCaseFiles(const std::string& folder);
// Evaluates the case and reports a difference with file and line.
void CheckLanguageCase(const LanguageCase& language_case);

}  // namespace ixomep::test
