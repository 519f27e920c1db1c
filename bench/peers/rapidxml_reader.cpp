// RapidXML as a reader of the benchmarks. It reads in place, so that the copy of the text counts.
#include <rapidxml/rapidxml.hpp>
#include <vector>

#include "bench/support/reader.h"

namespace {

using ixomep::bench::Counts;
using ixomep::bench::Reader;

void Walk(const rapidxml::xml_node<>& parent, Counts& counts) {
  for (const auto* element = parent.first_node(); element != nullptr;
       element = element->next_sibling()) {
    ++counts.elements;
    for (const auto* attribute = element->first_attribute(); attribute != nullptr;
         attribute = attribute->next_attribute()) {
      const std::string_view name(attribute->name(), attribute->name_size());
      if (name != "val" && !name.ends_with(".m")) ++counts.attributes;
      counts.Add({attribute->value(), attribute->value_size()});
    }
    Walk(*element, counts);
  }
}

class RapidXmlReader : public Reader {
 public:
  Counts ReadWalkFree(const std::string& text) override {
    std::vector<char> copy(text.c_str(), text.c_str() + text.size() + 1);
    Counts counts;
    try {
      rapidxml::xml_document<> document;
      document.parse<0>(copy.data());
      Walk(*document.first_node(), counts);
    } catch (const rapidxml::parse_error&) {
      return {};
    }
    return counts;
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) Reader* MakePeerReader() {
  return new RapidXmlReader;
}
