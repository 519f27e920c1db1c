// Definition texts beside XML and JSON that say the same: read, walk, free. Rates are in bytes of
// the definition text, whatever the format read, so that the columns compare.
#include <benchmark/benchmark.h>

#include <iostream>
#include <string>

#include "bench/support/readers.h"

namespace {

using ixomep::bench::Counts;
using ixomep::bench::NamedReader;
using ixomep::bench::Sample;
using ixomep::bench::Shape;

constexpr std::int64_t kMegabyte = 1'000'000;

void Register(const std::string& what, const Sample& sample) {
  Counts expected;
  for (const NamedReader& named : ixomep::bench::Readers()) {
    const std::string& text = sample.*named.text;
    const Counts counts = named.reader->ReadWalkFree(text);
    if (named.text == &Sample::definition) expected = counts;
    if (counts.elements == 0 || counts != expected) {
      std::cerr << what << " of " << named.name << " is left out: it counts " << counts.elements
                << " elements, " << counts.attributes << " attributes, " << counts.numbers
                << " numbers, " << counts.text_bytes << " bytes of text\n";
      continue;
    }
    benchmark::RegisterBenchmark((what + "/" + named.name).c_str(), [&named, &sample, &text](
                                                                        benchmark::State& state) {
      for (auto _ : state) {
        benchmark::DoNotOptimize(named.reader->ReadWalkFree(text));
      }
      state.SetBytesProcessed(state.iterations() *
                              static_cast<std::int64_t>(sample.definition.size()));
    })->Unit(benchmark::kMillisecond);
  }
  std::cerr << what << ": " << expected.elements << " elements\n";
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const Sample small = ixomep::bench::MakeSample(5 * kMegabyte);
  const Sample middle = ixomep::bench::MakeSample(16 * kMegabyte);
  const Sample large = ixomep::bench::MakeSample(48 * kMegabyte);
  Register("definition  5 MB", small);
  Register("definition 16 MB", middle);
  Register("definition 48 MB", large);
  // Other shapes, where the texts cannot be foretold as well as those of the model.
  const Sample varied = ixomep::bench::MakeSample(5 * kMegabyte, Shape::Varied);
  const Sample lines = ixomep::bench::MakeSample(5 * kMegabyte, Shape::Lines);
  const Sample flat = ixomep::bench::MakeSample(5 * kMegabyte, Shape::Flat);
  const Sample nested = ixomep::bench::MakeSample(5 * kMegabyte, Shape::Nested);
  Register("varied      5 MB", varied);
  Register("lines       5 MB", lines);
  Register("flat        5 MB", flat);
  Register("nested      5 MB", nested);
  benchmark::RunSpecifiedBenchmarks();
}
