// Random texts of the expression language for tests that compare two ways of evaluating: all
// operators, constants of all types, names that may be bound or not, subscripts, control, lambdas,
// functions of the host. Every text compiles and comes to an end.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace ixomep::test {

class RandomExpressions {
 public:
  explicit RandomExpressions(std::uint32_t seed) : random_(seed) {}

  // A sequence of a few expressions. The names a, m, s, i, r, t, u, v, w and f may be bound by the
  // caller; so may the functions hsum(a, b), hset(value), hunset(), hfail() and htree(code).
  std::string Next();

 private:
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
  bool Chance(int percent) { return Below(100) < percent; }
  std::string Pick(const std::vector<std::string_view>& choices) {
    return std::string(choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))]);
  }

  std::string Constant();
  std::string Name();
  std::string Leaf();
  std::string Number(int depth);
  std::string Text(int depth);
  std::string Operator(int depth);
  std::string Subscript(int depth);
  std::string Control(int depth);
  std::string Loop(int depth);
  std::string Assignment(int depth);
  std::string Sequence(int depth);
  std::string Attempt(int depth);
  std::string Lambda(int depth);
  std::string Call(int depth);
  std::string Recursion(int depth);
  std::string Library(int depth);
  std::string Expression(int depth);

  std::mt19937 random_;
  int counters_ = 0;  // names of loop counters that nothing else assigns to
  int loops_ = 0;     // loops and recursions around the present place
};

}  // namespace ixomep::test
