// XML written: a definition text as XML, beside a writer of XML that saves the same tree. Rates
// are in bytes of the definition text.
#include <benchmark/benchmark.h>

#include <iostream>
#include <string>

#include "bench/support/readers.h"

namespace {

using ixomep::bench::NamedWriter;
using ixomep::bench::Sample;
using ixomep::bench::XmlWriter;

constexpr std::int64_t kMegabyte = 1'000'000;

void WriteOnly(benchmark::State& state, XmlWriter& writer, const std::string& text) {
  writer.Load(text);
  for (auto _ : state) benchmark::DoNotOptimize(writer.Write());
  writer.Unload();
}

void ReadAndWrite(benchmark::State& state, XmlWriter& writer, const std::string& text) {
  for (auto _ : state) {
    writer.Load(text);
    benchmark::DoNotOptimize(writer.Write());
    writer.Unload();
  }
}

using Work = void (*)(benchmark::State&, XmlWriter&, const std::string&);

void Register(const std::string& what, const NamedWriter& named, const std::string& text,
              std::int64_t bytes, Work work) {
  XmlWriter& writer = *named.writer;
  benchmark::RegisterBenchmark((what + "/" + named.name).c_str(), [&writer, &text, bytes,
                                                                   work](benchmark::State& state) {
    work(state, writer, text);
    state.SetBytesProcessed(state.iterations() * bytes);
  })->Unit(benchmark::kMillisecond);
}

// The peers read what this library writes, and have to write the same again.
void RegisterAll(const std::string& size, const std::string& definition, std::string& xml) {
  for (const NamedWriter& named : ixomep::bench::Writers()) {
    const std::string& text = named.reads_definitions ? definition : xml;
    const std::string written(named.writer->Load(text) ? named.writer->Write() : "");
    named.writer->Unload();
    if (named.reads_definitions) xml = written;
    if (written.empty() || written != xml) {
      std::cerr << "XML of " << named.name << " is left out: it writes another text\n";
      continue;
    }
    const auto bytes = static_cast<std::int64_t>(definition.size());
    Register("xml written " + size, named, text, bytes, WriteOnly);
    Register("xml read+written " + size, named, text, bytes, ReadAndWrite);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const std::string small = ixomep::bench::MakeSample(5 * kMegabyte).definition;
  const std::string large = ixomep::bench::MakeSample(16 * kMegabyte).definition;
  std::string small_xml, large_xml;
  RegisterAll(" 5 MB", small, small_xml);
  RegisterAll("16 MB", large, large_xml);
  benchmark::RunSpecifiedBenchmarks();
}
