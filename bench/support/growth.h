// How time grows with size: operations that are measured at sizes from small to large, each with
// the largest exponent that it may have. bench/growth.py fits the exponents and draws them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "ixomep/host/string.h"

namespace ixomep::bench {

// Time to the size's power of this is linear, or n log n.
inline constexpr double kLinear = 1.2;
// For what walks through many objects in memory: once the nearest cache does not hold them, a step
// takes up to ten times as long, which looks like a steeper line over the sizes that are measured.
inline constexpr double kLinearInMemory = 1.55;
// One step for each pair of things, by the meaning of the operation.
inline constexpr double kQuadratic = 2.2;
// The same through memory.
inline constexpr double kQuadraticInMemory = 2.5;

// The sizes go from `first` by factors of four to `last`.
struct Growth {
  std::string family;
  std::string operation;
  std::int64_t first;
  std::int64_t last;
  double bound = kLinear;
};

// What is measured, made for a size. Work that cannot be done throws std::runtime_error, which
// shows as an error of that size.
using Work = std::function<void()>;
using Prepare = std::function<Work(std::int64_t size)>;

void Register(const Growth& growth, const Prepare& prepare);

// A tree that is evaluated again may take another way than one that is evaluated for the first
// time, which here is compiled each time.
enum class Evaluation { First, Again };

// Work that evaluates an expression. `setup` is evaluated before; both know `n`, the size.
void RegisterExpression(const Growth& growth, Evaluation evaluation, const std::string& setup,
                        const std::string& expression);

// `count` times the part.
std::string Repeated(const std::string& part, std::int64_t count);
// The part for each number below `count`, every "#" in it replaced by the number.
std::string Numbered(const std::string& part, std::int64_t count);
// Throws std::runtime_error with the text unless the code is 0.
void Check(int code, const String& text);

// Runs what was registered with the arguments of Google Benchmark.
int RunGrowth(int argc, char** argv);

}  // namespace ixomep::bench
