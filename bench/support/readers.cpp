// Loads the peers that read XML or JSON. See readers.h.
#include "bench/support/readers.h"

#include <utility>

#include "bench/support/modules.h"

namespace ixomep::bench {

namespace {

struct Peer {
  const char* name;
  const char* file;
  std::string Sample::*text;
};

constexpr Peer kPeers[] = {
    {"pugixml", "libpeer_pugixml.so", &Sample::xml},
    {"RapidXML", "libpeer_rapidxml.so", &Sample::xml},
    {"RapidJSON", "libpeer_rapidjson.so", &Sample::json},
    {"simdjson", "libpeer_simdjson.so", &Sample::json},
};

std::vector<NamedReader> LoadReaders() {
  std::vector<NamedReader> readers;
  readers.push_back({"Mep", &Sample::definition, MakeMepReader()});
  for (const Peer& peer : kPeers) {
    auto* const made = static_cast<Reader*>(MakeFromModule(peer.name, peer.file, "MakePeerReader"));
    if (made != nullptr) {
      readers.push_back({peer.name, peer.text, std::unique_ptr<Reader>(made)});
    }
  }
  return readers;
}

std::vector<NamedWriter> LoadWriters() {
  std::vector<NamedWriter> writers;
  writers.push_back({"Mep", true, MakeMepWriter()});
  auto* const made =
      static_cast<XmlWriter*>(MakeFromModule("pugixml", "libpeer_pugixml.so", "MakePeerWriter"));
  if (made != nullptr) writers.push_back({"pugixml", false, std::unique_ptr<XmlWriter>(made)});
  return writers;
}

}  // namespace

const std::vector<NamedReader>& Readers() {
  static const std::vector<NamedReader> readers = LoadReaders();
  return readers;
}

const std::vector<NamedWriter>& Writers() {
  static const std::vector<NamedWriter> writers = LoadWriters();
  return writers;
}

}  // namespace ixomep::bench
