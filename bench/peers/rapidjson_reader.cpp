// RapidJSON as a reader of the benchmarks. It reads in place, so that the copy of the text counts.
#include <rapidjson/document.h>

#include <vector>

#include "bench/support/reader.h"

namespace {

using ixomep::bench::Counts;
using ixomep::bench::Reader;

void AddValue(const rapidjson::Value& value, Counts& counts) {
  if (value.IsString()) {
    counts.Add({value.GetString(), value.GetStringLength()});
  } else if (value.IsNumber()) {
    ++counts.numbers;
  }
}

void Walk(const rapidjson::Value& elements, Counts& counts) {
  for (const auto& element : elements.GetArray()) {
    ++counts.elements;
    for (const auto& member : element.GetObject()) {
      const char part = *member.name.GetString();
      if (part == 'v') {
        AddValue(member.value, counts);
      } else if (part == 'b') {
        Walk(member.value, counts);
      } else if (part == 'a') {
        for (const auto& attribute : member.value.GetObject()) {
          ++counts.attributes;
          if (!attribute.value.IsObject()) {
            AddValue(attribute.value, counts);
            continue;
          }
          for (const auto& both : attribute.value.GetObject()) AddValue(both.value, counts);
        }
      }
    }
  }
}

class RapidJsonReader : public Reader {
 public:
  Counts ReadWalkFree(const std::string& text) override {
    std::vector<char> copy(text.c_str(), text.c_str() + text.size() + 1);
    rapidjson::Document document;
    document.ParseInsitu(copy.data());
    Counts counts;
    if (!document.HasParseError()) Walk(document, counts);
    return counts;
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) Reader* MakePeerReader() {
  return new RapidJsonReader;
}
