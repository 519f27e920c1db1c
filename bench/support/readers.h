// The readers and writers that take part in the benchmarks of definition texts: this library's,
// and those of the peers that were there when the benchmarks were configured.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/support/reader.h"
#include "bench/support/samples.h"

namespace ixomep::bench {

struct NamedReader {
  std::string name;
  std::string Sample::*text;  // what it reads
  std::unique_ptr<Reader> reader;
};
struct NamedWriter {
  std::string name;
  bool reads_definitions;  // else the XML that this library's writer makes of them
  std::unique_ptr<XmlWriter> writer;
};

std::unique_ptr<Reader> MakeMepReader();
std::unique_ptr<XmlWriter> MakeMepWriter();

// Mep first. Those that cannot be loaded are named on the error output.
const std::vector<NamedReader>& Readers();
const std::vector<NamedWriter>& Writers();

}  // namespace ixomep::bench
