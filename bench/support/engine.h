// What the benchmarks ask of an expression engine: compile a text, then run it again and again
// with other values. One implementation is this library's (mep_engine.cpp); those of peers are
// modules of their own (../peers), because two of them may use the same symbol names.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace ixomep::bench {

// A variable's value or a result. The text lives as long as its script.
struct Value {
  enum class Kind { Integer, Real, Text } kind = Kind::Integer;
  int integer = 0;
  double real = 0;
  std::string text;

  static Value Of(int n) { return {Kind::Integer, n, 0, {}}; }
  static Value Of(double d) { return {Kind::Real, 0, d, {}}; }
  static Value Of(std::string s) { return {Kind::Text, 0, 0, std::move(s)}; }
  // Truth values and whole reals count as integers, so that engines can be compared.
  std::string Shown() const {
    if (kind == Kind::Text) return text;
    return std::to_string(kind == Kind::Integer ? static_cast<double>(integer) : real);
  }
};

class Script {
 public:
  virtual ~Script() = default;
  // Sets the variables, in the order of their names, and evaluates.
  virtual void Run(const Value* values) = 0;
  // The result of the last run.
  virtual Value Result() = 0;
};

class Engine {
 public:
  virtual ~Engine() = default;
  // An expression over these variables; null when the engine does not know the text. `setup` runs
  // once before (may be empty). hostmax(x, y) is a function of the host.
  virtual std::unique_ptr<Script> Compile(const std::string& setup, const std::string& expression,
                                          const std::vector<std::string>& names) = 0;
  // Compiles and throws away; false for a text that the engine does not know.
  virtual bool CompileOnly(const std::string& expression) = 0;
};

}  // namespace ixomep::bench
