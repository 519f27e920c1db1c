// Definition texts: read, walk and free, by size and by depth of nesting. The rate in bytes a
// second belongs to the text; it should be the same in every row of a family.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "ixomep/parser/parser.h"

namespace {

constexpr std::int64_t kMegabyte = 1'000'000;

// Elements with a value and attributes of every common kind, one a few lines.
String FlatText(std::int64_t bytes) {
  std::string text;
  for (int i = 0; static_cast<std::int64_t>(text.size()) < bytes; ++i) {
    text += "STATION \"station " + std::to_string(i) +
            "\"\n  width: 12.5cm  count: " + std::to_string(i) +
            "\n  title: de: \"Arbeitsplatz\"\n  visible\n  area: (w * h)\n";
  }
  return String(text);
}

// One body in the other.
String NestedText(std::int64_t depth) {
  std::string text;
  for (std::int64_t i = 0; i < depth; ++i) text += "GROUP a: 1 {\n";
  text += "LEAF b: 2\n";
  for (std::int64_t i = 0; i < depth; ++i) text += "}\n";
  return String(text);
}

std::int64_t Walk(const IxoMepParser& parser) {
  std::int64_t found = 0;
  const IxoMepParser* level = &parser;
  while (level != nullptr) {
    const IxoMepParser* inner = nullptr;
    for (std::int32_t i = 0; i < level->GetElemCount(); ++i) {
      found += 1 + level->GetAttrCount(i);
      if (inner == nullptr) inner = level->GetBodyParser(i);
    }
    level = inner;
  }
  return found;
}

void ReadWalkFree(benchmark::State& state, const String& text) {
  for (auto _ : state) {
    IxoMepParser parser(text, "bench");
    if (parser.Parse() != IMEPERR_NONE) state.SkipWithError(parser.GetErrorText().c_str());
    benchmark::DoNotOptimize(Walk(parser));
  }
  state.SetBytesProcessed(state.iterations() * text.Len());
}

void Flat(benchmark::State& state) { ReadWalkFree(state, FlatText(state.range(0))); }
BENCHMARK(Flat)->RangeMultiplier(4)->Range(kMegabyte / 16, 16 * kMegabyte)->UseRealTime();

// The texts have about one size; what differs is how deep their bodies stand.
void Nested(benchmark::State& state) {
  const String one = NestedText(state.range(0));
  String text;
  while (text.Len() < kMegabyte) text += one;
  ReadWalkFree(state, text);
}
BENCHMARK(Nested)->RangeMultiplier(10)->Range(1, 10'000)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
