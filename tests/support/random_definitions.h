// Random definition texts for tests that compare two ways of reading: every construct of the
// grammar, and the same with random damage. And the report of all that a reading gave.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/parser/parser.h"

namespace ixomep::test {

class RandomDefinitions {
 public:
  explicit RandomDefinitions(std::uint32_t seed) : random_(seed) {}

  // A text that can be read, most of the time.
  std::string Next();
  // The text with a few bytes changed, inserted or removed, or its end cut off.
  std::string Damaged(std::string text);

 private:
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
  bool Chance(int percent) { return Below(100) < percent; }
  std::string Pick(const std::vector<std::string_view>& choices) {
    return std::string(choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))]);
  }
  std::string Elements(int depth, bool is_body);
  std::string Element(int depth);
  std::string Attribute(int depth);
  std::string Value();
  std::string Gap();
  std::string Body(int depth) { return "{" + Gap() + Elements(depth + 1, true) + Gap() + "}"; }

  std::mt19937 random_;
  bool is_rare_ = false;
};

// Everything that queries tell about a parser and its bodies, a line each. pointers_first: the
// elements are asked for as objects before anything else is asked.
std::string ReportOf(IxoMepParser& parser, bool pointers_first);

}  // namespace ixomep::test
