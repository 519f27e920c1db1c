// Compiling: a mixed corpus of short expressions, one after the other, each thrown away again. The
// time is that of the whole corpus of eight.
#include <array>

#include "bench/support/engines.h"

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

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const NamedEngine& named : ixomep::bench::Engines()) {
    if (named.dialect == Dialect::Formula) continue;  // compiles only together with evaluating
    benchmark::RegisterBenchmark(("compile eight/" + named.name).c_str(),
                                 [&named](benchmark::State& state) { CompileAll(state, named); })
        ->Unit(benchmark::kMicrosecond);
  }
  benchmark::RunSpecifiedBenchmarks();
}
