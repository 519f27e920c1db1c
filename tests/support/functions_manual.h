// The manual of the functions, docs/functions.md, read for tests. An entry is a heading "### name",
// a line "Signature: `...`", and blocks of examples: lines of an expression up to "#=>", which is
// followed by what comes out. The lines of one block share their variables.
#pragma once

#include <string>
#include <vector>

namespace ixomep::test {

inline constexpr const char* kManual = "docs/functions.md";  // tests run in the root of the sources

struct ManualExample {
  int line;
  std::string expression;
  std::string outcome;
};

struct ManualEntry {
  std::string name;
  std::string signature;
  std::vector<std::vector<ManualExample>> blocks;
};

std::vector<ManualEntry> ReadManual();

}  // namespace ixomep::test
