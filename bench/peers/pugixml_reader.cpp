// pugixml as a reader and a writer of the benchmarks.
#include <pugixml.hpp>
#include <string>

#include "bench/support/reader.h"

namespace {

using ixomep::bench::Counts;
using ixomep::bench::Reader;
using ixomep::bench::XmlWriter;

void Walk(const pugi::xml_node& parent, Counts& counts) {
  for (const pugi::xml_node element : parent.children()) {
    ++counts.elements;
    for (const pugi::xml_attribute attribute : element.attributes()) {
      const std::string_view name = attribute.name();
      if (name != "val" && !name.ends_with(".m")) ++counts.attributes;
      counts.Add(attribute.value());
    }
    Walk(element, counts);
  }
}

class PugixmlReader : public Reader {
 public:
  Counts ReadWalkFree(const std::string& text) override {
    pugi::xml_document document;
    Counts counts;
    if (document.load_buffer(text.data(), text.size())) Walk(document.first_child(), counts);
    return counts;
  }
};

struct TextWriter : pugi::xml_writer {
  std::string text;
  void write(const void* data, std::size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }
};

class PugixmlWriter : public XmlWriter {
 public:
  bool Load(const std::string& text) override {
    return document_.load_buffer(text.data(), text.size());
  }
  void Unload() override {
    document_.reset();
    written_ = TextWriter();
  }
  std::string_view Write() override {
    written_ = TextWriter();
    const pugi::xml_node root = document_.first_child();
    written_.text = std::string("<") + root.name() + ">\n";
    for (const pugi::xml_node element : root.children()) element.print(written_, "    ");
    written_.text += std::string("</") + root.name() + ">\n";
    return written_.text;
  }

 private:
  pugi::xml_document document_;
  TextWriter written_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) Reader* MakePeerReader() {
  return new PugixmlReader;
}
extern "C" __attribute__((visibility("default"))) XmlWriter* MakePeerWriter() {
  return new PugixmlWriter;
}
