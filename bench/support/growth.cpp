// Measuring of growth with Google Benchmark: "<family>, <operation>/<size>", the bound as a
// counter. See growth.h.
#include "bench/support/growth.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/slot.h"

namespace ixomep::bench {

namespace {

constexpr int kFactor = 4;

void Evaluate(const IxoMepExpressionParser& expression, IxoMepValueSet& scope) {
  String text;
  IxoMepValue* result = nullptr;
  const int code = expression.Evaluate(&scope, result, text, false, false);
  const ValuePtr owner(result);
  Check(code, text);
  benchmark::DoNotOptimize(result);
}

void Compile(IxoMepExpressionParser& expression, const std::string& text) {
  String error;
  Check(expression.SetExpression(String(text), error), error);
}

void Measure(benchmark::State& state, const Prepare& prepare, double bound) {
  try {
    const Work work = prepare(state.range(0));
    work();  // takes memory from the system, which comes once
    for (auto _ : state) work();
  } catch (const std::runtime_error& failure) {
    state.SkipWithError(failure.what());
  }
  state.counters["bound"] = bound;
}

}  // namespace

void Check(int code, const String& text) {
  if (code != 0) throw std::runtime_error(std::string(text.view()));
}

std::string Repeated(const std::string& part, std::int64_t count) {
  std::string text;
  for (std::int64_t i = 0; i < count; ++i) text += part;
  return text;
}

std::string Numbered(const std::string& part, std::int64_t count) {
  std::string text;
  for (std::int64_t i = 0; i < count; ++i) {
    for (const char byte : part) {
      if (byte == '#') {
        text += std::to_string(i);
      } else {
        text += byte;
      }
    }
  }
  return text;
}

void Register(const Growth& growth, const Prepare& prepare) {
  const std::string name = growth.family + ", " + growth.operation;
  auto* const benchmark = benchmark::RegisterBenchmark(
      name.c_str(),
      [prepare, bound = growth.bound](benchmark::State& state) { Measure(state, prepare, bound); });
  benchmark->Unit(benchmark::kMicrosecond);
  for (std::int64_t size = growth.first; size <= growth.last; size *= kFactor) {
    benchmark->Arg(size);
  }
}

void RegisterExpression(const Growth& growth, Evaluation evaluation, const std::string& setup,
                        const std::string& expression) {
  Register(growth, [evaluation, setup, expression](std::int64_t size) -> Work {
    const auto scope = std::make_shared<IxoMepValueSet>();
    scope->OldSetValue("n", IxoMepValue(static_cast<int>(size)), true);
    if (!setup.empty()) {
      IxoMepExpressionParser before;
      Compile(before, setup);
      Evaluate(before, *scope);
    }
    if (evaluation == Evaluation::Again) {
      const auto compiled = std::make_shared<IxoMepExpressionParser>();
      Compile(*compiled, expression);
      return [scope, compiled] { Evaluate(*compiled, *scope); };
    }
    return [scope, expression] {
      IxoMepExpressionParser fresh;
      Compile(fresh, expression);
      Evaluate(fresh, *scope);
    };
  });
}

int RunGrowth(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace ixomep::bench
