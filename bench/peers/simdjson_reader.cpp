// simdjson as a reader of the benchmarks: its tree, a new parser each time as with the others.
#include <simdjson.h>

#include "bench/support/reader.h"

namespace {

using ixomep::bench::Counts;
using ixomep::bench::Reader;
using simdjson::dom::element_type;

void AddValue(const simdjson::dom::element& value, Counts& counts) {
  const element_type type = value.type();
  if (type == element_type::STRING) {
    counts.Add(value.get_string().value_unsafe());
  } else if (type == element_type::INT64 || type == element_type::DOUBLE) {
    ++counts.numbers;
  }
}

simdjson::dom::object ObjectOf(const simdjson::dom::element& value) {
  return value.get_object().value_unsafe();
}

void AddAttribute(const simdjson::dom::element& attribute, Counts& counts) {
  ++counts.attributes;
  if (attribute.type() != element_type::OBJECT) return AddValue(attribute, counts);
  const simdjson::dom::object both = ObjectOf(attribute);
  for (const auto& part : both) AddValue(part.value, counts);
}

void Walk(const simdjson::dom::array& elements, Counts& counts) {
  for (const simdjson::dom::element element : elements) {
    ++counts.elements;
    const simdjson::dom::object parts = ObjectOf(element);
    for (const auto& [part, value] : parts) {
      if (part == "v") {
        AddValue(value, counts);
      } else if (part == "b") {
        Walk(value.get_array().value_unsafe(), counts);
      } else if (part == "a") {
        const simdjson::dom::object attributes = ObjectOf(value);
        for (const auto& attribute : attributes) AddAttribute(attribute.value, counts);
      }
    }
  }
}

class SimdjsonReader : public Reader {
 public:
  Counts ReadWalkFree(const std::string& text) override {
    simdjson::dom::parser parser;
    Counts counts;
    simdjson::dom::array elements;
    if (parser.parse(text).get(elements) == simdjson::SUCCESS) Walk(elements, counts);
    return counts;
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) Reader* MakePeerReader() {
  return new SimdjsonReader;
}
