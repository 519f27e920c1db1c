// Compiling: a mixed corpus of short expressions, one after the other, each thrown away again (the
// time is that of the whole corpus of eight), and long texts of one shape each, for this library
// alone: bytes of text in a second for compiling, releasing, copying and printing, and the bytes
// of tree that a byte of text becomes. A rate that falls with the size is a cost that is not
// linear.
#include <array>
#include <memory>

#include "bench/support/engines.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/host/memory_budget.h"

namespace {

using ixomep::bench::Dialect;
using ixomep::bench::NamedEngine;

using Corpus = std::array<std::string, 8>;

const Corpus kMep = {"(w * 2 + h) / 3 - 1.5 * k",
                     "a > 3 AND b < 10 OR NOT c",
                     "name + \" (\" + STR n + \")\"",
                     "cond(x < 10, \"small\", x < 100, \"medium\", \"large\")",
                     "max(x, y)",
                     "a[i] + a[j]",
                     "m[\"width\"]",
                     "total := total + price * count, total"};
const Corpus kLua = {"return (w * 2 + h) / 3 - 1.5 * k",
                     "return a > 3 and b < 10 or not c",
                     "return name .. ' (' .. n .. ')'",
                     "return x < 10 and 'small' or x < 100 and 'medium' or 'large'",
                     "return max(x, y)",
                     "return a[i] + a[j]",
                     "return m['width']",
                     "total = total + price * count return total"};
const Corpus kScript = {"return (w * 2 + h) / 3 - 1.5 * k;",
                        "return a > 3 && b < 10 || !c;",
                        "return name + ' (' + n + ')';",
                        "return x < 10 ? 'small' : x < 100 ? 'medium' : 'large';",
                        "return max(x, y);",
                        "return a[i] + a[j];",
                        "return m['width'];",
                        "total = total + price * count; return total;"};

const Corpus& CorpusOf(Dialect dialect) {
  switch (dialect) {
    case Dialect::Mep:
      return kMep;
    case Dialect::Lua:
      return kLua;
    default:
      return kScript;
  }
}

void CompileAll(benchmark::State& state, const NamedEngine& named) {
  for (auto _ : state) {
    for (const std::string& text : CorpusOf(named.dialect)) {
      if (!named.engine->CompileOnly(text)) {
        state.SkipWithError(text.c_str());
        return;
      }
    }
  }
}

// --- Long texts ---------------------------------------------------------------------------------

// A text of one shape: `head`, then `joint` between pieces, the first of number 0, then `tail`.
struct Shape {
  const char* name;
  const char* head;
  std::string (*piece)(std::size_t number);
  const char* joint;
  const char* tail;
};

std::string Repeated(std::string_view part, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += part;
  return text;
}

const Shape kShapes[] = {
    {"sum", "", [](std::size_t) { return std::string("x"); }, "+", ""},
    {"sequence", "",
     [](std::size_t n) {
       return n % 2 == 0 ? std::string("total := count * 2") : std::string("notify(total, 1)");
     },
     ", ", ""},
    {"array", "{", [](std::size_t n) { return std::to_string(n % 100000); }, ",", "}"},
    {"parentheses", "", [](std::size_t) { return Repeated("(", 200) + "x" + Repeated(")", 200); },
     "+", ""},
    {"brackets", "", [](std::size_t) { return Repeated("a[", 200) + "x" + Repeated("]", 200); },
     "+", ""},
    {"braces", "", [](std::size_t) { return Repeated("{", 200) + "x" + Repeated("}", 200); }, "+",
     ""},
    {"nested calls", "", [](std::size_t) { return Repeated("f(", 200) + "x" + Repeated(")", 200); },
     "+", ""},
    {"nested calls, three names", "",
     [](std::size_t) { return Repeated("f(g(h(", 1000) + "x" + Repeated(")", 3000); }, "+", ""},
    {"nested conditions", "",
     [](std::size_t) { return Repeated("cond(x < 10, ", 40) + "1" + Repeated(", 0)", 40); }, "+",
     ""},
    {"wide call", "f(", [](std::size_t) { return std::string("x"); }, ",", ")"},
    {"operators", "",
     [](std::size_t n) {
       static const char* const kTerms[] = {"a * 2", "b - c / 4", "count MOD 7", "LEN name",
                                            "(NOT done)"};
       return std::string(kTerms[n % 5]);
     },
     " + ", ""},
    {"signs", "", [](std::size_t) { return Repeated("-", 50) + "x"; }, "+", ""},
    {"blocks", "", [](std::size_t) { return std::string("for(i, 0, n){x := x + i}"); }, ", ", ""},
    {"lambdas", "", [](std::size_t) { return std::string("lambda(a, b, a + b)"); }, ", ", ""},
    {"one long string", "\"", [](std::size_t) { return std::string("lorem ipsum "); }, "", "\""},
    {"strings", "{", [](std::size_t n) { return "\"text number " + std::to_string(n) + "\""; },
     ", ", "}"},
    {"names", "", [](std::size_t n) { return "name" + std::to_string(n); }, "+", ""},
    {"digits", "{", [](std::size_t n) { return std::to_string(n % 10); }, ",", "}"},
    {"numbers", "",
     [](std::size_t n) {
       const std::string number = std::to_string(n % 10000);
       return n % 3 == 0 ? number : n % 3 == 1 ? number + ".25" : number + "cm";
     },
     "*", ""},
};

String TextOf(const Shape& shape, std::size_t bytes) {
  std::string text = shape.head + shape.piece(0);
  for (std::size_t number = 1; text.size() < bytes; ++number) {
    text += shape.joint + shape.piece(number);
  }
  return String(text + shape.tail);
}

using Expression = std::unique_ptr<IxoMepExpressionParser>;

// Null, and the benchmark marked as failed, when the text has an error.
Expression Compiled(benchmark::State& state, const String& text) {
  auto expression = std::make_unique<IxoMepExpressionParser>();
  String error;
  if (expression->SetExpression(text, error) == IMEPERR_NONE) return expression;
  state.SkipWithError(error.c_str());
  return nullptr;
}

void CompileLong(benchmark::State& state, const String& text) {
  for (auto _ : state) {
    Expression expression = Compiled(state, text);
    state.PauseTiming();
    expression.reset();
    state.ResumeTiming();
  }
  const std::size_t before = ixomep::MemoryBudget::InUse();
  const Expression expression = Compiled(state, text);
  state.counters["tree bytes a byte"] =
      static_cast<double>(ixomep::MemoryBudget::InUse() - before) / text.Len();
}

void CompileAndReleaseLong(benchmark::State& state, const String& text) {
  for (auto _ : state) Compiled(state, text);
}

void ReleaseLong(benchmark::State& state, const String& text) {
  for (auto _ : state) {
    state.PauseTiming();
    Expression expression = Compiled(state, text);
    state.ResumeTiming();
    expression.reset();
  }
}

void CopyLong(benchmark::State& state, const String& text) {
  const Expression expression = Compiled(state, text);
  if (expression == nullptr) return;
  for (auto _ : state) {
    ixomep::NodePtr copy(expression->GetTree()->Copy(nullptr));
    state.PauseTiming();
    copy.Reset();
    state.ResumeTiming();
  }
}

void PrintLong(benchmark::State& state, const String& text) {
  const Expression expression = Compiled(state, text);
  if (expression == nullptr) return;
  for (auto _ : state) benchmark::DoNotOptimize(expression->GetExpression(nullptr));
}

void RegisterLongTexts() {
  using Measure = void (*)(benchmark::State&, const String&);
  static constexpr std::pair<const char*, Measure> kMeasures[] = {
      {"compile", &CompileLong},
      {"release", &ReleaseLong},
      {"compile and release", &CompileAndReleaseLong},
      {"copy", &CopyLong},
      {"print", &PrintLong},
  };
  for (const Shape& shape : kShapes) {
    for (const auto& [what, measure] : kMeasures) {
      for (const std::size_t kilobytes : {64, 1024, 16384}) {
        const std::string name = std::string("long/") + shape.name + "/" + what + "/" +
                                 std::to_string(kilobytes) + " KB";
        const auto body = [&shape, run = measure, kilobytes](benchmark::State& state) {
          const String text = TextOf(shape, kilobytes * 1024);
          run(state, text);
          state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * text.Len());
        };
        // So many, because what stands outside the time may take much longer than what is timed.
        const int iterations = kilobytes < 1024 ? 100 : kilobytes < 4096 ? 10 : 2;
        benchmark::RegisterBenchmark(name.c_str(), body)
            ->Iterations(iterations)
            ->Unit(benchmark::kMillisecond);
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const NamedEngine& named : ixomep::bench::Engines()) {
    if (named.dialect == Dialect::Formula) continue;  // compiles only together with evaluating
    benchmark::RegisterBenchmark(("compile eight/" + named.name).c_str(),
                                 [&named](benchmark::State& state) { CompileAll(state, named); })
        ->Unit(benchmark::kMicrosecond);
  }
  RegisterLongTexts();
  benchmark::RunSpecifiedBenchmarks();
}
